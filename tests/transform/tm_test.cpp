// The shared helpers, the series and the Transverse Mercator family, against
// exact references (integrated meridian arcs, closed spherical formulas) and
// a literal transcription of the series.
#include "tm.h"

#include <gtest/gtest.h>

#include <cmath>

#include "reference.h"

namespace {

constexpr double kUnwritten = -12345.678;

TEST(CoreHelpers, NormalizeLonDegAndAngleRadWrap) {
    const double lon[][2] = {{0, 0}, {179.9, 179.9}, {180, -180}, {-180, -180}, {-180.5, 179.5}, {190, -170},
                             {540, 180}};
    for (const auto& r : lon) EXPECT_EQ(normalize_lon_deg(r[0]), r[1]) << r[0];
    const double pi = kPi;  // at most two turns; bound: two roundings of 2 pi
    const double ang[][2] = {{0, 0}, {pi, pi}, {-pi, -pi}, {pi + 0.25, -pi + 0.25}, {-pi - 0.25, pi - 0.25},
                             {4 * pi + 0.5, 0.5}, {7 * pi, 3 * pi}};
    for (const auto& r : ang) EXPECT_NEAR(normalize_angle_rad(r[0]), r[1], 1e-14) << r[0];
}

TEST(CoreHelpers, StateInitReadsTheSecondParameterByItsSize) {
    const double a = ref::kWgs84A, e2 = ref::e2_of(ref::kWgs84Rf), b = a * (1.0 - 1.0 / ref::kWgs84Rf);
    const double rows[][2] = {{ref::kWgs84Rf, e2}, {b, e2}, {e2, e2}, {1.0, 1.0}, {0.0, 0.0}, {-5.0, 0.0}};
    for (const auto& r : rows) {
        ProjState s{};
        ASSERT_EQ(projection_state_init(&s, a, r[0], 45.0, 190.0), 0);
        EXPECT_NEAR(s.e2, r[1], 1e-15) << r[0];  // b^2/a^2 cancels a few ulps
        EXPECT_NEAR(s.e, std::sqrt(r[1]), 1e-13) << r[0];
        EXPECT_EQ(s.a, a);
        EXPECT_NEAR(s.sinLat0, std::sqrt(0.5), 3e-16);
        EXPECT_NEAR(s.cosLat0, std::sqrt(0.5), 3e-16);
        EXPECT_NEAR(s.lon0, ref::rad(-170.0), 1e-15);
        EXPECT_EQ(s.latMin, -90.0);
        EXPECT_EQ(s.lonMin, -180.0);
        EXPECT_EQ(s.latMax, 90.0);
        EXPECT_EQ(s.lonMax, 180.0);
    }
    EXPECT_EQ(projection_state_init(nullptr, a, ref::kWgs84Rf, 0, 0), -1);
}

TEST(CoreHelpers, CheckAreaWithMarginsAndThe180Meridian) {
    PlainState cm0(tm_create(ref::kWgs84A, ref::kWgs84Rf, 0, 0, 1));
    PlainState cm170(tm_create(ref::kWgs84A, ref::kWgs84Rf, 0, 170, 1));
    ProjState globe{};
    projection_state_init(&globe, ref::kWgs84A, ref::kWgs84Rf, 0, 0);
    const struct {
        const ProjState* s;
        double lat, lon;
        int status;
    } rows[] = {
        {cm0.get(), 0, 0, 0},        {cm0.get(), 89.95, 30, 0},     {cm0.get(), 89.97, 0, 17},
        {cm0.get(), 90.0, 0, 17},    {cm0.get(), 90.5, 0, -17},     {cm0.get(), -91.0, 0, -17},
        {cm0.get(), -89.97, 0, 17},  {cm0.get(), 0, 31.5, 17},      {cm0.get(), 0, -32.0, 17},
        {cm0.get(), 0, 33.0, -17},   {cm0.get(), 0, -33.0, -17},    {cm0.get(), 89.97, 31.0, 17},
        {cm0.get(), NAN, 0, -17},    {cm0.get(), 0, 541, -17},      {cm170.get(), 0, -175.0, 0},
        {cm170.get(), 0, 180.0, 0},  {cm170.get(), 0, -180.0, 0},   {cm170.get(), 0, -159.0, 17},
        {cm170.get(), 0, -157.0, -17}, {cm170.get(), 0, 139.0, 17}, {cm170.get(), 0, 137.0, -17},
        {cm170.get(), 0, 0.0, -17},  {&globe, 0, 180.0, 0},         {&globe, 0, 181.0, 17},
    };
    for (const auto& r : rows) EXPECT_EQ(check_area(r.s, r.lat, r.lon), r.status) << r.lat << "," << r.lon;
}

struct Figure {
    double a, rf;
};
const Figure kFigures[] = {{ref::kWgs84A, ref::kWgs84Rf}, {ref::kKrassA, ref::kKrassRf}};

TEST(CoreSeries, AgainstTheExactFunctions) {
    // Meridian arc to e^6: the e^8 terms left out reach 0.96 mm (bound 1 mm).
    // Footpoint to n^4: n^5 ~ 1.4e-12 rad (bound 1e-10). Conformal inverse
    // to e^8: the e^10 terms stay below 1e-11 rad.
    for (const Figure& f : kFigures) {
        const double e2 = ref::e2_of(f.rf), e = std::sqrt(e2);
        double en[5], fp[4], cc[4];
        meridian_arc_coefficients(e, e2, en);
        footpoint_coefficients(e, e2, fp);
        conformal_coefficients(e, e2, cc);
        for (double lat = -89.0; lat <= 89.0; lat += 2.0) {
            SCOPED_TRACE(lat);
            const double phi = ref::rad(lat), M = ref::meridian_arc(f.a, e2, phi);
            EXPECT_NEAR(f.a * meridian_arc(en, phi, std::sin(phi), std::cos(phi)), M, 1e-3);
            const double mu = M / (f.a * en[0]);
            EXPECT_NEAR(mu + footpoint_correction(fp, std::sin(mu), std::cos(mu)), phi, 1e-10);
            const long double p = phi, es = e * std::sin(p);
            const double chi = static_cast<double>(
                2 * std::atan(std::tan(ref::kPiL / 4 + p / 2) * std::pow((1 - es) / (1 + es), e / 2)) - ref::kPiL / 2);
            EXPECT_NEAR(conformal_to_geodetic(cc, chi, std::sin(chi), std::cos(chi)), phi, 1e-11);
        }
    }
    double en[5], fp[4], cc[4];  // the sphere leaves the series out
    meridian_arc_coefficients(0.0, 0.0, en);
    footpoint_coefficients(0.0, 0.0, fp);
    conformal_coefficients(0.0, 0.0, cc);
    for (double x : {-1.5, 0.7}) {
        EXPECT_EQ(meridian_arc(en, x, std::sin(x), std::cos(x)), x);
        EXPECT_EQ(footpoint_correction(fp, std::sin(x), std::cos(x)), 0.0);
        EXPECT_EQ(conformal_to_geodetic(cc, x, std::sin(x), std::cos(x)), x);
    }
}

TEST(CoreUtm, ZoneIsForcedOrChosenFromTheLongitude) {
    PlainState s(utm_create(ref::kWgs84A, ref::kWgs84Rf));
    const struct {
        long in;
        double lon;
        long out;
    } rows[] = {{0, 0.0, 31}, {0, 5.999, 31}, {0, 6.0, 32}, {0, -0.1, 30}, {0, -180.0, 1}, {0, -174.0, 2},
                {0, 179.9, 60}, {0, 180.0, 60}, {-1, 3.0, 31}, {61, 3.0, 31}, {1, -170.0, 1}, {60, 170.0, 60},
                {38, 44.9, 38}, {0, -181.0, 1}};
    for (const auto& r : rows) {
        long zone = r.in;
        double east = kUnwritten, north = kUnwritten;
        EXPECT_GE(utm_geo_to_pr(s.get(), 10.0, r.lon, &zone, &east, &north), 0) << r.in << " " << r.lon;
        EXPECT_EQ(zone, r.out) << r.in << " " << r.lon;
        EXPECT_TRUE(std::isfinite(east) && std::isfinite(north)) << r.in << " " << r.lon;
    }
    long zone = 1;  // forced far away: refused, nothing written
    double east = kUnwritten, north = kUnwritten;
    EXPECT_EQ(utm_geo_to_pr(s.get(), 10.0, 100.0, &zone, &east, &north), -2);
    EXPECT_EQ(zone, 1);
    EXPECT_EQ(east, kUnwritten);
    EXPECT_EQ(north, kUnwritten);
}

TEST(CoreUtm, AZoneIsTheTransverseMercatorOfItsMeridian) {
    PlainState utm(utm_create(ref::kWgs84A, ref::kWgs84Rf));
    PlainState tm(tm_create(ref::kWgs84A, ref::kWgs84Rf, 0, 45, 0.9996));  // zone 38
    const double e2 = ref::e2_of(ref::kWgs84Rf);
    for (const auto& p : {std::pair{55.0, 40.0}, {-30.0, 47.5}, {0.5, 44.0}, {-10.0, 45.0}}) {
        long zone = 38;
        double e1, n1, e2m, n2, lat, lon;
        ASSERT_EQ(utm_geo_to_pr(utm.get(), p.first, p.second, &zone, &e1, &n1), 0);
        ASSERT_EQ(tm_geo_to_pr(tm.get(), p.first, p.second, &e2m, &n2, 500000, p.first < 0 ? 10000000 : 0), 0);
        EXPECT_NEAR(e1, e2m, 1e-6);  // only the rounding of the meridian in radians differs
        EXPECT_NEAR(n1, n2, 1e-6);
        EXPECT_EQ(utm_pr_to_geo(utm.get(), 38, e1, p.first < 0 ? -n1 : n1, &lat, &lon), 0);
        EXPECT_NEAR(lat, p.first, 1e-8);
        EXPECT_NEAR(lon, p.second, 1e-8);
    }
    // 10 000 000 less k0 times the exact arc; the series' truncation is under 1 mm.
    long zone = 0;
    double east, north;
    utm_geo_to_pr(utm.get(), -10.0, 45.0, &zone, &east, &north);
    EXPECT_NEAR(north, 1e7 - 0.9996 * ref::meridian_arc(ref::kWgs84A, e2, ref::rad(10.0)), 1e-3);
    zone = 0;
    utm_geo_to_pr(utm.get(), 45.0, 3.0, &zone, &east, &north);
    EXPECT_NEAR(north, 4982950.400, 5e-4);  // the published figure
}

TEST(CoreTm, AreaMarginAndRefusal) {
    PlainState s(tm_create(ref::kWgs84A, ref::kWgs84Rf, 0, 0, 1));
    const struct {
        double lat, lon;
        int status;
    } rows[] = {{45, 10, 0}, {89.97, 0, 17}, {-89.97, 0, 17}, {0, 31, 17}, {92, 0, -2}, {0, 33, -2}};
    for (const auto& r : rows) {
        double east = kUnwritten, north = kUnwritten;
        EXPECT_EQ(tm_geo_to_pr(s.get(), r.lat, r.lon, &east, &north, 0, 0), r.status) << r.lat << "," << r.lon;
        EXPECT_EQ(std::isfinite(east) && east != kUnwritten, r.status >= 0);
        EXPECT_EQ(std::isfinite(north) && north != kUnwritten, r.status >= 0);
    }
}

TEST(CoreTm, CentralMeridian170WrapsTheLongitudeDifference) {
    PlainState cm170(tm_create(ref::kWgs84A, ref::kWgs84Rf, 0, 170, 0.9996));
    PlainState cm0(tm_create(ref::kWgs84A, ref::kWgs84Rf, 0, 0, 0.9996));
    double e1, n1, e2, n2, lat1, lon1, lat2, lon2;
    EXPECT_EQ(tm_geo_to_pr(cm170.get(), 30.0, -175.0, &e1, &n1, 0, 0), 0);
    EXPECT_EQ(tm_geo_to_pr(cm0.get(), 30.0, 15.0, &e2, &n2, 0, 0), 0);
    EXPECT_NEAR(e1, e2, 1e-6);
    EXPECT_NEAR(n1, n2, 1e-6);
    EXPECT_EQ(tm_pr_to_geo(cm170.get(), e1, n1, &lat1, &lon1, 0, 0), 0);
    EXPECT_EQ(tm_pr_to_geo(cm0.get(), e1, n1, &lat2, &lon2, 0, 0), 0);
    EXPECT_NEAR(lat1, lat2, 1e-9);
    EXPECT_NEAR(lon1, lon2 + 170.0 - 360.0, 1e-9);
}

TEST(CoreTm, GaussKrugerOnTheCentralMeridianIsTheArc) {
    const double e2 = ref::e2_of(ref::kKrassRf);
    for (const auto& [lat0, fn] : {std::pair{0.0, 0}, {40.0, 100}, {-20.0, -5000}}) {
        PlainState s(tm_create(ref::kKrassA, ref::kKrassRf, lat0, 39.0, 1.0));
        double east, north, lat, lon;
        ASSERT_EQ(tm_geo_to_pr(s.get(), 55.0, 39.0, &east, &north, 500000, fn), 0);
        EXPECT_EQ(east, 500000.0);
        EXPECT_NEAR(north, ref::meridian_arc(ref::kKrassA, e2, ref::rad(55.0)) -
                               ref::meridian_arc(ref::kKrassA, e2, ref::rad(lat0)) + fn, 1e-3) << lat0;
        ASSERT_EQ(tm_pr_to_geo(s.get(), 500000, north, &lat, &lon, 500000, fn), 0);
        EXPECT_NEAR(lat, 55.0, 1e-8);
        EXPECT_NEAR(lon, 39.0, 1e-12);
    }
}

// The series written out literally: separate sin, cos and tan, a second sine
// and cosine at the footpoint, every division where the formula writes it.
struct Literal {
    double a, e2, ep2, k0, lon0, k0m0, E0, E1, E2, E3, B1, B2, B3, B4;
    static constexpr double d2r = 0.017453292519943295;

    Literal(double a_, double rf, double lat0, double lon0Deg, double k0_) : a(a_), k0(k0_) {
        const double f = 1.0 / rf;
        e2 = (2 - f) * f;
        ep2 = e2 / (1 - e2);
        E0 = 1 - e2 / 4 - 3 * e2 * e2 / 64 - 5 * e2 * e2 * e2 / 256;
        E1 = 3 * e2 / 8 + 3 * e2 * e2 / 32 + 45 * e2 * e2 * e2 / 1024;
        E2 = 15 * e2 * e2 / 256 + 45 * e2 * e2 * e2 / 1024;
        E3 = 35 * e2 * e2 * e2 / 3072;
        const double n = (1 - std::sqrt(1 - e2)) / (1 + std::sqrt(1 - e2));
        B1 = 3 * n / 2 - 27 * std::pow(n, 3) / 32;
        B2 = 21 * n * n / 16 - 55 * std::pow(n, 4) / 32;
        B3 = 151 * std::pow(n, 3) / 96;
        B4 = 1097 * std::pow(n, 4) / 512;
        lon0 = lon0Deg * d2r;
        k0m0 = k0 * m(lat0 * d2r);
    }
    double m(double p) const { return E0 * p - E1 * std::sin(2 * p) + E2 * std::sin(4 * p) - E3 * std::sin(6 * p); }

    void forward(double lat, double lon, double* east, double* north) const {
        const double dl = lon * d2r - lon0, L = dl * dl, p = lat * d2r, s = std::sin(p), c = std::cos(p);
        const double T = std::pow(std::tan(p), 2), h = ep2 * c * c, knu = k0 * a / std::sqrt(1 - e2 * s * s);
        const double t2 = knu * s * c / 2;
        const double t3 = knu * s * std::pow(c, 3) * (5 - T + 9 * h + 4 * h * h) / 24;
        const double t4 = knu * s * std::pow(c, 5) *
                          (61 - 58 * T + T * T + 270 * h - 330 * T * h + 445 * h * h - 680 * T * h * h +
                           324 * std::pow(h, 3) - 600 * T * std::pow(h, 3) + 88 * std::pow(h, 4) -
                           192 * T * std::pow(h, 4)) / 720;
        const double t5 = knu * s * std::pow(c, 7) * (1385 - 3111 * T + 543 * T * T - T * T * T) / 40320;
        const double t7 = knu * std::pow(c, 3) * (1 - T + h) / 6;
        const double t8 = knu * std::pow(c, 5) *
                          (5 - 18 * T + T * T + 14 * h - 58 * T * h + 13 * h * h - 64 * T * h * h +
                           4 * std::pow(h, 3) - 24 * T * std::pow(h, 3)) / 120;
        const double t9 = knu * std::pow(c, 7) * (61 - 479 * T + 179 * T * T - T * T * T) / 5040;
        *north = k0 * a * m(p) - a * k0m0 + t2 * L + t3 * L * L + t4 * std::pow(L, 3) + t5 * std::pow(L, 4);
        *east = dl * (knu * c + t7 * L + t8 * L * L + t9 * std::pow(L, 3));
    }

    void inverse(double east, double north, double* lat, double* lon) const {
        const double X = east * east, mu = ((north / a) + k0m0) / k0 / E0;
        const double p1 = mu + B1 * std::sin(2 * mu) + B2 * std::sin(4 * mu) + B3 * std::sin(6 * mu) +
                          B4 * std::sin(8 * mu);
        const double s = std::sin(p1), c = std::cos(p1), t = std::tan(p1), T = t * t, h = ep2 * c * c;
        const double rho = a * (1 - e2) / std::pow(1 - e2 * s * s, 1.5), nu = rho * (1 + h);
        const double t10 = t / (2 * rho * nu * k0 * k0);
        const double t11 =
            t * (5 + 3 * T + h - 9 * T * h - 4 * h * h) / (24 * rho * std::pow(nu, 3) * std::pow(k0, 4));
        const double t12 = t *
                           (61 + 90 * T + 45 * T * T + 46 * h - 252 * T * h - 90 * T * T * h - 3 * h * h -
                            66 * T * h * h + 225 * T * T * h * h + 100 * std::pow(h, 3) + 84 * T * std::pow(h, 3) +
                            88 * std::pow(h, 4) - 192 * T * std::pow(h, 4)) /
                           (720 * rho * std::pow(nu, 5) * std::pow(k0, 6));
        const double t13 = t * (1385 + 3633 * T + 4095 * T * T + 1575 * T * T * T) /
                           (40320 * rho * std::pow(nu, 7) * std::pow(k0, 8));
        const double t15 = (1 + 2 * T + h) / (6 * std::pow(nu, 3) * c * std::pow(k0, 3));
        const double t16 = (5 + 6 * h + 28 * T - 3 * h * h + 8 * T * h + 24 * T * T - 4 * std::pow(h, 3) +
                            4 * T * h * h + 24 * T * std::pow(h, 3)) / (120 * std::pow(nu, 5) * c * std::pow(k0, 5));
        const double t17 = (61 + 662 * T + 1320 * T * T + 720 * T * T * T) / (5040 * std::pow(nu, 7) * c * std::pow(k0, 7));
        *lat = (p1 - X * t10 + X * X * t11 - X * X * X * t12 + X * X * X * X * t13) / d2r;
        *lon = (lon0 + east * (1 / (nu * c * k0) - X * t15 + X * X * t16 - X * X * X * t17)) / d2r;
    }
};

TEST(CoreTm, OptimisedEvaluationIsTheLiteralSeriesToRounding) {
    // Same formulas rearranged (Horner, divisions in the state, one sincos):
    // only rounding differs. Bounds: 25 ulps of a 1e7 m coordinate, and
    // 1e-12 degree (0.1 um). rf 50 takes the footpoint from a second sincos.
    const struct {
        double a, rf, lat0, lon0, k0;
    } rows[] = {{ref::kWgs84A, ref::kWgs84Rf, 0, 0, 0.9996}, {ref::kKrassA, ref::kKrassRf, 0, 39, 1.0},
                {ref::kWgs84A, ref::kWgs84Rf, 49, -2, 0.9996012717}, {ref::kWgs84A, 50.0, 0, 10, 1.0}};
    for (const auto& r : rows) {
        PlainState s(tm_create(r.a, r.rf, r.lat0, r.lon0, r.k0));
        EXPECT_EQ(s->tm.smallFoot, r.rf > 100 ? 1.0 : 0.0) << r.rf;
        const Literal lit(r.a, r.rf, r.lat0, r.lon0, r.k0);
        for (double lat = -89.5; lat <= 89.5; lat += 0.5) {
            for (double dl = -30.0; dl <= 30.0; dl += 2.5) {
                double e1, n1, e2, n2, la1, lo1, la2, lo2;
                ASSERT_EQ(tm_geo_to_pr(s.get(), lat, r.lon0 + dl, &e1, &n1, 0, 0), 0);
                lit.forward(lat, r.lon0 + dl, &e2, &n2);
                EXPECT_NEAR(e1, e2, 5e-8) << r.rf << " " << lat << "," << dl;
                EXPECT_NEAR(n1, n2, 5e-8) << r.rf << " " << lat << "," << dl;
                if (std::fabs(dl) > 10 || std::fabs(lat) > 85) continue;  // where the inverse series serve
                tm_pr_to_geo(s.get(), e2, n2, &la1, &lo1, 0, 0);
                lit.inverse(e2, n2, &la2, &lo2);
                EXPECT_NEAR(la1, la2, 1e-12) << r.rf << " " << lat << "," << dl;
                EXPECT_NEAR(lo1, lo2, 1e-12) << r.rf << " " << lat << "," << dl;
            }
        }
    }
}

}  // namespace
