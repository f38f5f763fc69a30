#include "duplicates/viewmodel/FileIcons.h"

#include <array>
#include <string>
#include <utility>

namespace halcyra::duplicates {

std::string_view fileIcon(std::string_view path) {
  // The extension of the last component only: a dot in a folder name says nothing.
  const auto slash = path.rfind('/');
  const std::string_view name = slash == std::string_view::npos ? path : path.substr(slash + 1);
  const auto dot = name.rfind('.');
  if (dot == std::string_view::npos || dot == 0) return "doc";
  std::string extension(name.substr(dot + 1));
  for (char& c : extension) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }

  static constexpr std::array<std::pair<std::string_view, std::string_view>, 35> icons{{
      {"jpg", "photo"},         {"jpeg", "photo"},      {"png", "photo"},        {"gif", "photo"},
      {"heic", "photo"},        {"webp", "photo"},      {"tiff", "photo"},       {"bmp", "photo"},
      {"mp4", "film"},          {"mov", "film"},        {"avi", "film"},         {"mkv", "film"},
      {"m4v", "film"},          {"mp3", "music.note"},  {"aac", "music.note"},   {"wav", "music.note"},
      {"flac", "music.note"},   {"m4a", "music.note"},  {"pdf", "doc.richtext"}, {"doc", "doc.text"},
      {"docx", "doc.text"},     {"txt", "doc.text"},    {"rtf", "doc.text"},     {"pages", "doc.text"},
      {"xls", "tablecells"},    {"xlsx", "tablecells"}, {"numbers", "tablecells"}, {"csv", "tablecells"},
      {"zip", "doc.zipper"},    {"gz", "doc.zipper"},   {"tar", "doc.zipper"},   {"rar", "doc.zipper"},
      {"7z", "doc.zipper"},     {"dmg", "externaldrive"}, {"app", "app.gift"},
  }};
  for (const auto& [known, icon] : icons) {
    if (extension == known) return icon;
  }
  return "doc";
}

} // namespace halcyra::duplicates
