#include <gtest/gtest.h>

#include <grp.h>
#include <iconv.h>
#include <locale.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>
#include <wctype.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <mapwright/registry.h>

#include "testenv.h"

namespace {

// A key handle closed at the end of its scope.
class Key {
public:
    Key() = default;
    ~Key() { Close(); }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    HKEY* out() {
        Close();
        return &m_key;
    }
    operator HKEY() const { return m_key; }
    void Close() {
        if (m_key) RegCloseKey(m_key);
        m_key = nullptr;
    }

private:
    HKEY m_key = nullptr;
};

std::string Bytes(std::initializer_list<int> bytes) {
    std::string s;
    for (int b : bytes) s += static_cast<char>(b);
    return s;
}

LONG SetBytes(HKEY key, const char* name, DWORD type, const std::string& bytes) {
    return RegSetValueExA(key, name, 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                          static_cast<DWORD>(bytes.size()));
}
LONG SetString(HKEY key, const char* name, const std::string& text) { return SetBytes(key, name, REG_SZ, text); }

struct Value {
    LONG rc = ERROR_SUCCESS;
    DWORD type = REG_NONE;
    std::string bytes;
};

// A value read whole: its size first, then its bytes.
Value Query(HKEY key, const char* name) {
    Value v;
    DWORD size = 0;
    v.rc = RegQueryValueExA(key, name, nullptr, &v.type, nullptr, &size);
    if (v.rc != ERROR_SUCCESS) return v;
    std::vector<BYTE> buffer(size + 1);
    DWORD got = size + 1;
    v.rc = RegQueryValueExA(key, name, nullptr, &v.type, buffer.data(), &got);
    v.bytes.assign(reinterpret_cast<const char*>(buffer.data()), got);
    return v;
}

// Sets or unsets a variable for one scope.
class EnvVar {
public:
    EnvVar(const char* name, const char* value) : m_name(name) {
        if (const char* old = std::getenv(name)) m_old = old;
        Set(value);
    }
    ~EnvVar() { Set(m_old ? m_old->c_str() : nullptr); }
    EnvVar(const EnvVar&) = delete;
    EnvVar& operator=(const EnvVar&) = delete;

    void Set(const char* value) {
        if (value)
            setenv(m_name, value, 1);
        else
            unsetenv(m_name);
    }

private:
    const char* m_name;
    std::optional<std::string> m_old;
};

class Umask {
public:
    explicit Umask(mode_t mask) : m_old(umask(mask)) {}
    ~Umask() { umask(m_old); }
    Umask(const Umask&) = delete;
    Umask& operator=(const Umask&) = delete;

private:
    mode_t m_old;
};

mode_t Mode(const std::string& path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 ? (st.st_mode & 07777) : 0;
}

// SQLite's own verdict on the file, through a connection of its own.
std::string IntegrityCheck(const std::string& path) {
    sqlite3* db = nullptr;
    std::string verdict = "cannot open";
    if (sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
        sqlite3_stmt* stmt = nullptr;
        verdict = "cannot run";
        if (sqlite3_prepare_v2(db, "PRAGMA integrity_check", -1, &stmt, nullptr) == SQLITE_OK) {
            verdict.clear();
            while (sqlite3_step(stmt) == SQLITE_ROW)
                verdict += reinterpret_cast<const char*>(sqlite3_column_text(stmt, 0));
        }
        sqlite3_finalize(stmt);
    }
    sqlite3_close_v2(db);
    return verdict;
}

class Registry : public ::testing::Test {
protected:
    mwtest::IsolatedEnv env{false};
};

TEST_F(Registry, ValuesComeBackWithTheirBytesAndType) {
    std::string high, every;
    for (int b = 0x80; b <= 0xFF; ++b) high += static_cast<char>(b);
    for (int b = 0; b <= 0xFF; ++b) every += static_cast<char>(b);
    struct Case {
        const char* why;
        const char* name;
        DWORD type;
        std::string bytes;
    };
    const Case cases[] = {
        {"ASCII text as the library saves it", "c_lon", REG_SZ, "37.500000"},
        {"an empty string", "Empty", REG_SZ, ""},
        {"Windows-1251 name and text", "\xC8\xEC\xFF", REG_SZ, "\xCF\xF3\xEB\xEA\xEE\xE2\xEE 1942"},
        {"every byte from 0x80 up", "High", REG_SZ, high},
        {"binary with NULs", "Blob", REG_BINARY, every},
        {"a DWORD", "Count", REG_DWORD, Bytes({0x2A, 0, 0, 0})},
        {"a type we do not know", "Odd", 0x1234567u, "x"},
        {"the default value", nullptr, REG_SZ, "default"},
        {"100 000 bytes", "Long", REG_BINARY, std::string(100000, '\xA5')},
        {"a backslash in a value name", "a\\b", REG_SZ, "value names are not paths"},
    };
    {
        Key key;
        ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyA(HKEY_CURRENT_USER, "Software\\Mapwright\\RoundTrip", key.out()));
        for (const Case& c : cases) EXPECT_EQ(ERROR_SUCCESS, SetBytes(key, c.name, c.type, c.bytes)) << c.why;
    }
    // Read through a new handle, hence a new connection to the file.
    Key key;
    ASSERT_EQ(ERROR_SUCCESS,
              RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\Mapwright\\RoundTrip", 0, KEY_READ, key.out()));
    for (const Case& c : cases) {
        Value v = Query(key, c.name);
        EXPECT_EQ(ERROR_SUCCESS, v.rc) << c.why;
        EXPECT_EQ(c.type, v.type) << c.why;
        EXPECT_EQ(c.bytes, v.bytes) << c.why;
    }
}

TEST_F(Registry, AWriteReplacesDataAndType) {
    Key key;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyA(HKEY_CURRENT_USER, "Software\\Replace", key.out()));
    ASSERT_EQ(ERROR_SUCCESS, SetString(key, "scale", "0.999600"));
    ASSERT_EQ(ERROR_SUCCESS, SetBytes(key, "SCALE", REG_DWORD, Bytes({1, 2, 3, 4})));
    Value v = Query(key, "Scale");
    EXPECT_EQ(ERROR_SUCCESS, v.rc);
    EXPECT_EQ(REG_DWORD, v.type);
    EXPECT_EQ(Bytes({1, 2, 3, 4}), v.bytes);
    ASSERT_EQ(ERROR_SUCCESS, SetString(key, "scale", ""));
    EXPECT_EQ("", Query(key, "scale").bytes);
}

TEST_F(Registry, ValuesAtTheRootOfTheCurrentUser) {
    ASSERT_EQ(ERROR_SUCCESS, SetString(HKEY_CURRENT_USER, "AtRoot", "r"));
    EXPECT_EQ("r", Query(HKEY_CURRENT_USER, "atroot").bytes);
    Key root;
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExA(HKEY_CURRENT_USER, nullptr, 0, KEY_READ, root.out()));
    EXPECT_EQ("r", Query(root, "AtRoot").bytes);
    Key same;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyA(HKEY_CURRENT_USER, "\\", same.out()));
    ASSERT_EQ(ERROR_SUCCESS, SetString(same, "AtRoot", "s"));
    EXPECT_EQ("s", Query(HKEY_CURRENT_USER, "AtRoot").bytes);
    // A value at the root is not a value of the keys below it.
    Key below;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyA(HKEY_CURRENT_USER, "Software", below.out()));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, Query(below, "AtRoot").rc);
}

TEST_F(Registry, KeyPathsIgnoreTheCaseOfLetters) {
    enum Found { No, SameKey, Ancestor };
    struct Case {
        const char* created;
        const char* opened;
        Found found;
        const char* why;
    };
    const Case cases[] = {
        {"Software\\Mapwright", "SOFTWARE\\mapwright", SameKey, "ASCII letters"},
        {"\xCF\xF0\xEE\xE5\xEA\xF2", "\xCF\xD0\xCE\xC5\xCA\xD2", SameKey, "Cyrillic, main block"},
        {"\xE0\xFF", "\xC0\xDF", SameKey, "first and last letters of the block"},
        {"\xF7", "\xD7", SameKey, "0xD7/0xF7 are letters here, not the Latin-1 signs"},
        {"\xB8\xEB\xEA\xE0", "\xA8\xCB\xCA\xC0", SameKey, "the letter outside the block"},
        {"\xBF\xB3\xBA", "\xAF\xB2\xAA", SameKey, "Ukrainian letters"},
        {"a", "\xE0", No, "Latin a is not Cyrillic a"},
        {"@", "`", No, "0x40 and 0x60 are not letters"},
        {"[", "{", No, "nor are 0x5B and 0x7B"},
        {"\xB0", "\x90", No, "nor the degree sign and 0x90"},
        {"Software\\Mapwright", "\\Software\\\\Mapwright\\", SameKey, "empty components are ignored"},
        {"Software\\Mapwright\\Deep", "software", Ancestor, "every level is made"},
        {"Software\\Map", "Software\\Mapwright", No, "a longer name is another key"},
        {"Software\\Mapwright", "Software\\Map", No, "so is a shorter one"},
        {"Software\\Mapwright", "Software/Mapwright", No, "'/' is part of a name"},
    };
    int row = 0;
    for (const Case& c : cases) {
        const std::string base = "Case" + std::to_string(row++) + "\\";
        Key created;
        ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyA(HKEY_CURRENT_USER, (base + c.created).c_str(), created.out()))
            << c.why;
        ASSERT_EQ(ERROR_SUCCESS, SetString(created, "Row", c.why));
        Key opened;
        LONG rc = RegOpenKeyExA(HKEY_CURRENT_USER, (base + c.opened).c_str(), 0, KEY_READ, opened.out());
        EXPECT_EQ(c.found != No ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND, rc) << c.why;
        // A found key is the same key, not a new one of that spelling.
        if (rc == ERROR_SUCCESS && c.found == SameKey) {
            EXPECT_EQ(c.why, Query(opened, "Row").bytes) << c.why;
        }
    }
}

TEST_F(Registry, ValueNamesIgnoreTheCaseOfLetters) {
    struct Case {
        const char* written;
        const char* read;
        bool found;
        const char* why;
    };
    const Case cases[] = {
        {"ProjectionIndex", "PROJECTIONINDEX", true, "ASCII letters"},
        {"\xCC\xE0\xF1\xF8\xF2\xE0\xE1", "\xCC\xC0\xD1\xD8\xD2\xC0\xC1", true, "Cyrillic letters"},
        {"", nullptr, true, "an empty name and a null name are both the default value"},
        {"fe", "fn", false, "another name"},
        {"c_lon", "c_lon ", false, "a trailing blank is part of the name"},
    };
    int row = 0;
    for (const Case& c : cases) {
        Key key;
        ASSERT_EQ(ERROR_SUCCESS,
                  RegCreateKeyA(HKEY_CURRENT_USER, ("Names\\" + std::to_string(row++)).c_str(), key.out()));
        ASSERT_EQ(ERROR_SUCCESS, SetString(key, c.written, c.why));
        Value v = Query(key, c.read);
        EXPECT_EQ(c.found ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND, v.rc) << c.why;
        if (c.found) {
            EXPECT_EQ(c.why, v.bytes) << c.why;
        }
    }
}

// Windows compares names as Unicode with simple case mapping. The reference
// here is the C library's: each Windows-1251 byte becomes its character
// through iconv, and two bytes name one key when towlower or towupper in a
// UTF-8 locale makes their characters equal.
TEST_F(Registry, CaseFoldingAgreesWithTheCharactersOfWindows1251) {
    locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(nullptr));
    // Debian's C library always has both; their absence is a broken machine.
    ASSERT_TRUE(utf8) << "no C.UTF-8 locale";
    iconv_t cd = iconv_open("WCHAR_T", "CP1251");
    if (cd == reinterpret_cast<iconv_t>(-1)) freelocale(utf8);
    ASSERT_NE(cd, reinterpret_cast<iconv_t>(-1)) << "no CP1251 converter";
    std::vector<int> bytes;
    std::vector<wchar_t> chars;
    for (int b = 1; b < 256; ++b) {
        if (b == '\\' || b == 0x98) continue;  // the separator; the unassigned byte
        char in = static_cast<char>(b);
        wchar_t out = 0;
        char* src = &in;
        char* dst = reinterpret_cast<char*>(&out);
        size_t inLeft = 1, outLeft = sizeof out;
        ASSERT_NE(static_cast<size_t>(-1), iconv(cd, &src, &inLeft, &dst, &outLeft)) << b;
        bytes.push_back(b);
        chars.push_back(out);
    }
    iconv_close(cd);
    auto same = [&](wchar_t x, wchar_t y) {
        return towlower_l(static_cast<wint_t>(x), utf8) == towlower_l(static_cast<wint_t>(y), utf8) ||
               towupper_l(static_cast<wint_t>(x), utf8) == towupper_l(static_cast<wint_t>(y), utf8);
    };

    // Each key remembers the first byte that made it.
    for (int b : bytes) {
        Key key;
        ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyA(HKEY_CURRENT_USER, ("Fold\\" + Bytes({b})).c_str(), key.out()));
        if (Query(key, nullptr).rc == ERROR_FILE_NOT_FOUND) {
            ASSERT_EQ(ERROR_SUCCESS, SetString(key, nullptr, Bytes({b})));
        }
    }
    for (size_t i = 0; i < bytes.size(); ++i) {
        size_t first = 0;
        while (!same(chars[first], chars[i])) ++first;
        Key key;
        ASSERT_EQ(ERROR_SUCCESS,
                  RegOpenKeyExA(HKEY_CURRENT_USER, ("Fold\\" + Bytes({bytes[i]})).c_str(), 0, KEY_READ, key.out()));
        EXPECT_EQ(Bytes({bytes[first]}), Query(key, nullptr).bytes) << "byte 0x" << std::hex << bytes[i];
    }
    freelocale(utf8);
}

TEST_F(Registry, QueryReportsTheSizeAndWritesNoMoreThanTheBufferHolds) {
    Key key;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyA(HKEY_CURRENT_USER, "Software\\Sizes", key.out()));
    ASSERT_EQ(ERROR_SUCCESS, SetString(key, "Five", "hello"));
    ASSERT_EQ(ERROR_SUCCESS, SetString(key, "Empty", ""));
    struct Case {
        const char* why;
        const char* name;
        bool buffer;  // false: a null data pointer
        DWORD room;
        LONG rc;
        DWORD size;
        bool nul;  // a NUL written after the data
    };
    const Case cases[] = {
        {"null buffer: the size only", "Five", false, 0, ERROR_SUCCESS, 5, false},
        {"no room at all", "Five", true, 0, ERROR_MORE_DATA, 5, false},
        {"one byte short", "Five", true, 4, ERROR_MORE_DATA, 5, false},
        {"exact fit: no room for a NUL", "Five", true, 5, ERROR_SUCCESS, 5, false},
        {"room for the NUL", "Five", true, 6, ERROR_SUCCESS, 5, true},
        {"the 256 bytes the library uses", "Five", true, 256, ERROR_SUCCESS, 5, true},
        {"empty value in no room", "Empty", true, 0, ERROR_SUCCESS, 0, false},
        {"empty value with room", "Empty", true, 1, ERROR_SUCCESS, 0, true},
        {"empty value, null buffer", "Empty", false, 0, ERROR_SUCCESS, 0, false},
    };
    const BYTE fill = 0x7E;
    for (const Case& c : cases) {
        std::vector<BYTE> buffer(300, fill);
        DWORD size = c.room;
        DWORD type = REG_NONE;
        LONG rc = RegQueryValueExA(key, c.name, nullptr, &type, c.buffer ? buffer.data() : nullptr, &size);
        EXPECT_EQ(c.rc, rc) << c.why;
        EXPECT_EQ(c.size, size) << c.why;
        EXPECT_EQ(REG_SZ, type) << c.why;
        size_t written = 0;
        if (rc == ERROR_SUCCESS && c.buffer) {
            const std::string stored = std::string(c.name) == "Five" ? "hello" : "";
            EXPECT_EQ(stored, std::string(reinterpret_cast<char*>(buffer.data()), size)) << c.why;
            written = size;
            if (c.nul) {
                EXPECT_EQ(0, buffer[written++]) << c.why;
            }
        }
        for (size_t i = written; i < buffer.size(); ++i)
            ASSERT_EQ(fill, buffer[i]) << c.why << ": byte " << i << " changed";
    }
    // Neither data nor size: the value exists, and its type.
    DWORD type = REG_NONE;
    EXPECT_EQ(ERROR_SUCCESS, RegQueryValueExA(key, "Five", nullptr, &type, nullptr, nullptr));
    EXPECT_EQ(REG_SZ, type);
}

TEST_F(Registry, MissingKeysAndValuesAreNotFound) {
    {
        Key present;
        ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyA(HKEY_CURRENT_USER, "Software\\Present", present.out()));
        ASSERT_EQ(ERROR_SUCCESS, SetString(present, "Here", "1"));
    }
    const char* missingKeys[] = {"Software\\Absent", "Software\\Present\\Child", "Software\\Pres",
                                 "Absent\\Deeper", "Software\\Present\\Here"};
    for (const char* path : missingKeys) {
        HKEY key = reinterpret_cast<HKEY>(uintptr_t{0x7777});
        EXPECT_EQ(ERROR_FILE_NOT_FOUND, RegOpenKeyExA(HKEY_CURRENT_USER, path, 0, KEY_READ, &key)) << path;
        EXPECT_EQ(nullptr, key) << path << ": no handle on failure";
    }
    struct Case {
        const char* key;
        const char* value;
        const char* why;
    };
    const Case missingValues[] = {
        {"Software\\Present", "Gone", "no such name"},
        {"Software\\Present", nullptr, "a default value never written"},
        {"Software", "Here", "the value belongs to the key below"},
        {"", "Here", "nor to the root"},
    };
    for (const Case& c : missingValues) {
        Key key;
        ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExA(HKEY_CURRENT_USER, c.key, 0, KEY_READ, key.out())) << c.why;
        BYTE buffer[16] = {0x55};
        DWORD size = sizeof buffer;
        DWORD type = 0xDEAD;
        EXPECT_EQ(ERROR_FILE_NOT_FOUND, RegQueryValueExA(key, c.value, nullptr, &type, buffer, &size)) << c.why;
        EXPECT_EQ(sizeof buffer, size) << c.why << ": size untouched";
        EXPECT_EQ(0xDEADu, type) << c.why << ": type untouched";
        EXPECT_EQ(0x55, buffer[0]) << c.why;
    }
}

TEST_F(Registry, AccessIsCheckedPerHandle) {
    {
        Key key;
        ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyA(HKEY_CURRENT_USER, "Software\\Access", key.out()));
        ASSERT_EQ(ERROR_SUCCESS, SetString(key, "Kept", "original"));
    }
    struct Case {
        const char* why;
        REGSAM access;
        LONG query, set, create;
    };
    const Case cases[] = {
        {"KEY_READ", KEY_READ, ERROR_SUCCESS, ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED},
        {"KEY_WRITE", KEY_WRITE, ERROR_ACCESS_DENIED, ERROR_SUCCESS, ERROR_SUCCESS},
        {"KEY_ALL_ACCESS", KEY_ALL_ACCESS, ERROR_SUCCESS, ERROR_SUCCESS, ERROR_SUCCESS},
        {"KEY_QUERY_VALUE alone", KEY_QUERY_VALUE, ERROR_SUCCESS, ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED},
        {"KEY_SET_VALUE alone", KEY_SET_VALUE, ERROR_ACCESS_DENIED, ERROR_SUCCESS, ERROR_ACCESS_DENIED},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        Key key;
        ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\Access", 0, c.access, key.out()));
        BYTE buffer[32];
        DWORD size = sizeof buffer;
        EXPECT_EQ(c.query, RegQueryValueExA(key, "Kept", nullptr, nullptr, buffer, &size));
        EXPECT_EQ(c.set, SetString(key, c.why, "written"));
        Key sub;
        EXPECT_EQ(c.create, RegCreateKeyA(key, c.why, sub.out()));
        // What was refused left nothing behind.
        Key check;
        ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\Access", 0, KEY_READ, check.out()));
        EXPECT_EQ(c.set == ERROR_SUCCESS ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND, Query(check, c.why).rc);
        EXPECT_EQ(c.create == ERROR_SUCCESS ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND,
                  RegOpenKeyExA(check, c.why, 0, KEY_READ, sub.out()));
        EXPECT_EQ("original", Query(check, "Kept").bytes);
    }
    // A key made by RegCreateKeyA has every right.
    Key created;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyA(HKEY_CURRENT_USER, "Software\\Access", created.out()));
    EXPECT_EQ("original", Query(created, "Kept").bytes);
    EXPECT_EQ(ERROR_SUCCESS, SetString(created, "Kept", "changed"));
}

TEST_F(Registry, HandlesAndArgumentsAreChecked) {
    Key open;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyA(HKEY_CURRENT_USER, "Software\\Handles", open.out()));
    HKEY closed = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyA(HKEY_CURRENT_USER, "Software\\Handles", &closed));
    ASSERT_EQ(ERROR_SUCCESS, RegCloseKey(closed));

    struct Bad {
        const char* why;
        HKEY key;
    };
    const Bad bad[] = {
        {"null", nullptr},
        {"closed", closed},
        {"made up", reinterpret_cast<HKEY>(uintptr_t{0x12345})},
        {"HKEY_LOCAL_MACHINE", reinterpret_cast<HKEY>(uintptr_t{0x80000002u})},
    };
    for (const Bad& b : bad) {
        HKEY result = nullptr;
        BYTE buffer[8];
        DWORD size = sizeof buffer;
        EXPECT_EQ(ERROR_INVALID_HANDLE, RegCreateKeyA(b.key, "X", &result)) << b.why;
        EXPECT_EQ(ERROR_INVALID_HANDLE, RegOpenKeyExA(b.key, "X", 0, KEY_READ, &result)) << b.why;
        EXPECT_EQ(ERROR_INVALID_HANDLE, RegQueryValueExA(b.key, "X", nullptr, nullptr, buffer, &size)) << b.why;
        EXPECT_EQ(ERROR_INVALID_HANDLE, SetString(b.key, "X", "x")) << b.why;
        EXPECT_EQ(ERROR_INVALID_HANDLE, RegCloseKey(b.key)) << b.why;
    }

    EXPECT_EQ(ERROR_INVALID_PARAMETER, RegCreateKeyA(HKEY_CURRENT_USER, "Software\\Other", nullptr));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, RegOpenKeyExA(HKEY_CURRENT_USER, "Software", 0, KEY_READ, nullptr));
    BYTE buffer[8];
    DWORD size = sizeof buffer;
    DWORD reserved = 0;
    EXPECT_EQ(ERROR_INVALID_PARAMETER, RegQueryValueExA(open, "X", nullptr, nullptr, buffer, nullptr));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, RegQueryValueExA(open, "X", &reserved, nullptr, buffer, &size));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, RegSetValueExA(open, "X", 0, REG_SZ, nullptr, 5));
    // No data and no size is an empty value.
    EXPECT_EQ(ERROR_SUCCESS, RegSetValueExA(open, "X", 0, REG_SZ, nullptr, 0));
    EXPECT_EQ(ERROR_SUCCESS, Query(open, "X").rc);
    // Refused calls made nothing.
    Key other;
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\Other", 0, KEY_READ, other.out()));
    // The predefined key may be "closed" and stays usable.
    EXPECT_EQ(ERROR_SUCCESS, RegCloseKey(HKEY_CURRENT_USER));
    EXPECT_EQ(ERROR_SUCCESS, RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\Handles", 0, KEY_READ, other.out()));
}

TEST_F(Registry, ReadingAMissingStoreCreatesNothing) {
    mwtest::TempDir dir;
    const std::string parent = dir.file("new");
    const std::string file = parent + "/deeper/registry.sqlite3";
    EnvVar store("MAPWRIGHT_REGISTRY", file.c_str());
    Key key;
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, RegOpenKeyExA(HKEY_CURRENT_USER, "Software", 0, KEY_READ, key.out()));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, Query(HKEY_CURRENT_USER, "Value").rc);
    // The root always exists, but has no values yet.
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExA(HKEY_CURRENT_USER, "", 0, KEY_READ, key.out()));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, Query(key, "Value").rc);
    key.Close();
    EXPECT_FALSE(mwtest::FileExists(parent));

    // The first write makes the directories and the file, private to the user.
    Umask mask(022);
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyA(HKEY_CURRENT_USER, "Software\\Mapwright", key.out()));
    ASSERT_EQ(ERROR_SUCCESS, SetString(key, "Value", "v"));
    EXPECT_EQ(0700u, Mode(parent));
    EXPECT_EQ(0700u, Mode(parent + "/deeper"));
    EXPECT_EQ(0600u, Mode(file));
    if (mwtest::FileExists(file + "-wal")) {
        EXPECT_EQ(0600u, Mode(file + "-wal"));
    }
    EXPECT_EQ("v", Query(key, "Value").bytes);
}

TEST_F(Registry, TheStoreIsWhereTheEnvironmentSaysAtEachOpen) {
    mwtest::TempDir dir;
    const std::string explicitFile = dir.file("explicit.sqlite3");
    const std::string xdg = dir.file("xdg");
    const std::string home = dir.file("home");
    const std::string underXdg = xdg + "/mapwright/registry.sqlite3";
    const std::string underHome = home + "/.config/mapwright/registry.sqlite3";
    struct Case {
        const char* why;
        const char* registry;  // null: unset
        const char* config;
        const std::string* expected;
    };
    const Case cases[] = {
        {"MAPWRIGHT_REGISTRY first", explicitFile.c_str(), xdg.c_str(), &explicitFile},
        {"then XDG_CONFIG_HOME", nullptr, xdg.c_str(), &underXdg},
        {"an empty MAPWRIGHT_REGISTRY is unset", "", xdg.c_str(), &underXdg},
        {"then HOME", nullptr, nullptr, &underHome},
        {"an empty XDG_CONFIG_HOME is unset", nullptr, "", &underHome},
        {"a relative XDG_CONFIG_HOME is ignored", nullptr, "relative/xdg", &underHome},
    };
    EnvVar homeVar("HOME", home.c_str());
    EnvVar registryVar("MAPWRIGHT_REGISTRY", nullptr);
    EnvVar configVar("XDG_CONFIG_HOME", nullptr);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        std::filesystem::remove_all(dir.path());
        std::filesystem::create_directory(dir.path());
        registryVar.Set(c.registry);
        configVar.Set(c.config);
        ASSERT_EQ(ERROR_SUCCESS, SetString(HKEY_CURRENT_USER, "Why", c.why));
        EXPECT_TRUE(mwtest::FileExists(*c.expected));
        for (const std::string* other : {&explicitFile, &underXdg, &underHome})
            if (other != c.expected) {
                EXPECT_FALSE(mwtest::FileExists(*other)) << *other;
            }
        EXPECT_EQ(c.why, Query(HKEY_CURRENT_USER, "Why").bytes);
    }

    // An open key stays with its file when the variable changes.
    const std::string first = dir.file("first.sqlite3"), second = dir.file("second.sqlite3");
    registryVar.Set(first.c_str());
    Key key;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyA(HKEY_CURRENT_USER, "Software\\Moved", key.out()));
    registryVar.Set(second.c_str());
    ASSERT_EQ(ERROR_SUCCESS, SetString(key, "Where", "first"));
    ASSERT_EQ(ERROR_SUCCESS, SetString(HKEY_CURRENT_USER, "Where", "second"));
    Key elsewhere;
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\Moved", 0, KEY_READ, elsewhere.out()));
    EXPECT_EQ("second", Query(HKEY_CURRENT_USER, "Where").bytes);
    registryVar.Set(first.c_str());
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, Query(HKEY_CURRENT_USER, "Where").rc);
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\Moved", 0, KEY_READ, elsewhere.out()));
    EXPECT_EQ("first", Query(elsewhere, "Where").bytes);
}

// A file that is not our store is refused with ERROR_BADDB and left as it was.
TEST_F(Registry, AStoreFileThatIsNotOursIsRefusedAndLeftAlone) {
    const std::string& file = env.registryFile();
    std::string noise;
    unsigned state = 12345;
    for (int i = 0; i < 8192; ++i) {
        state = state * 1103515245u + 12345u;  // any fixed pseudo-random bytes
        noise += static_cast<char>(state >> 24);
    }
    // Our own store with everything after its first page overwritten: the
    // schema reads, the tables do not.
    std::string damaged;
    {
        Key key;
        ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyA(HKEY_CURRENT_USER, "Software\\Mapwright", key.out()));
        ASSERT_EQ(ERROR_SUCCESS, SetString(key, "Value", "v"));
    }
    damaged = mwtest::ReadFile(file);
    ASSERT_GT(damaged.size(), 4096u) << "expected the tables after the first page";
    for (size_t i = 4096; i < damaged.size(); ++i) damaged[i] = noise[i % noise.size()];
    // Another program's database, with a table of its own.
    std::string foreign;
    {
        const std::string path = env.registryFile() + ".foreign";
        sqlite3* db = nullptr;
        ASSERT_EQ(SQLITE_OK, sqlite3_open(path.c_str(), &db));
        ASSERT_EQ(SQLITE_OK, sqlite3_exec(db, "CREATE TABLE t(x); INSERT INTO t VALUES (1)", nullptr, nullptr, nullptr));
        sqlite3_close(db);
        foreign = mwtest::ReadFile(path);
    }
    // Our store as a later version would leave it: not ours to read or rewrite.
    std::string later;
    {
        sqlite3* db = nullptr;
        ASSERT_EQ(SQLITE_OK, sqlite3_open(file.c_str(), &db));
        ASSERT_EQ(SQLITE_OK, sqlite3_exec(db, "PRAGMA user_version = 2", nullptr, nullptr, nullptr));
        sqlite3_close(db);
        later = mwtest::ReadFile(file);
    }
    struct Case {
        const char* why;
        std::string content;
    };
    const Case cases[] = {
        {"one byte", "x"},
        {"a line of text", "this is not a database\n"},
        {"a page of zeros", std::string(4096, '\0')},
        {"8 KiB of noise", noise},
        {"a database header, then noise", std::string("SQLite format 3\0", 16) + noise.substr(16)},
        {"our store with its tables overwritten", damaged},
        {"another program's database", foreign},
        {"a later version of our store", later},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        std::filesystem::remove(file + "-wal");
        std::filesystem::remove(file + "-shm");
        mwtest::WriteFile(file, c.content);
        Key key;
        EXPECT_EQ(ERROR_BADDB, RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\Mapwright", 0, KEY_READ, key.out()));
        EXPECT_EQ(ERROR_BADDB, RegCreateKeyA(HKEY_CURRENT_USER, "Software\\Mapwright", key.out()));
        EXPECT_EQ(ERROR_BADDB, SetString(HKEY_CURRENT_USER, "Value", "v"));
        EXPECT_EQ(ERROR_BADDB, Query(HKEY_CURRENT_USER, "Value").rc);
        EXPECT_TRUE(mwtest::ReadFile(file) == c.content) << "the file was changed";
    }
}

TEST_F(Registry, AStoreThatCannotBeWrittenGivesAnError) {
    mwtest::TempDir dir;
    mwtest::WriteFile(dir.file("plain"), "a regular file\n");
    std::filesystem::create_directory(dir.file("directory"));
    struct Case {
        const char* why;
        std::string path;
        LONG open;  // opening an existing key for reading
        LONG write;  // RegCreateKeyA and RegSetValueExA
    };
    const Case cases[] = {
        {"the parent is a regular file", dir.file("plain") + "/registry.sqlite3", ERROR_FILE_NOT_FOUND,
         ERROR_ACCESS_DENIED},
        {"the path is a directory", dir.file("directory"), ERROR_ACCESS_DENIED, ERROR_ACCESS_DENIED},
        {"a directory along the path is a regular file", dir.file("plain") + "/sub/registry.sqlite3",
         ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        EnvVar store("MAPWRIGHT_REGISTRY", c.path.c_str());
        Key key;
        EXPECT_EQ(c.open, RegOpenKeyExA(HKEY_CURRENT_USER, "Software", 0, KEY_READ, key.out()));
        EXPECT_EQ(c.write, RegCreateKeyA(HKEY_CURRENT_USER, "Software", key.out()));
        EXPECT_EQ(c.write, SetString(HKEY_CURRENT_USER, "Value", "v"));
    }
    EXPECT_EQ("a regular file\n", mwtest::ReadFile(dir.file("plain")));
}

// Permission bits do not bind the superuser: as root the cases run in a child
// that has given up its privileges, in a directory that child owns. A control
// write in the same child shows that the refusals come from the bits.
TEST_F(Registry, AReadOnlyStoreIsReadButNotWritten) {
    mwtest::TempDir dir;
    const bool root = geteuid() == 0;
    const uid_t nobody = 65534;
    if (root) {
        ASSERT_EQ(0, chmod(dir.path().c_str(), 0755));
        ASSERT_EQ(0, chown(dir.path().c_str(), nobody, nobody));
    }
    const std::string file = dir.file("registry.sqlite3");
    const std::string locked = dir.file("locked");
    const int status = [&] {
        bool ok = mwtest::RunInChildren(1, [&](int) {
            if (root && (setgroups(0, nullptr) != 0 || setgid(nobody) != 0 || setuid(nobody) != 0)) return 9;
            setenv("MAPWRIGHT_REGISTRY", file.c_str(), 1);
            {
                Key key;
                if (RegCreateKeyA(HKEY_CURRENT_USER, "Software\\Mapwright", key.out()) != ERROR_SUCCESS) return 10;
                if (SetString(key, "Value", "v") != ERROR_SUCCESS) return 11;  // control
            }
            const std::string before = mwtest::ReadFile(file);
            if (chmod(file.c_str(), 0400) != 0) return 12;
            Key key;
            if (RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\Mapwright", 0, KEY_ALL_ACCESS, key.out()) != ERROR_SUCCESS)
                return 13;
            if (Query(key, "Value").bytes != "v") return 14;
            if (SetString(key, "Value", "w") != ERROR_ACCESS_DENIED) return 15;
            Key sub;
            if (RegCreateKeyA(key, "Sub", sub.out()) != ERROR_ACCESS_DENIED) return 16;
            if (mwtest::ReadFile(file) != before) return 17;

            if (mkdir(locked.c_str(), 0500) != 0) return 18;
            setenv("MAPWRIGHT_REGISTRY", (locked + "/registry.sqlite3").c_str(), 1);
            if (RegCreateKeyA(HKEY_CURRENT_USER, "Software", sub.out()) != ERROR_ACCESS_DENIED) return 19;
            return mwtest::FileExists(locked + "/registry.sqlite3") ? 20 : 0;
        });
        return ok ? 0 : 1;
    }();
    EXPECT_EQ(0, status) << "a case failed in the unprivileged child";
}

TEST_F(Registry, AHandleIsValidOnlyInTheProcessThatOpenedIt) {
    Key key;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyA(HKEY_CURRENT_USER, "Software\\Fork", key.out()));
    ASSERT_EQ(ERROR_SUCCESS, SetString(key, "Parent", "p"));
    const HKEY inherited = key;
    EXPECT_TRUE(mwtest::RunInChildren(1, [&](int) {
        BYTE buffer[8];
        DWORD size = sizeof buffer;
        if (RegQueryValueExA(inherited, "Parent", nullptr, nullptr, buffer, &size) != ERROR_INVALID_HANDLE) return 1;
        if (SetString(inherited, "Child", "c") != ERROR_INVALID_HANDLE) return 2;
        if (RegCloseKey(inherited) != ERROR_SUCCESS) return 3;
        // The child opens the key afresh and uses it.
        HKEY own = nullptr;
        if (RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\Fork", 0, KEY_ALL_ACCESS, &own) != ERROR_SUCCESS) return 4;
        if (Query(own, "Parent").bytes != "p") return 5;
        if (SetString(own, "Child", "c") != ERROR_SUCCESS) return 6;
        return RegCloseKey(own) == ERROR_SUCCESS ? 0 : 7;
    }));
    EXPECT_EQ("c", Query(key, "Child").bytes);
    EXPECT_EQ("p", Query(key, "Parent").bytes);
}

// A write is in the file when the call returns: a process that dies without
// closing its key (no destructors, no atexit) loses nothing.
TEST_F(Registry, AWriteIsInTheFileWhenTheCallReturns) {
    EXPECT_TRUE(mwtest::RunInChildren(1, [](int) {
        HKEY key = nullptr;
        if (RegCreateKeyA(HKEY_CURRENT_USER, "Software\\Durable", &key) != ERROR_SUCCESS) return 1;
        for (int i = 0; i < 7; ++i)
            if (SetString(key, ("V" + std::to_string(i)).c_str(), std::to_string(i * i)) != ERROR_SUCCESS) return 2;
        return 0;  // _exit with the key open
    }));
    Key key;
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\Durable", 0, KEY_READ, key.out()));
    for (int i = 0; i < 7; ++i) EXPECT_EQ(std::to_string(i * i), Query(key, ("V" + std::to_string(i)).c_str()).bytes);
    EXPECT_EQ("ok", IntegrityCheck(env.registryFile()));
}

// Several processes write at once into a store that does not exist yet, so
// they also race to create the file and its tables.
TEST_F(Registry, ConcurrentWritersLoseNothing) {
    struct Case {
        const char* why;
        int processes;
        int values;
        bool sameKey;
        bool handlePerValue;  // open, write one value, close: the way settings are saved
    };
    const Case cases[] = {
        {"2 x 500 into one key", 2, 500, true, false},
        {"2 x 500 into two keys", 2, 500, false, false},
        {"8 x 25 into one key, a handle per value", 8, 25, true, true},
    };
    int row = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        const std::string file = env.registryFile() + "." + std::to_string(row++);
        EnvVar store("MAPWRIGHT_REGISTRY", file.c_str());
        auto keyOf = [&](int process) {
            std::string path = "Software\\";
            path += c.sameKey ? "Shared" : "Writer" + std::to_string(process);
            return path;
        };
        auto nameOf = [](int process, int i) {
            std::string name = "P";
            name += std::to_string(process);
            name += '_';
            name += std::to_string(i);
            return name;
        };
        auto valueOf = [](int process, int i) {
            std::string value = std::to_string(process);
            value += ':';
            value += std::to_string(i * 7919);
            return value;
        };

        const auto start = std::chrono::steady_clock::now();
        const bool ok = mwtest::RunInChildren(c.processes, [&](int process) {
            HKEY key = nullptr;
            for (int i = 0; i < c.values; ++i) {
                if (!key && RegCreateKeyA(HKEY_CURRENT_USER, keyOf(process).c_str(), &key) != ERROR_SUCCESS) return 1;
                if (SetString(key, nameOf(process, i).c_str(), valueOf(process, i)) != ERROR_SUCCESS) return 2;
                if (c.handlePerValue) {
                    if (RegCloseKey(key) != ERROR_SUCCESS) return 3;
                    key = nullptr;
                }
            }
            return (!key || RegCloseKey(key) == ERROR_SUCCESS) ? 0 : 3;
        });
        const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        ASSERT_TRUE(ok) << "a writer failed";
        std::printf("[ measure  ] %s: %.3f s, %.2f ms per write\n", c.why, seconds,
                    1000.0 * seconds / (c.processes * c.values));

        int lost = 0;
        for (int process = 0; process < c.processes; ++process) {
            Key key;
            ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExA(HKEY_CURRENT_USER, keyOf(process).c_str(), 0, KEY_READ, key.out()));
            for (int i = 0; i < c.values; ++i) {
                Value v = Query(key, nameOf(process, i).c_str());
                if (v.rc != ERROR_SUCCESS || v.bytes != valueOf(process, i)) ++lost;
            }
        }
        EXPECT_EQ(0, lost);
        EXPECT_EQ("ok", IntegrityCheck(file));
    }
}

TEST_F(Registry, EnumerationGivesEachDirectSubkeyOnceAsSpelled) {
    Key k, parent;
    char name[8];
    DWORD size = sizeof name;
    EXPECT_EQ(ERROR_NO_MORE_ITEMS,
              RegEnumKeyExA(HKEY_CURRENT_USER, 0, name, &size, nullptr, nullptr, nullptr, nullptr));
    for (const char* path : {"E\\Beta\\Deep", "E\\alpha", "E\\Gamma"})
        ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyA(HKEY_CURRENT_USER, path, k.out()));
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExA(HKEY_CURRENT_USER, "e", 0, KEY_READ, parent.out()));
    std::string names;
    for (DWORD i = 0;; ++i) {
        size = sizeof name;
        const LONG rc = RegEnumKeyExA(parent, i, name, &size, nullptr, nullptr, nullptr, nullptr);
        if (rc != ERROR_SUCCESS) {
            EXPECT_EQ(ERROR_NO_MORE_ITEMS, rc);
            break;
        }
        names += std::string(name, size) + ";";
    }
    EXPECT_EQ("alpha;Beta;Gamma;", names);
    size = 5;  // "Gamma" needs 6 with its NUL
    EXPECT_EQ(ERROR_MORE_DATA, RegEnumKeyExA(parent, 2, name, &size, nullptr, nullptr, nullptr, nullptr));
}

}  // namespace
