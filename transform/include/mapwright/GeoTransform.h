// CGeoTransform: converts a coordinate from a source reference system into a
// destination reference system, through geographic coordinates and, when the
// datums differ, a datum shift through WGS 84 (catalog datum 3).
//
// Calling order: set both systems; InitGeoParam (SetGeoParam and LoadData
// call it); any number of SetGeoCoord + GeoConvert; FreeGeoParam. The
// destructor does not release the numerical states and a copy shares them:
// exactly one of the copies calls FreeGeoParam.
#ifndef MAPWRIGHT_GEOTRANSFORM_H
#define MAPWRIGHT_GEOTRANSFORM_H

#include <mapwright/GeoCoord.h>
#include <mapwright/GeoRecords.h>
#include <mapwright/GeoReferenceData.h>
#include <mapwright/wintypes.h>

struct ProjState;
struct DatumShiftState;

class MW_API CGeoTransform {
public:
    CGeoTransform();

    void SetDatumAndPrSource(int kind, int datumIndex);
    void SetDatumAndPrDest(int kind, int datumIndex);
    // Source kind, destination kind, source datum index, destination datum
    // index; then InitGeoParam.
    int SetGeoParam(int kindSource, int kindDest, int datumSource, int datumDest);
    // The other system's kind and datum index (re-read from the catalogs) and
    // its parameters.
    void SetReferenceDataSource(CGeoReferenceData* other);
    void SetReferenceDataDest(CGeoReferenceData* other);
    int SetDefault();
    // From the host's records: a projection by its English name (kinds 1 to
    // 6) with its parameters, and a datum with its ellipsoid (semi-major axis
    // in kilometres in the tag), registered in the catalogs when missing.
    void SetProjectionSourceFromTag(ProjectionParamTag* tag);
    void SetProjectionDestFromTag(ProjectionParamTag* tag);
    void SetDatumSourceFromTag(DatumParamTag* tag);
    void SetDatumDestFromTag(DatumParamTag* tag);

    CGeoReferenceData* GetReferenceDataSource() { return &m_refDataSource; }
    CGeoReferenceData* GetReferenceDataDest() { return &m_refDataDest; }
    CGeoCoord* GetGeoCoordSource() { return &m_geoCoordSource; }
    CGeoCoord* GetGeoCoordDest() { return &m_geoCoordDest; }
    void SetGeoCoord(void* record);
    // The destination coordinate's line (CGeoCoord::Coord_to_Str with the
    // destination ellipsoid's name), copied as strncpy does with `length`.
    void GetCoordStr(char* buffer, int length, unsigned long flags);

    int InitGeoParam();
    // 0 when either system has no kind in 1..7. A point the destination
    // refuses comes out with a NaN northing and easting.
    int GeoConvert();
    // The source coordinate as latitude and longitude (degrees) on the source
    // ellipsoid; `height` is written by the Cartesian kind only.
    void pr_to_geo(double* lat, double* lon, double* height);
    void FreeGeoParam();

    // Both systems under base + "\GeoData_fm" and base + "\GeoData_to".
    int LoadData(const char* base);
    int SaveData(const char* base);

private:
    void geo_to_pr(double* north, double* east, double* height, double lat, double lon, double h, long* zone);

    CGeoCoord m_geoCoordSource;
    CGeoCoord m_geoCoordDest;
    CGeoReferenceData m_refDataSource;
    CGeoReferenceData m_refDataDest;
    int32_t m_bDatumsDiffer;
    int32_t m_nPrSource;
    int32_t m_nPrDest;
    DatumShiftState* m_pShiftToPivot;
    DatumShiftState* m_pShiftFromPivot;
    ProjState* m_pPrSource;
    ProjState* m_pPrDest;
};

#endif
