// Degrees-minutes-seconds text of latitudes and longitudes: the writers round
// to hundredths of a second (ties away from zero), the readers are strict.
#include <mapwright/basalt.h>

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

#define DEG "\xB0"  // the degree sign in Windows-1251

constexpr std::int64_t kPerDegree = 360000;  // hundredths of an arc-second
enum Axis { Lat, Lon };

int Write(Axis a, char* text, int size, double x) {
    return a == Lat ? LatitudeDoubleToChar(text, size, x) : LongitudeDoubleToChar(text, size, x);
}
int Read(Axis a, double* x, const char* text) {
    return a == Lat ? LatitudeCharToDouble(x, text) : LongitudeCharToDouble(x, text);
}

// The text in a 64-byte area; "" when refused, which must return 0.
std::string Written(Axis a, double x) {
    char text[64];
    std::memset(text, '#', sizeof text);
    const int n = Write(a, text, sizeof text, x);
    EXPECT_EQ(n, text[0] ? 18 : 0) << "the count returned";
    return std::string(text, strnlen(text, sizeof text));
}

// The text of an angle of `h` hundredths of a second.
std::string TextOf(std::int64_t h, bool negative, Axis a) {
    char text[64];
    std::snprintf(text, sizeof text, "%03d" DEG " %02d' %02d.%02d'' %c", int(h / kPerDegree), int(h / 6000 % 60),
                  int(h / 100 % 60), int(h % 100), a == Lat ? (negative ? 'S' : 'N') : (negative ? 'W' : 'E'));
    return text;
}

double Dms(int d, int m, double s) { return d + m / 60.0 + s / 3600.0; }
double H(int d, int m, int cs) { return double(d * kPerDegree + m * 6000 + cs) / kPerDegree; }

TEST(DmsWrite, ExactTexts) {
    const double nan = NAN, inf = INFINITY;
    const struct {
        Axis axis;
        double x;
        const char* text;  // null: refused
    } cases[] = {
        {Lat, 0.0, "000" DEG " 00' 00.00'' N"},   {Lon, -0.0, "000" DEG " 00' 00.00'' E"},
        {Lat, -90.0, "090" DEG " 00' 00.00'' S"}, {Lon, 180.0, "180" DEG " 00' 00.00'' E"},
        {Lat, 55.7558, "055" DEG " 45' 20.88'' N"}, {Lon, -122.419, "122" DEG " 25' 08.40'' W"},
        {Lat, Dms(10, 59, 59.995), "011" DEG " 00' 00.00'' N"},   // carries into the degree
        {Lon, -Dms(99, 59, 59.995), "100" DEG " 00' 00.00'' W"},  // and into a third digit
        {Lat, Dms(10, 20, 59.9949), "010" DEG " 20' 59.99'' N"},  // just below the half
        {Lat, -0.0078125, "000" DEG " 00' 28.13'' S"},            // 28.125'' exactly: away from zero
        {Lat, 0.004 / 3600.0, "000" DEG " 00' 00.00'' N"},
        {Lat, -1e-9, "000" DEG " 00' 00.00'' S"},                 // negatives keep their letter
        {Lon, DBL_TRUE_MIN, "000" DEG " 00' 00.00'' E"},
        {Lat, 120.5, "120" DEG " 30' 00.00'' N"},                 // no range check in the writer
        {Lon, Dms(999, 59, 59.99), "999" DEG " 59' 59.99'' E"},   // the largest writable
        {Lon, Dms(999, 59, 59.995), nullptr},                     // rounds to 1000 degrees
        {Lat, -1000.0, nullptr}, {Lat, DBL_MAX, nullptr}, {Lon, 1e19, nullptr},
        {Lat, nan, nullptr},     {Lon, -nan, nullptr},    {Lat, inf, nullptr}, {Lon, -inf, nullptr},
    };
    for (const auto& c : cases) EXPECT_EQ(Written(c.axis, c.x), c.text ? c.text : "") << c.axis << " " << c.x;
}

// A tie s.995'' reaches the writer after double arithmetic has moved it an
// ulp or so either way; every way of building it must round up (carrying at
// s = 59), and s.9949'' must round down.
TEST(DmsWrite, TiesBuiltByArithmeticRoundAwayFromZero) {
    for (const Axis a : {Lat, Lon})
        for (const int d : {0, 1, 10, 45, 89, 99, 100, 179, 500, 998})
            for (int m = 0; m < 60; ++m)
                for (int s = 0; s < 60; ++s) {
                    const double tie = s + 0.995;
                    const std::int64_t up = d * kPerDegree + m * 6000 + (s + 1) * 100;
                    for (const double x : {d + m / 60.0 + tie / 3600.0, (d * 3600.0 + m * 60.0 + tie) / 3600.0,
                                           d + (m + tie / 60.0) / 60.0}) {
                        ASSERT_EQ(Written(a, x), TextOf(up, false, a)) << d << " " << m << " " << tie;
                        ASSERT_EQ(Written(a, -x), TextOf(up, true, a)) << d << " " << m << " " << tie;
                    }
                    ASSERT_EQ(Written(a, Dms(d, m, s + 0.9949)), TextOf(up - 1, false, a)) << d << " " << m;
                }
}

TEST(DmsWrite, NeverWritesBeyondSize) {
    const int sizes[][2] = {{64, 18}, {19, 18}, {18, 0}, {2, 0}, {1, 0}, {0, 0}, {-1, 0}, {INT_MIN, 0}};
    for (const Axis a : {Lat, Lon})
        for (const auto& [size, result] : sizes) {
            char area[80];
            std::memset(area, '#', sizeof area);
            EXPECT_EQ(Write(a, area, size, -Dms(122, 25, 8.4)), result) << size;
            std::string expected = result ? TextOf(122 * kPerDegree + 25 * 6000 + 840, true, a) : "";
            if (size > 0) expected += '\0';
            expected.resize(sizeof area, '#');
            EXPECT_EQ(std::string(area, sizeof area), expected) << size;
            EXPECT_EQ(Write(a, nullptr, 64, 1.0), 0);
        }
}

// Angles built from whole hundredths H, up to 0.4999 of a hundredth off,
// over the whole range: the text shows H and reads back as H exactly.
// 97 is prime to 100, 6000 and 360000: every digit of each field appears.
TEST(DmsRoundTrip, GridOfHundredths) {
    const double deltas[] = {0.0, 0.4999, -0.4999, 0.25, -0.3};
    for (const Axis a : {Lat, Lon}) {
        const std::int64_t limit = (a == Lat ? 90 : 180) * kPerDegree;
        for (std::int64_t h = 0, i = 0; h <= limit + 96; h += 97, ++i) {
            const std::int64_t hh = std::min(h, limit);
            const double delta = hh == 0 || hh == limit ? 0.0 : deltas[i % 5];
            const bool negative = i % 2 == 1 && hh != 0;
            const double x = (negative ? -1 : 1) * (double(hh) + delta) / kPerDegree;
            const std::string text = Written(a, x);
            ASSERT_EQ(text, TextOf(hh, negative, a)) << hh << " " << delta;
            double back = 1234.5;
            ASSERT_EQ(Read(a, &back, text.c_str()), 1) << text;
            ASSERT_EQ(back, (negative ? -1 : 1) * double(hh) / kPerDegree) << text;
        }
    }
}

TEST(DmsRead, Accepts) {
    const struct {
        Axis axis;
        const char* text;
        double x;
    } cases[] = {
        {Lat, "055" DEG " 45' 20.88'' N", H(55, 45, 2088)},
        {Lat, "5" DEG " 3' 7.50'' n", H(5, 3, 750)},             // short fields, lower case
        {Lat, "\t055 " DEG "\t45 '  20.88 ''   s  ", -H(55, 45, 2088)},  // blanks and tabs
        {Lat, "55" DEG "45'20.5\"S", -H(55, 45, 2050)},          // no blanks, one decimal, '"'
        {Lat, "010" DEG " 20' 30'' N", H(10, 20, 3000)},           // no decimals
        {Lat, "010" DEG " 20' 30.'' N", H(10, 20, 3000)},          // a point without decimals
        {Lat, "090" DEG " 00' 00.00'' S", -90.0},                  // the pole
        {Lat, "0" DEG "0'0''s", -0.0},
        {Lat, "055\xC2\xB0 45' 20.88'' N", H(55, 45, 2088)},    // UTF-8 degree sign
        {Lon, "122" DEG " 25' 08.40'' w", -H(122, 25, 840)},
        {Lon, "37" DEG " 37' 2.28'' e", H(37, 37, 228)},
        {Lon, "180" DEG " 00' 00.00'' W", -180.0},
        {Lon, "179" DEG " 59' 59.99'' E", H(179, 59, 5999)},
    };
    for (const auto& c : cases) {
        double x = 1234.5;
        ASSERT_EQ(Read(c.axis, &x, c.text), 1) << c.text;
        EXPECT_EQ(x, c.x) << c.text;  // the double nearest the angle
        EXPECT_EQ(std::signbit(x), std::signbit(c.x)) << c.text;
    }
}

TEST(DmsRead, RejectsAndLeavesTheValue) {
    const std::pair<Axis, const char*> cases[] = {
        {Lat, "055" DEG " 45' 20.88'' E"}, {Lon, "055" DEG " 45' 20.88'' s"}, {Lat, "055" DEG " 45' 20.88''"},
        {Lat, "055" DEG " 45' 20.88'' NS"}, {Lat, "055" DEG " 45' 20.88'' N\n"},
        {Lat, "010" DEG " 60' 00.00'' N"}, {Lat, "010" DEG " 00' 60.00'' N"},
        {Lat, "090" DEG " 00' 00.01'' S"}, {Lon, "180" DEG " 00' 00.01'' E"}, {Lon, "999" DEG " 00' 00.00'' E"},
        {Lat, ""}, {Lat, "  "}, {Lat, "N"}, {Lat, "55.7558 N"}, {Lat, "-55" DEG " 45' 20.88'' N"},
        {Lat, "055 45' 20.88'' N"}, {Lat, "055\xC2 45' 20.88'' N"}, {Lat, "055" DEG " 45 20.88'' N"},
        {Lat, "055" DEG " 45' 20.88' N"}, {Lat, "055" DEG " 45' 20.88 N"}, {Lat, "055" DEG " 45'"},
        {Lat, "0055" DEG " 45' 20.88'' N"}, {Lat, "055" DEG " 045' 20.88'' N"},
        {Lat, "055" DEG " 45' 020.88'' N"}, {Lat, "055" DEG " 45' 20.885'' N"},
        {Lat, "055" DEG " 45' 20.8.8'' N"}, {Lat, "055" DEG " 45' .88'' N"},
        {Lat, "5 5" DEG " 45' 20.88'' N"}, {Lat, "___" DEG " __' __.__'' _"},
    };
    for (const auto& [axis, text] : cases) {
        double x = -12.25;
        EXPECT_EQ(Read(axis, &x, text), 0) << axis << " [" << text << "]";
        EXPECT_EQ(x, -12.25);
    }
    double x = 0;
    EXPECT_EQ(Read(Lon, &x, nullptr), 0);
    EXPECT_EQ(Read(Lat, nullptr, "010" DEG " 00' 00.00'' N"), 0);
}

}  // namespace
