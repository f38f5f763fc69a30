#pragma once

#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include <QCoreApplication>
#include <QMetaObject>
#include <QObject>
#include <QPointer>
#include <QString>

namespace halcyra::app {

/// Runs `call` later on the interface thread, as a queued call of its own, if `context` still
/// exists by then. Callable from any thread.
///
/// The call is queued on the application object, which outlives every view model, and the
/// guard is only read there: a worker never dereferences the view model, so one that has gone
/// away simply receives nothing.
inline void postToInterface(QPointer<QObject> context, std::function<void()> call) {
  QCoreApplication* application = QCoreApplication::instance();
  if (application == nullptr) return;
  QMetaObject::invokeMethod(
      application,
      [context = std::move(context), call = std::move(call)] {
        if (context) call();
      },
      Qt::QueuedConnection);
}

/// A status callback for an engine: each text, from whatever thread, reaches `onStatus` on the
/// interface thread in the order it was sent, while `context` lives.
inline std::function<void(const std::string&)> statusRelay(QObject* context,
                                                           std::function<void(const QString&)> onStatus) {
  QPointer<QObject> guard(context);
  return [guard, onStatus = std::move(onStatus)](const std::string& text) {
    postToInterface(guard, [onStatus, status = QString::fromStdString(text)] { onStatus(status); });
  };
}

/// Runs `work` on a thread of its own and hands its result, or the exception it threw, back to
/// the interface thread, where `onSuccess` or `onFailure` runs while `context` lives.
///
/// A plain detached thread rather than Qt's global pool: the pool is waited for when the
/// application object goes, and a long scan must not hold up quitting.
template <class Result>
void runInBackground(QObject* context, std::function<Result()> work, std::function<void(Result)> onSuccess,
                     std::function<void(std::exception_ptr)> onFailure) {
  QPointer<QObject> guard(context);
  std::thread([guard, work = std::move(work), onSuccess = std::move(onSuccess),
               onFailure = std::move(onFailure)]() {
    try {
      auto result = std::make_shared<Result>(work());
      postToInterface(guard, [result, onSuccess] { onSuccess(std::move(*result)); });
    } catch (...) {
      postToInterface(guard, [error = std::current_exception(), onFailure] { onFailure(error); });
    }
  }).detach();
}

} // namespace halcyra::app
