#include "cli/Terminal.h"

#include <algorithm>
#include <cstdio>
#include <sys/ioctl.h>
#include <unistd.h>

namespace halcyra::cli {

StatusLine::StatusLine() : live_(::isatty(STDERR_FILENO) == 1) {}

StatusLine::~StatusLine() { finish(); }

void StatusLine::show(const std::string& line) {
  if (live_) {
    // Cut to the terminal's width so the line never wraps and the next one replaces it whole.
    std::string shown = line;
    const auto width = static_cast<std::size_t>(std::max(terminalColumns() - 1, 10));
    if (shown.size() > width) shown = shown.substr(0, width - 1) + "…";
    std::fputs("\r\033[K", stderr);
    std::fputs(shown.c_str(), stderr);
    dirty_ = true;
  } else {
    std::fputs(line.c_str(), stderr);
    std::fputc('\n', stderr);
  }
  std::fflush(stderr);
}

void StatusLine::status(const std::string& text) {
  std::lock_guard lock(mutex_);
  if (text == last_) return;
  last_ = text;
  show(text);
}

void StatusLine::progress(double fraction, const std::string& text) {
  std::lock_guard lock(mutex_);
  fraction = std::clamp(fraction, 0.0, 1.0);
  constexpr int kWidth = 24;
  const int filled = static_cast<int>(fraction * kWidth + 0.5); // the fraction is not negative
  std::string bar = "[" + std::string(static_cast<std::size_t>(filled), '#') +
                    std::string(static_cast<std::size_t>(kWidth - filled), '-') + "] ";
  const int percent = static_cast<int>(fraction * 100.0);
  std::string line = bar + std::to_string(percent) + "% " + text;
  // Off a terminal, repeat a line only when its text changes, not for every step of the bar.
  if (!live_) {
    if (text == last_) return;
    last_ = text;
  }
  show(line);
}

void StatusLine::finish() {
  std::lock_guard lock(mutex_);
  if (live_ && dirty_) {
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
  }
  dirty_ = false;
  last_.clear();
}

bool stdinIsTerminal() { return ::isatty(STDIN_FILENO) == 1; }
bool stdoutIsTerminal() { return ::isatty(STDOUT_FILENO) == 1; }

bool confirm(const std::string& question) {
  std::fputs(question.c_str(), stderr);
  std::fputs(" [y/N] ", stderr);
  std::fflush(stderr);
  std::string answer;
  for (int c = std::getchar(); c != EOF && c != '\n'; c = std::getchar()) answer.push_back(static_cast<char>(c));
  if (answer.empty() && std::feof(stdin)) return false;
  return answer == "y" || answer == "Y" || answer == "yes" || answer == "Yes";
}

int terminalColumns() {
  winsize size{};
  if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
  return 80;
}

} // namespace halcyra::cli
