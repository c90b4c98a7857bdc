// The Cartesian system against GeographicLib's geocentric conversion, and the
// datum shift against PROJ's standard Molodensky operation and an exact
// geocentric translation.
#include <GeographicLib/Geocentric.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <string>

#include "cartesian.h"
#include "core_oracle.h"
#include "datum_shift.h"

namespace {

using oracle::Figure;
using oracle::ground;
using oracle::kDeg;
using oracle::Proj;

TEST(OracleCartesian, ForwardWithinATenthOfAMicrometre) {
    // The same closed formula; coordinates up to 6.4e6 m (ulp 1e-9 m).
    for (const Figure& f : oracle::kFigures) {
        ProjState* s = decart_create(f.a, f.rf);
        const GeographicLib::Geocentric exact(f.a, 1.0 / f.rf);
        double worst = 0;
        for (double h : {-1000.0, 0.0, 100.0, 1000.0, 10000.0}) {
            for (double lat = -90.0; lat <= 90.0; lat += 1.0) {
                for (double lon = -180.0; lon < 180.0; lon += 5.0) {
                    double X, Y, Z, Xo, Yo, Zo;
                    decart_geo_to_pr(s, lat, lon, h, &X, &Y, &Z);
                    exact.Forward(lat, lon, h, Xo, Yo, Zo);
                    const double err = std::sqrt((X - Xo) * (X - Xo) + (Y - Yo) * (Y - Yo) + (Z - Zo) * (Z - Zo));
                    ASSERT_LT(err, 1e-7) << f.name << " at " << lat << "," << lon << "," << h;
                    worst = std::max(worst, err);
                }
            }
        }
        std::cout << "Cartesian forward " << f.name << ": max " << oracle::fixed(worst * 1e9, 2) << " nm\n";
        projection_state_free(s);
    }
}

TEST(OracleCartesian, InverseLatitudeErrorByHeight) {
    // The inverse is the closed formula for points on the surface. A point h
    // above it comes back with its latitude too far from the equator: to
    // first order by h e^2 sin(phi) cos(phi) / (N (1 - e^2)), at most at 45
    // degrees. Reported as a table; each row is held to that first-order
    // figure within 1 %, and the surface itself to 10 nm (the rounding of
    // coordinates of 6.4e6 m, ulp 0.9 nm, through the arctangent).
    std::ostringstream table;
    table << "Cartesian inverse: latitude error by height (largest over all latitudes)\n"
          << "height m | WGS 84 error m | WGS 84 error deg | first-order m\n";
    const Figure& f = oracle::kWgs84;
    ProjState* s = decart_create(f.a, f.rf);
    const GeographicLib::Geocentric exact(f.a, 1.0 / f.rf);
    const double e2 = (2 - 1 / f.rf) / f.rf;
    for (double h : {0.0, 100.0, 1000.0, 10000.0}) {
        double worst = 0;
        for (double lat = -89.0; lat <= 89.0; lat += 0.5) {
            double X, Y, Z, la, lo, hh;
            exact.Forward(lat, 30.0, h, X, Y, Z);
            decart_pr_to_geo(s, X, Y, Z, &la, &lo, &hh);
            worst = std::max(worst, std::fabs(la - lat) * kDeg * f.a);
            ASSERT_EQ(hh, 0.0);
        }
        // At 45 degrees, with the radii of curvature taken as a: metres of arc.
        const double firstOrder = 0.5 * h * e2 / (1 - e2);
        if (h == 0.0) {
            EXPECT_LT(worst, 1e-8);
        } else {
            EXPECT_NEAR(worst, firstOrder, 0.01 * firstOrder) << h;
        }
        table << std::setw(8) << h << " | " << std::setw(14) << oracle::fixed(worst, 9) << " | " << std::setw(16)
              << oracle::fixed(worst / kDeg / f.a, 10) << " | " << oracle::fixed(firstOrder, 6) << "\n";
    }
    projection_state_free(s);
    std::cout << table.str();
    ::testing::Test::RecordProperty("cartesian_latitude_error_by_height", table.str());
}

// A datum with its translation to WGS 84 (the catalog's first triple).
struct Datum {
    const char* name;
    Figure figure;
    short first[3];
};
const Datum kDatums[] = {{"Pulkovo 1942", oracle::kKrassovsky, {28, -130, -95}},
                         {"ED50", oracle::kInternational, {-87, -98, -121}}};
const short kPlain[3] = {0, 0, 0};

// One leg through WGS 84, in either direction, with PROJ's parameters for
// the same shift: +dx the from-datum's dx less the to-datum's, +da and +df
// the to-figure's less the from-figure's.
struct Leg {
    std::string name;
    Figure from, to;
    const short *firstFrom, *firstTo;
    std::string molodensky() const {
        auto num = [](double v) { return oracle::fixed(v, 17); };
        return "+proj=molodensky +a=" + num(from.a) + " +rf=" + num(from.rf) +
               " +dx=" + std::to_string(firstFrom[0] - firstTo[0]) + " +dy=" + std::to_string(firstFrom[1] - firstTo[1]) +
               " +dz=" + std::to_string(firstFrom[2] - firstTo[2]) + " +da=" + num(to.a - from.a) +
               " +df=" + num(1 / to.rf - 1 / from.rf);
    }
    std::string translation() const {
        auto num = [](double v) { return oracle::fixed(v, 17); };
        return "+proj=pipeline +step +proj=cart +a=" + num(from.a) + " +rf=" + num(from.rf) +
               " +step +proj=helmert +x=" + std::to_string(firstFrom[0] - firstTo[0]) +
               " +y=" + std::to_string(firstFrom[1] - firstTo[1]) + " +z=" + std::to_string(firstFrom[2] - firstTo[2]) +
               " +step +inv +proj=cart +a=" + num(to.a) + " +rf=" + num(to.rf);
    }
};

std::vector<Leg> legs() {
    std::vector<Leg> out;
    for (const Datum& d : kDatums) {
        out.push_back({std::string(d.name) + " to WGS 84", d.figure, oracle::kWgs84, d.first, kPlain});
        out.push_back({std::string("WGS 84 to ") + d.name, oracle::kWgs84, d.figure, kPlain, d.first});
    }
    return out;
}

TEST(OracleDatumShift, MolodenskyLikeForLikeWithinATenthOfAMicrometre) {
    // The standard (not abridged) Molodensky formulas on both sides, same
    // parameters: they differ by rounding only. |lat| <= 88, heights from the
    // sea floor to high mountains. Bound 0.1 um on the ground.
    for (const Leg& leg : legs()) {
        DatumShiftState* s =
            datum_shift_create(leg.from.a, leg.from.rf, leg.firstFrom, leg.to.a, leg.to.rf, leg.firstTo);
        ASSERT_EQ(std::abs(s->ShiftMethod), 2) << leg.name;
        const Proj pj(leg.molodensky());
        ASSERT_TRUE(pj.ok()) << leg.molodensky();
        double worst = 0;
        for (double h : {-4000.0, 0.0, 500.0, 5000.0}) {
            for (double lat = -88.0; lat <= 88.0 + 1e-9; lat += 0.5) {
                for (double lon = -180.0; lon < 180.0; lon += 5.0) {
                    double la, lo, hh;
                    ASSERT_EQ(datum_shift_apply(lat, lon, h, &la, &lo, &hh, s), 0);
                    const PJ_COORD o = pj.fwd(lon * kDeg, lat * kDeg, h);
                    const double err = ground(leg.to.a, lat, la - o.lpz.phi / kDeg, lo - o.lpz.lam / kDeg, hh - o.lpz.z);
                    ASSERT_LT(err, 1e-7) << leg.name << " at " << lat << "," << lon << "," << h;
                    worst = std::max(worst, err);
                }
            }
        }
        std::cout << "Molodensky " << leg.name << ": max " << oracle::fixed(worst * 1e9, 2) << " nm\n";
        datum_shift_free(s);
    }
}

TEST(OracleDatumShift, Above89DegreesTheExactGeocentricTranslation) {
    // Above 89 degrees the shift is a translation through geocentric
    // coordinates; PROJ's cart + helmert + inverse cart is the same operation.
    // Both inverses are accurate to far below a micrometre near the surface.
    // Bound 0.1 um on the ground.
    for (const Leg& leg : legs()) {
        DatumShiftState* s =
            datum_shift_create(leg.from.a, leg.from.rf, leg.firstFrom, leg.to.a, leg.to.rf, leg.firstTo);
        const Proj pj(leg.translation());
        ASSERT_TRUE(pj.ok()) << leg.translation();
        double worst = 0;
        for (double h : {0.0, 2000.0}) {
            for (double alat = 89.01; alat <= 90.0 + 1e-9; alat += 0.07) {
                for (double sign : {-1.0, 1.0}) {
                    const double lat = sign * std::min(alat, 90.0 - 1e-6);
                    for (double lon = -180.0; lon < 180.0; lon += 10.0) {
                        double la, lo, hh;
                        ASSERT_EQ(datum_shift_apply(lat, lon, h, &la, &lo, &hh, s), 0);
                        const PJ_COORD o = pj.fwd(lon * kDeg, lat * kDeg, h);
                        const double err =
                            ground(leg.to.a, o.lpz.phi / kDeg, la - o.lpz.phi / kDeg, lo - o.lpz.lam / kDeg, hh - o.lpz.z);
                        ASSERT_LT(err, 1e-7) << leg.name << " at " << lat << "," << lon << "," << h;
                        worst = std::max(worst, err);
                    }
                }
            }
        }
        std::cout << "Geocentric translation " << leg.name << " above 89: max " << oracle::fixed(worst * 1e9, 2)
                  << " nm\n";
        datum_shift_free(s);
    }
}

}  // namespace
