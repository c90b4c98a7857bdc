// Coordinate text: one field (CGeoCoord::GetCoord), the whole line
// (Coord_to_Str) and the destination line of a conversion (GetCoordStr).
// Expected texts are written out in full from the string table and the C
// formats; Russian texts as UTF-8, turned into the library's Windows-1251.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include <mapwright/GeoCoord.h>
#include <mapwright/GeoTransform.h>
#include <mapwright/codepage.h>
#include <mapwright/resources.h>

#include "testenv.h"

namespace {

#define DEG "\xB0"  // the degree sign in Windows-1251

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

std::string Ansi(const char* utf8) { return Utf8ToAnsi(utf8); }
std::string Text(const CString& s) { return std::string(s.GetString(), static_cast<size_t>(s.GetLength())); }

CGeoCoord Coord(int kind, GeoCoordTag value) {
    CGeoCoord c;
    c.SetProjection(kind);
    c.SetCoord(&value);
    return c;
}

class Format : public ::testing::Test {
protected:
    void TearDown() override { SetThreadUILanguage(LANG_ENGLISH_US); }
    mwtest::IsolatedEnv m_env;
};

// ---- one field -------------------------------------------------------------

struct FieldCase {
    const char* why;
    int kind;
    GeoCoordTag value;  // north, east, height, zone
    int field;
    bool decimal;
    const char* expected;
};

const FieldCase kFieldCases[] = {
    {"decimal latitude, zero-padded to 11", 1, {55.7558, 0, 0, 0}, 1, true, "055.7558000 N"},
    {"negative latitude: absolute value and S", 1, {-33.9, 0, 0, 0}, 1, true, "033.9000000 S"},
    {"minus zero is not below zero", 1, {-0.0, 0, 0, 0}, 1, true, "000.0000000 N"},
    {"NaN counts as below zero; C pads nan with blanks", 1, {kNaN, 0, 0, 0}, 1, true, "        nan S"},
    {"decimal longitude west", 1, {0, -122.419, 0, 0}, 0, true, "122.4190000 W"},
    {"longitude 0 is east", 1, {0, 0.0, 0, 0}, 0, true, "000.0000000 E"},
    {"NaN longitude is west", 1, {0, -kNaN, 0, 0}, 0, true, "        nan W"},
    {"1000 degrees or more is wider than 11 and not cut", 1, {0, 1000.5, 0, 0}, 0, true, "1000.5000000 E"},
    {"degrees-minutes-seconds longitude", 1, {0, 37.6173, 0, 0}, 0, false, "037" DEG " 37' 02.28'' E"},
    {"degrees-minutes-seconds latitude, three-digit degrees", 1, {-33.9, 0, 0, 0}, 1, false,
     "033" DEG " 54' 00.00'' S"},
    {"geographic height in metres, either format", 1, {0, 0, 150.0, 0}, 2, true, "150.00"},
    {"geographic height, two decimals", 1, {0, 0, -12.5, 0}, 2, false, "-12.50"},
    {"geographic field 3 does not exist", 1, {1, 2, 3, 4}, 3, true, ""},
    {"field -1 does not exist", 1, {1, 2, 3, 4}, -1, false, ""},
    {"UTM easting; decimal is ignored", 2, {6182000.5, 413000.0, 10.0, 37}, 0, true, "413000.00"},
    {"UTM northing", 2, {6182000.5, 413000.0, 10.0, 37}, 1, false, "6182000.50"},
    {"UTM zone as an integer", 2, {0, 0, 0, 37}, 2, false, "37"},
    {"UTM zone -1", 2, {0, 0, 0, -1}, 2, true, "-1"},
    {"UTM height is field 3", 2, {0, 0, 99.994, 37}, 3, false, "99.99"},
    {"UTM field 4 does not exist", 2, {1, 2, 3, 4}, 4, false, ""},
    {"Gauss-Kruger easting", 3, {6200000.5, 7400000.25, 0, 0}, 0, false, "7400000.25"},
    {"Transverse Mercator northing, negative", 4, {-1234.5, 0, 0, 0}, 1, false, "-1234.50"},
    {"Mercator height is field 2", 5, {0, 0, 8848.86, 0}, 2, true, "8848.86"},
    {"Polar Stereographic field 3 does not exist", 6, {1, 2, 3, 4}, 3, false, ""},
    {"Cartesian X (east)", 7, {2850000.0, 2200000.0, 5250000.0, 0}, 0, false, "2200000.00"},
    {"Cartesian Z (height)", 7, {2850000.0, 2200000.0, 5250000.0, 0}, 2, true, "5250000.00"},
};

TEST_F(Format, OneField) {
    for (const FieldCase& c : kFieldCases) {
        SCOPED_TRACE(c.why);
        CGeoCoord coord = Coord(c.kind, c.value);
        CString text("previous");
        coord.GetCoord(text, c.field, c.decimal);
        EXPECT_EQ(c.expected, Text(text));
    }
}

TEST_F(Format, ACoordinateWithoutKindLeavesTheTextAlone) {
    CGeoCoord none;
    for (int field : {-1, 0, 1, 2, 3}) {
        for (bool decimal : {false, true}) {
            CString text("untouched");
            none.GetCoord(text, field, decimal);
            EXPECT_EQ("untouched", Text(text));
        }
    }
}

// ---- the whole line --------------------------------------------------------

struct LineCase {
    const char* why;
    int kind;  // 0: no kind
    GeoCoordTag value;
    unsigned long flags;
    const char* ellipsoid;  // may be null
    const char* english;
    const char* russian;  // UTF-8
};

const LineCase kLineCases[] = {
    {"UTM: two blanks before the zone, one ending the label and one added", 2, {6182000, 413000, 0, 37}, 0,
     "WGS 84", "6182000.00, 413000.00 (UTM, UTM Zone  37 / WGS 84)",
     "6182000.00, 413000.00 (Универсальная поперечная Меркатора, Номер зоны  37 / WGS 84)"},
    {"Gauss-Kruger: the English unit runs into the next label, the Russian one ends in a blank", 3,
     {6200000.5, 7400000.25, 0, 0}, 0, "WGS 84",
     "North/South 6200000.50mEast/West 7400000.25m (Gauss-Kruger / WGS 84)",
     "Север/Юг  6200000.50м Запад/Восток 7400000.25м  (Гаусса-Крюгера / WGS 84)"},
    {"Cartesian: Y for north, X for east", 7, {2850000, 2200000, 0, 0}, 0, "WGS 84",
     "Y = 2850000.00mX =2200000.00m (Decart coordinate system / WGS 84)",
     "Y = 2850000.00м X =2200000.00м  (Декартова система координат / WGS 84)"},
    {"no kind, no ellipsoid: the frame alone", 0, {1, 2, 3, 4}, 0, nullptr, " ()", " ()"},
    {"the height flag puts the height first", 3, {6200000.5, 7400000.25, 150, 0}, 1, "WGS 84",
     "Height 150.00mNorth/South 6200000.50mEast/West 7400000.25m (Gauss-Kruger / WGS 84)",
     "Возвышение 150.00м Север/Юг  6200000.50м Запад/Восток 7400000.25м  (Гаусса-Крюгера / WGS 84)"},
    {"bit 1 means nothing: 3 is the same as 1", 3, {6200000.5, 7400000.25, 150, 0}, 3, "WGS 84",
     "Height 150.00mNorth/South 6200000.50mEast/West 7400000.25m (Gauss-Kruger / WGS 84)",
     "Возвышение 150.00м Север/Юг  6200000.50м Запад/Восток 7400000.25м  (Гаусса-Крюгера / WGS 84)"},
    {"bit 1 means nothing: 2 is the same as 0", 3, {6200000.5, 7400000.25, 150, 0}, 2, "WGS 84",
     "North/South 6200000.50mEast/West 7400000.25m (Gauss-Kruger / WGS 84)",
     "Север/Юг  6200000.50м Запад/Восток 7400000.25м  (Гаусса-Крюгера / WGS 84)"},
    {"Cartesian height is labelled Z", 7, {2850000, 2200000, 5250000, 0}, 1, "WGS 84",
     "Z =5250000.00mY = 2850000.00mX =2200000.00m (Decart coordinate system / WGS 84)",
     "Z =5250000.00м Y = 2850000.00м X =2200000.00м  (Декартова система координат / WGS 84)"},
    {"no kind with the height flag: the height label of the other kinds, then the frame", 0, {1, 2, 150, 4}, 1,
     nullptr, "Height 150.00m ()", "Возвышение 150.00м  ()"},
    {"an empty ellipsoid name still gets its slash", 4, {-1.5, 2.25, 0, 0}, 0, "",
     "North/South -1.50mEast/West 2.25m (Transverse Mercator / )",
     "Север/Юг  -1.50м Запад/Восток 2.25м  (Поперечная Меркатора / )"},
    {"Mercator name", 5, {1, 2, 0, 0}, 0, "Krassovsky 1940",
     "North/South 1.00mEast/West 2.00m (Mercator / Krassovsky 1940)",
     "Север/Юг  1.00м Запад/Восток 2.00м  (Меркатора / Krassovsky 1940)"},
    {"Polar Stereographic name, no ellipsoid", 6, {-1, -2, 0, 0}, 0, nullptr,
     "North/South -1.00mEast/West -2.00m (Polar Stereographic)",
     "Север/Юг  -1.00м Запад/Восток -2.00м  (Полярная стереографическая)"},
    {"Geographic is always degrees, minutes and seconds", 1, {55.7558, 37.6173, 150, 0}, 0, "WGS 84",
     "Latitude 055" DEG " 45' 20.88'' N Longitude 037" DEG " 37' 02.28'' E (Geographic / WGS 84)",
     "Широта 055° 45' 20.88'' N Долгота 037° 37' 02.28'' E (Географическая / WGS 84)"},
    {"Geographic with its height, southern and western", 1, {-33.9, -70.5, -4.25, 0}, 1, "WGS 84",
     "Height -4.25mLatitude 033" DEG " 54' 00.00'' S Longitude 070" DEG " 30' 00.00'' W (Geographic / WGS 84)",
     "Возвышение -4.25м Широта 033° 54' 00.00'' S Долгота 070° 30' 00.00'' W (Географическая / WGS 84)"},
};

TEST_F(Format, WholeLinesInBothLanguages) {
    for (const LineCase& c : kLineCases) {
        SCOPED_TRACE(c.why);
        CGeoCoord coord;
        if (c.kind != 0) coord = Coord(c.kind, c.value);
        else *static_cast<GeoCoordTag*>(coord.GetCoord()) = c.value;  // a value but no kind
        CString line("previous");
        SetThreadUILanguage(LANG_ENGLISH_US);
        coord.Coord_to_Str(&line, c.flags, c.ellipsoid);
        EXPECT_EQ(c.english, Text(line));
        SetThreadUILanguage(LANG_RUSSIAN);
        coord.Coord_to_Str(&line, c.flags, c.ellipsoid);
        EXPECT_EQ(Ansi(c.russian), Text(line));
    }
}

TEST_F(Format, ANullOutputIsIgnored) {
    CGeoCoord coord = Coord(2, {1, 2, 3, 4});
    coord.Coord_to_Str(nullptr, 1, "WGS 84");  // must not crash
    SUCCEED();
}

// ---- the destination line of a conversion ----------------------------------

const char kUtmLine[] = "6182000.00, 413000.00 (UTM, UTM Zone  37 / WGS 84)";

// A transform whose destination is UTM on the catalog's WGS 84 (datum 3)
// holding the example point.
void UtmDestination(CGeoTransform& t) {
    t.SetDatumAndPrDest(UTM, 3);
    GeoCoordTag point{6182000, 413000, 0, 37};
    t.GetGeoCoordDest()->SetCoord(&point);
}

TEST_F(Format, TheDestinationLineIsCopiedAsStrncpyDoes) {
    CGeoTransform t;
    UtmDestination(t);
    const int n = static_cast<int>(std::strlen(kUtmLine));

    struct Case {
        const char* why;
        int length;
        std::string expected;  // the first `length` bytes of the buffer; the rest keeps its '#'
    };
    const Case cases[] = {
        {"longer than the line: terminated and zero-filled to length", n + 10,
         std::string(kUtmLine) + std::string(10, '\0')},
        {"one more than the line: just the terminator", n + 1, std::string(kUtmLine, n + 1)},
        {"equal to the line: no terminator", n, std::string(kUtmLine, n)},
        {"shorter: cut, no terminator", 10, std::string(kUtmLine, 10)},
        {"length 0: nothing written", 0, ""},
        {"negative length: nothing written", -5, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        char buffer[128];
        std::memset(buffer, '#', sizeof buffer);
        t.GetCoordStr(buffer, c.length, 0);
        const size_t written = c.expected.size();
        EXPECT_EQ(c.expected, std::string(buffer, written));
        EXPECT_EQ(std::string(sizeof buffer - written, '#'), std::string(buffer + written, sizeof buffer - written));
    }
    t.GetCoordStr(nullptr, 64, 0);  // a null buffer is not written to
}

TEST_F(Format, TheDestinationLineInRussianAndWithTheHeight) {
    CGeoTransform t;
    UtmDestination(t);
    static_cast<GeoCoordTag*>(t.GetGeoCoordDest()->GetCoord())->height = 150.0;
    char buffer[256];

    SetThreadUILanguage(LANG_RUSSIAN);
    t.GetCoordStr(buffer, sizeof buffer, 0);
    EXPECT_EQ(Ansi("6182000.00, 413000.00 (Универсальная поперечная Меркатора, Номер зоны  37 / WGS 84)"),
              std::string(buffer));
    t.GetCoordStr(buffer, sizeof buffer, 3);
    EXPECT_EQ(Ansi("Возвышение 150.00м 6182000.00, 413000.00 (Универсальная поперечная Меркатора, Номер зоны  37 / "
                   "WGS 84)"),
              std::string(buffer));

    SetThreadUILanguage(LANG_ENGLISH_US);
    t.GetCoordStr(buffer, sizeof buffer, 1);
    EXPECT_EQ("Height 150.00m6182000.00, 413000.00 (UTM, UTM Zone  37 / WGS 84)", std::string(buffer));
}

TEST_F(Format, ADestinationWithoutSystemStillGetsTheSlash) {
    CGeoTransform t;  // no destination kind, empty ellipsoid name
    char buffer[32];
    t.GetCoordStr(buffer, sizeof buffer, 0);
    EXPECT_STREQ(" ( / )", buffer);
}

TEST_F(Format, TheLineOfAConvertedPoint) {
    // Moscow from Geographic WGS 84 to UTM on the same datum. Reference:
    // GeographicLib's GeoConvert gives 37n 413224.138 6179766.954; the
    // conversion is good to well under a millimetre, far from any rounding
    // boundary of the two decimals.
    CGeoTransform t;
    ASSERT_EQ(1, t.SetGeoParam(Geographic, UTM, 3, 3));
    GeoCoordTag point{55.7558, 37.6173, 150.0, 0};
    t.SetGeoCoord(&point);
    ASSERT_EQ(1, t.GeoConvert());
    char buffer[128];
    t.GetCoordStr(buffer, sizeof buffer, 0);
    EXPECT_STREQ("6179766.95, 413224.14 (UTM, UTM Zone  37 / WGS 84)", buffer);
    t.FreeGeoParam();
}

}  // namespace
