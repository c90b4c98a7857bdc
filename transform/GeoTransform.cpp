#include <mapwright/GeoTransform.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "refsys/kinds.h"
#include "cartesian.h"
#include "datum_shift.h"
#include "mercator.h"
#include "polar_stereo.h"
#include "tm.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

mw::BlockParams ReadParams(CGeoReferenceData& system) {
    return mw::ReadBlock(system.GetProjection(), system.GetParam());
}

ProjState* CreateState(CGeoReferenceData& system) {
    double geo[2];
    short values[6];
    system.GetGeoInfoA(geo, values);
    const double a = geo[0], rf = geo[1];
    const int kind = system.GetProjection();
    const mw::BlockParams p = mw::ReadBlock(kind, system.GetParam());
    switch (kind) {
        case UTM:
            return utm_create(a, rf);
        case GaussKruger:
        case TransverseMercator:
            return tm_create(a, rf, p.lat_origin, p.c_lon, p.ScaleFor(kind));
        case Mercator:
            return merc_create(a, rf, p.c_lon, p.lat_origin);
        case PolarStereographic:
            return ps_create(a, rf, p.lat_origin, p.c_lon, p.lat_origin);
        case Cartesian:
            return decart_create(a, rf);
        default:
            return nullptr;
    }
}

void ReleaseState(ProjState*& state, int kind) {
    if (kind == Mercator)
        merc_free(state);
    else if (kind >= UTM && kind <= Cartesian)
        projection_state_free(state);
    state = nullptr;
}

}  // namespace

CGeoTransform::CGeoTransform()
    : m_bDatumsDiffer(0),
      m_nPrSource(0),
      m_nPrDest(0),
      m_pShiftToPivot(nullptr),
      m_pShiftFromPivot(nullptr),
      m_pPrSource(nullptr),
      m_pPrDest(nullptr) {}

void CGeoTransform::SetDatumAndPrSource(int kind, int datumIndex) {
    m_refDataSource.CreateGeoInfo(kind, datumIndex);
    m_geoCoordSource.SetProjection(kind);
}

void CGeoTransform::SetDatumAndPrDest(int kind, int datumIndex) {
    m_refDataDest.CreateGeoInfo(kind, datumIndex);
    m_geoCoordDest.SetProjection(kind);
}

int CGeoTransform::SetGeoParam(int kindSource, int kindDest, int datumSource, int datumDest) {
    SetDatumAndPrSource(kindSource, datumSource);
    SetDatumAndPrDest(kindDest, datumDest);
    return InitGeoParam();
}

void CGeoTransform::SetReferenceDataSource(CGeoReferenceData* other) {
    if (!other) return;
    // Names and datum values are re-read from the catalogs by the datum index.
    m_refDataSource.CreateGeoInfo(other->GetProjection(), other->GetDatum());
    m_refDataSource.SetParam(other->GetParam());
    m_geoCoordSource.SetProjection(other->GetProjection());
}

void CGeoTransform::SetReferenceDataDest(CGeoReferenceData* other) {
    if (!other) return;
    m_refDataDest.CreateGeoInfo(other->GetProjection(), other->GetDatum());
    m_refDataDest.SetParam(other->GetParam());
    m_geoCoordDest.SetProjection(other->GetProjection());
}

int CGeoTransform::SetDefault() {
    m_refDataSource.SetDefault();
    m_refDataDest.SetDefault();
    m_geoCoordSource.SetProjection(Geographic);
    m_geoCoordDest.SetProjection(Geographic);
    return 1;
}

void CGeoTransform::SetGeoCoord(void* record) { m_geoCoordSource.SetCoord(record); }

int CGeoTransform::InitGeoParam() {
    CGeoReferenceData pivot;
    pivot.CreateGeoInfo(Geographic, 3);

    double geoPivot[2], geoSource[2], geoDest[2];
    short valPivot[6], valSource[6], valDest[6];
    pivot.GetGeoInfoA(geoPivot, valPivot);
    m_refDataSource.GetGeoInfoA(geoSource, valSource);
    m_refDataDest.GetGeoInfoA(geoDest, valDest);

    // Exact comparison: a NaN counts as different. The flag is only ever set
    // here; FreeGeoParam clears it.
    if (!(geoSource[0] == geoDest[0]) || !(geoSource[1] == geoDest[1]) ||
        std::memcmp(valSource, valDest, sizeof valSource) != 0)
        m_bDatumsDiffer = 1;

    m_nPrSource = m_refDataSource.GetProjection();
    m_nPrDest = m_refDataDest.GetProjection();
    if (m_nPrSource == 0 || m_nPrDest == 0) return 0;

    if (m_bDatumsDiffer == 1) {
        m_pShiftToPivot = datum_shift_create(geoSource[0], geoSource[1], valSource, geoPivot[0], geoPivot[1], valPivot);
        m_pShiftFromPivot = datum_shift_create(geoPivot[0], geoPivot[1], valPivot, geoDest[0], geoDest[1], valDest);
    }
    // A failed creation leaves a null state, which the projection refuses.
    m_pPrSource = CreateState(m_refDataSource);
    m_pPrDest = CreateState(m_refDataDest);
    return 1;
}

int CGeoTransform::GeoConvert() {
    // A system with no kind, unset (-1) included, converts nothing.
    if (!mw::IsKind(m_nPrSource) || !mw::IsKind(m_nPrDest)) return 0;

    const GeoCoordTag source = *static_cast<const GeoCoordTag*>(m_geoCoordSource.GetCoord());
    GeoCoordTag result{};
    if (m_nPrSource == m_nPrDest && m_bDatumsDiffer != 1) {
        // Only the kinds are compared: two Transverse Mercator systems with
        // different meridians on one datum pass the values through.
        result.north = source.north;
        result.east = source.east;
        result.height = source.height;
        if (m_nPrDest == UTM) result.zone = source.zone;
    } else {
        double h = source.height;
        // What a refused or failed step leaves unwritten stays NaN, so a
        // point that could not be converted never passes as a position.
        double lat = kNaN, lon = kNaN;
        pr_to_geo(&lat, &lon, &h);
        if (m_bDatumsDiffer == 1) {
            datum_shift_apply(lat, lon, h, &lat, &lon, &h, m_pShiftToPivot);
            datum_shift_apply(lat, lon, h, &lat, &lon, &h, m_pShiftFromPivot);
        }
        double north = kNaN, east = kNaN;
        long zone = 0;
        geo_to_pr(&north, &east, &h, lat, lon, h, &zone);
        result.north = north;
        result.east = east;
        result.height = h;
        if (m_nPrDest == UTM) result.zone = static_cast<int32_t>(zone);
    }
    m_geoCoordDest.SetCoord(&result);
    return 1;
}

void CGeoTransform::pr_to_geo(double* lat, double* lon, double* height) {
    auto* record = static_cast<GeoCoordTag*>(m_geoCoordSource.GetCoord());
    const mw::BlockParams p = ReadParams(m_refDataSource);
    switch (m_nPrSource) {
        case Geographic:
            *lat = record->north;
            *lon = record->east;
            break;
        case UTM: {
            record->zone = p.UtmZone();
            // A southern system gives its northings without the sign.
            const double n = p.UtmSouth() ? -record->north : record->north;
            utm_pr_to_geo(m_pPrSource, p.UtmZone(), record->east, n, lat, lon);
            break;
        }
        case GaussKruger:
        case TransverseMercator:
            tm_pr_to_geo(m_pPrSource, record->east, record->north, lat, lon, p.fe, p.fn);
            break;
        case Mercator:
            merc_pr_to_geo(m_pPrSource, record->east, record->north, lat, lon, p.fe, p.fn);
            break;
        case PolarStereographic:
            ps_pr_to_geo(m_pPrSource, record->east, record->north, lat, lon, p.fe, p.fn);
            break;
        case Cartesian:
            decart_pr_to_geo(m_pPrSource, record->north, record->east, record->height, lat, lon, height);
            break;
        default:
            break;
    }
}

void CGeoTransform::geo_to_pr(double* north, double* east, double* height, double lat, double lon, double h,
                              long* zone) {
    const mw::BlockParams p = ReadParams(m_refDataDest);
    switch (m_nPrDest) {
        case Geographic:
            *north = lat;
            *east = lon;
            break;
        case UTM: {
            // A zone outside 1..60 lets the longitude choose.
            const long z = p.UtmZoneFixed() ? p.UtmZone() : -1;
            static_cast<GeoCoordTag*>(m_geoCoordDest.GetCoord())->zone = static_cast<int32_t>(z);
            *zone = z;
            utm_geo_to_pr(m_pPrDest, lat, lon, zone, east, north);
            break;
        }
        case GaussKruger:
        case TransverseMercator:
            tm_geo_to_pr(m_pPrDest, lat, lon, east, north, p.fe, p.fn);
            break;
        case Mercator:
            merc_geo_to_pr(m_pPrDest, lat, lon, east, north, p.fe, p.fn);
            break;
        case PolarStereographic:
            ps_geo_to_pr(m_pPrDest, lat, lon, east, north, p.fe, p.fn);
            break;
        case Cartesian:
            decart_geo_to_pr(m_pPrDest, lat, lon, h, north, east, height);
            break;
        default:
            break;
    }
}

void CGeoTransform::FreeGeoParam() {
    if (m_bDatumsDiffer == 1) {
        datum_shift_free(m_pShiftToPivot);
        datum_shift_free(m_pShiftFromPivot);
        m_bDatumsDiffer = 0;
    }
    m_pShiftToPivot = nullptr;
    m_pShiftFromPivot = nullptr;
    ReleaseState(m_pPrSource, m_nPrSource);
    ReleaseState(m_pPrDest, m_nPrDest);
}

int CGeoTransform::LoadData(const char* base) {
    const CString root(base);
    m_refDataSource.LoadData(root + "\\GeoData_fm");
    m_geoCoordSource.SetProjection(m_refDataSource.GetProjection());
    m_refDataDest.LoadData(root + "\\GeoData_to");
    m_geoCoordDest.SetProjection(m_refDataDest.GetProjection());
    return InitGeoParam();
}

int CGeoTransform::SaveData(const char* base) {
    const CString root(base);
    // Both are attempted, whatever the first gives.
    const int source = m_refDataSource.SaveData(root + "\\GeoData_fm");
    const int dest = m_refDataDest.SaveData(root + "\\GeoData_to");
    return source == 1 && dest == 1 ? 1 : 0;
}
