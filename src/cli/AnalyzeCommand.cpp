#include <algorithm>
#include <cstdio>
#include <string>
#include <sys/stat.h>
#if defined(__GLIBC__)
#include <malloc.h>
#endif
#include <vector>

#include <fmt/format.h>

#include "analyzer/DiskAnalyzerService.h"
#include "analyzer/FolderTreeBuilder.h"
#include "analyzer/ScanJsonWriter.h"
#include "cli/Arguments.h"
#include "cli/Command.h"
#include "cli/Terminal.h"
#include "core/ByteFormatter.h"

namespace halcyra::cli {
namespace {

using analyzer::DirectoryNode;
using analyzer::DiskAnalyzerScanSummary;

constexpr std::string_view kUsage =
    "Usage: halcyra analyze DIR [--depth N] [--threads N] [--json]\n\n"
    "Walks DIR into a tree of its sub-folders with their sizes on disk and finds the 20 largest\n"
    "files. Sizes are allocated space; hidden files count; symbolic links are not followed and\n"
    "other file systems mounted below DIR are not entered. Down to 12 levels every folder is\n"
    "a node of the tree; deeper ones only add to the size of the folder at level 12. Removes\n"
    "nothing.\n\n"
    "Options:\n"
    "  --depth N    show N levels of sub-folders, each level largest first (default 1)\n"
    "  --threads N  walk with N threads (default: one per processor core, at most 4)\n"
    "  --json       print the whole result as JSON: root (id, name, path, children, size,\n"
    "               fileCount, isPermissionDenied), totalSize, fileCount, directoryCount,\n"
    "               duration (seconds), largestFiles (id, path, name, size); the keys come\n"
    "               in this order, as a folder is written while the walk goes on\n"
    "  -h, --help   show this text\n\n"
    "Status texts go to standard error. Exit status 1 when DIR is missing or cannot be read.\n"
    "Readable output escapes control characters in names as ls -b does. In JSON, names are as\n"
    "they are, and a byte of a path that is not valid UTF-8 is written as the escape \\udcXX\n"
    "(XX its value), so every path names exactly one file.\n";

std::string share(std::int64_t size, std::int64_t total) {
  return fmt::format("{:.1f}%", total < 1 ? 0.0 : static_cast<double>(size) / static_cast<double>(total) * 100.0);
}

std::vector<const DirectoryNode*> largestFirst(const DirectoryNode& node) {
  std::vector<const DirectoryNode*> sorted;
  for (const DirectoryNode& child : node.children) sorted.push_back(&child);
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const DirectoryNode* a, const DirectoryNode* b) { return a->size > b->size; });
  return sorted;
}

void printFolders(const DirectoryNode& node, std::int64_t total, int level, int depth) {
  for (const DirectoryNode* child : largestFirst(node)) {
    fmt::print(stdout, "  {:>10}  {:>6}  {}{}\n", core::ByteFormatter::format(child->size), share(child->size, total),
               std::string(static_cast<std::size_t>(level - 1) * 2, ' '), escapedName(child->name));
    if (level < depth) printFolders(*child, total, level + 1, depth);
  }
}

void printReadable(const DirectoryNode& root, const DiskAnalyzerScanSummary& summary, int depth) {
  fmt::print(stdout, "{}\n", escapedName(root.path));
  fmt::print(stdout, "Total {} in {} {} and {} {}, scanned in {:.2f} s\n", core::ByteFormatter::format(summary.totalSize),
             summary.fileCount, summary.fileCount == 1 ? "file" : "files", summary.directoryCount,
             summary.directoryCount == 1 ? "folder" : "folders", summary.duration);
  if (root.children.empty()) {
    fmt::print(stdout, "\nNo sub-folders with files in them.\n");
  } else {
    fmt::print(stdout, "\nLargest folders\n");
    fmt::print(stdout, "  {:>10}  {:>6}  {}\n", "Size", "Share", "Folder");
    printFolders(root, summary.totalSize, 1, depth);
  }
  if (!summary.largestFiles.empty()) {
    fmt::print(stdout, "\nLargest files\n");
    fmt::print(stdout, "  {:>10}  {}\n", "Size", "Path");
    for (const auto& file : summary.largestFiles) {
      fmt::print(stdout, "  {:>10}  {}\n", core::ByteFormatter::format(file.size), escapedName(file.path));
    }
  }
}

int runAnalyze(const std::vector<std::string>& args) {
  Arguments arguments({"--json"}, {"--depth", "--threads"});
  arguments.parse(args);
  if (arguments.positional().empty()) throw UsageError("which folder? Give DIR");
  if (arguments.positional().size() > 1) throw UsageError("unexpected argument " + arguments.positional()[1]);
  const int depth = static_cast<int>(arguments.integer("--depth", 1, 1, analyzer::DiskAnalyzerService::kMaxDepth));
  const auto threads = static_cast<unsigned>(arguments.integer("--threads", 0, 1, 64));
  const std::string& folder = arguments.positional().front();

  struct stat info {};
  if (::stat(folder.c_str(), &info) != 0) throw CommandError("no such folder: " + folder);
  if (!S_ISDIR(info.st_mode)) throw CommandError("not a folder: " + folder);

#if defined(__GLIBC__)
  // The walk's threads allocate little, and all of it is handed between them; an allocator
  // arena per thread would only add its own pages (about 150 KiB each) to the peak.
  ::mallopt(M_ARENA_MAX, 1);
#endif
  StatusLine statusLine;
  const analyzer::DiskAnalyzerService service({.workers = threads});
  const auto onProgress = [&](const std::string& text) { statusLine.status(text); };
  // A folder that cannot be read gives a result (an empty tree) all the same, and a failure.
  bool unreadable = false;
  const auto reportUnreadable = [&](bool denied) {
    if (!denied) return;
    unreadable = true;
    fmt::print(stderr, "halcyra analyze: the folder could not be read: {}\n", escapedName(folder));
  };

  if (arguments.has("--json")) {
    // The tree is written while status texts are shown: on a terminal, clear the status line
    // before each part, so the two do not run into each other.
    const bool sharesTerminal = stdoutIsTerminal();
    analyzer::ScanJsonWriter writer([&](std::string_view text) {
      if (sharesTerminal) statusLine.finish();
      std::fwrite(text.data(), 1, text.size(), stdout);
      flushStandardOutput();
    });
    const auto summary = service.scan(folder, writer, onProgress);
    statusLine.finish();
    reportUnreadable(writer.rootDenied());
    writer.finish(summary);
  } else {
    analyzer::FolderTreeBuilder tree({.levels = depth, .withIds = false});
    const auto summary = service.scan(folder, tree, onProgress);
    statusLine.finish();
    const DirectoryNode root = tree.takeRoot();
    reportUnreadable(root.isPermissionDenied);
    printReadable(root, summary, depth);
  }
  return unreadable ? 1 : 0;
}

const Command analyzeCommand{"analyze", "show what takes up space in a folder", kUsage, runAnalyze};

} // namespace

HALCYRA_REGISTER_COMMAND(analyzeCommand);

} // namespace halcyra::cli
