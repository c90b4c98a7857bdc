// The Transverse Mercator family: Transverse Mercator, Gauss-Kruger (the same
// projection at scale 1) and UTM.
//
// Internal to the library (hidden visibility). Degrees and metres at every
// interface, radians inside the formulas.
#ifndef MAPWRIGHT_TRANSFORM_TM_H
#define MAPWRIGHT_TRANSFORM_TM_H

#include "core.h"

// UTM (DMA TM 8358.2): scale factor, false easting and the false northing of
// the southern hemisphere, metres.
inline constexpr double kUtmScale = 0.9996;
inline constexpr double kUtmFalseEasting = 500000.0;
inline constexpr double kUtmFalseNorthingSouth = 10000000.0;

// ---------------------------------------------------------------------------
// Transverse Mercator family.

// a metres, rf inverse flattening, latOrigin and centralMeridian degrees, k0
// the scale factor. Zero-filled state (calloc) with tm_init run on it; null
// when the allocation failed. Release with projection_state_free.
ProjState* tm_create(double a, double rf, double latOrigin, double centralMeridian, double k0);
// tm_create(a, rf, 0, 0, 0.9996): central meridian 0, zones handled per point.
ProjState* utm_create(double a, double rf);
// -1 for a null state, else 0.
int tm_init(ProjState* s, double a, double rf, double latOrigin, double centralMeridian, double k0);

// Forward: lat, lon degrees -> east, north metres with the false easting fe
// and false northing fn (whole metres). 0 or 17; -2 outside the area and its
// margin and -1 for a null state, both writing nothing.
int tm_geo_to_pr(ProjState* s, double lat, double lon, double* east, double* north, int fe, int fn);
// Inverse: east, north metres -> lat, lon degrees. Always writes both unless
// the state is null (-1); returns the area test of the result.
int tm_pr_to_geo(ProjState* s, double east, double north, double* lat, double* lon, int fe, int fn);

// Forward in a UTM zone: *zone 1..60 is used as given, anything else is
// replaced by the zone of the longitude; the zone used is written back. East
// and north in metres; the southern hemisphere gets the 10 000 000 m false
// northing. Status as tm_geo_to_pr (relative to the zone's meridian).
int utm_geo_to_pr(ProjState* s, double lat, double lon, long* zone, double* east, double* north);
// Inverse in a UTM zone: a negative northing is a southern-hemisphere value
// given without its sign. lat, lon degrees. Status as tm_pr_to_geo.
int utm_pr_to_geo(ProjState* s, int zone, double east, double north, double* lat, double* lon);

#endif
