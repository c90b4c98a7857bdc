// Degrees-minutes-seconds text of latitudes and longitudes:
// "DDD° MM' SS.SS'' H", single-byte Windows-1251 text.
//
// Both directions work in whole hundredths of an arc-second, so the writer's
// rounding and carry are integer steps, and the reader's result is one
// correctly rounded division: reading a written text gives the double
// nearest to the angle rounded to 0.01''.
#include <mapwright/basalt.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace {

constexpr char kDegreeSign = '\xB0';      // Windows-1251
constexpr char kUtf8DegreeLead = '\xC2';  // UTF-8 degree sign: C2 B0

constexpr std::int64_t kPerSecond = 100;  // hundredths of an arc-second
constexpr std::int64_t kPerMinute = 60 * kPerSecond;
constexpr std::int64_t kPerDegree = 60 * kPerMinute;
// Three-digit degrees end at 999° 59' 59.99''.
constexpr std::int64_t kMostWritable = 1000 * kPerDegree - 1;

constexpr int kTextLength = 18;  // "DDD° MM' SS.SS'' H"

// A value that should sit exactly on a half hundredth (59.995'') rarely does
// once it has been through double arithmetic: d + m/60 + s/3600 lands up to
// about 1.3 units in the last place of the angle on either side of the half.
// Within this many units it counts as the half and rounds away from zero.
constexpr double kTieUlps = 4.0;

// |degrees| in whole hundredths of an arc-second, rounded half away from
// zero; -1 when the angle is not finite or does not fit three-digit degrees.
std::int64_t RoundedHundredths(double degrees) {
    const double a = std::fabs(degrees);
    // Also keeps every conversion to an integer below in range.
    if (!(a < 1000.0)) return -1;
    const double whole = std::floor(a);
    const double fraction = a - whole;  // exact
    const double hundredths = fraction * static_cast<double>(kPerDegree);
    double rounded = std::floor(hundredths);
    const double ulp = std::nextafter(a, 2000.0) - a;
    const double tieWindow = kTieUlps * ulp * static_cast<double>(kPerDegree);
    if (hundredths - rounded >= 0.5 - tieWindow) rounded += 1.0;  // at most kPerDegree: a carry
    const std::int64_t total =
        static_cast<std::int64_t>(whole) * kPerDegree + static_cast<std::int64_t>(rounded);
    return total <= kMostWritable ? total : -1;
}

int WriteAngle(char* text, int size, double degrees, char positive, char negative) {
    if (!text || size <= 0) return 0;
    text[0] = '\0';
    if (size <= kTextLength) return 0;
    const std::int64_t total = RoundedHundredths(degrees);  // NaN and infinities give -1
    if (total < 0) return 0;

    const int deg = static_cast<int>(total / kPerDegree);
    const int min = static_cast<int>(total % kPerDegree / kPerMinute);
    const int sec = static_cast<int>(total % kPerMinute / kPerSecond);
    const int hundredths = static_cast<int>(total % kPerSecond);
    // The letter follows the value's sign, as the decimal form does: -0.0 is
    // north or east, and a small negative value that rounds to zero south or west.
    const char letter = degrees < 0.0 ? negative : positive;

    char line[32];
    const int length = std::snprintf(line, sizeof line, "%03d%c %02d' %02d.%02d'' %c",
                                     deg, kDegreeSign, min, sec, hundredths, letter);
    if (length != kTextLength) return 0;
    std::memcpy(text, line, kTextLength + 1);
    return kTextLength;
}

bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

void SkipBlanks(const char*& p) {
    while (IsBlank(*p)) ++p;
}

// One to `maxDigits` digits; a longer run is an error, not two numbers.
bool ReadNumber(const char*& p, int maxDigits, int& value) {
    int digits = 0;
    value = 0;
    while (IsDigit(*p)) {
        if (++digits > maxDigits) return false;
        value = value * 10 + (*p - '0');
        ++p;
    }
    return digits > 0;
}

// 0xB0, or the UTF-8 pair C2 B0 of text pasted from a UTF-8 source; 0xC2 is a
// Cyrillic letter in Windows-1251 and has no other business here.
bool ReadDegreeSign(const char*& p) {
    if (p[0] == kDegreeSign) {
        p += 1;
        return true;
    }
    if (p[0] == kUtf8DegreeLead && p[1] == kDegreeSign) {
        p += 2;
        return true;
    }
    return false;
}

// Two apostrophes as written, or the double quote people type for seconds.
bool ReadSecondsMark(const char*& p) {
    if (p[0] == '\'' && p[1] == '\'') {
        p += 2;
        return true;
    }
    if (p[0] == '"') {
        p += 1;
        return true;
    }
    return false;
}

// Seconds: one or two digits, then optionally a point and at most two decimals
// (the written shape has two; fewer are taken as missing trailing zeros).
bool ReadSeconds(const char*& p, int& hundredths) {
    int whole = 0;
    if (!ReadNumber(p, 2, whole)) return false;
    int fraction = 0;
    if (*p == '.') {
        ++p;
        int scale = 10;
        while (IsDigit(*p)) {
            if (scale == 0) return false;
            fraction += (*p - '0') * scale;
            scale /= 10;
            ++p;
        }
    }
    hundredths = whole * static_cast<int>(kPerSecond) + fraction;
    return true;
}

bool IsLetter(char c, char upper) { return c == upper || c == upper - 'A' + 'a'; }

int ReadAngle(double* degrees, const char* text, char positive, char negative, int limit) {
    if (!degrees || !text) return 0;
    const char* p = text;
    int deg = 0, min = 0, secHundredths = 0;

    SkipBlanks(p);
    if (!ReadNumber(p, 3, deg)) return 0;
    SkipBlanks(p);
    if (!ReadDegreeSign(p)) return 0;
    SkipBlanks(p);
    if (!ReadNumber(p, 2, min) || min > 59) return 0;
    SkipBlanks(p);
    if (*p++ != '\'') return 0;
    SkipBlanks(p);
    if (!ReadSeconds(p, secHundredths) || secHundredths >= 60 * kPerSecond) return 0;
    SkipBlanks(p);
    if (!ReadSecondsMark(p)) return 0;
    SkipBlanks(p);
    // The letter is required: without it a southern or western angle would
    // silently read as northern or eastern.
    bool south;
    if (IsLetter(*p, positive)) south = false;
    else if (IsLetter(*p, negative)) south = true;
    else return 0;
    ++p;
    SkipBlanks(p);
    if (*p != '\0') return 0;

    const std::int64_t total = deg * kPerDegree + min * kPerMinute + secHundredths;
    if (total > limit * kPerDegree) return 0;
    const double value = static_cast<double>(total) / static_cast<double>(kPerDegree);
    *degrees = south ? -value : value;
    return 1;
}

}  // namespace

int LatitudeDoubleToChar(char* text, int size, double degrees) {
    return WriteAngle(text, size, degrees, 'N', 'S');
}

int LongitudeDoubleToChar(char* text, int size, double degrees) {
    return WriteAngle(text, size, degrees, 'E', 'W');
}

int LatitudeCharToDouble(double* degrees, const char* text) {
    return ReadAngle(degrees, text, 'N', 'S', 90);
}

int LongitudeCharToDouble(double* degrees, const char* text) {
    return ReadAngle(degrees, text, 'E', 'W', 180);
}
