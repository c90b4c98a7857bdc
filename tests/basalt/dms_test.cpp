// Degrees-minutes-seconds text of latitudes and longitudes: the writers
// (LatitudeDoubleToChar, LongitudeDoubleToChar) and the readers
// (LatitudeCharToDouble, LongitudeCharToDouble).
//
// The reference for rounding is exact integer arithmetic on the significand
// of the double (a 128-bit product), never the library's own output.
#include <mapwright/basalt.h>

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>

namespace {

#define DEG "\xB0"  // the degree sign in Windows-1251

constexpr std::int64_t kPerDegree = 360000;  // hundredths of an arc-second
constexpr int kTextLength = 18;              // "DDD° MM' SS.SS'' H"

enum class Axis { Latitude, Longitude };

int Write(Axis axis, char* text, int size, double degrees) {
    return axis == Axis::Latitude ? LatitudeDoubleToChar(text, size, degrees)
                                  : LongitudeDoubleToChar(text, size, degrees);
}

int Read(Axis axis, double* degrees, const char* text) {
    return axis == Axis::Latitude ? LatitudeCharToDouble(degrees, text)
                                  : LongitudeCharToDouble(degrees, text);
}

// The writer's text into a 64-byte area, as the coordinate text does.
std::string Written(Axis axis, double degrees, int* result = nullptr) {
    char text[64];
    std::memset(text, '#', sizeof text);
    const int n = Write(axis, text, sizeof text, degrees);
    if (result) *result = n;
    return std::string(text, strnlen(text, sizeof text));
}

const char* AxisName(Axis axis) { return axis == Axis::Latitude ? "latitude" : "longitude"; }

// The expected text of an angle of `hundredths` hundredths of an arc-second.
std::string TextOf(std::int64_t hundredths, bool negative, Axis axis) {
    const char letter = axis == Axis::Latitude ? (negative ? 'S' : 'N') : (negative ? 'W' : 'E');
    char text[64];
    std::snprintf(text, sizeof text, "%03d" DEG " %02d' %02d.%02d'' %c",
                  static_cast<int>(hundredths / kPerDegree),
                  static_cast<int>(hundredths / 6000 % 60),
                  static_cast<int>(hundredths / 100 % 60),
                  static_cast<int>(hundredths % 100), letter);
    return text;
}

// |x| * 360000 rounded half away from zero, computed exactly: x = M * 2^E
// with an integer M below 2^53, so x * 360000 = (M * 360000) * 2^E, an
// integer of at most 72 bits scaled by a power of two. `nearTie` is set when
// x lies within 8 units in the last place of a half hundredth, where the
// writer deliberately counts the value as the half (see the tie tests).
struct Rounded {
    std::int64_t hundredths;
    bool nearTie;
};

Rounded ExactHundredths(double x) {
    x = std::fabs(x);
    if (x == 0.0) return {0, false};
    int e = 0;
    const double m = std::frexp(x, &e);  // x = m * 2^e, 0.5 <= m < 1
    const auto M = static_cast<__int128>(std::ldexp(m, 53));
    const int shift = 53 - e;  // x = M * 2^-shift
    if (shift <= 0 || shift > 120) {
        // Only reached for angles far outside three-digit degrees or far
        // below a hundredth of a second; the tests use neither here.
        return {shift > 120 ? 0 : -1, false};
    }
    const __int128 n = M * kPerDegree;
    const __int128 q = n >> shift;
    const __int128 r = n - (q << shift);
    const __int128 half = static_cast<__int128>(1) << (shift - 1);
    // One unit in the last place of x is 2^-shift, which is kPerDegree units of n.
    const __int128 window = 8 * static_cast<__int128>(kPerDegree);
    const __int128 distance = r > half ? r - half : half - r;
    return {static_cast<std::int64_t>(q + (r >= half ? 1 : 0)), distance <= window};
}

// ---------------------------------------------------------------------------
// Writers: exact texts

struct TextCase {
    Axis axis;
    double degrees;
    const char* text;  // nullptr: refused (result 0, empty text)
    const char* why;
};

double Dms(int d, int m, double s) { return d + m / 60.0 + s / 3600.0; }

TEST(DmsWrite, ExactTexts) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const TextCase cases[] = {
        {Axis::Latitude, 0.0, "000" DEG " 00' 00.00'' N", "zero is north"},
        {Axis::Longitude, 0.0, "000" DEG " 00' 00.00'' E", "zero is east"},
        {Axis::Latitude, -0.0, "000" DEG " 00' 00.00'' N", "-0.0 is not negative"},
        {Axis::Longitude, -0.0, "000" DEG " 00' 00.00'' E", "-0.0 is not negative"},
        {Axis::Latitude, 90.0, "090" DEG " 00' 00.00'' N", "north pole, three-digit degrees"},
        {Axis::Latitude, -90.0, "090" DEG " 00' 00.00'' S", "south pole"},
        {Axis::Longitude, 180.0, "180" DEG " 00' 00.00'' E", "antimeridian east"},
        {Axis::Longitude, -180.0, "180" DEG " 00' 00.00'' W", "antimeridian west"},
        // 55.7558° = 200720.88''; -33.9° = 33° 54'; 122.419° = 440708.4''.
        {Axis::Latitude, 55.7558, "055" DEG " 45' 20.88'' N", "ordinary latitude"},
        {Axis::Latitude, -33.9, "033" DEG " 54' 00.00'' S", "southern latitude"},
        {Axis::Longitude, -122.419, "122" DEG " 25' 08.40'' W", "western longitude"},
        {Axis::Longitude, 37.6173, "037" DEG " 37' 02.28'' E", "eastern longitude"},
        {Axis::Latitude, 1.0 / 3.0, "000" DEG " 20' 00.00'' N", "a third of a degree"},
        // Rounding and carry.
        {Axis::Latitude, Dms(10, 20, 59.995), "010" DEG " 21' 00.00'' N", "59.995'' carries into the minute"},
        {Axis::Latitude, Dms(10, 59, 59.995), "011" DEG " 00' 00.00'' N", "59' 59.995'' carries into the degree"},
        {Axis::Latitude, -Dms(10, 59, 59.995), "011" DEG " 00' 00.00'' S", "the carry is the same south"},
        {Axis::Latitude, Dms(89, 59, 59.995), "090" DEG " 00' 00.00'' N", "carries up to the pole"},
        {Axis::Longitude, -Dms(179, 59, 59.995), "180" DEG " 00' 00.00'' W", "carries up to 180"},
        {Axis::Longitude, Dms(99, 59, 59.995), "100" DEG " 00' 00.00'' E", "carry into the third digit"},
        {Axis::Latitude, Dms(10, 20, 59.9949), "010" DEG " 20' 59.99'' N", "just below the half stays"},
        {Axis::Latitude, Dms(10, 20, 30.125), "010" DEG " 20' 30.13'' N", "a half rounds up"},
        {Axis::Latitude, -Dms(10, 20, 30.125), "010" DEG " 20' 30.13'' S", "a half rounds away from zero"},
        {Axis::Latitude, 0.0078125, "000" DEG " 00' 28.13'' N", "2^-7 degree = 28.125'' exactly: the tie rounds up"},
        {Axis::Longitude, -0.0078125, "000" DEG " 00' 28.13'' W", "the exact tie rounds away from zero"},
        {Axis::Latitude, 0.005 / 3600.0, "000" DEG " 00' 00.01'' N", "half a hundredth near zero"},
        {Axis::Longitude, -0.005 / 3600.0, "000" DEG " 00' 00.01'' W", "the same, negative"},
        {Axis::Latitude, 0.004 / 3600.0, "000" DEG " 00' 00.00'' N", "below half a hundredth"},
        // Small negative values keep their letter, as the decimal form does.
        {Axis::Latitude, -1e-9, "000" DEG " 00' 00.00'' S", "negative value rounding to zero"},
        {Axis::Longitude, -DBL_TRUE_MIN, "000" DEG " 00' 00.00'' W", "smallest negative subnormal"},
        {Axis::Longitude, DBL_TRUE_MIN, "000" DEG " 00' 00.00'' E", "smallest subnormal"},
        // Three-digit degrees: the writers do not check the latitude range.
        {Axis::Latitude, 120.5, "120" DEG " 30' 00.00'' N", "out-of-range latitude is still shown"},
        {Axis::Longitude, 360.0, "360" DEG " 00' 00.00'' E", "unreduced longitude is shown"},
        {Axis::Longitude, Dms(999, 59, 59.99), "999" DEG " 59' 59.99'' E", "largest writable angle"},
        {Axis::Latitude, -Dms(999, 59, 59.99), "999" DEG " 59' 59.99'' S", "largest writable, negative"},
        {Axis::Longitude, Dms(999, 59, 59.995), nullptr, "rounds to 1000 degrees"},
        {Axis::Longitude, 1000.0, nullptr, "four digits of degrees"},
        {Axis::Latitude, -1000.0, nullptr, "four digits of degrees, negative"},
        {Axis::Latitude, 1e300, nullptr, "huge"},
        {Axis::Longitude, -1e300, nullptr, "huge negative"},
        {Axis::Latitude, DBL_MAX, nullptr, "largest double"},
        {Axis::Longitude, 1e19, nullptr, "beyond every 64-bit integer"},
        {Axis::Latitude, nan, nullptr, "NaN"},
        {Axis::Longitude, -nan, nullptr, "NaN with the sign bit"},
        {Axis::Latitude, inf, nullptr, "infinity"},
        {Axis::Longitude, -inf, nullptr, "minus infinity"},
    };
    for (const TextCase& c : cases) {
        SCOPED_TRACE(std::string(AxisName(c.axis)) + ": " + c.why);
        int result = -1;
        const std::string text = Written(c.axis, c.degrees, &result);
        if (c.text) {
            EXPECT_EQ(text, c.text);
            EXPECT_EQ(result, kTextLength);
        } else {
            EXPECT_EQ(text, "");
            EXPECT_EQ(result, 0);
        }
    }
}

// A value meant to be a tie, s.995'', reaches the writer only after double
// arithmetic has moved it up to a unit or so in the last place either side;
// every way of building it must still round up, carrying where s is 59.
// Just below the tie (s.9949'') it must round down.
TEST(DmsWrite, TiesBuiltByArithmeticRoundAwayFromZero) {
    const int degreesList[] = {0, 1, 9, 10, 45, 89, 99, 100, 135, 179, 500, 998};
    for (const Axis axis : {Axis::Latitude, Axis::Longitude}) {
        for (const int d : degreesList) {
            for (int m = 0; m < 60; ++m) {
                for (int s = 0; s < 60; ++s) {
                    const double tie = s + 0.995;
                    const double built[] = {
                        d + m / 60.0 + tie / 3600.0,
                        (d * 3600.0 + m * 60.0 + tie) / 3600.0,
                        d + (m + tie / 60.0) / 60.0,
                    };
                    const std::int64_t up = d * kPerDegree + m * 6000 + (s + 1) * 100;
                    for (const double x : built) {
                        for (const bool negative : {false, true}) {
                            const std::string text = Written(axis, negative ? -x : x);
                            ASSERT_EQ(text, TextOf(up, negative, axis))
                                << d << " " << m << " " << tie << (negative ? " negative" : "");
                        }
                    }
                    const double below = d + m / 60.0 + (s + 0.9949) / 3600.0;
                    ASSERT_EQ(Written(axis, below), TextOf(up - 1, false, axis))
                        << d << " " << m << " " << s << ".9949";
                }
            }
        }
    }
}

// ---------------------------------------------------------------------------
// Writers: the size of the area

TEST(DmsWrite, NeverWritesBeyondSize) {
    struct SizeCase {
        int size;
        int result;
        bool terminated;  // text[0] is NUL (refused) or the whole text is there
        const char* why;
    };
    const SizeCase cases[] = {
        {64, kTextLength, true, "the usual 64-byte area"},
        {kTextLength + 1, kTextLength, true, "text and terminator fit exactly"},
        {kTextLength, 0, true, "one byte short: empty text"},
        {2, 0, true, "tiny area: empty text"},
        {1, 0, true, "room for the terminator only"},
        {0, 0, false, "size 0: nothing written"},
        {-1, 0, false, "negative size: nothing written"},
        {INT_MIN, 0, false, "most negative size: nothing written"},
    };
    const double angle = -Dms(122, 25, 8.4);
    for (const Axis axis : {Axis::Latitude, Axis::Longitude}) {
        const std::string full = axis == Axis::Latitude ? "122" DEG " 25' 08.40'' S"
                                                        : "122" DEG " 25' 08.40'' W";
        for (const SizeCase& c : cases) {
            SCOPED_TRACE(std::string(AxisName(axis)) + ": " + c.why);
            char area[80];
            std::memset(area, '#', sizeof area);
            EXPECT_EQ(Write(axis, area, c.size, angle), c.result);
            const int untouchedFrom = c.size > 0 ? c.size : 0;
            for (int i = untouchedFrom; i < static_cast<int>(sizeof area); ++i) {
                ASSERT_EQ(area[i], '#') << "byte " << i << " written";
            }
            if (c.result > 0) {
                EXPECT_EQ(std::string(area), full);
            } else if (c.terminated) {
                EXPECT_EQ(area[0], '\0');
            }
        }
        EXPECT_EQ(Write(axis, nullptr, 64, angle), 0) << "null text";
        EXPECT_EQ(Write(axis, nullptr, 0, angle), 0) << "null text, size 0";
    }
}

TEST(DmsWrite, RefusalLeavesAnEmptyTextInAFilledArea) {
    for (const Axis axis : {Axis::Latitude, Axis::Longitude}) {
        for (const double x : {std::numeric_limits<double>::quiet_NaN(), 1e300, 1000.0}) {
            char area[64];
            std::memset(area, '#', sizeof area);
            EXPECT_EQ(Write(axis, area, sizeof area, x), 0);
            EXPECT_EQ(area[0], '\0') << AxisName(axis) << " " << x;
        }
    }
}

// ---------------------------------------------------------------------------
// Round trip over dense grids

// Grid 1: angles built as (H + delta) / 360000 from whole hundredths H over
// the whole range, with delta up to 0.4999 of a hundredth either side. The
// text must show H, and the reader must give back H / 360000 exactly (the
// double nearest the text's angle); writing that value again gives the same
// text. The construction errs by about 1e-8 hundredth, far inside the
// 1e-4 margin to the tie.
TEST(DmsRoundTrip, GridOfHundredths) {
    const double deltas[] = {0.0, 0.4999, -0.4999, 0.25, -0.3};
    for (const Axis axis : {Axis::Latitude, Axis::Longitude}) {
        const std::int64_t limit = (axis == Axis::Latitude ? 90 : 180) * kPerDegree;
        std::int64_t index = 0;
        // 97 is prime to 100, 6000 and 360000: every hundredth, second and
        // minute digit appears.
        for (std::int64_t h = 0; h <= limit; h += 97, ++index) {
            double delta = deltas[index % 5];
            if (h == 0 && delta < 0) delta = -delta;
            if (h == limit && delta > 0) delta = -delta;
            const bool negative = index % 2 == 1;
            const double magnitude = (static_cast<double>(h) + delta) / kPerDegree;
            const double x = negative ? -magnitude : magnitude;

            const std::string text = Written(axis, x);
            ASSERT_EQ(text, TextOf(h, negative && x != 0.0, axis)) << "h " << h << " delta " << delta;
            double back = 1234.5;
            ASSERT_EQ(Read(axis, &back, text.c_str()), 1) << text;
            const double expected = static_cast<double>(h) / kPerDegree;
            ASSERT_EQ(back, negative ? -expected : expected) << text;
            ASSERT_EQ(Written(axis, back), text);
        }
        // The limit itself, exactly, both signs.
        for (const bool negative : {false, true}) {
            const double edge = (axis == Axis::Latitude ? 90.0 : 180.0) * (negative ? -1 : 1);
            double back = 0;
            ASSERT_EQ(Read(axis, &back, Written(axis, edge).c_str()), 1);
            EXPECT_EQ(back, edge);
        }
    }
}

// Grid 2: a million arbitrary doubles over each axis's range. The text must
// show the exactly rounded value; the value read back must lie within half a
// hundredth of a second of the original, 0.005'' / 3600 degrees, plus the
// reader's one division (half a unit in the last place: at most 2^-46 for
// angles below 256°) and the rounding of the bound itself: 2^-45 covers both.
TEST(DmsRoundTrip, ArbitraryDoubles) {
    std::mt19937_64 random(20240611);
    for (const Axis axis : {Axis::Latitude, Axis::Longitude}) {
        const double limit = axis == Axis::Latitude ? 90.0 : 180.0;
        std::uniform_real_distribution<double> angle(-limit, limit);
        const double bound = 0.005 / 3600.0 + std::ldexp(1.0, -45);
        int skippedNearTie = 0;
        for (int i = 0; i < 1000000; ++i) {
            const double x = angle(random);
            const Rounded exact = ExactHundredths(x);
            if (exact.nearTie) {
                ++skippedNearTie;
                continue;
            }
            const std::string text = Written(axis, x);
            ASSERT_EQ(text, TextOf(exact.hundredths, x < 0.0, axis)) << x;
            double back = 1234.5;
            ASSERT_EQ(Read(axis, &back, text.c_str()), 1) << text;
            ASSERT_LE(std::fabs(back - x), bound) << x << " -> " << text;
        }
        // Ties within 8 ulps are a few in ten million; a large count would
        // mean the reference is broken and the test is hollow.
        EXPECT_LT(skippedNearTie, 10);
    }
}

// The exact reference itself, on values whose rounding is known by hand.
TEST(DmsRoundTrip, ExactReferenceSelfCheck) {
    EXPECT_EQ(ExactHundredths(1.0).hundredths, kPerDegree);
    EXPECT_EQ(ExactHundredths(-90.0).hundredths, 90 * kPerDegree);
    // 2^-7 degree is 28.125'', a tie held exactly by the double.
    EXPECT_EQ(ExactHundredths(0.0078125).hundredths, 2813);
    EXPECT_TRUE(ExactHundredths(0.0078125).nearTie);
    EXPECT_TRUE(ExactHundredths(Dms(10, 20, 30.125)).nearTie);
    EXPECT_FALSE(ExactHundredths(Dms(10, 20, 30.12)).nearTie);
    EXPECT_EQ(ExactHundredths(Dms(10, 20, 30.12)).hundredths, 10 * kPerDegree + 20 * 6000 + 3012);
    EXPECT_EQ(ExactHundredths(Dms(10, 20, 30.1249)).hundredths, 10 * kPerDegree + 20 * 6000 + 3012);
}

// ---------------------------------------------------------------------------
// Readers

struct ReadCase {
    Axis axis;
    const char* text;
    bool negative;
    int d, m, hundredthsOfSecond;
    const char* why;
};

double AngleOf(const ReadCase& c) {
    const double value =
        static_cast<double>(c.d * kPerDegree + c.m * 6000 + c.hundredthsOfSecond) / kPerDegree;
    return c.negative ? -value : value;
}

TEST(DmsRead, Accepts) {
    const ReadCase cases[] = {
        {Axis::Latitude, "055" DEG " 45' 20.88'' N", false, 55, 45, 2088, "the written shape"},
        {Axis::Latitude, "55" DEG " 45' 20.88'' N", false, 55, 45, 2088, "leading zero of degrees missing"},
        {Axis::Latitude, "5" DEG " 3' 7.50'' N", false, 5, 3, 750, "leading zeros missing everywhere"},
        {Axis::Latitude, "  5" DEG "  3'  7.50''  N", false, 5, 3, 750, "blanks where the zeros were"},
        {Axis::Latitude, "055" DEG " 45' 20.88'' n", false, 55, 45, 2088, "lower-case n"},
        {Axis::Latitude, "033" DEG " 54' 00.00'' s", true, 33, 54, 0, "lower-case s"},
        {Axis::Latitude, "033" DEG " 54' 00.00'' S", true, 33, 54, 0, "south is negative"},
        {Axis::Latitude, "55" DEG "45'20.88''N", false, 55, 45, 2088, "no blanks at all"},
        {Axis::Latitude, "\t055 " DEG "\t45 '  20.88 ''   N  ", false, 55, 45, 2088, "blanks and tabs everywhere"},
        {Axis::Latitude, "010" DEG " 20' 30.5'' N", false, 10, 20, 3050, "one decimal"},
        {Axis::Latitude, "010" DEG " 20' 30'' N", false, 10, 20, 3000, "no decimals"},
        {Axis::Latitude, "010" DEG " 20' 30.'' N", false, 10, 20, 3000, "point without decimals"},
        {Axis::Latitude, "090" DEG " 00' 00.00'' N", false, 90, 0, 0, "north pole"},
        {Axis::Latitude, "090" DEG " 00' 00.00'' S", true, 90, 0, 0, "south pole"},
        {Axis::Latitude, "089" DEG " 59' 59.99'' S", true, 89, 59, 5999, "largest below the pole"},
        {Axis::Latitude, "000" DEG " 00' 00.00'' N", false, 0, 0, 0, "zero"},
        {Axis::Latitude, "0" DEG "0'0''s", true, 0, 0, 0, "zero south, shortest form"},
        {Axis::Latitude, "055\xC2\xB0 45' 20.88'' N", false, 55, 45, 2088, "UTF-8 degree sign"},
        {Axis::Latitude, "055" DEG " 45' 20.88\" N", false, 55, 45, 2088, "double quote for seconds"},
        {Axis::Longitude, "122" DEG " 25' 08.40'' W", true, 122, 25, 840, "west is negative"},
        {Axis::Longitude, "122" DEG " 25' 08.40'' w", true, 122, 25, 840, "lower-case w"},
        {Axis::Longitude, "37" DEG " 37' 2.28'' e", false, 37, 37, 228, "lower-case e, short fields"},
        {Axis::Longitude, "180" DEG " 00' 00.00'' E", false, 180, 0, 0, "180 east"},
        {Axis::Longitude, "180" DEG " 00' 00.00'' W", true, 180, 0, 0, "180 west"},
        {Axis::Longitude, "179" DEG " 59' 59.99'' W", true, 179, 59, 5999, "largest below 180"},
        {Axis::Longitude, "095" DEG " 00' 00.00'' E", false, 95, 0, 0, "beyond a latitude's range"},
    };
    for (const ReadCase& c : cases) {
        SCOPED_TRACE(std::string(AxisName(c.axis)) + ": " + c.why + " [" + c.text + "]");
        double value = 1234.5;
        ASSERT_EQ(Read(c.axis, &value, c.text), 1);
        // The reader promises the double nearest the text's angle.
        EXPECT_EQ(value, AngleOf(c));
        EXPECT_EQ(std::signbit(value), c.negative);
    }
}

TEST(DmsRead, RejectsAndLeavesTheValue) {
    struct RejectCase {
        Axis axis;
        const char* text;
        const char* why;
    };
    const RejectCase cases[] = {
        {Axis::Latitude, "055" DEG " 45' 20.88'' E", "east is no latitude letter"},
        {Axis::Latitude, "055" DEG " 45' 20.88'' W", "west is no latitude letter"},
        {Axis::Longitude, "055" DEG " 45' 20.88'' N", "north is no longitude letter"},
        {Axis::Longitude, "055" DEG " 45' 20.88'' s", "south is no longitude letter"},
        {Axis::Latitude, "055" DEG " 45' 20.88'' X", "unknown letter"},
        {Axis::Latitude, "055" DEG " 45' 20.88''", "letter missing"},
        {Axis::Latitude, "055" DEG " 45' 20.88'' NS", "two letters"},
        {Axis::Latitude, "055" DEG " 45' 20.88'' North", "a word, not a letter"},
        {Axis::Latitude, "055" DEG " 45' 20.88'' N x", "trailing garbage"},
        {Axis::Latitude, "010" DEG " 60' 00.00'' N", "minutes 60"},
        {Axis::Latitude, "010" DEG " 99' 00.00'' N", "minutes 99"},
        {Axis::Latitude, "010" DEG " 00' 60.00'' N", "seconds 60"},
        {Axis::Latitude, "010" DEG " 00' 75.00'' N", "seconds 75"},
        {Axis::Latitude, "091" DEG " 00' 00.00'' N", "latitude 91"},
        {Axis::Latitude, "090" DEG " 00' 00.01'' S", "just beyond the pole"},
        {Axis::Latitude, "120" DEG " 30' 00.00'' N", "a written but out-of-range latitude"},
        {Axis::Longitude, "180" DEG " 00' 00.01'' E", "just beyond 180"},
        {Axis::Longitude, "181" DEG " 00' 00.00'' W", "longitude 181"},
        {Axis::Longitude, "999" DEG " 59' 59.99'' E", "largest writable angle, out of range"},
        {Axis::Latitude, "", "empty"},
        {Axis::Latitude, "    ", "blanks only"},
        {Axis::Latitude, "N", "letter only"},
        {Axis::Latitude, "hello", "garbage"},
        {Axis::Latitude, "55.7558 N", "decimal degrees"},
        {Axis::Latitude, "055 45' 20.88'' N", "degree sign missing"},
        {Axis::Latitude, "055\xC2 45' 20.88'' N", "half a UTF-8 degree sign"},
        {Axis::Latitude, "055" DEG " 45 20.88'' N", "minutes mark missing"},
        {Axis::Latitude, "055" DEG " 45' 20.88' N", "one apostrophe after the seconds"},
        {Axis::Latitude, "055" DEG " 45' 20.88 N", "seconds mark missing"},
        {Axis::Latitude, "055" DEG " 45'", "cut after the minutes"},
        {Axis::Latitude, "055" DEG, "cut after the degrees"},
        {Axis::Latitude, "0055" DEG " 45' 20.88'' N", "four digits of degrees"},
        {Axis::Longitude, "1000" DEG " 00' 00.00'' E", "a thousand degrees"},
        {Axis::Latitude, "055" DEG " 045' 20.88'' N", "three digits of minutes"},
        {Axis::Latitude, "055" DEG " 45' 020.88'' N", "three digits of seconds"},
        {Axis::Latitude, "055" DEG " 45' 20.885'' N", "three decimals"},
        {Axis::Latitude, "055" DEG " 45' 20.8.8'' N", "two points"},
        {Axis::Latitude, "055" DEG " 45' .88'' N", "no whole seconds"},
        {Axis::Latitude, "-55" DEG " 45' 20.88'' N", "a sign is not the way to say south"},
        {Axis::Latitude, "+55" DEG " 45' 20.88'' N", "nor to say north"},
        {Axis::Latitude, "5 5" DEG " 45' 20.88'' N", "a blank inside the degrees"},
        {Axis::Latitude, "055" DEG " 45' 20.88' ' N", "a blank between the apostrophes"},
        {Axis::Latitude, "___" DEG " __' __.__'' _", "the empty mask template"},
        {Axis::Latitude, "055" DEG " 45' 20.88'' N\n", "a line end is not a blank"},
    };
    const double sentinel = -12.25;
    for (const RejectCase& c : cases) {
        SCOPED_TRACE(std::string(AxisName(c.axis)) + ": " + c.why + " [" + c.text + "]");
        double value = sentinel;
        EXPECT_EQ(Read(c.axis, &value, c.text), 0);
        EXPECT_EQ(value, sentinel);
    }
    for (const Axis axis : {Axis::Latitude, Axis::Longitude}) {
        double value = sentinel;
        EXPECT_EQ(Read(axis, &value, nullptr), 0) << AxisName(axis) << ": null text";
        EXPECT_EQ(value, sentinel);
        EXPECT_EQ(Read(axis, nullptr, "010" DEG " 00' 00.00'' N"), 0) << AxisName(axis) << ": null value";
        EXPECT_EQ(Read(axis, nullptr, nullptr), 0);
    }
}

// Every text the readers accept and the writers can produce comes back
// unchanged: read, write again, compare, over every minute and second digit
// pattern of both axes (the value in between is the double nearest the text).
TEST(DmsRoundTrip, TextReadThenWrittenIsUnchanged) {
    const int degreesList[] = {0, 1, 9, 10, 45, 89, 90, 99, 100, 135, 179, 180};
    for (const Axis axis : {Axis::Latitude, Axis::Longitude}) {
        const int limit = axis == Axis::Latitude ? 90 : 180;
        for (const int d : degreesList) {
            for (int m = 0; m < 60; ++m) {
                for (int cs = 0; cs < 6000; cs += 13) {
                    const std::int64_t h = d * kPerDegree + m * 6000 + cs;
                    if (h > limit * kPerDegree) continue;
                    for (const bool negative : {false, true}) {
                        const std::string text = TextOf(h, negative, axis);
                        double value = 0;
                        ASSERT_EQ(Read(axis, &value, text.c_str()), 1) << text;
                        // -0.0 from "000° 00' 00.00'' S" is written north.
                        const std::string expected = TextOf(h, negative && h != 0, axis);
                        ASSERT_EQ(Written(axis, value), expected);
                    }
                }
            }
        }
    }
}

}  // namespace
