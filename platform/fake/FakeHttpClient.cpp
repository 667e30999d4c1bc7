#include "FakeHttpClient.h"

#include <strings.h>

#include <stdexcept>
#include <utility>

namespace vemba::fake {

void FakeHttpClient::dataTask(platform::HttpRequest request, platform::HttpCompletion completion) {
  tasks_.push_back(Task{std::move(request), std::move(completion), false});
  if (onTask) {
    onTask(tasks_.size() - 1);
  }
}

const platform::HttpRequest& FakeHttpClient::request(std::size_t index) const {
  return tasks_.at(index).request;
}

std::optional<std::string> FakeHttpClient::header(std::size_t index,
                                                  const std::string& name) const {
  for (const auto& [key, value] : request(index).headers) {
    if (strcasecmp(key.c_str(), name.c_str()) == 0) {
      return value;
    }
  }
  return std::nullopt;
}

FakeHttpClient::Task& FakeHttpClient::unanswered(std::size_t index) {
  Task& task = tasks_.at(index);
  if (task.answered) {
    throw std::logic_error("task answered twice");
  }
  task.answered = true;
  return task;
}

void FakeHttpClient::respond(std::size_t index, long status, std::optional<std::string> body,
                             platform::HttpHeaders headers) {
  Task& task = unanswered(index);
  if (task.completion) {
    // Move the completion out first: it may start new tasks and grow tasks_.
    platform::HttpCompletion completion = std::move(task.completion);
    completion(platform::HttpResponse{status, std::move(headers), std::move(body)});
  }
}

void FakeHttpClient::fail(std::size_t index, int urlErrorCode) {
  Task& task = unanswered(index);
  if (task.completion) {
    platform::HttpCompletion completion = std::move(task.completion);
    completion(platform::TransportError{urlErrorCode, task.request.url});
  }
}

void FakeHttpClient::respondLast(long status, std::optional<std::string> body) {
  respond(tasks_.size() - 1, status, std::move(body));
}

}  // namespace vemba::fake
