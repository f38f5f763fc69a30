#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace halcyra::analyzer {

/// One of the largest files a scan met.
struct LargestFileEntry {
  std::string id; ///< fresh random UUID text
  std::string path;
  std::string name;
  std::int64_t size = 0; ///< allocated size
};

/// How many entries the list of largest files keeps.
inline constexpr std::size_t kLargestFileCount = 20;

/// Offers `entry` to `list`, which is kept largest first and at most kLargestFileCount long.
/// Once the list is full, an entry enters only when it is strictly larger than the last one,
/// which it replaces; among equal sizes the entry offered first stays in front.
void insertLargestFile(LargestFileEntry entry, std::vector<LargestFileEntry>& list);

} // namespace halcyra::analyzer
