#include "posix_file.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <pwd.h>
#include <stdlib.h>
#include <sys/file.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>

namespace mw {

namespace {

constexpr std::string_view kTempMark = ".mwtmp-";
constexpr size_t kTempSuffixLength = 8;
constexpr size_t kTempBaseLength = 200;  // keeps the temporary name within NAME_MAX

std::string TempPrefix(const std::string& base) {
    std::string p = ".";
    p.append(base, 0, std::min(base.size(), kTempBaseLength));
    p.append(kTempMark);
    return p;
}

bool IsTempSuffix(std::string_view s) {
    return s.size() == kTempSuffixLength &&
           std::all_of(s.begin(), s.end(), [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z'); });
}

uint64_t Mix(uint64_t x) {  // splitmix64 finaliser
    x += 0x9E3779B97F4A7C15ull;
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9ull;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EBull;
    return x ^ (x >> 31);
}

// A new file beside the target, created exclusively with mode 0666 less the
// umask, as a plain open would create the target itself.
int CreateTemporary(int dirfd, const std::string& base, std::string& name) {
    static std::atomic<uint64_t> counter{0};
    for (int attempt = 0; attempt < 100; ++attempt) {
        timespec ts{};
        ::clock_gettime(CLOCK_REALTIME, &ts);
        uint64_t r = Mix((static_cast<uint64_t>(::getpid()) << 40) ^ (counter.fetch_add(1) << 20) ^
                         static_cast<uint64_t>(ts.tv_nsec) ^ (static_cast<uint64_t>(ts.tv_sec) << 32));
        name = TempPrefix(base);
        for (size_t i = 0; i < kTempSuffixLength; ++i, r /= 36) name.push_back("0123456789abcdefghijklmnopqrstuvwxyz"[r % 36]);
        int fd = ::openat(dirfd, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666);
        if (fd >= 0 || errno != EEXIST) return fd;
    }
    return -1;
}

}  // namespace

void Fd::reset(int fd) {
    if (m_fd >= 0) ::close(m_fd);
    m_fd = fd;
}

// ---------------------------------------------------------------- directories

std::string HomeDirectory() {
    if (const char* home = std::getenv("HOME"); home && *home) return home;
    long hint = sysconf(_SC_GETPW_R_SIZE_MAX);
    std::string buffer(hint > 0 ? static_cast<size_t>(hint) : 4096, '\0');
    for (;;) {
        passwd entry{};
        passwd* found = nullptr;
        int rc = getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found);
        if (rc == ERANGE && buffer.size() < (1u << 20)) {
            buffer.resize(buffer.size() * 2);
            continue;
        }
        if (rc != 0 || !found || !found->pw_dir || !*found->pw_dir) return {};
        return found->pw_dir;
    }
}

std::string ParentDir(const std::string& path) {
    size_t slash = path.find_last_of('/');
    if (slash == std::string::npos) return ".";
    if (slash == 0) return "/";
    return path.substr(0, slash);
}

void SyncDir(const std::string& dir) {
    int fd = open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return;
    fsync(fd);
    close(fd);
}

bool MakeDirs(const std::string& dir) {
    for (size_t end = 1; end <= dir.size(); ++end) {
        if (end < dir.size() && dir[end] != '/') continue;
        std::string prefix = dir.substr(0, end);
        if (prefix.back() == '/') continue;
        if (mkdir(prefix.c_str(), 0700) == 0) {
            SyncDir(ParentDir(prefix));
            continue;
        }
        struct stat st;
        if (stat(prefix.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) return false;
    }
    return true;
}

// ---------------------------------------------------------------- whole files

bool ReadAll(int fd, std::string& out) {
    out.clear();
    char chunk[65536];
    for (;;) {
        ssize_t n = ::read(fd, chunk, sizeof chunk);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return false;
        if (n == 0) return true;
        out.append(chunk, static_cast<size_t>(n));
    }
}

bool WriteAll(int fd, std::string_view data) {
    while (!data.empty()) {
        ssize_t n = ::write(fd, data.data(), data.size());
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        data.remove_prefix(static_cast<size_t>(n));
    }
    return true;
}

// Opens `name` (relative to `dirfd`) for reading when it is a regular file.
// O_NONBLOCK keeps a FIFO in its place from blocking the open.
int OpenRegular(int dirfd, const char* name, struct stat& st) {
    Fd fd(::openat(dirfd, name, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!fd.ok()) return -1;
    if (::fstat(fd.get(), &st) != 0) return -1;
    if (!S_ISREG(st.st_mode)) {
        fd.reset();
        errno = EISDIR;
        return -1;
    }
    return fd.release();
}

// ---------------------------------------------------------------- the atomic write

bool DirectoryLock::acquire(int dirfd) {
    while (::flock(dirfd, LOCK_EX) != 0) {
        if (errno == EINTR) continue;
        return acquireLockFile(dirfd);
    }
    return true;
}

// Some network file systems refuse flock() on a directory; a lock file in it
// stands in (every writer of that directory meets the same refusal).
bool DirectoryLock::acquireLockFile(int dirfd) {
    m_lockFile.reset(::openat(dirfd, ".mapwright-profile.lock", O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0666));
    if (!m_lockFile.ok()) return false;
    while (::flock(m_lockFile.get(), LOCK_EX) != 0)
        if (errno != EINTR) return false;
    return true;
}

void RemoveStaleTemporaries(int dirfd, const std::string& base) {
    const std::string prefix = TempPrefix(base);
    int fd = ::openat(dirfd, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return;
    DIR* dir = ::fdopendir(fd);
    if (!dir) {
        ::close(fd);
        return;
    }
    while (dirent* e = ::readdir(dir)) {
        std::string_view name = e->d_name;
        if (name.size() > prefix.size() && name.substr(0, prefix.size()) == prefix &&
            IsTempSuffix(name.substr(prefix.size())))
            ::unlinkat(dirfd, e->d_name, 0);
    }
    ::closedir(dir);
}

bool PublishAtomically(int dirfd, const std::string& base, std::string_view content, const struct stat* old) {
    std::string tmp;
    Fd fd(CreateTemporary(dirfd, base, tmp));
    if (!fd.ok()) return false;
    bool ok = true;
    if (old) {
        // Keep the owner where we may (root rewriting a user's file) and the mode.
        if (old->st_uid != ::geteuid() || old->st_gid != ::getegid())
            (void)!::fchown(fd.get(), old->st_uid, old->st_gid);
        ok = ::fchmod(fd.get(), old->st_mode & 07777) == 0;
    }
    ok = ok && WriteAll(fd.get(), content) && ::fsync(fd.get()) == 0;
    ok = (::close(fd.release()) == 0) && ok;
    // Called through the PLT on purpose: tests interpose renameat to crash here.
    ok = ok && ::renameat(dirfd, tmp.c_str(), dirfd, base.c_str()) == 0;
    if (!ok) {
        ::unlinkat(dirfd, tmp.c_str(), 0);
        return false;
    }
    // The rename is durable only once the directory is; some file systems
    // cannot sync a directory and say so with EINVAL.
    return ::fsync(dirfd) == 0 || errno == EINVAL;
}

}  // namespace mw
