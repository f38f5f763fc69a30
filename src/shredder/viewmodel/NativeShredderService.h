#pragma once

#include "platform/Platform.h"
#include "shredder/ShredderService.h"
#include "shredder/viewmodel/ShredderServiceProtocol.h"

namespace halcyra::shredder {

/// The real engine behind the shredder's screens.
class NativeShredderService final : public ShredderServiceProtocol {
public:
  explicit NativeShredderService(platform::Platform platform);

  std::vector<ShredderFile> resolveFiles(const std::vector<std::string>& paths,
                                         std::vector<ShredderRefusal>& refused) override;
  ShredResult shredFiles(const std::vector<ShredderFile>& files, int passes, const ProgressCallback& onProgress,
                         std::vector<ShredderRefusal>& refused) override;

private:
  ShredderService service_;
};

} // namespace halcyra::shredder
