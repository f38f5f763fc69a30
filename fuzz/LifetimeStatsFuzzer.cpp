// The statistics service's answer is another machine's text: reading it either gives figures
// or throws the decoding error, never anything else, and a date that reads is a real moment.
#include "FuzzInput.h"
#include "statistics/LifetimeStatsResponse.h"

using namespace halcyra;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string answer = fuzz::text(data, size);
  try {
    (void)statistics::decodeLifetimeStats(answer);
  } catch (const statistics::StatisticsDecodingError&) {
  }
  if (const auto moment = statistics::parseIso8601(answer)) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(moment->time_since_epoch()).count();
    // Years 1700 to 2200, give or take the zone offset.
    fuzz::require(seconds > -8'520'000'000LL && seconds < 7'258'200'000LL, "a parsed date lies within the years read");
  }
  return 0;
}
