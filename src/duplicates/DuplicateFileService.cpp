#include "duplicates/DuplicateFileService.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <numeric>
#include <sys/stat.h>
#include <thread>

#include <fmt/format.h>

#include "core/Uuid.h"
#include "duplicates/ContentHasher.h"
#include "duplicates/FileIndex.h"
#include "duplicates/RemovalCommand.h"
#include "platform/SafeRemove.h"

namespace halcyra::duplicates {
namespace {

constexpr std::size_t kIndexedEvery = 500;
constexpr std::size_t kHashedEvery = 50;
constexpr std::size_t kDeletedEvery = 10;

std::string hexText(const Digest& digest) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  text.reserve(digest.size() * 2);
  for (const unsigned char byte : digest) {
    text.push_back(kDigits[byte >> 4]);
    text.push_back(kDigits[byte & 0x0F]);
  }
  return text;
}

std::string lastPathComponent(const std::string& path) {
  const auto slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

// The size attribute of the name itself, 0 when it cannot be read.
std::int64_t sizeAttribute(const std::string& path) {
  struct stat info {};
  return ::lstat(path.c_str(), &info) == 0 ? static_cast<std::int64_t>(info.st_size) : 0;
}

// Oldest first; equal dates keep the order in which the walk found the files.
// The paths move into the group: the size table is not needed after this.
DuplicateGroup makeGroup(SizeGroup& sizeGroup, std::vector<std::uint32_t> members, const Digest& digest) {
  auto& files = sizeGroup.files;
  std::stable_sort(members.begin(), members.end(), [&](std::uint32_t a, std::uint32_t b) {
    return files[a].modificationDate < files[b].modificationDate;
  });
  DuplicateGroup group;
  group.fileSize = sizeAttribute(files[members.front()].path);
  group.files.reserve(members.size());
  for (std::size_t position = 0; position < members.size(); ++position) {
    IndexedFile& file = files[members[position]];
    group.files.push_back(DuplicateFile{core::makeUuid(), std::move(file.path), group.fileSize, file.modificationDate, position != 0});
  }
  group.fileHash = hexText(digest).substr(0, 12);
  group.representativeFileName = lastPathComponent(group.files.front().path);
  group.id = core::makeUuid();
  return group;
}

} // namespace

DuplicateFileService::DuplicateFileService(platform::Platform platform) : platform_(std::move(platform)) {}

unsigned DuplicateFileService::hashingWorkers() { return std::clamp(std::thread::hardware_concurrency(), 1u, 2u); }

std::vector<DuplicateGroup> DuplicateFileService::scan(const std::string& directory, std::int64_t minFileSize,
                                                       const StatusCallback& onProgress) const {
  auto post = [&](const std::string& text) {
    if (onProgress) onProgress(text);
  };
  post("Indexing files…");
  auto sizeGroups = FileIndex::sharedSizes(directory, minFileSize, [&](std::size_t count) {
    if (count % kIndexedEvery == 0) post(fmt::format("Indexed {} files…", count));
  });
  if (!sizeGroups) return {};

  std::size_t candidates = 0;
  for (const auto& sizeGroup : *sizeGroups) candidates += sizeGroup.files.size();
  post(fmt::format("Found {} candidates in {} size groups", candidates, sizeGroups->size()));

  std::size_t nextMark = kHashedEvery;
  const auto digests = ContentHasher::digests(*sizeGroups, hashingWorkers(), kHashedEvery, [&](std::size_t settled) {
    for (; nextMark <= settled; nextMark += kHashedEvery) post(fmt::format("Hashing file {}/{}…", nextMark, candidates));
  });

  std::vector<DuplicateGroup> groups;
  for (std::size_t g = 0; g < sizeGroups->size(); ++g) {
    // Digests in the order their first file was found, each with its files in walk order.
    std::map<Digest, std::size_t> slotOf;
    std::vector<std::pair<Digest, std::vector<std::uint32_t>>> byDigest;
    for (std::uint32_t i = 0; i < digests[g].size(); ++i) {
      if (!digests[g][i]) continue;
      const auto [it, added] = slotOf.try_emplace(*digests[g][i], byDigest.size());
      if (added) byDigest.emplace_back(*digests[g][i], std::vector<std::uint32_t>{});
      byDigest[it->second].second.push_back(i);
    }
    for (auto& [digest, members] : byDigest) {
      if (members.size() >= 2) groups.push_back(makeGroup((*sizeGroups)[g], std::move(members), digest));
    }
  }
  std::stable_sort(groups.begin(), groups.end(), [](const DuplicateGroup& a, const DuplicateGroup& b) {
    return a.totalWastedSize() > b.totalWastedSize();
  });
  post(fmt::format("Found {} duplicate groups", groups.size()));
  return groups;
}

DuplicateCleanResult DuplicateFileService::deleteFiles(const std::vector<std::string>& paths,
                                                       const StatusCallback& onProgress) const {
  const auto start = std::chrono::steady_clock::now();
  DuplicateCleanResult result;
  std::vector<std::string> failed;
  for (std::size_t i = 0; i < paths.size(); ++i) {
    if (i % kDeletedEvery == 0 && onProgress) onProgress(fmt::format("Deleting file {}/{}…", i + 1, paths.size()));
    const std::string& path = paths[i];
    // Only plain absolute paths are ever removed: a relative one would depend on the working
    // folder, ".." can climb out of the folder it seems to name, and on a shell line a path
    // that is not absolute could read as an option.
    if (!platform::isPlainAbsolutePath(path)) continue;
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0) {
      failed.push_back(path);
      continue;
    }
    // A folder standing where a file was is never removed; `rm -f` leaves it in place too.
    if (S_ISDIR(info.st_mode)) {
      failed.push_back(path);
      continue;
    }
    if (platform::removeItem(path) == platform::RemoveOutcome::removed) {
      result.freedBytes += info.st_size;
      ++result.filesDeleted;
    } else {
      failed.push_back(path);
    }
  }

  if (!failed.empty() && platform_.privileged) {
    // One prompt for the whole batch. A declined prompt and a failed command look alike, so
    // a refusal ends the attempt rather than asking again for the rest of a split batch.
    for (const auto& line : removalCommandLines(failed)) {
      if (!platform_.privileged->runShellLine(line)) break;
    }
    // What the privileged step removed counts as deleted, but its size is not known.
    for (const auto& path : failed) {
      if (platform::isGone(path)) ++result.filesDeleted;
    }
  }
  result.duration = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  return result;
}

} // namespace halcyra::duplicates
