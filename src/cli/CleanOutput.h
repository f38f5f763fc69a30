#pragma once

#include <cstdio>
#include <vector>

#include <nlohmann/json.hpp>

#include "clean/CleanItem.h"
#include "platform/SystemPaths.h"

namespace halcyra::cli {

class Arguments;

/// The home and root of `--home` and `--root`, or those of the running user.
platform::SystemPaths systemPathsFrom(const Arguments& arguments);

/// A category with the record's field names as keys; `skipReason` is null when none.
nlohmann::json categoryToJson(const clean::CleanCategory& category);

/// The readable listing: the sections in the order of the results screen, each category that
/// is not protected with its size and item count, skipped ones with their reason, and the
/// reclaimable total. Only selected items are counted when `selectedOnly` is set.
void printCategories(std::FILE* out, const std::vector<clean::CleanCategory>& categories, bool selectedOnly);

} // namespace halcyra::cli
