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
  decltype(&plist_array_get_size) arraySize = nullptr;
  decltype(&plist_array_get_item) arrayItem = nullptr;
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
      !resolve(handle, "plist_get_string_val", library.stringValue) ||
      !resolve(handle, "plist_array_get_size", library.arraySize) ||
      !resolve(handle, "plist_array_get_item", library.arrayItem) || !resolve(handle, "plist_free", library.free)) {
    library.failure = std::string("the property-list library ") + HALCYRA_PLIST_LIBRARY + " lacks a function it needs";
  }
  return library;
}

const PlistLibrary& plistLibrary() {
  static const PlistLibrary library = load();
  if (!library.failure.empty()) throw std::runtime_error(library.failure);
  return library;
}

// The parsed top-level dictionary, freed on every way out; null when the bytes hold none.
class TopLevelDictionary {
public:
  TopLevelDictionary(const PlistLibrary& plist, std::string_view bytes) : plist_(plist) {
    if (bytes.empty() || bytes.size() > UINT32_MAX) return;
    plist.fromMemory(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &root_);
  }
  ~TopLevelDictionary() {
    if (root_ != nullptr) plist_.free(root_);
  }
  TopLevelDictionary(const TopLevelDictionary&) = delete;
  TopLevelDictionary& operator=(const TopLevelDictionary&) = delete;

  plist_t item(const char* key) const {
    if (root_ == nullptr || plist_.nodeType(root_) != PLIST_DICT) return nullptr;
    return plist_.dictItem(root_, key);
  }

private:
  const PlistLibrary& plist_;
  plist_t root_ = nullptr;
};

std::optional<std::string> stringOf(const PlistLibrary& plist, plist_t node) {
  if (node == nullptr || plist.nodeType(node) != PLIST_STRING) return std::nullopt;
  char* value = nullptr;
  plist.stringValue(node, &value);
  if (value == nullptr) return std::nullopt;
  std::string result(value);
  std::free(value);
  return result;
}

} // namespace

std::optional<std::string> propertyListString(std::string_view bytes, const char* key) {
  const PlistLibrary& plist = plistLibrary();
  const TopLevelDictionary dictionary(plist, bytes);
  return stringOf(plist, dictionary.item(key));
}

std::optional<std::vector<std::string>> propertyListStringArray(std::string_view bytes, const char* key) {
  const PlistLibrary& plist = plistLibrary();
  const TopLevelDictionary dictionary(plist, bytes);
  const plist_t node = dictionary.item(key);
  if (node == nullptr || plist.nodeType(node) != PLIST_ARRAY) return std::nullopt;
  std::vector<std::string> values;
  const std::uint32_t count = plist.arraySize(node);
  for (std::uint32_t i = 0; i < count; ++i) {
    auto value = stringOf(plist, plist.arrayItem(node, i));
    if (!value) return std::nullopt;
    values.push_back(std::move(*value));
  }
  return values;
}

} // namespace halcyra::platform
