// Transverse Mercator family. The forward and inverse are the classical
// ellipsoidal series in the longitude difference (eta^2 terms to eta^8), over a
// meridian arc in e^2 to e^6 and a footpoint latitude from a series in n to
// n^4, not iterated.
//
// Sources: the series in the longitude difference (terms T1 to T18 there) are
// those of DMA TM 8358.2, "The Universal Grids: Universal Transverse Mercator
// (UTM) and Universal Polar Stereographic (UPS)", Defense Mapping Agency,
// 1989, which also fixes the UTM constants. The meridian arc is J. P. Snyder,
// "Map Projections - A Working Manual", USGS Professional Paper 1395, 1987,
// eq. (3-21); the footpoint latitude its eq. (3-26) (its e1 is our n); the
// geodetic latitude from the conformal one (core.cpp) its eq. (3-5).
#include "tm.h"

#include <cstdlib>

// ---------------------------------------------------------------------------
// Constants of the family.

namespace {

// Area of validity: 30 degrees either side of the central meridian, the poles
// themselves left to the margin. The area is part of the interface; the series'
// accuracy is not uniform over it. Largest error against the exact projection
// (the oracle tests, WGS 84 and Krassovsky 1940, k0 0.9996, every latitude of
// the area), forward / forward then inverse:
//    4 degrees  0.956 mm / 0.787 mm  (the meridian arc's e^8 truncation)
//    6 degrees  0.96 mm  / 0.83 mm
//   10 degrees  18 mm    / 38 mm
//   20 degrees  3.88 m   / 24.1 m
//   30 degrees  115 m    / 1351 m
// Beyond about 6 degrees the error grows roughly as the ninth power of the
// longitude difference: use UTM zones (3 degrees) or Gauss-Kruger zones for
// survey work, not the whole 30 degrees.
constexpr double kTmLatLimit = 89.95;
constexpr double kTmLonHalfWidth = 30.0;

// Below this bound on |phi1 - mu| the inverse gets sin and cos of the
// footpoint latitude by rotating those of mu through a short Taylor series:
// the first term left out, |d|^7/5040, is below 2e-18 rad. Every ellipsoid
// with a flattening under about 1/75 qualifies.
constexpr double kSmallFootpoint = 0.01;

}  // namespace

// ---------------------------------------------------------------------------
// Creation.

ProjState* tm_create(double a, double rf, double latOrigin, double centralMeridian, double k0) {
    auto* s = static_cast<ProjState*>(std::calloc(1, sizeof(ProjState)));
    if (s != nullptr) tm_init(s, a, rf, latOrigin, centralMeridian, k0);
    return s;
}

ProjState* utm_create(double a, double rf) { return tm_create(a, rf, 0.0, 0.0, kUtmScale); }

int tm_init(ProjState* s, double a, double rf, double latOrigin, double centralMeridian, double k0) {
    if (s == nullptr) return kStatusNoState;
    projection_state_init(s, a, rf, latOrigin, centralMeridian);
    TmConstants& k = s->tm;
    s->k0 = k0;
    k.ep2 = s->e2 / (1.0 - s->e2);
    meridian_arc_coefficients(s->e, s->e2, k.en);
    footpoint_coefficients(s->e, s->e2, k.fp);
    k.k0m0 = k0 * meridian_arc(k.en, s->lat0, s->sinLat0, s->cosLat0);

    // The inverse's divisions, once.
    k.invAk0 = 1.0 / (a * k0);
    k.invAk0En0 = 1.0 / (a * k0 * k.en[0]);
    k.mu0 = k.k0m0 / (k0 * k.en[0]);
    const double footBound =
        std::fabs(k.fp[0]) + std::fabs(k.fp[1]) + std::fabs(k.fp[2]) + std::fabs(k.fp[3]);
    k.smallFoot = footBound <= kSmallFootpoint ? 1.0 : 0.0;

    s->latMin = -kTmLatLimit;
    s->latMax = kTmLatLimit;
    s->lonMin = normalize_lon_deg(centralMeridian - kTmLonHalfWidth);
    s->lonMax = normalize_lon_deg(centralMeridian + kTmLonHalfWidth);
    return 0;
}

// ---------------------------------------------------------------------------
// Forward.

int tm_geo_to_pr(ProjState* s, double lat, double lon, double* east, double* north, int fe, int fn) {
    // northing = k0 a (m(phi) - m(phi0)) + t2 L + t3 L^2 + t4 L^3 + t5 L^4,
    // easting  = dlam (t6 + t7 L + t8 L^2 + t9 L^3), L = dlam^2.
    if (s == nullptr) return kStatusNoState;
    const int st = check_area(s, lat, lon);
    if (st < 0) return kStatusRefused;
    const TmConstants& k = s->tm;

    const double dlam = normalize_angle_rad(lon * kDegToRad - s->lon0);
    const double L = dlam * dlam;
    const double phi = lat * kDegToRad;
    double sinPhi, cosPhi;
    sin_cos(phi, &sinPhi, &cosPhi);
    const double W = std::sqrt(1.0 - s->e2 * sinPhi * sinPhi);
    const double r = 1.0 / (cosPhi * W);  // one division gives both 1/cos phi and 1/W
    const double t = sinPhi * W * r;
    const double T = t * t;
    const double C = cosPhi * cosPhi;
    const double eta2 = k.ep2 * C;
    const double k0a = s->k0 * s->a;
    const double knu = k0a * cosPhi * r;  // k0 nu = k0 a / W
    const double M = k0a * meridian_arc(k.en, phi, sinPhi, cosPhi);

    const double knusc = knu * sinPhi * cosPhi;
    const double t2 = knusc * 0.5;
    const double t3 = knusc * C * (5.0 - T + eta2 * (9.0 + 4.0 * eta2)) * (1.0 / 24.0);
    const double t4 =
        knusc * C * C *
        (61.0 - 58.0 * T + T * T +
         eta2 * ((270.0 - 330.0 * T) +
                 eta2 * ((445.0 - 680.0 * T) + eta2 * ((324.0 - 600.0 * T) + eta2 * (88.0 - 192.0 * T))))) *
        (1.0 / 720.0);
    const double t5 = knusc * C * C * C * (1385.0 + T * (-3111.0 + T * (543.0 - T))) * (1.0 / 40320.0);

    const double knuc = knu * cosPhi;
    const double t6 = knuc;
    const double t7 = knuc * C * (1.0 - T + eta2) * (1.0 / 6.0);
    const double t8 = knuc * C * C *
                      (5.0 - 18.0 * T + T * T +
                       eta2 * ((14.0 - 58.0 * T) + eta2 * ((13.0 - 64.0 * T) + eta2 * (4.0 - 24.0 * T)))) *
                      (1.0 / 120.0);
    const double t9 = knuc * C * C * C * (61.0 + T * (-479.0 + T * (179.0 - T))) * (1.0 / 5040.0);

    *east = dlam * (t6 + L * (t7 + L * (t8 + L * t9))) + fe;
    *north = M - s->a * k.k0m0 + L * (t2 + L * (t3 + L * (t4 + L * t5))) + fn;
    return st;
}

// ---------------------------------------------------------------------------
// Inverse.

int tm_pr_to_geo(ProjState* s, double east, double north, double* lat, double* lon, int fe, int fn) {
    // phi = phi1 - X t10 + X^2 t11 - X^3 t12 + X^4 t13,
    // lam = lam0 + dx (t14 - X t15 + X^2 t16 - X^3 t17), X = dx^2,
    // at the footpoint latitude phi1. Every t_i carries a power of
    // 1/(nu k0)^2 = W^2/(a k0)^2, so with g = dx/(nu k0) and D = g^2 the series
    // run in D, and the only division left per point is 1/cos phi1.
    if (s == nullptr) return kStatusNoState;
    const TmConstants& k = s->tm;

    const double dx = east - fe;
    const double mu = (north - fn) * k.invAk0En0 + k.mu0;
    double sinMu, cosMu;
    sin_cos(mu, &sinMu, &cosMu);
    const double d = footpoint_correction(k.fp, sinMu, cosMu);
    const double phi1 = mu + d;
    double s1, c1;
    if (k.smallFoot != 0.0) {
        // sin and cos of phi1 = mu + d by rotation; d is small (see kSmallFootpoint).
        const double d2 = d * d;
        const double sinD = d * (1.0 - d2 * (1.0 / 6.0) * (1.0 - d2 * (1.0 / 20.0)));
        const double cosD = 1.0 - d2 * 0.5 * (1.0 - d2 * (1.0 / 12.0) * (1.0 - d2 * (1.0 / 30.0)));
        s1 = sinMu * cosD + cosMu * sinD;
        c1 = cosMu * cosD - sinMu * sinD;
    } else {
        sin_cos(phi1, &s1, &c1);
    }

    const double invC = 1.0 / c1;
    const double t = s1 * invC;
    const double T = t * t;
    const double eta2 = k.ep2 * c1 * c1;
    const double W = std::sqrt(1.0 - s->e2 * s1 * s1);
    const double g = dx * W * k.invAk0;
    const double D = g * g;

    const double p11 = 5.0 + 3.0 * T + eta2 * (1.0 - 9.0 * T - 4.0 * eta2);
    const double p12 =
        61.0 + T * (90.0 + 45.0 * T) +
        eta2 * ((46.0 - T * (252.0 + 90.0 * T)) +
                eta2 * ((-3.0 + T * (-66.0 + 225.0 * T)) +
                        eta2 * ((100.0 + 84.0 * T) + eta2 * (88.0 - 192.0 * T))));
    const double p13 = 1385.0 + T * (3633.0 + T * (4095.0 + 1575.0 * T));
    const double phi =
        phi1 - t * (1.0 + eta2) * D *
                   (0.5 - D * (p11 * (1.0 / 24.0) - D * (p12 * (1.0 / 720.0) - D * p13 * (1.0 / 40320.0))));

    const double p15 = 1.0 + 2.0 * T + eta2;
    const double p16 = 5.0 + T * (28.0 + 24.0 * T) +
                       eta2 * ((6.0 + 8.0 * T) + eta2 * ((-3.0 + 4.0 * T) + eta2 * (-4.0 + 24.0 * T)));
    const double p17 = 61.0 + T * (662.0 + T * (1320.0 + 720.0 * T));
    const double lam = normalize_angle_rad(
        s->lon0 +
        g * invC * (1.0 - D * (p15 * (1.0 / 6.0) - D * (p16 * (1.0 / 120.0) - D * p17 * (1.0 / 5040.0)))));

    *lon = lam * kRadToDeg;
    *lat = phi * kRadToDeg;
    return check_area(s, *lat, *lon);
}

// ---------------------------------------------------------------------------
// UTM: a central-meridian-0 state, shifted to the zone's meridian per point.

int utm_geo_to_pr(ProjState* s, double lat, double lon, long* zone, double* east, double* north) {
    if (s == nullptr) return kStatusNoState;
    long z = *zone;
    if (z < 1 || z > 60) {
        // lon/6 + 31 truncated toward zero and clamped to 1..60; decided on the
        // double so that NaN and huge longitudes never reach an integer conversion.
        const double zd = lon / 6.0 + 31.0;
        z = zd >= 61.0 ? 60 : zd >= 1.0 ? static_cast<long>(zd) : 1;
        *zone = z;
    }
    const long cm = 6 * z - 183;
    const int st = tm_geo_to_pr(s, lat, lon - static_cast<double>(cm), east, north, 0, 0);
    if (st < 0) return st;
    *east += kUtmFalseEasting;
    if (*north < 0.0) *north += kUtmFalseNorthingSouth;
    return st;
}

int utm_pr_to_geo(ProjState* s, int zone, double east, double north, double* lat, double* lon) {
    if (s == nullptr) return kStatusNoState;
    // A negative northing is a southern one given without its sign.
    const double N = north >= 0.0 ? north : std::fabs(north) - kUtmFalseNorthingSouth;
    const int st = tm_pr_to_geo(s, east - kUtmFalseEasting, N, lat, lon, 0, 0);
    // In double: an absurd zone must not overflow the integer product.
    *lon += 6.0 * zone - 183.0;
    return st;
}
