#pragma once

#include <functional>
#include <optional>
#include <string>

namespace halcyra::testing {

/// Runs `body` in a child process with a mount namespace of its own, in which it may bind-mount
/// folders and files; nothing it mounts is seen outside, and everything goes with the child.
/// The result is the child's exit status (0 when `body` returned 0), or none when this system
/// does not allow a private mount namespace; the caller then skips with a message.
std::optional<int> inPrivateMountNamespace(const std::function<int()>& body);

/// Mounts `from` (a folder or a file) again at `to`; only inside inPrivateMountNamespace.
bool bindMount(const std::string& from, const std::string& to);

} // namespace halcyra::testing
