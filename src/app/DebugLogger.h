#pragma once

#include <cstddef>
#include <deque>

#include <QObject>
#include <QString>

#include "core/LogEntry.h"

namespace halcyra::app {

/// The in-memory log of the whole program: the newest 500 entries, oldest first, nothing on
/// disk. Lives on the interface thread; work on other threads hops there before logging.
class DebugLogger : public QObject {
  Q_OBJECT
  Q_PROPERTY(int count READ count NOTIFY entriesChanged)

public:
  static constexpr std::size_t maxEntries = 500;

  explicit DebugLogger(QObject* parent = nullptr);

  /// Appends one entry with a fresh id and the present time, then drops the oldest past the
  /// limit. Observers hear of the append and, when it happens, of the trim.
  void log(const QString& message, core::LogEntry::LogLevel level, core::LogEntry::LogSource source);

  const std::deque<core::LogEntry>& entries() const noexcept { return entries_; }
  int count() const noexcept { return static_cast<int>(entries_.size()); }

signals:
  void entriesChanged();

private:
  std::deque<core::LogEntry> entries_;
};

} // namespace halcyra::app
