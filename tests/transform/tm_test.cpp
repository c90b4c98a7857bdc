// The shared helpers, the series and the Transverse Mercator family: worked
// examples, zone choice, areas and margins, against exact references
// (numerically integrated meridian arcs, closed spherical formulas) and
// against a literal transcription of the series.
#include "tm.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <vector>

#include "reference.h"
#include "state_ptr.h"

namespace {

constexpr double kUnwritten = -12345.678;  // sentinel: "nothing written"

// ---------------------------------------------------------------------------
// Helpers.

TEST(CoreHelpers, NormalizeLonDegWrapsOnce) {
    struct Row {
        double in, out;
        const char* why;
    } rows[] = {
        {0.0, 0.0, "inside"},
        {179.9, 179.9, "inside"},
        {180.0, -180.0, "180 belongs to the west end"},
        {-180.0, -180.0, "-180 is kept"},
        {-180.5, 179.5, "just west of -180"},
        {190.0, -170.0, "just east of 180"},
        {540.0, 180.0, "one step only"},
    };
    for (const Row& r : rows) EXPECT_EQ(normalize_lon_deg(r.in), r.out) << r.why;
}

TEST(CoreHelpers, NormalizeAngleRadTurnsAtMostTwice) {
    const double pi = kPi;
    struct Row {
        double in, out;
        const char* why;
    } rows[] = {
        {0.0, 0.0, "inside"},
        {pi, pi, "pi itself stays"},
        {-pi, -pi, "-pi itself stays"},
        {pi + 0.25, -pi + 0.25, "one turn down"},
        {-pi - 0.25, pi - 0.25, "one turn up"},
        {4.0 * pi + 0.5, 0.5, "two turns"},
        {7.0 * pi, 3.0 * pi, "an absurd angle: two turns and no more"},
    };
    // Bound: the rounding of one or two additions of 2 pi to an angle of a few pi.
    for (const Row& r : rows) EXPECT_NEAR(normalize_angle_rad(r.in), r.out, 1e-14) << r.why;
}

TEST(CoreHelpers, StateInitReadsTheSecondParameterByItsSize) {
    const double a = ref::kWgs84A;
    const double f = 1.0 / ref::kWgs84Rf;
    const double e2 = f * (2.0 - f);
    const double b = a * (1.0 - f);
    struct Row {
        double second, e2;
        const char* why;
    } rows[] = {
        {ref::kWgs84Rf, e2, "inverse flattening"},
        {b, e2, "semi-minor axis (above 1e6)"},
        {e2, e2, "e^2 itself (at most 1)"},
        {0.0, 0.0, "sphere"},
        {-5.0, 0.0, "negative: sphere"},
    };
    for (const Row& r : rows) {
        ProjState s{};
        ASSERT_EQ(projection_state_init(&s, a, r.second, 45.0, 190.0), 0);
        // Bound: b^2/a^2 loses a few ulps of 1 to cancellation.
        EXPECT_NEAR(s.e2, r.e2, 1e-15) << r.why;
        EXPECT_NEAR(s.e, std::sqrt(r.e2), 1e-13) << r.why;
        EXPECT_EQ(s.a, a);
        // One rounding of the angle and of its sine and cosine.
        EXPECT_NEAR(s.lat0, ref::rad(45.0), 3e-16);
        EXPECT_NEAR(s.sinLat0, std::sqrt(0.5), 3e-16);
        EXPECT_NEAR(s.cosLat0, std::sqrt(0.5), 3e-16);
        EXPECT_NEAR(s.lon0, ref::rad(-170.0), 1e-15) << "central meridian wrapped into [-pi, pi]";
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
    struct Row {
        const ProjState* s;
        double lat, lon;
        int status;
        const char* why;
    } rows[] = {
        {cm0.get(), 0, 0, 0, "centre"},
        {cm0.get(), 89.95, 30, 0, "corner of the area, bounds inclusive"},
        {cm0.get(), 89.97, 0, 17, "latitude in the margin"},
        {cm0.get(), 90.0, 0, 17, "the pole: margin clamped to 90"},
        {cm0.get(), 90.5, 0, -17, "beyond the pole"},
        {cm0.get(), -91.0, 0, -17, "beyond the south pole"},
        {cm0.get(), 0, 31.5, 17, "longitude in the margin"},
        {cm0.get(), 0, -32.0, 17, "margin bound inclusive"},
        {cm0.get(), 0, 33.0, -17, "outside"},
        {cm0.get(), 89.97, 31.0, 17, "both in the margin"},
        {cm170.get(), 0, -175.0, 0, "area 140..-160 across 180"},
        {cm170.get(), 0, 180.0, 0, "180 itself"},
        {cm170.get(), 0, -180.0, 0, "-180 itself"},
        {cm170.get(), 0, -159.0, 17, "east margin across 180"},
        {cm170.get(), 0, -157.0, -17, "east of the margin"},
        {cm170.get(), 0, 139.0, 17, "west margin"},
        {cm170.get(), 0, 137.0, -17, "west of the margin"},
        {cm170.get(), 0, 0.0, -17, "the far side"},
        {&globe, 0, 180.0, 0, "whole globe"},
        {&globe, 0, 181.0, 17, "the widened globe wraps: 181 lies in its margin"},
    };
    for (const Row& r : rows) EXPECT_EQ(check_area(r.s, r.lat, r.lon), r.status) << r.why << " " << r.lat << "," << r.lon;
}

// ---------------------------------------------------------------------------
// Series.

struct Figure {
    const char* name;
    double a, rf;
};
const Figure kFigures[] = {{"WGS 84", ref::kWgs84A, ref::kWgs84Rf}, {"Krassovsky 1940", ref::kKrassA, ref::kKrassRf}};

TEST(CoreSeries, MeridianArcAgainstTheIntegral) {
    // The series stops at e^6. The e^8 terms left out amount to at most about
    // 0.075 a e^8 (a e^8 = 12.8 mm on both figures): 0.956 mm near 70.5
    // degrees. This is what keeps the forward just under 1 mm. Bound 1 mm.
    for (const Figure& f : kFigures) {
        const double e2 = ref::e2_of(f.rf);
        double en[5];
        meridian_arc_coefficients(std::sqrt(e2), e2, en);
        for (double latDeg = -90.0; latDeg <= 90.0; latDeg += 2.5) {
            const double phi = ref::rad(latDeg);
            const double m = f.a * meridian_arc(en, phi, std::sin(phi), std::cos(phi));
            EXPECT_NEAR(m, ref::meridian_arc(f.a, e2, phi), 1e-3) << f.name << " at " << latDeg;
        }
    }
}

TEST(CoreSeries, FootpointInvertsTheRectifyingLatitude) {
    // mu = M(phi) / (a en[0]); the footpoint series in n to n^4 returns phi to
    // its truncation (n^5 ~ 1.4e-12 rad, well under 1e-10 rad = 0.6 mm).
    for (const Figure& f : kFigures) {
        const double e2 = ref::e2_of(f.rf);
        double en[5], fp[4];
        meridian_arc_coefficients(std::sqrt(e2), e2, en);
        footpoint_coefficients(std::sqrt(e2), e2, fp);
        for (double latDeg = -89.0; latDeg <= 89.0; latDeg += 2.0) {
            const double mu = ref::meridian_arc(f.a, e2, ref::rad(latDeg)) / (f.a * en[0]);
            const double phi1 = mu + footpoint_correction(fp, std::sin(mu), std::cos(mu));
            EXPECT_NEAR(phi1, ref::rad(latDeg), 1e-10) << f.name << " at " << latDeg;
        }
    }
}

TEST(CoreSeries, ConformalInverseRecoversTheLatitude) {
    // chi exactly from phi; the series back, to e^8: the e^10 terms left out
    // are below 1e-11 rad.
    for (const Figure& f : kFigures) {
        const double e2 = ref::e2_of(f.rf), e = std::sqrt(e2);
        double cc[4];
        conformal_coefficients(e, e2, cc);
        for (double latDeg = -89.0; latDeg <= 89.0; latDeg += 2.0) {
            const long double phi = latDeg * ref::kPiL / 180.0L, es = e * std::sin(phi);
            const double chi = static_cast<double>(
                2.0L * std::atan(std::tan(ref::kPiL / 4 + phi / 2) * std::pow((1 - es) / (1 + es), e / 2)) -
                ref::kPiL / 2);
            EXPECT_NEAR(conformal_to_geodetic(cc, chi, std::sin(chi), std::cos(chi)), ref::rad(latDeg), 1e-11)
                << f.name << " at " << latDeg;
        }
    }
}

TEST(CoreSeries, SphereLeavesTheSeriesOut) {
    double en[5], fp[4], cc[4];
    meridian_arc_coefficients(0.0, 0.0, en);
    footpoint_coefficients(0.0, 0.0, fp);
    conformal_coefficients(0.0, 0.0, cc);
    for (double x : {-1.5, -0.3, 0.0, 0.7, 1.5}) {
        EXPECT_EQ(meridian_arc(en, x, std::sin(x), std::cos(x)), x);
        EXPECT_EQ(x + footpoint_correction(fp, std::sin(x), std::cos(x)), x);
        EXPECT_EQ(conformal_to_geodetic(cc, x, std::sin(x), std::cos(x)), x);
    }
}

// ---------------------------------------------------------------------------
// UTM.

TEST(CoreUtm, ZoneChoiceFromTheLongitude) {
    PlainState s(utm_create(ref::kWgs84A, ref::kWgs84Rf));
    struct Row {
        long zoneIn;
        double lon;
        long zoneOut;
        const char* why;
    } rows[] = {
        {0, 0.0, 31, "Greenwich starts zone 31"},
        {0, 5.999, 31, "still 31"},
        {0, 6.0, 32, "the next zone starts at 6"},
        {0, -0.1, 30, "just west of Greenwich"},
        {0, -180.0, 1, "west end"},
        {0, -174.0, 2, "second zone"},
        {0, 179.9, 60, "last zone"},
        {0, 180.0, 60, "61 clamped to 60"},
        {-1, 3.0, 31, "-1 means choose"},
        {61, 3.0, 31, "61 is no zone"},
        {38, 42.0, 38, "a valid zone is kept"},
        {38, 44.9, 38, "and used as given"},
    };
    for (const Row& r : rows) {
        long zone = r.zoneIn;
        double east = kUnwritten, north = kUnwritten;
        utm_geo_to_pr(s.get(), 10.0, r.lon, &zone, &east, &north);
        EXPECT_EQ(zone, r.zoneOut) << r.why;
    }
}

TEST(CoreUtm, WorkedExamples) {
    PlainState s(utm_create(ref::kWgs84A, ref::kWgs84Rf));
    const double e2 = ref::e2_of(ref::kWgs84Rf);
    struct Row {
        double lat, lon;
        long zone;
        double east, north, tol;
        const char* why;
    } rows[] = {
        // The published figures have three decimals.
        {45.0, 3.0, 31, 500000.0, 4982950.400, 5e-4, "45 N 3 E on WGS 84"},
        {0.0, 3.0, 31, 500000.0, 0.0, 1e-9, "equator on the central meridian"},
        // 10 000 000 less k0 times the exact meridian arc; the series' truncation is under 1 mm.
        {-10.0, 3.0, 31, 500000.0, 1e7 - 0.9996 * ref::meridian_arc(ref::kWgs84A, e2, ref::rad(10.0)), 1e-3,
         "southern false northing"},
    };
    for (const Row& r : rows) {
        long zone = 0;
        double east = kUnwritten, north = kUnwritten;
        EXPECT_EQ(utm_geo_to_pr(s.get(), r.lat, r.lon, &zone, &east, &north), 0) << r.why;
        EXPECT_EQ(zone, r.zone) << r.why;
        EXPECT_NEAR(east, r.east, r.tol) << r.why;
        EXPECT_NEAR(north, r.north, r.tol) << r.why;
    }
}

TEST(CoreUtm, NegativeNorthingIsASouthernOneWithoutItsSign) {
    PlainState s(utm_create(ref::kWgs84A, ref::kWgs84Rf));
    const double e2 = ref::e2_of(ref::kWgs84Rf);
    double lat = kUnwritten, lon = kUnwritten;
    EXPECT_EQ(utm_pr_to_geo(s.get(), 31, 500000.0, -8000000.0, &lat, &lon), 0);
    // On the central meridian the latitude is the one whose meridian arc is
    // 2 000 000 / k0; 1e-8 degree is about 1 mm, the series' truncation.
    const double expected = -ref::deg(ref::latitude_of_arc(ref::kWgs84A, e2, 2000000.0 / 0.9996));
    EXPECT_NEAR(lat, expected, 1e-8);
    EXPECT_NEAR(lat, -18.08, 0.01);
    EXPECT_DOUBLE_EQ(lon, 3.0);
}

TEST(CoreUtm, ForcedZoneFarAwayIsRefused) {
    PlainState s(utm_create(ref::kWgs84A, ref::kWgs84Rf));
    long zone = 1;
    double east = kUnwritten, north = kUnwritten;
    EXPECT_EQ(utm_geo_to_pr(s.get(), 10.0, 100.0, &zone, &east, &north), -2);
    EXPECT_EQ(zone, 1);
    EXPECT_EQ(east, kUnwritten);
    EXPECT_EQ(north, kUnwritten);
}

TEST(CoreUtm, ForcedZoneIsTheTransverseMercatorOfItsMeridian) {
    PlainState utm(utm_create(ref::kWgs84A, ref::kWgs84Rf));
    PlainState tm(tm_create(ref::kWgs84A, ref::kWgs84Rf, 0, 45, 0.9996));  // zone 38
    const double pts[][2] = {{55.0, 40.0}, {-30.0, 47.5}, {0.5, 44.0}};
    for (const auto& p : pts) {
        long zone = 38;
        double e1, n1, e2, n2;
        ASSERT_EQ(utm_geo_to_pr(utm.get(), p[0], p[1], &zone, &e1, &n1), 0);
        ASSERT_EQ(tm_geo_to_pr(tm.get(), p[0], p[1], &e2, &n2, 500000, p[0] < 0 ? 10000000 : 0), 0);
        // The two differ only in the rounding of the central meridian in radians.
        EXPECT_NEAR(e1, e2, 1e-6);
        EXPECT_NEAR(n1, n2, 1e-6);
        double lat, lon;
        EXPECT_EQ(utm_pr_to_geo(utm.get(), 38, e1, p[0] < 0 ? -n1 : n1, &lat, &lon), 0);
        EXPECT_NEAR(lat, p[0], 1e-8);
        EXPECT_NEAR(lon, p[1], 1e-8);
    }
}

// ---------------------------------------------------------------------------
// Transverse Mercator and Gauss-Kruger.

TEST(CoreTm, AreaMarginAndRefusal) {
    PlainState s(tm_create(ref::kWgs84A, ref::kWgs84Rf, 0, 0, 1));
    struct Row {
        double lat, lon;
        int status;
        bool written;
        const char* why;
    } rows[] = {
        {45.0, 10.0, 0, true, "inside"},
        {89.97, 0.0, 17, true, "between 89.95 and the margin"},
        {-89.97, 0.0, 17, true, "the same in the south"},
        {0.0, 31.0, 17, true, "longitude in the margin"},
        {92.0, 0.0, -2, false, "beyond the margin"},
        {0.0, 33.0, -2, false, "too far from the meridian"},
    };
    for (const Row& r : rows) {
        double east = kUnwritten, north = kUnwritten;
        EXPECT_EQ(tm_geo_to_pr(s.get(), r.lat, r.lon, &east, &north, 0, 0), r.status) << r.why;
        EXPECT_EQ(east != kUnwritten && north != kUnwritten, r.written) << r.why;
        if (r.written) {
            EXPECT_TRUE(std::isfinite(east) && std::isfinite(north)) << r.why;
        }
    }
}

TEST(CoreTm, CentralMeridian170WrapsTheLongitudeDifference) {
    PlainState cm170(tm_create(ref::kWgs84A, ref::kWgs84Rf, 0, 170, 0.9996));
    PlainState cm0(tm_create(ref::kWgs84A, ref::kWgs84Rf, 0, 0, 0.9996));
    double e1, n1, e2, n2;
    EXPECT_EQ(tm_geo_to_pr(cm170.get(), 30.0, -175.0, &e1, &n1, 0, 0), 0);
    EXPECT_EQ(tm_geo_to_pr(cm0.get(), 30.0, 15.0, &e2, &n2, 0, 0), 0);
    EXPECT_GT(e1, 0.0) << "15 degrees east of the meridian";
    // Same relative longitude; differences only from rounding 170 degrees to radians.
    EXPECT_NEAR(e1, e2, 1e-6);
    EXPECT_NEAR(n1, n2, 1e-6);
    // The inverse lands across 180 as well: 170 plus the relative longitude
    // of the central-meridian-0 state, wrapped.
    double lat1, lon1, lat2, lon2;
    EXPECT_EQ(tm_pr_to_geo(cm170.get(), e1, n1, &lat1, &lon1, 0, 0), 0);
    EXPECT_EQ(tm_pr_to_geo(cm0.get(), e1, n1, &lat2, &lon2, 0, 0), 0);
    EXPECT_NEAR(lat1, lat2, 1e-9);
    EXPECT_NEAR(lon1, lon2 + 170.0 - 360.0, 1e-9);
    EXPECT_NEAR(lon1, -175.0, 1e-4) << "the series' round trip at 15 degrees is good to decimetres";
}

TEST(CoreTm, GaussKrugerOnTheCentralMeridian) {
    // On the central meridian the northing is k0 times the meridian arc from
    // the origin (exact integral; the series' truncation is under 1 mm) and
    // the easting is exactly the false easting.
    const double e2 = ref::e2_of(ref::kKrassRf);
    struct Row {
        double lat0;
        int fn;
    } rows[] = {{0.0, 0}, {40.0, 100}, {-20.0, -5000}};
    for (const Row& r : rows) {
        PlainState s(tm_create(ref::kKrassA, ref::kKrassRf, r.lat0, 39.0, 1.0));
        double east, north;
        ASSERT_EQ(tm_geo_to_pr(s.get(), 55.0, 39.0, &east, &north, 500000, r.fn), 0);
        EXPECT_EQ(east, 500000.0);
        const double expected = ref::meridian_arc(ref::kKrassA, e2, ref::rad(55.0)) -
                                ref::meridian_arc(ref::kKrassA, e2, ref::rad(r.lat0)) + r.fn;
        EXPECT_NEAR(north, expected, 1e-3) << "lat0 " << r.lat0;
    }
}

TEST(CoreTm, SphereAgainstTheClosedSphericalFormulas) {
    // Spherical Transverse Mercator in closed form:
    // x = k0 R atanh(cos phi sin dlam), y = k0 R (atan2(tan phi, cos dlam) - phi0).
    // Within 4 degrees of the meridian the series' truncation on a sphere is
    // far below 1 mm.
    const double R = 6371000.0, k0 = 0.9996, lat0 = 10.0;
    PlainState s(tm_create(R, 0.0, lat0, 20.0, k0));
    EXPECT_EQ(s->e, 0.0);
    EXPECT_EQ(s->tm.ep2, 0.0);
    for (double lat = -84.0; lat <= 84.0; lat += 6.0) {
        for (double dl = -4.0; dl <= 4.0; dl += 1.0) {
            const long double phi = lat * ref::kPiL / 180, lam = dl * ref::kPiL / 180;
            const double x = static_cast<double>(k0 * R * std::atanh(std::cos(phi) * std::sin(lam)));
            const double y = static_cast<double>(
                k0 * R * (std::atan2(std::tan(phi), std::cos(lam)) - lat0 * ref::kPiL / 180));
            double east, north;
            ASSERT_EQ(tm_geo_to_pr(s.get(), lat, 20.0 + dl, &east, &north, 0, 0), 0);
            EXPECT_NEAR(east, x, 1e-3) << lat << "," << dl;
            EXPECT_NEAR(north, y, 1e-3) << lat << "," << dl;
            double la, lo;
            tm_pr_to_geo(s.get(), x, y, &la, &lo, 0, 0);
            EXPECT_NEAR(la, lat, 1e-8) << lat << "," << dl;  // 1e-8 degree ~ 1 mm
            EXPECT_NEAR(lo, 20.0 + dl, 1e-8 / std::cos(ref::rad(lat))) << lat << "," << dl;
        }
    }
}

TEST(CoreTm, RoundTripInsideAZoneWithinAMillimetre) {
    // The footpoint is not iterated and the series are truncated: forward then
    // inverse returns the point to within 1 mm inside a UTM zone.
    for (const Figure& f : kFigures) {
        PlainState s(utm_create(f.a, f.rf));
        for (double lat = -80.0; lat <= 84.0; lat += 2.0) {
            for (double lon = 0.0; lon <= 6.0; lon += 0.5) {
                long zone = 31;
                double east, north, la, lo;
                ASSERT_GE(utm_geo_to_pr(s.get(), lat, lon, &zone, &east, &north), 0);
                utm_pr_to_geo(s.get(), 31, east, lat < 0 ? -north : north, &la, &lo);
                const double dn = (la - lat) * kDegToRad * f.a;
                const double de = (lo - lon) * kDegToRad * f.a * std::cos(lat * kDegToRad);
                EXPECT_LT(std::hypot(dn, de), 1e-3) << f.name << " " << lat << "," << lon;
            }
        }
    }
}

// ---------------------------------------------------------------------------
// The optimised evaluation against a literal transcription of the series:
// separate sin, cos and tan, a second sine and cosine at the footpoint,
// every division where the formula writes it.

struct Literal {
    double a, e2, ep2, k0, lon0, k0m0, E0, E1, E2, E3, B1, B2, B3, B4;

    Literal(double a_, double rf, double lat0Deg, double lon0Deg, double k0_) : a(a_), k0(k0_) {
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
        lon0 = lon0Deg * 0.017453292519943295;
        k0m0 = k0 * m(lat0Deg * 0.017453292519943295);
    }
    double m(double p) const { return E0 * p - E1 * std::sin(2 * p) + E2 * std::sin(4 * p) - E3 * std::sin(6 * p); }

    void forward(double lat, double lon, double* east, double* north) const {
        const double dl = lon * 0.017453292519943295 - lon0, L = dl * dl;
        const double p = lat * 0.017453292519943295, s = std::sin(p), c = std::cos(p), t = std::tan(p);
        const double T = t * t, C = c * c, h2 = ep2 * C;
        const double knu = k0 * a / std::sqrt(1 - e2 * s * s), M = k0 * a * m(p);
        const double t2 = knu * s * c / 2;
        const double t3 = knu * s * std::pow(c, 3) * (5 - T + 9 * h2 + 4 * h2 * h2) / 24;
        const double t4 = knu * s * std::pow(c, 5) *
                          (61 - 58 * T + T * T + 270 * h2 - 330 * T * h2 + 445 * std::pow(h2, 2) -
                           680 * T * std::pow(h2, 2) + 324 * std::pow(h2, 3) - 600 * T * std::pow(h2, 3) +
                           88 * std::pow(h2, 4) - 192 * T * std::pow(h2, 4)) /
                          720;
        const double t5 = knu * s * std::pow(c, 7) * (1385 - 3111 * T + 543 * T * T - T * T * T) / 40320;
        const double t6 = knu * c;
        const double t7 = knu * std::pow(c, 3) * (1 - T + h2) / 6;
        const double t8 = knu * std::pow(c, 5) *
                          (5 - 18 * T + T * T + 14 * h2 - 58 * T * h2 + 13 * h2 * h2 - 64 * T * h2 * h2 +
                           4 * std::pow(h2, 3) - 24 * T * std::pow(h2, 3)) /
                          120;
        const double t9 = knu * std::pow(c, 7) * (61 - 479 * T + 179 * T * T - T * T * T) / 5040;
        *north = M - a * k0m0 + t2 * L + t3 * L * L + t4 * std::pow(L, 3) + t5 * std::pow(L, 4);
        *east = dl * (t6 + t7 * L + t8 * L * L + t9 * std::pow(L, 3));
    }

    void inverse(double east, double north, double* lat, double* lon) const {
        const double X = east * east;
        const double mu = ((north / a) + k0m0) / k0 / E0;
        const double p1 = mu + B1 * std::sin(2 * mu) + B2 * std::sin(4 * mu) + B3 * std::sin(6 * mu) +
                          B4 * std::sin(8 * mu);
        const double s = std::sin(p1), c = std::cos(p1), t = std::tan(p1), T = t * t, h2 = ep2 * c * c;
        const double W2 = 1 - e2 * s * s, rho = a * (1 - e2) / std::pow(W2, 1.5), nu = rho * (1 + h2);
        const double t10 = t / (2 * rho * nu * k0 * k0);
        const double t11 = t * (5 + 3 * T + h2 - 9 * T * h2 - 4 * h2 * h2) / (24 * rho * std::pow(nu, 3) * std::pow(k0, 4));
        const double t12 = t *
                           (61 + 90 * T + 45 * T * T + 46 * h2 - 252 * T * h2 - 90 * T * T * h2 - 3 * h2 * h2 -
                            66 * T * h2 * h2 + 225 * T * T * h2 * h2 + 100 * std::pow(h2, 3) +
                            84 * T * std::pow(h2, 3) + 88 * std::pow(h2, 4) - 192 * T * std::pow(h2, 4)) /
                           (720 * rho * std::pow(nu, 5) * std::pow(k0, 6));
        const double t13 = t * (1385 + 3633 * T + 4095 * T * T + 1575 * T * T * T) /
                           (40320 * rho * std::pow(nu, 7) * std::pow(k0, 8));
        const double t14 = 1 / (nu * c * k0);
        const double t15 = (1 + 2 * T + h2) / (6 * std::pow(nu, 3) * c * std::pow(k0, 3));
        const double t16 = (5 + 6 * h2 + 28 * T - 3 * h2 * h2 + 8 * T * h2 + 24 * T * T - 4 * std::pow(h2, 3) +
                            4 * T * h2 * h2 + 24 * T * std::pow(h2, 3)) /
                           (120 * std::pow(nu, 5) * c * std::pow(k0, 5));
        const double t17 = (61 + 662 * T + 1320 * T * T + 720 * T * T * T) / (5040 * std::pow(nu, 7) * c * std::pow(k0, 7));
        const double p = p1 - X * t10 + X * X * t11 - X * X * X * t12 + X * X * X * X * t13;
        const double l = lon0 + east * (t14 - X * t15 + X * X * t16 - X * X * X * t17);
        *lat = p / 0.017453292519943295;
        *lon = l / 0.017453292519943295;
    }
};

TEST(CoreTm, OptimisedEvaluationIsTheLiteralSeriesToRounding) {
    // Same formulas, rearranged (Horner, divisions in the state, one sincos):
    // only rounding may differ. Bounds: 25 ulps of a 1e7 m coordinate (ulp
    // 1.9e-9 m), and 1e-12 degree (about 100 ulps of a latitude in radians,
    // 0.1 um on the ground).
    struct Row {
        const char* name;
        double a, rf, lat0, lon0, k0;
    } rows[] = {
        {"UTM WGS 84", ref::kWgs84A, ref::kWgs84Rf, 0, 0, 0.9996},
        {"GK Krassovsky", ref::kKrassA, ref::kKrassRf, 0, 39, 1.0},
        {"TM lat0 49", ref::kWgs84A, ref::kWgs84Rf, 49, -2, 0.9996012717},
        // A flattening this large takes the footpoint's sine and cosine from a
        // second sincos instead of the rotation.
        {"TM rf 50", ref::kWgs84A, 50.0, 0, 10, 1.0},
    };
    double worstFwd = 0, worstFwdPolar = 0, worstInv = 0;
    for (const Row& r : rows) {
        PlainState s(tm_create(r.a, r.rf, r.lat0, r.lon0, r.k0));
        EXPECT_EQ(s->tm.smallFoot, r.rf > 100 ? 1.0 : 0.0) << r.name;
        const Literal lit(r.a, r.rf, r.lat0, r.lon0, r.k0);
        for (double lat = -89.5; lat <= 89.5; lat += 0.5) {
            for (double dl = -30.0; dl <= 30.0; dl += 2.5) {
                double e1, n1, e2, n2;
                ASSERT_EQ(tm_geo_to_pr(s.get(), lat, r.lon0 + dl, &e1, &n1, 0, 0), 0);
                lit.forward(lat, r.lon0 + dl, &e2, &n2);
                const double tol = 5e-8;
                EXPECT_NEAR(e1, e2, tol) << r.name << " " << lat << "," << dl;
                EXPECT_NEAR(n1, n2, tol) << r.name << " " << lat << "," << dl;
                double& worst = std::fabs(lat) < 85 ? worstFwd : worstFwdPolar;
                worst = std::max({worst, std::fabs(e1 - e2), std::fabs(n1 - n2)});
                // The inverse series diverge far from the meridian; compare where they serve.
                if (std::fabs(dl) > 10 || std::fabs(lat) > 85) {
                    continue;
                }
                double la1, lo1, la2, lo2;
                tm_pr_to_geo(s.get(), e2, n2, &la1, &lo1, 0, 0);
                lit.inverse(e2, n2, &la2, &lo2);
                EXPECT_NEAR(la1, la2, 1e-12) << r.name << " " << lat << "," << dl;
                EXPECT_NEAR(lo1, lo2, 1e-12) << r.name << " " << lat << "," << dl;
                worstInv = std::max({worstInv, std::fabs(la1 - la2), std::fabs(lo1 - lo2)});
            }
        }
    }
    std::cout << "optimised against literal: forward " << worstFwd << " m (" << worstFwdPolar
              << " m beyond 85 degrees), inverse " << worstInv << " degrees\n";
}

TEST(CoreTm, NullStateIsRefusedWithoutWriting) {
    double x = kUnwritten, y = kUnwritten;
    long zone = 0;
    EXPECT_EQ(tm_init(nullptr, 1, 1, 0, 0, 1), -1);
    EXPECT_EQ(tm_geo_to_pr(nullptr, 1, 1, &x, &y, 0, 0), -1);
    EXPECT_EQ(tm_pr_to_geo(nullptr, 1, 1, &x, &y, 0, 0), -1);
    EXPECT_EQ(utm_geo_to_pr(nullptr, 1, 1, &zone, &x, &y), -1);
    EXPECT_EQ(utm_pr_to_geo(nullptr, 31, 1, 1, &x, &y), -1);
    EXPECT_EQ(x, kUnwritten);
    EXPECT_EQ(y, kUnwritten);
    EXPECT_EQ(zone, 0);
    projection_state_free(nullptr);
}

}  // namespace
