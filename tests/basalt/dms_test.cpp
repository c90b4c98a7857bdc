// DMS text: writers round hundredths (ties away from zero), readers are strict.
#include <mapwright/basalt.h>
#include <gtest/gtest.h>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

namespace {
#define DEG "\xB0"  // the degree sign in Windows-1251
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
    EXPECT_EQ(n, text[0] ? 18 : 0);
    return std::string(text, strnlen(text, sizeof text));
}
// The text of an angle of `h` hundredths of a second.
std::string TextOf(long long h, bool negative, Axis a) {
    char text[64];
    std::snprintf(text, sizeof text, "%03d" DEG " %02d' %02d.%02d'' %c", int(h / 360000), int(h / 6000 % 60),
                  int(h / 100 % 60), int(h % 100), "NSEW"[a * 2 + negative]);
    return text;
}
double Dms(int d, int m, double s) { return d + m / 60.0 + s / 3600.0; }
double H(int d, int m, int cs) { return double(d * 360000 + m * 6000 + cs) / 360000; }

TEST(Dms, WriterTextsSizesAndTies) {
    const struct { Axis a; double x; const char* text; } cases[] = {  // null: refused
        {Lon, -0.0, "000" DEG " 00' 00.00'' E"}, {Lon, -122.419, "122" DEG " 25' 08.40'' W"},
        {Lat, Dms(10, 59, 59.995), "011" DEG " 00' 00.00'' N"}, {Lon, -Dms(99, 59, 59.995), "100" DEG " 00' 00.00'' W"},
        {Lat, -0.0078125, "000" DEG " 00' 28.13'' S"}, {Lat, -1e-9, "000" DEG " 00' 00.00'' S"},
        {Lon, Dms(999, 59, 59.99), "999" DEG " 59' 59.99'' E"}, {Lon, Dms(999, 59, 59.995), nullptr},
        {Lon, 1e19, nullptr}, {Lat, NAN, nullptr}, {Lon, -INFINITY, nullptr},
    };
    for (const auto& c : cases) EXPECT_EQ(Written(c.a, c.x), c.text ? c.text : "") << c.a << " " << c.x;
    for (const auto& [size, result] : {std::pair{19, 18}, {18, 0}, {0, 0}}) {
        char area[32];
        std::memset(area, '#', sizeof area);
        EXPECT_EQ(Write(Lon, area, size, -Dms(122, 25, 8.4)), result) << size;
        std::string expected = result ? TextOf(122 * 360000 + 25 * 6000 + 840, true, Lon) : "";
        if (size > 0) expected += '\0';
        expected.resize(sizeof area, '#');
        EXPECT_EQ(std::string(area, sizeof area), expected) << size;
    }
    EXPECT_EQ(Write(Lat, nullptr, 64, 1.0), 0);
    // A tie s.995'' built by double arithmetic, an ulp either way, rounds up (carrying at s = 59).
    for (const int d : {0, 45, 179, 998})
        for (int m = 0; m < 60; ++m)
            for (int s = 0; s < 60; ++s) {
                const double tie = s + 0.995;
                const long long up = d * 360000LL + m * 6000 + (s + 1) * 100;
                for (const double x : {d + m / 60.0 + tie / 3600.0, (d * 3600.0 + m * 60.0 + tie) / 3600.0}) {
                    ASSERT_EQ(Written(Lon, -x), TextOf(up, true, Lon)) << d << " " << m << " " << tie;
                }
            }
}

TEST(Dms, ReaderAcceptsAndRejects) {
    const double h = H(55, 45, 2088);
    const struct { Axis a; const char* text; double x; } good[] = {
        {Lat, "\t055 " DEG "\t45 '  20.88 ''   s  ", -h}, {Lat, "55" DEG "45'20.5\"n", H(55, 45, 2050)},
        {Lat, "0" DEG "0'0.''s", -0.0}, {Lon, "180\xC2\xB0 00' 00.00'' W", -180.0},
    };
    for (const auto& c : good) {
        double x = 1234.5;
        ASSERT_EQ(Read(c.a, &x, c.text), 1) << c.text;
        EXPECT_EQ(x, c.x) << c.text;  // the double nearest the angle
        EXPECT_EQ(std::signbit(x), std::signbit(c.x)) << c.text;
    }
    const std::pair<Axis, const char*> bad[] = {
        {Lat, "5" DEG " 5' 2'' E"}, {Lon, "5" DEG " 5' 2'' s"}, {Lat, "5" DEG " 5' 2''"}, {Lat, "5" DEG " 5' 2'' NS"},
        {Lat, "1" DEG " 60' 0'' N"}, {Lat, "1" DEG " 0' 60'' N"}, {Lat, "90" DEG " 0' 0.01'' S"}, {Lon, "180" DEG " 0' 0.01'' E"},
        {Lat, "-5" DEG " 5' 2'' N"}, {Lat, "5\xC2 5' 2'' N"}, {Lat, "0005" DEG " 5' 2'' N"}, {Lat, "5" DEG " 5' 2.885'' N"},
        {Lat, "5" DEG " 5' 2' N"}, {Lat, "5" DEG " 5 2'' N"},
    };
    for (const auto& [a, text] : bad) {
        double x = -12.25;
        EXPECT_EQ(Read(a, &x, text), 0) << a << " [" << text;
        EXPECT_EQ(x, -12.25);
    }
    double x = 0;
    EXPECT_EQ(Read(Lon, &x, nullptr) + Read(Lat, nullptr, "010" DEG " 00' 00.00'' N"), 0);
}
}  // namespace
