// MFC extension modules: a module joins the resource chain that
// CString::LoadString searches, newest first.
#ifndef MAPWRIGHT_AFXEXT_H
#define MAPWRIGHT_AFXEXT_H

#include "wintypes.h"

struct AFX_EXTENSION_MODULE {
    BOOL bInitialized;
    HMODULE hModule;
    HMODULE hResource;
};

MW_API BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HMODULE module);
// Removes the module's entries from the resource chain.
MW_API void AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL all = FALSE);

// One link of the resource chain. MFC releases these itself, so a module
// makes one with new and does not keep it; AfxTermExtensionModule frees it.
class MW_API CDynLinkLibrary {
public:
    CDynLinkLibrary(AFX_EXTENSION_MODULE& state, BOOL system = FALSE);
    ~CDynLinkLibrary();
    CDynLinkLibrary(const CDynLinkLibrary&) = delete;
    CDynLinkLibrary& operator=(const CDynLinkLibrary&) = delete;

    HMODULE m_hModule;
    HMODULE m_hResource;
    BOOL m_bSystem;
};

#endif
