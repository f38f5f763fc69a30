#pragma once

#include <string_view>

namespace halcyra::duplicates {

/// Whether a folder of this name is a package: a bundle that the file browser shows as one
/// document (an application, a plug-in, a photo library, ...). The scan does not enter
/// packages; their insides belong to the package, and removing one copy would break it.
/// Linux has no package flag, so the folder's extension decides, without regard to case.
bool isPackageName(std::string_view folderName);

} // namespace halcyra::duplicates
