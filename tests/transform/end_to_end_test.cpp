// Every pair of the seven kinds, there and back through CGeoTransform, on one
// datum and across two (WGS 84, catalog datum 3, and Pulkovo 1942, datum 4).
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include <mapwright/GeoTransform.h>

#include "testenv.h"

namespace {

constexpr double kDegree = 111320.0;  // metres per degree of latitude, near enough for an error figure

// One reference system of the test: a kind, its parameters, and the
// latitudes its kind represents with the parameters chosen here.
struct System {
    const char* name;
    int kind;
    ScaledProjectionParam p;  // scale used by kinds 3 and 4 only
    double latMin, latMax;
};

// The points lie within 3 degrees of 37 E, where every kind below is at home.
const System kSystems[] = {
    {"Geographic", Geographic, {}, -90, 90},
    // A shift moves a point by far less than 0.01 degree, so it stays in its hemisphere.
    {"UTM 37 north", UTM, {0, 0, 0, 1, 37}, 0.01, 84},
    {"UTM 37 south", UTM, {0, 0, 0, -1, 37}, -80, -0.01},
    {"Gauss-Kruger zone 7", GaussKruger, {1.0, 39.0, 0.0, 7500000, 0}, -84, 84},
    {"Transverse Mercator", TransverseMercator, {0.9996, 37.0, 30.0, 500000, -3000000}, -84, 84},
    {"Mercator", Mercator, {0, 37.0, 20.0, 1000000, 0}, -85, 85},
    // The hemisphere mark of a negative northing is removable while the
    // false northing exceeds every rho of the zone (2 000 km: beyond 72 degrees).
    {"Polar Stereographic north", PolarStereographic, {0, 37.0, 90.0, 2000000, 2000000}, 76, 90},
    {"Polar Stereographic south", PolarStereographic, {0, 37.0, -71.0, 2000000, 2000000}, -90, -76},
    {"Cartesian", Cartesian, {}, -90, 90},
};

void Configure(CGeoReferenceData* r, const System& s) {
    void* block = r->GetParam();
    if (s.kind == GaussKruger || s.kind == TransverseMercator) {
        std::memcpy(block, &s.p, sizeof s.p);
    } else if (s.kind != Geographic && s.kind != Cartesian) {
        ProjectionParam q{s.p.c_lon, s.p.lat_origin, s.p.fe, s.p.fn};
        std::memcpy(block, &q, sizeof q);
    }
}

// A conversion from one configured system to another, set up once.
class Conversion {
public:
    Conversion(const System& from, int datumFrom, const System& to, int datumTo) {
        m_t.SetDatumAndPrSource(from.kind, datumFrom);
        Configure(m_t.GetReferenceDataSource(), from);
        m_t.SetDatumAndPrDest(to.kind, datumTo);
        Configure(m_t.GetReferenceDataDest(), to);
        m_ok = m_t.InitGeoParam() == 1;
    }
    ~Conversion() { m_t.FreeGeoParam(); }
    Conversion(const Conversion&) = delete;
    Conversion& operator=(const Conversion&) = delete;

    bool ok() const { return m_ok; }
    GeoCoordTag operator()(GeoCoordTag in) {
        m_t.SetGeoCoord(&in);
        m_t.GeoConvert();
        return *static_cast<GeoCoordTag*>(m_t.GetGeoCoordDest()->GetCoord());
    }

private:
    CGeoTransform m_t;
    bool m_ok = false;
};

// The distance on the ground in metres between two geographic values; the
// map units of a projection would exaggerate it where its scale is large.
double GroundDistance(const GeoCoordTag& a, const GeoCoordTag& b) {
    const double dn = (a.north - b.north) * kDegree;
    const double de = (a.east - b.east) * kDegree * std::cos(a.north * M_PI / 180.0);
    return std::hypot(dn, de);
}

std::vector<double> Latitudes() {
    std::vector<double> lats;
    for (double lat = -88.0; lat <= 88.0; lat += 4.0) lats.push_back(lat);
    for (double lat : {-89.5, -80.0, -1e-6, 0.0, 1e-6, 80.0, 84.0, 89.5}) lats.push_back(lat);
    return lats;
}

struct Worst {
    double metres = 0.0;
    std::string where;
    void Note(double d, const std::string& w) {
        if (!(d <= metres)) {  // a NaN is the worst of all
            metres = d;
            where = w;
        }
    }
};

bool TransverseFamily(const System& s) {
    return s.kind == UTM || s.kind == GaussKruger || s.kind == TransverseMercator;
}

// The worst round-trip errors, kept apart where the bounds differ.
struct Errors {
    Worst within80, beyond80;  // pairs with at most one transverse kind
    Worst twoTransverse;       // both kinds transverse, any latitude
};

// Runs every pair on the datum pair (datumA, datumB).
void RoundTrips(int datumA, int datumB, bool withCartesian, Errors& errors) {
    const double lons[] = {34.0, 35.5, 37.0, 38.5, 40.0};
    const std::vector<double> lats = Latitudes();
    for (const System& a : kSystems) {
        if (!withCartesian && a.kind == Cartesian) continue;
        Conversion toA(kSystems[0], datumA, a, datumA);
        Conversion fromA(a, datumA, kSystems[0], datumA);
        for (const System& b : kSystems) {
            if (!withCartesian && b.kind == Cartesian) continue;
            Conversion there(a, datumA, b, datumB);
            Conversion back(b, datumB, a, datumA);
            ASSERT_TRUE(toA.ok() && fromA.ok() && there.ok() && back.ok());
            for (double lat : lats) {
                // Both kinds must represent the point on either datum; the
                // shift moves it by far less than the margins kept here.
                if (lat < std::max(a.latMin, b.latMin) || lat > std::min(a.latMax, b.latMax)) continue;
                for (double lon : lons) {
                    const GeoCoordTag start = toA({lat, lon, 0.0, 0});
                    const GeoCoordTag mid = there(start);
                    const GeoCoordTag home = back(mid);
                    const double d = GroundDistance(fromA(start), fromA(home));
                    char where[160];
                    std::snprintf(where, sizeof where, "%s -> %s at (%.6f, %.1f)", a.name, b.name, lat, lon);
                    if (TransverseFamily(a) && TransverseFamily(b))
                        errors.twoTransverse.Note(d, where);
                    else
                        (std::fabs(lat) <= 80.0 ? errors.within80 : errors.beyond80).Note(d, where);
                }
            }
        }
    }
}

class EndToEnd : public ::testing::Test {
protected:
    mwtest::IsolatedEnv m_env;
};

// On one datum only the projection formulas act. A forward and inverse pair
// of the transverse series comes home within a millimetre (at worst 0.78 mm,
// near 70 degrees: the meridian arc truncated at e^6 against the footpoint
// series in n); every other kind's pair does far better. A round trip
// between two transverse kinds passes through that pair twice, so its bound
// is twice the millimetre.
TEST_F(EndToEnd, EveryPairOnOneDatumComesHome) {
    Errors e;
    RoundTrips(3, 3, true, e);
    std::printf("same datum: worst %.3g mm (%s); %.3g mm between two transverse kinds (%s)\n",
                std::max(e.within80.metres, e.beyond80.metres) * 1e3,
                (e.within80.metres >= e.beyond80.metres ? e.within80 : e.beyond80).where.c_str(),
                e.twoTransverse.metres * 1e3, e.twoTransverse.where.c_str());
    EXPECT_LE(e.within80.metres, 0.001) << e.within80.where;
    EXPECT_LE(e.beyond80.metres, 0.001) << e.beyond80.where;
    EXPECT_LE(e.twoTransverse.metres, 0.002) << e.twoTransverse.where;
}

// Across datums the standard Molodensky shift is applied one way and its
// counterpart the other; the method is not exactly invertible (about 7 mm at
// 60 degrees, 2 cm at 80 with the Pulkovo shift), so 3 cm up to 80 degrees;
// beyond, the figure is reported. The Cartesian kind is left out: its inverse
// drops the height that the shift gives the point, which the round trip
// cannot bring back.
TEST_F(EndToEnd, EveryPairAcrossTwoDatumsComesHome) {
    Errors e;
    RoundTrips(3, 4, false, e);
    RoundTrips(4, 3, false, e);
    std::printf("across WGS 84 and Pulkovo 1942: worst %.3g mm for |lat| <= 80 (%s); %.3g mm beyond (%s)\n",
                e.within80.metres * 1e3, e.within80.where.c_str(), e.beyond80.metres * 1e3, e.beyond80.where.c_str());
    EXPECT_LE(e.within80.metres, 0.03) << e.within80.where;
    // Two transverse kinds add their series' 2 mm to the shift's error.
    EXPECT_LE(e.twoTransverse.metres, 0.032) << e.twoTransverse.where;
}

}  // namespace
