// Datum shift. The method is chosen once at creation from the two ellipsoids
// and translations; the per-point functions only evaluate it.
//
// Sources: the standard Molodensky formulas, the closed-form WGS 72 -> WGS 84
// formulas and the WGS 72 ellipsoid (a 6378135 m, 1/f 298.26) are those of
// DMA TR 8350.2, "Department of Defense World Geodetic System 1984: Its
// Definition and Relationships with Local Geodetic Systems", Defense Mapping
// Agency, 1987 (NIMA TR 8350.2, 3rd edition, 1997/2000). The geocentric
// inverse is B. R. Bowring, "Transformation from spatial to geographical
// coordinates", Survey Review 23 (181), 1976.
#include "datum_shift.h"

#include <cmath>
#include <cstdlib>
#include <limits>

#include "cartesian.h"
#include "core.h"

// ---------------------------------------------------------------------------
// Constants.

namespace {

// The ellipsoids that select a closed-form method, with the tolerances that
// recognise them.
struct Figure {
    double a, tolA, rf, tolRf;
};
constexpr Figure kWgs84{6378137.0, 0.01, 298.257223563, 1e-7};
constexpr Figure kWgs72{6378135.0, 0.01, 298.26, 1e-6};
constexpr Figure kWgs66{6378145.0, 0.01, 298.25, 1e-6};

// WGS 72 -> WGS 84 in closed form (DMA TR 8350.2): the WGS 72 ellipsoid, the
// changes of flattening and axis, the 4.5 m shift of the origin along the
// polar axis, the 0.554" rotation in longitude and the 1.4 m change of scale
// expressed as a radius.
constexpr double kA72 = 6378135.0;
constexpr double kE2Wgs72 = 0.006694317778266723;
// The published 1 - e^2 of WGS 72 is exactly what the shared conversion computes.
static_assert(1.0 - kE2Wgs72 == 0.9933056822217333);
constexpr double kDf72 = 3.121057e-8;                 // flattening change
constexpr double kA72Df72 = 0.19906522888695002;      // a72 * df
constexpr double kDa72 = 2.0;                         // axis change, metres
constexpr double kDr72 = 1.4;                         // radius change, metres
constexpr double kZ72 = 4.5;                          // origin shift along the axis, metres
constexpr double kDlon72 = 0.0001538888888888889;     // 0.554 arc seconds, degrees

// WGS 66 -> WGS 72 translation, metres.
constexpr double kDx66 = 4.0, kDy66 = 3.0, kDz66 = -7.0;

// Below this height a height is unknown and counts as 0, metres.
constexpr double kUnknownHeight = -1000000.0;
// Above this latitude the Molodensky formulas give way to the exact
// translation, degrees.
constexpr double kMolodenskyLatLimit = 89.0;
// Closer than this to the polar axis (metres) is on it.
constexpr double kAxisTolerance = 0.001;

bool is_figure(double a, double rf, const Figure& f) {
    return std::fabs(a - f.a) < f.tolA && std::fabs(rf - f.rf) < f.tolRf;
}

bool is_plain(const short* first) { return first == nullptr || (first[0] == 0 && first[1] == 0 && first[2] == 0); }

double flattening(double rf) {
    if (rf > 0.0) return 1.0 / rf;
    return rf <= 0.0 ? 0.0 : std::numeric_limits<double>::quiet_NaN();
}

struct Delta {
    double lat, lon, h;  // degrees, degrees, metres
};

// The closed-form WGS 72 -> WGS 84 differences at latitude lat (degrees).
Delta wgs72_to_wgs84(double lat) {
    const double s = std::sin(lat * kDegToRad);
    const double c = std::sqrt(1.0 - s * s);
    return {(2.0 * s * c * kDf72 + kZ72 * c / kA72) / kDegToRad, kDlon72, kA72Df72 * s * s + kZ72 * s - kDa72 + kDr72};
}

// Differences from (lat, lon, h) to a result, the longitude's taken the short way.
Delta difference(double lat, double lon, double h, double latR, double lonR, double hR) {
    return {latR - lat, normalize_lon_deg(lonR - lon), hR - h};
}

Delta wgs66_to_wgs84(const DatumShiftState* s, double lat, double lon, double h) {
    double X, Y, Z;
    geodetic_to_geocentric(s->aFrom, s->e2From, lat, lon, h, &X, &Y, &Z);
    double lat72, lon72, h72;
    geocentric_to_geodetic(kA72, kE2Wgs72, X + kDx66, Y + kDy66, Z + kDz66, &lat72, &lon72, &h72);
    const Delta d = wgs72_to_wgs84(lat72);
    return difference(lat, lon, h, lat72 + d.lat, lon72 + d.lon, h72 + d.h);
}

Delta wgs84_to_wgs66(const DatumShiftState* s, double lat, double lon, double h) {
    const Delta d = wgs72_to_wgs84(lat);
    double X, Y, Z;
    geodetic_to_geocentric(kA72, kE2Wgs72, lat - d.lat, lon - d.lon, h - d.h, &X, &Y, &Z);
    double latR, lonR, hR;
    geocentric_to_geodetic(s->aTo, s->e2To, X - kDx66, Y - kDy66, Z - kDz66, &latR, &lonR, &hR);
    return difference(lat, lon, h, latR, lonR, hR);
}

// Standard (not abridged) Molodensky, as DMA TR 8350.2 gives it. Its
// accuracy falls off towards the poles, where the exact translation takes
// over (kMolodenskyLatLimit).
Delta molodensky(const DatumShiftState* s, double lat, double lon, double h) {
    const double a = s->aFrom, e2 = s->e2From, ab = s->abFrom;
    const double da = s->aTo - s->aFrom, df = s->fTo - s->fFrom;
    const double sinPhi = std::sin(lat * kDegToRad);
    const double cosPhi = std::sqrt(1.0 - sinPhi * sinPhi);
    double sinLam, cosLam;
    sin_cos(lon * kDegToRad, &sinLam, &cosLam);
    const double W2 = 1.0 - e2 * sinPhi * sinPhi;
    const double W = std::sqrt(W2);
    const double N = a / W;
    const double M = a * (1.0 - e2) / (W2 * W);
    const double dX = s->dX, dY = s->dY, dZ = s->dZ;

    Delta d;
    d.lat = (dZ * cosPhi - (dX * sinPhi * cosLam + dY * sinPhi * sinLam) + N * e2 * sinPhi * cosPhi * da / a +
             (M * ab + N / ab) * df * sinPhi * cosPhi) /
            (M + h) / kDegToRad;
    // On the pole itself every longitude is the same point.
    d.lon = std::fabs(cosPhi) < 1e-8 ? 0.0 : (dY * cosLam - dX * sinLam) / ((N + h) * cosPhi) / kDegToRad;
    d.h = dX * cosPhi * cosLam + dY * cosPhi * sinLam + dZ * sinPhi - da * a / N + df * N * sinPhi * sinPhi / ab;
    return d;
}

// Near the poles the Molodensky formulas lose accuracy; the translation is
// done exactly through geocentric coordinates instead.
Delta geocentric_translation(const DatumShiftState* s, double lat, double lon, double h) {
    double X, Y, Z;
    geodetic_to_geocentric(s->aFrom, s->e2From, lat, lon, h, &X, &Y, &Z);
    double latR, lonR, hR;
    geocentric_to_geodetic(s->aTo, s->e2To, X + s->dX, Y + s->dY, Z + s->dZ, &latR, &lonR, &hR);
    return difference(lat, lon, h, latR, lonR, hR);
}

}  // namespace

// ---------------------------------------------------------------------------
// Creation and release.

DatumShiftState* datum_shift_create(double aFrom, double rfFrom, const short* firstFrom, double aTo, double rfTo,
                                    const short* firstTo) {
    auto* s = static_cast<DatumShiftState*>(std::calloc(1, sizeof(DatumShiftState)));
    if (s == nullptr) return nullptr;
    const bool from84 = is_figure(aFrom, rfFrom, kWgs84) && is_plain(firstFrom);
    const bool to84 = is_figure(aTo, rfTo, kWgs84) && is_plain(firstTo);
    const bool from72 = is_figure(aFrom, rfFrom, kWgs72) && is_plain(firstFrom);
    const bool to72 = is_figure(aTo, rfTo, kWgs72) && is_plain(firstTo);
    const bool from66 = is_figure(aFrom, rfFrom, kWgs66) && is_plain(firstFrom);
    const bool to66 = is_figure(aTo, rfTo, kWgs66) && is_plain(firstTo);

    if (from72 && to84) {
        s->ShiftMethod = kShiftWgs72ToWgs84;
    } else if (from84 && to72) {
        s->ShiftMethod = kShiftWgs84ToWgs72;
    } else if (from66 && to84) {
        s->ShiftMethod = kShiftWgs66ToWgs84;
    } else if (from84 && to66) {
        s->ShiftMethod = kShiftWgs84ToWgs66;
    } else {
        s->ShiftMethod = to84 ? kShiftToWgs84 : from84 ? kShiftFromWgs84 : kShiftGeneral;
        if (firstFrom != nullptr) {
            s->dxFrom = firstFrom[0];
            s->dyFrom = firstFrom[1];
            s->dzFrom = firstFrom[2];
        }
        if (firstTo != nullptr) {
            s->dxTo = firstTo[0];
            s->dyTo = firstTo[1];
            s->dzTo = firstTo[2];
        }
    }
    s->aFrom = aFrom;
    s->aTo = aTo;
    s->fFrom = flattening(rfFrom);
    s->fTo = flattening(rfTo);

    s->e2From = (2.0 - s->fFrom) * s->fFrom;
    s->e2To = (2.0 - s->fTo) * s->fTo;
    s->dX = static_cast<double>(s->dxFrom) - s->dxTo;
    s->dY = static_cast<double>(s->dyFrom) - s->dyTo;
    s->dZ = static_cast<double>(s->dzFrom) - s->dzTo;
    s->abFrom = 1.0 / (1.0 - s->fFrom);
    return s;
}

void datum_shift_free(DatumShiftState* s) { std::free(s); }

// ---------------------------------------------------------------------------
// Per point.

unsigned short datum_shift_delta(double lat, double lon, double h, double* dLat, double* dLon, double* dH,
                                 DatumShiftState* s) {
    if (s == nullptr) return kShiftNoState;
    if (h < kUnknownHeight) h = 0.0;
    Delta d;
    switch (s->ShiftMethod) {
        case kShiftWgs72ToWgs84:
            d = wgs72_to_wgs84(lat);
            break;
        case kShiftWgs84ToWgs72:
            d = wgs72_to_wgs84(lat);
            d = {-d.lat, -d.lon, -d.h};
            break;
        case kShiftWgs66ToWgs84:
            d = wgs66_to_wgs84(s, lat, lon, h);
            break;
        case kShiftWgs84ToWgs66:
            d = wgs84_to_wgs66(s, lat, lon, h);
            break;
        default:
            // NaN fails the test and goes the exact way, which keeps it NaN.
            d = std::fabs(lat) <= kMolodenskyLatLimit ? molodensky(s, lat, lon, h)
                                                      : geocentric_translation(s, lat, lon, h);
            break;
    }
    if (dLat != nullptr) *dLat = d.lat;
    if (dLon != nullptr) *dLon = d.lon;
    if (dH != nullptr) *dH = d.h;
    return 0;
}

unsigned short datum_shift_apply(double lat, double lon, double h, double* latOut, double* lonOut, double* hOut,
                                 DatumShiftState* s) {
    if (h < kUnknownHeight) h = 0.0;
    double dLat, dLon, dH;
    const unsigned short st = datum_shift_delta(lat, lon, h, &dLat, &dLon, &dH, s);
    if (st != 0) return st;
    if (latOut != nullptr) *latOut = lat + dLat;
    if (lonOut != nullptr) *lonOut = normalize_lon_deg(lon + dLon);
    if (hOut != nullptr) *hOut = h + dH;
    return 0;
}

// ---------------------------------------------------------------------------
// Geocentric -> geodetic.

void geocentric_to_geodetic(double a, double e2, double X, double Y, double Z, double* lat, double* lon,
                            double* h) {
    const bool axisX = std::fabs(X) < kAxisTolerance;
    const bool axisY = std::fabs(Y) < kAxisTolerance;
    double lonDeg;
    if (axisX) lonDeg = axisY ? 0.0 : Y > 0.0 ? 90.0 : Y < 0.0 ? -90.0 : std::numeric_limits<double>::quiet_NaN();
    else lonDeg = std::atan2(Y, X) * kRadToDeg;

    const double p = std::sqrt(X * X + Y * Y);
    double latDeg, sinPhi, cosPhi;
    if (axisX && axisY) {
        // On the polar axis: a pole, or the centre.
        latDeg = Z > kAxisTolerance ? 90.0 : Z < -kAxisTolerance ? -90.0 : 0.0;
        sinPhi = latDeg > 0.0 ? 1.0 : latDeg < 0.0 ? -1.0 : 0.0;
        cosPhi = latDeg == 0.0 ? 1.0 : 0.0;
    } else {
        // Bowring: tan phi = (Z + e'^2 b sin^3 theta) / (p - a e^2 cos^3 theta)
        // with the parametric latitude theta, refined once. sin and cos of an
        // arctangent come straight from its argument.
        const double ep2 = e2 / (1.0 - e2);
        const double rootB = std::sqrt(1.0 - e2);  // b/a
        const double b = a * rootB;
        double u = a * Z / (p * b);  // tan theta
        double tanPhi = 0.0;
        for (int round = 0; round < 2; ++round) {
            const double cosT = 1.0 / std::sqrt(1.0 + u * u);
            const double sinT = u * cosT;
            tanPhi = (Z + ep2 * b * sinT * sinT * sinT) / (p - a * e2 * cosT * cosT * cosT);
            u = tanPhi * rootB;
        }
        cosPhi = 1.0 / std::sqrt(1.0 + tanPhi * tanPhi);
        sinPhi = tanPhi * cosPhi;
        latDeg = std::atan(tanPhi) * kRadToDeg;
    }
    const double N = a / std::sqrt(1.0 - e2 * sinPhi * sinPhi);
    // Near the poles the height comes from Z, elsewhere from p: each where it
    // is well conditioned.
    *h = std::fabs(latDeg) - 89.0 >= 0.0 ? Z / sinPhi - N * (1.0 - e2) : p / cosPhi - N;
    *lat = latDeg;
    *lon = lonDeg;
}
