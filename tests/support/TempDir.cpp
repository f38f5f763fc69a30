#include "support/TempDir.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <sys/stat.h>
#include <sys/time.h>
#include <fcntl.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace halcyra::testing {

TempDir::TempDir() {
  const char* base = std::getenv("TMPDIR");
  std::string pattern = std::string(base != nullptr && base[0] != '\0' ? base : "/tmp") + "/halcyra-test-XXXXXX";
  if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
  path_ = fs::canonical(pattern).string();
}

TempDir::~TempDir() {
  std::error_code error;
  // Give every folder back its rights, so that removal can enter and empty it.
  for (auto it = fs::recursive_directory_iterator(path_, fs::directory_options::skip_permission_denied, error);
       it != fs::recursive_directory_iterator(); it.increment(error)) {
    if (error) break;
    if (it->is_directory(error) && !it->is_symlink(error)) ::chmod(it->path().c_str(), 0755);
  }
  ::chmod(path_.c_str(), 0755);
  fs::remove_all(path_, error);
}

std::string TempDir::operator/(std::string_view relative) const { return path_ + "/" + std::string(relative); }

std::string TempDir::mkdir(std::string_view relative) const {
  const std::string full = *this / relative;
  fs::create_directories(full);
  return full;
}

std::string TempDir::file(std::string_view relative, std::int64_t size) const {
  return file(relative, std::string(static_cast<std::size_t>(size), 'x'));
}

std::string TempDir::file(std::string_view relative, std::string_view content) const {
  const std::string full = *this / relative;
  fs::create_directories(fs::path(full).parent_path());
  std::ofstream stream(full, std::ios::binary | std::ios::trunc);
  stream.write(content.data(), static_cast<std::streamsize>(content.size()));
  if (!stream) throw std::runtime_error("cannot write " + full);
  return full;
}

std::string TempDir::script(std::string_view relative, std::string_view body) const {
  const std::string full = file(relative, "#!/bin/sh\n" + std::string(body) + "\n");
  ::chmod(full.c_str(), 0755);
  return full;
}

std::string TempDir::symlink(std::string_view relative, const std::string& target) const {
  const std::string full = *this / relative;
  fs::create_directories(fs::path(full).parent_path());
  if (::symlink(target.c_str(), full.c_str()) != 0) throw std::runtime_error("symlink failed: " + full);
  return full;
}

void TempDir::setAge(const std::string& path, std::int64_t secondsAgo) {
  timespec times[2];
  ::clock_gettime(CLOCK_REALTIME, &times[0]);
  times[0].tv_sec -= secondsAgo;
  times[1] = times[0];
  ::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW);
}

std::string readFile(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
}

bool existsNoFollow(const std::string& path) {
  struct stat info {};
  return ::lstat(path.c_str(), &info) == 0;
}

} // namespace halcyra::testing
