// Normal Mercator on the ellipsoid. Forward: the isometric latitude
// psi = ln[tan(pi/4 + phi/2) ((1 - e sin phi)/(1 + e sin phi))^(e/2)];
// inverse: the conformal latitude chi = pi/2 - 2 atan(exp(-psi)) and the
// series of the geodetic latitude in chi.
#include "mercator.h"

#include <limits>
#include <new>

namespace {

// The area of validity stops one degree short of the poles; the margin goes
// on to where the isometric latitude is still a sensible number.
constexpr double kMercLatLimit = 89.0;
constexpr double kMercPoleLimit = 89.999995;

}  // namespace

ProjState* merc_create(double a, double rf, double centralMeridian, double latTrueScale) {
    auto* s = new (std::nothrow) ProjState();
    if (s == nullptr) return nullptr;
    projection_state_init(s, a, rf, latTrueScale, centralMeridian);
    s->k0 = s->cosLat0 / std::sqrt(1.0 - s->e2 * s->sinLat0 * s->sinLat0);
    conformal_coefficients(s->e, s->e2, s->merc.cc);
    s->merc.invAk0 = 1.0 / (s->a * s->k0);
    s->latMin = -kMercLatLimit;
    s->latMax = kMercLatLimit;
    s->lonMin = -180.0;
    s->lonMax = 180.0;
    return s;
}

void merc_free(ProjState* s) { delete s; }

int merc_geo_to_pr(ProjState* s, double lat, double lon, double* east, double* north, int fe, int fn) {
    if (s == nullptr) return kStatusNoState;
    const int st = check_area(s, lat, lon);
    if (st < 0 || std::fabs(lat) > kMercPoleLimit) return kStatusRefused;

    const double dlam = normalize_angle_rad(lon * kDegToRad - s->lon0);
    const double phi = lat * kDegToRad;
    double sinPhi, cosPhi;
    sin_cos(phi, &sinPhi, &cosPhi);
    // psi as asinh(tan phi) - e atanh(e sin phi): the same function as the
    // logarithm of the tangent, without its loss of digits in 1 - sin phi
    // near the poles.
    const double psi = std::asinh(sinPhi / cosPhi) - s->e * std::atanh(s->e * sinPhi);
    const double ak0 = s->a * s->k0;
    *east = dlam * ak0 + fe;
    *north = ak0 * psi + fn;
    return st;
}

int merc_pr_to_geo(ProjState* s, double east, double north, double* lat, double* lon, int fe, int fn) {
    if (s == nullptr) return kStatusNoState;
    const double t = std::exp(-(north - fn) * s->merc.invAk0);
    const double chi = kHalfPi - 2.0 * std::atan(t);
    double sinChi, cosChi;
    sin_cos(chi, &sinChi, &cosChi);
    const double phi = conformal_to_geodetic(s->merc.cc, chi, sinChi, cosChi);
    const double lam = normalize_angle_rad((east - fe) * s->merc.invAk0 + s->lon0);
    *lon = lam * kRadToDeg;
    // exp(-inf) and exp(inf) would pass an infinite northing off as a pole.
    *lat = std::isinf(north) ? std::numeric_limits<double>::quiet_NaN() : phi * kRadToDeg;
    return check_area(s, *lat, *lon);
}
