// The module once loaded: its entry point, strings, dialog templates and
// version, as a host sees them.
#include <mapwright/afxstr.h>
#include <mapwright/basalt.h>
#include <mapwright/module.h>
#include <mapwright/resources.h>

#include <gtest/gtest.h>

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

// Representative strings and controls in both languages (Windows-1251).
TEST_F(Module, StringsDialogsAndVersionInBothLanguages) {
    const struct { UINT id; const char *en, *ru; } strings[] = {
        {832, "Geographic", "\xC3\xE5\xEE\xE3\xF0\xE0\xF4\xE8\xF7\xE5\xF1\xEA\xE0\xFF"},
        {854, "North/South ", "\xD1\xE5\xE2\xE5\xF0/\xDE\xE3  "}, {867, "m", "\xEC "}, {883, "Y = ", "Y = "},
    };
    constexpr DWORD kChild = 0x50000000, kTab = 0x00010000, kList = kChild | 0x00200000 | kTab | 0x3;
    const struct { UINT dialog; size_t index; const char* cls; int id; DWORD style; short x, y, cx, cy; const char *en, *ru; } controls[] = {
        {817, 0, "ComboBox", 800, kList | 0x100, 14, 19, 143, 68, "", ""},
        {817, 1, "Edit", 801, kChild | 0x00800000 | kTab | 0x80, 93, 48, 66, 12, "", ""},
        {817, 9, "Button", 2, kChild | kTab, 113, 198, 50, 14, "Cancel", "\xCE\xF2\xEC\xE5\xED\xE8\xF2\xFC"},
        {818, 21, "Button", 886, kChild | 0x9 | 0x00020000, 182, 30, 39, 10, "Custom", nullptr},
    };
    for (LANGID language : {LANG_ENGLISH_US, LANG_RUSSIAN}) {
        SetThreadUILanguage(language);
        const bool ru = language == LANG_RUSSIAN;
        for (const auto& c : strings) {
            CString loaded("stale");
            EXPECT_TRUE(loaded.LoadString(c.id));
            EXPECT_EQ(ru ? c.ru : c.en, std::string(loaded.GetString())) << c.id;
        }
        CString text("kept");
        EXPECT_FALSE(text.LoadString(886) || text.LoadString(123)) << "a control id; Basalt's own string";
        EXPECT_EQ(CString("kept"), text);
        const MwDialogTemplate* t = MwFindDialogTemplate(m, 817);
        ASSERT_NE(nullptr, t);
        EXPECT_EQ(std::make_tuple(817u, language, short(170), short(219), size_t(20), 0x80C800C0u, 8),
                  std::make_tuple(t->id, t->language, t->cx, t->cy, t->controlCount, t->style, t->fontSize));
        EXPECT_STREQ(ru ? "\xC2\xFB\xE1\xEE\xF0 \xEF\xF0\xEE\xE5\xEA\xF6\xE8\xE8" : "Choose projection", t->caption);
        for (const auto& e : controls) {
            if (ru && !e.ru) continue;
            const MwDialogControl& c = MwFindDialogTemplate(m, e.dialog)->controls[e.index];
            const DWORD style = ru && e.id == 800 ? kList : e.style;  // the Russian list is not sorted
            EXPECT_EQ(std::make_tuple(std::string(e.cls), e.id, style, e.x, e.y, e.cx, e.cy, std::string(ru ? e.ru : e.en)),
                      std::make_tuple(std::string(c.className), c.id, c.style, c.x, c.y, c.cx, c.cy, std::string(c.text)))
                << e.dialog << " " << language << " control " << e.index;
        }
        const MwVersionInfo* v = MwFindVersionInfo(m);
        ASSERT_NE(nullptr, v);
        // 1.2.1.0 as VS_FIXEDFILEINFO holds it: major << 16 | minor, build << 16 | revision; neutral language.
        EXPECT_EQ(std::make_tuple(0, 0x00010002u, 0x00010000u, 2u),
                  std::make_tuple(int(v->language), v->fileVersionMS, v->fileVersionLS, v->fileType));
        EXPECT_STREQ("1.2.1.0", MwFindVersionValue(m, "fileversion"));
    }
    for (UINT id : {816u, 820u}) EXPECT_EQ(nullptr, MwFindDialogTemplate(m, id)) << id;
    EXPECT_EQ(nullptr, MwFindDialogTemplate(nullptr, 817));
    EXPECT_EQ(nullptr, MwFindVersionValue(m, "CompanyName"));
    EXPECT_EQ(nullptr, MwFindVersionValue(m, nullptr));
    size_t size = 0;
    EXPECT_NE(nullptr, MwFindResourceData(m, MW_RT_MANIFEST, 2, &size));
    EXPECT_EQ(nullptr, MwFindResourceData(m, MW_RT_MANIFEST, 1, &size));
    EXPECT_EQ(0u, size);
}

}  // namespace
