// CGeoTransform set up from the host's records: projections chosen by their
// English names, datums handed over with the axis in kilometres, registered
// in the catalogs when they are new.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
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

DatumParamTag DatumTag(const char* datum, const char* ellipsoid, double aKm, double rf, short dx = 0) {
    DatumParamTag tag{};
    tag.nSize = sizeof tag;
    tag.nFlags = 1;
    std::strncpy(tag.szDatumName, datum, sizeof tag.szDatumName - 1);
    std::strncpy(tag.szEllipsName, ellipsoid, sizeof tag.szEllipsName - 1);
    tag.dSemiMajorKm = aKm;
    tag.dInvFlattening = rf;
    const short v[6] = {dx, -20, 30, 1, 2, 3};
    std::memcpy(tag.nDatumValues, v, sizeof v);
    return tag;
}

ScaledProjectionParam Scaled(CGeoReferenceData* r) {
    ScaledProjectionParam p{};
    if (r->GetParam()) std::memcpy(&p, r->GetParam(), sizeof p);
    return p;
}
int Zone(CGeoCoord* c) { return static_cast<const GeoCoordTag*>(c->GetCoord())->zone; }

// Private copies of the shipped catalogs: 68 datums, 21 ellipsoids.
class Tags : public ::testing::Test {
protected:
    void TearDown() override { SetThreadUILanguage(LANG_ENGLISH_US); }
    std::string Read(const char* file, int section, const char* key) const {
        char buf[256];
        GetPrivateProfileStringA(("Format " + std::to_string(section)).c_str(), key, "<missing>", buf, sizeof buf,
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
        SetThreadUILanguage(language);
        for (int kind = 1; kind <= 6; ++kind) {
            CGeoTransform t;
            ProjectionParamTag tag = ProjTag(names[kind - 1], 0.9996, 39.0, 1.5, 500000, 37);
            t.SetProjectionSourceFromTag(&tag);
            t.SetProjectionDestFromTag(&tag);
            EXPECT_EQ(kind, t.GetReferenceDataSource()->GetProjection()) << names[kind - 1];
            EXPECT_EQ(kind, t.GetGeoCoordSource()->GetProjection());
            EXPECT_EQ(kind, t.GetReferenceDataDest()->GetProjection());
            EXPECT_EQ(kind, t.GetGeoCoordDest()->GetProjection());
            EXPECT_EQ(kind == UTM ? 37 : 0, Zone(t.GetGeoCoordDest()));  // zones belong to UTM alone
            if (kind == Geographic) continue;
            ScaledProjectionParam p{};  // the block of the kind: scale first in 3 and 4 only
            const bool scaled = kind == GaussKruger || kind == TransverseMercator;
            if (scaled) p = Scaled(t.GetReferenceDataSource());
            else std::memcpy(&p.c_lon, t.GetReferenceDataSource()->GetParam(), sizeof(ProjectionParam));
            EXPECT_EQ(scaled ? 0.9996 : 0.0, p.scale);
            EXPECT_EQ(39.0, p.c_lon);
            EXPECT_EQ(1.5, p.lat_origin);
            EXPECT_EQ(500000, p.fe);
            EXPECT_EQ(37, p.fn);
        }
    }
}

TEST_F(Tags, NamesThatMatchNothingKeepTheKindButNotTheParameters) {
    for (const char* name : {"Decart coordinate system", "utm", "", "Transverse Mercator "}) {
        CGeoTransform t;
        t.SetDatumAndPrSource(Mercator, 3);
        ProjectionParamTag tag = ProjTag(name, 0.9996, -74.0, 41.0, 300000, -20);
        t.SetProjectionSourceFromTag(&tag);
        EXPECT_EQ(Mercator, t.GetReferenceDataSource()->GetProjection()) << name;
        const ProjectionParam* p = static_cast<ProjectionParam*>(t.GetReferenceDataSource()->GetParam());
        EXPECT_EQ(-74.0, p->c_lon) << name;  // copied by the current kind: no scale
        EXPECT_EQ(-20, p->fn) << name;
    }
    CGeoTransform fresh;  // no kind: no block to copy into
    ProjectionParamTag tag = ProjTag("utm", 1.0, 1.0, 1.0, 1, 1);
    std::memset(tag.szProjName, 'M', sizeof tag.szProjName);  // unterminated: read within the field
    fresh.SetProjectionSourceFromTag(&tag);
    EXPECT_EQ(-1, fresh.GetReferenceDataSource()->GetProjection());
    EXPECT_EQ(nullptr, fresh.GetReferenceDataSource()->GetParam());
    DatumParamTag datum = DatumTag("", "", 6378.137, 298.257223563);
    std::memset(datum.szDatumName, 'D', sizeof datum.szDatumName);
    std::memset(datum.szEllipsName, 'E', sizeof datum.szEllipsName);
    fresh.SetDatumDestFromTag(&datum);
    EXPECT_EQ(std::string(49, 'D'), fresh.GetReferenceDataDest()->szDatumName);
    EXPECT_EQ(std::string(49, 'E'), fresh.GetReferenceDataDest()->szEllipsName);
    fresh.SetProjectionSourceFromTag(nullptr);
    fresh.SetProjectionDestFromTag(nullptr);
    fresh.SetDatumSourceFromTag(nullptr);
    fresh.SetDatumDestFromTag(nullptr);
    EXPECT_EQ(-1, fresh.GetReferenceDataSource()->GetDatum());
}

TEST_F(Tags, AChangeOfKindGetsABlockOfTheNewKind) {
    CGeoTransform t;
    ProjectionParamTag utm = ProjTag("UTM", 1.0, 0.0, 0.0, -1, 60);
    t.SetProjectionSourceFromTag(&utm);
    ProjectionParamTag gk = ProjTag("Gauss-Kruger", 1.0, 33.0, 0.0, 6500000, 0);
    t.SetProjectionSourceFromTag(&gk);  // the 32-byte block, scale first
    const ScaledProjectionParam p = Scaled(t.GetReferenceDataSource());
    EXPECT_EQ(1.0, p.scale);
    EXPECT_EQ(33.0, p.c_lon);
    EXPECT_EQ(6500000, p.fe);
    EXPECT_EQ(60, Zone(t.GetGeoCoordSource()));  // what the UTM tag set stays
    EXPECT_EQ(-1, t.GetReferenceDataDest()->GetProjection());  // the other side untouched
}

TEST_F(Tags, AKnownDatumComesBackInMetresAndConvertsAsTheCatalogsDoes) {
    CGeoTransform byIndex, byTag;
    ASSERT_EQ(1, byIndex.SetGeoParam(Geographic, Geographic, 3, 4));
    byTag.SetDatumAndPrSource(Geographic, 3);
    byTag.SetDatumAndPrDest(TransverseMercator, 3);
    DatumParamTag tag{};
    std::strcpy(tag.szDatumName, "Pulkovo 1942");
    ASSERT_EQ(1, byTag.GetReferenceDataDest()->GetDatumParam(&tag));
    const int datums = Sections("datum.ini"), ellipsoids = Sections("ellips.ini");
    byTag.SetDatumDestFromTag(&tag);
    CGeoReferenceData* r = byTag.GetReferenceDataDest();
    EXPECT_EQ(4, r->GetDatum());
    EXPECT_EQ(19, r->GetEllipsoid());
    EXPECT_STREQ("Krassovsky 1940", r->szEllipsName);
    EXPECT_NEAR(6378245.0, r->m_dGeoInfo[0], 2e-9);  // km * 1000: two roundings of half an ulp
    EXPECT_EQ(298.3, r->m_dGeoInfo[1]);
    EXPECT_EQ(-130, r->m_nDatumValues[1]);
    EXPECT_EQ(TransverseMercator, r->GetProjection());
    EXPECT_EQ(datums, Sections("datum.ini"));  // nothing appended
    EXPECT_EQ(ellipsoids, Sections("ellips.ini"));
    r->SetProjection(Geographic);
    byTag.GetGeoCoordDest()->SetProjection(Geographic);
    ASSERT_EQ(1, byTag.InitGeoParam());
    GeoCoordTag moscow{55.7558, 37.6173, 150.0, 0};
    byIndex.SetGeoCoord(&moscow);
    byTag.SetGeoCoord(&moscow);
    ASSERT_EQ(1, byIndex.GeoConvert());
    ASSERT_EQ(1, byTag.GeoConvert());
    const auto& a = *static_cast<const GeoCoordTag*>(byIndex.GetGeoCoordDest()->GetCoord());
    const auto& b = *static_cast<const GeoCoordTag*>(byTag.GetGeoCoordDest()->GetCoord());
    EXPECT_NEAR(a.north, b.north, 1e-9);  // the same formulas: to the last bits
    EXPECT_NEAR(a.east, b.east, 1e-9);
    EXPECT_GT(std::fabs(a.north - moscow.north) + std::fabs(a.east - moscow.east), 1e-4);  // the shift ran
    byIndex.FreeGeoParam();
    byTag.FreeGeoParam();
}

TEST_F(Tags, ANewDatumIsRegisteredAndTheSystemHoldsMetres) {
    CGeoTransform t;
    t.SetDatumAndPrSource(UTM, 3);  // WGS 84 until now
    const int datums = Sections("datum.ini"), ellipsoids = Sections("ellips.ini");
    ASSERT_EQ(68, datums);
    ASSERT_EQ(21, ellipsoids);
    DatumParamTag first = DatumTag("Test Datum", "Test Ellipsoid", 6378.25, 300.0, 10);
    t.SetDatumSourceFromTag(&first);
    CGeoReferenceData* r = t.GetReferenceDataSource();
    EXPECT_EQ(datums + 1, r->GetDatum());  // the first free section and the index after it
    EXPECT_EQ(ellipsoids + 1, r->GetEllipsoid());
    EXPECT_EQ(6378250.0, r->m_dGeoInfo[0]);
    EXPECT_EQ(300.0, r->m_dGeoInfo[1]);
    EXPECT_EQ(10, r->m_nDatumValues[0]);
    EXPECT_EQ(3, r->m_nDatumValues[5]);
    EXPECT_EQ(UTM, r->GetProjection());
    // The entries are written before the tag's values are taken: they carry
    // what the system held, WGS 84 in metres.
    EXPECT_EQ("Test Ellipsoid", Read("ellips.ini", ellipsoids, "EllipsName"));
    EXPECT_EQ(6378137.0, std::stod(Read("ellips.ini", ellipsoids, "ellipsParam_0")));
    EXPECT_EQ("Test Datum", Read("datum.ini", datums, "DatumName"));
    EXPECT_EQ(std::to_string(ellipsoids + 1), Read("datum.ini", datums, "EllipsoidIndex"));
    DatumParamTag second = DatumTag("Second Datum", "Second Ellipsoid", 6377.5, 299.0);
    t.SetDatumSourceFromTag(&second);  // carries the first tag's values, in metres
    EXPECT_EQ(6378250.0, std::stod(Read("ellips.ini", ellipsoids + 1, "ellipsParam_0")));
    EXPECT_EQ("10", Read("datum.ini", datums + 1, "datumParam_0_0"));
    EXPECT_EQ(6377500.0, r->m_dGeoInfo[0]);
    t.SetDatumDestFromTag(&first);  // found by name, not appended twice
    EXPECT_EQ(datums + 1, t.GetReferenceDataDest()->GetDatum());
    EXPECT_EQ(ellipsoids + 1, t.GetReferenceDataDest()->GetEllipsoid());
    EXPECT_EQ(datums + 2, Sections("datum.ini"));
    EXPECT_EQ(ellipsoids + 2, Sections("ellips.ini"));
}

}  // namespace
