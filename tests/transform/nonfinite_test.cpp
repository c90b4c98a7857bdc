// Every function of the core fed NaN, infinities, huge, tiny and
// out-of-range values in every argument, and states made from such values.
// Under the sanitizers this shows there is no undefined behaviour; here it
// checks that results are non-finite or the documented refusal, never a
// plausible number made up from nothing.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "cartesian.h"
#include "polar_stereo.h"
#include "reference.h"

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity(), kUnwritten = -12345.678;
const double kBad[] = {NAN, kInf, -kInf, 1e300, -1e300, 1e20, 1e-310, -0.0, 91.0, -181.0, 400.0};
const std::vector<int> kForward{0, 17, -2}, kInverse{0, 17, -17}, kPsInverse{0, 17, -17, 2}, kZero{0};

bool Allowed(const std::vector<int>& statuses, int st) {
    for (int s : statuses) if (s == st) return true;
    return false;
}

// One function: its good arguments, its statuses, per output the bit mask of
// the arguments it depends on, and the (argument, value) pairs documented to
// give finite results though infinite.
struct Subject {
    std::string name;
    std::vector<double> args;
    std::vector<int> statuses;
    std::vector<unsigned> deps;
    bool refusalWritesNothing, projection;
    std::function<int(const double*, double*)> call;
    std::vector<std::pair<int, double>> finiteInf = {};
};

void Sweep(const Subject& f) {
    const size_t outs = f.deps.size();
    for (size_t i = 0; i < f.args.size(); ++i) {
        for (double v : kBad) {
            std::vector<double> args = f.args, out(outs, kUnwritten);
            args[i] = v;
            const int st = f.call(args.data(), out.data());
            SCOPED_TRACE(f.name + " arg " + std::to_string(i) + " = " + std::to_string(v) + ": " + std::to_string(st));
            EXPECT_TRUE(Allowed(f.statuses, st));
            size_t written = 0;
            for (double o : out) written += o != kUnwritten;
            if (st == -2 && (f.refusalWritesNothing || written == 0)) {
                EXPECT_EQ(written, 0u);
                continue;
            }
            EXPECT_EQ(written, outs);
            bool anyNonFinite = false;
            for (size_t j = 0; j < outs; ++j) {
                if (std::isnan(v) && (f.deps[j] >> i & 1)) { EXPECT_TRUE(std::isnan(out[j])) << "output " << j; }
                anyNonFinite |= !std::isfinite(out[j]);
                if (f.projection && st >= 0) { EXPECT_TRUE(std::isfinite(out[j])) << "output " << j; }
            }
            bool finite = false;
            for (const auto& [k, x] : f.finiteInf) finite |= k == static_cast<int>(i) && x == v;
            if (std::isinf(v) && !finite) { EXPECT_TRUE(anyNonFinite); }
        }
    }
}

class NonFinite : public ::testing::Test {
protected:
    PlainState tm{tm_create(ref::kWgs84A, ref::kWgs84Rf, 10.0, 170.0, 0.9996)};
    PlainState utm{utm_create(ref::kWgs84A, ref::kWgs84Rf)};
    MercState merc{merc_create(ref::kWgs84A, ref::kWgs84Rf, 20.0, 30.0)};
    PlainState psN{ps_create(ref::kWgs84A, ref::kWgs84Rf, 81.1145, 0.0, 81.1145)};
    PlainState psS{ps_create(ref::kWgs84A, ref::kWgs84Rf, -90.0, 45.0, -90.0)};
    PlainState cart{decart_create(ref::kWgs84A, ref::kWgs84Rf)};
};

TEST_F(NonFinite, EveryProjection) {
    ProjState *t = tm.get(), *u = utm.get(), *m = merc.get(), *c = cart.get();
    Sweep({"tm fwd", {45, 175}, kForward, {3, 3}, true, true,
           [t](const double* a, double* o) { return tm_geo_to_pr(t, a[0], a[1], &o[0], &o[1], 1000, 2000); }});
    Sweep({"tm inv", {1000, 2e6}, kInverse, {3, 3}, true, true,
           [t](const double* a, double* o) { return tm_pr_to_geo(t, a[0], a[1], &o[0], &o[1], 1000, 2000); }});
    Sweep({"utm fwd", {45, 3}, kForward, {3, 3}, true, true, [u](const double* a, double* o) {
               long zone = 0;
               const int st = utm_geo_to_pr(u, a[0], a[1], &zone, &o[0], &o[1]);
               EXPECT_TRUE(zone >= 1 && zone <= 60) << zone;
               return st;
           }});
    Sweep({"utm inv", {4e5, -5e6}, kInverse, {3, 3}, true, true,
           [u](const double* a, double* o) { return utm_pr_to_geo(u, 31, a[0], a[1], &o[0], &o[1]); }});
    Sweep({"merc fwd", {45, 25}, kForward, {2, 1}, true, true,
           [m](const double* a, double* o) { return merc_geo_to_pr(m, a[0], a[1], &o[0], &o[1], 1, 2); }});
    Sweep({"merc inv", {1000, 2e6}, kInverse, {2, 1}, true, true,
           [m](const double* a, double* o) { return merc_pr_to_geo(m, a[0], a[1], &o[0], &o[1], 1, 2); }});
    for (ProjState* p : {psN.get(), psS.get()}) {
        const double sign = p->lat0 < 0 ? -1 : 1;  // -2 may come with values (the UTM band)
        Sweep({"ps fwd", {85 * sign, 10}, kForward, {3, 3}, false, true,
               [p](const double* a, double* o) { return ps_geo_to_pr(p, a[0], a[1], &o[0], &o[1], 2000000, 2000000); }});
        Sweep({"ps inv", {2.3e6, 2.1e6 * sign}, kPsInverse, {3, 3}, false, true,
               [p](const double* a, double* o) { return ps_pr_to_geo(p, a[0], a[1], &o[0], &o[1], 2000000, 2000000); }});
    }
    Sweep({"decart fwd", {45, 45, 100}, kZero, {7, 7, 5}, false, false,
           [c](const double* a, double* o) { return decart_geo_to_pr(c, a[0], a[1], a[2], &o[0], &o[1], &o[2]); }});
    Sweep({"decart inv", {4e6, 3e6, 3.5e6}, kZero, {7, 7, 0}, false, false,
           [c](const double* a, double* o) { return decart_pr_to_geo(c, a[0], a[1], a[2], &o[0], &o[1], &o[2]); }});
}

TEST_F(NonFinite, DatumShiftEveryMethod) {
    const short plain[3] = {0, 0, 0}, pulkovo[3] = {28, -130, -95}, ed50[3] = {-87, -98, -121};
    const double a84 = ref::kWgs84A, rf84 = ref::kWgs84Rf, aK = ref::kKrassA, rfK = ref::kKrassRf;
    const struct {
        double aF, rfF;
        const short* fF;
        double aT, rfT;
        const short* fT;
        bool closed;  // WGS 72 differences: from the latitude alone
    } pairs[] = {{6378135, 298.26, plain, a84, rf84, plain, true}, {a84, rf84, plain, 6378135, 298.26, plain, true},
                 {6378145, 298.25, plain, a84, rf84, plain, false}, {a84, rf84, plain, 6378145, 298.25, plain, false},
                 {aK, rfK, pulkovo, a84, rf84, plain, false},      {a84, rf84, plain, aK, rfK, pulkovo, false},
                 {aK, rfK, pulkovo, 6378388, 297, ed50, false}};
    for (const auto& p : pairs) {
        ShiftState s(datum_shift_create(p.aF, p.rfF, p.fF, p.aT, p.rfT, p.fT));
        DatumShiftState* d = s.get();
        const std::string method = std::to_string(d->ShiftMethod);
        // -infinity is below -1e6 m: the unknown height, shifted as 0. An
        // infinite height makes Molodensky's angular differences vanish.
        for (double lat : {45.0, 89.5}) {
            Sweep({"apply " + method, {lat, 179.99, 100}, kZero,
                   p.closed ? std::vector<unsigned>{1, 2, 5} : std::vector<unsigned>{7, 7, 7}, false, false,
                   [d](const double* a, double* o) { return datum_shift_apply(a[0], a[1], a[2], &o[0], &o[1], &o[2], d); },
                   {{2, -kInf}}});
            std::vector<std::pair<int, double>> inf{{2, kInf}, {2, -kInf}};
            if (p.closed) inf.insert(inf.end(), {{1, kInf}, {1, -kInf}});
            Sweep({"delta " + method, {lat, -179.99, 100}, kZero,
                   p.closed ? std::vector<unsigned>{1, 0, 1} : std::vector<unsigned>{7, 7, 3}, false, false,
                   [d](const double* a, double* o) { return datum_shift_delta(a[0], a[1], a[2], &o[0], &o[1], &o[2], d); },
                   inf});
        }
    }
    Sweep({"geocentric_to_geodetic", {ref::kWgs84A, 0.0066943799901413165, 4e6, 0.0005, 4.5e6}, kZero, {31, 12, 31},
           false, false, [](const double* a, double* o) {
               geocentric_to_geodetic(a[0], a[1], a[2], a[3], a[4], &o[0], &o[1], &o[2]);
               return 0;
           }});
}

TEST_F(NonFinite, IntegerArgumentsAtTheirLimits) {
    for (int fe : {INT_MIN, INT_MAX, 0, -1}) {
        for (int fn : {INT_MIN, INT_MAX, 0, -1}) {
            double x = kUnwritten, y = kUnwritten;
            EXPECT_EQ(tm_geo_to_pr(tm.get(), 45.0, 175.0, &x, &y, fe, fn), 0);
            EXPECT_EQ(tm_pr_to_geo(tm.get(), x, y, &x, &y, fe, fn), 0) << "the offsets cancel";
            EXPECT_GE(merc_geo_to_pr(merc.get(), 45.0, 25.0, &x, &y, fe, fn), 0);
            EXPECT_GE(merc_pr_to_geo(merc.get(), 0.0, 0.0, &x, &y, fe, fn), -17);
            EXPECT_NE(ps_geo_to_pr(psN.get(), 85.0, 0.0, &x, &y, fe, fn), -1);
            EXPECT_NE(ps_pr_to_geo(psN.get(), 0.0, 0.0, &x, &y, fe, fn), -1);
        }
    }
    // Absurd zones: chosen afresh going forward; coming back 6 zone - 183 in double.
    for (long zone : {LONG_MIN, LONG_MAX, -1L, 0L, 61L, 1000000L}) {
        double x, y;
        EXPECT_EQ(utm_geo_to_pr(utm.get(), 45.0, 3.0, &zone, &x, &y), 0);
        EXPECT_EQ(zone, 31);
    }
    for (int zone : {INT_MIN, INT_MAX, 0, 61}) {
        double lat, lon;
        EXPECT_EQ(utm_pr_to_geo(utm.get(), zone, 500000.0, 5000000.0, &lat, &lon), 0);
        EXPECT_DOUBLE_EQ(lon, 6.0 * zone - 183.0);
    }
}

TEST(NonFiniteStates, CreatedFromBadParameters) {
    // Each of a, rf, latitude, central meridian, k0 replaced by a bad value;
    // the state then converts a sensible point. NaN must show (or refuse).
    const double good[] = {ref::kWgs84A, ref::kWgs84Rf, 30.0, 20.0, 0.9996};
    const short shift[3] = {28, -130, -95};
    for (int i = 0; i < 5; ++i) {
        for (double v : kBad) {
            double p[5];
            std::copy(std::begin(good), std::end(good), p);
            p[i] = v;
            SCOPED_TRACE("parameter " + std::to_string(i) + " = " + std::to_string(v));
            double x = kUnwritten, y = kUnwritten, z = kUnwritten;
            auto check = [&](const char* what, int st, const std::vector<int>& statuses) {
                EXPECT_TRUE(Allowed(statuses, st)) << what << " " << st;
                if (std::isnan(v) && st != -2) { EXPECT_TRUE(std::isnan(x) || std::isnan(y)) << what; }
                x = y = z = kUnwritten;
            };
            PlainState t(tm_create(p[0], p[1], p[2], p[3], p[4]));
            check("tm fwd", tm_geo_to_pr(t.get(), 35.0, 22.0, &x, &y, 0, 0), kForward);
            check("tm inv", tm_pr_to_geo(t.get(), 1000.0, 5000.0, &x, &y, 0, 0), kInverse);
            if (i == 4) continue;  // the others take no scale factor
            MercState m(merc_create(p[0], p[1], p[3], p[2]));
            check("merc fwd", merc_geo_to_pr(m.get(), 35.0, 22.0, &x, &y, 0, 0), kForward);
            check("merc inv", merc_pr_to_geo(m.get(), 1000.0, 5000.0, &x, &y, 0, 0), kInverse);
            PlainState ps(ps_create(p[0], p[1], 81.0, p[3], p[2] + 51.0));
            check("ps fwd", ps_geo_to_pr(ps.get(), 85.0, 22.0, &x, &y, 0, 0), kForward);
            check("ps inv", ps_pr_to_geo(ps.get(), 1000.0, 5000.0, &x, &y, 0, 0), kPsInverse);
            if (i >= 2) continue;  // the figure only
            PlainState c(decart_create(p[0], p[1]));
            check("decart fwd", decart_geo_to_pr(c.get(), 35.0, 22.0, 10.0, &x, &y, &z), kZero);
            check("decart inv", decart_pr_to_geo(c.get(), 4e6, 3e6, 3e6, &x, &y, &z), kZero);
            ShiftState d(datum_shift_create(p[0], p[1], shift, ref::kWgs84A, ref::kWgs84Rf, nullptr));
            check("shift from", datum_shift_apply(35.0, 22.0, 10.0, &x, &y, &z, d.get()), kZero);
            ShiftState d2(datum_shift_create(ref::kWgs84A, ref::kWgs84Rf, nullptr, p[0], p[1], shift));
            check("shift to", datum_shift_apply(35.0, 22.0, 10.0, &x, &y, &z, d2.get()), kZero);
        }
    }
    for (double v : kBad) {  // the polar stereographic origin and latitude of true scale
        double x = kUnwritten, y = kUnwritten;
        PlainState ps(ps_create(ref::kWgs84A, ref::kWgs84Rf, v, 0.0, v));
        const int st = ps_geo_to_pr(ps.get(), 85.0, 22.0, &x, &y, 0, 0);
        EXPECT_TRUE(st == 0 || st == -2 || st == 17) << v;
        if (std::isnan(v) || std::fabs(v) > 90.0) { EXPECT_TRUE(st == -2 || (std::isnan(x) && std::isnan(y))) << v; }
    }
}

}  // namespace
