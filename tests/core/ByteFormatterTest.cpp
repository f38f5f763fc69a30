#include <gtest/gtest.h>

#include "core/ByteFormatter.h"
#include "core/CleanError.h"
#include "core/Utf8.h"
#include "core/Uuid.h"

using namespace halcyra::core;

TEST(ByteFormatter, FileSizesSwitchToDecimalUnitsAtOneThousandBytes) {
  EXPECT_EQ(ByteFormatter::format(std::int64_t{0}), "0 KB");
  EXPECT_EQ(ByteFormatter::format(std::uint64_t{0}), "0 KB");
  EXPECT_EQ(ByteFormatter::format(std::int64_t{1}), "1 B");
  EXPECT_EQ(ByteFormatter::format(std::int64_t{999}), "999 B");
  EXPECT_EQ(ByteFormatter::format(std::int64_t{-1}), "-1 B");
  EXPECT_EQ(ByteFormatter::format(std::int64_t{1000}), "1 KB");
  EXPECT_EQ(ByteFormatter::format(std::uint64_t{1000}), "1 KB");
  // Decimal units with adaptive precision.
  EXPECT_EQ(ByteFormatter::format(std::int64_t{1'499}), "1 KB");
  EXPECT_EQ(ByteFormatter::format(std::int64_t{1'500}), "2 KB");
  EXPECT_EQ(ByteFormatter::format(std::int64_t{1'000'000}), "1 MB");
  EXPECT_EQ(ByteFormatter::format(std::int64_t{1'250'000}), "1.3 MB");
  EXPECT_EQ(ByteFormatter::format(std::int64_t{999'999}), "1 MB");
  EXPECT_EQ(ByteFormatter::format(std::int64_t{1'230'000'000}), "1.23 GB");
  EXPECT_EQ(ByteFormatter::format(std::int64_t{2'000'000'000}), "2 GB");
  EXPECT_EQ(ByteFormatter::format(std::int64_t{5'500'000'000'000}), "5.5 TB");
  // TB is the largest unit allowed: petabytes stay in terabytes.
  EXPECT_EQ(ByteFormatter::format(std::int64_t{2'000'000'000'000'000}), "2000 TB");
}

TEST(ByteFormatter, MemorySizesUseBinaryUnits) {
  EXPECT_EQ(ByteFormatter::formatMemory(0), "Zero KB");
  EXPECT_EQ(ByteFormatter::formatMemory(512), "512 bytes");
  EXPECT_EQ(ByteFormatter::formatMemory(1024), "1 KB");
  EXPECT_EQ(ByteFormatter::formatMemory(std::uint64_t{8} << 30), "8 GB");
  EXPECT_EQ(ByteFormatter::formatMemory((std::uint64_t{3} << 29)), "1.5 GB");
}

TEST(CleanError, TextNeverCarriesThePayload) {
  const CleanError error(CleanError::Kind::scanFailed, "disk on fire at /secret");
  EXPECT_EQ(error.errorDescription(), "Scan failed. Please try again.");
  EXPECT_EQ(CleanError(CleanError::Kind::scanFailed, "other").errorDescription(), error.errorDescription());
  EXPECT_EQ(describeError(error), "Scan failed. Please try again.");
  EXPECT_EQ(describeError(std::runtime_error("plain")), "plain");
  EXPECT_EQ(CleanError(CleanError::Kind::timeout).errorDescription(), "The operation took too long. Please try again.");
}

TEST(Utf8, RejectsMalformedSequences) {
  EXPECT_TRUE(isValidUtf8("plain ascii"));
  EXPECT_TRUE(isValidUtf8("caf\xC3\xA9 \xF0\x9F\x98\x80"));
  EXPECT_FALSE(isValidUtf8("\xC3"));             // cut short
  EXPECT_FALSE(isValidUtf8("\xC0\xAF"));         // overlong slash
  EXPECT_FALSE(isValidUtf8("\xED\xA0\x80"));     // surrogate
  EXPECT_FALSE(isValidUtf8("\xF4\x90\x80\x80")); // above U+10FFFF
  EXPECT_FALSE(isValidUtf8("\xFF"));
}

TEST(Uuid, IsFreshUpperCaseVersionFour) {
  const std::string a = makeUuid();
  const std::string b = makeUuid();
  EXPECT_NE(a, b);
  ASSERT_EQ(a.size(), 36u);
  EXPECT_EQ(a[14], '4');
  EXPECT_EQ(a.find_first_not_of("0123456789ABCDEF-"), std::string::npos);
}
