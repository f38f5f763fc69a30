#include <map>
#include <random>
#include <unistd.h>

#include <openssl/evp.h>

#include "DuplicatesFixture.h"

namespace halcyra::testing {
namespace {

using ScanEquivalenceTest = DuplicatesFixture;

std::string sha256Prefix(const std::string& content) {
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned int length = 0;
  EVP_Digest(content.data(), content.size(), digest, &length, EVP_sha256(), nullptr);
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (unsigned int i = 0; i < 6; ++i) {
    text.push_back(kDigits[digest[i] >> 4]);
    text.push_back(kDigits[digest[i] & 0x0F]);
  }
  return text;
}

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
    const auto clamp = [&](std::size_t at) { return std::min(at, size - 1); };
    const auto fromEnd = [&](std::size_t back) { return size > back ? size - back : 0; };
    const std::vector<std::size_t> flipAt{0,          size / 2,      size - 1,      clamp(1023),   clamp(1024),
                                          clamp(4096), fromEnd(1024), fromEnd(1025), fromEnd(4096)};
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
  const auto groups = scan(1);
  EXPECT_EQ(pathSets(groups), expected);
  // Each group's hash is that of its own bytes, however the files were compared.
  for (const auto& group : groups) {
    const std::string content = readFile(group.files.front().path);
    EXPECT_EQ(group.fileHash, sha256Prefix(content)) << group.files.front().path;
    EXPECT_EQ(group.fileSize, static_cast<std::int64_t>(content.size()));
  }
}

} // namespace
} // namespace halcyra::testing
