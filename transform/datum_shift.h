// Moving a geographic point from one datum to another: the closed-form
// WGS 72 <-> WGS 84 formulas, WGS 66 <-> WGS 84 through WGS 72, and otherwise
// the standard Molodensky transformation (an exact geocentric translation
// above 89 degrees of latitude). Internal to the library.
#ifndef MAPWRIGHT_TRANSFORM_DATUM_SHIFT_H
#define MAPWRIGHT_TRANSFORM_DATUM_SHIFT_H

// Shift methods.
inline constexpr short kShiftWgs72ToWgs84 = 72;
inline constexpr short kShiftWgs84ToWgs72 = -72;
inline constexpr short kShiftWgs66ToWgs84 = 66;
inline constexpr short kShiftWgs84ToWgs66 = -66;
inline constexpr short kShiftToWgs84 = 2;     // Molodensky, the to-side is plain WGS 84
inline constexpr short kShiftFromWgs84 = -2;  // Molodensky, the from-side is plain WGS 84
inline constexpr short kShiftGeneral = 0;     // Molodensky between two other datums

// Returned by datum_shift_delta and datum_shift_apply for a null state.
inline constexpr unsigned short kShiftNoState = 0xFFFF;

// Plain record, zero-filled (calloc), released with datum_shift_free.
struct DatumShiftState {
    double aFrom;        // semi-major axis of the from-ellipsoid, metres
    double fFrom;        // its flattening (0 for a sphere)
    double aTo;          // semi-major axis of the to-ellipsoid, metres
    double fTo;          // its flattening
    short dxFrom, dyFrom, dzFrom;  // from-datum translation to WGS 84, metres (Molodensky only)
    short dxTo, dyTo, dzTo;        // to-datum translation to WGS 84, metres (Molodensky only)
    short ShiftMethod;             // one of the kShift... codes
    // Derived once at creation for the per-point work.
    double e2From;       // (2 - fFrom) fFrom
    double e2To;         // (2 - fTo) fTo
    double dX, dY, dZ;   // dxFrom - dxTo, ..., metres
    double abFrom;       // a/b of the from-ellipsoid, 1/(1 - fFrom)
};

// aFrom, aTo metres; rfFrom, rfTo inverse flattenings (<= 0: sphere);
// firstFrom, firstTo the three translations dx, dy, dz of each datum to
// WGS 84 (whole metres; null reads as 0, 0, 0). Null when the allocation failed.
DatumShiftState* datum_shift_create(double aFrom, double rfFrom, const short* firstFrom, double aTo, double rfTo,
                                    const short* firstTo);
// Null does nothing.
void datum_shift_free(DatumShiftState* s);

// lat, lon degrees, h metres (below -1 000 000: unknown, taken as 0) -> the
// point on the to-datum; the longitude wrapped once into [-180, 180). 0 on
// success; 0xFFFF for a null state, nothing written. Null outputs are skipped.
unsigned short datum_shift_apply(double lat, double lon, double h, double* latOut, double* lonOut, double* hOut,
                                 DatumShiftState* s);
// The differences to-minus-from: degrees, degrees, metres. 0 on success,
// 0xFFFF for a null state. Null outputs are skipped.
unsigned short datum_shift_delta(double lat, double lon, double h, double* dLat, double* dLon, double* dH,
                                 DatumShiftState* s);

// Geocentric X, Y, Z (metres) -> lat, lon degrees and h metres on the
// ellipsoid of semi-major axis a (metres) and squared eccentricity e2:
// Bowring's method with one refinement.
void geocentric_to_geodetic(double a, double e2, double X, double Y, double Z, double* lat, double* lon,
                            double* h);

#endif
