// The module entry: what the loader does for Mapwright.dll on Windows. The
// ELF constructor maps the module's resources under its Windows file name,
// then calls DllMain as the loader would; the destructor does the reverse.
#include <mapwright/afxext.h>
#include <mapwright/basalt.h>
#include <mapwright/module.h>
#include <mapwright/resources.h>

#include <cstdio>
#include <new>

// The tables mw_rc writes from Mapwright.rc.
extern const MwModuleResources MwResources_Mapwright;

namespace {

constexpr const char* kModuleFileName = "Mapwright.dll";

// Lives from load to unload; plain data, so no exit-time destructor runs
// before the ELF destructor that still needs it.
AFX_EXTENSION_MODULE g_extensionModule = {};
HMODULE g_instance = nullptr;

__attribute__((constructor)) void LoadModule() {
    g_instance = MwRegisterModule(&MwResources_Mapwright);
    if (!DllMain(g_instance, DLL_PROCESS_ATTACH, nullptr)) {
        // A refused load: on Windows the loader would unmap the module.
        std::fputs("Mapwright.dll: the module could not be initialised as an extension module\n", stderr);
        MwUnregisterModule(g_instance);
        g_instance = nullptr;
    }
}

__attribute__((destructor)) void UnloadModule() {
    if (!g_instance) return;
    DllMain(g_instance, DLL_PROCESS_DETACH, nullptr);
    MwUnregisterModule(g_instance);
    g_instance = nullptr;
}

}  // namespace

extern "C" BOOL DllMain(HINSTANCE instance, DWORD reason, LPVOID /*reserved*/) {
    switch (reason) {
        case DLL_PROCESS_ATTACH:
            if (!AfxInitExtensionModule(g_extensionModule, instance)) return 0;
            // The framework owns the link and frees it at AfxTermExtensionModule;
            // without memory the module still loads, outside the chain.
            new (std::nothrow) CDynLinkLibrary(g_extensionModule, FALSE);
            AddModule(kModuleFileName);
            return 1;
        case DLL_PROCESS_DETACH:
            // Basalt has no counterpart to AddModule; it finds the name unregistered.
            AfxTermExtensionModule(g_extensionModule, FALSE);
            return 1;
        default:  // thread attach and detach
            return 1;
    }
}
