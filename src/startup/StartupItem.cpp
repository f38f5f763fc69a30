#include "startup/StartupItem.h"

namespace halcyra::startup {

std::string_view toString(StartupItemCategory category) {
  return category == StartupItemCategory::launchAgents ? "launchAgents" : "loginItems";
}

std::optional<StartupItemCategory> startupItemCategoryFrom(std::string_view name) {
  if (name == "loginItems") return StartupItemCategory::loginItems;
  if (name == "launchAgents") return StartupItemCategory::launchAgents;
  return std::nullopt;
}

} // namespace halcyra::startup
