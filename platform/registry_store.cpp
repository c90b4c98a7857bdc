#include "registry_store.h"

#include <errno.h>
#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "ansi_case.h"
#include "posix_file.h"

namespace mw {

namespace {

// Marks the file as ours ("MWRG"), so that a path pointing at some other
// program's database is refused instead of written into.
constexpr long long kApplicationId = 0x4D575247;
// Raised with every change of the tables below; CheckFormat migrates older files.
constexpr long long kSchemaVersion = 1;

// Paths and names are BLOBs: the text is Windows-1251 bytes, not UTF-8.
constexpr const char* kSchema = R"sql(
CREATE TABLE reg_key(
  path BLOB PRIMARY KEY,  -- folded components joined by '\'; x'' is the root
  name BLOB NOT NULL      -- the last component as first spelled
) WITHOUT ROWID;
CREATE TABLE reg_value(
  key  BLOB NOT NULL,     -- folded path of the key
  fold BLOB NOT NULL,     -- folded name; x'' is the default value
  name BLOB NOT NULL,     -- the name as first spelled
  type INTEGER NOT NULL,  -- REG_SZ, REG_BINARY, ...
  data BLOB NOT NULL,     -- the bytes as written, strings without a NUL
  PRIMARY KEY (key, fold)
) WITHOUT ROWID;
INSERT INTO reg_key(path, name) VALUES (x'', x'');
PRAGMA application_id = 1297568327;
PRAGMA user_version = 1;
)sql";

// Long enough for another process to finish a burst of synced writes.
constexpr int kBusyTimeoutMs = 10000;

constexpr const std::array<unsigned char, 256>& kFold = mw::kAnsiFold;

bool IsBusy(int rc) { return (rc & 0xFF) == SQLITE_BUSY || (rc & 0xFF) == SQLITE_LOCKED; }

// The busy handler waits for a lock, but SQLite reports some conflicts at
// once (another process recovering the WAL or changing the journal mode
// while the file is new); those are retried here for as long again.
template <class Attempt>
int RetryWhileBusy(Attempt attempt) {
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::milliseconds(kBusyTimeoutMs);
    int rc = attempt();
    while (IsBusy(rc) && Clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        rc = attempt();
    }
    return rc;
}

int Exec(sqlite3* db, const char* sql) {
    return RetryWhileBusy([&] { return sqlite3_exec(db, sql, nullptr, nullptr, nullptr); });
}

LONG ToWin32(int rc) {
    switch (rc & 0xFF) {
    case SQLITE_OK:
    case SQLITE_ROW:
    case SQLITE_DONE:
        return ERROR_SUCCESS;
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
    case SQLITE_ERROR:  // our statements fail only when the tables are not what we made
    case SQLITE_SCHEMA:
    case SQLITE_CONSTRAINT:
    case SQLITE_MISMATCH:
    case SQLITE_FORMAT:
        return ERROR_BADDB;
    case SQLITE_NOMEM:
    case SQLITE_TOOBIG:
        return ERROR_OUTOFMEMORY;
    default:  // cannot open, read-only, I/O error, disk full, lock held too long
        return ERROR_ACCESS_DENIED;
    }
}

class Statement {
public:
    Statement(sqlite3* db, const char* sql) { m_rc = sqlite3_prepare_v2(db, sql, -1, &m_stmt, nullptr); }
    ~Statement() { sqlite3_finalize(m_stmt); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    // SQLite keeps its own copy, so temporaries may be bound. A null pointer
    // would bind SQL NULL; an empty BLOB needs a real one.
    void Bind(int index, const void* bytes, size_t size) {
        if (m_rc == SQLITE_OK)
            m_rc = sqlite3_bind_blob64(m_stmt, index, size ? bytes : "", size, SQLITE_TRANSIENT);
    }
    void Bind(int index, std::string_view bytes) { Bind(index, bytes.data(), bytes.size()); }
    void Bind(int index, long long value) {
        if (m_rc == SQLITE_OK) m_rc = sqlite3_bind_int64(m_stmt, index, value);
    }

    // SQLITE_ROW, SQLITE_DONE or the error; a statement that met a lock has
    // been rolled back and is run again.
    int Step() {
        if (m_rc != SQLITE_OK) return m_rc;
        return RetryWhileBusy([&] {
            int rc = sqlite3_step(m_stmt);
            if (IsBusy(rc)) sqlite3_reset(m_stmt);
            return rc;
        });
    }
    void Reset() {
        if (m_rc == SQLITE_OK) sqlite3_reset(m_stmt);
    }
    sqlite3_stmt* get() const { return m_stmt; }

private:
    sqlite3_stmt* m_stmt = nullptr;
    int m_rc;
};

// BEGIN IMMEDIATE takes the write lock first, so two writers never both hold
// a read snapshot that one of them cannot upgrade.
class Transaction {
public:
    explicit Transaction(sqlite3* db) : m_db(db), m_rc(Exec(db, "BEGIN IMMEDIATE")) {}
    ~Transaction() {
        if (m_rc == SQLITE_OK && !m_done) sqlite3_exec(m_db, "ROLLBACK", nullptr, nullptr, nullptr);
    }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    int status() const { return m_rc; }
    int Commit() {
        m_done = true;
        int rc = Exec(m_db, "COMMIT");
        if (rc != SQLITE_OK) sqlite3_exec(m_db, "ROLLBACK", nullptr, nullptr, nullptr);
        return rc;
    }

private:
    sqlite3* m_db;
    int m_rc;
    bool m_done = false;
};

// The registry holds the user's settings: the file and its WAL (SQLite gives
// the WAL the file's mode) are readable by the user alone.
bool CreateStoreFile(const std::string& path) {
    if (!MakeDirs(ParentDir(path))) return false;
    int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (fd < 0) return errno == EEXIST;
    close(fd);
    SyncDir(ParentDir(path));
    return true;
}

// SQLite takes a file shorter than its header for an empty database and would
// write over it; anything that is not empty must begin with the header.
bool LooksLikeDatabase(const std::string& path) {
    static const char kMagic[16] = "SQLite format 3";  // and its NUL
    int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return true;  // SQLite will report why it cannot open it
    char head[sizeof kMagic];
    ssize_t got = pread(fd, head, sizeof head, 0);
    close(fd);
    return got == 0 || (got == sizeof head && std::memcmp(head, kMagic, sizeof head) == 0);
}

// SQLite gives names such as ":memory:" and "file:..." a meaning of their own;
// a relative path is made explicit so that it is always a file.
std::string SqliteFileName(const std::string& path) { return path[0] == '/' ? path : "./" + path; }

}  // namespace

std::string RegistryStorePath() {
    if (const char* file = std::getenv("MAPWRIGHT_REGISTRY"); file && *file) return file;
    // A relative XDG_CONFIG_HOME is invalid and ignored (XDG base directories).
    if (const char* config = std::getenv("XDG_CONFIG_HOME"); config && config[0] == '/')
        return std::string(config) + "/mapwright/registry.sqlite3";
    std::string home = HomeDirectory();
    if (home.empty()) return {};
    return home + "/.config/mapwright/registry.sqlite3";
}

std::string FoldRegistryName(std::string_view name) {
    std::string folded(name);
    for (char& c : folded) c = static_cast<char>(kFold[static_cast<unsigned char>(c)]);
    return folded;
}

std::vector<std::string_view> SplitKeyPath(std::string_view path) {
    std::vector<std::string_view> parts;
    while (!path.empty()) {
        size_t sep = path.find('\\');
        std::string_view part = path.substr(0, sep);
        if (!part.empty()) parts.push_back(part);
        if (sep == std::string_view::npos) break;
        path.remove_prefix(sep + 1);
    }
    return parts;
}

std::string ChildKeyPath(const std::string& base, const std::vector<std::string_view>& parts) {
    std::string path = base;
    for (std::string_view part : parts) {
        if (!path.empty()) path += '\\';
        path += FoldRegistryName(part);
    }
    return path;
}

RegistryStore::RegistryStore(std::string path) : m_path(std::move(path)), m_pid(getpid()) {}

RegistryStore::~RegistryStore() {
    // SQLite forbids touching a connection in a child of fork(), closing
    // included; the child's copy is abandoned and the parent's stays intact.
    if (m_db && OwnedByThisProcess()) sqlite3_close_v2(m_db);
}

bool RegistryStore::OwnedByThisProcess() const { return getpid() == m_pid; }

// Opens a file that exists; reading never creates one.
LONG RegistryStore::OpenExisting() {
    if (m_db) return ERROR_SUCCESS;
    struct stat st;
    if (m_path.empty() || stat(m_path.c_str(), &st) != 0)
        return (m_path.empty() || errno == ENOENT || errno == ENOTDIR) ? ERROR_FILE_NOT_FOUND
                                                                       : ERROR_ACCESS_DENIED;
    if (S_ISREG(st.st_mode) && !LooksLikeDatabase(m_path)) return ERROR_BADDB;
    sqlite3* db = nullptr;
    // A file the user may not write is opened read-only by SQLite itself.
    int rc = sqlite3_open_v2(SqliteFileName(m_path).c_str(), &db, SQLITE_OPEN_READWRITE, nullptr);
    if (rc != SQLITE_OK) {
        sqlite3_close_v2(db);
        return ToWin32(rc);
    }
    sqlite3_busy_timeout(db, kBusyTimeoutMs);
    sqlite3_db_config(db, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(db, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    // Every commit is synced before the call returns.
    rc = sqlite3_exec(db, "PRAGMA synchronous = FULL", nullptr, nullptr, nullptr);
    if (rc != SQLITE_OK) {
        sqlite3_close_v2(db);
        return ToWin32(rc);
    }
    m_db = db;
    return ERROR_SUCCESS;
}

LONG RegistryStore::OpenForWriting() {
    if (m_writeReady) return ERROR_SUCCESS;
    if (!m_db && (m_path.empty() || !CreateStoreFile(m_path))) return ERROR_ACCESS_DENIED;
    LONG result = OpenExisting();
    Format format = Format::Empty;
    if (result == ERROR_SUCCESS) result = CheckFormat(format);
    if (result != ERROR_SUCCESS) return result;
    // WAL: readers never wait for the writer, and a commit is one synced
    // append. The mode is kept in the file, so this is a no-op after the first time.
    if (int rc = Exec(m_db, "PRAGMA journal_mode = WAL"); rc != SQLITE_OK) return ToWin32(rc);
    if (format == Format::Empty && (result = CreateSchema()) != ERROR_SUCCESS) return result;
    m_writeReady = true;
    return ERROR_SUCCESS;
}

// Ours: our tables in our version. Empty: a new file, no tables yet. Anything
// else (another program's database, a later version) is refused, not changed.
LONG RegistryStore::CheckFormat(Format& format) {
    if (m_formatChecked) {
        format = Format::Ours;
        return ERROR_SUCCESS;
    }
    Statement probe(m_db,
                    "SELECT (SELECT application_id FROM pragma_application_id),"
                    " (SELECT user_version FROM pragma_user_version),"
                    " (SELECT count(*) FROM sqlite_master)");
    int rc = probe.Step();
    if (rc != SQLITE_ROW) return ToWin32(rc);
    long long applicationId = sqlite3_column_int64(probe.get(), 0);
    long long version = sqlite3_column_int64(probe.get(), 1);
    long long objects = sqlite3_column_int64(probe.get(), 2);
    if (applicationId == 0 && version == 0 && objects == 0) {
        format = Format::Empty;
        return ERROR_SUCCESS;
    }
    // Version 1 is the first; a later one would migrate older files here.
    if (applicationId != kApplicationId || version != kSchemaVersion) return ERROR_BADDB;
    m_formatChecked = true;
    format = Format::Ours;
    return ERROR_SUCCESS;
}

LONG RegistryStore::CreateSchema() {
    Transaction transaction(m_db);
    if (transaction.status() != SQLITE_OK) return ToWin32(transaction.status());
    // Another process may have made the tables since we looked.
    Format format = Format::Empty;
    if (LONG result = CheckFormat(format); result != ERROR_SUCCESS) return result;
    if (format == Format::Ours) return ERROR_SUCCESS;
    if (int rc = sqlite3_exec(m_db, kSchema, nullptr, nullptr, nullptr); rc != SQLITE_OK) return ToWin32(rc);
    if (int rc = transaction.Commit(); rc != SQLITE_OK) return ToWin32(rc);
    m_formatChecked = true;
    return ERROR_SUCCESS;
}

LONG RegistryStore::KeyExistsLocked(const std::string& path) {
    if (path.empty()) return ERROR_SUCCESS;  // HKEY_CURRENT_USER itself
    Format format = Format::Empty;
    LONG result = OpenExisting();
    if (result == ERROR_SUCCESS) result = CheckFormat(format);
    if (result != ERROR_SUCCESS) return result;
    if (format == Format::Empty) return ERROR_FILE_NOT_FOUND;
    Statement find(m_db, "SELECT 1 FROM reg_key WHERE path = ?1");
    find.Bind(1, path);
    int rc = find.Step();
    return rc == SQLITE_ROW ? ERROR_SUCCESS : rc == SQLITE_DONE ? ERROR_FILE_NOT_FOUND : ToWin32(rc);
}

LONG RegistryStore::KeyExists(const std::string& path) {
    std::lock_guard lock(m_mutex);
    return KeyExistsLocked(path);
}

LONG RegistryStore::CreateKey(const std::string& base, const std::vector<std::string_view>& parts) {
    std::lock_guard lock(m_mutex);
    // An existing key is opened without a write, so a store that cannot be
    // written still opens its keys.
    LONG result = KeyExistsLocked(ChildKeyPath(base, parts));
    if (result != ERROR_FILE_NOT_FOUND) return result;
    if ((result = OpenForWriting()) != ERROR_SUCCESS) return result;

    Transaction transaction(m_db);
    if (transaction.status() != SQLITE_OK) return ToWin32(transaction.status());
    Statement insert(m_db, "INSERT OR IGNORE INTO reg_key(path, name) VALUES (?1, ?2)");
    std::string path = base;
    for (std::string_view part : parts) {
        path = ChildKeyPath(path, {part});
        insert.Reset();
        insert.Bind(1, path);
        insert.Bind(2, part);
        if (int rc = insert.Step(); rc != SQLITE_DONE) return ToWin32(rc);
    }
    return ToWin32(transaction.Commit());
}

LONG RegistryStore::GetValue(const std::string& key, std::string_view name, DWORD& type, std::string& data) {
    std::lock_guard lock(m_mutex);
    Format format = Format::Empty;
    LONG result = OpenExisting();
    if (result == ERROR_SUCCESS) result = CheckFormat(format);
    if (result != ERROR_SUCCESS) return result;
    if (format == Format::Empty) return ERROR_FILE_NOT_FOUND;

    Statement query(m_db, "SELECT type, data FROM reg_value WHERE key = ?1 AND fold = ?2");
    query.Bind(1, key);
    query.Bind(2, FoldRegistryName(name));
    int rc = query.Step();
    if (rc == SQLITE_DONE) return ERROR_FILE_NOT_FOUND;
    if (rc != SQLITE_ROW) return ToWin32(rc);
    type = static_cast<DWORD>(sqlite3_column_int64(query.get(), 0));
    const void* bytes = sqlite3_column_blob(query.get(), 1);
    int size = sqlite3_column_bytes(query.get(), 1);
    data.assign(size > 0 ? static_cast<const char*>(bytes) : "", static_cast<size_t>(size));
    return ERROR_SUCCESS;
}

LONG RegistryStore::SetValue(const std::string& key, std::string_view name, DWORD type, const BYTE* data,
                             DWORD size) {
    std::lock_guard lock(m_mutex);
    if (LONG result = OpenForWriting(); result != ERROR_SUCCESS) return result;
    // The name keeps the spelling of its first write.
    Statement upsert(m_db,
                     "INSERT INTO reg_value(key, fold, name, type, data) VALUES (?1, ?2, ?3, ?4, ?5)"
                     " ON CONFLICT(key, fold) DO UPDATE SET type = excluded.type, data = excluded.data");
    upsert.Bind(1, key);
    upsert.Bind(2, FoldRegistryName(name));
    upsert.Bind(3, name);
    upsert.Bind(4, static_cast<long long>(type));
    upsert.Bind(5, data, size);
    int rc = upsert.Step();
    return rc == SQLITE_DONE ? ERROR_SUCCESS : ToWin32(rc);
}

LONG RegistryStore::SubKeyName(const std::string& key, DWORD index, std::string& name) {
    std::lock_guard lock(m_mutex);
    if (LONG result = KeyExistsLocked(key); result != ERROR_SUCCESS) return result;
    Format format = Format::Empty;
    LONG result = OpenExisting();
    if (result == ERROR_SUCCESS) result = CheckFormat(format);
    // The root of a store not yet made has no subkeys.
    if (result == ERROR_FILE_NOT_FOUND || (result == ERROR_SUCCESS && format == Format::Empty))
        return ERROR_NO_MORE_ITEMS;
    if (result != ERROR_SUCCESS) return result;
    const std::string prefix = key.empty() ? key : key + '\\';
    // Every key below, in path order; the direct children have no further '\'.
    Statement query(m_db,
                    "SELECT path, name FROM reg_key WHERE path > ?1 AND substr(path, 1, ?2) = ?1 ORDER BY path");
    query.Bind(1, prefix);
    query.Bind(2, static_cast<long long>(prefix.size()));
    DWORD seen = 0;
    int rc;
    while ((rc = query.Step()) == SQLITE_ROW) {
        const auto* path = static_cast<const char*>(sqlite3_column_blob(query.get(), 0));
        const auto length = static_cast<size_t>(sqlite3_column_bytes(query.get(), 0));
        const std::string_view rest(path + prefix.size(), length - prefix.size());
        if (rest.find('\\') != std::string_view::npos || seen++ < index) continue;
        const void* spelled = sqlite3_column_blob(query.get(), 1);
        const int size = sqlite3_column_bytes(query.get(), 1);
        name.assign(size > 0 ? static_cast<const char*>(spelled) : "", static_cast<size_t>(size));
        return ERROR_SUCCESS;
    }
    return rc == SQLITE_DONE ? ERROR_NO_MORE_ITEMS : ToWin32(rc);
}

}  // namespace mw
