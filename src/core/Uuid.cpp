#include "core/Uuid.h"

#include <array>
#include <stdexcept>

#include <unistd.h>
#if defined(__APPLE__)
#include <sys/random.h>
#endif

namespace halcyra::core {

// Record ids are names, not secrets: they take their bytes straight from the system's entropy
// source. Keys and overwrite passes use OpenSSL's generator; starting that generator loads a
// provider of about 2 MiB, which a scan that only names its records has no need of.
std::string makeUuid() {
  std::array<unsigned char, 16> bytes{};
  if (::getentropy(bytes.data(), bytes.size()) != 0) {
    throw std::runtime_error("the random source failed");
  }
  bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0F) | 0x40); // version 4
  bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3F) | 0x80); // RFC 4122 variant
  static constexpr char digits[] = "0123456789ABCDEF";
  std::string text;
  text.reserve(36);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text.push_back('-');
    text.push_back(digits[bytes[i] >> 4]);
    text.push_back(digits[bytes[i] & 0x0F]);
  }
  return text;
}

} // namespace halcyra::core
