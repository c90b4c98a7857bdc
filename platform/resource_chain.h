// Internal to the platform library: string look-up shared by LoadStringA and
// CString::LoadString.
#ifndef MAPWRIGHT_PLATFORM_RESOURCE_CHAIN_H
#define MAPWRIGHT_PLATFORM_RESOURCE_CHAIN_H

#include <string>

#include <mapwright/wintypes.h>

namespace mw {

// String `id` of `module` in the user-interface language, else in English.
bool FindModuleString(HMODULE module, UINT id, std::string& text);
// The first module of the extension chain (newest first) that has string `id`.
bool LoadFromResourceChain(UINT id, std::string& text);

}  // namespace mw

#endif
