#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace halcyra::clean {

/// One file or folder that a clean can remove.
struct CleanItem {
  std::string id;          ///< fresh UUID text per scan
  std::string path;        ///< absolute path
  std::int64_t size = 0;   ///< bytes, always at least 1
  bool isSelected = false; ///< whether a clean removes it
};

/// One group of the results: a catalogue target or a scanner's finding.
struct CleanCategory {
  std::string id;
  std::string name;    ///< shown to the user, and the key of behaviour in the scan
  std::string icon;    ///< symbol name
  std::string section; ///< a section of the results screen
  std::vector<CleanItem> items;
  bool isSelected = false;    ///< true when all items are selected
  bool isWhitelisted = false; ///< protected: kept in the results, shown nowhere, never selected
  std::optional<std::string> skipReason; ///< set when not scanned; then `items` is empty

  /// The sum of the sizes of the selected items.
  std::int64_t selectedSize() const;
  /// How many items are selected.
  std::size_t selectedCount() const;
};

/// An item a clean did not remove, and why.
struct CleanFailure {
  std::string path;
  std::string error;
};

/// What a clean freed.
struct CleanResult {
  std::int64_t freedBytes = 0; ///< scanned sizes of the items that are gone
  int itemsCleaned = 0;
  double duration = 0;         ///< seconds, prompt included
  /// Items that are still there, with the reason; an item that was already gone is none.
  std::vector<CleanFailure> failedItems = {};
};

} // namespace halcyra::clean
