// Every test runs in a private environment, in English unless it chooses otherwise.
#include <gtest/gtest.h>
#include <cstdlib>
#include "testenv.h"

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    mwtest::TempDir home;
    setenv("HOME", home.path().c_str(), 1);
    setenv("XDG_DATA_HOME", home.file("data").c_str(), 1);
    setenv("XDG_CONFIG_HOME", home.file("config").c_str(), 1);
    for (const char* v : {"MAPWRIGHT_APPDIR", "MAPWRIGHT_REGISTRY", "MAPWRIGHT_UI_LANG", "LC_ALL", "LC_MESSAGES", "LANG"})
        unsetenv(v);
    return RUN_ALL_TESTS();
}
