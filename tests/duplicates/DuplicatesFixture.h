#pragma once

#include <algorithm>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "duplicates/DuplicateFileService.h"
#include "support/FakePrivilegedRunner.h"
#include "support/TempDir.h"

namespace halcyra::testing {

/// A temporary folder, a service whose administrator prompt is a fake, and the status texts
/// the last call posted.
class DuplicatesFixture : public ::testing::Test {
protected:
  explicit DuplicatesFixture(FakePrivilegedRunner::Answer answer = FakePrivilegedRunner::Answer::grant)
      : runner(std::make_shared<FakePrivilegedRunner>(answer)) {}

  duplicates::DuplicateFileService service() const {
    platform::Platform platform;
    platform.privileged = runner;
    return duplicates::DuplicateFileService(platform);
  }

  std::vector<duplicates::DuplicateGroup> scan(std::int64_t minFileSize = 4096, const std::string& folder = {}) {
    texts.clear();
    return service().scan(folder.empty() ? dir.path() : folder, minFileSize,
                          [this](const std::string& text) { texts.push_back(text); });
  }

  duplicates::DuplicateCleanResult remove(const std::vector<duplicates::DuplicateGroup>& groups) {
    texts.clear();
    return service().deleteFiles(groups, [this](const std::string& text) { texts.push_back(text); });
  }

  /// A group as a scan would record it now: `kept` copies first, then the `marked` ones. Sizes,
  /// dates and identities are read from the disk; a path with nothing there gets none.
  static duplicates::DuplicateGroup groupOf(const std::vector<std::string>& kept, const std::vector<std::string>& marked) {
    duplicates::DuplicateGroup group;
    group.id = "G";
    for (const auto* list : {&kept, &marked}) {
      for (const auto& path : *list) {
        duplicates::DuplicateFile file;
        file.id = path;
        file.path = path;
        file.stamp = duplicates::currentStamp(path, file.size, file.modificationDate);
        file.isSelected = list == &marked;
        group.fileSize = std::max(group.fileSize, file.size);
        group.files.push_back(file);
      }
    }
    return group;
  }

  /// The groups as sets of paths, for comparisons that do not depend on order.
  static std::set<std::set<std::string>> pathSets(const std::vector<duplicates::DuplicateGroup>& groups) {
    std::set<std::set<std::string>> sets;
    for (const auto& group : groups) {
      std::set<std::string> paths;
      for (const auto& file : group.files) paths.insert(file.path);
      sets.insert(paths);
    }
    return sets;
  }

  TempDir dir;
  std::shared_ptr<FakePrivilegedRunner> runner;
  std::vector<std::string> texts;
};

} // namespace halcyra::testing
