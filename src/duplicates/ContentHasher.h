#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include "duplicates/FileIndex.h"

namespace halcyra::duplicates {

/// A SHA-256 digest.
using Digest = std::array<unsigned char, 32>;

/// Establishes which files of each size group have equal whole-content SHA-256 digests.
///
/// Reading every candidate in full is what a scan costs, so this does less where it can
/// without changing the answer:
/// - a file is first probed: files of up to 8 KiB are read whole and digested at once; of a
///   larger one, the first and last 4 KiB and its size are digested as a key. A file whose
///   key no other member of its group shares cannot have the digest of any other member, and
///   is never read in full;
/// - names that were hard links of one file when indexed are read once, after each name has
///   been opened and found to be that same file still;
/// - up to `workers` threads probe and hash at once, each with one 1 MiB read buffer, so
///   memory stays bounded whatever the file sizes.
/// Only regular files are read: every open is no-follow and non-blocking, and a name that is
/// no longer a regular file (a FIFO swapped in, a link) is left out, as is one that cannot be
/// opened. Files are read as they are now, whatever their size when indexed.
class ContentHasher {
public:
  /// Called on the calling thread with the number of candidates settled so far (digested,
  /// proved unique, or left out): at least once each time that number passes a multiple of
  /// `reportEvery`, and once more with the total at the end. The number only grows.
  using SettledCallback = std::function<void(std::size_t settled)>;

  /// For every file of every group, in the groups' order, its digest; none for a file that
  /// was left out or proved unique in its group. Settles every candidate exactly once.
  static std::vector<std::vector<std::optional<Digest>>> digests(const std::vector<SizeGroup>& groups, unsigned workers,
                                                                 std::size_t reportEvery,
                                                                 const SettledCallback& onSettled);
};

} // namespace halcyra::duplicates
