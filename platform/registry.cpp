#include <mapwright/registry.h>

#include <cstring>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "registry_store.h"

namespace {

using mw::RegistryStore;

// What a handle stands for: a key of one store, with the rights it was opened with.
struct OpenKey {
    std::shared_ptr<RegistryStore> store;  // shared by the keys opened below it
    std::string path;                      // folded; "" is the root
    REGSAM access;
};

// Handles are numbers that are never reused in a process, so a closed or
// made-up handle is refused instead of reaching freed memory.
class HandleTable {
public:
    HKEY Add(std::shared_ptr<OpenKey> key) {
        std::lock_guard lock(m_mutex);
        m_next += 4;  // never odd, so never HKEY_CURRENT_USER
        m_keys.emplace(m_next, std::move(key));
        return reinterpret_cast<HKEY>(m_next);
    }
    std::shared_ptr<OpenKey> Find(HKEY handle) {
        std::lock_guard lock(m_mutex);
        auto it = m_keys.find(reinterpret_cast<uintptr_t>(handle));
        return it == m_keys.end() ? nullptr : it->second;
    }
    bool Remove(HKEY handle) {
        std::shared_ptr<OpenKey> key;  // released after the lock, with its store
        std::lock_guard lock(m_mutex);
        auto it = m_keys.find(reinterpret_cast<uintptr_t>(handle));
        if (it == m_keys.end()) return false;
        key = std::move(it->second);
        m_keys.erase(it);
        return true;
    }

private:
    std::mutex m_mutex;
    std::unordered_map<uintptr_t, std::shared_ptr<OpenKey>> m_keys;
    uintptr_t m_next = 0x1000;
};

// Never destroyed: a key closed from another library's static destructor
// still finds the table.
HandleTable& Handles() {
    static HandleTable* table = new HandleTable;
    return *table;
}

// HKEY_CURRENT_USER is the root of the store the environment names at this
// call; any other handle must be open, and in the process that opened it.
std::shared_ptr<OpenKey> Resolve(HKEY handle) {
    if (handle == HKEY_CURRENT_USER)
        return std::make_shared<OpenKey>(
            OpenKey{std::make_shared<RegistryStore>(mw::RegistryStorePath()), std::string(), KEY_ALL_ACCESS});
    std::shared_ptr<OpenKey> key = Handles().Find(handle);
    if (!key || !key->store->OwnedByThisProcess()) return nullptr;
    return key;
}

}  // namespace

extern "C" {

LONG RegCreateKeyA(HKEY key, LPCSTR subKey, PHKEY result) {
    if (!result) return ERROR_INVALID_PARAMETER;
    *result = nullptr;
    std::shared_ptr<OpenKey> parent = Resolve(key);
    if (!parent) return ERROR_INVALID_HANDLE;
    if (!(parent->access & KEY_CREATE_SUB_KEY)) return ERROR_ACCESS_DENIED;
    std::vector<std::string_view> parts = mw::SplitKeyPath(subKey ? subKey : "");
    if (LONG rc = parent->store->CreateKey(parent->path, parts); rc != ERROR_SUCCESS) return rc;
    *result = Handles().Add(std::make_shared<OpenKey>(
        OpenKey{parent->store, mw::ChildKeyPath(parent->path, parts), KEY_ALL_ACCESS}));
    return ERROR_SUCCESS;
}

LONG RegOpenKeyExA(HKEY key, LPCSTR subKey, DWORD /*options*/, REGSAM access, PHKEY result) {
    if (!result) return ERROR_INVALID_PARAMETER;
    *result = nullptr;
    std::shared_ptr<OpenKey> parent = Resolve(key);
    if (!parent) return ERROR_INVALID_HANDLE;
    std::string path = mw::ChildKeyPath(parent->path, mw::SplitKeyPath(subKey ? subKey : ""));
    if (LONG rc = parent->store->KeyExists(path); rc != ERROR_SUCCESS) return rc;
    *result = Handles().Add(std::make_shared<OpenKey>(OpenKey{parent->store, std::move(path), access}));
    return ERROR_SUCCESS;
}

LONG RegQueryValueExA(HKEY key, LPCSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size) {
    std::shared_ptr<OpenKey> open = Resolve(key);
    if (!open) return ERROR_INVALID_HANDLE;
    if (reserved || (data && !size)) return ERROR_INVALID_PARAMETER;
    if (!(open->access & KEY_QUERY_VALUE)) return ERROR_ACCESS_DENIED;
    DWORD valueType = REG_NONE;
    std::string bytes;
    if (LONG rc = open->store->GetValue(open->path, name ? name : "", valueType, bytes); rc != ERROR_SUCCESS)
        return rc;
    const DWORD length = static_cast<DWORD>(bytes.size());  // written through a DWORD size
    if (type) *type = valueType;
    if (data) {
        if (*size < length) {
            *size = length;
            return ERROR_MORE_DATA;
        }
        std::memcpy(data, bytes.data(), length);
        // Callers treat string values as C strings, stored without their NUL.
        if (*size > length) data[length] = 0;
    }
    if (size) *size = length;
    return ERROR_SUCCESS;
}

LONG RegSetValueExA(HKEY key, LPCSTR name, DWORD /*reserved*/, DWORD type, const BYTE* data, DWORD size) {
    std::shared_ptr<OpenKey> open = Resolve(key);
    if (!open) return ERROR_INVALID_HANDLE;
    if (!data && size) return ERROR_INVALID_PARAMETER;
    if (!(open->access & KEY_SET_VALUE)) return ERROR_ACCESS_DENIED;
    return open->store->SetValue(open->path, name ? name : "", type, data, size);
}

LONG RegEnumKeyExA(HKEY key, DWORD index, LPSTR name, LPDWORD nameSize, LPDWORD reserved, LPSTR className,
                   LPDWORD classSize, PFILETIME /*lastWrite*/) {
    std::shared_ptr<OpenKey> open = Resolve(key);
    if (!open) return ERROR_INVALID_HANDLE;
    if (!name || !nameSize || reserved) return ERROR_INVALID_PARAMETER;
    if (!(open->access & KEY_ENUMERATE_SUB_KEYS)) return ERROR_ACCESS_DENIED;
    std::string found;
    if (LONG rc = open->store->SubKeyName(open->path, index, found); rc != ERROR_SUCCESS) return rc;
    if (*nameSize <= found.size()) return ERROR_MORE_DATA;  // no room for the NUL
    std::memcpy(name, found.c_str(), found.size() + 1);
    *nameSize = static_cast<DWORD>(found.size());
    if (className && classSize && *classSize > 0) className[0] = '\0';
    if (classSize) *classSize = 0;
    return ERROR_SUCCESS;
}

// A handle inherited through fork() may be closed in the child: that frees
// the handle and leaves the parent's connection alone.
LONG RegCloseKey(HKEY key) {
    if (key == HKEY_CURRENT_USER) return ERROR_SUCCESS;
    return Handles().Remove(key) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

}  // extern "C"
