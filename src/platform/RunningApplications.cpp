#include "platform/RunningApplications.h"

#include <cctype>

namespace halcyra::platform {

std::string toLowerAscii(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

std::optional<std::string> firstRunningProcess(const std::vector<std::string>& names,
                                               const std::set<std::string>& runningApps) {
  for (const auto& name : names) {
    if (runningApps.contains(toLowerAscii(name))) return name;
  }
  return std::nullopt;
}

} // namespace halcyra::platform
