// The profile functions: Windows' reading rules, byte-exact writes, listings,
// and what we add (atomic rewrite, locked writers, defined failures).
#include <mapwright/profile.h>

#include <gtest/gtest.h>

#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <string>
#include <vector>

#include "testenv.h"

// Interposed for the shared library (its calls go through the PLT); they pass
// through unless a test sets a fault. Exported: the build hides symbols.
#define INTERPOSE extern "C" __attribute__((visibility("default")))

namespace {
enum class Fault { None, CrashAtRename, FailRename, FailFsync, NoDirFlock, ReadEintr, ReadEio, WriteEintr };
std::atomic<Fault> g_fault{Fault::None};
constexpr int kCrash = 86;
template <typename F>
F Next(const char* name) { return reinterpret_cast<F>(dlsym(RTLD_NEXT, name)); }
int Fail() { errno = EIO; return -1; }
}  // namespace

INTERPOSE int renameat(int od, const char* op, int nd, const char* np) noexcept {
    if (g_fault == Fault::CrashAtRename) _exit(kCrash);
    if (g_fault == Fault::FailRename) return Fail();
    static auto real = Next<int (*)(int, const char*, int, const char*)>("renameat");
    return real(od, op, nd, np);
}

INTERPOSE int fsync(int fd) {
    if (g_fault == Fault::FailFsync) return Fail();
    static auto real = Next<int (*)(int)>("fsync");
    return real(fd);
}

// One interrupted or failed call, then the real thing.
INTERPOSE ssize_t read(int fd, void* buf, size_t n) {
    if (g_fault == Fault::ReadEintr || g_fault == Fault::ReadEio) {
        errno = g_fault.exchange(Fault::None) == Fault::ReadEintr ? EINTR : EIO;
        return -1;
    }
    static auto real = Next<ssize_t (*)(int, void*, size_t)>("read");
    return real(fd, buf, n);
}

INTERPOSE ssize_t write(int fd, const void* buf, size_t n) {
    Fault expected = Fault::WriteEintr;
    if (g_fault.compare_exchange_strong(expected, Fault::None)) {
        errno = EINTR;
        return -1;
    }
    static auto real = Next<ssize_t (*)(int, const void*, size_t)>("write");
    return real(fd, buf, n);
}

// As some network file systems do: no flock() on a directory.
INTERPOSE int flock(int fd, int operation) noexcept {
    struct stat st;
    if (g_fault == Fault::NoDirFlock && fstat(fd, &st) == 0 && S_ISDIR(st.st_mode)) {
        errno = ENOLCK;
        return -1;
    }
    static auto real = Next<int (*)(int, int)>("flock");
    return real(fd, operation);
}

namespace {

using mwtest::ReadFile;
using mwtest::TempDir;
using mwtest::WriteFile;
using Names = std::vector<std::string>;
const char* const kDef = "<default>";
std::string S(const char* b, size_t n) { return std::string(b, n); }

// Read into `size` bytes with a canary after them; checks the count returned.
std::string Get(const std::string& f, const char* sec, const char* key, const char* def = kDef,
                DWORD size = 4096) {
    std::vector<char> buf(size + 1, '#');
    DWORD n = GetPrivateProfileStringA(sec, key, def, buf.data(), size, f.c_str());
    EXPECT_EQ(buf[size], '#') << "wrote past the buffer";
    EXPECT_EQ(n, std::strlen(buf.data())) << "count returned";
    return buf.data();
}

// A listing: the whole buffer and the count returned.
std::pair<std::string, DWORD> List(const std::string& f, const char* sec, DWORD size) {
    std::vector<char> buf(size + 1, '#');
    DWORD n = GetPrivateProfileStringA(sec, nullptr, kDef, buf.data(), size, f.c_str());
    EXPECT_EQ(buf[size], '#') << "wrote past the buffer";
    return {S(buf.data(), size), n};
}

bool Put(const std::string& f, const char* sec, const char* key, const char* value) {
    return WritePrivateProfileStringA(sec, key, value, f.c_str()) != 0;
}

Names Entries(const std::string& dir) {
    Names names;
    if (DIR* d = opendir(dir.c_str())) {
        while (dirent* e = readdir(d))
            if (e->d_name[0] != '.' || (e->d_name[1] && e->d_name[1] != '.')) names.push_back(e->d_name);
        closedir(d);
    }
    std::sort(names.begin(), names.end());
    return names;
}

mode_t ModeOf(const std::string& path) {
    struct stat st {};
    stat(path.c_str(), &st);
    return st.st_mode & 07777;
}

struct Case {
    const char* why;
    std::string before;
    const char* sec;
    const char* key;
    const char* value;  // reading: the expected text; writing: null deletes
    std::string after = "";  // writing only
};

TEST(ProfileRead, WindowsRules) {
    const Case cases[] = {
        {"plain value", "[A]\r\nK=1\r\n", "A", "K", "1"},
        {"missing key", "[A]\r\nK=1\r\n", "A", "L", kDef},
        {"empty value is a value", "[A]\r\nK=\r\n", "A", "K", ""},
        {"mixed ends, last unterminated", "[A]\r\nK=1\rL=2\nM=3", "A", "M", "3"},
        {"section name case", "[Datum]\r\nK=1\r\n", "dATUM", "K", "1"},
        {"blanks around value", "[A]\r\nK = \t v w \t\r\n", "A", "K", "v w"},
        {"VT and FF are blanks", "[A]\r\nK=\v1\f\r\n", "A", "K", "1"},
        {"no-break space is not", "[A]\r\nK=\xA0" "1\r\n", "A", "K", "\xA0" "1"},
        {"blanks around names", "  [  A  ]  \r\n\t K \t=1\r\n", "A", "K", "1"},
        {"caller's names trimmed", "[A]\r\nK=1\r\n", " A ", " K\t", "1"},
        {"double quotes stripped", "[A]\r\nK=\"a b\"\r\n", "A", "K", "a b"},
        {"blanks in quotes kept", "[A]\r\nK = \" a \" \r\n", "A", "K", " a "},
        {"mismatched quotes kept", "[A]\r\nK=\"a'\r\n", "A", "K", "\"a'"},
        {"a lone quote kept", "[A]\r\nK=\"\r\n", "A", "K", "\""},
        {"empty quotes", "[A]\r\nK=\"\"\r\n", "A", "K", ""},
        {"';' is no comment", "[A]\r\n;K=v\r\n", "A", ";K", "v"},
        {"no '=': no key", "[A]\r\nK\r\n", "A", "K", kDef},
        {"value past a second '='", "[A]\r\nK=a=b\r\n", "A", "K", "a=b"},
        {"'=v' is no key", "[A]\r\n=v\r\n", "A", "", kDef},
        {"first duplicate section", "[A]\r\nK=1\r\n[B]\r\nK=2\r\n[a]\r\nK=3\r\n", "A", "K", "1"},
        {"later duplicate unsearched", "[A]\r\nK=1\r\n[a]\r\nL=4\r\n", "A", "L", kDef},
        {"first duplicate key", "[A]\r\nK=1\r\nk=2\r\n", "A", "K", "1"},
        {"keys end at next section", "[A]\r\n[B]\r\nK=1\r\n", "A", "K", kDef},
        {"keys before any section", "K=0\r\n[A]\r\nK=1\r\n", "", "K", kDef},
        {"empty section name", "[]\r\nK=5\r\n", "", "K", "5"},
        {"text after ']' ignored", "[A] trailing\r\nK=1\r\n", "A", "K", "1"},
        {"name to the last ']'", "[A]B]\r\nK=1\r\n", "A]B", "K", "1"},
        {"'[' without ']'", "[A\r\nK=1\r\n", "A", "K", kDef},
        {"... may be a key", "[A]\r\n[x=1\r\n", "A", "[x", "1"},
        {"NUL ends the value", S("[A]\r\nK=ab\0cd\r\n", 14), "A", "K", "ab"},
        {"other bytes kept", "[A]\r\nK=\x01\x7f\x80\xff\r\n", "A", "K", "\x01\x7f\x80\xff"},
    };
    TempDir dir;
    const std::string file = dir.file("a.ini");
    for (const Case& c : cases) {
        WriteFile(file, c.before);
        EXPECT_EQ(Get(file, c.sec, c.key), c.value) << c.why;
    }
    // Every call reads the file afresh: same size, same second.
    WriteFile(file, "[A]\r\nK=2\r\n");
    EXPECT_EQ(Get(file, "A", "K"), "2");
}

TEST(ProfileRead, UnusableFileGivesDefault) {
    TempDir dir;
    WriteFile(dir.file("f"), "[A]\r\nK=1\r\n");
    ASSERT_EQ(mkfifo(dir.file("fifo").c_str(), 0644), 0);  // must not block
    for (const std::string& p : {dir.file("no.ini"), dir.file("no/a.ini"), dir.file("f/a.ini"),
                                 dir.path(), dir.file("fifo"), std::string()}) {
        EXPECT_EQ(Get(p, "A", "K"), kDef) << p;
        EXPECT_EQ(List(p, nullptr, 8), std::make_pair(S("\0\0######", 8), DWORD{0})) << p;
    }
    char buf[16];
    EXPECT_EQ(GetPrivateProfileStringA("A", "K", "d", buf, sizeof buf, nullptr), 1u);
    EXPECT_STREQ(buf, "d");
}

TEST(ProfileRead, DefaultLosesTrailingBlanks) {
    const char* cases[][2] = {{"abc   ", "abc"}, {"abc \t", "abc"}, {"  abc", "  abc"},
                              {"   ", ""},       {"", ""},          {nullptr, ""}};
    TempDir dir;
    WriteFile(dir.file("a.ini"), "[A]\r\nK=1\r\n");
    for (const auto& c : cases) {
        EXPECT_EQ(Get(dir.file("a.ini"), "A", "no", c[0]), c[1]) << (c[0] ? c[0] : "null");
        EXPECT_EQ(Get(dir.file("none"), "A", "K", c[0]), c[1]) << (c[0] ? c[0] : "null");
    }
}

TEST(ProfileRead, ValueCutToSizeLessOne) {
    const std::pair<DWORD, const char*> cases[] = {{1, ""}, {2, "a"}, {6, "abcde"}, {7, "abcdef"}, {99, "abcdef"}};
    TempDir dir;
    const std::string file = dir.file("a.ini");
    WriteFile(file, "[A]\r\nK=abcdef\r\n");
    for (const auto& [size, text] : cases) {
        EXPECT_EQ(Get(file, "A", "K", kDef, size), text) << "value, size " << size;
        EXPECT_EQ(Get(file, "A", "X", "abcdef", size), text) << "default, size " << size;
    }
    char buf[4] = {'#', '#', '#', '#'};
    EXPECT_EQ(GetPrivateProfileStringA("A", "K", "d", buf, 0, file.c_str()), 0u);
    EXPECT_EQ(GetPrivateProfileStringA(nullptr, nullptr, "d", buf, 0, file.c_str()), 0u);
    EXPECT_EQ(S(buf, 4), "####");
    EXPECT_EQ(GetPrivateProfileStringA("A", "K", "d", nullptr, 10, file.c_str()), 0u);
}

TEST(ProfileRead, ListsOfSectionsAndKeys) {
    TempDir dir;
    const std::string file = dir.file("a.ini");
    WriteFile(file, "A=0\r\n[One]\r\nA=1\r\nb=2\r\na=3\r\nodd\r\n[Two]\r\n[one]\r\nC=4\r\n[Three]\r\n[]\r\n");
    const struct {
        const char* sec;
        DWORD size;
        std::string buf;
        DWORD count;
    } cases[] = {
        {nullptr, 16, S("One\0Two\0Three\0\0#", 16), 14},  // each once, first spelling
        {nullptr, 15, S("One\0Two\0Three\0\0", 15), 14},   // exact fit
        {nullptr, 14, S("One\0Two\0Thre\0\0", 14), 12},    // cut: two NULs at the end
        {nullptr, 5, S("One\0\0", 5), 3},
        {nullptr, 2, S("\0\0", 2), 0},
        {nullptr, 1, S("\0", 1), 0},
        {"ONE", 8, S("A\0b\0\0###", 8), 4},  // keys of the first section, each once
        {"One", 4, S("A\0\0\0", 4), 2},
        {"Two", 4, S("\0\0##", 4), 0},
        {"Four", 4, S("\0\0##", 4), 0},  // no default for a missing section
    };
    for (const auto& c : cases) {
        EXPECT_EQ(List(file, c.sec, c.size), std::make_pair(c.buf, c.count)) << (c.sec ? c.sec : "") << c.size;
    }
    std::vector<char> buf(32);  // the key is ignored when the section is null
    EXPECT_EQ(GetPrivateProfileStringA(nullptr, "A", "d", buf.data(), 32, file.c_str()), 14u);
}

TEST(ProfileRead, HugeLines) {
    TempDir dir;
    const std::string file = dir.file("a.ini"), big(1 << 20, 'x'), name(100000, 'N');
    ASSERT_TRUE(Put(file, name.c_str(), name.c_str(), big.c_str()));
    EXPECT_EQ(Get(file, name.c_str(), name.c_str(), kDef, big.size() + 1), big);
    EXPECT_EQ(Get(file, name.c_str(), name.c_str(), kDef, 1000), big.substr(0, 999));
    WriteFile(file, "[A]\r\nK=" + std::string(8 << 20, '\xff'));  // one 8 MB line, no end
    EXPECT_EQ(Get(file, "A", "K", kDef, 5), "\xff\xff\xff\xff");
    EXPECT_EQ(Get(file, "A", "L"), kDef);
}

TEST(ProfileWrite, ChangesOnlyWhatItMust) {
    const Case cases[] = {
        {"replace keeps other bytes", ";h\r\n\r\n[S]\r\n  N = old  \r\nodd\r\nK2=2\r\n[T]\r\nN=t\r\n", "S", "N", "new",
         ";h\r\n\r\n[S]\r\n  N = new\r\nodd\r\nK2=2\r\n[T]\r\nN=t\r\n"},
        {"keeps the key's spelling", "[S]\r\nDatumName=a\r\n", "s", "DATUMNAME", "b", "[S]\r\nDatumName=b\r\n"},
        {"CR file", "[S]\rK=1\rL=2\r", "S", "K", "9", "[S]\rK=9\rL=2\r"},
        {"unterminated last line", "[S]\r\nK=1", "S", "K", "9", "[S]\r\nK=9"},
        {"first duplicate key", "[S]\r\nK=1\r\nK=2\r\n", "S", "K", "9", "[S]\r\nK=9\r\nK=2\r\n"},
        {"first duplicate section", "[S]\r\nK=1\r\n[S]\r\nK=2\r\n", "S", "K", "9", "[S]\r\nK=9\r\n[S]\r\nK=2\r\n"},
        {"binary bytes kept", S("\xff\0\x01\r\n[S]\r\nK=1\r\n\x80\0=\r\n", 21), "S", "K", "2",
         S("\xff\0\x01\r\n[S]\r\nK=2\r\n\x80\0=\r\n", 21)},
        {"keys before sections kept", "K=0\r\n[S]\r\nK=1\r\n", "S", "K", "2", "K=0\r\n[S]\r\nK=2\r\n"},
        {"new key after the last key", "[S]\r\nA=1\r\n\r\n;n\r\n[T]\r\n", "S", "C", "3",
         "[S]\r\nA=1\r\nC=3\r\n\r\n;n\r\n[T]\r\n"},
        {"new key, no keys", "[S]\r\n;n\r\n[T]\r\n", "S", "C", "3", "[S]\r\nC=3\r\n;n\r\n[T]\r\n"},
        {"after unterminated line", "[S]\r\nA=1", "S", "C", "3", "[S]\r\nA=1\r\nC=3\r\n"},
        {"new lines end CR LF", "[S]\nA=1\n", "S", "C", "3", "[S]\nA=1\nC=3\r\n"},
        {"name without blanks", "[S]\r\n", "S", " C ", "3", "[S]\r\nC=3\r\n"},
        {"later duplicate ignored", "[S]\r\nA=1\r\n[S]\r\nC=0\r\n", "S", "C", "3",
         "[S]\r\nA=1\r\nC=3\r\n[S]\r\nC=0\r\n"},
        {"section appended", "[S]\r\nA=1\r\n", "T", "K", "V", "[S]\r\nA=1\r\n[T]\r\nK=V\r\n"},
        {"line end added first", "[S]\r\nA=1", "T", "K", "V", "[S]\r\nA=1\r\n[T]\r\nK=V\r\n"},
        {"final CR is a line end", "[S]\rA=1\r", "T", "K", "V", "[S]\rA=1\r[T]\r\nK=V\r\n"},
        {"empty file", "", "T", "K", "V", "[T]\r\nK=V\r\n"},
        {"value as given", "", "T", "K", " \"q\" ", "[T]\r\nK= \"q\" \r\n"},
        {"delete a key", "[S]\r\nA=1\r\nB=2\r\n[T]\r\nA=3\r\n", "S", "A", nullptr, "[S]\r\nB=2\r\n[T]\r\nA=3\r\n"},
        {"... and its duplicates", "[S]\r\nA=1\r\nB=2\r\na=3\r\n", "S", "A", nullptr, "[S]\r\nB=2\r\n"},
        {"... missing", "[S]\r\nB=2", "S", "A", nullptr, "[S]\r\nB=2"},
        {"delete a section", ";t\r\n[S]\r\nA=1\r\n;c\r\n\r\n[T]\r\nB=2\r\n", "S", nullptr, nullptr,
         ";t\r\n[T]\r\nB=2\r\n"},
        {"... every one of the name", "[S]\r\nA=1\r\n[T]\r\nB=2\r\n[s]\r\nC=3\r\n", "S", nullptr, nullptr,
         "[T]\r\nB=2\r\n"},
        {"... missing", "[T]\r\nB=2", "S", nullptr, nullptr, "[T]\r\nB=2"},
        {"... whatever the value", "[S]\r\nA=1\r\n", "S", nullptr, "x", ""},
    };
    TempDir dir;
    const std::string file = dir.file("a.ini");
    for (const Case& c : cases) {
        WriteFile(file, c.before);
        EXPECT_TRUE(Put(file, c.sec, c.key, c.value)) << c.why;
        EXPECT_EQ(ReadFile(file), c.after) << c.why;
    }
    EXPECT_EQ(Entries(dir.path()), Names{"a.ini"}) << "no temporary file left";
}

TEST(ProfileWrite, ModeFromUmaskOrTheExistingFile) {
    TempDir dir;
    const mode_t saved = umask(022);
    ASSERT_TRUE(Put(dir.file("a.ini"), "S", "K", "V"));
    umask(077);
    ASSERT_TRUE(Put(dir.file("b.ini"), "S", "K", "V"));
    umask(saved);
    EXPECT_EQ(ModeOf(dir.file("a.ini")), 0644u);
    EXPECT_EQ(ModeOf(dir.file("b.ini")), 0600u);
    for (mode_t mode : {0640u, 0604u, 0755u}) {
        ASSERT_EQ(chmod(dir.file("a.ini").c_str(), mode), 0);
        ASSERT_TRUE(Put(dir.file("a.ini"), "S", "K", std::to_string(mode).c_str()));
        EXPECT_EQ(ModeOf(dir.file("a.ini")), mode);
    }
    // A delete in a missing file creates nothing.
    EXPECT_TRUE(Put(dir.file("c.ini"), "S", "K", nullptr));
    EXPECT_TRUE(Put(dir.file("c.ini"), "S", nullptr, nullptr));
    EXPECT_FALSE(mwtest::FileExists(dir.file("c.ini")));
}

TEST(ProfileWrite, BackslashIsASeparator) {
    TempDir dir;
    ASSERT_EQ(mkdir(dir.file("Aux").c_str(), 0755), 0);
    const std::string path = dir.path() + "\\Aux\\datum.ini";
    ASSERT_TRUE(Put(path, "F", "K", "V"));
    EXPECT_EQ(ReadFile(dir.file("Aux/datum.ini")), "[F]\r\nK=V\r\n");
    EXPECT_EQ(Get(path, "F", "K"), "V");
    EXPECT_EQ(Entries(dir.path()), Names{"Aux"});
}

TEST(ProfileWrite, ThroughASymbolicLinkUpdatesItsTarget) {
    TempDir dir;
    WriteFile(dir.file("real.ini"), "[S]\r\nK=1\r\n");
    ASSERT_EQ(symlink("real.ini", dir.file("link.ini").c_str()), 0);
    ASSERT_EQ(symlink("gone.ini", dir.file("dangling.ini").c_str()), 0);
    ASSERT_TRUE(Put(dir.file("link.ini"), "S", "K", "2"));
    EXPECT_EQ(ReadFile(dir.file("real.ini")), "[S]\r\nK=2\r\n");
    EXPECT_FALSE(Put(dir.file("dangling.ini"), "S", "K", "2")) << "not replaced by a file";
    struct stat st {};
    for (const char* link : {"link.ini", "dangling.ini"}) {
        ASSERT_EQ(lstat(dir.file(link).c_str(), &st), 0);
        EXPECT_TRUE(S_ISLNK(st.st_mode)) << link;
    }
}

TEST(ProfileWrite, RefusesWhatWouldNotReadBack) {
    const char* cases[][3] = {
        {"S", "a=b", "v"}, {"S", "a\nb", "v"},   {"S", "a\rb", "v"},  {"S", "", "v"},
        {"S", " \t", "v"}, {"S", "[x]", "v"},    {"S", "[y", "]"},    {"S", "[x", "]"},
        {"S", "K", "1\n[X]"}, {"S", "K", "1\r"}, {"S\nX", "K", "v"},  {"New", "K", "1\n"},
        {nullptr, "K", "v"},
    };
    TempDir dir;
    const std::string file = dir.file("a.ini"), before = "[S]\r\n[x=1\r\nK=0\r\n";
    WriteFile(file, before);
    for (const auto& c : cases) {
        EXPECT_FALSE(Put(file, c[0], c[1], c[2])) << (c[0] ? c[0] : "") << "|" << c[1] << "|" << c[2];
        EXPECT_EQ(ReadFile(file), before);
    }
    EXPECT_EQ(WritePrivateProfileStringA("S", "K", "v", nullptr), 0) << "a null file";
    EXPECT_EQ(Entries(dir.path()), Names{"a.ini"});
}

TEST(ProfileWrite, FailsWherePathsCannotHoldAFile) {
    TempDir dir;
    WriteFile(dir.file("f"), "text");
    ASSERT_EQ(mkdir(dir.file("sub").c_str(), 0755), 0);
    ASSERT_EQ(mkfifo(dir.file("fifo").c_str(), 0644), 0);
    for (const std::string& p : {dir.file("no/a.ini"), dir.file("no/such/a.ini"), dir.file("f/a.ini"),
                                 dir.file("sub"), dir.file("sub/"), dir.file("fifo"), std::string()})
        EXPECT_FALSE(Put(p, "S", "K", "V")) << p;
    EXPECT_EQ(Entries(dir.path()), (Names{"f", "fifo", "sub"}));
    EXPECT_EQ(ReadFile(dir.file("f")), "text");
    EXPECT_TRUE(Entries(dir.file("sub")).empty());
}

// Permission bits do not stop root: as root the writes run in a child that
// gave up its privileges; a control write shows the bits are what refuse.
TEST(ProfileWrite, FailsForReadOnlyFileAndDirectory) {
    TempDir dir;
    const bool root = geteuid() == 0;
    const uid_t nobody = 65534;
    const std::string w = dir.file("w"), ro = dir.file("ro");
    ASSERT_EQ(mkdir(w.c_str(), 0755), 0);
    ASSERT_EQ(mkdir(ro.c_str(), 0755), 0);
    for (const std::string& f : {w + "/rw.ini", w + "/ro.ini", ro + "/a.ini"}) WriteFile(f, "[S]\r\nK=1\r\n");
    ASSERT_EQ(chmod((w + "/ro.ini").c_str(), 0444), 0);
    ASSERT_EQ(chmod(ro.c_str(), 0555), 0);
    if (root) {
        ASSERT_EQ(chmod(dir.path().c_str(), 0755), 0);
        for (const std::string& p : {dir.path(), w, ro, w + "/rw.ini", w + "/ro.ini", ro + "/a.ini"})
            ASSERT_EQ(chown(p.c_str(), nobody, nobody), 0) << p;
    }
    EXPECT_TRUE(mwtest::RunInChildren(1, [&](int) {
        if (root && (setgroups(0, nullptr) != 0 || setgid(nobody) != 0 || setuid(nobody) != 0)) return 9;
        if (!Put(w + "/rw.ini", "S", "K", "2")) return 10;  // control
        if (!Put(w + "/ro.ini", "S", "K", "1")) return 11;  // the same value needs no write
        if (Put(w + "/ro.ini", "S", "K", "2")) return 12;
        if (Put(ro + "/a.ini", "S", "K", "2")) return 13;
        return Put(ro + "/new.ini", "S", "K", "2") ? 14 : 0;
    }));
    EXPECT_EQ(ReadFile(w + "/ro.ini"), "[S]\r\nK=1\r\n");
    EXPECT_EQ(ReadFile(ro + "/a.ini"), "[S]\r\nK=1\r\n");
    EXPECT_EQ(Entries(w), (Names{"ro.ini", "rw.ini"}));
    EXPECT_EQ(Entries(ro), Names{"a.ini"});
}

TEST(ProfileAtomic, CrashBeforeRenameLeavesOldFileWhole) {
    TempDir dir;
    const std::string file = dir.file("d.ini"), before = "[F0]\r\nN=WGS 84\r\n";
    WriteFile(file, before);
    const pid_t pid = fork();
    if (pid == 0) {
        g_fault = Fault::CrashAtRename;
        Put(file, "F1", "N", "NAD27");
        _exit(0);  // only if the rename was not interposed
    }
    int status = 0;
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == kCrash);
    EXPECT_EQ(ReadFile(file), before);
    const Names left = Entries(dir.path());  // the complete temporary, never published
    ASSERT_EQ(left.size(), 2u);
    EXPECT_EQ(ReadFile(dir.file(left[0] == "d.ini" ? left[1] : left[0])), before + "[F1]\r\nN=NAD27\r\n");
    ASSERT_TRUE(Put(file, "F1", "N", "ED50"));  // the next writer clears the leftover
    EXPECT_EQ(ReadFile(file), before + "[F1]\r\nN=ED50\r\n");
    EXPECT_EQ(Entries(dir.path()), Names{"d.ini"});
}

TEST(ProfileAtomic, FailedWriteLeavesOldFileAndNoTemporary) {
    TempDir dir;
    for (Fault f : {Fault::FailFsync, Fault::FailRename}) {
        WriteFile(dir.file("a.ini"), "[S]\r\nK=1\r\n");
        g_fault = f;
        EXPECT_FALSE(Put(dir.file("a.ini"), "S", "K", "2"));
        EXPECT_FALSE(Put(dir.file("new.ini"), "S", "K", "2"));
        g_fault = Fault::None;
        EXPECT_EQ(ReadFile(dir.file("a.ini")), "[S]\r\nK=1\r\n");
        EXPECT_EQ(Entries(dir.path()), Names{"a.ini"});
    }
}

TEST(ProfileAtomic, InterruptedCallsAreRetriedAndFailedReadsReported) {
    TempDir dir;
    const std::string file = dir.file("a.ini");
    WriteFile(file, "[S]\r\nK=1\r\n");
    g_fault = Fault::ReadEintr;
    EXPECT_EQ(Get(file, "S", "K"), "1");
    g_fault = Fault::WriteEintr;
    EXPECT_TRUE(Put(file, "S", "K", "2"));
    EXPECT_EQ(g_fault, Fault::None) << "the fault was met";
    g_fault = Fault::ReadEio;
    EXPECT_EQ(Get(file, "S", "K"), kDef);
    g_fault = Fault::ReadEio;
    EXPECT_FALSE(Put(file, "S", "K", "3")) << "a file that cannot be read is not rewritten";
    g_fault = Fault::None;
    EXPECT_EQ(ReadFile(file), "[S]\r\nK=2\r\n");
}

// Writer processes each append `per` sections; none is lost.
void AppendAndCheck(int writers, int per, Fault fault) {
    TempDir dir;
    const std::string file = dir.file("a.ini");
    ASSERT_TRUE(Put(file, "F0", "N", "WGS 84"));
    auto name = [](int w, int i) { return std::string("P").append(std::to_string(10000 + w * 1000 + i)); };
    g_fault = fault;
    EXPECT_TRUE(mwtest::RunInChildren(writers, [&](int w) {
        for (int i = 0; i < per; ++i)
            if (!Put(file, name(w, i).c_str(), "V", std::to_string(i).c_str())) return 1;
        return 0;
    }));
    g_fault = Fault::None;
    EXPECT_EQ(List(file, nullptr, 1 << 16).second, 3 + DWORD(writers * per) * 7) << "the listing's length";
    for (int w = 0; w < writers; ++w)
        for (int i = 0; i < per; ++i) EXPECT_EQ(Get(file, name(w, i).c_str(), "V"), std::to_string(i));
    EXPECT_EQ(Entries(dir.path()).size(), fault == Fault::None ? 1u : 2u) << "the lock file, if any";
}

TEST(ProfileConcurrency, ProcessesLoseNothing) { AppendAndCheck(3, 100, Fault::None); }
TEST(ProfileConcurrency, LockFileWhereDirectoriesCannotBeLocked) { AppendAndCheck(2, 80, Fault::NoDirFlock); }

}  // namespace
