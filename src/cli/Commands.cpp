#include "cli/Command.h"

#include <algorithm>
#include <array>

namespace halcyra::cli {
namespace {

std::vector<Command>& registry() {
  static std::vector<Command> all;
  return all;
}

// The order of the help text: the tools in the order of the window's sidebar.
constexpr std::array<std::string_view, 8> kOrder{"scan", "clean", "update", "uninstall", "duplicates", "shred",
                                                 "analyze", "startup"};

std::size_t rank(std::string_view name) {
  const auto it = std::find(kOrder.begin(), kOrder.end(), name);
  return static_cast<std::size_t>(it - kOrder.begin());
}

} // namespace

CommandRegistration::CommandRegistration(const Command& command) { registry().push_back(command); }

std::vector<Command> commands() {
  std::vector<Command> sorted = registry();
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const Command& a, const Command& b) { return rank(a.name) < rank(b.name); });
  return sorted;
}

} // namespace halcyra::cli
