// The Win32 names that the Windows interface of Mapwright is written in, with
// the widths they have there (LONG and DWORD are 32 bits, as on Windows).
#ifndef MAPWRIGHT_WINTYPES_H
#define MAPWRIGHT_WINTYPES_H

#include <stdint.h>

#define MW_API __attribute__((visibility("default")))

typedef int BOOL;
typedef unsigned char BYTE;
typedef uint16_t WORD;
typedef uint32_t DWORD;
typedef int32_t LONG;
typedef unsigned int UINT;
typedef uint16_t LANGID;
typedef uint32_t REGSAM;
typedef char CHAR;
typedef const char* LPCSTR;
typedef char* LPSTR;
typedef BYTE* LPBYTE;
typedef DWORD* LPDWORD;
typedef void* LPVOID;

struct HWND__;
typedef HWND__* HWND;
struct HINSTANCE__;
typedef HINSTANCE__* HINSTANCE;
typedef HINSTANCE HMODULE;
struct HKEY__;
typedef HKEY__* HKEY;
typedef HKEY* PHKEY;

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif

#endif
