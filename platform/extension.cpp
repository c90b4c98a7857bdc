#include <mapwright/afxext.h>

#include <algorithm>
#include <mutex>
#include <vector>

#include "resource_chain.h"

namespace {

std::mutex g_chainLock;
// Newest first, as MFC links a new CDynLinkLibrary at the head of its list.
// Never destroyed, for the same reason as the module list.
std::vector<CDynLinkLibrary*>& Chain() {
    static auto* chain = new std::vector<CDynLinkLibrary*>;
    return *chain;
}

}  // namespace

namespace mw {

namespace {

std::vector<HMODULE> ChainModules() {
    std::vector<HMODULE> modules;
    std::lock_guard<std::mutex> lock(g_chainLock);
    for (CDynLinkLibrary* link : Chain()) modules.push_back(link->m_hResource);
    return modules;
}

}  // namespace

bool LoadFromResourceChain(UINT id, std::string& text) {
    for (HMODULE m : ChainModules())
        if (FindModuleString(m, id, text)) return true;
    return false;
}

const MwDialogTemplate* FindDialogInResourceChain(UINT id) {
    for (HMODULE m : ChainModules())
        if (const MwDialogTemplate* found = MwFindDialogTemplate(m, id)) return found;
    return nullptr;
}

}  // namespace mw

BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HMODULE module) {
    if (!module) return FALSE;
    state.hModule = module;
    state.hResource = module;
    state.bInitialized = TRUE;
    return TRUE;
}

void AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL /*all*/) {
    std::vector<CDynLinkLibrary*> mine;
    {
        std::lock_guard<std::mutex> lock(g_chainLock);
        auto& chain = Chain();
        for (CDynLinkLibrary* link : chain)
            if (link->m_hModule == state.hModule) mine.push_back(link);
    }
    // The framework owns the links: it frees them when their module ends.
    for (CDynLinkLibrary* link : mine) delete link;
    state.bInitialized = FALSE;
}

CDynLinkLibrary::CDynLinkLibrary(AFX_EXTENSION_MODULE& state, BOOL system)
    : m_hModule(state.hModule), m_hResource(state.hResource), m_bSystem(system) {
    std::lock_guard<std::mutex> lock(g_chainLock);
    Chain().insert(Chain().begin(), this);
}

CDynLinkLibrary::~CDynLinkLibrary() {
    std::lock_guard<std::mutex> lock(g_chainLock);
    auto& chain = Chain();
    chain.erase(std::remove(chain.begin(), chain.end(), this), chain.end());
}
