// Message boxes. With no window back end the box is written to standard error
// (in UTF-8); a hook installed by a host or a test receives every box instead.
#ifndef MAPWRIGHT_WINUSER_H
#define MAPWRIGHT_WINUSER_H

#include "wintypes.h"

#define MB_OK 0x0u
#define MB_OKCANCEL 0x1u
#define MB_YESNO 0x4u
#define MB_ICONERROR 0x10u
#define MB_ICONWARNING 0x30u
#define MB_ICONINFORMATION 0x40u
#define IDOK 1
#define IDCANCEL 2
#define IDYES 6
#define IDNO 7

extern "C" {

// Receives text and caption as given (Windows-1251) and returns the button id.
typedef int (*MessageBoxHook)(HWND owner, LPCSTR text, LPCSTR caption, UINT type);

MW_API int MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT type);
// Installs `hook` (null removes it) and returns the previous one.
MW_API MessageBoxHook SetMessageBoxHook(MessageBoxHook hook);
}

#endif
