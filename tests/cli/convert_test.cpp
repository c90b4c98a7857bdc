// `mapwright convert` against PROJ: the same points through the tool and
// through cct with the same operations (the library's standard Molodensky
// datum shift through WGS 84, PROJ's projections), one row per conversion.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "testenv.h"
#include "tool.h"

namespace {

using clitest::Cct;
using clitest::GroundDistance;
using clitest::Lines;
using clitest::Numbers;
using clitest::Tool;

using clitest::Datum;
using clitest::Molodensky;

// Shifts to WGS 84 as in the shipped catalog.
constexpr Datum kWgs84{6378137.0, 298.257223563, 0, 0, 0};
constexpr Datum kPulkovo{6378245.0, 298.3, 28, -130, -95};  // catalog datum 4, Krassovsky 1940
constexpr Datum kEd50{6378388.0, 297.0, -87, -98, -121};    // catalog datum 5, International 1924

enum Shape { kProjected, kGeographic, kCartesian };

struct Case {
    const char* why;
    const char* from;
    const char* to;
    std::string pipeline;  // the same conversion for cct
    Shape source, dest;
    std::vector<std::vector<double>> points;  // in the tool's input order, with a height
    double bound;                             // metres, horizontal and vertical
    bool southMark = false;                   // the library writes a southern polar northing as -abs(northing)
};

std::vector<Case> Cases() {
    // Around Moscow, in zone 37 and Gauss-Kruger zone 7; heights 0 to 250 m.
    const std::vector<std::vector<double>> moscowUtm = {
        {413380.72, 6179118.15, 150.0}, {300000.0, 6000000.0, 0.0}, {520000.0, 6300000.0, 250.0}};
    const std::vector<std::vector<double>> moscowGk = {
        {7413312.21, 6181926.162, 160.858}, {7386607.048, 6208217.499, 230.36}, {7450000.0, 6100000.0, 0.0}};
    const std::vector<std::vector<double>> moscowGeo = {
        {55.7558, 37.6173, 150.0}, {56.5, 36.2, 0.0}, {54.9, 41.5, 300.0}};
    return {
        {"UTM on Pulkovo 1942 to geographic WGS 84: the throughput job. Bound: 1 mm the engine's Transverse "
         "Mercator series against the exact one (its own oracle test), 1 mm for PROJ's series and the printed "
         "decimals; the Molodensky steps agree to 1 um",
         "utm zone=37 north datum=\"Pulkovo 1942\"", "geographic datum=\"WGS 84\"",
         "+proj=pipeline +step +inv +proj=utm +zone=37 +ellps=krass" + Molodensky(kPulkovo, kWgs84), kProjected,
         kGeographic, moscowUtm, 2e-3},
        {"geographic WGS 84 to Gauss-Kruger zone 7 on Pulkovo 1942 (by index). Bound as above", "geographic datum=3",
         "gk zone=7 datum=4",
         "+proj=pipeline" + Molodensky(kWgs84, kPulkovo) +
             " +step +proj=tmerc +lat_0=0 +lon_0=39 +k=1 +x_0=7500000 +y_0=0 +ellps=krass",
         kGeographic, kProjected, moscowGeo, 2e-3},
        {"Gauss-Kruger zone 7 on Pulkovo 1942 to UTM zone 37 on WGS 84: the demo. Bound: two series of 1 mm "
         "each, 1 mm for PROJ and the print",
         "gk zone=7 datum=\"Pulkovo 1942\"", "utm zone=37 datum=\"WGS 84\"",
         "+proj=pipeline +step +inv +proj=tmerc +lat_0=0 +lon_0=39 +k=1 +x_0=7500000 +y_0=0 +ellps=krass" +
             Molodensky(kPulkovo, kWgs84) + " +step +proj=utm +zone=37 +ellps=WGS84",
         kProjected, kProjected, moscowGk, 3e-3},
        {"Gauss-Kruger zone 7 to zone 8 on one datum: the library passes same-kind values through, the tool "
         "must reproject. Points near 42 E, within 3.2 degrees of both meridians. Bound as for two series",
         "gk zone=7 datum=4",
         "gk zone=8 datum=4",
         "+proj=pipeline +step +inv +proj=tmerc +lon_0=39 +k=1 +x_0=7500000 +ellps=krass"
         " +step +proj=tmerc +lon_0=45 +k=1 +x_0=8500000 +ellps=krass",
         kProjected,
         kProjected,
         {{7688000.0, 6200000.0, 100.0}, {7690000.0, 5600000.0, 0.0}},
         3e-3},
        {"UTM zone 37 to zone 38 on one datum, the same way. Bound as for two series",
         "utm zone=37 datum=3",
         "utm zone=38 datum=3",
         "+proj=pipeline +step +inv +proj=utm +zone=37 +ellps=WGS84 +step +proj=utm +zone=38 +ellps=WGS84",
         kProjected,
         kProjected,
         {{690000.0, 6200000.0, 10.0}, {700000.0, 5000000.0, 0.0}},
         3e-3},
        {"Transverse Mercator with a scale on WGS 84 to geographic, no datum shift. Bound: one series and PROJ",
         "tm k=0.9996 lon0=39 fe=500000 datum=3",
         "geographic",
         "+proj=pipeline +step +inv +proj=tmerc +lon_0=39 +k=0.9996 +x_0=500000 +ellps=WGS84",
         kProjected,
         kGeographic,
         {{413380.72, 6179118.15, 5.0}, {600000.0, 5500000.0, 0.0}},
         2e-3},
        {"geographic ED50 to Mercator on WGS 84. Bound 10 um: the Mercator forward agrees with PROJ to 1 um, "
         "the shift to 1 um, six printed decimals round by 0.5 um",
         "geographic datum=\"European 1950 (mean)\"",
         "mercator lon0=10 lat_ts=0 datum=3",
         "+proj=pipeline" + Molodensky(kEd50, kWgs84) + " +step +proj=merc +lon_0=10 +ellps=WGS84",
         kGeographic,
         kProjected,
         {{48.85, 2.35, 35.0}, {59.33, 18.07, 0.0}, {40.4, -3.7, 650.0}},
         1e-5},
        {"geographic WGS 84 to south polar stereographic, true scale at 71 S, false origin 2000 km as UPS has "
         "it, so that the library's negative hemisphere mark on the northing keeps its value. Bound 10 um as above",
         "geographic",
         "ps lat_ts=-71 lon0=0 fe=2000000 fn=2000000",
         "+proj=pipeline +step +proj=stere +lat_0=-90 +lat_ts=-71 +lon_0=0 +x_0=2000000 +y_0=2000000 +ellps=WGS84",
         kGeographic,
         kProjected,
         {{-77.85, 166.67, 10.0}, {-66.28, 110.53, 0.0}, {-89.0, -45.0, 2800.0}},
         1e-5,
         true},
        {"geographic Pulkovo 1942 with heights to geocentric WGS 84: X Y Z. Bound 10 um: the geocentric "
         "formula agrees with PROJ to 0.1 um, the shift to 1 um",
         "geographic datum=4", "cartesian datum=3",
         "+proj=pipeline" + Molodensky(kPulkovo, kWgs84) + " +step +proj=cart +ellps=WGS84", kGeographic, kCartesian,
         moscowGeo, 1e-5},
    };
}

std::string InputText(const std::vector<std::vector<double>>& points) {
    std::ostringstream s;
    s.precision(17);
    for (const auto& p : points) s << p[0] << ' ' << p[1] << ' ' << p[2] << '\n';
    return s.str();
}

class ConvertOracle : public ::testing::Test {
protected:
    mwtest::IsolatedEnv m_env;
};

TEST_F(ConvertOracle, EveryKindAgreesWithProj) {
    for (const Case& c : Cases()) {
        SCOPED_TRACE(c.why);
        const clitest::Result r = Tool({"convert", "--from", c.from, "--to", c.to, "-p", "6"}, InputText(c.points));
        ASSERT_EQ(0, r.status) << r.err;
        EXPECT_EQ("", r.err);
        const std::vector<std::string> lines = Lines(r.out);
        ASSERT_EQ(c.points.size(), lines.size()) << r.out;

        // cct takes and gives longitude before latitude.
        std::vector<std::vector<double>> oraclePoints;
        for (const auto& p : c.points)
            oraclePoints.push_back(c.source == kGeographic ? std::vector<double>{p[1], p[0], p[2]} : p);
        const auto expected = Cct(c.pipeline, oraclePoints);
        ASSERT_EQ(c.points.size(), expected.size());

        double worst = 0;
        for (size_t i = 0; i < lines.size(); ++i) {
            const std::vector<double> got = Numbers(lines[i]);
            ASSERT_EQ(3u, got.size()) << lines[i];
            std::vector<double> e = expected[i];
            double horizontal = 0, vertical = std::fabs(got[2] - e[2]);
            if (c.dest == kGeographic)
                horizontal = GroundDistance(got[0], got[1], e[1], e[0]);
            else if (c.dest == kProjected)
                horizontal = std::hypot(got[0] - e[0], got[1] - e[1]);
            else
                horizontal = std::hypot(got[0] - e[0], got[1] - e[1]);
            EXPECT_LE(horizontal, c.bound) << "line " << i + 1 << ": " << lines[i];
            EXPECT_LE(vertical, c.bound) << "line " << i + 1 << ": " << lines[i];
            worst = std::max({worst, horizontal, vertical});
        }
        std::printf("%-40.40s largest difference %.6f m (bound %.6f m)\n", c.why, worst, c.bound);
    }
}

TEST_F(ConvertOracle, UtmWithoutAZoneTakesEachPointsZoneAndReadsItBack) {
    // Moscow is in 37 north, Cape Town in 34 south, Quito just south of the
    // equator in 17 south. The zone leads the line, as GeoConvert writes it.
    const std::string input = "55.7558 37.6173\n-33.9249 18.4241\n-0.2 -78.5\n";
    const clitest::Result r = Tool({"convert", "--from", "geographic", "--to", "utm", "-p", "6"}, input);
    ASSERT_EQ(0, r.status) << r.err;
    const std::vector<std::string> lines = Lines(r.out);
    ASSERT_EQ(3u, lines.size());
    const struct {
        const char* zone;
        const char* proj;
        double lon, lat;
    } kExpected[] = {{"37n", "+zone=37", 37.6173, 55.7558},
                     {"34s", "+zone=34 +south", 18.4241, -33.9249},
                     {"17s", "+zone=17 +south", -78.5, -0.2}};
    for (size_t i = 0; i < 3; ++i) {
        SCOPED_TRACE(lines[i]);
        ASSERT_EQ(0u, lines[i].rfind(std::string(kExpected[i].zone) + " ", 0));
        const auto got = Numbers(lines[i].substr(4));
        ASSERT_EQ(2u, got.size());
        const auto e = Cct(std::string("+proj=utm +ellps=WGS84 ") + kExpected[i].proj,
                           {{kExpected[i].lon, kExpected[i].lat, 0.0}});
        // Bound: the series' 1 mm, PROJ's and the print's 1 mm.
        EXPECT_LE(std::hypot(got[0] - e[0][0], got[1] - e[0][1]), 2e-3);
    }

    // The zone in front is what a UTM source without a zone reads. Bound:
    // the forward and inverse series, 1 mm each (the engine's round trip).
    const clitest::Result back = Tool({"convert", "--from", "utm", "--to", "geographic", "-p", "6"}, r.out);
    ASSERT_EQ(0, back.status) << back.err;
    const std::vector<std::string> again = Lines(back.out);
    ASSERT_EQ(3u, again.size());
    const double original[3][2] = {{55.7558, 37.6173}, {-33.9249, 18.4241}, {-0.2, -78.5}};
    for (size_t i = 0; i < 3; ++i) {
        const auto got = Numbers(again[i]);
        ASSERT_EQ(2u, got.size());
        EXPECT_LE(GroundDistance(got[0], got[1], original[i][0], original[i][1]), 2e-3) << again[i];
    }
}

TEST_F(ConvertOracle, SystemsFromTheRegistryConvertAsTheirText) {
    // The same conversion with the systems inline, saved one by one, and
    // saved as a pair: each checked against PROJ (bound as the first case).
    ASSERT_EQ(0, Tool({"system", "save", "Software/MapwrightTest/gk7", "gk zone=7 datum=\"Pulkovo 1942\""}).status);
    ASSERT_EQ(0, Tool({"system", "save", "Software\\MapwrightTest\\utm37", "utm zone=37 datum=3"}).status);
    ASSERT_EQ(0, Tool({"pair", "save", "Software/MapwrightTest/job", "--from", "gk zone=7 datum=4", "--to",
                       "utm zone=37 datum=3"})
                     .status);
    const std::vector<std::vector<std::string>> ways = {
        {"--from", "gk zone=7 datum=4", "--to", "utm zone=37 datum=3"},
        {"--from-key", "Software/MapwrightTest/gk7", "--to-key", "Software/MapwrightTest/utm37"},
        {"--from-key", "Software/MapwrightTest/gk7", "--to", "utm zone=37 datum=3"},
        {"--pair", "Software/MapwrightTest/job"},
    };
    const std::vector<std::vector<double>> points = {{7413312.21, 6181926.162, 160.858}};
    const auto e = Cct("+proj=pipeline +step +inv +proj=tmerc +lon_0=39 +k=1 +x_0=7500000 +ellps=krass" +
                           Molodensky(kPulkovo, kWgs84) + " +step +proj=utm +zone=37 +ellps=WGS84",
                       points);
    for (const auto& way : ways) {
        std::vector<std::string> args = {"convert", "-p", "6"};
        args.insert(args.end(), way.begin(), way.end());
        SCOPED_TRACE(way[1]);
        const clitest::Result r = Tool(args, InputText(points));
        ASSERT_EQ(0, r.status) << r.err;
        const auto got = Numbers(Lines(r.out).at(0));
        ASSERT_EQ(3u, got.size());
        EXPECT_LE(std::hypot(got[0] - e[0][0], got[1] - e[0][1]), 3e-3);
        EXPECT_LE(std::fabs(got[2] - e[0][2]), 3e-3);
    }
}

}  // namespace
