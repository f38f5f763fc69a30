#include "app/DebugLogger.h"

#include <chrono>

#include <QThread>

#include "core/Uuid.h"

namespace halcyra::app {

DebugLogger::DebugLogger(QObject* parent) : QObject(parent) {}

void DebugLogger::log(const QString& message, core::LogEntry::LogLevel level, core::LogEntry::LogSource source) {
  Q_ASSERT(QThread::currentThread() == thread());
  entries_.push_back(core::LogEntry{core::makeUuid(), std::chrono::system_clock::now(), level, source,
                                    message.toStdString()});
  emit entriesChanged();
  if (entries_.size() > maxEntries) {
    entries_.erase(entries_.begin(), entries_.begin() + static_cast<std::ptrdiff_t>(entries_.size() - maxEntries));
    emit entriesChanged();
  }
}

} // namespace halcyra::app
