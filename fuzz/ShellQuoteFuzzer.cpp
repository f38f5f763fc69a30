// A quoted path reaches the shell as exactly the bytes it was made from, as one word, and a
// line of quoted paths as exactly those words: nothing in a file name can become syntax.
#include "FuzzInput.h"
#include "PosixWords.h"
#include "platform/ShellQuoting.h"

using namespace halcyra;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input = fuzz::text(data, size);

  const auto one = fuzz::posixWords(platform::shellQuote(input));
  fuzz::require(one.has_value(), "a quoted word is plain data to the shell");
  fuzz::require(one->size() == 1 && one->front() == input, "a quoted word gives back its bytes as one word");

  // Several names in one line, separated where the input has NUL bytes (a NUL cannot be in a
  // path, so it is the one byte that can separate them).
  std::vector<std::string> names;
  std::string line;
  std::size_t start = 0;
  for (;;) {
    const auto end = input.find('\0', start);
    names.push_back(input.substr(start, end == std::string::npos ? std::string::npos : end - start));
    if (!line.empty()) line += ' ';
    line += platform::shellQuote(names.back());
    if (end == std::string::npos) break;
    start = end + 1;
  }
  const auto many = fuzz::posixWords(line);
  fuzz::require(many.has_value() && *many == names, "a line of quoted words gives back each word");
  return 0;
}
