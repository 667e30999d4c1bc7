// The registry of a web view's script-message handlers over one WebKitUserContentManager.
//
// Owner: the core, through the web view configuration that shares it (web views made with it
// hold it too). Main thread only. Holds each handler strongly until it is removed; a name is
// registered with WebKit while it has a handler, so removing it takes effect in the live page at
// once. String bodies arrive as strings, every other body as its JSON text.
#pragma once

#include <webkit/webkit.h>

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "platform/ScriptMessage.h"

namespace vemba::linux_platform {

class GtkUserContentController final
    : public platform::UserContentController,
      public std::enable_shared_from_this<GtkUserContentController> {
 public:
  static std::shared_ptr<GtkUserContentController> create();
  ~GtkUserContentController() override;
  GtkUserContentController(const GtkUserContentController&) = delete;
  GtkUserContentController& operator=(const GtkUserContentController&) = delete;

  void add(std::shared_ptr<platform::ScriptMessageHandler> handler, std::string_view name) override;
  void removeScriptMessageHandler(std::string_view name) override;

  // The manager web views are built with (this object holds one reference).
  WebKitUserContentManager* manager() const { return manager_; }

  // Delivers one message the page posted to `name` (what the WebKit signal handler calls).
  void deliver(const std::string& name, JSCValue* body);

 private:
  struct Registration {
    std::shared_ptr<platform::ScriptMessageHandler> handler;
    gulong signalHandlerId = 0;
  };

  GtkUserContentController();

  WebKitUserContentManager* manager_;
  std::map<std::string, Registration, std::less<>> registrations_;
};

}  // namespace vemba::linux_platform
