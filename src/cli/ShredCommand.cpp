#include <csignal>
#include <cstdio>
#include <filesystem>
#include <set>
#include <sys/stat.h>

#include <fmt/format.h>

#include "cli/Arguments.h"
#include "cli/Command.h"
#include "cli/Terminal.h"
#include "core/ByteFormatter.h"
#include "core/JsonText.h"
#include "shredder/ShredderService.h"

namespace halcyra::cli {
namespace {

constexpr std::string_view kUsage =
    "Usage: halcyra shred [--passes 1|3|7] [--yes] [--json] PATH...\n\n"
    "Destroys files so that they cannot be read back. Each file is encrypted in place with a key\n"
    "that is thrown away at once, overwritten (random, then zeros and random in turn), truncated,\n"
    "renamed to a random name and deleted. Afterwards up to 500 MB of random data is written\n"
    "beside the first file and removed again, over the blocks just freed. A folder stands for\n"
    "its visible regular files at any depth; the folders and hidden files stay.\n\n"
    "Refused and never opened: symbolic links (the file a link points to is left alone), FIFOs,\n"
    "sockets and devices, files with other hard links (their data would go under every name),\n"
    "other file systems mounted inside a folder, and the root of the file system. A file that\n"
    "cannot be opened or written is handed to `shred -u` with administrator rights, one prompt\n"
    "for that file.\n\n"
    "On copy-on-write and journaling file systems, in snapshots and backups, and on flash\n"
    "storage, old copies of the data can survive an overwrite: see docs/SHREDDING.md.\n\n"
    "Options:\n"
    "  --passes N   overwrite passes: 1, 3 (the default) or 7\n"
    "  --yes        shred without asking; needed when standard input is not a terminal\n"
    "  --json       print the result as JSON: filesShredded, totalBytes, duration, passes\n"
    "  -h, --help   show this text\n\n"
    "Progress goes to standard error; names in it are escaped as ls -b does. Exit status: 0 when\n"
    "every input was shredded; 1 when any was refused or could not be shredded, when the\n"
    "question was not answered yes or could not be asked; 2 on a usage error. Interrupted\n"
    "(Ctrl-C, SIGTERM), it finishes the file in hand, removes its fill files, says what was\n"
    "shredded and ends with 130 or 143; the other files keep their names and data.\n";

constexpr std::size_t kListedBeforeAsking = 20;

std::string absolute(const std::string& path) {
  if (path.starts_with('/')) return path;
  return std::filesystem::current_path().string() + "/" + path;
}

std::string plural(std::size_t count, const std::string& word, const std::string& ending = "s") {
  return std::to_string(count) + " " + word + (count == 1 ? "" : ending);
}

bool stillThere(const std::string& path) {
  struct stat st {};
  return ::lstat(path.c_str(), &st) == 0;
}

bool askFirst(const std::vector<shredder::ShredderFile>& files, int passes) {
  std::int64_t bytes = 0;
  for (const auto& file : files) bytes += file.size;
  for (std::size_t i = 0; i < files.size() && i < kListedBeforeAsking; ++i) {
    fmt::print(stderr, "  {}  ({})\n", escapedName(files[i].path), core::ByteFormatter::format(files[i].size));
  }
  if (files.size() > kListedBeforeAsking) {
    fmt::print(stderr, "  \u2026 and {}\n", plural(files.size() - kListedBeforeAsking, "more file"));
  }
  return confirm("Shred " + plural(files.size(), "file") + " (" + core::ByteFormatter::format(bytes) + ") with " +
                 plural(static_cast<std::size_t>(passes), "pass", "es") + "? This cannot be undone.");
}

int runShred(const std::vector<std::string>& args) {
  Arguments arguments({"--yes", "--json"}, {"--passes"});
  arguments.parse(args);
  if (arguments.positional().empty()) throw UsageError("name at least one file or folder to shred");
  const auto passes = static_cast<int>(arguments.integer("--passes", 3, 1, 7));
  if (passes != 1 && passes != 3 && passes != 7) throw UsageError("--passes takes 1, 3 or 7");
  const bool ask = !arguments.has("--yes");
  if (ask && !stdinIsTerminal()) {
    throw CommandError("standard input is not a terminal; pass --yes to shred without the question. "
                       "Nothing was shredded.");
  }
  // A file size limit would otherwise end the process in the middle of a file; with the
  // signal ignored the write fails and the file takes the fall-back like any failed write.
  std::signal(SIGXFSZ, SIG_IGN);

  std::vector<std::string> paths;
  for (const auto& path : arguments.positional()) paths.push_back(absolute(path));
  platform::Platform platform = platform::Platform::forSystem();
  platform.stopFlag = StopSignals::flag();
  shredder::ShredderService service(std::move(platform));
  std::vector<shredder::ShredderRefusal> refused;
  std::vector<shredder::ShredderFile> files;
  {
    // A file named directly and again through its folder is shredded once.
    std::set<std::string> seen;
    for (auto& file : service.resolveFiles(paths, refused)) {
      if (seen.insert(file.path).second) files.push_back(std::move(file));
    }
  }
  const auto printRefused = [](const std::vector<shredder::ShredderRefusal>& list) {
    for (const auto& refusal : list) {
      fmt::print(stderr, "halcyra shred: refused {}: {}\n", escapedName(refusal.path), refusal.reason);
    }
  };
  printRefused(refused);
  if (files.empty()) {
    if (!refused.empty()) throw CommandError("nothing left to shred");
    std::fputs("Nothing to shred: no visible regular files there.\n", stderr);
    return 0;
  }
  if (ask && !askFirst(files, passes)) throw CommandError("cancelled; nothing was shredded");

  StatusLine statusLine;
  std::string lastText;
  int lastPermille = -1;
  std::vector<shredder::ShredderRefusal> refusedLate;
  const StopSignals stop;
  const auto result = service.shredFiles(
      files, passes,
      [&](const std::string& text, double fraction) {
        // One report per MiB written: redraw only when the line would look different.
        const int permille = static_cast<int>(fraction * 1000);
        if (text == lastText && permille == lastPermille) return;
        lastText = text;
        lastPermille = permille;
        statusLine.progress(fraction, text);
      },
      &refusedLate);
  statusLine.finish();

  printRefused(refusedLate);
  std::set<std::string> refusedPaths;
  for (const auto& refusal : refusedLate) refusedPaths.insert(refusal.path);
  std::size_t failed = 0;
  std::size_t notReached = 0;
  for (const auto& file : files) {
    if (refusedPaths.contains(file.path) || !stillThere(file.path)) continue;
    if (stop.received()) {
      ++notReached;
      continue;
    }
    fmt::print(stderr, "halcyra shred: could not shred {}\n", escapedName(file.path));
    ++failed;
  }

  if (arguments.has("--json")) {
    const nlohmann::json json{{"filesShredded", result.filesShredded},
                              {"totalBytes", result.totalBytes},
                              {"duration", result.duration},
                              {"passes", result.passes}};
    fmt::print(stdout, "{}\n", core::toJsonText(json));
  } else {
    const auto bytes = static_cast<std::size_t>(result.totalBytes);
    fmt::print(stdout, "Shredded {}, {} ({}), {}, in {:.1f} s\n",
               plural(static_cast<std::size_t>(result.filesShredded), "file"), core::ByteFormatter::format(result.totalBytes),
               plural(bytes, "byte"), plural(static_cast<std::size_t>(result.passes), "pass", "es"), result.duration);
  }
  if (stop.received()) {
    flushStandardOutput();
    fmt::print(stderr, "halcyra shred: interrupted; {} left as {} {}, and no fill data left behind\n",
               plural(notReached, "file"), notReached == 1 ? "it" : "they", notReached == 1 ? "was" : "were");
    return stop.exitStatus();
  }
  return refused.empty() && refusedLate.empty() && failed == 0 ? 0 : 1;
}

const Command shredCommand{"shred", "destroy files beyond recovery (encrypt, overwrite, delete)", kUsage, runShred};

} // namespace

HALCYRA_REGISTER_COMMAND(shredCommand);

} // namespace halcyra::cli
