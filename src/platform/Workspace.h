#pragma once

#include <functional>
#include <memory>
#include <string>

namespace halcyra::platform {

class ProcessRunner;

/// What became of one item sent to the Trash.
struct TrashOutcome {
  enum class Status {
    moved,     ///< it is in the Trash now, at `trashedPath`
    missing,   ///< nothing was there
    noTrash,   ///< its volume has no Trash that can be used safely; the item is untouched
    failed,    ///< the move was refused; the item is untouched
  };
  Status status = Status::failed;
  std::string trashedPath;
  std::string message; ///< for a log line when it was not moved

  bool succeeded() const { return status == Status::moved; }
};

/// The desktop around the program: the Trash, the file manager and the default applications.
class Workspace {
public:
  virtual ~Workspace() = default;
  /// Moves the item at `path` to the Trash of its volume, whole; a symbolic link goes as the
  /// link itself (a trailing slash does not make it stand for its target).
  virtual TrashOutcome moveToTrash(const std::string& path) = 0;
  /// Shows the item in the file manager; false when that could not be asked for.
  virtual bool revealInFileManager(const std::string& path) = 0;
  /// Opens a link in its default application; false when that could not be asked for.
  virtual bool openUrl(const std::string& url) = 0;
};

/// The freedesktop.org desktop of Linux.
///
/// The Trash is laid out as freedesktop.org desktops share it: an item on the volume of the
/// home Trash is renamed into its files/ folder, one on another volume into that volume's
/// "$topdir/.Trash-$uid" (made with mode 0700 when absent, and used only when it is a real
/// folder of this user that others cannot enter). Each item gets a unique name and an
/// info/<name>.trashinfo record with its percent-encoded path and deletion date. Nothing is
/// ever copied: an item that cannot be renamed into a Trash stays where it is, and the outcome
/// says so. Reveal and open run "/usr/bin/xdg-open" with a time limit.
class FreedesktopWorkspace final : public Workspace {
public:
  /// `homeTrash` is the user's Trash folder (see freedesktopTrashDirectory). `mountPointOf`
  /// gives the top folder of the volume holding a path; the default walks up the real file
  /// system until the device changes.
  FreedesktopWorkspace(std::shared_ptr<ProcessRunner> runner, std::string homeTrash,
                       std::function<std::string(const std::string&)> mountPointOf = {});

  TrashOutcome moveToTrash(const std::string& path) override;
  bool revealInFileManager(const std::string& path) override;
  bool openUrl(const std::string& url) override;

  /// The path as a Trash record writes it: bytes other than letters, digits, "/" and
  /// -_.!~*'() as %XX.
  static std::string percentEncoded(const std::string& path);

private:
  std::shared_ptr<ProcessRunner> runner_;
  std::string homeTrash_;
  std::function<std::string(const std::string&)> mountPointOf_;
};

/// macOS: Finder moves items to the Trash (through "/usr/bin/osascript"), "/usr/bin/open -R"
/// reveals, "/usr/bin/open" opens links.
class FinderWorkspace final : public Workspace {
public:
  explicit FinderWorkspace(std::shared_ptr<ProcessRunner> runner) : runner_(std::move(runner)) {}

  TrashOutcome moveToTrash(const std::string& path) override;
  bool revealInFileManager(const std::string& path) override;
  bool openUrl(const std::string& url) override;

private:
  std::shared_ptr<ProcessRunner> runner_;
};

} // namespace halcyra::platform
