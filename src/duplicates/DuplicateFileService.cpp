#include "duplicates/DuplicateFileService.h"

#include <algorithm>
#include <chrono>
#include <sys/stat.h>
#include <thread>

#include <fmt/format.h>

#include "duplicates/ContentHasher.h"
#include "duplicates/FileIndex.h"
#include "platform/PrivilegedHelper.h"
#include "platform/RunLock.h"
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

namespace {

// Why a marked copy may not go now; empty when it may. Besides the copy itself, its group must
// still hold a copy that is kept, unchanged since the scan, and that deleting this one would not
// take with it: the same directory entry seen twice (one file with one name) is no copy of
// itself, whereas another name of a file with several names is.
std::string reasonToKeep(const DuplicateGroup& group, const DuplicateFile& file) {
  // Only plain absolute paths are ever removed: a relative one would depend on the working
  // folder, and ".." can climb out of the folder it seems to name.
  if (!platform::isPlainAbsolutePath(file.path)) return "is not a plain absolute path";
  if (!isUnchangedSinceScan(file)) return "changed since the scan";
  bool seenTwice = false;
  for (const auto& kept : group.files) {
    if (kept.isSelected || &kept == &file || !isUnchangedSinceScan(kept)) continue;
    const bool sameFile = kept.stamp.isRecorded() && kept.stamp.device == file.stamp.device &&
                          kept.stamp.inode == file.stamp.inode;
    if (!sameFile || kept.stamp.links > 1) return {};
    seenTwice = true;
  }
  if (seenTwice) return "the copy kept of it is this very file, seen under two paths";
  return "the copy kept of it changed since the scan";
}

struct Refused {
  const DuplicateGroup* group;
  const DuplicateFile* file;
  platform::PrivilegedItem target;
};

} // namespace

DuplicateCleanResult DuplicateFileService::deleteFiles(const std::vector<DuplicateGroup>& groups,
                                                       const StatusCallback& onProgress) const {
  const auto start = std::chrono::steady_clock::now();
  DuplicateCleanResult result;
  const auto lock = platform::RunLock::acquire(platform_.paths, [&] {
    if (onProgress) onProgress("Waiting for another Halcyra run to finish…");
  });
  std::size_t total = 0;
  for (const auto& group : groups) total += static_cast<std::size_t>(group.selectedCount());

  std::vector<Refused> refused;
  std::size_t done = 0;
  for (const auto& group : groups) {
    for (const auto& file : group.files) {
      if (!file.isSelected) continue;
      if (done % kDeletedEvery == 0 && onProgress) onProgress(fmt::format("Deleting file {}/{}…", done + 1, total));
      ++done;
      // Vanished: nothing to do, nothing to count.
      if (platform::isPlainAbsolutePath(file.path) && platform::isGone(file.path)) continue;
      if (auto reason = reasonToKeep(group, file); !reason.empty()) {
        result.failedFiles.push_back({file.path, std::move(reason)});
        continue;
      }
      const platform::Removal removal = platform::removeItemExplained(file.path);
      switch (removal.outcome) {
      case platform::RemoveOutcome::removed:
        result.freedBytes += file.size;
        ++result.filesDeleted;
        break;
      case platform::RemoveOutcome::alreadyGone: break;
      case platform::RemoveOutcome::permissionDenied:
        if (const auto identity = platform::identify(file.path)) {
          refused.push_back({&group, &file, platform::PrivilegedItem{file.path, *identity}});
        }
        break;
      case platform::RemoveOutcome::failed: result.failedFiles.push_back({file.path, removal.reason}); break;
      }
    }
  }

  if (!refused.empty()) {
    // The checks again, right before the prompt: the deletions above may have taken a while.
    std::vector<platform::PrivilegedItem> targets;
    std::vector<const Refused*> sent;
    for (const auto& entry : refused) {
      if (auto reason = reasonToKeep(*entry.group, *entry.file); !reason.empty()) {
        result.failedFiles.push_back({entry.file->path, std::move(reason)});
        continue;
      }
      targets.push_back(entry.target);
      sent.push_back(&entry);
    }
    // One prompt for the whole batch. What the helper removed counts as deleted, but adds
    // nothing to the bytes freed.
    const platform::HelperBatch batch = !platform_.privileged || targets.empty()
                                            ? platform::HelperBatch{}
                                            : platform::removeWithPrivileges(*platform_.privileged, targets);
    for (std::size_t i = 0; i < sent.size(); ++i) {
      if (!batch.granted) {
        result.failedFiles.push_back({sent[i]->file->path, "administrator access was not granted"});
        continue;
      }
      const platform::HelperReport& report = batch.reports[i];
      if (report.outcome == platform::HelperOutcome::removed) ++result.filesDeleted;
      else if (report.outcome == platform::HelperOutcome::failed) result.failedFiles.push_back({sent[i]->file->path, report.reason});
    }
  }
  result.duration = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  return result;
}

} // namespace halcyra::duplicates
