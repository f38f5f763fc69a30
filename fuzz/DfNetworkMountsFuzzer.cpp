// A "df -T" listing is another program's text: any bytes give a set of mount points, each one
// the tail of one line of it.
#include "FuzzInput.h"
#include "clean/BackupScanner.h"

using namespace halcyra;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string listing = fuzz::text(data, size);
  for (const auto& mountPoint : clean::BackupScanner::parseNetworkMountPoints(listing)) {
    fuzz::require(!mountPoint.empty(), "a mount point is never empty");
    fuzz::require(mountPoint.find('\n') == std::string::npos, "a mount point stays within its line");
    fuzz::require(listing.find(mountPoint) != std::string::npos, "a mount point is text of the listing");
  }
  return 0;
}
