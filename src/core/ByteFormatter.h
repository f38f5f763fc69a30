#pragma once

#include <cstdint>
#include <string>

namespace halcyra::core {

/// Sizes as text, the way the platform's byte count formatter writes them.
namespace ByteFormatter {

/// A file or disk size: "0 KB" for zero, the digits and " B" below 1000 (negatives included),
/// otherwise decimal units (1000 bytes to the kilobyte) from KB to TB.
std::string format(std::int64_t bytes);
std::string format(std::uint64_t bytes);

/// A memory size: binary units (1024), every unit allowed, no special zero rule.
std::string formatMemory(std::uint64_t bytes);

} // namespace ByteFormatter
} // namespace halcyra::core
