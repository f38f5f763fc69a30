#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace halcyra::platform {

class ProcessRunner;

/// How many items the Trash holds and how much they weigh.
struct TrashSummary {
  std::int64_t itemCount = 0;
  std::int64_t totalSize = 0;
};

/// The user's Trash, seen as one item that is measured and emptied whole.
class Trash {
public:
  virtual ~Trash() = default;
  /// Count and total size; none when the Trash could not be read.
  virtual std::optional<TrashSummary> summary() = 0;
  /// Empties the Trash once; false when that failed. There is no second attempt.
  virtual bool empty() = 0;
  /// The path of the one item that stands for the whole Trash in a scan's results.
  virtual std::string itemPath() const = 0;
};

/// The freedesktop.org Trash of a Linux desktop: `<trash>/files` holds the items, `<trash>/info`
/// their records. The item count is the number of entries of files/, the size the logical size
/// of everything below it, hidden files included.
class FreedesktopTrash final : public Trash {
public:
  explicit FreedesktopTrash(std::string trashDirectory) : directory_(std::move(trashDirectory)) {}

  std::optional<TrashSummary> summary() override;
  bool empty() override;
  std::string itemPath() const override { return directory_; }

private:
  std::string directory_;
};

/// The Trash of macOS, measured and emptied by Finder through "/usr/bin/osascript".
class FinderTrash final : public Trash {
public:
  FinderTrash(std::shared_ptr<ProcessRunner> runner, std::string home)
      : runner_(std::move(runner)), home_(std::move(home)) {}

  std::optional<TrashSummary> summary() override;
  bool empty() override;
  std::string itemPath() const override { return home_ + "/.Trash"; }

  /// Reads Finder's "count,size" answer; none unless it is two plain decimal numbers.
  static std::optional<TrashSummary> parseFinderAnswer(const std::string& answer);

private:
  std::shared_ptr<ProcessRunner> runner_;
  std::string home_;
};

/// The Trash folder of a Linux user: $XDG_DATA_HOME/Trash for the running user's own home,
/// else <home>/.local/share/Trash.
std::string freedesktopTrashDirectory(const std::string& home, bool isRunningUsersHome);

} // namespace halcyra::platform
