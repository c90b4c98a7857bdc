#include <gtest/gtest.h>

#include <mapwright/basalt.h>
#include <mapwright/resources.h>

namespace {

class BasaltStrings : public ::testing::Test {
protected:
    void TearDown() override { SetThreadUILanguage(0); }
};

TEST_F(BasaltStrings, OwnStringsInBothLanguages) {
    struct Case {
        LANGID language;
        int id;
        const char* expected;
    };
    const Case cases[] = {
        {LANG_ENGLISH_US, 123, "Cancel"},
        {LANG_ENGLISH_US, 211, "The coordinate system settings could not be saved."},
        {LANG_RUSSIAN, 123, "\xCE\xF2\xEC\xE5\xED\xE0"},
        {LANG_RUSSIAN, 211,
         "\xCD\xE5 \xF3\xE4\xE0\xEB\xEE\xF1\xFC \xF1\xEE\xF5\xF0\xE0\xED\xE8\xF2\xFC "
         "\xEF\xE0\xF0\xE0\xEC\xE5\xF2\xF0\xFB \xF1\xE8\xF1\xF2\xE5\xEC\xFB "
         "\xEA\xEE\xEE\xF0\xE4\xE8\xED\xE0\xF2."},
        {LANG_ENGLISH_US, 124, ""},
        {LANG_ENGLISH_US, -1, ""},
    };
    for (const Case& c : cases) {
        SetThreadUILanguage(c.language);
        EXPECT_EQ(CString(c.expected), GetResourceString(c.id)) << c.id;
    }
}

const MwStringEntry kEntries[] = {{838, "Decart coordinate system"}, {5000, "long text"}};
const MwStringTable kTable = {LANG_ENGLISH_US, kEntries, 2};
const MwModuleResources kModule = {"Added.dll", &kTable, 1};

TEST_F(BasaltStrings, AddedModulesAnswerByName) {
    EXPECT_EQ(CString(""), GetResourceString(838));
    EXPECT_FALSE(AddModule("Added.dll"));  // not loaded yet
    EXPECT_FALSE(AddModule(nullptr));

    HMODULE m = MwRegisterModule(&kModule);
    EXPECT_TRUE(AddModule("added.DLL"));
    EXPECT_TRUE(AddModule("Added.dll"));  // a second registration is harmless
    EXPECT_EQ(CString("Decart coordinate system"), GetResourceString(838));
    EXPECT_EQ(CString("Cancel"), GetResourceString(123));  // Basalt's own still answer

    // Unloaded and loaded again under the same name: still found.
    MwUnregisterModule(m);
    EXPECT_EQ(CString(""), GetResourceString(838));
    m = MwRegisterModule(&kModule);
    EXPECT_EQ(CString("long text"), GetResourceString(5000));
    MwUnregisterModule(m);
}

}  // namespace
