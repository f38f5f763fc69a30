// An "hdiutil info" listing can never steer the backup walk outside "/Volumes": every path it
// yields is a plain path below it, without a line break, taken from the listing.
#include "FuzzInput.h"
#include "clean/BackupScanner.h"

using namespace halcyra;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // The bundle's name before the first NUL byte, the listing after it.
  const auto [bundleName, listing] = fuzz::parameterAndText(fuzz::text(data, size));
  for (const auto& path : clean::BackupScanner::parseMountedBundlePaths(listing, bundleName)) {
    fuzz::require(path.starts_with("/Volumes/"), "a bundle's path is below /Volumes");
    fuzz::require(path.find('\n') == std::string::npos, "a bundle's path stays within its line");
    fuzz::require(path.find("/../") == std::string::npos && !path.ends_with("/.."), "no path climbs out");
    fuzz::require(path.find("/./") == std::string::npos && !path.ends_with("/."), "no path has a dot component");
    fuzz::require(listing.find(path) != std::string::npos, "a bundle's path is text of the listing");
  }
  return 0;
}
