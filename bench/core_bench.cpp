// Nanoseconds per point of every forward and inverse of the numerical core
// and of the datum shift on each of its methods, and, in the same run on the
// same points, PROJ's proj_trans for the same operations (UTM and Transverse
// Mercator with PROJ's default algorithm and with +approx, Mercator, polar
// stereographic, geocentric, Molodensky). After the run a table puts them
// side by side.
#include <benchmark/benchmark.h>
#include <proj.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "cartesian.h"
#include "datum_shift.h"
#include "mercator.h"
#include "polar_stereo.h"
#include "tm.h"

namespace {

constexpr int kPoints = 1024;
constexpr double kA = 6378137.0, kRf = 298.257223563;      // WGS 84
constexpr double kKrassA = 6378245.0, kKrassRf = 298.3;   // Krassovsky 1940

// A set of points: geographic (degrees, and radians for PROJ) and the
// projected coordinates our forward gives for them (the inverse's input,
// for both sides).
struct Points {
    std::vector<double> lat, lon, h, latRad, lonRad, x, y, z;
};

Points make_points(double latLo, double latHi, double lonLo, double lonHi, unsigned seed) {
    std::mt19937_64 rng(seed);
    std::uniform_real_distribution<double> la(latLo, latHi), lo(lonLo, lonHi), hh(-100.0, 3000.0);
    Points p;
    for (int i = 0; i < kPoints; ++i) {
        p.lat.push_back(la(rng));
        p.lon.push_back(lo(rng));
        p.h.push_back(hh(rng));
        p.latRad.push_back(p.lat.back() * kDegToRad);
        p.lonRad.push_back(p.lon.back() * kDegToRad);
    }
    p.x.resize(kPoints);
    p.y.resize(kPoints);
    p.z.resize(kPoints);
    return p;
}

// PROJ side: one context and operation per PROJ string, kept for the run.
struct ProjOp {
    PJ_CONTEXT* ctx;
    PJ* pj;
    explicit ProjOp(const std::string& def) : ctx(proj_context_create()), pj(proj_create(ctx, def.c_str())) {
        if (pj == nullptr) std::fprintf(stderr, "PROJ refused: %s\n", def.c_str());
    }
    ~ProjOp() {
        proj_destroy(pj);
        proj_context_destroy(ctx);
    }
};

void run_proj(benchmark::State& state, const ProjOp& op, PJ_DIRECTION dir, const std::vector<double>& a,
              const std::vector<double>& b, const std::vector<double>* c) {
    double sink = 0;
    for (auto _ : state) {
        for (int i = 0; i < kPoints; ++i) {
            const PJ_COORD out = proj_trans(op.pj, dir, proj_coord(a[i], b[i], c ? (*c)[i] : 0.0, 0));
            sink += out.v[0] + out.v[1];
        }
        benchmark::DoNotOptimize(sink);
    }
}

// Every benchmark is registered with an operation and a side; the table
// finds them by these names.
struct Entry {
    std::string op, side;
};
std::vector<Entry> g_entries;

void add(const std::string& op, const std::string& side, std::function<void(benchmark::State&)> fn) {
    g_entries.push_back({op, side});
    benchmark::RegisterBenchmark((op + "/" + side).c_str(), fn)->Unit(benchmark::kNanosecond);
}

// Collects ns per point from the runs while the console shows them.
class TableReporter : public benchmark::ConsoleReporter {
public:
    // Colours only on a terminal, as the library's own console reporter does.
    TableReporter() : ConsoleReporter(::isatty(STDOUT_FILENO) ? OO_Defaults : OO_Tabular) {}
    std::map<std::string, double> nsPerPoint;
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& r : runs) {
            if (r.run_type != Run::RT_Iteration || r.error_occurred) continue;
            nsPerPoint[r.benchmark_name()] = r.GetAdjustedRealTime() / kPoints;
        }
    }
};

void print_table(const TableReporter& rep) {
    std::vector<std::string> ops;
    for (const Entry& e : g_entries) {
        if (ops.empty() || ops.back() != e.op) ops.push_back(e.op);
    }
    auto get = [&](const std::string& op, const char* side) {
        const auto it = rep.nsPerPoint.find(op + "/" + side);
        return it == rep.nsPerPoint.end() ? -1.0 : it->second;
    };
    std::printf("\nPer point (each iteration above converts %d points); ratio = ours / PROJ.\n", kPoints);
    std::printf("%-36s %12s %12s %8s %14s %8s\n", "operation", "ours ns/pt", "PROJ ns/pt", "ratio",
                "PROJ approx", "ratio");
    for (const std::string& op : ops) {
        const double ours = get(op, "ours"), proj = get(op, "PROJ"), approx = get(op, "PROJ approx");
        if (ours < 0) continue;  // filtered out of this run
        std::printf("%-36s %12.1f", op.c_str(), ours);
        if (proj > 0) std::printf(" %12.1f %8.2f", proj, ours / proj);
        else std::printf(" %12s %8s", "-", "-");
        if (approx > 0) std::printf(" %14.1f %8.2f", approx, ours / approx);
        std::printf("\n");
    }
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);

    // --- UTM zone 31 on WGS 84: points inside the zone, -80 to 84.
    static Points utmPts = make_points(-80.0, 84.0, 0.0, 6.0, 1);
    static std::unique_ptr<ProjState, void (*)(ProjState*)> utm(utm_create(kA, kRf), projection_state_free);
    for (int i = 0; i < kPoints; ++i) {
        long zone = 31;
        utm_geo_to_pr(utm.get(), utmPts.lat[i], utmPts.lon[i], &zone, &utmPts.x[i], &utmPts.y[i]);
        if (utmPts.lat[i] < 0) utmPts.y[i] -= 10000000.0;  // PROJ's +south-less zone: signed northing
    }
    static ProjOp utmProj("+proj=utm +zone=31 +ellps=WGS84");
    static ProjOp utmApprox("+proj=utm +zone=31 +ellps=WGS84 +approx");
    add("UTM forward", "ours", [](benchmark::State& st) {
        double sink = 0;
        for (auto _ : st) {
            for (int i = 0; i < kPoints; ++i) {
                long zone = 31;
                double e, n;
                utm_geo_to_pr(utm.get(), utmPts.lat[i], utmPts.lon[i], &zone, &e, &n);
                sink += e + n;
            }
            benchmark::DoNotOptimize(sink);
        }
    });
    add("UTM forward", "PROJ", [](benchmark::State& st) { run_proj(st, utmProj, PJ_FWD, utmPts.lonRad, utmPts.latRad, nullptr); });
    add("UTM forward", "PROJ approx",
        [](benchmark::State& st) { run_proj(st, utmApprox, PJ_FWD, utmPts.lonRad, utmPts.latRad, nullptr); });
    add("UTM inverse", "ours", [](benchmark::State& st) {
        double sink = 0;
        for (auto _ : st) {
            for (int i = 0; i < kPoints; ++i) {
                double lat, lon;
                utm_pr_to_geo(utm.get(), 31, utmPts.x[i], utmPts.y[i], &lat, &lon);
                sink += lat + lon;
            }
            benchmark::DoNotOptimize(sink);
        }
    });
    add("UTM inverse", "PROJ", [](benchmark::State& st) { run_proj(st, utmProj, PJ_INV, utmPts.x, utmPts.y, nullptr); });
    add("UTM inverse", "PROJ approx",
        [](benchmark::State& st) { run_proj(st, utmApprox, PJ_INV, utmPts.x, utmPts.y, nullptr); });

    // --- Transverse Mercator (Gauss-Kruger 39 E on Krassovsky), within 4 degrees.
    static Points tmPts = make_points(-80.0, 84.0, 35.0, 43.0, 2);
    static std::unique_ptr<ProjState, void (*)(ProjState*)> tm(tm_create(kKrassA, kKrassRf, 0.0, 39.0, 1.0),
                                                              projection_state_free);
    for (int i = 0; i < kPoints; ++i) tm_geo_to_pr(tm.get(), tmPts.lat[i], tmPts.lon[i], &tmPts.x[i], &tmPts.y[i], 500000, 0);
    static ProjOp tmProj("+proj=tmerc +lon_0=39 +k_0=1 +x_0=500000 +ellps=krass");
    static ProjOp tmApprox("+proj=tmerc +lon_0=39 +k_0=1 +x_0=500000 +ellps=krass +approx");
    add("TM forward", "ours", [](benchmark::State& st) {
        double sink = 0;
        for (auto _ : st) {
            for (int i = 0; i < kPoints; ++i) {
                double e, n;
                tm_geo_to_pr(tm.get(), tmPts.lat[i], tmPts.lon[i], &e, &n, 500000, 0);
                sink += e + n;
            }
            benchmark::DoNotOptimize(sink);
        }
    });
    add("TM forward", "PROJ", [](benchmark::State& st) { run_proj(st, tmProj, PJ_FWD, tmPts.lonRad, tmPts.latRad, nullptr); });
    add("TM forward", "PROJ approx",
        [](benchmark::State& st) { run_proj(st, tmApprox, PJ_FWD, tmPts.lonRad, tmPts.latRad, nullptr); });
    add("TM inverse", "ours", [](benchmark::State& st) {
        double sink = 0;
        for (auto _ : st) {
            for (int i = 0; i < kPoints; ++i) {
                double lat, lon;
                tm_pr_to_geo(tm.get(), tmPts.x[i], tmPts.y[i], &lat, &lon, 500000, 0);
                sink += lat + lon;
            }
            benchmark::DoNotOptimize(sink);
        }
    });
    add("TM inverse", "PROJ", [](benchmark::State& st) { run_proj(st, tmProj, PJ_INV, tmPts.x, tmPts.y, nullptr); });
    add("TM inverse", "PROJ approx", [](benchmark::State& st) { run_proj(st, tmApprox, PJ_INV, tmPts.x, tmPts.y, nullptr); });

    // --- Mercator, true scale at 30, central meridian 20.
    static Points mercPts = make_points(-85.0, 85.0, -180.0, 180.0, 3);
    static std::unique_ptr<ProjState, void (*)(ProjState*)> merc(merc_create(kA, kRf, 20.0, 30.0), merc_free);
    for (int i = 0; i < kPoints; ++i) merc_geo_to_pr(merc.get(), mercPts.lat[i], mercPts.lon[i], &mercPts.x[i], &mercPts.y[i], 0, 0);
    static ProjOp mercProj("+proj=merc +lon_0=20 +lat_ts=30 +ellps=WGS84");
    add("Mercator forward", "ours", [](benchmark::State& st) {
        double sink = 0;
        for (auto _ : st) {
            for (int i = 0; i < kPoints; ++i) {
                double e, n;
                merc_geo_to_pr(merc.get(), mercPts.lat[i], mercPts.lon[i], &e, &n, 0, 0);
                sink += e + n;
            }
            benchmark::DoNotOptimize(sink);
        }
    });
    add("Mercator forward", "PROJ",
        [](benchmark::State& st) { run_proj(st, mercProj, PJ_FWD, mercPts.lonRad, mercPts.latRad, nullptr); });
    add("Mercator inverse", "ours", [](benchmark::State& st) {
        double sink = 0;
        for (auto _ : st) {
            for (int i = 0; i < kPoints; ++i) {
                double lat, lon;
                merc_pr_to_geo(merc.get(), mercPts.x[i], mercPts.y[i], &lat, &lon, 0, 0);
                sink += lat + lon;
            }
            benchmark::DoNotOptimize(sink);
        }
    });
    add("Mercator inverse", "PROJ", [](benchmark::State& st) { run_proj(st, mercProj, PJ_INV, mercPts.x, mercPts.y, nullptr); });

    // --- Polar stereographic, north pole, true scale at 81.1145, the polar zone.
    static Points psPts = make_points(83.5, 90.0, -180.0, 180.0, 4);
    static std::unique_ptr<ProjState, void (*)(ProjState*)> ps(ps_create(kA, kRf, 81.1145, 0.0, 81.1145),
                                                              projection_state_free);
    for (int i = 0; i < kPoints; ++i)
        ps_geo_to_pr(ps.get(), psPts.lat[i], psPts.lon[i], &psPts.x[i], &psPts.y[i], 2000000, 2000000);
    static ProjOp psProj("+proj=stere +lat_0=90 +lat_ts=81.1145 +lon_0=0 +x_0=2000000 +y_0=2000000 +ellps=WGS84");
    add("Polar stereographic forward", "ours", [](benchmark::State& st) {
        double sink = 0;
        for (auto _ : st) {
            for (int i = 0; i < kPoints; ++i) {
                double e, n;
                ps_geo_to_pr(ps.get(), psPts.lat[i], psPts.lon[i], &e, &n, 2000000, 2000000);
                sink += e + n;
            }
            benchmark::DoNotOptimize(sink);
        }
    });
    add("Polar stereographic forward", "PROJ",
        [](benchmark::State& st) { run_proj(st, psProj, PJ_FWD, psPts.lonRad, psPts.latRad, nullptr); });
    add("Polar stereographic inverse", "ours", [](benchmark::State& st) {
        double sink = 0;
        for (auto _ : st) {
            for (int i = 0; i < kPoints; ++i) {
                double lat, lon;
                ps_pr_to_geo(ps.get(), psPts.x[i], psPts.y[i], &lat, &lon, 2000000, 2000000);
                sink += lat + lon;
            }
            benchmark::DoNotOptimize(sink);
        }
    });
    add("Polar stereographic inverse", "PROJ", [](benchmark::State& st) { run_proj(st, psProj, PJ_INV, psPts.x, psPts.y, nullptr); });

    // --- Geocentric (the Cartesian kind). Our inverse is the surface formula,
    // PROJ's the full one: the same operation, not the same accuracy.
    static Points cartPts = make_points(-90.0, 90.0, -180.0, 180.0, 5);
    static std::unique_ptr<ProjState, void (*)(ProjState*)> cart(decart_create(kA, kRf), projection_state_free);
    for (int i = 0; i < kPoints; ++i)
        decart_geo_to_pr(cart.get(), cartPts.lat[i], cartPts.lon[i], cartPts.h[i], &cartPts.x[i], &cartPts.y[i], &cartPts.z[i]);
    static ProjOp cartProj("+proj=cart +ellps=WGS84");
    add("Geocentric forward", "ours", [](benchmark::State& st) {
        double sink = 0;
        for (auto _ : st) {
            for (int i = 0; i < kPoints; ++i) {
                double X, Y, Z;
                decart_geo_to_pr(cart.get(), cartPts.lat[i], cartPts.lon[i], cartPts.h[i], &X, &Y, &Z);
                sink += X + Y + Z;
            }
            benchmark::DoNotOptimize(sink);
        }
    });
    add("Geocentric forward", "PROJ",
        [](benchmark::State& st) { run_proj(st, cartProj, PJ_FWD, cartPts.lonRad, cartPts.latRad, &cartPts.h); });
    add("Geocentric inverse", "ours", [](benchmark::State& st) {
        double sink = 0;
        for (auto _ : st) {
            for (int i = 0; i < kPoints; ++i) {
                double lat, lon, h;
                decart_pr_to_geo(cart.get(), cartPts.x[i], cartPts.y[i], cartPts.z[i], &lat, &lon, &h);
                sink += lat + lon + h;
            }
            benchmark::DoNotOptimize(sink);
        }
    });
    add("Geocentric inverse", "PROJ", [](benchmark::State& st) { run_proj(st, cartProj, PJ_INV, cartPts.x, cartPts.y, &cartPts.z); });

    // --- Datum shift, every method; PROJ's molodensky beside ours.
    static Points shiftPts = make_points(-88.0, 88.0, -180.0, 180.0, 6);
    static Points polarPts = make_points(89.0, 90.0, -180.0, 180.0, 7);
    static const short plain[3] = {0, 0, 0}, pulkovo[3] = {28, -130, -95}, ed50[3] = {-87, -98, -121};
    struct Method {
        const char* name;
        double aF, rfF;
        const short* fF;
        double aT, rfT;
        const short* fT;
        const Points* pts;
    };
    static const Method methods[] = {
        {"Datum shift 72 (WGS 72 -> 84)", 6378135.0, 298.26, plain, kA, kRf, plain, &shiftPts},
        {"Datum shift -72 (WGS 84 -> 72)", kA, kRf, plain, 6378135.0, 298.26, plain, &shiftPts},
        {"Datum shift 66 (WGS 66 -> 84)", 6378145.0, 298.25, plain, kA, kRf, plain, &shiftPts},
        {"Datum shift -66 (WGS 84 -> 66)", kA, kRf, plain, 6378145.0, 298.25, plain, &shiftPts},
        {"Datum shift 2 Molodensky", kKrassA, kKrassRf, pulkovo, kA, kRf, plain, &shiftPts},
        {"Datum shift -2 Molodensky", kA, kRf, plain, kKrassA, kKrassRf, pulkovo, &shiftPts},
        {"Datum shift 0 Molodensky", kKrassA, kKrassRf, pulkovo, 6378388.0, 297.0, ed50, &shiftPts},
        {"Datum shift 2 above 89 (translation)", kKrassA, kKrassRf, pulkovo, kA, kRf, plain, &polarPts},
    };
    for (const Method& m : methods) {
        DatumShiftState* s = datum_shift_create(m.aF, m.rfF, m.fF, m.aT, m.rfT, m.fT);  // lives for the run
        const Points* pts = m.pts;
        add(m.name, "ours", [s, pts](benchmark::State& st) {
            double sink = 0;
            for (auto _ : st) {
                for (int i = 0; i < kPoints; ++i) {
                    double lat, lon, h;
                    datum_shift_apply(pts->lat[i], pts->lon[i], pts->h[i], &lat, &lon, &h, s);
                    sink += lat + lon + h;
                }
                benchmark::DoNotOptimize(sink);
            }
        });
    }
    static ProjOp molo("+proj=molodensky +ellps=krass +dx=28 +dy=-130 +dz=-95 +da=-108 +df=" +
                       std::to_string(1 / kRf - 1 / kKrassRf));
    add("Datum shift 2 Molodensky", "PROJ",
        [](benchmark::State& st) { run_proj(st, molo, PJ_FWD, shiftPts.lonRad, shiftPts.latRad, &shiftPts.h); });
    static ProjOp translation(
        "+proj=pipeline +step +proj=cart +ellps=krass +step +proj=helmert +x=28 +y=-130 +z=-95 "
        "+step +inv +proj=cart +ellps=WGS84");
    add("Datum shift 2 above 89 (translation)", "PROJ",
        [](benchmark::State& st) { run_proj(st, translation, PJ_FWD, polarPts.lonRad, polarPts.latRad, &polarPts.h); });

    // Keep the table's rows in registration order with their PROJ entries beside them.
    std::vector<Entry> ordered;
    for (const Entry& e : g_entries) {
        bool seen = false;
        for (const Entry& o : ordered) seen |= o.op == e.op;
        if (!seen) ordered.push_back(e);
    }
    g_entries = ordered;

    TableReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    print_table(reporter);
    benchmark::Shutdown();
    return 0;
}
