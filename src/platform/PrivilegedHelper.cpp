#include "platform/PrivilegedHelper.h"

#include <charconv>
#include <climits>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#if defined(__APPLE__)
#include <mach-o/dyld.h>
#endif

namespace halcyra::platform {
namespace {

constexpr std::string_view kNoAnswer = "the privileged helper gave no answer for it";

std::string_view outcomeWord(HelperOutcome outcome) {
  switch (outcome) {
  case HelperOutcome::removed: return "removed";
  case HelperOutcome::gone: return "gone";
  case HelperOutcome::failed: return "failed";
  }
  return "failed";
}

bool parseNumber(std::string_view text, std::uint64_t& value) {
  if (text.empty()) return false;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size();
}

HelperBatch runBatch(PrivilegedRunner& runner, std::vector<std::string> arguments, std::size_t count) {
  const PrivilegedOutput output = runner.runHelper(arguments);
  HelperBatch batch;
  batch.granted = output.granted;
  if (output.granted) batch.reports = parseHelperOutput(output.output, count);
  return batch;
}

} // namespace

std::string identityArgument(const ItemIdentity& identity) {
  return std::to_string(identity.item.device) + ":" + std::to_string(identity.item.inode) + ":" +
         std::to_string(identity.parent.device) + ":" + std::to_string(identity.parent.inode);
}

std::optional<ItemIdentity> parseIdentityArgument(std::string_view text) {
  std::uint64_t values[4] = {};
  for (int i = 0; i < 4; ++i) {
    const auto colon = i < 3 ? text.find(':') : text.size();
    if (colon == std::string_view::npos) return std::nullopt;
    if (!parseNumber(text.substr(0, colon), values[i])) return std::nullopt;
    text.remove_prefix(i < 3 ? colon + 1 : colon);
  }
  return ItemIdentity{{values[0], values[1]}, {values[2], values[3]}};
}

std::string reportLine(std::size_t index, HelperOutcome outcome, std::string_view reason) {
  std::string line = std::to_string(index);
  line += ' ';
  line += outcomeWord(outcome);
  if (!reason.empty()) {
    line += ' ';
    // One line per item, whatever a reason holds.
    for (const char c : reason) line += (c == '\n' || c == '\r') ? ' ' : c;
  }
  line += '\n';
  return line;
}

std::vector<HelperReport> parseHelperOutput(std::string_view output, std::size_t count) {
  std::vector<HelperReport> reports(count, HelperReport{HelperOutcome::failed, std::string(kNoAnswer)});
  std::vector<bool> seen(count, false);
  while (!output.empty()) {
    const auto end = output.find('\n');
    std::string_view line = output.substr(0, end);
    output.remove_prefix(end == std::string_view::npos ? output.size() : end + 1);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    const auto space = line.find(' ');
    std::uint64_t index = 0;
    if (space == std::string_view::npos || !parseNumber(line.substr(0, space), index) || index >= count) continue;
    if (seen[index]) continue; // the first word on an item stands
    std::string_view rest = line.substr(space + 1);
    const auto wordEnd = rest.find(' ');
    const std::string_view word = rest.substr(0, wordEnd);
    const std::string_view reason = wordEnd == std::string_view::npos ? std::string_view() : rest.substr(wordEnd + 1);
    HelperReport report;
    if (word == "removed") report.outcome = HelperOutcome::removed;
    else if (word == "gone") report.outcome = HelperOutcome::gone;
    else if (word == "failed") report.outcome = HelperOutcome::failed;
    else continue;
    report.reason = report.outcome == HelperOutcome::failed && reason.empty() ? std::string("failed") : std::string(reason);
    seen[index] = true;
    reports[index] = std::move(report);
  }
  return reports;
}

HelperBatch removeWithPrivileges(PrivilegedRunner& runner, const std::vector<PrivilegedItem>& items) {
  std::vector<std::string> arguments{"remove"};
  std::vector<std::size_t> sent; // positions in `items` of what was sent, in order
  std::size_t bytes = 0;
  std::vector<HelperReport> unsent(items.size());
  for (std::size_t i = 0; i < items.size(); ++i) {
    const auto& item = items[i];
    std::string identity = identityArgument(item.identity);
    if (item.path.size() > kMaxHelperArgumentLength) {
      unsent[i] = {HelperOutcome::failed, "its path is too long to hand to the administrator prompt"};
      continue;
    }
    const std::size_t size = identity.size() + item.path.size() + 2;
    if (bytes + size > kMaxHelperArgumentBytes) {
      unsent[i] = {HelperOutcome::failed, "too many items for one administrator prompt; run the removal again"};
      continue;
    }
    bytes += size;
    arguments.push_back(std::move(identity));
    arguments.push_back(item.path);
    sent.push_back(i);
  }
  HelperBatch batch;
  if (!sent.empty()) {
    batch = runBatch(runner, std::move(arguments), sent.size());
    if (!batch.granted) return batch;
  } else {
    batch.granted = true;
  }
  std::vector<HelperReport> reports = std::move(unsent);
  for (std::size_t k = 0; k < sent.size(); ++k) reports[sent[k]] = std::move(batch.reports[k]);
  batch.reports = std::move(reports);
  return batch;
}

HelperBatch shredWithPrivileges(PrivilegedRunner& runner, const PrivilegedItem& item, int passes) {
  if (item.path.size() > kMaxHelperArgumentLength) {
    return HelperBatch{true, {{HelperOutcome::failed, "its path is too long to hand to the administrator prompt"}}};
  }
  return runBatch(runner, {"shred", std::to_string(passes), identityArgument(item.identity), item.path}, 1);
}

std::optional<PrivilegedItem> describeForHelper(const std::string& path) {
  if (path.empty() || path.find('\0') != std::string::npos || path.back() == '/') return std::nullopt;
  const auto slash = path.rfind('/');
  if (slash == std::string::npos) return std::nullopt;
  const std::string folderPath = slash == 0 ? "/" : path.substr(0, slash);
  const std::string name = path.substr(slash + 1);
  if (name.empty() || name == "." || name == "..") return std::nullopt;
#if defined(O_PATH)
  const int folder = ::open(folderPath.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
#else
  const int folder = ::open(folderPath.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
#endif
  if (folder < 0) return std::nullopt;
  struct stat above {};
  struct stat item {};
  std::string canonical;
  bool ok = ::fstat(folder, &above) == 0 && ::fstatat(folder, name.c_str(), &item, AT_SYMLINK_NOFOLLOW) == 0;
  if (ok) {
#if defined(__APPLE__)
    char buffer[PATH_MAX];
    ok = ::fcntl(folder, F_GETPATH, buffer) != -1;
    if (ok) canonical = buffer;
#else
    std::string link = "/proc/self/fd/" + std::to_string(folder);
    std::string buffer(PATH_MAX * 2, '\0');
    const ssize_t length = ::readlink(link.c_str(), buffer.data(), buffer.size());
    ok = length > 0 && static_cast<std::size_t>(length) < buffer.size() && buffer[0] == '/';
    if (ok) canonical.assign(buffer.data(), static_cast<std::size_t>(length));
#endif
  }
  ::close(folder);
  // A folder that was removed meanwhile is named with " (deleted)" behind it.
  if (!ok || canonical.ends_with(" (deleted)")) return std::nullopt;
  PrivilegedItem result;
  result.path = canonical == "/" ? "/" + name : canonical + "/" + name;
  result.identity = ItemIdentity{{static_cast<std::uint64_t>(item.st_dev), static_cast<std::uint64_t>(item.st_ino)},
                                 {static_cast<std::uint64_t>(above.st_dev), static_cast<std::uint64_t>(above.st_ino)}};
  return result;
}

std::string privilegedHelperPath() {
  std::string self;
#if defined(__APPLE__)
  char buffer[PATH_MAX];
  std::uint32_t size = sizeof buffer;
  if (_NSGetExecutablePath(buffer, &size) == 0) {
    char resolved[PATH_MAX];
    if (::realpath(buffer, resolved) != nullptr) self = resolved;
  }
#else
  std::string buffer(PATH_MAX, '\0');
  const ssize_t length = ::readlink("/proc/self/exe", buffer.data(), buffer.size());
  if (length > 0 && static_cast<std::size_t>(length) < buffer.size()) self.assign(buffer.data(), static_cast<std::size_t>(length));
#endif
  const auto slash = self.rfind('/');
  if (slash == std::string::npos) return "/usr/bin/halcyra-helper";
  return self.substr(0, slash + 1) + "halcyra-helper";
}

} // namespace halcyra::platform
