#include <algorithm>
#include <cstdio>

#include <fmt/format.h>

#include "cli/Arguments.h"
#include "cli/CleanOutput.h"
#include "cli/Command.h"
#include "cli/Terminal.h"
#include "clean/NativeCleanService.h"
#include "clean/Sections.h"
#include "core/ByteFormatter.h"
#include "core/JsonText.h"

namespace halcyra::cli {
namespace {

constexpr std::string_view kUsage =
    "Usage: halcyra clean [--yes] [--dry-run] [--only NAME]... [--json] [--home DIR] [--root DIR]\n\n"
    "Scans as 'halcyra scan' does, shows what the default selection holds by section and\n"
    "category, asks, and removes it: item by item, the Trash emptied whole, and what this user\n"
    "may not remove taken to one administrator prompt. Protected and skipped categories are\n"
    "never touched. Symbolic links are removed as links; their targets stay.\n\n"
    "Options:\n"
    "  --yes        remove without asking (needed when standard input is not a terminal)\n"
    "  --dry-run    show what would be removed, and remove nothing\n"
    "  --only NAME  clean only the category of this name, as the listing shows it; a count in\n"
    "               parentheses may be left out (\"Trash\"). May be given more than once. A\n"
    "               name that is no category, or a protected one, is a usage error\n"
    "  --json       print the result as JSON with freedBytes, itemsCleaned and duration (in\n"
    "               seconds); with --dry-run, the categories that would be cleaned\n"
    "  --home DIR   scan this folder as the user's home\n"
    "  --root DIR   scan this folder as the system root\n"
    "  -h, --help   show this text\n\n"
    "Names are escaped as ls -b does. Exit status: 0 when every selected item is gone (or\n"
    "nothing was found); 1 when some could not be removed, or the question was not answered yes\n"
    "or could not be asked; 2 on a usage error. Interrupted (Ctrl-C, SIGTERM) while removing,\n"
    "it finishes the item in hand, prints what it freed so far and ends with 130 or 143.\n";

// "Trash (3 items)" answers to "Trash" as well: the count changes from scan to scan.
bool nameMatches(const std::string& categoryName, const std::string& wanted) {
  if (categoryName == wanted) return true;
  return categoryName.size() > wanted.size() + 3 && categoryName.starts_with(wanted + " (") &&
         categoryName.back() == ')';
}

// The categories a clean may touch, reduced to their selected items: neither protected nor
// skipped, and among the names of `only` when it is given. Scan order is kept.
std::vector<clean::CleanCategory> selectionOf(const std::vector<clean::CleanCategory>& categories,
                                              const std::vector<std::string>& only) {
  std::vector<clean::CleanCategory> selection;
  for (const auto& category : categories) {
    if (!clean::isReclaimable(category)) continue;
    if (!only.empty() && std::none_of(only.begin(), only.end(), [&](const std::string& wanted) {
          return nameMatches(category.name, wanted);
        })) {
      continue;
    }
    clean::CleanCategory kept = category;
    std::erase_if(kept.items, [](const clean::CleanItem& item) { return !item.isSelected; });
    if (!kept.items.empty()) selection.push_back(std::move(kept));
  }
  return selection;
}

// The items in the order of the listing: section by section, within a section the largest
// category first (equal sizes in scan order), each category's items in their own order.
std::vector<clean::CleanItem> itemsInListingOrder(const std::vector<clean::CleanCategory>& selection) {
  std::vector<clean::CleanItem> items;
  for (auto& [section, members] : clean::orderedSections(selection)) {
    std::stable_sort(members.begin(), members.end(), [](const clean::CleanCategory& a, const clean::CleanCategory& b) {
      return a.selectedSize() > b.selectedSize();
    });
    for (const auto& category : members) items.insert(items.end(), category.items.begin(), category.items.end());
  }
  return items;
}

// Decided before the scan, from the names alone: a name that is no category, or a protected
// one, is a mistake in the command line, never "Nothing to clean".
void checkOnlyNames(const std::vector<std::string>& only) {
  const auto known = clean::NativeCleanService::categoryNames();
  for (const auto& wanted : only) {
    const auto match = std::find_if(known.begin(), known.end(), [&](const clean::CategoryName& category) {
      return nameMatches(wanted, category.name);
    });
    if (match == known.end()) {
      throw UsageError("--only \"" + wanted + "\": no category has this name ('halcyra scan' lists them)");
    }
    if (match->isProtected) {
      throw UsageError("--only \"" + wanted + "\": a protected category, never cleaned");
    }
  }
}

std::string itemCount(std::size_t count) { return fmt::format("{} {}", count, count == 1 ? "item" : "items"); }

nlohmann::json resultToJson(const clean::CleanResult& result) {
  nlohmann::json failed = nlohmann::json::array();
  for (const auto& failure : result.failedItems) failed.push_back({{"path", failure.path}, {"error", failure.error}});
  return {{"freedBytes", result.freedBytes},
          {"itemsCleaned", result.itemsCleaned},
          {"duration", result.duration},
          {"failedItems", std::move(failed)}};
}

int runClean(const std::vector<std::string>& args) {
  Arguments arguments({"--json", "--yes", "--dry-run"}, {"--home", "--root", "--only"});
  arguments.parse(args);
  if (!arguments.positional().empty()) throw UsageError("unexpected argument " + arguments.positional().front());
  const bool json = arguments.has("--json");
  const bool dryRun = arguments.has("--dry-run");
  const bool yes = arguments.has("--yes");
  // Decided before the scan: without a terminal there is nobody to answer the question.
  if (!dryRun && !yes && !stdinIsTerminal()) {
    throw CommandError("standard input is not a terminal; pass --yes to clean without the question. "
                       "Nothing was removed.");
  }
  const std::vector<std::string> only = arguments.values("--only");
  checkOnlyNames(only);

  platform::Platform platform = platform::Platform::forSystem(systemPathsFrom(arguments));
  platform.stopFlag = StopSignals::flag();
  clean::NativeCleanService service(std::move(platform));
  StatusLine statusLine;
  const auto categories = service.scan([&](const std::string& text) { statusLine.status(text); });
  statusLine.finish();

  const auto selection = selectionOf(categories, only);
  const auto items = itemsInListingOrder(selection);
  // With --json, standard output holds the JSON alone.
  std::FILE* listing = json ? stderr : stdout;

  if (items.empty()) {
    std::fputs("Nothing to clean.\n", listing);
    if (json) fmt::print(stdout, "{}\n", core::toJsonText(dryRun ? nlohmann::json::array() : resultToJson({})));
    return 0;
  }
  printCategories(listing, selection, true);
  if (dryRun) {
    if (json) {
      nlohmann::json list = nlohmann::json::array();
      for (const auto& category : selection) list.push_back(categoryToJson(category));
      fmt::print(stdout, "{}\n", core::toJsonText(list));
    }
    std::fputs("Dry run: nothing was removed.\n", listing);
    return 0;
  }
  std::int64_t selectedBytes = 0;
  for (const auto& item : items) selectedBytes += item.size;
  if (!yes && !confirm(fmt::format("Remove {} ({})?", itemCount(items.size()), core::ByteFormatter::format(selectedBytes)))) {
    throw CommandError("not confirmed; nothing was removed.");
  }

  const StopSignals stop;
  const clean::CleanResult result = service.clean(items, [&](const std::string& text) { statusLine.status(text); });
  statusLine.finish();
  if (stop.received()) {
    // What went before the signal is gone for good: that is said first, whatever else.
    if (json) {
      fmt::print(stdout, "{}\n", core::toJsonText(resultToJson(result)));
    } else {
      fmt::print(stdout, "Interrupted: freed {}, {} in {:.2f} s\n", core::ByteFormatter::format(result.freedBytes),
                 itemCount(static_cast<std::size_t>(result.itemsCleaned)), result.duration);
    }
    flushStandardOutput();
    fmt::print(stderr, "halcyra clean: interrupted; the items not reached were left as they were\n");
    return stop.exitStatus();
  }
  if (json) {
    fmt::print(stdout, "{}\n", core::toJsonText(resultToJson(result)));
  } else {
    fmt::print(stdout, "Freed {}, {} in {:.2f} s\n", core::ByteFormatter::format(result.freedBytes),
                             itemCount(static_cast<std::size_t>(result.itemsCleaned)), result.duration);
  }
  if (result.failedItems.empty()) return 0;
  flushStandardOutput();
  if (!json) {
    for (const auto& failure : result.failedItems) fmt::print(stderr, "not removed {}: {}\n", escapedName(failure.path), failure.error);
  }
  fmt::print(stderr, "halcyra clean: {} of {} could not be removed\n", result.failedItems.size(),
             itemCount(items.size()));
  return 1;
}

const Command cleanCommand{"clean", "remove the junk a scan finds, after a question", kUsage, runClean};

} // namespace

HALCYRA_REGISTER_COMMAND(cleanCommand);

} // namespace halcyra::cli
