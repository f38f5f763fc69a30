#pragma once

#include <optional>
#include <string>

#include "platform/SystemPaths.h"

namespace halcyra::platform {

/// A stable identifier of this machine, the same for every user and across restarts.
namespace MachineIdentifier {

/// macOS: the platform expert's IOPlatformUUID. Linux: /etc/machine-id below the root of
/// `paths` (32 hexadecimal digits). None when it cannot be read or is not of that form.
std::optional<std::string> hardwareUUID(const SystemPaths& paths = SystemPaths::current());

} // namespace MachineIdentifier
} // namespace halcyra::platform
