// Internal to the platform library: string look-up shared by LoadStringA and
// CString::LoadString.
#ifndef MAPWRIGHT_PLATFORM_RESOURCE_CHAIN_H
#define MAPWRIGHT_PLATFORM_RESOURCE_CHAIN_H

#include <string>

#include <mapwright/resources.h>
#include <mapwright/wintypes.h>

namespace mw {

// String `id` of `module` in the user-interface language, else in English.
bool FindModuleString(HMODULE module, UINT id, std::string& text);
// The first module of the extension chain (newest first) that has string `id`.
bool LoadFromResourceChain(UINT id, std::string& text);
// Dialog template `id` of the first module of the chain that has it, in the
// user-interface language (else English); null when none has.
const MwDialogTemplate* FindDialogInResourceChain(UINT id);

}  // namespace mw

#endif
