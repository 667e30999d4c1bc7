#include "checkout/events/ContextCoding.h"

namespace vemba::checkout {

using json::field;
using json::fields;
using json::Tag;

// The browser context's field tables. Keys equal the field names except one: the scheme of a
// Location travels under "protocol".

constexpr auto jsonFields(Tag<Location> /*record*/) {
  using R = Location;
  return fields(field("hash", &R::hash), field("host", &R::host), field("hostname", &R::hostname),
                field("href", &R::href), field("origin", &R::origin),
                field("pathname", &R::pathname), field("port", &R::port),
                field("protocol", &R::locationProtocol), field("search", &R::search));
}

constexpr auto jsonFields(Tag<Screen> /*record*/) {
  return fields(field("height", &Screen::height), field("width", &Screen::width));
}

constexpr auto jsonFields(Tag<WebPixelsDocument> /*record*/) {
  using R = WebPixelsDocument;
  return fields(field("characterSet", &R::characterSet), field("location", &R::location),
                field("referrer", &R::referrer), field("title", &R::title));
}

constexpr auto jsonFields(Tag<WebPixelsNavigator> /*record*/) {
  using R = WebPixelsNavigator;
  return fields(field("cookieEnabled", &R::cookieEnabled), field("language", &R::language),
                field("languages", &R::languages), field("userAgent", &R::userAgent));
}

constexpr auto jsonFields(Tag<WebPixelsWindow> /*record*/) {
  using R = WebPixelsWindow;
  return fields(field("innerHeight", &R::innerHeight), field("innerWidth", &R::innerWidth),
                field("location", &R::location), field("origin", &R::origin),
                field("outerHeight", &R::outerHeight), field("outerWidth", &R::outerWidth),
                field("pageXOffset", &R::pageXOffset), field("pageYOffset", &R::pageYOffset),
                field("screen", &R::screen), field("screenX", &R::screenX),
                field("screenY", &R::screenY), field("scrollX", &R::scrollX),
                field("scrollY", &R::scrollY));
}

constexpr auto jsonFields(Tag<Context> /*record*/) {
  return fields(field("document", &Context::document), field("navigator", &Context::navigator),
                field("window", &Context::window));
}

Context decodeContext(const json::Json& value, const json::JsonPath& path) {
  return json::decodeRecord<Context>(value, path);
}

json::Json encodeContext(const Context& context) {
  return json::encodeRecord(context);
}

}  // namespace vemba::checkout
