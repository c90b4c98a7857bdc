// Geodetic <-> geocentric Cartesian. The inverse is the closed formula
// tan phi = Z / (p (b/a)^2), exact on the ellipsoid's surface and not iterated:
// a point off the surface comes back with a small latitude error and height 0.
#include "cartesian.h"

#include <cstdlib>
#include <limits>

ProjState* decart_create(double a, double rf) {
    auto* s = static_cast<ProjState*>(std::calloc(1, sizeof(ProjState)));
    if (s == nullptr) return nullptr;
    projection_state_init(s, a, rf, 0.0, 0.0);
    // Both directions take the eccentricity back from the two axes.
    const double b = a * std::sqrt(1.0 - s->e2);
    s->decart.e2ab = (a * a - b * b) / (a * a);
    const double ba = 1.0 - (a - b) / a;
    s->decart.ba2 = ba * ba;
    return s;
}

void geodetic_to_geocentric(double a, double e2, double lat, double lon, double h, double* X, double* Y, double* Z) {
    // X = (N + h) cos phi cos lam, Y = (N + h) cos phi sin lam, Z = ((1 - e^2) N + h) sin phi.
    double sinPhi, cosPhi, sinLam, cosLam;
    sin_cos(lat * kDegToRad, &sinPhi, &cosPhi);
    sin_cos(lon * kDegToRad, &sinLam, &cosLam);
    const double N = a / std::sqrt(1.0 - e2 * sinPhi * sinPhi);
    *X = (N + h) * cosPhi * cosLam;
    *Y = (N + h) * cosPhi * sinLam;
    *Z = ((1.0 - e2) * N + h) * sinPhi;
}

int decart_geo_to_pr(ProjState* s, double lat, double lon, double h, double* north, double* east, double* height) {
    if (s == nullptr) return kStatusNoState;
    geodetic_to_geocentric(s->a, s->decart.e2ab, lat, lon, h, north, east, height);
    return 0;
}

int decart_pr_to_geo(ProjState* s, double north, double east, double height, double* lat, double* lon, double* hOut) {
    if (s == nullptr) return kStatusNoState;
    const double X = north, Y = east, Z = height;
    *lat = std::atan2(Z, std::sqrt(X * X + Y * Y) * s->decart.ba2) * kRadToDeg;
    *lon = std::atan2(Y, X) * kRadToDeg;
    if (!std::isfinite(X) || !std::isfinite(Y) || !std::isfinite(Z)) {
        // atan2 of infinities is a finite angle; no position comes from them.
        *lat = *lon = std::numeric_limits<double>::quiet_NaN();
    }
    *hOut = 0.0;
    return 0;
}
