// CGeoCoord: one coordinate value, tagged with the projection kind its
// numbers are expressed in.
#ifndef MAPWRIGHT_GEOCOORD_H
#define MAPWRIGHT_GEOCOORD_H

#include <stdint.h>

#include <mapwright/afxstr.h>
#include <mapwright/wintypes.h>

// The coordinate record exchanged with the host. `north` holds the latitude
// (degrees) or the northing (metres), `east` the longitude or the easting;
// for the Cartesian kind the three values are X, Y, Z in this order. `zone`
// is the UTM zone.
struct GeoCoordTag {
    double north;
    double east;
    double height;
    int32_t zone;
};

class MW_API CGeoCoord {
public:
    CGeoCoord();  // kind 0 (none yet), record zero-filled
    CGeoCoord(const CGeoCoord& other);
    // Takes the other's kind; copies its record only when that kind is not 0.
    CGeoCoord& operator=(const CGeoCoord& other);
    ~CGeoCoord();

    // The owned record: its address stays the same for the coordinate's life.
    void* GetCoord() { return &m_coord; }
    // Copies a GeoCoordTag in; 0 and nothing copied while the kind is 0.
    int SetCoord(void* record);
    // 1..7 and different from the current kind; the record is kept as it is.
    int SetProjection(int kind);
    int GetProjection() const { return m_nProjection; }

    // Reads typed text into one field: 0 east axis, 1 north axis, then zone
    // and height (UTM) or height. `decimal` chooses decimal degrees or
    // degrees-minutes-seconds for the Geographic kind.
    void SetCoord(const char* text, int field, bool decimal);
    // The text of one field as an entry control shows it (left unchanged
    // while the kind is 0).
    void GetCoord(CString& text, int field, bool decimal);
    // The whole coordinate as one labelled line; bit 0 of `flags` puts the
    // height first. `ellipsoidName` may be null.
    void Coord_to_Str(CString* out, unsigned long flags, const char* ellipsoidName);

private:
    int32_t m_nProjection;
    GeoCoordTag m_coord;
};

#endif
