#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace halcyra::testing {

/// A temporary folder for one test, removed with everything in it at the end (permissions
/// are restored first, so read-only fixtures go too).
class TempDir {
public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::string& path() const { return path_; }
  /// path() + "/" + relative
  std::string operator/(std::string_view relative) const;

  /// Creates the folder and its parents; returns its path.
  std::string mkdir(std::string_view relative) const;
  /// Writes `size` bytes (or `content`) to a file, creating its parents; returns its path.
  std::string file(std::string_view relative, std::int64_t size) const;
  std::string file(std::string_view relative, std::string_view content) const;
  /// An executable shell script, for fake tools.
  std::string script(std::string_view relative, std::string_view body) const;
  /// A symbolic link at `relative` pointing at `target` (taken as given).
  std::string symlink(std::string_view relative, const std::string& target) const;
  /// Sets the modification time of a path (not following links) to `secondsAgo` in the past.
  static void setAge(const std::string& path, std::int64_t secondsAgo);

private:
  std::string path_;
};

/// Every byte of a file; empty when it cannot be read.
std::string readFile(const std::string& path);
/// Whether something (a link included) exists at the path.
bool existsNoFollow(const std::string& path);

} // namespace halcyra::testing
