// Polar stereographic: the pole, the axes of the map, the hemisphere mark,
// the UTM band and the margins, the scale at the latitude of true scale
// (and at the pole itself), round trips on both poles; against the radius
// written the other textbook way (a mc t / tc) in long double.
#include "polar_stereo.h"

#include <gtest/gtest.h>

#include <cmath>

#include "reference.h"
#include "state_ptr.h"

namespace {

constexpr double kUnwritten = -12345.678;
constexpr int kFe = 2000000, kFn = 2000000;
constexpr double kTs = 81.1145;

TEST(CorePolarStereo, ScaleFactors) {
    const double e2 = ref::e2_of(ref::kWgs84Rf);
    PlainState ts(ps_create(ref::kWgs84A, ref::kWgs84Rf, kTs, 0.0, kTs));
    EXPECT_NEAR(ts->k0, 0.994, 5e-4);
    PlainState pole(ps_create(ref::kWgs84A, ref::kWgs84Rf, -90.0, 0.0, -90.0));
    EXPECT_EQ(pole->k0, 1.0) << "true scale at the pole";
    // The radius at the latitude of true scale is the parallel's radius
    // N cos(phic): scale 1 there.
    double east, north;
    ASSERT_EQ(ps_geo_to_pr(ts.get(), kTs, 90.0, &east, &north, 0, 0), -2) << "in the band, written all the same";
    const double phic = ref::rad(kTs);
    const double parallel = ref::kWgs84A * std::cos(phic) / std::sqrt(1 - e2 * std::sin(phic) * std::sin(phic));
    EXPECT_NEAR(east, parallel, 1e-7);
}

TEST(CorePolarStereo, ForwardCases) {
    const double a = ref::kWgs84A, e2 = ref::e2_of(ref::kWgs84Rf);
    const double rho85 = ref::ps_rho(a, e2, kTs, 85.0);
    const double rho85p = ref::ps_rho(a, e2, 90.0, 85.0);
    struct Row {
        double latOrigin, cm, lat, lon;
        int status;
        double east, north;  // NaN: not written
        const char* why;
    } rows[] = {
        {kTs, 0, 90.0, 0.0, 0, kFe, kFn, "the north pole maps to (fe, fn)"},
        {kTs, 0, 90.0 - 5e-8, 77.0, 0, kFe, kFn, "within 1e-7 of the pole is the pole"},
        {kTs, 0, 85.0, 0.0, 0, kFe, kFn - rho85, "below the pole"},
        {kTs, 0, 85.0, 180.0, 0, kFe, kFn + rho85, "above the pole"},
        {kTs, 0, 85.0, 90.0, 0, kFe + rho85, kFn, "to the right"},
        {kTs, 0, 85.0, -90.0, 0, kFe - rho85, kFn, "to the left"},
        {kTs, 45, 85.0, 45.0, 0, kFe, kFn - rho85, "longitude below the pole"},
        {-kTs, 0, -85.0, 0.0, 0, kFe, -(kFn + rho85), "south: marked by a negative northing"},
        {-kTs, 0, -85.0, 180.0, 0, kFe, -(kFn - rho85), "south, the far side"},
        {-kTs, 0, -90.0, 0.0, 0, kFe, -kFn, "the south pole"},
        {90.0, 0, 85.0, 0.0, 0, kFe, kFn - rho85p, "true scale at the pole"},
        {kTs, 0, 84.0, 0.0, 0, kFe, NAN, "north of the band"},
        {kTs, 0, 83.0, 0.0, -2, kFe, NAN, "in the UTM band: written, -2"},
        {kTs, 0, 0.0, 0.0, -2, kFe, NAN, "equator: band"},
        {kTs, 0, -1.0, 0.0, 17, kFe, NAN, "wrong hemisphere, in the margin"},
        {kTs, 0, -3.0, 0.0, -2, NAN, NAN, "beyond the margin: nothing written"},
        {-kTs, 0, -80.0, 0.0, 0, kFe, NAN, "south of the band"},
        {-kTs, 0, -79.0, 0.0, -2, kFe, NAN, "southern band: written, -2"},
        {-kTs, 0, 1.0, 0.0, 17, kFe, NAN, "south state, northern margin"},
        {-kTs, 0, 3.0, 0.0, -2, NAN, NAN, "beyond it"},
    };
    for (const Row& r : rows) {
        PlainState s(ps_create(a, ref::kWgs84Rf, r.latOrigin, r.cm, r.latOrigin));
        double east = kUnwritten, north = kUnwritten;
        EXPECT_EQ(ps_geo_to_pr(s.get(), r.lat, r.lon, &east, &north, kFe, kFn), r.status) << r.why;
        if (std::isnan(r.east)) {
            EXPECT_EQ(east, kUnwritten) << r.why;
            EXPECT_EQ(north, kUnwritten) << r.why;
            continue;
        }
        EXPECT_TRUE(std::isfinite(north)) << r.why;
        // Bound: the reference in long double against double evaluation of
        // radii near 1e6 m.
        EXPECT_NEAR(east, r.east, 1e-6) << r.why;
        if (!std::isnan(r.north)) {
            EXPECT_NEAR(north, r.north, 1e-6) << r.why;
        }
    }
}

TEST(CorePolarStereo, InverseCases) {
    struct Row {
        double latOrigin, cm, east, north;
        int status;
        double lat, lon;
        const char* why;
    } rows[] = {
        {kTs, 30.0, kFe, kFn, 0, 90.0, 30.0, "(fe, fn): the north pole, longitude c_lon"},
        {-kTs, -60.0, kFe, -kFn, 0, -90.0, -60.0, "the south pole"},
        {kTs, 0.0, kFe + 0.5e-7, kFn - 0.5e-7, 0, 90.0, 0.0, "within 1e-7 m of the origin"},
    };
    for (const Row& r : rows) {
        PlainState s(ps_create(ref::kWgs84A, ref::kWgs84Rf, r.latOrigin, r.cm, r.latOrigin));
        double lat = kUnwritten, lon = kUnwritten;
        EXPECT_EQ(ps_pr_to_geo(s.get(), r.east, r.north, &lat, &lon, kFe, kFn), r.status) << r.why;
        EXPECT_EQ(lat, r.lat) << r.why;
        EXPECT_NEAR(lon, r.lon, 1e-12) << r.why;
    }
    // A point of the band comes back with status 2, values written.
    PlainState s(ps_create(ref::kWgs84A, ref::kWgs84Rf, kTs, 0.0, kTs));
    double east, north, lat, lon;
    ps_geo_to_pr(s.get(), 80.0, 10.0, &east, &north, kFe, kFn);
    EXPECT_EQ(ps_pr_to_geo(s.get(), east, north, &lat, &lon, kFe, kFn), 2);
    EXPECT_NEAR(lat, 80.0, 1e-9);
    EXPECT_NEAR(lon, 10.0, 1e-9);
}

TEST(CorePolarStereo, RoundTripBothPolesAnyMeridianBelowThePole) {
    // In the polar zones, where rho stays below the false northing of
    // 2 000 000 m so that the hemisphere mark is removable. The inverse's
    // conformal series is truncated at e^8 (below 2e-12 rad); 1e-9 degree is
    // 0.1 mm of latitude.
    struct Row {
        double latOrigin, cm;
    } rows[] = {{kTs, 0.0}, {kTs, -100.0}, {90.0, 170.0}, {-kTs, 45.0}, {-90.0, -135.0}};
    for (const Row& r : rows) {
        PlainState s(ps_create(ref::kKrassA, ref::kKrassRf, r.latOrigin, r.cm, r.latOrigin));
        const double sign = r.latOrigin < 0 ? -1.0 : 1.0;
        for (double alat = r.latOrigin < 0 ? 79.5 : 83.5; alat < 90.0; alat += 0.75) {
            for (double lon = -180.0; lon < 180.0; lon += 15.0) {
                double east, north, lat, lo;
                ps_geo_to_pr(s.get(), sign * alat, lon, &east, &north, kFe, kFn);
                ps_pr_to_geo(s.get(), east, north, &lat, &lo, kFe, kFn);
                EXPECT_NEAR(lat, sign * alat, 1e-9) << r.latOrigin << " " << alat << "," << lon;
                EXPECT_NEAR(std::remainder(lo - lon, 360.0), 0.0, 1e-9) << r.latOrigin << " " << alat << "," << lon;
            }
        }
    }
    // The edge case of the record: south pole, c_lon 45, (-85, 10).
    PlainState s(ps_create(ref::kWgs84A, ref::kWgs84Rf, -kTs, 45.0, -kTs));
    double east, north, lat, lon;
    EXPECT_EQ(ps_geo_to_pr(s.get(), -85.0, 10.0, &east, &north, kFe, kFn), 0);
    EXPECT_EQ(ps_pr_to_geo(s.get(), east, north, &lat, &lon, kFe, kFn), 0);
    EXPECT_NEAR(lat, -85.0, 1e-9);
    EXPECT_NEAR(lon, 10.0, 1e-9);
}

TEST(CorePolarStereo, HemisphereMarkIsRemovedAsWritten) {
    // abs(north) - fn and nothing more: with a false northing of 0 a point
    // below the north pole has a negative northing, and the inverse takes it
    // for one above the pole.
    PlainState s(ps_create(ref::kWgs84A, ref::kWgs84Rf, kTs, 0.0, kTs));
    double east, north, lat, lon;
    EXPECT_EQ(ps_geo_to_pr(s.get(), 85.0, 0.0, &east, &north, 0, 0), 0);
    EXPECT_LT(north, 0.0);
    EXPECT_EQ(ps_pr_to_geo(s.get(), east, north, &lat, &lon, 0, 0), 0);
    EXPECT_NEAR(lat, 85.0, 1e-9);
    EXPECT_NEAR(std::fabs(lon), 180.0, 1e-9);
}

TEST(CorePolarStereo, NullState) {
    double x = kUnwritten, y = kUnwritten;
    EXPECT_EQ(ps_geo_to_pr(nullptr, 90, 0, &x, &y, 0, 0), -1);
    EXPECT_EQ(ps_pr_to_geo(nullptr, 0, 0, &x, &y, 0, 0), -1);
    EXPECT_EQ(x, kUnwritten);
    EXPECT_EQ(y, kUnwritten);
}

}  // namespace
