// The widget of a plain view: no content of its own, a CSS background, children placed by a
// GtkConstraintLayout, and every remaining child unparented when it is disposed.
#include <gtk/gtk.h>

#include "GtkViewBase.h"

extern "C" {

struct VembaContainer {
  GtkWidget parent_instance;
};

struct VembaContainerClass {
  GtkWidgetClass parent_class;
};

G_DEFINE_TYPE(VembaContainer, vemba_container, GTK_TYPE_WIDGET)

static void vemba_container_dispose(GObject* object) {
  GtkWidget* widget = GTK_WIDGET(object);
  while (GtkWidget* child = gtk_widget_get_first_child(widget)) {
    gtk_widget_unparent(child);
  }
  G_OBJECT_CLASS(vemba_container_parent_class)->dispose(object);
}

static void vemba_container_class_init(VembaContainerClass* klass) {
  G_OBJECT_CLASS(klass)->dispose = vemba_container_dispose;
  gtk_widget_class_set_layout_manager_type(GTK_WIDGET_CLASS(klass), GTK_TYPE_CONSTRAINT_LAYOUT);
  gtk_widget_class_set_css_name(GTK_WIDGET_CLASS(klass), "vemba-view");
}

static void vemba_container_init(VembaContainer* /*self*/) {}

}  // extern "C"

namespace vemba::linux_platform {

GtkWidget* newContainerWidget() {
  return GTK_WIDGET(g_object_new(vemba_container_get_type(), nullptr));
}

}  // namespace vemba::linux_platform
