#pragma once

#include <string>

#include <unistd.h>

namespace halcyra::platform {

/// The numeric id of the user this process runs as, as launchd names the user's domain
/// ("gui/501").
inline std::string currentUserId() { return std::to_string(::getuid()); }

} // namespace halcyra::platform
