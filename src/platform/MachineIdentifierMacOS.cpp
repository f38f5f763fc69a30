#include "platform/MachineIdentifier.h"

#include <CoreFoundation/CoreFoundation.h>
#include <IOKit/IOKitLib.h>

namespace halcyra::platform {

std::optional<std::string> MachineIdentifier::hardwareUUID(const SystemPaths&) {
  io_service_t expert = IOServiceGetMatchingService(kIOMainPortDefault, IOServiceMatching("IOPlatformExpertDevice"));
  if (expert == IO_OBJECT_NULL) return std::nullopt;
  CFTypeRef value = IORegistryEntryCreateCFProperty(expert, CFSTR("IOPlatformUUID"), kCFAllocatorDefault, 0);
  IOObjectRelease(expert);
  if (value == nullptr) return std::nullopt;
  std::optional<std::string> id;
  if (CFGetTypeID(value) == CFStringGetTypeID()) {
    char buffer[128] = {};
    if (CFStringGetCString(static_cast<CFStringRef>(value), buffer, sizeof buffer, kCFStringEncodingUTF8)) id = buffer;
  }
  CFRelease(value);
  return id;
}

} // namespace halcyra::platform
