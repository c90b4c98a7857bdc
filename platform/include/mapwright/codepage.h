// Conversion between the library's single-byte ANSI text (Windows-1251) and
// UTF-8, for the edges where text meets a terminal or a window toolkit.
#ifndef MAPWRIGHT_CODEPAGE_H
#define MAPWRIGHT_CODEPAGE_H

#include <string>
#include <string_view>

#include "wintypes.h"

// Every byte of Windows-1251 has a character except 0x98; it becomes U+FFFD.
MW_API std::string AnsiToUtf8(std::string_view ansi);
// Characters outside Windows-1251, and bytes that are not UTF-8, become '?'.
MW_API std::string Utf8ToAnsi(std::string_view utf8);

#endif
