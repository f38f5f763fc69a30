#include "clean/ProjectArtifactScanner.h"

#include <algorithm>
#include <chrono>
#include <set>
#include <string_view>

#include "clean/FileQueries.h"

namespace halcyra::clean {
namespace {

const std::set<std::string, std::less<>>& projectArtifactNames() {
  static const std::set<std::string, std::less<>> names{
      "node_modules", ".next",     "target",   "build",        "dist",         "venv",   ".venv",
      "__pycache__",  ".pytest_cache", ".mypy_cache", ".tox",  ".nox",         ".ruff_cache", ".gradle",
      ".turbo",       ".parcel-cache", "DerivedData", "Pods",  ".build",       "coverage", ".angular",
      ".svelte-kit",  ".nuxt",     ".output",  ".expo",        ".dart_tool",   ".cxx",   "zig-out",
      ".zig-cache",   ".astro",    "vendor",   "bin",          "obj"};
  return names;
}

const std::set<std::string, std::less<>>& artifactPruneDirs() {
  static const std::set<std::string, std::less<>> names{".git", "Library", ".Trash", "Applications", ".svn", ".hg"};
  return names;
}

constexpr std::string_view kProjectSearchPaths[] = {"www",  "dev",   "Projects", "GitHub",      "Code",
                                                    "Workspace", "Repos", "Development", "Documents/Projects"};

// Depth counts from the project folder: its own entries are at depth 1. Entries at this depth
// or deeper are never looked at.
constexpr int kDepthLimit = 7;
constexpr auto kMinimumAge = std::chrono::seconds(604'800);

} // namespace

bool ProjectArtifactScanner::isGuardedArtifactSafe(const std::string& name, const std::string& parentPath) {
  if (name == "vendor") return pathKind(parentPath + "/composer.json") == PathKind::file;
  if (name == "bin") {
    if (pathKind(parentPath + "/bin/Debug") == PathKind::missing && pathKind(parentPath + "/bin/Release") == PathKind::missing) {
      return false;
    }
    const auto entries = listDirectory(parentPath);
    if (!entries) return false;
    return std::any_of(entries->begin(), entries->end(), [](const DirectoryEntry& entry) {
      return entry.name.ends_with(".csproj") || entry.name.ends_with(".fsproj") || entry.name.ends_with(".vbproj");
    });
  }
  return true;
}

std::vector<CleanItem> ProjectArtifactScanner::scanProjectArtifacts(const StatusCallback& onProgress) {
  const TimePoint cutoff = context_.now() - kMinimumAge;
  // Xcode's own DerivedData has a catalogue row; the walk leaves it to that row.
  const std::string derivedData = context_.paths().inHome("Library/Developer/Xcode/DerivedData");
  std::vector<std::string> candidates;
  for (const auto relative : kProjectSearchPaths) {
    const std::string root = context_.paths().inHome(relative);
    if (pathKind(root) != PathKind::directory) continue;
    if (onProgress) onProgress("Scanning projects in " + lastComponent(root) + "...");

    // Entries in the order of a depth-first walk: a folder's contents come right after it.
    struct Frame {
      std::string path;
      int depth; // of the folder's entries
      std::vector<DirectoryEntry> entries;
      std::size_t next = 0;
    };
    std::vector<Frame> stack;
    if (auto entries = listDirectory(root)) stack.push_back(Frame{root, 1, std::move(*entries)});
    while (!stack.empty()) {
      Frame& folder = stack.back();
      if (folder.next == folder.entries.size()) {
        stack.pop_back();
        continue;
      }
      const DirectoryEntry& entry = folder.entries[folder.next++];
      if (entry.kind != PathKind::directory) continue; // files and links play no part
      const std::string& name = entry.name;
      if (artifactPruneDirs().contains(name)) continue;
      const bool artifact = projectArtifactNames().contains(name);
      if (name.starts_with(".") && !artifact) continue;
      std::string path = folder.path + "/" + name;
      if (!artifact) {
        // A folder at the last counted depth holds only entries beyond the limit.
        const int depth = folder.depth + 1;
        if (depth >= kDepthLimit) continue;
        if (auto entries = listDirectory(path)) stack.push_back(Frame{std::move(path), depth, std::move(*entries)});
        continue;
      }
      if (path.starts_with(derivedData)) continue;
      if ((name == "vendor" || name == "bin") && !isGuardedArtifactSafe(name, folder.path)) continue;
      if (isNewerThan(path, cutoff)) continue;
      candidates.push_back(std::move(path));
    }
  }
  auto items = context_.measuredItems(candidates, false);
  sortBySize(items);
  return items;
}

} // namespace halcyra::clean
