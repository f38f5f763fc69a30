#pragma once

#include <mutex>
#include <string>

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
  void show(const std::string& line);

  std::mutex mutex_;
  bool live_;
  bool dirty_ = false;
  std::string last_;
};

/// Whether standard input and standard output are terminals.
bool stdinIsTerminal();
bool stdoutIsTerminal();

/// Asks a yes/no question on the terminal; only "y" or "yes" is a yes.
bool confirm(const std::string& question);

/// The number of columns of the terminal on standard error, 80 when unknown.
int terminalColumns();

} // namespace halcyra::cli
