#include <algorithm>
#include <cstdio>
#include <iostream>
#include <string>
#include <sys/stat.h>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "analyzer/DiskAnalyzerService.h"
#include "cli/Arguments.h"
#include "cli/Command.h"
#include "cli/Terminal.h"
#include "core/ByteFormatter.h"
#include "core/JsonText.h"

namespace halcyra::cli {
namespace {

using analyzer::DirectoryNode;
using analyzer::DiskAnalyzerScanResult;

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
    "  --json       print the whole result as JSON: root (id, name, path, size, children,\n"
    "               fileCount, isPermissionDenied), totalSize, fileCount, directoryCount,\n"
    "               duration (seconds), largestFiles (id, path, name, size)\n"
    "  -h, --help   show this text\n\n"
    "Status texts go to standard error. In JSON, a byte of a path that is not valid UTF-8 is\n"
    "written as the escape \\udcXX (XX its value), so every path names exactly one file.\n";

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

void printFolders(std::ostream& out, const DirectoryNode& node, std::int64_t total, int level, int depth) {
  for (const DirectoryNode* child : largestFirst(node)) {
    out << fmt::format("  {:>10}  {:>6}  {}{}\n", core::ByteFormatter::format(child->size), share(child->size, total),
                       std::string(static_cast<std::size_t>(level - 1) * 2, ' '), child->name);
    if (level < depth) printFolders(out, *child, total, level + 1, depth);
  }
}

void printReadable(std::ostream& out, const DiskAnalyzerScanResult& result, int depth) {
  out << result.root.path << '\n';
  out << fmt::format("Total {} in {} files and {} folders, scanned in {:.2f} s\n",
                     core::ByteFormatter::format(result.totalSize), result.fileCount, result.directoryCount,
                     result.duration);
  if (result.root.children.empty()) {
    out << "\nNo sub-folders with files in them.\n";
  } else {
    out << "\nLargest folders\n";
    out << fmt::format("  {:>10}  {:>6}  {}\n", "Size", "Share", "Folder");
    printFolders(out, result.root, result.totalSize, 1, depth);
  }
  if (!result.largestFiles.empty()) {
    out << "\nLargest files\n";
    out << fmt::format("  {:>10}  {}\n", "Size", "Path");
    for (const auto& file : result.largestFiles) {
      out << fmt::format("  {:>10}  {}\n", core::ByteFormatter::format(file.size), file.path);
    }
  }
}

// The tree is written as it is walked rather than built as one JSON value first: a value of a
// large tree would take many times the memory of the tree itself. The layout is that of
// core::toJsonText, and strings go through the same escaping.
class JsonWriter {
public:
  explicit JsonWriter(std::ostream& out) : out_(out) {}
  ~JsonWriter() { flush(); }

  void result(const DiskAnalyzerScanResult& result) {
    text_ += "{\n";
    key(1, "root");
    node(result.root, 1);
    text_ += ",\n";
    number(1, "totalSize", result.totalSize);
    number(1, "fileCount", result.fileCount);
    number(1, "directoryCount", result.directoryCount);
    key(1, "duration");
    text_ += nlohmann::json(result.duration).dump();
    text_ += ",\n";
    key(1, "largestFiles");
    if (result.largestFiles.empty()) {
      text_ += "[]";
    } else {
      text_ += "[\n";
      for (std::size_t i = 0; i < result.largestFiles.size(); ++i) {
        const auto& file = result.largestFiles[i];
        indent(2);
        text_ += "{\n";
        string(3, "id", file.id);
        string(3, "path", file.path);
        string(3, "name", file.name);
        key(3, "size");
        text_ += std::to_string(file.size);
        text_ += '\n';
        indent(2);
        text_ += i + 1 < result.largestFiles.size() ? "},\n" : "}\n";
      }
      indent(1);
      text_ += "]";
    }
    text_ += "\n}\n";
  }

private:
  // Depth is bounded by the tree's depth limit.
  void node(const DirectoryNode& node, int level) {
    text_ += "{\n";
    string(level + 1, "id", node.id);
    string(level + 1, "name", node.name);
    string(level + 1, "path", node.path);
    number(level + 1, "size", node.size);
    key(level + 1, "children");
    if (node.children.empty()) {
      text_ += "[]";
    } else {
      text_ += "[\n";
      for (std::size_t i = 0; i < node.children.size(); ++i) {
        indent(level + 2);
        this->node(node.children[i], level + 2);
        text_ += i + 1 < node.children.size() ? ",\n" : "\n";
      }
      indent(level + 1);
      text_ += "]";
    }
    text_ += ",\n";
    number(level + 1, "fileCount", node.fileCount);
    key(level + 1, "isPermissionDenied");
    text_ += node.isPermissionDenied ? "true\n" : "false\n";
    indent(level);
    text_ += "}";
    if (text_.size() > (1 << 16)) flush();
  }

  void indent(int level) { text_.append(static_cast<std::size_t>(level) * 2, ' '); }
  void key(int level, std::string_view name) {
    indent(level);
    text_ += '"';
    text_ += name;
    text_ += "\": ";
  }
  void string(int level, std::string_view name, const std::string& value) {
    key(level, name);
    text_ += core::jsonStringLiteral(value);
    text_ += ",\n";
  }
  void number(int level, std::string_view name, std::int64_t value) {
    key(level, name);
    text_ += std::to_string(value);
    text_ += ",\n";
  }
  void flush() {
    out_.write(text_.data(), static_cast<std::streamsize>(text_.size()));
    text_.clear();
  }

  std::ostream& out_;
  std::string text_;
};

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

  StatusLine statusLine;
  const analyzer::DiskAnalyzerService service({.workers = threads});
  const auto result = service.scanDirectory(folder, [&](const std::string& text) { statusLine.status(text); });
  statusLine.finish();
  if (result.root.isPermissionDenied) std::cerr << "halcyra analyze: the folder could not be read: " << folder << '\n';

  if (arguments.has("--json")) {
    JsonWriter(std::cout).result(result);
  } else {
    printReadable(std::cout, result, depth);
  }
  std::cout.flush();
  return 0;
}

const Command analyzeCommand{"analyze", "show what takes up space in a folder", kUsage, runAnalyze};

} // namespace

HALCYRA_REGISTER_COMMAND(analyzeCommand);

} // namespace halcyra::cli
