#pragma once

#include <string>
#include <string_view>

namespace halcyra::platform {

/// Where the scanned system lives: the user's home folder and the root of the system.
///
/// Every absolute path of the catalogue and the scanners ("/Library/Caches", "/Volumes", ...)
/// goes through `system`, every home-relative one through `inHome`, so a test or an offline
/// disk can stand in for the whole machine. Tool paths never go through here.
class SystemPaths {
public:
  /// `root` "/" (or empty) is the running system itself.
  explicit SystemPaths(std::string home, std::string root = "/");

  /// The running user's home ($HOME, else the password database) and "/".
  static SystemPaths current();

  const std::string& home() const noexcept { return home_; }
  const std::string& root() const noexcept { return root_; }
  /// Whether the root is the running system's own "/", decided by the identity of the folder
  /// (device and inode), so that "/.", a link to "/" or a bind mount of it are all the running
  /// system, and a folder that merely holds similar folders is not.
  bool rootIsRunningSystem() const;

  /// An absolute system path below the root: system("/var/log") is "<root>/var/log".
  std::string system(std::string_view absolutePath) const;
  /// A path below the home: inHome("Library/Caches") is "<home>/Library/Caches".
  std::string inHome(std::string_view relativePath) const;
  /// "~" and "~/x" resolve against the home; absolute paths against the root; others unchanged.
  std::string expand(std::string_view path) const;

private:
  std::string home_;
  std::string root_;
};

/// The path made absolute (against the working folder) without repeated, trailing or "."
/// components. ".." stays: after a symbolic link it means something else than the text says.
std::string normalisedAbsolutePath(const std::string& path);

} // namespace halcyra::platform
