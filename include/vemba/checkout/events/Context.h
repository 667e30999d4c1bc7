// The browser context of a web pixel event: the document, navigator and window as the checkout
// page's script saw them. Plain values handed on unchanged; every field is optional (absent when
// the page did not send it or sent null).
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "vemba/Export.h"

namespace vemba::checkout {

// An address split into its parts as a browser reports it. `port` is text (possibly empty), and
// the scheme part is `locationProtocol`, carried under the JSON key "protocol".
struct VEMBA_EXPORT Location {
  std::optional<std::string> hash;
  std::optional<std::string> host;
  std::optional<std::string> hostname;
  std::optional<std::string> href;
  std::optional<std::string> origin;
  std::optional<std::string> pathname;
  std::optional<std::string> port;
  std::optional<std::string> locationProtocol;
  std::optional<std::string> search;
  bool operator==(const Location&) const = default;
};

struct VEMBA_EXPORT Screen {
  std::optional<double> height;
  std::optional<double> width;
  bool operator==(const Screen&) const = default;
};

struct VEMBA_EXPORT WebPixelsDocument {
  std::optional<std::string> characterSet;
  std::optional<Location> location;
  std::optional<std::string> referrer;
  std::optional<std::string> title;
  bool operator==(const WebPixelsDocument&) const = default;
};

struct VEMBA_EXPORT WebPixelsNavigator {
  std::optional<bool> cookieEnabled;
  std::optional<std::string> language;
  std::optional<std::vector<std::string>> languages;  // in order of preference
  std::optional<std::string> userAgent;
  bool operator==(const WebPixelsNavigator&) const = default;
};

struct VEMBA_EXPORT WebPixelsWindow {
  std::optional<double> innerHeight;
  std::optional<double> innerWidth;
  std::optional<Location> location;
  std::optional<std::string> origin;
  std::optional<double> outerHeight;
  std::optional<double> outerWidth;
  std::optional<double> pageXOffset;
  std::optional<double> pageYOffset;
  std::optional<Screen> screen;
  std::optional<double> screenX;
  std::optional<double> screenY;
  std::optional<double> scrollX;
  std::optional<double> scrollY;
  bool operator==(const WebPixelsWindow&) const = default;
};

struct VEMBA_EXPORT Context {
  std::optional<WebPixelsDocument> document;
  std::optional<WebPixelsNavigator> navigator;
  std::optional<WebPixelsWindow> window;
  bool operator==(const Context&) const = default;
};

}  // namespace vemba::checkout
