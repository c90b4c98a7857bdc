// Polar stereographic on the ellipsoid, the polar complement of UTM (north of
// 83.5 degrees, south of -79.5 degrees). Internal to the library.
#ifndef MAPWRIGHT_TRANSFORM_POLAR_STEREO_H
#define MAPWRIGHT_TRANSFORM_POLAR_STEREO_H

#include "core.h"

// UTM band: the polar zones lie north of the first and south of the second, degrees.
inline constexpr double kPsBandNorth = 83.5;
inline constexpr double kPsBandSouth = -79.5;

// a metres, rf inverse flattening; latOrigin degrees, its sign picks the pole
// (negative: south); centralMeridian degrees, the meridian straight below the
// pole; latTrueScale degrees, where the scale is true (+-90: at the pole;
// beyond 90, or a NaN latOrigin, leaves the scale unknown: NaN results).
// Zero-filled state (calloc), release with projection_state_free; null when
// the allocation failed.
ProjState* ps_create(double a, double rf, double latOrigin, double centralMeridian, double latTrueScale);

// Forward: lat, lon degrees -> east, north metres (fe, fn whole metres). A
// southern point gets a negative northing. 0, or 17 in the margin; -2 outside
// the pole's hemisphere and margin (nothing written) and -2 in the UTM band
// (values written); -1 for a null state.
int ps_geo_to_pr(ProjState* s, double lat, double lon, double* east, double* north, int fe, int fn);
// Inverse: east, north metres -> lat, lon degrees, always written unless the
// state is null (-1). 17 or -17 from the area test of the result, else 2 in
// the UTM band, else 0.
int ps_pr_to_geo(ProjState* s, double east, double north, double* lat, double* lon, int fe, int fn);

#endif
