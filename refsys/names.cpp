// The names a reference system is shown by: the display and English names of
// its kind, and a summary of its projection parameters. Every text comes from
// the module's string table, so the same calls speak English or Russian.
#include <mapwright/GeoReferenceData.h>
#include <mapwright/basalt.h>

#include "refsys/angle_text.h"
#include "refsys/kinds.h"

namespace {

// String-table ids: names of kind k are kDisplayName + k and kEnglishName + k.
constexpr int kDisplayName = 831;
constexpr int kEnglishName = 838;
constexpr int kCentralMeridian = 856;
constexpr int kLatitudeOfOrigin = 857;
constexpr int kFalseEasting = 858;
constexpr int kFalseNorthing = 859;
constexpr int kLatitudeOfTrueScale = 860;
constexpr int kScaleFactor = 861;
constexpr int kLongitudeBelowPole = 866;
constexpr int kZone = 885;

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
    text += GetResourceString(kFalseEasting);
    text.AppendFormat(" %ld, ", fe);
    text += GetResourceString(kFalseNorthing);
    text.AppendFormat(" %ld, ", fn);
}

}  // namespace

void CGeoReferenceData::GetProjectionName(CString& name) {
    if (mw::IsKind(m_nProjection))
        LoadName(name, kDisplayName + m_nProjection);
    else
        name.Empty();
}

void CGeoReferenceData::GetEnProjectionName(CString& name) {
    if (mw::IsKind(m_nProjection))
        LoadName(name, kEnglishName + m_nProjection);
    else
        name.Empty();
}

void CGeoReferenceData::GetParamName(CString& text) {
    text.Empty();
    if (!m_pParam) return;  // unset record

    const mw::BlockParams p = mw::ReadBlock(m_nProjection, m_pParam);
    switch (m_nProjection) {
        case UTM:
            text += GetResourceString(kZone);
            text.AppendFormat(" %ld", static_cast<long>(p.UtmZone()));  // the hemisphere is not shown
            break;
        case TransverseMercator:
            text += GetResourceString(kScaleFactor);
            text.AppendFormat(" %lf, ", p.scale);
            AppendAnglesAndFalseOrigin(text, kCentralMeridian, p.c_lon, kLatitudeOfOrigin, p.lat_origin, p.fe, p.fn);
            break;
        case GaussKruger:  // its scale is always 1, so it is not shown
            AppendAnglesAndFalseOrigin(text, kCentralMeridian, p.c_lon, kLatitudeOfOrigin, p.lat_origin, p.fe, p.fn);
            break;
        case Mercator:
            AppendAnglesAndFalseOrigin(text, kCentralMeridian, p.c_lon, kLatitudeOfTrueScale, p.lat_origin, p.fe,
                                       p.fn);
            break;
        case PolarStereographic:
            AppendAnglesAndFalseOrigin(text, kLongitudeBelowPole, p.c_lon, kLatitudeOfTrueScale, p.lat_origin, p.fe,
                                       p.fn);
            break;
        default:  // Geographic and Cartesian have no parameters to show
            break;
    }
}
