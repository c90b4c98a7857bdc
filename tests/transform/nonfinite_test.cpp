// Every function of the core fed NaN, infinities, huge, tiny and out-of-range
// values in every argument, and states made from such values. Run under the
// sanitizers this proves there is no undefined behaviour (float-to-integer
// conversion included); here it checks that results are non-finite or the
// documented refusal, never a plausible-looking number made up from nothing.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "cartesian.h"
#include "datum_shift.h"
#include "mercator.h"
#include "polar_stereo.h"
#include "reference.h"
#include "state_ptr.h"
#include "tm.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kUnwritten = -12345.678;
const double kBad[] = {kNaN, kInf, -kInf, 1e300, -1e300, 1e20, 1e-310, -0.0, 91.0, -181.0, 400.0};

// One function under test: its double arguments, what it may return and
// which output depends on which argument.
struct Subject {
    std::string name;
    std::vector<double> args;
    std::vector<int> statuses;
    int outputs;
    std::vector<unsigned> deps;  // per output: bit i set when it depends on argument i
    bool refusalWritesNothing;   // -2 leaves the outputs alone
    bool projection;             // a success status promises finite results
    std::function<int(const double*, double*)> call;
    // Arguments that may be +-infinity with finite results: (index, value).
    std::vector<std::pair<int, double>> documentedInf = {};
};

const std::vector<int> kForward{0, 17, -2};
const std::vector<int> kInverse{0, 17, -17};
const std::vector<int> kPsInverse{0, 17, -17, 2};
const std::vector<int> kAlwaysZero{0};

bool is_success(int st) { return st == 0 || st == 17 || st == 2; }

void sweep(const Subject& f) {
    for (size_t i = 0; i < f.args.size(); ++i) {
        for (double v : kBad) {
            std::vector<double> args = f.args;
            args[i] = v;
            std::vector<double> out(f.outputs, kUnwritten);
            const int st = f.call(args.data(), out.data());
            const std::string where = f.name + " arg " + std::to_string(i) + " = " + std::to_string(v);
            bool allowed = false;
            for (int s : f.statuses) allowed |= s == st;
            EXPECT_TRUE(allowed) << where << " returned " << st;

            int written = 0;
            for (double o : out) written += o != kUnwritten;
            if (st == -2 && (f.refusalWritesNothing || written == 0)) {
                EXPECT_EQ(written, 0) << where;
                continue;
            }
            EXPECT_EQ(written, f.outputs) << where;
            if (std::isnan(v)) {
                for (int j = 0; j < f.outputs; ++j) {
                    if (f.deps[j] & (1u << i)) {
                        EXPECT_TRUE(std::isnan(out[j])) << where << " output " << j;
                    }
                }
            }
            bool documented = false;
            for (const auto& [k, x] : f.documentedInf) documented |= (k == static_cast<int>(i) && x == v);
            if (std::isinf(v) && !documented) {
                bool anyNonFinite = false;
                for (double o : out) anyNonFinite |= !std::isfinite(o);
                EXPECT_TRUE(anyNonFinite) << where;
            }
            if (f.projection && is_success(st)) {
                for (double o : out) EXPECT_TRUE(std::isfinite(o)) << where << " status " << st;
            }
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

TEST_F(NonFinite, TransverseMercatorFamily) {
    ProjState* t = tm.get();
    ProjState* u = utm.get();
    sweep({"tm_geo_to_pr", {45.0, 175.0}, kForward, 2, {3, 3}, true, true,
           [t](const double* a, double* o) { return tm_geo_to_pr(t, a[0], a[1], &o[0], &o[1], 1000, 2000); }});
    sweep({"tm_pr_to_geo", {1000.0, 2000000.0}, kInverse, 2, {3, 3}, true, true,
           [t](const double* a, double* o) { return tm_pr_to_geo(t, a[0], a[1], &o[0], &o[1], 1000, 2000); }});
    sweep({"utm_geo_to_pr", {45.0, 3.0}, kForward, 2, {3, 3}, true, true, [u](const double* a, double* o) {
               long zone = 0;
               const int st = utm_geo_to_pr(u, a[0], a[1], &zone, &o[0], &o[1]);
               EXPECT_TRUE(zone >= 1 && zone <= 60) << zone;
               return st;
           }});
    sweep({"utm_pr_to_geo", {400000.0, -5000000.0}, kInverse, 2, {3, 3}, true, true,
           [u](const double* a, double* o) { return utm_pr_to_geo(u, 31, a[0], a[1], &o[0], &o[1]); }});
}

TEST_F(NonFinite, MercatorPolarStereographicCartesian) {
    ProjState* m = merc.get();
    sweep({"merc_geo_to_pr", {45.0, 25.0}, kForward, 2, {2, 1}, true, true,
           [m](const double* a, double* o) { return merc_geo_to_pr(m, a[0], a[1], &o[0], &o[1], 1, 2); }});
    sweep({"merc_pr_to_geo", {1000.0, 2000000.0}, kInverse, 2, {2, 1}, true, true,
           [m](const double* a, double* o) { return merc_pr_to_geo(m, a[0], a[1], &o[0], &o[1], 1, 2); }});
    for (ProjState* p : {psN.get(), psS.get()}) {
        const double lat = p->lat0 < 0 ? -85.0 : 85.0;
        // -2 may come with values (the UTM band), so no "nothing written" promise.
        sweep({"ps_geo_to_pr", {lat, 10.0}, kForward, 2, {3, 3}, false, true,
               [p](const double* a, double* o) { return ps_geo_to_pr(p, a[0], a[1], &o[0], &o[1], 2000000, 2000000); }});
        sweep({"ps_pr_to_geo", {2300000.0, p->lat0 < 0 ? -2100000.0 : 2100000.0}, kPsInverse, 2, {3, 3}, false, true,
               [p](const double* a, double* o) { return ps_pr_to_geo(p, a[0], a[1], &o[0], &o[1], 2000000, 2000000); }});
    }
    ProjState* c = cart.get();
    // No area test: every input is converted and the status is always 0.
    sweep({"decart_geo_to_pr", {45.0, 45.0, 100.0}, kAlwaysZero, 3, {7, 7, 5}, false, false,
           [c](const double* a, double* o) { return decart_geo_to_pr(c, a[0], a[1], a[2], &o[0], &o[1], &o[2]); }});
    sweep({"decart_pr_to_geo", {4000000.0, 3000000.0, 3500000.0}, kAlwaysZero, 3, {7, 7, 0}, false, false,
           [c](const double* a, double* o) { return decart_pr_to_geo(c, a[0], a[1], a[2], &o[0], &o[1], &o[2]); }});
}

TEST_F(NonFinite, DatumShiftEveryMethod) {
    const short plain[3] = {0, 0, 0}, pulkovo[3] = {28, -130, -95}, ed50[3] = {-87, -98, -121};
    struct Pair {
        double aF, rfF;
        const short* fF;
        double aT, rfT;
        const short* fT;
        unsigned latDeps, lonDeps, hDeps;  // which of (lat, lon, h) each result depends on
        bool closedForm;                   // differences from the latitude alone
    } pairs[] = {
        {6378135.0, 298.26, plain, ref::kWgs84A, ref::kWgs84Rf, plain, 1, 2, 5, true},
        {ref::kWgs84A, ref::kWgs84Rf, plain, 6378135.0, 298.26, plain, 1, 2, 5, true},
        {6378145.0, 298.25, plain, ref::kWgs84A, ref::kWgs84Rf, plain, 7, 7, 7, false},
        {ref::kWgs84A, ref::kWgs84Rf, plain, 6378145.0, 298.25, plain, 7, 7, 7, false},
        {ref::kKrassA, ref::kKrassRf, pulkovo, ref::kWgs84A, ref::kWgs84Rf, plain, 7, 7, 7, false},
        {ref::kWgs84A, ref::kWgs84Rf, plain, ref::kKrassA, ref::kKrassRf, pulkovo, 7, 7, 7, false},
        {ref::kKrassA, ref::kKrassRf, pulkovo, 6378388.0, 297.0, ed50, 7, 7, 7, false},
    };
    for (const Pair& p : pairs) {
        ShiftState s(datum_shift_create(p.aF, p.rfF, p.fF, p.aT, p.rfT, p.fT));
        DatumShiftState* d = s.get();
        const std::string method = std::to_string(d->ShiftMethod);
        // A height of -infinity is below -1 000 000 m: the unknown height, shifted as 0.
        // +infinity on Molodensky: the angular shifts vanish, the height stays infinite.
        for (double lat : {45.0, 89.5}) {
            sweep({"datum_shift_apply " + method, {lat, 179.99, 100.0}, kAlwaysZero, 3,
                   {p.latDeps, p.lonDeps, p.hDeps}, false, false,
                   [d](const double* a, double* o) {
                       return datum_shift_apply(a[0], a[1], a[2], &o[0], &o[1], &o[2], d);
                   },
                   {{2, -kInf}}});
            // The closed WGS 72 differences depend on the latitude alone.
            const std::vector<unsigned> deltaDeps =
                p.closedForm ? std::vector<unsigned>{1, 0, 1} : std::vector<unsigned>{7, 7, 3};
            // Molodensky's height difference does not involve the height, and
            // an infinite height makes the angular differences vanish.
            std::vector<std::pair<int, double>> deltaInf{{2, kInf}, {2, -kInf}};
            if (p.closedForm) deltaInf = {{1, kInf}, {1, -kInf}, {2, kInf}, {2, -kInf}};
            sweep({"datum_shift_delta " + method, {lat, -179.99, 100.0}, kAlwaysZero, 3, deltaDeps, false, false,
                   [d](const double* a, double* o) {
                       return datum_shift_delta(a[0], a[1], a[2], &o[0], &o[1], &o[2], d);
                   },
                   deltaInf});
        }
    }
    sweep({"geocentric_to_geodetic", {ref::kWgs84A, 0.0066943799901413165, 4e6, 0.0005, 4.5e6}, kAlwaysZero, 3,
           {31, 12, 31}, false, false, [](const double* a, double* o) {
               geocentric_to_geodetic(a[0], a[1], a[2], a[3], a[4], &o[0], &o[1], &o[2]);
               return 0;
           }});
}

TEST_F(NonFinite, IntegerArgumentsAtTheirLimits) {
    const int ints[] = {INT_MIN, INT_MAX, 0, -1};
    for (int fe : ints) {
        for (int fn : ints) {
            double x = kUnwritten, y = kUnwritten;
            EXPECT_EQ(tm_geo_to_pr(tm.get(), 45.0, 175.0, &x, &y, fe, fn), 0);
            EXPECT_EQ(tm_pr_to_geo(tm.get(), x, y, &x, &y, fe, fn), 0) << "the offsets cancel";
            EXPECT_GE(merc_geo_to_pr(merc.get(), 45.0, 25.0, &x, &y, fe, fn), 0);
            EXPECT_GE(merc_pr_to_geo(merc.get(), 0.0, 0.0, &x, &y, fe, fn), -17);
            EXPECT_NE(ps_geo_to_pr(psN.get(), 85.0, 0.0, &x, &y, fe, fn), -1);
            EXPECT_NE(ps_pr_to_geo(psN.get(), 0.0, 0.0, &x, &y, fe, fn), -1);
        }
    }
    // Absurd zones: chosen afresh from the longitude going forward; coming
    // back, 6 zone - 183 in double, a finite absurd longitude, no overflow.
    for (long zone : {LONG_MIN, LONG_MAX, -1L, 0L, 61L, 1000000L}) {
        long z = zone;
        double x, y;
        EXPECT_EQ(utm_geo_to_pr(utm.get(), 45.0, 3.0, &z, &x, &y), 0);
        EXPECT_EQ(z, 31);
    }
    for (int zone : {INT_MIN, INT_MAX, 0, 61}) {
        double lat, lon;
        EXPECT_EQ(utm_pr_to_geo(utm.get(), zone, 500000.0, 5000000.0, &lat, &lon), 0);
        EXPECT_DOUBLE_EQ(lon, 6.0 * zone - 183.0);
    }
}

TEST(NonFiniteStates, CreatedFromBadParameters) {
    // Each creation parameter replaced by a bad value; the state then converts
    // a sensible point. NaN parameters must show in the results (or refuse).
    // Parameters: a, rf, latitude (origin, or true scale), central meridian, k0.
    const double good[] = {ref::kWgs84A, ref::kWgs84Rf, 30.0, 20.0, 0.9996};
    for (int i = 0; i < 5; ++i) {
        for (double v : kBad) {
            double p[5];
            std::copy(std::begin(good), std::end(good), p);
            p[i] = v;
            const std::string where = "parameter " + std::to_string(i) + " = " + std::to_string(v);
            double x = kUnwritten, y = kUnwritten, z = kUnwritten;
            // Called after each conversion; starts the next one afresh.
            auto check = [&](const char* what, int st, const std::vector<int>& statuses) {
                bool allowed = false;
                for (int s : statuses) allowed |= s == st;
                EXPECT_TRUE(allowed) << what << " " << where << " returned " << st;
                if (std::isnan(v) && st != -2) {
                    EXPECT_TRUE(std::isnan(x) || std::isnan(y)) << what << " " << where;
                }
                x = y = z = kUnwritten;
            };
            PlainState t(tm_create(p[0], p[1], p[2], p[3], p[4]));
            ASSERT_NE(t, nullptr);
            check("tm forward", tm_geo_to_pr(t.get(), 35.0, 22.0, &x, &y, 0, 0), kForward);
            check("tm inverse", tm_pr_to_geo(t.get(), 1000.0, 5000.0, &x, &y, 0, 0), kInverse);
            if (i == 4) continue;  // the others take no scale factor
            MercState m(merc_create(p[0], p[1], p[3], p[2]));
            check("merc forward", merc_geo_to_pr(m.get(), 35.0, 22.0, &x, &y, 0, 0), kForward);
            check("merc inverse", merc_pr_to_geo(m.get(), 1000.0, 5000.0, &x, &y, 0, 0), kInverse);
            PlainState ps(ps_create(p[0], p[1], 81.0, p[3], p[2] + 51.0));
            check("ps forward", ps_geo_to_pr(ps.get(), 85.0, 22.0, &x, &y, 0, 0), kForward);
            check("ps inverse", ps_pr_to_geo(ps.get(), 1000.0, 5000.0, &x, &y, 0, 0), kPsInverse);
            if (i >= 2) continue;  // the figure only
            PlainState c(decart_create(p[0], p[1]));
            check("decart forward", decart_geo_to_pr(c.get(), 35.0, 22.0, 10.0, &x, &y, &z), kAlwaysZero);
            check("decart inverse", decart_pr_to_geo(c.get(), 4e6, 3e6, 3e6, &x, &y, &z), kAlwaysZero);
            const short shift[3] = {28, -130, -95};
            ShiftState d(datum_shift_create(p[0], p[1], shift, ref::kWgs84A, ref::kWgs84Rf, nullptr));
            check("datum shift from", datum_shift_apply(35.0, 22.0, 10.0, &x, &y, &z, d.get()), kAlwaysZero);
            ShiftState d2(datum_shift_create(ref::kWgs84A, ref::kWgs84Rf, nullptr, p[0], p[1], shift));
            check("datum shift to", datum_shift_apply(35.0, 22.0, 10.0, &x, &y, &z, d2.get()), kAlwaysZero);
        }
    }
    // The polar stereographic origin and latitude of true scale.
    for (double v : kBad) {
        double x = kUnwritten, y = kUnwritten;
        PlainState ps(ps_create(ref::kWgs84A, ref::kWgs84Rf, v, 0.0, v));
        const int st = ps_geo_to_pr(ps.get(), 85.0, 22.0, &x, &y, 0, 0);
        EXPECT_TRUE(st == 0 || st == -2 || st == 17) << v;
        if (std::isnan(v) || std::fabs(v) > 90.0) {
            EXPECT_TRUE(st == -2 || (std::isnan(x) && std::isnan(y))) << v << ": no such latitude of true scale";
        }
    }
}

}  // namespace
