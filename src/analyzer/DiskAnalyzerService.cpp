#include "analyzer/DiskAnalyzerService.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <filesystem>
#include <mutex>
#include <thread>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/Uuid.h"
#include "platform/SystemPaths.h"

// How the walk is organised.
//
// The result is defined by one depth-first walk in listing order: the directory count, the
// file count at each status text and the order among equal-sized largest files all depend on
// that order. To use several threads without changing any of it, the tree is cut into tasks.
// A task is a sub-tree walked depth-first by one thread; a sub-folder it hands away becomes a
// task of its own and leaves a placeholder child and a marker in the task's log at the place
// where the sequential walk would have entered it. Afterwards:
//   - the logs are replayed in sequential order (following markers into the tasks they name)
//     to produce the status texts, live, as far as the tasks walked so far allow;
//   - placeholders are replaced by the trees of their tasks, sizes added up the way, and
//     folders that end up empty dropped;
//   - every file carries its index within its task; with the file counts of the tasks the
//     replay turns it into its index in the sequential walk, which orders the candidates for
//     the list of largest files exactly as a single walk would have met them.

namespace halcyra::analyzer {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kOpenFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;
// Directory descriptors one walker keeps open; deeper folders are reached again through "..".
constexpr int kMaxOpenFrames = 16;
constexpr unsigned kMaxAutomaticWorkers = 4;

// ----- Listings ------------------------------------------------------------------------------

enum class EntryType : std::uint8_t { directory, file, unknown, other, delegated };

// A listing is kept in the frame's buffer as records: this header, then the name with its NUL,
// padded to 8 bytes. A sub-folder handed to another task is marked in place (type delegated,
// `task` its index), so the walk meets the marker exactly where it would have entered it.
struct EntryHeader {
  std::uint64_t task = 0;
  std::uint16_t length = 0;
  EntryType type = EntryType::other;
};
constexpr std::size_t kHeaderSize = (sizeof(EntryHeader) + 7) & ~std::size_t{7};

EntryHeader headerAt(const std::vector<char>& buffer, std::size_t position) {
  EntryHeader header;
  std::memcpy(&header, buffer.data() + position, sizeof header);
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

// node: a folder above the depth limit, a DirectoryNode with children.
// limit: the folder at the depth limit, a node without children sized by everything below it.
// fast: a folder below the limit, which only adds the sizes of its files.
enum class FrameKind : std::uint8_t { node, limit, fast };

// A candidate for the list of largest files; `order` is its index among the task's own files.
struct Candidate {
  std::int64_t size = 0;
  std::int64_t order = 0;
  std::string path;
  std::size_t nameOffset = 0;
};

// A folder entered (child < 0) or a sub-folder handed to task `child`, with the number of the
// task's own files met before it.
struct LogEvent {
  std::int64_t filesBefore = 0;
  std::int64_t child = -1;
  std::uint32_t nameOffset = 0;
  std::uint32_t nameLength = 0;
};

struct Marker {
  std::int64_t filesBefore = 0;
  std::size_t task = 0;
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

  // What the walk found: its tree (a pseudo node for a fast task, whose size is the total),
  // its own files, its candidates, and the sub-folders it handed away.
  DirectoryNode root;
  std::int64_t files = 0;
  std::vector<Candidate> largest;
  std::vector<Marker> markers;

  // Guarded by Scan::mutex.
  std::vector<LogEvent> log;
  std::string logNames;
  std::size_t replayed = 0;
  bool done = false;
  std::int64_t firstFile = 0;  // sequential index of the first file met in this task
  std::int64_t totalFiles = 0; // files of this task and of those it handed away
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
  Scan(const std::function<void(const std::string&)>& onProgress, bool splitEveryFolder, dev_t rootDevice)
      : onProgress_(onProgress), splitEveryFolder_(splitEveryFolder), rootDevice_(rootDevice) {}

  dev_t rootDevice() const { return rootDevice_; }
  bool wantsWork() const { return splitEveryFolder_ || hungry_.load(std::memory_order_relaxed); }

  std::size_t addRoot(Task task) {
    tasks_.push_back(std::move(task));
    queue_.push_back(0);
    cursor_.push_back({0, 0});
    return 0;
  }

  void work();

  void logEntered(Task& task, std::string_view name) {
    std::lock_guard lock(mutex_);
    LogEvent event;
    event.filesBefore = task.files;
    event.nameOffset = static_cast<std::uint32_t>(task.logNames.size());
    event.nameLength = static_cast<std::uint32_t>(name.size());
    task.logNames.append(name);
    task.log.push_back(event);
    advance();
  }

  void logHandedAway(Task& task, std::size_t child) {
    task.markers.push_back({task.files, child});
    std::lock_guard lock(mutex_);
    LogEvent event;
    event.filesBefore = task.files;
    event.child = static_cast<std::int64_t>(child);
    task.log.push_back(event);
    advance();
  }

  std::size_t handAway(Task task) {
    std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
    const std::size_t index = tasks_.size() - 1;
    queue_.push_back(index);
    updateHungry();
    wake_.notify_one();
    return index;
  }

  // After every thread has returned from work().
  std::deque<Task>& tasks() { return tasks_; }
  std::int64_t directoryCount() const { return directories_; }

private:
  struct CursorFrame {
    std::size_t task;
    std::int64_t childFiles; // files of the handed-away tasks replayed so far
  };

  void updateHungry() { hungry_.store(idle_ > 0 && queue_.empty(), std::memory_order_relaxed); }

  // Replays the logs in sequential order as far as they go. Caller holds the mutex.
  void advance() {
    while (!cursor_.empty()) {
      const std::size_t index = cursor_.back().task;
      Task& task = tasks_[index];
      if (task.replayed < task.log.size()) {
        const LogEvent event = task.log[task.replayed++];
        const std::int64_t filesNow = task.firstFile + cursor_.back().childFiles + event.filesBefore;
        if (event.child < 0) {
          ++directories_;
          if (directories_ % DiskAnalyzerService::kStatusInterval == 0) {
            onProgress_("Scanning: " + task.logNames.substr(event.nameOffset, event.nameLength) + " (" +
                        std::to_string(filesNow) + " files found)");
          }
        } else {
          tasks_[static_cast<std::size_t>(event.child)].firstFile = filesNow;
          cursor_.push_back({static_cast<std::size_t>(event.child), 0});
        }
        continue;
      }
      // Caught up: what was replayed is not needed again.
      task.log.clear();
      task.logNames.clear();
      task.replayed = 0;
      if (!task.done) return;
      task.totalFiles = task.files + cursor_.back().childFiles;
      cursor_.pop_back();
      if (!cursor_.empty()) cursor_.back().childFiles += task.totalFiles;
    }
  }

  const std::function<void(const std::string&)>& onProgress_;
  const bool splitEveryFolder_;
  const dev_t rootDevice_;

  std::mutex mutex_;
  std::condition_variable wake_;
  std::deque<Task> tasks_; // a deque: tasks keep their address while others are added
  std::deque<std::size_t> queue_;
  unsigned idle_ = 0;
  unsigned running_ = 0;
  bool finished_ = false;
  std::atomic<bool> hungry_{false};
  std::vector<CursorFrame> cursor_;
  std::int64_t directories_ = 0;
};

// ----- One thread's walk ---------------------------------------------------------------------

struct Frame {
  int fd = -1; // -1 while closed to save descriptors; the listing is then wholly in `buffer`
  dev_t device = 0;
  ino_t inode = 0;
  std::vector<char> buffer;
  std::size_t position = 0;
  bool complete = false; // the whole rest of the listing is in the buffer
  FrameKind kind = FrameKind::node;
  int depth = 0;
  std::size_t pathLength = 0;
  DirectoryNode node;         // node and limit frames, and the root of a fast task
  std::int64_t total = 0;     // bytes: files met here plus what the sub-folders brought
  std::int64_t fileCount = 0; // files directly inside
  bool holdsPlaceholder = false;
};

class Walker {
public:
  explicit Walker(Scan& scan) : scan_(scan), scratch_(4096) {}

  void run(Task& task);

private:
  bool pushRoot();
  void descend(const char* name, EntryType type);
  bool pushFrame(int fd, const struct stat& info, FrameKind kind, const char* name);
  void popFrame();
  void countFile(const char* name, std::int64_t size);
  void placeholder(std::size_t child);
  bool nextEntry(EntryHeader& header, const char*& name);
  bool handAwayWork();
  void closeShallowestFrame();
  bool reopenParent(Frame& child, Frame& parent);

  Frame& top() { return frames_[depth_ - 1]; }

  Scan& scan_;
  Task* task_ = nullptr;
  std::vector<Frame> frames_; // frames_[0, depth_) is the stack; the rest is kept for reuse
  std::size_t depth_ = 0;
  std::size_t regionRoot_ = 0; // the frame that holds placeholders of a fast region
  int openFrames_ = 0;
  bool searchAllowed_ = true;
  std::string path_; // always the path of the top frame
  std::vector<std::uint64_t> scratch_;
};

void Walker::run(Task& task) {
  task_ = &task;
  depth_ = 0;
  openFrames_ = 0;
  searchAllowed_ = true;
  path_ = task.path;
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
    case EntryType::delegated: placeholder(static_cast<std::size_t>(header.task)); break;
    case EntryType::other: break;
    }
  }
}

// The task's own folder: a node that cannot be listed is marked, a folder at or below the
// depth limit that cannot be opened simply weighs nothing.
bool Walker::pushRoot() {
  Task& task = *task_;
  task.root = DirectoryNode{};
  task.root.name = task.name;
  task.root.path = task.path.empty() ? "/" : task.path;
  struct stat info {};
  info.st_dev = task.device;
  info.st_ino = task.inode;
  if (task.fd >= 0 && pushFrame(task.fd, info, task.kind, nullptr)) return true;
  task.fd = -1;
  if (task.kind == FrameKind::node) task.root.isPermissionDenied = true;
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
  struct stat info {};
  if (fd >= 0 && ::fstat(fd, &info) != 0) {
    ::close(fd);
    return;
  }
  if (fd >= 0 && info.st_dev != scan_.rootDevice()) {
    ::close(fd); // another file system mounted here: not part of this scan
    return;
  }
  if (kind != FrameKind::fast) scan_.logEntered(*task_, name);
  // A folder that cannot be listed ends here: a node of size 0 (marked, for a node), which the
  // parent leaves out like an empty folder.
  if (fd < 0) return;
  pushFrame(fd, info, kind, name);
}

// Makes `fd` the top frame and reads the first part of its listing; on failure closes `fd`.
bool Walker::pushFrame(int fd, const struct stat& info, FrameKind kind, const char* name) {
  if (frames_.size() == depth_) frames_.emplace_back();
  Frame& frame = frames_[depth_];
  frame.buffer.clear();
  frame.position = 0;
  frame.complete = false;
  if (readListing(fd, frame.buffer, scratch_) == ReadStatus::failed) {
    ::close(fd);
    return false;
  }
  if (name != nullptr) {
    path_.push_back('/');
    path_.append(name);
  }
  frame.fd = fd;
  frame.device = info.st_dev;
  frame.inode = info.st_ino;
  frame.kind = kind;
  frame.depth = depth_ == 0 ? task_->depth : frames_[depth_ - 1].depth + 1;
  frame.pathLength = path_.size();
  frame.total = 0;
  frame.fileCount = 0;
  frame.holdsPlaceholder = false;
  frame.node = DirectoryNode{};
  if (kind != FrameKind::fast || depth_ == 0) {
    frame.node.name = name != nullptr ? std::string(name) : task_->root.name;
    frame.node.path = name != nullptr ? path_ : task_->root.path;
  }
  if (kind == FrameKind::limit || (kind == FrameKind::fast && depth_ == 0)) regionRoot_ = depth_;
  ++depth_;
  ++openFrames_;
  searchAllowed_ = true;
  if (openFrames_ > kMaxOpenFrames) closeShallowestFrame();
  return true;
}

void Walker::popFrame() {
  Frame& frame = top();
  if (depth_ > 1) {
    Frame& parent = frames_[depth_ - 2];
    if (parent.fd < 0 && !reopenParent(frame, parent)) {
      // The folder we came from is gone or was moved: its remaining entries are not read.
      parent.buffer.clear();
      parent.position = 0;
      parent.complete = true;
    }
  }
  if (frame.fd >= 0) {
    ::close(frame.fd);
    --openFrames_;
  }
  frame.fd = -1;
  if (frame.kind != FrameKind::fast || depth_ == 1) {
    frame.node.size = frame.total;
    frame.node.fileCount = frame.kind == FrameKind::node ? frame.fileCount : 0;
    frame.node.children.shrink_to_fit(); // the tree is kept to the end: no spare room in it
  }
  if (frame.buffer.capacity() > 256 * 1024) std::vector<char>().swap(frame.buffer);

  --depth_;
  if (depth_ == 0) {
    task_->root = std::move(frame.node);
    return;
  }
  Frame& parent = top();
  path_.resize(parent.pathLength);
  if (frame.kind == FrameKind::fast) {
    parent.total += frame.total;
    return;
  }
  // A sub-folder that came to nothing vanishes, unless part of it is still being walked
  // elsewhere; the assembly drops it later if it stays empty.
  if (frame.node.size >= 1 || frame.holdsPlaceholder) {
    parent.total += frame.node.size;
    parent.holdsPlaceholder = parent.holdsPlaceholder || frame.holdsPlaceholder;
    parent.node.children.push_back(std::move(frame.node));
  }
}

void Walker::countFile(const char* name, std::int64_t size) {
  Task& task = *task_;
  Frame& frame = top();
  const std::int64_t order = task.files++;
  frame.total += size;
  if (frame.kind == FrameKind::node) ++frame.fileCount;
  // One comparison rejects almost every file; the path is built only for a candidate.
  if (task.largest.size() == kLargestFileCount && size <= task.largest.back().size) return;
  Candidate candidate;
  candidate.size = size;
  candidate.order = order;
  candidate.path.reserve(path_.size() + 1 + std::strlen(name));
  candidate.path = path_;
  candidate.path.push_back('/');
  candidate.nameOffset = candidate.path.size();
  candidate.path.append(name);
  offerBySize(std::move(candidate), task.largest);
}

// Where the sequential walk would enter a folder that another task walks: leave a placeholder
// child (its size tells the task) and a marker in the log.
void Walker::placeholder(std::size_t child) {
  Frame& frame = top();
  Frame& holder = frame.kind == FrameKind::node ? frame : frames_[regionRoot_];
  DirectoryNode mark;
  mark.size = -static_cast<std::int64_t>(child) - 1;
  holder.node.children.push_back(std::move(mark));
  holder.holdsPlaceholder = true;
  scan_.logHandedAway(*task_, child);
}

bool Walker::nextEntry(EntryHeader& header, const char*& name) {
  Frame& frame = top();
  while (frame.position >= frame.buffer.size()) {
    if (frame.complete || frame.fd < 0) return false;
    frame.buffer.clear();
    frame.position = 0;
    const ReadStatus status = readListing(frame.fd, frame.buffer, scratch_);
    // A listing that breaks off keeps what was read before.
    if (status != ReadStatus::more) frame.complete = true;
    searchAllowed_ = true;
  }
  header = headerAt(frame.buffer, frame.position);
  name = frame.buffer.data() + frame.position + kHeaderSize;
  frame.position += header.length;
  return true;
}

// Hands the shallowest sub-folder not yet entered to the queue: the shallower, the more work
// it is likely to carry. False when there was none in view.
bool Walker::handAwayWork() {
  for (std::size_t i = 0; i < depth_; ++i) {
    Frame& frame = frames_[i];
    if (frame.fd < 0) continue;
    for (std::size_t position = frame.position; position < frame.buffer.size();) {
      EntryHeader header = headerAt(frame.buffer, position);
      const std::size_t at = position;
      position += header.length;
      if (header.type != EntryType::directory) continue;
      const char* name = frame.buffer.data() + at + kHeaderSize;
      const int fd = ::openat(frame.fd, name, kOpenFlags);
      if (fd < 0) continue; // left to the walk, which marks it
      struct stat info {};
      if (::fstat(fd, &info) != 0 || info.st_dev != scan_.rootDevice()) {
        ::close(fd);
        continue;
      }
      Task child;
      child.path = path_.substr(0, frame.pathLength) + "/" + name;
      child.name = name;
      child.depth = frame.depth + 1;
      child.kind = frame.kind != FrameKind::node           ? FrameKind::fast
                   : child.depth >= DiskAnalyzerService::kMaxDepth ? FrameKind::limit
                                                                   : FrameKind::node;
      child.fd = fd;
      child.device = info.st_dev;
      child.inode = info.st_ino;
      header.type = EntryType::delegated;
      header.task = scan_.handAway(std::move(child));
      std::memcpy(frame.buffer.data() + at, &header, sizeof header);
      return true;
    }
  }
  return false;
}

// Keeps descriptors bounded on deep trees: the shallowest open folder reads the rest of its
// listing into memory and lets its descriptor go; it is reopened through ".." on the way back.
void Walker::closeShallowestFrame() {
  for (std::size_t i = 0; i + 2 < depth_; ++i) {
    Frame& frame = frames_[i];
    if (frame.fd < 0) continue;
    frame.buffer.erase(frame.buffer.begin(), frame.buffer.begin() + static_cast<std::ptrdiff_t>(frame.position));
    frame.position = 0;
    while (!frame.complete) {
      if (readListing(frame.fd, frame.buffer, scratch_) != ReadStatus::more) frame.complete = true;
    }
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
      Task& task = tasks_[index];
      ++running_;
      updateHungry();
      lock.unlock();
      walker.run(task);
      lock.lock();
      task.done = true;
      --running_;
      advance();
      if (queue_.empty() && running_ == 0) {
        finished_ = true;
        wake_.notify_all();
      }
      continue;
    }
    if (finished_) return;
    ++idle_;
    updateHungry();
    wake_.wait(lock);
    --idle_;
    updateHungry();
  }
}

// ----- Assembly ------------------------------------------------------------------------------

// Puts the trees of handed-away tasks in place of their placeholders and adds their sizes up
// the way; returns what `node` grew by. Tasks are resolved from the last to the first, so a
// task's tree is complete before its parent takes it, and only the nodes a task built itself
// (at most kMaxDepth + 1 levels) are descended here.
std::int64_t resolvePlaceholders(DirectoryNode& node, std::deque<Task>& tasks) {
  std::int64_t added = 0;
  for (DirectoryNode& child : node.children) {
    if (child.size < 0) {
      Task& task = tasks[static_cast<std::size_t>(-(child.size + 1))];
      if (task.kind == FrameKind::fast) {
        added += task.root.size; // below the depth limit: only the bytes count
        child.size = 0;
      } else {
        child = std::move(task.root);
        added += child.size;
      }
    } else {
      added += resolvePlaceholders(child, tasks);
    }
  }
  node.size += added;
  std::erase_if(node.children, [](const DirectoryNode& child) { return child.size < 1; });
  return added;
}

void assignIds(DirectoryNode& node) {
  node.id = core::makeUuid();
  for (DirectoryNode& child : node.children) assignIds(child);
}

std::vector<LargestFileEntry> mergeLargestFiles(std::deque<Task>& tasks) {
  struct Sequenced {
    std::int64_t index;
    Candidate* candidate;
  };
  std::vector<Sequenced> all;
  for (Task& task : tasks) {
    // A file's index in the sequential walk: the task's first index, plus its own index, plus
    // the files of every sub-folder handed away before it.
    std::vector<std::int64_t> before(task.markers.size() + 1, 0);
    for (std::size_t i = 0; i < task.markers.size(); ++i) {
      before[i + 1] = before[i] + tasks[task.markers[i].task].totalFiles;
    }
    for (Candidate& candidate : task.largest) {
      const auto passed = std::upper_bound(task.markers.begin(), task.markers.end(), candidate.order,
                                           [](std::int64_t order, const Marker& marker) {
                                             return order < marker.filesBefore;
                                           }) -
                          task.markers.begin();
      all.push_back({task.firstFile + candidate.order + before[static_cast<std::size_t>(passed)], &candidate});
    }
  }
  std::sort(all.begin(), all.end(), [](const Sequenced& a, const Sequenced& b) { return a.index < b.index; });
  std::vector<LargestFileEntry> list;
  for (const Sequenced& item : all) {
    LargestFileEntry entry;
    entry.size = item.candidate->size;
    entry.name = item.candidate->path.substr(item.candidate->nameOffset);
    entry.path = std::move(item.candidate->path);
    insertLargestFile(std::move(entry), list);
  }
  for (LargestFileEntry& entry : list) entry.id = core::makeUuid();
  return list;
}


} // namespace

void insertLargestFile(LargestFileEntry entry, std::vector<LargestFileEntry>& list) {
  offerBySize(std::move(entry), list);
}

DiskAnalyzerScanResult DiskAnalyzerService::scanDirectory(
    const std::string& path, const std::function<void(const std::string&)>& onProgress) const {
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

  Scan scan(onProgress, options_.splitEveryFolder, info.st_dev);
  scan.addRoot(std::move(root));
  unsigned workers = options_.workers;
  if (workers == 0) workers = std::clamp(std::thread::hardware_concurrency(), 1u, kMaxAutomaticWorkers);
  {
    std::vector<std::jthread> helpers;
    for (unsigned i = 1; i < workers; ++i) helpers.emplace_back([&scan] { scan.work(); });
    scan.work();
  }

  std::deque<Task>& tasks = scan.tasks();
  for (std::size_t i = tasks.size(); i-- > 0;) resolvePlaceholders(tasks[i].root, tasks);

  DiskAnalyzerScanResult result;
  result.fileCount = tasks.front().totalFiles;
  result.directoryCount = scan.directoryCount();
  result.largestFiles = mergeLargestFiles(tasks);
  result.root = std::move(tasks.front().root);
  result.totalSize = result.root.size;
  assignIds(result.root);
  result.duration = std::chrono::duration<double>(Clock::now() - start).count();
  onProgress("Scan complete: " + std::to_string(result.fileCount) + " files, " +
             std::to_string(result.directoryCount) + " dirs");
  return result;
}

} // namespace halcyra::analyzer
