// Basalt's strings and added modules; the application directory and key.
#include <mapwright/basalt.h>
#include <mapwright/resources.h>
#include <gtest/gtest.h>
#include <cstdlib>
#include <cstring>
#include <string>
#include "testenv.h"

namespace {
const MwStringEntry kEntries[] = {{838, "Decart"}};
const MwStringTable kTable = {LANG_ENGLISH_US, kEntries, 1};
const MwModuleResources kModule = {"Added.dll", &kTable, 1};

TEST(Basalt, StringsAndAddedModules) {
    SetThreadUILanguage(LANG_RUSSIAN);
    EXPECT_EQ(CString("\xCE\xF2\xEC\xE5\xED\xE0"), GetResourceString(123));
    SetThreadUILanguage(LANG_ENGLISH_US);
    EXPECT_EQ(CString("Cancel|"), GetResourceString(123) + "|" + GetResourceString(-1));
    EXPECT_FALSE(AddModule("Added.dll") || AddModule(nullptr));
    for (int i = 0; i < 2; ++i) {  // loaded again under the same name: found
        HMODULE m = MwRegisterModule(&kModule);
        EXPECT_TRUE(AddModule("added.DLL"));
        EXPECT_EQ(CString("Decart"), GetResourceString(838));
        MwUnregisterModule(m);
        EXPECT_EQ(CString(""), GetResourceString(838));
    }
    SetThreadUILanguage(0);
}

std::string AppDir() {
    char buf[1024];
    const int n = GetAppDir(sizeof buf, buf);
    EXPECT_EQ(int(std::strlen(buf)), n);
    return buf;
}

TEST(Basalt, AppDirFromHostEnvironmentOrXdg) {
    mwtest::IsolatedEnv env;
    mwtest::TempDir dir;
    setenv("XDG_DATA_HOME", dir.path().c_str(), 1);
    setenv("HOME", dir.file("h").c_str(), 1);
    setenv("MAPWRIGHT_APPDIR", "/opt/host/", 1);
    EXPECT_EQ("/opt/host", AppDir());
    setenv("MAPWRIGHT_APPDIR", "//", 1);
    EXPECT_EQ("/", AppDir());
    setenv("MAPWRIGHT_APPDIR", "/opt/host/", 1);
    SetAppDir("/srv/app");
    EXPECT_EQ("/srv/app", AppDir());
    SetAppDir(nullptr);
    unsetenv("MAPWRIGHT_APPDIR");
    const std::string data = AppDir() + "/Auxiliary Data/";
    EXPECT_EQ(dir.path() + "/mapwright/Auxiliary Data/", data);
    EXPECT_EQ(mwtest::ReadFile(mwtest::ShippedCatalogDir() + "/datum.ini"), mwtest::ReadFile(data + "datum.ini"));
    setenv("XDG_DATA_HOME", "relative", 1);  // ignored, as XDG says
    char small[8] = "xxxxxxx";
    EXPECT_EQ(0, GetAppDir(sizeof small, small));
    EXPECT_STREQ("", small);
}
}  // namespace
