// Mercator: scale, the central meridian and the 180 degree meridian, the
// margins towards the poles, the inverse, and the sphere; against the closed
// formulas of the isometric latitude evaluated in long double.
#include "mercator.h"

#include <gtest/gtest.h>

#include <cmath>

#include "reference.h"
#include "state_ptr.h"

namespace {

constexpr double kUnwritten = -12345.678;

// The isometric latitude ln[tan(pi/4 + phi/2) ((1 - e s)/(1 + e s))^(e/2)].
double isometric(double e2, double latDeg) {
    const long double e = std::sqrt(static_cast<long double>(e2));
    const long double phi = latDeg * ref::kPiL / 180.0L, es = e * std::sin(phi);
    return static_cast<double>(std::log(std::tan(ref::kPiL / 4 + phi / 2) * std::pow((1 - es) / (1 + es), e / 2)));
}

TEST(CoreMercator, ScaleFactorFromTheLatitudeOfTrueScale) {
    const double e2 = ref::e2_of(ref::kWgs84Rf);
    struct Row {
        double latTs, k0, tol;
        const char* why;
    } rows[] = {
        {0.0, 1.0, 0.0, "true scale on the equator"},
        {60.0, 0.5 / std::sqrt(1.0 - e2 * 0.75), 1e-15, "cos 60 / sqrt(1 - e^2 sin^2 60)"},
        {-60.0, 0.5 / std::sqrt(1.0 - e2 * 0.75), 1e-15, "and its mirror"},
    };
    for (const Row& r : rows) {
        MercState s(merc_create(ref::kWgs84A, ref::kWgs84Rf, 0.0, r.latTs));
        ASSERT_NE(s, nullptr);
        EXPECT_NEAR(s->k0, r.k0, r.tol) << r.why;
    }
    MercState s60(merc_create(ref::kWgs84A, ref::kWgs84Rf, 0.0, 60.0));
    EXPECT_NEAR(s60->k0, 0.50126, 1e-5);
}

TEST(CoreMercator, ForwardCases) {
    const double a = ref::kWgs84A, e2 = ref::e2_of(ref::kWgs84Rf);
    struct Row {
        double cm, latTs, lat, lon;
        int fe, fn;
        int status;
        double east, north;  // NaN: not written
        const char* why;
    } rows[] = {
        {25.0, 0.0, 0.0, 25.0, 500000, 100, 0, 500000.0, 100.0, "origin maps to (fe, fn)"},
        {170.0, 0.0, 0.0, -170.0, 0, 0, 0, a * ref::rad(20.0), 0.0, "across 180: +20 degrees east"},
        {-170.0, 0.0, 0.0, 170.0, 0, 0, 0, -a * ref::rad(20.0), 0.0, "across 180 the other way"},
        {0.0, 0.0, 45.0, 0.0, 0, 0, 0, 0.0, a * isometric(e2, 45.0), "isometric latitude at 45"},
        {0.0, 0.0, 89.0, 0.0, 0, 0, 0, 0.0, a * isometric(e2, 89.0), "edge of the area"},
        {0.0, 0.0, 89.5, 0.0, 0, 0, 17, 0.0, a * isometric(e2, 89.5), "margin: converted, 17"},
        {0.0, 0.0, -89.999995, 0.0, 0, 0, 17, 0.0, a * isometric(e2, -89.999995), "last latitude converted"},
        {0.0, 0.0, 89.9999951, 0.0, 0, 0, -2, NAN, NAN, "too near the pole"},
        {0.0, 0.0, 92.0, 0.0, 0, 0, -2, NAN, NAN, "beyond the pole"},
    };
    for (const Row& r : rows) {
        MercState s(merc_create(a, ref::kWgs84Rf, r.cm, r.latTs));
        double east = kUnwritten, north = kUnwritten;
        EXPECT_EQ(merc_geo_to_pr(s.get(), r.lat, r.lon, &east, &north, r.fe, r.fn), r.status) << r.why;
        if (std::isnan(r.east)) {
            EXPECT_EQ(east, kUnwritten) << r.why;
            EXPECT_EQ(north, kUnwritten) << r.why;
            continue;
        }
        // Bound: the degree-to-radian rounding of the input latitude moves
        // the northing by up to a/cos(phi) * 2e-16 rad: 1e-7 m at 89 degrees,
        // 0.2 m at 89.999995 where the map itself runs off to infinity.
        const double tol = std::fabs(r.lat) < 89.1 ? 1e-7 : 1e-7 / std::cos(ref::rad(r.lat)) * 3;
        EXPECT_NEAR(east, r.east, 1e-7) << r.why;
        EXPECT_NEAR(north, r.north, tol) << r.why;
    }
}

TEST(CoreMercator, InverseCases) {
    MercState s(merc_create(ref::kWgs84A, ref::kWgs84Rf, 30.0, 0.0));
    struct Row {
        double east, north;
        int status;
        double lat, lon, tol;
        const char* why;
    } rows[] = {
        {1000.0, 2000.0, 0, 0.0, 30.0, 1e-12, "northing fn: the equator, easting fe: the central meridian"},
        {1000.0, 1e9, 17, 90.0, 30.0, 1e-9, "huge northing: tends to 90 without error"},
        {1000.0, -1e9, 17, -90.0, 30.0, 1e-9, "and to -90"},
    };
    for (const Row& r : rows) {
        double lat = kUnwritten, lon = kUnwritten;
        EXPECT_EQ(merc_pr_to_geo(s.get(), r.east, r.north, &lat, &lon, 1000, 2000), r.status) << r.why;
        EXPECT_NEAR(lat, r.lat, r.tol) << r.why;
        EXPECT_NEAR(lon, r.lon, 1e-12) << r.why;
    }
}

TEST(CoreMercator, InverseReturnsTheLatitudeOfTheExactIsometricLatitude) {
    // The northing of the exact isometric latitude, back through the
    // conformal series to e^8: its truncation is below 2e-12 rad (13 um).
    for (double latTs : {0.0, 45.0}) {
        MercState s(merc_create(ref::kKrassA, ref::kKrassRf, 0.0, latTs));
        for (double lat = -89.0; lat <= 89.0; lat += 1.0) {
            const double north = s->a * s->k0 * isometric(s->e2, lat);
            double la, lo;
            ASSERT_EQ(merc_pr_to_geo(s.get(), 0.0, north, &la, &lo, 0, 0), 0);
            EXPECT_NEAR(ref::rad(la - lat) * s->a, 0.0, 2e-5) << lat;
        }
    }
}

TEST(CoreMercator, SphereIsTheSphericalMercator) {
    // rf <= 0: e = 0, y = R k0 ln tan(pi/4 + phi/2), and the inverse is exact.
    const double R = 6371000.0;
    MercState s(merc_create(R, 0.0, 0.0, 30.0));
    EXPECT_EQ(s->e, 0.0);
    EXPECT_DOUBLE_EQ(s->k0, std::cos(ref::rad(30.0)));
    for (double lat = -85.0; lat <= 85.0; lat += 5.0) {
        double east, north, la, lo;
        ASSERT_EQ(merc_geo_to_pr(s.get(), lat, 10.0, &east, &north, 0, 0), 0);
        const double y = static_cast<double>(R * s->k0 *
                                             std::log(std::tan(ref::kPiL / 4 + lat * ref::kPiL / 360.0L)));
        EXPECT_NEAR(north, y, 1e-7) << lat;
        merc_pr_to_geo(s.get(), east, north, &la, &lo, 0, 0);
        EXPECT_NEAR(la, lat, 1e-12) << lat;
        EXPECT_NEAR(lo, 10.0, 1e-12) << lat;
    }
}

TEST(CoreMercator, NullState) {
    double x = kUnwritten, y = kUnwritten;
    EXPECT_EQ(merc_geo_to_pr(nullptr, 0, 0, &x, &y, 0, 0), -1);
    EXPECT_EQ(merc_pr_to_geo(nullptr, 0, 0, &x, &y, 0, 0), -1);
    EXPECT_EQ(x, kUnwritten);
    EXPECT_EQ(y, kUnwritten);
    merc_free(nullptr);
}

}  // namespace
