#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace halcyra::cli {

/// Status texts and progress on standard error: one line rewritten in place on a terminal,
/// plain lines otherwise. Safe to call from worker threads.
class StatusLine {
public:
  StatusLine();
  ~StatusLine();

  void status(const std::string& text);
  /// A bar of the fraction (0 to 1) followed by the text.
  void progress(double fraction, const std::string& text);
  /// Clears the live line, so that what follows starts on a clean line.
  void finish();

private:
  void show(const std::string& text);

  std::mutex mutex_;
  bool live_;
  bool dirty_ = false;
  std::string last_;
};

/// A file name (or any text holding one) as readable output shows it, escaped as `ls -b` does:
/// control characters as \n, \t, \r, \a, \b, \f, \v or a three-digit octal escape, a
/// backslash as two, and bytes that are not well-formed UTF-8, C1 controls and the bidirectional
/// overrides as the octal escapes of their bytes. A name can then neither break a line nor
/// forge lines of a list, nor turn a terminal's text around; letters of any script stay. JSON
/// output writes names unescaped.
std::string escapedName(std::string_view name);

/// While it lives, SIGINT and SIGTERM do not end the process at once: they set the flag the
/// engines watch (Platform::stopFlag), and the work stops where nothing is left half done (a
/// shred after the file in hand, its fill files removed; a clean after the item in hand). The
/// command then says what was done and ends with 128 + the signal's number.
class StopSignals {
public:
  StopSignals();
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  /// The flag, for Platform::stopFlag; it can be handed out before the signals are caught.
  static std::shared_ptr<const std::atomic<bool>> flag();
  /// Whether a signal arrived while this object lived.
  bool received() const;
  /// 130 after SIGINT, 143 after SIGTERM.
  int exitStatus() const;
};

/// Flushes standard output and remembers the reason (errno) of the first flush that failed,
/// which stdio itself forgets; main reports it when the command is done. False on failure.
bool flushStandardOutput();
/// The reason the first failed flush of standard output failed, 0 when none did.
int standardOutputError();

/// Whether standard input and standard output are terminals.
bool stdinIsTerminal();
bool stdoutIsTerminal();

/// Asks a yes/no question on the terminal; only "y" or "yes" is a yes.
bool confirm(const std::string& question);

/// The number of columns of the terminal on standard error, 80 when unknown.
int terminalColumns();

} // namespace halcyra::cli
