// The Earth-centred, Earth-fixed Cartesian system on the ellipsoid (the
// "Decart" kind). Internal to the library.
#ifndef MAPWRIGHT_TRANSFORM_CARTESIAN_H
#define MAPWRIGHT_TRANSFORM_CARTESIAN_H

#include "core.h"

// Geodetic lat, lon (degrees) and h (metres above the ellipsoid) -> geocentric
// X, Y, Z (metres) on the ellipsoid of semi-major axis a (metres) and squared
// eccentricity e2. The one conversion of the library: the Cartesian kind and
// the datum shift's geocentric paths both use it.
void geodetic_to_geocentric(double a, double e2, double lat, double lon, double h, double* X, double* Y, double* Z);

// a metres, rf inverse flattening. Zero-filled state (calloc), release with
// projection_state_free; null when the allocation failed.
ProjState* decart_create(double a, double rf);

// Forward: lat, lon degrees and h metres above the ellipsoid -> north (X,
// towards lat 0 lon 0), east (Y, towards lat 0 lon 90 E), height (Z, towards
// the north pole), metres from the centre. -1 for a null state, else 0.
int decart_geo_to_pr(ProjState* s, double lat, double lon, double h, double* north, double* east, double* height);
// Inverse: X, Y, Z metres -> lat, lon degrees with the closed formula for
// points on the surface; *hOut is always 0. -1 for a null state, else 0.
int decart_pr_to_geo(ProjState* s, double north, double east, double height, double* lat, double* lon, double* hOut);

#endif
