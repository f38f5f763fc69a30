#include "startup/StartupTextParsers.h"

#include <algorithm>

namespace halcyra::startup {
namespace {

constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kWhiteSpace = " \t\r\n\v\f";

std::string_view trim(std::string_view text, std::string_view characters) {
  const auto first = text.find_first_not_of(characters);
  if (first == std::string_view::npos) return {};
  const auto last = text.find_last_not_of(characters);
  return text.substr(first, last - first + 1);
}

// Calls `onLine` for every piece between line feeds, the last one included.
template <class OnLine>
void forEachLine(std::string_view text, OnLine onLine) {
  std::size_t start = 0;
  while (start <= text.size()) {
    std::size_t end = text.find('\n', start);
    if (end == std::string_view::npos) end = text.size();
    onLine(text.substr(start, end - start));
    start = end + 1;
  }
}

std::string_view afterPrefix(std::string_view line, std::string_view prefix) {
  return trim(line.substr(prefix.size()), kWhiteSpace);
}

bool isSwitchKey(std::string_view key) {
  return key == "Hidden" || key == "X-GNOME-Autostart-enabled" || key == "X-MATE-Autostart-enabled";
}

// The group name of a "[Group]" line, or none for any other line.
std::optional<std::string_view> groupHeader(std::string_view trimmedLine) {
  if (trimmedLine.size() < 2 || trimmedLine.front() != '[' || trimmedLine.back() != ']') return std::nullopt;
  return trimmedLine.substr(1, trimmedLine.size() - 2);
}

// The key of a "Key=value" line (trimmed), or none for a comment or a line without "=".
std::optional<std::string_view> keyOf(std::string_view trimmedLine) {
  if (trimmedLine.empty() || trimmedLine.front() == '#') return std::nullopt;
  const auto equals = trimmedLine.find('=');
  if (equals == std::string_view::npos) return std::nullopt;
  return trim(trimmedLine.substr(0, equals), kBlanks);
}

} // namespace

std::vector<LoginItemLine> parseLoginItemList(std::string_view output) {
  std::vector<LoginItemLine> items;
  forEachLine(output, [&](std::string_view line) {
    if (trim(line, kBlanks).empty()) return;
    const auto tab = line.find('\t');
    if (tab == std::string_view::npos) return;
    // The path is the second tab-separated part only: anything behind a further tab is not.
    std::string_view rest = line.substr(tab + 1);
    if (const auto next = rest.find('\t'); next != std::string_view::npos) rest = rest.substr(0, next);
    const std::string_view name = trim(line.substr(0, tab), kWhiteSpace);
    if (name.empty()) return;
    items.push_back({std::string(name), std::string(trim(rest, kWhiteSpace))});
  });
  return items;
}

std::map<std::string, bool> parseDisabledServices(std::string_view output) {
  std::map<std::string, bool> overrides;
  bool inAssociations = false;
  forEachLine(output, [&](std::string_view raw) {
    const std::string_view line = trim(raw, kBlanks);
    if (line.ends_with("= {")) {
      inAssociations = trim(line.substr(0, line.size() - 3), kBlanks) == "login item associations";
      return;
    }
    if (line == "}") {
      inAssociations = false;
      return;
    }
    if (inAssociations || !line.starts_with('"')) return;
    const auto closing = line.find('"', 1);
    if (closing == std::string_view::npos) return;
    const bool enabled = line.ends_with("enabled") || line.ends_with("false");
    overrides[std::string(line.substr(1, closing - 1))] = enabled;
  });
  return overrides;
}

BackgroundTaskDump parseBackgroundTaskDump(std::string_view output) {
  BackgroundTaskDump dump;
  std::map<std::string, bool> disabledMap;
  std::map<std::string, std::string> parentOf;
  std::optional<std::string> identifier, disposition, parent, name;

  const auto flush = [&] {
    if (!identifier) return;
    if (disposition) disabledMap[*identifier] = disposition->find("disabled") != std::string::npos;
    const auto dot = identifier->find('.');
    if (parent && dot != std::string::npos) {
      const std::string key = identifier->substr(dot + 1);
      parentOf[key] = *parent;
      if (name && !name->empty() && *name != "(null)") dump.names[key] = *name;
    }
  };

  forEachLine(output, [&](std::string_view raw) {
    const std::string_view line = trim(raw, kBlanks);
    if (line.starts_with('#') && line.ends_with(':') && line.find("Identifier") == std::string_view::npos) {
      flush();
      identifier.reset();
      disposition.reset();
      parent.reset();
      name.reset();
    } else if (line.starts_with("Disposition:")) {
      disposition = std::string(line);
    } else if (line.starts_with("Identifier:")) {
      identifier = std::string(afterPrefix(line, "Identifier:"));
    } else if (line.starts_with("Parent Identifier:")) {
      parent = std::string(afterPrefix(line, "Parent Identifier:"));
    } else if (line.starts_with("Name:") && !name) {
      name = std::string(afterPrefix(line, "Name:"));
    }
  });
  flush();

  for (const auto& [key, parentIdentifier] : parentOf) {
    const auto found = disabledMap.find(parentIdentifier);
    if (found == disabledMap.end() || !found->second) continue;
    dump.parentDisabled.insert(key);
    if (parentIdentifier != "Unknown Developer") dump.namedParentDisabled.insert(key);
  }
  return dump;
}

std::optional<std::string> DesktopEntry::value(std::string_view key) const {
  for (auto it = keys.rbegin(); it != keys.rend(); ++it) {
    if (it->first == key) return it->second;
  }
  return std::nullopt;
}

std::optional<std::string> DesktopEntry::text(std::string_view key) const {
  const auto raw = value(key);
  if (!raw) return std::nullopt;
  std::string resolved;
  for (std::size_t i = 0; i < raw->size(); ++i) {
    const char c = (*raw)[i];
    if (c != '\\' || i + 1 == raw->size()) {
      resolved.push_back(c);
      continue;
    }
    switch ((*raw)[++i]) {
    case 's': resolved.push_back(' '); break;
    case 'n': resolved.push_back('\n'); break;
    case 't': resolved.push_back('\t'); break;
    case 'r': resolved.push_back('\r'); break;
    case '\\': resolved.push_back('\\'); break;
    default:
      resolved.push_back('\\');
      resolved.push_back((*raw)[i]);
    }
  }
  return resolved;
}

std::optional<bool> DesktopEntry::boolean(std::string_view key) const {
  const auto raw = value(key);
  if (!raw) return std::nullopt;
  const std::string_view word = trim(*raw, kWhiteSpace);
  if (word == "true" || word == "1") return true;
  if (word == "false" || word == "0") return false;
  return std::nullopt;
}

std::optional<DesktopEntry> parseDesktopEntry(std::string_view text) {
  DesktopEntry entry;
  bool seen = false;
  bool inGroup = false;
  forEachLine(text, [&](std::string_view raw) {
    const std::string_view line = trim(raw, kWhiteSpace);
    if (const auto group = groupHeader(line)) {
      inGroup = *group == "Desktop Entry";
      seen = seen || inGroup;
      return;
    }
    if (!inGroup) return;
    const auto key = keyOf(line);
    if (!key) return;
    const auto equals = line.find('=');
    entry.keys.emplace_back(std::string(*key), std::string(trim(line.substr(equals + 1), kBlanks)));
  });
  if (!seen) return std::nullopt;
  return entry;
}

bool desktopEntryIsEnabled(const DesktopEntry& entry) {
  if (entry.boolean("Hidden").value_or(false)) return false;
  if (!entry.boolean("X-GNOME-Autostart-enabled").value_or(true)) return false;
  if (!entry.boolean("X-MATE-Autostart-enabled").value_or(true)) return false;
  return true;
}

std::string desktopEntryWithSwitch(std::string_view text, bool enable) {
  const std::string on = enable ? "true" : "false";
  const std::string hidden = enable ? "false" : "true";
  std::string result;
  bool inGroup = false;
  bool seen = false;
  bool wroteHidden = false;
  // Readers take the keys of every "[Desktop Entry]" group, so a repeated group gets its
  // switch keys rewritten too; Hidden is added to the first when none of them has it.
  const auto closeGroup = [&] {
    if (inGroup && !wroteHidden) result += "Hidden=" + hidden + "\n";
    if (inGroup) wroteHidden = true;
  };
  // A final line feed is not the start of one more line.
  if (text.ends_with('\n')) text.remove_suffix(1);
  forEachLine(text, [&](std::string_view raw) {
    const std::string_view line = trim(raw, kWhiteSpace);
    if (const auto group = groupHeader(line)) {
      closeGroup();
      inGroup = *group == "Desktop Entry";
      seen = seen || inGroup;
    } else if (inGroup) {
      if (const auto key = keyOf(line); key && isSwitchKey(*key)) {
        const bool isHidden = *key == "Hidden";
        result += std::string(*key) + "=" + (isHidden ? hidden : on) + "\n";
        wroteHidden = wroteHidden || isHidden;
        return;
      }
    }
    result.append(raw);
    result.push_back('\n');
  });
  closeGroup();
  // Behind whatever the text holds, so that no line of it falls into the new group.
  if (!seen) result += "[Desktop Entry]\nHidden=" + hidden + "\n";
  return result;
}

bool sameApartFromSwitch(const DesktopEntry& a, const DesktopEntry& b) {
  const auto withoutSwitch = [](const DesktopEntry& entry) {
    std::map<std::string, std::string> keys;
    for (const auto& [key, value] : entry.keys) {
      if (!isSwitchKey(key)) keys[key] = value;
    }
    return keys;
  };
  return withoutSwitch(a) == withoutSwitch(b);
}

std::vector<UnitFileState> parseUnitFileList(std::string_view output) {
  std::vector<UnitFileState> rows;
  forEachLine(output, [&](std::string_view line) {
    std::vector<std::string_view> columns;
    std::size_t start = 0;
    while (columns.size() < 2) {
      start = line.find_first_not_of(kWhiteSpace, start);
      if (start == std::string_view::npos) break;
      auto end = line.find_first_of(kWhiteSpace, start);
      if (end == std::string_view::npos) end = line.size();
      columns.push_back(line.substr(start, end - start));
      start = end;
    }
    if (columns.size() < 2 || !columns[0].ends_with(".service") || columns[0].size() == 8) return;
    rows.push_back({std::string(columns[0]), std::string(columns[1])});
  });
  return rows;
}

UnitFileSummary parseUnitFile(std::string_view text) {
  UnitFileSummary summary;
  std::string_view group;
  bool sawExecStart = false;
  forEachLine(text, [&](std::string_view raw) {
    const std::string_view line = trim(raw, kWhiteSpace);
    if (const auto header = groupHeader(line)) {
      group = *header;
      return;
    }
    if (line.starts_with(';')) return;
    const auto key = keyOf(line);
    if (!key) return;
    const std::string_view value = trim(line.substr(line.find('=') + 1), kBlanks);
    if (group == "Unit" && *key == "Description" && !value.empty()) {
      summary.description = std::string(value);
    } else if (group == "Service" && *key == "ExecStart" && !sawExecStart && !value.empty()) {
      sawExecStart = true;
      // Prefixes such as "-" (failure ignored) or "!" (full rights) stand before the program.
      std::string_view command = value.substr(std::min(value.find_first_not_of("@-:+!"), value.size()));
      std::string_view program;
      if (command.starts_with('"')) {
        const auto closing = command.find('"', 1);
        if (closing != std::string_view::npos) program = command.substr(1, closing - 1);
      } else {
        program = command.substr(0, command.find_first_of(kWhiteSpace));
      }
      if (program.starts_with('/')) summary.program = std::string(program);
    }
  });
  return summary;
}

} // namespace halcyra::startup
