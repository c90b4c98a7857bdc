// The whole pipeline against PROJ: Geographic Pulkovo 1942 and ED50 to and
// from Geographic WGS 84 through CGeoTransform, compared with PROJ's standard
// (not abridged) Molodensky operation for the same parameters. The pivot leg
// on WGS 84 itself is an exact identity, so the pipeline must reproduce the
// single Molodensky step: the bound is the 1 µm the two implementations'
// rounding leaves, up to 88 degrees where the method applies.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>

#include <mapwright/GeoTransform.h>

#include "core_oracle.h"
#include "testenv.h"

namespace {

using oracle::kDeg;

struct Datum {
    int index;  // in the shipped catalog
    const char* name;
    double a, rf;
    int dx, dy, dz;
};
const Datum kDatums[] = {
    {4, "Pulkovo 1942", 6378245.0, 298.3, 28, -130, -95},
    {5, "European 1950 (mean)", 6378388.0, 297.0, -87, -98, -121},
};
constexpr double kA84 = 6378137.0, kRf84 = 298.257223563;

std::string Molodensky(double a, double rf, int dx, int dy, int dz, double aTo, double rfTo) {
    char def[400];
    std::snprintf(def, sizeof def, "+proj=molodensky +a=%.17g +rf=%.17g +dx=%d +dy=%d +dz=%d +da=%.17g +df=%.17g", a, rf,
                  dx, dy, dz, aTo - a, 1.0 / rfTo - 1.0 / rf);
    return def;
}

class PipelineOracle : public ::testing::Test {
protected:
    mwtest::IsolatedEnv m_env;
};

TEST_F(PipelineOracle, GeographicThroughWgs84MatchesMolodensky) {
    for (const Datum& d : kDatums) {
        SCOPED_TRACE(d.name);
        // PROJ's dx is the from-datum's minus the to-datum's; WGS 84's are 0.
        const oracle::Proj toWgs(Molodensky(d.a, d.rf, d.dx, d.dy, d.dz, kA84, kRf84));
        const oracle::Proj fromWgs(Molodensky(kA84, kRf84, -d.dx, -d.dy, -d.dz, d.a, d.rf));
        ASSERT_TRUE(toWgs.ok() && fromWgs.ok());

        CGeoTransform there, back;
        ASSERT_EQ(1, there.SetGeoParam(Geographic, Geographic, d.index, 3));
        ASSERT_EQ(1, back.SetGeoParam(Geographic, Geographic, 3, d.index));
        ASSERT_STREQ(d.name, there.GetReferenceDataSource()->szDatumName);

        double worstH = 0, worstV = 0;
        for (double lat = -88.0; lat <= 88.0; lat += 2.75) {
            for (double lon = -180.0; lon < 180.0; lon += 7.5) {
                for (double h : {0.0, 1500.0, -300.0}) {
                    for (int way = 0; way < 2; ++way) {
                        CGeoTransform& t = way == 0 ? there : back;
                        const oracle::Proj& p = way == 0 ? toWgs : fromWgs;
                        GeoCoordTag in{lat, lon, h, 0};
                        t.SetGeoCoord(&in);
                        ASSERT_EQ(1, t.GeoConvert());
                        const GeoCoordTag out = *static_cast<GeoCoordTag*>(t.GetGeoCoordDest()->GetCoord());
                        const PJ_COORD r = p.fwd(lon * kDeg, lat * kDeg, h);
                        const double dH = oracle::ground(kA84, lat, out.north - r.lpz.phi / kDeg,
                                                         out.east - r.lpz.lam / kDeg);
                        const double dV = std::fabs(out.height - r.lpz.z);
                        worstH = std::max(worstH, dH);
                        worstV = std::max(worstV, dV);
                        ASSERT_LE(dH, 1e-6) << "lat " << lat << " lon " << lon << " h " << h << " way " << way;
                        ASSERT_LE(dV, 1e-6) << "lat " << lat << " lon " << lon << " h " << h << " way " << way;
                    }
                }
            }
        }
        std::printf("%s <-> WGS 84 against PROJ molodensky: worst %.3g m horizontal, %.3g m height\n", d.name, worstH,
                    worstV);
        there.FreeGeoParam();
        back.FreeGeoParam();
    }
}

}  // namespace
