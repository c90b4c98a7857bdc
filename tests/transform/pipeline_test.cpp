// CGeoTransform: steps, zones, states, every pair of kinds, the host's tags.
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
using T = CGeoTransform;
G& Dest(T& t) { return *static_cast<G*>(t.GetGeoCoordDest()->GetCoord()); }
ProjectionParam* Block(CGeoReferenceData* r) { return static_cast<ProjectionParam*>(r->GetParam()); }
G Conv(T& t, G in) {
    t.SetGeoCoord(&in);
    EXPECT_EQ(1, t.GeoConvert());
    return Dest(t);
}
// src on datum sd to dst on WGS 84, the destination's fn set when not 0.
void Link(T& t, int src, int dst, int fn = 0, int sd = 3) {
    t.SetDatumAndPrSource(src, sd);
    t.SetDatumAndPrDest(dst, 3);
    if (ProjectionParam* b = Block(t.GetReferenceDataDest())) b->fn = fn;
}

// Copies of the shipped catalogs: 3 is WGS 84, 4 Pulkovo 1942.
class Pipeline : public ::testing::Test {
protected:
    std::string Read(const char* file, int section, const char* key) const {
        char b[256];
        GetPrivateProfileStringA(("Format " + std::to_string(section)).c_str(), key, "-", b, sizeof b, (m_env.catalogDir() + "/" + file).c_str());
        return b;
    }
    int Sections(const char* file) const {
        int n = 0;
        while (Read(file, n, "Index") != "-" || Read(file, n, "DatumIndex") != "-") ++n;
        return n;
    }
    mwtest::IsolatedEnv m_env;
};

TEST_F(Pipeline, StepsZonesAndHeights) {
    T t;
    EXPECT_EQ(0, t.GeoConvert());  // kinds 0 after construction
    Link(t, Geographic, Geographic);
    t.GetReferenceDataDest()->m_nDatumValues[4] = 1;  // values differ: no move, the unknown height becomes 0
    ASSERT_EQ(1, t.InitGeoParam());
    G o = Conv(t, {55, 37, -2e6, 99});
    EXPECT_TRUE(std::fabs(o.north - 55) < 1e-13 && std::fabs(o.east - 37) < 1e-13 && std::fabs(o.height) < 1e-9 && o.zone == 0);
    t.FreeGeoParam();
    Link(t, UTM, UTM, 38);  // UTM to UTM keeps the source zone
    t.InitGeoParam();
    o = Conv(t, {6182000, 413000, 10, 37});
    EXPECT_TRUE(o.north == 6182000 && o.zone == 37);
    t.FreeGeoParam();
    // fn of the destination: 1..60 forced, anything else the longitude's zone.
    for (auto [fn, lon, zone] : {std::tuple{0, 37, 37}, {38, 37, 38}, {61, 3, 31}, {-5, 3, 31}, {1, -170, 1}, {60, 170, 60}}) {
        Link(t, Geographic, UTM, fn);
        t.InitGeoParam();
        o = Conv(t, {55, lon + 0.5, 0, 0});
        EXPECT_TRUE(o.zone == zone && (lon + 0.5 > 6.0 * zone - 183) == (o.east > 5e5)) << fn << " " << lon;
        t.FreeGeoParam();
    }
    Link(t, Geographic, UTM, 1);  // forced zone 1 for longitude 100: refused
    t.InitGeoParam();
    o = Conv(t, {10, 100, 5, 0});
    EXPECT_TRUE(std::isnan(o.north) && std::isnan(o.east) && o.height == 5 && o.zone == 1);
    t.FreeGeoParam();
    Link(t, UTM, Geographic);
    ProjectionParam* p = Block(t.GetReferenceDataSource());
    p->fe = -1, p->fn = 31;  // southern: 3000 km south of the equator, about 27.1 S
    ASSERT_EQ(1, t.InitGeoParam());
    o = Conv(t, {7e6, 5e5, 0, 5});
    EXPECT_TRUE(static_cast<G*>(t.GetGeoCoordSource()->GetCoord())->zone == 31 && std::fabs(o.north + 27.1) < 0.05 && std::fabs(o.east - 3) < 1e-9);
    p->fe = 1;  // read at each conversion
    EXPECT_NEAR(63.1, Conv(t, {7e6, 5e5, 0, 5}).north, 0.1);
    t.FreeGeoParam();
    t.SetGeoParam(Geographic, Cartesian, 3, 3);  // X is a + h on the equator; the height is used up
    o = Conv(t, {0, 0, 100, 0});
    EXPECT_TRUE(o.north == 6378237.0 && std::fabs(o.height) < 1e-9);
    t.FreeGeoParam();
    t.SetGeoParam(Cartesian, Geographic, 3, 3);  // the Cartesian inverse always gives height 0
    o = Conv(t, {6378137, 0, 0, 0});
    EXPECT_TRUE(o.north == 0 && o.height == 0);
    t.FreeGeoParam();
    for (int from = Geographic; from <= Cartesian; ++from) {
        for (int to = Geographic; to <= Cartesian; ++to) {
            ASSERT_EQ(1, t.SetGeoParam(from, to, 4, 3));
            for (double v : {double(NAN), double(INFINITY), 1e300}) {
                o = Conv(t, {v, v, v, 0});  // 1e300 only has to pass the sanitizers
                EXPECT_TRUE(std::isfinite(v) || !std::isfinite(o.north) || !std::isfinite(o.east)) << from << to;
            }
            t.FreeGeoParam();
        }
    }
}

TEST_F(Pipeline, KindsBlocksAndStates) {
    for (int kind : {UTM, Cartesian}) {
        T k;
        EXPECT_EQ(1, k.SetGeoParam(kind, Geographic, 3, 3)) << kind;
        k.GetReferenceDataSource()->m_nProjection = 0;  // a host cleared the kind
        k.FreeGeoParam();
        EXPECT_EQ(0, k.InitGeoParam()) << kind;
        k.FreeGeoParam();
    }
    T u;
    u.SetDatumAndPrDest(Geographic, 3);  // the source is still unset (-1)
    EXPECT_EQ(1, u.InitGeoParam());
    G before{1, 2, 3, 4};
    u.GetGeoCoordDest()->SetCoord(&before);
    EXPECT_TRUE(u.GeoConvert() == 0 && !std::memcmp(&before, &Dest(u), sizeof before));
    u.FreeGeoParam();
    // On the meridian x is fe and y k0 times the arc; Gauss-Kruger at scale 1 whatever its block.
    SP blk[2] = {{0.5, 39, 0, 7500000, 0}, {0.9996, 39, 0, 500000, 0}};
    double north[2];
    for (int i = 0; i < 2; ++i) {
        T t;
        Link(t, Geographic, i ? TransverseMercator : GaussKruger);
        t.GetReferenceDataDest()->SetParam(&blk[i]);
        ASSERT_EQ(1, t.InitGeoParam());
        const G o = Conv(t, {55, 39, 0, 0});
        EXPECT_EQ(blk[i].fe, o.east);
        north[i] = o.north;
        t.FreeGeoParam();
    }
    EXPECT_NEAR(north[1] / north[0], 0.9996, 1e-12);
    T t;
    ASSERT_EQ(1, t.SetGeoParam(GaussKruger, Mercator, 4, 3));
    {
        T copy(t);  // shares the states; its destructor frees nothing
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
    T t, l, half;
    t.SetReferenceDataSource(&host);  // re-read from the catalog by the index
    t.SetReferenceDataSource(nullptr);
    EXPECT_TRUE(t.GetGeoCoordSource()->GetProjection() == TransverseMercator && !std::memcmp(&p, t.GetReferenceDataSource()->GetParam(), sizeof p));
    EXPECT_STREQ("Pulkovo 1942", t.GetReferenceDataSource()->szDatumName);
    t.SetReferenceDataDest(&host);
    EXPECT_TRUE(t.GetGeoCoordDest()->GetProjection() == TransverseMercator && t.GetReferenceDataDest()->GetDatum() == 4);
    half.SetDatumAndPrSource(UTM, 3);  // both sides are attempted; one unsaved side fails the pair
    EXPECT_EQ(0, half.SaveData("Software\\Host\\Half"));
    EXPECT_TRUE(t.SetDefault() == 1 && t.GetReferenceDataSource()->GetProjection() == Geographic && t.GetGeoCoordDest()->GetProjection() == Geographic);
    EXPECT_EQ(1, l.LoadData("Software\\Host\\Nothing"));  // defaults: Geographic on WGS 84
    EXPECT_TRUE(l.GetGeoCoordSource()->GetProjection() == Geographic && l.GetReferenceDataDest()->GetDatum() == 3);
    l.FreeGeoParam();
}

// Every pair, a -> b -> a: the series' 0.78 mm twice; across datums Molodensky
// is not exactly invertible (3 cm to 80 degrees) and Cartesian drops the height.
TEST_F(Pipeline, EveryPairComesHome) {
    const struct { int kind; SP p; double lo, hi; } sys[] = {{Geographic, {}, -90, 90}, {UTM, {0, 0, 0, 1, 37}, .01, 84},
        {UTM, {0, 0, 0, -1, 37}, -80, -.01}, {GaussKruger, {1, 39, 0, 7500000, 0}, -84, 84}, {TransverseMercator, {0.9996, 37, 30, 500000, -3000000}, -84, 84},
        {Mercator, {0, 37, 20, 1000000, 0}, -85, 85}, {PolarStereographic, {0, 37, 90, 2000000, 2000000}, 76, 90},
        {PolarStereographic, {0, 37, -71, 2000000, 2000000}, -90, -76}, {Cartesian, {}, -90, 90}};
    auto conv = [](T& t, const auto& a, int da, const auto& b, int db) {
        for (int side = 0; side < 2; ++side) {
            const auto& s = side ? b : a;
            CGeoReferenceData* r = side ? t.GetReferenceDataDest() : t.GetReferenceDataSource();
            r->CreateGeoInfo(s.kind, side ? db : da);
            const ProjectionParam q{s.p.c_lon, s.p.lat_origin, s.p.fe, s.p.fn};
            if (r->GetParam()) std::memcpy(r->GetParam(), s.kind == GaussKruger || s.kind == TransverseMercator ? (const void*)&s.p : &q, s.p.scale ? sizeof s.p : sizeof q);
            (side ? t.GetGeoCoordDest() : t.GetGeoCoordSource())->SetProjection(s.kind);
        }
        EXPECT_EQ(1, t.InitGeoParam());
    };
    for (auto [da, db, bound] : {std::tuple{3, 3, 0.002}, {3, 4, 0.032}, {4, 3, 0.032}}) {
        for (const auto& a : sys) {
            for (const auto& b : sys) {
                if (da != db && (a.kind == Cartesian || b.kind == Cartesian)) continue;
                T in, out, there, back;
                conv(in, sys[0], da, a, da), conv(out, a, da, sys[0], da), conv(there, a, da, b, db), conv(back, b, db, a, da);
                for (double lat = -89.5; lat <= 89.5; lat += lat < -88 || lat >= 88 ? 1.5 : 4) {
                    if (lat < std::max(a.lo, b.lo) || lat > std::min(a.hi, b.hi) || (da != db && std::fabs(lat) > 80)) continue;
                    for (double lon = 34; lon <= 40; lon += 2) {
                        const G s = Conv(in, {lat, lon, 0, 0}), p = Conv(out, s), q = Conv(out, Conv(back, Conv(there, s)));
                        ASSERT_LE(std::hypot(p.north - q.north, (p.east - q.east) * std::cos(p.north * M_PI / 180)) * 111320, bound)
                            << da << "/" << db << " " << a.kind << "->" << b.kind << " at " << lat << "," << lon;
                    }
                }
                for (T* t : {&in, &out, &there, &back}) t->FreeGeoParam();
            }
        }
    }
}

ProjectionParamTag Proj(const char* name, double scale, double c_lon, int fe, int fn) {
    ProjectionParamTag tag{};
    tag.nHeader0 = 90;
    std::strncpy(tag.szProjName, name, sizeof tag.szProjName - 1);
    tag.scale = scale, tag.c_lon = c_lon, tag.lat_origin = 1.5, tag.fe = fe, tag.fn = fn;
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

TEST_F(Pipeline, TagsSelectKindsByEnglishName) {
    const char* const names[] = {"Geographic", "UTM", "Gauss-Kruger", "Transverse Mercator", "Mercator", "Polar Stereographic"};
    for (LANGID lang : {LANG_ENGLISH_US, LANG_RUSSIAN}) {
        SetThreadUILanguage(lang);
        for (int kind = 1; kind <= 6; ++kind) {
            T t;
            ProjectionParamTag tag = Proj(names[kind - 1], 0.9996, 39, 500000, 37);
            t.SetProjectionSourceFromTag(&tag);
            t.SetProjectionDestFromTag(&tag);
            EXPECT_TRUE(kind == t.GetReferenceDataSource()->GetProjection() && kind == t.GetGeoCoordSource()->GetProjection() &&
                        kind == t.GetReferenceDataDest()->GetProjection() && kind == t.GetGeoCoordDest()->GetProjection()) << kind;
            EXPECT_EQ(kind == UTM ? 37 : 0, Dest(t).zone);  // zones belong to UTM alone
            if (kind == Geographic) continue;
            SP p{};  // scale first in kinds 3 and 4 only
            const bool scaled = kind == GaussKruger || kind == TransverseMercator;
            std::memcpy(scaled ? (void*)&p : &p.c_lon, t.GetReferenceDataSource()->GetParam(), scaled ? sizeof p : sizeof(ProjectionParam));
            EXPECT_TRUE(p.scale == (scaled ? 0.9996 : 0) && p.c_lon == 39 && p.lat_origin == 1.5 && p.fe == 500000 && p.fn == 37) << kind;
        }
    }
    SetThreadUILanguage(LANG_ENGLISH_US);
    for (const char* name : {"utm", "Transverse Mercator "}) {
        T t;  // no match: the kind stays, the block is copied by it
        t.SetDatumAndPrSource(Mercator, 3);
        ProjectionParamTag tag = Proj(name, 0.9996, -74, 300000, -20);
        t.SetProjectionSourceFromTag(&tag);
        EXPECT_TRUE(t.GetReferenceDataSource()->GetProjection() == Mercator && Block(t.GetReferenceDataSource())->c_lon == -74) << name;
    }
    T t;  // a change of kind gets a block of the new kind
    ProjectionParamTag utm = Proj("UTM", 1, 0, -1, 60), gk = Proj("Gauss-Kruger", 1, 33, 6500000, 0);
    t.SetProjectionSourceFromTag(&utm);
    t.SetProjectionSourceFromTag(&gk);
    const SP* p = static_cast<SP*>(t.GetReferenceDataSource()->GetParam());
    EXPECT_TRUE(p->scale == 1 && p->c_lon == 33 && p->fe == 6500000 && t.GetReferenceDataDest()->GetProjection() == -1);
    EXPECT_EQ(60, static_cast<G*>(t.GetGeoCoordSource()->GetCoord())->zone);  // what the UTM tag set stays
}

TEST_F(Pipeline, ANewTagDatumIsRegistered) {
    const int nd = Sections("datum.ini"), ne = Sections("ellips.ini");
    ASSERT_TRUE(nd == 68 && ne == 21);
    T t;
    t.SetDatumAndPrSource(UTM, 3);
    DatumParamTag first = Datum("Test Datum", "Test Ellipsoid", 6378.25, 300, 10);
    t.SetDatumSourceFromTag(&first);  // new: registered at the first free section
    CGeoReferenceData* r = t.GetReferenceDataSource();
    EXPECT_TRUE(r->GetDatum() == nd + 1 && r->GetEllipsoid() == ne + 1 && r->GetProjection() == UTM && r->m_dGeoInfo[0] == 6378250 && r->m_nDatumValues[0] == 10);
    // Entries are written before the tag is taken: what the system held, in metres.
    EXPECT_TRUE(Read("ellips.ini", ne, "EllipsName") == "Test Ellipsoid" && Read("ellips.ini", ne, "ellipsParam_0") == "6378137.000000");
    EXPECT_TRUE(Read("datum.ini", nd, "DatumName") == "Test Datum" && Read("datum.ini", nd, "EllipsoidIndex") == std::to_string(ne + 1));
    t.SetDatumDestFromTag(&first);  // found by name, not appended twice
    EXPECT_TRUE(t.GetReferenceDataDest()->GetDatum() == nd + 1 && Sections("datum.ini") == nd + 1 && Sections("ellips.ini") == ne + 1);
}

}  // namespace
