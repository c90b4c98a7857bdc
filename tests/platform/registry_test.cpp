// The registry functions: Windows' return codes and sizes, names without case,
// and what we add (a store per environment, durable writes, bad stores refused).
#include <mapwright/registry.h>

#include <gtest/gtest.h>

#include <grp.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "testenv.h"

namespace {

using mwtest::FileExists;
const LONG OK = ERROR_SUCCESS, NF = ERROR_FILE_NOT_FOUND, DENIED = ERROR_ACCESS_DENIED;
const HKEY HKCU = HKEY_CURRENT_USER;

// A key handle closed at the end of its scope.
struct Key {
    HKEY h = nullptr;
    ~Key() { Close(); }
    HKEY* out() { return Close(), &h; }
    operator HKEY() const { return h; }
    void Close() {
        if (h) RegCloseKey(h);
        h = nullptr;
    }
};

LONG Set(HKEY key, const char* name, const std::string& bytes, DWORD type = REG_SZ) {
    return RegSetValueExA(key, name, 0, type, reinterpret_cast<const BYTE*>(bytes.data()), DWORD(bytes.size()));
}
LONG Create(HKEY key, const std::string& path, Key& out) { return RegCreateKeyA(key, path.c_str(), out.out()); }
LONG Open(HKEY key, const std::string& path, Key& out, REGSAM access = KEY_READ) {
    return RegOpenKeyExA(key, path.c_str(), 0, access, out.out());
}

struct Value {
    LONG rc;
    DWORD type;
    std::string bytes;
};

// A value read whole: its size first, then its bytes.
Value Query(HKEY key, const char* name) {
    Value v{OK, REG_NONE, {}};
    DWORD size = 0;
    if ((v.rc = RegQueryValueExA(key, name, nullptr, &v.type, nullptr, &size)) != OK) return v;
    std::vector<BYTE> buf(size + 1);
    DWORD got = size + 1;
    v.rc = RegQueryValueExA(key, name, nullptr, &v.type, buf.data(), &got);
    v.bytes.assign(reinterpret_cast<const char*>(buf.data()), got);
    return v;
}
std::string Text(HKEY key, const char* name) { return Query(key, name).bytes; }

void SetEnv(const char* name, const char* value) { value ? setenv(name, value, 1) : unsetenv(name); }

mode_t Mode(const std::string& path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 ? (st.st_mode & 07777) : 0;
}

// SQLite's own verdict on the file.
std::string IntegrityCheck(const std::string& path) {
    sqlite3* db = nullptr;
    sqlite3_stmt* stmt = nullptr;
    std::string verdict;
    if (sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK &&
        sqlite3_prepare_v2(db, "PRAGMA integrity_check", -1, &stmt, nullptr) == SQLITE_OK)
        while (sqlite3_step(stmt) == SQLITE_ROW) verdict += reinterpret_cast<const char*>(sqlite3_column_text(stmt, 0));
    sqlite3_finalize(stmt);
    sqlite3_close_v2(db);
    return verdict;
}

bool DropPrivileges() {
    const uid_t nobody = 65534;
    return geteuid() != 0 || (setgroups(0, nullptr) == 0 && setgid(nobody) == 0 && setuid(nobody) == 0);
}

class Registry : public ::testing::Test {
protected:
    mwtest::IsolatedEnv env{false};
};

TEST_F(Registry, ValuesComeBackWithTheirBytesAndType) {
    std::string every;
    for (int b = 0; b <= 0xFF; ++b) every += char(b);
    const struct {
        const char* name;
        DWORD type;
        std::string bytes;
    } cases[] = {
        {"c_lon", REG_SZ, "37.500000"},      {"Empty", REG_SZ, ""},
        {"\xC8\xEC\xFF", REG_SZ, "\xCF\xF3\xEB 1942"}, {"Blob", REG_BINARY, every},
        {"Count", REG_DWORD, std::string("\x2A\0\0\0", 4)}, {"Odd", 0x1234567u, "x"},
        {nullptr, REG_SZ, "default"},        {"Long", REG_BINARY, std::string(100000, '\xA5')},
        {"a\\b", REG_SZ, "value names are not paths"},
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
        EXPECT_EQ(OK, v.rc) << (c.name ? c.name : "default");
        EXPECT_EQ(c.type, v.type) << (c.name ? c.name : "default");
        EXPECT_EQ(c.bytes, v.bytes) << (c.name ? c.name : "default");
    }
    // A write replaces data and type, whatever the case of the name.
    ASSERT_EQ(OK, Set(HKCU, "scale", "0.9996"));
    ASSERT_EQ(OK, Set(HKCU, "SCALE", "\x01\x02", REG_BINARY));
    EXPECT_EQ(REG_BINARY, Query(HKCU, "Scale").type);
    EXPECT_EQ("\x01\x02", Text(HKCU, "Scale"));
}

TEST_F(Registry, ValuesAtTheRootBelongToNoKeyBelow) {
    ASSERT_EQ(OK, Set(HKCU, "AtRoot", "r"));
    Key root, same, below;
    ASSERT_EQ(OK, RegOpenKeyExA(HKCU, nullptr, 0, KEY_READ, root.out()));
    EXPECT_EQ("r", Text(root, "atroot"));
    ASSERT_EQ(OK, Create(HKCU, "\\", same));
    ASSERT_EQ(OK, Set(same, "AtRoot", "s"));
    EXPECT_EQ("s", Text(HKCU, "AtRoot"));
    ASSERT_EQ(OK, Create(HKCU, "Software", below));
    EXPECT_EQ(NF, Query(below, "AtRoot").rc);
}

TEST_F(Registry, NamesIgnoreTheCaseOfLetters) {
    const struct {
        const char *created, *opened;
        LONG rc;
        bool sameKey;
    } keys[] = {
        {"Software\\Mapwright\\Zz", "SOFTWARE\\mapwright\\zZ", OK, true},  // A..Z, both ends
        {"\xE0\xFF\xF7", "\xC0\xDF\xD7", OK, true},                  // Cyrillic, 0xD7/0xF7 letters here
        {"\xB8\xBF\xB3\xBA", "\xA8\xAF\xB2\xAA", OK, true},          // the letters outside the block
        {"a", "\xE0", NF, false},                                    // Latin a is not Cyrillic a
        {"@[", "`{", NF, false},                                     // no letters
        {"\xB0", "\x90", NF, false},
        {"Software\\Mapwright", "\\Software\\\\Mapwright\\", OK, true},  // empty components ignored
        {"Software\\Mapwright\\Deep", "software", OK, false},        // every level is made
        {"Software\\Map", "Software\\Mapwright", NF, false},
        {"Software\\Mapwright", "Software\\Map", NF, false},
        {"Software\\Mapwright", "Software/Mapwright", NF, false},    // '/' is part of a name
    };
    int row = 0;
    for (const auto& c : keys) {
        const std::string base = "Case" + std::to_string(row++) + "\\";
        Key created, opened;
        ASSERT_EQ(OK, Create(HKCU, base + c.created, created));
        ASSERT_EQ(OK, Set(created, "Row", base));
        EXPECT_EQ(c.rc, Open(HKCU, base + c.opened, opened)) << c.opened;
        EXPECT_EQ(c.sameKey, Text(opened, "Row") == base) << c.opened;
    }
    const struct {
        const char *written, *read;
        LONG rc;
    } values[] = {{"ProjectionIndex", "PROJECTIONINDEX", OK}, {"\xCC\xE0\xF1", "\xCC\xC0\xD1", OK},
                  {"", nullptr, OK}, {"fe", "fn", NF}, {"c_lon", "c_lon ", NF}};
    for (const auto& c : values) {
        Key key;
        ASSERT_EQ(OK, Create(HKCU, std::string("Names\\") + c.written, key));
        ASSERT_EQ(OK, Set(key, c.written, "v"));
        EXPECT_EQ(c.rc, Query(key, c.read).rc) << c.written;
    }
}

TEST_F(Registry, QueryReportsTheSizeAndWritesNoMoreThanTheBufferHolds) {
    ASSERT_EQ(OK, Set(HKCU, "Five", "hello"));
    ASSERT_EQ(OK, Set(HKCU, "Empty", ""));
    const struct {
        const char* name;
        bool buffer;  // false: a null data pointer
        DWORD room;
        LONG rc;
        DWORD size;
        bool nul;  // a NUL written after the data
    } cases[] = {
        {"Five", false, 0, OK, 5, false}, {"Five", true, 0, ERROR_MORE_DATA, 5, false},
        {"Five", true, 4, ERROR_MORE_DATA, 5, false}, {"Five", true, 5, OK, 5, false},
        {"Five", true, 6, OK, 5, true},   {"Five", true, 256, OK, 5, true},
        {"Empty", true, 0, OK, 0, false}, {"Empty", true, 1, OK, 0, true},
        {"Empty", false, 0, OK, 0, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.name) + " room " + std::to_string(c.room) + (c.buffer ? "" : " null"));
        std::vector<BYTE> buf(300, 0x7E);
        DWORD size = c.room, type = REG_NONE;
        EXPECT_EQ(c.rc, RegQueryValueExA(HKCU, c.name, nullptr, &type, c.buffer ? buf.data() : nullptr, &size));
        EXPECT_EQ(c.size, size);
        EXPECT_EQ(REG_SZ, type);
        std::string expected = c.rc == OK && c.buffer ? std::string(c.name[0] == 'F' ? "hello" : "") : "";
        if (c.nul) expected += '\0';
        expected.resize(300, '\x7E');
        EXPECT_EQ(expected, std::string(buf.begin(), buf.end()));
    }
    DWORD type = REG_NONE;  // neither data nor size: the type only
    EXPECT_EQ(OK, RegQueryValueExA(HKCU, "Five", nullptr, &type, nullptr, nullptr));
    EXPECT_EQ(REG_SZ, type);
}

TEST_F(Registry, MissingKeysAndValuesAreNotFound) {
    {
        Key present;
        ASSERT_EQ(OK, Create(HKCU, "Software\\Present", present));
        ASSERT_EQ(OK, Set(present, "Here", "1"));
    }
    for (const char* path : {"Software\\Absent", "Software\\Present\\Child", "Software\\Pres", "Absent\\Deeper",
                             "Software\\Present\\Here"}) {
        HKEY key = reinterpret_cast<HKEY>(uintptr_t{0x7777});
        EXPECT_EQ(NF, RegOpenKeyExA(HKCU, path, 0, KEY_READ, &key)) << path;
        EXPECT_EQ(nullptr, key) << path << ": no handle on failure";
    }
    const char* values[][2] = {{"Software\\Present", "Gone"}, {"Software\\Present", nullptr},
                               {"Software", "Here"}, {"", "Here"}};
    for (const auto& c : values) {
        Key key;
        ASSERT_EQ(OK, Open(HKCU, c[0], key));
        BYTE buf[16] = {0x55};
        DWORD size = sizeof buf, type = 0xDEAD;
        EXPECT_EQ(NF, RegQueryValueExA(key, c[1], nullptr, &type, buf, &size)) << c[0];
        EXPECT_EQ(sizeof buf, size) << "untouched";
        EXPECT_EQ(0xDEADu, type) << "untouched";
        EXPECT_EQ(0x55, buf[0]);
    }
}

TEST_F(Registry, AccessIsCheckedPerHandle) {
    const struct {
        REGSAM access;
        LONG query, set, create;
    } cases[] = {
        {KEY_READ, OK, DENIED, DENIED},          {KEY_WRITE, DENIED, OK, OK},
        {KEY_ALL_ACCESS, OK, OK, OK},            {KEY_QUERY_VALUE, OK, DENIED, DENIED},
        {KEY_SET_VALUE, DENIED, OK, DENIED},
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
        // What was refused left nothing behind.
        EXPECT_EQ(c.set == OK ? OK : NF, Query(made, name.c_str()).rc);
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
    const HKEY bad[] = {nullptr, closed, reinterpret_cast<HKEY>(uintptr_t{0x12345}),
                        reinterpret_cast<HKEY>(uintptr_t{0x80000002u})};  // HKEY_LOCAL_MACHINE
    for (HKEY b : bad) {
        HKEY result = nullptr;
        BYTE buf[8];
        DWORD size = sizeof buf;
        EXPECT_EQ(ERROR_INVALID_HANDLE, RegCreateKeyA(b, "X", &result)) << b;
        EXPECT_EQ(ERROR_INVALID_HANDLE, RegOpenKeyExA(b, "X", 0, KEY_READ, &result)) << b;
        EXPECT_EQ(ERROR_INVALID_HANDLE, RegQueryValueExA(b, "X", nullptr, nullptr, buf, &size)) << b;
        EXPECT_EQ(ERROR_INVALID_HANDLE, Set(b, "X", "x")) << b;
        EXPECT_EQ(ERROR_INVALID_HANDLE, RegCloseKey(b)) << b;
    }
    BYTE buf[8];
    DWORD size = sizeof buf, reserved = 0;
    EXPECT_EQ(ERROR_INVALID_PARAMETER, RegCreateKeyA(HKCU, "Software\\Other", nullptr));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, RegOpenKeyExA(HKCU, "Software", 0, KEY_READ, nullptr));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, RegQueryValueExA(open, "X", nullptr, nullptr, buf, nullptr));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, RegQueryValueExA(open, "X", &reserved, nullptr, buf, &size));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, RegSetValueExA(open, "X", 0, REG_SZ, nullptr, 5));
    EXPECT_EQ(OK, RegSetValueExA(open, "X", 0, REG_SZ, nullptr, 0)) << "no data, no size: empty";
    EXPECT_EQ(OK, Query(open, "X").rc);
    Key other;
    EXPECT_EQ(NF, Open(HKCU, "Software\\Other", other)) << "refused calls made nothing";
    EXPECT_EQ(OK, RegCloseKey(HKCU)) << "the predefined key may be closed";
    EXPECT_EQ(OK, Open(HKCU, "Software\\Handles", other));
}

TEST_F(Registry, ReadingCreatesNoStoreAndTheFirstWriteAPrivateOne) {
    mwtest::TempDir dir;
    const std::string parent = dir.file("new"), file = parent + "/deeper/registry.sqlite3";
    setenv("MAPWRIGHT_REGISTRY", file.c_str(), 1);
    Key key;
    EXPECT_EQ(NF, Open(HKCU, "Software", key));
    EXPECT_EQ(NF, Query(HKCU, "Value").rc);
    ASSERT_EQ(OK, Open(HKCU, "", key)) << "the root always exists";
    EXPECT_EQ(NF, Query(key, "Value").rc);
    EXPECT_FALSE(FileExists(parent));
    const mode_t mask = umask(022);
    ASSERT_EQ(OK, Create(HKCU, "Software\\Mapwright", key));
    ASSERT_EQ(OK, Set(key, "Value", "v"));
    umask(mask);
    EXPECT_EQ(0700u, Mode(parent));
    EXPECT_EQ(0700u, Mode(parent + "/deeper"));
    EXPECT_EQ(0600u, Mode(file));
    EXPECT_EQ("v", Text(key, "Value"));
}

TEST_F(Registry, TheStoreIsWhereTheEnvironmentSaysAtEachOpen) {
    mwtest::TempDir dir;
    const std::string own = dir.file("own.sqlite3"), xdg = dir.file("xdg"), home = dir.file("home");
    const std::string underXdg = xdg + "/mapwright/registry.sqlite3";
    const std::string underHome = home + "/.config/mapwright/registry.sqlite3";
    const struct {
        const char *registry, *config;  // null: unset
        const std::string& expected;
    } cases[] = {
        {own.c_str(), xdg.c_str(), own}, {nullptr, xdg.c_str(), underXdg}, {"", xdg.c_str(), underXdg},
        {nullptr, nullptr, underHome},   {nullptr, "", underHome},         {nullptr, "relative", underHome},
    };
    setenv("HOME", home.c_str(), 1);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected);
        std::filesystem::remove_all(dir.path());
        std::filesystem::create_directory(dir.path());
        SetEnv("MAPWRIGHT_REGISTRY", c.registry);
        SetEnv("XDG_CONFIG_HOME", c.config);
        ASSERT_EQ(OK, Set(HKCU, "Where", c.expected));
        for (const std::string* f : {&own, &underXdg, &underHome}) EXPECT_EQ(*f == c.expected, FileExists(*f)) << *f;
        EXPECT_EQ(c.expected, Text(HKCU, "Where"));
    }
    // An open key stays with its file when the variable changes.
    const std::string first = dir.file("1"), second = dir.file("2");
    setenv("MAPWRIGHT_REGISTRY", first.c_str(), 1);
    Key key, elsewhere;
    ASSERT_EQ(OK, Create(HKCU, "Software\\Moved", key));
    setenv("MAPWRIGHT_REGISTRY", second.c_str(), 1);
    ASSERT_EQ(OK, Set(key, "Where", "first"));
    EXPECT_EQ(NF, Open(HKCU, "Software\\Moved", elsewhere));
    setenv("MAPWRIGHT_REGISTRY", first.c_str(), 1);
    ASSERT_EQ(OK, Open(HKCU, "Software\\Moved", elsewhere));
    EXPECT_EQ("first", Text(elsewhere, "Where"));
}

// A file that is not our store is refused with ERROR_BADDB and left as it was.
TEST_F(Registry, AStoreFileThatIsNotOursIsRefusedAndLeftAlone) {
    const std::string& file = env.registryFile();
    auto sql = [](const std::string& path, const char* statement) {
        sqlite3* db = nullptr;
        EXPECT_EQ(SQLITE_OK, sqlite3_open(path.c_str(), &db));
        EXPECT_EQ(SQLITE_OK, sqlite3_exec(db, statement, nullptr, nullptr, nullptr));
        sqlite3_close(db);
        return mwtest::ReadFile(path);
    };
    std::string noise;
    for (unsigned i = 0, s = 12345; i < 8192; ++i) noise += char((s = s * 1103515245u + 12345u) >> 24);
    ASSERT_EQ(OK, Set(HKCU, "Value", "v"));
    std::string damaged = mwtest::ReadFile(file);  // the schema reads, the tables do not
    ASSERT_GT(damaged.size(), 4096u);
    for (size_t i = 4096; i < damaged.size(); ++i) damaged[i] = noise[i % noise.size()];
    const std::string cases[] = {
        "x", std::string(4096, '\0'), noise, std::string("SQLite format 3\0", 16) + noise.substr(16), damaged,
        sql(file + ".other", "CREATE TABLE t(x)"),  // another program's database
        sql(file, "PRAGMA user_version = 2"),       // a later version of ours
    };
    int row = 0;
    for (const std::string& content : cases) {
        SCOPED_TRACE(row++);
        std::filesystem::remove(file + "-wal");
        std::filesystem::remove(file + "-shm");
        mwtest::WriteFile(file, content);
        Key key;
        EXPECT_EQ(ERROR_BADDB, Open(HKCU, "Software", key));
        EXPECT_EQ(ERROR_BADDB, Create(HKCU, "Software", key));
        EXPECT_EQ(ERROR_BADDB, Set(HKCU, "Value", "v"));
        EXPECT_EQ(ERROR_BADDB, Query(HKCU, "Value").rc);
        EXPECT_TRUE(mwtest::ReadFile(file) == content) << "the file was changed";
    }
}

TEST_F(Registry, AStoreThatCannotBeWrittenGivesAnError) {
    mwtest::TempDir dir;
    mwtest::WriteFile(dir.file("plain"), "text");
    std::filesystem::create_directory(dir.file("dir"));
    const struct {
        std::string path;
        LONG open, write;
    } cases[] = {{dir.file("plain/r.sqlite3"), NF, DENIED}, {dir.file("dir"), DENIED, DENIED},
                 {dir.file("plain/sub/r.sqlite3"), NF, DENIED}};
    for (const auto& c : cases) {
        setenv("MAPWRIGHT_REGISTRY", c.path.c_str(), 1);
        Key key;
        EXPECT_EQ(c.open, Open(HKCU, "Software", key)) << c.path;
        EXPECT_EQ(c.write, Create(HKCU, "Software", key)) << c.path;
        EXPECT_EQ(c.write, Set(HKCU, "Value", "v")) << c.path;
    }
    EXPECT_EQ("text", mwtest::ReadFile(dir.file("plain")));
}

// Permission bits do not bind root: the cases run in a child without
// privileges; a control write shows that the bits are what refuse.
TEST_F(Registry, AReadOnlyStoreIsReadButNotWritten) {
    mwtest::TempDir dir;
    ASSERT_EQ(0, geteuid() == 0 ? chown(dir.path().c_str(), 65534, 65534) : 0);
    ASSERT_EQ(0, chmod(dir.path().c_str(), 0755));
    const std::string file = dir.file("r.sqlite3"), locked = dir.file("locked");
    EXPECT_TRUE(mwtest::RunInChildren(1, [&](int) {
        if (!DropPrivileges()) return 9;
        setenv("MAPWRIGHT_REGISTRY", file.c_str(), 1);
        if (Set(HKCU, "Value", "v") != OK || chmod(file.c_str(), 0400) != 0) return 10;
        const std::string before = mwtest::ReadFile(file);
        Key key, sub;
        if (Open(HKCU, "", key, KEY_ALL_ACCESS) != OK || Text(key, "Value") != "v") return 11;
        if (Set(key, "Value", "w") != DENIED || Create(key, "Sub", sub) != DENIED) return 12;
        if (mwtest::ReadFile(file) != before || mkdir(locked.c_str(), 0500) != 0) return 13;
        setenv("MAPWRIGHT_REGISTRY", (locked + "/r.sqlite3").c_str(), 1);
        if (Create(HKCU, "Software", sub) != DENIED) return 14;
        return FileExists(locked + "/r.sqlite3") ? 15 : 0;
    }));
}

TEST_F(Registry, AHandleIsValidOnlyInTheProcessThatOpenedIt) {
    Key key;
    ASSERT_EQ(OK, Create(HKCU, "Software\\Fork", key));
    ASSERT_EQ(OK, Set(key, "Parent", "p"));
    const HKEY inherited = key;
    EXPECT_TRUE(mwtest::RunInChildren(1, [&](int) {
        BYTE buf[8];
        DWORD size = sizeof buf;
        if (RegQueryValueExA(inherited, "Parent", nullptr, nullptr, buf, &size) != ERROR_INVALID_HANDLE) return 1;
        if (Set(inherited, "Child", "c") != ERROR_INVALID_HANDLE || RegCloseKey(inherited) != OK) return 2;
        Key own;
        if (Open(HKCU, "Software\\Fork", own, KEY_ALL_ACCESS) != OK || Text(own, "Parent") != "p") return 3;
        return Set(own, "Child", "c") == OK ? 0 : 4;
    }));
    EXPECT_EQ("c", Text(key, "Child"));
}

// A write is in the file when the call returns: a child that _exits with its
// key open loses nothing. Writers racing to create the store lose nothing.
TEST_F(Registry, WritesAreDurableAndConcurrentWritersLoseNothing) {
    const struct {
        int processes, values;
        bool sameKey, handlePerValue;
    } cases[] = {{1, 7, true, false}, {2, 300, true, false}, {2, 100, false, false}, {6, 25, true, true}};
    int row = 0;
    for (const auto& c : cases) {
        const std::string file = env.registryFile() + std::to_string(row++);
        setenv("MAPWRIGHT_REGISTRY", file.c_str(), 1);
        auto keyOf = [&](int p) { return "Software\\W" + std::to_string(c.sameKey ? 0 : p); };
        auto nameOf = [](int p, int i) { return std::to_string(p * 10000 + i); };
        ASSERT_TRUE(mwtest::RunInChildren(c.processes, [&](int p) {
            HKEY key = nullptr;
            for (int i = 0; i < c.values; ++i) {
                if (!key && RegCreateKeyA(HKCU, keyOf(p).c_str(), &key) != OK) return 1;
                if (Set(key, nameOf(p, i).c_str(), std::to_string(i * 7919)) != OK) return 2;
                if (c.handlePerValue && RegCloseKey(key) != OK) return 3;
                if (c.handlePerValue) key = nullptr;
            }
            return 0;  // _exit with the key open
        })) << row;
        int lost = 0;
        for (int p = 0; p < c.processes; ++p) {
            Key key;
            ASSERT_EQ(OK, Open(HKCU, keyOf(p), key));
            for (int i = 0; i < c.values; ++i) lost += Text(key, nameOf(p, i).c_str()) != std::to_string(i * 7919);
        }
        EXPECT_EQ(0, lost) << row;
        EXPECT_EQ("ok", IntegrityCheck(file)) << row;
    }
}

}  // namespace
