// A host built against the installed library: prints the default datum, then
// Moscow converted from WGS 84 to UTM in the user-interface language, as UTF-8.
#include <mapwright/mapwright.h>

#include <cstdio>

int main() {
    CGeoReferenceData system;
    system.SetDefault();
    CString datum;
    system.GetDatumName(datum);
    std::printf("datum %d: %s\n", system.GetDatum(), datum.GetString());
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
