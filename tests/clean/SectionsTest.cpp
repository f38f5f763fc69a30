#include <gtest/gtest.h>

#include "clean/Sections.h"

using namespace halcyra::clean;

namespace {

CleanCategory category(std::string name, std::string section, std::int64_t size, bool whitelisted = false,
                       std::optional<std::string> skip = std::nullopt) {
  CleanCategory result;
  result.name = std::move(name);
  result.section = std::move(section);
  result.isWhitelisted = whitelisted;
  result.skipReason = std::move(skip);
  if (size > 0) result.items.push_back(CleanItem{"id", "/x", size, !whitelisted});
  return result;
}

} // namespace

TEST(Sections, OnlySectionsWithSomethingToOfferAppearInTheFixedOrder) {
  const std::vector<CleanCategory> categories{
      category("Xcode", "Developer", 10),
      category("Skipped", "Browsers", 0, false, "Firefox is running"),
      category("Downloads", "User", 500, true),
      category("Logs", "System", 20),
      category("Odd", "Elsewhere", 99),
      category("Skipped too", "Developer", 0, false, "Xcode is running"),
  };
  const auto sections = orderedSections(categories);
  ASSERT_EQ(sections.size(), 2u);
  EXPECT_EQ(sections[0].first, "System");
  EXPECT_EQ(sections[1].first, "Developer");
  // A skipped category is still carried inside a card that has something else.
  EXPECT_EQ(sections[1].second.size(), 2u);
  EXPECT_EQ(reclaimableSize(categories), 10 + 20 + 99);
  EXPECT_EQ(sectionTitle("Cloud & Office"), "Cloud & Office Junk");
  EXPECT_EQ(sectionTitle("Elsewhere"), "Junk");
}
