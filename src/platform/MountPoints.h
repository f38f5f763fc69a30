#pragma once

#include <sys/stat.h>

namespace halcyra::platform {

/// What a no-follow look at one entry gives: its attributes, and whether it is the root of a
/// mount. The second is what a device number cannot tell: a folder or file bind-mounted from
/// the same file system has the same device as its surroundings.
struct EntryStatus {
  struct stat info {};
  bool isMountRoot = false;
};

/// Looks at `name` in the open folder `folder` without following a link; an empty name looks
/// at `folder` itself. False with errno set when the entry cannot be looked at. One system call
/// where the kernel reports mount roots (Linux 5.8 and later), so it can stand in for fstatat
/// in a walk at no extra cost.
bool statEntry(int folder, const char* name, EntryStatus& out);

/// Whether the folder open at `child`, reached from the open folder `parent`, lies on another
/// mount than `parent`: a mounted volume, or a bind mount of any folder. Walks that remove,
/// overwrite, hash or count never enter such a folder. When the system cannot tell, the device
/// numbers decide.
bool isMountPoint(int parent, int child);

} // namespace halcyra::platform
