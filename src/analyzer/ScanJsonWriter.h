#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "analyzer/DiskAnalyzerService.h"
#include "analyzer/FolderSink.h"

namespace halcyra::analyzer {

/// Writes a scan's result as JSON text while the scan goes on, so that no folder is kept once
/// it is written: an object with "root" (the tree: id, name, path, children, size, fileCount,
/// isPermissionDenied), "totalSize", "fileCount", "directoryCount", "duration" and
/// "largestFiles" (id, path, name, size). The layout is that of core::toJsonText and strings
/// go through the same escaping; ids are fresh random UUIDs.
///
/// The tree holds the same folders as the one scanDirectory returns. A folder is written only
/// once it is known to stay in it (the root always, any other once its size is at least 1):
/// its object is opened when its first such sub-folder is, or when it is left. So its
/// "children" come before its "size".
class ScanJsonWriter final : public FolderSink {
public:
  /// `write` gets the text in parts of whole lines, in order.
  explicit ScanJsonWriter(std::function<void(std::string_view)> write);

  void enterFolder(std::string_view name, std::string_view path) override;
  void leaveFolder(const Totals& totals) override;

  /// Whether the scanned folder itself could not be listed; known once the scan has returned.
  bool rootDenied() const { return rootDenied_; }

  /// Writes everything after the tree; call once, after the scan has returned.
  void finish(const DiskAnalyzerScanSummary& summary);

private:
  struct Folder {
    std::size_t pathLength;
    std::size_t nameLength; // the name is the end of the path
    bool opened;            // written up to the value of "children"
    bool hasChildren;       // a sub-folder of it has been written
  };

  void open(std::size_t index);
  void indent(int level);
  void key(int level, std::string_view quoted);
  void string(int level, std::string_view quoted, std::string_view value);
  void number(int level, std::string_view quoted, std::int64_t value);
  void flush();

  std::function<void(std::string_view)> write_;
  std::string text_;
  std::string path_; // path of the folder entered last
  std::vector<Folder> folders_;
  bool rootDenied_ = false;
};

} // namespace halcyra::analyzer
