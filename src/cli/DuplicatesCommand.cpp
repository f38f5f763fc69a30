#include <cerrno>
#include <cstring>
#include <ctime>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <limits>
#include <string_view>
#include <sys/stat.h>

#include <fmt/format.h>

#include "cli/Arguments.h"
#include "cli/Command.h"
#include "cli/Terminal.h"
#include "core/ByteFormatter.h"
#include "core/JsonText.h"
#include "duplicates/DuplicateCoding.h"
#include "duplicates/DuplicateFileService.h"
#include "duplicates/SelectionStrategy.h"

namespace halcyra::cli {
namespace {

using duplicates::DuplicateGroup;

constexpr std::string_view kUsage =
    "Usage: halcyra duplicates DIR [--min-size N] [--keep oldest|newest] [--json]\n"
    "       halcyra duplicates DIR --delete [--keep oldest|newest] [--yes] [--json]\n\n"
    "Finds files below DIR with the same size and the same SHA-256 digest of their whole\n"
    "content. Each group keeps one copy (the oldest unless --keep newest) and marks the\n"
    "others for removal. Hidden files, symbolic links, packages and the folders .Trash,\n"
    "node_modules, .git, DerivedData, Build and .build are not looked at.\n\n"
    "Options:\n"
    "  --min-size N   only files of at least N bytes (default 4096)\n"
    "  --keep WHICH   the copy each group keeps: oldest (default) or newest\n"
    "  --json         print the groups as a JSON array; with --delete, an object with the\n"
    "                 groups and the result\n"
    "  --delete       remove the marked copies after asking; a copy that changed since the\n"
    "                 scan is skipped, and so is a group whose kept copy changed\n"
    "  --yes          remove without asking (needed when standard input is not a terminal)\n"
    "  -h, --help     show this text\n\n"
    "Status texts go to standard error; readable output escapes control characters in names as\n"
    "ls -b does. Exit status 1 when the folder cannot be read, when some copies could not be\n"
    "removed, or when the question was not answered yes or could not be asked; 2 on a usage\n"
    "error. In JSON, a byte of a path that is not valid UTF-8 is\n"
    "written as the escape \\udcXX (XX its value), so every path names exactly one file.\n";

// The folder as an absolute path without links, "." or "..": removal refuses paths that go
// through a link, so the paths found below it must be plain.
std::string readableFolder(const std::string& given) {
  struct stat info {};
  if (::stat(given.c_str(), &info) != 0) {
    throw CommandError(fmt::format("cannot open folder {}: {}", given, std::strerror(errno)));
  }
  if (!S_ISDIR(info.st_mode)) throw CommandError(fmt::format("not a folder: {}", given));
  // realpath and opendir directly: the file-system library would bring in code that only
  // these two calls need.
  char* resolved = ::realpath(given.c_str(), nullptr);
  if (resolved == nullptr) {
    const int error = errno;
    throw CommandError(fmt::format("cannot open folder {}: {}", given, std::strerror(error)));
  }
  std::string canonical(resolved);
  std::free(resolved);
  DIR* listing = ::opendir(canonical.c_str());
  if (listing == nullptr) {
    const int error = errno;
    throw CommandError(fmt::format("cannot read folder {}: {}", given, std::strerror(error)));
  }
  ::closedir(listing);
  return canonical;
}

std::string localTime(duplicates::FileDate date) {
  const std::time_t seconds =
      std::chrono::floor<std::chrono::seconds>(date).time_since_epoch().count();
  std::tm parts{};
  if (::localtime_r(&seconds, &parts) == nullptr) return "unknown date    ";
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", &parts);
  return text;
}

void put(std::string_view text, std::FILE* out = stdout) { std::fwrite(text.data(), 1, text.size(), out); }

std::int64_t totalWasted(const duplicates::FoundDuplicates& found) {
  std::int64_t total = 0;
  for (std::size_t g = 0; g < found.groupCount(); ++g) total += found.totalWastedSize(g);
  return total;
}

std::size_t markedCount(const duplicates::FoundDuplicates& found) {
  std::size_t marked = 0;
  for (std::size_t g = 0; g < found.groupCount(); ++g) marked += found.fileCount(g) - 1;
  return marked;
}

void printGroups(const duplicates::FoundDuplicates& found, duplicates::SelectionStrategy strategy) {
  if (found.groupCount() == 0) {
    put("No duplicate files found.\n");
    return;
  }
  std::string path;
  for (std::size_t g = 0; g < found.groupCount(); ++g) {
    fmt::print(stdout, "{}  {}  {} each, {} copies\n", escapedName(found.representativeFileName(g)), found.fileHash(g),
               core::ByteFormatter::format(found.fileSize(g)), found.fileCount(g));
    for (std::size_t position = 0; position < found.fileCount(g); ++position) {
      found.path(g, position, path);
      fmt::print(stdout, "{}{}  {}\n", found.isSelected(g, position, strategy) ? "  remove  " : "  keep    ",
                 localTime(found.modificationDate(g, position)), escapedName(path));
    }
    put("\n");
  }
  const std::size_t marked = markedCount(found);
  fmt::print(stdout, "{} {}, {} {} to remove, {} reclaimable\n", found.groupCount(),
             found.groupCount() == 1 ? "group" : "groups", marked, marked == 1 ? "copy" : "copies",
             core::ByteFormatter::format(totalWasted(found)));
}

int runDuplicates(const std::vector<std::string>& args) {
  Arguments arguments({"--json", "--delete", "--yes"}, {"--min-size", "--keep"});
  arguments.parse(args);
  if (arguments.positional().size() != 1) throw UsageError("give exactly one folder");
  const long long minFileSize =
      arguments.integer("--min-size", 4096, 0, std::numeric_limits<std::int64_t>::max());
  const std::string keep = arguments.value("--keep").value_or("oldest");
  if (keep != "oldest" && keep != "newest") throw UsageError("--keep takes oldest or newest");
  const bool remove = arguments.has("--delete");
  const bool json = arguments.has("--json");
  if (arguments.has("--yes") && !remove) throw UsageError("--yes goes with --delete");
  if (remove && !arguments.has("--yes") && !stdinIsTerminal()) {
    throw CommandError("standard input is not a terminal; pass --yes to delete without the question. "
                       "Nothing was deleted.");
  }
  const std::string folder = readableFolder(arguments.positional().front());

  const duplicates::DuplicateFileService service(platform::Platform::forSystem());
  StatusLine statusLine;
  const auto found = service.find(folder, minFileSize, [&](const std::string& text) { statusLine.status(text); });
  statusLine.finish();
  const auto strategy =
      keep == "newest" ? duplicates::SelectionStrategy::keepNewest : duplicates::SelectionStrategy::keepOldest;

  if (!remove) {
    // Written a group at a time from the compact result: no records, no document.
    if (json) {
      duplicates::writeJson(found, strategy, [](std::string_view text) { put(text); });
      put("\n");
    } else {
      printGroups(found, strategy);
    }
    return 0;
  }

  if (!json) printGroups(found, strategy);
  const std::size_t marked = markedCount(found);
  duplicates::DuplicateCleanResult result;
  auto groups = found.records();
  duplicates::applyStrategy(groups, strategy);
  int skipped = 0;
  if (marked > 0) {
    flushStandardOutput();
    if (!arguments.has("--yes") &&
        !confirm(fmt::format("Delete {} duplicate {} ({})?", marked, marked == 1 ? "file" : "files",
                             core::ByteFormatter::format(totalWasted(found))))) {
      throw CommandError("not confirmed; nothing was deleted.");
    }
    // Every copy is checked by the engine right before its deletion: the answer may have
    // taken a while.
    result = service.deleteFiles(groups, [&](const std::string& text) { statusLine.status(text); });
    statusLine.finish();
    skipped = static_cast<int>(result.failedFiles.size());
    if (!json) {
      for (const auto& failure : result.failedFiles) fmt::print(stderr, "not removed {}: {}\n", escapedName(failure.path), failure.error);
    }
  }

  if (json) {
    nlohmann::json document{{"groups", groups}, {"result", result}};
    put(core::toJsonText(document));
    put("\n");
  } else {
    fmt::print(stdout, "Deleted {} {}, freed {} in {:.1f}s\n", result.filesDeleted,
               result.filesDeleted == 1 ? "file" : "files", core::ByteFormatter::format(result.freedBytes),
               result.duration);
    if (skipped > 0) fmt::print(stdout, "{} {} not removed\n", skipped, skipped == 1 ? "file was" : "files were");
  }
  return skipped > 0 ? 1 : 0;
}

const Command duplicatesCommand{"duplicates", "find identical files and remove the extra copies", kUsage,
                                runDuplicates};

} // namespace

HALCYRA_REGISTER_COMMAND(duplicatesCommand);

} // namespace halcyra::cli
