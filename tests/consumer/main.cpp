// A host built against the installed library: prints the default system's
// datum and a catalog datum, then converts Moscow from WGS 84 to UTM and
// prints the line in the user-interface language, as UTF-8.
#include <mapwright/mapwright.h>

#include <cstdio>

int main() {
    CGeoReferenceData system;
    system.SetDefault();
    CString datum;
    system.GetDatumName(datum);
    std::printf("datum %d: %s\n", system.GetDatum(), AnsiToUtf8(datum.GetString()).c_str());
    DatumParamTag tag{};
    tag.nSize = sizeof tag;
    tag.nFlags = 1;
    std::snprintf(tag.szDatumName, sizeof tag.szDatumName, "%s", "Pulkovo 1942");
    if (!system.GetDatumParam(&tag)) return 1;
    std::printf("Pulkovo 1942: %s\n", tag.szEllipsName);
    CGeoTransform transform;
    if (transform.SetGeoParam(Geographic, UTM, 3, 3) != 1) return 1;
    GeoCoordTag point{55.7558, 37.6173, 150.0, 0};
    transform.SetGeoCoord(&point);
    if (transform.GeoConvert() != 1) return 1;
    char line[256];
    transform.GetCoordStr(line, sizeof line, 0);
    std::printf("line: %s\n", AnsiToUtf8(line).c_str());
    transform.FreeGeoParam();
    return datum == "WGS 84" ? 0 : 1;
}
