#include "duplicates/ContentHasher.h"

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <exception>
#include <functional>
#include <string_view>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <numeric>
#include <stdexcept>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>

// The SHA256_* context functions are marked deprecated in OpenSSL 3 but remain its API.
#define OPENSSL_SUPPRESS_DEPRECATED
#include <openssl/sha.h>

namespace halcyra::duplicates {
namespace {

// One buffer per worker, used in two halves: when files are compared, one half holds the
// first file's block and the other the block it is compared with.
constexpr std::size_t kBufferSize = std::size_t{256} << 10;
constexpr std::size_t kHalf = kBufferSize / 2;
// The probe reads this much at each end of a file: enough to tell most files of one size
// apart, little enough that a file it settles costs hardly more than its open.
constexpr std::int64_t kEdgeBlock = 1024;
// Up to this size a file is digested whole at once: reading it costs about what a probe
// and a later comparison would together.
constexpr std::int64_t kWholeReadLimit = 8192;
// Files a worker holds open at once while comparing; a larger run is compared in batches.
constexpr std::size_t kMaxOpenFiles = 16;

// A descriptor of a name that was a regular file when opened.
class RegularFile {
public:
  RegularFile() = default;
  RegularFile(const RegularFile&) = delete;
  RegularFile& operator=(const RegularFile&) = delete;
  RegularFile(RegularFile&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)), info_(other.info_) {}
  RegularFile& operator=(RegularFile&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    std::swap(info_, other.info_);
    return *this;
  }
  ~RegularFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }

  // O_NOFOLLOW: a name swapped for a link is not followed. O_NONBLOCK: a name swapped for a
  // FIFO cannot hang the open; fstat then turns it away before any read.
  bool open(const std::string& path) {
    descriptor_ = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (descriptor_ < 0) return false;
    return ::fstat(descriptor_, &info_) == 0 && S_ISREG(info_.st_mode);
  }

  int descriptor() const { return descriptor_; }
  const struct stat& info() const { return info_; }

private:
  int descriptor_ = -1;
  struct stat info_ {};
};

// SHA-256 through OpenSSL's one-shot context rather than EVP: an EVP fetch loads the default
// provider and its table of every algorithm name (about 2 MiB resident), while this context
// runs the same assembly (SHA extensions where the processor has them) with nothing loaded.
struct DigestContext {
  void begin() { SHA256_Init(&context); }
  void update(const unsigned char* data, std::size_t size) { SHA256_Update(&context, data, size); }
  // Continues from where `other` stands: the same bytes fed so far.
  void copyFrom(const DigestContext& other) { context = other.context; }
  Digest finish() {
    Digest digest{};
    SHA256_Final(digest.data(), &context);
    return digest;
  }

  SHA256_CTX context{};
};

// Feeds everything from the current offset to the end of the file; false on a read error.
bool feedToEnd(int descriptor, DigestContext& digest, unsigned char* buffer, std::size_t bufferSize) {
  for (;;) {
    const ssize_t count = ::read(descriptor, buffer, bufferSize);
    if (count < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    if (count == 0) return true;
    digest.update(buffer, static_cast<std::size_t>(count));
  }
}

// Reads `size` bytes from the current offset, fewer only at the end of the file; the count
// read, or -1 on an error.
ssize_t readBlock(int descriptor, unsigned char* buffer, std::size_t size) {
  std::size_t done = 0;
  while (done < size) {
    const ssize_t count = ::read(descriptor, buffer + done, size - done);
    if (count < 0) {
      if (errno == EINTR) continue;
      return -1;
    }
    if (count == 0) break;
    done += static_cast<std::size_t>(count);
  }
  return static_cast<ssize_t>(done);
}

// Reads up to `size` bytes at `offset`; the count read, or -1 on an error.
ssize_t readAt(int descriptor, unsigned char* buffer, std::size_t size, off_t offset) {
  std::size_t done = 0;
  while (done < size) {
    const ssize_t count = ::pread(descriptor, buffer + done, size - done, offset + static_cast<off_t>(done));
    if (count < 0) {
      if (errno == EINTR) continue;
      return -1;
    }
    if (count == 0) break;
    done += static_cast<std::size_t>(count);
  }
  return static_cast<ssize_t>(done);
}

enum class State : std::uint8_t {
  pending,
  failed,   // could not be opened or read, or is not a regular file now
  probed,   // `key` holds the probe key, or the digest when `whole`
  unique,   // no other member shares its key: it cannot be anyone's duplicate
  hashed,   // `key` holds the whole-content digest
};

struct Member {
  std::uint32_t source = 0; // the member whose read stands for this one: itself, or a hard link
  State state = State::pending;
  bool whole = false;       // `key` is the whole-content digest
  Digest key{};
};

struct GroupWork {
  std::vector<Member> members;
  std::vector<std::uint32_t> byInode; // member indices, names of one indexed inode side by side
  std::size_t probesLeft = 0;
};

struct ProbeTask {
  std::uint32_t group;
  std::uint32_t begin; // a run of `byInode`: names that were one file when indexed
  std::uint32_t end;
};

// Files of one group with one probe key: each source is read once, and the names it settles
// (itself and its hard links) count as its weight.
struct CompareTask {
  std::uint32_t group;
  std::vector<std::pair<std::uint32_t, std::uint32_t>> sources; // (member, weight)
};

class HashRun {
public:
  HashRun(const std::vector<SizeGroup>& groups, std::size_t reportEvery)
      : groups_(groups), work_(groups.size()), reportEvery_(std::max<std::size_t>(reportEvery, 1)) {
    for (std::uint32_t g = 0; g < groups.size(); ++g) {
      const auto& files = groups[g].files;
      GroupWork& work = work_[g];
      work.members.resize(files.size());
      work.byInode.resize(files.size());
      std::iota(work.byInode.begin(), work.byInode.end(), std::uint32_t{0});
      std::stable_sort(work.byInode.begin(), work.byInode.end(), [&](std::uint32_t a, std::uint32_t b) {
        if (files[a].device != files[b].device) return files[a].device < files[b].device;
        return files[a].inode < files[b].inode;
      });
      for (std::uint32_t i = 0; i < files.size();) {
        std::uint32_t j = i + 1;
        while (j < files.size() && sameInode(files[work.byInode[i]], files[work.byInode[j]])) ++j;
        probes_.push_back(ProbeTask{g, i, j});
        ++work.probesLeft;
        i = j;
      }
      total_ += files.size();
    }
  }

  ~HashRun() = default;
  HashRun(const HashRun&) = delete;
  HashRun& operator=(const HashRun&) = delete;

  std::vector<std::vector<std::optional<Digest>>> run(unsigned workerCount, const ContentHasher::SettledCallback& onSettled) {
    if (total_ > 0) {
      std::vector<std::thread> workers;
      try {
        for (unsigned i = 0; i < std::max(workerCount, 1u); ++i) workers.emplace_back([this] { workLoop(); });
      } catch (...) {
        if (workers.empty()) throw;
        // Fewer threads than asked for still finish the work.
      }
      std::size_t reported = 0;
      {
        std::unique_lock lock(mutex_);
        for (;;) {
          settledChanged_.wait(lock, [&] { return settled_ > reported || finished_ == workers.size(); });
          const std::size_t settled = settled_;
          const bool allDone = finished_ == workers.size();
          if (settled > reported) {
            lock.unlock();
            // Progress is reported from this thread only, never from a worker.
            try {
              if (onSettled) onSettled(settled);
            } catch (...) {
              // The workers are stopped and joined before the callback's error goes on.
              lock.lock();
              aborted_ = true;
              if (!error_) error_ = std::current_exception();
              workAvailable_.notify_all();
              settledChanged_.wait(lock, [&] { return finished_ == workers.size(); });
              break;
            }
            reported = settled;
            lock.lock();
          }
          if (allDone) break;
        }
      }
      for (auto& worker : workers) worker.join();
      if (error_) std::rethrow_exception(error_);
    }
    return results();
  }

private:
  static bool sameInode(const IndexedFile& a, const IndexedFile& b) { return a.device == b.device && a.inode == b.inode; }

  void workLoop() {
    bool inTask = false;
    try {
      DigestContext digest;
      DigestContext spare;
      auto buffer = std::make_unique<unsigned char[]>(kBufferSize);
      for (;;) {
        std::optional<ProbeTask> probe;
        std::optional<CompareTask> compare;
        {
          std::unique_lock lock(mutex_);
          workAvailable_.wait(lock, [&] {
            return aborted_ || !compares_.empty() || nextProbe_ < probes_.size() || running_ == 0;
          });
          if (aborted_) break;
          // Comparisons first: they settle files, and their groups can be let go.
          if (!compares_.empty()) {
            compare = std::move(compares_.front());
            compares_.pop_front();
          } else if (nextProbe_ < probes_.size()) {
            probe = probes_[nextProbe_++];
          } else {
            break; // nothing queued and nothing running that could queue more
          }
          ++running_;
          inTask = true;
        }
        std::size_t newlySettled = 0;
        std::vector<CompareTask> queued;
        if (probe) {
          runProbe(*probe, digest, buffer.get());
          bool lastProbe = false;
          {
            std::lock_guard lock(mutex_);
            lastProbe = --work_[probe->group].probesLeft == 0;
          }
          // The last probe of a group owns it now: no other task touches it until this one
          // queues its whole reads.
          if (lastProbe) newlySettled = settleProbedGroup(probe->group, queued);
        } else {
          newlySettled = runCompare(*compare, digest, spare, buffer.get());
        }
        {
          std::lock_guard lock(mutex_);
          --running_;
          inTask = false;
          for (auto& task : queued) compares_.push_back(std::move(task));
          const std::size_t before = settled_;
          settled_ += newlySettled;
          if (settled_ / reportEvery_ != before / reportEvery_ || settled_ == total_) settledChanged_.notify_one();
        }
        workAvailable_.notify_all();
      }
    } catch (...) {
      std::lock_guard lock(mutex_);
      if (!error_) error_ = std::current_exception();
      aborted_ = true;
      if (inTask) --running_;
      workAvailable_.notify_all();
    }
    std::lock_guard lock(mutex_);
    ++finished_;
    workAvailable_.notify_all();
    settledChanged_.notify_one();
  }

  // Opens each name of one indexed inode; the first that is still a regular file is probed,
  // the others are settled by it when they turn out to be the same file, and probed on their
  // own when they have become another one.
  void runProbe(const ProbeTask& task, DigestContext& digest, unsigned char* buffer) {
    GroupWork& work = work_[task.group];
    const auto& files = groups_[task.group].files;
    bool haveSource = false;
    std::uint32_t source = 0;
    dev_t sourceDevice = 0;
    ino_t sourceInode = 0;
    for (std::uint32_t k = task.begin; k < task.end; ++k) {
      const std::uint32_t index = work.byInode[k];
      Member& member = work.members[index];
      RegularFile file;
      if (!file.open(files[index].path)) {
        member.state = State::failed;
        continue;
      }
      if (haveSource && file.info().st_dev == sourceDevice && file.info().st_ino == sourceInode) {
        member.source = source;
        member.state = State::probed;
        continue;
      }
      member.source = index;
      if (!probe(file, member, digest, buffer)) {
        member.state = State::failed;
        continue;
      }
      member.state = State::probed;
      if (!haveSource) {
        haveSource = true;
        source = index;
        sourceDevice = file.info().st_dev;
        sourceInode = file.info().st_ino;
      }
    }
    // Names that share a source take its key; they were written only by this task.
    for (std::uint32_t k = task.begin; k < task.end; ++k) {
      Member& member = work.members[work.byInode[k]];
      if (member.state == State::probed && member.source != work.byInode[k]) {
        member.key = work.members[member.source].key;
        member.whole = work.members[member.source].whole;
      }
    }
  }

  static bool probe(const RegularFile& file, Member& member, DigestContext& digest, unsigned char* buffer) {
    const std::int64_t size = file.info().st_size;
    if (size <= kWholeReadLimit) {
      digest.begin();
      if (!feedToEnd(file.descriptor(), digest, buffer, kBufferSize)) return false;
      member.key = digest.finish();
      member.whole = true;
      return true;
    }
    const ssize_t head = readAt(file.descriptor(), buffer, kEdgeBlock, 0);
    const ssize_t tail = readAt(file.descriptor(), buffer + kEdgeBlock, kEdgeBlock, static_cast<off_t>(size - kEdgeBlock));
    if (head < 0 || tail < 0) return false;
    // The key only has to be equal for equal bytes: a key shared by chance costs a
    // comparison, never a wrong group. So a fast hash will do, and SHA-256 is kept for
    // whole contents.
    const std::hash<std::string_view> hash;
    const std::uint64_t parts[3] = {
        hash(std::string_view(reinterpret_cast<const char*>(buffer), static_cast<std::size_t>(head))),
        hash(std::string_view(reinterpret_cast<const char*>(buffer + kEdgeBlock), static_cast<std::size_t>(tail))),
        static_cast<std::uint64_t>(size)};
    member.key = Digest{};
    std::memcpy(member.key.data(), parts, sizeof parts);
    member.whole = false;
    return true;
  }

  // Every member of the group is probed: settles those that are unique or failed and those
  // already digested whole, and queues one whole read for each source that still needs one.
  std::size_t settleProbedGroup(std::uint32_t g, std::vector<CompareTask>& queued) {
    GroupWork& work = work_[g];
    auto& members = work.members;
    std::size_t settledNow = 0;
    std::vector<std::uint32_t> live;
    live.reserve(members.size());
    for (std::uint32_t i = 0; i < members.size(); ++i) {
      if (members[i].state == State::failed) ++settledNow;
      else live.push_back(i);
    }
    auto keyLess = [&](std::uint32_t a, std::uint32_t b) {
      if (members[a].whole != members[b].whole) return members[a].whole < members[b].whole;
      const int order = std::memcmp(members[a].key.data(), members[b].key.data(), members[a].key.size());
      if (order != 0) return order < 0;
      return members[a].source < members[b].source;
    };
    std::sort(live.begin(), live.end(), keyLess);
    auto sameKey = [&](std::uint32_t a, std::uint32_t b) {
      return members[a].whole == members[b].whole && members[a].key == members[b].key;
    };
    for (std::size_t i = 0; i < live.size();) {
      std::size_t j = i + 1;
      while (j < live.size() && sameKey(live[i], live[j])) ++j;
      if (j - i == 1) {
        members[live[i]].state = State::unique;
        ++settledNow;
      } else if (members[live[i]].whole) {
        for (std::size_t k = i; k < j; ++k) members[live[k]].state = State::hashed;
        settledNow += j - i;
      } else {
        // Sorted by source within the run: each source is read once, settling its names.
        CompareTask task{g, {}};
        for (std::size_t k = i; k < j;) {
          std::size_t l = k + 1;
          while (l < j && members[live[l]].source == members[live[k]].source) ++l;
          task.sources.emplace_back(members[live[k]].source, static_cast<std::uint32_t>(l - k));
          k = l;
        }
        queued.push_back(std::move(task));
      }
      i = j;
    }
    return settledNow;
  }

  std::size_t runCompare(const CompareTask& task, DigestContext& digest, DigestContext& spare, unsigned char* buffer) {
    std::size_t settles = 0;
    for (const auto& source : task.sources) settles += source.second;
    const bool wholeRunAtOnce = task.sources.size() <= kMaxOpenFiles;
    for (std::size_t begin = 0; begin < task.sources.size(); begin += kMaxOpenFiles) {
      const std::size_t end = std::min(begin + kMaxOpenFiles, task.sources.size());
      compareBatch(task.group, task.sources.data() + begin, end - begin, wholeRunAtOnce, digest, spare, buffer);
    }
    return settles;
  }

  // Reads the files side by side, block by block. Only the first (the leader) is digested;
  // a file whose every block equals the leader's has the leader's content, and so its
  // digest. A file that departs from the leader continues alone, its digest taking over the
  // leader's state at the block where they parted, so every file is read exactly once and
  // its digest is always that of its own whole content. When the batch is the whole run, a
  // file with one name that no other file matches is unique, and reading it stops.
  void compareBatch(std::uint32_t g, const std::pair<std::uint32_t, std::uint32_t>* sources, std::size_t count,
                    bool wholeRun, DigestContext& digest, DigestContext& spare, unsigned char* buffer) {
    struct OpenSource {
      std::uint32_t member;
      std::uint32_t weight;
      RegularFile file;
    };
    auto& members = work_[g].members;
    const auto& files = groups_[g].files;
    std::vector<OpenSource> open;
    open.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
      RegularFile file;
      if (!file.open(files[sources[i].first].path)) {
        members[sources[i].first].state = State::failed;
        continue;
      }
      // Read front to back: lets a cold cache read ahead.
      if (file.info().st_size > static_cast<off_t>(kBufferSize)) ::posix_fadvise(file.descriptor(), 0, 0, POSIX_FADV_SEQUENTIAL);
      open.push_back(OpenSource{sources[i].first, sources[i].second, std::move(file)});
    }
    if (open.empty()) return;
    auto settle = [&](const OpenSource& source, State state, const Digest& value = Digest{}) {
      members[source.member].state = state;
      if (state == State::hashed) {
        members[source.member].key = value;
        members[source.member].whole = true;
      }
    };
    if (wholeRun && open.size() == 1 && open[0].weight == 1) {
      settle(open[0], State::unique);
      return;
    }
    // Two single names that part: neither can match anything else in the run.
    const bool pair = wholeRun && open.size() == 2 && open[0].weight == 1 && open[1].weight == 1;
    unsigned char* const leaderBlock = buffer;
    unsigned char* const otherBlock = buffer + kHalf;
    const OpenSource& leader = open.front();
    std::vector<OpenSource> followers;
    followers.reserve(open.size() - 1);
    for (std::size_t i = 1; i < open.size(); ++i) followers.push_back(std::move(open[i]));

    // `digest` holds the leader's bytes before the current block: the state a departing
    // file takes over, since its bytes were the same up to there.
    auto finishAlone = [&](OpenSource& file, const unsigned char* pending, std::size_t pendingSize) {
      spare.copyFrom(digest);
      spare.update(pending, pendingSize);
      if (feedToEnd(file.file.descriptor(), spare, otherBlock, kHalf)) settle(file, State::hashed, spare.finish());
      else settle(file, State::failed);
    };
    digest.begin();
    for (;;) {
      const ssize_t leaderCount = readBlock(leader.file.descriptor(), leaderBlock, kHalf);
      if (leaderCount < 0) {
        settle(leader, State::failed);
        for (auto& follower : followers) finishAlone(follower, nullptr, 0);
        return;
      }
      for (auto it = followers.begin(); it != followers.end();) {
        const ssize_t otherCount = readBlock(it->file.descriptor(), otherBlock, kHalf);
        if (otherCount == leaderCount && std::memcmp(leaderBlock, otherBlock, static_cast<std::size_t>(otherCount)) == 0) {
          ++it;
          continue;
        }
        if (otherCount < 0) {
          settle(*it, State::failed);
        } else if (pair) {
          settle(leader, State::unique);
          settle(*it, State::unique);
          return;
        } else {
          finishAlone(*it, otherBlock, static_cast<std::size_t>(otherCount));
        }
        it = followers.erase(it);
      }
      if (leaderCount == 0) {
        const Digest value = digest.finish();
        settle(leader, State::hashed, value);
        for (const auto& follower : followers) settle(follower, State::hashed, value);
        return;
      }
      if (followers.empty() && wholeRun && leader.weight == 1) {
        settle(leader, State::unique);
        return;
      }
      digest.update(leaderBlock, static_cast<std::size_t>(leaderCount));
    }
  }

  std::vector<std::vector<std::optional<Digest>>> results() const {
    std::vector<std::vector<std::optional<Digest>>> digests(work_.size());
    for (std::size_t g = 0; g < work_.size(); ++g) {
      const auto& members = work_[g].members;
      digests[g].resize(members.size());
      for (std::size_t i = 0; i < members.size(); ++i) {
        if (members[i].state == State::failed || members[i].state == State::unique) continue;
        // A name settled by its source has the source's outcome: the whole read of that one
        // file, or its failure.
        const Member& source = members[members[i].source];
        if (source.state == State::hashed) digests[g][i] = source.key;
      }
    }
    return digests;
  }

  const std::vector<SizeGroup>& groups_;
  std::vector<GroupWork> work_;
  std::vector<ProbeTask> probes_;
  std::size_t total_ = 0;
  std::size_t reportEvery_;

  std::mutex mutex_;
  std::condition_variable workAvailable_;
  std::condition_variable settledChanged_;
  std::deque<CompareTask> compares_;
  std::size_t nextProbe_ = 0;
  std::size_t running_ = 0;
  std::size_t settled_ = 0;
  std::size_t finished_ = 0;
  bool aborted_ = false;
  std::exception_ptr error_;
};

} // namespace

std::vector<std::vector<std::optional<Digest>>> ContentHasher::digests(const std::vector<SizeGroup>& groups, unsigned workers,
                                                                       std::size_t reportEvery,
                                                                       const SettledCallback& onSettled) {
  HashRun run(groups, reportEvery);
  return run.run(workers, onSettled);
}

} // namespace halcyra::duplicates
