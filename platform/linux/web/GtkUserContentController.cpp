#include "GtkUserContentController.h"

#include <optional>
#include <utility>
#include <variant>

namespace vemba::linux_platform {
namespace {

constexpr std::string_view kMessageSignal = "script-message-received::";
// JSON text for a body that has none (undefined).
constexpr std::string_view kNullJson = "null";

// What one signal connection knows: the controller, weakly, and the channel name.
struct Connection {
  std::weak_ptr<GtkUserContentController> controller;
  std::string name;
};

void onScriptMessage(WebKitUserContentManager* /*manager*/, JSCValue* value, gpointer data) {
  const auto* connection = static_cast<const Connection*>(data);
  if (const std::shared_ptr<GtkUserContentController> controller = connection->controller.lock()) {
    controller->deliver(connection->name, value);
  }
}

void freeConnection(gpointer data, GClosure* /*closure*/) {
  delete static_cast<Connection*>(data);
}

std::string takeString(char* text) {
  std::string value(text);
  g_free(text);
  return value;
}

// The body as the core sees it; absent when the page posted something JSON cannot express (a
// cyclic structure, for instance), which is then dropped.
std::optional<std::variant<std::string, platform::ScriptMessage::NonStringBody>> bodyOf(
    JSCValue* value) {
  if (jsc_value_is_string(value)) {
    return std::string(takeString(jsc_value_to_string(value)));
  }
  if (jsc_value_is_undefined(value)) {
    return platform::ScriptMessage::NonStringBody{std::string(kNullJson)};
  }
  char* json = jsc_value_to_json(value, 0);
  if (json == nullptr) {
    jsc_context_clear_exception(jsc_value_get_context(value));
    return std::nullopt;
  }
  return platform::ScriptMessage::NonStringBody{takeString(json)};
}

}  // namespace

std::shared_ptr<GtkUserContentController> GtkUserContentController::create() {
  return std::shared_ptr<GtkUserContentController>(new GtkUserContentController());
}

GtkUserContentController::GtkUserContentController()
    : manager_(webkit_user_content_manager_new()) {}

GtkUserContentController::~GtkUserContentController() {
  for (auto& [name, registration] : registrations_) {
    g_signal_handler_disconnect(manager_, registration.signalHandlerId);
    webkit_user_content_manager_unregister_script_message_handler(manager_, name.c_str(), nullptr);
  }
  g_object_unref(manager_);
}

void GtkUserContentController::add(std::shared_ptr<platform::ScriptMessageHandler> handler,
                                   std::string_view name) {
  if (registrations_.find(name) != registrations_.end()) {
    return;
  }
  std::string key(name);
  if (!webkit_user_content_manager_register_script_message_handler(manager_, key.c_str(),
                                                                   nullptr)) {
    return;  // WebKit refuses the name (registered behind this object's back)
  }
  const std::string signal = std::string(kMessageSignal) + key;
  const gulong id = g_signal_connect_data(manager_, signal.c_str(), G_CALLBACK(onScriptMessage),
                                          new Connection{weak_from_this(), key}, freeConnection,
                                          static_cast<GConnectFlags>(0));
  registrations_.emplace(std::move(key), Registration{std::move(handler), id});
}

void GtkUserContentController::removeScriptMessageHandler(std::string_view name) {
  const auto it = registrations_.find(name);
  if (it == registrations_.end()) {
    return;
  }
  g_signal_handler_disconnect(manager_, it->second.signalHandlerId);
  webkit_user_content_manager_unregister_script_message_handler(manager_, it->first.c_str(),
                                                                nullptr);
  registrations_.erase(it);
}

void GtkUserContentController::deliver(const std::string& name, JSCValue* value) {
  const auto it = registrations_.find(name);
  if (it == registrations_.end()) {
    return;
  }
  auto body = bodyOf(value);
  if (!body) {
    return;
  }
  // The handler may remove itself (or the whole registry may go) while it runs.
  const std::shared_ptr<GtkUserContentController> keep = shared_from_this();
  const std::shared_ptr<platform::ScriptMessageHandler> handler = it->second.handler;
  handler->userContentControllerDidReceive(*this, platform::ScriptMessage{name, std::move(*body)});
}

}  // namespace vemba::linux_platform
