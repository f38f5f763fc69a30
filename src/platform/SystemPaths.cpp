#include "platform/SystemPaths.h"

#include <climits>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace halcyra::platform {
namespace {

std::string withoutTrailingSlash(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

} // namespace

SystemPaths::SystemPaths(std::string home, std::string root)
    : home_(withoutTrailingSlash(std::move(home))), root_(withoutTrailingSlash(std::move(root))) {
  if (root_.empty()) root_ = "/";
}

SystemPaths SystemPaths::current() {
  std::string home;
  if (const char* env = std::getenv("HOME"); env != nullptr && env[0] == '/') {
    home = env;
  } else if (const passwd* entry = getpwuid(getuid()); entry != nullptr && entry->pw_dir != nullptr) {
    home = entry->pw_dir;
  } else {
    home = "/";
  }
  // The home as the file system knows it: removal refuses to pass through symbolic links, so a
  // home reached through one (/home -> /data/home) must be spelled without them from the start.
  if (char* real = ::realpath(home.c_str(), nullptr); real != nullptr) {
    home = real;
    std::free(real);
  }
  return SystemPaths(home, "/");
}

bool SystemPaths::rootIsRunningSystem() const {
  struct stat root {};
  struct stat own {};
  if (::stat(root_.c_str(), &root) != 0 || ::stat("/", &own) != 0) return false;
  return root.st_dev == own.st_dev && root.st_ino == own.st_ino;
}

std::string SystemPaths::system(std::string_view absolutePath) const {
  if (root_ == "/") return std::string(absolutePath);
  std::string result = root_;
  if (absolutePath.empty() || absolutePath.front() != '/') result.push_back('/');
  result.append(absolutePath);
  return result;
}

std::string SystemPaths::inHome(std::string_view relativePath) const {
  std::string result = home_;
  if (relativePath.empty()) return result;
  if (result != "/") result.push_back('/');
  result.append(relativePath);
  return result;
}

std::string SystemPaths::expand(std::string_view path) const {
  if (path == "~") return home_;
  if (path.starts_with("~/")) return inHome(path.substr(2));
  if (path.starts_with("/")) return system(path);
  return std::string(path);
}

std::string normalisedAbsolutePath(const std::string& path) {
  std::string input = path;
  if (input.empty() || input.front() != '/') {
    std::error_code error;
    input = std::filesystem::current_path(error).string() + "/" + input;
  }
  std::string result;
  std::size_t start = 0;
  while (start <= input.size()) {
    std::size_t end = input.find('/', start);
    if (end == std::string::npos) end = input.size();
    const std::string_view part(input.data() + start, end - start);
    if (!part.empty() && part != ".") {
      result.push_back('/');
      result.append(part);
    }
    start = end + 1;
  }
  return result.empty() ? "/" : result;
}

} // namespace halcyra::platform
