#include "platform/Trash.h"

namespace halcyra::platform {

bool FreedesktopTrash::empty() {
  return false;
}

} // namespace halcyra::platform
