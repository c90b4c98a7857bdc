// The registry functions: Windows' return codes and sizes, names without case,
// and what we add (a store per environment, private files, bad stores refused).
#include <mapwright/registry.h>

#include <gtest/gtest.h>

#include <sqlite3.h>
#include <sys/stat.h>

#include <cstdlib>
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
    HKEY* out() { return this->~Key(), h = nullptr, &h; }
    operator HKEY() const { return h; }
};
LONG Set(HKEY key, const char* name, const std::string& bytes, DWORD type = REG_SZ) {
    return RegSetValueExA(key, name, 0, type, reinterpret_cast<const BYTE*>(bytes.data()), DWORD(bytes.size()));
}
LONG Create(HKEY key, const std::string& path, Key& out) { return RegCreateKeyA(key, path.c_str(), out.out()); }
LONG Open(HKEY key, const std::string& path, Key& out, REGSAM access = KEY_READ) {
    return RegOpenKeyExA(key, path.c_str(), 0, access, out.out());
}
struct Value { LONG rc; DWORD type; std::string bytes; };
// A value read whole: its size first, then its bytes.
Value Query(HKEY key, const char* name) {
    Value v{OK, REG_NONE, {}};
    DWORD size = 0;
    if ((v.rc = RegQueryValueExA(key, name, nullptr, &v.type, nullptr, &size)) != OK) return v;
    std::vector<BYTE> buf(size + 1);
    v.rc = RegQueryValueExA(key, name, nullptr, &v.type, buf.data(), &++size);
    v.bytes.assign(reinterpret_cast<const char*>(buf.data()), size);
    return v;
}
std::string Text(HKEY key, const char* name) { return Query(key, name).bytes; }
unsigned ModeOf(const std::string& p) { return unsigned(std::filesystem::status(p).permissions()); }

class Registry : public ::testing::Test {
protected:
    mwtest::IsolatedEnv env{false};
};

TEST_F(Registry, ValuesComeBackWithTheirBytesAndType) {
    const struct { const char* name; DWORD type; std::string bytes; } cases[] = {
        {"c_lon", REG_SZ, "37.5"}, {"Empty", REG_SZ, ""}, {"\xC8\xEC\xFF", REG_SZ, "\xCF\xF3"},
        {"Blob", REG_BINARY, std::string("\0\x01\xFF", 3)}, {"Odd", 0x1234567u, "x"}, {nullptr, REG_SZ, "default"},
        {"Long", REG_BINARY, std::string(100000, '\xA5')}, {"a\\b", REG_SZ, "not a path"},
    };
    {
        Key key;
        ASSERT_EQ(OK, Create(HKCU, "Software\\Mapwright\\RoundTrip", key));
        for (const auto& c : cases) EXPECT_EQ(OK, Set(key, c.name, c.bytes, c.type));
    }
    Key key;  // a new handle, hence a new connection
    ASSERT_EQ(OK, Open(HKCU, "Software\\Mapwright\\RoundTrip", key));
    for (const auto& c : cases) {
        const Value v = Query(key, c.name);
        EXPECT_EQ(std::make_tuple(OK, c.type, c.bytes), std::make_tuple(v.rc, v.type, v.bytes)) << c.type;
    }
    // A write replaces data and type, whatever the case of the name; the root's values are its own.
    ASSERT_EQ(OK, Set(HKCU, "scale", "0.9996"));
    ASSERT_EQ(OK, Set(HKCU, "SCALE", "\x01\x02", REG_BINARY));
    EXPECT_EQ(REG_BINARY, Query(HKCU, "Scale").type);
    EXPECT_EQ("\x01\x02", Text(HKCU, "Scale"));
    EXPECT_EQ(NF, Query(key, "Scale").rc);
}

TEST_F(Registry, NamesIgnoreTheCaseOfLetters) {
    const struct { const char *created, *opened; LONG rc; bool same; } keys[] = {
        {"Software\\Mapwright\\Zz", "SOFTWARE\\mapwright\\zZ", OK, true}, {"\xE0\xFF\xF7", "\xC0\xDF\xD7", OK, true},
        {"\xB8\xBF\xB3\xBA", "\xA8\xAF\xB2\xAA", OK, true}, {"a", "\xE0", NF, false}, {"@[", "`{", NF, false},
        {"\xB0", "\x90", NF, false}, {"Software\\Mapwright", "\\Software\\\\Mapwright\\", OK, true},
        {"Software\\Mapwright\\Deep", "software", OK, false}, {"Software\\Map", "Software\\Mapwright", NF, false},
        {"Software\\Mapwright", "Software\\Map", NF, false}, {"Software\\Mapwright", "Software/Mapwright", NF, false},
    };
    int row = 0;
    for (const auto& c : keys) {
        const std::string base = "Case" + std::to_string(row++) + "\\";
        Key created, opened;
        ASSERT_EQ(OK, Create(HKCU, base + c.created, created));
        ASSERT_EQ(OK, Set(created, "Row", base));
        EXPECT_EQ(c.rc, Open(HKCU, base + c.opened, opened)) << c.opened;
        EXPECT_EQ(c.same, Text(opened, "Row") == base) << c.opened;
    }
    const char* values[][2] = {{"ProjectionIndex", "PROJECTIONINDEX"}, {"\xCC\xE0\xF1", "\xCC\xC0\xD1"}, {"", nullptr},
                               {"fe", "fn"}, {"c_lon", "c_lon "}};
    for (const auto& c : values) {
        Key key;
        ASSERT_EQ(OK, Create(HKCU, std::string("Names\\") + c[0], key));
        ASSERT_EQ(OK, Set(key, c[0], "v"));
        EXPECT_EQ(c[0][0] == 'f' || c[0][0] == 'c' ? NF : OK, Query(key, c[1]).rc) << c[0];
    }
}

TEST_F(Registry, QueryReportsTheSizeAndWritesNoMoreThanTheBufferHolds) {
    ASSERT_EQ(OK, Set(HKCU, "Five", "hello"));
    ASSERT_EQ(OK, Set(HKCU, "Empty", ""));
    const struct { const char* name; bool buffer; DWORD room; LONG rc; DWORD size; bool nul; } cases[] = {
        {"Five", false, 0, OK, 5, false}, {"Five", true, 0, ERROR_MORE_DATA, 5, false},
        {"Five", true, 4, ERROR_MORE_DATA, 5, false}, {"Five", true, 5, OK, 5, false}, {"Five", true, 6, OK, 5, true},
        {"Empty", true, 0, OK, 0, false}, {"Empty", true, 1, OK, 0, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.name) + " room " + std::to_string(c.room) + (c.buffer ? "" : " null"));
        std::vector<BYTE> buf(300, 0x7E);
        DWORD size = c.room, type = REG_NONE;
        EXPECT_EQ(c.rc, RegQueryValueExA(HKCU, c.name, nullptr, &type, c.buffer ? buf.data() : nullptr, &size));
        EXPECT_EQ(c.size, size);
        EXPECT_EQ(REG_SZ, type);
        std::string expected = c.rc == OK && c.buffer && c.name[0] == 'F' ? "hello" : "";
        if (c.nul) expected += '\0';
        expected.resize(300, '\x7E');
        EXPECT_EQ(expected, std::string(buf.begin(), buf.end()));
    }
    DWORD type = REG_NONE;  // neither data nor size: the type only
    EXPECT_EQ(OK, RegQueryValueExA(HKCU, "Five", nullptr, &type, nullptr, nullptr));
    EXPECT_EQ(REG_SZ, type);
}

TEST_F(Registry, MissingKeysAndValuesAreNotFoundAndTouchNothing) {
    Key present;
    ASSERT_EQ(OK, Create(HKCU, "Software\\Present", present));
    ASSERT_EQ(OK, Set(present, "Here", "1"));
    for (const char* path : {"Software\\Absent", "Software\\Present\\Child", "Software\\Pres", "Software\\Present\\Here"}) {
        HKEY key = reinterpret_cast<HKEY>(uintptr_t{0x7777});
        EXPECT_EQ(NF, RegOpenKeyExA(HKCU, path, 0, KEY_READ, &key)) << path;
        EXPECT_EQ(nullptr, key) << path;
    }
    for (const auto& [path, name] : {std::pair<const char*, const char*>{"Software\\Present", "Gone"},
                                     {"Software\\Present", nullptr}, {"Software", "Here"}}) {
        Key key;
        ASSERT_EQ(OK, Open(HKCU, path, key));
        BYTE buf[16] = {0x55};
        DWORD size = sizeof buf, type = 0xDEAD;
        EXPECT_EQ(NF, RegQueryValueExA(key, name, nullptr, &type, buf, &size)) << path;
        EXPECT_EQ(std::make_tuple(DWORD(sizeof buf), 0xDEADu, 0x55), std::make_tuple(size, type, int(buf[0])));
    }
}

TEST_F(Registry, AccessIsCheckedPerHandle) {
    const struct { REGSAM access; LONG query, set, create; } cases[] = {
        {KEY_READ, OK, DENIED, DENIED}, {KEY_WRITE, DENIED, OK, OK}, {KEY_ALL_ACCESS, OK, OK, OK},
        {KEY_QUERY_VALUE, OK, DENIED, DENIED}, {KEY_SET_VALUE, DENIED, OK, DENIED},
    };
    Key made;  // a key made by RegCreateKeyA has every right
    ASSERT_EQ(OK, Create(HKCU, "Software\\Access", made));
    ASSERT_EQ(OK, Set(made, "Kept", "original"));
    for (const auto& c : cases) {
        const std::string name = std::to_string(c.access);
        SCOPED_TRACE(name);
        Key key, sub, check;
        ASSERT_EQ(OK, Open(HKCU, "Software\\Access", key, c.access));
        BYTE buf[32];
        DWORD size = sizeof buf;
        EXPECT_EQ(c.query, RegQueryValueExA(key, "Kept", nullptr, nullptr, buf, &size));
        EXPECT_EQ(c.set, Set(key, name.c_str(), "written"));
        EXPECT_EQ(c.create, Create(key, name, sub));
        EXPECT_EQ(c.set == OK ? OK : NF, Query(made, name.c_str()).rc) << "a refusal leaves nothing";
        EXPECT_EQ(c.create == OK ? OK : NF, Open(made, name, check));
        EXPECT_EQ("original", Text(made, "Kept"));
    }
}

TEST_F(Registry, HandlesAndArgumentsAreChecked) {
    Key open;
    ASSERT_EQ(OK, Create(HKCU, "Software\\Handles", open));
    HKEY closed = nullptr;
    ASSERT_EQ(OK, RegCreateKeyA(HKCU, "Software\\Handles", &closed));
    ASSERT_EQ(OK, RegCloseKey(closed));
    BYTE buf[8];
    DWORD size = sizeof buf, reserved = 0;
    for (HKEY b : {HKEY(nullptr), closed, reinterpret_cast<HKEY>(uintptr_t{0x80000002u})}) {  // HKEY_LOCAL_MACHINE
        HKEY result = nullptr;
        EXPECT_EQ(BAD, RegCreateKeyA(b, "X", &result)) << b;
        EXPECT_EQ(BAD, RegOpenKeyExA(b, "X", 0, KEY_READ, &result)) << b;
        EXPECT_EQ(BAD, RegQueryValueExA(b, "X", nullptr, nullptr, buf, &size)) << b;
        EXPECT_EQ(BAD, Set(b, "X", "x")) << b;
        EXPECT_EQ(BAD, RegCloseKey(b)) << b;
    }
    const LONG P = ERROR_INVALID_PARAMETER;
    EXPECT_EQ(P, RegCreateKeyA(HKCU, "Software\\Other", nullptr));
    EXPECT_EQ(P, RegOpenKeyExA(HKCU, "Software", 0, KEY_READ, nullptr));
    EXPECT_EQ(P, RegQueryValueExA(open, "X", nullptr, nullptr, buf, nullptr));
    EXPECT_EQ(P, RegQueryValueExA(open, "X", &reserved, nullptr, buf, &size));
    EXPECT_EQ(P, RegSetValueExA(open, "X", 0, REG_SZ, nullptr, 5));
    EXPECT_EQ(OK, RegSetValueExA(open, "X", 0, REG_SZ, nullptr, 0)) << "no data, no size: empty";
    EXPECT_EQ(OK, Query(open, "X").rc);
    Key other;
    EXPECT_EQ(NF, Open(HKCU, "Software\\Other", other)) << "refused calls made nothing";
    EXPECT_EQ(OK, RegCloseKey(HKCU)) << "the predefined key may be closed";
    EXPECT_EQ(OK, Open(HKCU, "Software\\Handles", other));
}

TEST_F(Registry, TheStoreIsMadePrivateAtTheFirstWriteWhereTheEnvironmentSays) {
    mwtest::TempDir dir;
    const std::string parent = dir.file("new"), file = parent + "/deeper/r.sqlite3";
    setenv("MAPWRIGHT_REGISTRY", file.c_str(), 1);
    Key key;
    EXPECT_EQ(NF, Open(HKCU, "Software", key));
    EXPECT_EQ(NF, Query(HKCU, "Value").rc);
    ASSERT_EQ(OK, Open(HKCU, "", key)) << "the root always exists";
    EXPECT_FALSE(FileExists(parent)) << "reading creates nothing";
    const mode_t mask = umask(022);
    ASSERT_EQ(OK, Create(HKCU, "Software\\Mapwright", key));
    umask(mask);
    EXPECT_EQ(std::make_tuple(0700u, 0700u, 0600u), std::make_tuple(ModeOf(parent), ModeOf(parent + "/deeper"), ModeOf(file)));
    const std::string own = dir.file("own"), xdg = dir.file("xdg"), home = dir.file("home");
    const struct { const char *registry, *config; std::string expected; } cases[] = {
        {own.c_str(), xdg.c_str(), own}, {"", xdg.c_str(), xdg + "/mapwright/registry.sqlite3"},
        {nullptr, "relative", home + "/.config/mapwright/registry.sqlite3"},
    };
    setenv("HOME", home.c_str(), 1);
    for (const auto& c : cases) {
        c.registry ? setenv("MAPWRIGHT_REGISTRY", c.registry, 1) : unsetenv("MAPWRIGHT_REGISTRY");
        setenv("XDG_CONFIG_HOME", c.config, 1);
        ASSERT_EQ(OK, Set(HKCU, "Where", c.expected));
        EXPECT_TRUE(FileExists(c.expected)) << c.expected;
        EXPECT_EQ(c.expected, Text(HKCU, "Where"));
    }
}

TEST_F(Registry, AStoreThatIsNotOursOrCannotBeWrittenIsRefused) {
    const std::string& file = env.registryFile();
    auto sql = [](const std::string& path, const char* statement) {
        sqlite3* db = nullptr;
        EXPECT_EQ(SQLITE_OK, sqlite3_open(path.c_str(), &db));
        EXPECT_EQ(SQLITE_OK, sqlite3_exec(db, statement, nullptr, nullptr, nullptr));
        sqlite3_close(db);
        return mwtest::ReadFile(path);
    };
    ASSERT_EQ(OK, Set(HKCU, "Value", "v"));
    for (const std::string& content : {std::string("x"), sql(file + ".o", "CREATE TABLE t(x)"),
                                       sql(file, "PRAGMA user_version = 2")}) {  // another's, a later version of ours
        mwtest::WriteFile(file, content);
        Key key;
        EXPECT_EQ(ERROR_BADDB, Open(HKCU, "Software", key));
        EXPECT_EQ(ERROR_BADDB, Create(HKCU, "Software", key));
        EXPECT_EQ(ERROR_BADDB, Set(HKCU, "Value", "v"));
        EXPECT_EQ(ERROR_BADDB, Query(HKCU, "Value").rc);
        EXPECT_TRUE(mwtest::ReadFile(file) == content) << "the file was changed";
    }
    mwtest::TempDir dir;
    mwtest::WriteFile(dir.file("plain"), "text");
    for (const auto& [path, open] : {std::pair<std::string, LONG>{dir.file("plain/r"), NF}, {dir.path(), DENIED}}) {
        setenv("MAPWRIGHT_REGISTRY", path.c_str(), 1);
        Key key;
        EXPECT_EQ(open, Open(HKCU, "Software", key)) << path;
        EXPECT_EQ(DENIED, Create(HKCU, "Software", key)) << path;
        EXPECT_EQ(DENIED, Set(HKCU, "Value", "v")) << path;
    }
}

}  // namespace
