#include "platform/Trash.h"

#include <charconv>
#include <cstdlib>
#include <dirent.h>

#include "platform/AppleScript.h"
#include "platform/ProcessRunner.h"
#include "platform/TreeSize.h"

namespace halcyra::platform {
namespace {

std::string trimmed(const std::string& text) {
  const auto first = text.find_first_not_of(" \t\r\n");
  if (first == std::string::npos) return {};
  const auto last = text.find_last_not_of(" \t\r\n");
  return text.substr(first, last - first + 1);
}

template <typename Number>
bool parseDecimal(const std::string& text, Number& value) {
  if (text.empty()) return false;
  const char* begin = text.data();
  const char* end = begin + text.size();
  if (*begin == '+') ++begin; // a leading plus is part of a plain decimal integer
  const auto [ptr, error] = std::from_chars(begin, end, value);
  return error == std::errc() && ptr == end;
}

} // namespace

std::optional<TrashSummary> FreedesktopTrash::summary() {
  const std::string files = directory_ + "/files";
  DIR* dir = ::opendir(files.c_str());
  if (dir == nullptr) return TrashSummary{}; // no Trash yet: empty
  TrashSummary result;
  while (const dirent* entry = ::readdir(dir)) {
    const std::string name = entry->d_name;
    if (name == "." || name == "..") continue;
    ++result.itemCount;
    result.totalSize += logicalTreeSize(files + "/" + name, TreeSizeOptions{.skipHidden = false});
  }
  ::closedir(dir);
  return result;
}

std::optional<TrashSummary> FinderTrash::parseFinderAnswer(const std::string& answer) {
  const std::string text = trimmed(answer);
  std::string parts[3];
  int count = 0;
  std::size_t start = 0;
  while (start <= text.size()) {
    const auto comma = text.find(',', start);
    const std::string part = text.substr(start, comma == std::string::npos ? std::string::npos : comma - start);
    if (!part.empty()) {
      if (count == 2) return std::nullopt;
      parts[count++] = part;
    }
    if (comma == std::string::npos) break;
    start = comma + 1;
  }
  if (count != 2) return std::nullopt;
  TrashSummary summary;
  if (!parseDecimal(parts[0], summary.itemCount) || !parseDecimal(parts[1], summary.totalSize)) return std::nullopt;
  return summary;
}

std::optional<TrashSummary> FinderTrash::summary() {
  static const std::string script =
      "tell application \"Finder\"\n"
      "    set trashItems to every item in trash\n"
      "    set itemCount to count of trashItems\n"
      "    if itemCount is 0 then return \"0,0\"\n"
      "    set totalSize to 0\n"
      "    repeat with anItem in trashItems\n"
      "        try\n"
      "            set totalSize to totalSize + (size of anItem)\n"
      "        end try\n"
      "    end repeat\n"
      "    return (itemCount as text) & \",\" & (totalSize as text)\n"
      "end tell";
  const auto answer = runAppleScript(*runner_, script);
  if (!answer) return std::nullopt;
  return parseFinderAnswer(*answer);
}

bool FinderTrash::empty() {
  return runAppleScript(*runner_, "tell application \"Finder\" to empty trash").has_value();
}

std::string freedesktopTrashDirectory(const std::string& home, bool isRunningUsersHome) {
  if (isRunningUsersHome) {
    if (const char* data = std::getenv("XDG_DATA_HOME"); data != nullptr && data[0] == '/') {
      return std::string(data) + "/Trash";
    }
  }
  return home + "/.local/share/Trash";
}

} // namespace halcyra::platform
