// The catalog and registry subcommands end to end, the SYSTEM syntax's
// refusals, the Russian output and help, and the exit statuses.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include <mapwright/mapwright.h>

#include "testenv.h"
#include "tool.h"

namespace {

using clitest::Contains;
using clitest::Lines;
using clitest::Tool;

class Commands : public ::testing::Test {
protected:
    mwtest::IsolatedEnv m_env;
};

// A registry value as the library stored it (text without its NUL).
std::string RegistryValue(const std::string& key, const char* name) {
    HKEY h = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, key.c_str(), 0, KEY_READ, &h) != ERROR_SUCCESS) return "<no key>";
    char data[256] = {};
    DWORD size = sizeof data - 1;
    const LONG rc = RegQueryValueExA(h, name, nullptr, nullptr, reinterpret_cast<BYTE*>(data), &size);
    RegCloseKey(h);
    return rc == ERROR_SUCCESS ? std::string(data, size) : "<no value>";
}

TEST_F(Commands, CatalogsListAndADatumAddedConvertsByName) {
    EXPECT_TRUE(Contains(Tool({"datums"}).out, "  Pulkovo 1942  ")) << "the shipped catalog";
    EXPECT_TRUE(Contains(Tool({"ellipsoids"}).out, "6378245         298.3"));
    const std::vector<std::string> add = {"datum", "add", "Test AGD", "--ellipsoid", "Test ANS", "--a",
                                          "6378160", "--rf", "298.25", "--dx", "-133", "--dy", "-48", "--dz", "148"};
    ASSERT_EQ(0, Tool(add).status);
    EXPECT_TRUE(Contains(mwtest::ReadFile(m_env.catalogDir() + "/datum.ini"), "DatumName=Test AGD"));
    // As PROJ's Molodensky with the same figures; 1e-5 m is the print.
    const auto r = Tool({"convert", "--from", "geo datum=\"Test AGD\"", "--to", "geo", "-p", "6"}, "-33.8 151.2 50\n");
    const auto got = clitest::Numbers(r.out);
    const auto e = clitest::Cct(
        "+proj=pipeline" + clitest::Molodensky({6378160, 298.25, -133, -48, 148}, {6378137, 298.257223563, 0, 0, 0}),
        {{151.2, -33.8, 50.0}})[0];
    ASSERT_EQ(3u, got.size()) << r.err;
    EXPECT_LE(clitest::GroundDistance(got[0], got[1], e[1], e[0]), 1e-5);
    EXPECT_LE(std::fabs(got[2] - e[2]), 1e-5);
    // What the catalog cannot hold is refused, and the catalog kept.
    const std::string before = mwtest::ReadFile(m_env.catalogDir() + "/datum.ini");
    for (const std::vector<std::string>& bad : std::vector<std::vector<std::string>>{
             {"Test AGD", "--ellipsoid", "Test ANS", "--dx", "0", "--dy", "-48", "--dz", "148"},
             {"X", "--ellipsoid", "Krasovsky", "--dx", "1", "--dy", "2", "--dz", "3"},
             {"X", "--ellipsoid", "WGS 84", "--dx", "40000", "--dy", "2", "--dz", "3"},
             {std::string(50, 'n'), "--ellipsoid", "WGS 84", "--dx", "1", "--dy", "2", "--dz", "3"}}) {
        std::vector<std::string> args = {"datum", "add"};
        args.insert(args.end(), bad.begin(), bad.end());
        EXPECT_EQ(2, Tool(args).status) << bad[0];
    }
    EXPECT_EQ(before, mwtest::ReadFile(m_env.catalogDir() + "/datum.ini"));
}

TEST_F(Commands, SavedSystemsAndPairsAreWrittenShownAndListed) {
    ASSERT_EQ(0, Tool({"system", "save", "S/tm", "tm k=0.9996 lon0=39 fe=500000 datum=4"}).status);
    ASSERT_EQ(0, Tool({"system", "save", "S/A/ups", "ups south"}).status);
    ASSERT_EQ(0, Tool({"pair", "save", "S/job", "--from", "gk zone=7 datum=4", "--to", "utm zone=23 south"}).status);
    // The library's values, as its SaveData writes them.
    const char* const kValues[][3] = {
        {"S\\tm", "scale", "0.999600"},           {"S\\tm", "c_lon", "39.000000"},
        {"S\\tm", "DatumIndex", "4"},             {"S\\job\\GeoData_fm", "fe", "7500000"},
        {"S\\job\\GeoData_to", "fe", "-1"},       {"S\\job\\GeoData_to", "fn", "23"}};
    for (const auto& v : kValues) EXPECT_EQ(v[2], RegistryValue(v[0], v[1])) << v[0] << ' ' << v[1];
    const auto shown = Tool({"system", "show", "S/tm"});
    EXPECT_TRUE(Contains(shown.out, "Projection: Transverse Mercator\n")) << shown.out;
    EXPECT_TRUE(Contains(shown.out, "System:     tm k=0.9996 lon0=39 lat0=0 fe=500000 fn=0 datum=\"Pulkovo 1942\""));
    EXPECT_TRUE(Contains(Tool({"pair", "show", "S/job"}).out, "  System:     utm zone=23 south datum=\"WGS 84\"\n"));
    EXPECT_EQ("S/A/ups: ups south datum=\"WGS 84\"\nS/tm: tm k=0.9996 lon0=39 lat0=0 fe=500000 fn=0 "
              "datum=\"Pulkovo 1942\"\n",
              Tool({"system", "list", "S"}).out);
    EXPECT_EQ("S/job: gk zone=7 datum=\"Pulkovo 1942\" -> utm zone=23 south datum=\"WGS 84\"\n",
              Tool({"pair", "list"}).out);
    const auto missing = Tool({"system", "show", "S/none"});
    EXPECT_EQ(2, missing.status);
    EXPECT_TRUE(Contains(missing.err, "nothing is saved under \"S\\none\"")) << missing.err;
}

TEST_F(Commands, AWrongSystemNamesWhatWasExpected) {
    const char* const kRows[][2] = {
        {"utm datum=\"Pulkovo 1924\"", "unknown datum \"Pulkovo 1924\" (did you mean \"Pulkovo 1942\"?)"},
        {"utn zone=37", "unknown kind \"utn\" (did you mean \"utm\"?); expected geographic, utm, gk, tm, "
                        "mercator, ps, ups or cartesian"},
        {"utm zone=37 lon0=39", "utm does not take \"lon0=39\"; expected zone=1..60|auto, north, south or "},
        {"gk zone=7 lon0=40", "\"zone=7\" and \"lon0=40\" disagree: zone 7 has its meridian at 39"},
        {"ups", "ups takes north or south"},
        {"tm fe=12.5", "\"fe=12.5\": expected whole metres (an integer)"},
        {"ps lon0=0", "ps needs lat_ts=DEGREES"},
        {"geographic datum=\"WGS 84", "unclosed quote"},
    };
    for (const auto& row : kRows) {
        const auto r = Tool({"convert", "--from", row[0], "--to", "geographic"}, "1 2\n");
        EXPECT_EQ(2, r.status) << row[0];
        EXPECT_TRUE(Contains(r.err, std::string("mapwright: --from: ") + row[1])) << r.err;
    }
}

TEST_F(Commands, RussianNamesMessagesAndHelp) {
    ASSERT_EQ(0, Tool({"system", "save", "S/gk7", "gk zone=7 datum=4"}).status);
    const auto shown = Tool({"--lang", "ru", "system", "show", "S/gk7"});
    EXPECT_TRUE(Contains(shown.out, "Проекция:  Гаусса-Крюгера (Gauss-Kruger)\n")) << shown.out;
    EXPECT_TRUE(Contains(Tool({"convert", "--help", "--lang", "ru"}).out, "Параметры:\n"));
    setenv("MAPWRIGHT_UI_LANG", "ru", 1);
    const auto bad = Tool({"convert", "--from", "utm zone=37", "--to", "geographic"}, "abc 1\n");
    const auto help = Tool({"--help"});
    unsetenv("MAPWRIGHT_UI_LANG");
    EXPECT_TRUE(Contains(bad.err, "<stdin>:1: не удаётся прочитать восточную координату из \"abc\"")) << bad.err;
    EXPECT_TRUE(Contains(help.out, "Команды:\n  convert                       Преобразовать точки")) << help.out;
    EXPECT_TRUE(Contains(Tool({"--lang", "en", "--help"}).out, "Subcommands:\n"));
}

TEST_F(Commands, UsageErrorsExitWithTwoAndHelpWithZero) {
    for (const std::vector<std::string>& args : std::vector<std::vector<std::string>>{
             {}, {"nonsense"}, {"convert", "--from", "geo"}, {"convert", "--from", "geo", "--to", "geo", "--pair", "x"},
             {"convert", "--from", "geo", "--to", "geo", "-p", "11"}, {"--lang", "de", "datums"}})
        EXPECT_EQ(2, Tool(args).status) << (args.empty() ? "" : args.back());
    EXPECT_EQ(0, Tool({"convert", "--help"}).status);
    EXPECT_EQ(0u, Tool({"--version"}).out.rfind("mapwright ", 0));
}

}  // namespace
