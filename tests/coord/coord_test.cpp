// CGeoCoord and a system's coordinate fields: text, lines, labels, masks.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <string>

#include <mapwright/GeoCoord.h>
#include <mapwright/GeoTransform.h>
#include <mapwright/basalt_controls.h>
#include <mapwright/codepage.h>
#include <mapwright/resources.h>

#include "testenv.h"

namespace {

using G = GeoCoordTag;
using mwtest::Str;
G& Rec(CGeoCoord& c) { return *static_cast<G*>(c.GetCoord()); }
CGeoCoord Make(int kind, G v) {
    CGeoCoord c;
    c.SetProjection(kind);
    c.SetCoord(&v);
    return c;
}
CGeoReferenceData Sys(int kind) {  // kinds outside 1..7 written directly
    CGeoReferenceData s;
    if (kind >= 1 && kind <= 7) s.SetProjection(kind);
    else s.m_nProjection = kind;
    return s;
}

class Coord : public ::testing::Test {
protected:
    void TearDown() override { SetThreadUILanguage(LANG_ENGLISH_US); }
    mwtest::IsolatedEnv m_env;
};

TEST_F(Coord, KindsCopiesAndTextIntoAField) {
    CGeoCoord c;
    G v{55.75, 37.62, 150, 37};
    EXPECT_TRUE(c.SetCoord(&v) == 0 && Rec(c).north == 0);  // no kind yet
    c.SetCoord("12.5", 0, true);
    EXPECT_EQ(0, Rec(c).east);
    for (auto [kind, r] : {std::pair{1, 1}, {1, 0}, {0, 0}, {8, 0}, {7, 1}, {1, 1}}) EXPECT_EQ(r, c.SetProjection(kind)) << kind;
    EXPECT_TRUE(c.SetCoord(&v) == 1 && c.SetCoord(nullptr) == 0 && c.SetProjection(3) == 1);
    EXPECT_TRUE(Rec(c).north == 55.75 && Rec(c).zone == 37);  // a new kind reads the same numbers
    CGeoCoord b(c);
    Rec(b).zone = 38;
    EXPECT_EQ(37, Rec(c).zone);
    b = CGeoCoord();  // kind 0: the kind is taken, the values kept
    EXPECT_TRUE(b.GetProjection() == 0 && Rec(b).zone == 38);
    const struct { int kind; const char* text; int field; bool dec; double G::*m; double v; } rows[] = {
        {1, "12.5w", 0, true, &G::east, -12.5}, {1, "-12.5 W", 0, true, &G::east, 12.5}, {1, "12.5 S", 0, true, &G::east, 12.5},
        {1, "abc", 0, true, &G::east, 1000}, {1, "55.5 S", 1, true, &G::north, -55.5}, {1, "123.4", 2, false, &G::height, 123.4},
        {1, "1", 3, true, &G::height, 1000}, {1, "055\xB0 45' 20.88'' N", 1, false, &G::north, 55.7558}, {1, "037\xB0 37' 02.28'' W", 0, false, &G::east, -37.6173},
        {2, "413000.5", 0, false, &G::east, 413000.5}, {2, "150", 3, false, &G::height, 150},
        {2, "1", 4, false, &G::height, 1000}, {3, "abc", 0, false, &G::east, 0}, {3, "7", 2, false, &G::height, 7},
        {5, "1", -1, false, &G::east, 1000}};
    for (auto& r : rows) {
        CGeoCoord k = Make(r.kind, {1000, 1000, 1000, 1000});
        k.SetCoord(r.text, r.field, r.dec);
        EXPECT_TRUE(std::fabs(Rec(k).*r.m - r.v) < 1e-9 && Rec(k).zone == 1000) << r.kind << " '" << r.text << "' " << r.field;
    }
    CGeoCoord u = Make(2, {});
    u.SetCoord("37", 2, false);
    EXPECT_EQ(37, Rec(u).zone);
    u.SetCoord("99999999999999", 2, false);  // clamped
    u.SetCoord(nullptr, 2, false);
    EXPECT_EQ(INT_MAX, Rec(u).zone);
}

TEST_F(Coord, OneFieldAsText) {
    const double tie = 12 + 34 / 60.0 + 59.995 / 3600;  // a few ulps off the half
    const struct { int kind; G v; int field; bool dec; const char* text; } rows[] = {
        {1, {-0.0, 0, 0, 0}, 1, true, "000.0000000 N"}, {1, {NAN, 0, 0, 0}, 1, true, "        nan S"},
        {1, {0, 1000.5, 0, 0}, 0, true, "1000.5000000 E"},
        {1, {-33.9, 0, 0, 0}, 1, false, "033\xB0 54' 00.00'' S"},
        // Hundredths round half away from zero, also on a binary half (1/128 degree is 28.125'').
        {1, {0, 10.0078125, 0, 0}, 0, false, "010\xB0 00' 28.13'' E"}, {1, {-10.0078125, 0, 0, 0}, 1, false, "010\xB0 00' 28.13'' S"},
        {1, {0, tie, 0, 0}, 0, false, "012\xB0 35' 00.00'' E"}, {1, {0, 0, -12.5, 0}, 2, false, "-12.50"}, {1, {1, 2, 3, 4}, 3, true, ""},
        {1, {1, 2, 3, 4}, -1, false, ""}, {2, {6182000.5, 413000, 10, 37}, 1, false, "6182000.50"},
        {2, {0, 0, 0, -1}, 2, false, "-1"}, {2, {0, 0, 99.994, 37}, 3, false, "99.99"}, {2, {1, 2, 3, 4}, 4, false, ""},
        {4, {-1234.5, 0, 0, 0}, 1, false, "-1234.50"}, {7, {0, 0, 5250000, 0}, 2, true, "5250000.00"}};
    for (auto& r : rows) {
        CString t("previous");
        Make(r.kind, r.v).GetCoord(t, r.field, r.dec);
        EXPECT_EQ(r.text, Str(t));
    }
    CString t("untouched");  // no kind: the text is left alone
    CGeoCoord().GetCoord(t, 0, true);
    EXPECT_EQ("untouched", Str(t));
}

TEST_F(Coord, WholeLines) {
    const struct { int kind; G v; unsigned long flags; const char *ell, *en; } rows[] = {
        {0, {1, 2, 150, 4}, 1, nullptr, "Height 150.00m ()"},
        {3, {1, 2, 150, 0}, 2, "W", "North/South 1.00mEast/West 2.00m (Gauss-Kruger / W)"},
        {7, {2, 3, 5, 0}, 1, "W", "Z =5.00mY = 2.00mX =3.00m (Decart coordinate system / W)"},
        {6, {-1, -2, 0, 0}, 0, nullptr, "North/South -1.00mEast/West -2.00m (Polar Stereographic)"},
        {1, {-33.9, -70.5, -4.25, 0}, 1, "W", "Height -4.25mLatitude 033\xB0 54' 00.00'' S Longitude 070\xB0 30' 00.00'' W (Geographic / W)"}};
    for (auto& r : rows) {
        CGeoCoord c;
        if (r.kind) c = Make(r.kind, r.v);
        else Rec(c) = r.v;  // a value but no kind
        CString line("previous");
        c.Coord_to_Str(&line, r.flags, r.ell);
        EXPECT_EQ(r.en, Str(line));
    }
    Make(2, {1, 2, 3, 4}).Coord_to_Str(nullptr, 1, "WGS 84");  // a null output is ignored
    // A converted line, copied as strncpy does; GeographicLib: 37n 413224.138 6179766.954.
    CGeoTransform t;
    ASSERT_EQ(1, t.SetGeoParam(Geographic, UTM, 3, 3));
    G p{55.7558, 37.6173, 150, 0};
    t.SetGeoCoord(&p);
    ASSERT_EQ(1, t.GeoConvert());
    const std::string line = "Height 150.00m6179766.95, 413224.14 (UTM, UTM Zone  37 / WGS 84)";
    const int n = int(line.size());
    for (auto [len, text] : {std::pair{n + 3, line + std::string(3, '\0')}, {10, line.substr(0, 10)}, {0, ""}, {-5, ""}}) {
        char b[128];
        std::memset(b, '#', sizeof b);
        t.GetCoordStr(b, len, 1);
        EXPECT_EQ(text + std::string(sizeof b - text.size(), '#'), std::string(b, sizeof b)) << len;
    }
    t.GetCoordStr(nullptr, 64, 0);
    t.FreeGeoParam();
    char b[32];  // no destination: the slash all the same
    CGeoTransform().GetCoordStr(b, sizeof b, 0);
    EXPECT_STREQ(" ( / )", b);
}

struct Mask { const char *mask, *literal, *valid; };
constexpr Mask kNo{}, kPre{"#", "#", "#"}, kLon{"900__90__90_00___$", "___\xB0 __' __.__'' _", "WEwe"}, kLat{"900__90__90_00___$", "___\xB0 __' __.__'' _", "NSns"},
    kDLon{"900_9000000_$", "___._________", "WEwe"}, kDLat{"900_9000000_$", "___._________", "NSns"}, kNum{"%%%%%%%%%%%%%%", "______________", ""};

TEST_F(Coord, FieldsLabelsAndMasks) {
    for (auto [kind, n] : {std::pair{0, 0}, {1, 2}, {2, 3}, {7, 2}, {8, 0}, {INT_MIN, 0}}) EXPECT_EQ(Sys(kind).GetNumCoordField(), n) << kind;
    const struct { int kind, field; Mask dms, dec; const char *en, *ru; } rows[] = {
        {1, 0, kLon, kDLon, "Longitude ", "Долгота "}, {1, 1, kLat, kDLat, "Latitude ", nullptr}, {1, 2, kNum, kNum, "Height ", nullptr},
        {1, 3, kNo, kNo, "", nullptr}, {2, 0, kNum, kNum, "East/West ", nullptr}, {2, 1, kNum, kNum, "North/South ", "Север/Юг  "},
        {2, 2, kNum, kNum, "UTM Zone ", nullptr}, {2, 3, kNum, kNum, "Height ", nullptr}, {2, 4, kNo, kNo, "", nullptr}, {3, 0, kNum, kNum, "East/West ", nullptr},
        {4, 1, kNum, kNum, "North/South ", nullptr},
        {7, 0, kNum, kNum, "X =", nullptr}, {7, 2, kNum, kNum, "Z =", nullptr}, {7, 3, kNo, kNo, "", ""},
        {2, INT_MIN, kNo, kNo, "", ""}, {2, INT_MAX, kNo, kNo, "", ""}, {0, 0, kNo, kNo, "", ""}, {8, 2, kNo, kNo, "", ""}, {INT_MIN, 1, kNo, kNo, "", ""}};
    for (auto& r : rows) {
        SCOPED_TRACE("kind " + std::to_string(r.kind) + " field " + std::to_string(r.field));
        CGeoReferenceData s = Sys(r.kind);
        CString text("stale");
        s.GetCoordFieldName(text, r.field);
        EXPECT_EQ(r.en, Str(text));
        if (r.ru) {
            SetThreadUILanguage(LANG_RUSSIAN);
            s.GetCoordFieldName(text, r.field);
            EXPECT_EQ(Utf8ToAnsi(r.ru), Str(text));
            SetThreadUILanguage(LANG_ENGLISH_US);
        }
        for (bool dec : {false, true}) {
            CMaskEdit e;
            e.SetMask(kPre.mask, kPre.literal, kPre.valid);
            s.SetCoordFieldMask(&e, r.field, dec);
            const Mask& m = (dec ? r.dec : r.dms).mask ? (dec ? r.dec : r.dms) : kPre;
            EXPECT_TRUE(e.GetMask() == m.mask && e.GetLiteral() == m.literal && e.GetValid() == m.valid) << dec;
        }
    }
    Sys(1).SetCoordFieldMask(nullptr, 0, false);
}

}  // namespace
