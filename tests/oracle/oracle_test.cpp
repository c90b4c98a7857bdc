// The numerical core against GeographicLib and PROJ.
#include <GeographicLib/TransverseMercatorExact.hpp>
#include <proj.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "datum_shift.h"
#include "mercator.h"
#include "polar_stereo.h"
#include "tm.h"

namespace {

constexpr double kDeg = kDegToRad;
struct Fig { const char* ellps; double a, rf; };
constexpr Fig kW{"WGS84", 6378137, 298.257223563}, kK{"krass", 6378245, 298.3}, kFigs[] = {kW, kK};
std::string N(double v) {
    char b[32];
    std::snprintf(b, sizeof b, "%.17g", v);
    return b;
}
// One PROJ operation; angles in radians.
struct Proj {
    PJ* p;
    explicit Proj(const std::string& def) : p(proj_create(nullptr, def.c_str())) { EXPECT_TRUE(p) << def; }
    ~Proj() { proj_destroy(p); }
    PJ_COORD operator()(double a, double b, double c = 0, PJ_DIRECTION d = PJ_FWD) const { return proj_trans(p, d, proj_coord(a, b, c, 0)); }
};
double ground(double a, double lat, double dLat, double dLon, double dH = 0) {
    return std::hypot(dLat * kDeg * a, std::remainder(dLon, 360.0) * kDeg * a * std::cos(lat * kDeg), dH);
}

// Worst forward error against the exact projection, worst round trip, metres.
std::pair<double, double> TmErrors(const Fig& f, bool utm, double lat0, double cm, double k0, int fe, int fn, const std::vector<double>& dls, double step) {
    ProjState* s = utm ? utm_create(f.a, f.rf) : tm_create(f.a, f.rf, lat0, cm, k0);
    const GeographicLib::TransverseMercatorExact exact(f.a, 1 / f.rf, k0);
    double x, y, y0, wf = 0, wr = 0;
    exact.Forward(0, lat0, 0, x, y0);
    for (double lat = -89.95; lat <= 89.95 + 1e-9; lat += step) {
        for (double dl : dls) {
            double e, n, la, lo;
            long zone = 31;
            if (utm) {  // a southern northing goes back negated
                utm_geo_to_pr(s, lat, cm + dl, &zone, &e, &n);
                utm_pr_to_geo(s, 31, e, lat < 0 ? -n : n, &la, &lo);
                if (lat < 0) n -= 1e7;
            } else {
                tm_geo_to_pr(s, lat, cm + dl, &e, &n, fe, fn);
                tm_pr_to_geo(s, e, n, &la, &lo, fe, fn);
            }
            exact.Forward(cm, lat, cm + dl, x, y);
            wf = std::max(wf, std::hypot(e - x - fe, n - (y - y0 + fn)));
            wr = std::max(wr, ground(f.a, lat, la - lat, lo - cm - dl));
        }
    }
    projection_state_free(s);
    return {wf, wr};
}

TEST(Oracle, TransverseMercator) {
    // Within 4 degrees: the arc's e^8 truncation (0.96 mm) and the footpoint's;
    // an origin latitude adds k0 m(lat0)'s own: 2 mm forward.
    std::vector<double> near, far;
    for (double dl = -4; dl <= 4 + 1e-9; dl += 0.2) near.push_back(dl);
    for (const Fig& f : kFigs) {
        for (auto [utm, lat0, cm, k0, fe, fn] : {std::tuple{true, 0.0, 3.0, 0.9996, 500000, 0}, {false, 0.0, 39.0, 1.0, 500000, 0},
                  {false, 49.0, -2.0, 0.9996012717, 400000, -100000}}) {
            auto [wf, wr] = TmErrors(f, utm, lat0, cm, k0, fe, fn, near, 0.2);
            EXPECT_LT(wf, lat0 ? 2e-3 : 1e-3) << f.ellps << " " << cm << " " << lat0;
            EXPECT_LT(wr, 1e-3) << f.ellps << " " << cm << " " << lat0;
        }
        // Beyond, the error grows as the ninth power: guards 10 % above measured.
        for (auto [dl, bf, br] : {std::tuple{6.0, 1e-3, 1e-3}, {10.0, 0.020, 0.042}, {20.0, 4.3, 26.6}, {30.0, 127.0, 1486.0}}) {
            auto [wf, wr] = TmErrors(f, true, 0, 3, 0.9996, 500000, 0, {-dl, dl}, 0.05);
            EXPECT_TRUE(wf < bf && wr < br) << f.ellps << " " << dl << ": " << wf << " " << wr;
        }
    }
}

TEST(Oracle, MercatorAndPolarStereographic) {
    // Forward: rounding (1 um, 0.1 um). Inverse: the conformal series to e^8,
    // 1.5e-12 rad (10 um); PROJ iterates. Southern northings carry the mark.
    for (const Fig& f : kFigs) {
        for (auto [cm, ts, fe, fn] : {std::tuple{0, 0, 0, 0}, {20, 30, 1000, 2000}, {-150, -60, 500000, -10000}}) {
            ProjState* s = merc_create(f.a, f.rf, cm, ts);
            const Proj pj("+proj=merc +ellps=" + std::string(f.ellps) + " +lon_0=" + N(cm) + " +lat_ts=" + N(ts) + " +x_0=" + N(fe) + " +y_0=" + N(fn));
            for (double lat = -89; lat <= 89 + 1e-9; lat += 0.1) {
                for (double lon = -180; lon < 180; lon += 5) {
                    double e, n, la, lo;
                    const PJ_COORD o = pj(lon * kDeg, lat * kDeg), g = pj(o.xy.x, o.xy.y, 0, PJ_INV);
                    ASSERT_EQ(merc_geo_to_pr(s, lat, lon, &e, &n, fe, fn), 0);
                    merc_pr_to_geo(s, o.xy.x, o.xy.y, &la, &lo, fe, fn);
                    ASSERT_TRUE(std::hypot(e - o.xy.x, n - o.xy.y) < 1e-6 && ground(f.a, lat, la - g.lp.phi / kDeg, lo - g.lp.lam / kDeg) < 20e-6) << ts << " " << lat << "," << lon;
                }
            }
            merc_free(s);
        }
        for (auto [ts, cm] : {std::pair{81.1145, 0.0}, {90.0, -45.0}, {-81.1145, 0.0}, {-90.0, 100.0}}) {
            const double sg = ts < 0 ? -1 : 1, edge = ts < 0 ? 79.5 : 83.5;
            ProjState* s = ps_create(f.a, f.rf, ts, cm, ts);
            const Proj pj("+proj=stere +ellps=" + std::string(f.ellps) + " +lat_0=" + N(sg * 90) + " +lat_ts=" + N(ts) + " +lon_0=" + N(cm) + " +x_0=2000000 +y_0=2000000");
            for (double lat = ts < 0 ? -90 : 83.5; lat <= (ts < 0 ? -79.5 : 90) + 1e-9; lat += 0.05) {
                for (double lon = -180; lon < 180; lon += 2.5) {
                    double e, n, la, lo;
                    const PJ_COORD o = pj(lon * kDeg, lat * kDeg), g = pj(o.xy.x, o.xy.y, 0, PJ_INV);
                    ASSERT_EQ(ps_geo_to_pr(s, lat, lon, &e, &n, 2000000, 2000000), 0) << lat;
                    const int st = ps_pr_to_geo(s, o.xy.x, sg * o.xy.y, &la, &lo, 2000000, 2000000);
                    ASSERT_TRUE(st == 0 || (st == 2 && std::fabs(std::fabs(lat) - edge) < 1e-9)) << lat;
                    ASSERT_TRUE(std::hypot(e - o.xy.x, sg * n - o.xy.y) < 1e-7 && ground(f.a, lat, la - g.lp.phi / kDeg, lo - g.lp.lam / kDeg) < 1e-6) << ts << " " << lat << "," << lon;
                }
            }
            projection_state_free(s);
        }
    }
}

// PROJ's standard Molodensky; above 89 degrees a geocentric translation.
std::string Molodensky(const Fig& f, const Fig& t, int dx, int dy, int dz) {
    return "+proj=molodensky +a=" + N(f.a) + " +rf=" + N(f.rf) + " +dx=" + N(dx) + " +dy=" + N(dy) + " +dz=" + N(dz) + " +da=" + N(t.a - f.a) + " +df=" + N(1 / t.rf - 1 / f.rf);
}

TEST(Oracle, DatumShift) {
    // Rounding only on both sides, same parameters: 0.1 um.
    static const short z[3] = {0, 0, 0}, pul[3] = {28, -130, -95};
    const struct { Fig f, t; const short *sf, *st; } legs[] = {{kK, kW, pul, z}, {kW, kK, z, pul}};
    std::vector<double> lats;
    for (double lat = -88; lat <= 88 + 1e-9; lat += 0.5) lats.push_back(lat);
    for (double a = 89.01; a <= 90 + 1e-9; a += 0.07) lats.insert(lats.end(), {std::min(a, 90 - 1e-6), -std::min(a, 90 - 1e-6)});
    for (auto& l : legs) {
        DatumShiftState* s = datum_shift_create(l.f.a, l.f.rf, l.sf, l.t.a, l.t.rf, l.st);
        const int dx = l.sf[0] - l.st[0], dy = l.sf[1] - l.st[1], dz = l.sf[2] - l.st[2];
        const Proj mol(Molodensky(l.f, l.t, dx, dy, dz)), tr("+proj=pipeline +step +proj=cart +a=" + N(l.f.a) + " +rf=" + N(l.f.rf) + " +step +proj=helmert +x=" + N(dx) +
                                                            " +y=" + N(dy) + " +z=" + N(dz) + " +step +inv +proj=cart +a=" + N(l.t.a) + " +rf=" + N(l.t.rf));
        for (double h : {-4000.0, 0.0, 2000.0}) {
            for (double lat : lats) {
                for (double lon = -180; lon < 180; lon += 10) {
                    double la, lo, hh;
                    ASSERT_EQ(datum_shift_apply(lat, lon, h, &la, &lo, &hh, s), 0);
                    const PJ_COORD o = (std::fabs(lat) > 89 ? tr : mol)(lon * kDeg, lat * kDeg, h);
                    ASSERT_LT(ground(l.t.a, o.lpz.phi / kDeg, la - o.lpz.phi / kDeg, lo - o.lpz.lam / kDeg, hh - o.lpz.z), 1e-7) << l.f.ellps << " " << lat << "," << lon << "," << h;
                }
            }
        }
        datum_shift_free(s);
    }
}

}  // namespace
