#include "LocalExchange.h"

#include <curl/curl.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <strings.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

extern char** environ;

namespace vemba::exchange {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr auto kPollInterval = std::chrono::milliseconds(20);
constexpr auto kStopGrace = std::chrono::seconds(5);

std::string makeStateDir() {
  const char* base = std::getenv("TMPDIR");
  std::string pattern =
      std::string(base != nullptr && *base != '\0' ? base : "/tmp") + "/vemba-exchange-XXXXXX";
  if (mkdtemp(pattern.data()) == nullptr) {
    throw std::runtime_error("mkdtemp failed for the exchange's state directory");
  }
  return pattern;
}

std::string readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::optional<int> exitStatusIfExited(pid_t pid) {
  int status = 0;
  const pid_t reaped = waitpid(pid, &status, WNOHANG);
  if (reaped == pid) {
    return status;
  }
  return std::nullopt;
}

std::size_t appendToString(char* data, std::size_t size, std::size_t count, void* user) {
  static_cast<std::string*>(user)->append(data, size * count);
  return size * count;
}

}  // namespace

LocalExchange::LocalExchange() : LocalExchange(Options{}) {}

LocalExchange::LocalExchange(Options options) : stateDir_(makeStateDir()) {
  caFile_ = stateDir_ + "/ca.pem";
  const std::string readyFile = stateDir_ + "/ready";
  const std::string outputFile = stateDir_ + "/exchange.out";

  std::vector<std::string> args = {VEMBA_PYTHON3,    VEMBA_EXCHANGE_SCRIPT,
                                   "--port",         std::to_string(options.port),
                                   "--state-dir",    stateDir_,
                                   "--ready-file",   readyFile,
                                   "--lifetime",     std::to_string(options.lifetime.count()),
                                   "--idle-timeout", std::to_string(options.idleTimeout.count()),
                                   "--parent-pid",   std::to_string(getpid())};
  std::vector<char*> argv;
  for (std::string& arg : args) {
    argv.push_back(arg.data());
  }
  argv.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, outputFile.c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
  const int spawned = posix_spawn(&pid_, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (spawned != 0) {
    pid_ = -1;
    fs::remove_all(stateDir_);
    throw std::runtime_error("cannot start " + args[0] + ": " + std::strerror(spawned));
  }

  const auto deadline = Clock::now() + options.startTimeout;
  for (;;) {
    const std::string ready = readFile(readyFile);
    if (!ready.empty() && ready.back() == '\n') {
      port_ = std::stoi(ready);
      return;
    }
    if (exitStatusIfExited(pid_)) {
      pid_ = -1;
      const std::string output = readFile(outputFile);
      fs::remove_all(stateDir_);
      throw std::runtime_error("the local exchange exited at start: " + output);
    }
    if (Clock::now() >= deadline) {
      stop();
      fs::remove_all(stateDir_);
      throw std::runtime_error("the local exchange did not start in time");
    }
    std::this_thread::sleep_for(kPollInterval);
  }
}

LocalExchange::~LocalExchange() {
  stop();
  if (std::getenv("VEMBA_KEEP_EXCHANGE_STATE") == nullptr) {
    std::error_code ignored;
    fs::remove_all(stateDir_, ignored);
  }
}

void LocalExchange::stop() {
  if (pid_ <= 0) {
    return;
  }
  kill(pid_, SIGTERM);
  const auto deadline = Clock::now() + kStopGrace;
  while (!exitStatusIfExited(pid_)) {
    if (Clock::now() >= deadline) {
      kill(pid_, SIGKILL);
      waitpid(pid_, nullptr, 0);
      break;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  pid_ = -1;
}

std::string LocalExchange::origin() const {
  return "https://127.0.0.1:" + std::to_string(port_);
}

std::vector<nlohmann::json> LocalExchange::log(std::string_view kind) const {
  std::vector<nlohmann::json> entries;
  std::istringstream lines(readFile(stateDir_ + "/requests.jsonl"));
  std::string line;
  while (std::getline(lines, line)) {
    if (lines.eof()) {
      break;  // a line still being written has no newline yet
    }
    nlohmann::json entry = nlohmann::json::parse(line);
    if (entry.value("kind", "") == kind) {
      entries.push_back(std::move(entry));
    }
  }
  return entries;
}

std::vector<nlohmann::json> LocalExchange::waitForLog(std::string_view kind, std::size_t count,
                                                      std::chrono::milliseconds timeout) const {
  const auto deadline = Clock::now() + timeout;
  for (;;) {
    std::vector<nlohmann::json> entries = log(kind);
    if (entries.size() >= count || Clock::now() >= deadline) {
      return entries;
    }
    std::this_thread::sleep_for(kPollInterval);
  }
}

void LocalExchange::setBehaviour(const std::string& adUnit, const std::string& behaviour,
                                 const nlohmann::json& parameters) {
  nlohmann::json command = parameters.is_object() ? parameters : nlohmann::json::object();
  command["adUnit"] = adUnit;
  command["behaviour"] = behaviour;
  control(command);
}

void LocalExchange::clearLog() {
  control({{"clearLog", true}});
}

nlohmann::json LocalExchange::control(const nlohmann::json& command) {
  CURL* easy = curl_easy_init();
  if (easy == nullptr) {
    throw std::runtime_error("curl_easy_init failed");
  }
  const std::string url = origin() + "/_control";
  const std::string body = command.dump();
  std::string answer;
  curl_slist* headers = curl_slist_append(nullptr, "Content-Type: application/json");
  curl_easy_setopt(easy, CURLOPT_URL, url.c_str());
  curl_easy_setopt(easy, CURLOPT_NOPROXY, "*");
  curl_easy_setopt(easy, CURLOPT_CAINFO, caFile_.c_str());
  curl_easy_setopt(easy, CURLOPT_HTTPHEADER, headers);
  curl_easy_setopt(easy, CURLOPT_POSTFIELDS, body.c_str());
  curl_easy_setopt(easy, CURLOPT_TIMEOUT_MS, 10'000L);
  curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &appendToString);
  curl_easy_setopt(easy, CURLOPT_WRITEDATA, static_cast<void*>(&answer));
  const CURLcode result = curl_easy_perform(easy);
  long status = 0;
  curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
  curl_slist_free_all(headers);
  curl_easy_cleanup(easy);
  if (result != CURLE_OK || status != 200) {
    throw std::runtime_error("exchange control " + body + " failed: " + curl_easy_strerror(result) +
                             " " + answer);
  }
  return nlohmann::json::parse(answer);
}

std::optional<std::string> LocalExchange::header(const nlohmann::json& entry,
                                                 std::string_view name) {
  for (const auto& field : entry.at("headers")) {
    const std::string key = field.at(0).get<std::string>();
    if (key.size() == name.size() && strncasecmp(key.data(), name.data(), name.size()) == 0) {
      return field.at(1).get<std::string>();
    }
  }
  return std::nullopt;
}

}  // namespace vemba::exchange
