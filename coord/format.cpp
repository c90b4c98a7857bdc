// Coordinates as text: one field as an entry control shows it, the whole
// coordinate as one labelled line, and that line for a conversion's result.
#include <cmath>
#include <cstring>

#include <mapwright/GeoCoord.h>
#include <mapwright/GeoTransform.h>
#include <mapwright/basalt.h>

#include "refsys/angle_text.h"
#include "refsys/kinds.h"
#include "refsys/string_ids.h"

namespace {

constexpr unsigned long kHeightFirst = 1;  // the only bit of `flags` with a meaning

// Decimal degrees with the hemisphere letter. A NaN takes the negative letter:
// the test is "not at least 0", and -0.0 is not below 0.
void FormatDecimal(CString& text, double degrees, char positive, char negative) {
    const bool below = !(degrees >= 0.0);
    text.Format("%011.7f %c", std::fabs(degrees), below ? negative : positive);
}

void AppendMetres(CString& text, double value) {
    text.AppendFormat("%.2lf", value);
    text += GetResourceString(IDS_METRES);
}

}  // namespace

void CGeoCoord::GetCoord(CString& text, int field, bool decimal) {
    if (!mw::IsKind(m_nProjection)) return;  // no kind yet: the text is left as it was
    const GeoCoordTag& c = m_coord;
    if (m_nProjection == Geographic) {
        switch (field) {
            case 0:
                if (decimal)
                    FormatDecimal(text, c.east, 'E', 'W');
                else
                    text = mw::LongitudeText(c.east);
                return;
            case 1:
                if (decimal)
                    FormatDecimal(text, c.north, 'N', 'S');
                else
                    text = mw::LatitudeText(c.north);
                return;
            case 2:
                text.Format("%.2lf", c.height);
                return;
            default:
                text.Empty();
                return;
        }
    }
    // The projected and Cartesian kinds: east, north, then zone (UTM only) and height.
    const bool utm = m_nProjection == UTM;
    if (field == 0)
        text.Format("%.2lf", c.east);
    else if (field == 1)
        text.Format("%.2lf", c.north);
    else if (field == 2 && utm)
        text.Format("%ld", static_cast<long>(c.zone));
    else if (field == (utm ? 3 : 2))
        text.Format("%.2lf", c.height);
    else
        text.Empty();
}

void CGeoCoord::Coord_to_Str(CString* out, unsigned long flags, const char* ellipsoidName) {
    if (!out) return;
    CString& text = *out;
    CString name;
    text.Empty();
    const GeoCoordTag& c = m_coord;

    if (flags & kHeightFirst) {
        // A coordinate without a kind still shows its height.
        text += GetResourceString(m_nProjection == Cartesian ? IDS_Z : IDS_HEIGHT);
        AppendMetres(text, c.height);
    }

    switch (m_nProjection) {
        case Geographic:
            // Always degrees, minutes and seconds here, whatever the entry format.
            text += GetResourceString(IDS_LATITUDE);
            text += mw::LatitudeText(c.north);
            text += " ";
            text += GetResourceString(IDS_LONGITUDE);
            text += mw::LongitudeText(c.east);
            name.LoadString(mw::KindDisplayNameId(Geographic));
            break;
        case UTM:
            text.AppendFormat("%.2lf, ", c.north);
            text.AppendFormat("%.2lf", c.east);
            name.LoadString(mw::KindDisplayNameId(UTM));
            name += ", ";
            name += GetResourceString(IDS_UTM_ZONE);
            // The label ends in a blank and one more is added: two before the number.
            name.AppendFormat(" %ld", static_cast<long>(c.zone));
            break;
        case GaussKruger:
        case TransverseMercator:
        case Mercator:
        case PolarStereographic:
            text += GetResourceString(IDS_NORTH_SOUTH);
            AppendMetres(text, c.north);
            text += GetResourceString(IDS_EAST_WEST);
            AppendMetres(text, c.east);
            name.LoadString(static_cast<UINT>(mw::KindDisplayNameId(m_nProjection)));
            break;
        case Cartesian:
            // Kept on purpose: north (the X axis) is labelled "Y = " and east "X =",
            // as every text of the Cartesian kind shows them.
            text += GetResourceString(IDS_Y);
            AppendMetres(text, c.north);
            text += GetResourceString(IDS_X);
            AppendMetres(text, c.east);
            name.LoadString(mw::KindDisplayNameId(Cartesian));
            break;
        default:  // no kind: the frame alone
            break;
    }

    text += " (";
    text += name;
    if (ellipsoidName) {
        text += " / ";
        text += ellipsoidName;
    }
    text += ")";
}

void CGeoTransform::GetCoordStr(char* buffer, int length, unsigned long flags) {
    CString ellipsoid, line;
    m_refDataDest.GetEllipsName(ellipsoid);
    // The name is always passed, so the line ends in " / name)" even when it is empty.
    m_geoCoordDest.Coord_to_Str(&line, flags, ellipsoid.GetString());
    if (!buffer || length <= 0) return;
    std::strncpy(buffer, line.GetString(), static_cast<size_t>(length));
}
