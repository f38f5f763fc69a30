#include "core/LogEntry.h"

namespace halcyra::core {

std::string_view toString(LogEntry::LogLevel level) {
  switch (level) {
  case LogEntry::LogLevel::info: return "INFO";
  case LogEntry::LogLevel::warn: return "WARN";
  case LogEntry::LogLevel::error: return "ERROR";
  }
  return "INFO";
}

std::string_view toString(LogEntry::LogSource source) {
  using S = LogEntry::LogSource;
  switch (source) {
  case S::engine: return "engine";
  case S::dashboard: return "dashboard";
  case S::clean: return "clean";
  case S::duplicates: return "duplicates";
  case S::system: return "system";
  case S::app: return "app";
  case S::update: return "update";
  case S::shredder: return "shredder";
  case S::diskAnalyzer: return "diskAnalyzer";
  case S::uninstall: return "uninstall";
  case S::startupItems: return "startupItems";
  }
  return "app";
}

} // namespace halcyra::core
