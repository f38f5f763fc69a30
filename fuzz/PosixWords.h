#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace halcyra::fuzz {

/// The words a POSIX shell makes of a simple command line, by the quoting rules alone. Strict
/// on purpose: where a real shell would expand, substitute, glob or read an operator (an
/// unquoted `$`, backquote, `*`, `?`, `[`, `;`, `&`, `|`, `<`, `>`, `(`, `)`, a `~` or `#` at the
/// start of a word, a `$` or backquote inside double quotes), or a quote is left open, there is
/// no answer: a line that needs any of that is not data-only.
inline std::optional<std::vector<std::string>> posixWords(std::string_view line) {
  std::vector<std::string> words;
  std::string word;
  bool inWord = false;
  std::size_t i = 0;
  while (i < line.size()) {
    const char c = line[i];
    if (c == ' ' || c == '\t' || c == '\n') {
      if (inWord) words.push_back(std::move(word));
      word.clear();
      inWord = false;
      ++i;
      continue;
    }
    if (!inWord && (c == '~' || c == '#')) return std::nullopt;
    inWord = true;
    if (c == '\'') {
      const auto close = line.find('\'', i + 1);
      if (close == std::string_view::npos) return std::nullopt;
      word.append(line.substr(i + 1, close - i - 1));
      i = close + 1;
    } else if (c == '"') {
      ++i;
      for (;;) {
        if (i >= line.size()) return std::nullopt;
        const char d = line[i];
        if (d == '"') break;
        if (d == '$' || d == '`') return std::nullopt;
        if (d == '\\' && i + 1 < line.size()) {
          const char e = line[i + 1];
          if (e == '$' || e == '`' || e == '"' || e == '\\') {
            word.push_back(e);
            i += 2;
            continue;
          }
          if (e == '\n') {
            i += 2;
            continue;
          }
        }
        word.push_back(d);
        ++i;
      }
      ++i;
    } else if (c == '\\') {
      if (i + 1 >= line.size()) return std::nullopt;
      if (line[i + 1] != '\n') word.push_back(line[i + 1]);
      i += 2;
    } else if (std::string_view("$`*?[;&|<>()").find(c) != std::string_view::npos) {
      return std::nullopt;
    } else {
      word.push_back(c);
      ++i;
    }
  }
  if (inWord) words.push_back(std::move(word));
  return words;
}

} // namespace halcyra::fuzz
