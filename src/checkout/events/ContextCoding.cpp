#include "checkout/events/ContextCoding.h"

#include "common/JsonFields.h"

namespace vemba::checkout {
namespace {

using json::Json;
using json::JsonPath;
using json::optionalDouble;
using json::optionalField;
using json::optionalString;
using json::putOptional;

constexpr std::string_view kCharacterSet = "characterSet";
constexpr std::string_view kCookieEnabled = "cookieEnabled";
constexpr std::string_view kDocument = "document";
constexpr std::string_view kHash = "hash";
constexpr std::string_view kHeight = "height";
constexpr std::string_view kHost = "host";
constexpr std::string_view kHostname = "hostname";
constexpr std::string_view kHref = "href";
constexpr std::string_view kInnerHeight = "innerHeight";
constexpr std::string_view kInnerWidth = "innerWidth";
constexpr std::string_view kLanguage = "language";
constexpr std::string_view kLanguages = "languages";
constexpr std::string_view kLocation = "location";
constexpr std::string_view kNavigator = "navigator";
constexpr std::string_view kOrigin = "origin";
constexpr std::string_view kOuterHeight = "outerHeight";
constexpr std::string_view kOuterWidth = "outerWidth";
constexpr std::string_view kPageXOffset = "pageXOffset";
constexpr std::string_view kPageYOffset = "pageYOffset";
constexpr std::string_view kPathname = "pathname";
constexpr std::string_view kPort = "port";
// The key of Location::locationProtocol.
constexpr std::string_view kProtocol = "protocol";
constexpr std::string_view kReferrer = "referrer";
constexpr std::string_view kScreen = "screen";
constexpr std::string_view kScreenX = "screenX";
constexpr std::string_view kScreenY = "screenY";
constexpr std::string_view kScrollX = "scrollX";
constexpr std::string_view kScrollY = "scrollY";
constexpr std::string_view kSearch = "search";
constexpr std::string_view kTitle = "title";
constexpr std::string_view kUserAgent = "userAgent";
constexpr std::string_view kWidth = "width";
constexpr std::string_view kWindow = "window";

Json toJson(const Location& location);
Json toJson(const Screen& screen);
Json toJson(const WebPixelsDocument& document);
Json toJson(const WebPixelsNavigator& navigator);
Json toJson(const WebPixelsWindow& window);

constexpr auto encode = [](const auto& record) { return toJson(record); };

// ---- Location

Location decodeLocation(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Location out;
  out.hash = optionalString(value, kHash, path);
  out.host = optionalString(value, kHost, path);
  out.hostname = optionalString(value, kHostname, path);
  out.href = optionalString(value, kHref, path);
  out.origin = optionalString(value, kOrigin, path);
  out.pathname = optionalString(value, kPathname, path);
  out.port = optionalString(value, kPort, path);
  out.locationProtocol = optionalString(value, kProtocol, path);
  out.search = optionalString(value, kSearch, path);
  return out;
}

Json toJson(const Location& location) {
  Json out = Json::object();
  putOptional(out, kHash, location.hash);
  putOptional(out, kHost, location.host);
  putOptional(out, kHostname, location.hostname);
  putOptional(out, kHref, location.href);
  putOptional(out, kOrigin, location.origin);
  putOptional(out, kPathname, location.pathname);
  putOptional(out, kPort, location.port);
  putOptional(out, kProtocol, location.locationProtocol);
  putOptional(out, kSearch, location.search);
  return out;
}

// ---- Screen

Screen decodeScreen(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Screen out;
  out.height = optionalDouble(value, kHeight, path);
  out.width = optionalDouble(value, kWidth, path);
  return out;
}

Json toJson(const Screen& screen) {
  Json out = Json::object();
  putOptional(out, kHeight, screen.height);
  putOptional(out, kWidth, screen.width);
  return out;
}

// ---- WebPixelsDocument

WebPixelsDocument decodeDocument(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  WebPixelsDocument out;
  out.characterSet = optionalString(value, kCharacterSet, path);
  out.location = optionalField(value, kLocation, path, decodeLocation);
  out.referrer = optionalString(value, kReferrer, path);
  out.title = optionalString(value, kTitle, path);
  return out;
}

Json toJson(const WebPixelsDocument& document) {
  Json out = Json::object();
  putOptional(out, kCharacterSet, document.characterSet);
  putOptional(out, kLocation, document.location, encode);
  putOptional(out, kReferrer, document.referrer);
  putOptional(out, kTitle, document.title);
  return out;
}

// ---- WebPixelsNavigator

WebPixelsNavigator decodeNavigator(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  WebPixelsNavigator out;
  out.cookieEnabled = json::optionalBool(value, kCookieEnabled, path);
  out.language = optionalString(value, kLanguage, path);
  out.languages = optionalField(value, kLanguages, path, json::arrayOf(json::decodeString));
  out.userAgent = optionalString(value, kUserAgent, path);
  return out;
}

Json toJson(const WebPixelsNavigator& navigator) {
  Json out = Json::object();
  putOptional(out, kCookieEnabled, navigator.cookieEnabled);
  putOptional(out, kLanguage, navigator.language);
  putOptional(out, kLanguages, navigator.languages);
  putOptional(out, kUserAgent, navigator.userAgent);
  return out;
}

// ---- WebPixelsWindow

WebPixelsWindow decodeWindow(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  WebPixelsWindow out;
  out.innerHeight = optionalDouble(value, kInnerHeight, path);
  out.innerWidth = optionalDouble(value, kInnerWidth, path);
  out.location = optionalField(value, kLocation, path, decodeLocation);
  out.origin = optionalString(value, kOrigin, path);
  out.outerHeight = optionalDouble(value, kOuterHeight, path);
  out.outerWidth = optionalDouble(value, kOuterWidth, path);
  out.pageXOffset = optionalDouble(value, kPageXOffset, path);
  out.pageYOffset = optionalDouble(value, kPageYOffset, path);
  out.screen = optionalField(value, kScreen, path, decodeScreen);
  out.screenX = optionalDouble(value, kScreenX, path);
  out.screenY = optionalDouble(value, kScreenY, path);
  out.scrollX = optionalDouble(value, kScrollX, path);
  out.scrollY = optionalDouble(value, kScrollY, path);
  return out;
}

Json toJson(const WebPixelsWindow& window) {
  Json out = Json::object();
  putOptional(out, kInnerHeight, window.innerHeight);
  putOptional(out, kInnerWidth, window.innerWidth);
  putOptional(out, kLocation, window.location, encode);
  putOptional(out, kOrigin, window.origin);
  putOptional(out, kOuterHeight, window.outerHeight);
  putOptional(out, kOuterWidth, window.outerWidth);
  putOptional(out, kPageXOffset, window.pageXOffset);
  putOptional(out, kPageYOffset, window.pageYOffset);
  putOptional(out, kScreen, window.screen, encode);
  putOptional(out, kScreenX, window.screenX);
  putOptional(out, kScreenY, window.screenY);
  putOptional(out, kScrollX, window.scrollX);
  putOptional(out, kScrollY, window.scrollY);
  return out;
}

}  // namespace

Context decodeContext(const Json& value, const JsonPath& path) {
  json::requireObject(value, path);
  Context out;
  out.document = optionalField(value, kDocument, path, decodeDocument);
  out.navigator = optionalField(value, kNavigator, path, decodeNavigator);
  out.window = optionalField(value, kWindow, path, decodeWindow);
  return out;
}

Json toJson(const Context& context) {
  Json out = Json::object();
  putOptional(out, kDocument, context.document, encode);
  putOptional(out, kNavigator, context.navigator, encode);
  putOptional(out, kWindow, context.window, encode);
  return out;
}

}  // namespace vemba::checkout
