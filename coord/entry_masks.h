// The entry masks of coordinate and parameter fields, shared by the
// coordinate record and the projection dialog's parameter rows.
// The degree sign is the Windows-1251 byte 0xB0.
#ifndef MAPWRIGHT_COORD_ENTRY_MASKS_H
#define MAPWRIGHT_COORD_ENTRY_MASKS_H

namespace mw {

struct EntryMask {
    const char* mask;
    const char* literal;
    const char* valid;
};

// "000° 00' 00.00'' N"
constexpr EntryMask kDmsLongitude{"900__90__90_00___$", "___\xB0 __' __.__'' _", "WEwe"};
constexpr EntryMask kDmsLatitude{"900__90__90_00___$", "___\xB0 __' __.__'' _", "NSns"};
// "039.0000000 N", as the decimal-degrees text is written.
constexpr EntryMask kDecimalLongitude{"900_9000000_$", "___._________", "WEwe"};
constexpr EntryMask kDecimalLatitude{"900_9000000_$", "___._________", "NSns"};
constexpr EntryMask kNumber{"%%%%%%%%%%%%%%", "______________", ""};
// "N" or "S".
constexpr EntryMask kHemisphere{"$", "_", "NSns"};

}  // namespace mw

#endif
