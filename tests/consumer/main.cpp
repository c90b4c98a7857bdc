// Fills a reference system from the shipped catalogs through the installed
// library and prints its datum and ellipsoid.
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
    return datum == "WGS 84" ? 0 : 1;
}
