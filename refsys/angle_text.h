// Degrees-minutes-seconds text of an angle, as Basalt writes it into the
// 64-byte area every caller gives it.
#ifndef MAPWRIGHT_REFSYS_ANGLE_TEXT_H
#define MAPWRIGHT_REFSYS_ANGLE_TEXT_H

#include <mapwright/afxstr.h>
#include <mapwright/basalt.h>

namespace mw {

inline CString LongitudeText(double degrees) {
    char text[64] = "";
    LongitudeDoubleToChar(text, sizeof text, degrees);
    return CString(text, sizeof text);
}

inline CString LatitudeText(double degrees) {
    char text[64] = "";
    LatitudeDoubleToChar(text, sizeof text, degrees);
    return CString(text, sizeof text);
}

}  // namespace mw

#endif
