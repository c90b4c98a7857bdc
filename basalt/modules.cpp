#include <mapwright/basalt.h>

#include <mutex>
#include <string>
#include <vector>

#include <mapwright/resources.h>

#include "basalt_module.h"

namespace {

std::mutex g_lock;
// Kept by name and resolved at each look-up, so a module that was unloaded
// and loaded again is still found, and a stale handle is never used.
std::vector<std::string>& AddedModules() {
    static auto* names = new std::vector<std::string>;  // outlives exit-time look-ups
    return *names;
}

bool LookUp(HMODULE module, int id, CString& text) {
    if (!module) return false;
    // LoadStringA cannot tell an empty entry from a missing one; none of the
    // tables holds an empty entry. A text that fills the buffer may be cut:
    // ask again with more room.
    std::vector<char> buffer(512);
    for (;;) {
        int n = LoadStringA(module, static_cast<UINT>(id), buffer.data(), static_cast<int>(buffer.size()));
        if (n <= 0) return false;
        if (static_cast<size_t>(n) < buffer.size() - 1) {
            text = CString(buffer.data(), n);
            return true;
        }
        buffer.resize(buffer.size() * 2);
    }
}

}  // namespace

BOOL AddModule(const char* fileName) {
    if (!fileName || !GetModuleHandleA(fileName)) return FALSE;
    std::lock_guard<std::mutex> lock(g_lock);
    for (const std::string& name : AddedModules())
        if (name == fileName) return TRUE;
    AddedModules().emplace_back(fileName);
    return TRUE;
}

CString GetResourceString(int id) {
    CString text;
    if (id < 0) return text;
    if (LookUp(basalt::OwnModule(), id, text)) return text;
    std::vector<std::string> names;
    {
        std::lock_guard<std::mutex> lock(g_lock);
        names = AddedModules();
    }
    for (const std::string& name : names)
        if (LookUp(GetModuleHandleA(name.c_str()), id, text)) return text;
    return text;
}
