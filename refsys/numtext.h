// The C library's atoi and atof as the catalogs and the registry are read
// with them, without their undefined corners: the C locale's decimal point
// always, and integers that do not fit are clamped instead of overflowing.
#ifndef MAPWRIGHT_REFSYS_NUMTEXT_H
#define MAPWRIGHT_REFSYS_NUMTEXT_H

#include <cstdint>

namespace mw {

// Leading blanks skipped, the longest valid prefix taken, 0 without one.
int AtoI(const char* text);
double AtoF(const char* text);
// The same reading, telling whether a number was there and where it ended.
bool ParseDouble(const char* text, double& value, const char*& end);
// A catalog datum value: the integer cut to its low 16 bits, as a short store would.
int16_t CutTo16(int value);

}  // namespace mw

#endif
