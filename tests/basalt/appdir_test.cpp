#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include <mapwright/basalt.h>

#include "testenv.h"

namespace {

std::string AppDir() {
    char buffer[1024];
    int n = GetAppDir(sizeof buffer, buffer);
    EXPECT_EQ(static_cast<int>(std::string(buffer).size()), n);
    return buffer;
}

// Saves and restores the variables GetAppDir reads.
class AppDirTest : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* v : {"MAPWRIGHT_APPDIR", "XDG_DATA_HOME", "HOME"}) {
            const char* value = std::getenv(v);
            m_saved.push_back({v, value ? value : "", value != nullptr});
        }
        SetAppDir(nullptr);
    }
    void TearDown() override {
        for (const auto& s : m_saved) {
            if (s.had)
                setenv(s.name, s.value.c_str(), 1);
            else
                unsetenv(s.name);
        }
        SetAppDir(nullptr);
    }
    struct Saved {
        const char* name;
        std::string value;
        bool had;
    };
    std::vector<Saved> m_saved;
};

TEST_F(AppDirTest, HostCallThenEnvironmentThenDefault) {
    mwtest::TempDir dir;
    setenv("XDG_DATA_HOME", dir.path().c_str(), 1);
    setenv("MAPWRIGHT_APPDIR", "/opt/host/", 1);
    EXPECT_EQ("/opt/host", AppDir());  // without a trailing separator
    SetAppDir("/srv/app");
    EXPECT_EQ("/srv/app", AppDir());
    SetAppDir("");
    EXPECT_EQ("/opt/host", AppDir());
    unsetenv("MAPWRIGHT_APPDIR");
    EXPECT_EQ(dir.path() + "/mapwright", AppDir());
}

TEST_F(AppDirTest, DefaultDirectoryIsSeededWithTheShippedCatalogs) {
    mwtest::TempDir dir;
    unsetenv("MAPWRIGHT_APPDIR");
    setenv("XDG_DATA_HOME", dir.path().c_str(), 1);
    const std::string app = AppDir();
    for (const char* name : {"datum.ini", "ellips.ini", "projection.ini"}) {
        EXPECT_EQ(mwtest::ReadFile(mwtest::ShippedCatalogDir() + "/" + name),
                  mwtest::ReadFile(app + "/Auxiliary Data/" + name))
            << name;
    }
    // An existing folder is the user's: it is never seeded over.
    mwtest::WriteFile(app + "/Auxiliary Data/datum.ini", "[Format 0]\r\nDatumName=Mine\r\n");
    AppDir();
    EXPECT_EQ("[Format 0]\r\nDatumName=Mine\r\n", mwtest::ReadFile(app + "/Auxiliary Data/datum.ini"));
}

TEST_F(AppDirTest, HomeIsUsedWithoutXdgDataHome) {
    mwtest::TempDir dir;
    unsetenv("MAPWRIGHT_APPDIR");
    unsetenv("XDG_DATA_HOME");
    setenv("HOME", dir.path().c_str(), 1);
    EXPECT_EQ(dir.path() + "/.local/share/mapwright", AppDir());
    setenv("XDG_DATA_HOME", "relative/path", 1);  // ignored, as XDG says
    EXPECT_EQ(dir.path() + "/.local/share/mapwright", AppDir());
}

TEST_F(AppDirTest, ADirectoryThatDoesNotFitGivesNothing) {
    SetAppDir("/a/rather/long/directory");
    char small[8] = "xxxxxxx";
    EXPECT_EQ(0, GetAppDir(sizeof small, small));
    EXPECT_STREQ("", small);
    EXPECT_EQ(0, GetAppDir(0, small));
    EXPECT_EQ(0, GetAppDir(10, nullptr));
}

TEST(AppRegKeyTest, DefaultAndHostKey) {
    EXPECT_EQ(CString("Software\\Mapwright"), AppRegKey());
    SetAppRegKey("Software\\Host\\Viewer");
    EXPECT_EQ(CString("Software\\Host\\Viewer"), AppRegKey());
    SetAppRegKey(nullptr);
    EXPECT_EQ(CString("Software\\Mapwright"), AppRegKey());
}

}  // namespace
