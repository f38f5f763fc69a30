#include "core/JsonText.h"

#include <fmt/format.h>

#include "core/Utf8.h"

namespace halcyra::core {
namespace {

void writeValue(std::string& out, const nlohmann::json& value, int indent, int depth) {
  const bool pretty = indent >= 0;
  auto newline = [&](int level) {
    if (!pretty) return;
    out.push_back('\n');
    out.append(static_cast<std::size_t>(indent * level), ' ');
  };
  switch (value.type()) {
  case nlohmann::json::value_t::object: {
    if (value.empty()) { out += "{}"; return; }
    out.push_back('{');
    bool first = true;
    for (auto it = value.begin(); it != value.end(); ++it) {
      if (!first) out.push_back(',');
      first = false;
      newline(depth + 1);
      out += jsonStringLiteral(it.key());
      out += pretty ? ": " : ":";
      writeValue(out, it.value(), indent, depth + 1);
    }
    newline(depth);
    out.push_back('}');
    return;
  }
  case nlohmann::json::value_t::array: {
    if (value.empty()) { out += "[]"; return; }
    out.push_back('[');
    bool first = true;
    for (const auto& element : value) {
      if (!first) out.push_back(',');
      first = false;
      newline(depth + 1);
      writeValue(out, element, indent, depth + 1);
    }
    newline(depth);
    out.push_back(']');
    return;
  }
  case nlohmann::json::value_t::string:
    out += jsonStringLiteral(value.get_ref<const std::string&>());
    return;
  default:
    out += value.dump();
    return;
  }
}

} // namespace

std::string jsonStringLiteral(std::string_view bytes) {
  std::string out;
  out.reserve(bytes.size() + 2);
  out.push_back('"');
  while (!bytes.empty()) {
    const auto c = static_cast<unsigned char>(bytes[0]);
    const std::size_t n = utf8SequenceLength(bytes);
    if (n == 0) {
      out += fmt::format("\\udc{:02x}", c);
      bytes.remove_prefix(1);
      continue;
    }
    if (n == 1) {
      switch (c) {
      case '"': out += "\\\""; break;
      case '\\': out += "\\\\"; break;
      case '\b': out += "\\b"; break;
      case '\f': out += "\\f"; break;
      case '\n': out += "\\n"; break;
      case '\r': out += "\\r"; break;
      case '\t': out += "\\t"; break;
      default:
        if (c < 0x20 || c == 0x7F) out += fmt::format("\\u{:04x}", c);
        else out.push_back(static_cast<char>(c));
      }
    } else {
      out.append(bytes.substr(0, n));
    }
    bytes.remove_prefix(n);
  }
  out.push_back('"');
  return out;
}

std::string toJsonText(const nlohmann::json& value, int indent) {
  std::string out;
  writeValue(out, value, indent, 0);
  return out;
}

} // namespace halcyra::core
