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
/// Where the unprivileged path fails for a file, the same work is asked of the privileged
/// helper for that one file.
///
/// Holds no state between calls. Only regular files with a single name are ever opened:
/// symbolic links, FIFOs, sockets, devices and files with other hard links are refused. Every
/// file is bound to its identity and its folder's when it is listed; it is reached through its
/// folder's descriptor and refused when either is no longer the same, so a file or a folder
/// swapped for something else between listing and shredding is never touched.
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

  /// A file stage reports its stage number (0 encryption, k pass k) and the fraction done in it.
  using StageProgress = std::function<void(int stage, double fraction)>;
  enum class Outcome { destroyed, refused };

  /// Destroys the entry `name` of the open folder `folder`: encrypts, overwrites, truncates,
  /// renames and removes it, all relative to that folder. It must be a regular file with one
  /// name and, when `expected` is given, that very file; otherwise it is refused with the
  /// reason and left alone. Throws when a step fails. The privileged helper uses it as it is.
  Outcome destroyEntry(int folder, const std::string& name, const platform::FileIdentity* expected, int passes,
                       const StageProgress& onStageProgress, std::string& refusalReason) const;

private:
  Outcome shredSingleFile(const ShredderFile& file, int passes, const StageProgress& onStageProgress,
                          std::string& refusalReason) const;
  void encryptInPlace(int fd, const std::string& path, std::int64_t fileSize, std::vector<unsigned char>& chunk,
                      const StageProgress& onStageProgress) const;
  void overwrite(int fd, std::int64_t fileSize, int passes, std::vector<unsigned char>& chunk,
                 const StageProgress& onStageProgress) const;
  bool fallBack(const ShredderFile& file, int passes, std::string& refusalReason) const;
  void fillFreedSpace(std::int64_t totalBytes, const std::vector<ShredderFile>& files,
                      const std::function<void(double)>& onProgress) const;

  platform::Platform platform_;
  std::shared_ptr<FileLayer> files_;
};

} // namespace halcyra::shredder
