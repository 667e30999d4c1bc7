// The processes below this one, read from /proc: used to check that no WebKit web process
// outlives the web view it served, and to kill one as a crash would. Linux only; any thread.
#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <csignal>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace vemba::tests {

// The kernel's name of WebKit's web process ("WebKitWebProcess", cut to 15 characters).
inline constexpr const char* kWebProcessComm = "WebKitWebProces";

struct ProcessEntry {
  pid_t parent = 0;
  std::string comm;
  char state = '?';
};

// Every process's parent, name and state; processes that vanish while being read are skipped.
inline std::map<pid_t, ProcessEntry> readProcessTable() {
  std::map<pid_t, ProcessEntry> table;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator("/proc", error)) {
    const std::string name = entry.path().filename().string();
    if (name.empty() || name.find_first_not_of("0123456789") != std::string::npos) {
      continue;
    }
    std::ifstream in(entry.path() / "stat");
    std::string line;
    if (!std::getline(in, line)) {
      continue;
    }
    // "pid (comm) state ppid ...": comm may hold spaces and parentheses, so cut at the last ')'.
    const std::size_t open = line.find('(');
    const std::size_t close = line.rfind(')');
    if (open == std::string::npos || close == std::string::npos || close < open) {
      continue;
    }
    ProcessEntry process;
    process.comm = line.substr(open + 1, close - open - 1);
    std::istringstream rest(line.substr(close + 1));
    rest >> process.state >> process.parent;
    table[static_cast<pid_t>(std::stoi(name))] = process;
  }
  return table;
}

// The WebKit web processes among the descendants of `root` (children, grandchildren through
// WebKit's sandbox launcher, ...), zombies included: a web process nobody reaped is left behind
// too.
inline std::vector<pid_t> webProcessIdsOf(pid_t root) {
  const std::map<pid_t, ProcessEntry> table = readProcessTable();
  std::set<pid_t> below{root};
  // Parents may have larger PIDs than their children, so sweep until nothing new is found.
  for (bool grew = true; grew;) {
    grew = false;
    for (const auto& [pid, process] : table) {
      if (below.count(process.parent) != 0 && below.insert(pid).second) {
        grew = true;
      }
    }
  }
  std::vector<pid_t> found;
  for (const pid_t pid : below) {
    const auto entry = table.find(pid);
    if (entry != table.end() && entry->second.comm == kWebProcessComm) {
      found.push_back(pid);
    }
  }
  return found;
}

inline std::size_t webProcessesOf(pid_t root) {
  return webProcessIdsOf(root).size();
}

// Sends SIGKILL to each WebKit web process below `root` that is still running (never to any
// other process); the ones it was sent to.
inline std::vector<pid_t> killWebProcessesOf(pid_t root) {
  const std::map<pid_t, ProcessEntry> table = readProcessTable();
  std::vector<pid_t> killed;
  for (const pid_t pid : webProcessIdsOf(root)) {
    const auto entry = table.find(pid);
    if (entry != table.end() && entry->second.state != 'Z' && kill(pid, SIGKILL) == 0) {
      killed.push_back(pid);
    }
  }
  return killed;
}

}  // namespace vemba::tests
