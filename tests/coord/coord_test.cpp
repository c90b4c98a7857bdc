// CGeoCoord: kind rules, copies, and text read into a field.
#include <gtest/gtest.h>

#include <cmath>

#include <mapwright/GeoCoord.h>

namespace {

GeoCoordTag& Rec(CGeoCoord& c) { return *static_cast<GeoCoordTag*>(c.GetCoord()); }

TEST(Coordinate, KindRules) {
    CGeoCoord c;
    GeoCoordTag v{55.75, 37.62, 150.0, 37};
    EXPECT_EQ(0, c.SetCoord(&v));  // no kind yet
    EXPECT_EQ(0.0, Rec(c).north);
    EXPECT_EQ(1, c.SetProjection(1));
    EXPECT_EQ(0, c.SetProjection(1));  // same kind
    EXPECT_EQ(0, c.SetProjection(0));
    EXPECT_EQ(0, c.SetProjection(8));
    EXPECT_EQ(1, c.SetProjection(7));
    EXPECT_EQ(1, c.SetProjection(1));
    EXPECT_EQ(1, c.SetCoord(&v));
    EXPECT_EQ(0, c.SetCoord(nullptr));
    EXPECT_EQ(1, c.SetProjection(3));  // a new kind reads the same numbers
    EXPECT_EQ(55.75, Rec(c).north);
    EXPECT_EQ(37, Rec(c).zone);
}

TEST(Coordinate, CopiesOwnTheirRecords) {
    CGeoCoord a;
    a.SetProjection(2);
    GeoCoordTag v{6182000, 413000, 10, 37};
    a.SetCoord(&v);
    CGeoCoord b(a);
    EXPECT_EQ(2, b.GetProjection());
    Rec(b).zone = 38;
    EXPECT_EQ(37, Rec(a).zone);
    b = CGeoCoord();  // kind 0: the kind is taken, the values kept
    EXPECT_EQ(0, b.GetProjection());
    EXPECT_EQ(38, Rec(b).zone);
    b = a;
    EXPECT_EQ(37, Rec(b).zone);
}

TEST(Coordinate, ReadingTextIntoAField) {
    constexpr double kKept = 1000.0;
    using T = GeoCoordTag;
    struct Row {
        int kind;
        const char* text;
        int field;
        bool decimal;
        double T::*member;
        double expected;
    } rows[] = {
        {1, "12.5 W", 0, true, &T::east, -12.5}, {1, "12.5w", 0, true, &T::east, -12.5},
        {1, "12.5 E", 0, true, &T::east, 12.5}, {1, "-12.5 W", 0, true, &T::east, 12.5},
        {1, "12.5 S", 0, true, &T::east, 12.5}, {1, "abc", 0, true, &T::east, kKept},
        {1, "55.5 S", 1, true, &T::north, -55.5}, {1, "55.5 N", 1, true, &T::north, 55.5},
        {1, "123.4", 2, false, &T::height, 123.4}, {1, "1", 3, true, &T::height, kKept},
        {1, "055\xB0 45' 20.88'' N", 1, false, &T::north, 55.7558},
        {1, "037\xB0 37' 02.28'' W", 0, false, &T::east, -37.6173},
        {2, "413000.5", 0, false, &T::east, 413000.5}, {2, "6182000", 1, false, &T::north, 6182000},
        {2, "150", 3, false, &T::height, 150}, {2, "1", 4, false, &T::height, kKept},
        {3, "abc", 0, false, &T::east, 0.0}, {3, "7", 2, false, &T::height, 7},
        {3, "7", 3, false, &T::height, kKept}, {5, "1", -1, false, &T::east, kKept},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(std::to_string(r.kind) + " '" + r.text + "' field " + std::to_string(r.field));
        CGeoCoord c;
        c.SetProjection(r.kind);
        GeoCoordTag start{kKept, kKept, kKept, 1000};
        c.SetCoord(&start);
        c.SetCoord(r.text, r.field, r.decimal);
        EXPECT_NEAR(r.expected, Rec(c).*r.member, 1e-9);
        EXPECT_EQ(1000, Rec(c).zone);
    }
}

TEST(Coordinate, UtmZoneFromTextAndNoKindReadsNothing) {
    CGeoCoord c;
    c.SetCoord("12.5", 0, true);
    EXPECT_EQ(0.0, Rec(c).east);
    c.SetProjection(2);
    c.SetCoord("37", 2, false);
    EXPECT_EQ(37, Rec(c).zone);
    c.SetCoord("99999999999999", 2, false);  // clamped, never undefined
    EXPECT_EQ(2147483647, Rec(c).zone);
    c.SetCoord(nullptr, 2, false);
    EXPECT_EQ(2147483647, Rec(c).zone);
}

}  // namespace
