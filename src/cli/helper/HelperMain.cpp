// halcyra-helper: the one program Halcyra runs with administrator rights.
//
//   halcyra-helper remove IDENTITY PATH [IDENTITY PATH]...
//   halcyra-helper shred PASSES IDENTITY PATH
//
// IDENTITY is "DEVICE:INODE:PARENTDEVICE:PARENTINODE" as the unprivileged side saw the item and
// its folder. Each item is reached from "/" one component at a time without following a link,
// and acted on only while both identities still hold, so root never resolves a path that a
// process of the user could have redirected. Items are handled one by one; a failure never
// stops the others. For each item one line goes to standard output: "N removed", "N gone" or
// "N failed REASON", N counting from 0. The exit status is 0 once every item has its line, and
// 2 when the request itself cannot be read.
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "platform/Platform.h"
#include "platform/PrivilegedHelper.h"
#include "platform/SafeRemove.h"
#include "shredder/ShredderService.h"

namespace {

using halcyra::platform::HelperOutcome;

void say(std::size_t index, HelperOutcome outcome, std::string_view reason = {}) {
  const std::string line = halcyra::platform::reportLine(index, outcome, reason);
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fflush(stdout);
}

int usage() {
  std::fputs("usage: halcyra-helper remove IDENTITY PATH [IDENTITY PATH]...\n"
             "       halcyra-helper shred PASSES IDENTITY PATH\n",
             stderr);
  return 2;
}

// A path the helper will act on: plain and absolute, and never a folder right below "/".
const char* refusalOfPath(const std::string& path) {
  if (!halcyra::platform::isPlainAbsolutePath(path)) return "is not a plain absolute path";
  if (path.find('/', 1) == std::string::npos) return "is a top-level folder of the system, which is never removed";
  return nullptr;
}

void removeOne(std::size_t index, const std::string& identityText, const std::string& path) {
  const auto identity = halcyra::platform::parseIdentityArgument(identityText);
  if (!identity) return say(index, HelperOutcome::failed, "its identity could not be read");
  if (const char* refusal = refusalOfPath(path)) return say(index, HelperOutcome::failed, refusal);
  const halcyra::platform::Removal removal = halcyra::platform::removeIdentified(path, *identity);
  switch (removal.outcome) {
  case halcyra::platform::RemoveOutcome::removed: return say(index, HelperOutcome::removed);
  case halcyra::platform::RemoveOutcome::alreadyGone: return say(index, HelperOutcome::gone);
  case halcyra::platform::RemoveOutcome::permissionDenied:
  case halcyra::platform::RemoveOutcome::failed:
    return say(index, HelperOutcome::failed, removal.reason.empty() ? "could not be removed" : removal.reason);
  }
}

// The folder that holds `path`, reached without following a link, if it is still `expected`.
int openExpectedParent(const std::string& path, const halcyra::platform::FileIdentity& expected) {
  int folder = ::open("/", O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  std::size_t start = 1;
  const std::size_t lastSlash = path.rfind('/');
  while (folder >= 0 && start < lastSlash) {
    const std::size_t slash = path.find('/', start);
    const std::string part = path.substr(start, slash - start);
    const int next = ::openat(folder, part.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    ::close(folder);
    folder = next;
    start = slash + 1;
  }
  struct stat info {};
  if (folder >= 0 && (::fstat(folder, &info) != 0 || static_cast<std::uint64_t>(info.st_dev) != expected.device ||
                      static_cast<std::uint64_t>(info.st_ino) != expected.inode)) {
    ::close(folder);
    return -1;
  }
  return folder;
}

int shredOne(const std::string& passesText, const std::string& identityText, const std::string& path) {
  char* end = nullptr;
  const long passes = std::strtol(passesText.c_str(), &end, 10);
  if (passesText.empty() || *end != '\0' || passes < 0 || passes > 35) return usage();
  const auto identity = halcyra::platform::parseIdentityArgument(identityText);
  if (!identity) {
    say(0, HelperOutcome::failed, "its identity could not be read");
    return 0;
  }
  if (const char* refusal = refusalOfPath(path)) {
    say(0, HelperOutcome::failed, refusal);
    return 0;
  }
  const int folder = openExpectedParent(path, identity->parent);
  if (folder < 0) {
    say(0, HelperOutcome::failed, "the folder that holds it is a link or was replaced since it was listed");
    return 0;
  }
  const halcyra::shredder::ShredderService service(halcyra::platform::Platform{});
  std::string refusal;
  try {
    const auto outcome =
        service.destroyEntry(folder, path.substr(path.rfind('/') + 1), &identity->item, static_cast<int>(passes), {}, refusal);
    if (outcome == halcyra::shredder::ShredderService::Outcome::destroyed) say(0, HelperOutcome::removed);
    else say(0, HelperOutcome::failed, refusal);
  } catch (const std::exception& error) {
    say(0, HelperOutcome::failed, std::string("could not be overwritten: ") + error.what());
  }
  ::close(folder);
  return 0;
}

} // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> args(argv + 1, argv + argc);
  if (args.empty()) return usage();
  if (args[0] == "remove") {
    if (args.size() < 3 || args.size() % 2 != 1) return usage();
    for (std::size_t i = 1; i + 1 < args.size(); i += 2) removeOne((i - 1) / 2, args[i], args[i + 1]);
    return 0;
  }
  if (args[0] == "shred") {
    if (args.size() != 4) return usage();
    return shredOne(args[1], args[2], args[3]);
  }
  return usage();
}
