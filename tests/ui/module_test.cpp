// The module once loaded: its entry point, string table, dialog templates,
// version and manifest, as a host sees them.
#include <mapwright/afxstr.h>
#include <mapwright/basalt.h>
#include <mapwright/module.h>
#include <mapwright/resources.h>

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <tuple>

namespace {

class Module : public ::testing::Test {
protected:
    void SetUp() override {
        SetThreadUILanguage(LANG_ENGLISH_US);
        ASSERT_NE(nullptr, m = GetModuleHandleA("Mapwright.dll"));
    }
    void TearDown() override { SetThreadUILanguage(0); }
    // What loading the module makes visible to a host.
    std::string Observe() {
        CString text;
        const BOOL found = text.LoadString(832);
        return std::to_string(found) + text.GetString() + "|" + GetResourceString(838).GetString() +
               (MwFindDialogTemplate(m, 817) ? "|817" : "|none");
    }
    HMODULE m = nullptr;
};

TEST_F(Module, LoadingRegisteredItAndThreadsChangeNothing) {
    const std::string loaded = "1Geographic|Decart coordinate system|817";
    EXPECT_EQ(loaded, Observe());
    for (HINSTANCE instance : {HINSTANCE(m), HINSTANCE(nullptr)})
        for (DWORD reason : {DWORD{DLL_THREAD_ATTACH}, DWORD{DLL_THREAD_DETACH}}) {
            EXPECT_EQ(1, DllMain(instance, reason, nullptr)) << reason;
            EXPECT_EQ(loaded, Observe());
        }
    EXPECT_EQ(0, DllMain(nullptr, DLL_PROCESS_ATTACH, nullptr)) << "no instance: refused";
    EXPECT_EQ(loaded, Observe());
    // Detach leaves the chain; Basalt keeps the name and the resources stay mapped.
    EXPECT_EQ(1, DllMain(m, DLL_PROCESS_DETACH, nullptr));
    EXPECT_EQ("0|Decart coordinate system|817", Observe());
    EXPECT_EQ(1, DllMain(m, DLL_PROCESS_ATTACH, nullptr));
    EXPECT_EQ(loaded, Observe());
}

TEST_F(Module, StringTableHoldsItsIdsInBothLanguages) {
    // Entries whose blanks, line feeds and spelling a tidy-up would change.
    const struct {
        UINT id;
        const char *english, *russian;  // Windows-1251
    } cases[] = {
        {832, "Geographic", "\xC3\xE5\xEE\xE3\xF0\xE0\xF4\xE8\xF7\xE5\xF1\xEA\xE0\xFF"},
        {845, "Decart coordinate system", "Decart coordinate system"},
        {854, "North/South ", "\xD1\xE5\xE2\xE5\xF0/\xDE\xE3  "},
        {865, "Select latitude from 79\xB0" "30'S to  83\xB0" "30'N\n or select polar stereographic projection type",
         "              \xC2\xE2\xE5\xE4\xE8\xF2\xE5 \xF8\xE8\xF0\xEE\xF2\xF3 \xE2 \xEF\xF0\xE5\xE4\xE5\xEB\xE0\xF5  "
         "(-79\xB0" "30'; 83\xB0" "30')\n \xE8\xEB\xE8 \xE2\xFB\xE1\xE5\xF0\xE8\xF2\xE5 \xEF\xEE\xEB\xFF\xF0\xED\xF3\xFE "
         "\xF1\xF2\xE5\xF0\xE5\xEE\xE3\xF0\xE0\xF4\xE8\xF7\xE5\xF1\xEA\xF3\xFE \xEF\xF0\xEE\xE5\xEA\xF6\xE8\xFE   "},
        {867, "m", "\xEC "},
        {869, "Output coorditanes", "\xCA\xEE\xED\xE5\xF7\xED\xFB\xE5 \xEA\xEE\xEE\xF0\xE4\xE8\xED\xE0\xF2\xFB"},
        {883, "Y = ", "Y = "},
        {888, "Projection ", "\xCF\xF0\xEE\xE5\xEA\xF6\xE8\xFF  "},
        {891, "Decimal format", "\xC4\xE5\xF1\xFF\xF2\xE8\xF7\xED\xFB\xE9 \xF4\xEE\xF0\xEC\xE0\xF2"},
    };
    std::set<UINT> listed;  // 832..885 and 888..891; 886 and 887 are control ids
    for (UINT id = 832; id <= 891; ++id)
        if (id != 886 && id != 887) listed.insert(id);
    for (LANGID language : {LANG_ENGLISH_US, LANG_RUSSIAN}) {
        SetThreadUILanguage(language);
        for (const auto& c : cases) {
            CString loaded("stale");
            EXPECT_TRUE(loaded.LoadString(c.id));
            EXPECT_EQ(language == LANG_RUSSIAN ? c.russian : c.english, std::string(loaded.GetString())) << c.id;
            EXPECT_EQ(loaded, GetResourceString(int(c.id))) << c.id;
        }
        std::set<UINT> found;
        char buf[256];
        for (UINT id = 0; id <= 0xFFFF; ++id)
            if (LoadStringA(m, id, buf, sizeof buf) > 0) found.insert(id);
        EXPECT_EQ(listed, found) << language;
        CString text("kept");
        EXPECT_FALSE(text.LoadString(886));
        EXPECT_EQ(CString("kept"), text);
        EXPECT_FALSE(text.LoadString(123)) << "Basalt is no extension module...";
        EXPECT_EQ(language == LANG_RUSSIAN ? "\xCE\xF2\xEC\xE5\xED\xE0" : "Cancel",
                  std::string(GetResourceString(123).GetString())) << "... but answers beside it";
    }
}

// Styles as Windows defines them.
constexpr DWORD kChildVisible = 0x50000000, kTab = 0x00010000, kGroup = 0x00020000;
constexpr DWORD kList = kChildVisible | 0x00200000 | kTab | 0x3, kSorted = kList | 0x100;
constexpr DWORD kEdit = kChildVisible | 0x00800000 | kTab | 0x80, kOk = kChildVisible | kTab | 0x1;
constexpr DWORD kLabel = kChildVisible | kGroup, kFrame = kChildVisible | 0x7, kRadio = kChildVisible | 0x9;

TEST_F(Module, DialogTemplatesInBothLanguages) {
    const struct {
        UINT id;
        LANGID language;
        short cx, cy;
        const char* caption;
        size_t controls;
    } dialogs[] = {
        {817, LANG_ENGLISH_US, 170, 219, "Choose projection", 20},
        {817, LANG_RUSSIAN, 170, 219, "\xC2\xFB\xE1\xEE\xF0 \xEF\xF0\xEE\xE5\xEA\xF6\xE8\xE8", 20},
        {818, LANG_ENGLISH_US, 421, 161, "Parameters of GCP", 26},
        {818, LANG_RUSSIAN, 422, 161, "\xCF\xE0\xF0\xE0\xEC\xE5\xF2\xF0\xFB \xCD\xCA\xD2", 26},
        {819, LANG_ENGLISH_US, 186, 95, "Control Points", 2},
        {819, LANG_RUSSIAN, 186, 95, "\xCA\xEE\xED\xF2\xF0\xEE\xEB\xFC\xED\xFB\xE5 \xF2\xEE\xF7\xEA\xE8", 2},
    };
    for (const auto& d : dialogs) {
        SetThreadUILanguage(d.language);
        const MwDialogTemplate* t = MwFindDialogTemplate(m, d.id);
        ASSERT_NE(nullptr, t) << d.id;
        EXPECT_EQ(std::make_tuple(d.id, d.language, d.cx, d.cy, d.controls),
                  std::make_tuple(t->id, t->language, t->cx, t->cy, t->controlCount));
        EXPECT_STREQ(d.caption, t->caption);
        EXPECT_EQ(0x80C800C0u, t->style) << "popup, caption, system menu, modal frame, font";
        EXPECT_EQ(0u, t->exStyle);
        EXPECT_STREQ("MS Sans Serif", t->fontName);
        EXPECT_EQ(8, t->fontSize);
    }
    // One control of each kind, and those where the languages differ.
    const struct {
        UINT dialog;
        LANGID language;
        size_t index;
        const char* cls;
        int id;
        DWORD style;
        short x, y, cx, cy;
        const char* text;
    } controls[] = {
        {817, LANG_ENGLISH_US, 0, "ComboBox", 800, kSorted, 14, 19, 143, 68, ""},
        {817, LANG_RUSSIAN, 0, "ComboBox", 800, kList, 14, 19, 143, 68, ""},
        {817, LANG_ENGLISH_US, 1, "Edit", 801, kEdit, 93, 48, 66, 12, ""},
        {817, LANG_ENGLISH_US, 8, "Button", 1, kOk, 7, 198, 50, 14, "OK"},
        {817, LANG_RUSSIAN, 9, "Button", 2, kChildVisible | kTab, 113, 198, 50, 14, "\xCE\xF2\xEC\xE5\xED\xE8\xF2\xFC"},
        {817, LANG_RUSSIAN, 11, "Static", 810, kLabel, 65, 142, 40, 8, "\xDD\xEB\xEB\xE8\xEF\xF1\xEE\xE8\xE4"},
        {817, LANG_ENGLISH_US, 13, "Button", -1, kFrame, 7, 134, 156, 60, ""},
        {818, LANG_ENGLISH_US, 21, "Button", 886, kRadio | kGroup, 182, 30, 39, 10, "Custom"},
        {818, LANG_ENGLISH_US, 22, "Button", 887, kRadio, 182, 46, 42, 10, "From file"},
        {818, LANG_RUSSIAN, 22, "Button", 887, kRadio | kGroup, 182, 46, 48, 10, "\xD4\xE0\xE9\xEB"},
        {818, LANG_RUSSIAN, 25, "Static", 822, kLabel, 236, 32, 164, 32, "StaticGeoidFile"},
        {819, LANG_RUSSIAN, 1, "Button", 2, kChildVisible | kTab, 129, 24, 50, 14, "\xCE\xF2\xEC\xE5\xED\xE0"},
    };
    for (const auto& e : controls) {
        SetThreadUILanguage(e.language);
        const MwDialogControl& c = MwFindDialogTemplate(m, e.dialog)->controls[e.index];
        EXPECT_EQ(std::make_tuple(std::string(e.cls), e.id, e.style, e.x, e.y, e.cx, e.cy, std::string(e.text), 0u),
                  std::make_tuple(std::string(c.className), c.id, c.style, c.x, c.y, c.cx, c.cy, std::string(c.text),
                                  c.exStyle))
            << e.dialog << " " << e.language << " control " << e.index;
    }
    for (UINT id : {816u, 820u, 1u}) EXPECT_EQ(nullptr, MwFindDialogTemplate(m, id)) << id;
    EXPECT_EQ(nullptr, MwFindDialogTemplate(nullptr, 817));
}

TEST_F(Module, VersionIsNeutralAndTheManifestAsksForTheCallersRights) {
    const char* values[][2] = {{"FileVersion", "1.2.1.0"}, {"ProductVersion", "1.2.1.0"},
                               {"FileDescription", "Map projections conversion functions"},
                               {"ProductName", "Mapwright Dynamic Link Library"}, {"OriginalFilename", "Mapwright.dll"},
                               {"fileversion", "1.2.1.0"}};
    for (LANGID language : {LANG_ENGLISH_US, LANG_RUSSIAN}) {
        SetThreadUILanguage(language);
        const MwVersionInfo* v = MwFindVersionInfo(m);
        ASSERT_NE(nullptr, v);
        EXPECT_EQ(0, v->language);
        // 1.2.1.0 as VS_FIXEDFILEINFO holds it: major << 16 | minor, build << 16 | revision.
        EXPECT_EQ(std::make_tuple(0x00010002u, 0x00010000u, 0x00010002u, 0x00010000u, 2u),
                  std::make_tuple(v->fileVersionMS, v->fileVersionLS, v->productVersionMS, v->productVersionLS,
                                  v->fileType));
        for (const auto& [key, value] : values) EXPECT_STREQ(value, MwFindVersionValue(m, key)) << key;
    }
    EXPECT_EQ(nullptr, MwFindVersionValue(m, "CompanyName"));
    EXPECT_EQ(nullptr, MwFindVersionValue(m, nullptr));
    size_t size = 0;
    const void* data = MwFindResourceData(m, MW_RT_MANIFEST, 2, &size);
    ASSERT_NE(nullptr, data);
    const std::string manifest(static_cast<const char*>(data), size);
    EXPECT_NE(std::string::npos, manifest.find("<requestedExecutionLevel level=\"asInvoker\""));
    const size_t dpi = manifest.find("<dpiAware");
    ASSERT_NE(std::string::npos, dpi);
    EXPECT_EQ(manifest.find(">true</dpiAware>", dpi), manifest.find('>', dpi));
    EXPECT_EQ(nullptr, MwFindResourceData(m, MW_RT_MANIFEST, 1, &size));
    EXPECT_EQ(0u, size);
}

}  // namespace
