// CGeoTransform: the order of the steps, the short-cut, the dispatch by kind,
// the zones, the ownership of the states, and every pair of kinds there and
// back. Expected numbers come from the closed forms the pipeline reduces to.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

#include <mapwright/GeoTransform.h>

#include "testenv.h"

namespace {

GeoCoordTag& Dest(CGeoTransform& t) { return *static_cast<GeoCoordTag*>(t.GetGeoCoordDest()->GetCoord()); }
ProjectionParam* Block(CGeoReferenceData* r) { return static_cast<ProjectionParam*>(r->GetParam()); }

GeoCoordTag Convert(CGeoTransform& t, GeoCoordTag in) {
    t.SetGeoCoord(&in);
    EXPECT_EQ(1, t.GeoConvert());
    return Dest(t);
}

// Private copies of the shipped catalogs: datum 3 is WGS 84, 4 Pulkovo 1942.
class Pipeline : public ::testing::Test {
protected:
    mwtest::IsolatedEnv m_env;
};

TEST_F(Pipeline, SameKindOnOneDatumPassesTheValuesThrough) {
    CGeoTransform t;
    ASSERT_EQ(1, t.SetGeoParam(Geographic, Geographic, 3, 3));
    GeoCoordTag out = Convert(t, {55.75, 37.62, -2000000.0, 99});  // the height sentinel is kept
    EXPECT_EQ(55.75, out.north);
    EXPECT_EQ(37.62, out.east);
    EXPECT_EQ(-2000000.0, out.height);
    EXPECT_EQ(0, out.zone);  // not a UTM destination
    t.FreeGeoParam();
    t.SetDatumAndPrSource(UTM, 3);  // UTM to UTM keeps the source zone
    t.SetDatumAndPrDest(UTM, 3);
    Block(t.GetReferenceDataDest())->fn = 38;
    ASSERT_EQ(1, t.InitGeoParam());
    out = Convert(t, {6182000.0, 413000.0, 10.0, 37});
    EXPECT_EQ(6182000.0, out.north);
    EXPECT_EQ(37, out.zone);
    t.FreeGeoParam();
}

TEST_F(Pipeline, InitGeoParamNeedsAKindOnBothSides) {
    for (int kind : {Geographic, UTM, Mercator, Cartesian}) {
        CGeoTransform t;
        EXPECT_EQ(1, t.SetGeoParam(Geographic, kind, 3, 3)) << kind;
        t.FreeGeoParam();
        EXPECT_EQ(1, t.SetGeoParam(kind, Geographic, 3, 3)) << kind;
        t.GetReferenceDataSource()->m_nProjection = 0;  // a host cleared the kind
        t.FreeGeoParam();
        EXPECT_EQ(0, t.InitGeoParam()) << kind;
        t.FreeGeoParam();
    }
    CGeoTransform t;
    EXPECT_EQ(0, t.GeoConvert());  // kinds 0 after construction
    t.SetDatumAndPrDest(Geographic, 3);  // the source is still unset (-1)
    EXPECT_EQ(1, t.InitGeoParam());
    GeoCoordTag before{1.0, 2.0, 3.0, 4};
    t.GetGeoCoordDest()->SetCoord(&before);
    EXPECT_EQ(0, t.GeoConvert());
    EXPECT_EQ(0, std::memcmp(&before, &Dest(t), sizeof before));
    t.FreeGeoParam();
}

TEST_F(Pipeline, UtmZoneIsForcedOrChosen) {
    // fn of the destination: 1..60 forced, anything else the longitude's zone.
    const int rows[][3] = {{0, 37, 37}, {0, -1, 30}, {38, 37, 38}, {61, 3, 31}, {-5, 3, 31},
                           {1, -170, 1}, {60, 170, 60}, {0, -170, 2}, {0, 170, 59}};
    for (const auto& r : rows) {
        CGeoTransform t;
        t.SetDatumAndPrSource(Geographic, 3);
        t.SetDatumAndPrDest(UTM, 3);
        Block(t.GetReferenceDataDest())->fn = r[0];
        ASSERT_EQ(1, t.InitGeoParam());
        const GeoCoordTag out = Convert(t, {55.0, r[1] + 0.5, 0.0, 0});
        EXPECT_EQ(r[2], out.zone) << r[0] << " " << r[1];
        EXPECT_EQ(r[1] + 0.5 > 6.0 * r[2] - 183.0, out.east > 500000.0) << r[0] << " " << r[1];
        t.FreeGeoParam();
    }
}

TEST_F(Pipeline, UtmPointsAndTheHemisphereFlag) {
    CGeoTransform t;
    ASSERT_EQ(1, t.SetGeoParam(Geographic, UTM, 3, 3));
    GeoCoordTag out = Convert(t, {45.0, 3.0, 12.5, 0});
    EXPECT_NEAR(500000.000, out.east, 0.0005);
    EXPECT_NEAR(4982950.400, out.north, 0.0005);
    EXPECT_EQ(12.5, out.height);
    t.FreeGeoParam();
    t.SetDatumAndPrSource(UTM, 3);
    t.SetDatumAndPrDest(Geographic, 3);
    ProjectionParam* p = Block(t.GetReferenceDataSource());
    p->fe = -1;  // southern: 3000 km south of the equator, about 27.1 S
    p->fn = 31;
    ASSERT_EQ(1, t.InitGeoParam());
    out = Convert(t, {7000000.0, 500000.0, 0.0, 5});
    EXPECT_EQ(31, static_cast<GeoCoordTag*>(t.GetGeoCoordSource()->GetCoord())->zone);
    EXPECT_NEAR(-27.1, out.north, 0.05);
    EXPECT_NEAR(3.0, out.east, 1e-9);
    p->fe = 1;  // read at each conversion
    EXPECT_NEAR(63.1, Convert(t, {7000000.0, 500000.0, 0.0, 5}).north, 0.1);
    t.FreeGeoParam();
}

TEST_F(Pipeline, ADatumDifferenceRunsTheShift) {
    CGeoTransform t;  // a value difference alone: no move, but the unknown height becomes 0
    t.SetDatumAndPrSource(Geographic, 3);
    t.SetDatumAndPrDest(Geographic, 3);
    t.GetReferenceDataDest()->m_nDatumValues[4] = 1;
    ASSERT_EQ(1, t.InitGeoParam());
    GeoCoordTag out = Convert(t, {55.0, 37.0, -2000000.0, 0});
    EXPECT_DOUBLE_EQ(55.0, out.north);
    EXPECT_DOUBLE_EQ(37.0, out.east);
    EXPECT_NEAR(0.0, out.height, 1e-9);
    t.FreeGeoParam();
    // Pulkovo 1942 to WGS 84 near Moscow moves the point by about 120 m.
    ASSERT_EQ(1, t.SetGeoParam(Geographic, Geographic, 4, 3));
    out = Convert(t, {55.75, 37.62, 0.0, 0});
    const double moved = std::hypot(out.north - 55.75, (out.east - 37.62) * std::cos(55.75 * M_PI / 180)) * 111300;
    EXPECT_GT(moved, 80.0);
    EXPECT_LT(moved, 200.0);
    t.FreeGeoParam();
}

TEST_F(Pipeline, RefusedAndNonFinitePointsAreNotPositions) {
    CGeoTransform t;  // zone 1 forced for longitude 100: refused
    t.SetDatumAndPrSource(Geographic, 3);
    t.SetDatumAndPrDest(UTM, 3);
    Block(t.GetReferenceDataDest())->fn = 1;
    t.InitGeoParam();
    GeoCoordTag out = Convert(t, {10.0, 100.0, 5.0, 0});
    EXPECT_TRUE(std::isnan(out.north) && std::isnan(out.east));
    EXPECT_EQ(5.0, out.height);
    EXPECT_EQ(1, out.zone);
    t.FreeGeoParam();
    const int kinds[] = {Geographic, UTM, GaussKruger, TransverseMercator, Mercator, PolarStereographic, Cartesian};
    for (int from : kinds) {
        for (int to : kinds) {
            ASSERT_EQ(1, t.SetGeoParam(from, to, 4, 3));
            for (double v : {double(NAN), double(INFINITY), -double(INFINITY), 1e300}) {
                out = Convert(t, {v, v, v, 0});  // 1e300 only has to pass the sanitizers
                if (!std::isfinite(v)) { EXPECT_FALSE(std::isfinite(out.north) && std::isfinite(out.east)) << from << to; }
            }
            t.FreeGeoParam();
        }
    }
}

TEST_F(Pipeline, CartesianHeightsAreUsedAndLost) {
    CGeoTransform t;
    t.SetGeoParam(Geographic, Cartesian, 3, 3);
    GeoCoordTag out = Convert(t, {0.0, 0.0, 100.0, 0});
    EXPECT_DOUBLE_EQ(6378237.0, out.north);  // X: a + h on the equator
    EXPECT_NEAR(0.0, out.height, 1e-9);
    t.FreeGeoParam();
    t.SetGeoParam(Cartesian, Geographic, 3, 3);
    out = Convert(t, {6378137.0, 0.0, 0.0, 0});
    EXPECT_EQ(0.0, out.north);
    EXPECT_EQ(0.0, out.height);  // the Cartesian inverse always gives height 0
    t.FreeGeoParam();
}

TEST_F(Pipeline, EachKindReadsItsOwnBlock) {
    // On the central meridian the easting is the false easting exactly and the
    // northing k0 times the arc: Gauss-Kruger at scale 1 whatever its block holds.
    const ScaledProjectionParam gk{0.5, 39.0, 0.0, 7500000, 0}, tm{0.9996, 39.0, 0.0, 500000, 0};
    double north[2];
    for (int i = 0; i < 2; ++i) {
        CGeoTransform t;
        t.SetDatumAndPrSource(Geographic, 3);
        t.SetDatumAndPrDest(i ? TransverseMercator : GaussKruger, 3);
        t.GetReferenceDataDest()->SetParam(const_cast<ScaledProjectionParam*>(i ? &tm : &gk));
        ASSERT_EQ(1, t.InitGeoParam());
        const GeoCoordTag out = Convert(t, {55.0, 39.0, 0.0, 0});
        EXPECT_EQ(i ? 500000.0 : 7500000.0, out.east);
        north[i] = out.north;
        t.FreeGeoParam();
    }
    EXPECT_NEAR(north[1] / north[0], 0.9996, 1e-12);
}

TEST_F(Pipeline, StatesBelongToFreeGeoParamAlone) {
    CGeoTransform t;
    ASSERT_EQ(1, t.SetGeoParam(GaussKruger, Mercator, 4, 3));
    {
        CGeoTransform copy(t);  // shares the states; its destructor frees nothing
        EXPECT_TRUE(std::isfinite(Convert(copy, {6000000.0, 500000.0, 0.0, 0}).north));
    }
    EXPECT_TRUE(std::isfinite(Convert(t, {6000000.0, 500000.0, 0.0, 0}).north));
    t.FreeGeoParam();
    t.FreeGeoParam();  // releases nothing the second time
    ASSERT_EQ(1, t.SetGeoParam(Geographic, UTM, 3, 3));
    EXPECT_NEAR(4982950.400, Convert(t, {45.0, 3.0, 0.0, 0}).north, 0.0005);
    t.FreeGeoParam();
}

TEST_F(Pipeline, SettersSaveAndLoad) {
    CGeoReferenceData host;
    host.CreateGeoInfo(TransverseMercator, 4);
    ScaledProjectionParam p{0.9996, 39.0, 0.0, 500000, 0};
    host.SetParam(&p);
    host.SetDatumName("Renamed by the host");
    CGeoTransform t;
    t.SetReferenceDataSource(&host);  // re-read from the catalog by the index
    t.SetReferenceDataSource(nullptr);
    EXPECT_EQ(TransverseMercator, t.GetGeoCoordSource()->GetProjection());
    EXPECT_STREQ("Pulkovo 1942", t.GetReferenceDataSource()->szDatumName);
    EXPECT_EQ(0, std::memcmp(&p, t.GetReferenceDataSource()->GetParam(), sizeof p));
    t.SetReferenceDataDest(&host);
    EXPECT_EQ(TransverseMercator, t.GetGeoCoordDest()->GetProjection());
    EXPECT_EQ(4, t.GetReferenceDataDest()->GetDatum());
    t.SetDatumAndPrDest(UTM, 3);
    Block(t.GetReferenceDataDest())->fn = 37;
    ASSERT_EQ(1, t.SaveData("Software\\Host\\Pair"));
    CGeoTransform loaded;
    ASSERT_EQ(1, loaded.LoadData("Software\\Host\\Pair"));
    EXPECT_EQ(TransverseMercator, loaded.GetGeoCoordSource()->GetProjection());
    EXPECT_EQ(0, std::memcmp(&p, loaded.GetReferenceDataSource()->GetParam(), sizeof p));
    EXPECT_EQ(UTM, loaded.GetGeoCoordDest()->GetProjection());
    EXPECT_EQ(37, Block(loaded.GetReferenceDataDest())->fn);
    loaded.FreeGeoParam();
    CGeoTransform half;  // both sides are attempted; one unsaved side fails the pair
    half.SetDatumAndPrSource(UTM, 3);
    EXPECT_EQ(0, half.SaveData("Software\\Host\\Half"));
    EXPECT_EQ(1, t.SetDefault());
    EXPECT_EQ(Geographic, t.GetReferenceDataSource()->GetProjection());
    EXPECT_EQ(Geographic, t.GetGeoCoordDest()->GetProjection());
    EXPECT_EQ(1, loaded.LoadData("Software\\Host\\Nothing"));  // defaults: Geographic on WGS 84
    EXPECT_EQ(Geographic, loaded.GetGeoCoordSource()->GetProjection());
    EXPECT_EQ(3, loaded.GetReferenceDataDest()->GetDatum());
    loaded.FreeGeoParam();
}

// One system of the round trips; the points lie within 3 degrees of 37 E.
struct System {
    const char* name;
    int kind;
    ScaledProjectionParam p;  // scale used by kinds 3 and 4 only
    double latMin, latMax;
};
const System kSystems[] = {
    {"Geographic", Geographic, {}, -90, 90},
    {"UTM 37 N", UTM, {0, 0, 0, 1, 37}, 0.01, 84},
    {"UTM 37 S", UTM, {0, 0, 0, -1, 37}, -80, -0.01},
    {"GK 7", GaussKruger, {1.0, 39.0, 0.0, 7500000, 0}, -84, 84},
    {"TM", TransverseMercator, {0.9996, 37.0, 30.0, 500000, -3000000}, -84, 84},
    {"Mercator", Mercator, {0, 37.0, 20.0, 1000000, 0}, -85, 85},
    // The hemisphere mark is removable while fn exceeds every rho of the zone.
    {"PS N", PolarStereographic, {0, 37.0, 90.0, 2000000, 2000000}, 76, 90},
    {"PS S", PolarStereographic, {0, 37.0, -71.0, 2000000, 2000000}, -90, -76},
    {"Cartesian", Cartesian, {}, -90, 90},
};

void Configure(CGeoReferenceData* r, const System& s, int datum) {
    r->CreateGeoInfo(s.kind, datum);
    if (s.kind == GaussKruger || s.kind == TransverseMercator) {
        std::memcpy(r->GetParam(), &s.p, sizeof s.p);
    } else if (s.kind != Geographic && s.kind != Cartesian) {
        ProjectionParam q{s.p.c_lon, s.p.lat_origin, s.p.fe, s.p.fn};
        std::memcpy(r->GetParam(), &q, sizeof q);
    }
}

struct Conversion {
    CGeoTransform t;
    Conversion(const System& from, int df, const System& to, int dt) {
        Configure(t.GetReferenceDataSource(), from, df);
        t.GetGeoCoordSource()->SetProjection(from.kind);
        Configure(t.GetReferenceDataDest(), to, dt);
        t.GetGeoCoordDest()->SetProjection(to.kind);
        EXPECT_EQ(1, t.InitGeoParam());
    }
    ~Conversion() { t.FreeGeoParam(); }
    GeoCoordTag operator()(GeoCoordTag in) { return Convert(t, in); }
};

// The worst ground distance (metres) of a round trip a -> b -> a over every
// pair of systems; NaN counts as the worst of all.
double RoundTrips(int datumA, int datumB, bool withCartesian, bool transverse, double maxLat, std::string& where) {
    double worst = 0.0;
    auto isTm = [](const System& s) { return s.kind >= UTM && s.kind <= TransverseMercator; };
    for (const System& a : kSystems) {
        if (a.kind == Cartesian && !withCartesian) continue;
        Conversion toA(kSystems[0], datumA, a, datumA), fromA(a, datumA, kSystems[0], datumA);
        for (const System& b : kSystems) {
            if ((b.kind == Cartesian && !withCartesian) || (isTm(a) && isTm(b)) != transverse) continue;
            Conversion there(a, datumA, b, datumB), back(b, datumB, a, datumA);
            for (double lat = -89.5; lat <= 89.5; lat += lat < -88 || lat >= 88 ? 1.5 : 4.0) {
                if (lat < std::max(a.latMin, b.latMin) || lat > std::min(a.latMax, b.latMax) || std::fabs(lat) > maxLat)
                    continue;
                for (double lon = 34.0; lon <= 40.0; lon += 1.5) {
                    const GeoCoordTag start = toA({lat, lon, 0.0, 0});
                    const GeoCoordTag p = fromA(start), q = fromA(back(there(start)));
                    const double d = std::hypot(p.north - q.north, (p.east - q.east) * std::cos(p.north * M_PI / 180)) *
                                     111320.0;
                    if (!(d <= worst)) {
                        worst = d;
                        where = std::string(a.name) + " -> " + b.name + " at " + std::to_string(lat) + "," +
                                std::to_string(lon);
                    }
                }
            }
        }
    }
    return worst;
}

// On one datum a forward and inverse pair of the transverse series comes home
// within a millimetre (0.78 mm at worst, the arc's e^6 truncation against the
// footpoint's); between two transverse kinds, twice that. Across datums the
// standard Molodensky shift is not exactly invertible: 3 cm up to 80 degrees
// (2 cm at 80 with the Pulkovo shift), the series' 2 mm more between two
// transverse kinds. The Cartesian kind drops the height the shift gives.
TEST_F(Pipeline, EveryPairComesHome) {
    const struct {
        int a, b;
        bool cartesian, transverse;
        double maxLat, bound;
    } rows[] = {{3, 3, true, false, 90, 0.001}, {3, 3, true, true, 90, 0.002}, {3, 4, false, false, 80, 0.03},
                {4, 3, false, false, 80, 0.03}, {3, 4, false, true, 90, 0.032}, {4, 3, false, true, 90, 0.032}};
    for (const auto& r : rows) {
        std::string where;
        const double worst = RoundTrips(r.a, r.b, r.cartesian, r.transverse, r.maxLat, where);
        std::printf("datums %d/%d%s: worst %.3g mm (%s)\n", r.a, r.b, r.transverse ? " transverse" : "", worst * 1e3,
                    where.c_str());
        EXPECT_LE(worst, r.bound) << where;
    }
}

}  // namespace
