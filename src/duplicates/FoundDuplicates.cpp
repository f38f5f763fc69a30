#include "duplicates/FoundDuplicates.h"

#include "core/Uuid.h"

namespace halcyra::duplicates {

std::string FoundDuplicates::fileHash(std::size_t group) const {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  text.reserve(groups_[group].hash.size() * 2);
  for (const unsigned char byte : groups_[group].hash) {
    text.push_back(kDigits[byte >> 4]);
    text.push_back(kDigits[byte & 0x0F]);
  }
  return text;
}

std::vector<DuplicateGroup> FoundDuplicates::records() const {
  std::vector<DuplicateGroup> records;
  records.reserve(groups_.size());
  for (std::size_t g = 0; g < groups_.size(); ++g) {
    DuplicateGroup group;
    group.id = core::makeUuid();
    group.fileHash = fileHash(g);
    group.representativeFileName = representativeFileName(g);
    group.fileSize = fileSize(g);
    group.files.reserve(fileCount(g));
    for (std::size_t position = 0; position < fileCount(g); ++position) {
      DuplicateFile file{core::makeUuid(), index_.path(fileAt(g, position)), group.fileSize,
                         modificationDate(g, position), position != 0, {}};
      // The stamp holds only while the file is still as the scan measured it; one that changed
      // since keeps none, and its size and date then tell that it changed.
      std::int64_t size = -1;
      FileDate modified = distantPast();
      const FileStamp stamp = currentStamp(file.path, size, modified);
      if (size == file.size && modified == file.modificationDate) file.stamp = stamp;
      group.files.push_back(std::move(file));
    }
    records.push_back(std::move(group));
  }
  return records;
}

} // namespace halcyra::duplicates
