#include "analyzer/ScanJsonWriter.h"

#include <nlohmann/json.hpp>

#include "core/JsonText.h"
#include "core/Uuid.h"

namespace halcyra::analyzer {
namespace {

// Text is handed on once this much has gathered; the buffer is made once with room for the
// longest object that can follow.
constexpr std::size_t kFlushSize = 4 * 1024;
constexpr std::size_t kBufferSize = kFlushSize + 8 * 1024;

// The root's object is at level 1, each level of sub-folders two deeper.
int levelOf(std::size_t index) { return 1 + 2 * static_cast<int>(index); }

} // namespace

ScanJsonWriter::ScanJsonWriter(std::function<void(std::string_view)> write) : write_(std::move(write)) {
  text_.reserve(kBufferSize);
  text_ = "{\n";
  key(1, "\"root\": ");
}

void ScanJsonWriter::enterFolder(std::string_view name, std::string_view path) {
  path_.assign(path);
  folders_.push_back({path.size(), name.size(), false, false});
}

void ScanJsonWriter::leaveFolder(const Totals& totals) {
  const std::size_t index = folders_.size() - 1;
  if (index == 0 || totals.size >= 1) {
    for (std::size_t i = 0; i < index; ++i) {
      if (!folders_[i].opened) {
        open(i);
        text_ += '[';
      }
    }
    const int level = levelOf(index);
    if (folders_[index].opened) {
      text_ += '\n';
      indent(level + 1);
      text_ += ']';
    } else {
      open(index);
      text_ += "[]";
    }
    text_ += ",\n";
    number(level + 1, "\"size\": ", totals.size);
    number(level + 1, "\"fileCount\": ", totals.fileCount);
    key(level + 1, "\"isPermissionDenied\": ");
    text_ += totals.isPermissionDenied ? "true\n" : "false\n";
    indent(level);
    text_ += '}';
    if (index == 0) rootDenied_ = totals.isPermissionDenied;
  }
  folders_.pop_back();
  if (!folders_.empty()) path_.resize(folders_.back().pathLength);
  if (text_.size() >= kFlushSize) flush();
}

void ScanJsonWriter::finish(const DiskAnalyzerScanSummary& summary) {
  text_ += ",\n";
  number(1, "\"totalSize\": ", summary.totalSize);
  number(1, "\"fileCount\": ", summary.fileCount);
  number(1, "\"directoryCount\": ", summary.directoryCount);
  key(1, "\"duration\": ");
  text_ += nlohmann::json(summary.duration).dump();
  text_ += ",\n";
  key(1, "\"largestFiles\": ");
  if (summary.largestFiles.empty()) {
    text_ += "[]";
  } else {
    text_ += "[\n";
    for (std::size_t i = 0; i < summary.largestFiles.size(); ++i) {
      const auto& file = summary.largestFiles[i];
      indent(2);
      text_ += "{\n";
      string(3, "\"id\": ", file.id);
      string(3, "\"path\": ", file.path);
      string(3, "\"name\": ", file.name);
      key(3, "\"size\": ");
      text_ += std::to_string(file.size);
      text_ += '\n';
      indent(2);
      text_ += i + 1 < summary.largestFiles.size() ? "},\n" : "}\n";
    }
    indent(1);
    text_ += "]";
  }
  text_ += "\n}\n";
  flush();
}

// Writes the object of folders_[index] up to the value of "children"; its ancestors are open.
void ScanJsonWriter::open(std::size_t index) {
  const int level = levelOf(index);
  if (index > 0) {
    Folder& parent = folders_[index - 1];
    text_ += parent.hasChildren ? ",\n" : "\n";
    parent.hasChildren = true;
    indent(level);
  }
  Folder& folder = folders_[index];
  const std::string_view path = std::string_view(path_).substr(0, folder.pathLength);
  text_ += "{\n";
  string(level + 1, "\"id\": ", core::makeUuid());
  string(level + 1, "\"name\": ", path.substr(path.size() - folder.nameLength));
  string(level + 1, "\"path\": ", path);
  key(level + 1, "\"children\": ");
  folder.opened = true;
}

void ScanJsonWriter::indent(int level) { text_.append(static_cast<std::size_t>(level) * 2, ' '); }

// `quoted` is the whole key with its quotes and colon: a literal that short as a bare name
// ("id", "path") would be stored as the tail of some longer string anywhere in the executable,
// and reading it would bring that page in.
void ScanJsonWriter::key(int level, std::string_view quoted) {
  indent(level);
  text_ += quoted;
}

void ScanJsonWriter::string(int level, std::string_view quoted, std::string_view value) {
  key(level, quoted);
  text_ += core::jsonStringLiteral(value);
  text_ += ",\n";
}

void ScanJsonWriter::number(int level, std::string_view quoted, std::int64_t value) {
  key(level, quoted);
  text_ += std::to_string(value);
  text_ += ",\n";
}

// Hands on whole lines only: a status line on the same terminal then starts a line of its own.
void ScanJsonWriter::flush() {
  const std::size_t lines = text_.rfind('\n') + 1;
  if (lines == 0) return;
  write_(std::string_view(text_).substr(0, lines));
  text_.erase(0, lines);
}

} // namespace halcyra::analyzer
