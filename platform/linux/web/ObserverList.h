// The observers of one web view property, and the observation that ends one of them.
// Owner: the web view driver that notifies them. Main thread only.
#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "platform/WebView.h"

namespace vemba::linux_platform {

template <typename Value>
class ObserverList {
 public:
  std::unique_ptr<platform::Observation> add(std::function<void(const Value&)> callback) {
    auto entry = std::make_shared<Entry>(Entry{std::move(callback), true});
    entries_.push_back(entry);
    return std::make_unique<EntryObservation>(entry);
  }

  // Calls every live observer with `value`. Observers added or ended meanwhile count from the
  // next notification on.
  void notify(const Value& value) {
    std::erase_if(entries_, [](const auto& entry) { return !entry->live; });
    const std::vector<std::shared_ptr<Entry>> snapshot = entries_;
    for (const auto& entry : snapshot) {
      if (entry->live) {
        entry->callback(value);
      }
    }
  }

 private:
  struct Entry {
    std::function<void(const Value&)> callback;
    bool live = true;
  };

  class EntryObservation final : public platform::Observation {
   public:
    explicit EntryObservation(std::weak_ptr<Entry> entry) : entry_(std::move(entry)) {}
    ~EntryObservation() override { invalidate(); }
    EntryObservation(const EntryObservation&) = delete;
    EntryObservation& operator=(const EntryObservation&) = delete;
    void invalidate() override {
      if (const std::shared_ptr<Entry> entry = entry_.lock()) {
        entry->live = false;
      }
    }

   private:
    std::weak_ptr<Entry> entry_;
  };

  std::vector<std::shared_ptr<Entry>> entries_;
};

}  // namespace vemba::linux_platform
