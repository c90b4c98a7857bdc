// Coordinate text: one field, the whole line (Coord_to_Str) and the
// destination line of a conversion (GetCoordStr). Expected texts are written
// out from the string table and the C formats; Russian as UTF-8.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include <mapwright/GeoCoord.h>
#include <mapwright/GeoTransform.h>
#include <mapwright/codepage.h>
#include <mapwright/resources.h>

#include "testenv.h"

namespace {

#define DEG "\xB0"  // the degree sign in Windows-1251

std::string Text(const CString& s) { return std::string(s.GetString(), static_cast<size_t>(s.GetLength())); }

CGeoCoord Coord(int kind, GeoCoordTag v) {
    CGeoCoord c;
    c.SetProjection(kind);
    c.SetCoord(&v);
    return c;
}

class Format : public ::testing::Test {
protected:
    void TearDown() override { SetThreadUILanguage(LANG_ENGLISH_US); }
    mwtest::IsolatedEnv m_env;
};

TEST_F(Format, OneField) {
    const double near = 12 + 34 / 60.0 + 59.995 / 3600;  // a tie a few ulps off the half
    struct Row {
        int kind;
        GeoCoordTag v;  // north, east, height, zone
        int field;
        bool decimal;
        const char* expected;
    } rows[] = {
        {1, {55.7558, 0, 0, 0}, 1, true, "055.7558000 N"}, {1, {-33.9, 0, 0, 0}, 1, true, "033.9000000 S"},
        {1, {-0.0, 0, 0, 0}, 1, true, "000.0000000 N"}, {1, {NAN, 0, 0, 0}, 1, true, "        nan S"},
        {1, {0, -122.419, 0, 0}, 0, true, "122.4190000 W"}, {1, {0, 0.0, 0, 0}, 0, true, "000.0000000 E"},
        {1, {0, 1000.5, 0, 0}, 0, true, "1000.5000000 E"},
        {1, {0, 37.6173, 0, 0}, 0, false, "037" DEG " 37' 02.28'' E"},
        {1, {-33.9, 0, 0, 0}, 1, false, "033" DEG " 54' 00.00'' S"},
        // Hundredths of a second round half away from zero, also when the
        // half is an exact binary fraction (1/128 degree is 28.125'').
        {1, {0, 10.0078125, 0, 0}, 0, false, "010" DEG " 00' 28.13'' E"},
        {1, {-10.0078125, 0, 0, 0}, 1, false, "010" DEG " 00' 28.13'' S"},
        {1, {0, near, 0, 0}, 0, false, "012" DEG " 35' 00.00'' E"},
        {1, {0, 0, 150.0, 0}, 2, true, "150.00"}, {1, {0, 0, -12.5, 0}, 2, false, "-12.50"},
        {1, {1, 2, 3, 4}, 3, true, ""}, {1, {1, 2, 3, 4}, -1, false, ""},
        {2, {6182000.5, 413000.0, 10.0, 37}, 0, true, "413000.00"},
        {2, {6182000.5, 413000.0, 10.0, 37}, 1, false, "6182000.50"},
        {2, {0, 0, 0, -1}, 2, false, "-1"}, {2, {0, 0, 99.994, 37}, 3, false, "99.99"},
        {2, {1, 2, 3, 4}, 4, false, ""}, {4, {-1234.5, 0, 0, 0}, 1, false, "-1234.50"},
        {5, {0, 0, 8848.86, 0}, 2, true, "8848.86"}, {6, {1, 2, 3, 4}, 3, false, ""},
        {7, {2850000.0, 2200000.0, 5250000.0, 0}, 2, true, "5250000.00"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.expected);
        CGeoCoord c = Coord(r.kind, r.v);
        CString text("previous");
        c.GetCoord(text, r.field, r.decimal);
        EXPECT_EQ(r.expected, Text(text));
    }
    CGeoCoord none;  // no kind: the text is left alone
    CString text("untouched");
    none.GetCoord(text, 0, true);
    EXPECT_EQ("untouched", Text(text));
}

TEST_F(Format, WholeLines) {
    struct Row {
        int kind;  // 0: no kind
        GeoCoordTag v;
        unsigned long flags;
        const char* ellipsoid;
        const char* english;
        const char* russian;  // UTF-8; null: not checked
    } rows[] = {
        {2, {6182000, 413000, 0, 37}, 0, "WGS 84", "6182000.00, 413000.00 (UTM, UTM Zone  37 / WGS 84)",
         "6182000.00, 413000.00 (Универсальная поперечная Меркатора, Номер зоны  37 / WGS 84)"},
        {3, {6200000.5, 7400000.25, 150, 0}, 1, "WGS 84",
         "Height 150.00mNorth/South 6200000.50mEast/West 7400000.25m (Gauss-Kruger / WGS 84)",
         "Возвышение 150.00м Север/Юг  6200000.50м Запад/Восток 7400000.25м  (Гаусса-Крюгера / WGS 84)"},
        {3, {6200000.5, 7400000.25, 150, 0}, 2, "WGS 84",
         "North/South 6200000.50mEast/West 7400000.25m (Gauss-Kruger / WGS 84)", nullptr},
        {7, {2850000, 2200000, 5250000, 0}, 1, "WGS 84",
         "Z =5250000.00mY = 2850000.00mX =2200000.00m (Decart coordinate system / WGS 84)",
         "Z =5250000.00м Y = 2850000.00м X =2200000.00м  (Декартова система координат / WGS 84)"},
        {0, {1, 2, 3, 4}, 0, nullptr, " ()", nullptr},
        {0, {1, 2, 150, 4}, 1, nullptr, "Height 150.00m ()", "Возвышение 150.00м  ()"},
        {4, {-1.5, 2.25, 0, 0}, 0, "", "North/South -1.50mEast/West 2.25m (Transverse Mercator / )", nullptr},
        {5, {1, 2, 0, 0}, 0, "K", "North/South 1.00mEast/West 2.00m (Mercator / K)",
         "Север/Юг  1.00м Запад/Восток 2.00м  (Меркатора / K)"},
        {6, {-1, -2, 0, 0}, 0, nullptr, "North/South -1.00mEast/West -2.00m (Polar Stereographic)",
         "Север/Юг  -1.00м Запад/Восток -2.00м  (Полярная стереографическая)"},
        {1, {-33.9, -70.5, -4.25, 0}, 1, "WGS 84",
         "Height -4.25mLatitude 033" DEG " 54' 00.00'' S Longitude 070" DEG " 30' 00.00'' W (Geographic / WGS 84)",
         "Возвышение -4.25м Широта 033° 54' 00.00'' S Долгота 070° 30' 00.00'' W (Географическая / WGS 84)"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.english);
        CGeoCoord c;
        if (r.kind != 0) c = Coord(r.kind, r.v);
        else *static_cast<GeoCoordTag*>(c.GetCoord()) = r.v;  // a value but no kind
        CString line("previous");
        c.Coord_to_Str(&line, r.flags, r.ellipsoid);
        EXPECT_EQ(r.english, Text(line));
        if (!r.russian) continue;
        SetThreadUILanguage(LANG_RUSSIAN);
        c.Coord_to_Str(&line, r.flags, r.ellipsoid);
        EXPECT_EQ(Utf8ToAnsi(r.russian), Text(line));
        SetThreadUILanguage(LANG_ENGLISH_US);
    }
    Coord(2, {1, 2, 3, 4}).Coord_to_Str(nullptr, 1, "WGS 84");  // a null output is ignored
}

TEST_F(Format, TheDestinationLineIsCopiedAsStrncpyDoes) {
    const std::string line = "Height 0.00m6182000.00, 413000.00 (UTM, UTM Zone  37 / WGS 84)";
    const int n = static_cast<int>(line.size());
    CGeoTransform t;
    t.SetDatumAndPrDest(UTM, 3);
    GeoCoordTag point{6182000, 413000, 0, 37};
    t.GetGeoCoordDest()->SetCoord(&point);
    struct Row {
        int length;
        std::string expected;  // the first bytes of the buffer; the rest keeps its '#'
    } rows[] = {{n + 3, line + std::string(3, '\0')}, {n, line}, {10, line.substr(0, 10)}, {0, ""}, {-5, ""}};
    for (const Row& r : rows) {
        SCOPED_TRACE(r.length);
        char buffer[128];
        std::memset(buffer, '#', sizeof buffer);
        t.GetCoordStr(buffer, r.length, 1);
        const size_t w = r.expected.size();
        EXPECT_EQ(r.expected, std::string(buffer, w));
        EXPECT_EQ(std::string(sizeof buffer - w, '#'), std::string(buffer + w, sizeof buffer - w));
    }
    t.GetCoordStr(nullptr, 64, 0);  // a null buffer is not written to
    CGeoTransform empty;            // no destination: the slash all the same
    char buffer[32];
    empty.GetCoordStr(buffer, sizeof buffer, 0);
    EXPECT_STREQ(" ( / )", buffer);
}

TEST_F(Format, TheLineOfAConvertedPoint) {
    // Moscow to UTM on WGS 84; GeographicLib gives 37n 413224.138 6179766.954.
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
