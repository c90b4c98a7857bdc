#include "pipeline.h"

#include <cmath>

#include "refsys/kinds.h"

namespace mwcli {

namespace {

constexpr double kUtmSouthFalseNorthing = 10000000.0;
// The false northing the tool gives the library's polar stereographic: far
// larger than any distance from the pole in its area, so that y + offset is
// positive and the library's hemisphere mark -abs(y + offset) loses nothing.
constexpr int32_t kPolarOffset = 100000000;
constexpr double kDegree = 3.14159265358979323846 / 180.0;
// How far a point may move there and back. The formulas agree with exact
// ones to a millimetre near their centre; a metre is where they stop
// meaning anything (Transverse Mercator some 14 degrees from its meridian).
constexpr double kRoundTripMetres = 1.0;
constexpr double kMetresPerDegree = 6371000.0 * kDegree;

bool Projected(int kind) { return kind != Geographic && kind != Cartesian; }

// The false origin of a block (for UTM: hemisphere flag and zone), which
// the library reads at every conversion.
void SetFalseOrigin(int kind, void* block, int32_t fe, int32_t fn) {
    mw::BlockParams p = mw::ReadBlock(kind, block);
    p.fe = fe;
    p.fn = fn;
    mw::WriteBlock(kind, p, block);
}

// The standard zone of a longitude in (-180, 180]: 180 is the west edge of zone 1.
int UtmZoneOf(double lon) {
    const double l = lon >= 180.0 ? -180.0 : lon;
    const int zone = static_cast<int>(std::floor((l + 180.0) / 6.0)) + 1;
    return zone < 1 ? 1 : zone > 60 ? 60 : zone;
}

const GeoCoordTag& DestRecord(CGeoTransform& t) {
    return *static_cast<const GeoCoordTag*>(t.GetGeoCoordDest()->GetCoord());
}

}  // namespace

double WrapLongitude(double x) {
    const double r = std::remainder(x, 360.0);  // exact, in [-180, 180]
    return r <= -180.0 ? r + 360.0 : r;
}

// H. Vermeille, "Direct transformation from geocentric coordinates to geodetic
// coordinates", Journal of Geodesy 76 (2002) 451-454: a closed form, exact
// outside the evolute of the meridian ellipse (within about e^2 a of the centre).
bool GeocentricToGeodetic(double a, double e2, double X, double Y, double Z, double& lat, double& lon, double& h) {
    const double e4 = e2 * e2;
    const double w = std::hypot(X, Y);
    const double p = (w / a) * (w / a);
    const double q = (1 - e2) * (Z / a) * (Z / a);
    const double r = (p + q - e4) / 6;
    if (!(r > 0)) return false;
    const double s = e4 * p * q / (4 * r * r * r);
    const double t = std::cbrt(1 + s + std::sqrt(s * (2 + s)));
    const double u = r * (1 + t + 1 / t);
    const double v = std::sqrt(u * u + e4 * q);
    const double ew = e2 * (u + v - q) / (2 * v);
    const double k = std::sqrt(u + v + ew * ew) - ew;
    const double D = k * w / (k + e2);
    const double dz = std::hypot(D, Z);
    lat = 2 * std::atan2(Z, D + dz) / kDegree;
    lon = std::atan2(Y, X) / kDegree;
    h = (k + e2 - 1) / k * dz;
    return std::isfinite(lat) && std::isfinite(lon) && std::isfinite(h);
}

Pipeline::Pipeline(const SystemDef& source, const SystemDef& dest, bool checked) : m_source(source), m_dest(dest) {
    // Geocentric input becomes geographic on its datum before the library sees it.
    SystemDef from = source;
    if (source.kind == Cartesian) from.kind = Geographic;
    CGeoReferenceData src, dst, geographic;
    MakeSystem(from, src);
    MakeSystem(dest, dst);
    double ellipsoid[2];
    short values[6];
    src.GetGeoInfoA(ellipsoid, values);
    const double f = ellipsoid[1] > 0 ? 1 / ellipsoid[1] : 0;
    m_sourceA = ellipsoid[0];
    m_sourceE2 = (2 - f) * f;

    geographic.CreateGeoInfo(Geographic, dest.datum);
    m_first = std::make_unique<CGeoTransform>();
    m_first->SetReferenceDataSource(&src);
    m_first->SetReferenceDataDest(&geographic);
    m_first->InitGeoParam();
    if (dest.kind != Geographic) {
        m_second = std::make_unique<CGeoTransform>();
        m_second->SetReferenceDataSource(&geographic);
        m_second->SetReferenceDataDest(&dst);
        m_second->InitGeoParam();
    }
    if (!checked) return;
    SystemDef onSourceDatum, onDestDatum;
    onSourceDatum.kind = onDestDatum.kind = Geographic;
    onSourceDatum.datum = source.datum;
    onDestDatum.datum = dest.datum;
    if (Projected(source.kind)) {
        m_sourceInverse.reset(new Pipeline(source, onSourceDatum, false));
        m_sourceBack.reset(new Pipeline(onSourceDatum, source, false));
    }
    if (Projected(dest.kind)) m_destBack.reset(new Pipeline(dest, onDestDatum, false));
}

Pipeline::~Pipeline() {
    m_first->FreeGeoParam();
    if (m_second) m_second->FreeGeoParam();
}

Pipeline::Outcome Pipeline::Convert(const GeoCoordTag& point, int zone, bool south) {
    double lat, lon, h;
    if (!ToGeographic(point, zone, south, lat, lon, h)) return Outcome::SourceOutside;
    if (m_sourceBack) {
        // On the source datum: the datum shift is not exactly invertible, and
        // near a pole Mercator would magnify its centimetres into metres.
        const GeoCoordTag& g = m_sourceInverse->m_result;
        const GeoCoordTag& b = m_sourceBack->m_result;
        m_sourceBack->m_forcedZone = zone;
        m_sourceBack->m_forcedSouth = south;
        if (m_sourceInverse->Convert(point, zone, south) != Outcome::Converted ||
            m_sourceBack->Convert(g, 0, false) != Outcome::Converted ||
            !(std::hypot(b.north - point.north, b.east - point.east) <= kRoundTripMetres))
            return Outcome::SourceOutside;
    }
    if (!FromGeographic(lat, lon, h)) return Outcome::DestOutside;
    if (m_destBack) {
        const GeoCoordTag& b = m_destBack->m_result;
        if (m_destBack->Convert(m_result, m_result.zone, m_resultSouth) != Outcome::Converted ||
            !(std::hypot(b.north - lat, WrapLongitude(b.east - lon) * std::cos(lat * kDegree)) * kMetresPerDegree <=
              kRoundTripMetres))
            return Outcome::DestOutside;
    }
    return Outcome::Converted;
}

bool Pipeline::ToGeographic(GeoCoordTag p, int zone, bool south, double& lat, double& lon, double& h) {
    void* block = m_first->GetReferenceDataSource()->GetParam();
    switch (m_source.kind) {
        case Geographic: p.east = WrapLongitude(p.east); break;
        case UTM: {
            // The library reads a northing below the equator as -(y + 10 000 000)
            // under its hemisphere flag -1.
            const double y = p.north - (south ? kUtmSouthFalseNorthing : 0);
            SetFalseOrigin(UTM, block, y >= 0 ? 1 : -1, zone);
            p.north = y >= 0 ? y : y + kUtmSouthFalseNorthing;
            break;
        }
        case PolarStereographic:
            SetFalseOrigin(PolarStereographic, block, m_source.fe, kPolarOffset);
            p.north = p.north - m_source.fn + kPolarOffset;
            break;
        case Cartesian:
            if (!GeocentricToGeodetic(m_sourceA, m_sourceE2, p.north, p.east, p.height, lat, lon, h)) return false;
            p = GeoCoordTag{lat, lon, h, 0};
            break;
        default: break;
    }
    m_first->SetGeoCoord(&p);
    m_first->GeoConvert();
    const GeoCoordTag& g = DestRecord(*m_first);
    lat = g.north;
    lon = WrapLongitude(g.east);
    h = g.height;
    return std::isfinite(lat) && std::isfinite(lon) && std::isfinite(h);
}

bool Pipeline::FromGeographic(double lat, double lon, double h) {
    m_result = GeoCoordTag{lat, lon, h, 0};
    if (!m_second) {
        m_first->GetGeoCoordDest()->SetCoord(&m_result);
        return true;
    }
    GeoCoordTag g{lat, lon, h, 0};
    void* block = m_second->GetReferenceDataDest()->GetParam();
    if (m_dest.kind == UTM) {
        // The library takes the longitude relative to the zone's meridian
        // without wrapping it: -180 is 3 degrees from zone 60's.
        const int zone = m_forcedZone ? m_forcedZone : m_dest.UtmZoneFixed() ? m_dest.fn : UtmZoneOf(lon);
        const double meridian = 6.0 * zone - 183.0;
        g.east = meridian + WrapLongitude(lon - meridian);
        SetFalseOrigin(UTM, block, 1, zone);
    } else if (m_dest.kind == PolarStereographic) {
        // Across the equator the library projects the mirror point (it takes
        // abs(latitude)) within its 2-degree margin: refused.
        if (lat != 0 && (lat < 0) != (m_dest.lat0 < 0)) return false;
        SetFalseOrigin(PolarStereographic, block, m_dest.fe, kPolarOffset);
    }
    m_second->SetGeoCoord(&g);
    m_second->GeoConvert();
    GeoCoordTag r = DestRecord(*m_second);
    if (!std::isfinite(r.north) || !std::isfinite(r.east) || !std::isfinite(r.height)) return false;
    if (m_dest.kind == UTM) {
        // The library adds 10 000 000 m to a negative northing: south of the
        // equator, except within a hair of it where the series may say 0+.
        double y = r.north;
        if (lat < 0 && !(std::fabs(lat) < 0.01 && r.north < 5000000.0)) y -= kUtmSouthFalseNorthing;
        m_resultSouth = m_forcedZone ? m_forcedSouth : m_dest.UtmZoneFixed() ? m_dest.UtmSouth() : lat < 0;
        r.north = y + (m_resultSouth ? kUtmSouthFalseNorthing : 0);
    } else if (m_dest.kind == PolarStereographic) {
        // Below the equator the library writes -abs(y + offset).
        const double y = lat < 0 ? -r.north - kPolarOffset : r.north - kPolarOffset;
        r.north = y + m_dest.fn;
    }
    m_result = r;
    m_second->GetGeoCoordDest()->SetCoord(&m_result);
    return true;
}

}  // namespace mwcli
