#include <gtest/gtest.h>

#include "core/JsonText.h"

using halcyra::core::jsonStringLiteral;
using halcyra::core::toJsonText;

TEST(JsonText, ValidTextMatchesTheLibrarysOwnOutput) {
  const nlohmann::json value = {{"name", "caf\xC3\xA9 \"quoted\" \\ tab\t"}, {"size", 42}, {"flag", true},
                                {"none", nullptr}, {"list", {1, "two"}}, {"empty", nlohmann::json::array()}};
  EXPECT_EQ(toJsonText(value, -1), value.dump());
  EXPECT_EQ(nlohmann::json::parse(toJsonText(value, 2)), value);
}

TEST(JsonText, InvalidBytesBecomeDistinctSurrogateEscapes) {
  EXPECT_EQ(jsonStringLiteral("a\xFF" "b"), "\"a\\udcffb\"");
  EXPECT_EQ(jsonStringLiteral("\xC3"), "\"\\udcc3\"");
  // Two different non-UTF-8 names never come out as the same text, nor as a valid name.
  EXPECT_NE(jsonStringLiteral("x\xFE"), jsonStringLiteral("x\xFF"));
  EXPECT_NE(jsonStringLiteral("x\xFF"), jsonStringLiteral("x\xEF\xBF\xBD"));
  EXPECT_EQ(jsonStringLiteral("line\nbreak\x01"), "\"line\\nbreak\\u0001\"");
}
