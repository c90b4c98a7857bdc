// Shared pieces of the numerical core's oracle tests: a PROJ operation made
// from a PROJ string, the figures, and distances on the ground.
#ifndef MAPWRIGHT_TESTS_ORACLE_CORE_ORACLE_H
#define MAPWRIGHT_TESTS_ORACLE_CORE_ORACLE_H

#include <proj.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace oracle {

inline constexpr double kDeg = 0.017453292519943295;

struct Figure {
    const char* name;
    const char* projEllps;  // PROJ's name of the same ellipsoid
    double a, rf;
};
inline constexpr Figure kWgs84{"WGS 84", "WGS84", 6378137.0, 298.257223563};
inline constexpr Figure kKrassovsky{"Krassovsky 1940", "krass", 6378245.0, 298.3};
inline constexpr Figure kInternational{"International 1924", "intl", 6378388.0, 297.0};
inline constexpr Figure kFigures[] = {kWgs84, kKrassovsky};

// One PROJ operation, from a PROJ string; angles in radians.
class Proj {
public:
    explicit Proj(const std::string& definition) : ctx_(proj_context_create()) {
        pj_ = proj_create(ctx_, definition.c_str());
        EXPECT_NE(pj_, nullptr) << definition << ": " << proj_context_errno_string(ctx_, proj_context_errno(ctx_));
    }
    ~Proj() {
        proj_destroy(pj_);
        proj_context_destroy(ctx_);
    }
    Proj(const Proj&) = delete;
    Proj& operator=(const Proj&) = delete;
    bool ok() const { return pj_ != nullptr; }
    PJ_COORD fwd(double a, double b, double c = 0.0) const { return proj_trans(pj_, PJ_FWD, proj_coord(a, b, c, 0)); }
    PJ_COORD inv(double a, double b, double c = 0.0) const { return proj_trans(pj_, PJ_INV, proj_coord(a, b, c, 0)); }

private:
    PJ_CONTEXT* ctx_;
    PJ* pj_ = nullptr;
};

// Ground distance of two nearby geographic points (degrees, metres of
// height), metres; the radius a is close enough for error figures.
inline double ground(double a, double lat, double dLatDeg, double dLonDeg, double dH = 0.0) {
    const double dLon = std::remainder(dLonDeg, 360.0);
    const double n = dLatDeg * kDeg * a, e = dLon * kDeg * a * std::cos(lat * kDeg);
    return std::sqrt(n * n + e * e + dH * dH);
}

inline std::string fixed(double v, int decimals) {
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.*f", decimals, v);
    return buf;
}

}  // namespace oracle

#endif
