// The Windows registry functions under HKEY_CURRENT_USER, stored in an SQLite
// database: the file named by MAPWRIGHT_REGISTRY, else
// $XDG_CONFIG_HOME/mapwright/registry.sqlite3 (~/.config/... by default), looked
// up at each open. Key paths are `\`-separated; they and value names compare
// without regard to case (ASCII and Windows-1251 letters).
// Unlike Windows, every write is durable when the call returns, and a key
// handle is valid only in the process that opened it (not in a child of fork).
#ifndef MAPWRIGHT_REGISTRY_H
#define MAPWRIGHT_REGISTRY_H

#include "wintypes.h"

#define HKEY_CURRENT_USER (reinterpret_cast<HKEY>(static_cast<uintptr_t>(0x80000001u)))

#define ERROR_SUCCESS 0L
#define ERROR_FILE_NOT_FOUND 2L
#define ERROR_ACCESS_DENIED 5L
#define ERROR_INVALID_HANDLE 6L
#define ERROR_OUTOFMEMORY 14L
#define ERROR_INVALID_PARAMETER 87L
#define ERROR_MORE_DATA 234L
#define ERROR_NO_MORE_ITEMS 259L
#define ERROR_BADDB 1009L

#define KEY_QUERY_VALUE 0x0001u
#define KEY_SET_VALUE 0x0002u
#define KEY_CREATE_SUB_KEY 0x0004u
#define KEY_ENUMERATE_SUB_KEYS 0x0008u
#define KEY_READ 0x20019u
#define KEY_WRITE 0x20006u
#define KEY_ALL_ACCESS 0xF003Fu

#define REG_NONE 0u
#define REG_SZ 1u
#define REG_BINARY 3u
#define REG_DWORD 4u

// The write time RegEnumKeyExA could report (this registry keeps none).
typedef struct _FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
} FILETIME, *PFILETIME;

extern "C" {

// Opens `subKey` below `key`, creating every missing level, with full access.
MW_API LONG RegCreateKeyA(HKEY key, LPCSTR subKey, PHKEY result);
// Opens an existing key; ERROR_FILE_NOT_FOUND when it does not exist. Never
// creates the store file.
MW_API LONG RegOpenKeyExA(HKEY key, LPCSTR subKey, DWORD options, REGSAM access, PHKEY result);
// Reads a value; ERROR_FILE_NOT_FOUND when it does not exist. With a null
// `data` only the size is reported; a buffer too small gives ERROR_MORE_DATA
// and the size needed. A NUL is written after the data when the buffer has
// room for it; it is not counted. A null or empty name is the default value.
MW_API LONG RegQueryValueExA(HKEY key, LPCSTR name, LPDWORD reserved, LPDWORD type,
                             LPBYTE data, LPDWORD size);
// Writes a value of `size` bytes, kept with its type exactly as given; callers
// pass strings without their NUL. ERROR_ACCESS_DENIED through a key opened
// without KEY_SET_VALUE or when the store cannot be written.
MW_API LONG RegSetValueExA(HKEY key, LPCSTR name, DWORD reserved, DWORD type,
                           const BYTE* data, DWORD size);
// The name of the `index`-th subkey of `key` (0 first), in a fixed order while
// the key is unchanged; ERROR_NO_MORE_ITEMS past the last. `*nameSize` is the
// buffer's size in bytes and becomes the name's length without its NUL; a
// buffer too small gives ERROR_MORE_DATA. There are no classes and no write
// times: `className` gets an empty string, `lastWrite` is left as it is.
MW_API LONG RegEnumKeyExA(HKEY key, DWORD index, LPSTR name, LPDWORD nameSize, LPDWORD reserved,
                          LPSTR className, LPDWORD classSize, PFILETIME lastWrite);
MW_API LONG RegCloseKey(HKEY key);
}

#endif
