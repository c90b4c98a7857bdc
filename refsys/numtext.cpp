#include "numtext.h"

#include <locale.h>
#include <stdlib.h>

#include <climits>

namespace mw {

namespace {
locale_t CLocale() {
    static const locale_t c = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    return c;
}
}  // namespace

int AtoI(const char* text) {
    if (!text) return 0;
    long v = strtol_l(text, nullptr, 10, CLocale());
    if (v > INT_MAX) return INT_MAX;
    if (v < INT_MIN) return INT_MIN;
    return static_cast<int>(v);
}

double AtoF(const char* text) {
    if (!text) return 0.0;
    return strtod_l(text, nullptr, CLocale());
}

bool ParseDouble(const char* text, double& value, const char*& end) {
    end = text;
    if (!text) return false;
    char* stop = nullptr;
    value = strtod_l(text, &stop, CLocale());
    end = stop;
    return stop != text;
}

int16_t CutTo16(int value) {
    return static_cast<int16_t>(static_cast<uint16_t>(static_cast<unsigned>(value) & 0xFFFFu));
}

}  // namespace mw
