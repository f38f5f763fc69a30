#pragma once

#include <string>

namespace halcyra::core {

/// A fresh random (version 4) UUID as upper-case text, "E621E1F8-C36C-495A-93FC-0C247A3E6E5F".
/// The bytes come from the system's cryptographic random source.
std::string makeUuid();

} // namespace halcyra::core
