// Independent references for the core's tests: exact quantities computed the
// long way (numerical integration, iteration to convergence, closed formulas
// in long double), never through the library's series.
#ifndef MAPWRIGHT_TESTS_TRANSFORM_REFERENCE_H
#define MAPWRIGHT_TESTS_TRANSFORM_REFERENCE_H

#include <cmath>
#include <memory>

#include "datum_shift.h"
#include "mercator.h"
#include "tm.h"

namespace ref {

inline constexpr double kWgs84A = 6378137.0, kWgs84Rf = 298.257223563;
inline constexpr double kKrassA = 6378245.0, kKrassRf = 298.3;
inline constexpr long double kPiL = 3.14159265358979323846264338327950288L;

inline double e2_of(double rf) { return (2.0 - 1.0 / rf) / rf; }
inline double rad(double deg) { return static_cast<double>(deg * kPiL / 180.0L); }

// Meridian arc from the equator to phi (radians), metres: composite Simpson
// in long double on 4000 panels, far below a nanometre.
inline double meridian_arc(double a, double e2, double phi) {
    const int n = 4000;
    const long double h = static_cast<long double>(phi) / n;
    long double sum = 0.0L;
    for (int i = 0; i <= n; ++i) {
        const long double s = std::sin(i * h), w = 1.0L - e2 * s * s, f = 1.0L / (w * std::sqrt(w));
        sum += (i == 0 || i == n) ? f : (i % 2 ? 4.0L : 2.0L) * f;
    }
    return static_cast<double>(a * (1.0L - e2) * sum * h / 3.0L);
}

// Geodetic (degrees, metres) -> geocentric, in long double.
inline void to_geocentric(double a, double e2, double lat, double lon, double h, double* X, double* Y, double* Z) {
    const long double phi = lat * kPiL / 180.0L, lam = lon * kPiL / 180.0L, s = std::sin(phi), c = std::cos(phi);
    const long double N = a / std::sqrt(1.0L - e2 * s * s);
    *X = static_cast<double>((N + h) * c * std::cos(lam));
    *Y = static_cast<double>((N + h) * c * std::sin(lam));
    *Z = static_cast<double>(((1.0L - e2) * N + h) * s);
}

// Geocentric -> geodetic by fixed-point iteration to convergence, away from the axis.
inline void to_geodetic(double a, double e2, double X, double Y, double Z, double* lat, double* lon, double* h) {
    const long double p = std::hypot(static_cast<long double>(X), static_cast<long double>(Y));
    long double phi = std::atan2(static_cast<long double>(Z), p * (1.0L - e2)), hh = 0.0L;
    for (int i = 0; i < 100; ++i) {
        const long double s = std::sin(phi), N = a / std::sqrt(1.0L - e2 * s * s);
        hh = std::fabs(phi) < kPiL / 4 ? p / std::cos(phi) - N : Z / s - N * (1.0L - e2);
        const long double next = std::atan2(static_cast<long double>(Z), p * (1.0L - e2 * N / (N + hh)));
        const bool done = std::fabs(next - phi) < 1e-19L;
        phi = next;
        if (done) break;
    }
    *lat = static_cast<double>(phi * 180.0L / kPiL);
    *lon = static_cast<double>(std::atan2(static_cast<long double>(Y), static_cast<long double>(X)) * 180.0L / kPiL);
    *h = static_cast<double>(hh);
}

// The polar stereographic radius written the other textbook way:
// a mc t / tc for true scale at phic, 2 a t / sqrt((1+e)^(1+e) (1-e)^(1-e)) at the pole.
inline long double ps_t(long double e, long double phi) {
    const long double es = e * std::sin(phi);
    return std::tan(kPiL / 4 - phi / 2) / std::pow((1 - es) / (1 + es), e / 2);
}
inline double ps_rho(double a, double e2, double phicDeg, double phiDeg) {
    const long double e = std::sqrt(static_cast<long double>(e2)), phi = std::fabs(phiDeg) * kPiL / 180.0L;
    if (std::fabs(phicDeg) == 90.0)
        return static_cast<double>(2 * a * ps_t(e, phi) / std::sqrt(std::pow(1 + e, 1 + e) * std::pow(1 - e, 1 - e)));
    const long double phic = std::fabs(phicDeg) * kPiL / 180.0L, sc = std::sin(phic);
    return static_cast<double>(a * std::cos(phic) / std::sqrt(1 - e * e * sc * sc) * ps_t(e, phi) / ps_t(e, phic));
}

// The isometric latitude ln[tan(pi/4 + phi/2) ((1 - e s)/(1 + e s))^(e/2)].
inline double isometric(double e2, double latDeg) {
    const long double e = std::sqrt(static_cast<long double>(e2)), phi = latDeg * kPiL / 180.0L, es = e * std::sin(phi);
    return static_cast<double>(std::log(std::tan(kPiL / 4 + phi / 2) * std::pow((1 - es) / (1 + es), e / 2)));
}

}  // namespace ref

// Owning pointers for the core's states.
struct PlainRelease {
    void operator()(ProjState* s) const { projection_state_free(s); }
};
struct MercRelease {
    void operator()(ProjState* s) const { merc_free(s); }
};
struct ShiftRelease {
    void operator()(DatumShiftState* s) const { datum_shift_free(s); }
};
using PlainState = std::unique_ptr<ProjState, PlainRelease>;
using MercState = std::unique_ptr<ProjState, MercRelease>;
using ShiftState = std::unique_ptr<DatumShiftState, ShiftRelease>;

#endif
