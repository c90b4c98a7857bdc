// String resources, the language choice and the MFC extension chain.
#include <mapwright/afxext.h>
#include <mapwright/afxstr.h>
#include <mapwright/resources.h>
#include <gtest/gtest.h>
#include <cstdlib>
#include <string>

namespace {
const MwStringEntry kEnglish[] = {{832, "Geographic"}, {900, "only English"}};
const MwStringEntry kRussian[] = {{832, "\xC3\xE5\xEE"}};
const MwStringTable kTables[] = {{LANG_ENGLISH_US, kEnglish, 2}, {LANG_RUSSIAN, kRussian, 1}};
const MwModuleResources kModule = {"TestModule.dll", kTables, 2};

TEST(Resources, LanguageByCallOrEnvironment) {
    HMODULE m = MwRegisterModule(&kModule);
    EXPECT_EQ(m, GetModuleHandleA("TESTMODULE.dll"));
    const struct { const char *ui, *lcAll, *lang; UINT id; std::string text; } cases[] = {
        {"en", "ru_RU", nullptr, 832, "Geographic"}, {nullptr, "", "ru_RU.CP1251", 900, "only English"},
        {nullptr, "", "ru_RU.UTF-8", 832, "\xC3\xE5\xEE"}, {nullptr, nullptr, "de", 886, ""},
    };
    auto set = [](const char* name, const char* value) { value ? setenv(name, value, 1) : unsetenv(name); };
    for (const auto& c : cases) {
        set("MAPWRIGHT_UI_LANG", c.ui);
        set("LC_ALL", c.lcAll);
        set("LANG", c.lang);
        char buf[64] = "";
        EXPECT_EQ(c.text, std::string(buf, size_t(LoadStringA(m, c.id, buf, sizeof buf)))) << c.id << c.lang;
    }
    setenv("MAPWRIGHT_UI_LANG", "ru", 1);
    EXPECT_EQ(LANG_ENGLISH_US, SetThreadUILanguage(LANG_ENGLISH_US));  // a call wins
    EXPECT_EQ(LANG_RUSSIAN, SetThreadUILanguage(0));
    unsetenv("MAPWRIGHT_UI_LANG");
    char buf[8] = "xyz";
    EXPECT_EQ(0, LoadStringA(m, 832, buf, 0));
    EXPECT_EQ(3, LoadStringA(m, 832, buf, 4));
    EXPECT_STREQ("Geo", buf);
    EXPECT_EQ(0, LoadStringA(m, 832, nullptr, 10) + LoadStringA(nullptr, 832, buf, 4));
    // CString::LoadString searches the extension chain only.
    CString text("kept");
    EXPECT_FALSE(text.LoadString(832));
    EXPECT_EQ(CString("kept"), text);
    AFX_EXTENSION_MODULE state{};
    ASSERT_TRUE(AfxInitExtensionModule(state, m));
    new CDynLinkLibrary(state);  // owned by the chain, as in MFC
    EXPECT_TRUE(text.LoadString(832) && !text.LoadString(886));
    EXPECT_EQ(CString("Geographic"), text);
    AfxTermExtensionModule(state);
    EXPECT_FALSE(text.LoadString(900));
    MwUnregisterModule(m);
}

}  // namespace
