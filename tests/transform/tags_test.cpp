// CGeoTransform set up from the host's records: projections chosen by their
// English names, and datums handed over with the semi-major axis in
// kilometres, registered in the catalogs when they are new.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <initializer_list>
#include <string>

#include <mapwright/GeoTransform.h>
#include <mapwright/profile.h>
#include <mapwright/resources.h>

#include "testenv.h"

namespace {

ProjectionParamTag ProjTag(const char* name, double scale, double c_lon, double lat_origin, int fe, int fn) {
    ProjectionParamTag tag{};
    tag.nHeader0 = 90;
    std::strncpy(tag.szProjName, name, sizeof tag.szProjName - 1);
    tag.scale = scale;
    tag.c_lon = c_lon;
    tag.lat_origin = lat_origin;
    tag.fe = fe;
    tag.fn = fn;
    return tag;
}

DatumParamTag DatumTag(const char* datum, const char* ellipsoid, double aKm, double rf,
                       std::initializer_list<short> values) {
    DatumParamTag tag{};
    tag.nSize = sizeof tag;
    tag.nFlags = 1;
    std::strncpy(tag.szDatumName, datum, sizeof tag.szDatumName - 1);
    std::strncpy(tag.szEllipsName, ellipsoid, sizeof tag.szEllipsName - 1);
    tag.dSemiMajorKm = aKm;
    tag.dInvFlattening = rf;
    short v[6] = {};
    std::copy(values.begin(), values.end(), v);
    std::memcpy(tag.nDatumValues, v, sizeof v);
    return tag;
}

// The system's block; a system without one reads as all zero (and fails the
// kind checks made before).
ScaledProjectionParam Scaled(CGeoReferenceData* r) {
    ScaledProjectionParam p{};
    if (r->GetParam()) std::memcpy(&p, r->GetParam(), sizeof p);
    return p;
}

ProjectionParam Plain(CGeoReferenceData* r) {
    ProjectionParam p{};
    if (r->GetParam()) std::memcpy(&p, r->GetParam(), sizeof p);
    return p;
}

const GeoCoordTag& Coord(CGeoCoord* c) { return *static_cast<const GeoCoordTag*>(c->GetCoord()); }

// Private copies of the shipped catalogs: datum 3 is WGS 84 (ellipsoid 5),
// datum 4 Pulkovo 1942 on Krassovsky 1940 (ellipsoid 19); 68 datums and 21
// ellipsoids.
class Tags : public ::testing::Test {
protected:
    void TearDown() override { SetThreadUILanguage(LANG_ENGLISH_US); }

    std::string Read(const char* file, int section, const char* key) const {
        char buf[256];
        const std::string s = "Format " + std::to_string(section);
        GetPrivateProfileStringA(s.c_str(), key, "<missing>", buf, sizeof buf,
                                 (m_env.catalogDir() + "/" + file).c_str());
        return buf;
    }
    int Sections(const char* file) const {
        int n = 0;
        while (Read(file, n, "Index") != "<missing>" || Read(file, n, "DatumIndex") != "<missing>") ++n;
        return n;
    }

    mwtest::IsolatedEnv m_env;
};

TEST_F(Tags, EachEnglishNameSelectsItsKindInEitherLanguage) {
    const char* const names[] = {"Geographic", "UTM", "Gauss-Kruger", "Transverse Mercator", "Mercator",
                                 "Polar Stereographic"};
    for (LANGID language : {LANG_ENGLISH_US, LANG_RUSSIAN}) {
        SetThreadUILanguage(language);  // the English names are in both tables
        for (int kind = 1; kind <= 6; ++kind) {
            SCOPED_TRACE(std::string(names[kind - 1]) + ", language " + std::to_string(language));
            CGeoTransform t;
            ProjectionParamTag tag = ProjTag(names[kind - 1], 1.0, 0.0, 0.0, 0, 0);
            t.SetProjectionSourceFromTag(&tag);
            t.SetProjectionDestFromTag(&tag);
            EXPECT_EQ(kind, t.GetReferenceDataSource()->GetProjection());
            EXPECT_EQ(kind, t.GetGeoCoordSource()->GetProjection());
            EXPECT_EQ(kind, t.GetReferenceDataDest()->GetProjection());
            EXPECT_EQ(kind, t.GetGeoCoordDest()->GetProjection());
        }
    }
}

TEST_F(Tags, TransverseMercatorTakesExactlyTheTagsParameters) {
    CGeoTransform t;
    ProjectionParamTag tag = ProjTag("Transverse Mercator", 0.9996, 39.0, 0.0, 500000, 0);
    t.SetProjectionSourceFromTag(&tag);
    EXPECT_EQ(TransverseMercator, t.GetReferenceDataSource()->GetProjection());
    EXPECT_EQ(TransverseMercator, t.GetGeoCoordSource()->GetProjection());
    const ScaledProjectionParam p = Scaled(t.GetReferenceDataSource());
    EXPECT_EQ(0.9996, p.scale);
    EXPECT_EQ(39.0, p.c_lon);
    EXPECT_EQ(0.0, p.lat_origin);
    EXPECT_EQ(500000, p.fe);
    EXPECT_EQ(0, p.fn);
    EXPECT_EQ(-1, t.GetReferenceDataDest()->GetProjection());  // the other side is untouched
}

TEST_F(Tags, UtmSetsTheZoneOfTheCoordinate) {
    CGeoTransform t;
    ProjectionParamTag tag = ProjTag("UTM", 0.5, 10.0, 20.0, 1, 37);
    t.SetProjectionDestFromTag(&tag);
    EXPECT_EQ(UTM, t.GetReferenceDataDest()->GetProjection());
    const ProjectionParam p = Plain(t.GetReferenceDataDest());
    EXPECT_EQ(10.0, p.c_lon);
    EXPECT_EQ(20.0, p.lat_origin);
    EXPECT_EQ(1, p.fe);
    EXPECT_EQ(37, p.fn);
    EXPECT_EQ(37, Coord(t.GetGeoCoordDest()).zone);
    EXPECT_EQ(0, Coord(t.GetGeoCoordSource()).zone);
}

TEST_F(Tags, NamesThatMatchNothingKeepTheKindButNotTheParameters) {
    struct Case {
        const char* name;
        const char* why;
    };
    const Case cases[] = {
        {"Decart coordinate system", "the Cartesian kind cannot come from a tag"},
        {"utm", "names are compared case-sensitively"},
        {"", "an empty name"},
        {"Transverse Mercator ", "a trailing blank"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        CGeoTransform t;
        t.SetDatumAndPrSource(Mercator, 3);
        ProjectionParamTag tag = ProjTag(c.name, 0.9996, -74.0, 41.0, 300000, -20);
        t.SetProjectionSourceFromTag(&tag);
        EXPECT_EQ(Mercator, t.GetReferenceDataSource()->GetProjection());
        EXPECT_EQ(Mercator, t.GetGeoCoordSource()->GetProjection());
        // Copied by the current kind: the Mercator block has no scale.
        const ProjectionParam p = Plain(t.GetReferenceDataSource());
        EXPECT_EQ(-74.0, p.c_lon);
        EXPECT_EQ(41.0, p.lat_origin);
        EXPECT_EQ(300000, p.fe);
        EXPECT_EQ(-20, p.fn);
        EXPECT_EQ(0, Coord(t.GetGeoCoordSource()).zone);  // zones belong to UTM alone
    }

    // A system with no kind has no block to copy into.
    CGeoTransform fresh;
    ProjectionParamTag tag = ProjTag("utm", 1.0, 1.0, 1.0, 1, 1);
    fresh.SetProjectionSourceFromTag(&tag);
    EXPECT_EQ(-1, fresh.GetReferenceDataSource()->GetProjection());
    EXPECT_EQ(nullptr, fresh.GetReferenceDataSource()->GetParam());
    EXPECT_EQ(0, fresh.GetGeoCoordSource()->GetProjection());
}

TEST_F(Tags, AnUnterminatedNameIsReadWithinItsField) {
    CGeoTransform t;
    ProjectionParamTag tag = ProjTag("", 1.0, 0.0, 0.0, 0, 0);
    std::memset(tag.szProjName, 'M', sizeof tag.szProjName);  // no NUL; AddressSanitizer watches the reads
    t.SetProjectionSourceFromTag(&tag);
    EXPECT_EQ(-1, t.GetReferenceDataSource()->GetProjection());

    DatumParamTag datum = DatumTag("", "", 6378.137, 298.257223563, {});
    std::memset(datum.szDatumName, 'D', sizeof datum.szDatumName);
    std::memset(datum.szEllipsName, 'E', sizeof datum.szEllipsName);
    t.SetDatumDestFromTag(&datum);
    EXPECT_EQ(std::string(49, 'D'), t.GetReferenceDataDest()->szDatumName);
    EXPECT_EQ(std::string(49, 'E'), t.GetReferenceDataDest()->szEllipsName);
}

TEST_F(Tags, AChangeOfKindGetsABlockOfTheNewKind) {
    CGeoTransform t;
    ProjectionParamTag utm = ProjTag("UTM", 1.0, 0.0, 0.0, -1, 60);
    t.SetProjectionSourceFromTag(&utm);
    ProjectionParamTag gk = ProjTag("Gauss-Kruger", 1.0, 33.0, 0.0, 6500000, 0);
    t.SetProjectionSourceFromTag(&gk);  // the 32-byte block, scale first
    EXPECT_EQ(GaussKruger, t.GetReferenceDataSource()->GetProjection());
    const ScaledProjectionParam p = Scaled(t.GetReferenceDataSource());
    EXPECT_EQ(1.0, p.scale);
    EXPECT_EQ(33.0, p.c_lon);
    EXPECT_EQ(6500000, p.fe);
    EXPECT_EQ(60, Coord(t.GetGeoCoordSource()).zone);  // what the UTM tag set stays
}

TEST_F(Tags, AKnownDatumComesBackInMetres) {
    // The host reads the tag from the catalog (kilometres) and hands it back.
    CGeoTransform t;
    t.SetDatumAndPrDest(TransverseMercator, 3);
    DatumParamTag tag{};
    tag.nSize = sizeof tag;
    tag.nFlags = 1;
    std::strcpy(tag.szDatumName, "Pulkovo 1942");
    ASSERT_EQ(1, t.GetReferenceDataDest()->GetDatumParam(&tag));
    const int datums = Sections("datum.ini"), ellipsoids = Sections("ellips.ini");

    t.SetDatumDestFromTag(&tag);
    CGeoReferenceData* r = t.GetReferenceDataDest();
    EXPECT_EQ(4, r->GetDatum());
    EXPECT_EQ(19, r->GetEllipsoid());
    EXPECT_STREQ("Pulkovo 1942", r->szDatumName);
    EXPECT_STREQ("Krassovsky 1940", r->szEllipsName);
    // 6378245 m / 1000 * 1000: two roundings of half an ulp (4.7e-10 m at this size) each.
    EXPECT_NEAR(6378245.0, r->m_dGeoInfo[0], 2e-9);
    EXPECT_EQ(298.3, r->m_dGeoInfo[1]);
    const short expected[6] = {28, -130, -95, 0, 0, 0};
    EXPECT_EQ(0, std::memcmp(expected, r->m_nDatumValues, sizeof expected));
    EXPECT_EQ(TransverseMercator, r->GetProjection());  // the projection part is not touched
    EXPECT_EQ(datums, Sections("datum.ini"));           // nothing appended
    EXPECT_EQ(ellipsoids, Sections("ellips.ini"));
}

TEST_F(Tags, ATaggedDatumConvertsAsTheCatalogsDatumDoes) {
    // The same conversion with Pulkovo 1942 from the catalog and from a tag:
    // had the kilometres reached the system, the tagged ellipsoid would be a
    // thousand times too small and the point nowhere near. Both sides run the
    // same formulas, so they agree to the last bits (1e-9 degrees is 0.1 mm).
    CGeoTransform byIndex, byTag;
    ASSERT_EQ(1, byIndex.SetGeoParam(Geographic, Geographic, 3, 4));
    byTag.SetDatumAndPrSource(Geographic, 3);
    byTag.SetDatumAndPrDest(Geographic, 3);
    DatumParamTag tag{};
    std::strcpy(tag.szDatumName, "Pulkovo 1942");
    ASSERT_EQ(1, byTag.GetReferenceDataDest()->GetDatumParam(&tag));
    byTag.SetDatumDestFromTag(&tag);
    ASSERT_EQ(1, byTag.InitGeoParam());

    GeoCoordTag moscow{55.7558, 37.6173, 150.0, 0};
    byIndex.SetGeoCoord(&moscow);
    byTag.SetGeoCoord(&moscow);
    ASSERT_EQ(1, byIndex.GeoConvert());
    ASSERT_EQ(1, byTag.GeoConvert());
    const GeoCoordTag& a = Coord(byIndex.GetGeoCoordDest());
    const GeoCoordTag& b = Coord(byTag.GetGeoCoordDest());
    EXPECT_NEAR(a.north, b.north, 1e-9);
    EXPECT_NEAR(a.east, b.east, 1e-9);
    EXPECT_NEAR(a.height, b.height, 1e-6);
    // And the shift really ran: Pulkovo 1942 is offset from WGS 84 by about
    // 100 m in Moscow, well over 1e-4 degrees.
    EXPECT_GT(std::fabs(a.north - moscow.north) + std::fabs(a.east - moscow.east), 1e-4);
    byIndex.FreeGeoParam();
    byTag.FreeGeoParam();
}

TEST_F(Tags, ANewDatumIsRegisteredAndTheSystemHoldsMetres) {
    CGeoTransform t;
    t.SetDatumAndPrSource(UTM, 3);  // WGS 84 until now
    const int datums = Sections("datum.ini"), ellipsoids = Sections("ellips.ini");
    ASSERT_EQ(68, datums);
    ASSERT_EQ(21, ellipsoids);

    DatumParamTag first = DatumTag("Test Datum", "Test Ellipsoid", 6378.25, 300.0, {10, -20, 30, 1, 2, 3});
    t.SetDatumSourceFromTag(&first);
    CGeoReferenceData* r = t.GetReferenceDataSource();
    // The new entries take the first free section and the index after it.
    EXPECT_EQ(datums + 1, r->GetDatum());
    EXPECT_EQ(ellipsoids + 1, r->GetEllipsoid());
    EXPECT_EQ(6378250.0, r->m_dGeoInfo[0]);  // 6378.25 km, exact in binary
    EXPECT_EQ(300.0, r->m_dGeoInfo[1]);
    const short firstValues[6] = {10, -20, 30, 1, 2, 3};
    EXPECT_EQ(0, std::memcmp(firstValues, r->m_nDatumValues, sizeof firstValues));
    EXPECT_EQ(UTM, r->GetProjection());

    // The entries are written before the tag's values are taken, so they
    // carry what the system held: WGS 84 in metres.
    EXPECT_EQ("Test Ellipsoid", Read("ellips.ini", ellipsoids, "EllipsName"));
    EXPECT_EQ(std::to_string(ellipsoids + 1), Read("ellips.ini", ellipsoids, "Index"));
    EXPECT_EQ(6378137.0, std::stod(Read("ellips.ini", ellipsoids, "ellipsParam_0")));
    EXPECT_EQ("Test Datum", Read("datum.ini", datums, "DatumName"));
    EXPECT_EQ(std::to_string(datums + 1), Read("datum.ini", datums, "DatumIndex"));
    EXPECT_EQ(std::to_string(ellipsoids + 1), Read("datum.ini", datums, "EllipsoidIndex"));

    // A second new datum right after: its entries carry the first tag's
    // values, and the axis arrives in the catalog in metres, never in kilometres.
    DatumParamTag second = DatumTag("Second Datum", "Second Ellipsoid", 6377.5, 299.0, {});
    t.SetDatumSourceFromTag(&second);
    EXPECT_EQ(6378250.0, std::stod(Read("ellips.ini", ellipsoids + 1, "ellipsParam_0")));
    EXPECT_EQ(300.0, std::stod(Read("ellips.ini", ellipsoids + 1, "ellipsParam_1")));
    EXPECT_EQ("10", Read("datum.ini", datums + 1, "datumParam_0_0"));
    EXPECT_EQ("-20", Read("datum.ini", datums + 1, "datumParam_0_1"));
    EXPECT_EQ(6377500.0, r->m_dGeoInfo[0]);

    // The first datum handed over again is found by name, not appended twice.
    t.SetDatumDestFromTag(&first);
    EXPECT_EQ(datums + 1, t.GetReferenceDataDest()->GetDatum());
    EXPECT_EQ(ellipsoids + 1, t.GetReferenceDataDest()->GetEllipsoid());
    EXPECT_EQ(datums + 2, Sections("datum.ini"));
    EXPECT_EQ(ellipsoids + 2, Sections("ellips.ini"));
}

TEST_F(Tags, NullTagsChangeNothing) {
    CGeoTransform t;
    t.SetDatumAndPrSource(UTM, 3);
    t.SetProjectionSourceFromTag(nullptr);
    t.SetProjectionDestFromTag(nullptr);
    t.SetDatumSourceFromTag(nullptr);
    t.SetDatumDestFromTag(nullptr);
    EXPECT_EQ(UTM, t.GetReferenceDataSource()->GetProjection());
    EXPECT_EQ(3, t.GetReferenceDataSource()->GetDatum());
    EXPECT_EQ(-1, t.GetReferenceDataDest()->GetProjection());
}

}  // namespace
