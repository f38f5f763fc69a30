#include "duplicates/PackageNames.h"

#include <algorithm>
#include <iterator>
#include <cctype>

namespace halcyra::duplicates {
namespace {

// Folder extensions the system declares as packages or bundles.
constexpr std::string_view kPackageExtensions[] = {
    "app",         "appex",       "bundle",      "component",  "dsym",        "framework",  "kext",
    "mdimporter",  "mpkg",        "pkg",         "plugin",     "prefpane",    "qlgenerator", "saver",
    "service",     "systemextension", "wdgt",    "xpc",        "rtfd",        "scptd",      "pages",
    "numbers",     "key",         "photoslibrary", "photolibrary", "aplibrary", "migratedphotolibrary",
    "musiclibrary", "imovielibrary", "tvlibrary", "fcpbundle",  "logicx",      "band",       "xcodeproj",
    "xcworkspace", "xcarchive",   "playground"};

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
         });
}

} // namespace

bool isPackageName(std::string_view folderName) {
  const auto dot = folderName.rfind('.');
  if (dot == std::string_view::npos || dot == 0 || dot + 1 == folderName.size()) return false;
  const std::string_view extension = folderName.substr(dot + 1);
  return std::any_of(std::begin(kPackageExtensions), std::end(kPackageExtensions),
                     [&](std::string_view known) { return equalsIgnoringCase(known, extension); });
}

} // namespace halcyra::duplicates
