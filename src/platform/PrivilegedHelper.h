#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/PrivilegedRunner.h"
#include "platform/SafeRemove.h"

namespace halcyra::platform {

/// One item for the privileged helper: where it is, and what it was when the unprivileged side
/// looked. The helper acts on it only while both identities still hold.
struct PrivilegedItem {
  std::string path;
  ItemIdentity identity;
};

/// What the helper did with one item.
enum class HelperOutcome {
  removed, ///< it is gone, by the helper's hand
  gone,    ///< nothing was there any more
  failed,  ///< refused or failed; the reason says which and why
};

struct HelperReport {
  HelperOutcome outcome = HelperOutcome::failed;
  std::string reason;
};

/// The outcome of one prompt: whether it was granted, and one report per item in order.
struct HelperBatch {
  bool granted = false;
  std::vector<HelperReport> reports; ///< as many as items when granted, empty otherwise
};

/// The longest argument list handed to the helper in one prompt. Linux takes about 2 MiB of
/// arguments and environment together, and no single argument of 128 KiB or more.
constexpr std::size_t kMaxHelperArgumentBytes = 1'000'000;
constexpr std::size_t kMaxHelperArgumentLength = 128 * 1024 - 1;

/// Removes the items with administrator rights behind one prompt. Items that do not fit one
/// prompt's arguments are reported failed without being sent.
HelperBatch removeWithPrivileges(PrivilegedRunner& runner, const std::vector<PrivilegedItem>& items);

/// Overwrites the file `passes` times and removes it, with administrator rights behind one prompt.
HelperBatch shredWithPrivileges(PrivilegedRunner& runner, const PrivilegedItem& item, int passes);

/// An item as the helper reads it: "DEVICE:INODE:PARENTDEVICE:PARENTINODE".
std::string identityArgument(const ItemIdentity& identity);
std::optional<ItemIdentity> parseIdentityArgument(std::string_view text);

/// One report line as the helper prints it: the item's number, its outcome, and the reason.
std::string reportLine(std::size_t index, HelperOutcome outcome, std::string_view reason);

/// The reports of `count` items in the helper's output. An item it said nothing about, or
/// reported in a line that cannot be read, counts as failed.
std::vector<HelperReport> parseHelperOutput(std::string_view output, std::size_t count);

/// The unprivileged side's view of `path` for the helper: the canonical path of its folder (as
/// the open folder descriptor names it, so links on the way are resolved once, here) and both
/// identities, looked at without following the item itself. None when it is gone.
std::optional<PrivilegedItem> describeForHelper(const std::string& path);

} // namespace halcyra::platform
