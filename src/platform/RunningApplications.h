#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace halcyra::platform {

/// The applications the user has running, for the rules that leave an application's data
/// alone while it runs.
class RunningApplications {
public:
  virtual ~RunningApplications() = default;
  /// Lower-case names of the running applications, taken once.
  virtual std::set<std::string> snapshotRunningAppNames() = 0;
};

/// The first of `names`, in order, whose lower-case form is in `runningApps`, spelled as the
/// list spells it; none when no name matches.
std::optional<std::string> firstRunningProcess(const std::vector<std::string>& names,
                                               const std::set<std::string>& runningApps);

/// Lower-cases ASCII letters; other bytes stay as they are.
std::string toLowerAscii(std::string text);

/// On Linux: the program names of the processes of the current user (the kernel's short name
/// and the file name of the executable), read from /proc.
class SystemRunningApplications final : public RunningApplications {
public:
  std::set<std::string> snapshotRunningAppNames() override;
};

/// A fixed list, for tests.
class FixedRunningApplications final : public RunningApplications {
public:
  explicit FixedRunningApplications(std::set<std::string> names = {}) : names_(std::move(names)) {}
  std::set<std::string> snapshotRunningAppNames() override { return names_; }

private:
  std::set<std::string> names_;
};

} // namespace halcyra::platform
