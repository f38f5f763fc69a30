#pragma once

#if defined(__linux__)
#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace halcyra::testing {

/// While alive, the calling thread obeys file permissions even when the tests run as root, so
/// that a read-only folder refuses removal as it does for an ordinary user. Root keeps these
/// rights in its permitted set and gets them back at the end; a program it starts in the
/// meantime gets them afresh, and so acts with administrator rights. Without root, nothing
/// changes.
class OrdinaryRights {
public:
  OrdinaryRights() {
#if defined(__linux__)
    if (::geteuid() != 0) return;
    if (::syscall(SYS_capget, &header_, saved_) != 0) return;
    __user_cap_data_struct lowered[2] = {saved_[0], saved_[1]};
    lowered[0].effective &= ~((1u << CAP_DAC_OVERRIDE) | (1u << CAP_DAC_READ_SEARCH) | (1u << CAP_FOWNER));
    active_ = ::syscall(SYS_capset, &header_, lowered) == 0;
#endif
  }
  ~OrdinaryRights() {
#if defined(__linux__)
    if (active_) ::syscall(SYS_capset, &header_, saved_);
#endif
  }
  OrdinaryRights(const OrdinaryRights&) = delete;
  OrdinaryRights& operator=(const OrdinaryRights&) = delete;

private:
#if defined(__linux__)
  __user_cap_header_struct header_{_LINUX_CAPABILITY_VERSION_3, 0};
  __user_cap_data_struct saved_[2]{};
  bool active_ = false;
#endif
};

} // namespace halcyra::testing
