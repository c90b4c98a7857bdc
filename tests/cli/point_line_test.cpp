// The point reader: every notation of a point gives that point, and every
// line that could be read wrongly is refused.
#include <gtest/gtest.h>

#include "point_line.h"

namespace {

using enum mwcli::Problem;

const int G = Geographic, TM = TransverseMercator;
struct Row {
    const char* line;
    mwcli::Problem problem;
    int kind = G;
    double north = 55.7558, east = 37.6173;  // 55 45 20.88 N 37 37 2.28 E exactly; or northing, easting
};
const Row kRows[] = {
    {"55.7558 37.6173", None},
    {"+55.7558\t37.6173, GCP 1", None},
    {"55.7558,37.6173", None},
    {"55.7558N 37.6173 e", None},
    {"55 45 20.88 N 37 37 2.28 E", None},
    {"55 45 20.88N, 37 37.038 E", None},
    {"55\u00b045'20.88\"N 37\u00b037'2.28\"E", None},
    {"055\u00b0 45' 20.88'' N 037\u00b0 37' 02.28'' E", None},
    {"055\xb0 45' 20.88'' N 037\xb0 37' 02.28'' E", None},
    {"55\u00ba45\u203220.88\u2033N 37:37:2.28E", None},
    {"55:45:20.88N 37:37:02.28 E", None},
    {"55d45m20.88s N 37d37m2.28s E", None},
    {"33 55 29.64 S 18 25 26.76 E", None, G, -33.9249, 18.4241},
    {"-33.9249 S 18.4241", None, G, 33.9249, 18.4241},  // S flips the typed sign, as the library's reader
    {"55 37 E", None, G, 55, 37},                         // the letter belongs to the longitude
    {"413380.72 6179118.15 150 GCP-1", None, TM, 6179118.15, 413380.72},
    {"55 45 20.88 37 37 2.28", Leftover},  // else latitude 55, longitude 45, height 20.88
    {"55.7 37.6 100 200", Leftover},
    {"55.7 37.6 150 .5", Leftover},
    {"55,7558 37,6173", DecimalComma},
    {"413380,72 6179118", DecimalComma, TM},
    {"55 61 00 N 37 E", BadDms},
    {"55.5 30 N 37 E", BadDms},
    {"55:45x 37", BadDms},
    {"55.7 E 37.6", OtherAxis},
    {"95 37", LatitudeRange},
    {"55 600", LongitudeRange},
    {"55.7Nx 37", Unreadable},
    {"nan 37", NotFinite},
    {"1e999 6179118", Unreadable, TM},
    {"413380.72", Missing, TM},
    {"61n 413380 6179118", BadZone, UTM},
};

TEST(PointLine, EveryNotationGivesThePointAndWhatCouldBeMisreadIsRefused) {
    mwcli::PointLine p;
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(row.problem == None, mwcli::ParsePointLine(row.line, row.kind, mwcli::LayoutOf(row.kind, false), p));
        EXPECT_EQ(int(row.problem), int(p.problem));
        if (row.problem == None) {  // 1e-9 degrees: the decimals of 20.88'' are exact
            EXPECT_NEAR(row.north, p.point.north, 1e-9);
            EXPECT_NEAR(row.east, p.point.east, 1e-9);
        }
    }
    ASSERT_TRUE(mwcli::ParsePointLine("37s 413380 6179118 5 x", UTM, mwcli::LayoutOf(UTM, false), p));
    EXPECT_TRUE(p.south && p.zone == 37 && p.hasHeight && p.point.height == 5 && p.rest == "x");
    ASSERT_TRUE(mwcli::ParsePointLine("37 37 2.28 E 55 N", G, mwcli::LayoutOf(G, true), p));
    EXPECT_NEAR(37.6173, p.point.east, 1e-12);  // -w: longitude first
}

}  // namespace
