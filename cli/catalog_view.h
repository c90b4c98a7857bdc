// The two catalogs as the tool lists and searches them. They are read with
// the profile functions and enumerated the way the library enumerates them
// (sections "Format 0", "Format 1", ... up to the first one without the key),
// so the tool sees exactly the entries the library can find.
#ifndef MAPWRIGHT_CLI_CATALOG_VIEW_H
#define MAPWRIGHT_CLI_CATALOG_VIEW_H

#include <string>
#include <string_view>
#include <vector>

namespace mwcli {

struct DatumEntry {
    std::string indexText;  // as stored; the library matches it as text
    int index;
    std::string name;           // UTF-8
    std::string ellipsoidText;  // "EllipsoidIndex", matched as text with an ellipsoid's index
    int values[6];              // dx dy dz, then the second triple
};

struct EllipsoidEntry {
    std::string indexText;
    int index;
    std::string name;  // UTF-8
    double a;          // semi-major axis, metres
    double rf;         // inverse flattening
};

// The catalog files of a new reference-system record (application directory
// + "/Auxiliary Data/...").
std::string DatumCatalogPath();
std::string EllipsoidCatalogPath();

std::vector<DatumEntry> ReadDatums();
std::vector<EllipsoidEntry> ReadEllipsoids();

// The datum of `value`: a catalog index ("4") or a name ("Pulkovo 1942"),
// exact first, then without regard to case and blanks. Throws Error naming
// what the catalog offers when nothing matches.
const DatumEntry& FindDatum(const std::vector<DatumEntry>& datums, std::string_view value);
// The entry that CreateGeoInfo would use for `index` (the last one whose
// index text is the number), or null.
const DatumEntry* DatumByIndex(const std::vector<DatumEntry>& datums, int index);
// The ellipsoid a datum refers to, matched as CreateGeoInfo matches it, or null.
const EllipsoidEntry* EllipsoidOf(const std::vector<EllipsoidEntry>& ellipsoids, const DatumEntry& datum);
const EllipsoidEntry* EllipsoidByName(const std::vector<EllipsoidEntry>& ellipsoids, std::string_view name);

}  // namespace mwcli

#endif
