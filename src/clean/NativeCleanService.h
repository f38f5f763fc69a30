#pragma once

#include "clean/CleanServiceProtocol.h"
#include "platform/Platform.h"

namespace halcyra::clean {

/// The name of a category a scan can give, and whether it is protected: found and kept in the
/// results, never selected, never cleaned.
struct CategoryName {
  std::string name;
  bool isProtected = false;
};

/// The junk cleaner's engine over the real (or a fake) system. Holds no state between calls.
class NativeCleanService final : public CleanServiceProtocol {
public:
  explicit NativeCleanService(platform::Platform platform);

  std::vector<CleanCategory> scan(const StatusCallback& onProgress) override;
  CleanResult clean(const std::vector<CleanItem>& items, const StatusCallback& onProgress) override;

  const platform::Platform& platform() const noexcept { return platform_; }

  /// Every category a scan can give, the catalogue's rows first, then the scanners' in scan
  /// order. The Trash is named without its count ("Trash", not "Trash (3 items)").
  static std::vector<CategoryName> categoryNames();

private:
  platform::Platform platform_;
};

} // namespace halcyra::clean
