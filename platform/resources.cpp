#include <mapwright/resources.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "resource_chain.h"

namespace {

struct Module {
    const MwModuleResources* resources;
};

std::mutex g_modulesLock;
// Never destroyed: libraries unregister from their ELF destructors, which run
// after the exit-time destruction of ordinary statics.
std::vector<std::unique_ptr<Module>>& Modules() {
    static auto* modules = new std::vector<std::unique_ptr<Module>>;
    return *modules;
}

// ASCII letters matched without regard to case, as Windows matches file names.
bool SameIgnoringCase(const char* a, const char* b) {
    for (;; ++a, ++b) {
        char ca = (*a >= 'A' && *a <= 'Z') ? static_cast<char>(*a - 'A' + 'a') : *a;
        char cb = (*b >= 'A' && *b <= 'Z') ? static_cast<char>(*b - 'A' + 'a') : *b;
        if (ca != cb) return false;
        if (!ca) return true;
    }
}

const MwStringTable* FindTable(const MwModuleResources* res, LANGID language) {
    for (size_t i = 0; i < res->tableCount; ++i)
        if (res->tables[i].language == language) return &res->tables[i];
    return nullptr;
}

const MwStringEntry* FindEntry(const MwStringTable* table, UINT id) {
    if (!table) return nullptr;
    const MwStringEntry* end = table->entries + table->count;
    const MwStringEntry* it = std::lower_bound(table->entries, end, id,
                                               [](const MwStringEntry& e, UINT v) { return e.id < v; });
    return (it != end && it->id == id) ? it : nullptr;
}

// The registered resources behind `module`; the caller holds g_modulesLock.
const MwModuleResources* ResourcesOf(HMODULE module) {
    if (!module) return nullptr;
    for (const auto& m : Modules())
        if (reinterpret_cast<HMODULE>(m.get()) == module) return m->resources;
    return nullptr;
}

// Of the records that `matches` accepts, the one in the user-interface
// language, else the English one, else the first.
template <class Record, class Match>
const Record* ChooseLanguage(const Record* records, size_t count, Match matches) {
    if (!records) return nullptr;
    const LANGID wanted = GetThreadUILanguage();
    const Record* english = nullptr;
    const Record* first = nullptr;
    for (size_t i = 0; i < count; ++i) {
        const Record& r = records[i];
        if (!matches(r)) continue;
        if (r.language == wanted) return &r;
        if (!english && r.language == LANG_ENGLISH_US) english = &r;
        if (!first) first = &r;
    }
    return english ? english : first;
}

constexpr UINT kVersionInfoId = 1;  // VS_VERSION_INFO

// The first non-empty of the variables, in POSIX order.
LANGID LanguageFromEnvironment() {
    if (const char* ui = std::getenv("MAPWRIGHT_UI_LANG"); ui && *ui) {
        return std::strncmp(ui, "ru", 2) == 0 ? LANG_RUSSIAN : LANG_ENGLISH_US;
    }
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* v = std::getenv(name);
        if (v && *v) return std::strncmp(v, "ru", 2) == 0 ? LANG_RUSSIAN : LANG_ENGLISH_US;
    }
    return LANG_ENGLISH_US;
}

std::atomic<LANGID> g_chosenLanguage{0};

}  // namespace

namespace mw {

bool FindModuleString(HMODULE module, UINT id, std::string& text) {
    std::lock_guard<std::mutex> lock(g_modulesLock);
    const MwModuleResources* res = ResourcesOf(module);
    if (!res) return false;
    const MwStringEntry* e = FindEntry(FindTable(res, GetThreadUILanguage()), id);
    if (!e) e = FindEntry(FindTable(res, LANG_ENGLISH_US), id);
    if (!e) return false;
    text = e->text;
    return true;
}

}  // namespace mw

extern "C" {

HMODULE MwRegisterModule(const MwModuleResources* resources) {
    if (!resources || !resources->fileName) return nullptr;
    std::lock_guard<std::mutex> lock(g_modulesLock);
    Modules().push_back(std::make_unique<Module>(Module{resources}));
    return reinterpret_cast<HMODULE>(Modules().back().get());
}

void MwUnregisterModule(HMODULE module) {
    std::lock_guard<std::mutex> lock(g_modulesLock);
    auto& modules = Modules();
    modules.erase(std::remove_if(modules.begin(), modules.end(),
                                 [module](const std::unique_ptr<Module>& m) {
                                     return reinterpret_cast<HMODULE>(m.get()) == module;
                                 }),
                  modules.end());
}

HMODULE GetModuleHandleA(LPCSTR fileName) {
    if (!fileName) return nullptr;
    std::lock_guard<std::mutex> lock(g_modulesLock);
    // The newest registration of a name answers, as a reloaded module would.
    auto& modules = Modules();
    for (auto it = modules.rbegin(); it != modules.rend(); ++it)
        if (SameIgnoringCase((*it)->resources->fileName, fileName)) return reinterpret_cast<HMODULE>(it->get());
    return nullptr;
}

int LoadStringA(HINSTANCE module, UINT id, LPSTR buffer, int size) {
    if (!buffer || size <= 0) return 0;
    std::string text;
    if (!mw::FindModuleString(module, id, text)) {
        buffer[0] = '\0';
        return 0;
    }
    size_t n = std::min(text.size(), static_cast<size_t>(size) - 1);
    std::memcpy(buffer, text.data(), n);
    buffer[n] = '\0';
    return static_cast<int>(n);
}

const MwDialogTemplate* MwFindDialogTemplate(HMODULE module, UINT id) {
    std::lock_guard<std::mutex> lock(g_modulesLock);
    const MwModuleResources* res = ResourcesOf(module);
    if (!res) return nullptr;
    return ChooseLanguage(res->dialogs, res->dialogCount, [id](const MwDialogTemplate& d) { return d.id == id; });
}

const MwVersionInfo* MwFindVersionInfo(HMODULE module) {
    std::lock_guard<std::mutex> lock(g_modulesLock);
    const MwModuleResources* res = ResourcesOf(module);
    if (!res) return nullptr;
    return ChooseLanguage(res->versions, res->versionCount,
                          [](const MwVersionInfo& v) { return v.id == kVersionInfoId; });
}

const char* MwFindVersionValue(HMODULE module, LPCSTR key) {
    const MwVersionInfo* info = MwFindVersionInfo(module);
    if (!info || !key || info->stringTableCount == 0) return nullptr;
    const MwVersionStringTable& table = info->stringTables[0];
    for (size_t i = 0; i < table.count; ++i)
        if (SameIgnoringCase(table.values[i].key, key)) return table.values[i].value;
    return nullptr;
}

const void* MwFindResourceData(HMODULE module, UINT type, UINT id, size_t* size) {
    if (size) *size = 0;
    std::lock_guard<std::mutex> lock(g_modulesLock);
    const MwModuleResources* res = ResourcesOf(module);
    if (!res) return nullptr;
    const MwDataResource* r = ChooseLanguage(res->data, res->dataCount,
                                             [type, id](const MwDataResource& d) { return d.type == type && d.id == id; });
    if (!r) return nullptr;
    if (size) *size = r->size;
    // An empty resource still exists: answer with a pointer that is not null.
    return r->data ? static_cast<const void*>(r->data) : static_cast<const void*>(r);
}

LANGID SetThreadUILanguage(LANGID language) {
    if (language == 0) {  // back to the environment's choice, as on Windows
        g_chosenLanguage.store(0);
        return GetThreadUILanguage();
    }
    LANGID chosen = language == LANG_RUSSIAN ? LANG_RUSSIAN : LANG_ENGLISH_US;
    g_chosenLanguage.store(chosen);
    return chosen;
}

LANGID GetThreadUILanguage(void) {
    LANGID chosen = g_chosenLanguage.load();
    if (chosen) return chosen;
    // Read at each look-up rather than once, so that a variable set by the
    // host before its first window takes effect; getenv is cheap.
    return LanguageFromEnvironment();
}
}
