// The pipeline against PROJ: Geographic Pulkovo 1942 and ED50 to and from
// WGS 84 through CGeoTransform, against PROJ's standard Molodensky for the
// same parameters. The pivot leg on WGS 84 is an exact identity, so the
// pipeline must reproduce the one step: 1 um of rounding, up to 88 degrees.
#include <proj.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include <mapwright/GeoTransform.h>

#include "testenv.h"

namespace {

constexpr double kDeg = 0.017453292519943295, kA84 = 6378137.0, kRf84 = 298.257223563;

TEST(PipelineOracle, GeographicThroughWgs84MatchesMolodensky) {
    mwtest::IsolatedEnv env;
    const struct {
        int index;  // in the shipped catalog
        const char* name;
        double a, rf;
        int dx, dy, dz;
    } datums[] = {{4, "Pulkovo 1942", 6378245.0, 298.3, 28, -130, -95},
                  {5, "European 1950 (mean)", 6378388.0, 297.0, -87, -98, -121}};
    PJ_CONTEXT* ctx = proj_context_create();
    for (const auto& d : datums) {
        SCOPED_TRACE(d.name);
        char def[2][400];  // PROJ's dx is the from-datum's less the to-datum's; WGS 84's are 0
        std::snprintf(def[0], sizeof def[0], "+proj=molodensky +a=%.17g +rf=%.17g +dx=%d +dy=%d +dz=%d +da=%.17g +df=%.17g",
                      d.a, d.rf, d.dx, d.dy, d.dz, kA84 - d.a, 1 / kRf84 - 1 / d.rf);
        std::snprintf(def[1], sizeof def[1], "+proj=molodensky +a=%.17g +rf=%.17g +dx=%d +dy=%d +dz=%d +da=%.17g +df=%.17g",
                      kA84, kRf84, -d.dx, -d.dy, -d.dz, d.a - kA84, 1 / d.rf - 1 / kRf84);
        PJ* pj[2] = {proj_create(ctx, def[0]), proj_create(ctx, def[1])};
        ASSERT_TRUE(pj[0] && pj[1]);
        CGeoTransform t[2];
        ASSERT_EQ(1, t[0].SetGeoParam(Geographic, Geographic, d.index, 3));
        ASSERT_EQ(1, t[1].SetGeoParam(Geographic, Geographic, 3, d.index));
        ASSERT_STREQ(d.name, t[0].GetReferenceDataSource()->szDatumName);
        double worst = 0;
        for (double lat = -88.0; lat <= 88.0; lat += 2.75) {
            for (double lon = -180.0; lon < 180.0; lon += 7.5) {
                for (double h : {0.0, 1500.0, -300.0}) {
                    for (int way = 0; way < 2; ++way) {
                        GeoCoordTag in{lat, lon, h, 0};
                        t[way].SetGeoCoord(&in);
                        ASSERT_EQ(1, t[way].GeoConvert());
                        const GeoCoordTag out = *static_cast<GeoCoordTag*>(t[way].GetGeoCoordDest()->GetCoord());
                        const PJ_COORD r = proj_trans(pj[way], PJ_FWD, proj_coord(lon * kDeg, lat * kDeg, h, 0));
                        const double dN = (out.north - r.lpz.phi / kDeg) * kDeg * kA84;
                        const double dE = std::remainder(out.east - r.lpz.lam / kDeg, 360.0) * kDeg * kA84 * std::cos(lat * kDeg);
                        const double err = std::max(std::hypot(dN, dE), std::fabs(out.height - r.lpz.z));
                        ASSERT_LE(err, 1e-6) << lat << "," << lon << "," << h << " way " << way;
                        worst = std::max(worst, err);
                    }
                }
            }
        }
        std::printf("%s <-> WGS 84 against PROJ: worst %.3g m\n", d.name, worst);
        for (int way = 0; way < 2; ++way) t[way].FreeGeoParam(), proj_destroy(pj[way]);
    }
    proj_context_destroy(ctx);
}

}  // namespace
