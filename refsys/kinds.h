// The projection kinds and their parameter blocks, in one place.
//
//   if (!mw::IsKind(kind)) return 0;                          // 1..7
//   mw::BlockParams p = mw::ReadBlock(kind, system.GetParam());
//   if (kind == UTM && p.UtmSouth()) ...                      // hemisphere and zone by name
//   p.c_lon = 39.0;
//   mw::WriteBlock(kind, p, system.GetParam());
//
// A kind's block is raw storage of BlockSize(kind) bytes: ScaledProjectionParam
// for Gauss-Kruger and Transverse Mercator, ProjectionParam for the others.
// Read and write it only through ReadBlock and WriteBlock, which copy byte-wise
// (the host may hand a block of its own, not aligned for doubles).
//
// Header only, so that the command-line tool, which links the library's
// exported classes alone, can use the same helpers.
#ifndef MAPWRIGHT_REFSYS_KINDS_H
#define MAPWRIGHT_REFSYS_KINDS_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include <mapwright/GeoRecords.h>

namespace mw {

// A projection kind code, 1 (Geographic) to 7 (Cartesian).
constexpr bool IsKind(int kind) { return kind >= Geographic && kind <= Cartesian; }

// Gauss-Kruger and Transverse Mercator carry a scale factor; the rest do not.
constexpr bool HasScaledBlock(int kind) { return kind == GaussKruger || kind == TransverseMercator; }

// Geographic and Cartesian have a block too, but nothing in it means anything.
constexpr bool TakesParams(int kind) { return IsKind(kind) && kind != Geographic && kind != Cartesian; }

// Bytes of a kind's block.
constexpr size_t BlockSize(int kind) {
    return HasScaledBlock(kind) ? sizeof(ScaledProjectionParam) : sizeof(ProjectionParam);
}

// A block's fields by name, whatever its layout.
struct BlockParams {
    double scale = 1.0;       // Transverse Mercator's scale factor; 1 for a block without one
    double c_lon = 0.0;       // central meridian, or longitude below the pole, degrees
    double lat_origin = 0.0;  // latitude of origin, or of true scale, degrees
    int32_t fe = 0;           // false easting, metres; UTM: the hemisphere
    int32_t fn = 0;           // false northing, metres; UTM: the zone

    // UTM carries its hemisphere in fe (1 north, -1 south) and its zone in fn.
    int32_t UtmHemisphere() const { return fe; }
    int32_t UtmZone() const { return fn; }
    void SetUtmHemisphere(int32_t hemisphere) { fe = hemisphere; }
    void SetUtmZone(int32_t zone) { fn = zone; }
    // The engine reads every hemisphere flag but -1 as north.
    bool UtmSouth() const { return fe == -1; }
    // A zone outside 1..60 lets each point's longitude choose.
    bool UtmZoneFixed() const { return fn >= 1 && fn <= 60; }

    // The scale the engine projects at: Gauss-Kruger always works at 1,
    // whatever its block holds.
    double ScaleFor(int kind) const { return kind == GaussKruger ? 1.0 : scale; }
};

// The fields of `block` read as `kind`'s layout; the defaults above for a
// null block.
inline BlockParams ReadBlock(int kind, const void* block) {
    BlockParams p;
    if (!block) return p;
    if (HasScaledBlock(kind)) {
        ScaledProjectionParam s;
        std::memcpy(&s, block, sizeof s);
        p = {s.scale, s.c_lon, s.lat_origin, s.fe, s.fn};
    } else {
        ProjectionParam q;
        std::memcpy(&q, block, sizeof q);
        p = {1.0, q.c_lon, q.lat_origin, q.fe, q.fn};
    }
    return p;
}

// Writes `p` into `block` in `kind`'s layout (BlockSize(kind) bytes); the
// scale is dropped for a block without one. Nothing for a null block.
inline void WriteBlock(int kind, const BlockParams& p, void* block) {
    if (!block) return;
    if (HasScaledBlock(kind)) {
        const ScaledProjectionParam s{p.scale, p.c_lon, p.lat_origin, p.fe, p.fn};
        std::memcpy(block, &s, sizeof s);
    } else {
        const ProjectionParam q{p.c_lon, p.lat_origin, p.fe, p.fn};
        std::memcpy(block, &q, sizeof q);
    }
}

}  // namespace mw

#endif
