#include "duplicates/DuplicateCoding.h"

#include <stdexcept>

#include <fmt/format.h>

#include "core/JsonText.h"
#include "core/Uuid.h"

namespace halcyra::duplicates {
namespace {

using namespace std::chrono;

// Reads exactly `digits` decimal digits at `pos`.
std::optional<int> number(std::string_view text, std::size_t pos, std::size_t digits) {
  if (pos + digits > text.size()) return std::nullopt;
  int value = 0;
  for (std::size_t i = pos; i < pos + digits; ++i) {
    if (text[i] < '0' || text[i] > '9') return std::nullopt;
    value = value * 10 + (text[i] - '0');
  }
  return value;
}

} // namespace

std::string dateText(FileDate date) {
  const auto day = floor<days>(date);
  const year_month_day ymd{day};
  const auto inDay = date - day;
  const hh_mm_ss<microseconds> clock{inDay};
  std::string text = fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}", static_cast<int>(ymd.year()),
                                 static_cast<unsigned>(ymd.month()), static_cast<unsigned>(ymd.day()),
                                 clock.hours().count(), clock.minutes().count(), clock.seconds().count());
  if (clock.subseconds().count() != 0) text += fmt::format(".{:06}", clock.subseconds().count());
  text.push_back('Z');
  return text;
}

std::optional<FileDate> parseDateText(std::string_view text) {
  // YYYY-MM-DDTHH:MM:SS[.fraction](Z|+HH:MM|-HH:MM)
  const auto y = number(text, 0, 4), mo = number(text, 5, 2), d = number(text, 8, 2);
  const auto h = number(text, 11, 2), mi = number(text, 14, 2), s = number(text, 17, 2);
  if (!y || !mo || !d || !h || !mi || !s || text[4] != '-' || text[7] != '-' ||
      (text[10] != 'T' && text[10] != 't') || text[13] != ':' || text[16] != ':') {
    return std::nullopt;
  }
  const year_month_day ymd{year{*y}, month{static_cast<unsigned>(*mo)}, day{static_cast<unsigned>(*d)}};
  if (!ymd.ok() || *h > 23 || *mi > 59 || *s > 60) return std::nullopt;
  std::size_t pos = 19;
  long long micros = 0;
  if (pos < text.size() && text[pos] == '.') {
    ++pos;
    long long scale = 100000;
    const std::size_t start = pos;
    while (pos < text.size() && text[pos] >= '0' && text[pos] <= '9') {
      micros += (text[pos] - '0') * scale; // digits past the sixth are dropped
      scale /= 10;
      ++pos;
    }
    if (pos == start) return std::nullopt;
  }
  minutes offset{0};
  if (pos < text.size() && (text[pos] == 'Z' || text[pos] == 'z')) {
    ++pos;
  } else if (pos < text.size() && (text[pos] == '+' || text[pos] == '-')) {
    const auto oh = number(text, pos + 1, 2), om = number(text, pos + 4, 2);
    if (!oh || !om || text.size() < pos + 6 || text[pos + 3] != ':') return std::nullopt;
    offset = hours{*oh} + minutes{*om};
    if (text[pos] == '-') offset = -offset;
    pos += 6;
  } else {
    return std::nullopt;
  }
  if (pos != text.size()) return std::nullopt;
  return FileDate(sys_days{ymd}) + hours{*h} + minutes{*mi} + seconds{*s} + microseconds{micros} - offset;
}

void to_json(nlohmann::json& json, const DuplicateFile& file) {
  json = nlohmann::json{{"id", file.id},
                        {"path", file.path},
                        {"size", file.size},
                        {"modificationDate", dateText(file.modificationDate)},
                        {"isSelected", file.isSelected}};
}

void from_json(const nlohmann::json& json, DuplicateFile& file) {
  json.at("id").get_to(file.id);
  json.at("path").get_to(file.path);
  json.at("size").get_to(file.size);
  const auto date = parseDateText(json.at("modificationDate").get_ref<const std::string&>());
  if (!date) throw std::invalid_argument("modificationDate is not an RFC 3339 date");
  file.modificationDate = *date;
  json.at("isSelected").get_to(file.isSelected);
}

void to_json(nlohmann::json& json, const DuplicateGroup& group) {
  json = nlohmann::json{{"id", group.id},
                        {"fileHash", group.fileHash},
                        {"representativeFileName", group.representativeFileName},
                        {"fileSize", group.fileSize},
                        {"files", group.files}};
}

void from_json(const nlohmann::json& json, DuplicateGroup& group) {
  json.at("id").get_to(group.id);
  json.at("fileHash").get_to(group.fileHash);
  json.at("representativeFileName").get_to(group.representativeFileName);
  json.at("fileSize").get_to(group.fileSize);
  json.at("files").get_to(group.files);
}

void to_json(nlohmann::json& json, const DuplicateCleanResult& result) {
  nlohmann::json failed = nlohmann::json::array();
  for (const auto& failure : result.failedFiles) failed.push_back({{"path", failure.path}, {"error", failure.error}});
  json = nlohmann::json{{"freedBytes", result.freedBytes},
                        {"filesDeleted", result.filesDeleted},
                        {"duration", result.duration},
                        {"failedFiles", std::move(failed)}};
}

void from_json(const nlohmann::json& json, DuplicateCleanResult& result) {
  json.at("freedBytes").get_to(result.freedBytes);
  json.at("filesDeleted").get_to(result.filesDeleted);
  json.at("duration").get_to(result.duration);
  result.failedFiles.clear();
  if (json.contains("failedFiles")) {
    for (const auto& failure : json.at("failedFiles")) {
      result.failedFiles.push_back({failure.at("path").get<std::string>(), failure.at("error").get<std::string>()});
    }
  }
}

void writeJson(const FoundDuplicates& found, SelectionStrategy strategy, const std::function<void(std::string_view)>& write) {
  if (found.groupCount() == 0) {
    write("[]");
    return;
  }
  // Keys in the order the records' JSON objects keep them: sorted.
  std::string text = "[\n";
  std::string path;
  for (std::size_t g = 0; g < found.groupCount(); ++g) {
    const std::string size = std::to_string(found.fileSize(g));
    text += "  {\n    \"fileHash\": ";
    text += core::jsonStringLiteral(found.fileHash(g));
    text += ",\n    \"fileSize\": ";
    text += size;
    text += ",\n    \"files\": [";
    for (std::size_t position = 0; position < found.fileCount(g); ++position) {
      found.path(g, position, path);
      text += position == 0 ? "\n      {\n        \"id\": " : ",\n      {\n        \"id\": ";
      text += core::jsonStringLiteral(core::makeUuid());
      text += ",\n        \"isSelected\": ";
      text += found.isSelected(g, position, strategy) ? "true" : "false";
      text += ",\n        \"modificationDate\": ";
      text += core::jsonStringLiteral(dateText(found.modificationDate(g, position)));
      text += ",\n        \"path\": ";
      text += core::jsonStringLiteral(path);
      text += ",\n        \"size\": ";
      text += size;
      text += "\n      }";
    }
    text += "\n    ],\n    \"id\": ";
    text += core::jsonStringLiteral(core::makeUuid());
    text += ",\n    \"representativeFileName\": ";
    text += core::jsonStringLiteral(found.representativeFileName(g));
    text += g + 1 < found.groupCount() ? "\n  },\n" : "\n  }\n]";
    write(text);
    text.clear();
  }
}

} // namespace halcyra::duplicates
