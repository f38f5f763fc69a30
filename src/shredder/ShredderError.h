#pragma once

#include <stdexcept>
#include <string>

namespace halcyra::shredder {

/// A file the shredder could not open. The text is a fixed prefix and the file's name.
class ShredderError : public std::runtime_error {
public:
  enum class Kind { cannotOpenFile, cannotReadFile, directoryEnumerationFailed };

  ShredderError(Kind kind, std::string path);

  Kind kind() const noexcept { return kind_; }
  const std::string& path() const noexcept { return path_; }
  /// "Cannot open file for writing: x.txt" and the like; the same text as what().
  std::string errorDescription() const { return what(); }

private:
  Kind kind_;
  std::string path_;
};

} // namespace halcyra::shredder
