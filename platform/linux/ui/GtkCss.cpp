#include "GtkCss.h"

#include <gtk/gtk.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>
#include <vector>

#include "LiveObjects.h"

namespace vemba::linux_platform {

std::string cssNumber(double value) {
  std::array<char, 32> buffer{};
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                    std::chars_format::fixed, 3);
  std::string text(buffer.data(), result.ptr);
  // "12.500" → "12.5", "12.000" → "12".
  if (text.find('.') != std::string::npos) {
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') {
      text.pop_back();
    }
  }
  return text == "-0" ? "0" : text;
}

std::string cssColor(const platform::Color& color) {
  if (color.kind == platform::Color::Kind::systemBackground) {
    return "@theme_base_color";
  }
  auto channel = [](double component) {
    return cssNumber(std::clamp(component, 0.0, 1.0) * 255.0);
  };
  return "rgba(" + channel(color.red) + ", " + channel(color.green) + ", " + channel(color.blue) +
         ", " + cssNumber(std::clamp(color.alpha, 0.0, 1.0)) + ")";
}

namespace {

constexpr const char* kProviderKey = "vemba-css-provider";
constexpr const char* kClassKey = "vemba-css-class";

struct CssClassPool {
  std::size_t made = 0;
  std::vector<std::string> free;
};

CssClassPool& cssClassPool() {
  static auto* const pool = new CssClassPool();  // main thread only; never destroyed
  return *pool;
}

}  // namespace

std::string acquireCssClass() {
  CssClassPool& pool = cssClassPool();
  if (pool.free.empty()) {
    return "vemba-c" + std::to_string(++pool.made);
  }
  std::string name = std::move(pool.free.back());
  pool.free.pop_back();
  return name;
}

void releaseCssClass(std::string name) {
  cssClassPool().free.push_back(std::move(name));
}

std::size_t cssClassNamesMade() {
  return cssClassPool().made;
}

void styleWidget(GtkWidget* widget, const std::string& declarations) {
  auto* provider = static_cast<GtkCssProvider*>(g_object_get_data(G_OBJECT(widget), kProviderKey));
  if (provider == nullptr) {
    const std::string cssClass = acquireCssClass();
    gtk_widget_add_css_class(widget, cssClass.c_str());
    provider = gtk_css_provider_new();
    g_object_set_data_full(G_OBJECT(widget), kProviderKey, provider, g_object_unref);
    // The name goes back to the pool when the widget is finalised, and with it the class.
    g_object_set_data_full(G_OBJECT(widget), kClassKey, g_strdup(cssClass.c_str()),
                           [](gpointer name) {
                             releaseCssClass(static_cast<const char*>(name));
                             g_free(name);
                           });
    G_GNUC_BEGIN_IGNORE_DEPRECATIONS
    gtk_style_context_add_provider(gtk_widget_get_style_context(widget),
                                   GTK_STYLE_PROVIDER(provider),
                                   GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    G_GNUC_END_IGNORE_DEPRECATIONS
  }
  const auto* cssClass = static_cast<const char*>(g_object_get_data(G_OBJECT(widget), kClassKey));
  const std::string text = std::string(".") + cssClass + " {" + declarations + "}";
  gtk_css_provider_load_from_data(provider, text.c_str(), static_cast<gssize>(text.size()));
}

}  // namespace vemba::linux_platform
