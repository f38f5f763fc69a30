#include "cli/CleanOutput.h"

#include <algorithm>
#include <filesystem>
#include <cstdio>

#include <fmt/format.h>

#include "cli/Arguments.h"
#include "clean/Sections.h"
#include "core/ByteFormatter.h"

namespace halcyra::cli {
namespace {

std::string absoluteFolder(const std::string& option, const std::string& value) {
  std::error_code error;
  // Spelled without symbolic links: removal never passes through one, so every path the scan
  // builds below this folder must be its real path.
  const auto path = std::filesystem::canonical(value, error);
  if (error || !std::filesystem::is_directory(path, error)) {
    throw CommandError(option + ": no such folder: " + value);
  }
  return path.string();
}

} // namespace

platform::SystemPaths systemPathsFrom(const Arguments& arguments) {
  platform::SystemPaths current = platform::SystemPaths::current();
  const auto home = arguments.value("--home");
  const auto root = arguments.value("--root");
  return platform::SystemPaths(home ? absoluteFolder("--home", *home) : current.home(),
                               root ? absoluteFolder("--root", *root) : current.root());
}

nlohmann::json categoryToJson(const clean::CleanCategory& category) {
  nlohmann::json items = nlohmann::json::array();
  for (const auto& item : category.items) {
    items.push_back({{"id", item.id}, {"path", item.path}, {"size", item.size}, {"isSelected", item.isSelected}});
  }
  return {
      {"id", category.id},
      {"name", category.name},
      {"icon", category.icon},
      {"section", category.section},
      {"items", std::move(items)},
      {"isSelected", category.isSelected},
      {"isWhitelisted", category.isWhitelisted},
      {"skipReason", category.skipReason ? nlohmann::json(*category.skipReason) : nlohmann::json(nullptr)},
  };
}

void printCategories(std::FILE* out, const std::vector<clean::CleanCategory>& categories, bool selectedOnly) {
  std::int64_t total = 0;
  std::size_t itemCount = 0;
  for (const auto& [section, members] : clean::orderedSections(categories)) {
    std::int64_t sectionSize = 0;
    for (const auto& category : members) {
      if (!clean::isReclaimable(category)) continue;
      sectionSize += selectedOnly ? category.selectedSize() : [&] {
        std::int64_t sum = 0;
        for (const auto& item : category.items) sum += item.size;
        return sum;
      }();
    }
    fmt::print(out, "{} — {}\n", clean::sectionTitle(section), core::ByteFormatter::format(sectionSize));
    // As the section's review shows them: the categories that count, largest first (equal
    // sizes in scan order), then the skipped ones with their reasons.
    struct Row {
      const clean::CleanCategory* category;
      std::int64_t size;
      std::size_t count;
    };
    std::vector<Row> rows;
    for (const auto& category : members) {
      if (!clean::isReclaimable(category)) continue;
      Row row{&category, 0, 0};
      for (const auto& item : category.items) {
        if (selectedOnly && !item.isSelected) continue;
        row.size += item.size;
        ++row.count;
      }
      if (selectedOnly && row.count == 0) continue;
      rows.push_back(row);
    }
    std::stable_sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) { return a.size > b.size; });
    for (const auto& row : rows) {
      total += row.size;
      itemCount += row.count;
      fmt::print(out, "  {:<36} {:>10}  {} {}\n", row.category->name, core::ByteFormatter::format(row.size),
                         row.count, row.count == 1 ? "item" : "items");
    }
    for (const auto& category : members) {
      if (category.isWhitelisted || !category.skipReason) continue;
      fmt::print(out, "  {:<36} skipped: {}\n", category.name, *category.skipReason);
    }
  }
  fmt::print(out, "{} of junk files ({} {})\n", core::ByteFormatter::format(total), itemCount,
                     itemCount == 1 ? "item" : "items");
}

} // namespace halcyra::cli
