// "tmutil" answers are another program's text: reading them never fails on any bytes, and a
// status that says a backup runs is read as running.
#include "FuzzInput.h"
#include "clean/BackupScanner.h"

using namespace halcyra;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string answer = fuzz::text(data, size);
  (void)clean::BackupScanner::reportsNoDestination(answer);
  const bool running = clean::BackupScanner::reportsRunningBackup(answer);
  fuzz::require(!running || answer.find("= 1") != std::string::npos, "running is read only from a running flag");
  fuzz::require(clean::BackupScanner::reportsRunningBackup(answer + "\n    Running = 1;\n"),
                "a running flag anywhere is seen");
  return 0;
}
