#include "platform/SystemCounters.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include <CoreFoundation/CoreFoundation.h>
#include <IOKit/ps/IOPSKeys.h>
#include <IOKit/ps/IOPowerSources.h>
#include <ifaddrs.h>
#include <mach/mach.h>
#include <mach/vm_page_size.h>
#include <net/if.h>
#include <net/if_var.h>
#include <sys/sysctl.h>
#include <time.h>

// The temperature sensors are reached through the HID event system's client, which the
// platform does not publish; these are its long-standing signatures.
extern "C" {
typedef struct __IOHIDEventSystemClient* IOHIDEventSystemClientRef;
typedef struct __IOHIDServiceClient* IOHIDServiceClientRef;
typedef struct __IOHIDEvent* IOHIDEventRef;
IOHIDEventSystemClientRef IOHIDEventSystemClientCreate(CFAllocatorRef allocator);
int IOHIDEventSystemClientSetMatching(IOHIDEventSystemClientRef client, CFDictionaryRef matching);
CFArrayRef IOHIDEventSystemClientCopyServices(IOHIDEventSystemClientRef client);
CFTypeRef IOHIDServiceClientCopyProperty(IOHIDServiceClientRef service, CFStringRef key);
IOHIDEventRef IOHIDServiceClientCopyEvent(IOHIDServiceClientRef service, int64_t type, int32_t options, int64_t);
double IOHIDEventGetFloatValue(IOHIDEventRef event, int32_t field);
}

namespace halcyra::platform {
namespace {

constexpr int64_t kTemperatureEvent = 15;

bool nameContains(CFStringRef name, const char* needle) {
  if (name == nullptr) return false;
  CFStringRef text = CFStringCreateWithCString(kCFAllocatorDefault, needle, kCFStringEncodingUTF8);
  if (text == nullptr) return false;
  const CFRange found = CFStringFind(name, text, kCFCompareCaseInsensitive);
  CFRelease(text);
  return found.location != kCFNotFound;
}

CFNumberRef makeInt(int value) { return CFNumberCreate(kCFAllocatorDefault, kCFNumberIntType, &value); }

int intValue(CFDictionaryRef dictionary, CFStringRef key, int fallback) {
  const auto number = static_cast<CFNumberRef>(CFDictionaryGetValue(dictionary, key));
  int value = fallback;
  if (number == nullptr || CFGetTypeID(number) != CFNumberGetTypeID() ||
      !CFNumberGetValue(number, kCFNumberIntType, &value)) {
    return fallback;
  }
  return value;
}

double uptimeSeconds() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC_RAW, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

} // namespace

NativeSystemCounters::NativeSystemCounters(SystemPaths paths) : paths_(std::move(paths)) {}

std::string NativeSystemCounters::cpuModelName() {
  std::size_t length = 0;
  if (sysctlbyname("machdep.cpu.brand_string", nullptr, &length, nullptr, 0) != 0 || length == 0) return {};
  std::string brand(length, '\0');
  if (sysctlbyname("machdep.cpu.brand_string", brand.data(), &length, nullptr, 0) != 0) return {};
  brand.resize(std::strlen(brand.c_str()));
  return brand;
}

int NativeSystemCounters::processorCount() {
  int count = 0;
  std::size_t length = sizeof count;
  if (sysctlbyname("hw.activecpu", &count, &length, nullptr, 0) != 0 || count < 1) return 1;
  return count;
}

std::optional<ProcessorTicks> NativeSystemCounters::readProcessorTicks() {
  natural_t processors = 0;
  processor_info_array_t table = nullptr;
  mach_msg_type_number_t tableCount = 0;
  if (host_processor_info(mach_host_self(), PROCESSOR_CPU_LOAD_INFO, &processors, &table, &tableCount) !=
          KERN_SUCCESS ||
      table == nullptr) {
    return std::nullopt;
  }
  ProcessorTicks ticks;
  for (natural_t i = 0; i < processors; ++i) {
    const integer_t* load = table + CPU_STATE_MAX * i;
    // Nice ticks are counted nowhere, as the kernel's own load figures leave them out.
    ticks.user += static_cast<std::uint32_t>(load[CPU_STATE_USER]);
    ticks.system += static_cast<std::uint32_t>(load[CPU_STATE_SYSTEM]);
    ticks.idle += static_cast<std::uint32_t>(load[CPU_STATE_IDLE]);
  }
  vm_deallocate(mach_task_self(), reinterpret_cast<vm_address_t>(table), tableCount * sizeof(integer_t));
  return ticks;
}

MemoryCounters NativeSystemCounters::readMemory() {
  MemoryCounters counters;
  std::uint64_t physical = 0;
  std::size_t length = sizeof physical;
  if (sysctlbyname("hw.memsize", &physical, &length, nullptr, 0) == 0) counters.total = physical;
  vm_statistics64_data_t statistics{};
  mach_msg_type_number_t count = HOST_VM_INFO64_COUNT;
  if (host_statistics64(mach_host_self(), HOST_VM_INFO64, reinterpret_cast<host_info64_t>(&statistics), &count) ==
      KERN_SUCCESS) {
    // Inactive, speculative and purgeable pages can be taken back at once: not in use.
    counters.used = (static_cast<std::uint64_t>(statistics.active_count) + statistics.wire_count +
                     statistics.compressor_page_count) *
                    vm_kernel_page_size;
  }
  return counters;
}

std::optional<VolumeCapacity> NativeSystemCounters::readHomeVolume() {
  CFURLRef url = CFURLCreateFromFileSystemRepresentation(
      kCFAllocatorDefault, reinterpret_cast<const UInt8*>(paths_.home().c_str()),
      static_cast<CFIndex>(paths_.home().size()), true);
  if (url == nullptr) return std::nullopt;
  const auto read = [&](CFStringRef key) -> std::optional<std::uint64_t> {
    CFTypeRef value = nullptr;
    if (!CFURLCopyResourcePropertyForKey(url, key, &value, nullptr) || value == nullptr) return std::nullopt;
    std::int64_t number = 0;
    const bool ok = CFGetTypeID(value) == CFNumberGetTypeID() &&
                    CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberSInt64Type, &number);
    CFRelease(value);
    if (!ok) return std::nullopt;
    return static_cast<std::uint64_t>(std::max<std::int64_t>(number, 0));
  };
  const auto total = read(kCFURLVolumeTotalCapacityKey);
  const auto available = read(kCFURLVolumeAvailableCapacityForImportantUsageKey);
  CFRelease(url);
  if (!total && !available) return std::nullopt;
  return VolumeCapacity{total.value_or(0), available.value_or(0)};
}

NetworkCounters NativeSystemCounters::readNetworkCounters() {
  NetworkCounters counters;
  counters.uptimeSeconds = uptimeSeconds();
  ifaddrs* list = nullptr;
  if (getifaddrs(&list) != 0) return counters;
  for (const ifaddrs* entry = list; entry != nullptr; entry = entry->ifa_next) {
    if (entry->ifa_name == nullptr || entry->ifa_data == nullptr) continue;
    // Wired and wireless ports are "en*", shared connections "bridge*"; loopback, tunnels and
    // peer-to-peer links are passed over.
    const std::string_view name = entry->ifa_name;
    if (!name.starts_with("en") && !name.starts_with("bridge")) continue;
    const auto* data = static_cast<const if_data*>(entry->ifa_data);
    counters.sent += data->ifi_obytes;
    counters.received += data->ifi_ibytes;
  }
  freeifaddrs(list);
  return counters;
}

BatteryReading NativeSystemCounters::readBattery() {
  BatteryReading reading;
  CFTypeRef info = IOPSCopyPowerSourcesInfo();
  if (info == nullptr) return reading;
  CFArrayRef sources = IOPSCopyPowerSourcesList(info);
  if (sources != nullptr && CFArrayGetCount(sources) > 0) {
    if (CFDictionaryRef description = IOPSGetPowerSourceDescription(info, CFArrayGetValueAtIndex(sources, 0))) {
      reading.percentage = intValue(description, CFSTR(kIOPSCurrentCapacityKey), -1);
      const auto charging = static_cast<CFBooleanRef>(CFDictionaryGetValue(description, CFSTR(kIOPSIsChargingKey)));
      reading.isCharging = charging != nullptr && CFGetTypeID(charging) == CFBooleanGetTypeID() &&
                           CFBooleanGetValue(charging);
      reading.minutesToEmpty = intValue(description, CFSTR(kIOPSTimeToEmptyKey), -1);
      reading.minutesToFull = intValue(description, CFSTR(kIOPSTimeToFullChargeKey), -1);
    }
  }
  if (sources != nullptr) CFRelease(sources);
  CFRelease(info);
  return reading;
}

std::optional<double> NativeSystemCounters::readCpuTemperature() {
  IOHIDEventSystemClientRef client = IOHIDEventSystemClientCreate(kCFAllocatorDefault);
  if (client == nullptr) return std::nullopt;
  CFNumberRef page = makeInt(0xff00);
  CFNumberRef usage = makeInt(5);
  const void* keys[] = {CFSTR("PrimaryUsagePage"), CFSTR("PrimaryUsage")};
  const void* values[] = {page, usage};
  CFDictionaryRef matching = CFDictionaryCreate(kCFAllocatorDefault, keys, values, 2, &kCFTypeDictionaryKeyCallBacks,
                                                &kCFTypeDictionaryValueCallBacks);
  IOHIDEventSystemClientSetMatching(client, matching);
  CFRelease(matching);
  CFRelease(page);
  CFRelease(usage);

  std::vector<double> readings;
  if (CFArrayRef services = IOHIDEventSystemClientCopyServices(client)) {
    for (CFIndex i = 0; i < CFArrayGetCount(services); ++i) {
      auto service = (IOHIDServiceClientRef)CFArrayGetValueAtIndex(services, i);
      auto product = static_cast<CFStringRef>(IOHIDServiceClientCopyProperty(service, CFSTR("Product")));
      const bool processor = product != nullptr && CFGetTypeID(product) == CFStringGetTypeID() &&
                             (nameContains(product, "SOC MTR Temp") || nameContains(product, "SOC Die Temp") ||
                              nameContains(product, "pACC MTR Temp") || nameContains(product, "eACC MTR Temp"));
      if (product != nullptr) CFRelease(product);
      if (!processor) continue;
      if (IOHIDEventRef event = IOHIDServiceClientCopyEvent(service, kTemperatureEvent, 0, 0)) {
        readings.push_back(IOHIDEventGetFloatValue(event, static_cast<int32_t>(kTemperatureEvent << 16)));
        CFRelease(event);
      }
    }
    CFRelease(services);
  }
  CFRelease(client);
  return meanOfPlausibleTemperatures(readings);
}

} // namespace halcyra::platform
