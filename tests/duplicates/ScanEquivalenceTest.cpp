#include <map>
#include <random>
#include <unistd.h>

#include "DuplicatesFixture.h"

namespace halcyra::testing {
namespace {

using ScanEquivalenceTest = DuplicatesFixture;

// The scan may rule files out before reading them whole and read hard links once; whatever
// it does inside, its groups must be exactly the sets of files with equal bytes. Here the
// expectation is made by comparing contents directly, over sizes around the probe's block
// edges and contents that differ in one byte at the places a probe looks at or skips.
TEST_F(ScanEquivalenceTest, GroupsAreExactlyTheFilesWithEqualContent) {
  std::mt19937 random(20240611);
  const std::vector<std::size_t> sizes{1, 4095, 4096, 4097, 8191, 8192, 8193, 12288, 12289, 70000, (1u << 20) + 3};
  std::map<std::string, std::vector<std::string>> pathsByContent;
  int fileNumber = 0;
  for (const std::size_t size : sizes) {
    std::string base(size, '\0');
    for (auto& byte : base) byte = static_cast<char>(random());
    const std::vector<std::size_t> flipAt{0, size / 2, size - 1, std::min<std::size_t>(4095, size - 1),
                                          std::min<std::size_t>(4096, size - 1), size > 4097 ? size - 4097 : 0,
                                          size > 4096 ? size - 4096 : 0};
    // One size with more files than are compared at once.
    const int copies = size == 70000 ? 40 : 12;
    for (int copy = 0; copy < copies; ++copy) {
      std::string content = base;
      const int variant = static_cast<int>(random() % (flipAt.size() + 2));
      if (variant < static_cast<int>(flipAt.size())) content[flipAt[static_cast<std::size_t>(variant)]] ^= 0x5A;
      const std::string path = dir.file("d" + std::to_string(fileNumber % 5) + "/f" + std::to_string(fileNumber), content);
      ++fileNumber;
      pathsByContent[content].push_back(path);
      if (random() % 6 == 0) {
        const std::string link = dir / ("d0/link" + std::to_string(fileNumber));
        ASSERT_EQ(::link(path.c_str(), link.c_str()), 0);
        pathsByContent[content].push_back(link);
      }
    }
  }
  std::set<std::set<std::string>> expected;
  for (const auto& [content, paths] : pathsByContent) {
    if (paths.size() >= 2) expected.insert(std::set<std::string>(paths.begin(), paths.end()));
  }
  ASSERT_FALSE(expected.empty());
  EXPECT_EQ(pathSets(scan(1)), expected);
}

} // namespace
} // namespace halcyra::testing
