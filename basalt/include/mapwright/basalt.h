// Basalt: the host's shared application library, as far as Mapwright uses it.
// On Linux we ship this stand-in; a host may set the application directory,
// its registry key and the language through the calls below.
#ifndef MAPWRIGHT_BASALT_H
#define MAPWRIGHT_BASALT_H

#include <mapwright/afxstr.h>
#include <mapwright/wintypes.h>

// String `id` from Basalt's own table or from a module registered with
// AddModule, in the user-interface language; the empty text when none has it.
MW_API CString GetResourceString(int id);
// Registers a loaded module by its file name ("Mapwright.dll"); its string
// table then answers GetResourceString. Non-zero when the module is loaded.
MW_API BOOL AddModule(const char* fileName);

// Fills `buffer` (at most size - 1 bytes and a NUL) with the application
// directory, without a trailing separator: the directory set by SetAppDir,
// else MAPWRIGHT_APPDIR, else $XDG_DATA_HOME/mapwright (~/.local/share/mapwright),
// which is seeded with the shipped catalogs when it has no "Auxiliary Data".
// Returns the length of the directory text, 0 when it does not fit.
MW_API int GetAppDir(int size, char* buffer);
// Sets the application directory for this process; null or "" clears it.
MW_API void SetAppDir(const char* directory);

// The host's key below HKEY_CURRENT_USER ("Software\\Mapwright" unless set).
MW_API CString AppRegKey();
MW_API void SetAppRegKey(const char* key);

// Degrees-minutes-seconds text, always "DDD° MM' SS.SS'' H" (18 bytes; the
// degree sign is byte 0xB0): three-digit degrees for latitudes too, seconds
// rounded to two decimals, half away from zero, with carry into minutes and
// degrees (59.995'' is the next minute), S or W when the value is below zero
// (-0.0 is N or E). The writers show any finite angle that rounds to less
// than 1000° (they do not check a latitude against 90°). They never write
// more than `size` bytes and always terminate when `size` >= 1; they return
// the length written (18), or 0 with an empty text when the text does not
// fit, the angle is not finite or it needs more than three digits of degrees.
// Null `text` or `size` <= 0: 0, nothing written.
MW_API int LatitudeDoubleToChar(char* text, int size, double degrees);
MW_API int LongitudeDoubleToChar(char* text, int size, double degrees);
// The readers accept that shape with missing leading zeros, missing trailing
// decimals of the seconds (at most two), and any blanks or tabs (or none)
// around the parts; the degree sign may also be the UTF-8 pair C2 B0 and the
// two apostrophes a double quote. The hemisphere letter is required, in
// either case: N/S for latitudes, E/W for longitudes. Minutes 0-59, seconds
// below 60, at most 90° of latitude and 180° of longitude. They return 1 and
// store signed decimal degrees (negative for S and W; the double nearest the
// angle of the text), or return 0 and leave `*degrees` untouched (also for a
// null pointer).
MW_API int LatitudeCharToDouble(double* degrees, const char* text);
MW_API int LongitudeCharToDouble(double* degrees, const char* text);

#endif
