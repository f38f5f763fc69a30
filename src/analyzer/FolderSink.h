#pragma once

#include <cstdint>
#include <string_view>

namespace halcyra::analyzer {

/// Receives the folders of a scan, down to the depth limit, in the order one depth-first walk
/// in listing order enters and leaves them: every enterFolder is matched by one leaveFolder,
/// and the folders entered in between are the folder's sub-folders, in listing order. Every
/// folder entered is reported, those that come to nothing (size 0) too; the first one
/// entered is the scanned folder itself.
///
/// Calls come one at a time, from whichever thread of the scan is walking, interleaved in
/// order with the status texts; they should return soon, as the walk waits for them.
class FolderSink {
public:
  /// What is known of a folder once everything below it has been walked.
  struct Totals {
    /// Allocated size of all regular files below the folder, at any depth.
    std::int64_t size = 0;
    /// Regular files directly inside; 0 for a folder at the depth limit.
    std::int64_t fileCount = 0;
    /// Listing the folder failed (it then has size 0).
    bool isPermissionDenied = false;
  };

  virtual ~FolderSink() = default;

  /// `name` is the last path component ("/" for the root of the file system), `path` the
  /// absolute path. Both are valid during the call only.
  virtual void enterFolder(std::string_view name, std::string_view path) = 0;
  /// Leaves the folder entered last and not yet left.
  virtual void leaveFolder(const Totals& totals) = 0;
};

} // namespace halcyra::analyzer
