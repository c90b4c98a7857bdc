// Coordinate fields of a reference system: how many come before the height,
// their labels, and the entry mask of each. Chosen by the projection kind
// alone; field 0 is the east axis, 1 the north axis, then the UTM zone and
// the height.
#include <mapwright/GeoReferenceData.h>
#include <mapwright/basalt_controls.h>

#include "coord/entry_masks.h"
#include "refsys/kinds.h"
#include "refsys/string_ids.h"

using mw::EntryMask;
using mw::kDecimalLatitude;
using mw::kDecimalLongitude;
using mw::kDmsLatitude;
using mw::kDmsLongitude;
using mw::kNumber;

namespace {

// The label string of each field, by kind; 0 ends a kind's fields.
constexpr unsigned kLabels[8][4] = {
    {0, 0, 0, 0},
    {IDS_LONGITUDE, IDS_LATITUDE, IDS_HEIGHT, 0},                 // Geographic
    {IDS_EAST_WEST, IDS_NORTH_SOUTH, IDS_UTM_ZONE, IDS_HEIGHT},   // UTM
    {IDS_EAST_WEST, IDS_NORTH_SOUTH, IDS_HEIGHT, 0},              // Gauss-Kruger
    {IDS_EAST_WEST, IDS_NORTH_SOUTH, IDS_HEIGHT, 0},              // Transverse Mercator
    {IDS_EAST_WEST, IDS_NORTH_SOUTH, IDS_HEIGHT, 0},              // Mercator
    {IDS_EAST_WEST, IDS_NORTH_SOUTH, IDS_HEIGHT, 0},              // Polar Stereographic
    {IDS_X, IDS_Y, IDS_Z, 0},                                     // Cartesian
};

// The last field index of a kind; -1 for a kind that is not one.
int LastField(int kind) {
    if (kind == UTM) return 3;
    if (mw::IsKind(kind)) return 2;
    return -1;
}

// The mask of a field, or false when the kind has no such field. The index is
// compared as unsigned, so a negative one is never a field.
bool FieldMask(int kind, int field, bool decimal, EntryMask* out) {
    const int last = LastField(kind);
    if (last < 0 || static_cast<unsigned>(field) > static_cast<unsigned>(last)) return false;
    if (kind == Geographic && field == 0) *out = decimal ? kDecimalLongitude : kDmsLongitude;
    else if (kind == Geographic && field == 1) *out = decimal ? kDecimalLatitude : kDmsLatitude;
    else *out = kNumber;
    return true;
}

}  // namespace

// The height is every kind's last field, so its index counts the fields
// before it.
int CGeoReferenceData::GetNumCoordField() {
    const int last = LastField(m_nProjection);
    return last < 0 ? 0 : last;
}

void CGeoReferenceData::GetCoordFieldName(CString& text, int field) {
    text.Empty();
    const int last = LastField(m_nProjection);
    if (last < 0 || static_cast<unsigned>(field) > static_cast<unsigned>(last)) return;
    text.LoadString(kLabels[m_nProjection][field]);
}

void CGeoReferenceData::SetCoordFieldMask(CMaskEdit* control, int field, bool decimal) {
    EntryMask m{};
    if (!control || !FieldMask(m_nProjection, field, decimal, &m)) return;
    control->SetMask(m.mask, m.literal, m.valid);
}

void CGeoReferenceData::SetCoordFieldMaskNum(int item, CListFrame* list, int field) {
    // A list cell always takes the degrees-minutes-seconds form of an angle.
    EntryMask m{};
    if (!list || !FieldMask(m_nProjection, field, false, &m)) return;
    list->SetMask(item, 1, m.mask, m.literal, m.valid);
}
