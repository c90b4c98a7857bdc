// The numerical core shared by every projection kind: the state record, the
// status codes, the constants, the area test, the angle helpers and the series
// of the meridian arc, the footpoint latitude and the conformal latitude.
//
// Internal to the library (hidden visibility). Degrees and metres at every
// interface, radians inside the formulas.
#ifndef MAPWRIGHT_TRANSFORM_CORE_H
#define MAPWRIGHT_TRANSFORM_CORE_H

#include <cmath>

// ---------------------------------------------------------------------------
// Status codes of the projection operations.

inline constexpr int kStatusInside = 0;     // inside the area of validity
inline constexpr int kStatusMargin = 17;    // outside the area, inside its 2-degree margin; result valid
inline constexpr int kStatusNoState = -1;   // null state, nothing written
inline constexpr int kStatusRefused = -2;   // forward refused (or polar stereographic UTM band)
inline constexpr int kStatusOutside = -17;  // outside the area and its margin
inline constexpr int kStatusUtmBand = 2;    // polar stereographic inverse: result in the UTM band

// ---------------------------------------------------------------------------
// Constants.

inline constexpr double kPi = 3.141592653589793;
inline constexpr double kHalfPi = 1.5707963267948966;
inline constexpr double kTwoPi = 6.283185307179586;
inline constexpr double kDegToRad = 0.017453292519943295;
inline constexpr double kRadToDeg = 57.29577951308232;
// Below this eccentricity the ellipsoid is a sphere for the series.
inline constexpr double kSphereEccentricity = 1e-7;
// Width of the margin around an area of validity, degrees.
inline constexpr double kAreaMargin = 2.0;

// ---------------------------------------------------------------------------
// The state record of every projection kind. Plain data: creation fills it,
// the per-point functions only read it.

// Transverse Mercator family. The first eleven fields are the documented
// ones; the rest are the inverse's divisions, done once here.
struct TmConstants {
    double ep2;        // e'^2 = e^2 / (1 - e^2)
    double k0m0;       // k0 * m(lat0): scaled meridian arc of the origin, divided by a
    double en[5];      // meridian-arc coefficients
    double fp[4];      // footpoint-latitude coefficients
    double invAk0;     // 1 / (a k0), 1/m
    double invAk0En0;  // 1 / (a k0 en[0]), 1/m: northing to rectifying latitude
    double mu0;        // k0m0 / (k0 en[0]): rectifying latitude of the origin, radians
    double smallFoot;  // 1 when the footpoint correction is below 0.01 rad (see tm_pr_to_geo)
    double unused[1];
};

// Mercator.
struct MercConstants {
    double cc[4];  // conformal-latitude coefficients
    double invAk0; // 1 / (a k0), 1/m
    double unused[11];
};

// Polar stereographic.
struct PsConstants {
    double rhoFactor;  // 2a ((1 - e)/(1 + e))^(e/2) / sqrt(1 - e^2), metres
    double cc[4];      // conformal-latitude coefficients
    double invRhoK0;   // 1 / (rhoFactor k0), 1/m
    double unused[10];
};

// Cartesian: the eccentricity recomputed from the two axes.
struct DecartConstants {
    double e2ab;     // (a^2 - b^2) / a^2
    double ba2;      // (b/a)^2 with b/a = 1 - (a - b)/a
    double unused[14];
};

struct ProjState {
    double lon0;     // central meridian, radians, in [-pi, pi]
    double lat0;     // latitude of origin, radians
    double sinLat0;
    double cosLat0;
    double k0;       // scale factor
    double a;        // semi-major axis, metres
    double e;        // first eccentricity
    double e2;       // e^2
    double latMin;   // area of validity, degrees
    double lonMin;
    double latMax;
    double lonMax;
    union {          // the kind area: 16 doubles of kind-specific constants
        double kind[16];
        TmConstants tm;
        MercConstants merc;
        PsConstants ps;
        DecartConstants decart;
    };
};

static_assert(sizeof(TmConstants) == 16 * sizeof(double));
static_assert(sizeof(MercConstants) == 16 * sizeof(double));
static_assert(sizeof(PsConstants) == 16 * sizeof(double));
static_assert(sizeof(DecartConstants) == 16 * sizeof(double));
static_assert(sizeof(ProjState) == 28 * sizeof(double));

// Plain release of a zero-filled (calloc) state. Null does nothing.
void projection_state_free(ProjState* s);

// ---------------------------------------------------------------------------
// Shared helpers.

// Fills the common fields. latOrigin and lon0 in degrees; a in metres;
// `second` is an inverse flattening (1 < second <= 1e6), a semi-minor axis in
// metres (> 1e6), e^2 itself (0 < second <= 1) or a sphere (<= 0).
// -1 for a null state, else 0.
int projection_state_init(ProjState* s, double a, double second, double latOrigin, double lon0);

// Area test of a point, degrees: 0 inside, 17 in the 2-degree margin, -17
// outside (and for NaN, and for longitudes beyond +-540).
int check_area(const ProjState* s, double lat, double lon);

// One wrap of a longitude in degrees into [-180, 180).
double normalize_lon_deg(double x);

// An angle in radians into [-pi, pi], at most two turns.
double normalize_angle_rad(double x);

// sin and cos of one angle (radians) from one call.
inline void sin_cos(double x, double* s, double* c) { ::sincos(x, s, c); }

// Meridian-arc coefficients en[5] from e and e^2 (sphere: en[0] = 1, rest 0).
void meridian_arc_coefficients(double e, double e2, double en[5]);
// m(phi): meridian arc from the equator divided by a; phi radians with its
// sine and cosine.
double meridian_arc(const double en[5], double phi, double sinPhi, double cosPhi);

// Footpoint-latitude coefficients fp[4] from e and e^2 (sphere: all 0).
void footpoint_coefficients(double e, double e2, double fp[4]);
// The correction phi1 - mu of the footpoint latitude, radians, from the
// rectifying latitude mu with its sine and cosine.
double footpoint_correction(const double fp[4], double sinMu, double cosMu);

// Conformal-latitude inverse coefficients cc[4] from e and e^2 (sphere: all 0).
void conformal_coefficients(double e, double e2, double cc[4]);
// Geodetic latitude from the conformal latitude chi, radians, with its sine
// and cosine.
double conformal_to_geodetic(const double cc[4], double chi, double sinChi, double cosChi);

#endif
