#pragma once

#include <string>
#include <vector>

#include <QCoreApplication>
#include <QDeadlineTimer>

#include "app/DebugLogger.h"

namespace halcyra::testing {

/// Runs the event loop until `done` holds and says whether it does; the deadline only keeps a
/// broken view model from hanging the suite.
template <class Condition>
bool settle(Condition done, int milliseconds = 10000) {
  QDeadlineTimer deadline(milliseconds);
  while (!done() && !deadline.hasExpired()) QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
  return done();
}

/// The messages logged so far, oldest first.
inline std::vector<std::string> messages(const app::DebugLogger& logger) {
  std::vector<std::string> result;
  for (const auto& entry : logger.entries()) result.push_back(entry.message);
  return result;
}

} // namespace halcyra::testing
