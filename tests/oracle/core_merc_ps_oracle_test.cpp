// Mercator and polar stereographic against PROJ's merc and stere, on WGS 84
// and Krassovsky 1940.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <string>

#include "core_oracle.h"
#include "mercator.h"
#include "polar_stereo.h"

namespace {

using oracle::Figure;
using oracle::ground;
using oracle::kDeg;
using oracle::Proj;

TEST(OracleMercator, ForwardWithinAMicrometreInverseWithinTwentyMicrometres) {
    // Forward: the same closed formula as PROJ's (the isometric latitude), so
    // the two differ by rounding only; 1 um on coordinates up to 2e7 m.
    // Inverse: ours is the conformal-latitude series to e^8, whose e^10 terms
    // left out reach about 1.5e-12 rad (10 um); PROJ's inverse is iterated to
    // convergence. Bound 20 um on the ground.
    struct Case {
        double cm, latTs;
        int fe, fn;
    } cases[] = {{0.0, 0.0, 0, 0}, {20.0, 30.0, 1000, 2000}, {-150.0, -60.0, 500000, -10000}};
    for (const Figure& f : oracle::kFigures) {
        for (const Case& c : cases) {
            ProjState* s = merc_create(f.a, f.rf, c.cm, c.latTs);
            const Proj pj("+proj=merc +ellps=" + std::string(f.projEllps) + " +lon_0=" + std::to_string(c.cm) +
                          " +lat_ts=" + std::to_string(c.latTs) + " +x_0=" + std::to_string(c.fe) +
                          " +y_0=" + std::to_string(c.fn));
            ASSERT_TRUE(pj.ok());
            double worstFwd = 0, worstInv = 0;
            for (double lat = -89.0; lat <= 89.0 + 1e-9; lat += 0.1) {
                for (double lon = -180.0; lon < 180.0; lon += 5.0) {
                    double e, n, la, lo;
                    ASSERT_EQ(merc_geo_to_pr(s, lat, lon, &e, &n, c.fe, c.fn), 0);
                    const PJ_COORD o = pj.fwd(lon * kDeg, lat * kDeg);
                    const double fwd = std::hypot(e - o.xy.x, n - o.xy.y);
                    ASSERT_LT(fwd, 1e-6) << f.name << " " << c.cm << "/" << c.latTs << " at " << lat << "," << lon;
                    merc_pr_to_geo(s, o.xy.x, o.xy.y, &la, &lo, c.fe, c.fn);
                    const PJ_COORD g = pj.inv(o.xy.x, o.xy.y);
                    const double inv = ground(f.a, lat, la - g.lp.phi / kDeg, lo - g.lp.lam / kDeg);
                    ASSERT_LT(inv, 20e-6) << f.name << " " << c.cm << "/" << c.latTs << " at " << lat << "," << lon;
                    worstFwd = std::max(worstFwd, fwd);
                    worstInv = std::max(worstInv, inv);
                }
            }
            std::cout << "Mercator " << f.name << " lon_0 " << c.cm << " lat_ts " << c.latTs << ": forward max "
                      << oracle::fixed(worstFwd * 1e6, 4) << " um, inverse max " << oracle::fixed(worstInv * 1e6, 3)
                      << " um\n";
            merc_free(s);
        }
    }
}

TEST(OraclePolarStereo, BothPolesForwardWithinATenthOfAMicrometreInverseWithinOne) {
    // In the polar zones (north of 83.5, south of -79.5), false easting and
    // northing 2 000 000 m, true scale at +-81.1145 and at the pole.
    // Forward: the same closed formula as PROJ's; radii up to 1.2e6 m, bound
    // 0.1 um. Inverse: the conformal series to e^8, whose truncation near the
    // poles is a small fraction of its largest value (sin 2chi is small
    // there); PROJ iterates. Bound 1 um on the ground.
    struct Case {
        double latTs, cm;
    } cases[] = {{81.1145, 0.0}, {90.0, -45.0}, {-81.1145, 0.0}, {-90.0, 100.0}};
    const int fe = 2000000, fn = 2000000;
    for (const Figure& f : oracle::kFigures) {
        for (const Case& c : cases) {
            const bool south = c.latTs < 0;
            ProjState* s = ps_create(f.a, f.rf, c.latTs, c.cm, c.latTs);
            const Proj pj("+proj=stere +ellps=" + std::string(f.projEllps) + " +lat_0=" + (south ? "-90" : "90") +
                          " +lat_ts=" + std::to_string(c.latTs) + " +lon_0=" + std::to_string(c.cm) +
                          " +x_0=2000000 +y_0=2000000");
            ASSERT_TRUE(pj.ok());
            double worstFwd = 0, worstInv = 0;
            const double first = south ? -90.0 : 83.5, last = south ? -79.5 : 90.0;
            for (double lat = first; lat <= last + 1e-9; lat += 0.05) {
                for (double lon = -180.0; lon < 180.0; lon += 2.5) {
                    double e, n, la, lo;
                    ASSERT_EQ(ps_geo_to_pr(s, lat, lon, &e, &n, fe, fn), 0) << lat;
                    const PJ_COORD o = pj.fwd(lon * kDeg, lat * kDeg);
                    // Our southern northing carries the hemisphere mark (negative).
                    const double fwd = std::hypot(e - o.xy.x, (south ? -n : n) - o.xy.y);
                    ASSERT_LT(fwd, 1e-7) << f.name << " " << c.latTs << " at " << lat << "," << lon;
                    const int st = ps_pr_to_geo(s, o.xy.x, south ? -o.xy.y : o.xy.y, &la, &lo, fe, fn);
                    // On the band's edge itself the inverse may land a rounding inside the band.
                    const double edge = south ? -79.5 : 83.5;
                    if (std::fabs(lat - edge) < 1e-9) {
                        ASSERT_TRUE(st == 0 || st == 2) << lat;
                    } else {
                        ASSERT_EQ(st, 0) << lat;
                    }
                    const PJ_COORD g = pj.inv(o.xy.x, o.xy.y);
                    const double inv = ground(f.a, lat, la - g.lp.phi / kDeg, lo - g.lp.lam / kDeg);
                    ASSERT_LT(inv, 1e-6) << f.name << " " << c.latTs << " at " << lat << "," << lon;
                    worstFwd = std::max(worstFwd, fwd);
                    worstInv = std::max(worstInv, inv);
                }
            }
            std::cout << "Polar stereographic " << f.name << " lat_ts " << c.latTs << ": forward max "
                      << oracle::fixed(worstFwd * 1e6, 5) << " um, inverse max " << oracle::fixed(worstInv * 1e6, 4)
                      << " um\n";
            projection_state_free(s);
        }
    }
}

}  // namespace
