#include "cli/Terminal.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <sys/ioctl.h>
#include <unistd.h>

namespace halcyra::cli {

StatusLine::StatusLine() : live_(::isatty(STDERR_FILENO) == 1) {}

StatusLine::~StatusLine() { finish(); }

void StatusLine::show(const std::string& text) {
  // Status texts name files ("Removing <name>..."): escaped like every name, so that one cannot
  // break the line or drive the terminal.
  const std::string line = escapedName(text);
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

namespace {

void appendOctal(std::string& out, unsigned char byte) {
  out.push_back('\\');
  out.push_back(static_cast<char>('0' + ((byte >> 6) & 7)));
  out.push_back(static_cast<char>('0' + ((byte >> 3) & 7)));
  out.push_back(static_cast<char>('0' + (byte & 7)));
}

// The length of the well-formed UTF-8 sequence at `text[i]` (2 to 4), or 0.
std::size_t sequenceLength(std::string_view text, std::size_t i, char32_t& codePoint) {
  const auto byte = static_cast<unsigned char>(text[i]);
  std::size_t length = 0;
  char32_t minimum = 0;
  if (byte >= 0xC2 && byte <= 0xDF) {
    length = 2, minimum = 0x80, codePoint = byte & 0x1F;
  } else if (byte >= 0xE0 && byte <= 0xEF) {
    length = 3, minimum = 0x800, codePoint = byte & 0x0F;
  } else if (byte >= 0xF0 && byte <= 0xF4) {
    length = 4, minimum = 0x10000, codePoint = byte & 0x07;
  } else {
    return 0;
  }
  if (i + length > text.size()) return 0;
  for (std::size_t k = 1; k < length; ++k) {
    const auto next = static_cast<unsigned char>(text[i + k]);
    if ((next & 0xC0) != 0x80) return 0;
    codePoint = (codePoint << 6) | (next & 0x3F);
  }
  if (codePoint < minimum || codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint <= 0xDFFF)) return 0;
  return length;
}

bool isInvisibleControl(char32_t codePoint) {
  return (codePoint >= 0x80 && codePoint <= 0x9F) ||     // C1 controls: a terminal may act on them
         (codePoint >= 0x202A && codePoint <= 0x202E) || // embeddings and overrides of direction
         (codePoint >= 0x2066 && codePoint <= 0x2069);   // isolates of direction
}

} // namespace

std::string escapedName(std::string_view name) {
  std::string out;
  out.reserve(name.size());
  for (std::size_t i = 0; i < name.size();) {
    const auto byte = static_cast<unsigned char>(name[i]);
    if (byte >= 0x80) {
      char32_t codePoint = 0;
      const std::size_t length = sequenceLength(name, i, codePoint);
      if (length == 0 || isInvisibleControl(codePoint)) {
        const std::size_t count = length == 0 ? 1 : length;
        for (std::size_t k = 0; k < count; ++k) appendOctal(out, static_cast<unsigned char>(name[i + k]));
        i += count;
      } else {
        out.append(name.substr(i, length));
        i += length;
      }
      continue;
    }
    switch (byte) {
    case '\\': out += "\\\\"; break;
    case '\n': out += "\\n"; break;
    case '\t': out += "\\t"; break;
    case '\r': out += "\\r"; break;
    case '\a': out += "\\a"; break;
    case '\b': out += "\\b"; break;
    case '\f': out += "\\f"; break;
    case '\v': out += "\\v"; break;
    default:
      if (byte < 0x20 || byte == 0x7F) appendOctal(out, byte);
      else out.push_back(static_cast<char>(byte));
    }
    ++i;
  }
  return out;
}

namespace {
int firstOutputError = 0;

// A signal handler has no context to reach: the flag is the process's own.
std::atomic<bool> stopFlagValue{false};
volatile std::sig_atomic_t stopSignal = 0;
struct sigaction previousInterrupt {};
struct sigaction previousTerminate {};

extern "C" void onStopSignal(int number) {
  stopSignal = number;
  stopFlagValue.store(true, std::memory_order_relaxed);
}

} // namespace

StopSignals::StopSignals() {
  struct sigaction action {};
  action.sa_handler = onStopSignal;
  sigemptyset(&action.sa_mask);
  // Interrupted system calls resume: a write of the fill must not fail half-way for this.
  action.sa_flags = SA_RESTART;
  ::sigaction(SIGINT, &action, &previousInterrupt);
  ::sigaction(SIGTERM, &action, &previousTerminate);
}

StopSignals::~StopSignals() {
  ::sigaction(SIGINT, &previousInterrupt, nullptr);
  ::sigaction(SIGTERM, &previousTerminate, nullptr);
}

std::shared_ptr<const std::atomic<bool>> StopSignals::flag() {
  // Not owned: the flag lives as long as the process.
  return std::shared_ptr<const std::atomic<bool>>(std::shared_ptr<void>(), &stopFlagValue);
}

bool StopSignals::received() const { return stopFlagValue.load(std::memory_order_relaxed); }

int StopSignals::exitStatus() const { return 128 + (stopSignal != 0 ? static_cast<int>(stopSignal) : SIGINT); }

bool flushStandardOutput() {
  errno = 0;
  if (std::fflush(stdout) == 0) return true;
  if (firstOutputError == 0) firstOutputError = errno != 0 ? errno : EIO;
  return false;
}

int standardOutputError() { return firstOutputError; }

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
