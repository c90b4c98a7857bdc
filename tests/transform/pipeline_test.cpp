// CGeoTransform: steps, dispatch by kind, zones, ownership of the states,
// every pair of kinds there and back, and set-up from the host's tags.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include <mapwright/GeoTransform.h>
#include <mapwright/profile.h>
#include <mapwright/resources.h>

#include "testenv.h"

namespace {

using G = GeoCoordTag;
using SP = ScaledProjectionParam;
G& Dest(CGeoTransform& t) { return *static_cast<G*>(t.GetGeoCoordDest()->GetCoord()); }
ProjectionParam* Block(CGeoReferenceData* r) { return static_cast<ProjectionParam*>(r->GetParam()); }
SP* Scaled(CGeoReferenceData* r) { return static_cast<SP*>(r->GetParam()); }
G Conv(CGeoTransform& t, G in) {
    t.SetGeoCoord(&in);
    EXPECT_EQ(1, t.GeoConvert());
    return Dest(t);
}
// `src` to `kind` on WGS 84, the destination's fn set when not 0.
void Link(CGeoTransform& t, int kind, int fn, int src = Geographic) {
    t.SetDatumAndPrSource(src, 3);
    t.SetDatumAndPrDest(kind, 3);
    if (fn) Block(t.GetReferenceDataDest())->fn = fn;
    ASSERT_EQ(1, t.InitGeoParam());
}

// Private copies of the shipped catalogs: 68 datums, 21 ellipsoids; 3 is WGS 84, 4 Pulkovo 1942.
class Pipeline : public ::testing::Test {
protected:
    void TearDown() override { SetThreadUILanguage(LANG_ENGLISH_US); }
    std::string Read(const char* file, int section, const char* key) const {
        char buf[256];
        GetPrivateProfileStringA(("Format " + std::to_string(section)).c_str(), key, "-", buf, sizeof buf, (m_env.catalogDir() + "/" + file).c_str());
        return buf;
    }
    int Sections(const char* file) const {
        int n = 0;
        while (Read(file, n, "Index") != "-" || Read(file, n, "DatumIndex") != "-") ++n;
        return n;
    }
    mwtest::IsolatedEnv m_env;
};

TEST_F(Pipeline, SameKindPassesThroughAndKindsAreNeeded) {
    CGeoTransform t;
    EXPECT_EQ(0, t.GeoConvert());  // kinds 0 after construction
    ASSERT_EQ(1, t.SetGeoParam(Geographic, Geographic, 3, 3));
    G out = Conv(t, {55.75, 37.62, -2e6, 99});  // the height sentinel is kept, no zone
    EXPECT_TRUE(out.north == 55.75 && out.east == 37.62 && out.height == -2e6 && out.zone == 0);
    t.FreeGeoParam();
    Link(t, UTM, 38, UTM);  // UTM to UTM keeps the source zone
    out = Conv(t, {6182000.0, 413000.0, 10.0, 37});
    EXPECT_TRUE(out.north == 6182000 && out.zone == 37);
    t.FreeGeoParam();
    for (int kind : {Geographic, UTM, Mercator, Cartesian}) {
        CGeoTransform k;
        EXPECT_EQ(1, k.SetGeoParam(kind, Geographic, 3, 3)) << kind;
        k.GetReferenceDataSource()->m_nProjection = 0;  // a host cleared the kind
        k.FreeGeoParam();
        EXPECT_EQ(0, k.InitGeoParam()) << kind;
        k.FreeGeoParam();
    }
    CGeoTransform u;
    u.SetDatumAndPrDest(Geographic, 3);  // the source is still unset (-1)
    EXPECT_EQ(1, u.InitGeoParam());
    G before{1, 2, 3, 4};
    u.GetGeoCoordDest()->SetCoord(&before);
    EXPECT_EQ(0, u.GeoConvert());
    EXPECT_EQ(0, std::memcmp(&before, &Dest(u), sizeof before));
    u.FreeGeoParam();
}

TEST_F(Pipeline, UtmZonesAndTheHemisphereFlag) {
    // fn of the destination: 1..60 forced, anything else the longitude's zone.
    const int rows[][3] = {{0, 37, 37}, {0, -1, 30}, {38, 37, 38}, {61, 3, 31}, {-5, 3, 31}, {1, -170, 1}, {60, 170, 60}, {0, -170, 2}, {0, 170, 59}};
    for (auto& r : rows) {
        CGeoTransform t;
        Link(t, UTM, r[0]);
        const G out = Conv(t, {55, r[1] + 0.5, 0, 0});
        EXPECT_EQ(r[2], out.zone) << r[0] << " " << r[1];
        EXPECT_EQ(r[1] + 0.5 > 6.0 * r[2] - 183, out.east > 5e5) << r[0] << " " << r[1];
        t.FreeGeoParam();
    }
    CGeoTransform t;  // forced zone 1 for longitude 100: refused, not a position
    Link(t, UTM, 1);
    G out = Conv(t, {10, 100, 5, 0});
    EXPECT_TRUE(std::isnan(out.north) && std::isnan(out.east) && out.height == 5 && out.zone == 1);
    t.FreeGeoParam();
    t.SetDatumAndPrSource(UTM, 3);
    t.SetDatumAndPrDest(Geographic, 3);
    ProjectionParam* p = Block(t.GetReferenceDataSource());
    p->fe = -1;  // southern: 3000 km south of the equator, about 27.1 S
    p->fn = 31;
    ASSERT_EQ(1, t.InitGeoParam());
    out = Conv(t, {7e6, 5e5, 0, 5});
    EXPECT_EQ(31, static_cast<G*>(t.GetGeoCoordSource()->GetCoord())->zone);
    EXPECT_NEAR(-27.1, out.north, 0.05);
    EXPECT_NEAR(3.0, out.east, 1e-9);
    p->fe = 1;  // read at each conversion
    EXPECT_NEAR(63.1, Conv(t, {7e6, 5e5, 0, 5}).north, 0.1);
    t.FreeGeoParam();
}

TEST_F(Pipeline, ShiftsHeightsAndNonFinitePoints) {
    CGeoTransform t;  // a value difference alone: no move, but the unknown height becomes 0
    t.SetDatumAndPrSource(Geographic, 3);
    t.SetDatumAndPrDest(Geographic, 3);
    t.GetReferenceDataDest()->m_nDatumValues[4] = 1;
    ASSERT_EQ(1, t.InitGeoParam());
    G out = Conv(t, {55, 37, -2e6, 0});
    EXPECT_DOUBLE_EQ(55, out.north);
    EXPECT_DOUBLE_EQ(37, out.east);
    EXPECT_NEAR(0, out.height, 1e-9);
    t.FreeGeoParam();
    t.SetGeoParam(Geographic, Cartesian, 3, 3);  // X is a + h on the equator; the height is used up
    out = Conv(t, {0, 0, 100, 0});
    EXPECT_TRUE(out.north == 6378237.0 && std::fabs(out.height) < 1e-9);
    t.FreeGeoParam();
    t.SetGeoParam(Cartesian, Geographic, 3, 3);  // the Cartesian inverse always gives height 0
    out = Conv(t, {6378137.0, 0, 0, 0});
    EXPECT_TRUE(out.north == 0 && out.height == 0);
    t.FreeGeoParam();
    for (int from = Geographic; from <= Cartesian; ++from) {
        for (int to = Geographic; to <= Cartesian; ++to) {
            ASSERT_EQ(1, t.SetGeoParam(from, to, 4, 3));
            for (double v : {double(NAN), double(INFINITY), -double(INFINITY), 1e300}) {
                out = Conv(t, {v, v, v, 0});  // 1e300 only has to pass the sanitizers
                if (!std::isfinite(v)) { EXPECT_FALSE(std::isfinite(out.north) && std::isfinite(out.east)) << from << to; }
            }
            t.FreeGeoParam();
        }
    }
}

TEST_F(Pipeline, EachKindReadsItsOwnBlockAndStatesBelongToFreeGeoParam) {
    // On the central meridian: easting fe exactly, northing k0 times the
    // arc; Gauss-Kruger at scale 1 whatever its block holds.
    const SP gk{0.5, 39, 0, 7500000, 0}, tm{0.9996, 39, 0, 500000, 0};
    double north[2];
    for (int i = 0; i < 2; ++i) {
        CGeoTransform t;
        t.SetDatumAndPrSource(Geographic, 3);
        t.SetDatumAndPrDest(i ? TransverseMercator : GaussKruger, 3);
        t.GetReferenceDataDest()->SetParam(const_cast<SP*>(i ? &tm : &gk));
        ASSERT_EQ(1, t.InitGeoParam());
        const G out = Conv(t, {55, 39, 0, 0});
        EXPECT_EQ(i ? 500000.0 : 7500000.0, out.east);
        north[i] = out.north;
        t.FreeGeoParam();
    }
    EXPECT_NEAR(north[1] / north[0], 0.9996, 1e-12);
    CGeoTransform t;
    ASSERT_EQ(1, t.SetGeoParam(GaussKruger, Mercator, 4, 3));
    {
        CGeoTransform copy(t);  // shares the states; its destructor frees nothing
        EXPECT_TRUE(std::isfinite(Conv(copy, {6e6, 5e5, 0, 0}).north));
    }
    EXPECT_TRUE(std::isfinite(Conv(t, {6e6, 5e5, 0, 0}).north));
    t.FreeGeoParam();
    t.FreeGeoParam();  // releases nothing the second time
}

TEST_F(Pipeline, SettersSaveAndLoad) {
    CGeoReferenceData host;
    host.CreateGeoInfo(TransverseMercator, 4);
    SP p{0.9996, 39, 0, 500000, 0};
    host.SetParam(&p);
    host.SetDatumName("Renamed by the host");
    CGeoTransform t;
    t.SetReferenceDataSource(&host);  // re-read from the catalog by the index
    t.SetReferenceDataSource(nullptr);
    EXPECT_EQ(TransverseMercator, t.GetGeoCoordSource()->GetProjection());
    EXPECT_STREQ("Pulkovo 1942", t.GetReferenceDataSource()->szDatumName);
    EXPECT_EQ(0, std::memcmp(&p, t.GetReferenceDataSource()->GetParam(), sizeof p));
    t.SetReferenceDataDest(&host);
    EXPECT_TRUE(t.GetGeoCoordDest()->GetProjection() == TransverseMercator && t.GetReferenceDataDest()->GetDatum() == 4);
    t.SetDatumAndPrDest(UTM, 3);
    Block(t.GetReferenceDataDest())->fn = 37;
    ASSERT_EQ(1, t.SaveData("Software\\Host\\Pair"));
    CGeoTransform l;
    ASSERT_EQ(1, l.LoadData("Software\\Host\\Pair"));
    EXPECT_EQ(TransverseMercator, l.GetGeoCoordSource()->GetProjection());
    EXPECT_EQ(0, std::memcmp(&p, l.GetReferenceDataSource()->GetParam(), sizeof p));
    EXPECT_TRUE(l.GetGeoCoordDest()->GetProjection() == UTM && Block(l.GetReferenceDataDest())->fn == 37);
    l.FreeGeoParam();
    CGeoTransform half;  // both sides are attempted; one unsaved side fails the pair
    half.SetDatumAndPrSource(UTM, 3);
    EXPECT_EQ(0, half.SaveData("Software\\Host\\Half"));
    EXPECT_EQ(1, t.SetDefault());
    EXPECT_TRUE(t.GetReferenceDataSource()->GetProjection() == Geographic && t.GetGeoCoordDest()->GetProjection() == Geographic);
    EXPECT_EQ(1, l.LoadData("Software\\Host\\Nothing"));  // defaults: Geographic on WGS 84
    EXPECT_TRUE(l.GetGeoCoordSource()->GetProjection() == Geographic && l.GetReferenceDataDest()->GetDatum() == 3);
    l.FreeGeoParam();
}

// Every pair of systems, a -> b -> a, within 3 degrees of 37 E. One datum:
// the series' 0.78 mm twice; across datums Molodensky is not exactly
// invertible: 3 cm up to 80 degrees, and Cartesian drops the shifted height.
TEST_F(Pipeline, EveryPairComesHome) {
    const struct { int kind; SP p; double lo, hi; } sys[] = {{Geographic, {}, -90, 90}, {UTM, {0, 0, 0, 1, 37}, .01, 84},
        {UTM, {0, 0, 0, -1, 37}, -80, -.01}, {GaussKruger, {1, 39, 0, 7500000, 0}, -84, 84}, {TransverseMercator, {0.9996, 37, 30, 500000, -3000000}, -84, 84},
        {Mercator, {0, 37, 20, 1000000, 0}, -85, 85}, {PolarStereographic, {0, 37, 90, 2000000, 2000000}, 76, 90},
        {PolarStereographic, {0, 37, -71, 2000000, 2000000}, -90, -76}, {Cartesian, {}, -90, 90}};
    auto conv = [](CGeoTransform& t, const auto& a, int da, const auto& b, int db) {
        for (int side = 0; side < 2; ++side) {
            const auto& s = side ? b : a;
            CGeoReferenceData* r = side ? t.GetReferenceDataDest() : t.GetReferenceDataSource();
            r->CreateGeoInfo(s.kind, side ? db : da);
            ProjectionParam q{s.p.c_lon, s.p.lat_origin, s.p.fe, s.p.fn};
            if (s.kind == GaussKruger || s.kind == TransverseMercator) std::memcpy(r->GetParam(), &s.p, sizeof s.p);
            else if (r->GetParam()) std::memcpy(r->GetParam(), &q, sizeof q);
            (side ? t.GetGeoCoordDest() : t.GetGeoCoordSource())->SetProjection(s.kind);
        }
        EXPECT_EQ(1, t.InitGeoParam());
    };
    for (auto [da, db, bound] : {std::tuple{3, 3, 0.002}, {3, 4, 0.032}, {4, 3, 0.032}}) {
        for (const auto& a : sys) {
            for (const auto& b : sys) {
                if (da != db && (a.kind == Cartesian || b.kind == Cartesian)) continue;
                CGeoTransform in, out, there, back;
                conv(in, sys[0], da, a, da), conv(out, a, da, sys[0], da), conv(there, a, da, b, db), conv(back, b, db, a, da);
                for (double lat = -89.5; lat <= 89.5; lat += lat < -88 || lat >= 88 ? 1.5 : 4) {
                    if (lat < std::max(a.lo, b.lo) || lat > std::min(a.hi, b.hi) || (da != db && std::fabs(lat) > 80)) continue;
                    for (double lon = 34; lon <= 40; lon += 1.5) {
                        const G s = Conv(in, {lat, lon, 0, 0}), p = Conv(out, s), q = Conv(out, Conv(back, Conv(there, s)));
                        const double d = std::hypot(p.north - q.north, (p.east - q.east) * std::cos(p.north * M_PI / 180)) * 111320;
                        ASSERT_LE(d, bound) << da << "/" << db << " kinds " << a.kind << "->" << b.kind << " at " << lat << "," << lon;
                    }
                }
                for (auto* t : {&in, &out, &there, &back}) t->FreeGeoParam();
            }
        }
    }
}

ProjectionParamTag Proj(const char* name, double scale, double c_lon, double lat0, int fe, int fn) {
    ProjectionParamTag tag{};
    tag.nHeader0 = 90;
    std::strncpy(tag.szProjName, name, sizeof tag.szProjName - 1);
    tag.scale = scale, tag.c_lon = c_lon, tag.lat_origin = lat0, tag.fe = fe, tag.fn = fn;
    return tag;
}
DatumParamTag Datum(const char* datum, const char* ellipsoid, double aKm, double rf, short dx = 0) {
    DatumParamTag tag{};
    tag.nSize = sizeof tag;
    tag.nFlags = 1;
    std::strncpy(tag.szDatumName, datum, sizeof tag.szDatumName - 1);
    std::strncpy(tag.szEllipsName, ellipsoid, sizeof tag.szEllipsName - 1);
    tag.dSemiMajorKm = aKm, tag.dInvFlattening = rf;
    const short v[6] = {dx, -20, 30, 1, 2, 3};
    std::memcpy(tag.nDatumValues, v, sizeof v);
    return tag;
}

TEST_F(Pipeline, TagsSelectKindsByEnglishNameInEitherLanguage) {
    const char* const names[] = {"Geographic", "UTM", "Gauss-Kruger", "Transverse Mercator", "Mercator", "Polar Stereographic"};
    for (LANGID language : {LANG_ENGLISH_US, LANG_RUSSIAN}) {
        SetThreadUILanguage(language);
        for (int kind = 1; kind <= 6; ++kind) {
            CGeoTransform t;
            ProjectionParamTag tag = Proj(names[kind - 1], 0.9996, 39, 1.5, 500000, 37);
            t.SetProjectionSourceFromTag(&tag);
            t.SetProjectionDestFromTag(&tag);
            EXPECT_TRUE(kind == t.GetReferenceDataSource()->GetProjection() && kind == t.GetGeoCoordSource()->GetProjection() &&
                        kind == t.GetReferenceDataDest()->GetProjection() && kind == t.GetGeoCoordDest()->GetProjection()) << kind;
            EXPECT_EQ(kind == UTM ? 37 : 0, Dest(t).zone);  // zones belong to UTM alone
            if (kind == Geographic) continue;
            SP p{};  // scale first in kinds 3 and 4 only
            const bool scaled = kind == GaussKruger || kind == TransverseMercator;
            std::memcpy(scaled ? static_cast<void*>(&p) : &p.c_lon, t.GetReferenceDataSource()->GetParam(), scaled ? sizeof p : sizeof(ProjectionParam));
            EXPECT_TRUE(p.scale == (scaled ? 0.9996 : 0) && p.c_lon == 39 && p.lat_origin == 1.5 && p.fe == 500000 && p.fn == 37) << kind;
        }
    }
    for (const char* name : {"Decart coordinate system", "utm", "", "Transverse Mercator "}) {
        CGeoTransform t;  // no match: the kind stays, the block is copied by it
        t.SetDatumAndPrSource(Mercator, 3);
        ProjectionParamTag tag = Proj(name, 0.9996, -74, 41, 300000, -20);
        t.SetProjectionSourceFromTag(&tag);
        const ProjectionParam* p = Block(t.GetReferenceDataSource());
        EXPECT_TRUE(t.GetReferenceDataSource()->GetProjection() == Mercator && p->c_lon == -74 && p->fn == -20) << name;
    }
    CGeoTransform t;  // a change of kind gets a block of the new kind
    ProjectionParamTag utm = Proj("UTM", 1, 0, 0, -1, 60), gk = Proj("Gauss-Kruger", 1, 33, 0, 6500000, 0);
    t.SetProjectionSourceFromTag(&utm);
    t.SetProjectionSourceFromTag(&gk);
    const SP* p = Scaled(t.GetReferenceDataSource());
    EXPECT_TRUE(p->scale == 1 && p->c_lon == 33 && p->fe == 6500000);
    EXPECT_EQ(60, static_cast<G*>(t.GetGeoCoordSource()->GetCoord())->zone);  // what the UTM tag set stays
    EXPECT_EQ(-1, t.GetReferenceDataDest()->GetProjection());
    CGeoTransform fresh;  // no kind: no block; unterminated names are read within the field
    ProjectionParamTag tag = Proj("utm", 1, 1, 1, 1, 1);
    std::memset(tag.szProjName, 'M', sizeof tag.szProjName);
    fresh.SetProjectionSourceFromTag(&tag);
    EXPECT_TRUE(fresh.GetReferenceDataSource()->GetProjection() == -1 && fresh.GetReferenceDataSource()->GetParam() == nullptr);
    DatumParamTag datum = Datum("", "", 6378.137, 298.257223563);
    std::memset(datum.szDatumName, 'D', sizeof datum.szDatumName);
    std::memset(datum.szEllipsName, 'E', sizeof datum.szEllipsName);
    fresh.SetDatumDestFromTag(&datum);
    EXPECT_EQ(std::string(49, 'D'), fresh.GetReferenceDataDest()->szDatumName);
    EXPECT_EQ(std::string(49, 'E'), fresh.GetReferenceDataDest()->szEllipsName);
    fresh.SetProjectionSourceFromTag(nullptr), fresh.SetProjectionDestFromTag(nullptr);
    fresh.SetDatumSourceFromTag(nullptr), fresh.SetDatumDestFromTag(nullptr);
    EXPECT_EQ(-1, fresh.GetReferenceDataSource()->GetDatum());
}

TEST_F(Pipeline, TagDatumsKnownOrRegistered) {
    const int datums = Sections("datum.ini"), ellipsoids = Sections("ellips.ini");
    ASSERT_TRUE(datums == 68 && ellipsoids == 21);
    CGeoTransform byIndex, byTag;
    ASSERT_EQ(1, byIndex.SetGeoParam(Geographic, Geographic, 3, 4));
    byTag.SetDatumAndPrSource(Geographic, 3);
    byTag.SetDatumAndPrDest(TransverseMercator, 3);
    DatumParamTag tag{};
    std::strcpy(tag.szDatumName, "Pulkovo 1942");
    ASSERT_EQ(1, byTag.GetReferenceDataDest()->GetDatumParam(&tag));
    byTag.SetDatumDestFromTag(&tag);  // known: found, in metres, nothing appended
    CGeoReferenceData* r = byTag.GetReferenceDataDest();
    EXPECT_TRUE(r->GetDatum() == 4 && r->GetEllipsoid() == 19 && r->m_dGeoInfo[1] == 298.3 && r->m_nDatumValues[1] == -130);
    EXPECT_STREQ("Krassovsky 1940", r->szEllipsName);
    EXPECT_NEAR(6378245.0, r->m_dGeoInfo[0], 2e-9);  // km * 1000: two roundings
    EXPECT_TRUE(r->GetProjection() == TransverseMercator && datums == Sections("datum.ini") && ellipsoids == Sections("ellips.ini"));
    r->SetProjection(Geographic);
    byTag.GetGeoCoordDest()->SetProjection(Geographic);
    ASSERT_EQ(1, byTag.InitGeoParam());
    const G a = Conv(byIndex, {55.7558, 37.6173, 150, 0}), b = Conv(byTag, {55.7558, 37.6173, 150, 0});
    EXPECT_TRUE(std::fabs(a.north - b.north) < 1e-9 && std::fabs(a.east - b.east) < 1e-9);
    EXPECT_GT(std::fabs(a.north - 55.7558) + std::fabs(a.east - 37.6173), 1e-4);  // the shift ran
    byIndex.FreeGeoParam(), byTag.FreeGeoParam();
    CGeoTransform t;
    t.SetDatumAndPrSource(UTM, 3);
    DatumParamTag first = Datum("Test Datum", "Test Ellipsoid", 6378.25, 300, 10);
    t.SetDatumSourceFromTag(&first);  // new: registered at the first free section
    r = t.GetReferenceDataSource();
    EXPECT_TRUE(r->GetDatum() == datums + 1 && r->GetEllipsoid() == ellipsoids + 1 && r->GetProjection() == UTM);
    EXPECT_TRUE(r->m_dGeoInfo[0] == 6378250 && r->m_dGeoInfo[1] == 300 && r->m_nDatumValues[0] == 10 && r->m_nDatumValues[5] == 3);
    // The entries are written before the tag's values are taken: they carry what the system held, in metres.
    EXPECT_EQ("Test Ellipsoid", Read("ellips.ini", ellipsoids, "EllipsName"));
    EXPECT_EQ(6378137.0, std::stod(Read("ellips.ini", ellipsoids, "ellipsParam_0")));
    EXPECT_EQ("Test Datum", Read("datum.ini", datums, "DatumName"));
    EXPECT_EQ(std::to_string(ellipsoids + 1), Read("datum.ini", datums, "EllipsoidIndex"));
    DatumParamTag second = Datum("Second Datum", "Second Ellipsoid", 6377.5, 299);
    t.SetDatumSourceFromTag(&second);
    EXPECT_EQ(6378250.0, std::stod(Read("ellips.ini", ellipsoids + 1, "ellipsParam_0")));
    EXPECT_EQ("10", Read("datum.ini", datums + 1, "datumParam_0_0"));
    EXPECT_EQ(6377500.0, r->m_dGeoInfo[0]);
    t.SetDatumDestFromTag(&first);  // found by name, not appended twice
    EXPECT_TRUE(t.GetReferenceDataDest()->GetDatum() == datums + 1 && t.GetReferenceDataDest()->GetEllipsoid() == ellipsoids + 1);
    EXPECT_TRUE(Sections("datum.ini") == datums + 2 && Sections("ellips.ini") == ellipsoids + 2);
}

}  // namespace
