// CGeoTransform set up from the host's exchange records: a projection chosen
// by its English name, and a datum with its ellipsoid.
#include <cstddef>
#include <cstring>

#include <mapwright/GeoTransform.h>
#include <mapwright/basalt.h>

#include "refsys/kinds.h"
#include "refsys/string_ids.h"

namespace {

// The tag's fields, read byte-wise: the record is packed, so its doubles and
// integers are not aligned.
template <typename T>
T Field(const void* tag, size_t offset) {
    T value;
    std::memcpy(&value, static_cast<const char*>(tag) + offset, sizeof value);
    return value;
}

void SetProjectionFromTag(const ProjectionParamTag* tag, CGeoReferenceData& system, CGeoCoord& coord) {
    if (!tag) return;
    const CString name(tag->szProjName, sizeof tag->szProjName);  // bounded: the host may not terminate it
    // Kinds 1 to 6 only, so a tag never selects the Cartesian kind. All six
    // names are tried.
    for (int k = Geographic; k <= PolarStereographic; ++k) {
        const CString english = GetResourceString(mw::KindEnglishNameId(k));
        // A missing entry must not match a tag with an empty name.
        if (!english.IsEmpty() && english == name) {
            system.SetProjection(k);
            coord.SetProjection(k);
        }
    }

    // The parameters go in by the system's kind, whether or not the name matched.
    void* block = system.GetParam();
    if (!block) return;
    mw::BlockParams p;
    p.scale = Field<double>(tag, offsetof(ProjectionParamTag, scale));
    p.c_lon = Field<double>(tag, offsetof(ProjectionParamTag, c_lon));
    p.lat_origin = Field<double>(tag, offsetof(ProjectionParamTag, lat_origin));
    p.fe = Field<int32_t>(tag, offsetof(ProjectionParamTag, fe));
    p.fn = Field<int32_t>(tag, offsetof(ProjectionParamTag, fn));
    const int kind = system.GetProjection();
    mw::WriteBlock(kind, p, block);
    if (kind == UTM) static_cast<GeoCoordTag*>(coord.GetCoord())->zone = p.UtmZone();
}

void SetDatumFromTag(const DatumParamTag* tag, CGeoReferenceData& system) {
    if (!tag) return;
    system.SetDatumName(CString(tag->szDatumName, sizeof tag->szDatumName));
    system.SetEllipsName(CString(tag->szEllipsName, sizeof tag->szEllipsName));
    // Before the tag's values are taken: an entry appended to the catalogs
    // carries the values the system held until now.
    system.SetDatumAndEllipsIndex();

    // The tag gives the semi-major axis in kilometres; the system holds metres.
    double geo[2] = {Field<double>(tag, offsetof(DatumParamTag, dSemiMajorKm)) * 1000.0,
                     Field<double>(tag, offsetof(DatumParamTag, dInvFlattening))};
    short values[6];
    std::memcpy(values, reinterpret_cast<const char*>(tag) + offsetof(DatumParamTag, nDatumValues), sizeof values);
    system.SetGeoInfo(geo, values);
}

}  // namespace

void CGeoTransform::SetProjectionSourceFromTag(ProjectionParamTag* tag) {
    SetProjectionFromTag(tag, m_refDataSource, m_geoCoordSource);
}

void CGeoTransform::SetProjectionDestFromTag(ProjectionParamTag* tag) {
    SetProjectionFromTag(tag, m_refDataDest, m_geoCoordDest);
}

void CGeoTransform::SetDatumSourceFromTag(DatumParamTag* tag) { SetDatumFromTag(tag, m_refDataSource); }

void CGeoTransform::SetDatumDestFromTag(DatumParamTag* tag) { SetDatumFromTag(tag, m_refDataDest); }
