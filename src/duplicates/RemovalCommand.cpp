#include "duplicates/RemovalCommand.h"

#include "platform/ShellQuoting.h"

namespace halcyra::duplicates {

std::vector<std::string> removalCommandLines(const std::vector<std::string>& paths, std::size_t maxBytes) {
  static constexpr std::string_view kCommand = "rm -f";
  std::vector<std::string> lines;
  std::string line;
  for (const auto& path : paths) {
    const std::string word = platform::shellQuote(path);
    if (!line.empty() && line.size() + 1 + word.size() > maxBytes) {
      lines.push_back(std::move(line));
      line.clear();
    }
    if (line.empty()) line = kCommand;
    line += ' ';
    line += word;
  }
  if (!line.empty()) lines.push_back(std::move(line));
  return lines;
}

} // namespace halcyra::duplicates
