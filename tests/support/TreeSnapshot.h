#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <sys/stat.h>

#include "support/TempDir.h"

namespace halcyra::testing {

/// Everything below a folder, links not followed: each relative path with its kind, inode and
/// content (a file's bytes, a link's target). Two equal snapshots mean nothing was touched.
inline std::map<std::string, std::string> treeSnapshot(const std::string& folder) {
  namespace fs = std::filesystem;
  std::map<std::string, std::string> snapshot;
  std::error_code error;
  for (auto it = fs::recursive_directory_iterator(folder, error); !error && it != fs::recursive_directory_iterator();
       it.increment(error)) {
    const std::string path = it->path().string();
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0) continue;
    std::string fingerprint = std::to_string(info.st_ino) + ":" + std::to_string(info.st_mode) + ":";
    if (S_ISREG(info.st_mode)) fingerprint += readFile(path);
    else if (S_ISLNK(info.st_mode)) fingerprint += fs::read_symlink(it->path(), error).string();
    snapshot[path.substr(folder.size())] = fingerprint;
  }
  return snapshot;
}

} // namespace halcyra::testing
