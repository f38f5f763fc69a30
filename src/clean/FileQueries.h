#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace halcyra::clean {

/// What a path is, as the path itself says: a symbolic link is a link, never what it points at.
enum class PathKind { missing, directory, file, symlink, other };

/// One entry of a folder listing.
struct DirectoryEntry {
  std::string name;
  PathKind kind = PathKind::other;
};

using TimePoint = std::chrono::system_clock::time_point;

/// The kind of `path` without following a final symbolic link.
PathKind pathKind(const std::string& path);

/// The entries of a folder other than "." and "..", in the order the file system gives them;
/// none when the folder cannot be listed (missing, refused, not a folder, or a symbolic link:
/// the scanners never follow one). A folder mounted inside it (a volume or a bind mount) is
/// listed as `other`, so that no scanner enters or offers it.
std::optional<std::vector<DirectoryEntry>> listDirectory(const std::string& path);

/// The modification time of `path` itself (a link's own time for a link); none when unreadable.
std::optional<TimePoint> modificationTime(const std::string& path);

/// Whether an entry stays out of an age-limited listing: its modification time is later than
/// `cutoff`. An entry whose time cannot be read counts as infinitely old and stays in.
bool isNewerThan(const std::string& path, TimePoint cutoff);

/// Whether `base` + "/" + `relative` is a folder reached through folders only: `base` and every
/// component of `relative` must be a real folder, not a symbolic link to one.
bool isDirectoryBelow(const std::string& base, const std::string& relative);

/// The last component of a path.
std::string lastComponent(const std::string& path);

/// The path without its last component ("/a/b" gives "/a").
std::string parentPath(const std::string& path);

/// Whether `text` begins with `prefix`, ignoring the case of ASCII letters.
bool startsWithIgnoringCase(std::string_view text, std::string_view prefix);

} // namespace halcyra::clean
