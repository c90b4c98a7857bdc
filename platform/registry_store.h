// Internal to the platform library: the SQLite file behind the registry
// functions, and how key paths and value names are compared.
#ifndef MAPWRIGHT_PLATFORM_REGISTRY_STORE_H
#define MAPWRIGHT_PLATFORM_REGISTRY_STORE_H

#include <sys/types.h>

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include <mapwright/registry.h>

struct sqlite3;

namespace mw {

// The file the environment names now: MAPWRIGHT_REGISTRY, else
// $XDG_CONFIG_HOME/mapwright/registry.sqlite3, else the same under ~/.config.
// Empty when there is no home directory either.
std::string RegistryStorePath();

// Key paths and value names compare without regard to case: ASCII letters and
// the letters of Windows-1251 fold to lower case, every other byte is itself.
std::string FoldRegistryName(std::string_view name);

// The components of a `\`-separated key path; empty components are dropped,
// so "\A\\B\" is "A" and "B".
std::vector<std::string_view> SplitKeyPath(std::string_view path);

// `base` (a folded path, "" for the root) followed by the folded `parts`.
std::string ChildKeyPath(const std::string& base, const std::vector<std::string_view>& parts);

// One registry file and the connection to it, opened when first needed and
// owned by the process that made the object. Keys are named by folded paths.
// Every call returns a Win32 code.
class RegistryStore {
public:
    explicit RegistryStore(std::string path);
    ~RegistryStore();
    RegistryStore(const RegistryStore&) = delete;
    RegistryStore& operator=(const RegistryStore&) = delete;

    // A connection is not to be used across fork(): a child sees the
    // parent's objects but must open its own.
    bool OwnedByThisProcess() const;

    // ERROR_FILE_NOT_FOUND when the key (or the whole store) does not exist;
    // the root always exists. Never creates the file.
    LONG KeyExists(const std::string& path);
    // Makes every missing level of `parts` below the existing key `base`,
    // creating the file on first use.
    LONG CreateKey(const std::string& base, const std::vector<std::string_view>& parts);
    LONG GetValue(const std::string& key, std::string_view name, DWORD& type, std::string& data);
    LONG SetValue(const std::string& key, std::string_view name, DWORD type, const BYTE* data,
                  DWORD size);
    // The name (as first spelled) of the `index`-th subkey of `key`, in the
    // order of the folded names; ERROR_NO_MORE_ITEMS past the last.
    LONG SubKeyName(const std::string& key, DWORD index, std::string& name);

private:
    enum class Format { Ours, Empty };

    LONG OpenExisting();
    LONG OpenForWriting();
    LONG CheckFormat(Format& format);
    LONG CreateSchema();
    LONG KeyExistsLocked(const std::string& path);

    std::mutex m_mutex;
    std::string m_path;
    pid_t m_pid;
    sqlite3* m_db = nullptr;
    bool m_formatChecked = false;  // the file holds our tables in our version
    bool m_writeReady = false;     // WAL and the tables are in place
};

}  // namespace mw

#endif
