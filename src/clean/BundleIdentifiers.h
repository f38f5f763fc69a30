#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "platform/SystemPaths.h"

namespace halcyra::clean {

/// The bundle identifiers of the installed applications: every "<name>.app/Contents/Info.plist"
/// below "/Applications", "~/Applications", "/System/Applications" and
/// "/System/Library/CoreServices" (bundles inside bundles included), plus four identifiers of
/// helpers and libraries whose data belongs to no application of its own. Folders that do not
/// exist give nothing; links are never followed.
std::set<std::string> collectInstalledBundleIDs(const platform::SystemPaths& paths);

/// The "CFBundleIdentifier" string of a property list in XML or binary form; none when the
/// bytes are not a property list, not a dictionary, or have no such string.
std::optional<std::string> bundleIdentifierFromPlist(std::string_view bytes);

} // namespace halcyra::clean
