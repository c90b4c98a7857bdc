// CGeoReferenceData: one coordinate reference system, a projection kind with
// its parameters on a datum and ellipsoid taken from the two catalogs.
#ifndef MAPWRIGHT_GEOREFERENCEDATA_H
#define MAPWRIGHT_GEOREFERENCEDATA_H

#include <mapwright/GeoRecords.h>
#include <mapwright/afxstr.h>
#include <mapwright/wintypes.h>

class CMaskEdit;
class CListFrame;

class MW_API CGeoReferenceData {
public:
    // Catalog paths from the application directory; kind, datum and ellipsoid
    // unset (-1), no parameter block, empty names, zero values.
    CGeoReferenceData();
    CGeoReferenceData(const CGeoReferenceData& other);
    CGeoReferenceData& operator=(const CGeoReferenceData& other);
    ~CGeoReferenceData();

    int GetProjection() { return m_nProjection; }
    int GetEllipsoid() { return m_nEllipsoid; }
    int GetDatum() { return m_nDatum; }
    CString* GetEllipsFile() { return &m_strEllipsFile; }
    CString* GetDatumFile() { return &m_strDatumFile; }
    CString* GetProjectionFile() { return &m_strProjectionFile; }

    // 1..7 only. The same kind keeps its block; another kind gets a new,
    // zero-filled block of its size.
    int SetProjection(int kind);
    void* GetParam() { return m_pParam; }
    // Copies 24 bytes for kinds 2, 5, 6 and 32 for 3, 4; nothing otherwise.
    int SetParam(void* block);

    // geo: [0] semi-major axis in metres, [1] inverse flattening; values: the
    // six datum values. 1 when a kind is set, else 0 (the copy happens anyway).
    int GetGeoInfoA(double* geo, short* values);
    int SetGeoInfo(double* geo, short* values);
    // The ellipsoid from its semi-major and semi-minor axes; datum values zeroed.
    int SetDatumData(double a, double b);

    // Catalog operations.
    int CreateGeoInfo(int kind, int datumIndex);
    void SetDefault();
    int GetDatumParam(DatumParamTag* tag);
    int SetDatumAndEllipsIndex();

    // Persistence below HKEY_CURRENT_USER.
    void LoadData(CString key);
    int SaveData(CString key);

    // Names: the kind's display name (localised) and English name, a
    // summary of the parameters, and the datum and ellipsoid names.
    void GetProjectionName(CString& name);
    void GetEnProjectionName(CString& name);
    void GetParamName(CString& text);
    void GetDatumName(CString& name);
    void GetEllipsName(CString& name);
    void SetDatumName(CString name);
    void SetEllipsName(CString name);

    // Coordinate fields of this kind: how many come before the height, the
    // label of each, and its entry mask on an edit control or a list cell.
    int GetNumCoordField();
    void GetCoordFieldName(CString& text, int field);
    void SetCoordFieldMask(CMaskEdit* control, int field, bool decimal);
    void SetCoordFieldMaskNum(int item, CListFrame* list, int field);

    CString m_strEllipsFile;
    CString m_strDatumFile;
    CString m_strProjectionFile;
    char szEllipsName[50];
    char szDatumName[50];
    int32_t m_nProjection;
    int32_t m_nEllipsoid;
    int32_t m_nDatum;
    int16_t m_nDatumValues[6];
    double m_dGeoInfo[2];
    void* m_pParam;
};

#endif
