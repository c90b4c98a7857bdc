// The Cartesian system: the axes, and the surface formula of the inverse
// (exact on the surface, a known latitude error above it).
#include "cartesian.h"

#include <gtest/gtest.h>

#include <cmath>

#include "reference.h"
#include "state_ptr.h"

namespace {

constexpr double kUnwritten = -12345.678;

TEST(CoreCartesian, ForwardCases) {
    const double a = ref::kWgs84A, f = 1.0 / ref::kWgs84Rf, b = a * (1 - f), e2 = ref::e2_of(ref::kWgs84Rf);
    double X45, Y45, Z45;
    ref::to_geocentric(a, e2, 45.0, 45.0, 1000.0, &X45, &Y45, &Z45);
    struct Row {
        double lat, lon, h, X, Y, Z;
        const char* why;
    } rows[] = {
        {0, 0, 0, a, 0, 0, "on the equator at Greenwich: X = a"},
        {0, 90, 0, 0, a, 0, "90 east: Y = a"},
        {90, 0, 0, 0, 0, b, "the north pole: Z = b"},
        {-90, 0, 100, 0, 0, -(b + 100), "the south pole, 100 m up"},
        {45, 45, 1000, X45, Y45, Z45, "the height enters every component"},
    };
    PlainState s(decart_create(a, ref::kWgs84Rf));
    for (const Row& r : rows) {
        double X, Y, Z;
        EXPECT_EQ(decart_geo_to_pr(s.get(), r.lat, r.lon, r.h, &X, &Y, &Z), 0);
        // Bound: cos(pi/2) in double is 6e-17, a few 1e-10 m at a radius of 6e6 m.
        EXPECT_NEAR(X, r.X, 1e-8) << r.why;
        EXPECT_NEAR(Y, r.Y, 1e-8) << r.why;
        EXPECT_NEAR(Z, r.Z, 1e-8) << r.why;
    }
}

TEST(CoreCartesian, InverseIsExactOnTheSurfaceAndAHeightGoesToZero) {
    const double a = ref::kWgs84A, e2 = ref::e2_of(ref::kWgs84Rf);
    PlainState s(decart_create(a, ref::kWgs84Rf));
    struct Row {
        double lat, lon, h;
        const char* why;
    } rows[] = {
        {0, 0, 0, "origin of the angles"},
        {45, 45, 0, "on the surface: exact"},
        {-33.5, -120.25, 0, "on the surface: exact"},
        {45, 45, 1000, "1000 m up: the surface formula's error"},
        {60, -10, 10000, "10 km up"},
    };
    for (const Row& r : rows) {
        double X, Y, Z, lat, lon, h = kUnwritten;
        decart_geo_to_pr(s.get(), r.lat, r.lon, r.h, &X, &Y, &Z);
        EXPECT_EQ(decart_pr_to_geo(s.get(), X, Y, Z, &lat, &lon, &h), 0);
        // tan phi' = Z / (p (1 - e^2)) = tan phi ((1 - e^2) N + h) / ((N + h)(1 - e^2)).
        const long double phi = r.lat * ref::kPiL / 180, sp = std::sin(phi);
        const long double N = a / std::sqrt(1 - e2 * sp * sp);
        const double expected = static_cast<double>(
            std::atan(std::tan(phi) * ((1 - e2) * N + r.h) / ((N + r.h) * (1 - e2))) * 180 / ref::kPiL);
        EXPECT_NEAR(lat, expected, 1e-12) << r.why;
        EXPECT_NEAR(lon, r.lon, 1e-12) << r.why;
        EXPECT_EQ(h, 0.0) << r.why;
        if (r.h > 0) {
            EXPECT_GT(lat, r.lat) << "above the surface the formula overshoots";
        }
    }
    double lat = kUnwritten, lon = kUnwritten, h = kUnwritten;
    EXPECT_EQ(decart_pr_to_geo(s.get(), 0, 0, 0, &lat, &lon, &h), 0);
    EXPECT_EQ(lat, 0.0);
    EXPECT_EQ(lon, 0.0);
    EXPECT_EQ(h, 0.0);
}

TEST(CoreCartesian, NullState) {
    double x = kUnwritten, y = kUnwritten, z = kUnwritten;
    EXPECT_EQ(decart_geo_to_pr(nullptr, 0, 0, 0, &x, &y, &z), -1);
    EXPECT_EQ(decart_pr_to_geo(nullptr, 1, 1, 1, &x, &y, &z), -1);
    EXPECT_EQ(x, kUnwritten);
    EXPECT_EQ(y, kUnwritten);
    EXPECT_EQ(z, kUnwritten);
}

}  // namespace
