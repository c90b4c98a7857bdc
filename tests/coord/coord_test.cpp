#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include <mapwright/GeoCoord.h>

namespace {

GeoCoordTag& Record(CGeoCoord& c) { return *static_cast<GeoCoordTag*>(c.GetCoord()); }

TEST(Coordinate, KindRules) {
    CGeoCoord c;
    EXPECT_EQ(0, c.GetProjection());
    GeoCoordTag value{55.75, 37.62, 150.0, 37};
    EXPECT_EQ(0, c.SetCoord(&value));  // no kind yet
    EXPECT_EQ(0.0, Record(c).north);   // a new record is zero-filled
    EXPECT_EQ(1, c.SetProjection(1));
    EXPECT_EQ(0, c.SetProjection(1));  // same kind
    EXPECT_EQ(0, c.SetProjection(0));
    EXPECT_EQ(0, c.SetProjection(8));
    EXPECT_EQ(1, c.GetProjection());
    EXPECT_EQ(1, c.SetCoord(&value));
    EXPECT_EQ(0, c.SetCoord(nullptr));

    // A new kind reads the same numbers: a latitude of 55.75 becomes a northing of 55.75 m.
    void* address = c.GetCoord();
    EXPECT_EQ(1, c.SetProjection(3));
    EXPECT_EQ(address, c.GetCoord());
    EXPECT_EQ(55.75, Record(c).north);
    EXPECT_EQ(37, Record(c).zone);
}

TEST(Coordinate, CopiesOwnTheirRecords) {
    CGeoCoord a;
    a.SetProjection(2);
    GeoCoordTag value{6182000, 413000, 10, 37};
    a.SetCoord(&value);
    CGeoCoord b(a);
    EXPECT_NE(a.GetCoord(), b.GetCoord());
    EXPECT_EQ(2, b.GetProjection());
    Record(b).zone = 38;
    EXPECT_EQ(37, Record(a).zone);

    CGeoCoord none;  // kind 0: the target takes the kind and keeps its values
    b = none;
    EXPECT_EQ(0, b.GetProjection());
    EXPECT_EQ(38, Record(b).zone);
    b = a;
    EXPECT_EQ(2, b.GetProjection());
    EXPECT_EQ(37, Record(b).zone);
}

TEST(Coordinate, ReadingTextIntoAField) {
    struct Case {
        int kind;
        const char* text;
        int field;
        bool decimal;
        double GeoCoordTag::*member;  // null: the zone
        double expected;              // NaN: unchanged
    };
    const double kept = NAN;
    const Case cases[] = {
        {1, "12.5 W", 0, true, &GeoCoordTag::east, -12.5},
        {1, "12.5 w", 0, true, &GeoCoordTag::east, -12.5},
        {1, "12.5W", 0, true, &GeoCoordTag::east, -12.5},
        {1, "12.5 E", 0, true, &GeoCoordTag::east, 12.5},
        {1, "12.5", 0, true, &GeoCoordTag::east, 12.5},
        {1, "-12.5 W", 0, true, &GeoCoordTag::east, 12.5},  // the letter flips the typed sign
        {1, "12.5 S", 0, true, &GeoCoordTag::east, 12.5},   // S does not negate a longitude
        {1, "abc", 0, true, &GeoCoordTag::east, kept},
        {1, "", 0, true, &GeoCoordTag::east, kept},
        {1, "55.5 S", 1, true, &GeoCoordTag::north, -55.5},
        {1, "55.5 N", 1, true, &GeoCoordTag::north, 55.5},
        {1, "037.6173000 W", 0, true, &GeoCoordTag::east, -37.6173},  // the text written for display
        {1, "123.4", 2, true, &GeoCoordTag::height, 123.4},
        {1, "123.4", 2, false, &GeoCoordTag::height, 123.4},
        {1, "1", 3, true, &GeoCoordTag::height, kept},
        {2, "413000.5", 0, false, &GeoCoordTag::east, 413000.5},
        {2, "6182000", 1, false, &GeoCoordTag::north, 6182000},
        {2, "150", 3, false, &GeoCoordTag::height, 150},
        {2, "1", 4, false, &GeoCoordTag::height, kept},
        {3, "abc", 0, false, &GeoCoordTag::east, 0.0},  // atof: no number is 0
        {3, "7", 2, false, &GeoCoordTag::height, 7},
        {3, "7", 3, false, &GeoCoordTag::height, kept},
        {7, "2850000", 1, false, &GeoCoordTag::north, 2850000},
        {5, "1", -1, false, &GeoCoordTag::east, kept},
    };
    for (const Case& c : cases) {
        CGeoCoord coord;
        coord.SetProjection(c.kind);
        GeoCoordTag start{1000.0, 1000.0, 1000.0, 1000};
        coord.SetCoord(&start);
        coord.SetCoord(c.text, c.field, c.decimal);
        const double got = Record(coord).*c.member;
        if (std::isnan(c.expected))
            EXPECT_EQ(1000.0, got) << c.kind << " '" << c.text << "' field " << c.field;
        else
            EXPECT_DOUBLE_EQ(c.expected, got) << c.kind << " '" << c.text << "' field " << c.field;
    }
}

TEST(Coordinate, UtmZoneFromText) {
    CGeoCoord c;
    c.SetProjection(2);
    c.SetCoord("37", 2, false);
    EXPECT_EQ(37, Record(c).zone);
    c.SetCoord("x", 2, false);
    EXPECT_EQ(0, Record(c).zone);
    c.SetCoord("99999999999999", 2, false);  // clamped, never undefined
    EXPECT_EQ(2147483647, Record(c).zone);
}

TEST(Coordinate, DegreesMinutesSecondsAndNoKind) {
    CGeoCoord c;
    c.SetCoord("12.5", 0, true);  // kind 0: nothing happens
    EXPECT_EQ(0.0, Record(c).east);
    c.SetProjection(1);
    c.SetCoord("055\xB0 45' 20.88'' N", 1, false);
    EXPECT_NEAR(55.7558, Record(c).north, 1e-9);
    c.SetCoord("037\xB0 37' 02.28'' W", 0, false);
    EXPECT_NEAR(-37.6173, Record(c).east, 1e-9);
    c.SetCoord(nullptr, 0, true);
    EXPECT_NEAR(-37.6173, Record(c).east, 1e-9);
}

}  // namespace
