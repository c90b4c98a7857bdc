// Every kind of `mapwright convert` against PROJ run now (cct, Debian
// proj-bin): points in both hemispheres, near both poles and at +-180
// degrees go from geographic WGS 84 to the kind, on WGS 84 and on Pulkovo
// 1942, and every line written is read back to its point.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <sstream>

#include "testenv.h"
#include "tool.h"

namespace {

using namespace clitest;

struct Row {
    const char* why;
    const char* system;  // the tool's, without the datum
    const char* proj;    // PROJ's; {e} the ellipsoid, {z} the zone a UTM line names
    std::vector<std::vector<double>> points;  // latitude, longitude, height
};

// Transverse kinds within 4 degrees of their meridian; heights up to 10 km.
const Row kRows[] = {
    {"UTM north, fixed zone: the south has a negative northing", "utm zone=37 north",
     "+proj=utm +zone=37 +ellps={e}", {{55.7558, 37.6173, 150}, {-33, 41, 0}, {89.5, 39.5, 10}, {-89.5, 38, 0}}},
    {"UTM south, fixed zone: -180 next to zone 60", "utm zone=60 south", "+proj=utm +zone=60 +south +ellps={e}",
     {{-16.5, -180, 0}, {-16.5, 179.99, 5}, {10, -179.99, 0}, {-85, 177, 0}, {83, 176, 0}}},
    {"UTM north zone 1 at 180", "utm zone=1 north", "+proj=utm +zone=1 +ellps={e}",
     {{-16.5, 180, 0}, {60, -178, 0}, {-80, -177, 0}, {84, 179.5, 0}}},
    {"UTM, each point's own zone and hemisphere", "utm", "+proj=utm {z} +ellps={e}",
     {{-33.8688, 151.2093, 20}, {-0.2, -78.5, 0}, {0.2, 180, 0}, {-16.5, -179.99, 0}, {-79, 179.99, 0}, {83, 3, 0}}},
    {"Gauss-Kruger zone 7", "gk zone=7", "+proj=tmerc +lon_0=39 +k=1 +x_0=7500000 +ellps={e}",
     {{55.7558, 37.6173, 150}, {-40, 42, 0}, {89.9, 36, 0}, {-88, 40, 0}}},
    {"Gauss-Kruger zone 30 across 180", "gk zone=30", "+proj=tmerc +lon_0=177 +k=1 +x_0=30500000 +ellps={e}",
     {{64.7, -179.5, 0}, {-45, 180, 0}, {-45, -180, 0}, {10, 174, 0}}},
    {"Transverse Mercator with a latitude of origin", "tm k=0.9999 lon0=-75 lat0=10 fe=300000 fn=50000",
     "+proj=tmerc +lat_0=10 +lon_0=-75 +k=0.9999 +x_0=300000 +y_0=50000 +ellps={e}",
     {{40.7, -74, 10}, {-12, -77, 0}, {89, -71, 0}, {-89, -79, 0}}},
    {"Mercator with a latitude of true scale", "mercator lon0=100 lat_ts=30 fe=1000 fn=-2000",
     "+proj=merc +lon_0=100 +lat_ts=30 +x_0=1000 +y_0=-2000 +ellps={e}",
     {{1.3, 103.8, 0}, {-60, -80, 0}, {60, 179.9, 0}, {-70, -179.9, 0}, {88, 100, 0}, {-88, 0, 0}}},
    {"polar stereographic north, down to the equator", "ps lat_ts=71 lon0=-45",
     "+proj=stere +lat_0=90 +lat_ts=71 +lon_0=-45 +ellps={e}",
     {{85, 10, 0}, {89.99, 100, 0}, {60, -170, 0}, {70, 180, 0}, {0.5, 30, 0}}},
    {"polar stereographic south, true scale at the pole", "ps lat_ts=-90 fe=100 fn=-100",
     "+proj=stere +lat_0=-90 +lat_ts=-90 +x_0=100 +y_0=-100 +ellps={e}",
     {{-85, 30, 0}, {-75, -120, 0}, {-89.99, 180, 0}, {-60, -179.99, 0}}},
    {"UPS north", "ups north", "+proj=ups +ellps={e}", {{85, 30, 0}, {84, -179.99, 0}, {89.9, 180, 0}}},
    {"UPS south", "ups south", "+proj=ups +south +ellps={e}", {{-85, 30, 0}, {-80, 180, 0}, {-89.9, -90, 3000}}},
    {"geocentric X Y Z, heights to 10 km", "cartesian", "+proj=cart +ellps={e}",
     {{55.7558, 37.6173, 150}, {-33.9, 151.2, 10000}, {89.99, 180, -50}, {-89.9, -179.99, 3000}, {0, 180, 0}}},
};

struct Datum {
    const char* tool;
    const char* ellipsoid;
    std::string molodensky, exact;  // PROJ's steps from WGS 84
    double bound;                   // metres
};
// Bounds: the series' and PROJ's error and the printed decimals, under 1 mm
// on one datum. Across datums PROJ runs the library's method, so the bound
// is the same but for the print of the shifted height; the way back is a
// second Molodensky shift, not the inverse of the first: their neglected
// second-order terms grow as tan(latitude) (measured for Pulkovo's 170 m:
// 5.5 mm at 56 degrees, 35 mm at 85, 92 mm at 88), hence 5 mm (1 + tan).
const Datum kDatums[] = {
    {" datum=3", "WGS84", "", "", 1e-3},
    {" datum=4", "krass", Molodensky({6378137, 298.257223563, 0, 0, 0}, {6378245, 298.3, 28, -130, -95}),
     " +step +proj=cart +ellps=WGS84 +step +proj=helmert +x=-28 +y=130 +z=95 +step +inv +proj=cart +ellps=krass",
     5e-3},
};

std::string Fill(std::string text, const std::string& key, const std::string& value) {
    for (size_t at; (at = text.find(key)) != std::string::npos;) text.replace(at, key.size(), value);
    return text;
}

// The ground distance of two nearby points, or the difference of heights.
double Apart(const std::vector<double>& a, const std::vector<double>& b) {
    const double lon = b[1] + std::remainder(a[1] - b[1], 360.0);
    return std::max(GroundDistance(a[0], lon, b[0], b[1]), std::fabs(a[2] - b[2]));
}

TEST(ProjTable, EveryKindAgreesWithProjAndReadsBack) {
    mwtest::IsolatedEnv env;
    for (const Row& row : kRows) {
        for (const Datum& datum : kDatums) {
            SCOPED_TRACE(std::string(row.why) + datum.tool);
            const std::string system = row.system + std::string(datum.tool);
            std::ostringstream text;
            text.precision(17);
            for (const auto& p : row.points) text << p[0] << ' ' << p[1] << ' ' << p[2] << '\n';
            const auto r = Tool({"convert", "--from", "geographic", "--to", system, "-p", "6"}, text.str());
            ASSERT_EQ(0, r.status) << r.err;
            const std::vector<std::string> lines = Lines(r.out);
            ASSERT_EQ(row.points.size(), lines.size()) << r.out;
            double worst = 0;
            for (size_t i = 0; i < lines.size(); ++i) {
                // A zone the tool chose leads the line: 37n, 56s.
                std::string line = lines[i], zone;
                if (std::string(row.proj).find("{z}") != std::string::npos) {
                    const size_t blank = line.find(' ');
                    zone = "+zone=" + line.substr(0, blank - 1) + (line[blank - 1] == 's' ? " +south" : "");
                    line = line.substr(blank + 1);
                }
                const auto& p = row.points[i];
                const std::string proj = Fill(Fill(row.proj, "{e}", datum.ellipsoid), "{z}", zone);
                // The library's method: Molodensky, within a degree of a pole a geocentric shift.
                const std::string& shift = std::fabs(p[0]) > 89 ? datum.exact : datum.molodensky;
                const auto e = Cct("+proj=pipeline" + shift + " +step " + proj, {{p[1], p[0], p[2]}}).at(0);
                const auto got = Numbers(line);
                ASSERT_EQ(3u, got.size()) << lines[i];
                const double d = std::max(std::hypot(got[0] - e[0], got[1] - e[1]), std::fabs(got[2] - e[2]));
                EXPECT_LE(d, datum.bound) << lines[i] << " PROJ " << e[0] << ' ' << e[1] << ' ' << e[2];
                worst = std::max(worst, d);
            }
            // Back to the points: the inverse series and the shift back.
            const auto back = Tool({"convert", "--from", system, "--to", "geographic", "-p", "6"}, r.out);
            ASSERT_EQ(0, back.status) << back.err;
            const auto again = Lines(back.out);
            ASSERT_EQ(lines.size(), again.size());
            double worstBack = 0;
            for (size_t i = 0; i < again.size(); ++i) {
                const double d = Apart(Numbers(again[i]), row.points[i]);
                const double lat = std::fabs(row.points[i][0]);
                const double bound = datum.bound * (datum.exact.empty() || lat > 89 ? 1 : 1 + std::tan(lat * M_PI / 180));
                EXPECT_LE(d, bound) << lines[i] << " -> " << again[i];
                worstBack = std::max(worstBack, d);
            }
            std::printf("%-40.40s%-9s PROJ %.6f m, back %.6f m\n", row.why, datum.tool, worst, worstBack);
        }
    }
}

}  // namespace
