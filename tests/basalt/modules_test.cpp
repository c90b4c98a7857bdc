// Basalt's strings and added modules; the application directory and key.
#include <mapwright/basalt.h>
#include <mapwright/resources.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "testenv.h"

namespace {

TEST(BasaltStrings, OwnStringsInBothLanguages) {
    const struct {
        LANGID language;
        int id;
        const char* text;
    } cases[] = {{LANG_ENGLISH_US, 123, "Cancel"},
                 {LANG_ENGLISH_US, 211, "The coordinate system settings could not be saved."},
                 {LANG_RUSSIAN, 123, "\xCE\xF2\xEC\xE5\xED\xE0"},
                 {LANG_RUSSIAN, 211, "\xCD\xE5 \xF3\xE4\xE0\xEB\xEE\xF1\xFC \xF1\xEE\xF5\xF0\xE0\xED\xE8\xF2\xFC "
                                     "\xEF\xE0\xF0\xE0\xEC\xE5\xF2\xF0\xFB \xF1\xE8\xF1\xF2\xE5\xEC\xFB "
                                     "\xEA\xEE\xEE\xF0\xE4\xE8\xED\xE0\xF2."},
                 {LANG_ENGLISH_US, 124, ""},
                 {LANG_ENGLISH_US, -1, ""}};
    for (const auto& c : cases) {
        SetThreadUILanguage(c.language);
        EXPECT_EQ(CString(c.text), GetResourceString(c.id)) << c.id;
    }
    SetThreadUILanguage(0);
}

const MwStringEntry kEntries[] = {{838, "Decart"}, {5000, "long text"}};
const MwStringTable kTable = {LANG_ENGLISH_US, kEntries, 2};
const MwModuleResources kModule = {"Added.dll", &kTable, 1};

TEST(BasaltStrings, AddedModulesAnswerByNameWhileLoaded) {
    SetThreadUILanguage(LANG_ENGLISH_US);
    EXPECT_FALSE(AddModule("Added.dll")) << "not loaded yet";
    EXPECT_FALSE(AddModule(nullptr));
    HMODULE m = MwRegisterModule(&kModule);
    EXPECT_TRUE(AddModule("added.DLL"));
    EXPECT_TRUE(AddModule("Added.dll")) << "a second registration is harmless";
    EXPECT_EQ(CString("Decart"), GetResourceString(838));
    EXPECT_EQ(CString("Cancel"), GetResourceString(123)) << "Basalt's own still answer";
    MwUnregisterModule(m);
    EXPECT_EQ(CString(""), GetResourceString(838));
    m = MwRegisterModule(&kModule);  // loaded again under the same name: found
    EXPECT_EQ(CString("long text"), GetResourceString(5000));
    MwUnregisterModule(m);
    SetThreadUILanguage(0);
}

std::string AppDir() {
    char buf[1024];
    const int n = GetAppDir(sizeof buf, buf);
    EXPECT_EQ(int(std::strlen(buf)), n);
    return buf;
}

TEST(AppDir, HostCallThenEnvironmentThenXdgThenHome) {
    mwtest::IsolatedEnv env;
    mwtest::TempDir dir;
    setenv("XDG_DATA_HOME", dir.path().c_str(), 1);
    setenv("HOME", dir.file("h").c_str(), 1);
    setenv("MAPWRIGHT_APPDIR", "/opt/host/", 1);
    EXPECT_EQ("/opt/host", AppDir()) << "without a trailing separator";
    SetAppDir("/srv/app");
    EXPECT_EQ("/srv/app", AppDir());
    SetAppDir("");
    EXPECT_EQ("/opt/host", AppDir());
    unsetenv("MAPWRIGHT_APPDIR");
    EXPECT_EQ(dir.path() + "/mapwright", AppDir());
    setenv("XDG_DATA_HOME", "relative", 1);  // ignored, as XDG says
    EXPECT_EQ(dir.path() + "/h/.local/share/mapwright", AppDir());
    unsetenv("XDG_DATA_HOME");
    EXPECT_EQ(dir.path() + "/h/.local/share/mapwright", AppDir());
    SetAppDir("/a/rather/long/directory");
    char small[8] = "xxxxxxx";
    EXPECT_EQ(0, GetAppDir(sizeof small, small)) << "a directory that does not fit gives nothing";
    EXPECT_STREQ("", small);
    EXPECT_EQ(0, GetAppDir(0, small));
    EXPECT_EQ(0, GetAppDir(10, nullptr));
    SetAppDir(nullptr);
}

TEST(AppDir, DefaultDirectoryIsSeededOnceWithTheShippedCatalogs) {
    mwtest::IsolatedEnv env;
    mwtest::TempDir dir;
    unsetenv("MAPWRIGHT_APPDIR");
    setenv("XDG_DATA_HOME", dir.path().c_str(), 1);
    const std::string data = AppDir() + "/Auxiliary Data/";
    for (const char* name : {"datum.ini", "ellips.ini", "projection.ini"})
        EXPECT_EQ(mwtest::ReadFile(mwtest::ShippedCatalogDir() + "/" + name), mwtest::ReadFile(data + name)) << name;
    mwtest::WriteFile(data + "datum.ini", "mine");  // an existing folder is the user's
    AppDir();
    EXPECT_EQ("mine", mwtest::ReadFile(data + "datum.ini"));
}

TEST(AppRegKey, DefaultAndHostKey) {
    SetAppRegKey("Software\\Host\\Viewer");
    EXPECT_EQ(CString("Software\\Host\\Viewer"), AppRegKey());
    SetAppRegKey(nullptr);
    EXPECT_EQ(CString("Software\\Mapwright"), AppRegKey());
}

}  // namespace
