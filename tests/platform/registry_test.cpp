// Registry functions: Windows' codes and sizes, names without case, our store.
#include <mapwright/registry.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>
#include "testenv.h"

namespace {
using mwtest::FileExists;
const LONG OK = ERROR_SUCCESS, NF = ERROR_FILE_NOT_FOUND, DENIED = ERROR_ACCESS_DENIED, BAD = ERROR_INVALID_HANDLE;
const HKEY HKCU = HKEY_CURRENT_USER;

// A key handle closed at the end of its scope.
struct Key {
    HKEY h = nullptr;
    ~Key() { if (h) RegCloseKey(h); }
    HKEY* out() { if (h) RegCloseKey(h); h = nullptr; return &h; }
    operator HKEY() const { return h; }
};
LONG Set(HKEY key, const char* name, const std::string& bytes, DWORD type = REG_SZ) {
    return RegSetValueExA(key, name, 0, type, reinterpret_cast<const BYTE*>(bytes.data()), DWORD(bytes.size()));
}
LONG Create(HKEY key, const std::string& path, Key& out) { return RegCreateKeyA(key, path.c_str(), out.out()); }
LONG Open(HKEY key, const std::string& path, Key& out, REGSAM access = KEY_READ) {
    return RegOpenKeyExA(key, path.c_str(), 0, access, out.out());
}
// A value read whole, size first: "rc type bytes".
std::string Query(HKEY key, const char* name) {
    DWORD size = 0, type = REG_NONE;
    LONG rc = RegQueryValueExA(key, name, nullptr, &type, nullptr, &size);
    std::vector<BYTE> buf(size + 1);
    if (rc == OK) rc = RegQueryValueExA(key, name, nullptr, &type, buf.data(), &++size);
    return std::to_string(rc) + " " + std::to_string(type) + " " + std::string(reinterpret_cast<char*>(buf.data()), rc ? 0 : size);
}
unsigned ModeOf(const std::string& p) { return unsigned(std::filesystem::status(p).permissions()); }

class Registry : public ::testing::Test {
protected:
    mwtest::IsolatedEnv env{false};
};

TEST_F(Registry, ValuesAndNamesWithoutCase) {
    const std::string big(100000, '\0');
    ASSERT_EQ(OK, Set(HKCU, nullptr, big, 0x12345u));
    EXPECT_EQ("0 74565 " + big, Query(HKCU, nullptr));
    ASSERT_EQ(OK, Set(HKCU, "scale", "0.9996"));  // a write replaces data and type
    ASSERT_EQ(OK, Set(HKCU, "SCALE", "\x01", REG_BINARY));
    EXPECT_EQ("0 3 \x01", Query(HKCU, "Scale"));
    Key key;
    ASSERT_EQ(OK, Create(HKCU, "Below", key));
    EXPECT_EQ("2 0 ", Query(key, "Scale"));
    const struct { const char *made, *opened; LONG rc; } keys[] = {
        {"Zz\\Zz", "zZ\\zZ", OK}, {"\xE0\xFF\xF7", "\xC0\xDF\xD7", OK}, {"\xB8\xBF\xB3\xBA", "\xA8\xAF\xB2\xAA", OK},
        {"a", "\xE0", NF}, {"@[", "`{", NF}, {"A\\B", "\\A\\\\B\\", OK}, {"A\\B", "a", OK}, {"A\\B", "A/B", NF}, {"A", "AB", NF},
    };
    int row = 0;
    for (const auto& c : keys) {
        const std::string base = "Case" + std::to_string(row++) + "\\";
        Key made, opened;
        ASSERT_EQ(OK, Create(HKCU, base + c.made, made));
        EXPECT_EQ(c.rc, Open(HKCU, base + c.opened, opened)) << c.opened;
    }
    ASSERT_EQ(OK, Set(HKCU, "\xCC\xE0\xF1", "v"));  // value names fold alike
    EXPECT_EQ(OK, RegQueryValueExA(HKCU, "\xCC\xC0\xD1", nullptr, nullptr, nullptr, nullptr));
}

TEST_F(Registry, QueryReportsSizesAndNeverOverruns) {
    ASSERT_EQ(OK, Set(HKCU, "Five", "hello"));
    ASSERT_EQ(OK, Set(HKCU, "Empty", ""));
    const struct { const char* name; bool buffer; DWORD room; LONG rc; DWORD size; const char* data; } cases[] = {
        {"Five", false, 0, OK, 5, ""}, {"Five", true, 0, ERROR_MORE_DATA, 5, ""}, {"Five", true, 4, ERROR_MORE_DATA, 5, ""},
        {"Five", true, 5, OK, 5, "hello"}, {"Five", true, 6, OK, 5, "hello\0"}, {"Empty", true, 1, OK, 0, "\0"}, {"Gone", true, 8, NF, 8, ""},
    };
    for (const auto& c : cases) {
        BYTE buf[8] = "~~~~~~~";
        DWORD size = c.room, type = 7;
        EXPECT_EQ(c.rc, RegQueryValueExA(HKCU, c.name, nullptr, &type, c.buffer ? buf : nullptr, &size)) << c.name << c.room;
        EXPECT_EQ(std::make_tuple(c.size, c.rc == NF ? 7u : REG_SZ), std::make_tuple(size, type)) << c.name << c.room;
        const std::string data(c.data, std::strlen(c.data) + (c.room > c.size && c.rc == OK));
        EXPECT_EQ(data + std::string("~~~~~~~\0", 8).substr(data.size()), std::string(reinterpret_cast<char*>(buf), 8));
    }
    HKEY key = HKCU;
    EXPECT_EQ(NF, RegOpenKeyExA(HKCU, "Five", 0, KEY_READ, &key));
    EXPECT_EQ(nullptr, key);
}

TEST_F(Registry, AccessHandlesAndArgumentsAreChecked) {
    Key made;  // a key made by RegCreateKeyA has every right
    ASSERT_EQ(OK, Create(HKCU, "Software\\Access", made));
    ASSERT_EQ(OK, Set(made, nullptr, "v"));
    Key ro, sub;
    ASSERT_EQ(OK, Open(HKCU, "Software\\Access", ro));
    EXPECT_EQ(std::make_tuple(OK, DENIED, DENIED), std::make_tuple(RegQueryValueExA(ro, nullptr, nullptr, nullptr, nullptr, nullptr),
                                                                Set(ro, nullptr, ""), Create(ro, "Sub", sub)));
    HKEY closed = nullptr, result = nullptr;
    ASSERT_EQ(OK, RegCreateKeyA(HKCU, "Software\\Handles", &closed));
    ASSERT_EQ(OK, RegCloseKey(closed));
    BYTE buf[8];
    DWORD size = sizeof buf, reserved = 0;
    for (HKEY b : {HKEY(nullptr), closed, reinterpret_cast<HKEY>(uintptr_t{0x80000002u})})  // HKEY_LOCAL_MACHINE
        EXPECT_EQ(std::make_tuple(BAD, BAD, BAD, BAD, BAD),
                  std::make_tuple(RegCreateKeyA(b, "X", &result), RegOpenKeyExA(b, "X", 0, KEY_READ, &result),
                                  RegQueryValueExA(b, "X", nullptr, nullptr, buf, &size), Set(b, "X", "x"), RegCloseKey(b))) << b;
    EXPECT_EQ(ERROR_INVALID_PARAMETER, RegQueryValueExA(made, "X", &reserved, nullptr, buf, &size));
    EXPECT_EQ(OK, RegSetValueExA(made, "X", 0, REG_SZ, nullptr, 0));
    EXPECT_EQ("0 1 ", Query(made, "X"));
}

TEST_F(Registry, PrivateStoreAndForeignOnesRefused) {
    const std::string& file = env.registryFile();
    const std::string deeper = file + ".d/r";
    setenv("MAPWRIGHT_REGISTRY", deeper.c_str(), 1);
    Key key;
    EXPECT_EQ(NF, Open(HKCU, "Software", key));
    EXPECT_EQ("2 0 ", Query(HKCU, "Value"));
    EXPECT_FALSE(FileExists(file + ".d"));
    const mode_t mask = umask(022);
    ASSERT_EQ(OK, Create(HKCU, "Software", key));
    umask(mask);
    EXPECT_EQ(std::make_pair(0700u, 0600u), std::make_pair(ModeOf(file + ".d"), ModeOf(deeper)));
    setenv("MAPWRIGHT_REGISTRY", file.c_str(), 1);
    ASSERT_EQ(OK, Set(HKCU, "Value", "v"));
    for (const std::string& content : {std::string("x"), std::string(4096, 0)}) {
        mwtest::WriteFile(file, content);
        EXPECT_EQ(std::make_tuple(ERROR_BADDB, ERROR_BADDB, ERROR_BADDB), std::make_tuple(Open(HKCU, "Software", key),
                  Create(HKCU, "Software", key), Set(HKCU, "Value", "v")));
        EXPECT_EQ(std::to_string(ERROR_BADDB) + " 0 ", Query(HKCU, "Value"));
        EXPECT_TRUE(mwtest::ReadFile(file) == content);
    }
    setenv("MAPWRIGHT_REGISTRY", env.appDir().c_str(), 1);  // a directory
    EXPECT_EQ(std::make_pair(DENIED, DENIED), std::make_pair(Open(HKCU, "Software", key), Set(HKCU, "Value", "v")));
}
TEST_F(Registry, EnumerationGivesEachDirectSubkeyOnceAsSpelled) {
    char name[8];
    DWORD size = sizeof name;
    EXPECT_EQ(ERROR_NO_MORE_ITEMS, RegEnumKeyExA(HKCU, 0, name, &size, nullptr, nullptr, nullptr, nullptr));
    Key k, parent;
    for (const char* path : {"E\\Beta\\Deep", "E\\alpha", "E\\Gamma"}) ASSERT_EQ(OK, Create(HKCU, path, k));
    ASSERT_EQ(OK, Open(HKCU, "e", parent));
    std::string names;
    LONG rc = OK;
    for (DWORD i = 0; (size = sizeof name, rc = RegEnumKeyExA(parent, i, name, &size, nullptr, nullptr, nullptr, nullptr)) == OK; ++i)
        names += std::string(name, size) + ";";
    EXPECT_EQ(ERROR_NO_MORE_ITEMS, rc);
    EXPECT_EQ("alpha;Beta;Gamma;", names);
    size = 5;  // "Gamma" needs 6 with its NUL
    EXPECT_EQ(ERROR_MORE_DATA, RegEnumKeyExA(parent, 2, name, &size, nullptr, nullptr, nullptr, nullptr));
}
}  // namespace
