// Mercator, polar stereographic, Cartesian and the datum shift: closed
// formulas in long double, the margins, the poles, the 180 degree meridian,
// the choice of shift method and its switches.
#include <gtest/gtest.h>

#include <cmath>

#include "cartesian.h"
#include "polar_stereo.h"
#include "reference.h"

namespace {

constexpr double kUnwritten = -12345.678;
const double kA = ref::kWgs84A, kRf = ref::kWgs84Rf, kE2 = ref::e2_of(ref::kWgs84Rf);

TEST(CoreMercator, ForwardCases) {
    MercState s60(merc_create(kA, kRf, 0.0, -60.0));
    EXPECT_NEAR(s60->k0, 0.5 / std::sqrt(1.0 - kE2 * 0.75), 1e-15);  // cos 60 / sqrt(1 - e^2 sin^2 60)
    const struct {
        double cm, lat, lon;
        int fe, fn, status;
        double east, north;  // NaN: not written
    } rows[] = {
        {25, 0, 25, 500000, 100, 0, 500000, 100},
        {170, 0, -170, 0, 0, 0, kA * ref::rad(20), 0},
        {-170, 0, 170, 0, 0, 0, -kA * ref::rad(20), 0},
        {0, 45, 0, 0, 0, 0, 0, kA * ref::isometric(kE2, 45)},
        {0, 89, 0, 0, 0, 0, 0, kA * ref::isometric(kE2, 89)},
        {0, 89.5, 0, 0, 0, 17, 0, kA * ref::isometric(kE2, 89.5)},
        {0, -89.999995, 0, 0, 0, 17, 0, kA * ref::isometric(kE2, -89.999995)},
        {0, 89.9999951, 0, 0, 0, -2, NAN, NAN},
        {0, 92, 0, 0, 0, -2, NAN, NAN},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.lat);
        MercState s(merc_create(kA, kRf, r.cm, 0.0));
        double east = kUnwritten, north = kUnwritten;
        EXPECT_EQ(merc_geo_to_pr(s.get(), r.lat, r.lon, &east, &north, r.fe, r.fn), r.status);
        if (std::isnan(r.east)) {
            EXPECT_EQ(east, kUnwritten);
            EXPECT_EQ(north, kUnwritten);
            continue;
        }
        // The input latitude's rounding moves the northing by a/cos(phi) 2e-16 rad.
        EXPECT_NEAR(east, r.east, 1e-7);
        EXPECT_NEAR(north, r.north, std::fabs(r.lat) < 89.1 ? 1e-7 : 3e-7 / std::cos(ref::rad(r.lat)));
    }
}

TEST(CoreMercator, InverseTendsToThePoles) {
    MercState s(merc_create(kA, kRf, 30.0, 0.0));
    for (const auto& [north, lat, st] : {std::tuple{2000.0, 0.0, 0}, {1e9, 90.0, 17}, {-1e9, -90.0, 17}}) {
        double la = kUnwritten, lo = kUnwritten;
        EXPECT_EQ(merc_pr_to_geo(s.get(), 1000.0, north, &la, &lo, 1000, 2000), st);
        EXPECT_NEAR(la, lat, 1e-9);
        EXPECT_NEAR(lo, 30.0, 1e-12);
    }
}

constexpr int kFe = 2000000, kFn = 2000000;
constexpr double kTs = 81.1145;

TEST(CorePolarStereo, ForwardCases) {
    PlainState ts(ps_create(kA, kRf, kTs, 0.0, kTs));
    EXPECT_NEAR(ts->k0, 0.994, 5e-4);
    double east, north;  // true scale at kTs: the radius there is the parallel's N cos(phic)
    ASSERT_EQ(ps_geo_to_pr(ts.get(), kTs, 90.0, &east, &north, 0, 0), -2) << "in the band, written all the same";
    const double sc = std::sin(ref::rad(kTs));
    EXPECT_NEAR(east, kA * std::cos(ref::rad(kTs)) / std::sqrt(1 - kE2 * sc * sc), 1e-7);
    const double rho = ref::ps_rho(kA, kE2, kTs, 85.0), rhoP = ref::ps_rho(kA, kE2, 90.0, 85.0);
    const struct {
        double latOrigin, cm, lat, lon;
        int status;
        double east, north;  // NaN east: nothing written; NaN north: not checked
    } rows[] = {
        {kTs, 0, 90, 0, 0, kFe, kFn},           {kTs, 0, 90 - 5e-8, 77, 0, kFe, kFn},
        {kTs, 0, 85, 0, 0, kFe, kFn - rho},     {kTs, 0, 85, 180, 0, kFe, kFn + rho},
        {kTs, 0, 85, 90, 0, kFe + rho, kFn},    {kTs, 0, 85, -90, 0, kFe - rho, kFn},
        {kTs, 45, 85, 45, 0, kFe, kFn - rho},   {-kTs, 0, -85, 0, 0, kFe, -(kFn + rho)},
        {-kTs, 0, -85, 180, 0, kFe, -(kFn - rho)}, {-kTs, 0, -90, 0, 0, kFe, -kFn},
        {90, 0, 85, 0, 0, kFe, kFn - rhoP},     {-90, 0, -85, 0, 0, kFe, -(kFn + rhoP)},
        {kTs, 0, 84, 0, 0, kFe, NAN},           {kTs, 0, 83, 0, -2, kFe, NAN},
        {kTs, 0, -1, 0, 17, kFe, NAN},          {kTs, 0, -3, 0, -2, NAN, NAN},
        {-kTs, 0, -80, 0, 0, kFe, NAN},         {-kTs, 0, -79, 0, -2, kFe, NAN},
        {-kTs, 0, 1, 0, 17, kFe, NAN},          {-kTs, 0, 3, 0, -2, NAN, NAN},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(std::to_string(r.latOrigin) + ": " + std::to_string(r.lat) + "," + std::to_string(r.lon));
        PlainState s(ps_create(kA, kRf, r.latOrigin, r.cm, r.latOrigin));
        east = north = kUnwritten;
        EXPECT_EQ(ps_geo_to_pr(s.get(), r.lat, r.lon, &east, &north, kFe, kFn), r.status);
        if (std::isnan(r.east)) {
            EXPECT_EQ(east, kUnwritten);
            EXPECT_EQ(north, kUnwritten);
            continue;
        }
        EXPECT_TRUE(std::isfinite(north));
        EXPECT_NEAR(east, r.east, 1e-6);  // long double reference against radii near 1e6 m
        if (!std::isnan(r.north)) { EXPECT_NEAR(north, r.north, 1e-6); }
    }
}

TEST(CorePolarStereo, InverseCases) {
    const struct {
        double latOrigin, cm, east, north;
        int status;
        double lat, lon;
    } rows[] = {{kTs, 30, kFe, kFn, 0, 90, 30}, {-kTs, -60, kFe, -kFn, 0, -90, -60},
                {kTs, 0, kFe + 0.5e-7, kFn - 0.5e-7, 0, 90, 0}};
    for (const auto& r : rows) {
        PlainState s(ps_create(kA, kRf, r.latOrigin, r.cm, r.latOrigin));
        double lat = kUnwritten, lon = kUnwritten;
        EXPECT_EQ(ps_pr_to_geo(s.get(), r.east, r.north, &lat, &lon, kFe, kFn), r.status) << r.latOrigin;
        EXPECT_EQ(lat, r.lat);
        EXPECT_NEAR(lon, r.lon, 1e-12);
    }
    // A band point comes back with status 2; with a false northing of 0 the
    // hemisphere mark abs(north) - fn takes a point below the pole for one above it.
    PlainState s(ps_create(kA, kRf, kTs, 0.0, kTs));
    double east, north, lat, lon;
    ps_geo_to_pr(s.get(), 80.0, 10.0, &east, &north, kFe, kFn);
    EXPECT_EQ(ps_pr_to_geo(s.get(), east, north, &lat, &lon, kFe, kFn), 2);
    EXPECT_NEAR(lat, 80.0, 1e-9);
    EXPECT_NEAR(lon, 10.0, 1e-9);
    EXPECT_EQ(ps_geo_to_pr(s.get(), 85.0, 0.0, &east, &north, 0, 0), 0);
    EXPECT_LT(north, 0.0);
    EXPECT_EQ(ps_pr_to_geo(s.get(), east, north, &lat, &lon, 0, 0), 0);
    EXPECT_NEAR(lat, 85.0, 1e-9);
    EXPECT_NEAR(std::fabs(lon), 180.0, 1e-9);
}

TEST(CoreCartesian, TheAxesAndTheCentre) {
    PlainState s(decart_create(kA, kRf));
    const double b = kA * (1 - 1 / kRf);
    const double rows[][6] = {{0, 0, 0, kA, 0, 0}, {0, 90, 0, 0, kA, 0}, {-90, 0, 100, 0, 0, -(b + 100)}};
    for (const auto& r : rows) {
        double X, Y, Z, lat, lon, h = kUnwritten;
        EXPECT_EQ(decart_geo_to_pr(s.get(), r[0], r[1], r[2], &X, &Y, &Z), 0);
        EXPECT_NEAR(X, r[3], 1e-8);  // cos(pi/2) in double: a few 1e-10 m
        EXPECT_NEAR(Y, r[4], 1e-8);
        EXPECT_NEAR(Z, r[5], 1e-8);
        EXPECT_EQ(decart_pr_to_geo(s.get(), X, Y, Z, &lat, &lon, &h), 0);
        EXPECT_NEAR(lat, r[0], 1e-12);
        EXPECT_EQ(h, 0.0);
    }
    double lat = kUnwritten, lon = kUnwritten, h = kUnwritten;
    EXPECT_EQ(decart_pr_to_geo(s.get(), 0, 0, 0, &lat, &lon, &h), 0);
    EXPECT_EQ(lat, 0.0);
    EXPECT_EQ(lon, 0.0);
}

constexpr double kA72 = 6378135.0, kRf72 = 298.26, kA66 = 6378145.0, kRf66 = 298.25;
constexpr short kPlain[3] = {0, 0, 0}, kPulkovo[3] = {28, -130, -95}, kOther[3] = {10, -5, 3};

// Closed-form WGS 72 -> WGS 84 differences from the published constants.
void wgs72_delta(double lat, double* dLat, double* dLon, double* dH) {
    const double s = std::sin(ref::rad(lat)), c = std::cos(ref::rad(lat));
    *dLat = (4.5 * c / kA72 + 2 * s * c * 3.121057e-8) * 180 / M_PI;
    *dLon = 0.554 / 3600;
    *dH = 4.5 * s + kA72 * 3.121057e-8 * s * s - 2.0 + 1.4;
}

// Distance of two nearby points given by their differences, metres.
double ground(double lat, double dLat, double dLon, double dH) {
    return std::hypot(ref::rad(dLat) * kA, ref::rad(std::remainder(dLon, 360.0)) * kA * std::cos(ref::rad(lat)), dH);
}

TEST(CoreDatumShift, MethodChoice) {
    const struct {
        double aF, rfF;
        const short* fF;
        double aT, rfT;
        const short* fT;
        short method;
    } rows[] = {
        {kA72, kRf72, kPlain, kA, kRf, kPlain, 72},      {kA, kRf, kPlain, kA72, kRf72, kPlain, -72},
        {kA66, kRf66, kPlain, kA, kRf, kPlain, 66},      {kA, kRf, kPlain, kA66, kRf66, kPlain, -66},
        {kA72 + 0.005, kRf72 + 5e-7, nullptr, kA - 0.005, kRf - 5e-8, kPlain, 72},
        {kA72 + 0.02, kRf72, kPlain, kA, kRf, kPlain, 2}, {kA72, kRf72 - 2e-6, kPlain, kA, kRf, kPlain, 2},
        {kA72, kRf72, kOther, kA, kRf, kPlain, 2},       {kA66, kRf66, kPlain, kA, kRf + 2e-7, kPlain, 0},
        {ref::kKrassA, ref::kKrassRf, kPulkovo, kA, kRf, kPlain, 2},
        {kA, kRf, nullptr, ref::kKrassA, ref::kKrassRf, kPulkovo, -2},
        {kA, kRf, kPlain, kA, kRf, kOther, -2},          {ref::kKrassA, ref::kKrassRf, kPulkovo, 6378388, 297, kOther, 0},
        {kA72, kRf72, kPlain, kA66, kRf66, kPlain, 0},   {kA66, kRf66, kPlain, kA72, kRf72, kPlain, 0},
    };
    for (const auto& r : rows) {
        ShiftState s(datum_shift_create(r.aF, r.rfF, r.fF, r.aT, r.rfT, r.fT));
        EXPECT_EQ(s->ShiftMethod, r.method) << r.aF << " " << r.rfF << " -> " << r.aT << " " << r.rfT;
    }
    ShiftState s(datum_shift_create(6371000.0, 0.0, kPulkovo, kA, kRf, kOther));
    EXPECT_EQ(s->fFrom, 0.0) << "rf <= 0 is a sphere";
    EXPECT_EQ(s->dX, 18.0);
    EXPECT_EQ(s->dY, -125.0);
    EXPECT_EQ(s->dZ, -98.0);
}

TEST(CoreDatumShift, Wgs72ClosedFormAndItsReverse) {
    ShiftState to84(datum_shift_create(kA72, kRf72, kPlain, kA, kRf, kPlain));
    ShiftState to72(datum_shift_create(kA, kRf, kPlain, kA72, kRf72, kPlain));
    for (double lat : {0.0, 37.0, 90.0, -90.0}) {
        double eLat, eLon, eH, dLat, dLon, dH, nLat, nLon, nH;
        wgs72_delta(lat, &eLat, &eLon, &eH);
        ASSERT_EQ(datum_shift_delta(lat, 10.0, 0.0, &dLat, &dLon, &dH, to84.get()), 0);
        EXPECT_NEAR(dLat, eLat, 1e-19 + 1e-14 * std::fabs(eLat)) << lat;
        EXPECT_NEAR(dLon, eLon, 1e-19) << lat;
        EXPECT_NEAR(dH, eH, 1e-14) << lat;
        ASSERT_EQ(datum_shift_delta(lat, 10.0, 0.0, &nLat, &nLon, &nH, to72.get()), 0);
        EXPECT_EQ(nLat, -dLat);
        EXPECT_EQ(nLon, -dLon);
        EXPECT_EQ(nH, -dH);
    }
    // apply: the longitude wraps once; a height below -1e6 m is unknown, shifted as 0.
    const double dLat0 = 4.5 / kA72 * 180 / M_PI, dLon = 0.554 / 3600;
    const double rows[][6] = {{0, 179.9999, 50, dLat0, 179.9999 + dLon - 360, 49.4},
                              {0, 10, -2e6, dLat0, 10 + dLon, -0.6},
                              {0, 10, -1e6, dLat0, 10 + dLon, -1e6 - 0.6}};
    for (const auto& r : rows) {
        double lat = kUnwritten, lon = kUnwritten, h = kUnwritten;
        EXPECT_EQ(datum_shift_apply(r[0], r[1], r[2], &lat, &lon, &h, to84.get()), 0);
        EXPECT_NEAR(lat, r[3], 1e-15);
        EXPECT_NEAR(lon, r[4], 1e-12);
        EXPECT_NEAR(h, r[5], 1e-9) << r[2];
    }
    double lat = kUnwritten;  // null outputs are skipped
    EXPECT_EQ(datum_shift_apply(10.0, 10.0, 0.0, &lat, nullptr, nullptr, to84.get()), 0);
    EXPECT_NE(lat, kUnwritten);
    EXPECT_EQ(datum_shift_delta(10.0, 10.0, 0.0, nullptr, nullptr, nullptr, to84.get()), 0);
}

TEST(CoreDatumShift, Wgs66ThroughWgs72) {
    // 66 -> 84: the translation (4, 3, -7) onto WGS 72, then the closed form.
    // The way back is not exactly the inverse: a few micrometres.
    ShiftState to84(datum_shift_create(kA66, kRf66, kPlain, kA, kRf, kPlain));
    ShiftState to66(datum_shift_create(kA, kRf, kPlain, kA66, kRf66, kPlain));
    for (double lat = -85.0; lat <= 85.0; lat += 17.0) {
        for (double lon = -170.0; lon < 180.0; lon += 80.0) {
            double X, Y, Z, la72, lo72, h72, dLat, dLon, dH, la, lo, h, bla, blo, bh;
            ref::to_geocentric(kA66, ref::e2_of(kRf66), lat, lon, 300.0, &X, &Y, &Z);
            ref::to_geodetic(kA72, ref::e2_of(kRf72), X + 4, Y + 3, Z - 7, &la72, &lo72, &h72);
            wgs72_delta(la72, &dLat, &dLon, &dH);
            ASSERT_EQ(datum_shift_apply(lat, lon, 300.0, &la, &lo, &h, to84.get()), 0);
            EXPECT_LT(ground(lat, la - la72 - dLat, lo - lo72 - dLon, h - h72 - dH), 1e-6) << lat << "," << lon;
            ASSERT_EQ(datum_shift_apply(la, lo, h, &bla, &blo, &bh, to66.get()), 0);
            EXPECT_LT(ground(lat, bla - lat, blo - lon, bh - 300.0), 1e-5) << lat << "," << lon;
        }
    }
}

TEST(CoreDatumShift, TheExactTranslationTakesOverAbove89Degrees) {
    // A shift of tens of kilometres makes Molodensky's second-order error
    // hundreds of metres: the switch shows as a jump between 89 and just above.
    const short big[3] = {30000, -20000, 25000};
    ShiftState s(datum_shift_create(ref::kKrassA, ref::kKrassRf, big, kA, kRf, kPlain));
    for (double pole : {89.0, -89.0}) {
        double la1, lo1, h1, la2, lo2, h2;
        datum_shift_apply(pole, 30.0, 100.0, &la1, &lo1, &h1, s.get());
        datum_shift_apply(pole * (1 + 1e-9), 30.0, 100.0, &la2, &lo2, &h2, s.get());
        EXPECT_GT(ground(pole, la2 - la1, lo2 - lo1, h2 - h1), 1.0) << pole;
    }
    // Equal translations, different figures: on the axis latitude +-90 and
    // the height from Z, h + b_from - b_to.
    ShiftState axis(datum_shift_create(kA, kRf, kPlain, ref::kKrassA, ref::kKrassRf, kPlain));
    const double b84 = kA * (1 - 1 / kRf), bK = ref::kKrassA * (1 - 1 / ref::kKrassRf);
    for (double pole : {90.0, -90.0}) {
        double la, lo, h;
        ASSERT_EQ(datum_shift_apply(pole, 0.0, 10.0, &la, &lo, &h, axis.get()), 0);
        EXPECT_EQ(la, pole);
        EXPECT_EQ(lo, 0.0);
        EXPECT_NEAR(h, 10.0 + b84 - bK, 1e-8);
    }
}

TEST(CoreDatumShift, GeocentricToGeodeticAgainstTheIteratedInverse) {
    for (double h : {-5000.0, 0.0, 50000.0}) {
        for (double lat = -89.99; lat <= 89.99; lat += 4.999) {
            double X, Y, Z, la, lo, hh;
            ref::to_geocentric(kA, kE2, lat, 123.0, h, &X, &Y, &Z);
            geocentric_to_geodetic(kA, kE2, X, Y, Z, &la, &lo, &hh);
            EXPECT_LT(ground(lat, la - lat, lo - 123.0, hh - h), 1e-6) << lat << " " << h;  // Bowring, refined once
        }
    }
    const double rows[][6] = {{0, 0, 6356752.3142 + 5, 90, 0, 5}, {0.0005, -0.0005, -6356752.3142, -90, 0, 0},
                              {0, 0, 0, 0, 0, -kA}, {0, 5000, 0, 0, 90, 5000 - kA}, {0, -5000, 0, 0, -90, 5000 - kA}};
    for (const auto& r : rows) {
        double la, lo, hh;
        geocentric_to_geodetic(kA, kE2, r[0], r[1], r[2], &la, &lo, &hh);
        EXPECT_NEAR(la, r[3], 1e-12) << r[0] << "," << r[1] << "," << r[2];
        EXPECT_EQ(lo, r[4]);
        EXPECT_NEAR(hh, r[5], 1e-3);
    }
}

TEST(Core, NullStatesAreRefusedWithoutWriting) {
    double x = kUnwritten, y = kUnwritten, z = kUnwritten;
    long zone = 0;
    EXPECT_EQ(tm_init(nullptr, 1, 1, 0, 0, 1), -1);
    EXPECT_EQ(tm_geo_to_pr(nullptr, 1, 1, &x, &y, 0, 0), -1);
    EXPECT_EQ(tm_pr_to_geo(nullptr, 1, 1, &x, &y, 0, 0), -1);
    EXPECT_EQ(utm_geo_to_pr(nullptr, 1, 1, &zone, &x, &y), -1);
    EXPECT_EQ(utm_pr_to_geo(nullptr, 31, 1, 1, &x, &y), -1);
    EXPECT_EQ(merc_geo_to_pr(nullptr, 0, 0, &x, &y, 0, 0), -1);
    EXPECT_EQ(merc_pr_to_geo(nullptr, 0, 0, &x, &y, 0, 0), -1);
    EXPECT_EQ(ps_geo_to_pr(nullptr, 90, 0, &x, &y, 0, 0), -1);
    EXPECT_EQ(ps_pr_to_geo(nullptr, 0, 0, &x, &y, 0, 0), -1);
    EXPECT_EQ(decart_geo_to_pr(nullptr, 0, 0, 0, &x, &y, &z), -1);
    EXPECT_EQ(decart_pr_to_geo(nullptr, 1, 1, 1, &x, &y, &z), -1);
    EXPECT_EQ(datum_shift_delta(0, 0, 0, &x, &y, &z, nullptr), 0xFFFF);
    EXPECT_EQ(datum_shift_apply(0, 0, 0, &x, &y, &z, nullptr), 0xFFFF);
    EXPECT_EQ(x, kUnwritten);
    EXPECT_EQ(y, kUnwritten);
    EXPECT_EQ(z, kUnwritten);
    EXPECT_EQ(zone, 0);
    projection_state_free(nullptr);
    merc_free(nullptr);
    datum_shift_free(nullptr);
}

}  // namespace
