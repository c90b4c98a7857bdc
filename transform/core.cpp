// The state and helpers every projection kind shares: the state's common
// fields, the area test, angle wrapping and the latitude series. The series
// are J. P. Snyder, "Map Projections - A Working Manual", USGS Professional
// Paper 1395, 1987: the meridian arc eq. (3-21), the footpoint latitude
// eq. (3-26) with n for his e1, the geodetic from the conformal latitude
// eq. (3-5).
#include "core.h"

#include <algorithm>
#include <cstdlib>

namespace {

// Longitudes beyond this (degrees) are no longitudes, see check_area.
constexpr double kLonWrapLimit = 540.0;

// A semi-minor axis is told from an inverse flattening by its size, metres.
constexpr double kSecondIsAxis = 1000000.0;

}  // namespace

// ---------------------------------------------------------------------------
// State, area and angles.

void projection_state_free(ProjState* s) { std::free(s); }

int projection_state_init(ProjState* s, double a, double second, double latOrigin, double lon0) {
    if (s == nullptr) return kStatusNoState;
    s->latMin = -90.0;
    s->lonMin = -180.0;
    s->latMax = 90.0;
    s->lonMax = 180.0;
    s->lat0 = latOrigin * kDegToRad;
    sin_cos(s->lat0, &s->sinLat0, &s->cosLat0);
    s->lon0 = normalize_angle_rad(lon0 * kDegToRad);
    s->a = a;
    double e2;
    if (std::isnan(second)) {
        e2 = second;  // an unknown figure stays unknown in every result
    } else if (second <= 0.0) {
        e2 = 0.0;
    } else if (second <= 1.0) {
        e2 = second;
    } else if (second <= kSecondIsAxis) {
        const double f = 1.0 / second;
        e2 = (2.0 - f) * f;
    } else {
        e2 = 1.0 - (second * second) / (a * a);
    }
    s->e2 = e2;
    s->e = std::sqrt(e2);
    return 0;
}

int check_area(const ProjState* s, double lat, double lon) {
    // NaN lies in no area (the comparisons below would all let it pass), nor
    // does a longitude that one wrap cannot bring into [-180, 180): the
    // 180-degree tests below would take an infinite one for inside.
    if (std::isnan(lat) || !(std::fabs(lon) <= kLonWrapLimit)) return kStatusOutside;
    int st = kStatusInside;
    if (lat < s->latMin || lat > s->latMax) {
        const double lo = std::max(s->latMin - kAreaMargin, -90.0);
        const double hi = std::min(s->latMax + kAreaMargin, 90.0);
        if (lat > hi || lat < lo) return kStatusOutside;
        st = kStatusMargin;
    }
    // An area whose west bound exceeds its east bound crosses the 180 degree meridian.
    const bool inside = s->lonMax > s->lonMin ? (s->lonMin <= lon && lon <= s->lonMax)
                                              : (lon <= s->lonMax || lon >= s->lonMin);
    if (inside) return st;
    const double lo = normalize_lon_deg(s->lonMin - kAreaMargin);
    const double hi = normalize_lon_deg(s->lonMax + kAreaMargin);
    const bool margin = hi > lo ? (lo <= lon && lon <= hi) : (lon <= hi || lon >= lo);
    return margin ? kStatusMargin : kStatusOutside;
}

double normalize_lon_deg(double x) {
    if (x >= 180.0) return x - 360.0;
    if (x < -180.0) return x + 360.0;
    return x;
}

double normalize_angle_rad(double x) {
    // Two turns at most: sums of two wrapped angles never need more, and an
    // absurd input must not loop.
    for (int turn = 0; turn < 2 && std::fabs(x) > kPi; ++turn) x += x > kPi ? -kTwoPi : kTwoPi;
    return x;
}

// ---------------------------------------------------------------------------
// Series helpers. Each series in sin 2k.x is evaluated as sin 2x times a
// polynomial in cos 2x (Horner), from one sine and cosine of x.

void meridian_arc_coefficients(double e, double e2, double en[5]) {
    en[1] = en[2] = en[3] = en[4] = 0.0;
    if (e < kSphereEccentricity) {
        en[0] = 1.0;
        return;
    }
    // m = E0 phi - E1 sin 2phi + E2 sin 4phi - E3 sin 6phi.
    const double x = e2, x2 = x * x, x3 = x2 * x;
    const double E0 = 1.0 - x / 4.0 - 3.0 * x2 / 64.0 - 5.0 * x3 / 256.0;
    const double E1 = 3.0 * x / 8.0 + 3.0 * x2 / 32.0 + 45.0 * x3 / 1024.0;
    const double E2 = 15.0 * x2 / 256.0 + 45.0 * x3 / 1024.0;
    const double E3 = 35.0 * x3 / 3072.0;
    en[0] = E0;
    en[1] = -E1 + E3;
    en[2] = 2.0 * E2;
    en[3] = -4.0 * E3;
    en[4] = 0.0;
}

double meridian_arc(const double en[5], double phi, double sinPhi, double cosPhi) {
    const double c2 = 1.0 - 2.0 * sinPhi * sinPhi;  // cos 2phi
    const double s2 = 2.0 * sinPhi * cosPhi;        // sin 2phi
    return en[0] * phi + s2 * (((en[4] * c2 + en[3]) * c2 + en[2]) * c2 + en[1]);
}

void footpoint_coefficients(double e, double e2, double fp[4]) {
    fp[0] = fp[1] = fp[2] = fp[3] = 0.0;
    if (e < kSphereEccentricity) return;
    // phi1 = mu + B1 sin 2mu + B2 sin 4mu + B3 sin 6mu + B4 sin 8mu.
    const double r = std::sqrt(1.0 - e2);
    const double n = (1.0 - r) / (1.0 + r), n2 = n * n, n3 = n2 * n, n4 = n3 * n;
    const double B1 = 3.0 * n / 2.0 - 27.0 * n3 / 32.0;
    const double B2 = 21.0 * n2 / 16.0 - 55.0 * n4 / 32.0;
    const double B3 = 151.0 * n3 / 96.0;
    const double B4 = 1097.0 * n4 / 512.0;
    fp[0] = B1 - B3;
    fp[1] = 2.0 * B2 - 4.0 * B4;
    fp[2] = 4.0 * B3;
    fp[3] = 8.0 * B4;
}

double footpoint_correction(const double fp[4], double sinMu, double cosMu) {
    const double c2 = 1.0 - 2.0 * sinMu * sinMu;
    const double s2 = 2.0 * sinMu * cosMu;
    return s2 * (((fp[3] * c2 + fp[2]) * c2 + fp[1]) * c2 + fp[0]);
}

void conformal_coefficients(double e, double e2, double cc[4]) {
    cc[0] = cc[1] = cc[2] = cc[3] = 0.0;
    if (e < kSphereEccentricity) return;
    // phi = chi + C1 sin 2chi + C2 sin 4chi + C3 sin 6chi + C4 sin 8chi.
    const double x = e2, x2 = x * x, x3 = x2 * x, x4 = x3 * x;
    const double C1 = x / 2.0 + 5.0 * x2 / 24.0 + x3 / 12.0 + 13.0 * x4 / 360.0;
    const double C2 = 7.0 * x2 / 48.0 + 29.0 * x3 / 240.0 + 811.0 * x4 / 11520.0;
    const double C3 = 7.0 * x3 / 120.0 + 81.0 * x4 / 1120.0;
    const double C4 = 4279.0 * x4 / 161280.0;
    cc[0] = C1 - C3;
    cc[1] = 2.0 * C2 - 4.0 * C4;
    cc[2] = 4.0 * C3;
    cc[3] = 8.0 * C4;
}

double conformal_to_geodetic(const double cc[4], double chi, double sinChi, double cosChi) {
    const double c2 = 1.0 - 2.0 * sinChi * sinChi;
    const double s2 = 2.0 * sinChi * cosChi;
    return chi + s2 * (((cc[3] * c2 + cc[2]) * c2 + cc[1]) * c2 + cc[0]);
}
