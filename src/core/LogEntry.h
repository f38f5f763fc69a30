#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace halcyra::core {

/// One line of the in-memory log.
struct LogEntry {
  enum class LogLevel { info, warn, error };
  enum class LogSource {
    engine, dashboard, clean, duplicates, system, app, update, shredder, diskAnalyzer, uninstall, startupItems
  };

  std::string id;
  std::chrono::system_clock::time_point timestamp;
  LogLevel level = LogLevel::info;
  LogSource source = LogSource::app;
  std::string message;
};

/// "INFO", "WARN", "ERROR".
std::string_view toString(LogEntry::LogLevel level);
/// The case name: "engine", "diskAnalyzer", ...
std::string_view toString(LogEntry::LogSource source);

} // namespace halcyra::core
