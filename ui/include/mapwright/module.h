// The module entry of libmapwright.so, under its Windows name. Loading the
// library calls it with DLL_PROCESS_ATTACH and unloading with
// DLL_PROCESS_DETACH (ELF constructor and destructor), so a host never needs
// to; it is declared for hosts and tests that drive it themselves.
#ifndef MAPWRIGHT_MODULE_H
#define MAPWRIGHT_MODULE_H

#include <mapwright/wintypes.h>

#define DLL_PROCESS_DETACH 0
#define DLL_PROCESS_ATTACH 1
#define DLL_THREAD_ATTACH 2
#define DLL_THREAD_DETACH 3

// Process attach: joins the resource chain (AfxInitExtensionModule and a
// CDynLinkLibrary) and registers "Mapwright.dll" with Basalt; returns 0 when
// the extension module cannot be initialised (a null instance). Process
// detach: leaves the chain. Thread attach and detach: nothing. Returns 1
// otherwise.
extern "C" MW_API BOOL DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved);

#endif
