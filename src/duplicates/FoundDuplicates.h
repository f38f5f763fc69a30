#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "duplicates/DuplicateGroup.h"
#include "duplicates/FileIndex.h"
#include "duplicates/SelectionStrategy.h"

namespace halcyra::duplicates {

/// The groups of one scan, held compactly: a group is its size, the start of its digest and
/// the numbers of its files in the walk's index, oldest first. Paths, ids and other texts are
/// made only when asked for, so a front end can write a large result one group at a time.
class FoundDuplicates {
public:
  /// Groups in the order `DuplicateFileService::scan` returns them: the group that frees
  /// most first.
  std::size_t groupCount() const { return groups_.size(); }
  /// At least two.
  std::size_t fileCount(std::size_t group) const { return groups_[group].end - groups_[group].begin; }
  /// Bytes of one copy, as the first file's size attribute read after the digests; 0 when it
  /// could not be read.
  std::int64_t fileSize(std::size_t group) const { return groups_[group].fileSize; }
  /// The first 12 lower-case hex digits of the group's SHA-256 digest.
  std::string fileHash(std::size_t group) const;
  /// The last path component of the group's first (oldest) file.
  std::string_view representativeFileName(std::size_t group) const { return index_.name(fileAt(group, 0)); }
  /// The path of the file at `position` (0 is the oldest) into `out`.
  void path(std::size_t group, std::size_t position, std::string& out) const { index_.path(fileAt(group, position), out); }
  FileDate modificationDate(std::size_t group, std::size_t position) const {
    return index_.modificationDate(fileAt(group, position));
  }
  /// Whether the copy at `position` is marked for deletion when each group keeps the copy
  /// the rule names; files are oldest first, so that is the first or the last.
  bool isSelected(std::size_t group, std::size_t position, SelectionStrategy strategy) const {
    return strategy == SelectionStrategy::keepOldest ? position != 0 : position + 1 < fileCount(group);
  }
  /// `isSelected` copies times the size.
  std::int64_t totalWastedSize(std::size_t group) const {
    return static_cast<std::int64_t>(fileCount(group) - 1) * fileSize(group);
  }

  /// The groups as records with fresh ids, every copy but the oldest selected.
  std::vector<DuplicateGroup> records() const;

private:
  friend class DuplicateFileService;

  struct Group {
    std::int64_t fileSize = 0;
    std::uint32_t begin = 0; // the group's files are `files_[begin, end)`
    std::uint32_t end = 0;
    std::array<unsigned char, 6> hash{};
  };
  std::size_t fileAt(std::size_t group, std::size_t position) const { return files_[groups_[group].begin + position]; }

  FileIndex index_;
  std::vector<Group> groups_;
  std::vector<std::uint32_t> files_;
};

} // namespace halcyra::duplicates
