#include <regex>

#include "DuplicatesFixture.h"
#include "core/JsonText.h"
#include "duplicates/DuplicateCoding.h"
#include "duplicates/SelectionStrategy.h"

namespace halcyra::testing {
namespace {

using duplicates::SelectionStrategy;

using JsonOutputTest = DuplicatesFixture;

std::string withoutIds(const std::string& text) {
  static const std::regex uuid("\"[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}\"");
  return std::regex_replace(text, uuid, "\"ID\"");
}

std::string written(const duplicates::FoundDuplicates& found, SelectionStrategy strategy) {
  std::string text;
  duplicates::writeJson(found, strategy, [&](std::string_view piece) { text += piece; });
  return text;
}

// The streamed text must be what the records' JSON document is, byte for byte, ids aside:
// keys in their order, layout, escapes of names that are not UTF-8, both selections.
TEST_F(JsonOutputTest, StreamedGroupsAreTheRecordsDocumentText) {
  EXPECT_EQ(written(service().find(dir.path(), 4096, nullptr), SelectionStrategy::keepOldest), "[]");

  const std::string big(9000, 'b');
  for (const char* name : {"b1", "sub/b2", "sub/deeper/b3"}) TempDir::setAge(dir.file(name, big), 100);
  TempDir::setAge(dir / "sub/b2", 300);
  dir.file("q1", std::string(5000, 'q'));
  dir.file(std::string("caf\xC3\xA9 \"quoted\"\\"), std::string(5000, 'q'));
  dir.file(std::string("raw\xFF\x01"), std::string(5000, 'q'));
  dir.file("unique", std::string(5000, 'u'));

  const auto found = service().find(dir.path(), 4096, nullptr);
  ASSERT_EQ(found.groupCount(), 2u);
  for (const auto strategy : {SelectionStrategy::keepOldest, SelectionStrategy::keepNewest}) {
    auto groups = found.records();
    duplicates::applyStrategy(groups, strategy);
    const std::string text = written(found, strategy);
    EXPECT_EQ(withoutIds(text), withoutIds(core::toJsonText(nlohmann::json(groups))));
    // Every id is a fresh one.
    std::set<std::string> ids;
    const std::regex uuid("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
    for (auto it = std::sregex_iterator(text.begin(), text.end(), uuid); it != std::sregex_iterator(); ++it) {
      ids.insert(it->str());
    }
    EXPECT_EQ(ids.size(), 2u + 6u);
  }
  EXPECT_NE(written(found, SelectionStrategy::keepOldest).find("\\udcff\\u0001"), std::string::npos);
}

} // namespace
} // namespace halcyra::testing
