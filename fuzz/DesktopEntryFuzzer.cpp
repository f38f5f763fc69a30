// An autostart entry: switching it off makes every reader see it off, switching it on makes
// it on, and neither changes any key but the switches.
#include "FuzzInput.h"
#include "startup/StartupTextParsers.h"

using namespace halcyra;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input = fuzz::text(data, size);
  const auto original = startup::parseDesktopEntry(input);
  if (original) {
    (void)startup::desktopEntryIsEnabled(*original);
    (void)original->text("Name");
  }
  for (const bool enable : {false, true}) {
    const auto switched = startup::parseDesktopEntry(startup::desktopEntryWithSwitch(input, enable));
    fuzz::require(switched.has_value(), "a switched entry is an entry");
    fuzz::require(startup::desktopEntryIsEnabled(*switched) == enable, "the switch decides");
    if (original) {
      fuzz::require(startup::sameApartFromSwitch(*switched, *original), "only the switch keys change");
    }
  }
  return 0;
}
