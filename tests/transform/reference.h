// Independent references for the numerical core's tests: exact quantities
// computed the long way (numerical integration, iteration to convergence,
// closed spherical formulas), never through the library's series.
#ifndef MAPWRIGHT_TESTS_TRANSFORM_REFERENCE_H
#define MAPWRIGHT_TESTS_TRANSFORM_REFERENCE_H

#include <cmath>

namespace ref {

inline constexpr double kWgs84A = 6378137.0;
inline constexpr double kWgs84Rf = 298.257223563;
inline constexpr double kKrassA = 6378245.0;
inline constexpr double kKrassRf = 298.3;
inline constexpr long double kPiL = 3.14159265358979323846264338327950288L;

inline double e2_of(double rf) {
    const double f = 1.0 / rf;
    return f * (2.0 - f);
}
inline double rad(double deg) { return static_cast<double>(deg * kPiL / 180.0L); }
inline double deg(double r) { return static_cast<double>(r * 180.0L / kPiL); }

// Meridian arc from the equator to phi (radians), metres: the integral of the
// meridian radius of curvature a(1-e^2)/(1 - e^2 sin^2 t)^(3/2), composite
// Simpson in long double. The integrand is smooth and 4000 panels leave an
// error far below a nanometre.
inline double meridian_arc(double a, double e2, double phi) {
    const int n = 4000;
    const long double h = static_cast<long double>(phi) / n;
    long double sum = 0.0L;
    for (int i = 0; i <= n; ++i) {
        const long double t = i * h;
        const long double s = std::sin(t);
        const long double w = 1.0L - e2 * s * s;
        const long double f = 1.0L / (w * std::sqrt(w));
        sum += (i == 0 || i == n) ? f : (i % 2 ? 4.0L : 2.0L) * f;
    }
    return static_cast<double>(a * (1.0L - e2) * sum * h / 3.0L);
}

// The latitude (radians) whose meridian arc is m metres, by Newton's method
// on meridian_arc.
inline double latitude_of_arc(double a, double e2, double m) {
    double phi = m / a;
    for (int i = 0; i < 20; ++i) {
        const double s = std::sin(phi);
        const double w = 1.0 - e2 * s * s;
        const double rho = a * (1.0 - e2) / (w * std::sqrt(w));
        const double step = (meridian_arc(a, e2, phi) - m) / rho;
        phi -= step;
        if (std::fabs(step) < 1e-15) break;
    }
    return phi;
}

// Geodetic (degrees, metres) -> geocentric, in long double.
inline void to_geocentric(double a, double e2, double lat, double lon, double h, double* X, double* Y, double* Z) {
    const long double phi = lat * kPiL / 180.0L, lam = lon * kPiL / 180.0L;
    const long double s = std::sin(phi), c = std::cos(phi);
    const long double N = a / std::sqrt(1.0L - e2 * s * s);
    *X = static_cast<double>((N + h) * c * std::cos(lam));
    *Y = static_cast<double>((N + h) * c * std::sin(lam));
    *Z = static_cast<double>(((1.0L - e2) * N + h) * s);
}

// Geocentric -> geodetic by fixed-point iteration on the latitude to
// convergence (long double); away from the polar axis.
inline void to_geodetic(double a, double e2, double X, double Y, double Z, double* lat, double* lon, double* h) {
    const long double p = std::sqrt(static_cast<long double>(X) * X + static_cast<long double>(Y) * Y);
    long double phi = std::atan2(static_cast<long double>(Z), p * (1.0L - e2));
    long double N = a, hh = 0.0L;
    for (int i = 0; i < 100; ++i) {
        const long double s = std::sin(phi);
        N = a / std::sqrt(1.0L - e2 * s * s);
        // Height from whichever of p and Z is better conditioned.
        hh = std::fabs(phi) < kPiL / 4 ? p / std::cos(phi) - N : Z / s - N * (1.0L - e2);
        const long double next = std::atan2(static_cast<long double>(Z), p * (1.0L - e2 * N / (N + hh)));
        if (std::fabs(next - phi) < 1e-19L) {
            phi = next;
            break;
        }
        phi = next;
    }
    *lat = static_cast<double>(phi * 180.0L / kPiL);
    *lon = static_cast<double>(std::atan2(static_cast<long double>(Y), static_cast<long double>(X)) * 180.0L / kPiL);
    *h = static_cast<double>(hh);
}

// The exact polar stereographic radius on the ellipsoid, written the other
// textbook way: rho = a mc t / tc for true scale at phic, and
// rho = 2 a k0 t / sqrt((1+e)^(1+e) (1-e)^(1-e)) at the pole.
inline long double ps_t(long double e, long double phi) {
    const long double es = e * std::sin(phi);
    return std::tan(kPiL / 4 - phi / 2) / std::pow((1 - es) / (1 + es), e / 2);
}
inline double ps_rho(double a, double e2, double phicDeg, double phiDeg) {
    const long double e = std::sqrt(static_cast<long double>(e2));
    const long double phi = std::fabs(phiDeg) * kPiL / 180.0L;
    if (std::fabs(phicDeg) == 90.0) {
        return static_cast<double>(2 * a * ps_t(e, phi) /
                                   std::sqrt(std::pow(1 + e, 1 + e) * std::pow(1 - e, 1 - e)));
    }
    const long double phic = std::fabs(phicDeg) * kPiL / 180.0L;
    const long double sc = std::sin(phic);
    const long double mc = std::cos(phic) / std::sqrt(1 - e * e * sc * sc);
    return static_cast<double>(a * mc * ps_t(e, phi) / ps_t(e, phic));
}

}  // namespace ref

#endif
