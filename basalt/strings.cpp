// Basalt's own string table, compiled from Basalt.rc at build time. Basalt
// registers it at load under its Windows file name, as the loader would map
// BASALT.dll's resources, and withdraws it at unload.
#include <mapwright/resources.h>

#include "basalt_module.h"

// The tables mw_rc writes from Basalt.rc.
extern const MwModuleResources MwResources_BASALT;

namespace {

HMODULE g_module = nullptr;

__attribute__((constructor)) void RegisterBasalt() { g_module = MwRegisterModule(&MwResources_BASALT); }

// Runs after the destructors of the libraries that use Basalt.
__attribute__((destructor)) void UnregisterBasalt() {
    MwUnregisterModule(g_module);
    g_module = nullptr;
}

}  // namespace

namespace basalt {
HMODULE OwnModule() { return g_module; }
}  // namespace basalt
