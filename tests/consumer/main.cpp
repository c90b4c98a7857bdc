// A host built against the installed library: fills a reference system from
// the shipped catalogs, prints its datum and ellipsoid, converts a point from
// Geographic WGS 84 to UTM and prints the result's line in the user-interface
// language (MAPWRIGHT_UI_LANG), turned into UTF-8 for the terminal.
#include <mapwright/mapwright.h>

#include <cstdio>

int main() {
    CGeoReferenceData system;
    system.SetDefault();

    CString datum, ellipsoid;
    system.GetDatumName(datum);
    system.GetEllipsName(ellipsoid);
    double geo[2];
    short values[6];
    system.GetGeoInfoA(geo, values);
    std::printf("datum %d: %s\n", system.GetDatum(), AnsiToUtf8(datum.GetString()).c_str());
    std::printf("ellipsoid %d: %s, a = %.3f m, 1/f = %.9f\n", system.GetEllipsoid(),
                AnsiToUtf8(ellipsoid.GetString()).c_str(), geo[0], geo[1]);

    DatumParamTag tag{};
    tag.nSize = sizeof tag;
    tag.nFlags = 1;
    std::snprintf(tag.szDatumName, sizeof tag.szDatumName, "%s", "Pulkovo 1942");
    if (!system.GetDatumParam(&tag)) {
        std::printf("Pulkovo 1942 is not in the catalog\n");
        return 1;
    }
    std::printf("Pulkovo 1942: %s, a = %.3f km, shift %d %d %d m\n", tag.szEllipsName, tag.dSemiMajorKm,
                tag.nDatumValues[0], tag.nDatumValues[1], tag.nDatumValues[2]);

    // Geographic WGS 84 to UTM on the same datum; the zone comes from the longitude.
    CGeoTransform transform;
    if (transform.SetGeoParam(Geographic, UTM, 3, 3) != 1) return 1;
    GeoCoordTag point{55.7558, 37.6173, 150.0, 0};
    transform.SetGeoCoord(&point);
    if (transform.GeoConvert() != 1) return 1;
    const GeoCoordTag* utm = static_cast<const GeoCoordTag*>(transform.GetGeoCoordDest()->GetCoord());
    std::printf("55.7558 N 37.6173 E -> UTM zone %d: E %.3f N %.3f h %.2f\n", utm->zone, utm->east, utm->north,
                utm->height);
    char line[256];
    transform.GetCoordStr(line, sizeof line, 0);
    std::printf("line: %s\n", AnsiToUtf8(line).c_str());
    transform.FreeGeoParam();
    return datum == "WGS 84" ? 0 : 1;
}
