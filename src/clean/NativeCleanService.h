#pragma once

#include "clean/CleanServiceProtocol.h"
#include "platform/Platform.h"

namespace halcyra::clean {

/// The junk cleaner's engine over the real (or a fake) system. Holds no state between calls.
class NativeCleanService final : public CleanServiceProtocol {
public:
  explicit NativeCleanService(platform::Platform platform);

  std::vector<CleanCategory> scan(const StatusCallback& onProgress) override;
  CleanResult clean(const std::vector<CleanItem>& items, const StatusCallback& onProgress) override;

  const platform::Platform& platform() const noexcept { return platform_; }

private:
  platform::Platform platform_;
};

} // namespace halcyra::clean
