// Datum shift: the choice of method, the closed WGS 72 formulas, the
// WGS 66 path, Molodensky against an exact geocentric translation, the
// switch to the exact translation above 89 degrees, the polar axis, the 180
// degree meridian and the unknown height.
#include "datum_shift.h"

#include <gtest/gtest.h>

#include <cmath>

#include "reference.h"
#include "state_ptr.h"

namespace {

constexpr double kUnwritten = -12345.678;
constexpr double kA72 = 6378135.0, kRf72 = 298.26;
constexpr double kA66 = 6378145.0, kRf66 = 298.25;
constexpr short kPlain[3] = {0, 0, 0};

// Closed-form WGS 72 -> WGS 84 differences at latitude lat (degrees), from
// the published constants.
void wgs72_delta(double lat, double* dLat, double* dLon, double* dH) {
    const double phi = lat * 0.017453292519943295, s = std::sin(phi), c = std::cos(phi);
    *dLat = (4.5 * c / kA72 + 2 * s * c * 3.121057e-8) * 180 / M_PI;
    *dLon = 0.554 / 3600;
    *dH = 4.5 * s + kA72 * 3.121057e-8 * s * s - 2.0 + 1.4;
}

// Exact translation by (dX, dY, dZ) between two ellipsoids, through
// geocentric coordinates with the iterated inverse.
void exact_translation(double aF, double e2F, double aT, double e2T, double dX, double dY, double dZ, double lat,
                       double lon, double h, double* latO, double* lonO, double* hO) {
    double X, Y, Z;
    ref::to_geocentric(aF, e2F, lat, lon, h, &X, &Y, &Z);
    ref::to_geodetic(aT, e2T, X + dX, Y + dY, Z + dZ, latO, lonO, hO);
}

// Distance between two geographic points given by their differences, metres
// (small differences; a sphere of radius a is close enough for a bound).
double ground(double a, double lat, double dLat, double dLon, double dH) {
    return std::sqrt(std::pow(ref::rad(dLat) * a, 2) + std::pow(ref::rad(dLon) * a * std::cos(ref::rad(lat)), 2) +
                     dH * dH);
}

TEST(CoreDatumShift, MethodChoice) {
    const short pulkovo[3] = {28, -130, -95};
    const short other[3] = {10, -5, 3};
    struct Row {
        double aF, rfF;
        const short* firstF;
        double aT, rfT;
        const short* firstT;
        short method;
        bool triples;
        const char* why;
    } rows[] = {
        {kA72, kRf72, kPlain, ref::kWgs84A, ref::kWgs84Rf, kPlain, 72, false, "WGS 72 -> WGS 84"},
        {ref::kWgs84A, ref::kWgs84Rf, kPlain, kA72, kRf72, kPlain, -72, false, "WGS 84 -> WGS 72"},
        {kA66, kRf66, kPlain, ref::kWgs84A, ref::kWgs84Rf, kPlain, 66, false, "WGS 66 -> WGS 84"},
        {ref::kWgs84A, ref::kWgs84Rf, kPlain, kA66, kRf66, kPlain, -66, false, "WGS 84 -> WGS 66"},
        {kA72 + 0.005, kRf72 + 5e-7, kPlain, ref::kWgs84A + 0.005, ref::kWgs84Rf, kPlain, 72, false,
         "within the tolerances"},
        {kA72 + 0.02, kRf72, kPlain, ref::kWgs84A, ref::kWgs84Rf, kPlain, 2, true, "axis off by 2 cm: Molodensky"},
        {kA72, kRf72, other, ref::kWgs84A, ref::kWgs84Rf, kPlain, 2, true, "WGS 72 with a shift is no plain WGS 72"},
        {ref::kKrassA, ref::kKrassRf, pulkovo, ref::kWgs84A, ref::kWgs84Rf, kPlain, 2, true, "to plain WGS 84"},
        {ref::kWgs84A, ref::kWgs84Rf, kPlain, ref::kKrassA, ref::kKrassRf, pulkovo, -2, true, "from plain WGS 84"},
        {ref::kWgs84A, ref::kWgs84Rf, kPlain, ref::kWgs84A, ref::kWgs84Rf, other, -2, true, "same figure, shifted"},
        {ref::kKrassA, ref::kKrassRf, pulkovo, 6378388.0, 297.0, other, 0, true, "neither side WGS 84"},
        {kA72, kRf72, kPlain, kA66, kRf66, kPlain, 0, true, "WGS 72 -> WGS 66: no closed form"},
    };
    for (const Row& r : rows) {
        ShiftState s(datum_shift_create(r.aF, r.rfF, r.firstF, r.aT, r.rfT, r.firstT));
        ASSERT_NE(s, nullptr);
        EXPECT_EQ(s->ShiftMethod, r.method) << r.why;
        EXPECT_EQ(s->aFrom, r.aF);
        EXPECT_EQ(s->aTo, r.aT);
        EXPECT_DOUBLE_EQ(s->fFrom, 1.0 / r.rfF);
        EXPECT_DOUBLE_EQ(s->fTo, 1.0 / r.rfT);
        const short* f = r.triples ? r.firstF : kPlain;
        const short* t = r.triples ? r.firstT : kPlain;
        EXPECT_EQ(s->dxFrom, f[0]) << r.why;
        EXPECT_EQ(s->dyFrom, f[1]) << r.why;
        EXPECT_EQ(s->dzFrom, f[2]) << r.why;
        EXPECT_EQ(s->dxTo, t[0]) << r.why;
        EXPECT_EQ(s->dyTo, t[1]) << r.why;
        EXPECT_EQ(s->dzTo, t[2]) << r.why;
    }
    ShiftState sphere(datum_shift_create(6371000.0, 0.0, kPlain, ref::kWgs84A, ref::kWgs84Rf, kPlain));
    EXPECT_EQ(sphere->fFrom, 0.0) << "rf <= 0 is a sphere";
}

TEST(CoreDatumShift, Wgs72ClosedForm) {
    ShiftState to84(datum_shift_create(kA72, kRf72, kPlain, ref::kWgs84A, ref::kWgs84Rf, kPlain));
    ShiftState to72(datum_shift_create(ref::kWgs84A, ref::kWgs84Rf, kPlain, kA72, kRf72, kPlain));
    struct Row {
        double lat;
        double dLat, dH;
        const char* why;
    } rows[] = {
        {0.0, 4.5 / kA72 * 180 / M_PI, -0.6, "equator: 4.5/a72 rad, -0.6 m"},
        {90.0, 0.0, 0.19906522888695002 + 4.5 - 0.6, "pole: no problem in closed form"},
        {-90.0, 0.0, 0.19906522888695002 - 4.5 - 0.6, "south pole"},
        {37.0, NAN, NAN, "mid-latitude"},
    };
    for (const Row& r : rows) {
        double eLat, eLon, eH;
        wgs72_delta(r.lat, &eLat, &eLon, &eH);
        if (!std::isnan(r.dLat)) {
            EXPECT_NEAR(eLat, r.dLat, 1e-18) << "reference " << r.why;
            EXPECT_NEAR(eH, r.dH, 1e-12) << "reference " << r.why;
        }
        double dLat, dLon, dH;
        ASSERT_EQ(datum_shift_delta(r.lat, 10.0, 0.0, &dLat, &dLon, &dH, to84.get()), 0);
        // Bound: the rounding of a 1e-5 degree difference and a metre.
        EXPECT_NEAR(dLat, eLat, 1e-19 + 1e-14 * std::fabs(eLat)) << r.why;
        EXPECT_NEAR(dLon, 0.0001538888888888889, 1e-19) << r.why;
        EXPECT_NEAR(dH, eH, 1e-14) << r.why;
        double nLat, nLon, nH;
        ASSERT_EQ(datum_shift_delta(r.lat, 10.0, 0.0, &nLat, &nLon, &nH, to72.get()), 0);
        EXPECT_EQ(nLat, -dLat) << "the reverse is the negation, " << r.why;
        EXPECT_EQ(nLon, -dLon) << r.why;
        EXPECT_EQ(nH, -dH) << r.why;
    }
}

TEST(CoreDatumShift, ApplyWrapsLongitudeAndReadsTheUnknownHeight) {
    ShiftState to84(datum_shift_create(kA72, kRf72, kPlain, ref::kWgs84A, ref::kWgs84Rf, kPlain));
    struct Row {
        double lat, lon, h;
        double latOut, lonOut, hOut;
        const char* why;
    } rows[] = {
        {0.0, 179.9999, 50.0, 4.5 / kA72 * 180 / M_PI, 179.9999 + 0.0001538888888888889 - 360.0, 49.4,
         "east across 180"},
        {0.0, 10.0, -2000000.0, 4.5 / kA72 * 180 / M_PI, 10.0 + 0.0001538888888888889, -0.6,
         "below -1e6 m: unknown, shifted as 0"},
        {0.0, 10.0, -1000000.0, 4.5 / kA72 * 180 / M_PI, 10.0 + 0.0001538888888888889, -1000000.6,
         "-1e6 m itself is a height"},
    };
    for (const Row& r : rows) {
        double lat = kUnwritten, lon = kUnwritten, h = kUnwritten;
        EXPECT_EQ(datum_shift_apply(r.lat, r.lon, r.h, &lat, &lon, &h, to84.get()), 0);
        EXPECT_NEAR(lat, r.latOut, 1e-15) << r.why;
        EXPECT_NEAR(lon, r.lonOut, 1e-12) << r.why;
        EXPECT_NEAR(h, r.hOut, 1e-9) << r.why;
    }
    // Null outputs are skipped.
    double lat = kUnwritten;
    EXPECT_EQ(datum_shift_apply(10.0, 10.0, 0.0, &lat, nullptr, nullptr, to84.get()), 0);
    EXPECT_NE(lat, kUnwritten);
    EXPECT_EQ(datum_shift_delta(10.0, 10.0, 0.0, nullptr, nullptr, nullptr, to84.get()), 0);
}

TEST(CoreDatumShift, MolodenskyAgainstTheExactTranslation) {
    // Standard Molodensky is first order in the shift and in the changes of
    // axis and flattening. What it leaves out is second order: about
    // (|d| + |da|)^2 / a, growing with tan(phi) towards the poles (the
    // longitude terms divide by cos phi). Bound: that figure.
    const double e84 = ref::e2_of(ref::kWgs84Rf), eK = ref::e2_of(ref::kKrassRf);
    const short pulkovo[3] = {28, -130, -95};
    const short other[3] = {10, -5, 3};
    struct Row {
        double aF, rfF;
        const short* firstF;
        double aT, rfT;
        const short* firstT;
        double e2F, e2T, dX, dY, dZ;
        const char* why;
    } rows[] = {
        {ref::kWgs84A, ref::kWgs84Rf, kPlain, ref::kWgs84A, ref::kWgs84Rf, other, e84, e84, -10, 5, -3,
         "same figure, (10, -5, 3): dX = -10, dY = 5, dZ = -3"},
        {ref::kKrassA, ref::kKrassRf, pulkovo, ref::kWgs84A, ref::kWgs84Rf, kPlain, eK, e84, 28, -130, -95,
         "Pulkovo 1942 to WGS 84"},
    };
    for (const Row& r : rows) {
        ShiftState s(datum_shift_create(r.aF, r.rfF, r.firstF, r.aT, r.rfT, r.firstT));
        const double first = std::sqrt(r.dX * r.dX + r.dY * r.dY + r.dZ * r.dZ) + std::fabs(r.aT - r.aF);
        for (double lat = -89.0; lat <= 89.0; lat += 8.9) {
            const double tol = first * first / r.aT * (1.0 + std::fabs(std::tan(ref::rad(lat))));
            for (double lon = -180.0; lon < 180.0; lon += 45.0) {
                double la, lo, h, eLa, eLo, eH;
                ASSERT_EQ(datum_shift_apply(lat, lon, 250.0, &la, &lo, &h, s.get()), 0);
                exact_translation(r.aF, r.e2F, r.aT, r.e2T, r.dX, r.dY, r.dZ, lat, lon, 250.0, &eLa, &eLo, &eH);
                EXPECT_LT(ground(r.aT, lat, la - eLa, std::remainder(lo - eLo, 360.0), h - eH), tol)
                    << r.why << " at " << lat << "," << lon;
            }
        }
    }
}

TEST(CoreDatumShift, Above89DegreesTheTranslationIsExact) {
    // A shift of tens of kilometres makes Molodensky's second-order error
    // hundreds of metres: at 89 degrees it shows; above, the exact geocentric
    // path agrees with the iterated reference to Bowring's accuracy (1e-6 m).
    const short big[3] = {30000, -20000, 25000};
    ShiftState s(datum_shift_create(ref::kKrassA, ref::kKrassRf, big, ref::kWgs84A, ref::kWgs84Rf, kPlain));
    const double eK = ref::e2_of(ref::kKrassRf), e84 = ref::e2_of(ref::kWgs84Rf);
    struct Row {
        double lat;
        bool exact;
    } rows[] = {{89.0, false}, {-89.0, false}, {89.0001, true}, {89.5, true}, {-89.5, true}, {89.99, true}};
    for (const Row& r : rows) {
        double la, lo, h, eLa, eLo, eH;
        ASSERT_EQ(datum_shift_apply(r.lat, 30.0, 100.0, &la, &lo, &h, s.get()), 0);
        exact_translation(ref::kKrassA, eK, ref::kWgs84A, e84, 30000, -20000, 25000, r.lat, 30.0, 100.0, &eLa, &eLo,
                          &eH);
        const double err = ground(ref::kWgs84A, eLa, la - eLa, std::remainder(lo - eLo, 360.0), h - eH);
        if (r.exact) {
            EXPECT_LT(err, 1e-6) << r.lat;
        } else {
            EXPECT_GT(err, 1.0) << r.lat << ": Molodensky still";
        }
    }
}

TEST(CoreDatumShift, PolarAxis) {
    // Equal translations, different figures: at the pole the point lies on the
    // axis; latitude +-90 and the height from Z: h + b_from - b_to.
    ShiftState s(datum_shift_create(ref::kWgs84A, ref::kWgs84Rf, kPlain, ref::kKrassA, ref::kKrassRf, kPlain));
    const double b84 = ref::kWgs84A * (1 - 1 / ref::kWgs84Rf), bK = ref::kKrassA * (1 - 1 / ref::kKrassRf);
    for (double pole : {90.0, -90.0}) {
        double la, lo, h;
        ASSERT_EQ(datum_shift_apply(pole, 0.0, 10.0, &la, &lo, &h, s.get()), 0);
        EXPECT_EQ(la, pole);
        EXPECT_EQ(lo, 0.0);
        EXPECT_NEAR(h, 10.0 + b84 - bK, 1e-8);
    }
}

TEST(CoreDatumShift, Wgs66ThroughWgs72) {
    // 66 -> 84: the translation (4, 3, -7) onto WGS 72, then the closed form;
    // 84 -> 66 the reverse. Reference: the same steps with the iterated
    // geocentric inverse and the published constants.
    ShiftState to84(datum_shift_create(kA66, kRf66, kPlain, ref::kWgs84A, ref::kWgs84Rf, kPlain));
    ShiftState to66(datum_shift_create(ref::kWgs84A, ref::kWgs84Rf, kPlain, kA66, kRf66, kPlain));
    const double e66 = ref::e2_of(kRf66), e72 = ref::e2_of(kRf72);
    for (double lat = -85.0; lat <= 85.0; lat += 17.0) {
        for (double lon = -170.0; lon < 180.0; lon += 40.0) {
            double la72, lo72, h72, dLat, dLon, dH;
            exact_translation(kA66, e66, kA72, e72, 4, 3, -7, lat, lon, 300.0, &la72, &lo72, &h72);
            wgs72_delta(la72, &dLat, &dLon, &dH);
            double la, lo, h;
            ASSERT_EQ(datum_shift_apply(lat, lon, 300.0, &la, &lo, &h, to84.get()), 0);
            EXPECT_LT(ground(ref::kWgs84A, lat, la - (la72 + dLat), lo - (lo72 + dLon), h - (h72 + dH)), 1e-6)
                << lat << "," << lon;
            // And back. The closed form is not exactly its own inverse: its
            // differences change with latitude by about 7e-7 per radian, and
            // are taken 7e-7 rad apart going and coming, a few micrometres.
            double bla, blo, bh;
            ASSERT_EQ(datum_shift_apply(la, lo, h, &bla, &blo, &bh, to66.get()), 0);
            EXPECT_LT(ground(ref::kWgs84A, lat, bla - lat, blo - lon, bh - 300.0), 1e-5) << lat << "," << lon;
        }
    }
}

TEST(CoreDatumShift, GeocentricToGeodeticAgainstTheIteratedInverse) {
    const double a = ref::kWgs84A, e2 = ref::e2_of(ref::kWgs84Rf);
    for (double h : {-5000.0, 0.0, 1000.0, 50000.0}) {
        for (double lat = -89.99; lat <= 89.99; lat += 4.999) {
            double X, Y, Z, la, lo, hh;
            ref::to_geocentric(a, e2, lat, 123.0, h, &X, &Y, &Z);
            geocentric_to_geodetic(a, e2, X, Y, Z, &la, &lo, &hh);
            // Bowring with one refinement: far below a micrometre on Earth.
            EXPECT_LT(ground(a, lat, la - lat, lo - 123.0, hh - h), 1e-6) << lat << " " << h;
        }
    }
    struct Row {
        double X, Y, Z, lat, lon, h;
        const char* why;
    } rows[] = {
        {0.0, 0.0, 6356752.3142 + 5, 90.0, 0.0, 5.0, "north pole"},
        {0.0005, -0.0005, -6356752.3142, -90.0, 0.0, 0.0, "south pole within 1 mm of the axis"},
        {0.0, 0.0, 0.0, 0.0, 0.0, -a, "the centre"},
        {0.0, 5000.0, 0.0, 0.0, 90.0, 5000.0 - a, "X on the axis, Y positive: 90"},
        {0.0, -5000.0, 0.0, 0.0, -90.0, 5000.0 - a, "Y negative: -90"},
    };
    for (const Row& r : rows) {
        double la, lo, hh;
        geocentric_to_geodetic(a, e2, r.X, r.Y, r.Z, &la, &lo, &hh);
        EXPECT_NEAR(la, r.lat, 1e-12) << r.why;
        EXPECT_EQ(lo, r.lon) << r.why;
        EXPECT_NEAR(hh, r.h, 1e-3) << r.why;
    }
}

TEST(CoreDatumShift, NullState) {
    double x = kUnwritten, y = kUnwritten, z = kUnwritten;
    EXPECT_EQ(datum_shift_delta(0, 0, 0, &x, &y, &z, nullptr), 0xFFFF);
    EXPECT_EQ(datum_shift_apply(0, 0, 0, &x, &y, &z, nullptr), 0xFFFF);
    EXPECT_EQ(x, kUnwritten);
    EXPECT_EQ(y, kUnwritten);
    EXPECT_EQ(z, kUnwritten);
    datum_shift_free(nullptr);
    ShiftState s(datum_shift_create(ref::kWgs84A, ref::kWgs84Rf, nullptr, ref::kKrassA, ref::kKrassRf, nullptr));
    EXPECT_EQ(s->ShiftMethod, -2) << "null translations read as plain";
}

}  // namespace
