// The fake host application: settable scenes and windows, and a record of the URLs the core asked
// about or handed out. Single-threaded, like the fake main queue.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/Application.h"

namespace vemba::fake {

class FakeWindow final : public platform::Window {
 public:
  FakeWindow(bool isKey, std::shared_ptr<platform::Screen> screen)
      : key(isKey), root(std::move(screen)) {}
  bool isKeyWindow() const override { return key; }
  std::shared_ptr<platform::Screen> rootScreen() const override { return root; }

  bool key = false;
  std::shared_ptr<platform::Screen> root;
};

class FakeApplication final : public platform::Application {
 public:
  std::vector<platform::Scene> connectedScenes() const override { return scenes; }
  std::vector<std::shared_ptr<platform::Window>> windows() const override { return windowList; }
  // Records the query; true for the schemes of platform::isOpenableScheme.
  bool canOpenURL(const Url& url) const override;
  void open(const Url& url) override { opened.push_back(url); }

  std::vector<platform::Scene> scenes;
  std::vector<std::shared_ptr<platform::Window>> windowList;
  mutable std::vector<Url> canOpenQueries;  // every canOpenURL() argument, in order
  std::vector<Url> opened;                  // every open() argument, in order
};

}  // namespace vemba::fake
