#include "shredder/ShredderService.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <optional>
#include <system_error>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/rand.h>

#include <set>
#include <utility>

#include "core/Uuid.h"
#include "platform/MountPoints.h"
#include "platform/PrivilegedHelper.h"
#include "shredder/ShredderError.h"

namespace halcyra::shredder {
namespace {

constexpr std::string_view kEllipsis = "\u2026";

// A file's folder is only searched and written through (openat, renameat, unlinkat), never
// listed: it needs no right to be read.
#if defined(O_PATH)
constexpr int kFolderFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;
#else
constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
#endif

/// Owns a descriptor and closes it once.
class Descriptor {
public:
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int get() const { return fd_; }
  explicit operator bool() const { return fd_ >= 0; }
  /// Closes now and reports the result: a close can be the first to see a failed write.
  bool close() {
    const int fd = fd_;
    fd_ = -1;
    return ::close(fd) == 0;
  }

private:
  int fd_;
};

[[noreturn]] void throwErrno(const char* what) { throw std::system_error(errno, std::generic_category(), what); }

std::string lastComponent(const std::string& path) {
  const auto slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string parentOf(const std::string& path) {
  const auto slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

std::string join(const std::string& folder, const std::string& name) {
  return folder.ends_with('/') ? folder + name : folder + "/" + name;
}

/// Removes empty and "." components and a trailing slash. Only lexical steps that cannot
/// change what the path names are taken: ".." is kept, since it means something else after
/// a symbolic link. Stripping the trailing slash matters: "link/" would resolve the link.
std::string normalizeInput(const std::string& path) {
  std::string out;
  out.reserve(path.size());
  if (path.starts_with('/')) out.push_back('/');
  std::size_t start = 0;
  while (start <= path.size()) {
    auto end = path.find('/', start);
    if (end == std::string::npos) end = path.size();
    const std::string_view part(path.data() + start, end - start);
    if (!part.empty() && part != ".") {
      if (!out.empty() && out.back() != '/') out.push_back('/');
      out.append(part);
    }
    start = end + 1;
  }
  if (out.empty()) out = path.empty() ? std::string() : (path.starts_with('/') ? "/" : ".");
  return out;
}

constexpr std::string_view kLinkRefusal =
    "is a symbolic link, not a file; the file it points to is left alone (name that file to shred it)";

constexpr std::string_view kNulRefusal = "holds a NUL byte, which no file name can contain";

std::string typeRefusal(const struct stat& st) {
  if (S_ISLNK(st.st_mode)) return std::string(kLinkRefusal);
  if (S_ISFIFO(st.st_mode)) return "is a named pipe (FIFO), not a regular file";
  if (S_ISSOCK(st.st_mode)) return "is a socket, not a regular file";
  if (S_ISCHR(st.st_mode)) return "is a character device, not a regular file";
  if (S_ISBLK(st.st_mode)) return "is a block device, not a regular file";
  if (S_ISDIR(st.st_mode)) return "is a folder now, not a regular file";
  if (!S_ISREG(st.st_mode)) return "is not a regular file";
  return {};
}

/// Why a file must not be overwritten, or empty when it may be.
std::string refusalOf(const struct stat& st) {
  if (auto reason = typeRefusal(st); !reason.empty()) return reason;
  if (st.st_nlink > 1) {
    // Overwriting works on the data, not the name: every other name would read the wreck.
    const auto others = static_cast<unsigned long long>(st.st_nlink - 1);
    return "has " + std::to_string(others) + (others == 1 ? " other name" : " other names") +
           " (hard links); overwriting it would destroy the data under those names too";
  }
  return {};
}

bool isHidden(const std::string& name, [[maybe_unused]] const struct stat& st) {
  if (name.starts_with('.')) return true;
#if defined(UF_HIDDEN)
  if ((st.st_flags & UF_HIDDEN) != 0) return true;
#endif
  return false;
}

platform::FileIdentity identityOf(const struct stat& st) {
  return {static_cast<std::uint64_t>(st.st_dev), static_cast<std::uint64_t>(st.st_ino)};
}

ShredderFile makeRecord(const std::string& path, const struct stat& st, const struct stat& folder) {
  ShredderFile file{core::makeUuid(), path, lastComponent(path), static_cast<std::int64_t>(st.st_size), true, {}};
  file.identity = platform::ItemIdentity{identityOf(st), identityOf(folder)};
  return file;
}

/// Files already listed, by identity: a second name of one file (a folder reached twice
/// through a link) lists nothing more.
using Listed = std::set<std::pair<std::uint64_t, std::uint64_t>>;

bool firstSighting(Listed& listed, const struct stat& st) {
  return listed.emplace(static_cast<std::uint64_t>(st.st_dev), static_cast<std::uint64_t>(st.st_ino)).second;
}

constexpr std::string_view kFolderReplaced = "its folder was replaced since it was listed; nothing in it was touched";
constexpr std::string_view kFileReplaced = "was replaced since it was listed; the file now there was left alone";
constexpr std::string_view kGone = "no longer exists; it was removed or moved since it was listed";

/// Reads until `length` bytes or the end of the file; the count read.
std::size_t readFully(FileLayer& layer, int fd, unsigned char* data, std::size_t length, std::int64_t offset) {
  std::size_t done = 0;
  while (done < length) {
    const ssize_t n = layer.readAt(fd, data + done, length - done, offset + static_cast<std::int64_t>(done));
    if (n < 0) {
      if (errno == EINTR) continue;
      throwErrno("read");
    }
    if (n == 0) break;
    done += static_cast<std::size_t>(n);
  }
  return done;
}

void writeFully(FileLayer& layer, int fd, const unsigned char* data, std::size_t length, std::int64_t offset) {
  std::size_t done = 0;
  while (done < length) {
    const ssize_t n = layer.writeAt(fd, data + done, length - done, offset + static_cast<std::int64_t>(done));
    if (n < 0) {
      if (errno == EINTR) continue;
      throwErrno("write");
    }
    if (n == 0) throw std::system_error(ENOSPC, std::generic_category(), "write");
    done += static_cast<std::size_t>(n);
  }
}

void syncOrThrow(FileLayer& layer, int fd) {
  if (layer.syncData(fd) != 0) throwErrno("sync");
}

/// Renames within one open folder without ever replacing an existing entry; 0 on success.
int renameNoReplace(int folder, const std::string& from, const std::string& to) {
#if defined(RENAME_NOREPLACE)
  const int result = ::renameat2(folder, from.c_str(), folder, to.c_str(), RENAME_NOREPLACE);
  if (result == 0 || errno != EINVAL) return result;
  // The file system cannot refuse to replace; a fresh UUID leaves only a check to make.
#endif
  struct stat st {};
  if (::fstatat(folder, to.c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0) {
    errno = EEXIST;
    return -1;
  }
  return ::renameat(folder, from.c_str(), folder, to.c_str());
}

/// The nonce of chunk `index` of a file: four zero bytes, then the index as a big-endian
/// 64-bit number. Unique per chunk under the file's own key.
std::array<unsigned char, 12> chunkNonce(std::uint64_t index) {
  std::array<unsigned char, 12> nonce{};
  for (int i = 0; i < 8; ++i) nonce[static_cast<std::size_t>(11 - i)] = static_cast<unsigned char>(index >> (8 * i));
  return nonce;
}

struct BufferWipe {
  void operator()(std::vector<unsigned char>* buffer) const { OPENSSL_cleanse(buffer->data(), buffer->size()); }
};

struct CipherContextFree {
  void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
};

/// One open folder of the walk, its entry names read ahead and sorted.
struct Frame {
  DIR* dir = nullptr;
  std::string path;
  std::vector<std::string> names;
  std::size_t next = 0;
  struct stat self {};
};

/// Takes ownership of `fd`. False when the folder cannot be listed.
bool openFrame(int fd, std::string path, std::vector<Frame>& stack) {
  DIR* dir = ::fdopendir(fd);
  if (dir == nullptr) {
    ::close(fd);
    return false;
  }
  Frame frame{dir, std::move(path), {}, 0, {}};
  if (::fstat(::dirfd(dir), &frame.self) != 0) {
    ::closedir(dir);
    return false;
  }
  while (const dirent* entry = ::readdir(dir)) {
    const std::string_view name(entry->d_name);
    if (name == "." || name == "..") continue;
    frame.names.emplace_back(name);
  }
  std::sort(frame.names.begin(), frame.names.end());
  stack.push_back(std::move(frame));
  return true;
}

/// The regular, non-hidden files below an open folder, in depth-first order with names
/// sorted; an explicit stack, so depth costs no call stack. Entries are examined relative to
/// the open folder without following links, so a folder swapped for a link is not entered.
void walkFolder(int fd, const std::string& path, std::vector<ShredderFile>& out, std::vector<ShredderRefusal>& refused,
                Listed& listed) {
  std::vector<Frame> stack;
  if (!openFrame(fd, path, stack)) return;
  while (!stack.empty()) {
    Frame& frame = stack.back();
    if (frame.next == frame.names.size()) {
      ::closedir(frame.dir);
      stack.pop_back();
      continue;
    }
    const std::string name = frame.names[frame.next++];
    const int folderFd = ::dirfd(frame.dir);
    struct stat st {};
    if (::fstatat(folderFd, name.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) continue;
    if (isHidden(name, st)) continue;
    const std::string child = join(frame.path, name);
    if (S_ISDIR(st.st_mode)) {
      const int childFd = ::openat(folderFd, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
      if (childFd < 0) continue;
      if (platform::isMountPoint(folderFd, childFd)) {
        ::close(childFd);
        refused.push_back({child, "is a mount point (another volume, or a folder mounted here); it is not entered"});
        continue;
      }
      openFrame(childFd, child, stack); // may reallocate: `frame` is not used after this
    } else if (S_ISREG(st.st_mode)) {
      if (auto reason = refusalOf(st); !reason.empty()) {
        refused.push_back({child, std::move(reason)});
        continue;
      }
      if (firstSighting(listed, st)) out.push_back(makeRecord(child, st, frame.self));
    }
  }
}

/// The name goes too: a random one, in the same folder so the move is only a rename. The entry
/// removed is checked to be the file just overwritten.
void renameAndDelete(int folder, const std::string& name, const platform::FileIdentity& identity) {
  const std::string renamed = core::makeUuid();
  const bool moved = renameNoReplace(folder, name, renamed) == 0;
  const std::string& victim = moved ? renamed : name;
  struct stat st {};
  if (::fstatat(folder, victim.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) throwErrno("stat");
  if (identityOf(st) != identity) throw std::runtime_error("replaced before its name was removed");
  if (::unlinkat(folder, victim.c_str(), 0) != 0) throwErrno("unlink");
}

} // namespace

ShredderService::ShredderService(platform::Platform platform, std::shared_ptr<FileLayer> files)
    : platform_(std::move(platform)), files_(files ? std::move(files) : std::make_shared<FileLayer>()) {}

std::vector<ShredderFile> ShredderService::resolveFiles(const std::vector<std::string>& paths) const {
  std::vector<ShredderRefusal> ignored;
  return resolveFiles(paths, ignored);
}

std::vector<ShredderFile> ShredderService::resolveFiles(const std::vector<std::string>& paths,
                                                        std::vector<ShredderRefusal>& refused) const {
  std::vector<ShredderFile> out;
  Listed listed;
  struct stat root {};
  const bool haveRoot = ::stat(platform_.paths.system("/").c_str(), &root) == 0;
  for (const auto& given : paths) {
    if (given.find('\0') != std::string::npos) {
      refused.push_back({given, std::string(kNulRefusal)});
      continue;
    }
    const std::string path = normalizeInput(given);
    struct stat st {};
    if (path.empty() || ::lstat(path.c_str(), &st) != 0) {
      refused.push_back({given, errno == ENOENT || errno == ENOTDIR || path.empty()
                                    ? std::string("does not exist")
                                    : "cannot be examined: " + std::string(std::strerror(errno))});
      continue;
    }
    if (S_ISDIR(st.st_mode)) {
      if (haveRoot && st.st_dev == root.st_dev && st.st_ino == root.st_ino) {
        refused.push_back({given, "is the root of the file system"});
        continue;
      }
      const int fd = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
      if (fd < 0) {
        refused.push_back({given, "cannot be read: " + std::string(std::strerror(errno))});
        continue;
      }
      struct stat opened {};
      if (::fstat(fd, &opened) != 0 || opened.st_ino != st.st_ino || opened.st_dev != st.st_dev) {
        ::close(fd);
        refused.push_back({given, "was replaced while it was being opened"});
        continue;
      }
      walkFolder(fd, path, out, refused, listed);
      continue;
    }
    if (auto reason = refusalOf(st); !reason.empty()) {
      refused.push_back({given, std::move(reason)});
      continue;
    }
    // The file is bound to the folder it was found in, as that folder's descriptor sees it.
    const int folder = ::open(parentOf(path).c_str(), kFolderFlags);
    struct stat above {};
    struct stat seen {};
    const bool bound = folder >= 0 && ::fstat(folder, &above) == 0 &&
                       ::fstatat(folder, lastComponent(path).c_str(), &seen, AT_SYMLINK_NOFOLLOW) == 0 &&
                       seen.st_dev == st.st_dev && seen.st_ino == st.st_ino;
    if (folder >= 0) ::close(folder);
    if (!bound) {
      refused.push_back({given, "was replaced while it was being listed"});
      continue;
    }
    if (firstSighting(listed, st)) out.push_back(makeRecord(path, st, above));
  }
  return out;
}

ShredResult ShredderService::shredFiles(const std::vector<ShredderFile>& files, int passes,
                                        const ProgressCallback& onProgress,
                                        std::vector<ShredderRefusal>* refused) const {
  const auto start = std::chrono::steady_clock::now();
  const auto report = [&](const std::string& text, double fraction) {
    if (onProgress) onProgress(text, fraction);
  };
  const int passCount = std::max(passes, 0);
  ShredResult result;
  result.passes = passes;

  const auto n = static_cast<double>(files.size());
  for (std::size_t i = 0; i < files.size(); ++i) {
    // Interrupted: the file in hand was finished; the others keep their names and their data.
    if (platform_.stopRequested()) break;
    const ShredderFile& file = files[i];
    const double base = kFileStageShare * static_cast<double>(i) / n;
    const double weight = kFileStageShare / n;
    report("Shredding " + file.name + std::string(kEllipsis), base);

    const StageProgress onStage = [&](int stage, double done) {
      const std::string text = stage == 0 ? "Encrypting: " + file.name
                                          : "Pass " + std::to_string(stage) + "/" + std::to_string(passCount) +
                                                ": " + file.name;
      report(text, base + weight * (stage + done) / (passCount + 1));
    };
    std::string reason;
    bool gone = false;
    try {
      gone = shredSingleFile(file, passCount, onStage, reason) == Outcome::destroyed;
    } catch (const std::exception&) {
      // The file as such failed (rights, a failed write or sync, a failed deletion): its one
      // chance left is the privileged path. The error itself says nothing the count doesn't.
      gone = fallBack(file, passCount, reason);
    }
    if (gone) {
      result.filesShredded += 1;
      result.totalBytes += file.size;
    } else if (!reason.empty() && refused != nullptr) {
      refused->push_back({file.path, std::move(reason)});
    }
  }

  if (result.totalBytes > 0 && !platform_.stopRequested()) {
    const std::string text = "Overwriting freed space" + std::string(kEllipsis);
    report(text, kFileStageShare);
    fillFreedSpace(result.totalBytes, files, [&](double done) { report(text, kFileStageShare + kFillShare * done); });
  }
  report("Complete", 1.0);
  result.duration = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  return result;
}

ShredderService::Outcome ShredderService::shredSingleFile(const ShredderFile& file, int passes,
                                                          const StageProgress& onStageProgress,
                                                          std::string& refusalReason) const {
  // Every call would stop at the NUL and act on another, shorter path.
  if (file.path.find('\0') != std::string::npos) {
    refusalReason = kNulRefusal;
    return Outcome::refused;
  }
  const bool bound = file.identity.parent != platform::FileIdentity{};
  Descriptor folder(::open(parentOf(file.path).c_str(), kFolderFlags));
  if (!folder) {
    if (errno == ENOENT) {
      refusalReason = kGone;
      return Outcome::refused;
    }
    throwErrno("open folder");
  }
  struct stat above {};
  if (::fstat(folder.get(), &above) != 0) throwErrno("stat folder");
  if (bound && identityOf(above) != file.identity.parent) {
    refusalReason = kFolderReplaced;
    return Outcome::refused;
  }
  return destroyEntry(folder.get(), lastComponent(file.path), bound ? &file.identity.item : nullptr, passes,
                      onStageProgress, refusalReason);
}

ShredderService::Outcome ShredderService::destroyEntry(int folder, const std::string& name,
                                                       const platform::FileIdentity* expected, int passes,
                                                       const StageProgress& onStageProgress,
                                                       std::string& refusalReason) const {
  struct stat listed {};
  if (::fstatat(folder, name.c_str(), &listed, AT_SYMLINK_NOFOLLOW) != 0) {
    if (errno == ENOENT) {
      refusalReason = kGone;
      return Outcome::refused;
    }
    throwErrno("stat");
  }
  if (refusalReason = refusalOf(listed); !refusalReason.empty()) return Outcome::refused;
  if (expected != nullptr && identityOf(listed) != *expected) {
    refusalReason = kFileReplaced;
    return Outcome::refused;
  }

  // An empty file has nothing to overwrite: it is only renamed and deleted, which needs no
  // right on the file itself.
  if (listed.st_size < 1) {
    renameAndDelete(folder, name, identityOf(listed));
    return Outcome::destroyed;
  }

  // No-follow and non-blocking: a link swapped in fails to open, and a FIFO swapped in opens
  // without waiting for a writer, so the checks on the descriptor below can refuse it.
  Descriptor fd(::openat(folder, name.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!fd) {
    if (errno == ELOOP) {
      refusalReason = kLinkRefusal;
      return Outcome::refused;
    }
    const bool readable = ::faccessat(folder, name.c_str(), R_OK, AT_EACCESS) == 0;
    throw ShredderError(readable ? ShredderError::Kind::cannotOpenFile : ShredderError::Kind::cannotReadFile, name);
  }
  struct stat opened {};
  if (::fstat(fd.get(), &opened) != 0) throwErrno("stat");
  if (refusalReason = refusalOf(opened); !refusalReason.empty()) return Outcome::refused;
  if (opened.st_dev != listed.st_dev || opened.st_ino != listed.st_ino) {
    refusalReason = "was replaced by another file while it was being opened";
    return Outcome::refused;
  }

  // The size of the open file, not the one listed: a file that grew since is covered whole,
  // and one that shrank is not extended.
  const auto size = static_cast<std::int64_t>(opened.st_size);
  if (size > 0) {
    // The buffer holds plain text between a read and its seal: wiped however the stage ends.
    std::vector<unsigned char> chunk(static_cast<std::size_t>(std::min(size, kChunkSize)));
    const std::unique_ptr<std::vector<unsigned char>, BufferWipe> wipe(&chunk);
    encryptInPlace(fd.get(), name, size, chunk, onStageProgress);
    overwrite(fd.get(), size, passes, chunk, onStageProgress);
  }
  if (files_->truncate(fd.get(), 0) != 0) throwErrno("truncate");
  syncOrThrow(*files_, fd.get());
  if (!fd.close()) throwErrno("close");
  renameAndDelete(folder, name, identityOf(opened));
  return Outcome::destroyed;
}

void ShredderService::encryptInPlace(int fd, const std::string& path, std::int64_t fileSize,
                                     std::vector<unsigned char>& chunk, const StageProgress& onStageProgress) const {
  // The key exists only here: it goes into the cipher context, is wiped at once, and the
  // context is wiped when it is freed. Nothing can decrypt what is written.
  std::unique_ptr<EVP_CIPHER_CTX, CipherContextFree> context(EVP_CIPHER_CTX_new());
  if (!context) throw std::runtime_error("no cipher context");
  {
    std::array<unsigned char, 32> key{};
    const bool keyed = RAND_bytes(key.data(), static_cast<int>(key.size())) == 1 &&
                       EVP_EncryptInit_ex(context.get(), EVP_aes_256_gcm(), nullptr, key.data(), nullptr) == 1;
    OPENSSL_cleanse(key.data(), key.size());
    if (!keyed) throw std::runtime_error("no key for " + path);
  }

  std::int64_t offset = 0;
  std::uint64_t index = 0;
  while (offset < fileSize) {
    const auto length = static_cast<std::size_t>(std::min(kChunkSize, fileSize - offset));
    const std::size_t got = readFully(*files_, fd, chunk.data(), length, offset);
    if (got == 0) break;
    const auto nonce = chunkNonce(index);
    // Sealed in place; only the ciphertext, as long as the plain text, goes back. The tag
    // and the nonce are written nowhere.
    int sealed = 0;
    int tail = 0;
    if (EVP_EncryptInit_ex(context.get(), nullptr, nullptr, nullptr, nonce.data()) != 1 ||
        EVP_EncryptUpdate(context.get(), chunk.data(), &sealed, chunk.data(), static_cast<int>(got)) != 1 ||
        EVP_EncryptFinal_ex(context.get(), chunk.data() + sealed, &tail) != 1 ||
        static_cast<std::size_t>(sealed + tail) != got) {
      throw std::runtime_error("encryption failed");
    }
    writeFully(*files_, fd, chunk.data(), got, offset);
    files_->startWriteback(fd, offset, static_cast<std::int64_t>(got));
    offset += static_cast<std::int64_t>(got);
    index += 1;
    if (onStageProgress) onStageProgress(0, static_cast<double>(offset) / static_cast<double>(fileSize));
  }
  // On the disk before the passes, so that they overwrite the ciphertext and not a cache.
  syncOrThrow(*files_, fd);
}

void ShredderService::overwrite(int fd, std::int64_t fileSize, int passes, std::vector<unsigned char>& chunk,
                                const StageProgress& onStageProgress) const {
  for (int pass = 0; pass < passes; ++pass) {
    // Random on the first, third, fifth... pass, zeros in between.
    const bool random = pass % 2 == 0;
    if (!random) std::fill(chunk.begin(), chunk.end(), 0);
    std::int64_t written = 0;
    while (written < fileSize) {
      const auto length = static_cast<std::size_t>(std::min(kChunkSize, fileSize - written));
      if (random && RAND_bytes(chunk.data(), static_cast<int>(length)) != 1) {
        // A failing source yields zeros, never what the buffer held before.
        std::fill_n(chunk.begin(), length, 0);
      }
      writeFully(*files_, fd, chunk.data(), length, written);
      files_->startWriteback(fd, written, static_cast<std::int64_t>(length));
      written += static_cast<std::int64_t>(length);
      if (onStageProgress) onStageProgress(pass + 1, static_cast<double>(written) / static_cast<double>(fileSize));
    }
    syncOrThrow(*files_, fd);
  }
}

bool ShredderService::fallBack(const ShredderFile& file, int passes, std::string& refusalReason) const {
  // A fresh look first: what is gone or no longer the file listed never reaches the prompt.
  const std::optional<platform::PrivilegedItem> item = platform::describeForHelper(file.path);
  if (!item) {
    refusalReason = kGone;
    return false;
  }
  if (file.identity.parent != platform::FileIdentity{}) {
    if (item->identity.parent != file.identity.parent) {
      refusalReason = kFolderReplaced;
      return false;
    }
    if (item->identity.item != file.identity.item) {
      refusalReason = kFileReplaced;
      return false;
    }
  }
  // Even with rights, a link, a special file or a file with other names is not handed over.
  struct stat st {};
  if (::lstat(file.path.c_str(), &st) == 0) {
    if (refusalReason = refusalOf(st); !refusalReason.empty()) return false;
  }
  if (!platform_.privileged) {
    refusalReason = "could not be overwritten, and no administrator prompt is available";
    return false;
  }
  const platform::HelperBatch batch = platform::shredWithPrivileges(*platform_.privileged, *item, passes);
  if (!batch.granted) {
    refusalReason = "could not be overwritten, and administrator rights were not granted";
    return false;
  }
  const platform::HelperReport& report = batch.reports.front();
  if (report.outcome == platform::HelperOutcome::removed) return true;
  refusalReason = report.outcome == platform::HelperOutcome::gone ? std::string(kGone) : report.reason;
  return false;
}

void ShredderService::fillFreedSpace(std::int64_t totalBytes, const std::vector<ShredderFile>& files,
                                     const std::function<void(double)>& onProgress) const {
  if (files.empty()) return;
  const std::int64_t target = std::min(totalBytes, kFillLimit);
  if (target < 1) return;
  // Only into the folder that was listed: a folder swapped for a link since gets nothing.
  Descriptor folder(::open(parentOf(files.front().path).c_str(), kFolderFlags));
  struct stat above {};
  if (!folder || ::fstat(folder.get(), &above) != 0) return;
  if (files.front().identity.parent != platform::FileIdentity{} && identityOf(above) != files.front().identity.parent) {
    return;
  }

  std::vector<std::string> made;
  try {
    std::vector<unsigned char> chunk(static_cast<std::size_t>(std::min(target, kFillChunkSize)));
    std::int64_t written = 0;
    // Interrupted, it stops after the chunk in hand and removes what it wrote, as at a full disk.
    while (written < target && !platform_.stopRequested()) {
      const auto length = static_cast<std::size_t>(std::min(kFillChunkSize, target - written));
      if (RAND_bytes(chunk.data(), static_cast<int>(length)) != 1) std::fill_n(chunk.begin(), length, 0);
      const std::string name = "." + core::makeUuid() + ".tmp";
      Descriptor fd(files_->createExclusive(folder.get(), name));
      // A full disk, a quota or a read-only folder ends the fill here; that is not an error.
      if (!fd) break;
      made.push_back(name);
      writeFully(*files_, fd.get(), chunk.data(), length, 0);
      if (!fd.close()) break;
      written += static_cast<std::int64_t>(length);
      if (onProgress) onProgress(static_cast<double>(written) / static_cast<double>(target));
    }
  } catch (const std::exception&) {
    // A failed write or an exhausted random source ends the fill early, like a full disk.
  }
  for (const auto& name : made) ::unlinkat(folder.get(), name.c_str(), 0);
}

} // namespace halcyra::shredder
