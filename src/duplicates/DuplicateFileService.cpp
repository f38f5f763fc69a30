#include "duplicates/DuplicateFileService.h"

#include <algorithm>
#include <chrono>
#include <sys/stat.h>
#include <thread>

#include <fmt/format.h>

#include "duplicates/ContentHasher.h"
#include "duplicates/FileIndex.h"
#include "duplicates/RemovalCommand.h"
#include "platform/SafeRemove.h"

namespace halcyra::duplicates {
namespace {

constexpr std::size_t kIndexedEvery = 500;
constexpr std::size_t kHashedEvery = 50;
constexpr std::size_t kDeletedEvery = 10;

// The size attribute of the name itself, 0 when it cannot be read.
std::int64_t sizeAttribute(const std::string& path) {
  struct stat info {};
  return ::lstat(path.c_str(), &info) == 0 ? static_cast<std::int64_t>(info.st_size) : 0;
}

} // namespace

DuplicateFileService::DuplicateFileService(platform::Platform platform) : platform_(std::move(platform)) {}

unsigned DuplicateFileService::hashingWorkers() { return std::clamp(std::thread::hardware_concurrency(), 1u, 2u); }

std::vector<DuplicateGroup> DuplicateFileService::scan(const std::string& directory, std::int64_t minFileSize,
                                                       const StatusCallback& onProgress) const {
  return find(directory, minFileSize, onProgress).records();
}

FoundDuplicates DuplicateFileService::find(const std::string& directory, std::int64_t minFileSize,
                                           const StatusCallback& onProgress) const {
  auto post = [&](const std::string& text) {
    if (onProgress) onProgress(text);
  };
  FoundDuplicates found;
  post("Indexing files…");
  auto index = FileIndex::build(directory, minFileSize, [&](std::size_t count) {
    if (count % kIndexedEvery == 0) post(fmt::format("Indexed {} files…", count));
  });
  if (!index) return found;

  const auto shared = index->sharedSizes();
  const std::size_t candidates = shared.files.size();
  post(fmt::format("Found {} candidates in {} size groups", candidates, shared.runs.size()));

  auto& groups = found.groups_;
  auto& members = found.files_;
  std::vector<std::uint32_t> byDigest;
  std::vector<std::pair<std::uint32_t, std::uint32_t>> classes; // (first position, start in byDigest)
  std::string path;
  std::size_t nextMark = kHashedEvery;
  ContentHasher::digests(
      *index, shared, hashingWorkers(), kHashedEvery,
      [&](std::size_t settled) {
        for (; nextMark <= settled; nextMark += kHashedEvery) post(fmt::format("Hashing file {}/{}…", nextMark, candidates));
      },
      [&](std::size_t firstRun, std::size_t endRun, std::span<const std::optional<Digest>> digests) {
        std::size_t offset = 0;
        for (std::size_t r = firstRun; r < endRun; ++r) {
          const auto& run = shared.runs[r];
          const auto count = static_cast<std::uint32_t>(run.end - run.begin);
          const auto digestOf = [&](std::uint32_t position) -> const Digest& { return *digests[offset + position]; };
          // Positions by digest, walk order within one digest: each run of two or more is a
          // group, and its first position is where the walk met that digest first.
          byDigest.clear();
          for (std::uint32_t i = 0; i < count; ++i) {
            if (digests[offset + i]) byDigest.push_back(i);
          }
          std::stable_sort(byDigest.begin(), byDigest.end(),
                           [&](std::uint32_t a, std::uint32_t b) { return digestOf(a) < digestOf(b); });
          classes.clear();
          for (std::size_t i = 0; i < byDigest.size();) {
            std::size_t j = i + 1;
            while (j < byDigest.size() && digestOf(byDigest[j]) == digestOf(byDigest[i])) ++j;
            if (j - i >= 2) classes.emplace_back(byDigest[i], static_cast<std::uint32_t>(i));
            i = j;
          }
          std::sort(classes.begin(), classes.end());
          for (const auto& [firstPosition, start] : classes) {
            FoundDuplicates::Group group;
            group.begin = static_cast<std::uint32_t>(members.size());
            for (std::size_t k = start; k < byDigest.size() && digestOf(byDigest[k]) == digestOf(firstPosition); ++k) {
              members.push_back(shared.files[run.begin + byDigest[k]]);
            }
            group.end = static_cast<std::uint32_t>(members.size());
            // Oldest first; equal dates keep the order in which the walk found the files.
            std::stable_sort(members.begin() + group.begin, members.end(), [&](std::uint32_t a, std::uint32_t b) {
              return index->modificationDate(a) < index->modificationDate(b);
            });
            index->path(members[group.begin], path);
            group.fileSize = sizeAttribute(path);
            std::copy_n(digestOf(firstPosition).begin(), group.hash.size(), group.hash.begin());
            groups.push_back(group);
          }
          offset += count;
        }
      });

  std::stable_sort(groups.begin(), groups.end(), [](const FoundDuplicates::Group& a, const FoundDuplicates::Group& b) {
    const auto wasted = [](const FoundDuplicates::Group& group) {
      return static_cast<std::int64_t>(group.end - group.begin - 1) * group.fileSize;
    };
    return wasted(a) > wasted(b);
  });
  found.index_ = std::move(*index);
  post(fmt::format("Found {} duplicate groups", groups.size()));
  return found;
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
