// A small command-line option reader for the inspector: "--name value" options and "--flag"
// switches, each allowed once; anything else is an error with a readable message.
#pragma once

#include <initializer_list>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>

#include "Commands.h"

namespace vemba::inspect {

class Options {
 public:
  // `valued` names take a value, `flags` do not. Returns absent (after printing why to stderr)
  // when the arguments do not fit.
  static std::optional<Options> parse(const Args& args, const std::set<std::string>& valued,
                                      const std::set<std::string>& flags);

  std::optional<std::string> value(const std::string& name) const;
  bool flag(const std::string& name) const { return flags_.count(name) != 0; }
  // The value of `name` as a number; absent when missing; prints and returns nullopt on junk.
  std::optional<double> number(const std::string& name, bool& ok) const;

 private:
  std::map<std::string, std::string> values_;
  std::set<std::string> flags_;
};

// Prints "vemba-inspect: <what> within <seconds> s" on standard error, the number with a point
// whatever the locale.
void reportTimeout(const char* what, double seconds);

// The check shared by the commands that wait: `ok` (the numbers parsed), a time-out above zero
// and no negative delay. Prints why when they do not fit.
bool timesFit(bool ok, double timeout, std::initializer_list<double> delays);

// Prints `line` to standard output with a newline and flushes, so a reader sees it at once.
void printLine(const std::string& line);
// The same for one JSON value on one line (invalid UTF-8 replaced, never throws).
void printLine(const nlohmann::ordered_json& line);

}  // namespace vemba::inspect
