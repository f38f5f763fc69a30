#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "clean/CleanItem.h"
#include "clean/NativeCleanService.h"
#include "clean/ScanContext.h"
#include "platform/Platform.h"
#include "platform/TreeSize.h"
#include "support/TempDir.h"

namespace halcyra::testing {

/// A Trash with a fixed answer.
class FixedTrash final : public platform::Trash {
public:
  std::optional<platform::TrashSummary> summary() override { return answer; }
  bool empty() override { return false; }
  std::string itemPath() const override { return path; }

  std::optional<platform::TrashSummary> answer = platform::TrashSummary{};
  std::string path = "/trash";
};

/// What a single scanner needs: a fake home and root, a two-worker sizer and a scan context.
struct ScannerContextFixture {
  TempDir dir;
  std::string home = dir.mkdir("home");
  std::string root = dir.mkdir("root");
  platform::SystemPaths paths{home, root};
  platform::TreeSizer sizer{2};
  clean::ScanContext context{paths, sizer, std::chrono::system_clock::now()};
};

/// One scan over a fake home and root in a temporary folder, with fixed running applications,
/// a fixed Trash and fake tools.
struct ScanFixture {
  TempDir dir;
  std::string home = dir.mkdir("home");
  std::string root = dir.mkdir("root");
  std::set<std::string> running;
  std::map<std::string, std::string> tools; // fixed tool path -> fake script
  std::shared_ptr<FixedTrash> trash = std::make_shared<FixedTrash>();
  std::vector<std::string> statuses;

  /// A file below the home of `size` bytes, modified `ageSeconds` ago.
  std::string homeFile(const std::string& relative, std::int64_t size, std::int64_t ageSeconds = 0) const {
    const std::string path = dir.file("home/" + relative, size);
    if (ageSeconds > 0) TempDir::setAge(path, ageSeconds);
    return path;
  }
  std::string rootFile(const std::string& relative, std::int64_t size, std::int64_t ageSeconds = 0) const {
    const std::string path = dir.file("root/" + relative, size);
    if (ageSeconds > 0) TempDir::setAge(path, ageSeconds);
    return path;
  }
  std::string homeDir(const std::string& relative) const { return dir.mkdir("home/" + relative); }
  std::string tool(const std::string& toolPath, const std::string& body) {
    tools[toolPath] = dir.script("tools" + toolPath, body);
    return tools[toolPath];
  }
  void grantFullDiskAccess() const { dir.mkdir("home/Library/Containers/com.apple.stocks"); }

  platform::Platform platform() const {
    platform::Platform result;
    result.paths = platform::SystemPaths(home, root);
    result.processes = std::make_shared<platform::SystemProcessRunner>(tools);
    result.runningApps = std::make_shared<platform::FixedRunningApplications>(running);
    result.trash = trash;
    return result;
  }

  std::vector<clean::CleanCategory> scan() {
    statuses.clear();
    clean::NativeCleanService service(platform());
    return service.scan([this](const std::string& text) { statuses.push_back(text); });
  }
};

inline const clean::CleanCategory* findCategory(const std::vector<clean::CleanCategory>& categories,
                                                const std::string& name) {
  for (const auto& category : categories) {
    if (category.name == name) return &category;
  }
  return nullptr;
}

/// The item paths of a category relative to `base`, in item order; empty when there is none.
inline std::vector<std::string> itemPaths(const std::vector<clean::CleanCategory>& categories, const std::string& name,
                                          const std::string& base) {
  std::vector<std::string> result;
  if (const auto* category = findCategory(categories, name)) {
    for (const auto& item : category->items) {
      result.push_back(item.path.starts_with(base + "/") ? item.path.substr(base.size() + 1) : item.path);
    }
  }
  return result;
}

inline std::vector<std::string> itemPaths(const std::vector<clean::CleanItem>& items, const std::string& base) {
  std::vector<std::string> result;
  for (const auto& item : items) {
    result.push_back(item.path.starts_with(base + "/") ? item.path.substr(base.size() + 1) : item.path);
  }
  return result;
}

constexpr std::int64_t kDay = 86'400;

} // namespace halcyra::testing
