#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <span>

#include "duplicates/FileIndex.h"

namespace halcyra::duplicates {

/// A SHA-256 digest.
using Digest = std::array<unsigned char, 32>;

/// Establishes which files of each size group have equal whole-content SHA-256 digests.
///
/// Reading and digesting every candidate in full is what a scan costs, so this does less
/// where it can without changing the answer:
/// - each file is first probed. One of up to 8 KiB is read whole and digested at once; of a
///   larger one, the first and last 1 KiB and its size make a key. A file whose key no other
///   member of its group shares cannot have the digest of any other member, and is never read
///   in full;
/// - files that share a key are read side by side, block by block, and only the first of
///   them is digested: a file whose every block equals the first one's has its digest. One
///   that departs goes on alone from the digest state where they parted, so every digest is
///   that of the file's own whole content, and every file is read once;
/// - names that were hard links of one file when indexed are read once, after each name has
///   been opened and found to be that same file still;
/// - up to `workers` threads work at once, each with one 64 KiB read buffer and at most 16
///   open files, so memory stays bounded whatever the file sizes. The groups are taken in
///   batches of about `batchSize` candidates (a larger group is a batch of its own), so the
///   bookkeeping of a file exists only while its batch is read.
/// Only regular files are read: every open is no-follow and non-blocking, and a name that is
/// no longer a regular file (a FIFO swapped in, a link) is left out, as is one that cannot be
/// opened. Files are read as they are now, whatever their size when indexed.
class ContentHasher {
public:
  static constexpr std::size_t kDefaultBatch = 1024;

  /// Called on the calling thread with the number of candidates settled so far (digested,
  /// proved unique, or left out): at least once each time that number passes a multiple of
  /// `reportEvery`, and with each batch's last file. The number only grows.
  using SettledCallback = std::function<void(std::size_t settled)>;
  /// Called on the calling thread once a batch is settled, batches in order: the size groups
  /// `runs[firstRun, endRun)` and, for each of their files in order, its digest; none for a
  /// file that was left out or proved unique in its group.
  using DigestsCallback =
      std::function<void(std::size_t firstRun, std::size_t endRun, std::span<const std::optional<Digest>> digests)>;

  /// Settles every candidate of `shared` exactly once.
  static void digests(const FileIndex& index, const FileIndex::SharedSizes& shared, unsigned workers,
                      std::size_t reportEvery, const SettledCallback& onSettled, const DigestsCallback& onDigests,
                      std::size_t batchSize = kDefaultBatch);
};

} // namespace halcyra::duplicates
