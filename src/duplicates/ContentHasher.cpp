#include "duplicates/ContentHasher.h"

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <exception>
#include <functional>
#include <string>
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
constexpr std::size_t kBufferSize = std::size_t{64} << 10;
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

// One candidate of the batch; positions are counted from the batch's first candidate.
struct Member {
  std::uint32_t source = 0; // the member whose read stands for this one: itself, or a hard link
  State state = State::pending;
  bool whole = false;       // `key` is the whole-content digest
  Digest key{};
};

struct ProbeTask {
  std::uint32_t group; // within the batch
  std::uint32_t begin; // a run of `byInode_`: names that were one file when indexed
  std::uint32_t end;
};

// Files of one group with one probe key: `order_[begin, end)`, sorted by source. Each source
// is read once, and the names it settles (itself and its hard links) count as its weight.
struct CompareTask {
  std::uint32_t begin;
  std::uint32_t end;
};

struct OpenSource {
  std::uint32_t member;
  std::uint32_t weight;
  RegularFile file;
};

// What one worker reads with. Made by the calling thread and kept for the whole run, so that
// a worker allocates nothing: a thread that never allocates never gets an arena of its own
// from the C library.
struct WorkerScratch {
  WorkerScratch() : buffer(std::make_unique_for_overwrite<unsigned char[]>(kBufferSize)) {
    path.reserve(4096);
    open.reserve(kMaxOpenFiles);
    followers.reserve(kMaxOpenFiles);
  }
  std::unique_ptr<unsigned char[]> buffer; // written before it is read, so pages never read stay untouched
  std::string path;
  std::vector<OpenSource> open;
  std::vector<OpenSource> followers;
  DigestContext digest;
  DigestContext spare;
};

// The size groups `runs[firstRun, endRun)` of one batch, read by a few workers.
class HashRun {
public:
  HashRun(const FileIndex& index, const FileIndex::SharedSizes& shared, std::size_t firstRun, std::size_t endRun,
          std::size_t settledBefore, std::size_t reportEvery)
      : index_(index), shared_(shared), firstRun_(firstRun), base_(shared.runs[firstRun].begin),
        total_(shared.runs[endRun - 1].end - base_), settledBefore_(settledBefore),
        reportEvery_(std::max<std::size_t>(reportEvery, 1)), members_(total_), byInode_(total_), order_(total_),
        probesLeft_(endRun - firstRun) {
    compares_.reserve(total_ / 2 + 1); // a comparison settles two files at least
    for (std::size_t r = firstRun; r < endRun; ++r) {
      const auto g = static_cast<std::uint32_t>(r - firstRun);
      const std::uint32_t begin = shared.runs[r].begin - base_;
      const std::uint32_t end = shared.runs[r].end - base_;
      std::iota(byInode_.begin() + begin, byInode_.begin() + end, begin);
      std::stable_sort(byInode_.begin() + begin, byInode_.begin() + end, [&](std::uint32_t a, std::uint32_t b) {
        const std::size_t fileA = fileOf(a), fileB = fileOf(b);
        if (index.device(fileA) != index.device(fileB)) return index.device(fileA) < index.device(fileB);
        return index.inode(fileA) < index.inode(fileB);
      });
      for (std::uint32_t i = begin; i < end;) {
        std::uint32_t j = i + 1;
        while (j < end && sameInode(fileOf(byInode_[i]), fileOf(byInode_[j]))) ++j;
        probes_.push_back(ProbeTask{g, i, j});
        ++probesLeft_[g];
        i = j;
      }
    }
  }

  ~HashRun() = default;
  HashRun(const HashRun&) = delete;
  HashRun& operator=(const HashRun&) = delete;

  // Digests of the batch's candidates in order; none for a file left out or proved unique.
  std::vector<std::optional<Digest>> run(std::vector<WorkerScratch>& scratch, const ContentHasher::SettledCallback& onSettled) {
    std::vector<std::thread> workers;
    workers.reserve(scratch.size());
    try {
      for (auto& own : scratch) workers.emplace_back([this, &own] { workLoop(own); });
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
            if (onSettled) onSettled(settledBefore_ + settled);
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
    return results();
  }

private:
  std::size_t fileOf(std::uint32_t member) const { return shared_.files[base_ + member]; }
  bool sameInode(std::size_t a, std::size_t b) const {
    return index_.device(a) == index_.device(b) && index_.inode(a) == index_.inode(b);
  }
  bool openMember(RegularFile& file, std::uint32_t member, WorkerScratch& scratch) const {
    index_.path(fileOf(member), scratch.path);
    return file.open(scratch.path);
  }

  void workLoop(WorkerScratch& scratch) {
    bool inTask = false;
    try {
      for (;;) {
        std::optional<ProbeTask> probe;
        std::optional<CompareTask> compare;
        {
          std::unique_lock lock(mutex_);
          workAvailable_.wait(lock, [&] {
            return aborted_ || nextCompare_ < compares_.size() || nextProbe_ < probes_.size() || running_ == 0;
          });
          if (aborted_) break;
          // Comparisons first: they settle files.
          if (nextCompare_ < compares_.size()) {
            compare = compares_[nextCompare_++];
          } else if (nextProbe_ < probes_.size()) {
            probe = probes_[nextProbe_++];
          } else {
            break; // nothing queued and nothing running that could queue more
          }
          ++running_;
          inTask = true;
        }
        std::size_t newlySettled = 0;
        std::size_t queuedBegin = 0, queuedEnd = 0;
        if (probe) {
          runProbe(*probe, scratch);
          bool lastProbe = false;
          {
            std::lock_guard lock(mutex_);
            lastProbe = --probesLeft_[probe->group] == 0;
          }
          // The last probe of a group owns it now: no other task touches it until this one
          // queues its whole reads.
          if (lastProbe) newlySettled = settleProbedGroup(probe->group, queuedBegin, queuedEnd);
        } else {
          newlySettled = runCompare(*compare, scratch);
        }
        {
          std::lock_guard lock(mutex_);
          --running_;
          inTask = false;
          queueCompares(queuedBegin, queuedEnd);
          const std::size_t before = settledBefore_ + settled_;
          settled_ += newlySettled;
          const std::size_t after = settledBefore_ + settled_;
          if (after / reportEvery_ != before / reportEvery_ || settled_ == total_) settledChanged_.notify_one();
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
  void runProbe(const ProbeTask& task, WorkerScratch& scratch) {
    bool haveSource = false;
    std::uint32_t source = 0;
    dev_t sourceDevice = 0;
    ino_t sourceInode = 0;
    for (std::uint32_t k = task.begin; k < task.end; ++k) {
      const std::uint32_t index = byInode_[k];
      Member& member = members_[index];
      RegularFile file;
      if (!openMember(file, index, scratch)) {
        member.state = State::failed;
        continue;
      }
      if (haveSource && file.info().st_dev == sourceDevice && file.info().st_ino == sourceInode) {
        member.source = source;
        member.state = State::probed;
        continue;
      }
      member.source = index;
      if (!probe(file, member, scratch.digest, scratch.buffer.get())) {
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
      Member& member = members_[byInode_[k]];
      if (member.state == State::probed && member.source != byInode_[k]) {
        member.key = members_[member.source].key;
        member.whole = members_[member.source].whole;
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
  // already digested whole, and leaves in `order_[queuedBegin, queuedEnd)` the runs of
  // members that still need a whole read, each run one probe key sorted by source.
  std::size_t settleProbedGroup(std::uint32_t g, std::size_t& queuedBegin, std::size_t& queuedEnd) {
    const std::uint32_t begin = shared_.runs[firstRun_ + g].begin - base_;
    const std::uint32_t end = shared_.runs[firstRun_ + g].end - base_;
    std::size_t settledNow = 0;
    std::uint32_t liveEnd = begin;
    for (std::uint32_t i = begin; i < end; ++i) {
      if (members_[i].state == State::failed) ++settledNow;
      else order_[liveEnd++] = i;
    }
    auto keyLess = [&](std::uint32_t a, std::uint32_t b) {
      if (members_[a].whole != members_[b].whole) return members_[a].whole < members_[b].whole;
      const int compared = std::memcmp(members_[a].key.data(), members_[b].key.data(), members_[a].key.size());
      if (compared != 0) return compared < 0;
      return members_[a].source < members_[b].source;
    };
    std::sort(order_.begin() + begin, order_.begin() + liveEnd, keyLess);
    auto sameKey = [&](std::uint32_t a, std::uint32_t b) {
      return members_[a].whole == members_[b].whole && members_[a].key == members_[b].key;
    };
    // Runs that need a whole read are moved to the front, one after the other.
    std::uint32_t kept = begin;
    for (std::uint32_t i = begin; i < liveEnd;) {
      std::uint32_t j = i + 1;
      while (j < liveEnd && sameKey(order_[i], order_[j])) ++j;
      if (j - i == 1) {
        members_[order_[i]].state = State::unique;
        ++settledNow;
      } else if (members_[order_[i]].whole) {
        for (std::uint32_t k = i; k < j; ++k) members_[order_[k]].state = State::hashed;
        settledNow += j - i;
      } else {
        std::copy(order_.begin() + i, order_.begin() + j, order_.begin() + kept);
        kept += j - i;
      }
      i = j;
    }
    queuedBegin = begin;
    queuedEnd = kept;
    return settledNow;
  }

  // Under the lock: one comparison per probe key among `order_[begin, end)`.
  void queueCompares(std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end;) {
      std::size_t j = i + 1;
      while (j < end && sameKey(order_[i], order_[j])) ++j;
      compares_.push_back(CompareTask{static_cast<std::uint32_t>(i), static_cast<std::uint32_t>(j)});
      i = j;
    }
  }
  bool sameKey(std::uint32_t a, std::uint32_t b) const {
    return members_[a].whole == members_[b].whole && members_[a].key == members_[b].key;
  }

  std::size_t runCompare(const CompareTask& task, WorkerScratch& scratch) {
    // Sorted by source within the task: each source is read once, settling its names.
    std::pair<std::uint32_t, std::uint32_t> sources[kMaxOpenFiles];
    std::size_t count = 0;
    std::size_t sourceCount = 0;
    for (std::uint32_t k = task.begin; k < task.end;) {
      std::uint32_t l = k + 1;
      while (l < task.end && members_[order_[l]].source == members_[order_[k]].source) ++l;
      ++sourceCount;
      k = l;
    }
    const bool wholeRunAtOnce = sourceCount <= kMaxOpenFiles;
    for (std::uint32_t k = task.begin; k < task.end;) {
      std::uint32_t l = k + 1;
      while (l < task.end && members_[order_[l]].source == members_[order_[k]].source) ++l;
      sources[count++] = {members_[order_[k]].source, l - k};
      k = l;
      if (count == kMaxOpenFiles || k == task.end) {
        compareBatch(sources, count, wholeRunAtOnce, scratch);
        count = 0;
      }
    }
    return task.end - task.begin;
  }

  // Reads the files side by side, block by block. Only the first (the leader) is digested;
  // a file whose every block equals the leader's has the leader's content, and so its
  // digest. A file that departs from the leader continues alone, its digest taking over the
  // leader's state at the block where they parted, so every file is read exactly once and
  // its digest is always that of its own whole content. When the batch is the whole run, a
  // file with one name that no other file matches is unique, and reading it stops.
  void compareBatch(const std::pair<std::uint32_t, std::uint32_t>* sources, std::size_t count, bool wholeRun,
                    WorkerScratch& scratch) {
    auto& open = scratch.open;
    auto& followers = scratch.followers;
    open.clear();
    followers.clear();
    for (std::size_t i = 0; i < count; ++i) {
      RegularFile file;
      if (!openMember(file, sources[i].first, scratch)) {
        members_[sources[i].first].state = State::failed;
        continue;
      }
      // Read front to back: lets a cold cache read ahead.
      if (file.info().st_size > static_cast<off_t>(kBufferSize)) ::posix_fadvise(file.descriptor(), 0, 0, POSIX_FADV_SEQUENTIAL);
      open.push_back(OpenSource{sources[i].first, sources[i].second, std::move(file)});
    }
    if (open.empty()) return;
    auto settle = [&](const OpenSource& source, State state, const Digest& value = Digest{}) {
      members_[source.member].state = state;
      if (state == State::hashed) {
        members_[source.member].key = value;
        members_[source.member].whole = true;
      }
    };
    if (wholeRun && open.size() == 1 && open[0].weight == 1) {
      settle(open[0], State::unique);
      return;
    }
    // Two single names that part: neither can match anything else in the run.
    const bool pair = wholeRun && open.size() == 2 && open[0].weight == 1 && open[1].weight == 1;
    unsigned char* const leaderBlock = scratch.buffer.get();
    unsigned char* const otherBlock = leaderBlock + kHalf;
    const OpenSource& leader = open.front();
    for (std::size_t i = 1; i < open.size(); ++i) followers.push_back(std::move(open[i]));
    DigestContext& digest = scratch.digest;
    DigestContext& spare = scratch.spare;

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

  std::vector<std::optional<Digest>> results() const {
    std::vector<std::optional<Digest>> digests(total_);
    for (std::size_t i = 0; i < total_; ++i) {
      if (members_[i].state == State::failed || members_[i].state == State::unique) continue;
      // A name settled by its source has the source's outcome: the whole read of that one
      // file, or its failure.
      const Member& source = members_[members_[i].source];
      if (source.state == State::hashed) digests[i] = source.key;
    }
    return digests;
  }

  const FileIndex& index_;
  const FileIndex::SharedSizes& shared_;
  const std::size_t firstRun_;
  const std::uint32_t base_;  // the batch's first candidate in `shared_.files`
  const std::size_t total_;   // candidates in the batch
  const std::size_t settledBefore_;
  const std::size_t reportEvery_;
  std::vector<Member> members_;
  std::vector<std::uint32_t> byInode_; // each group's members, names of one indexed inode side by side
  std::vector<std::uint32_t> order_;   // each group's members by probe key, once its last probe is in
  std::vector<std::uint32_t> probesLeft_;
  std::vector<ProbeTask> probes_;

  std::mutex mutex_;
  std::condition_variable workAvailable_;
  std::condition_variable settledChanged_;
  std::vector<CompareTask> compares_; // never grows past its reserve, so workers never allocate
  std::size_t nextCompare_ = 0;
  std::size_t nextProbe_ = 0;
  std::size_t running_ = 0;
  std::size_t settled_ = 0;
  std::size_t finished_ = 0;
  bool aborted_ = false;
  std::exception_ptr error_;
};

} // namespace

void ContentHasher::digests(const FileIndex& index, const FileIndex::SharedSizes& shared, unsigned workers,
                            std::size_t reportEvery, const SettledCallback& onSettled, const DigestsCallback& onDigests,
                            std::size_t batchSize) {
  if (shared.runs.empty()) return;
  std::vector<WorkerScratch> scratch(std::max(workers, 1u));
  std::size_t settled = 0;
  for (std::size_t first = 0; first < shared.runs.size();) {
    std::size_t end = first + 1;
    while (end < shared.runs.size() && shared.runs[end].end - shared.runs[first].begin <= batchSize) ++end;
    std::vector<std::optional<Digest>> batch;
    {
      HashRun run(index, shared, first, end, settled, reportEvery);
      batch = run.run(scratch, onSettled);
    }
    settled += batch.size();
    if (onDigests) onDigests(first, end, batch);
    first = end;
  }
}

} // namespace halcyra::duplicates
