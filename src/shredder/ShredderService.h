#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "shredder/FileLayer.h"
#include "shredder/ShredResult.h"
#include "shredder/ShredderFile.h"
#include "shredder/ShredderRefusal.h"

namespace halcyra::shredder {

/// Destroys files so that their contents cannot be read back: each file is encrypted in place
/// with a key that exists only during the call, overwritten a chosen number of times,
/// truncated, renamed to a random name and deleted; afterwards a bounded amount of random
/// data is written beside the first file and removed again, over the blocks just freed.
/// Where the unprivileged path fails for a file, the same work is asked of a privileged
/// shell line for that one file.
///
/// Holds no state between calls. Only regular files with a single name are ever opened:
/// symbolic links, FIFOs, sockets, devices and files with other hard links are refused, and
/// the check is repeated on the open descriptor, so a file swapped for something else
/// between listing and shredding is refused too.
class ShredderService {
public:
  /// Text and overall fraction (0 to 1). Called on the thread of the run, once per chunk;
  /// it must return at once.
  using ProgressCallback = std::function<void(const std::string& text, double fraction)>;

  static constexpr std::int64_t kChunkSize = 1'048'576;       ///< encryption and overwrite chunk
  static constexpr std::int64_t kFillChunkSize = 4'194'304;   ///< size of each fill file
  static constexpr std::int64_t kFillLimit = 524'288'000;     ///< at most this much fill
  static constexpr double kFileStageShare = 0.8;
  static constexpr double kFillShare = 0.2;

  explicit ShredderService(platform::Platform platform, std::shared_ptr<FileLayer> files = nullptr);

  /// The files behind the given absolute paths, in order: a file as itself, a folder as its
  /// regular, non-hidden files at any depth (hidden files and folders are not entered; other
  /// file systems mounted inside are not entered either). Never fails; what cannot be used is
  /// skipped, and given inputs that are refused are added to `refused` with the reason.
  std::vector<ShredderFile> resolveFiles(const std::vector<std::string>& paths,
                                         std::vector<ShredderRefusal>& refused) const;
  std::vector<ShredderFile> resolveFiles(const std::vector<std::string>& paths) const;

  /// Shreds the given files one after another with `passes` overwrite passes, then fills the
  /// freed space. No failure of a single file ends the run: a file that fails goes to the
  /// privileged fall-back and counts only when it is gone afterwards; a file refused on its
  /// descriptor is left as it is and added to `refused` when given.
  ShredResult shredFiles(const std::vector<ShredderFile>& files, int passes, const ProgressCallback& onProgress,
                         std::vector<ShredderRefusal>* refused = nullptr) const;

  /// The privileged shell line for one file that the unprivileged path could not destroy.
  /// It re-checks that the path is a regular file with one name, never a link, before it
  /// overwrites and removes it.
  static std::string fallbackShellLine(const std::string& path, int passes);

private:
  /// A file stage reports its stage number (0 encryption, k pass k) and the fraction done in it.
  using StageProgress = std::function<void(int stage, double fraction)>;
  enum class Outcome { destroyed, refused };

  Outcome shredSingleFile(const std::string& path, int passes, const StageProgress& onStageProgress,
                          std::string& refusalReason) const;
  void encryptInPlace(int fd, const std::string& path, std::int64_t fileSize, std::vector<unsigned char>& chunk,
                      const StageProgress& onStageProgress) const;
  void overwrite(int fd, std::int64_t fileSize, int passes, std::vector<unsigned char>& chunk,
                 const StageProgress& onStageProgress) const;
  void renameAndDelete(const std::string& path) const;
  bool fallBack(const std::string& path, int passes, std::string& refusalReason) const;
  void fillFreedSpace(std::int64_t totalBytes, const std::vector<ShredderFile>& files,
                      const std::function<void(double)>& onProgress) const;

  platform::Platform platform_;
  std::shared_ptr<FileLayer> files_;
};

} // namespace halcyra::shredder
