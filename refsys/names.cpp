// The names a reference system is shown by: the display and English names of
// its kind, and a summary of its projection parameters. Every text comes from
// the module's string table, so the same calls speak English or Russian.
#include <cstring>

#include <mapwright/GeoReferenceData.h>
#include <mapwright/basalt.h>

#include "angle_text.h"

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

bool IsKind(int kind) { return kind >= Geographic && kind <= Cartesian; }

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
    if (IsKind(m_nProjection))
        LoadName(name, kDisplayName + m_nProjection);
    else
        name.Empty();
}

void CGeoReferenceData::GetEnProjectionName(CString& name) {
    if (IsKind(m_nProjection))
        LoadName(name, kEnglishName + m_nProjection);
    else
        name.Empty();
}

void CGeoReferenceData::GetParamName(CString& text) {
    text.Empty();
    if (!m_pParam) return;  // unset record

    // Copies: the block is raw storage of the kind's size.
    ProjectionParam p;
    ScaledProjectionParam s;
    switch (m_nProjection) {
        case UTM:
            std::memcpy(&p, m_pParam, sizeof p);
            text += GetResourceString(kZone);
            text.AppendFormat(" %ld", static_cast<long>(p.fn));  // the zone; the hemisphere is not shown
            break;
        case TransverseMercator:
            std::memcpy(&s, m_pParam, sizeof s);
            text += GetResourceString(kScaleFactor);
            text.AppendFormat(" %lf, ", s.scale);
            AppendAnglesAndFalseOrigin(text, kCentralMeridian, s.c_lon, kLatitudeOfOrigin, s.lat_origin, s.fe, s.fn);
            break;
        case GaussKruger:  // its scale is always 1, so it is not shown
            std::memcpy(&s, m_pParam, sizeof s);
            AppendAnglesAndFalseOrigin(text, kCentralMeridian, s.c_lon, kLatitudeOfOrigin, s.lat_origin, s.fe, s.fn);
            break;
        case Mercator:
            std::memcpy(&p, m_pParam, sizeof p);
            AppendAnglesAndFalseOrigin(text, kCentralMeridian, p.c_lon, kLatitudeOfTrueScale, p.lat_origin, p.fe,
                                       p.fn);
            break;
        case PolarStereographic:
            std::memcpy(&p, m_pParam, sizeof p);
            AppendAnglesAndFalseOrigin(text, kLongitudeBelowPole, p.c_lon, kLatitudeOfTrueScale, p.lat_origin, p.fe,
                                       p.fn);
            break;
        default:  // Geographic and Cartesian have no parameters to show
            break;
    }
}
