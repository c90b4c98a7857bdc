// CGeoReferenceData as a record: blocks per kind, copies, names and the
// parameter summary in both languages (Russian as UTF-8).
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include <mapwright/GeoReferenceData.h>
#include <mapwright/basalt.h>
#include <mapwright/codepage.h>
#include <mapwright/resources.h>

#include "testenv.h"

namespace {

#define DEG "\xB0"

bool AllZero(const void* p, size_t n) {
    for (size_t i = 0; i < n; ++i)
        if (static_cast<const unsigned char*>(p)[i]) return false;
    return true;
}
std::string Text(const CString& s) { return std::string(s.GetString(), static_cast<size_t>(s.GetLength())); }
ScaledProjectionParam* Scaled(CGeoReferenceData& r) { return static_cast<ScaledProjectionParam*>(r.GetParam()); }

TEST(ReferenceRecord, NewRecordIsUnset) {
    mwtest::IsolatedEnv env;
    CGeoReferenceData r;
    EXPECT_EQ(-1, r.GetProjection());
    EXPECT_EQ(-1, r.GetDatum());
    EXPECT_EQ(-1, r.GetEllipsoid());
    EXPECT_EQ(nullptr, r.GetParam());
    double geo[2] = {1, 1};
    short values[6] = {1, 1, 1, 1, 1, 1};
    EXPECT_EQ(0, r.GetGeoInfoA(geo, values));
    EXPECT_TRUE(AllZero(geo, sizeof geo) && AllZero(values, sizeof values));
    EXPECT_TRUE(AllZero(r.szDatumName, 50) && AllZero(r.szEllipsName, 50));
    const std::string dir = env.appDir() + "\\Auxiliary Data\\";
    EXPECT_EQ(CString((dir + "ellips.ini").c_str()), *r.GetEllipsFile());
    EXPECT_EQ(CString((dir + "datum.ini").c_str()), *r.GetDatumFile());
    EXPECT_EQ(CString((dir + "projection.ini").c_str()), *r.GetProjectionFile());
}

TEST(ReferenceRecord, SetProjectionKeepsOrReplacesTheBlock) {
    CGeoReferenceData r;
    ASSERT_EQ(1, r.SetProjection(GaussKruger));
    ScaledProjectionParam* gk = Scaled(r);
    EXPECT_TRUE(AllZero(gk, sizeof *gk));
    gk->scale = 0.5;
    gk->fn = 7;  // the last field of a 32-byte block
    EXPECT_EQ(1, r.SetProjection(GaussKruger));  // same kind: same block
    EXPECT_EQ(gk, Scaled(r));
    EXPECT_EQ(0.5, gk->scale);
    EXPECT_EQ(1, r.SetProjection(TransverseMercator));  // same size, values not carried
    EXPECT_TRUE(AllZero(r.GetParam(), sizeof *gk));
    EXPECT_EQ(1, r.SetProjection(Mercator));
    void* plain = r.GetParam();
    EXPECT_TRUE(AllZero(plain, sizeof(ProjectionParam)));
    for (int bad : {0, 8, -1}) {
        EXPECT_EQ(0, r.SetProjection(bad)) << bad;
        EXPECT_EQ(Mercator, r.GetProjection());
        EXPECT_EQ(plain, r.GetParam());
    }
}

TEST(ReferenceRecord, SetParamCopiesTheBlockOfTheKind) {
    const size_t copied[8] = {0, 0, 24, 32, 32, 24, 24, 0};  // by kind
    unsigned char source[32];
    for (size_t i = 0; i < sizeof source; ++i) source[i] = static_cast<unsigned char>(i + 1);
    for (int kind = 1; kind <= 7; ++kind) {
        CGeoReferenceData r;
        r.SetProjection(kind);
        EXPECT_EQ(1, r.SetParam(source)) << kind;
        if (copied[kind]) { EXPECT_EQ(0, std::memcmp(source, r.GetParam(), copied[kind])) << kind; }
        else EXPECT_TRUE(AllZero(r.GetParam(), 24)) << kind;
    }
    CGeoReferenceData unset;
    EXPECT_EQ(1, unset.SetParam(source));
    EXPECT_EQ(nullptr, unset.GetParam());
    unset.SetProjection(UTM);
    EXPECT_EQ(1, unset.SetParam(nullptr));
}

TEST(ReferenceRecord, GeoInfoAndTheEllipsoidFromAxes) {
    CGeoReferenceData r;
    short values[6] = {28, -130, -95, 1, 2, 3};
    double geo[2] = {6378245.0, 298.3};
    EXPECT_EQ(0, r.SetGeoInfo(geo, values));  // copied although unset
    EXPECT_EQ(0, r.SetDatumData(300.0, 299.0));
    r.SetProjection(Geographic);
    EXPECT_EQ(1, r.SetDatumData(300.0, 299.0));
    EXPECT_EQ(1, r.GetGeoInfoA(geo, values));
    EXPECT_EQ(300.0, geo[0]);
    EXPECT_EQ(300.0, geo[1]);  // exactly a / (a - b)
    EXPECT_TRUE(AllZero(values, sizeof values));
    r.SetDatumData(6371000.0, 6371000.0);  // a sphere
    EXPECT_TRUE(std::isinf(r.m_dGeoInfo[1]));
    r.SetDatumData(0.0, 0.0);
    EXPECT_TRUE(std::isnan(r.m_dGeoInfo[1]));
    // Hosts pass the fields of a packed DatumParamTag, which sit unaligned.
    DatumParamTag tag{}, out{};
    tag.dSemiMajorKm = 6378137.0;
    tag.dInvFlattening = 298.257223563;
    for (int i = 0; i < 6; ++i) tag.nDatumValues[i] = static_cast<int16_t>(i - 3);
    EXPECT_EQ(1, r.SetGeoInfo(reinterpret_cast<double*>(&tag.dSemiMajorKm), reinterpret_cast<short*>(tag.nDatumValues)));
    EXPECT_EQ(6378137.0, r.m_dGeoInfo[0]);
    EXPECT_EQ(-3, r.m_nDatumValues[0]);
    EXPECT_EQ(1, r.GetGeoInfoA(reinterpret_cast<double*>(&out.dSemiMajorKm), reinterpret_cast<short*>(out.nDatumValues)));
    EXPECT_EQ(0, std::memcmp(&out.dSemiMajorKm, &tag.dSemiMajorKm, 2 * sizeof(double) + 12));
}

TEST(ReferenceRecord, CopiesOwnTheirBlocks) {
    CGeoReferenceData a;
    a.SetProjection(TransverseMercator);
    Scaled(a)->scale = 0.9996;
    a.SetDatumName("Pulkovo 1942");
    a.m_nDatum = 7;
    {
        CGeoReferenceData b(a);
        EXPECT_NE(a.GetParam(), b.GetParam());
        EXPECT_EQ(7, b.GetDatum());
        EXPECT_STREQ("Pulkovo 1942", b.szDatumName);
        Scaled(b)->scale = 1.0;
    }
    EXPECT_EQ(0.9996, Scaled(a)->scale);
    CGeoReferenceData c;
    c.SetProjection(Mercator);
    c = a;
    EXPECT_EQ(TransverseMercator, c.GetProjection());
    EXPECT_NE(a.GetParam(), c.GetParam());
    CGeoReferenceData& self = c;
    c = self;
    EXPECT_EQ(0.9996, Scaled(c)->scale);
    c = CGeoReferenceData();
    EXPECT_EQ(-1, c.GetProjection());
    EXPECT_EQ(nullptr, c.GetParam());
}

TEST(ReferenceRecord, NamesKeepFortyNineCharacters) {
    CGeoReferenceData r;
    CString name("x");
    r.GetEllipsName(name);
    EXPECT_TRUE(name.IsEmpty());
    const std::string sixty(60, 'n');
    r.SetDatumName(sixty.c_str());
    r.SetEllipsName(sixty.c_str());
    r.GetDatumName(name);
    EXPECT_EQ(std::string(49, 'n'), Text(name));
    r.GetEllipsName(name);
    EXPECT_EQ(std::string(49, 'n'), Text(name));
    r.SetEllipsName("Krassovsky 1940");  // a shorter name clears the rest of the field
    r.GetEllipsName(name);
    EXPECT_EQ("Krassovsky 1940", Text(name));
    EXPECT_TRUE(AllZero(r.szEllipsName + 15, 35));
    std::memset(r.szDatumName, 'x', sizeof r.szDatumName);  // unterminated: read within bounds
    r.GetDatumName(name);
    EXPECT_EQ(50, name.GetLength());
}

class Names : public ::testing::Test {
protected:
    void TearDown() override { SetThreadUILanguage(LANG_ENGLISH_US); }
    mwtest::IsolatedEnv m_env;
};

TEST_F(Names, ProjectionNamesFollowTheLanguageAndEnglishNamesDoNot) {
    const char* const english[] = {"", "Geographic", "UTM", "Gauss-Kruger", "Transverse Mercator", "Mercator",
                                   "Polar Stereographic", "Decart coordinate system", ""};
    const char* const russian[] = {"", "Географическая", "Универсальная поперечная Меркатора", "Гаусса-Крюгера",
                                   "Поперечная Меркатора", "Меркатора", "Полярная стереографическая",
                                   "Декартова система координат", ""};
    for (LANGID language : {LANG_ENGLISH_US, LANG_RUSSIAN}) {
        SetThreadUILanguage(language);
        for (int kind = 0; kind <= 8; ++kind) {
            CGeoReferenceData r;
            r.m_nProjection = kind == 0 ? -1 : kind;  // kind 8 written by a host, without a block
            CString name("old"), en("old");
            r.GetProjectionName(name);
            r.GetEnProjectionName(en);
            EXPECT_EQ(language == LANG_RUSSIAN ? Utf8ToAnsi(russian[kind]) : std::string(english[kind]), Text(name));
            EXPECT_EQ(english[kind], Text(en)) << kind;
        }
    }
}

TEST_F(Names, ParameterSummariesInBothLanguages) {
    const struct {
        int kind;
        ScaledProjectionParam p;  // scale first; the other kinds take the last four fields
        const char *english, *russian;
    } rows[] = {
        {TransverseMercator, {0.9996, 39.0, 0.0, 500000, 0},
         "Scale factor at central meridian 0.999600, Longitude of central meridian 039" DEG " 00' 00.00'' E, "
         "Latitude of origin of projection 000" DEG " 00' 00.00'' N, \nFalse easting 500000, False northing 0, ",
         "Масштаб по центр. меридиану 0.999600, Долгота центрального меридиана 039° 00' 00.00'' E, "
         "Исходная широта 000° 00' 00.00'' N, \nВосточное смещение, м 500000, Северное смещение, м 0, "},
        {GaussKruger, {0.5, 33.0, 0.0, 6500000, 0},
         "Longitude of central meridian 033" DEG " 00' 00.00'' E, Latitude of origin of projection 000" DEG
         " 00' 00.00'' N, \nFalse easting 6500000, False northing 0, ", nullptr},
        {Mercator, {0.0, -74.5, 41.258, -20, 1000000},
         "Longitude of central meridian 074" DEG " 30' 00.00'' W, Latitude of true scale 041" DEG
         " 15' 28.80'' N, \nFalse easting -20, False northing 1000000, ", nullptr},
        {PolarStereographic, {0.0, -45.0, -71.0, 2000000, 2000000},
         "Longitude below pole of map 045" DEG " 00' 00.00'' W, Latitude of true scale 071" DEG
         " 00' 00.00'' S, \nFalse easting 2000000, False northing 2000000, ",
         "Долгота направления на север 045° 00' 00.00'' W, Широта истинного масштаба 071° 00' 00.00'' S, \n"
         "Восточное смещение, м 2000000, Северное смещение, м 2000000, "},
        {UTM, {0.0, 0.0, 0.0, -1, 5}, "zone 5", "зона 5"},  // the zone; not the hemisphere
        {Geographic, {0.0, 10.0, 20.0, 30, 40}, "", ""},
        {Cartesian, {0.0, 10.0, 20.0, 30, 40}, "", nullptr},
        {-1, {}, "", nullptr},
    };
    for (const auto& c : rows) {
        SCOPED_TRACE(c.kind);
        CGeoReferenceData r;
        r.SetProjection(c.kind);
        if (c.kind == GaussKruger || c.kind == TransverseMercator) {
            r.SetParam(const_cast<ScaledProjectionParam*>(&c.p));
        } else if (r.GetParam()) {
            ProjectionParam q{c.p.c_lon, c.p.lat_origin, c.p.fe, c.p.fn};
            std::memcpy(r.GetParam(), &q, sizeof q);
        }
        CString text("previous text");  // replaced, not appended to
        r.GetParamName(text);
        EXPECT_EQ(c.english, Text(text));
        if (!c.russian) continue;
        SetThreadUILanguage(LANG_RUSSIAN);
        r.GetParamName(text);
        EXPECT_EQ(Utf8ToAnsi(c.russian), Text(text));
        SetThreadUILanguage(LANG_ENGLISH_US);
    }
}

}  // namespace
