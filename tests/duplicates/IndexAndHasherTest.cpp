#include <map>
#include <random>
#include <unistd.h>

#include <gtest/gtest.h>
#include <openssl/evp.h>

#include "duplicates/ContentHasher.h"
#include "duplicates/FileIndex.h"
#include "support/TempDir.h"

namespace halcyra::testing {
namespace {

using duplicates::ContentHasher;
using duplicates::Digest;
using duplicates::FileIndex;

Digest sha256(const std::string& content) {
  Digest digest{};
  unsigned int length = 0;
  EVP_Digest(content.data(), content.size(), digest.data(), &length, EVP_sha256(), nullptr);
  return digest;
}

FileIndex indexOf(const std::string& root, std::int64_t minFileSize = 1) {
  auto index = FileIndex::build(root, minFileSize, nullptr);
  EXPECT_TRUE(index.has_value());
  return index ? std::move(*index) : FileIndex{};
}

TEST(FileIndexTest, PathsComeBackWholeThroughDeepFoldersLongNamesAndTrailingSlashes) {
  TempDir dir;
  // Deeper than the folder chain that is put together in one go, and more name bytes than
  // one chunk of the name arena holds.
  std::string deep;
  for (int level = 0; level < 70; ++level) deep += "level" + std::to_string(level) + "/";
  std::map<std::string, std::int64_t> expected;
  expected[dir.file(deep + "bottom", 3)] = 3;
  for (int i = 0; i < 300; ++i) {
    const std::string name = std::string(240, static_cast<char>('a' + i % 26)) + std::to_string(i);
    expected[dir.file("wide/" + name, 1 + i % 7)] = 1 + i % 7;
  }
  dir.symlink("wide/link", dir / "wide");

  const FileIndex index = indexOf(dir.path() + "//");
  std::map<std::string, std::int64_t> found;
  for (std::size_t i = 0; i < index.size(); ++i) {
    const std::string path = index.path(i);
    EXPECT_EQ(path.substr(path.rfind('/') + 1), index.name(i));
    found[path] = index.fileSize(i);
  }
  EXPECT_EQ(found, expected);
}

TEST(FileIndexTest, SharedSizesKeepTheOrderOfTheWalk) {
  TempDir dir;
  std::mt19937 random(7);
  for (int i = 0; i < 400; ++i) dir.file("d" + std::to_string(i % 9) + "/f" + std::to_string(i), 1 + random() % 40);
  dir.file("alone", 1000);
  const FileIndex index = indexOf(dir.path());

  // The plain way: sizes by their first file in walk order, each size's files in walk order.
  std::vector<std::int64_t> sizeOrder;
  std::map<std::int64_t, std::vector<std::uint32_t>> bySize;
  for (std::uint32_t i = 0; i < index.size(); ++i) {
    auto& files = bySize[index.fileSize(i)];
    if (files.empty()) sizeOrder.push_back(index.fileSize(i));
    files.push_back(i);
  }
  std::vector<std::pair<std::int64_t, std::vector<std::uint32_t>>> expected;
  for (const auto size : sizeOrder) {
    if (bySize[size].size() >= 2) expected.emplace_back(size, bySize[size]);
  }

  const auto shared = index.sharedSizes();
  std::vector<std::pair<std::int64_t, std::vector<std::uint32_t>>> actual;
  for (const auto& run : shared.runs) {
    actual.emplace_back(run.size, std::vector<std::uint32_t>(shared.files.begin() + run.begin, shared.files.begin() + run.end));
  }
  EXPECT_EQ(actual, expected);
  EXPECT_EQ(shared.files.size(), index.size() - 1);
}

// Whatever the batches and the number of workers, each file gets the digest of its own bytes
// exactly when another file of its size has the same bytes, and every batch is handed over
// once, in order.
TEST(ContentHasherTest, BatchesAndWorkersNeverChangeTheDigests) {
  TempDir dir;
  std::mt19937 random(11);
  std::map<std::string, std::string> contentOf;
  for (int i = 0; i < 160; ++i) {
    const std::size_t size = (i % 5 == 0) ? 9000 : 100 + i % 13;
    std::string content(size, static_cast<char>('a' + random() % 3));
    // Of the larger files, some differ at an end the probe reads, some only in the middle.
    if (size == 9000) {
      const auto variant = random() % 3;
      if (variant == 0) content[size - 1] = 'z';
      if (variant == 1) content[size / 2] = 'm';
    }
    const std::string path = dir.file("f" + std::to_string(i), content);
    contentOf[path] = content;
    if (i % 17 == 0) {
      const std::string link = dir / ("link" + std::to_string(i));
      ASSERT_EQ(::link(path.c_str(), link.c_str()), 0);
      contentOf[link] = content;
    }
  }
  const FileIndex index = indexOf(dir.path());
  const auto shared = index.sharedSizes();

  std::map<std::string, int> copies; // (size, content) pairs that occur more than once
  for (const auto& [path, content] : contentOf) ++copies[content];

  std::map<std::string, std::optional<Digest>> reference;
  for (const std::size_t batch : {std::size_t{1}, std::size_t{7}, std::size_t{100000}}) {
    for (const unsigned workers : {1u, 2u}) {
      std::map<std::string, std::optional<Digest>> digests;
      std::size_t nextRun = 0;
      std::size_t lastSettled = 0;
      ContentHasher::digests(
          index, shared, workers, 10, [&](std::size_t settled) {
            EXPECT_GE(settled, lastSettled);
            lastSettled = settled;
          },
          [&](std::size_t firstRun, std::size_t endRun, std::span<const std::optional<Digest>> batchDigests) {
            EXPECT_EQ(firstRun, nextRun);
            nextRun = endRun;
            std::size_t offset = 0;
            for (std::size_t r = firstRun; r < endRun; ++r) {
              for (std::uint32_t k = shared.runs[r].begin; k < shared.runs[r].end; ++k) {
                digests[index.path(shared.files[k])] = batchDigests[offset++];
              }
            }
            EXPECT_EQ(offset, batchDigests.size());
          },
          batch);
      EXPECT_EQ(nextRun, shared.runs.size());
      EXPECT_EQ(lastSettled, shared.files.size());
      ASSERT_EQ(digests.size(), shared.files.size());
      for (const auto& [path, digest] : digests) {
        // A file whose bytes no other file has may be proved unique without a digest.
        if (copies[contentOf[path]] >= 2) {
          ASSERT_TRUE(digest.has_value()) << path;
          EXPECT_EQ(*digest, sha256(contentOf[path])) << path;
        } else if (digest) {
          EXPECT_EQ(*digest, sha256(contentOf[path])) << path;
        }
      }
      if (reference.empty()) reference = digests;
      EXPECT_EQ(digests, reference) << "batch " << batch << ", workers " << workers;
    }
  }
}

} // namespace
} // namespace halcyra::testing
