#include "shredder/viewmodel/NativeShredderService.h"

namespace halcyra::shredder {

NativeShredderService::NativeShredderService(platform::Platform platform) : service_(std::move(platform)) {}

std::vector<ShredderFile> NativeShredderService::resolveFiles(const std::vector<std::string>& paths,
                                                              std::vector<ShredderRefusal>& refused) {
  return service_.resolveFiles(paths, refused);
}

ShredResult NativeShredderService::shredFiles(const std::vector<ShredderFile>& files, int passes,
                                              const ProgressCallback& onProgress,
                                              std::vector<ShredderRefusal>& refused) {
  return service_.shredFiles(files, passes, onProgress, &refused);
}

} // namespace halcyra::shredder
