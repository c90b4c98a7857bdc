// The loaded module as a host sees it.
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

TEST_F(Module, EntryPoint) {
    const std::string loaded = "1Geographic|Decart coordinate system|817";
    EXPECT_EQ(loaded, Observe());
    EXPECT_EQ(1, DllMain(nullptr, DLL_THREAD_ATTACH, nullptr));
    EXPECT_EQ(0, DllMain(nullptr, DLL_PROCESS_ATTACH, nullptr));
    EXPECT_EQ(loaded, Observe());
    // Detach leaves the chain; Basalt keeps the name and the resources stay mapped.
    EXPECT_EQ(1, DllMain(m, DLL_PROCESS_DETACH, nullptr));
    EXPECT_EQ("0|Decart coordinate system|817", Observe());
    EXPECT_EQ(1, DllMain(m, DLL_PROCESS_ATTACH, nullptr));
    EXPECT_EQ(loaded, Observe());
}

// Representative strings and controls in both languages (Windows-1251).
TEST_F(Module, ResourcesInBothLanguages) {
    const struct { UINT id; const char *en, *ru; } strings[] = {
        {832, "Geographic", "\xC3\xE5\xEE\xE3\xF0\xE0\xF4\xE8\xF7\xE5\xF1\xEA\xE0\xFF"},
    };
    for (LANGID language : {LANG_ENGLISH_US, LANG_RUSSIAN}) {
        SetThreadUILanguage(language);
        const bool ru = language == LANG_RUSSIAN;
        for (const auto& c : strings) {
            CString loaded("stale");
            EXPECT_TRUE(loaded.LoadString(c.id));
            EXPECT_EQ(ru ? c.ru : c.en, std::string(loaded.GetString())) << c.id;
        }
        CString text;
        EXPECT_FALSE(text.LoadString(886) || text.LoadString(123));
        const MwDialogTemplate* t = MwFindDialogTemplate(m, 817);
        ASSERT_NE(nullptr, t);
        EXPECT_EQ(std::make_tuple(language, 0x80C800C0u, std::string(ru ? "\xCE\xF2\xEC\xE5\xED\xE8\xF2\xFC" : "Cancel")),
                  std::make_tuple(t->language, t->style, std::string(t->controls[9].text)));
        EXPECT_STREQ("1.2.1.0", MwFindVersionValue(m, "fileversion"));
    }
    EXPECT_EQ(nullptr, MwFindDialogTemplate(m, 820));
    EXPECT_EQ(nullptr, MwFindDialogTemplate(nullptr, 817));
    EXPECT_EQ(nullptr, MwFindVersionValue(m, nullptr));
}
}  // namespace
