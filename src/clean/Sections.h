#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "clean/CleanItem.h"

namespace halcyra::clean {

/// The nine sections of the results, in the order the results show them.
const std::vector<std::string>& sectionNames();

/// Title, symbol and one-line description of a section; unknown names get the "Junk" row.
std::string_view sectionTitle(std::string_view section);
std::string_view sectionIcon(std::string_view section);
std::string_view sectionDescription(std::string_view section);

/// A section with all of its categories.
using SectionGroup = std::pair<std::string, std::vector<CleanCategory>>;

/// The sections that have something to offer (a category that is neither protected nor
/// skipped), in section order, each with all of its categories in scan order.
std::vector<SectionGroup> orderedSections(const std::vector<CleanCategory>& categories);

/// The sum of all item sizes of the categories that are neither protected nor skipped.
std::int64_t reclaimableSize(const std::vector<CleanCategory>& categories);

/// Whether a category counts: neither protected nor skipped.
bool isReclaimable(const CleanCategory& category);

} // namespace halcyra::clean
