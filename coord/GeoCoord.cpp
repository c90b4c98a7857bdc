#include <mapwright/GeoCoord.h>

#include <cctype>

#include <mapwright/basalt.h>

#include "refsys/kinds.h"
#include "refsys/numtext.h"

CGeoCoord::CGeoCoord() : m_nProjection(0), m_coord{} {}

CGeoCoord::CGeoCoord(const CGeoCoord& other) : m_nProjection(other.m_nProjection), m_coord(other.m_coord) {}

CGeoCoord& CGeoCoord::operator=(const CGeoCoord& other) {
    m_nProjection = other.m_nProjection;
    // A coordinate without a kind has no value to give.
    if (other.m_nProjection != 0) m_coord = other.m_coord;
    return *this;
}

CGeoCoord::~CGeoCoord() = default;

int CGeoCoord::SetCoord(void* record) {
    if (m_nProjection == 0 || !record) return 0;
    m_coord = *static_cast<const GeoCoordTag*>(record);
    return 1;
}

int CGeoCoord::SetProjection(int kind) {
    if (!mw::IsKind(kind) || kind == m_nProjection) return 0;
    m_nProjection = kind;
    return 1;
}

namespace {

// "%lf %c": a number, optional blanks, one more character. The number keeps
// its typed sign; the negating letter (W for east, S for north) flips it.
void ReadNumberAndLetter(const char* text, double& field, char negating) {
    const char* end = nullptr;
    double value = 0.0;
    if (!mw::ParseDouble(text, value, end)) return;
    field = value;
    while (*end && std::isspace(static_cast<unsigned char>(*end))) ++end;
    if (*end && std::toupper(static_cast<unsigned char>(*end)) == negating) field = -field;
}

}  // namespace

void CGeoCoord::SetCoord(const char* text, int field, bool decimal) {
    if (!text || !mw::IsKind(m_nProjection)) return;
    GeoCoordTag& c = m_coord;
    if (m_nProjection == Geographic) {
        switch (field) {
            case 0:
                if (decimal)
                    ReadNumberAndLetter(text, c.east, 'W');
                else
                    LongitudeCharToDouble(&c.east, text);
                break;
            case 1:
                if (decimal)
                    ReadNumberAndLetter(text, c.north, 'S');
                else
                    LatitudeCharToDouble(&c.north, text);
                break;
            case 2:
                c.height = mw::AtoF(text);
                break;
            default:
                break;
        }
        return;
    }
    // The projected and Cartesian kinds: east, north, then zone (UTM only) and height.
    const bool utm = m_nProjection == UTM;
    if (field == 0)
        c.east = mw::AtoF(text);
    else if (field == 1)
        c.north = mw::AtoF(text);
    else if (field == 2 && utm)
        c.zone = mw::AtoI(text);
    else if (field == (utm ? 3 : 2))
        c.height = mw::AtoF(text);
}
