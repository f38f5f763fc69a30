#include <cstdio>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "cli/Arguments.h"
#include "cli/Command.h"
#include "core/Version.h"

namespace {

using halcyra::cli::Command;
using halcyra::cli::commands;

void printHelp() {
  std::cout << "Usage: halcyra <command> [options]\n"
               "       halcyra --help | --version\n\n"
               "Keeps this machine clean: each command is one tool.\n\nCommands:\n";
  for (const Command& command : commands()) {
    std::string name(command.name);
    name.resize(12, ' ');
    std::cout << "  " << name << command.summary << '\n';
  }
  std::cout << "\nRun 'halcyra <command> --help' for the options of a command.\n";
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
    std::cout << "halcyra " << halcyra::core::kVersion << '\n';
    return 0;
  }
  for (const Command& command : commands()) {
    if (command.name != first) continue;
    std::vector<std::string> rest(args.begin() + 1, args.end());
    for (const auto& arg : rest) {
      if (arg == "--") break;
      if (arg == "--help" || arg == "-h") {
        std::cout << command.usage;
        return 0;
      }
    }
    try {
      return command.run(rest);
    } catch (const halcyra::cli::UsageError& error) {
      std::cerr << "halcyra " << command.name << ": " << error.what() << "\n\n" << command.usage;
      return 2;
    } catch (const halcyra::cli::CommandError& error) {
      std::cerr << "halcyra " << command.name << ": " << error.what() << '\n';
      return 1;
    } catch (const std::exception& error) {
      std::cerr << "halcyra " << command.name << ": " << error.what() << '\n';
      return 1;
    }
  }
  std::cerr << "halcyra: unknown command '" << first << "'\n\n";
  printHelp();
  return 2;
}
