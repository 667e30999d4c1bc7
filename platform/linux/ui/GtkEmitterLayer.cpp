#include "GtkEmitterLayer.h"

#include <gtk/gtk.h>

#include "GtkImage.h"

namespace vemba::linux_platform {

namespace {

using SystemRef = std::shared_ptr<ParticleSystem>;

void deleteSystemRef(gpointer data) {
  delete static_cast<SystemRef*>(data);
}

double mediaTimeNow() {
  return static_cast<double>(g_get_monotonic_time()) / 1e6;
}

void draw(GtkDrawingArea* /*area*/, cairo_t* cr, int /*width*/, int /*height*/, gpointer data) {
  const ParticleSystem& system = **static_cast<SystemRef*>(data);
  for (const Particle& particle : system.particles()) {
    const TextureImage* image = TextureImage::of(system.cells[particle.cell].contents);
    if (image == nullptr) {
      continue;
    }
    cairo_save(cr);
    cairo_translate(cr, particle.x, particle.y);
    cairo_rotate(cr, particle.angle);
    cairo_set_source_surface(cr, image->surface(), -image->width() / 2.0, -image->height() / 2.0);
    cairo_paint(cr);
    cairo_restore(cr);
  }
}

}  // namespace

GtkEmitterLayer::GtkEmitterLayer()
    : area_(gtk_drawing_area_new()), system_(std::make_shared<ParticleSystem>()) {
  g_object_ref_sink(area_);
  gtk_widget_set_can_target(area_, FALSE);
  gtk_drawing_area_set_draw_func(GTK_DRAWING_AREA(area_), draw, new SystemRef(system_),
                                 deleteSystemRef);
  tick();
}

GtkEmitterLayer::~GtkEmitterLayer() {
  removeFromSuperlayer();
  if (tickId_ != 0) {
    gtk_widget_remove_tick_callback(area_, tickId_);
  }
  g_object_unref(area_);
}

void GtkEmitterLayer::tick() {
  if (tickId_ != 0) {
    return;
  }
  // `this` outlives the callback: the destructor removes it, and it removes itself once spent.
  tickId_ = gtk_widget_add_tick_callback(
      area_,
      +[](GtkWidget* area, GdkFrameClock* /*clock*/, gpointer data) -> gboolean {
        auto* layer = static_cast<GtkEmitterLayer*>(data);
        layer->system_->step(mediaTimeNow());
        gtk_widget_queue_draw(area);  // the last frame clears what the previous one drew
        if (layer->system_->isSpent()) {
          layer->tickId_ = 0;
          return G_SOURCE_REMOVE;
        }
        return G_SOURCE_CONTINUE;
      },
      this, nullptr);
}

void GtkEmitterLayer::removeFromSuperlayer() {
  if (holder != nullptr) {
    holder->removeSublayer(*this);
  }
}

void GtkEmitterLayer::setEmitterPosition(platform::Point position) {
  system_->position = position;
}
void GtkEmitterLayer::setEmitterSize(platform::Size size) {
  system_->size = size;
}
void GtkEmitterLayer::setEmitterShape(Shape shape) {
  system_->shape = shape;
}
void GtkEmitterLayer::setEmitterCells(std::vector<platform::EmitterCell> cells) {
  system_->cells = std::move(cells);
  tick();
}
void GtkEmitterLayer::setBeginTime(double beginTime) {
  system_->beginTime = beginTime;
}
void GtkEmitterLayer::setBirthRate(float birthRate) {
  system_->birthRate = birthRate;
  tick();
}
float GtkEmitterLayer::birthRate() const {
  return system_->birthRate;
}
std::size_t GtkEmitterLayer::particleCount() const {
  return system_->particles().size();
}

}  // namespace vemba::linux_platform
