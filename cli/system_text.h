// The SYSTEM text of the command line: a projection kind, its parameters and
// the datum, for example
//
//   utm zone=37 north datum="Pulkovo 1942"
//   gk zone=7 datum=4
//   tm k=0.9996 lon0=39 fe=500000 datum=3
//   geographic datum="WGS 84"
//
// read into a reference-system record, and written back from one.
#ifndef MAPWRIGHT_CLI_SYSTEM_TEXT_H
#define MAPWRIGHT_CLI_SYSTEM_TEXT_H

#include <stdint.h>

#include <string>
#include <string_view>
#include <vector>

#include <mapwright/mapwright.h>

#include "catalog_view.h"
#include "refsys/kinds.h"

namespace mwcli {

// A reference system as the tool holds it before it becomes a record.
struct SystemDef {
    int kind = 0;        // ProjectionKind, 1..7
    int datum = 3;       // catalog datum index
    double scale = 1.0;  // Transverse Mercator scale factor (Gauss-Kruger: always 1)
    double lon0 = 0.0;   // central meridian, or longitude below the pole, degrees
    double lat0 = 0.0;   // latitude of origin (gk, tm) or of true scale (mercator, ps), degrees
    int32_t fe = 0;      // false easting, metres; UTM: hemisphere 1 north, -1 south
    int32_t fn = 0;      // false northing, metres; UTM: zone, 0 = from each point's longitude
    bool ups = false;    // polar stereographic as UPS: scale 0.994 at the pole, false origin 2000 km

    // UTM: hemisphere and zone by name, as the block holds them.
    bool UtmZoneFixed() const { return kind == UTM && mw::BlockParams{.fn = fn}.UtmZoneFixed(); }
    bool UtmSouth() const { return kind == UTM && mw::BlockParams{.fe = fe}.UtmSouth(); }
};

// Reads a SYSTEM text; the datum is looked up in `datums` by index or name.
// Throws Error naming what was expected.
SystemDef ParseSystem(std::string_view text, const std::vector<DatumEntry>& datums);

// The record for `def`: kind and datum from the catalogs, then the block.
// Throws Error when the datum's ellipsoid is missing from its catalog.
void MakeSystem(const SystemDef& def, CGeoReferenceData& out);
// The definition of a record (one loaded from the registry, say).
SystemDef DefOf(CGeoReferenceData& system);
// Throws Error when the record's datum or its ellipsoid is not in the
// catalogs; `where` says where the record came from.
void CheckCatalogEntries(CGeoReferenceData& system, const std::string& where);

// The SYSTEM text that reads back as `def`.
std::string SystemText(const SystemDef& def, const std::vector<DatumEntry>& datums);
// The latitude of true scale (degrees, positive) that gives the library's
// polar stereographic on an ellipsoid of eccentricity squared `e2` the UPS
// scale of 0.994 at the pole.
double UpsLatitudeOfTrueScale(double e2);
// The keyword of a kind ("utm"), or "" outside 1..7.
const char* KindKeyword(int kind);

// A registry key as typed (UTF-8, levels separated by a backslash or "/") in the
// library's form: Windows-1251, a backslash between levels.
std::string RegistryPath(std::string_view typed);
// The way back: a key in the library's form as the user types it (UTF-8,
// levels separated by "/").
std::string TypedKey(const std::string& path);
bool RegistryKeyExists(const std::string& path);
// CGeoReferenceData::LoadData with the checks it leaves out: the key exists,
// it holds a kind 1..7, and its datum and ellipsoid are in the catalogs.
void LoadSystem(std::string_view typedKey, CGeoReferenceData& out);
// CGeoTransform::LoadData of a pair (BASE\GeoData_fm and BASE\GeoData_to),
// checked the same way; the transform is initialised.
void LoadPair(std::string_view typedBase, CGeoTransform& out);

// The grammar, for the help texts.
const char* SystemSyntaxHelp();

}  // namespace mwcli

#endif
