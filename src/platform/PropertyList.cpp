#include "platform/PropertyList.h"

#include <cstdint>
#include <cstdlib>
#include <dlfcn.h>
#include <stdexcept>

#include <plist/plist.h>

namespace halcyra::platform {
namespace {

// The entry points used, resolved once from the library the build was configured with.
struct PlistLibrary {
  decltype(&plist_from_memory) fromMemory = nullptr;
  decltype(&plist_get_node_type) nodeType = nullptr;
  decltype(&plist_dict_get_item) dictItem = nullptr;
  decltype(&plist_get_string_val) stringValue = nullptr;
  decltype(&plist_free) free = nullptr;
  std::string failure;
};

template <typename Function>
bool resolve(void* handle, const char* name, Function& function) {
  function = reinterpret_cast<Function>(::dlsym(handle, name));
  return function != nullptr;
}

PlistLibrary load() {
  PlistLibrary library;
  // Kept open for the life of the process, like a library linked at start.
  void* handle = ::dlopen(HALCYRA_PLIST_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    const char* reason = ::dlerror();
    library.failure = std::string("cannot load the property-list library ") + HALCYRA_PLIST_LIBRARY + ": " +
                      (reason != nullptr ? reason : "unknown error");
    return library;
  }
  if (!resolve(handle, "plist_from_memory", library.fromMemory) ||
      !resolve(handle, "plist_get_node_type", library.nodeType) ||
      !resolve(handle, "plist_dict_get_item", library.dictItem) ||
      !resolve(handle, "plist_get_string_val", library.stringValue) || !resolve(handle, "plist_free", library.free)) {
    library.failure = std::string("the property-list library ") + HALCYRA_PLIST_LIBRARY + " lacks a function it needs";
  }
  return library;
}

const PlistLibrary& plistLibrary() {
  static const PlistLibrary library = load();
  if (!library.failure.empty()) throw std::runtime_error(library.failure);
  return library;
}

} // namespace

std::optional<std::string> propertyListString(std::string_view bytes, const char* key) {
  const PlistLibrary& plist = plistLibrary();
  if (bytes.empty() || bytes.size() > UINT32_MAX) return std::nullopt;
  plist_t root = nullptr;
  plist.fromMemory(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &root);
  if (root == nullptr) return std::nullopt;
  std::optional<std::string> result;
  if (plist.nodeType(root) == PLIST_DICT) {
    plist_t node = plist.dictItem(root, key);
    if (node != nullptr && plist.nodeType(node) == PLIST_STRING) {
      char* value = nullptr;
      plist.stringValue(node, &value);
      if (value != nullptr) {
        result = std::string(value);
        std::free(value);
      }
    }
  }
  plist.free(root);
  return result;
}

} // namespace halcyra::platform
