#include "core/ByteFormatter.h"

#include <array>
#include <cstdint>
#include <string_view>

#include <fmt/format.h>

namespace halcyra::core {
namespace {

// The platform formatter's adaptive precision: whole numbers up to kilobytes, one decimal for
// megabytes, two from gigabytes on; trailing zeros are dropped.
int decimalsFor(std::size_t unitIndex) {
  if (unitIndex <= 1) return 0;
  if (unitIndex == 2) return 1;
  return 2;
}

std::string trimZeros(std::string text) {
  if (text.find('.') == std::string::npos) return text;
  while (!text.empty() && text.back() == '0') text.pop_back();
  if (!text.empty() && text.back() == '.') text.pop_back();
  return text;
}

// Half away from zero for the non-negative values met here, without the math library (the
// command line does not otherwise load it).
long double roundHalfUp(long double value) {
  return static_cast<long double>(static_cast<std::uint64_t>(value + 0.5L));
}

// Picks the smallest unit in [firstUnit, units) whose rounded value stays below the base, so
// 999,999 bytes reads "1 MB" rather than "1,000 KB".
template <std::size_t N>
std::string scaled(long double magnitude, bool negative, double base, std::size_t firstUnit,
                   const std::array<std::string_view, N>& units) {
  std::size_t unit = firstUnit;
  long double value = magnitude;
  for (std::size_t i = 0; i < firstUnit; ++i) value /= base;
  for (;;) {
    const int decimals = decimalsFor(unit);
    const long double factor = decimals == 0 ? 1.0L : decimals == 1 ? 10.0L : 100.0L;
    const long double rounded = roundHalfUp(value * factor) / factor;
    if (rounded < base || unit + 1 == N) {
      std::string number = trimZeros(fmt::format("{:.{}f}", static_cast<double>(rounded), decimals));
      return fmt::format("{}{} {}", negative ? "-" : "", number, units[unit]);
    }
    value /= base;
    ++unit;
  }
}

constexpr std::array<std::string_view, 5> kFileUnits{"B", "KB", "MB", "GB", "TB"};
constexpr std::array<std::string_view, 7> kMemoryUnits{"bytes", "KB", "MB", "GB", "TB", "PB", "EB"};

} // namespace

namespace ByteFormatter {

std::string format(std::int64_t bytes) {
  if (bytes == 0) return "0 KB";
  if (bytes < 1000) return fmt::format("{} B", bytes);
  return scaled(static_cast<long double>(bytes), false, 1000.0, 1, kFileUnits);
}

std::string format(std::uint64_t bytes) {
  if (bytes == 0) return "0 KB";
  if (bytes < 1000) return fmt::format("{} B", bytes);
  return scaled(static_cast<long double>(bytes), false, 1000.0, 1, kFileUnits);
}

std::string formatMemory(std::uint64_t bytes) {
  if (bytes == 0) return "Zero KB";
  if (bytes == 1) return "1 byte";
  if (bytes < 1024) return fmt::format("{} bytes", bytes);
  return scaled(static_cast<long double>(bytes), false, 1024.0, 1, kMemoryUnits);
}

} // namespace ByteFormatter
} // namespace halcyra::core
