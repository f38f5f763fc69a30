#include "platform/ProcessRunner.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/Utf8.h"

extern char** environ;

namespace halcyra::platform {
namespace {

using Clock = std::chrono::steady_clock;

struct Pipe {
  int read = -1;
  int write = -1;
  bool open() {
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0) return false;
    read = fds[0];
    write = fds[1];
    return true;
  }
  void closeRead() { if (read >= 0) { ::close(read); read = -1; } }
  void closeWrite() { if (write >= 0) { ::close(write); write = -1; } }
  ~Pipe() { closeRead(); closeWrite(); }
};

// Reads whatever is ready on the open descriptors; returns false when both reached EOF.
bool drain(Pipe& out, Pipe& err, std::string& outText, std::string& errText, int waitMs) {
  std::array<pollfd, 2> fds{};
  nfds_t count = 0;
  if (out.read >= 0) fds[count++] = pollfd{out.read, POLLIN, 0};
  if (err.read >= 0) fds[count++] = pollfd{err.read, POLLIN, 0};
  if (count == 0) return false;
  const int ready = ::poll(fds.data(), count, waitMs);
  if (ready < 0 && errno != EINTR) return false;
  if (ready <= 0) return true;
  std::array<char, 65536> buffer{};
  for (nfds_t i = 0; i < count; ++i) {
    if ((fds[i].revents & (POLLIN | POLLHUP | POLLERR)) == 0) continue;
    const ssize_t n = ::read(fds[i].fd, buffer.data(), buffer.size());
    Pipe& pipe = fds[i].fd == out.read ? out : err;
    std::string& text = fds[i].fd == out.read ? outText : errText;
    if (n > 0) text.append(buffer.data(), static_cast<std::size_t>(n));
    else if (n == 0 || (errno != EINTR && errno != EAGAIN)) pipe.closeRead();
  }
  return out.read >= 0 || err.read >= 0;
}

int remainingMs(std::optional<Clock::time_point> deadline) {
  if (!deadline) return 200;
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(*deadline - Clock::now()).count();
  return left <= 0 ? 0 : static_cast<int>(std::min<long long>(left, 200));
}

} // namespace

std::optional<std::string> ProcessRunner::outputText(const std::string& executable,
                                                     const std::vector<std::string>& arguments,
                                                     std::chrono::milliseconds timeLimit) {
  ProcessOutput output = run(executable, arguments, timeLimit);
  if (!output.launched || output.timedOut) return std::nullopt;
  if (!core::isValidUtf8(output.standardOutput)) return std::nullopt;
  return std::move(output.standardOutput);
}

SystemProcessRunner::SystemProcessRunner(std::map<std::string, std::string> toolOverrides)
    : toolOverrides_(std::move(toolOverrides)) {}

ProcessOutput SystemProcessRunner::run(const std::string& executable, const std::vector<std::string>& arguments,
                                       std::optional<std::chrono::milliseconds> timeLimit) {
  ProcessOutput result;
  const auto override = toolOverrides_.find(executable);
  const std::string& program = override != toolOverrides_.end() ? override->second : executable;

  struct stat info {};
  if (::stat(program.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return result;

  Pipe out, err;
  if (!out.open() || !err.open()) return result;

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, out.write, STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, err.write, STDERR_FILENO);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  // A process group of its own, so the time limit can stop the tool together with its children.
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  posix_spawnattr_setpgroup(&attributes, 0);
  sigset_t noSignals, defaults;
  sigemptyset(&noSignals);
  sigemptyset(&defaults);
  sigaddset(&defaults, SIGPIPE);
  posix_spawnattr_setsigmask(&attributes, &noSignals);
  posix_spawnattr_setsigdefault(&attributes, &defaults);

  std::vector<char*> argv;
  argv.push_back(const_cast<char*>(program.c_str()));
  for (const auto& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);

  pid_t pid = -1;
  const int spawnError = posix_spawn(&pid, program.c_str(), &actions, &attributes, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  posix_spawnattr_destroy(&attributes);
  out.closeWrite();
  err.closeWrite();
  if (spawnError != 0) return result;
  result.launched = true;

  std::optional<Clock::time_point> deadline;
  if (timeLimit) deadline = Clock::now() + *timeLimit;

  int status = 0;
  bool exited = false;
  std::optional<Clock::time_point> exitedAt;
  for (;;) {
    const bool pipesOpen = drain(out, err, result.standardOutput, result.standardError, remainingMs(deadline));
    if (!exited) {
      const pid_t waited = ::waitpid(pid, &status, WNOHANG);
      if (waited == pid) {
        exited = true;
        exitedAt = Clock::now();
      }
    }
    if (exited && !pipesOpen) break;
    // A child that left the pipes to a background descendant gets a short grace, no more.
    if (exited && !deadline && Clock::now() - *exitedAt > std::chrono::seconds(1)) break;
    if (deadline && Clock::now() >= *deadline) {
      ::kill(-pid, SIGKILL);
      if (!exited) ::waitpid(pid, &status, 0);
      result.timedOut = !exited;
      if (!exited) return result;
      break;
    }
  }
  if (WIFEXITED(status)) result.exitStatus = WEXITSTATUS(status);
  return result;
}

} // namespace halcyra::platform
