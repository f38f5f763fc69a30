#include <cstdio>
#include <exception>

#include <fmt/format.h>
#include <string>
#include <vector>

#include "cli/Arguments.h"
#include "cli/Command.h"
#include "core/Version.h"

namespace {

using halcyra::cli::Command;
using halcyra::cli::commands;

void printHelp() {
  std::fputs("Usage: halcyra <command> [options]\n"
             "       halcyra --help | --version\n\n"
             "Keeps this machine clean: each command is one tool.\n\nCommands:\n",
             stdout);
  for (const Command& command : commands()) {
    fmt::print(stdout, "  {:<12}{}\n", command.name, command.summary);
  }
  std::fputs("\nRun 'halcyra <command> --help' for the options of a command.\n", stdout);
}

} // namespace

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  if (args.empty()) {
    printHelp();
    return 2;
  }
  const std::string& first = args.front();
  if (first == "--help" || first == "-h" || first == "help") {
    printHelp();
    return 0;
  }
  if (first == "--version" || first == "-V") {
    fmt::print(stdout, "halcyra {}\n", halcyra::core::kVersion);
    return 0;
  }
  for (const Command& command : commands()) {
    if (command.name != first) continue;
    std::vector<std::string> rest(args.begin() + 1, args.end());
    for (const auto& arg : rest) {
      if (arg == "--") break;
      if (arg == "--help" || arg == "-h") {
        fmt::print(stdout, "{}", command.usage);
        return 0;
      }
    }
    try {
      return command.run(rest);
    } catch (const halcyra::cli::UsageError& error) {
      std::fflush(stdout);
      fmt::print(stderr, "halcyra {}: {}\n\n{}", command.name, error.what(), command.usage);
      return 2;
    } catch (const halcyra::cli::CommandError& error) {
      std::fflush(stdout);
      fmt::print(stderr, "halcyra {}: {}\n", command.name, error.what());
      return 1;
    } catch (const std::exception& error) {
      std::fflush(stdout);
      fmt::print(stderr, "halcyra {}: {}\n", command.name, error.what());
      return 1;
    }
  }
  fmt::print(stderr, "halcyra: unknown command '{}'\n\n", first);
  printHelp();
  return 2;
}
