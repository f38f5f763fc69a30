#include "shredder/ShredderError.h"

namespace halcyra::shredder {
namespace {

std::string lastComponent(const std::string& path) {
  std::string trimmed = path;
  while (trimmed.size() > 1 && trimmed.back() == '/') trimmed.pop_back();
  const auto slash = trimmed.rfind('/');
  return slash == std::string::npos || trimmed.size() == 1 ? trimmed : trimmed.substr(slash + 1);
}

std::string describe(ShredderError::Kind kind, const std::string& path) {
  switch (kind) {
  case ShredderError::Kind::cannotOpenFile: return "Cannot open file for writing: " + lastComponent(path);
  case ShredderError::Kind::cannotReadFile: return "Cannot read file: " + lastComponent(path);
  case ShredderError::Kind::directoryEnumerationFailed: return "Cannot enumerate directory: " + lastComponent(path);
  }
  return lastComponent(path);
}

} // namespace

ShredderError::ShredderError(Kind kind, std::string path)
    : std::runtime_error(describe(kind, path)), kind_(kind), path_(std::move(path)) {}

} // namespace halcyra::shredder
