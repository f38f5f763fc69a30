#include "platform/FullDiskAccessChecker.h"

#include <dirent.h>
#include <unistd.h>

namespace halcyra::platform {
namespace {

bool canList(const std::string& path) {
  DIR* dir = ::opendir(path.c_str());
  if (dir == nullptr) return false;
  ::closedir(dir);
  return true;
}

bool isReadableFile(const std::string& path) { return ::access(path.c_str(), R_OK) == 0; }

} // namespace

bool FullDiskAccessChecker::hasFullDiskAccess() const {
  return canList(paths_.inHome("Library/Containers/com.apple.stocks"));
}

std::string FullDiskAccessChecker::diagnosticInfo() const {
  struct Probe {
    const char* label;
    bool passed;
  };
  const Probe probes[] = {
      {"~/Library/Containers/com.apple.stocks (list dir)", canList(paths_.inHome("Library/Containers/com.apple.stocks"))},
      {"/Library/Application Support/com.apple.TCC/TCC.db (readable)",
       isReadableFile(paths_.system("/Library/Application Support/com.apple.TCC/TCC.db"))},
      {"~/Library/Safari/Bookmarks.plist (readable)", isReadableFile(paths_.inHome("Library/Safari/Bookmarks.plist"))},
      {"~/Library/Messages/StickerCache (list dir)", canList(paths_.inHome("Library/Messages/StickerCache"))},
  };
  std::string report = "FDA Check — Home: " + paths_.home();
  for (const auto& probe : probes) {
    report += "\n  ";
    report += probe.passed ? "✅" : "❌";
    report += " ";
    report += probe.label;
  }
  report += "\n  Result: ";
  report += hasFullDiskAccess() ? "GRANTED" : "DENIED";
  return report;
}

} // namespace halcyra::platform
