#pragma once

#include <string>

namespace halcyra::shredder {

/// An input the shredder will not touch, with the reason in words for the user: a symbolic
/// link, a special file, a file with other hard links, a mount point, a path that is gone.
struct ShredderRefusal {
  std::string path;
  std::string reason;

  bool operator==(const ShredderRefusal&) const = default;
};

} // namespace halcyra::shredder
