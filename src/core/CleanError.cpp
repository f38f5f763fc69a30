#include "core/CleanError.h"

namespace halcyra::core {

CleanError::CleanError(Kind kind, std::string payload)
    : std::runtime_error(descriptionOf(kind)), kind_(kind), payload_(std::move(payload)) {}

std::string CleanError::errorDescription() const { return descriptionOf(kind_); }

std::string CleanError::descriptionOf(Kind kind) {
  switch (kind) {
  case Kind::scanFailed: return "Scan failed. Please try again.";
  case Kind::cleanFailed: return "Cleanup failed. Please try again.";
  case Kind::unknown: return "An unexpected error occurred. Please try again.";
  case Kind::permissionDenied: return "Permission denied. Please check system permissions.";
  case Kind::timeout: return "The operation took too long. Please try again.";
  }
  return "An unexpected error occurred. Please try again.";
}

std::string describeError(const std::exception& error) {
  if (const auto* clean = dynamic_cast<const CleanError*>(&error)) return clean->errorDescription();
  return error.what();
}

} // namespace halcyra::core
