// One input line of `mapwright convert` read as a point: the columns of its
// kind, angles in every degrees-minutes-seconds notation people type, an
// optional height, and the text after them; or the reason it cannot be read.
#ifndef MAPWRIGHT_CLI_POINT_LINE_H
#define MAPWRIGHT_CLI_POINT_LINE_H

#include <string>
#include <string_view>

#include <mapwright/mapwright.h>

namespace mwcli {

// What a column of an input or output line holds.
enum Role { kLatitude, kLongitude, kEasting, kNorthing, kHeight, kX, kY, kZ };

// The record field of each role: the latitude and the northing are `north`;
// geocentric X, Y, Z are `north`, `east`, `height` in that order.
double& FieldOf(GeoCoordTag& r, Role role);

// The columns of a kind in the order users of that kind write them.
struct Layout {
    Role roles[3];
    int required;  // 2, or 3 for Cartesian
};
Layout LayoutOf(int kind, bool lonFirst);

enum class Problem {
    None,
    Missing,
    Unreadable,
    NotFinite,
    DecimalComma,
    LatitudeRange,
    LongitudeRange,
    OtherAxis,
    BadDms,
    Leftover,
    NoZone,
    BadZone
};

struct PointLine {
    GeoCoordTag point{};
    bool hasHeight = false;
    int zone = 0;           // UTM source: the line's zone, 0 when the line gives none
    bool south = false;     // with a zone: the line's hemisphere letter was s
    std::string_view rest;  // text after the coordinates, copied to the output
    Problem problem = Problem::None;
    Role role = kLatitude;   // the column the problem is in
    std::string_view token;  // the text it is about
};

// Reads `line` as a point of `kind`; false with `out.problem` set when it
// cannot be read. Views in `out` point into `line`.
bool ParsePointLine(std::string_view line, int kind, const Layout& layout, PointLine& out);

// The message for a line that could not be read.
std::string DescribeProblem(const PointLine& r, int kind, bool lonFirst);

}  // namespace mwcli

#endif
