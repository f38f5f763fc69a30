#include "platform/SystemCounters.h"

namespace halcyra::platform {

std::optional<double> meanOfPlausibleTemperatures(const std::vector<double>& celsius) {
  double sum = 0;
  int count = 0;
  for (double value : celsius) {
    // A sleeping or broken sensor reads 0 or a wild value; neither is a processor's heat.
    if (value > 0 && value < 130) {
      sum += value;
      ++count;
    }
  }
  if (count == 0) return std::nullopt;
  return sum / count;
}

} // namespace halcyra::platform
