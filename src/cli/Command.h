#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace halcyra::cli {

/// One subcommand of `halcyra`: one tool.
struct Command {
  std::string_view name;
  std::string_view summary; ///< one line for `halcyra --help`
  std::string_view usage;   ///< the whole text of `halcyra <name> --help`
  /// Runs with the arguments after the name. Returns the exit status; throws UsageError
  /// (exit 2) or CommandError (exit 1).
  int (*run)(const std::vector<std::string>& args);
};

/// Every subcommand, in the order `halcyra --help` lists them.
std::vector<Command> commands();

/// Adds a command to the list; used through HALCYRA_REGISTER_COMMAND in each command's file.
struct CommandRegistration {
  explicit CommandRegistration(const Command& command);
};

} // namespace halcyra::cli

/// Registers a command defined in the same file. Command files are compiled into the
/// executable itself, so the registration always runs.
#define HALCYRA_REGISTER_COMMAND(command) \
  static const ::halcyra::cli::CommandRegistration command##Registration{command}
