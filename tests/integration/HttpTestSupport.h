// Helpers for driving an HttpClient synchronously from a test thread.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <thread>
#include <variant>

#include "platform/HttpClient.h"

namespace vemba::tests {

struct Outcome {
  platform::HttpResult result;
  std::thread::id thread;
};

// Runs one task and waits for its completion (failing the test after `limit`).
inline Outcome fetch(platform::HttpClient& client, platform::HttpRequest request,
                     std::chrono::seconds limit = std::chrono::seconds(30)) {
  auto promise = std::make_shared<std::promise<Outcome>>();
  std::future<Outcome> future = promise->get_future();
  client.dataTask(std::move(request), [promise](platform::HttpResult result) {
    promise->set_value(Outcome{std::move(result), std::this_thread::get_id()});
  });
  if (future.wait_for(limit) != std::future_status::ready) {
    ADD_FAILURE() << "no completion within " << limit.count() << " s";
    return Outcome{platform::TransportError{}, {}};
  }
  return future.get();
}

inline platform::HttpRequest requestTo(std::string url, std::string method = "GET",
                                       std::optional<std::string> body = std::nullopt) {
  platform::HttpRequest request;
  request.method = std::move(method);
  request.url = std::move(url);
  request.body = std::move(body);
  return request;
}

inline platform::HttpRequest bidRequest(const std::string& origin, const std::string& requestId,
                                        const std::string& tagid, bool rewarded = false) {
  nlohmann::json imp = {{"id", "1"}, {"tagid", tagid}};
  imp[rewarded ? "rewarded" : "interstitial"] = nlohmann::json::object();
  const nlohmann::json body = {{"id", requestId}, {"imp", {imp}}};
  platform::HttpRequest request = requestTo(origin + "/bid", "POST", body.dump());
  request.headers = {{"Content-Type", "application/json"}};
  return request;
}

inline const platform::HttpResponse* response(const Outcome& outcome) {
  return std::get_if<platform::HttpResponse>(&outcome.result);
}

inline const platform::TransportError* transportError(const Outcome& outcome) {
  return std::get_if<platform::TransportError>(&outcome.result);
}

}  // namespace vemba::tests
