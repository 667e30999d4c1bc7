// A scripted HTTP client: records every data task and lets the test answer it, fail it or
// leave it unanswered. Completions run on the test's thread when the test answers.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/HttpClient.h"

namespace vemba::fake {

class FakeHttpClient final : public platform::HttpClient {
 public:
  struct Task {
    platform::HttpRequest request;
    platform::HttpCompletion completion;
    bool answered = false;
  };

  void dataTask(platform::HttpRequest request, platform::HttpCompletion completion) override;

  std::size_t taskCount() const { return tasks_.size(); }
  const platform::HttpRequest& request(std::size_t index) const;
  const Task& task(std::size_t index) const { return tasks_.at(index); }
  // The value of `name` in the request's headers (case-insensitive), absent when not sent.
  std::optional<std::string> header(std::size_t index, const std::string& name) const;

  // Answers task `index` with a response; `body` absent means "no body object".
  void respond(std::size_t index, long status, std::optional<std::string> body,
               platform::HttpHeaders headers = {});
  // Fails task `index` with a transport error of the given URL-loading code.
  void fail(std::size_t index, int urlErrorCode);
  // Answers the most recent task.
  void respondLast(long status, std::optional<std::string> body);

  // Called with each new task's index once it is recorded (empty: nobody is told).
  std::function<void(std::size_t index)> onTask;

 private:
  Task& unanswered(std::size_t index);
  std::vector<Task> tasks_;
};

}  // namespace vemba::fake
