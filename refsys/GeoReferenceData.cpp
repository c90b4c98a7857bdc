#include <mapwright/GeoReferenceData.h>

#include <cstdlib>
#include <cstring>
#include <utility>

#include <mapwright/basalt.h>

#include "refsys/kinds.h"

namespace {

using mw::BlockSize;

void* NewBlock(int kind) { return std::calloc(1, BlockSize(kind)); }

void CopyName(char (&field)[50], const char* text) {
    std::memset(field, 0, sizeof field);
    if (text) std::strncpy(field, text, sizeof field - 1);
}

}  // namespace

CGeoReferenceData::CGeoReferenceData() {
    char dir[1024];
    if (GetAppDir(sizeof dir, dir) <= 0) dir[0] = '\0';
    m_strEllipsFile = CString(dir) + "\\Auxiliary Data\\ellips.ini";
    m_strDatumFile = CString(dir) + "\\Auxiliary Data\\datum.ini";
    m_strProjectionFile = CString(dir) + "\\Auxiliary Data\\projection.ini";
    std::memset(szEllipsName, 0, sizeof szEllipsName);
    std::memset(szDatumName, 0, sizeof szDatumName);
    m_nProjection = -1;
    m_nEllipsoid = -1;
    m_nDatum = -1;
    std::memset(m_nDatumValues, 0, sizeof m_nDatumValues);
    m_dGeoInfo[0] = 0.0;
    m_dGeoInfo[1] = 0.0;
    m_pParam = nullptr;
}

CGeoReferenceData::CGeoReferenceData(const CGeoReferenceData& other)
    : m_strEllipsFile(other.m_strEllipsFile),
      m_strDatumFile(other.m_strDatumFile),
      m_strProjectionFile(other.m_strProjectionFile),
      m_nProjection(other.m_nProjection),
      m_nEllipsoid(other.m_nEllipsoid),
      m_nDatum(other.m_nDatum),
      m_pParam(nullptr) {
    std::memcpy(szEllipsName, other.szEllipsName, sizeof szEllipsName);
    std::memcpy(szDatumName, other.szDatumName, sizeof szDatumName);
    std::memcpy(m_nDatumValues, other.m_nDatumValues, sizeof m_nDatumValues);
    m_dGeoInfo[0] = other.m_dGeoInfo[0];
    m_dGeoInfo[1] = other.m_dGeoInfo[1];
    if (other.m_pParam) {
        m_pParam = std::malloc(BlockSize(m_nProjection));
        if (m_pParam) std::memcpy(m_pParam, other.m_pParam, BlockSize(m_nProjection));
    }
}

CGeoReferenceData& CGeoReferenceData::operator=(const CGeoReferenceData& other) {
    if (this == &other) return *this;
    CGeoReferenceData copy(other);
    std::swap(m_strEllipsFile, copy.m_strEllipsFile);
    std::swap(m_strDatumFile, copy.m_strDatumFile);
    std::swap(m_strProjectionFile, copy.m_strProjectionFile);
    std::memcpy(szEllipsName, copy.szEllipsName, sizeof szEllipsName);
    std::memcpy(szDatumName, copy.szDatumName, sizeof szDatumName);
    m_nProjection = copy.m_nProjection;
    m_nEllipsoid = copy.m_nEllipsoid;
    m_nDatum = copy.m_nDatum;
    std::memcpy(m_nDatumValues, copy.m_nDatumValues, sizeof m_nDatumValues);
    m_dGeoInfo[0] = copy.m_dGeoInfo[0];
    m_dGeoInfo[1] = copy.m_dGeoInfo[1];
    std::swap(m_pParam, copy.m_pParam);  // the copy frees our old block
    return *this;
}

CGeoReferenceData::~CGeoReferenceData() { std::free(m_pParam); }

int CGeoReferenceData::SetProjection(int kind) {
    if (!mw::IsKind(kind)) return 0;
    if (kind == m_nProjection && m_pParam) return 1;
    void* block = NewBlock(kind);
    if (!block) return 0;
    // Old values are not carried over, even between kinds of the same block size.
    std::free(m_pParam);
    m_pParam = block;
    m_nProjection = kind;
    return 1;
}

int CGeoReferenceData::SetParam(void* block) {
    if (block && m_pParam && mw::TakesParams(m_nProjection))
        std::memcpy(m_pParam, block, BlockSize(m_nProjection));
    return 1;
}

int CGeoReferenceData::GetGeoInfoA(double* geo, short* values) {
    // memcpy: the caller's arrays may be fields of a packed tag.
    if (geo) std::memcpy(geo, m_dGeoInfo, sizeof m_dGeoInfo);
    if (values) std::memcpy(values, m_nDatumValues, sizeof m_nDatumValues);
    return m_nProjection != -1 ? 1 : 0;
}

int CGeoReferenceData::SetGeoInfo(double* geo, short* values) {
    if (geo) {
        // The host hands the doubles of a packed tag here; read them unaligned.
        std::memcpy(m_dGeoInfo, geo, sizeof m_dGeoInfo);
    }
    if (values) std::memcpy(m_nDatumValues, values, sizeof m_nDatumValues);
    return m_nProjection != -1 ? 1 : 0;
}

int CGeoReferenceData::SetDatumData(double a, double b) {
    // A sphere (a == b) gives an infinite inverse flattening, 0/0 a NaN.
    m_dGeoInfo[0] = a;
    m_dGeoInfo[1] = a / (a - b);
    std::memset(m_nDatumValues, 0, sizeof m_nDatumValues);
    return m_nProjection != -1 ? 1 : 0;
}

void CGeoReferenceData::GetDatumName(CString& name) { name = CString(szDatumName, sizeof szDatumName); }

void CGeoReferenceData::GetEllipsName(CString& name) { name = CString(szEllipsName, sizeof szEllipsName); }

void CGeoReferenceData::SetDatumName(CString name) { CopyName(szDatumName, name); }

void CGeoReferenceData::SetEllipsName(CString name) { CopyName(szEllipsName, name); }
