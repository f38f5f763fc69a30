#include "cli/Arguments.h"

#include <algorithm>
#include <charconv>

namespace halcyra::cli {

Arguments::Arguments(std::vector<std::string> flags, std::vector<std::string> valueOptions)
    : flags_(std::move(flags)), valueOptions_(std::move(valueOptions)) {}

void Arguments::parse(const std::vector<std::string>& args) {
  bool optionsEnded = false;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    if (optionsEnded || arg.size() < 2 || arg[0] != '-' ) {
      positional_.push_back(arg);
      continue;
    }
    if (arg == "--") {
      optionsEnded = true;
      continue;
    }
    std::string name = arg;
    std::optional<std::string> inlineValue;
    if (const auto eq = arg.find('='); eq != std::string::npos && arg.starts_with("--")) {
      name = arg.substr(0, eq);
      inlineValue = arg.substr(eq + 1);
    }
    if (std::find(flags_.begin(), flags_.end(), name) != flags_.end()) {
      if (inlineValue) throw UsageError("option " + name + " takes no value");
      values_[name].emplace_back();
      continue;
    }
    if (std::find(valueOptions_.begin(), valueOptions_.end(), name) != valueOptions_.end()) {
      if (inlineValue) {
        values_[name].push_back(*inlineValue);
      } else {
        if (i + 1 >= args.size()) throw UsageError("option " + name + " needs a value");
        values_[name].push_back(args[++i]);
      }
      continue;
    }
    throw UsageError("unknown option " + arg);
  }
}

bool Arguments::has(const std::string& flag) const { return values_.contains(flag); }

std::optional<std::string> Arguments::value(const std::string& option) const {
  const auto it = values_.find(option);
  if (it == values_.end() || it->second.empty()) return std::nullopt;
  return it->second.back();
}

std::vector<std::string> Arguments::values(const std::string& option) const {
  const auto it = values_.find(option);
  return it == values_.end() ? std::vector<std::string>{} : it->second;
}

long long Arguments::integer(const std::string& option, long long fallback, long long min, long long max) const {
  const auto text = value(option);
  if (!text) return fallback;
  long long number = 0;
  const auto [ptr, error] = std::from_chars(text->data(), text->data() + text->size(), number);
  if (error != std::errc() || ptr != text->data() + text->size() || number < min || number > max) {
    throw UsageError(option + " takes a whole number from " + std::to_string(min) + " to " + std::to_string(max));
  }
  return number;
}

} // namespace halcyra::cli
