#pragma once

#include <optional>
#include <functional>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "duplicates/DuplicateCleanResult.h"
#include "duplicates/DuplicateFile.h"
#include "duplicates/DuplicateGroup.h"
#include "duplicates/FoundDuplicates.h"
#include "duplicates/SelectionStrategy.h"

namespace halcyra::duplicates {

/// A date as RFC 3339 text in UTC: "2024-05-01T09:30:00Z", with six fraction digits when the
/// date has microseconds ("2024-05-01T09:30:00.250000Z").
std::string dateText(FileDate date);
/// Reads what `dateText` writes, and any RFC 3339 date with an offset; none when malformed.
std::optional<FileDate> parseDateText(std::string_view text);

// The records with their field names as keys; dates as `dateText`. Decoding throws
// nlohmann::json::exception on a missing key or a wrong type, and std::invalid_argument on a
// malformed date. Computed values (`selectedCount`, `totalWastedSize`) are not written.
void to_json(nlohmann::json& json, const DuplicateFile& file);
void from_json(const nlohmann::json& json, DuplicateFile& file);
void to_json(nlohmann::json& json, const DuplicateGroup& group);
void from_json(const nlohmann::json& json, DuplicateGroup& group);
void to_json(nlohmann::json& json, const DuplicateCleanResult& result);
void from_json(const nlohmann::json& json, DuplicateCleanResult& result);

/// Writes the groups, with `strategy`'s selection and fresh ids, as the text that
/// `core::toJsonText` makes of their records as a JSON array (indented by two, keys in the
/// same order), without a final newline. One group at a time goes to `write`, so the whole
/// text is never held.
void writeJson(const FoundDuplicates& found, SelectionStrategy strategy, const std::function<void(std::string_view)>& write);

} // namespace halcyra::duplicates
