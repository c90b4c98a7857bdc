// The profile functions: Windows' reading rules, byte-exact writes, listings,
// and what we add (atomic rewrite, locked writers, defined failures).
#include <mapwright/profile.h>

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <errno.h>
#include <grp.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "testenv.h"

// Faults interposed on the library's calls (exported: the build hides symbols).
#define INTERPOSE extern "C" __attribute__((visibility("default")))
namespace {
enum class Fault { None, CrashAtRename, FailFsync, NoDirFlock, ReadEintr, ReadEio, WriteEintr };
std::atomic<Fault> g_fault{Fault::None};
template <typename F>
F Next(const char* name) { return reinterpret_cast<F>(dlsym(RTLD_NEXT, name)); }
}  // namespace

INTERPOSE int renameat(int od, const char* op, int nd, const char* np) noexcept {
    if (g_fault == Fault::CrashAtRename) _exit(86);
    return Next<int (*)(int, const char*, int, const char*)>("renameat")(od, op, nd, np);
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
// As some network file systems do: no flock() on a directory.
INTERPOSE int flock(int fd, int op) noexcept {
    struct stat st;
    if (g_fault == Fault::NoDirFlock && fstat(fd, &st) == 0 && S_ISDIR(st.st_mode)) return errno = ENOLCK, -1;
    return Next<int (*)(int, int)>("flock")(fd, op);
}

namespace {

using mwtest::ReadFile;
using mwtest::WriteFile;
using Names = std::vector<std::string>;
const char* const D = "<default>";
std::string S(const char* b, size_t n) { return std::string(b, n); }

// Read into `size` bytes with a canary after them; checks the count returned.
std::string Get(const std::string& f, const char* sec, const char* key, const char* def = D, DWORD size = 4096) {
    std::vector<char> buf(size + 1, '#');
    DWORD n = GetPrivateProfileStringA(sec, key, def, buf.data(), size, f.c_str());
    EXPECT_EQ(buf[size], '#') << "wrote past the buffer";
    EXPECT_EQ(n, std::strlen(buf.data()));
    return buf.data();
}
// A listing: the whole buffer and the count returned.
std::pair<std::string, DWORD> List(const std::string& f, const char* sec, DWORD size) {
    std::vector<char> buf(size + 1, '#');
    DWORD n = GetPrivateProfileStringA(sec, nullptr, D, buf.data(), size, f.c_str());
    EXPECT_EQ(buf[size], '#') << "wrote past the buffer";
    return {S(buf.data(), size), n};
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
// Runs `body` in `count` forked children at once; true when each returned 0.
bool InChildren(int count, const std::function<int(int)>& body) {
    std::vector<pid_t> pids;
    for (int i = 0; i < count; ++i)
        if (const pid_t pid = fork(); pid == 0) _exit(body(i)); else pids.push_back(pid);
    bool ok = true;
    for (pid_t pid : pids) {
        int st = 0;
        ok = waitpid(pid, &st, 0) == pid && WIFEXITED(st) && WEXITSTATUS(st) == 0 && ok;
    }
    return ok;
}

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
        {"[A]\r\nK=1\r\n", "A", "K", "1"}, {"[A]\r\nK=1\r\n", "A", "L", D}, {"[A]\r\nK=\r\n", "A", "K", ""},
        {"[A]\r\nK=1\rL=2\nM=3", "A", "M", "3"}, {"[Datum]\r\nK=1\r\n", "dATUM", "K", "1"},
        {"[A]\r\nK = \t v w \t\r\n", "A", "K", "v w"}, {"[A]\r\nK=\v1\f\r\n", "A", "K", "1"},
        {"[A]\r\nK=\xA0" "1\r\n", "A", "K", "\xA0" "1"}, {"  [  A  ]  \r\n\t K \t=1\r\n", "A", "K", "1"},
        {"[A]\r\nK=1\r\n", " A ", " K\t", "1"}, {"[A]\r\nK=\"a b\"\r\n", "A", "K", "a b"},
        {"[A]\r\nK = \" a \" \r\n", "A", "K", " a "}, {"[A]\r\nK=\"a'\r\n", "A", "K", "\"a'"},
        {"[A]\r\nK=\"\r\n", "A", "K", "\""}, {"[A]\r\nK=\"\"\r\n", "A", "K", ""},
        {"[A]\r\n;K=v\r\n", "A", ";K", "v"}, {"[A]\r\nK\r\n", "A", "K", D}, {"[A]\r\nK=a=b\r\n", "A", "K", "a=b"},
        {"[A]\r\n=v\r\n", "A", "", D}, {"[A]\r\nK=1\r\n[B]\r\nK=2\r\n[a]\r\nK=3\r\n", "A", "K", "1"},
        {"[A]\r\nK=1\r\n[a]\r\nL=4\r\n", "A", "L", D}, {"[A]\r\nK=1\r\nk=2\r\n", "A", "K", "1"},
        {"[A]\r\n[B]\r\nK=1\r\n", "A", "K", D}, {"K=0\r\n[A]\r\nK=1\r\n", "", "K", D}, {"[]\r\nK=5\r\n", "", "K", "5"},
        {"[A] x\r\nK=1\r\n", "A", "K", "1"}, {"[A]B]\r\nK=1\r\n", "A]B", "K", "1"}, {"[A\r\nK=1\r\n", "A", "K", D},
        {"[A]\r\n[x=1\r\n", "A", "[x", "1"}, {S("[A]\r\nK=ab\0cd\r\n", 14), "A", "K", "ab"},
        {"[A]\r\nK=\x01\x7f\x80\xff\r\n", "A", "K", "\x01\x7f\x80\xff"},
    };
    for (const Case& c : cases) {
        WriteFile(file, c.before);
        EXPECT_EQ(Get(file, c.sec, c.key), c.value) << c.before;
    }
    WriteFile(file, "[A]\r\nK=2\r\n");  // read afresh: same size, same second
    EXPECT_EQ(Get(file, "A", "K"), "2");
    // The default loses trailing blanks; both the value and the default are cut to size - 1.
    const char* defaults[][2] = {{"abc \t", "abc"}, {"  abc", "  abc"}, {"   ", ""}, {nullptr, ""}};
    for (const auto& d : defaults) EXPECT_EQ(Get(file, "A", "no", d[0]), d[1]);
    WriteFile(file, "[A]\r\nK=abcdef\r\n");
    for (const auto& [size, text] : {std::pair<DWORD, const char*>{1, ""}, {6, "abcde"}, {7, "abcdef"}}) {
        EXPECT_EQ(Get(file, "A", "K", D, size), text) << size;
        EXPECT_EQ(Get(file, "A", "X", "abcdef", size), text) << size;
    }
    char buf[4] = "##";
    EXPECT_EQ(GetPrivateProfileStringA("A", "K", "d", buf, 0, file.c_str()), 0u);
    EXPECT_EQ(GetPrivateProfileStringA(nullptr, nullptr, "d", buf, 0, file.c_str()) + buf[0], 0u + '#');
    EXPECT_EQ(GetPrivateProfileStringA("A", "K", "d", nullptr, 10, file.c_str()), 0u);
}

TEST_F(Profile, UnusableFileGivesDefault) {
    WriteFile(dir.file("f"), "[A]\r\nK=1\r\n");
    ASSERT_EQ(mkfifo(dir.file("fifo").c_str(), 0644), 0);  // must not block
    for (const std::string& p : {dir.file("no.ini"), dir.file("f/a.ini"), dir.path(), dir.file("fifo"), std::string()}) {
        EXPECT_EQ(Get(p, "A", "K"), D) << p;
        EXPECT_EQ(List(p, nullptr, 8), std::make_pair(S("\0\0######", 8), DWORD{0})) << p;
    }
    char buf[16];
    EXPECT_EQ(GetPrivateProfileStringA("A", "K", "d  ", buf, sizeof buf, nullptr), 1u);
}

TEST_F(Profile, ListsCutWithTwoNuls) {
    WriteFile(file, "A=0\r\n[One]\r\nA=1\r\nb=2\r\na=3\r\nodd\r\n[Two]\r\n[one]\r\nC=4\r\n[Three]\r\n[]\r\n");
    const struct { const char* sec; DWORD size; std::string buf; DWORD n; } cases[] = {
        {nullptr, 16, S("One\0Two\0Three\0\0#", 16), 14}, {nullptr, 15, S("One\0Two\0Three\0\0", 15), 14},
        {nullptr, 14, S("One\0Two\0Thre\0\0", 14), 12}, {nullptr, 5, S("One\0\0", 5), 3},
        {nullptr, 2, S("\0\0", 2), 0}, {nullptr, 1, S("\0", 1), 0}, {"ONE", 8, S("A\0b\0\0###", 8), 4},
        {"One", 4, S("A\0\0\0", 4), 2}, {"Two", 4, S("\0\0##", 4), 0}, {"Four", 4, S("\0\0##", 4), 0},
    };
    for (const auto& c : cases) EXPECT_EQ(List(file, c.sec, c.size), std::make_pair(c.buf, c.n)) << c.size;
    char buf[32];  // the key is ignored when the section is null
    EXPECT_EQ(GetPrivateProfileStringA(nullptr, "A", "d", buf, 32, file.c_str()), 14u);
}

TEST_F(Profile, HugeLines) {
    const std::string big(1 << 20, 'x'), name(100000, 'N');
    ASSERT_TRUE(Put(file, name.c_str(), name.c_str(), big.c_str()));
    EXPECT_EQ(Get(file, name.c_str(), name.c_str(), D, big.size() + 1), big);
    WriteFile(file, "[A]\r\nK=" + std::string(8 << 20, '\xff'));  // one 8 MB line, no end
    EXPECT_EQ(Get(file, "A", "K", D, 5), "\xff\xff\xff\xff");
}

TEST_F(Profile, WriteChangesOnlyWhatItMust) {
    const Case cases[] = {
        {";h\r\n\r\n[S]\r\n  N = old  \r\nodd\r\nK2=2\r\n[T]\r\nN=t\r\n", "S", "N", "new",
         ";h\r\n\r\n[S]\r\n  N = new\r\nodd\r\nK2=2\r\n[T]\r\nN=t\r\n"},
        {"[S]\r\nDatumName=a\r\n", "s", "DATUMNAME", "b", "[S]\r\nDatumName=b\r\n"},
        {"[S]\rK=1\rL=2\r", "S", "K", "9", "[S]\rK=9\rL=2\r"}, {"[S]\r\nK=1", "S", "K", "9", "[S]\r\nK=9"},
        {"[S]\r\nK=1\r\nK=2\r\n", "S", "K", "9", "[S]\r\nK=9\r\nK=2\r\n"},
        {"[S]\r\nK=1\r\n[S]\r\nK=2\r\n", "S", "K", "9", "[S]\r\nK=9\r\n[S]\r\nK=2\r\n"},
        {S("\xff\0\x01\r\n[S]\r\nK=1\r\n\x80\0=\r\n", 21), "S", "K", "2", S("\xff\0\x01\r\n[S]\r\nK=2\r\n\x80\0=\r\n", 21)},
        {"K=0\r\n[S]\r\nK=1\r\n", "S", "K", "2", "K=0\r\n[S]\r\nK=2\r\n"},
        {"[S]\r\nA=1\r\n\r\n;n\r\n[T]\r\n", "S", "C", "3", "[S]\r\nA=1\r\nC=3\r\n\r\n;n\r\n[T]\r\n"},
        {"[S]\r\n;n\r\n[T]\r\n", "S", "C", "3", "[S]\r\nC=3\r\n;n\r\n[T]\r\n"},
        {"[S]\r\nA=1", "S", "C", "3", "[S]\r\nA=1\r\nC=3\r\n"}, {"[S]\nA=1\n", "S", "C", "3", "[S]\nA=1\nC=3\r\n"},
        {"[S]\r\n", "S", " C ", "3", "[S]\r\nC=3\r\n"},
        {"[S]\r\nA=1\r\n[S]\r\nC=0\r\n", "S", "C", "3", "[S]\r\nA=1\r\nC=3\r\n[S]\r\nC=0\r\n"},
        {"[S]\r\nA=1\r\n", "T", "K", "V", "[S]\r\nA=1\r\n[T]\r\nK=V\r\n"},
        {"[S]\r\nA=1", "T", "K", "V", "[S]\r\nA=1\r\n[T]\r\nK=V\r\n"},
        {"[S]\rA=1\r", "T", "K", "V", "[S]\rA=1\r[T]\r\nK=V\r\n"}, {"", "T", "K", " \"q\" ", "[T]\r\nK= \"q\" \r\n"},
        {"[S]\r\nA=1\r\nB=2\r\n[T]\r\nA=3\r\n", "S", "A", nullptr, "[S]\r\nB=2\r\n[T]\r\nA=3\r\n"},
        {"[S]\r\nA=1\r\nB=2\r\na=3\r\n", "S", "A", nullptr, "[S]\r\nB=2\r\n"}, {"[S]\r\nB=2", "S", "A", nullptr, "[S]\r\nB=2"},
        {";t\r\n[S]\r\nA=1\r\n;c\r\n\r\n[T]\r\nB=2\r\n", "S", nullptr, nullptr, ";t\r\n[T]\r\nB=2\r\n"},
        {"[S]\r\nA=1\r\n[T]\r\nB=2\r\n[s]\r\nC=3\r\n", "S", nullptr, nullptr, "[T]\r\nB=2\r\n"},
        {"[T]\r\nB=2", "S", nullptr, nullptr, "[T]\r\nB=2"}, {"[S]\r\nA=1\r\n", "S", nullptr, "x", ""},
    };
    for (const Case& c : cases) {
        WriteFile(file, c.before);
        EXPECT_TRUE(Put(file, c.sec, c.key, c.value)) << c.before;
        EXPECT_EQ(ReadFile(file), c.after) << c.before;
    }
    // Refused: what would not read back as written; the file is untouched.
    const std::string before = "[S]\r\n[x=1\r\nK=0\r\n";
    WriteFile(file, before);
    const char* refused[][3] = {{"S", "a=b", "v"}, {"S", "a\nb", "v"}, {"S", "a\rb", "v"}, {"S", " \t", "v"},
                                {"S", "[x]", "v"}, {"S", "[x", "]"}, {"S", "K", "1\n[X]"}, {"S", "K", "1\r"},
                                {"S\nX", "K", "v"}, {"New", "K", "1\n"}, {nullptr, "K", "v"}};
    for (const auto& c : refused) EXPECT_FALSE(Put(file, c[0], c[1], c[2])) << c[1] << "|" << c[2];
    EXPECT_EQ(ReadFile(file), before);
    EXPECT_EQ(WritePrivateProfileStringA("S", "K", "v", nullptr), 0);
    EXPECT_EQ(Entries(dir.path()), Names{"a.ini"}) << "no temporary file left";
}

TEST_F(Profile, WhereAndHowTheFileIsWritten) {
    const mode_t saved = umask(077);
    ASSERT_TRUE(Put(dir.file("b.ini"), "S", "K", "V"));
    umask(saved);
    EXPECT_EQ(ModeOf(dir.file("b.ini")), 0600u);
    ASSERT_EQ(chmod(dir.file("b.ini").c_str(), 0604), 0);
    ASSERT_TRUE(Put(dir.file("b.ini"), "S", "K", "W"));
    EXPECT_EQ(ModeOf(dir.file("b.ini")), 0604u) << "the existing file's mode kept";
    EXPECT_TRUE(Put(file, "S", "K", nullptr) && Put(file, "S", nullptr, nullptr));
    EXPECT_FALSE(mwtest::FileExists(file)) << "a delete creates nothing";
    ASSERT_EQ(mkdir(dir.file("Aux").c_str(), 0755), 0);
    ASSERT_TRUE(Put(dir.path() + "\\Aux\\datum.ini", "F", "K", "V"));
    EXPECT_EQ(ReadFile(dir.file("Aux/datum.ini")), "[F]\r\nK=V\r\n");
    ASSERT_EQ(symlink("b.ini", dir.file("link.ini").c_str()), 0);
    ASSERT_TRUE(Put(dir.file("link.ini"), "S", "K", "L"));
    EXPECT_EQ(ReadFile(dir.file("b.ini")), "[S]\r\nK=L\r\n") << "through a link: its target";
    WriteFile(dir.file("f"), "text");
    ASSERT_EQ(mkfifo(dir.file("fifo").c_str(), 0644), 0);
    for (const std::string& p : {dir.file("no/a.ini"), dir.file("f/a.ini"), dir.file("Aux"), dir.file("fifo"), std::string()})
        EXPECT_FALSE(Put(p, "S", "K", "V")) << p;
    EXPECT_EQ(Entries(dir.path()), (Names{"Aux", "b.ini", "f", "fifo", "link.ini"}));
}

// Root ignores permission bits: the writes run in a child without privileges.
TEST_F(Profile, ReadOnlyFileAndDirectoryRefuseWrites) {
    const std::string ro = dir.file("ro");
    ASSERT_EQ(mkdir(ro.c_str(), 0755), 0);
    for (const std::string& f : {file, ro + "/a.ini"}) WriteFile(f, "[S]\r\nK=1\r\n");
    ASSERT_EQ(chmod(file.c_str(), 0444) + chmod(ro.c_str(), 0555) + chmod(dir.path().c_str(), 0777), 0);
    EXPECT_TRUE(InChildren(1, [&](int) {
        if (geteuid() == 0 && (setgroups(0, nullptr) || setgid(65534) || setuid(65534))) return 9;
        if (!Put(dir.file("w.ini"), "S", "K", "2")) return 10;  // control
        if (!Put(file, "S", "K", "1")) return 11;               // the same value needs no write
        return Put(file, "S", "K", "2") ? 12 : Put(ro + "/a.ini", "S", "K", "2") ? 13 : 0;
    }));
    EXPECT_EQ(ReadFile(file) + ReadFile(ro + "/a.ini"), "[S]\r\nK=1\r\n[S]\r\nK=1\r\n");
    EXPECT_EQ(Entries(ro), Names{"a.ini"});
}

TEST_F(Profile, CrashBeforeRenameLeavesOldFileWhole) {
    const std::string before = "[F0]\r\nN=WGS 84\r\n";
    WriteFile(file, before);
    const pid_t pid = fork();
    if (pid == 0) g_fault = Fault::CrashAtRename, Put(file, "F1", "N", "NAD27"), _exit(0);
    int st = 0;
    ASSERT_EQ(waitpid(pid, &st, 0), pid);
    ASSERT_TRUE(WIFEXITED(st) && WEXITSTATUS(st) == 86);
    EXPECT_EQ(ReadFile(file), before);
    const Names left = Entries(dir.path());  // the complete temporary, never published
    ASSERT_EQ(left.size(), 2u);
    EXPECT_EQ(ReadFile(dir.file(left[0] == "a.ini" ? left[1] : left[0])), before + "[F1]\r\nN=NAD27\r\n");
    ASSERT_TRUE(Put(file, "F1", "N", "ED50"));  // the next writer clears the leftover
    EXPECT_EQ(ReadFile(file), before + "[F1]\r\nN=ED50\r\n");
    EXPECT_EQ(Entries(dir.path()), Names{"a.ini"});
}

TEST_F(Profile, FailedAndInterruptedCalls) {
    WriteFile(file, "[S]\r\nK=1\r\n");
    g_fault = Fault::FailFsync;
    EXPECT_FALSE(Put(file, "S", "K", "2") || Put(dir.file("new.ini"), "S", "K", "2"));
    g_fault = Fault::None;
    EXPECT_EQ(ReadFile(file), "[S]\r\nK=1\r\n");
    EXPECT_EQ(Entries(dir.path()), Names{"a.ini"}) << "no temporary left";
    g_fault = Fault::ReadEintr;
    EXPECT_EQ(Get(file, "S", "K"), "1");
    g_fault = Fault::WriteEintr;
    EXPECT_TRUE(Put(file, "S", "K", "2"));
    EXPECT_EQ(g_fault, Fault::None) << "the fault was met";
    g_fault = Fault::ReadEio;
    EXPECT_EQ(Get(file, "S", "K"), D);
    g_fault = Fault::ReadEio;
    EXPECT_FALSE(Put(file, "S", "K", "3")) << "a file that cannot be read is not rewritten";
    g_fault = Fault::None;
    EXPECT_EQ(ReadFile(file), "[S]\r\nK=2\r\n");
}

// Writer processes append sections at once, with a directory lock or a lock file; none is lost.
TEST_F(Profile, ConcurrentWritersLoseNothing) {
    for (Fault fault : {Fault::None, Fault::NoDirFlock}) {
        const std::string f = dir.file(fault == Fault::None ? "p.ini" : "q.ini");
        auto name = [](int w, int i) { return std::string("P").append(std::to_string(10000 + w * 1000 + i)); };
        g_fault = fault;
        EXPECT_TRUE(InChildren(3, [&](int w) {
            for (int i = 0; i < 60; ++i)
                if (!Put(f, name(w, i).c_str(), "V", std::to_string(i).c_str())) return 1;
            return 0;
        }));
        g_fault = Fault::None;
        EXPECT_EQ(List(f, nullptr, 1 << 16).second, 3u * 60 * 7) << "the listing's length";
        for (int w = 0; w < 3; ++w)
            for (int i = 0; i < 60; ++i) EXPECT_EQ(Get(f, name(w, i).c_str(), "V"), std::to_string(i));
    }
    EXPECT_EQ(Entries(dir.path()).size(), 3u) << "two files and the lock file";
}

}  // namespace
