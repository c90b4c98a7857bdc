#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include <mapwright/afxext.h>
#include <mapwright/afxstr.h>
#include <mapwright/resources.h>

namespace {

const MwStringEntry kEnglish[] = {{832, "Geographic"}, {865, "line\n two  blanks"}, {900, "only English"}};
const MwStringEntry kRussian[] = {{832, "\xC3\xE5\xEE"}, {865, "\xF0\xF3"}};
const MwStringTable kTables[] = {{LANG_ENGLISH_US, kEnglish, 3}, {LANG_RUSSIAN, kRussian, 2}};
const MwModuleResources kModule = {"TestModule.dll", kTables, 2};

// Registers the test module for one test and leaves the language as found.
class Resources : public ::testing::Test {
protected:
    void SetUp() override {
        m_module = MwRegisterModule(&kModule);
        SetThreadUILanguage(LANG_ENGLISH_US);
    }
    void TearDown() override {
        MwUnregisterModule(m_module);
        SetThreadUILanguage(0);
    }
    HMODULE m_module = nullptr;
};

std::string Load(HMODULE m, UINT id, int size = 256) {
    char buffer[256] = "untouched";
    int n = LoadStringA(m, id, buffer, size);
    return n > 0 ? std::string(buffer, static_cast<size_t>(n)) : std::string("<none>");
}

TEST_F(Resources, ModulesAreFoundByFileNameWithoutRegardToCase) {
    ASSERT_NE(nullptr, m_module);
    EXPECT_EQ(m_module, GetModuleHandleA("TestModule.dll"));
    EXPECT_EQ(m_module, GetModuleHandleA("TESTMODULE.DLL"));
    EXPECT_EQ(nullptr, GetModuleHandleA("Other.dll"));
    EXPECT_EQ(nullptr, GetModuleHandleA(nullptr));
}

TEST_F(Resources, StringsComeInTheChosenLanguageWithEnglishBehind) {
    struct Case {
        LANGID language;
        UINT id;
        std::string expected;
    };
    const Case cases[] = {
        {LANG_ENGLISH_US, 832, "Geographic"},
        {LANG_ENGLISH_US, 865, "line\n two  blanks"},  // line feed and doubled blank kept
        {LANG_RUSSIAN, 832, "\xC3\xE5\xEE"},
        {LANG_RUSSIAN, 900, "only English"},  // no Russian entry: English answers
        {LANG_RUSSIAN, 886, "<none>"},
        {LANG_ENGLISH_US, 0, "<none>"},
    };
    for (const Case& c : cases) {
        SetThreadUILanguage(c.language);
        EXPECT_EQ(c.expected, Load(m_module, c.id)) << c.id << " in " << c.language;
    }
}

TEST_F(Resources, LoadStringCutsToTheBuffer) {
    EXPECT_EQ("Geo", Load(m_module, 832, 4));
    char buffer[4] = "xyz";
    EXPECT_EQ(0, LoadStringA(m_module, 832, buffer, 0));
    EXPECT_STREQ("xyz", buffer);
    EXPECT_EQ(0, LoadStringA(m_module, 832, nullptr, 10));
    EXPECT_EQ("<none>", Load(nullptr, 832));
}

TEST_F(Resources, LanguageFollowsTheEnvironmentUntilSet) {
    struct Case {
        const char* ui;
        const char* lcAll;
        const char* lang;
        LANGID expected;
    };
    const Case cases[] = {
        {"ru", nullptr, nullptr, LANG_RUSSIAN},
        {"en", "ru_RU.UTF-8", nullptr, LANG_ENGLISH_US},  // our own variable first
        {nullptr, "ru_RU.UTF-8", "en_US", LANG_RUSSIAN},
        {nullptr, "", "ru_RU.CP1251", LANG_RUSSIAN},      // an empty variable does not count
        {nullptr, nullptr, "de_DE", LANG_ENGLISH_US},
        {nullptr, nullptr, nullptr, LANG_ENGLISH_US},
    };
    SetThreadUILanguage(0);
    for (const Case& c : cases) {
        auto set = [](const char* name, const char* value) {
            if (value)
                setenv(name, value, 1);
            else
                unsetenv(name);
        };
        set("MAPWRIGHT_UI_LANG", c.ui);
        set("LC_ALL", c.lcAll);
        unsetenv("LC_MESSAGES");
        set("LANG", c.lang);
        EXPECT_EQ(c.expected, GetThreadUILanguage());
    }
    setenv("MAPWRIGHT_UI_LANG", "ru", 1);
    EXPECT_EQ(LANG_ENGLISH_US, SetThreadUILanguage(LANG_ENGLISH_US));  // a call wins
    EXPECT_EQ(LANG_ENGLISH_US, GetThreadUILanguage());
    EXPECT_EQ(LANG_RUSSIAN, SetThreadUILanguage(0));
    unsetenv("MAPWRIGHT_UI_LANG");
    unsetenv("LC_ALL");
    unsetenv("LANG");
}

TEST_F(Resources, CStringLoadStringSearchesTheExtensionChain) {
    CString text("kept");
    EXPECT_FALSE(text.LoadString(832));  // the module has not joined the chain
    EXPECT_EQ(CString("kept"), text);

    AFX_EXTENSION_MODULE state{};
    ASSERT_TRUE(AfxInitExtensionModule(state, m_module));
    new CDynLinkLibrary(state);  // owned by the chain, as in MFC
    EXPECT_TRUE(text.LoadString(832));
    EXPECT_EQ(CString("Geographic"), text);
    EXPECT_FALSE(text.LoadString(886));
    EXPECT_EQ(CString("Geographic"), text);

    AfxTermExtensionModule(state);
    EXPECT_FALSE(text.LoadString(900));
    EXPECT_FALSE(AfxInitExtensionModule(state, nullptr));
}

}  // namespace
