// The records that travel with a reference system: projection kind codes,
// the two parameter blocks, and the host's packed exchange records.
#ifndef MAPWRIGHT_GEORECORDS_H
#define MAPWRIGHT_GEORECORDS_H

#include <stdint.h>

enum ProjectionKind : int32_t {
    Geographic = 1,
    UTM = 2,
    GaussKruger = 3,
    TransverseMercator = 4,
    Mercator = 5,
    PolarStereographic = 6,
    Cartesian = 7,
};

// Kinds 1, 2, 5, 6, 7. Angles in degrees; fe, fn in whole metres. For UTM,
// fe is the hemisphere (1 north, -1 south) and fn the zone number.
struct ProjectionParam {
    double c_lon;
    double lat_origin;
    int32_t fe;
    int32_t fn;
};

// Kinds 3 and 4: the scale factor first, then the same four fields.
struct ScaledProjectionParam {
    double scale;
    double c_lon;
    double lat_origin;
    int32_t fe;
    int32_t fn;
};

#pragma pack(push, 1)
// A projection choice as the host hands it over, keyed by the English name.
struct ProjectionParamTag {
    int32_t nHeader0;  // the host's; never read or written here
    int32_t nHeader1;
    char szProjName[50];
    double scale;
    double c_lon;
    double lat_origin;
    int32_t fe;
    int32_t fn;
};

// A datum and its ellipsoid as exchanged with the host. The semi-major axis
// is in kilometres here (metres everywhere else).
struct DatumParamTag {
    int32_t nSize;   // 136, set by the caller
    int32_t nFlags;  // 1, set by the caller
    char szDatumName[50];
    char szEllipsName[50];
    double dSemiMajorKm;
    double dInvFlattening;
    int16_t nDatumValues[6];
};
#pragma pack(pop)

static_assert(sizeof(ProjectionParam) == 24, "ProjectionParam is 24 bytes");
static_assert(sizeof(ScaledProjectionParam) == 32, "ScaledProjectionParam is 32 bytes");
static_assert(sizeof(ProjectionParamTag) == 90, "ProjectionParamTag is packed, 90 bytes");
static_assert(sizeof(DatumParamTag) == 136, "DatumParamTag is packed, 136 bytes");

#endif
