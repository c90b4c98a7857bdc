// Profile functions: Windows' rules, byte-exact writes, atomic and locked rewrites.
#include <mapwright/profile.h>
#include <gtest/gtest.h>
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <algorithm>
#include <atomic>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>
#include "testenv.h"

// Faults interposed on the library's calls (exported: the build hides symbols).
#define INTERPOSE extern "C" __attribute__((visibility("default")))
namespace {
enum class Fault { None, CrashAtRename, FailFsync, ReadEintr, ReadEio, WriteEintr, DirFlock };
std::atomic<Fault> g_fault{Fault::None};
template <typename F>
F Next(const char* name) { return reinterpret_cast<F>(dlsym(RTLD_NEXT, name)); }
}  // namespace

INTERPOSE int renameat(int od, const char* op, int nd, const char* np) noexcept {
    if (g_fault == Fault::CrashAtRename) _exit(86);
    return Next<int (*)(int, const char*, int, const char*)>("renameat")(od, op, nd, np);
}
// As some network file systems do: no flock() on a directory.
INTERPOSE int flock(int fd, int op) noexcept {
    struct stat st;
    if (g_fault == Fault::DirFlock && fstat(fd, &st) == 0 && S_ISDIR(st.st_mode)) return errno = ENOLCK, -1;
    return Next<int (*)(int, int)>("flock")(fd, op);
}
INTERPOSE int fsync(int fd) { return g_fault == Fault::FailFsync ? errno = EIO, -1 : Next<int (*)(int)>("fsync")(fd); }
// One interrupted or failed call, then the real thing.
INTERPOSE ssize_t read(int fd, void* buf, size_t n) {
    if (g_fault == Fault::ReadEintr || g_fault == Fault::ReadEio)
        return errno = g_fault.exchange(Fault::None) == Fault::ReadEintr ? EINTR : EIO, -1;
    return Next<ssize_t (*)(int, void*, size_t)>("read")(fd, buf, n);
}
INTERPOSE ssize_t write(int fd, const void* buf, size_t n) {
    Fault expected = Fault::WriteEintr;
    if (g_fault.compare_exchange_strong(expected, Fault::None)) return errno = EINTR, -1;
    return Next<ssize_t (*)(int, const void*, size_t)>("write")(fd, buf, n);
}
namespace {
using mwtest::ReadFile;
using mwtest::WriteFile;
using Names = std::vector<std::string>;
const char* const D = "<default>";
std::string S(const char* b, size_t n) { return std::string(b, n); }

// The whole buffer of `size` bytes and a canary, and the count returned.
std::pair<std::string, DWORD> List(const std::string& f, const char* sec, DWORD size, const char* key = nullptr,
                                   const char* def = D) {
    std::vector<char> buf(size + 1, '#');
    DWORD n = GetPrivateProfileStringA(sec, key, def, buf.data(), size, f.c_str());
    EXPECT_EQ(buf[size], '#');
    return {S(buf.data(), size), n};
}
// A value: the count returned must be its length.
std::string Get(const std::string& f, const char* sec, const char* key, const char* def = D, DWORD size = 4096) {
    const auto [buf, n] = List(f, sec, size, key, def);
    EXPECT_EQ(n, std::strlen(buf.c_str()));
    return buf.c_str();
}
bool Put(const std::string& f, const char* sec, const char* key, const char* value) {
    return WritePrivateProfileStringA(sec, key, value, f.c_str()) != 0;
}
Names Entries(const std::string& dir) {
    Names names;
    for (const auto& e : std::filesystem::directory_iterator(dir)) names.push_back(e.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}
unsigned ModeOf(const std::string& p) { return unsigned(std::filesystem::status(p).permissions()); }
struct Case {
    std::string before;
    const char *sec, *key, *value;  // reading: the expected text; writing: null deletes
    std::string after = "";
};

class Profile : public ::testing::Test {
protected:
    mwtest::TempDir dir;
    const std::string file = dir.file("a.ini");
};

TEST_F(Profile, ReadRules) {
    const Case cases[] = {
        {"[A]\nK=1\n", "A", "L", D}, {"[A]\nK=\r\n", "A", "K", ""}, {"[A]\r\nK=1\rL=2\nM=3", "A", "M", "3"},
        {"[Datum]\nK=1", "dATUM", "K", "1"}, {"[A]\nK = \t v w \v\f\n", "A", "K", "v w"},
        {"  [  A  ]  \n\t K \t= \" a \" \n", " A ", " K\t", " a "},
        {"[A]\nK=\"a'\n", "A", "K", "\"a'"}, {"[A]\n;K=v\n", "A", ";K", "v"}, {"[A]\nK\n", "A", "K", D}, {"[A]\nK=a=b\n", "A", "K", "a=b"}, {"[A]\nK=\"\"\n", "A", "K", ""},
        {"[A]\nK=1\n[a]\nL=4\n", "A", "L", D},
        {"[A]\nK=1\nk=2\n[B]\nL=1\n", "A", "K", "1"}, {"[A]\n[B]\nL=1\n", "A", "L", D},
        {"[A]B] x\nK=1\n", "A]B", "K", "1"}, {"[A\nK=1\n", "A", "K", D},
        {S("[A]\nK=ab\0cd\n", 12), "A", "K", "ab"}, {"[A]\nK=\x01\x80\xff", "A", "K", "\x01\x80\xff"},
    };
    for (const Case& c : cases) {
        WriteFile(file, c.before);
        EXPECT_EQ(Get(file, c.sec, c.key), c.value) << c.before;
    }
    // The default loses trailing blanks; value and default are cut to size - 1.
    const char* defaults[][2] = {{"abc \t", "abc"}, {"  a", "  a"}, {"   ", ""}, {nullptr, ""}};
    for (const auto& d : defaults) EXPECT_EQ(Get(file, "A", "no", d[0]), d[1]);
    WriteFile(file, "[A]\nK=abcdef\n");  // read afresh: same second
    for (const auto& [size, text] : {std::pair<DWORD, const char*>{1, ""}, {6, "abcde"}, {7, "abcdef"}}) {
        EXPECT_EQ(Get(file, "A", "K", D, size), text) << size;
        EXPECT_EQ(Get(file, "A", "X", "abcdef", size), text) << size;
    }
    char buf[4] = "##";
    EXPECT_EQ(GetPrivateProfileStringA("A", "K", "d", buf, 0, file.c_str()), 0u);
    EXPECT_EQ(GetPrivateProfileStringA("A", "K", "d", nullptr, 10, file.c_str()), 0u);
    EXPECT_EQ(buf[0], '#');
    const std::string big(1 << 20, 'x');  // longer than the first buffer
    ASSERT_TRUE(Put(file, big.c_str(), "K", big.c_str()));
    EXPECT_EQ(Get(file, big.c_str(), "K", D, big.size() + 1), big);
}

TEST_F(Profile, ListsAndUnusableFiles) {
    ASSERT_EQ(mkfifo(dir.file("fifo").c_str(), 0644), 0);  // must not block
    for (const std::string& p : {dir.path(), dir.file("fifo")}) {
        EXPECT_EQ(Get(p, "A", "K"), D) << p;
        EXPECT_EQ(List(p, nullptr, 4), std::make_pair(S("\0\0##", 4), DWORD{0})) << p;
    }
    WriteFile(file, "A=0\n[One]\nA=1\nb=2\na=3\nodd\n[Two]\n[one]\nC=4\n[Three]\n");
    const struct { const char* sec; DWORD size; std::string buf; DWORD n; } cases[] = {
        {nullptr, 16, S("One\0Two\0Three\0\0#", 16), 14}, {nullptr, 14, S("One\0Two\0Thre\0\0", 14), 12},
        {"ONE", 8, S("A\0b\0\0###", 8), 4}, {"Two", 4, S("\0\0##", 4), 0}, {"Three", 4, S("\0\0##", 4), 0},
    };
    for (const auto& c : cases) EXPECT_EQ(List(file, c.sec, c.size), std::make_pair(c.buf, c.n)) << c.size;
}

TEST_F(Profile, WriteChangesOnlyWhatItMust) {
    const Case cases[] = {
        {";h\n\n[S]\n  N = old  \nodd\nK=2\n[T]\nN=t\n", "S", "N", "new", ";h\n\n[S]\n  N = new\nodd\nK=2\n[T]\nN=t\n"},
        {"[S]\nDatumName=a\n", "s", "DATUMNAME", "b", "[S]\nDatumName=b\n"}, {"[S]\rK=1\rL=2\r", "S", "K", "9", "[S]\rK=9\rL=2\r"},
        {"[S]\nK=1", "S", "K", "9", "[S]\nK=9"}, {"[S]\nK=1\n[S]\nK=2\n", "S", "K", "9", "[S]\nK=9\n[S]\nK=2\n"},
        {S("\xff\0\n[S]\nK=1\n\0=\n", 14), "S", "K", "2", S("\xff\0\n[S]\nK=2\n\0=\n", 14)},
        {"[S]\nA=1\n\n;n\n[T]\n", "S", " C ", "3", "[S]\nA=1\nC=3\r\n\n;n\n[T]\n"}, {"[S]\nA=1", "S", "C", "3", "[S]\nA=1\r\nC=3\r\n"},
        {"[S]\nA=1\n[S]\nC=0\n", "S", "C", "3", "[S]\nA=1\nC=3\r\n[S]\nC=0\n"}, {"[S]\nA=1", "T", "K", "V", "[S]\nA=1\r\n[T]\r\nK=V\r\n"},
        {"", "T", "K", " \"q\" ", "[T]\r\nK= \"q\" \r\n"},
        {"[S]\nA=1\nB=2\na=3\n[T]\nA=3\n", "S", "A", nullptr, "[S]\nB=2\n[T]\nA=3\n"},
        {";t\n[S]\nA=1\n;c\n\n[T]\nB=2\n[s]\n", "S", nullptr, nullptr, ";t\n[T]\nB=2\n"}, {"[S]\nA=1\n", "S", nullptr, "x", ""},
    };
    for (const Case& c : cases) {
        WriteFile(file, c.before);
        EXPECT_TRUE(Put(file, c.sec, c.key, c.value)) << c.before;
        EXPECT_EQ(ReadFile(file), c.after) << c.before;
    }
    // Refused: what would not read back as written; the file is untouched.
    const char* refused[][3] = {{"S", "a=b", "v"}, {"S", "a\nb", "v"}, {"S", "a\rb", "v"}, {"S", " \t", "v"}, {"S", "[x]", "v"},
                                {"S\nX", "K", "v"}, {"New", "K", "1\r"}, {nullptr, "K", "v"}};
    WriteFile(file, "[S]\n[x=1\n");
    for (const auto& c : refused) EXPECT_FALSE(Put(file, c[0], c[1], c[2])) << c[1] << "|" << c[2];
    EXPECT_EQ(WritePrivateProfileStringA("S", "K", "v", nullptr), 0);
    EXPECT_EQ(ReadFile(file), "[S]\n[x=1\n");
    EXPECT_EQ(Entries(dir.path()), Names{"a.ini"});
}

TEST_F(Profile, ModeAndPlaces) {
    const mode_t saved = umask(077);
    ASSERT_TRUE(Put(file, "S", "K", "V"));
    ASSERT_EQ(ModeOf(file) + umask(saved), 0600u + 077u);
    ASSERT_EQ(chmod(file.c_str(), 0604), 0);
    ASSERT_TRUE(Put(dir.path() + "\\a.ini", "S", "K", "L"));  // '\\' a separator
    EXPECT_EQ(ReadFile(file) + std::to_string(ModeOf(file)), "[S]\r\nK=L\r\n" + std::to_string(0604));
    EXPECT_FALSE(Put(dir.file("no/a.ini"), "S", "K", "V") || Put(dir.path(), "S", "K", "V"));
}

TEST_F(Profile, CrashBeforeRenameLeavesOldFileWhole) {
    WriteFile(file, "[F]\n");
    const pid_t pid = fork();
    if (pid == 0) g_fault = Fault::CrashAtRename, Put(file, "G", "N", "1"), _exit(0);
    int st = 0;
    ASSERT_EQ(waitpid(pid, &st, 0), pid);
    ASSERT_EQ(WEXITSTATUS(st), 86);
    EXPECT_EQ(ReadFile(file) + std::to_string(Entries(dir.path()).size()), "[F]\n2");
    WriteFile(dir.file(".a.ini.mwtmp-NOT.OURS"), "");  // characters our temporaries never have
    WriteFile(dir.file(".a.ini.mwtmp-09az09az"), "");  // a leftover of ours
    ASSERT_TRUE(Put(file, "G", "N", "2"));  // the next writer clears the leftover
    EXPECT_EQ(ReadFile(file), "[F]\n[G]\r\nN=2\r\n");
    EXPECT_EQ(Entries(dir.path()), (Names{".a.ini.mwtmp-NOT.OURS", "a.ini"}));
}

// A parsed file is reused only while unchanged: an in-place rewrite of the
// same size with its old modification time put back is still seen.
TEST_F(Profile, ReadsSeeTheFileAsItIsNow) {
    WriteFile(file, "[S]\nK=1\n");
    struct stat old;
    ASSERT_EQ(0, stat(file.c_str(), &old));
    usleep(1100000);  // old enough to be kept
    EXPECT_EQ(Get(file, "S", "K") + Get(file, "S", "K"), "11");
    WriteFile(file, "[S]\nK=2\n");
    const timespec times[2] = {old.st_atim, old.st_mtim};
    ASSERT_EQ(0, utimensat(AT_FDCWD, file.c_str(), times, 0));
    EXPECT_EQ(Get(file, "S", "K"), "2");
    ASSERT_TRUE(Put(file, "S", "K", "3"));
    EXPECT_EQ(Get(file, "S", "K"), "3");
}

TEST_F(Profile, FailedAndInterruptedCalls) {
    WriteFile(file, "[S]\nK=1\n");
    g_fault = Fault::FailFsync;
    EXPECT_FALSE(Put(file, "S", "K", "2") || Put(dir.file("new.ini"), "S", "K", "2"));
    g_fault = Fault::ReadEintr;
    EXPECT_EQ(Get(file, "S", "K"), "1");
    EXPECT_EQ(Entries(dir.path()), Names{"a.ini"});
    g_fault = Fault::WriteEintr;
    EXPECT_TRUE(Put(file, "S", "K", "2"));
    EXPECT_EQ(g_fault, Fault::None);
    g_fault = Fault::ReadEio;
    EXPECT_FALSE(Put(file, "S", "K", "3"));
    g_fault = Fault::DirFlock;  // a lock file stands in for the directory's lock
    EXPECT_TRUE(Put(file, "S", "K", "4"));
    g_fault = Fault::None;
    EXPECT_EQ(ReadFile(file) + std::to_string(Entries(dir.path()).size()), "[S]\nK=4\n2");
}

// Writer processes append sections at once, under the directory lock; none is lost.
TEST_F(Profile, ConcurrentWritersLoseNothing) {
    for (int w = 0; w < 3; ++w)
        if (fork() == 0) {
            for (int i = 0; i < 50; ++i) Put(file, std::to_string(100 * w + i + 1000).c_str(), "V", "1");
            _exit(0);
        }
    for (int st = 0; wait(&st) > 0;) EXPECT_EQ(st, 0);
    for (int i = 0; i < 150; ++i) EXPECT_EQ(Get(file, std::to_string(i / 50 * 100 + i % 50 + 1000).c_str(), "V"), "1") << i;
    EXPECT_EQ(List(file, nullptr, 1 << 16).second, 150u * 5);
}
}  // namespace
