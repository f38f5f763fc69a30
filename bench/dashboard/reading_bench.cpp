// One full dashboard reading (every reader once, as the window does every five seconds),
// timed N times on this machine. Prints the figures as JSON. Built by run.py.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include "dashboard/SystemMetricsProvider.h"

int main(int argc, char* argv[]) {
  const int count = argc > 1 ? std::atoi(argv[1]) : 1000;
  halcyra::dashboard::SystemMetricsProvider provider(std::make_shared<halcyra::platform::NativeSystemCounters>());
  std::vector<double> micros;
  micros.reserve(static_cast<std::size_t>(count));
  int score = 0;
  provider.readStatus(); // the first reading also opens what the later ones reuse
  for (int i = 0; i < count; ++i) {
    const auto start = std::chrono::steady_clock::now();
    score += provider.readStatus().healthScore;
    micros.push_back(std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count());
  }
  std::sort(micros.begin(), micros.end());
  const auto at = [&](double share) { return micros[static_cast<std::size_t>(share * (micros.size() - 1))]; };
  std::printf("{\"readings\": %d, \"median_us\": %.1f, \"p95_us\": %.1f, \"max_us\": %.1f, \"score_sum\": %d}\n", count,
              at(0.5), at(0.95), micros.back(), score);
  return 0;
}
