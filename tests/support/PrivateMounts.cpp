#include "support/PrivateMounts.h"

#include <cstdio>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace halcyra::testing {
namespace {

constexpr int kNotAllowed = 77;

} // namespace

std::optional<int> inPrivateMountNamespace(const std::function<int()>& body) {
  std::fflush(nullptr);
  const pid_t child = ::fork();
  if (child < 0) return std::nullopt;
  if (child == 0) {
    // Without root the namespace would need a user namespace of its own too, whose root the
    // privileged helper and the rights tests are not meant to run as.
    if (::geteuid() != 0 || ::unshare(CLONE_NEWNS) != 0) ::_exit(kNotAllowed);
    if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) ::_exit(kNotAllowed);
    const int status = body();
    std::fflush(nullptr);
    ::_exit(status == kNotAllowed ? 1 : status);
  }
  int status = 0;
  if (::waitpid(child, &status, 0) != child || !WIFEXITED(status)) return 1;
  if (WEXITSTATUS(status) == kNotAllowed) return std::nullopt;
  return WEXITSTATUS(status);
}

bool bindMount(const std::string& from, const std::string& to) {
  return ::mount(from.c_str(), to.c_str(), nullptr, MS_BIND, nullptr) == 0;
}

} // namespace halcyra::testing
