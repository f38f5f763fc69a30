#include <nlohmann/json.hpp>

#include "statistics/CleanupEventRequest.h"
#include "statistics/LifetimeStatsResponse.h"

namespace halcyra::statistics {
namespace {

using namespace std::chrono;

std::optional<int> digits(std::string_view text, std::size_t at, std::size_t count) {
  if (at + count > text.size()) return std::nullopt;
  int value = 0;
  for (std::size_t i = at; i < at + count; ++i) {
    if (text[i] < '0' || text[i] > '9') return std::nullopt;
    value = value * 10 + (text[i] - '0');
  }
  return value;
}

std::int64_t requiredInteger(const nlohmann::json& object, const char* key) {
  const auto found = object.find(key);
  if (found == object.end()) throw StatisticsDecodingError(std::string("missing ") + key);
  if (found->is_number_integer()) {
    if (found->is_number_unsigned() && found->get<std::uint64_t>() > static_cast<std::uint64_t>(INT64_MAX)) {
      throw StatisticsDecodingError(std::string(key) + " is out of range");
    }
    return found->get<std::int64_t>();
  }
  throw StatisticsDecodingError(std::string(key) + " is not a whole number");
}

} // namespace

std::string encodeCleanupEvent(const CleanupEventRequest& request) {
  nlohmann::ordered_json body;
  body["apiKey"] = request.apiKey;
  body["machineId"] = request.machineId;
  body["filesCleanedCount"] = request.filesCleanedCount;
  body["spaceFreedBytes"] = request.spaceFreedBytes;
  body["appVersion"] = request.appVersion;
  // Every value is ours, but a machine identifier read from a file need not be UTF-8.
  return body.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

std::optional<system_clock::time_point> parseIso8601(std::string_view text) {
  // YYYY-MM-DDTHH:MM:SS[.fraction](Z|+HH:MM|-HH:MM)
  if (text.size() < 20 || text[4] != '-' || text[7] != '-' || (text[10] != 'T' && text[10] != 't') ||
      text[13] != ':' || text[16] != ':') {
    return std::nullopt;
  }
  const auto year = digits(text, 0, 4), month = digits(text, 5, 2), day = digits(text, 8, 2);
  const auto hour = digits(text, 11, 2), minute = digits(text, 14, 2), second = digits(text, 17, 2);
  if (!year || !month || !day || !hour || !minute || !second) return std::nullopt;
  const year_month_day date{std::chrono::year(*year), std::chrono::month(static_cast<unsigned>(*month)),
                            std::chrono::day(static_cast<unsigned>(*day))};
  if (!date.ok() || *hour > 23 || *minute > 59 || *second > 60) return std::nullopt;
  // The clock counts nanoseconds in 64 bits, about 292 years either side of 1970; a date
  // outside these years is no date of a clean and could not be held.
  if (*year < 1700 || *year > 2200) return std::nullopt;

  std::size_t at = 19;
  nanoseconds fraction{0};
  if (at < text.size() && text[at] == '.') {
    ++at;
    const std::size_t start = at;
    std::int64_t scale = 100'000'000;
    while (at < text.size() && text[at] >= '0' && text[at] <= '9') {
      fraction += nanoseconds((text[at] - '0') * scale);
      scale /= 10;
      ++at;
    }
    if (at == start) return std::nullopt;
  }
  if (at >= text.size()) return std::nullopt;
  minutes offset{0};
  if (text[at] == 'Z' || text[at] == 'z') {
    ++at;
  } else if (text[at] == '+' || text[at] == '-') {
    const auto offsetHours = digits(text, at + 1, 2), offsetMinutes = digits(text, at + 4, 2);
    if (!offsetHours || !offsetMinutes || at + 3 >= text.size() || text[at + 3] != ':' || *offsetHours > 23 ||
        *offsetMinutes > 59) {
      return std::nullopt;
    }
    offset = hours(*offsetHours) + minutes(*offsetMinutes);
    if (text[at] == '-') offset = -offset;
    at += 6;
  } else {
    return std::nullopt;
  }
  if (at != text.size()) return std::nullopt;
  const sys_seconds local = sys_days(date) + hours(*hour) + minutes(*minute) + seconds(*second);
  return time_point_cast<system_clock::duration>(local - offset) + duration_cast<system_clock::duration>(fraction);
}

LifetimeStatsResponse decodeLifetimeStats(std::string_view body) {
  const auto document = nlohmann::json::parse(body, nullptr, false);
  if (document.is_discarded() || !document.is_object()) throw StatisticsDecodingError("not a JSON object");
  LifetimeStatsResponse response;
  response.totalCleanups = requiredInteger(document, "totalCleanups");
  response.totalSpaceFreedBytes = requiredInteger(document, "totalSpaceFreedBytes");
  response.totalFilesCleaned = requiredInteger(document, "totalFilesCleaned");
  if (const auto last = document.find("lastCleanup"); last != document.end() && !last->is_null()) {
    if (!last->is_string()) throw StatisticsDecodingError("lastCleanup is not a date");
    response.lastCleanup = parseIso8601(last->get_ref<const std::string&>());
    if (!response.lastCleanup) throw StatisticsDecodingError("lastCleanup is not an ISO 8601 date");
  }
  return response;
}

} // namespace halcyra::statistics
