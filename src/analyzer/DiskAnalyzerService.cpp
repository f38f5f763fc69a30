#include "analyzer/DiskAnalyzerService.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "analyzer/FolderTreeBuilder.h"
#include "core/Uuid.h"
#include "platform/MountPoints.h"
#include "platform/SystemPaths.h"

// How the walk is organised.
//
// The result is defined by one depth-first walk in listing order: the order in which folders
// are entered and left, the directory count and file count at each status text, and the order
// among equal-sized largest files all depend on that order. To use several threads without
// changing any of it, the tree is cut into tasks. A task is a sub-tree walked depth-first by
// one thread; a sub-folder it hands away becomes a task of its own and leaves a marker in the
// task's log where the sequential walk would have entered it.
//
// A task's log is a compact stream of events: a folder entered (its name and the task's files
// met so far), a folder left (the bytes of its own files, its file count), a sub-folder handed
// away. The logs are replayed in sequential order, following markers into the tasks they
// name, as soon as the walk allows: the replay counts folders for the status texts, adds the
// sizes of sub-folders up, builds paths from the names, and hands each folder to the sink.
// What has been replayed is dropped, so only the logs of parts walked ahead of the replay are
// held. Nothing is kept per folder beyond that.
//
// Every file carries its index within its task; when a task is replayed to its end, the
// files of the tasks it handed away are known, and its candidates for the list of largest
// files get their index in the sequential walk, which settles ties as a single walk would.

namespace halcyra::analyzer {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kOpenFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;
// Directory descriptors one walker keeps open; deeper folders are reached again through "..".
constexpr int kMaxOpenFrames = 16;
constexpr unsigned kMaxAutomaticWorkers = 4;

// Bytes asked of the system per read of a listing. Most folders fit in one read; a large one is
// read in parts of this size, so a walker holds about this much per open folder at most.
constexpr std::size_t kListingChunk = 4 * 1024;

// ----- Listings ------------------------------------------------------------------------------

enum class EntryType : std::uint8_t { directory, file, unknown, other, delegated };

// A listing is kept as records: this header, then the name with its NUL, padded to 8 bytes.
// A sub-folder handed to another task is marked in place (type delegated, `task` its index),
// so the walk meets the marker exactly where it would have entered it.
struct EntryHeader {
  std::uint32_t task = 0;
  std::uint16_t length = 0;
  EntryType type = EntryType::other;
};
constexpr std::size_t kHeaderSize = (sizeof(EntryHeader) + 7) & ~std::size_t{7};

EntryHeader headerAt(const char* record) {
  EntryHeader header;
  std::memcpy(&header, record, sizeof header);
  return header;
}

void appendEntry(std::vector<char>& buffer, EntryType type, const char* name, std::size_t nameLength) {
  const std::size_t length = (kHeaderSize + nameLength + 1 + 7) & ~std::size_t{7};
  const std::size_t at = buffer.size();
  buffer.resize(at + length);
  EntryHeader header;
  header.length = static_cast<std::uint16_t>(length);
  header.type = type;
  std::memcpy(buffer.data() + at, &header, sizeof header);
  std::memcpy(buffer.data() + at + kHeaderSize, name, nameLength);
  buffer[at + kHeaderSize + nameLength] = '\0';
}

EntryType typeOf(unsigned char direntType) {
  switch (direntType) {
  case DT_DIR: return EntryType::directory;
  case DT_REG: return EntryType::file;
  case DT_UNKNOWN: return EntryType::unknown;
  default: return EntryType::other; // links, FIFOs, sockets, devices
  }
}

bool isDotOrDotDot(const char* name) {
  return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

enum class ReadStatus { more, end, failed };

// Appends the next part of the listing of `fd` to `buffer`. The kernel hands out the type of
// each entry with its name, so files are told from folders and links without a call per entry.
ReadStatus readListing(int fd, std::vector<char>& buffer, std::vector<std::uint64_t>& scratch) {
#if defined(__linux__)
  const ssize_t count = ::getdents64(fd, scratch.data(), scratch.size() * sizeof(std::uint64_t));
  if (count < 0) return ReadStatus::failed;
  if (count == 0) return ReadStatus::end;
  const char* bytes = reinterpret_cast<const char*>(scratch.data());
  for (ssize_t offset = 0; offset < count;) {
    const auto* entry = reinterpret_cast<const struct dirent64*>(bytes + offset);
    offset += entry->d_reclen;
    if (isDotOrDotDot(entry->d_name)) continue;
    appendEntry(buffer, typeOf(entry->d_type), entry->d_name, std::strlen(entry->d_name));
  }
  return ReadStatus::more;
#else
  // Elsewhere the whole listing is read at once through a duplicate of the descriptor.
  (void)scratch;
  const int copy = ::dup(fd);
  if (copy < 0) return ReadStatus::failed;
  DIR* dir = ::fdopendir(copy);
  if (dir == nullptr) {
    ::close(copy);
    return ReadStatus::failed;
  }
  while (const dirent* entry = ::readdir(dir)) {
    if (isDotOrDotDot(entry->d_name)) continue;
    appendEntry(buffer, typeOf(entry->d_type), entry->d_name, std::strlen(entry->d_name));
  }
  ::closedir(dir);
  return ReadStatus::end;
#endif
}

std::int64_t allocatedSize(const struct stat& info) { return static_cast<std::int64_t>(info.st_blocks) * 512; }

// ----- Tasks and their logs ------------------------------------------------------------------

// node: a folder above the depth limit, reported with its own files and its sub-folders.
// limit: the folder at the depth limit, reported with everything below it and no sub-folders.
// fast: a folder below the limit, which only adds the sizes of its files.
enum class FrameKind : std::uint8_t { node, limit, fast };

// A candidate for the list of largest files; `order` is its index among the task's own files
// until the task is replayed, then its index in the sequential walk.
struct Candidate {
  std::int64_t size = 0;
  std::int64_t order = 0;
  std::string path;
  std::size_t nameOffset = 0;
};

// Log events, each a tag byte followed by numbers (7 bits a byte, lowest first):
//   entered:    files the task met since its previous event, name length, the name's bytes
//   left:       the folder's own bytes in units of 512 (every size is a count of 512-byte
//               blocks), its file count
//   handedAway: files the task met since its previous event, index of the task
enum class Tag : unsigned char { entered, left, leftDenied, handedAway };

// The events of one task not yet replayed, in blocks of a fixed size: the log grows without
// copying or spare room, and the replay frees each block it has read through.
class EventLog {
public:
  EventLog() = default;
  EventLog(EventLog&& other) noexcept
      : head_(std::move(other.head_)), tail_(std::exchange(other.tail_, nullptr)),
        readAt_(std::exchange(other.readAt_, 0)), writeAt_(std::exchange(other.writeAt_, kBlockBytes)),
        pending_(std::exchange(other.pending_, 0)) {}
  EventLog& operator=(EventLog&&) = delete;
  ~EventLog() {
    // One block at a time: a long chain let go recursively could run out of stack.
    while (head_ != nullptr) head_ = std::move(head_->next);
  }

  void put(unsigned char byte) {
    if (writeAt_ == kBlockBytes) {
      auto block = std::make_unique<Block>();
      Block* added = block.get();
      if (tail_ == nullptr) {
        head_ = std::move(block);
        readAt_ = 0;
      } else {
        tail_->next = std::move(block);
      }
      tail_ = added;
      writeAt_ = 0;
    }
    tail_->bytes[writeAt_++] = byte;
    ++pending_;
  }
  void putNumber(std::uint64_t value) {
    while (value >= 0x80) {
      put(static_cast<unsigned char>((value & 0x7F) | 0x80));
      value >>= 7;
    }
    put(static_cast<unsigned char>(value));
  }
  void putBytes(std::string_view bytes) {
    for (const char byte : bytes) put(static_cast<unsigned char>(byte));
  }

  bool empty() const { return pending_ == 0; }
  std::size_t pending() const { return pending_; }
  unsigned char take() {
    if (readAt_ == kBlockBytes) {
      head_ = std::move(head_->next);
      readAt_ = 0;
    }
    --pending_;
    return head_->bytes[readAt_++];
  }
  std::uint64_t takeNumber() {
    std::uint64_t value = 0;
    for (int shift = 0;; shift += 7) {
      const unsigned char byte = take();
      value |= static_cast<std::uint64_t>(byte & 0x7F) << shift;
      if (byte < 0x80) return value;
    }
  }
  void takeBytes(std::string& into, std::size_t count) {
    into.clear();
    for (std::size_t i = 0; i < count; ++i) into.push_back(static_cast<char>(take()));
  }
  // Once all is read, the last block is written again from its start.
  void rewind() {
    if (head_ != nullptr) readAt_ = writeAt_ = 0;
  }

private:
  static constexpr std::size_t kBlockBytes = 1024 - sizeof(void*);
  struct Block {
    std::unique_ptr<Block> next;
    unsigned char bytes[kBlockBytes];
  };

  std::unique_ptr<Block> head_;
  Block* tail_ = nullptr;
  std::size_t readAt_ = 0;
  std::size_t writeAt_ = kBlockBytes;
  std::size_t pending_ = 0; // bytes written and not yet read
};

struct Task {
  // What to walk.
  std::string path; // absolute; "" stands for "/", so that children read "/name"
  std::string name;
  int depth = 0;
  FrameKind kind = FrameKind::node;
  int fd = -1;
  dev_t device = 0;
  ino_t inode = 0;

  // Written by the walking thread; read by the replay once `done`.
  std::int64_t files = 0; // files met by this task itself
  std::int64_t total = 0; // a fast task: bytes of the files it met itself
  std::vector<Candidate> largest;

  // Guarded by Scan::mutex.
  EventLog log;
  std::int64_t filesLogged = 0; // `files` when the last event was logged
  bool waiting = false;         // its thread waits for the replay to catch up
  bool done = false;
  std::int64_t firstFile = 0; // sequential index of the first file met in this task
};

// Keeps `list` largest first, at most kLargestFileCount long, earlier entries in front among
// equal sizes; a full list takes an entry only when it is strictly larger than the last.
template <typename Entry>
void offerBySize(Entry entry, std::vector<Entry>& list) {
  if (list.size() < kLargestFileCount) {
    list.push_back(std::move(entry));
  } else {
    if (entry.size <= list.back().size) return;
    list.back() = std::move(entry);
  }
  // Only the last entry can be out of place: move it in front of the first smaller one.
  const auto last = list.end() - 1;
  const auto place = std::upper_bound(list.begin(), last, last->size,
                                      [](std::int64_t size, const Entry& other) { return size > other.size; });
  std::rotate(place, last, list.end());
}

class Scan {
public:
  Scan(FolderSink& sink, const std::function<void(const std::string&)>& onProgress,
       const DiskAnalyzerService::Options& options, dev_t rootDevice, std::string rootPath)
      : sink_(sink), onProgress_(onProgress), splitEveryFolder_(options.splitEveryFolder),
        aheadLimit_(std::max<std::size_t>(options.aheadLogLimit, 1)), rootDevice_(rootDevice),
        rootPath_(std::move(rootPath)) {}

  dev_t rootDevice() const { return rootDevice_; }
  bool wantsWork() const { return splitEveryFolder_ || hungry_.load(std::memory_order_relaxed); }

  // A file smaller than this cannot make the list: twenty larger ones are known.
  std::int64_t largestFloor() const { return floor_.load(std::memory_order_relaxed); }
  void raiseFloor(std::int64_t size) {
    std::int64_t now = floor_.load(std::memory_order_relaxed);
    while (size > now && !floor_.compare_exchange_weak(now, size, std::memory_order_relaxed)) {
    }
  }

  void addRoot(Task task) {
    tasks_.push_back(std::make_unique<Task>(std::move(task)));
    queue_.push_back(0);
    cursor_.push_back({0, 0, 0, {}});
  }

  void work();

  void logEntered(Task& task, std::string_view name) {
    std::unique_lock lock(mutex_);
    task.log.put(static_cast<unsigned char>(Tag::entered));
    putFilesSince(task);
    task.log.putNumber(name.size());
    task.log.putBytes(name);
    advance();
    if (task.log.pending() > aheadLimit_) waitForReplay(task, lock);
  }

  void logLeft(Task& task, std::int64_t bytes, std::int64_t fileCount, bool denied) {
    std::unique_lock lock(mutex_);
    task.log.put(static_cast<unsigned char>(denied ? Tag::leftDenied : Tag::left));
    task.log.putNumber(static_cast<std::uint64_t>(bytes) / 512);
    task.log.putNumber(static_cast<std::uint64_t>(fileCount));
    advance();
    if (task.log.pending() > aheadLimit_) waitForReplay(task, lock);
  }

  void logHandedAway(Task& task, std::size_t child) {
    std::lock_guard lock(mutex_);
    task.log.put(static_cast<unsigned char>(Tag::handedAway));
    putFilesSince(task);
    task.log.putNumber(child);
    advance();
  }

  std::size_t handAway(Task task) {
    std::lock_guard lock(mutex_);
    tasks_.push_back(std::make_unique<Task>(std::move(task)));
    const std::size_t index = tasks_.size() - 1;
    queue_.push_back(index);
    updateHungry();
    wake(false);
    return index;
  }

  // After every thread has returned from work().
  std::int64_t directoryCount() const { return directories_; }
  std::int64_t fileCount() const { return files_; }
  std::int64_t totalSize() const { return totalSize_; }
  std::vector<Candidate>& largest() { return largest_; }

private:
  // A hand-away replayed in the current task, and the files of the tasks handed away up to
  // and including it once they are replayed.
  struct Handed {
    std::int64_t filesBefore;
    std::int64_t childFilesAfter;
  };
  struct CursorFrame {
    std::size_t task;
    std::int64_t ownFiles;   // files of the task itself replayed so far
    std::int64_t childFiles; // files of the handed-away tasks replayed so far
    std::vector<Handed> handed;
  };
  // A folder entered by the replay and not yet left.
  struct OpenFolder {
    std::int64_t below = 0; // bytes of the sub-folders (and fast tasks) replayed so far
    std::size_t parentPathLength = 0;
  };

  void updateHungry() { hungry_.store(idle_ > 0 && queue_.empty(), std::memory_order_relaxed); }

  // Idle threads sleep on a counter that every change they wait for moves on. (An atomic wait
  // is all in the headers; a condition variable would bring the runtime's out-of-line code.)
  // Caller holds the mutex.
  void wake(bool everyone) {
    wakeups_.fetch_add(1, std::memory_order_relaxed);
    if (everyone) {
      wakeups_.notify_all();
    } else {
      wakeups_.notify_one();
    }
  }

  static void putFilesSince(Task& task) {
    task.log.putNumber(static_cast<std::uint64_t>(task.files - task.filesLogged));
    task.filesLogged = task.files;
  }

  void advance();
  void replayEvent(CursorFrame& at, Task& task);
  void waitForReplay(Task& task, std::unique_lock<std::mutex>& lock);
  void finishTask(CursorFrame& at, Task& task);

  FolderSink& sink_;
  const std::function<void(const std::string&)>& onProgress_;
  const bool splitEveryFolder_;
  const std::size_t aheadLimit_;
  const dev_t rootDevice_;
  const std::string rootPath_; // "" stands for "/"
  std::atomic<std::int64_t> floor_{0};

  std::mutex mutex_;
  std::atomic<std::uint32_t> wakeups_{0};
  std::deque<std::unique_ptr<Task>> tasks_; // a task is let go once replayed
  std::deque<std::size_t> queue_;
  unsigned idle_ = 0;
  unsigned running_ = 0; // threads walking a task, waiting ones included
  unsigned waiting_ = 0; // threads waiting for the replay
  bool finished_ = false;
  std::atomic<bool> hungry_{false};

  // The replay.
  std::vector<CursorFrame> cursor_;
  std::vector<OpenFolder> folders_;
  std::string path_;
  std::string name_;
  std::int64_t directories_ = 0;
  std::int64_t files_ = 0;
  std::int64_t totalSize_ = 0;
  std::vector<Candidate> largest_; // by size, then sequential index
};

// Holds a thread that has walked far ahead of the replay until the replay has read half of
// its log, so that logs stay bounded whatever the shape of the tree. The last thread still
// walking never waits: the replay may be waiting for its work.
void Scan::waitForReplay(Task& task, std::unique_lock<std::mutex>& lock) {
  while (task.log.pending() > aheadLimit_ / 2 && running_ - waiting_ > 1) {
    task.waiting = true;
    ++waiting_;
    const std::uint32_t seen = wakeups_.load(std::memory_order_relaxed);
    lock.unlock();
    wakeups_.wait(seen, std::memory_order_relaxed);
    lock.lock();
    --waiting_;
  }
  task.waiting = false;
}

// Replays the logs in sequential order as far as they go. Caller holds the mutex.
void Scan::advance() {
  while (!cursor_.empty()) {
    CursorFrame& at = cursor_.back();
    Task& task = *tasks_[at.task];
    if (!task.log.empty()) {
      replayEvent(at, task);
      if (task.waiting && task.log.pending() <= aheadLimit_ / 2) {
        task.waiting = false;
        wake(true);
      }
      continue;
    }
    task.log.rewind(); // caught up: what was replayed is not needed again
    if (!task.done) return;
    finishTask(at, task);
  }
}

void Scan::replayEvent(CursorFrame& at, Task& task) {
  const auto tag = static_cast<Tag>(task.log.take());
  switch (tag) {
  case Tag::entered: {
    at.ownFiles += static_cast<std::int64_t>(task.log.takeNumber());
    task.log.takeBytes(name_, static_cast<std::size_t>(task.log.takeNumber()));
    OpenFolder folder;
    folder.parentPathLength = path_.size();
    if (folders_.empty()) {
      path_ = rootPath_;
    } else {
      path_.push_back('/');
      path_.append(name_);
    }
    folders_.push_back(folder);
    ++directories_;
    sink_.enterFolder(name_, path_.empty() ? std::string_view("/") : std::string_view(path_));
    if (directories_ % DiskAnalyzerService::kStatusInterval == 0) {
      const std::int64_t filesNow = task.firstFile + at.childFiles + at.ownFiles;
      onProgress_("Scanning: " + name_ + " (" + std::to_string(filesNow) + " files found)");
    }
    return;
  }
  case Tag::left:
  case Tag::leftDenied: {
    FolderSink::Totals totals;
    totals.size = static_cast<std::int64_t>(task.log.takeNumber() * 512);
    totals.fileCount = static_cast<std::int64_t>(task.log.takeNumber());
    totals.isPermissionDenied = tag == Tag::leftDenied;
    const OpenFolder folder = folders_.back();
    folders_.pop_back();
    totals.size += folder.below;
    sink_.leaveFolder(totals);
    path_.resize(folder.parentPathLength);
    if (folders_.empty()) {
      totalSize_ = totals.size;
    } else {
      folders_.back().below += totals.size;
    }
    return;
  }
  case Tag::handedAway: {
    at.ownFiles += static_cast<std::int64_t>(task.log.takeNumber());
    const auto child = static_cast<std::size_t>(task.log.takeNumber());
    at.handed.push_back({at.ownFiles, 0});
    tasks_[child]->firstFile = task.firstFile + at.childFiles + at.ownFiles;
    cursor_.push_back({child, 0, 0, {}}); // `at` is not used after this
    return;
  }
  }
}

// A task replayed to its end: its candidates get their sequential index and join the list,
// and the task is let go.
void Scan::finishTask(CursorFrame& at, Task& task) {
  const std::int64_t totalFiles = task.files + at.childFiles;
  // Below the depth limit a task has no folders of its own: its bytes go to the folder at
  // the limit, which the replay has entered and not yet left.
  if (task.kind == FrameKind::fast) folders_.back().below += task.total;
  for (Candidate& candidate : task.largest) {
    // Files of the handed-away sub-folders met before this one.
    const auto passed = std::upper_bound(at.handed.begin(), at.handed.end(), candidate.order,
                                         [](std::int64_t order, const Handed& handed) {
                                           return order < handed.filesBefore;
                                         });
    const std::int64_t before = passed == at.handed.begin() ? 0 : std::prev(passed)->childFilesAfter;
    candidate.order += task.firstFile + before;
    largest_.push_back(std::move(candidate));
  }
  std::sort(largest_.begin(), largest_.end(), [](const Candidate& a, const Candidate& b) {
    return a.size != b.size ? a.size > b.size : a.order < b.order;
  });
  if (largest_.size() > kLargestFileCount) largest_.resize(kLargestFileCount);
  if (largest_.size() == kLargestFileCount) raiseFloor(largest_.back().size);

  tasks_[at.task].reset();
  cursor_.pop_back();
  if (cursor_.empty()) {
    files_ = totalFiles;
    return;
  }
  CursorFrame& parent = cursor_.back();
  parent.childFiles += totalFiles;
  parent.handed.back().childFilesAfter = parent.childFiles;
}

// ----- One thread's walk ---------------------------------------------------------------------

// A folder on a walker's stack. Its current part of the listing lies in the walker's shared
// listing buffer from `base` on, above its parent's part; a folder whose descriptor was let
// go holds the whole rest of its listing in `rest` instead.
struct Frame {
  int fd = -1; // -1 while closed to save descriptors
  dev_t device = 0;
  ino_t inode = 0;
  std::size_t base = 0;
  std::size_t position = 0; // next record, in the shared buffer or in `rest`
  std::size_t end = 0;
  bool spilled = false;
  bool complete = false; // the whole rest of the listing has been read
  FrameKind kind = FrameKind::node;
  int depth = 0;
  std::size_t pathLength = 0;
  // Bytes of the files met here; for a limit folder or the root of a fast task, also of
  // everything this thread walked below it.
  std::int64_t total = 0;
  std::int64_t fileCount = 0; // files directly inside
  std::vector<char> rest;
};

class Walker {
public:
  explicit Walker(Scan& scan) : scan_(scan), scratch_(kListingChunk / sizeof(std::uint64_t)) {}

  void run(Task& task);

private:
  bool pushRoot();
  void descend(const char* name, EntryType type);
  bool pushFrame(int fd, const struct stat& info, FrameKind kind, const char* name);
  void popFrame();
  ReadStatus readMore(Frame& frame);
  void countFile(const char* name, std::int64_t size);
  bool nextEntry(EntryHeader& header, const char*& name);
  bool handAwayWork();
  void closeShallowestFrame();
  bool reopenParent(Frame& child, Frame& parent);

  Frame& top() { return frames_[depth_ - 1]; }
  char* records(Frame& frame) { return frame.spilled ? frame.rest.data() : listing_.data(); }

  Scan& scan_;
  Task* task_ = nullptr;
  std::vector<Frame> frames_; // frames_[0, depth_) is the stack; the rest is kept for reuse
  std::size_t depth_ = 0;
  int openFrames_ = 0;
  bool searchAllowed_ = true;
  std::string path_; // always the path of the top frame
  std::vector<char> listing_;
  std::vector<std::uint64_t> scratch_;
};

void Walker::run(Task& task) {
  task_ = &task;
  depth_ = 0;
  openFrames_ = 0;
  searchAllowed_ = true;
  path_ = task.path;
  listing_.clear();
  if (task.kind != FrameKind::fast) scan_.logEntered(task, task.name);
  if (!pushRoot()) return;

  while (depth_ > 0) {
    if (searchAllowed_ && scan_.wantsWork()) searchAllowed_ = handAwayWork();
    EntryHeader header;
    const char* name = nullptr;
    if (!nextEntry(header, name)) {
      popFrame();
      continue;
    }
    switch (header.type) {
    case EntryType::file: {
      struct stat info {};
      if (::fstatat(top().fd, name, &info, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(info.st_mode)) {
        countFile(name, allocatedSize(info));
      }
      break;
    }
    case EntryType::directory:
    case EntryType::unknown: descend(name, header.type); break;
    case EntryType::delegated: scan_.logHandedAway(task, header.task); break;
    case EntryType::other: break;
    }
  }
}

// The task's own folder: a node that cannot be listed is marked, a folder at or below the
// depth limit that cannot be opened simply weighs nothing.
bool Walker::pushRoot() {
  Task& task = *task_;
  struct stat info {};
  info.st_dev = task.device;
  info.st_ino = task.inode;
  if (task.fd >= 0 && pushFrame(task.fd, info, task.kind, nullptr)) return true;
  task.fd = -1;
  if (task.kind != FrameKind::fast) scan_.logLeft(task, 0, 0, task.kind == FrameKind::node);
  return false;
}

void Walker::descend(const char* name, EntryType type) {
  Frame& parent = top();
  if (type == EntryType::unknown) {
    // The file system did not say what the entry is: ask, without following a link.
    struct stat info {};
    if (::fstatat(parent.fd, name, &info, AT_SYMLINK_NOFOLLOW) != 0) return;
    if (S_ISREG(info.st_mode)) {
      countFile(name, allocatedSize(info));
      return;
    }
    if (!S_ISDIR(info.st_mode)) return;
  }
  FrameKind kind = FrameKind::fast;
  if (parent.kind == FrameKind::node) {
    kind = parent.depth + 1 >= DiskAnalyzerService::kMaxDepth ? FrameKind::limit : FrameKind::node;
  }
  // O_NOFOLLOW: a folder swapped for a link since the listing is not entered.
  const int fd = ::openat(parent.fd, name, kOpenFlags);
  platform::EntryStatus status;
  const struct stat& info = status.info;
  if (fd >= 0 && !platform::statEntry(fd, "", status)) {
    ::close(fd);
    return;
  }
  if (fd >= 0 && (info.st_dev != scan_.rootDevice() || status.isMountRoot)) {
    ::close(fd); // another file system, or a folder mounted here again: not part of this scan
    return;
  }
  if (kind == FrameKind::fast) {
    if (fd >= 0) pushFrame(fd, info, kind, name);
    return;
  }
  scan_.logEntered(*task_, name);
  // A folder that cannot be listed ends here with size 0, which leaves it out of the tree.
  if (fd < 0 || !pushFrame(fd, info, kind, name)) scan_.logLeft(*task_, 0, 0, kind == FrameKind::node);
}

// Makes `fd` the top frame and reads the first part of its listing; on failure closes `fd`.
bool Walker::pushFrame(int fd, const struct stat& info, FrameKind kind, const char* name) {
  // `name` may lie in the listing buffer, which the read below can move: take it first.
  const std::size_t parentPathLength = path_.size();
  if (name != nullptr) {
    path_.push_back('/');
    path_.append(name);
  }
  if (frames_.size() == depth_) frames_.emplace_back();
  Frame& frame = frames_[depth_];
  frame.fd = fd;
  frame.base = listing_.size();
  frame.spilled = false;
  frame.complete = false;
  if (readMore(frame) == ReadStatus::failed) {
    ::close(fd);
    frame.fd = -1;
    listing_.resize(frame.base);
    path_.resize(parentPathLength);
    return false;
  }
  frame.device = info.st_dev;
  frame.inode = info.st_ino;
  frame.kind = kind;
  frame.depth = depth_ == 0 ? task_->depth : frames_[depth_ - 1].depth + 1;
  frame.pathLength = path_.size();
  frame.total = 0;
  frame.fileCount = 0;
  ++depth_;
  ++openFrames_;
  searchAllowed_ = true;
  if (openFrames_ > kMaxOpenFrames) closeShallowestFrame();
  return true;
}

// Replaces the frame's part of the listing by the next one. Only the top frame reads, so its
// part is always the last in the shared buffer.
ReadStatus Walker::readMore(Frame& frame) {
  listing_.resize(frame.base);
  const ReadStatus status = readListing(frame.fd, listing_, scratch_);
  frame.position = frame.base;
  frame.end = listing_.size();
  return status;
}

void Walker::popFrame() {
  Frame& frame = top();
  if (depth_ > 1) {
    Frame& parent = frames_[depth_ - 2];
    if (parent.fd < 0 && !reopenParent(frame, parent)) {
      // The folder we came from is gone or was moved: its remaining entries are not read.
      parent.position = parent.end;
      parent.complete = true;
    }
  }
  if (frame.fd >= 0) {
    ::close(frame.fd);
    --openFrames_;
  }
  frame.fd = -1;
  listing_.resize(frame.base);
  if (frame.spilled) {
    frame.spilled = false;
    std::vector<char>().swap(frame.rest);
  }

  --depth_;
  Task& task = *task_;
  if (frame.kind != FrameKind::fast) {
    scan_.logLeft(task, frame.total, frame.kind == FrameKind::node ? frame.fileCount : 0, false);
  }
  if (depth_ == 0) {
    task.total = frame.total;
    return;
  }
  Frame& parent = top();
  path_.resize(parent.pathLength);
  // Below the depth limit the bytes go up to the folder at the limit; above it the replay
  // adds sub-folders up.
  if (frame.kind == FrameKind::fast) parent.total += frame.total;
}

void Walker::countFile(const char* name, std::int64_t size) {
  Task& task = *task_;
  Frame& frame = top();
  const std::int64_t order = task.files++;
  frame.total += size;
  if (frame.kind == FrameKind::node) ++frame.fileCount;
  // One comparison rejects almost every file; the path is built only for a candidate.
  if (task.largest.size() == kLargestFileCount && size <= task.largest.back().size) return;
  if (size < scan_.largestFloor()) return;
  Candidate candidate;
  candidate.size = size;
  candidate.order = order;
  candidate.path.reserve(path_.size() + 1 + std::strlen(name));
  candidate.path = path_;
  candidate.path.push_back('/');
  candidate.nameOffset = candidate.path.size();
  candidate.path.append(name);
  offerBySize(std::move(candidate), task.largest);
  if (task.largest.size() == kLargestFileCount) scan_.raiseFloor(task.largest.back().size);
}

bool Walker::nextEntry(EntryHeader& header, const char*& name) {
  Frame& frame = top();
  while (frame.position >= frame.end) {
    if (frame.complete || frame.fd < 0) return false;
    // A listing that breaks off keeps what was read before.
    if (readMore(frame) != ReadStatus::more) frame.complete = true;
    searchAllowed_ = true;
  }
  const char* record = records(frame) + frame.position;
  header = headerAt(record);
  name = record + kHeaderSize;
  frame.position += header.length;
  return true;
}

// Hands the shallowest sub-folder not yet entered to the queue: the shallower, the more work
// it is likely to carry. False when there was none in view.
bool Walker::handAwayWork() {
  for (std::size_t i = 0; i < depth_; ++i) {
    Frame& frame = frames_[i];
    if (frame.fd < 0) continue;
    for (std::size_t position = frame.position; position < frame.end;) {
      char* record = records(frame) + position;
      EntryHeader header = headerAt(record);
      position += header.length;
      if (header.type != EntryType::directory) continue;
      const char* name = record + kHeaderSize;
      const int fd = ::openat(frame.fd, name, kOpenFlags);
      if (fd < 0) continue; // left to the walk, which reports it
      platform::EntryStatus status;
      const struct stat& info = status.info;
      if (!platform::statEntry(fd, "", status) || info.st_dev != scan_.rootDevice() || status.isMountRoot) {
        ::close(fd);
        continue;
      }
      Task child;
      child.path = path_.substr(0, frame.pathLength) + "/" + name;
      child.name = name;
      child.depth = frame.depth + 1;
      child.kind = frame.kind != FrameKind::node                        ? FrameKind::fast
                   : child.depth >= DiskAnalyzerService::kMaxDepth ? FrameKind::limit
                                                                   : FrameKind::node;
      child.fd = fd;
      child.device = info.st_dev;
      child.inode = info.st_ino;
      header.type = EntryType::delegated;
      header.task = static_cast<std::uint32_t>(scan_.handAway(std::move(child)));
      std::memcpy(record, &header, sizeof header);
      return true;
    }
  }
  return false;
}

// Keeps descriptors bounded on deep trees: the shallowest open folder reads the rest of its
// listing into memory of its own and lets its descriptor go; it is reopened through ".." on
// the way back.
void Walker::closeShallowestFrame() {
  for (std::size_t i = 0; i + 2 < depth_; ++i) {
    Frame& frame = frames_[i];
    if (frame.fd < 0) continue;
    if (frame.spilled) {
      frame.rest.erase(frame.rest.begin(), frame.rest.begin() + static_cast<std::ptrdiff_t>(frame.position));
    } else {
      const char* from = listing_.data();
      frame.rest.assign(from + frame.position, from + frame.end);
    }
    while (!frame.complete) {
      if (readListing(frame.fd, frame.rest, scratch_) != ReadStatus::more) frame.complete = true;
    }
    frame.spilled = true;
    frame.position = 0;
    frame.end = frame.rest.size();
    ::close(frame.fd);
    frame.fd = -1;
    --openFrames_;
    return;
  }
}

// Reopens the parent of the top frame as "..", and only if it is still the same folder.
bool Walker::reopenParent(Frame& child, Frame& parent) {
  if (child.fd < 0) return false;
  const int fd = ::openat(child.fd, "..", kOpenFlags);
  if (fd < 0) return false;
  struct stat info {};
  if (::fstat(fd, &info) != 0 || info.st_dev != parent.device || info.st_ino != parent.inode) {
    ::close(fd);
    return false;
  }
  parent.fd = fd;
  ++openFrames_;
  return true;
}

void Scan::work() {
  Walker walker(*this);
  std::unique_lock lock(mutex_);
  for (;;) {
    if (!queue_.empty()) {
      const std::size_t index = queue_.front();
      queue_.pop_front();
      Task& task = *tasks_[index];
      ++running_;
      updateHungry();
      lock.unlock();
      walker.run(task);
      lock.lock();
      task.done = true;
      --running_;
      advance();
      if (waiting_ > 0) wake(true); // a waiting thread may be the last one walking now
      if (queue_.empty() && running_ == 0) {
        finished_ = true;
        wake(true);
      }
      continue;
    }
    if (finished_) return;
    ++idle_;
    updateHungry();
    const std::uint32_t seen = wakeups_.load(std::memory_order_relaxed);
    lock.unlock();
    wakeups_.wait(seen, std::memory_order_relaxed);
    lock.lock();
    --idle_;
    updateHungry();
  }
}

} // namespace

void insertLargestFile(LargestFileEntry entry, std::vector<LargestFileEntry>& list) {
  offerBySize(std::move(entry), list);
}

DiskAnalyzerScanSummary DiskAnalyzerService::scan(const std::string& path, FolderSink& sink,
                                                  const std::function<void(const std::string&)>& onProgress) const {
  const auto start = Clock::now();
  const std::string absolute = platform::normalisedAbsolutePath(path);
  onProgress("Starting scan…");

  Task root;
  root.path = absolute == "/" ? std::string() : absolute;
  root.name = absolute == "/" ? absolute : absolute.substr(absolute.rfind('/') + 1);
  root.kind = kMaxDepth > 0 ? FrameKind::node : FrameKind::limit;
  // The folder asked for is opened even through a link; nothing below it is.
  root.fd = ::open(absolute.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK);
  struct stat info {};
  if (root.fd >= 0 && ::fstat(root.fd, &info) != 0) {
    ::close(root.fd);
    root.fd = -1;
  }
  root.device = info.st_dev;
  root.inode = info.st_ino;

  Scan scan(sink, onProgress, options_, info.st_dev, root.path);
  scan.addRoot(std::move(root));
  unsigned workers = options_.workers;
  if (workers == 0) workers = std::clamp(std::thread::hardware_concurrency(), 1u, kMaxAutomaticWorkers);
  {
    std::vector<std::jthread> helpers;
    for (unsigned i = 1; i < workers; ++i) helpers.emplace_back([&scan] { scan.work(); });
    scan.work();
  }

  DiskAnalyzerScanSummary summary;
  summary.totalSize = scan.totalSize();
  summary.fileCount = scan.fileCount();
  summary.directoryCount = scan.directoryCount();
  for (Candidate& candidate : scan.largest()) {
    LargestFileEntry entry;
    entry.id = core::makeUuid();
    entry.name = candidate.path.substr(candidate.nameOffset);
    entry.path = std::move(candidate.path);
    entry.size = candidate.size;
    summary.largestFiles.push_back(std::move(entry));
  }
  summary.duration = std::chrono::duration<double>(Clock::now() - start).count();
  onProgress("Scan complete: " + std::to_string(summary.fileCount) + " files, " +
             std::to_string(summary.directoryCount) + " dirs");
  return summary;
}

DiskAnalyzerScanResult DiskAnalyzerService::scanDirectory(
    const std::string& path, const std::function<void(const std::string&)>& onProgress) const {
  FolderTreeBuilder tree;
  DiskAnalyzerScanSummary summary = scan(path, tree, onProgress);
  DiskAnalyzerScanResult result;
  result.root = tree.takeRoot();
  result.totalSize = summary.totalSize;
  result.fileCount = summary.fileCount;
  result.directoryCount = summary.directoryCount;
  result.duration = summary.duration;
  result.largestFiles = std::move(summary.largestFiles);
  return result;
}

} // namespace halcyra::analyzer
