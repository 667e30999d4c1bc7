// Runs vemba-inspect as a child process for an integration test and collects what it prints:
// one JSON value per standard-output line. Each run is its own process, so nothing a web view
// stores survives into the next test. The child inherits this process's environment (DISPLAY,
// SSL_CERT_FILE). Used from one thread.
#pragma once

#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace vemba::tests {

struct InspectorRun {
  int exitCode = -1;  // -1 when it had to be killed
  std::vector<nlohmann::json> lines;
  std::string errors;  // everything it wrote to standard error (its log lines)

  // The lines that have `key` equal to `value` ("callback", "checkoutDidComplete").
  std::vector<nlohmann::json> where(const std::string& key, const std::string& value) const {
    std::vector<nlohmann::json> out;
    for (const nlohmann::json& line : lines) {
      if (line.contains(key) && line[key] == value) {
        out.push_back(line);
      }
    }
    return out;
  }
  // A compact trace for assertions: "callback" names, "screen:state" and "opened".
  std::vector<std::string> trace() const {
    std::vector<std::string> out;
    for (const nlohmann::json& line : lines) {
      if (line.contains("callback")) {
        if (line["callback"] == "adDidRecordImpression") {
          continue;  // one per show: the tests that look for it count it
        }
        out.push_back(line["callback"].get<std::string>());
      } else if (line.contains("screen")) {
        out.push_back("screen:" + line["state"].get<std::string>());
      } else if (line.contains("opened")) {
        out.push_back("opened");
      }
    }
    return out;
  }
};

// Runs `binary` with `args`; kills it (by its PID) when it has not exited after `limit`.
inline InspectorRun runInspector(const std::string& binary, const std::vector<std::string>& args,
                                 std::chrono::seconds limit) {
  InspectorRun run;
  int out[2];
  if (pipe(out) != 0) {
    return run;
  }
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
  posix_spawn_file_actions_addclose(&actions, out[0]);
  const auto closeFile = [](std::FILE* file) { std::fclose(file); };
  const std::unique_ptr<std::FILE, decltype(closeFile)> errors(std::tmpfile());  // gone when closed
  if (errors != nullptr) {
    posix_spawn_file_actions_adddup2(&actions, fileno(errors.get()), STDERR_FILENO);
  }
  std::vector<std::string> argvStrings{binary};
  argvStrings.insert(argvStrings.end(), args.begin(), args.end());
  std::vector<char*> argv;
  for (std::string& arg : argvStrings) {
    argv.push_back(arg.data());
  }
  argv.push_back(nullptr);
  pid_t pid = -1;
  const int spawned = posix_spawn(&pid, binary.c_str(), &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(out[1]);
  if (spawned != 0) {
    close(out[0]);
    return run;
  }
  const auto deadline = std::chrono::steady_clock::now() + limit;
  std::string buffer;
  bool killed = false;
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0) {
      kill(pid, SIGKILL);
      killed = true;
      break;
    }
    pollfd fd{out[0], POLLIN, 0};
    if (poll(&fd, 1, static_cast<int>(left.count())) <= 0) {
      continue;
    }
    char chunk[65536];
    const ssize_t n = read(out[0], chunk, sizeof chunk);
    if (n <= 0) {
      break;  // the child closed its output: it has exited
    }
    // Only the new bytes are searched for line ends: a line of many megabytes (a huge URL the ad
    // opened) arrives in thousands of reads, and the child blocks while the pipe is full.
    std::size_t searched = buffer.size();
    buffer.append(chunk, static_cast<std::size_t>(n));
    std::size_t start = 0;
    for (std::size_t end = buffer.find('\n', searched); end != std::string::npos;
         end = buffer.find('\n', start)) {
      nlohmann::json line =
          nlohmann::json::parse(buffer.begin() + static_cast<std::ptrdiff_t>(start),
                                buffer.begin() + static_cast<std::ptrdiff_t>(end), nullptr, false);
      start = end + 1;
      if (!line.is_discarded()) {
        run.lines.push_back(std::move(line));
      }
    }
    buffer.erase(0, start);
  }
  close(out[0]);
  int status = 0;
  waitpid(pid, &status, 0);
  run.exitCode = !killed && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  if (errors != nullptr) {
    std::rewind(errors.get());
    char chunk[4096];
    for (std::size_t n; (n = std::fread(chunk, 1, sizeof chunk, errors.get())) > 0;) {
      run.errors.append(chunk, n);
    }
  }
  return run;
}

}  // namespace vemba::tests
