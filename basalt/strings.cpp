// Basalt's own string table. Basalt registers it at load under its Windows
// file name, as the loader would map BASALT.dll's resources.
#include <mapwright/codepage.h>
#include <mapwright/resources.h>

#include <string>

#include "basalt_module.h"

namespace {

struct Text {
    UINT id;
    const char* english;
    const char* russian;  // UTF-8 here, Windows-1251 in the table
};

constexpr Text kTexts[] = {
    {123, "Cancel", "Отмена"},
    {211, "The coordinate system settings could not be saved.",
     "Не удалось сохранить параметры системы координат."},
};
constexpr size_t kCount = sizeof kTexts / sizeof kTexts[0];

// Built at load from the texts above and freed when Basalt unloads, after
// the libraries that use it have run their own unload code.
struct Registration {
    std::string russian[kCount];
    MwStringEntry english[kCount];
    MwStringEntry russianEntries[kCount];
    MwStringTable tables[2];
    MwModuleResources resources;
};

Registration* g_registration = nullptr;
HMODULE g_module = nullptr;

__attribute__((constructor)) void RegisterBasalt() {
    auto* r = g_registration = new Registration;
    for (size_t i = 0; i < kCount; ++i) {
        r->russian[i] = Utf8ToAnsi(kTexts[i].russian);
        r->english[i] = {kTexts[i].id, kTexts[i].english};
        r->russianEntries[i] = {kTexts[i].id, r->russian[i].c_str()};
    }
    r->tables[0] = {LANG_ENGLISH_US, r->english, kCount};
    r->tables[1] = {LANG_RUSSIAN, r->russianEntries, kCount};
    r->resources = {"BASALT.dll", r->tables, 2};
    g_module = MwRegisterModule(&r->resources);
}

__attribute__((destructor)) void UnregisterBasalt() {
    MwUnregisterModule(g_module);
    g_module = nullptr;
    delete g_registration;
    g_registration = nullptr;
}

}  // namespace

namespace basalt {
HMODULE OwnModule() { return g_module; }
}  // namespace basalt
