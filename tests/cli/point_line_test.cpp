// The point reader of `mapwright convert`: every notation of a point gives
// that point, and every line that could be read wrongly is refused.
#include <gtest/gtest.h>

#include "point_line.h"

namespace {

using mwcli::Problem;

struct Row {
    const char* line;
    int kind;
    Problem problem;     // None: read as
    double north = 0, east = 0;  // latitude and longitude, or northing and easting
};
constexpr int G = Geographic, TM = TransverseMercator;
constexpr Problem OK = Problem::None;
// 55.7558 N 37.6173 E is 55 45 20.88 N 37 37 2.28 E exactly.
const Row kRows[] = {
    {"55.7558 37.6173", G, OK, 55.7558, 37.6173},
    {"+55.7558\t37.6173, GCP 1", G, OK, 55.7558, 37.6173},
    {"55.7558,37.6173", G, OK, 55.7558, 37.6173},
    {"55.7558N 37.6173 e", G, OK, 55.7558, 37.6173},
    {"55 45 20.88 N 37 37 2.28 E", G, OK, 55.7558, 37.6173},
    {"55 45 20.88N, 37 37.038 E", G, OK, 55.7558, 37.6173},
    {"55\u00b045'20.88\"N 37\u00b037'2.28\"E", G, OK, 55.7558, 37.6173},
    {"055\u00b0 45' 20.88'' N 037\u00b0 37' 02.28'' E", G, OK, 55.7558, 37.6173},
    {"055\xb0 45' 20.88'' N 037\xb0 37' 02.28'' E", G, OK, 55.7558, 37.6173},
    {"55\u00ba45\u203220.88\u2033N 37:37:2.28E", G, OK, 55.7558, 37.6173},
    {"55:45:20.88N 37:37:02.28 E", G, OK, 55.7558, 37.6173},
    {"55d45m20.88s N 37d37m2.28s E", G, OK, 55.7558, 37.6173},
    {"33 55 29.64 S 18 25 26.76 E", G, OK, -33.9249, 18.4241},
    {"-33.9249 S 18.4241", G, OK, 33.9249, 18.4241},  // S flips the typed sign, as the library's reader
    {"55 37 E", G, OK, 55, 37},                         // the letter belongs to the longitude
    {"413380.72 6179118.15 150 GCP-1", TM, OK, 6179118.15, 413380.72},
    {"55 45 20.88 37 37 2.28", G, Problem::Leftover},  // else latitude 55, longitude 45, height 20.88
    {"55.7 37.6 100 200", G, Problem::Leftover},
    {"55.7 37.6 150 .5", G, Problem::Leftover},
    {"55,7558 37,6173", G, Problem::DecimalComma},
    {"413380,72 6179118", TM, Problem::DecimalComma},
    {"55 61 00 N 37 E", G, Problem::BadDms},
    {"55.5 30 N 37 E", G, Problem::BadDms},
    {"55:45x 37", G, Problem::BadDms},
    {"55.7 E 37.6", G, Problem::OtherAxis},
    {"95 37", G, Problem::LatitudeRange},
    {"55 600", G, Problem::LongitudeRange},
    {"55.7Nx 37", G, Problem::Unreadable},
    {"nan 37", G, Problem::NotFinite},
    {"1e999 6179118", TM, Problem::Unreadable},
    {"413380.72", TM, Problem::Missing},
    {"61n 413380 6179118", UTM, Problem::BadZone},
};

TEST(PointLine, EveryNotationGivesThePointAndWhatCouldBeMisreadIsRefused) {
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.line);
        mwcli::PointLine p;
        EXPECT_EQ(row.problem == OK, mwcli::ParsePointLine(row.line, row.kind, mwcli::LayoutOf(row.kind, false), p));
        EXPECT_EQ(static_cast<int>(row.problem), static_cast<int>(p.problem));
        if (row.problem != OK) continue;
        // 1e-9 degrees: the decimals of 20.88'' are exact.
        EXPECT_NEAR(row.north, p.point.north, 1e-9);
        EXPECT_NEAR(row.east, p.point.east, 1e-9);
    }
    mwcli::PointLine p;
    ASSERT_TRUE(mwcli::ParsePointLine("37s 413380 6179118 5 x", UTM, mwcli::LayoutOf(UTM, false), p));
    EXPECT_TRUE(p.south && p.zone == 37 && p.hasHeight && p.point.height == 5 && p.rest == "x");
    ASSERT_TRUE(mwcli::ParsePointLine("37 37 2.28 E 55 N", G, mwcli::LayoutOf(G, true), p));
    EXPECT_NEAR(37.6173, p.point.east, 1e-12);  // -w: longitude first
}

}  // namespace
