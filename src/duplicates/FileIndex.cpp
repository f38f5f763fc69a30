#include "duplicates/FileIndex.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_map>

#include "duplicates/PackageNames.h"

namespace halcyra::duplicates {
namespace {

constexpr std::array<std::string_view, 6> kExcludedNames{".Trash", "node_modules", ".git", "DerivedData", "Build", ".build"};

FileDate modificationDateOf(const struct stat& info) {
  using namespace std::chrono;
  return FileDate(seconds(info.st_mtim.tv_sec) + duration_cast<microseconds>(nanoseconds(info.st_mtim.tv_nsec)));
}

std::string joined(const std::string& folder, std::string_view name) {
  std::string path;
  path.reserve(folder.size() + 1 + name.size());
  path += folder;
  if (path.empty() || path.back() != '/') path.push_back('/');
  path += name;
  return path;
}

// The folder without trailing slashes, so that the paths below it read "dir/file", not
// "dir//file"; "/" stays "/".
std::string withoutTrailingSlashes(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

} // namespace

bool FileIndex::isExcludedName(std::string_view name) {
  return std::find(kExcludedNames.begin(), kExcludedNames.end(), name) != kExcludedNames.end();
}

std::optional<std::vector<SizeGroup>> FileIndex::sharedSizes(const std::string& root, std::int64_t minFileSize,
                                                             const IndexedCallback& onIndexed) {
  const std::string top = withoutTrailingSlashes(root);
  // The chosen folder itself may be reached through a link; nothing below it is.
  const int rootDescriptor = ::open(top.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (rootDescriptor < 0) return std::nullopt;

  std::vector<IndexedFile> found;
  std::vector<std::string> pending; // folders still to read; an explicit stack, so depth costs no call stack
  std::vector<std::string> subfolders;
  int descriptor = rootDescriptor;
  std::string folder = top;
  for (;;) {
    if (descriptor >= 0) {
      if (DIR* opened = ::fdopendir(descriptor)) {
        const std::unique_ptr<DIR, int (*)(DIR*)> listing(opened, ::closedir);
        subfolders.clear();
        while (const dirent* entry = ::readdir(listing.get())) {
          const std::string_view name = entry->d_name;
          if (isExcludedName(name)) continue;
          if (name.front() == '.') continue; // hidden, and "." and ".."
          unsigned char type = entry->d_type;
          struct stat info {};
          bool haveInfo = false;
          if (type == DT_UNKNOWN || type == DT_REG) {
            if (::fstatat(descriptor, entry->d_name, &info, AT_SYMLINK_NOFOLLOW) != 0) continue;
            haveInfo = true;
            type = S_ISREG(info.st_mode) ? DT_REG : S_ISDIR(info.st_mode) ? DT_DIR : DT_UNKNOWN;
          }
          if (type == DT_DIR) {
            if (!isPackageName(name)) subfolders.emplace_back(name);
            continue;
          }
          if (type != DT_REG || !haveInfo) continue;
          const std::int64_t size = info.st_size;
          if (size < minFileSize) continue;
          found.push_back(IndexedFile{joined(folder, name), size, modificationDateOf(info), info.st_dev, info.st_ino});
          if (onIndexed) onIndexed(found.size());
        }
        // Reversed, so that the first sub-folder listed is read next.
        for (auto it = subfolders.rbegin(); it != subfolders.rend(); ++it) pending.push_back(joined(folder, *it));
      } else {
        ::close(descriptor);
      }
    }
    if (pending.empty()) break;
    folder = std::move(pending.back());
    pending.pop_back();
    // O_NOFOLLOW: a folder swapped for a link since it was listed is not entered.
    descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  }

  // Sizes in the order their first file was found; only sizes shared by two files or more.
  struct SizeSlot {
    std::size_t count = 0;
    std::size_t group = 0;
  };
  std::unordered_map<std::int64_t, SizeSlot> slots;
  slots.reserve(found.size());
  for (const auto& file : found) ++slots[file.size].count;
  std::vector<SizeGroup> groups;
  for (auto& file : found) {
    SizeSlot& slot = slots[file.size];
    if (slot.count < 2) continue;
    if (slot.group == 0) {
      groups.push_back(SizeGroup{file.size, {}});
      groups.back().files.reserve(slot.count);
      slot.group = groups.size();
    }
    groups[slot.group - 1].files.push_back(std::move(file));
  }
  return groups;
}

} // namespace halcyra::duplicates
