#include "WebViewWidget.h"

namespace vemba::linux_platform {
namespace {

struct WebViewWidget {
  WebKitWebView parent;
  gboolean hidesPage;
};

struct WebViewWidgetClass {
  WebKitWebViewClass parent;
};

// WebKitWebView's own drawing; the widget's CSS background is drawn before it in either case.
void (*pageSnapshot)(GtkWidget*, GtkSnapshot*) = nullptr;

void snapshot(GtkWidget* widget, GtkSnapshot* target) {
  if (reinterpret_cast<WebViewWidget*>(widget)->hidesPage == FALSE) {
    pageSnapshot(widget, target);
  }
}

void classInit(gpointer klass, gpointer /*data*/) {
  GtkWidgetClass* widgetClass = GTK_WIDGET_CLASS(klass);
  pageSnapshot = widgetClass->snapshot;
  widgetClass->snapshot = snapshot;
}

void instanceInit(GTypeInstance* instance, gpointer /*klass*/) {
  reinterpret_cast<WebViewWidget*>(instance)->hidesPage = FALSE;
}

}  // namespace

GType webViewWidgetType() {
  static const GType type = g_type_register_static_simple(
      WEBKIT_TYPE_WEB_VIEW, "VembaWebViewWidget", sizeof(WebViewWidgetClass), classInit,
      sizeof(WebViewWidget), instanceInit, static_cast<GTypeFlags>(0));
  return type;
}

void setDrawsPage(WebKitWebView* view, bool drawsPage) {
  if (!G_TYPE_CHECK_INSTANCE_TYPE(view, webViewWidgetType())) {
    return;
  }
  auto* widget = reinterpret_cast<WebViewWidget*>(view);
  const gboolean hides = drawsPage ? FALSE : TRUE;
  if (widget->hidesPage != hides) {
    widget->hidesPage = hides;
    gtk_widget_queue_draw(GTK_WIDGET(view));
  }
}

}  // namespace vemba::linux_platform
