// The numerical core against exact references (integrated arcs, closed
// formulas in long double) and a literal transcription of the series.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <functional>
#include <memory>
#include <vector>

#include "cartesian.h"
#include "datum_shift.h"
#include "mercator.h"
#include "polar_stereo.h"
#include "tm.h"

namespace {

using L = long double;
template <auto F> struct Del { template <class T> void operator()(T* s) const { F(s); } };
using P = std::unique_ptr<ProjState, Del<projection_state_free>>;
using M = std::unique_ptr<ProjState, Del<merc_free>>;
using S = std::unique_ptr<DatumShiftState, Del<datum_shift_free>>;
constexpr double kA = 6378137.0, kRf = 298.257223563, kKA = 6378245.0, kKRf = 298.3, kU = -12345.678;
constexpr double kE2 = (2 - 1 / kRf) / kRf, kInf = INFINITY, kTs = 81.1145;
constexpr short k0s[3] = {0, 0, 0}, kPul[3] = {28, -130, -95}, kOth[3] = {10, -5, 3};
constexpr double kA72 = 6378135.0, kRf72 = 298.26, kA66 = 6378145.0, kRf66 = 298.25;
double e2of(double rf) { return (2 - 1 / rf) / rf; }
double rad(double d) { return d * kDegToRad; }

// Meridian arc, metres: Simpson in long double on 4000 panels.
double arc(double a, double e2, double phi) {
    L sum = 0, h = L(phi) / 4000;
    for (int i = 0; i <= 4000; ++i) {
        const L s = std::sin(i * h), w = 1 - e2 * s * s;
        sum += (i == 0 || i == 4000 ? 1 : i % 2 ? 4 : 2) / (w * std::sqrt(w));
    }
    return double(a * (1 - e2) * sum * h / 3);
}
void geocentric(double a, double e2, double lat, double lon, double h, double* X, double* Y, double* Z) {
    const L p = rad(lat), N = a / std::sqrt(1 - e2 * std::sin(p) * std::sin(p));
    *X = double((N + h) * std::cos(p) * std::cos(L(rad(lon))));
    *Y = double((N + h) * std::cos(p) * std::sin(L(rad(lon))));
    *Z = double(((1 - e2) * N + h) * std::sin(p));
}
L psT(L e, L p) { return std::tan(L(kPi) / 4 - p / 2) / std::pow((1 - e * std::sin(p)) / (1 + e * std::sin(p)), e / 2); }
// Polar stereographic radius: a mc t / tc, or 2 a t / sqrt((1+e)^(1+e) (1-e)^(1-e)) at the pole.
double psRho(double phic, double phi) {
    const L e = std::sqrt(L(kE2)), p = rad(std::fabs(phi)), c = rad(std::fabs(phic));
    if (std::fabs(phic) == 90) return double(2 * kA * psT(e, p) / std::sqrt(std::pow(1 + e, 1 + e) * std::pow(1 - e, 1 - e)));
    return double(kA * std::cos(c) / std::sqrt(1 - e * e * std::sin(c) * std::sin(c)) * psT(e, p) / psT(e, c));
}
double iso(double lat) {
    const L e = std::sqrt(L(kE2)), p = rad(lat), es = e * std::sin(p);
    return double(std::log(std::tan(L(kPi) / 4 + p / 2) * std::pow((1 - es) / (1 + es), e / 2)));
}
double ground(double lat, double dLat, double dLon, double dH) {
    return std::hypot(rad(dLat) * kA, rad(std::remainder(dLon, 360.0)) * kA * std::cos(rad(lat)), dH);
}

TEST(Core, HelpersStateAndArea) {
    const double lon[][2] = {{179.9, 179.9}, {180, -180}, {-180, -180}, {-180.5, 179.5}, {190, -170}, {540, 180}};
    for (auto& r : lon) EXPECT_EQ(normalize_lon_deg(r[0]), r[1]) << r[0];
    const double ang[][2] = {{kPi, kPi}, {-kPi, -kPi}, {kPi + .25, -kPi + .25}, {-kPi - .25, kPi - .25}, {4 * kPi + .5, .5}, {7 * kPi, 3 * kPi}};
    for (auto& r : ang) EXPECT_NEAR(normalize_angle_rad(r[0]), r[1], 1e-14) << r[0];
    // The second parameter is rf, b or e^2 by its size; <= 0 a sphere.
    for (auto& r : std::vector<std::pair<double, double>>{{kRf, kE2}, {kA * (1 - 1 / kRf), kE2}, {kE2, kE2}, {1, 1}, {0, 0}, {-5, 0}}) {
        ProjState s{};
        ASSERT_EQ(projection_state_init(&s, kA, r.first, 45, 190), 0);
        EXPECT_NEAR(s.e2, r.second, 1e-15);
        EXPECT_NEAR(s.e, std::sqrt(r.second), 1e-13);
        EXPECT_TRUE(s.a == kA && s.latMin == -90 && s.lonMin == -180 && s.latMax == 90 && s.lonMax == 180);
        EXPECT_NEAR(s.sinLat0, std::sqrt(.5), 3e-16);
        EXPECT_NEAR(s.cosLat0, std::sqrt(.5), 3e-16);
        EXPECT_NEAR(s.lon0, rad(-170), 1e-15);
    }
    EXPECT_EQ(projection_state_init(nullptr, kA, kRf, 0, 0), -1);
    P c0(tm_create(kA, kRf, 0, 0, 1)), c170(tm_create(kA, kRf, 0, 170, 1));
    ProjState g{};
    projection_state_init(&g, kA, kRf, 0, 0);
    const struct { const ProjState* s; double lat, lon; int st; } rows[] = {
        {c0.get(), 89.95, 30, 0}, {c0.get(), 89.97, 0, 17}, {c0.get(), 90.5, 0, -17}, {c0.get(), -91, 0, -17},
        {c0.get(), -89.97, 0, 17}, {c0.get(), 0, 31.5, 17}, {c0.get(), 0, -32, 17}, {c0.get(), 0, 33, -17},
        {c0.get(), 0, -33, -17}, {c0.get(), NAN, 0, -17}, {c0.get(), 0, 541, -17}, {c170.get(), 0, -175, 0},
        {c170.get(), 0, 180, 0}, {c170.get(), 0, -180, 0}, {c170.get(), 0, -159, 17}, {c170.get(), 0, -157, -17},
        {c170.get(), 0, 139, 17}, {c170.get(), 0, 137, -17}, {c170.get(), 0, 0, -17}, {&g, 0, 180, 0}, {&g, 0, 181, 17}};
    for (auto& r : rows) EXPECT_EQ(check_area(r.s, r.lat, r.lon), r.st) << r.lat << "," << r.lon;
}

TEST(Core, SeriesAgainstTheExactFunctions) {
    // Arc to e^6: the e^8 terms reach 0.96 mm; footpoint to n^4: n^5 ~ 1.4e-12 rad;
    // conformal inverse to e^8: the e^10 terms stay below 1e-11 rad.
    for (double rf : {kRf, kKRf, 0.0}) {
        const double a = rf ? kA : 1, e2 = rf ? e2of(rf) : 0, e = std::sqrt(e2);
        double en[5], fp[4], cc[4];
        meridian_arc_coefficients(e, e2, en), footpoint_coefficients(e, e2, fp), conformal_coefficients(e, e2, cc);
        for (double lat = -89; lat <= 89; lat += 2) {
            const double phi = rad(lat), M = arc(a, e2, phi), mu = M / (a * en[0]);
            const L es = e * std::sin(L(phi));
            const double chi = double(2 * std::atan(std::tan(L(kPi) / 4 + L(phi) / 2) * std::pow((1 - es) / (1 + es), e / 2)) - L(kPi) / 2);
            EXPECT_NEAR(a * meridian_arc(en, phi, std::sin(phi), std::cos(phi)), M, rf ? 1e-3 : 1e-15) << rf << " " << lat;
            EXPECT_NEAR(mu + footpoint_correction(fp, std::sin(mu), std::cos(mu)), phi, rf ? 1e-10 : 1e-15) << rf << " " << lat;
            EXPECT_NEAR(conformal_to_geodetic(cc, chi, std::sin(chi), std::cos(chi)), phi, rf ? 1e-11 : 1e-15) << rf << " " << lat;
        }
    }
}

TEST(Core, UtmZoneForcedOrChosenAndTheTmArea) {
    P s(utm_create(kA, kRf));
    const struct { long in; double lon; long out; } rows[] = {
        {0, 0, 31}, {0, 5.999, 31}, {0, 6, 32}, {0, -0.1, 30}, {0, -180, 1}, {0, -174, 2}, {0, 179.9, 60},
        {0, 180, 60}, {-1, 3, 31}, {61, 3, 31}, {1, -170, 1}, {60, 170, 60}, {38, 44.9, 38}, {0, -181, 1}};
    for (auto& r : rows) {
        long zone = r.in;
        double x = kU, y = kU;
        EXPECT_GE(utm_geo_to_pr(s.get(), 10, r.lon, &zone, &x, &y), 0) << r.in << " " << r.lon;
        EXPECT_TRUE(zone == r.out && std::isfinite(x) && std::isfinite(y)) << r.in << " " << r.lon << ": " << zone;
    }
    long zone = 1;  // forced far away: refused, nothing written
    double x = kU, y = kU;
    EXPECT_EQ(utm_geo_to_pr(s.get(), 10, 100, &zone, &x, &y), -2);
    EXPECT_TRUE(zone == 1 && x == kU && y == kU);
    P t(tm_create(kA, kRf, 0, 0, 1));
    for (auto& r : std::vector<std::array<double, 3>>{{45, 10, 0}, {89.97, 0, 17}, {-89.97, 0, 17}, {0, 31, 17}, {92, 0, -2}, {0, 33, -2}}) {
        x = y = kU;
        EXPECT_EQ(tm_geo_to_pr(t.get(), r[0], r[1], &x, &y, 0, 0), r[2]) << r[0] << "," << r[1];
        EXPECT_EQ(std::isfinite(x) && x != kU && std::isfinite(y) && y != kU, r[2] >= 0);
    }
    // Central meridian 170 wraps the longitude difference.
    P c170(tm_create(kA, kRf, 0, 170, 0.9996)), c0(tm_create(kA, kRf, 0, 0, 0.9996));
    double e1, n1, e2, n2, la1, lo1, la2, lo2;
    EXPECT_EQ(tm_geo_to_pr(c170.get(), 30, -175, &e1, &n1, 0, 0), 0);
    EXPECT_EQ(tm_geo_to_pr(c0.get(), 30, 15, &e2, &n2, 0, 0), 0);
    EXPECT_TRUE(std::fabs(e1 - e2) < 1e-6 && std::fabs(n1 - n2) < 1e-6);
    EXPECT_EQ(tm_pr_to_geo(c170.get(), e1, n1, &la1, &lo1, 0, 0), 0);
    EXPECT_EQ(tm_pr_to_geo(c0.get(), e1, n1, &la2, &lo2, 0, 0), 0);
    EXPECT_NEAR(la1, la2, 1e-9);
    EXPECT_NEAR(lo1, lo2 + 170 - 360, 1e-9);
}

// The series written out literally: separate sin, cos, tan, every division
// where the formula writes it.
struct Literal {
    double a, e2, ep2, k0, lon0, k0m0, E[4], B[4];
    Literal(double a_, double rf, double lat0, double lon0Deg, double k0_) : a(a_), k0(k0_), lon0(rad(lon0Deg)) {
        e2 = e2of(rf), ep2 = e2 / (1 - e2);
        const double n = (1 - std::sqrt(1 - e2)) / (1 + std::sqrt(1 - e2)), q = e2 * e2, c = q * e2;
        const double e[] = {1 - e2 / 4 - 3 * q / 64 - 5 * c / 256, 3 * e2 / 8 + 3 * q / 32 + 45 * c / 1024, 15 * q / 256 + 45 * c / 1024, 35 * c / 3072};
        const double b[] = {3 * n / 2 - 27 * std::pow(n, 3) / 32, 21 * n * n / 16 - 55 * std::pow(n, 4) / 32, 151 * std::pow(n, 3) / 96, 1097 * std::pow(n, 4) / 512};
        std::copy(e, e + 4, E), std::copy(b, b + 4, B);
        k0m0 = k0 * m(rad(lat0));
    }
    double m(double p) const { return E[0] * p - E[1] * std::sin(2 * p) + E[2] * std::sin(4 * p) - E[3] * std::sin(6 * p); }
    void fwd(double lat, double lon, double* x, double* y) const {
        const double dl = rad(lon) - lon0, l2 = dl * dl, p = rad(lat), s = std::sin(p), c = std::cos(p);
        const double T = std::pow(std::tan(p), 2), h = ep2 * c * c, kn = k0 * a / std::sqrt(1 - e2 * s * s), h3 = h * h * h, h4 = h3 * h;
        const double t2 = kn * s * c / 2, t3 = kn * s * std::pow(c, 3) * (5 - T + 9 * h + 4 * h * h) / 24;
        const double t4 = kn * s * std::pow(c, 5) * (61 - 58 * T + T * T + 270 * h - 330 * T * h + 445 * h * h - 680 * T * h * h + 324 * h3 - 600 * T * h3 + 88 * h4 - 192 * T * h4) / 720;
        const double t5 = kn * s * std::pow(c, 7) * (1385 - 3111 * T + 543 * T * T - T * T * T) / 40320;
        const double t7 = kn * std::pow(c, 3) * (1 - T + h) / 6;
        const double t8 = kn * std::pow(c, 5) * (5 - 18 * T + T * T + 14 * h - 58 * T * h + 13 * h * h - 64 * T * h * h + 4 * h3 - 24 * T * h3) / 120;
        const double t9 = kn * std::pow(c, 7) * (61 - 479 * T + 179 * T * T - T * T * T) / 5040;
        *y = k0 * a * m(p) - a * k0m0 + t2 * l2 + t3 * l2 * l2 + t4 * l2 * l2 * l2 + t5 * l2 * l2 * l2 * l2;
        *x = dl * (kn * c + t7 * l2 + t8 * l2 * l2 + t9 * l2 * l2 * l2);
    }
    void inv(double x, double y, double* lat, double* lon) const {
        const double X = x * x, mu = (y / a + k0m0) / k0 / E[0];
        const double p = mu + B[0] * std::sin(2 * mu) + B[1] * std::sin(4 * mu) + B[2] * std::sin(6 * mu) + B[3] * std::sin(8 * mu);
        const double s = std::sin(p), c = std::cos(p), t = std::tan(p), T = t * t, h = ep2 * c * c, h3 = h * h * h, h4 = h3 * h;
        const double r = a * (1 - e2) / std::pow(1 - e2 * s * s, 1.5), n = r * (1 + h);
        const double t10 = t / (2 * r * n * k0 * k0), t11 = t * (5 + 3 * T + h - 9 * T * h - 4 * h * h) / (24 * r * std::pow(n, 3) * std::pow(k0, 4));
        const double t12 = t * (61 + 90 * T + 45 * T * T + 46 * h - 252 * T * h - 90 * T * T * h - 3 * h * h - 66 * T * h * h + 225 * T * T * h * h + 100 * h3 + 84 * T * h3 + 88 * h4 - 192 * T * h4) / (720 * r * std::pow(n, 5) * std::pow(k0, 6));
        const double t13 = t * (1385 + 3633 * T + 4095 * T * T + 1575 * T * T * T) / (40320 * r * std::pow(n, 7) * std::pow(k0, 8));
        const double t15 = (1 + 2 * T + h) / (6 * std::pow(n, 3) * c * std::pow(k0, 3));
        const double t16 = (5 + 6 * h + 28 * T - 3 * h * h + 8 * T * h + 24 * T * T - 4 * h3 + 4 * T * h * h + 24 * T * h3) / (120 * std::pow(n, 5) * c * std::pow(k0, 5));
        const double t17 = (61 + 662 * T + 1320 * T * T + 720 * T * T * T) / (5040 * std::pow(n, 7) * c * std::pow(k0, 7));
        *lat = (p - X * t10 + X * X * t11 - X * X * X * t12 + X * X * X * X * t13) / kDegToRad;
        *lon = (lon0 + x * (1 / (n * c * k0) - X * t15 + X * X * t16 - X * X * X * t17)) / kDegToRad;
    }
};

TEST(Core, TmIsTheLiteralSeriesToRounding) {
    // Only rounding differs: 25 ulps of 1e7 m, 1e-12 degree. rf 50 takes the
    // footpoint from a second sincos.
    const double rows[][5] = {{kA, kRf, 0, 0, 0.9996}, {kKA, kKRf, 0, 39, 1}, {kA, kRf, 49, -2, 0.9996012717}, {kA, 50, 0, 10, 1}};
    for (auto& r : rows) {
        P s(tm_create(r[0], r[1], r[2], r[3], r[4]));
        EXPECT_EQ(s->tm.smallFoot, r[1] > 100 ? 1.0 : 0.0);
        const Literal lit(r[0], r[1], r[2], r[3], r[4]);
        for (double lat = -89.5; lat <= 89.5; lat += 0.5) {
            for (double dl = -30; dl <= 30; dl += 2.5) {
                double x1, y1, x2, y2, la1, lo1, la2, lo2;
                ASSERT_EQ(tm_geo_to_pr(s.get(), lat, r[3] + dl, &x1, &y1, 0, 0), 0);
                lit.fwd(lat, r[3] + dl, &x2, &y2);
                ASSERT_TRUE(std::fabs(x1 - x2) < 5e-8 && std::fabs(y1 - y2) < 5e-8) << r[1] << " " << lat << "," << dl;
                if (std::fabs(dl) > 10 || std::fabs(lat) > 85) continue;
                tm_pr_to_geo(s.get(), x2, y2, &la1, &lo1, 0, 0);
                lit.inv(x2, y2, &la2, &lo2);
                ASSERT_TRUE(std::fabs(la1 - la2) < 1e-12 && std::fabs(lo1 - lo2) < 1e-12) << r[1] << " " << lat << "," << dl;
            }
        }
    }
    // Gauss-Kruger on its meridian: the arc from the origin plus fn.
    for (auto [lat0, fn] : {std::pair{0.0, 0}, {40.0, 100}, {-20.0, -5000}}) {
        P s(tm_create(kKA, kKRf, lat0, 39, 1));
        double x, y;
        ASSERT_EQ(tm_geo_to_pr(s.get(), 55, 39, &x, &y, 500000, fn), 0);
        EXPECT_EQ(x, 500000.0);
        EXPECT_NEAR(y, arc(kKA, e2of(kKRf), rad(55)) - arc(kKA, e2of(kKRf), rad(lat0)) + fn, 1e-3) << lat0;
    }
}

TEST(Core, MercatorAndPolarStereographicCases) {
    M s60(merc_create(kA, kRf, 0, -60));
    EXPECT_NEAR(s60->k0, 0.5 / std::sqrt(1 - kE2 * 0.75), 1e-15);
    // cm, lat, lon, fe, fn, status, east, north (NaN east: nothing written)
    const double merc[][8] = {{25, 0, 25, 5e5, 100, 0, 5e5, 100}, {170, 0, -170, 0, 0, 0, kA * rad(20), 0},
        {-170, 0, 170, 0, 0, 0, -kA * rad(20), 0}, {0, 89, 0, 0, 0, 0, 0, kA * iso(89)}, {0, 89.5, 0, 0, 0, 17, 0, kA * iso(89.5)},
        {0, -89.999995, 0, 0, 0, 17, 0, kA * iso(-89.999995)}, {0, 89.9999951, 0, 0, 0, -2, NAN, 0}, {0, 92, 0, 0, 0, -2, NAN, 0}};
    for (auto& r : merc) {
        M s(merc_create(kA, kRf, r[0], 0));
        double x = kU, y = kU;
        EXPECT_EQ(merc_geo_to_pr(s.get(), r[1], r[2], &x, &y, int(r[3]), int(r[4])), r[5]) << r[1];
        if (std::isnan(r[6])) { EXPECT_TRUE(x == kU && y == kU); continue; }
        EXPECT_NEAR(x, r[6], 1e-7);  // near the pole the input's rounding moves y by a/cos(phi) 2e-16
        EXPECT_NEAR(y, r[7], std::fabs(r[1]) < 89.1 ? 1e-7 : 3e-7 / std::cos(rad(r[1]))) << r[1];
    }
    M m30(merc_create(kA, kRf, 30, 0));
    for (auto [n, lat, st] : {std::tuple{2000.0, 0.0, 0}, {1e9, 90.0, 17}, {-1e9, -90.0, 17}}) {
        double la = kU, lo = kU;
        EXPECT_EQ(merc_pr_to_geo(m30.get(), 1000, n, &la, &lo, 1000, 2000), st);
        EXPECT_TRUE(std::fabs(la - lat) < 1e-9 && std::fabs(lo - 30) < 1e-12) << n;
    }
    P ts(ps_create(kA, kRf, kTs, 0, kTs));
    EXPECT_NEAR(ts->k0, 0.994, 5e-4);
    double x, y;  // in the band, written all the same: the parallel's N cos(phic)
    ASSERT_EQ(ps_geo_to_pr(ts.get(), kTs, 90, &x, &y, 0, 0), -2);
    EXPECT_NEAR(x, kA * std::cos(rad(kTs)) / std::sqrt(1 - kE2 * std::pow(std::sin(rad(kTs)), 2)), 1e-7);
    const double F = 2e6, r = psRho(kTs, 85), rP = psRho(90, 85);
    // origin, cm, lat, lon, status, east (NaN: nothing written), north (NaN: not checked)
    const double ps[][7] = {{kTs, 0, 90, 0, 0, F, F}, {kTs, 0, 90 - 5e-8, 77, 0, F, F}, {kTs, 0, 85, 0, 0, F, F - r},
        {kTs, 0, 85, 180, 0, F, F + r}, {kTs, 0, 85, 90, 0, F + r, F}, {kTs, 0, 85, -90, 0, F - r, F},
        {kTs, 45, 85, 45, 0, F, F - r}, {-kTs, 0, -85, 0, 0, F, -(F + r)}, {-kTs, 0, -85, 180, 0, F, -(F - r)},
        {-kTs, 0, -90, 0, 0, F, -F}, {90, 0, 85, 0, 0, F, F - rP}, {-90, 0, -85, 0, 0, F, -(F + rP)},
        {kTs, 0, 84, 0, 0, F, NAN}, {kTs, 0, 83, 0, -2, F, NAN}, {kTs, 0, -1, 0, 17, F, NAN}, {kTs, 0, -3, 0, -2, NAN, NAN},
        {-kTs, 0, -80, 0, 0, F, NAN}, {-kTs, 0, -79, 0, -2, F, NAN}, {-kTs, 0, 1, 0, 17, F, NAN}, {-kTs, 0, 3, 0, -2, NAN, NAN}};
    for (auto& q : ps) {
        P s(ps_create(kA, kRf, q[0], q[1], q[0]));
        x = y = kU;
        EXPECT_EQ(ps_geo_to_pr(s.get(), q[2], q[3], &x, &y, int(F), int(F)), q[4]) << q[0] << ": " << q[2] << "," << q[3];
        if (std::isnan(q[5])) { EXPECT_TRUE(x == kU && y == kU) << q[2]; continue; }
        EXPECT_NEAR(x, q[5], 1e-6) << q[0] << ": " << q[2] << "," << q[3];
        EXPECT_TRUE(std::isnan(q[6]) ? std::isfinite(y) : std::fabs(y - q[6]) < 1e-6) << q[0] << ": " << q[2] << "," << q[3];
    }
    const double inv[][7] = {{kTs, 30, F, F, 0, 90, 30}, {-kTs, -60, F, -F, 0, -90, -60}, {kTs, 0, F + .5e-7, F - .5e-7, 0, 90, 0}};
    for (auto& q : inv) {
        P s(ps_create(kA, kRf, q[0], q[1], q[0]));
        double la = kU, lo = kU;
        EXPECT_EQ(ps_pr_to_geo(s.get(), q[2], q[3], &la, &lo, int(F), int(F)), q[4]);
        EXPECT_TRUE(la == q[5] && std::fabs(lo - q[6]) < 1e-12) << q[0];
    }
    // The band comes back with status 2; with fn 0 the hemisphere mark
    // abs(north) - fn takes a point below the pole for one above it.
    double la, lo;
    ps_geo_to_pr(ts.get(), 80, 10, &x, &y, int(F), int(F));
    EXPECT_EQ(ps_pr_to_geo(ts.get(), x, y, &la, &lo, int(F), int(F)), 2);
    EXPECT_TRUE(std::fabs(la - 80) < 1e-9 && std::fabs(lo - 10) < 1e-9);
    EXPECT_EQ(ps_geo_to_pr(ts.get(), 85, 0, &x, &y, 0, 0), 0);
    EXPECT_LT(y, 0);
    EXPECT_EQ(ps_pr_to_geo(ts.get(), x, y, &la, &lo, 0, 0), 0);
    EXPECT_TRUE(std::fabs(la - 85) < 1e-9 && std::fabs(std::fabs(lo) - 180) < 1e-9);
}

TEST(Core, CartesianAndGeocentricToGeodetic) {
    P s(decart_create(kA, kRf));
    const double b = kA * (1 - 1 / kRf);
    for (auto& r : std::vector<std::array<double, 6>>{{0, 0, 0, kA, 0, 0}, {0, 90, 0, 0, kA, 0}, {-90, 0, 100, 0, 0, -(b + 100)}}) {
        double X, Y, Z, la, lo, h = kU;
        EXPECT_EQ(decart_geo_to_pr(s.get(), r[0], r[1], r[2], &X, &Y, &Z), 0);
        EXPECT_TRUE(std::fabs(X - r[3]) < 1e-8 && std::fabs(Y - r[4]) < 1e-8 && std::fabs(Z - r[5]) < 1e-8) << r[0];
        EXPECT_EQ(decart_pr_to_geo(s.get(), X, Y, Z, &la, &lo, &h), 0);
        EXPECT_TRUE(std::fabs(la - r[0]) < 1e-12 && h == 0) << r[0];
    }
    double la = kU, lo = kU, h = kU;
    EXPECT_EQ(decart_pr_to_geo(s.get(), 0, 0, 0, &la, &lo, &h), 0);
    EXPECT_TRUE(la == 0 && lo == 0);
    for (double h0 : {-5000.0, 0.0, 50000.0}) {  // Bowring, refined once
        for (double lat = -89.99; lat <= 89.99; lat += 4.999) {
            double X, Y, Z;
            geocentric(kA, kE2, lat, 123, h0, &X, &Y, &Z);
            geocentric_to_geodetic(kA, kE2, X, Y, Z, &la, &lo, &h);
            EXPECT_LT(ground(lat, la - lat, lo - 123, h - h0), 1e-6) << lat << " " << h0;
        }
    }
    const double axis[][6] = {{0, 0, 6356752.3142 + 5, 90, 0, 5}, {.0005, -.0005, -6356752.3142, -90, 0, 0},
                              {0, 0, 0, 0, 0, -kA}, {0, 5000, 0, 0, 90, 5000 - kA}, {0, -5000, 0, 0, -90, 5000 - kA}};
    for (auto& r : axis) {
        geocentric_to_geodetic(kA, kE2, r[0], r[1], r[2], &la, &lo, &h);
        EXPECT_TRUE(std::fabs(la - r[3]) < 1e-12 && lo == r[4] && std::fabs(h - r[5]) < 1e-3) << r[0] << "," << r[1] << "," << r[2];
    }
}

// WGS 72 -> WGS 84 in closed form from the published constants.
void wgs72(double lat, double* dLat, double* dLon, double* dH) {
    const double s = std::sin(rad(lat)), c = std::cos(rad(lat));
    *dLat = (4.5 * c / kA72 + 2 * s * c * 3.121057e-8) / kDegToRad, *dLon = 0.554 / 3600, *dH = 4.5 * s + kA72 * 3.121057e-8 * s * s - 0.6;
}

TEST(Core, DatumShiftMethodsAndClosedForms) {
    const struct { double aF, rfF; const short* fF; double aT, rfT; const short* fT; short m; } rows[] = {
        {kA72, kRf72, k0s, kA, kRf, k0s, 72}, {kA, kRf, k0s, kA72, kRf72, k0s, -72}, {kA66, kRf66, k0s, kA, kRf, k0s, 66},
        {kA, kRf, k0s, kA66, kRf66, k0s, -66}, {kA72 + .005, kRf72 + 5e-7, nullptr, kA - .005, kRf - 5e-8, k0s, 72},
        {kA72 + .02, kRf72, k0s, kA, kRf, k0s, 2}, {kA72, kRf72 - 2e-6, k0s, kA, kRf, k0s, 2}, {kA72, kRf72, kOth, kA, kRf, k0s, 2},
        {kA66, kRf66, k0s, kA, kRf + 2e-7, k0s, 0}, {kKA, kKRf, kPul, kA, kRf, k0s, 2}, {kA, kRf, nullptr, kKA, kKRf, kPul, -2},
        {kA, kRf, k0s, kA, kRf, kOth, -2}, {kKA, kKRf, kPul, 6378388, 297, kOth, 0}, {kA72, kRf72, k0s, kA66, kRf66, k0s, 0},
        {kA66, kRf66, k0s, kA72, kRf72, k0s, 0}};
    for (auto& r : rows) EXPECT_EQ(S(datum_shift_create(r.aF, r.rfF, r.fF, r.aT, r.rfT, r.fT))->ShiftMethod, r.m) << r.aF << " " << r.rfF << " -> " << r.aT << " " << r.rfT;
    S sp(datum_shift_create(6371000, 0, kPul, kA, kRf, kOth));  // rf <= 0 is a sphere
    EXPECT_TRUE(sp->fFrom == 0 && sp->dX == 18 && sp->dY == -125 && sp->dZ == -98);
    S to84(datum_shift_create(kA72, kRf72, k0s, kA, kRf, k0s)), to72(datum_shift_create(kA, kRf, k0s, kA72, kRf72, k0s));
    for (double lat : {0.0, 37.0, 90.0, -90.0}) {
        double e[3], d[3], n[3];
        wgs72(lat, &e[0], &e[1], &e[2]);
        ASSERT_EQ(datum_shift_delta(lat, 10, 0, &d[0], &d[1], &d[2], to84.get()), 0);
        EXPECT_NEAR(d[0], e[0], 1e-19 + 1e-14 * std::fabs(e[0])) << lat;
        EXPECT_NEAR(d[1], e[1], 1e-19);
        EXPECT_NEAR(d[2], e[2], 1e-14) << lat;
        ASSERT_EQ(datum_shift_delta(lat, 10, 0, &n[0], &n[1], &n[2], to72.get()), 0);
        EXPECT_TRUE(n[0] == -d[0] && n[1] == -d[1] && n[2] == -d[2]) << lat;
    }
    // The longitude wraps once; a height below -1e6 m is unknown, shifted as 0.
    const double d0 = 4.5 / kA72 / kDegToRad, dl = 0.554 / 3600;
    const double apply[][6] = {{0, 179.9999, 50, d0, 179.9999 + dl - 360, 49.4}, {0, 10, -2e6, d0, 10 + dl, -0.6}, {0, 10, -1e6, d0, 10 + dl, -1e6 - .6}};
    for (auto& r : apply) {
        double la = kU, lo = kU, h = kU;
        EXPECT_EQ(datum_shift_apply(r[0], r[1], r[2], &la, &lo, &h, to84.get()), 0);
        EXPECT_TRUE(std::fabs(la - r[3]) < 1e-15 && std::fabs(lo - r[4]) < 1e-12 && std::fabs(h - r[5]) < 1e-9) << r[2];
    }
    double la = kU;  // null outputs are skipped
    EXPECT_EQ(datum_shift_apply(10, 10, 0, &la, nullptr, nullptr, to84.get()), 0);
    EXPECT_NE(la, kU);
    EXPECT_EQ(datum_shift_delta(10, 10, 0, nullptr, nullptr, nullptr, to84.get()), 0);
    // 66 -> 84: the translation (4, 3, -7) onto WGS 72, then the closed form;
    // back is not the exact inverse: a few micrometres.
    S from66(datum_shift_create(kA66, kRf66, k0s, kA, kRf, k0s)), to66(datum_shift_create(kA, kRf, k0s, kA66, kRf66, k0s));
    for (double lat = -85; lat <= 85; lat += 17) {
        for (double lon = -170; lon < 180; lon += 80) {
            double X, Y, Z, l72, o72, h72, d[3], o[3], b[3];
            geocentric(kA66, e2of(kRf66), lat, lon, 300, &X, &Y, &Z);
            geocentric_to_geodetic(kA72, e2of(kRf72), X + 4, Y + 3, Z - 7, &l72, &o72, &h72);
            wgs72(l72, &d[0], &d[1], &d[2]);
            ASSERT_EQ(datum_shift_apply(lat, lon, 300, &o[0], &o[1], &o[2], from66.get()), 0);
            EXPECT_LT(ground(lat, o[0] - l72 - d[0], o[1] - o72 - d[1], o[2] - h72 - d[2]), 1e-6) << lat << "," << lon;
            ASSERT_EQ(datum_shift_apply(o[0], o[1], o[2], &b[0], &b[1], &b[2], to66.get()), 0);
            EXPECT_LT(ground(lat, b[0] - lat, b[1] - lon, b[2] - 300), 1e-5) << lat << "," << lon;
        }
    }
    // Above 89 degrees the exact translation: a shift of tens of kilometres
    // jumps there; on the axis +-90 and h + b_from - b_to.
    const short big[3] = {30000, -20000, 25000};
    S s(datum_shift_create(kKA, kKRf, big, kA, kRf, k0s)), axis(datum_shift_create(kA, kRf, k0s, kKA, kKRf, k0s));
    for (double pole : {89.0, -89.0}) {
        double a[3], b[3];
        datum_shift_apply(pole, 30, 100, &a[0], &a[1], &a[2], s.get());
        datum_shift_apply(pole * (1 + 1e-9), 30, 100, &b[0], &b[1], &b[2], s.get());
        EXPECT_GT(ground(pole, b[0] - a[0], b[1] - a[1], b[2] - a[2]), 1.0) << pole;
        double lo, h;
        ASSERT_EQ(datum_shift_apply(pole * 90 / 89, 0, 10, &la, &lo, &h, axis.get()), 0);
        EXPECT_TRUE(la == pole * 90 / 89 && lo == 0 && std::fabs(h - 10 - kA * (1 - 1 / kRf) + kKA * (1 - 1 / kKRf)) < 1e-8) << pole;
    }
}

TEST(Core, NullStatesAreRefusedWithoutWriting) {
    double x = kU, y = kU, z = kU;
    long zone = 0;
    for (int st : {tm_init(nullptr, 1, 1, 0, 0, 1), tm_geo_to_pr(nullptr, 1, 1, &x, &y, 0, 0), tm_pr_to_geo(nullptr, 1, 1, &x, &y, 0, 0),
                   utm_geo_to_pr(nullptr, 1, 1, &zone, &x, &y), utm_pr_to_geo(nullptr, 31, 1, 1, &x, &y), merc_geo_to_pr(nullptr, 0, 0, &x, &y, 0, 0),
                   merc_pr_to_geo(nullptr, 0, 0, &x, &y, 0, 0), ps_geo_to_pr(nullptr, 90, 0, &x, &y, 0, 0), ps_pr_to_geo(nullptr, 0, 0, &x, &y, 0, 0),
                   decart_geo_to_pr(nullptr, 0, 0, 0, &x, &y, &z), decart_pr_to_geo(nullptr, 1, 1, 1, &x, &y, &z)})
        EXPECT_EQ(st, -1);
    EXPECT_EQ(datum_shift_delta(0, 0, 0, &x, &y, &z, nullptr), 0xFFFF);
    EXPECT_EQ(datum_shift_apply(0, 0, 0, &x, &y, &z, nullptr), 0xFFFF);
    EXPECT_TRUE(x == kU && y == kU && z == kU && zone == 0);
    projection_state_free(nullptr), merc_free(nullptr), datum_shift_free(nullptr);
}

// Non-finite, huge, tiny and out-of-range values in every argument: results
// are the documented refusal or non-finite, never a made-up number.
const double kBad[] = {NAN, kInf, -kInf, 1e300, -1e300, 1e20, 1e-310, -0.0, 91.0, -181.0, 400.0};
using Fn = std::function<int(const double*, double*)>;
struct Sub { Fn f; std::vector<double> args; std::vector<int> ok; int outs; bool proj; unsigned nanArgs, infArgs; };

TEST(Core, NonFiniteArguments) {
    P tm(tm_create(kA, kRf, 10, 170, 0.9996)), utm(utm_create(kA, kRf)), psN(ps_create(kA, kRf, kTs, 0, kTs)),
        psS(ps_create(kA, kRf, -90, 45, -90)), cart(decart_create(kA, kRf));
    M merc(merc_create(kA, kRf, 20, 30));
    ProjState *t = tm.get(), *u = utm.get(), *m = merc.get(), *n = psN.get(), *s = psS.get(), *c = cart.get();
    const std::vector<int> F{0, 17, -2}, I{0, 17, -17}, PI{0, 17, -17, 2}, Z{0};
    std::vector<Sub> subs = {
        {[t](auto a, auto o) { return tm_geo_to_pr(t, a[0], a[1], &o[0], &o[1], 1000, 2000); }, {45, 175}, F, 2, true, 3, 3},
        {[t](auto a, auto o) { return tm_pr_to_geo(t, a[0], a[1], &o[0], &o[1], 1000, 2000); }, {1000, 2e6}, I, 2, true, 3, 3},
        {[u](auto a, auto o) { long z = 0; int st = utm_geo_to_pr(u, a[0], a[1], &z, &o[0], &o[1]); EXPECT_TRUE(z >= 1 && z <= 60); return st; }, {45, 3}, F, 2, true, 3, 3},
        {[u](auto a, auto o) { return utm_pr_to_geo(u, 31, a[0], a[1], &o[0], &o[1]); }, {4e5, -5e6}, I, 2, true, 3, 3},
        {[m](auto a, auto o) { return merc_geo_to_pr(m, a[0], a[1], &o[0], &o[1], 1, 2); }, {45, 25}, F, 2, true, 3, 3},
        {[m](auto a, auto o) { return merc_pr_to_geo(m, a[0], a[1], &o[0], &o[1], 1, 2); }, {1000, 2e6}, I, 2, true, 3, 3},
        {[n](auto a, auto o) { return ps_geo_to_pr(n, a[0], a[1], &o[0], &o[1], 2000000, 2000000); }, {85, 10}, F, 2, true, 3, 3},
        {[n](auto a, auto o) { return ps_pr_to_geo(n, a[0], a[1], &o[0], &o[1], 2000000, 2000000); }, {2.3e6, 2.1e6}, PI, 2, true, 3, 3},
        {[s](auto a, auto o) { return ps_geo_to_pr(s, a[0], a[1], &o[0], &o[1], 2000000, 2000000); }, {-85, 10}, F, 2, true, 3, 3},
        {[s](auto a, auto o) { return ps_pr_to_geo(s, a[0], a[1], &o[0], &o[1], 2000000, 2000000); }, {2.3e6, -2.1e6}, PI, 2, true, 3, 3},
        {[c](auto a, auto o) { return decart_geo_to_pr(c, a[0], a[1], a[2], &o[0], &o[1], &o[2]); }, {45, 45, 100}, Z, 3, false, 7, 7},
        {[c](auto a, auto o) { return decart_pr_to_geo(c, a[0], a[1], a[2], &o[0], &o[1], &o[2]); }, {4e6, 3e6, 3.5e6}, Z, 3, false, 7, 7},
        {[](auto a, auto o) { geocentric_to_geodetic(a[0], a[1], a[2], a[3], a[4], &o[0], &o[1], &o[2]); return 0; }, {kA, kE2, 4e6, 5e-4, 4.5e6}, Z, 3, false, 31, 31}};
    // Each shift method; -infinity is the unknown height, and an infinite
    // height makes Molodensky's angular differences vanish.
    std::vector<S> shifts;
    for (auto [aF, rfF, fF, aT, rfT, fT] : {std::tuple{kA72, kRf72, k0s, kA, kRf, k0s}, {kA, kRf, k0s, kA72, kRf72, k0s}, {kA66, kRf66, k0s, kA, kRf, k0s},
             {kA, kRf, k0s, kA66, kRf66, k0s}, {kKA, kKRf, kPul, kA, kRf, k0s}, {kA, kRf, k0s, kKA, kKRf, kPul}, {kKA, kKRf, kPul, 6378388.0, 297.0, kOth}}) {
        DatumShiftState* d = shifts.emplace_back(datum_shift_create(aF, rfF, fF, aT, rfT, fT)).get();
        const bool closed = std::abs(d->ShiftMethod) == 72;
        for (double lat : {45.0, 89.5}) {
            subs.push_back({[d](auto a, auto o) { return datum_shift_apply(a[0], a[1], a[2], &o[0], &o[1], &o[2], d); }, {lat, 179.99, 100}, Z, 3, false, 7, 7});
            subs.push_back({[d](auto a, auto o) { return datum_shift_delta(a[0], a[1], a[2], &o[0], &o[1], &o[2], d); }, {lat, -179.99, 100}, Z, 3, false, closed ? 1u : 7u, closed ? 1u : 3u});
        }
    }
    for (size_t k = 0; k < subs.size(); ++k) {
        const Sub& f = subs[k];
        for (size_t i = 0; i < f.args.size(); ++i) {
            for (double v : kBad) {
                std::vector<double> a = f.args, o(f.outs, kU);
                a[i] = v;
                const int st = f.f(a.data(), o.data());
                SCOPED_TRACE("subject " + std::to_string(k) + " arg " + std::to_string(i) + " = " + std::to_string(v) + ": " + std::to_string(st));
                EXPECT_NE(std::find(f.ok.begin(), f.ok.end(), st), f.ok.end());
                int written = 0;
                bool nan = false, nonFinite = false;
                for (double x : o) written += x != kU, nan |= std::isnan(x), nonFinite |= !std::isfinite(x);
                if (st == -2 && (written == 0 || k < 6)) { EXPECT_EQ(written, 0); continue; }  // ps writes in the band
                EXPECT_EQ(written, f.outs);
                if (f.proj && st >= 0) { EXPECT_FALSE(nonFinite); }
                if (std::isnan(v) && (f.nanArgs >> i & 1)) { EXPECT_TRUE(nan); }
                if (std::isinf(v) && (f.infArgs >> i & 1) && !(k >= 13 && i == 2 && v < 0)) { EXPECT_TRUE(nonFinite); }
            }
        }
    }
    for (int fe : {INT_MIN, INT_MAX, 0, -1}) {
        for (int fn : {INT_MIN, INT_MAX, 0, -1}) {
            double x = kU, y = kU;
            EXPECT_EQ(tm_geo_to_pr(t, 45, 175, &x, &y, fe, fn), 0);
            EXPECT_EQ(tm_pr_to_geo(t, x, y, &x, &y, fe, fn), 0);
            EXPECT_GE(merc_geo_to_pr(m, 45, 25, &x, &y, fe, fn), 0);
            EXPECT_GE(merc_pr_to_geo(m, 0, 0, &x, &y, fe, fn), -17);
            EXPECT_NE(ps_geo_to_pr(n, 85, 0, &x, &y, fe, fn), -1);
            EXPECT_NE(ps_pr_to_geo(n, 0, 0, &x, &y, fe, fn), -1);
        }
    }
    for (long zone : {LONG_MIN, LONG_MAX, -1L, 0L, 61L, 1000000L}) {  // absurd zones: chosen afresh
        double x, y;
        EXPECT_EQ(utm_geo_to_pr(u, 45, 3, &zone, &x, &y), 0);
        EXPECT_EQ(zone, 31);
    }
    for (int zone : {INT_MIN, INT_MAX, 0, 61}) {  // coming back: 6 zone - 183 in double
        double la, lo;
        EXPECT_EQ(utm_pr_to_geo(u, zone, 5e5, 5e6, &la, &lo), 0);
        EXPECT_DOUBLE_EQ(lo, 6.0 * zone - 183);
    }
}

TEST(Core, StatesFromBadParameters) {
    // a, rf, latitude, central meridian, k0 each made bad; a NaN must show or refuse.
    const double good[] = {kA, kRf, 30, 20, 0.9996};
    for (int i = 0; i < 5; ++i) {
        for (double v : kBad) {
            double p[5], x = kU, y = kU, z;
            std::copy(good, good + 5, p);
            p[i] = v;
            SCOPED_TRACE("parameter " + std::to_string(i) + " = " + std::to_string(v));
            auto check = [&](int st, bool fwd) {
                EXPECT_TRUE(st == 0 || st == 17 || st == (fwd ? -2 : -17) || (!fwd && st == 2)) << st;
                if (std::isnan(v) && st != -2) { EXPECT_TRUE(std::isnan(x) || std::isnan(y)); }
                x = y = kU;
            };
            P t(tm_create(p[0], p[1], p[2], p[3], p[4]));
            check(tm_geo_to_pr(t.get(), 35, 22, &x, &y, 0, 0), true);
            check(tm_pr_to_geo(t.get(), 1000, 5000, &x, &y, 0, 0), false);
            if (i == 4) continue;  // the others take no scale factor
            M m(merc_create(p[0], p[1], p[3], p[2]));
            check(merc_geo_to_pr(m.get(), 35, 22, &x, &y, 0, 0), true);
            check(merc_pr_to_geo(m.get(), 1000, 5000, &x, &y, 0, 0), false);
            P ps(ps_create(p[0], p[1], 81, p[3], p[2] + 51));
            check(ps_geo_to_pr(ps.get(), 85, 22, &x, &y, 0, 0), true);
            check(ps_pr_to_geo(ps.get(), 1000, 5000, &x, &y, 0, 0), false);
            if (i >= 2) continue;  // the figure only
            P c(decart_create(p[0], p[1]));
            check(decart_geo_to_pr(c.get(), 35, 22, 10, &x, &y, &z), true);
            check(decart_pr_to_geo(c.get(), 4e6, 3e6, 3e6, &x, &y, &z), false);
            check(datum_shift_apply(35, 22, 10, &x, &y, &z, S(datum_shift_create(p[0], p[1], kPul, kA, kRf, nullptr)).get()), true);
            check(datum_shift_apply(35, 22, 10, &x, &y, &z, S(datum_shift_create(kA, kRf, nullptr, p[0], p[1], kPul)).get()), true);
        }
    }
    for (double v : kBad) {  // the polar origin and latitude of true scale
        double x = kU, y = kU;
        P ps(ps_create(kA, kRf, v, 0, v));
        const int st = ps_geo_to_pr(ps.get(), 85, 22, &x, &y, 0, 0);
        EXPECT_TRUE(st == 0 || st == -2 || st == 17) << v;
        if (std::isnan(v) || std::fabs(v) > 90) { EXPECT_TRUE(st == -2 || (std::isnan(x) && std::isnan(y))) << v; }
    }
}

}  // namespace
