#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace halcyra::duplicates {

/// The longest shell line handed to the privileged runner. Linux passes the line to the shell
/// as one argument, and the kernel refuses a single argument of 128 KiB or more.
constexpr std::size_t kMaxRemovalLineBytes = 120'000;

/// "rm -f '<p1>' '<p2>' ...": the paths in order, each as one single-quoted shell word.
/// Paths that do not fit one line of `maxBytes` go to the next line, so the result is one
/// line unless the batch is very large. Callers pass absolute paths only, so that no path can
/// be taken for an option of rm.
std::vector<std::string> removalCommandLines(const std::vector<std::string>& paths,
                                             std::size_t maxBytes = kMaxRemovalLineBytes);

} // namespace halcyra::duplicates
