#include <cstdio>

#include <fmt/format.h>

#include "cli/Arguments.h"
#include "cli/CleanOutput.h"
#include "cli/Command.h"
#include "cli/Terminal.h"
#include "clean/NativeCleanService.h"
#include "core/JsonText.h"

namespace halcyra::cli {
namespace {

constexpr std::string_view kUsage =
    "Usage: halcyra scan [--json] [--home DIR] [--root DIR]\n\n"
    "Finds junk files: caches, logs and leftovers in the places the catalogue names, and what\n"
    "the specialised scanners find. Removes nothing.\n\n"
    "Options:\n"
    "  --json       print every category found, protected ones included, as JSON\n"
    "  --home DIR   scan this folder as the user's home\n"
    "  --root DIR   scan this folder as the system root\n"
    "  -h, --help   show this text\n\n"
    "Status texts go to standard error. In JSON, a byte of a path that is not valid UTF-8 is\n"
    "written as the escape \\udcXX (XX its value), so every path names exactly one file.\n";

int runScan(const std::vector<std::string>& args) {
  Arguments arguments({"--json"}, {"--home", "--root"});
  arguments.parse(args);
  if (!arguments.positional().empty()) throw UsageError("unexpected argument " + arguments.positional().front());

  clean::NativeCleanService service(platform::Platform::forSystem(systemPathsFrom(arguments)));
  StatusLine statusLine;
  const auto categories = service.scan([&](const std::string& text) { statusLine.status(text); });
  statusLine.finish();

  if (arguments.has("--json")) {
    nlohmann::json list = nlohmann::json::array();
    for (const auto& category : categories) list.push_back(categoryToJson(category));
    fmt::print(stdout, "{}\n", core::toJsonText(list));
  } else {
    printCategories(stdout, categories, false);
  }
  return 0;
}

const Command scanCommand{"scan", "find junk files (caches, logs, leftovers)", kUsage, runScan};

} // namespace

HALCYRA_REGISTER_COMMAND(scanCommand);

} // namespace halcyra::cli
