// The profile functions: the Windows reading rules, byte-exact writes, the
// listings, and the guarantees we add (atomic rewrite, writers locked out of
// each other, defined answers for bad paths and bad input).
#include <mapwright/profile.h>

#include <gtest/gtest.h>

#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <grp.h>
#include <iconv.h>
#include <locale.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <wctype.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "testenv.h"

// ---------------------------------------------------------------- fault injection
// Definitions in the executable interpose the C library's for the shared
// library, whose calls go through the PLT; with no fault set they pass through.
// They must be exported: the build hides symbols by default.
#define INTERPOSE extern "C" __attribute__((visibility("default")))

namespace {
enum class Fault { None, CrashAtRename, FailRename, FailFsync, RefuseDirectoryFlock };
std::atomic<Fault> g_fault{Fault::None};
constexpr int kCrashStatus = 86;

template <typename F>
F Next(const char* name) {
    return reinterpret_cast<F>(dlsym(RTLD_NEXT, name));
}

struct FaultScope {
    explicit FaultScope(Fault f) { g_fault = f; }
    ~FaultScope() { g_fault = Fault::None; }
};
}  // namespace

INTERPOSE int renameat(int oldDir, const char* oldPath, int newDir, const char* newPath) noexcept {
    if (g_fault == Fault::CrashAtRename) _exit(kCrashStatus);
    if (g_fault == Fault::FailRename) {
        errno = EIO;
        return -1;
    }
    static auto real = Next<int (*)(int, const char*, int, const char*)>("renameat");
    return real(oldDir, oldPath, newDir, newPath);
}

INTERPOSE int fsync(int fd) {
    if (g_fault == Fault::FailFsync) {
        errno = EIO;
        return -1;
    }
    static auto real = Next<int (*)(int)>("fsync");
    return real(fd);
}

// As some network file systems do: no flock() on a directory.
INTERPOSE int flock(int fd, int operation) noexcept {
    struct stat st;
    if (g_fault == Fault::RefuseDirectoryFlock && fstat(fd, &st) == 0 && S_ISDIR(st.st_mode)) {
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

const char* const kDefault = "<default>";

// A value read into a buffer of `size` with a canary byte after it: the text,
// and the count returned, checked against the text and the canary.
std::string Get(const std::string& file, const char* section, const char* key, const char* def = kDefault,
                DWORD size = 4096) {
    std::vector<char> buf(size + 1, '#');
    DWORD n = GetPrivateProfileStringA(section, key, def, buf.data(), size, file.c_str());
    EXPECT_EQ(buf[size], '#') << "wrote past the buffer";
    std::string text(buf.data());
    EXPECT_EQ(n, text.size()) << "count returned";
    return text;
}

// A listing: the whole buffer, and the count returned.
std::pair<std::string, DWORD> List(const std::string& file, const char* section, DWORD size) {
    std::vector<char> buf(size + 1, '#');
    DWORD n = GetPrivateProfileStringA(section, nullptr, kDefault, buf.data(), size, file.c_str());
    EXPECT_EQ(buf[size], '#') << "wrote past the buffer";
    return {std::string(buf.data(), size), n};
}

bool Put(const std::string& file, const char* section, const char* key, const char* value) {
    return WritePrivateProfileStringA(section, key, value, file.c_str()) != 0;
}

std::vector<std::string> Entries(const std::string& dir) {
    std::vector<std::string> names;
    if (DIR* d = opendir(dir.c_str())) {
        while (dirent* e = readdir(d))
            if (std::strcmp(e->d_name, ".") != 0 && std::strcmp(e->d_name, "..") != 0) names.push_back(e->d_name);
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

// Runs `body` in a child process; its exit status (-1 when it did not exit).
int InChild(const std::function<int()>& body) {
    pid_t pid = fork();
    if (pid == 0) _exit(body());
    int status = 0;
    if (pid < 0 || waitpid(pid, &status, 0) != pid || !WIFEXITED(status)) return -1;
    return WEXITSTATUS(status);
}

std::string S(const char* bytes, size_t n) { return std::string(bytes, n); }

// ---------------------------------------------------------------- reading

struct ReadCase {
    const char* why;
    std::string content;
    const char* section;
    const char* key;
    std::string expected;
};

TEST(ProfileRead, WindowsRules) {
    const ReadCase cases[] = {
        {"plain value", "[A]\r\nK=1\r\n", "A", "K", "1"},
        {"missing section", "[A]\r\nK=1\r\n", "B", "K", kDefault},
        {"missing key", "[A]\r\nK=1\r\n", "A", "L", kDefault},
        {"empty value is a value, not the default", "[A]\r\nK=\r\n", "A", "K", ""},
        {"LF file", "[A]\nK=1\nL=2\n", "A", "L", "2"},
        {"CR file", "[A]\rK=1\rL=2\r", "A", "L", "2"},
        {"mixed line ends, last line unterminated", "[A]\r\nK=1\rL=2\nM=3", "A", "M", "3"},
        {"section name case", "[Datum]\r\nK=1\r\n", "dATUM", "K", "1"},
        {"key name case", "[A]\r\nDatumName=x\r\n", "A", "DATUMNAME", "x"},
        {"Windows-1251 section name case", "[\xC4\xE0\xF2\xF3\xEC]\r\nK=1\r\n", "\xE4\xC0\xD2\xD3\xCC", "K", "1"},
        {"blanks around value", "[A]\r\nK = \t v w \t\r\n", "A", "K", "v w"},
        {"vertical tab and form feed are blanks", "[A]\r\nK=\v1\f\r\n", "A", "K", "1"},
        {"no-break space is not a blank", "[A]\r\nK=\xA0" "1\r\n", "A", "K", "\xA0" "1"},
        {"blanks around names", "  [  A  ]  \r\n\t K \t=1\r\n", "A", "K", "1"},
        {"caller's names trimmed too", "[A]\r\nK=1\r\n", " A ", " K\t", "1"},
        {"double quotes stripped", "[A]\r\nK=\"a b\"\r\n", "A", "K", "a b"},
        {"single quotes stripped", "[A]\r\nK='a b'\r\n", "A", "K", "a b"},
        {"blanks inside quotes kept", "[A]\r\nK = \" a \" \r\n", "A", "K", " a "},
        {"mismatched quotes kept", "[A]\r\nK=\"a'\r\n", "A", "K", "\"a'"},
        {"a lone quote kept", "[A]\r\nK=\"\r\n", "A", "K", "\""},
        {"empty quotes give empty", "[A]\r\nK=\"\"\r\n", "A", "K", ""},
        {"only one pair stripped", "[A]\r\nK=\"\"a\"\"\r\n", "A", "K", "\"a\""},
        {"inner quotes kept", "[A]\r\nK=a \"b\" c\r\n", "A", "K", "a \"b\" c"},
        {"';' starts no comment: key named ';K'", "[A]\r\n;K=v\r\n", "A", ";K", "v"},
        {"';K' does not answer for K", "[A]\r\n;K=v\r\n", "A", "K", kDefault},
        {"'#' starts no comment either", "[A]\r\n#K=v\r\n", "A", "#K", "v"},
        {"text after the value is value", "[A]\r\nK=1 ; note\r\n", "A", "K", "1 ; note"},
        {"a line without '=' is no key", "[A]\r\nK\r\n", "A", "K", kDefault},
        {"the value runs past a second '='", "[A]\r\nK=a=b\r\n", "A", "K", "a=b"},
        {"'=v' is no key", "[A]\r\n=v\r\n", "A", "", kDefault},
        {"first of duplicate sections answers", "[A]\r\nK=1\r\n[B]\r\nK=2\r\n[a]\r\nK=3\r\nL=4\r\n", "A", "K", "1"},
        {"a later duplicate section is not searched", "[A]\r\nK=1\r\n[a]\r\nL=4\r\n", "A", "L", kDefault},
        {"first of duplicate keys answers", "[A]\r\nK=1\r\nk=2\r\n", "A", "K", "1"},
        {"keys end at the next section", "[A]\r\n[B]\r\nK=1\r\n", "A", "K", kDefault},
        {"keys before any section belong to none", "K=0\r\n[A]\r\nK=1\r\n", "", "K", kDefault},
        {"an empty section name is a name", "[]\r\nK=5\r\n", "", "K", "5"},
        {"text after ']' is ignored", "[A] trailing\r\nK=1\r\n", "A", "K", "1"},
        {"the name runs to the last ']'", "[A]B]\r\nK=1\r\n", "A]B", "K", "1"},
        {"'[' without ']' is no header", "[A\r\nK=1\r\n", "A", "K", kDefault},
        {"... but may be a key", "[A]\r\n[x=1\r\n", "A", "[x", "1"},
        {"blank and odd lines are skipped", "\r\n  \r\n[A]\r\ngarbage\r\n\r\nK=1", "A", "K", "1"},
        {"a NUL byte ends the value", S("[A]\r\nK=ab\0cd\r\n", 14), "A", "K", "ab"},
        {"other bytes are kept", "[A]\r\nK=\x01\x7f\x80\xff\xb0\r\n", "A", "K", "\x01\x7f\x80\xff\xb0"},
    };
    TempDir dir;
    const std::string file = dir.file("a.ini");
    for (const ReadCase& c : cases) {
        WriteFile(file, c.content);
        EXPECT_EQ(Get(file, c.section, c.key), c.expected) << c.why;
    }
}

TEST(ProfileRead, MissingOrUnusableFileGivesDefault) {
    TempDir dir;
    WriteFile(dir.file("plain.txt"), "[A]\r\nK=1\r\n");
    ASSERT_EQ(mkfifo(dir.file("fifo").c_str(), 0644), 0);
    const std::string paths[] = {
        dir.file("missing.ini"),          // missing file
        dir.file("nodir/a.ini"),          // missing directory
        dir.file("plain.txt/a.ini"),      // a file where a directory should be
        dir.path(),                       // a directory
        dir.file("fifo"),                 // not a regular file: must not block either
        "",                               // no path at all
    };
    for (const std::string& p : paths) {
        EXPECT_EQ(Get(p, "A", "K"), kDefault) << p;
        EXPECT_EQ(List(p, nullptr, 8), std::make_pair(S("\0\0######", 8), DWORD{0})) << p;
    }
    char buf[16];
    EXPECT_EQ(GetPrivateProfileStringA("A", "K", "d", buf, sizeof buf, nullptr), 1u) << "null file";
    EXPECT_STREQ(buf, "d");
}

TEST(ProfileRead, DefaultText) {
    struct {
        const char* def;
        const char* expected;
    } cases[] = {
        {"abc   ", "abc"},    // trailing blanks dropped
        {"abc \t", "abc"},    // tabs are blanks
        {"  abc", "  abc"},   // leading blanks kept
        {"   ", ""},          // only blanks
        {"", ""},
        {nullptr, ""},        // null reads as empty
    };
    TempDir dir;
    const std::string file = dir.file("a.ini");
    WriteFile(file, "[A]\r\nK=1\r\n");
    for (const auto& c : cases) {
        EXPECT_EQ(Get(file, "A", "missing", c.def), c.expected) << (c.def ? c.def : "(null)");
        EXPECT_EQ(Get(dir.file("none.ini"), "A", "K", c.def), c.expected) << (c.def ? c.def : "(null)");
    }
}

TEST(ProfileRead, ValueCutToBufferSizeLessOne) {
    struct {
        DWORD size;
        const char* expected;
    } cases[] = {{1, ""}, {2, "a"}, {6, "abcde"}, {7, "abcdef"}, {100, "abcdef"}};
    TempDir dir;
    const std::string file = dir.file("a.ini");
    WriteFile(file, "[A]\r\nK=abcdef\r\n");
    for (const auto& c : cases) {
        EXPECT_EQ(Get(file, "A", "K", kDefault, c.size), c.expected) << "value, size " << c.size;
        EXPECT_EQ(Get(file, "A", "X", "abcdef", c.size), c.expected) << "default, size " << c.size;
    }
    // Size 0 writes nothing at all; a null buffer is refused.
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
    struct {
        const char* why;
        const char* section;
        DWORD size;
        std::string expected;  // the whole buffer
        DWORD count;
    } cases[] = {
        {"sections, each once, first spelling", nullptr, 16, S("One\0Two\0Three\0\0#", 16), 14},
        {"sections, exact fit", nullptr, 15, S("One\0Two\0Three\0\0", 15), 14},
        {"sections cut: two NULs at the end", nullptr, 14, S("One\0Two\0Thre\0\0", 14), 12},
        {"sections cut after a name", nullptr, 5, S("One\0\0", 5), 3},
        {"sections, size 2", nullptr, 2, S("\0\0", 2), 0},
        {"sections, size 1", nullptr, 1, S("\0", 1), 0},
        {"keys of the first section, each once", "ONE", 8, S("A\0b\0\0###", 8), 4},
        {"keys cut", "One", 4, S("A\0\0\0", 4), 2},
        {"a section without keys", "Two", 4, S("\0\0##", 4), 0},
        {"a missing section: empty list, no default", "Four", 4, S("\0\0##", 4), 0},
    };
    for (const auto& c : cases) {
        auto [buf, n] = List(file, c.section, c.size);
        EXPECT_EQ(buf, c.expected) << c.why;
        EXPECT_EQ(n, c.count) << c.why;
    }
    // The key argument is ignored when the section is null.
    std::vector<char> buf(32);
    EXPECT_EQ(GetPrivateProfileStringA(nullptr, "A", "d", buf.data(), 32, file.c_str()), 14u);
}

// Names match as Unicode letters do after decoding Windows-1251: the reference
// is the C library's code-page converter and its Unicode lower-case mapping.
TEST(ProfileRead, CaseFoldAgreesWithUnicodeForEveryByte) {
    const std::string oldLocale = setlocale(LC_CTYPE, nullptr);
    ASSERT_TRUE(setlocale(LC_CTYPE, "C.UTF-8")) << "no C.UTF-8 locale";  // always there on Debian
    iconv_t cd = iconv_open("WCHAR_T", "CP1251");
    ASSERT_NE(cd, (iconv_t)-1);
    auto lower = [&](unsigned char b) -> long {  // -1: the byte is no character
        char in = static_cast<char>(b);
        wchar_t out = 0;
        char* ip = &in;
        char* op = reinterpret_cast<char*>(&out);
        size_t il = 1, ol = sizeof out;
        iconv(cd, nullptr, nullptr, nullptr, nullptr);
        if (iconv(cd, &ip, &il, &op, &ol) == static_cast<size_t>(-1)) return -1;
        return static_cast<long>(towlower(static_cast<wint_t>(out)));
    };
    // One section per byte that can stand in a name; the first of a case pair answers.
    std::vector<unsigned char> order;
    std::string text;
    for (int b = 1; b < 256; ++b) {
        if (b == '\r' || b == '\n' || b == ' ' || b == '\t' || b == '\v' || b == '\f') continue;
        order.push_back(static_cast<unsigned char>(b));
        text.append("[Z").append(1, static_cast<char>(b)).append("]\r\nK=").append(std::to_string(b)).append("\r\n");
    }
    TempDir dir;
    const std::string file = dir.file("fold.ini");
    WriteFile(file, text);
    int pairs = 0;
    for (unsigned char a : order) {
        unsigned char expected = a;
        for (unsigned char b : order) {
            if (b == a || (lower(a) != -1 && lower(a) == lower(b))) {
                expected = b;
                break;
            }
        }
        pairs += expected != a;
        const std::string name = std::string("Z").append(1, static_cast<char>(a));
        EXPECT_EQ(Get(file, name.c_str(), "K"), std::to_string(expected)) << "byte " << int(a);
    }
    iconv_close(cd);
    setlocale(LC_CTYPE, oldLocale.c_str());
    EXPECT_EQ(pairs, 26 + 32 + 15) << "lower-case letters that find their capital";
}

TEST(ProfileRead, EveryCallReadsTheFileAfresh) {
    TempDir dir;
    const std::string file = dir.file("a.ini");
    WriteFile(file, "[A]\r\nK=1\r\n");
    EXPECT_EQ(Get(file, "A", "K"), "1");
    WriteFile(file, "[A]\r\nK=2\r\n");  // same size, same second
    EXPECT_EQ(Get(file, "A", "K"), "2");
    ASSERT_TRUE(Put(file, "A", "K", "3"));
    EXPECT_EQ(Get(file, "A", "K"), "3");
}

TEST(ProfileRead, HugeLinesAndBinaryBytes) {
    TempDir dir;
    const std::string file = dir.file("a.ini");
    const std::string big(1 << 20, 'x');
    const std::string longName(100000, 'N');
    ASSERT_TRUE(Put(file, longName.c_str(), longName.c_str(), big.c_str()));
    EXPECT_EQ(Get(file, longName.c_str(), longName.c_str(), kDefault, big.size() + 1), big);
    EXPECT_EQ(Get(file, longName.c_str(), longName.c_str(), kDefault, 1000), big.substr(0, 999));

    std::string binary;  // every byte but NUL and the line ends
    for (int b = 1; b < 256; ++b)
        if (b != '\r' && b != '\n') binary.push_back(static_cast<char>(b));
    ASSERT_TRUE(Put(file, "B", "K", binary.c_str()));
    EXPECT_EQ(Get(file, "B", "K"), binary);

    // A single 8 MB line with no line end at all.
    WriteFile(file, "[A]\r\nK=" + std::string(8 << 20, '\xff'));
    EXPECT_EQ(Get(file, "A", "K", kDefault, 5), "\xff\xff\xff\xff");
    EXPECT_EQ(Get(file, "A", "L"), kDefault);
}

// ---------------------------------------------------------------- writing

struct WriteCase {
    const char* why;
    std::string before;
    const char* section;
    const char* key;
    const char* value;  // null deletes
    std::string after;
};

TEST(ProfileWrite, ChangesOnlyWhatItMust) {
    const WriteCase cases[] = {
        {"replace keeps every other byte", ";head\r\n\r\n[S]\r\n  Name = old  \r\nodd line\r\nK2=2\r\n[T]\r\nName=t\r\n",
         "S", "Name", "new", ";head\r\n\r\n[S]\r\n  Name = new\r\nodd line\r\nK2=2\r\n[T]\r\nName=t\r\n"},
        {"replace keeps the key's spelling", "[S]\r\nDatumName=a\r\n", "s", "DATUMNAME", "b", "[S]\r\nDatumName=b\r\n"},
        {"replace in an LF file", "[S]\nK=1\nL=2\n", "S", "K", "9", "[S]\nK=9\nL=2\n"},
        {"replace in a CR file", "[S]\rK=1\rL=2\r", "S", "K", "9", "[S]\rK=9\rL=2\r"},
        {"replace on an unterminated last line", "[S]\r\nK=1", "S", "K", "9", "[S]\r\nK=9"},
        {"replace a quoted value", "[S]\r\nK=\"a\"\r\n", "S", "K", "b", "[S]\r\nK=b\r\n"},
        {"replace the first of duplicate keys", "[S]\r\nK=1\r\nK=2\r\n", "S", "K", "9", "[S]\r\nK=9\r\nK=2\r\n"},
        {"write into the first of duplicate sections", "[S]\r\nK=1\r\n[S]\r\nK=2\r\n", "S", "K", "9",
         "[S]\r\nK=9\r\n[S]\r\nK=2\r\n"},
        {"binary bytes elsewhere kept", S("\xff\0\x01\r\n[S]\r\nK=1\r\n\x80\0=\r\n", 21), "S", "K", "2",
         S("\xff\0\x01\r\n[S]\r\nK=2\r\n\x80\0=\r\n", 21)},
        {"keys before any section kept", "K=0\r\n[S]\r\nK=1\r\n", "S", "K", "2", "K=0\r\n[S]\r\nK=2\r\n"},
        {"new key after the section's last key", "[S]\r\nA=1\r\nB=2\r\n\r\n;note\r\n[T]\r\n", "S", "C", "3",
         "[S]\r\nA=1\r\nB=2\r\nC=3\r\n\r\n;note\r\n[T]\r\n"},
        {"new key in a section without keys", "[S]\r\n;note\r\n[T]\r\n", "S", "C", "3", "[S]\r\nC=3\r\n;note\r\n[T]\r\n"},
        {"new key after an unterminated last line", "[S]\r\nA=1", "S", "C", "3", "[S]\r\nA=1\r\nC=3\r\n"},
        {"new key after an unterminated header", "[S]", "S", "C", "3", "[S]\r\nC=3\r\n"},
        {"new lines end in CR LF, also in an LF file", "[S]\nA=1\n", "S", "C", "3", "[S]\nA=1\nC=3\r\n"},
        {"new key's name written without blanks", "[S]\r\n", "S", " C ", "3", "[S]\r\nC=3\r\n"},
        {"a later duplicate section does not count", "[S]\r\nA=1\r\n[S]\r\nC=0\r\n", "S", "C", "3",
         "[S]\r\nA=1\r\nC=3\r\n[S]\r\nC=0\r\n"},
        {"missing section appended", "[S]\r\nA=1\r\n", "T", "K", "V", "[S]\r\nA=1\r\n[T]\r\nK=V\r\n"},
        {"missing final line end added first", "[S]\r\nA=1", "T", "K", "V", "[S]\r\nA=1\r\n[T]\r\nK=V\r\n"},
        {"a final LF is a line end", "[S]\nA=1\n", "T", "K", "V", "[S]\nA=1\n[T]\r\nK=V\r\n"},
        {"a final CR is a line end", "[S]\rA=1\r", "T", "K", "V", "[S]\rA=1\r[T]\r\nK=V\r\n"},
        {"empty file", "", "T", "K", "V", "[T]\r\nK=V\r\n"},
        {"the value is written as given", "", "T", "K", " \"q\" ", "[T]\r\nK= \"q\" \r\n"},
        {"empty value", "[T]\r\nK=1\r\n", "T", "K", "", "[T]\r\nK=\r\n"},
        {"delete a key", "[S]\r\nA=1\r\nB=2\r\n[T]\r\nA=3\r\n", "S", "A", nullptr, "[S]\r\nB=2\r\n[T]\r\nA=3\r\n"},
        {"delete a key and its duplicates", "[S]\r\nA=1\r\nB=2\r\na=3\r\n", "S", "A", nullptr, "[S]\r\nB=2\r\n"},
        {"delete an unterminated last key", "[S]\r\nB=2\r\nA=1", "S", "A", nullptr, "[S]\r\nB=2\r\n"},
        {"delete a missing key changes nothing", "[S]\r\nB=2", "S", "A", nullptr, "[S]\r\nB=2"},
        {"delete a key of a missing section changes nothing", "[S]\r\nA=2", "T", "A", nullptr, "[S]\r\nA=2"},
        {"delete a section with what it holds", ";top\r\n[S]\r\nA=1\r\n;c\r\n\r\n[T]\r\nB=2\r\n", "S", nullptr, nullptr,
         ";top\r\n[T]\r\nB=2\r\n"},
        {"delete every section of the name", "[S]\r\nA=1\r\n[T]\r\nB=2\r\n[s]\r\nC=3\r\n", "S", nullptr, nullptr,
         "[T]\r\nB=2\r\n"},
        {"delete the last section", "[T]\r\nB=2\r\n[S]\r\nA=1", "S", nullptr, nullptr, "[T]\r\nB=2\r\n"},
        {"delete a missing section changes nothing", "[T]\r\nB=2", "S", nullptr, nullptr, "[T]\r\nB=2"},
        {"a null key deletes the section whatever the value", "[S]\r\nA=1\r\n", "S", nullptr, "x", ""},
    };
    TempDir dir;
    const std::string file = dir.file("a.ini");
    for (const WriteCase& c : cases) {
        WriteFile(file, c.before);
        EXPECT_TRUE(Put(file, c.section, c.key, c.value)) << c.why;
        EXPECT_EQ(ReadFile(file), c.after) << c.why;
    }
    EXPECT_EQ(Entries(dir.path()), std::vector<std::string>{"a.ini"}) << "no temporary file left";
}

TEST(ProfileWrite, ValuesReadBackAsWritten) {
    TempDir dir;
    const std::string file = dir.file("a.ini");
    const char* values[] = {"6378137.000000", "WGS 84", "", "a=b", ";x", "[y]", "\xc0\xe1\xe2\xb0", "'q"};
    for (const char* v : values) {
        ASSERT_TRUE(Put(file, "Format 0", "Value", v)) << v;
        EXPECT_EQ(Get(file, "format 0", "value"), v);
    }
}

TEST(ProfileWrite, CreatesMissingFileWithUmaskMode) {
    TempDir dir;
    const mode_t saved = umask(022);
    ASSERT_TRUE(Put(dir.file("a.ini"), "S", "K", "V"));
    umask(077);
    ASSERT_TRUE(Put(dir.file("b.ini"), "S", "K", "V"));
    umask(saved);
    EXPECT_EQ(ReadFile(dir.file("a.ini")), "[S]\r\nK=V\r\n");
    EXPECT_EQ(ModeOf(dir.file("a.ini")), 0644u);
    EXPECT_EQ(ModeOf(dir.file("b.ini")), 0600u);
    // A delete in a missing file has nothing to do and creates nothing.
    EXPECT_TRUE(Put(dir.file("c.ini"), "S", "K", nullptr));
    EXPECT_TRUE(Put(dir.file("c.ini"), "S", nullptr, nullptr));
    EXPECT_FALSE(mwtest::FileExists(dir.file("c.ini")));
}

TEST(ProfileWrite, KeepsModeOfExistingFile) {
    TempDir dir;
    const std::string file = dir.file("a.ini");
    for (mode_t mode : {0640u, 0604u, 0755u, 0600u}) {
        WriteFile(file, "[S]\r\nK=1\r\n");
        ASSERT_EQ(chmod(file.c_str(), mode), 0);
        ASSERT_TRUE(Put(file, "S", "K", "2"));
        EXPECT_EQ(ModeOf(file), mode);
    }
}

TEST(ProfileWrite, BackslashIsASeparator) {
    TempDir dir;
    ASSERT_EQ(mkdir(dir.file("Auxiliary Data").c_str(), 0755), 0);
    const std::string windowsPath = dir.path() + "\\Auxiliary Data\\datum.ini";
    ASSERT_TRUE(Put(windowsPath, "Format 0", "DatumName", "WGS 84"));
    EXPECT_EQ(ReadFile(dir.file("Auxiliary Data/datum.ini")), "[Format 0]\r\nDatumName=WGS 84\r\n");
    EXPECT_EQ(Get(windowsPath, "Format 0", "DatumName"), "WGS 84");
    EXPECT_EQ(Entries(dir.path()), std::vector<std::string>{"Auxiliary Data"});
}

TEST(ProfileWrite, ThroughASymbolicLinkUpdatesItsTarget) {
    TempDir dir;
    WriteFile(dir.file("real.ini"), "[S]\r\nK=1\r\n");
    ASSERT_EQ(symlink("real.ini", dir.file("link.ini").c_str()), 0);
    ASSERT_TRUE(Put(dir.file("link.ini"), "S", "K", "2"));
    struct stat st {};
    ASSERT_EQ(lstat(dir.file("link.ini").c_str(), &st), 0);
    EXPECT_TRUE(S_ISLNK(st.st_mode));
    EXPECT_EQ(ReadFile(dir.file("real.ini")), "[S]\r\nK=2\r\n");
    // A dangling link is refused rather than replaced by a file.
    ASSERT_EQ(symlink("gone.ini", dir.file("dangling.ini").c_str()), 0);
    EXPECT_FALSE(Put(dir.file("dangling.ini"), "S", "K", "2"));
    ASSERT_EQ(lstat(dir.file("dangling.ini").c_str(), &st), 0);
    EXPECT_TRUE(S_ISLNK(st.st_mode));
}

TEST(ProfileWrite, RefusesWhatWouldNotReadBack) {
    struct {
        const char* why;
        const char* section;
        const char* key;
        const char* value;
    } cases[] = {
        {"'=' in a key name", "S", "a=b", "v"},
        {"LF in a key name", "S", "a\nb", "v"},
        {"CR in a key name", "S", "a\rb", "v"},
        {"an empty key name", "S", "", "v"},
        {"a blank key name", "S", " \t", "v"},
        {"a key that reads as a header", "S", "[x]", "v"},
        {"a new key line that reads as a header", "S", "[y", "]"},
        {"a replaced line that reads as a header", "S", "[x", "]"},
        {"LF in a value", "S", "K", "1\n[X]"},
        {"CR in a value", "S", "K", "1\r"},
        {"LF in a section name", "S\nX", "K", "v"},
        {"LF in a new section's value", "New", "K", "1\n"},
        {"a null section", nullptr, "K", "v"},
    };
    TempDir dir;
    const std::string file = dir.file("a.ini");
    const std::string before = "[S]\r\n[x=1\r\nK=0\r\n";
    WriteFile(file, before);
    for (const auto& c : cases) {
        EXPECT_FALSE(Put(file, c.section, c.key, c.value)) << c.why;
        EXPECT_EQ(ReadFile(file), before) << c.why;
    }
    EXPECT_EQ(WritePrivateProfileStringA("S", "K", "v", nullptr), 0) << "a null file";
    EXPECT_EQ(Entries(dir.path()), std::vector<std::string>{"a.ini"});
}

TEST(ProfileWrite, FailsForPathsThatCannotHoldAFile) {
    TempDir dir;
    WriteFile(dir.file("plain.txt"), "text");
    ASSERT_EQ(mkdir(dir.file("sub").c_str(), 0755), 0);
    ASSERT_EQ(mkfifo(dir.file("fifo").c_str(), 0644), 0);
    const std::string paths[] = {
        dir.file("nodir/a.ini"),      // missing directory
        dir.file("no/such/a.ini"),    // missing directories
        dir.file("plain.txt/a.ini"),  // a file where the directory should be
        dir.file("sub"),              // a directory
        dir.file("sub/"),             // a directory, written as one
        dir.file("fifo"),             // not a regular file
        "",                           // no path
    };
    for (const std::string& p : paths) EXPECT_FALSE(Put(p, "S", "K", "V")) << p;
    EXPECT_EQ(Entries(dir.path()), (std::vector<std::string>{"fifo", "plain.txt", "sub"}));
    EXPECT_EQ(ReadFile(dir.file("plain.txt")), "text");
    EXPECT_TRUE(Entries(dir.file("sub")).empty());
}

// Permission bits do not stop root, so as root the writes are tried in a child
// that has given up its privileges; a control write in the same child proves
// that the refusals come from the permission bits and not from the setting.
TEST(ProfileWrite, FailsForReadOnlyFileAndDirectory) {
    TempDir dir;
    const bool root = geteuid() == 0;
    const uid_t nobody = 65534;
    const std::string w = dir.file("w"), ro = dir.file("ro");
    ASSERT_EQ(mkdir(w.c_str(), 0755), 0);
    ASSERT_EQ(mkdir(ro.c_str(), 0755), 0);
    WriteFile(w + "/rw.ini", "[S]\r\nK=1\r\n");
    WriteFile(w + "/ro.ini", "[S]\r\nK=1\r\n");
    WriteFile(ro + "/a.ini", "[S]\r\nK=1\r\n");
    ASSERT_EQ(chmod((w + "/ro.ini").c_str(), 0444), 0);
    ASSERT_EQ(chmod(ro.c_str(), 0555), 0);
    if (root) {
        ASSERT_EQ(chmod(dir.path().c_str(), 0755), 0);
        for (const std::string& p : {dir.path(), w, ro, w + "/rw.ini", w + "/ro.ini", ro + "/a.ini"})
            ASSERT_EQ(chown(p.c_str(), nobody, nobody), 0) << p;
    }
    const int status = InChild([&] {
        if (root && (setgroups(0, nullptr) != 0 || setgid(nobody) != 0 || setuid(nobody) != 0)) return 9;
        if (!Put(w + "/rw.ini", "S", "K", "2")) return 10;  // control: this one may be written
        if (Put(w + "/ro.ini", "S", "K", "2")) return 11;   // read-only file, writable directory
        if (Put(ro + "/a.ini", "S", "K", "2")) return 12;   // writable file, read-only directory
        if (Put(ro + "/new.ini", "S", "K", "2")) return 13; // new file, read-only directory
        return 0;
    });
    EXPECT_EQ(status, 0) << "9 privileges kept, 10 control write failed, 11..13 a write that should fail did not";
    EXPECT_EQ(ReadFile(w + "/rw.ini"), "[S]\r\nK=2\r\n");
    EXPECT_EQ(ReadFile(w + "/ro.ini"), "[S]\r\nK=1\r\n");
    EXPECT_EQ(ReadFile(ro + "/a.ini"), "[S]\r\nK=1\r\n");
    EXPECT_EQ(Entries(w), (std::vector<std::string>{"ro.ini", "rw.ini"}));
    EXPECT_EQ(Entries(ro), std::vector<std::string>{"a.ini"});
    // The same value again needs no write and succeeds even on a read-only file.
    EXPECT_EQ(InChild([&] {
                  if (root && (setgroups(0, nullptr) != 0 || setgid(nobody) != 0 || setuid(nobody) != 0)) return 9;
                  return Put(w + "/ro.ini", "S", "K", "1") ? 0 : 1;
              }),
              0);
}

// ---------------------------------------------------------------- atomicity

TEST(ProfileAtomic, CrashBetweenWriteAndRenameLeavesOldFileWhole) {
    TempDir dir;
    const std::string file = dir.file("datum.ini");
    const std::string before = "[Format 0]\r\nDatumName=WGS 84\r\nDatumIndex=3\r\n";
    WriteFile(file, before);
    const int status = InChild([&] {
        g_fault = Fault::CrashAtRename;
        Put(file, "Format 1", "DatumName", "NAD27");
        return 0;  // reached only if the rename was not interposed
    });
    ASSERT_EQ(status, kCrashStatus) << "the writer did not die at its rename";
    EXPECT_EQ(ReadFile(file), before);
    EXPECT_EQ(Get(file, "Format 0", "DatumName"), "WGS 84");
    EXPECT_EQ(Get(file, "Format 1", "DatumName"), kDefault);
    // What the writer left: its complete temporary file, never published.
    std::vector<std::string> left = Entries(dir.path());
    ASSERT_EQ(left.size(), 2u);
    const std::string tmp = left[0] == "datum.ini" ? left[1] : left[0];
    EXPECT_EQ(ReadFile(dir.file(tmp)), before + "[Format 1]\r\nDatumName=NAD27\r\n");
    // The next writer finds the catalog usable and clears the leftover.
    ASSERT_TRUE(Put(file, "Format 1", "DatumName", "ED50"));
    EXPECT_EQ(ReadFile(file), before + "[Format 1]\r\nDatumName=ED50\r\n");
    EXPECT_EQ(Entries(dir.path()), std::vector<std::string>{"datum.ini"});
}

TEST(ProfileAtomic, FailedWriteLeavesOldFileAndNoTemporary) {
    TempDir dir;
    const std::string file = dir.file("a.ini");
    const std::string before = "[S]\r\nK=1\r\n";
    for (Fault f : {Fault::FailFsync, Fault::FailRename}) {
        WriteFile(file, before);
        {
            FaultScope scope(f);
            EXPECT_FALSE(Put(file, "S", "K", "2"));
            EXPECT_FALSE(Put(dir.file("new.ini"), "S", "K", "2"));
        }
        EXPECT_EQ(ReadFile(file), before);
        EXPECT_EQ(Entries(dir.path()), std::vector<std::string>{"a.ini"});
    }
}

// ---------------------------------------------------------------- concurrency

// Section "P<writer> <n>". (Built by appending: operator+ on temporaries
// trips a false -Wrestrict of g++ 12.)
std::string SectionOf(int writer, int n) {
    std::string s = "P";
    s.append(std::to_string(writer)).append(" ").append(std::to_string(n));
    return s;
}

// Every section a writer appended must be present with its value.
void ExpectAllSections(const std::string& file, int writers, int perWriter) {
    auto [buf, n] = List(file, nullptr, 1 << 16);
    int sections = 0;
    for (size_t i = 0; i < n; i += std::strlen(buf.data() + i) + 1) ++sections;
    EXPECT_EQ(sections, writers * perWriter + 1);  // and the one written first
    for (int w = 0; w < writers; ++w)
        for (int i = 0; i < perWriter; ++i) {
            const std::string s = SectionOf(w, i);
            EXPECT_EQ(Get(file, s.c_str(), "Value"), std::to_string(w * 1000 + i)) << s;
        }
}

int AppendSections(const std::string& file, int writer, int count) {
    for (int i = 0; i < count; ++i) {
        const std::string s = SectionOf(writer, i);
        if (!Put(file, s.c_str(), "Value", std::to_string(writer * 1000 + i).c_str())) return 1;
    }
    return 0;
}

TEST(ProfileConcurrency, TwoProcessesAppending200SectionsEachLoseNone) {
    TempDir dir;
    const std::string file = dir.file("datum.ini");
    ASSERT_TRUE(Put(file, "Format 0", "DatumName", "WGS 84"));
    const auto start = std::chrono::steady_clock::now();
    ASSERT_TRUE(mwtest::RunInChildren(2, [&](int w) { return AppendSections(file, w, 200); }));
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("two processes x 200 appended sections: %.3f s\n", seconds);
    RecordProperty("seconds", std::to_string(seconds));
    ExpectAllSections(file, 2, 200);
    EXPECT_EQ(Entries(dir.path()), std::vector<std::string>{"datum.ini"});
}

TEST(ProfileConcurrency, ThreadsOfOneProcessLoseNone) {
    TempDir dir;
    const std::string file = dir.file("a.ini");
    ASSERT_TRUE(Put(file, "Format 0", "DatumName", "WGS 84"));
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) threads.emplace_back([&, t] { failures += AppendSections(file, t, 50); });
    for (auto& th : threads) th.join();
    EXPECT_EQ(failures, 0);
    ExpectAllSections(file, 4, 50);
}

TEST(ProfileConcurrency, LockFileStandsInWhereDirectoriesCannotBeLocked) {
    TempDir dir;
    const std::string file = dir.file("a.ini");
    ASSERT_TRUE(Put(file, "Format 0", "DatumName", "WGS 84"));
    FaultScope scope(Fault::RefuseDirectoryFlock);
    ASSERT_TRUE(mwtest::RunInChildren(2, [&](int w) { return AppendSections(file, w, 100); }));
    ExpectAllSections(file, 2, 100);
    EXPECT_EQ(Entries(dir.path()).size(), 2u) << "the file and the lock file";
}

}  // namespace
