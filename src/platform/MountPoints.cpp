#include "platform/MountPoints.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

#if defined(__linux__)
#include <sys/sysmacros.h>
#endif

namespace halcyra::platform {
namespace {

#if defined(__linux__)
constexpr unsigned kWanted = STATX_BASIC_STATS | STATX_MNT_ID;

void copyTime(const struct statx_timestamp& from, struct timespec& to) {
  to.tv_sec = from.tv_sec;
  to.tv_nsec = from.tv_nsec;
}

void toStat(const struct statx& from, struct stat& to) {
  to = {};
  to.st_dev = makedev(from.stx_dev_major, from.stx_dev_minor);
  to.st_ino = from.stx_ino;
  to.st_mode = from.stx_mode;
  to.st_nlink = from.stx_nlink;
  to.st_uid = from.stx_uid;
  to.st_gid = from.stx_gid;
  to.st_rdev = makedev(from.stx_rdev_major, from.stx_rdev_minor);
  to.st_size = static_cast<off_t>(from.stx_size);
  to.st_blksize = static_cast<blksize_t>(from.stx_blksize);
  to.st_blocks = static_cast<blkcnt_t>(from.stx_blocks);
  copyTime(from.stx_atime, to.st_atim);
  copyTime(from.stx_mtime, to.st_mtim);
  copyTime(from.stx_ctime, to.st_ctim);
}

// The mount id of an open descriptor through name_to_handle_at, which kernels older than the
// mount-root attribute already have; false when the file system has no handles either.
bool handleMountId(int fd, int& mountId) {
  constexpr unsigned kRoom = 128;
  alignas(struct file_handle) unsigned char storage[sizeof(struct file_handle) + kRoom] = {};
  auto* handle = reinterpret_cast<struct file_handle*>(storage);
  handle->handle_bytes = kRoom;
  if (::name_to_handle_at(fd, "", handle, &mountId, AT_EMPTY_PATH) == 0) return true;
  // EOVERFLOW still fills in the mount id; only the handle did not fit.
  return errno == EOVERFLOW;
}
#endif

} // namespace

bool statEntry(int folder, const char* name, EntryStatus& out) {
#if defined(__linux__)
  struct statx status {};
  const int flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | (name[0] == '\0' ? AT_EMPTY_PATH : 0);
  if (::statx(folder, name, flags, kWanted, &status) == 0) {
    toStat(status, out.info);
    out.isMountRoot = (status.stx_attributes_mask & STATX_ATTR_MOUNT_ROOT) != 0 &&
                      (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
    return true;
  }
  if (errno != ENOSYS) return false;
#endif
  out.isMountRoot = false;
  if (name[0] == '\0') return ::fstat(folder, &out.info) == 0;
  return ::fstatat(folder, name, &out.info, AT_SYMLINK_NOFOLLOW) == 0;
}

bool isMountPoint(int parent, int child) {
  struct stat above {};
  struct stat below {};
  // A descriptor that cannot be looked at is not known to be on the same mount.
  if (::fstat(parent, &above) != 0 || ::fstat(child, &below) != 0) return true;
  if (above.st_dev != below.st_dev) return true;
#if defined(__linux__)
  struct statx status {};
  if (::statx(child, "", AT_EMPTY_PATH | AT_SYMLINK_NOFOLLOW, STATX_MNT_ID, &status) == 0) {
    if ((status.stx_attributes_mask & STATX_ATTR_MOUNT_ROOT) != 0) {
      return (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
    }
  }
  int childMount = 0;
  int parentMount = 0;
  if (handleMountId(child, childMount) && handleMountId(parent, parentMount)) return childMount != parentMount;
#endif
  return false;
}

} // namespace halcyra::platform
