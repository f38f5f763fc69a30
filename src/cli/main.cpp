#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <poll.h>
#include <system_error>
#include <unistd.h>

#include <fmt/format.h>
#include <string>
#include <vector>

#include "cli/Arguments.h"
#include "cli/Command.h"
#include "cli/Terminal.h"
#include "core/Version.h"

namespace {

using halcyra::cli::Command;
using halcyra::cli::commands;
using halcyra::cli::escapedName;

// Whether standard output is a pipe or socket whose reader has gone.
bool readerLeft(int writeError) {
  if (writeError == EPIPE) return true;
  pollfd descriptor{STDOUT_FILENO, POLLOUT, 0};
  return ::poll(&descriptor, 1, 0) == 1 && (descriptor.revents & (POLLERR | POLLHUP)) != 0;
}

// A reader that left (`halcyra scan | head -1`) ends the process the way it ends any plain
// tool, by SIGPIPE: no message, and a status no script takes for success. It happens only here,
// after the command has finished and cleaned up after itself, because SIGPIPE is ignored while
// it runs (a shred killed in the middle of its fill would leave the fill files behind).
[[noreturn]] void endForReaderThatLeft() {
  std::signal(SIGPIPE, SIG_DFL);
  std::raise(SIGPIPE);
  std::_Exit(128 + SIGPIPE);
}

// Every byte of the output reached its reader, or the run is a failure: a full disk or a closed
// pipe must not look like a result that is complete.
int withOutputChecked(std::string_view command, int status, int writeError = 0) {
  halcyra::cli::flushStandardOutput();
  if (writeError == 0) writeError = halcyra::cli::standardOutputError();
  if (!std::ferror(stdout) && writeError == 0) return status;
  if (readerLeft(writeError)) endForReaderThatLeft();
  const std::string_view space = command.empty() ? "" : " ";
  if (writeError != 0) {
    fmt::print(stderr, "halcyra{}{}: could not write the output: {}\n", space, command, std::strerror(writeError));
  } else {
    fmt::print(stderr, "halcyra{}{}: could not write the output\n", space, command);
  }
  return 1;
}

int writeErrorOf(const std::system_error& error) {
  return error.code().category() == std::generic_category() || error.code().category() == std::system_category()
             ? error.code().value()
             : 0;
}

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
  std::signal(SIGPIPE, SIG_IGN);
  std::vector<std::string> args(argv + 1, argv + argc);
  if (args.empty()) {
    printHelp();
    return withOutputChecked("", 2);
  }
  const std::string& first = args.front();
  if (first == "--help" || first == "-h" || first == "help") {
    printHelp();
    return withOutputChecked("", 0);
  }
  if (first == "--version" || first == "-V") {
    fmt::print(stdout, "halcyra {}\n", halcyra::core::kVersion);
    return withOutputChecked("", 0);
  }
  for (const Command& command : commands()) {
    if (command.name != first) continue;
    std::vector<std::string> rest(args.begin() + 1, args.end());
    for (const auto& arg : rest) {
      if (arg == "--") break;
      if (arg == "--help" || arg == "-h") {
        fmt::print(stdout, "{}", command.usage);
        return withOutputChecked(command.name, 0);
      }
    }
    // Messages may quote file names and arguments: escaped like every name in readable output.
    try {
      return withOutputChecked(command.name, command.run(rest));
    } catch (const halcyra::cli::UsageError& error) {
      halcyra::cli::flushStandardOutput();
      fmt::print(stderr, "halcyra {}: {}\n\n{}", command.name, escapedName(error.what()), command.usage);
      return withOutputChecked(command.name, 2);
    } catch (const halcyra::cli::CommandError& error) {
      halcyra::cli::flushStandardOutput();
      fmt::print(stderr, "halcyra {}: {}\n", command.name, escapedName(error.what()));
      return withOutputChecked(command.name, 1);
    } catch (const std::system_error& error) {
      // fmt reports a failed write to standard output this way.
      if (const int writeError = writeErrorOf(error); writeError != 0 && std::ferror(stdout)) {
        return withOutputChecked(command.name, 1, writeError);
      }
      fmt::print(stderr, "halcyra {}: {}\n", command.name, escapedName(error.what()));
      return withOutputChecked(command.name, 1);
    } catch (const std::exception& error) {
      halcyra::cli::flushStandardOutput();
      fmt::print(stderr, "halcyra {}: {}\n", command.name, escapedName(error.what()));
      return withOutputChecked(command.name, 1);
    }
  }
  fmt::print(stderr, "halcyra: unknown command '{}'\n\n", escapedName(first));
  printHelp();
  return withOutputChecked("", 2);
}
