// The Windows profile (INI file) functions, over our own reader and writer.
// Unlike Windows, a write is atomic (temporary file, fsync, rename) and holds
// an advisory lock across read-modify-write, so a crash never tears a file and
// concurrent writers from several processes all land.
//
// The format is the Windows one: "[Section]" lines and "Key=Value" lines, no
// comment syntax (";Key=v" is a key named ";Key"; a line without "=" is no
// key), CR LF, LF and CR line ends, names matched without regard to case
// (Windows-1251 letters included), blanks around names and values removed and
// one matching pair of '"' or '\'' around a value stripped. Of duplicate
// sections or keys the first answers. Paths take "\" as a separator as well.
#ifndef MAPWRIGHT_PROFILE_H
#define MAPWRIGHT_PROFILE_H

#include "wintypes.h"

extern "C" {

// Copies the value of `key` in section `section` of `file` into `buffer`,
// cut to size - 1 bytes and terminated; returns the bytes copied. A missing
// file, section or key gives `defaultText` (its trailing blanks dropped; null
// reads as ""). A null `section` lists the section names, a null `key` the keys
// of the section, each once, each terminated, the list ended by a second NUL;
// a list that does not fit is cut at size - 2 and ended by two NULs, and
// size - 2 returned. Lists never use the default. A null `buffer` or a size of
// 0 writes nothing and returns 0. Every call reads the file afresh.
MW_API DWORD GetPrivateProfileStringA(LPCSTR section, LPCSTR key, LPCSTR defaultText,
                                      LPSTR buffer, DWORD size, LPCSTR file);

// Sets `key` of `section` to `value`, creating the file and the section when
// missing. A null `value` deletes the key, a null `key` the whole section.
// Every byte of the file other than the line changed is kept. Non-zero on
// success (also when nothing needed changing); 0 for a null `section` or
// `file`, a missing directory, a file that cannot be written, or a name or
// value that would not read back as written (a line break, "=" in a key name).
MW_API BOOL WritePrivateProfileStringA(LPCSTR section, LPCSTR key, LPCSTR value, LPCSTR file);
}

#endif
