// The names a reference system is shown by: the display and English names of
// its kind, and a summary of its projection parameters. Every text comes from
// the module's string table, so the same calls speak English or Russian.
#include <mapwright/GeoReferenceData.h>
#include <mapwright/basalt.h>

#include "refsys/angle_text.h"
#include "refsys/kinds.h"
#include "refsys/string_ids.h"

namespace {

void LoadName(CString& name, int id) {
    name.Empty();
    name.LoadString(static_cast<UINT>(id));
}

// "<label> <value>, <label> <value>, \n<False easting> fe, <False northing> fn, ":
// the angles on the first line, the false origin on the second.
void AppendAnglesAndFalseOrigin(CString& text, int lonLabel, double lon, int latLabel, double lat, long fe,
                                long fn) {
    text += GetResourceString(lonLabel);
    text += " ";
    text += mw::LongitudeText(lon);
    text += ", ";
    text += GetResourceString(latLabel);
    text += " ";
    text += mw::LatitudeText(lat);
    text += ", \n";
    text += GetResourceString(IDS_FALSE_EASTING);
    text.AppendFormat(" %ld, ", fe);
    text += GetResourceString(IDS_FALSE_NORTHING);
    text.AppendFormat(" %ld, ", fn);
}

}  // namespace

void CGeoReferenceData::GetProjectionName(CString& name) {
    if (mw::IsKind(m_nProjection))
        LoadName(name, mw::KindDisplayNameId(m_nProjection));
    else
        name.Empty();
}

void CGeoReferenceData::GetEnProjectionName(CString& name) {
    if (mw::IsKind(m_nProjection))
        LoadName(name, mw::KindEnglishNameId(m_nProjection));
    else
        name.Empty();
}

void CGeoReferenceData::GetParamName(CString& text) {
    text.Empty();
    if (!m_pParam) return;  // unset record

    const mw::BlockParams p = mw::ReadBlock(m_nProjection, m_pParam);
    switch (m_nProjection) {
        case UTM:
            text += GetResourceString(IDS_ZONE);
            text.AppendFormat(" %ld", static_cast<long>(p.UtmZone()));  // the hemisphere is not shown
            break;
        case TransverseMercator:
            text += GetResourceString(IDS_SCALE_FACTOR);
            text.AppendFormat(" %lf, ", p.scale);
            AppendAnglesAndFalseOrigin(text, IDS_CENTRAL_MERIDIAN, p.c_lon, IDS_LATITUDE_OF_ORIGIN, p.lat_origin, p.fe, p.fn);
            break;
        case GaussKruger:  // its scale is always 1, so it is not shown
            AppendAnglesAndFalseOrigin(text, IDS_CENTRAL_MERIDIAN, p.c_lon, IDS_LATITUDE_OF_ORIGIN, p.lat_origin, p.fe, p.fn);
            break;
        case Mercator:
            AppendAnglesAndFalseOrigin(text, IDS_CENTRAL_MERIDIAN, p.c_lon, IDS_LATITUDE_OF_TRUE_SCALE, p.lat_origin, p.fe,
                                       p.fn);
            break;
        case PolarStereographic:
            AppendAnglesAndFalseOrigin(text, IDS_LONGITUDE_BELOW_POLE, p.c_lon, IDS_LATITUDE_OF_TRUE_SCALE, p.lat_origin, p.fe,
                                       p.fn);
            break;
        default:  // Geographic and Cartesian have no parameters to show
            break;
    }
}
