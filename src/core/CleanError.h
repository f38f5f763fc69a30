#pragma once

#include <stdexcept>
#include <string>

namespace halcyra::core {

/// The error shared by all tools. The text shown to the user never contains the payload:
/// the payload is for the log alone.
class CleanError : public std::runtime_error {
public:
  enum class Kind { scanFailed, cleanFailed, unknown, permissionDenied, timeout };

  CleanError(Kind kind, std::string payload = {});

  Kind kind() const noexcept { return kind_; }
  const std::string& payload() const noexcept { return payload_; }
  std::string errorDescription() const;

  static std::string descriptionOf(Kind kind);

private:
  Kind kind_;
  std::string payload_;
};

/// The text a failed run shows: a CleanError's own description, otherwise the error's message.
std::string describeError(const std::exception& error);

} // namespace halcyra::core
