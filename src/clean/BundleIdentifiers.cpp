#include "clean/BundleIdentifiers.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "clean/FileQueries.h"
#include "platform/PropertyList.h"

namespace halcyra::clean {
namespace {

// An Info.plist is a few kilobytes; anything far larger is not one worth parsing.
constexpr off_t kMaxPlistBytes = 16 * 1024 * 1024;
constexpr std::string_view kInfoPlistSuffix = ".app/Contents/Info.plist";

std::optional<std::string> readRegularFile(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
  if (fd < 0) return std::nullopt;
  struct stat info {};
  if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode) || info.st_size > kMaxPlistBytes) {
    ::close(fd);
    return std::nullopt;
  }
  std::string bytes(static_cast<std::size_t>(info.st_size), '\0');
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t n = ::read(fd, bytes.data() + done, bytes.size() - done);
    if (n <= 0) break;
    done += static_cast<std::size_t>(n);
  }
  ::close(fd);
  bytes.resize(done);
  return bytes;
}

} // namespace

std::optional<std::string> bundleIdentifierFromPlist(std::string_view bytes) {
  if (bytes.empty() || bytes.size() > static_cast<std::size_t>(kMaxPlistBytes)) return std::nullopt;
  return platform::propertyListString(bytes, "CFBundleIdentifier");
}

std::set<std::string> collectInstalledBundleIDs(const platform::SystemPaths& paths) {
  std::set<std::string> identifiers;
  const std::string roots[] = {paths.system("/Applications"), paths.inHome("Applications"),
                               paths.system("/System/Applications"), paths.system("/System/Library/CoreServices")};
  for (const auto& root : roots) {
    // Every folder of the root, bundles included, hidden ones too; an explicit stack.
    std::vector<std::string> folders{root};
    while (!folders.empty()) {
      const std::string folder = std::move(folders.back());
      folders.pop_back();
      const auto entries = listDirectory(folder);
      if (!entries) continue;
      for (const auto& entry : *entries) {
        std::string path = folder + "/" + entry.name;
        if (entry.kind == PathKind::directory) {
          folders.push_back(std::move(path));
        } else if (entry.kind == PathKind::file && entry.name == "Info.plist" &&
                   std::string_view(path).substr(root.size() + 1).ends_with(kInfoPlistSuffix)) {
          if (const auto bytes = readRegularFile(path)) {
            if (auto identifier = bundleIdentifierFromPlist(*bytes)) identifiers.insert(std::move(*identifier));
          }
        }
      }
    }
  }
  for (const char* extra : {"com.microsoft.VSCode.ShipIt", "io.sentry", "com.hackemist.SDImageCache", "org.swift.swiftpm"}) {
    identifiers.insert(extra);
  }
  return identifiers;
}

} // namespace halcyra::clean
