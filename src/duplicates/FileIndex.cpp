#include "duplicates/FileIndex.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <limits>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

#include "duplicates/PackageNames.h"
#include "platform/MountPoints.h"

namespace halcyra::duplicates {
namespace {

constexpr std::array<std::string_view, 6> kExcludedNames{".Trash", "node_modules", ".git", "DerivedData", "Build", ".build"};

std::int64_t microsecondsOf(const struct stat& info) {
  return static_cast<std::int64_t>(info.st_mtim.tv_sec) * 1'000'000 + info.st_mtim.tv_nsec / 1000;
}

// The folder without trailing slashes, so that the paths below it read "dir/file", not
// "dir//file"; "/" stays "/".
std::string withoutTrailingSlashes(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

void appendComponent(std::string& path, std::string_view name) {
  if (path.empty() || path.back() != '/') path.push_back('/');
  path += name;
}

} // namespace

std::uint32_t FileIndex::NameArena::add(std::string_view name) {
  const std::size_t needed = name.size() + 1;
  if (capacity_ - used_ < needed) {
    const std::size_t start = starts_.empty() ? 0 : std::size_t{starts_.back()} + used_;
    const std::size_t capacity = std::max(kChunk, needed);
    if (start + capacity > std::numeric_limits<std::uint32_t>::max()) throw std::length_error("too many file names");
    chunks_.push_back(std::make_unique_for_overwrite<char[]>(capacity));
    starts_.push_back(static_cast<std::uint32_t>(start));
    used_ = 0;
    capacity_ = capacity;
  }
  char* at = chunks_.back().get() + used_;
  std::copy(name.begin(), name.end(), at);
  at[name.size()] = '\0';
  const auto handle = static_cast<std::uint32_t>(starts_.back() + used_);
  used_ += needed;
  return handle;
}

std::string_view FileIndex::NameArena::at(std::uint32_t handle) const {
  const auto chunk = static_cast<std::size_t>(std::upper_bound(starts_.begin(), starts_.end(), handle) - starts_.begin()) - 1;
  return chunks_[chunk].get() + (handle - starts_[chunk]);
}

bool FileIndex::isExcludedName(std::string_view name) {
  return std::find(kExcludedNames.begin(), kExcludedNames.end(), name) != kExcludedNames.end();
}

void FileIndex::noteDevice(dev_t device) {
  if (deviceRuns_.empty() || deviceRuns_.back().second != device) {
    deviceRuns_.emplace_back(static_cast<std::uint32_t>(files_.size()), device);
  }
}

dev_t FileIndex::device(std::size_t file) const {
  if (deviceRuns_.size() == 1) return deviceRuns_.front().second;
  const auto after = std::upper_bound(deviceRuns_.begin(), deviceRuns_.end(), file,
                                      [](std::size_t number, const auto& run) { return number < run.first; });
  return std::prev(after)->second;
}

void FileIndex::folderPath(std::uint32_t folder, std::string& out) const {
  // Components from the folder up to the root, then written root first.
  std::uint32_t chain[64];
  std::size_t depth = 0;
  std::uint32_t at = folder;
  while (folders_[at].parent != at && depth < std::size(chain)) {
    chain[depth++] = at;
    at = folders_[at].parent;
  }
  if (folders_[at].parent != at) {
    // Deeper than the chain holds: the part above is put together first.
    folderPath(at, out);
  } else {
    out.assign(names_.at(folders_[at].name));
  }
  while (depth > 0) appendComponent(out, names_.at(folders_[chain[--depth]].name));
}

void FileIndex::path(std::size_t file, std::string& out) const {
  folderPath(files_[file].folder, out);
  appendComponent(out, names_.at(files_[file].name));
}

std::string FileIndex::path(std::size_t file) const {
  std::string out;
  path(file, out);
  return out;
}

std::optional<FileIndex> FileIndex::build(const std::string& root, std::int64_t minFileSize,
                                          const IndexedCallback& onIndexed) {
  const std::string top = withoutTrailingSlashes(root);
  // The chosen folder itself may be reached through a link; nothing below it is.
  const int rootDescriptor = ::open(top.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (rootDescriptor < 0) return std::nullopt;

  FileIndex index;
  index.folders_.push_back(Folder{0, index.names_.add(top)});
  std::vector<std::uint32_t> pending; // folders still to read; an explicit stack, so depth costs no call stack
  std::string folderPath;
  int descriptor = rootDescriptor;
  std::uint32_t folder = 0;
  for (;;) {
    if (descriptor >= 0) {
      if (DIR* listing = ::fdopendir(descriptor)) {
        const auto firstSubfolder = static_cast<std::uint32_t>(index.folders_.size());
        while (const dirent* entry = ::readdir(listing)) {
          const std::string_view name = entry->d_name;
          if (isExcludedName(name)) continue;
          if (name.front() == '.') continue; // hidden, and "." and ".."
          unsigned char type = entry->d_type;
          platform::EntryStatus status;
          const struct stat& info = status.info;
          bool haveInfo = false;
          if (type == DT_UNKNOWN || type == DT_REG) {
            if (!platform::statEntry(descriptor, entry->d_name, status)) continue;
            // A file mounted over another is one file seen under two names: never indexed.
            if (status.isMountRoot) continue;
            haveInfo = true;
            type = S_ISREG(info.st_mode) ? DT_REG : S_ISDIR(info.st_mode) ? DT_DIR : DT_UNKNOWN;
          }
          if (type == DT_DIR) {
            if (!isPackageName(name)) index.folders_.push_back(Folder{folder, index.names_.add(name)});
            continue;
          }
          if (type != DT_REG || !haveInfo) continue;
          const std::int64_t size = info.st_size;
          if (size < minFileSize) continue;
          index.noteDevice(info.st_dev);
          index.files_.push_back(FileRecord{size, microsecondsOf(info), info.st_ino, folder, index.names_.add(name)});
          if (onIndexed) onIndexed(index.files_.size());
        }
        ::closedir(listing);
        // Reversed, so that the first sub-folder listed is read next.
        for (auto sub = static_cast<std::uint32_t>(index.folders_.size()); sub-- > firstSubfolder;) pending.push_back(sub);
      } else {
        ::close(descriptor);
      }
    }
    if (pending.empty()) break;
    folder = pending.back();
    pending.pop_back();
    index.folderPath(folder, folderPath);
    // O_NOFOLLOW: a folder swapped for a link since it was listed is not entered. Nor is a
    // mount point: another volume, or a folder of this one mounted here again, whose files
    // would otherwise be seen twice and taken for copies of themselves.
    descriptor = ::open(folderPath.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    platform::EntryStatus self;
    if (descriptor >= 0 && (!platform::statEntry(descriptor, "", self) || self.isMountRoot)) {
      ::close(descriptor);
      descriptor = -1;
    }
  }
  return index;
}

FileIndex::SharedSizes FileIndex::sharedSizes() const {
  // Every file by size, and by walk order within a size; runs of two or more are the shared
  // sizes, and the first file of a run is the first of its size the walk found.
  std::vector<std::uint32_t> bySize(files_.size());
  for (std::uint32_t i = 0; i < bySize.size(); ++i) bySize[i] = i;
  std::sort(bySize.begin(), bySize.end(), [&](std::uint32_t a, std::uint32_t b) {
    const std::int64_t sizeA = files_[a].size, sizeB = files_[b].size;
    return sizeA != sizeB ? sizeA < sizeB : a < b;
  });
  SharedSizes shared;
  for (std::size_t i = 0; i < bySize.size();) {
    std::size_t j = i + 1;
    while (j < bySize.size() && files_[bySize[j]].size == files_[bySize[i]].size) ++j;
    if (j - i >= 2) shared.runs.push_back(SizeRun{files_[bySize[i]].size, static_cast<std::uint32_t>(i), static_cast<std::uint32_t>(j)});
    i = j;
  }
  std::sort(shared.runs.begin(), shared.runs.end(),
            [&](const SizeRun& a, const SizeRun& b) { return bySize[a.begin] < bySize[b.begin]; });
  std::size_t total = 0;
  for (const auto& run : shared.runs) total += run.end - run.begin;
  shared.files.reserve(total);
  for (auto& run : shared.runs) {
    const auto begin = static_cast<std::uint32_t>(shared.files.size());
    shared.files.insert(shared.files.end(), bySize.begin() + run.begin, bySize.begin() + run.end);
    run.begin = begin;
    run.end = static_cast<std::uint32_t>(shared.files.size());
  }
  return shared;
}

} // namespace halcyra::duplicates
