#pragma once

#include <string_view>

namespace halcyra::duplicates {

/// The symbol a file's row shows, chosen by its extension without regard to case: "photo" for
/// pictures, "film", "music.note", "doc.richtext" for PDF, "doc.text", "tablecells",
/// "doc.zipper", "externaldrive" for disk images, "app.gift"; "doc" for anything else.
std::string_view fileIcon(std::string_view path);

} // namespace halcyra::duplicates
