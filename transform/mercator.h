// Normal Mercator on the ellipsoid: true scale along a latitude and its
// mirror, centred on a central meridian. Internal to the library.
#ifndef MAPWRIGHT_TRANSFORM_MERCATOR_H
#define MAPWRIGHT_TRANSFORM_MERCATOR_H

#include "core.h"

// a metres, rf inverse flattening, centralMeridian and latTrueScale degrees.
// The state is made as an object (new); release it with merc_free. Null when
// the allocation failed.
ProjState* merc_create(double a, double rf, double centralMeridian, double latTrueScale);
// Object release of a Mercator state. Null does nothing.
void merc_free(ProjState* s);

// Forward: lat, lon degrees -> east, north metres (false easting fe, false
// northing fn, whole metres). 0 or 17; -2 beyond the area and its margin or
// within 0.000005 degrees of a pole, -1 for a null state; nothing written then.
int merc_geo_to_pr(ProjState* s, double lat, double lon, double* east, double* north, int fe, int fn);
// Inverse: east, north metres -> lat, lon degrees, always written unless the
// state is null (-1); returns the area test of the result.
int merc_pr_to_geo(ProjState* s, double east, double north, double* lat, double* lon, int fe, int fn);

#endif
