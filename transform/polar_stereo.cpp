// Polar stereographic on the ellipsoid: rho = k0 rhoFactor t with
// t = tan(pi/4 - phi/2) ((1 + e sin phi)/(1 - e sin phi))^(e/2), and the
// inverse through the conformal latitude chi = pi/2 - 2 atan(t).
#include "polar_stereo.h"

#include <cstdlib>
#include <limits>

namespace {

// Closer than this to the pole (degrees) or to the map's origin (metres) is
// the pole itself.
constexpr double kPoleTolerance = 1e-7;

bool in_utm_band(double lat) { return (kPsBandSouth < lat && lat < 0.0) || (0.0 <= lat && lat < kPsBandNorth); }

// The isometric-latitude function t of phi in [0, pi/2].
double isometric_t(double e, double phi) {
    const double es = e * std::sin(phi);
    return std::pow((1.0 + es) / (1.0 - es), 0.5 * e) * std::tan(0.5 * (kHalfPi - phi));
}

}  // namespace

ProjState* ps_create(double a, double rf, double latOrigin, double centralMeridian, double latTrueScale) {
    auto* s = static_cast<ProjState*>(std::calloc(1, sizeof(ProjState)));
    if (s == nullptr) return nullptr;
    // One decision for the pole and the area. An unknown (NaN) origin gets
    // the north pole's area but an unknown scale, below.
    const bool south = latOrigin < 0.0;
    projection_state_init(s, a, rf, south ? -90.0 : 90.0, centralMeridian);
    PsConstants& k = s->ps;
    const double e = s->e;
    k.rhoFactor = 2.0 * a * std::pow((1.0 - e) / (1.0 + e), 0.5 * e) / std::sqrt(1.0 - s->e2);
    conformal_coefficients(e, s->e2, k.cc);

    const double absTs = std::fabs(latTrueScale);
    if (absTs > 90.0 + kPoleTolerance || std::isnan(latOrigin)) {
        s->k0 = std::numeric_limits<double>::quiet_NaN();  // no such latitude, or no known pole
    } else if (absTs >= 90.0 - kPoleTolerance) {
        // True scale at the pole: tc and mc both vanish; their limit gives
        // rho = 2a t / sqrt((1+e)^(1+e) (1-e)^(1-e)), which is rhoFactor t.
        s->k0 = 1.0;
    } else {
        const double phic = absTs * kDegToRad;
        double sc, cc;
        sin_cos(phic, &sc, &cc);
        const double tc = isometric_t(e, phic);
        const double mc = cc / std::sqrt(1.0 - s->e2 * sc * sc);
        s->k0 = mc * a / (tc * k.rhoFactor);
    }
    k.invRhoK0 = 1.0 / (k.rhoFactor * s->k0);

    s->latMin = south ? -90.0 : 0.0;
    s->latMax = south ? 0.0 : 90.0;
    s->lonMin = -180.0;
    s->lonMax = 180.0;
    return s;
}

int ps_geo_to_pr(ProjState* s, double lat, double lon, double* east, double* north, int fe, int fn) {
    if (s == nullptr) return kStatusNoState;
    int st = check_area(s, lat, lon);
    if (st < 0) return kStatusRefused;
    const bool south = s->lat0 < 0.0;

    double x = 0.0, y = 0.0;
    if (std::fabs(std::fabs(lat) - 90.0) < kPoleTolerance) {
        st = kStatusInside;
    } else {
        const double phi = std::fabs(lat) * kDegToRad;
        const double dlam = normalize_angle_rad(lon * kDegToRad - s->lon0);
        const double rho = isometric_t(s->e, phi) * s->ps.rhoFactor * s->k0;
        double sinL, cosL;
        sin_cos(dlam, &sinL, &cosL);
        x = rho * sinL;
        y = south ? rho * cosL : -rho * cosL;
    }
    *east = x + fe;
    *north = y + fn;
    // Kept on purpose: a southern point's northing is always written negative
    // (the hemisphere mark the inverse removes), whatever the sign of y + fn.
    if (lat < 0.0) *north = -std::fabs(*north);

    if (st != kStatusInside) return st;
    return in_utm_band(lat) ? kStatusRefused : kStatusInside;
}

int ps_pr_to_geo(ProjState* s, double east, double north, double* lat, double* lon, int fe, int fn) {
    if (s == nullptr) return kStatusNoState;
    const bool south = s->lat0 < 0.0;
    const double x = east - fe;
    const double y = std::fabs(north) - fn;  // the hemisphere mark removed as written

    if (std::fabs(x) < kPoleTolerance && std::fabs(y) < kPoleTolerance) {
        *lat = south ? -90.0 : 90.0;
        *lon = s->lon0 * kRadToDeg;
        return kStatusInside;
    }
    double dlam;
    if (std::fabs(y) < kPoleTolerance) dlam = x < 0.0 ? -kHalfPi : kHalfPi;
    else dlam = south ? std::atan2(x, y) : std::atan2(x, -y);
    // The length of (x, y): what y/cos dlam or x/sin dlam give, without the
    // round trip through the angle.
    const double rho = std::hypot(x, y);

    const double t = rho * s->ps.invRhoK0;
    const double chi = kHalfPi - 2.0 * std::atan(t);
    double sinChi, cosChi;
    sin_cos(chi, &sinChi, &cosChi);
    const double phi = std::fabs(conformal_to_geodetic(s->ps.cc, chi, sinChi, cosChi)) * kRadToDeg;
    *lat = south ? -phi : phi;
    *lon = normalize_angle_rad(s->lon0 + dlam) * kRadToDeg;
    if (std::isinf(rho)) {
        // atan of an infinite t and atan2 of infinities would make a point of it.
        *lat = *lon = std::numeric_limits<double>::quiet_NaN();
    }

    const int st = check_area(s, *lat, *lon);
    if (st != kStatusInside) return st;
    return in_utm_band(*lat) ? kStatusUtmBand : kStatusInside;
}
