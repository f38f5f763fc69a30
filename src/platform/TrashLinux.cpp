#include "platform/Trash.h"

#include "platform/SafeRemove.h"

namespace halcyra::platform {

// Emptying removes what files/ holds and the records in info/ that describe it, with the same
// care as any other removal (a link in the Trash goes as a link), and leaves the Trash folders
// in place for the desktop. One attempt: what could not be removed stays.
bool FreedesktopTrash::empty() {
  const auto emptied = [](RemoveOutcome outcome) {
    return outcome == RemoveOutcome::removed || outcome == RemoveOutcome::alreadyGone;
  };
  const bool files = emptied(removeContents(directory_ + "/files"));
  const bool info = emptied(removeContents(directory_ + "/info"));
  return files && info;
}

} // namespace halcyra::platform
