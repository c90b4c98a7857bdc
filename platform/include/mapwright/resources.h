// Module resources: each of our shared libraries registers its resources
// (string tables, dialog templates, version information, data such as the
// manifest) under its Windows file name, as the loader would map a DLL's
// resources; LoadStringA, GetModuleHandleA and the MwFind... calls find them.
// The tables are constant data that mw_rc, our resource compiler, writes from
// the library's resource script (.rc) at build time.
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

// One control of a dialog template, in the template's (tab) order.
struct MwDialogControl {
    // The window class: "Button", "Edit", "Static", "ListBox", "ScrollBar",
    // "ComboBox" for the system's (spelt so whatever the script wrote), else
    // the class a CONTROL statement names, as written.
    const char* className;
    const char* text;  // Windows-1251; "" when the template has none
    int id;            // -1 for a control nobody addresses (IDC_STATIC)
    DWORD style;       // with WS_CHILD | WS_VISIBLE and the statement's own bits
    DWORD exStyle;
    DWORD helpId;      // DIALOGEX only, else 0
    short x, y, cx, cy;  // dialog units
};

struct MwDialogTemplate {
    UINT id;
    LANGID language;
    BOOL extended;  // written as DIALOGEX
    DWORD style;    // as the resource compiler makes it: DS_SETFONT with FONT, WS_CAPTION with CAPTION
    DWORD exStyle;
    DWORD helpId;
    short x, y, cx, cy;  // dialog units
    const char* caption;   // Windows-1251; "" when none
    const char* fontName;  // null without a FONT statement
    WORD fontSize;         // points
    WORD fontWeight;       // DIALOGEX's FONT, else 0
    BYTE fontItalic;
    BYTE fontCharset;
    const MwDialogControl* controls;
    size_t controlCount;
};

struct MwVersionValue {
    const char* key;    // "FileVersion", "ProductName", ...
    const char* value;  // Windows-1251
};

struct MwVersionStringTable {
    const char* block;  // "040904b0": language and code page, in hexadecimal
    const MwVersionValue* values;
    size_t count;
};

struct MwVersionTranslation {
    WORD language;
    WORD codePage;
};

// A VERSIONINFO resource: the fixed part as VS_FIXEDFILEINFO holds it
// (1.2.1.0 is MS 0x00010002, LS 0x00010000), then the string tables and the
// translations of VarFileInfo.
struct MwVersionInfo {
    UINT id;
    LANGID language;
    DWORD fileVersionMS, fileVersionLS;
    DWORD productVersionMS, productVersionLS;
    DWORD fileFlagsMask, fileFlags, fileOS, fileType, fileSubtype;
    const MwVersionStringTable* stringTables;
    size_t stringTableCount;
    const MwVersionTranslation* translations;
    size_t translationCount;
};

#define MW_RT_RCDATA 10u
#define MW_RT_MANIFEST 24u

// A resource kept as bytes (RCDATA, the manifest).
struct MwDataResource {
    UINT type;  // MW_RT_RCDATA, MW_RT_MANIFEST or a number of the script's
    UINT id;
    LANGID language;
    const unsigned char* data;
    size_t size;
};

struct MwModuleResources {
    const char* fileName;  // "Mapwright.dll", "BASALT.dll"
    const MwStringTable* tables;
    size_t tableCount;
    const MwDialogTemplate* dialogs = nullptr;  // by id, then language
    size_t dialogCount = 0;
    const MwVersionInfo* versions = nullptr;
    size_t versionCount = 0;
    const MwDataResource* data = nullptr;
    size_t dataCount = 0;
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

// The other resources of `module`, in the language LoadStringA would use:
// the user-interface language, else English, else the first the module has
// (a neutral version resource, say). Null when the module has no such
// resource. The records stay valid while the module is registered.
MW_API const MwDialogTemplate* MwFindDialogTemplate(HMODULE module, UINT id);
// The module's version resource (VS_VERSION_INFO, id 1).
MW_API const MwVersionInfo* MwFindVersionInfo(HMODULE module);
// A value of the first string table of the module's version resource
// ("FileVersion", ...), matched without regard to case; null when absent.
MW_API const char* MwFindVersionValue(HMODULE module, LPCSTR key);
// The bytes of a data resource; `size` (when not null) receives their count.
MW_API const void* MwFindResourceData(HMODULE module, UINT type, UINT id, size_t* size);

// The user-interface language: 1033 English or 1049 Russian. Chosen from
// MAPWRIGHT_UI_LANG, else LC_ALL, LC_MESSAGES, LANG ("ru..." is Russian), when
// first needed; a call here wins over the environment (0 goes back to it).
// Process-wide, unlike Windows.
MW_API LANGID SetThreadUILanguage(LANGID language);
MW_API LANGID GetThreadUILanguage(void);
}

#endif
