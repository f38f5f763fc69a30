#include "platform/TreeSize.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <dirent.h>
#include <fcntl.h>
#include <mutex>
#include <optional>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "platform/MountPoints.h"

namespace halcyra::platform {
namespace {

// O_NONBLOCK: a FIFO that replaced a folder between listing and opening must not block the
// open; O_DIRECTORY then refuses it.
constexpr int kDirectoryFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;
// Folders up to this many levels below a measured path are remembered and looked up. The places
// that several targets and scanners reach lie within a level or two of each other; deeper
// folders count only as part of their ancestors' totals, which keeps the memory small and
// spares them the fstat that the identity costs.
constexpr int kRememberedDepth = 2;
// The frames nearest the top of a walk keep their descriptor; deeper ones are climbed back to
// through "..", so a walk of any depth holds a bounded number of descriptors.
constexpr std::size_t kHeldDescriptors = 12;
// Sub-folders waiting for an idle worker, at most; each holds an open descriptor.
constexpr std::size_t kMaxSharedJobs = 4;
constexpr std::size_t kListingBuffer = 64 * 1024;

struct FolderKey {
  dev_t device = 0;
  ino_t inode = 0;
  bool operator==(const FolderKey&) const = default;
};

struct FolderKeyHash {
  std::size_t operator()(const FolderKey& key) const noexcept {
    return std::hash<std::uint64_t>{}((static_cast<std::uint64_t>(key.inode) * 0x9E3779B97F4A7C15ull) ^
                                      static_cast<std::uint64_t>(key.device));
  }
};

using FolderSizes = std::unordered_map<FolderKey, std::int64_t, FolderKeyHash>;

FolderKey keyOf(const struct stat& info) { return FolderKey{info.st_dev, info.st_ino}; }

bool isDotOrDotDot(const char* name) {
  return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

// Calls onEntry(name, d_type) for every entry of the open folder `fd`; the descriptor stays open.
template <typename OnEntry>
void listEntries(int fd, std::vector<char>& buffer, OnEntry&& onEntry) {
#if defined(__linux__)
  for (;;) {
    const ssize_t read = ::getdents64(fd, buffer.data(), buffer.size());
    if (read <= 0) return;
    for (ssize_t offset = 0; offset < read;) {
      const auto* entry = reinterpret_cast<const struct dirent64*>(buffer.data() + offset);
      offset += entry->d_reclen;
      onEntry(static_cast<const char*>(entry->d_name), entry->d_type);
    }
  }
#else
  (void)buffer;
  const int copy = ::dup(fd);
  if (copy < 0) return;
  DIR* dir = ::fdopendir(copy);
  if (dir == nullptr) {
    ::close(copy);
    return;
  }
  while (const dirent* entry = ::readdir(dir)) onEntry(static_cast<const char*>(entry->d_name), entry->d_type);
  ::closedir(dir);
#endif
}

// A folder waiting to be walked: handed from a busy worker to an idle one.
struct Job {
  int fd = -1;
  std::size_t slot = 0; // which measured path it belongs to
  int depth = 0;        // levels below that path
  std::optional<FolderKey> key; // known for remembered depths only
};

} // namespace

struct TreeSizer::State {
  struct Batch {
    const std::vector<std::string>& paths;
    std::vector<std::atomic<std::int64_t>> results;
    std::vector<std::optional<FolderKey>> walkedRoots;
    std::size_t nextPath = 0;
    explicit Batch(const std::vector<std::string>& list)
        : paths(list), results(list.size()), walkedRoots(list.size()) {}
  };

  class Worker;

  TreeSizeOptions options;
  unsigned threads = 1;
  FolderSizes known; // written only between batches, read by all workers during one

  std::mutex mutex;
  std::condition_variable batchBegun; // helpers wait here for a batch or the end
  std::condition_variable work;       // workers of a batch wait here for a job or its end
  std::condition_variable helpersLeft;
  std::vector<std::thread> helpers;
  bool stopping = false;
  Batch* batch = nullptr;
  std::uint64_t generation = 0;
  int participants = 0;
  int busy = 0;
  std::deque<Job> jobs;
  std::atomic<int> waiting{0};
  std::atomic<std::size_t> queued{0};
  std::vector<std::pair<FolderKey, std::int64_t>> found;
  std::vector<char> callerBuffer;

  void helperLoop();
  void participate(std::unique_lock<std::mutex>& lock, Worker& worker);
  bool wantsWork() const {
    return waiting.load(std::memory_order_relaxed) > 0 && queued.load(std::memory_order_relaxed) < kMaxSharedJobs;
  }
  bool offer(const Job& job);
};

// The walk of one worker during one batch.
class TreeSizer::State::Worker {
public:
  Worker(State& state, Batch& batch, std::vector<char>& buffer) : state_(state), batch_(batch), buffer_(buffer) {}

  void measurePath(std::size_t slot);
  std::int64_t walk(const Job& job);
  std::vector<std::pair<FolderKey, std::int64_t>>& found() { return found_; }

private:
  struct Frame {
    int fd = -1;
    std::optional<FolderKey> key; // taken at remembered depths, and before giving up the descriptor
    int depth = 0;
    std::int64_t subtotal = 0;
    bool complete = true; // false when part of the subtree went to another worker or was cut short
    std::vector<std::string> pending; // sub-folders still to visit, taken from the back
  };

  void list(Frame& frame);
  std::optional<std::int64_t> knownSize(const FolderKey& key) const {
    const auto it = state_.known.find(key);
    if (it == state_.known.end()) return std::nullopt;
    return it->second;
  }
  static std::int64_t abandon(std::vector<Frame>& stack);

  State& state_;
  Batch& batch_;
  std::vector<char>& buffer_;
  std::vector<std::pair<FolderKey, std::int64_t>> found_;
};

void TreeSizer::State::Worker::list(Frame& frame) {
  const bool skipHidden = state_.options.skipHidden;
  listEntries(frame.fd, buffer_, [&](const char* name, unsigned char type) {
    if (isDotOrDotDot(name)) return;
    if (skipHidden && name[0] == '.') return;
    if (type == DT_DIR) {
      frame.pending.emplace_back(name);
      return;
    }
    if (type != DT_REG && type != DT_UNKNOWN) return; // links, FIFOs, sockets, devices
    struct stat info {};
    if (::fstatat(frame.fd, name, &info, AT_SYMLINK_NOFOLLOW) != 0) return; // vanished
    if (S_ISREG(info.st_mode)) frame.subtotal += info.st_size;
    else if (S_ISDIR(info.st_mode)) frame.pending.emplace_back(name);
  });
}

std::int64_t TreeSizer::State::Worker::abandon(std::vector<Frame>& stack) {
  std::int64_t total = 0;
  for (auto& frame : stack) {
    total += frame.subtotal;
    if (frame.fd >= 0) ::close(frame.fd);
  }
  stack.clear();
  return total;
}

std::int64_t TreeSizer::State::Worker::walk(const Job& job) {
  std::vector<Frame> stack;
  stack.push_back(Frame{job.fd, job.key, job.depth, 0, true, {}});
  list(stack.back());
  for (;;) {
    Frame& top = stack.back();
    if (!top.pending.empty()) {
      const std::string name = std::move(top.pending.back());
      top.pending.pop_back();
      const int child = ::openat(top.fd, name.c_str(), kDirectoryFlags);
      if (child < 0) continue; // unreadable or gone: counts nothing
      const int depth = top.depth + 1;
      // A mounted volume or a folder mounted here again is not part of the measured tree.
      EntryStatus status;
      if (!statEntry(child, "", status) || status.isMountRoot) {
        ::close(child);
        continue;
      }
      std::optional<FolderKey> key;
      if (depth <= kRememberedDepth) {
        key = keyOf(status.info);
        if (const auto size = knownSize(*key)) {
          top.subtotal += *size;
          ::close(child);
          continue;
        }
      }
      if (!top.pending.empty() && state_.wantsWork() && state_.offer(Job{child, job.slot, depth, key})) {
        top.complete = false;
        continue;
      }
      if (stack.size() >= kHeldDescriptors) {
        // The walk climbs back here through "..", and checks it arrives where it left.
        struct stat info {};
        if (!top.key && ::fstat(top.fd, &info) == 0) top.key = keyOf(info);
        ::close(top.fd);
        top.fd = -1;
      }
      stack.push_back(Frame{child, key, depth, 0, true, {}});
      list(stack.back());
      continue;
    }

    Frame done = std::move(stack.back());
    stack.pop_back();
    if (done.complete && done.depth > 0 && done.depth <= kRememberedDepth && done.key) {
      found_.emplace_back(*done.key, done.subtotal);
    }
    if (stack.empty()) {
      ::close(done.fd);
      return done.subtotal;
    }
    Frame& parent = stack.back();
    parent.subtotal += done.subtotal;
    parent.complete = parent.complete && done.complete;
    if (parent.fd < 0) {
      // Climb back through "..", and make sure it is still the folder we came from: a folder
      // moved away during the walk ends the walk instead of measuring somewhere else.
      const int up = ::openat(done.fd, "..", kDirectoryFlags);
      struct stat info {};
      const bool same = up >= 0 && ::fstat(up, &info) == 0 && parent.key && keyOf(info) == *parent.key;
      ::close(done.fd);
      if (!same) {
        if (up >= 0) ::close(up);
        return abandon(stack);
      }
      parent.fd = up;
    } else {
      ::close(done.fd);
    }
  }
}

void TreeSizer::State::Worker::measurePath(std::size_t slot) {
  const std::string& path = batch_.paths[slot];
  struct stat info {};
  if (::lstat(path.c_str(), &info) != 0) return;
  if (S_ISREG(info.st_mode)) {
    batch_.results[slot] += info.st_size;
    return;
  }
  if (!S_ISDIR(info.st_mode)) return;
  const int fd = ::open(path.c_str(), kDirectoryFlags);
  if (fd < 0) return;
  // A mount point is never removed, so it measures nothing.
  EntryStatus status;
  if (!statEntry(fd, "", status) || status.isMountRoot) {
    ::close(fd);
    return;
  }
  const FolderKey key = keyOf(status.info);
  if (const auto size = knownSize(key)) {
    ::close(fd);
    batch_.results[slot] += *size;
    return;
  }
  batch_.walkedRoots[slot] = key;
  batch_.results[slot] += walk(Job{fd, slot, 0, key});
}

bool TreeSizer::State::offer(const Job& job) {
  {
    std::lock_guard lock(mutex);
    if (waiting.load() == 0 || jobs.size() >= kMaxSharedJobs) return false;
    jobs.push_back(job);
    queued.store(jobs.size());
  }
  work.notify_one();
  return true;
}

void TreeSizer::State::participate(std::unique_lock<std::mutex>& lock, Worker& worker) {
  Batch& current = *batch;
  for (;;) {
    if (!jobs.empty()) {
      const Job job = jobs.front();
      jobs.pop_front();
      queued.store(jobs.size());
      ++busy;
      lock.unlock();
      const std::int64_t size = worker.walk(job);
      current.results[job.slot] += size;
      lock.lock();
      --busy;
      continue;
    }
    if (current.nextPath < current.paths.size()) {
      const std::size_t slot = current.nextPath++;
      ++busy;
      lock.unlock();
      worker.measurePath(slot);
      lock.lock();
      --busy;
      continue;
    }
    if (busy == 0) {
      work.notify_all();
      break;
    }
    waiting.fetch_add(1);
    work.wait(lock);
    waiting.fetch_sub(1);
  }
  found.insert(found.end(), worker.found().begin(), worker.found().end());
}

void TreeSizer::State::helperLoop() {
  std::vector<char> buffer(kListingBuffer);
  std::uint64_t seen = 0;
  std::unique_lock lock(mutex);
  for (;;) {
    batchBegun.wait(lock, [&] { return stopping || (batch != nullptr && generation != seen); });
    if (stopping) return;
    seen = generation;
    ++participants;
    Worker worker(*this, *batch, buffer);
    participate(lock, worker);
    --participants;
    helpersLeft.notify_all();
  }
}

TreeSizer::TreeSizer(unsigned threads, TreeSizeOptions options) : state_(std::make_unique<State>()) {
  state_->options = options;
  state_->threads = threads == 0 ? 1 : threads;
  state_->callerBuffer.resize(kListingBuffer);
}

TreeSizer::~TreeSizer() {
  {
    std::lock_guard lock(state_->mutex);
    state_->stopping = true;
  }
  state_->batchBegun.notify_all();
  for (auto& helper : state_->helpers) helper.join();
}

std::int64_t TreeSizer::size(const std::string& path) { return sizes({path}).front(); }

std::vector<std::int64_t> TreeSizer::sizes(const std::vector<std::string>& paths) {
  State& state = *state_;
  // The same path twice in one batch is walked once.
  std::vector<std::string> unique;
  std::vector<std::size_t> slotOf(paths.size());
  {
    std::unordered_map<std::string_view, std::size_t> seen;
    for (std::size_t i = 0; i < paths.size(); ++i) {
      const auto [it, inserted] = seen.emplace(paths[i], unique.size());
      if (inserted) unique.push_back(paths[i]);
      slotOf[i] = it->second;
    }
  }

  State::Batch current(unique);
  if (state.helpers.empty() && state.threads > 1) {
    for (unsigned i = 1; i < state.threads; ++i) state.helpers.emplace_back([&state] { state.helperLoop(); });
  }
  {
    std::unique_lock lock(state.mutex);
    state.batch = &current;
    ++state.generation;
    state.busy = 0;
    state.found.clear();
    if (unique.size() > 0) state.batchBegun.notify_all();
    State::Worker worker(state, current, state.callerBuffer);
    state.participate(lock, worker);
    state.batch = nullptr; // a helper that wakes late stays out
    state.helpersLeft.wait(lock, [&] { return state.participants == 0; });
  }

  for (const auto& [key, size] : state.found) state.known.emplace(key, size);
  std::vector<std::int64_t> result(paths.size());
  for (std::size_t i = 0; i < unique.size(); ++i) {
    if (current.walkedRoots[i]) state.known[*current.walkedRoots[i]] = current.results[i].load();
  }
  for (std::size_t i = 0; i < paths.size(); ++i) result[i] = current.results[slotOf[i]].load();
  return result;
}

std::int64_t logicalTreeSize(const std::string& path, const TreeSizeOptions& options) {
  TreeSizer sizer(1, options);
  return sizer.size(path);
}

} // namespace halcyra::platform
