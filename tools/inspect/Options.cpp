#include "Options.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>

namespace vemba::inspect {

std::optional<Options> Options::parse(const Args& args, const std::set<std::string>& valued,
                                      const std::set<std::string>& flags) {
  Options options;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    const bool isValued = valued.count(arg) != 0;
    if (!isValued && flags.count(arg) == 0) {
      std::fprintf(stderr, "vemba-inspect: unknown option '%s'\n", arg.c_str());
      return std::nullopt;
    }
    if (options.values_.count(arg) != 0 || options.flags_.count(arg) != 0) {
      std::fprintf(stderr, "vemba-inspect: option '%s' given twice\n", arg.c_str());
      return std::nullopt;
    }
    if (!isValued) {
      options.flags_.insert(arg);
      continue;
    }
    if (i + 1 >= args.size()) {
      std::fprintf(stderr, "vemba-inspect: option '%s' needs a value\n", arg.c_str());
      return std::nullopt;
    }
    options.values_[arg] = args[++i];
  }
  return options;
}

std::optional<std::string> Options::value(const std::string& name) const {
  const auto it = values_.find(name);
  return it == values_.end() ? std::nullopt : std::optional(it->second);
}

std::optional<double> Options::number(const std::string& name, bool& ok) const {
  const std::optional<std::string> text = value(name);
  if (!text) {
    return std::nullopt;
  }
  // A point is the decimal separator whatever the locale GTK sets from the environment.
  double parsed = 0;
  const char* end = text->data() + text->size();
  const auto [stop, failure] = std::from_chars(text->data(), end, parsed);
  if (text->empty() || failure != std::errc() || stop != end) {
    std::fprintf(stderr, "vemba-inspect: %s expects a number, got '%s'\n", name.c_str(),
                 text->c_str());
    ok = false;
    return std::nullopt;
  }
  return parsed;
}

void reportTimeout(const char* what, double seconds) {
  char text[32];
  const auto written = std::to_chars(text, text + sizeof text, seconds);
  std::fprintf(stderr, "vemba-inspect: %s within %.*s s\n", what,
               static_cast<int>(written.ptr - text), text);
}

bool timesFit(bool ok, double timeout, std::initializer_list<double> delays) {
  if (!ok) {
    return false;
  }
  bool fit = timeout > 0;
  for (const double delay : delays) {
    fit = fit && delay >= 0;
  }
  if (!fit) {
    std::fputs("vemba-inspect: times must not be negative (and the time-out above zero)\n", stderr);
  }
  return fit;
}

void printLine(const std::string& line) {
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fputc('\n', stdout);
  std::fflush(stdout);
}

void printLine(const nlohmann::ordered_json& line) {
  printLine(line.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
}

}  // namespace vemba::inspect
