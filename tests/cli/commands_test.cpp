// The catalog and registry subcommands end to end, the SYSTEM syntax's
// refusals, the library's text formats and the Russian output.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include <mapwright/mapwright.h>

#include "testenv.h"
#include "tool.h"

namespace {

using clitest::Cct;
using clitest::Contains;
using clitest::Decimals;
using clitest::Lines;
using clitest::MatchesShape;
using clitest::Numbers;
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

// The rows of a catalog listing whose name column holds `name`.
std::string RowOf(const std::string& listing, const std::string& name) {
    for (const std::string& line : Lines(listing))
        if (line.find("  " + name + "  ") != std::string::npos) return line;
    return "";
}

int CountLines(const std::string& text, const std::string& prefix) {
    int n = 0;
    for (const std::string& line : Lines(text)) n += line.rfind(prefix, 0) == 0;
    return n;
}

TEST_F(Commands, ListsShowEveryCatalogEntry) {
    const clitest::Result datums = Tool({"datums"});
    ASSERT_EQ(0, datums.status) << datums.err;
    const std::string datumFile = mwtest::ReadFile(mwtest::ShippedCatalogDir() + "/datum.ini");
    // One row per entry and a header.
    EXPECT_EQ(CountLines(datumFile, "DatumIndex="), static_cast<int>(Lines(datums.out).size()) - 1);
    // Rows checked against the catalog's own text (DMA TR 8350.2 values).
    const struct {
        const char* name;
        const char* ellipsoid;
        const char* shifts;
    } kDatums[] = {{"Pulkovo 1942", "Krassovsky 1940", "28 -130 -95"},
                   {"WGS 84", "WGS 84", "0 0 0"},
                   {"European 1950 (mean)", "International 1924", "-87 -98 -121"}};
    for (const auto& d : kDatums) {
        const std::string row = RowOf(datums.out, d.name);
        ASSERT_NE("", row) << d.name;
        EXPECT_TRUE(Contains(row, d.ellipsoid)) << row;
        std::istringstream words(row);
        std::vector<std::string> w;
        for (std::string x; words >> x;) w.push_back(x);
        EXPECT_EQ(d.shifts, w[w.size() - 3] + " " + w[w.size() - 2] + " " + w[w.size() - 1]) << row;
    }

    const clitest::Result ellipsoids = Tool({"ellipsoids"});
    ASSERT_EQ(0, ellipsoids.status) << ellipsoids.err;
    const std::string ellipsFile = mwtest::ReadFile(mwtest::ShippedCatalogDir() + "/ellips.ini");
    EXPECT_EQ(CountLines(ellipsFile, "Index="), static_cast<int>(Lines(ellipsoids.out).size()) - 1);
    const std::string krassovsky = RowOf(ellipsoids.out, "Krassovsky 1940");
    EXPECT_TRUE(Contains(krassovsky, " 6378245 ") && Contains(krassovsky, " 298.3")) << krassovsky;
    const std::string wgs84 = RowOf(ellipsoids.out, "WGS 84");
    EXPECT_TRUE(Contains(wgs84, " 6378137 ") && Contains(wgs84, " 298.257223563")) << wgs84;
}

TEST_F(Commands, DatumAddRegistersADatumThatConvertsAsItsParameters) {
    // A new ellipsoid and datum (the Australian Geodetic Datum 1966 figures).
    const clitest::Result added = Tool({"datum", "add", "Test AGD 1966", "--ellipsoid", "Test ANS", "--a", "6378160",
                                        "--rf", "298.25", "--dx", "-133", "--dy", "-48", "--dz", "148"});
    ASSERT_EQ(0, added.status) << added.err;
    const int datumCount = CountLines(mwtest::ReadFile(mwtest::ShippedCatalogDir() + "/datum.ini"), "DatumIndex=");
    EXPECT_TRUE(Contains(added.out, "added datum \"Test AGD 1966\" as index " + std::to_string(datumCount + 1)))
        << added.out;
    const std::string catalog = mwtest::ReadFile(m_env.catalogDir() + "/datum.ini");
    EXPECT_TRUE(Contains(catalog, "DatumName=Test AGD 1966")) << "the library wrote the catalog";
    EXPECT_NE("", RowOf(Tool({"datums"}).out, "Test AGD 1966"));

    // It converts by name as PROJ does with the same figures. Bound: the
    // shifts agree to 1 um; six printed decimals of a degree, 0.1 um.
    const clitest::Result r =
        Tool({"convert", "--from", "geographic datum=\"Test AGD 1966\"", "--to", "geographic", "-p", "6"},
             "-33.8688 151.2093 50\n");
    ASSERT_EQ(0, r.status) << r.err;
    const auto got = Numbers(Lines(r.out).at(0));
    const auto e = Cct(
        "+proj=pipeline" + clitest::Molodensky({6378160, 298.25, -133, -48, 148}, {6378137, 298.257223563, 0, 0, 0}),
        {{151.2093, -33.8688, 50.0}});
    ASSERT_EQ(3u, got.size());
    EXPECT_LE(clitest::GroundDistance(got[0], got[1], e[0][1], e[0][0]), 1e-5);
    EXPECT_LE(std::fabs(got[2] - e[0][2]), 1e-5);

    // Adding the same again changes nothing; different values are refused.
    const clitest::Result again = Tool(
        {"datum", "add", "Test AGD 1966", "--ellipsoid", "Test ANS", "--dx", "-133", "--dy", "-48", "--dz", "148"});
    EXPECT_EQ(0, again.status) << again.err;
    EXPECT_TRUE(Contains(again.out, "already in the catalog as index " + std::to_string(datumCount + 1)));
    const clitest::Result other =
        Tool({"datum", "add", "Test AGD 1966", "--ellipsoid", "Test ANS", "--dx", "0", "--dy", "-48", "--dz", "148"});
    EXPECT_EQ(2, other.status);
    EXPECT_TRUE(Contains(other.err, "with other values; nothing added")) << other.err;
    EXPECT_EQ(catalog, mwtest::ReadFile(m_env.catalogDir() + "/datum.ini"));
}

TEST_F(Commands, DatumAddRefusesWhatTheCatalogCannotHold) {
    const struct {
        std::vector<std::string> args;
        const char* message;
    } kRows[] = {
        {{"X", "--ellipsoid", "Krasovsky", "--dx", "1", "--dy", "2", "--dz", "3"},
         "ellipsoid \"Krasovsky\" is not in the catalog (did you mean \"Krassovsky 1940\"?); give --a and --rf"},
        {{"X", "--ellipsoid", "Krassovsky 1940", "--a", "6378000", "--dx", "1", "--dy", "2", "--dz", "3"},
         "ellipsoid \"Krassovsky 1940\" is in the catalog with a=6378245 rf=298.3"},
        {{"X", "--ellipsoid", "New", "--a", "6378.137", "--rf", "298.257223563", "--dx", "1", "--dy", "2", "--dz", "3"},
         "--a: expected the semi-major axis in metres"},
        {{"X", "--ellipsoid", "WGS 84", "--dx", "1.5", "--dy", "2", "--dz", "3"}, "--dx: expected whole metres"},
        {{"X", "--ellipsoid", "WGS 84", "--dx", "40000", "--dy", "2", "--dz", "3"}, "--dx: expected whole metres"},
        {{std::string(50, 'n'), "--ellipsoid", "WGS 84", "--dx", "1", "--dy", "2", "--dz", "3"},
         "longer than 49 characters"},
        {{"QQ", "--ellipsoid", "WGS 84", "--dx", "1", "--dy", "2", "--dz", "3"}, "marks the end of a catalog"},
        {{"日本", "--ellipsoid", "WGS 84", "--dx", "1", "--dy", "2", "--dz", "3"}, "(Windows-1251)"},
    };
    const std::string before = mwtest::ReadFile(m_env.catalogDir() + "/datum.ini");
    for (const auto& row : kRows) {
        std::vector<std::string> args = {"datum", "add"};
        args.insert(args.end(), row.args.begin(), row.args.end());
        const clitest::Result r = Tool(args);
        EXPECT_EQ(2, r.status) << row.message;
        EXPECT_TRUE(Contains(r.err, row.message)) << r.err;
    }
    EXPECT_EQ(before, mwtest::ReadFile(m_env.catalogDir() + "/datum.ini"));
}

TEST_F(Commands, SystemSaveWritesTheLibrarysValuesAndShowReadsThemBack) {
    const clitest::Result saved =
        Tool({"system", "save", "Software/MapwrightTest/tm", "tm k=0.9996 lon0=39 fe=500000 datum=4"});
    ASSERT_EQ(0, saved.status) << saved.err;
    // The seven values of a saved system, in the library's formats.
    const std::string key = "Software\\MapwrightTest\\tm";
    EXPECT_EQ("4", RegistryValue(key, "ProjectionIndex"));
    EXPECT_EQ("4", RegistryValue(key, "DatumIndex"));
    EXPECT_EQ("0.999600", RegistryValue(key, "scale"));
    EXPECT_EQ("39.000000", RegistryValue(key, "c_lon"));
    EXPECT_EQ("0.000000", RegistryValue(key, "lat_origin"));
    EXPECT_EQ("500000", RegistryValue(key, "fe"));
    EXPECT_EQ("0", RegistryValue(key, "fn"));

    const clitest::Result shown = Tool({"system", "show", "Software/MapwrightTest/tm"});
    ASSERT_EQ(0, shown.status) << shown.err;
    EXPECT_TRUE(Contains(shown.out, "Projection: Transverse Mercator\n")) << shown.out;
    EXPECT_TRUE(Contains(shown.out,
                         "Parameters: Scale factor at central meridian 0.999600, Longitude of central "
                         "meridian 039° 00' 00.00'' E, Latitude of origin of projection 000° 00' 00.00'' N,\n"))
        << shown.out;
    EXPECT_TRUE(Contains(shown.out, "False easting 500000, False northing 0\n")) << shown.out;
    EXPECT_TRUE(Contains(shown.out, "Datum:      Pulkovo 1942 (4)\n")) << shown.out;
    EXPECT_TRUE(Contains(shown.out, "Ellipsoid:  Krassovsky 1940 (19)\n")) << shown.out;
    EXPECT_TRUE(Contains(shown.out, "System:     tm k=0.9996 lon0=39 lat0=0 fe=500000 fn=0 datum=\"Pulkovo 1942\"\n"))
        << shown.out;

    // UTM keeps its zone and hemisphere in fn and fe.
    ASSERT_EQ(0, Tool({"system", "save", "Software/MapwrightTest/utm", "utm zone=23 south"}).status);
    EXPECT_EQ("2", RegistryValue("Software\\MapwrightTest\\utm", "ProjectionIndex"));
    EXPECT_EQ("23", RegistryValue("Software\\MapwrightTest\\utm", "fn"));
    EXPECT_EQ("-1", RegistryValue("Software\\MapwrightTest\\utm", "fe"));
    EXPECT_TRUE(Contains(Tool({"system", "show", "Software/MapwrightTest/utm"}).out,
                         "System:     utm zone=23 south datum=\"WGS 84\"\n"));

    const clitest::Result missing = Tool({"system", "show", "Software/MapwrightTest/none"});
    EXPECT_EQ(2, missing.status);
    EXPECT_TRUE(Contains(missing.err, "nothing is saved under \"Software\\MapwrightTest\\none\"")) << missing.err;
}

TEST_F(Commands, PairSaveWritesBothHalvesAndShowListsThem) {
    const clitest::Result saved = Tool({"pair", "save", "Software/MapwrightTest/job", "--from",
                                        "gk zone=7 datum=\"Pulkovo 1942\"", "--to", "utm zone=37"});
    ASSERT_EQ(0, saved.status) << saved.err;
    EXPECT_EQ("3", RegistryValue("Software\\MapwrightTest\\job\\GeoData_fm", "ProjectionIndex"));
    EXPECT_EQ("7500000", RegistryValue("Software\\MapwrightTest\\job\\GeoData_fm", "fe"));
    EXPECT_EQ("2", RegistryValue("Software\\MapwrightTest\\job\\GeoData_to", "ProjectionIndex"));
    EXPECT_EQ("37", RegistryValue("Software\\MapwrightTest\\job\\GeoData_to", "fn"));

    const clitest::Result shown = Tool({"pair", "show", "Software/MapwrightTest/job"});
    ASSERT_EQ(0, shown.status) << shown.err;
    const std::string expected =
        "Key:        Software/MapwrightTest/job\n"
        "Source (GeoData_fm):\n"
        "  Projection: Gauss-Kruger\n"
        "  Parameters: Longitude of central meridian 039° 00' 00.00'' E, Latitude of origin of projection 000° 00' "
        "00.00'' N,\n"
        "              False easting 7500000, False northing 0\n"
        "  Datum:      Pulkovo 1942 (4)\n"
        "  Ellipsoid:  Krassovsky 1940 (19)\n"
        "  System:     gk zone=7 datum=\"Pulkovo 1942\"\n"
        "Destination (GeoData_to):\n"
        "  Projection: UTM\n"
        "  Parameters: zone 37\n"
        "  Datum:      WGS 84 (3)\n"
        "  Ellipsoid:  WGS 84 (5)\n"
        "  System:     utm zone=37 north datum=\"WGS 84\"\n";
    EXPECT_EQ(expected, shown.out);
    EXPECT_EQ(2, Tool({"pair", "show", "Software/MapwrightTest/nothing"}).status);
}

TEST_F(Commands, AWrongSystemNamesWhatWasExpected) {
    const struct {
        const char* system;
        const char* message;
    } kRows[] = {
        {"utm datum=\"Pulkovo 1924\"",
         "unknown datum \"Pulkovo 1924\" (did you mean \"Pulkovo 1942\"?); expected a catalog index or a datum name"},
        {"utn zone=37",
         "unknown kind \"utn\" (did you mean \"utm\"?); expected geographic, utm, gk, tm, mercator, ps, ups "
         "or cartesian"},
        {"utm zone=37 lon0=39",
         "utm does not take \"lon0=39\"; expected zone=1..60|auto, north, south or datum=NAME|INDEX"},
        {"gk", "gk needs zone=1..60 or lon0=DEGREES"},
        {"gk zone=7 lon0=40", "\"zone=7\" and \"lon0=40\" disagree: zone 7 has its meridian at 39"},
        {"utm zone=61", "\"zone=61\": expected a zone number 1..60 or auto"},
        {"tm fe=12.5", "\"fe=12.5\": expected whole metres (an integer)"},
        {"tm lon0=200", "\"lon0=200\": expected decimal degrees from -180 to 180"},
        {"ps lon0=0", "ps needs lat_ts=DEGREES"},
        {"geographic datum=999", "datum index 999 is not in the catalog"},
        {"geographic datum=\"WGS 84", "unclosed quote"},
        {"", "empty system; expected a kind"},
    };
    for (const auto& row : kRows) {
        const clitest::Result r = Tool({"convert", "--from", row.system, "--to", "geographic"}, "1 2\n");
        EXPECT_EQ(2, r.status) << row.system;
        EXPECT_EQ("", r.out);
        EXPECT_TRUE(Contains(r.err, std::string("mapwright: --from: ") + row.message)) << r.err;
    }
    // Names match without regard to case and blanks.
    EXPECT_EQ(0, Tool({"convert", "--from", "geographic datum='pulkovo  1942'", "--to", "geo"}, "55 37\n").status);
}

TEST_F(Commands, TheLibrarysTextFormats) {
    // Gauss-Kruger zone 7 of a WGS 84 point; northing and easting from PROJ.
    const auto e =
        Cct("+proj=pipeline" + clitest::Molodensky({6378137, 298.257223563, 0, 0, 0}, {6378245, 298.3, 28, -130, -95}) +
                " +step +proj=tmerc +lon_0=39 +k=1 +x_0=7500000 +ellps=krass",
            {{37.6173, 55.7558, 150.0}});
    const std::vector<std::string> args = {"convert",           "--from",   "geographic", "--to",
                                           "gk zone=7 datum=4", "--format", "line"};
    const clitest::Result r = Tool(args, "55.7558 37.6173 150\n");
    ASSERT_EQ(0, r.status) << r.err;
    // The line of the library's GetCoordStr: labels, "%.2lf" and the unit.
    std::vector<std::string> m;
    ASSERT_TRUE(MatchesShape(r.out, "North/South {}mEast/West {}m (Gauss-Kruger / Krassovsky 1940)\n", &m)) << r.out;
    EXPECT_EQ(2u, Decimals(m[0]));
    EXPECT_EQ(2u, Decimals(m[1]));
    // Bound: half the last printed digit, and the series' 2 mm.
    EXPECT_NEAR(e[0][1], std::stod(m[0]), 0.005 + 2e-3);
    EXPECT_NEAR(e[0][0], std::stod(m[1]), 0.005 + 2e-3);

    std::vector<std::string> withHeight = args;
    withHeight.push_back("--line-height");
    EXPECT_EQ(0u, Tool(withHeight, "55.7558 37.6173 150\n").out.rfind("Height 150.8", 0));

    // Field texts to the other way: decimal degrees, then degrees-minutes-seconds.
    // Back from the printed easting and northing, 5 mm apart at most from
    // the point: 8e-8 degrees of longitude at 55.8 N, 5e-8 of latitude.
    const std::string gk = m[1] + " " + m[0] + "\n";
    const clitest::Result fields =
        Tool({"convert", "--from", "gk zone=7 datum=4", "--to", "geographic", "--format", "fields"}, gk);
    ASSERT_TRUE(MatchesShape(fields.out, "{} N\t{} E\n", &m)) << fields.out;
    EXPECT_EQ("055.", m[0].substr(0, 4));
    EXPECT_EQ(7u, Decimals(m[0]));
    EXPECT_EQ("037.", m[1].substr(0, 4));
    EXPECT_EQ(7u, Decimals(m[1]));
    // Bound: the way back and half the seventh decimal of the print.
    EXPECT_NEAR(55.7558, std::stod(m[0]), 5e-8 + 5e-8);
    EXPECT_NEAR(37.6173, std::stod(m[1]), 8e-8 + 5e-8);
    const clitest::Result dms =
        Tool({"convert", "--from", "gk zone=7 datum=4", "--to", "geographic", "--format", "dms"}, gk);
    ASSERT_TRUE(MatchesShape(dms.out, "{}° {}' {}'' N\t{}° {}' {}'' E\n", &m)) << dms.out;
    EXPECT_EQ("055", m[0]);
    EXPECT_EQ("45", m[1]);
    EXPECT_EQ("037", m[3]);
    EXPECT_EQ("37", m[4]);
    // 55.7558 is 20.88'' and 37.6173 02.28''; 5 mm is 0.0002''.
    EXPECT_NEAR(20.88, std::stod(m[2]), 0.005 + 2e-4);
    EXPECT_NEAR(2.28, std::stod(m[5]), 0.005 + 2e-4);
    EXPECT_EQ(2u, m[5].find('.'));
}

TEST_F(Commands, RussianNamesLabelsAndMessages) {
    ASSERT_EQ(0, Tool({"system", "save", "Software/MapwrightTest/gk7", "gk zone=7 datum=4"}).status);
    // Texts from the module's Russian string table, through to UTF-8.
    const clitest::Result shown = Tool({"--lang", "ru", "system", "show", "Software/MapwrightTest/gk7"});
    ASSERT_EQ(0, shown.status) << shown.err;
    EXPECT_TRUE(Contains(shown.out, "Проекция:  Гаусса-Крюгера (Gauss-Kruger)\n")) << shown.out;
    EXPECT_TRUE(Contains(shown.out,
                         "Параметры: Долгота центрального меридиана 039° 00' 00.00'' E, Исходная широта "
                         "000° 00' 00.00'' N,\n"))
        << shown.out;
    EXPECT_TRUE(Contains(shown.out, "Восточное смещение, м 7500000, Северное смещение, м 0\n")) << shown.out;
    EXPECT_TRUE(Contains(shown.out, "Датум:     Pulkovo 1942 (4)\n")) << shown.out;

    // The environment chooses the language as well.
    setenv("MAPWRIGHT_UI_LANG", "ru", 1);
    const clitest::Result line =
        Tool({"convert", "--from", "geographic", "--to", "gk zone=7 datum=4", "--format", "line"}, "55.7558 37.6173\n");
    const clitest::Result bad = Tool({"convert", "--from", "utm zone=37", "--to", "geographic"}, "abc 1\n");
    const clitest::Result list = Tool({"datums"});
    unsetenv("MAPWRIGHT_UI_LANG");
    EXPECT_TRUE(MatchesShape(line.out, "Север/Юг  {}м Запад/Восток {}м  (Гаусса-Крюгера / Krassovsky 1940)\n", nullptr))
        << line.out;
    EXPECT_EQ(1, bad.status);
    EXPECT_TRUE(Contains(bad.err, "mapwright: <stdin>:1: не удаётся прочитать восточную координату из \"abc\""))
        << bad.err;
    EXPECT_TRUE(Contains(bad.err, "mapwright: не удалось преобразовать точек: 1 из 1")) << bad.err;
    EXPECT_EQ(0u, list.out.rfind("# номер  название", 0)) << list.out;

    // And English is English whatever the locale says.
    setenv("LANG", "ru_RU.UTF-8", 1);
    EXPECT_TRUE(Contains(Tool({"--lang", "en", "system", "show", "Software/MapwrightTest/gk7"}).out,
                         "Projection: Gauss-Kruger\n"));
    unsetenv("LANG");
}

TEST_F(Commands, UsageErrorsExitWithTwoAndHelpWithZero) {
    EXPECT_EQ(2, Tool({}).status);
    EXPECT_EQ(2, Tool({"nonsense"}).status);
    EXPECT_EQ(2, Tool({"convert", "--from", "geo"}).status);
    EXPECT_EQ(2, Tool({"convert", "--from", "geo", "--to", "geo", "--pair", "x"}).status);
    EXPECT_EQ(2, Tool({"convert", "--from", "geo", "--to", "geo", "-p", "11"}).status);
    EXPECT_EQ(2, Tool({"convert", "--from", "geo", "--to", "geo", "--format", "xml"}).status);
    EXPECT_EQ(2, Tool({"--lang", "de", "datums"}).status);
    const clitest::Result version = Tool({"--version"});
    EXPECT_EQ(0, version.status);
    EXPECT_EQ(0u, version.out.rfind("mapwright ", 0));
}

}  // namespace
