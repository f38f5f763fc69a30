#pragma once

#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace halcyra::cli {

/// A mistake in the command line: the command prints it with its usage and exits with 2.
class UsageError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// A failure the user can act on (a missing folder, a refused input): printed, exit 1.
class CommandError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// A small parser for "--flag", "--option VALUE", "--option=VALUE" and positional arguments.
/// "--" ends the options.
class Arguments {
public:
  Arguments(std::vector<std::string> flags, std::vector<std::string> valueOptions);

  /// Throws UsageError on an unknown option or a missing value.
  void parse(const std::vector<std::string>& args);

  bool has(const std::string& flag) const;
  std::optional<std::string> value(const std::string& option) const;
  /// Every value of a repeatable option, in order.
  std::vector<std::string> values(const std::string& option) const;
  const std::vector<std::string>& positional() const { return positional_; }

  /// The value as a whole number within [min, max], or `fallback` when absent.
  long long integer(const std::string& option, long long fallback, long long min, long long max) const;

private:
  std::vector<std::string> flags_;
  std::vector<std::string> valueOptions_;
  std::map<std::string, std::vector<std::string>> values_;
  std::vector<std::string> positional_;
};

} // namespace halcyra::cli
