// String resources of registered modules, the language choice, the MFC
// extension chain, and message boxes.
#include <mapwright/afxext.h>
#include <mapwright/afxstr.h>
#include <mapwright/resources.h>
#include <mapwright/winuser.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

const MwStringEntry kEnglish[] = {{832, "Geographic"}, {865, "line\n two  blanks"}, {900, "only English"}};
const MwStringEntry kRussian[] = {{832, "\xC3\xE5\xEE"}, {865, "\xF0\xF3"}};
const MwStringTable kTables[] = {{LANG_ENGLISH_US, kEnglish, 3}, {LANG_RUSSIAN, kRussian, 2}};
const MwModuleResources kModule = {"TestModule.dll", kTables, 2};

class Resources : public ::testing::Test {
protected:
    void SetUp() override { m = MwRegisterModule(&kModule); }
    void TearDown() override {
        MwUnregisterModule(m);
        SetThreadUILanguage(0);
    }
    std::string Load(UINT id, int size = 256) {
        char buf[256] = "untouched";
        const int n = LoadStringA(m, id, buf, size);
        return n > 0 ? std::string(buf, size_t(n)) : "<none>";
    }
    HMODULE m = nullptr;
};

TEST_F(Resources, StringsComeInTheChosenLanguageWithEnglishBehind) {
    ASSERT_NE(nullptr, m);
    EXPECT_EQ(m, GetModuleHandleA("TESTMODULE.dll"));
    EXPECT_EQ(nullptr, GetModuleHandleA("Other.dll"));
    EXPECT_EQ(nullptr, GetModuleHandleA(nullptr));
    const struct {
        LANGID language;
        UINT id;
        std::string text;
    } cases[] = {{LANG_ENGLISH_US, 832, "Geographic"}, {LANG_ENGLISH_US, 865, "line\n two  blanks"},
                 {LANG_RUSSIAN, 832, "\xC3\xE5\xEE"},  {LANG_RUSSIAN, 900, "only English"},
                 {LANG_RUSSIAN, 886, "<none>"},        {LANG_ENGLISH_US, 0, "<none>"}};
    for (const auto& c : cases) {
        SetThreadUILanguage(c.language);
        EXPECT_EQ(c.text, Load(c.id)) << c.id << " in " << c.language;
    }
    EXPECT_EQ("Geo", Load(832, 4));
    char buf[4] = "xyz";
    EXPECT_EQ(0, LoadStringA(m, 832, buf, 0));
    EXPECT_STREQ("xyz", buf);
    EXPECT_EQ(0, LoadStringA(m, 832, nullptr, 10));
    EXPECT_EQ(0, LoadStringA(nullptr, 832, buf, 4));
}

TEST_F(Resources, LanguageFollowsTheEnvironmentUntilSet) {
    const struct {
        const char *ui, *lcAll, *lang;
        LANGID expected;
    } cases[] = {{"ru", nullptr, nullptr, LANG_RUSSIAN},   {"en", "ru_RU.UTF-8", nullptr, LANG_ENGLISH_US},
                 {nullptr, "ru_RU", "en_US", LANG_RUSSIAN}, {nullptr, "", "ru_RU.CP1251", LANG_RUSSIAN},
                 {nullptr, nullptr, "de_DE", LANG_ENGLISH_US}, {nullptr, nullptr, nullptr, LANG_ENGLISH_US}};
    auto set = [](const char* name, const char* value) { value ? setenv(name, value, 1) : unsetenv(name); };
    SetThreadUILanguage(0);
    for (const auto& c : cases) {
        set("MAPWRIGHT_UI_LANG", c.ui);
        set("LC_ALL", c.lcAll);
        set("LANG", c.lang);
        EXPECT_EQ(c.expected, GetThreadUILanguage()) << (c.ui ? c.ui : "") << (c.lcAll ? c.lcAll : "");
    }
    setenv("MAPWRIGHT_UI_LANG", "ru", 1);
    EXPECT_EQ(LANG_ENGLISH_US, SetThreadUILanguage(LANG_ENGLISH_US));  // a call wins
    EXPECT_EQ(LANG_ENGLISH_US, GetThreadUILanguage());
    EXPECT_EQ(LANG_RUSSIAN, SetThreadUILanguage(0));
    unsetenv("MAPWRIGHT_UI_LANG");
}

TEST_F(Resources, CStringLoadStringSearchesTheExtensionChain) {
    SetThreadUILanguage(LANG_ENGLISH_US);
    CString text("kept");
    EXPECT_FALSE(text.LoadString(832)) << "not in the chain yet";
    EXPECT_EQ(CString("kept"), text);
    AFX_EXTENSION_MODULE state{};
    ASSERT_TRUE(AfxInitExtensionModule(state, m));
    new CDynLinkLibrary(state);  // owned by the chain, as in MFC
    EXPECT_TRUE(text.LoadString(832));
    EXPECT_FALSE(text.LoadString(886));
    EXPECT_EQ(CString("Geographic"), text);
    AfxTermExtensionModule(state);
    EXPECT_FALSE(text.LoadString(900));
    EXPECT_FALSE(AfxInitExtensionModule(state, nullptr));
}

std::string g_seen;
int Capture(HWND, LPCSTR text, LPCSTR caption, UINT type) {
    g_seen = std::string(caption) + "|" + text + "|" + std::to_string(type);
    return IDCANCEL;
}

TEST(MessageBox, GoesToAHookOrToStandardErrorInUtf8) {
    MessageBoxHook old = SetMessageBoxHook(&Capture);
    EXPECT_EQ(IDCANCEL, MessageBoxA(nullptr, "t \xB0", " ", MB_OKCANCEL));
    EXPECT_EQ(" |t \xB0|" + std::to_string(MB_OKCANCEL), g_seen);
    EXPECT_EQ(&Capture, SetMessageBoxHook(nullptr));
    testing::internal::CaptureStderr();
    EXPECT_EQ(IDOK, MessageBoxA(nullptr, "\xCE\xF2 10\xB0", "Mapwright", MB_OK));
    MessageBoxA(nullptr, nullptr, nullptr, MB_OK);  // null texts are empty
    EXPECT_EQ("Mapwright: \xD0\x9E\xD1\x82 10\xC2\xB0\n\n", testing::internal::GetCapturedStderr());
    SetMessageBoxHook(old);
}

}  // namespace
