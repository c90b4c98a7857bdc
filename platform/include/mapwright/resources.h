// Module resources: each of our shared libraries registers its string table
// (and later its dialog templates) under its Windows file name, as the loader
// would map a DLL's resources; LoadStringA and GetModuleHandleA find them.
#ifndef MAPWRIGHT_RESOURCES_H
#define MAPWRIGHT_RESOURCES_H

#include <stddef.h>

#include "wintypes.h"

#define LANG_ENGLISH_US ((LANGID)1033)
#define LANG_RUSSIAN ((LANGID)1049)

struct MwStringEntry {
    UINT id;
    const char* text;  // Windows-1251 bytes
};

struct MwStringTable {
    LANGID language;
    const MwStringEntry* entries;  // sorted by id
    size_t count;
};

struct MwModuleResources {
    const char* fileName;  // "Mapwright.dll", "BASALT.dll"
    const MwStringTable* tables;
    size_t tableCount;
};

extern "C" {

// Makes the module's resources reachable; the handle stands for the module.
MW_API HMODULE MwRegisterModule(const MwModuleResources* resources);
MW_API void MwUnregisterModule(HMODULE module);

// The module registered under `fileName`, matched without regard to case.
MW_API HMODULE GetModuleHandleA(LPCSTR fileName);
// Copies string `id` of `module` in the user-interface language (English when
// that language has no such entry) into `buffer`, cut to size - 1 bytes and
// terminated; returns the bytes copied, 0 when there is no such string.
MW_API int LoadStringA(HINSTANCE module, UINT id, LPSTR buffer, int size);

// The user-interface language: 1033 English or 1049 Russian. Chosen from
// MAPWRIGHT_UI_LANG, else LC_ALL, LC_MESSAGES, LANG ("ru..." is Russian), when
// first needed; a call here wins over the environment (0 goes back to it).
// Process-wide, unlike Windows.
MW_API LANGID SetThreadUILanguage(LANGID language);
MW_API LANGID GetThreadUILanguage(void);
}

#endif
