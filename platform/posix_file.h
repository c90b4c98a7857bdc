// Internal to the platform layer: the POSIX file work that the profile
// functions, the registry store and Basalt's application directory share.
// Writes here are atomic (temporary file, fsync, rename, fsync of the
// directory) and serialised by a directory lock, which is more than the
// Windows functions they stand in for promise.
//
// A static library linked into each shared library that uses it, so nothing
// here is exported.
#ifndef MAPWRIGHT_PLATFORM_POSIX_FILE_H
#define MAPWRIGHT_PLATFORM_POSIX_FILE_H

#include <sys/stat.h>

#include <string>
#include <string_view>

namespace mw {

// An owned file descriptor, closed when it goes.
class Fd {
public:
    explicit Fd(int fd = -1) : m_fd(fd) {}
    ~Fd() { reset(); }
    Fd(const Fd&) = delete;
    Fd& operator=(const Fd&) = delete;
    int get() const { return m_fd; }
    bool ok() const { return m_fd >= 0; }
    void reset(int fd = -1);
    int release() {
        int fd = m_fd;
        m_fd = -1;
        return fd;
    }

private:
    int m_fd;
};

// The home directory: $HOME when set and not empty, else the user's entry in
// the password database; empty when neither gives one.
std::string HomeDirectory();

// The directory part of a '/'-separated path: "." without a slash, "/" for a
// file in the root.
std::string ParentDir(const std::string& path);

// Makes every missing directory of `dir`, private to the user (0700), each one
// made durable in its parent. False when a part exists and is no directory.
bool MakeDirs(const std::string& dir);

// A new directory entry is durable only once its directory is synced.
void SyncDir(const std::string& dir);

// The whole of `fd` from where it stands; false on a read error.
bool ReadAll(int fd, std::string& out);
// All of `data`, retrying short writes and EINTR.
bool WriteAll(int fd, std::string_view data);

// Opens `name` (relative to `dirfd`) for reading when it is a regular file,
// filling `st`; -1 otherwise (errno EISDIR for any other kind of file). A FIFO
// in its place does not block the open.
int OpenRegular(int dirfd, const char* name, struct stat& st);

// An exclusive lock on a directory, for a read-modify-write of a file in it,
// held until the object goes.
//
// Writers lock the directory, not the file: the rename that publishes a write
// replaces the file's inode, so a lock held on the file would guard an inode
// that is no longer the file, while the directory's inode never changes and
// needs nothing created or cleaned up. flock() locks per open file description,
// so threads of one process exclude each other as processes do.
class DirectoryLock {
public:
    // `dirfd` must stay open while the lock is held.
    bool acquire(int dirfd);

private:
    bool acquireLockFile(int dirfd);
    Fd m_lockFile;
};

// Removes the temporary files of `base` that a writer which died left in the
// directory. Call it under the DirectoryLock: every live writer holds the lock
// while its temporary file exists.
void RemoveStaleTemporaries(int dirfd, const std::string& base);

// Replaces `base` in the directory `dirfd` by `content` atomically: temporary
// file, fsync, rename, fsync of the directory. `old`, when the file exists,
// gives the owner and mode to keep. On failure the old file is untouched and
// the temporary removed.
bool PublishAtomically(int dirfd, const std::string& base, std::string_view content, const struct stat* old);

}  // namespace mw

#endif
