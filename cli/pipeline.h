// The conversion of one point as the tool presents it, on top of the
// library's CGeoTransform. The tool speaks the conventions its users know
// from PROJ and GeoConvert, and chooses the library's parameters so that the
// library's documented behaviour (kept for its hosts) never reaches them:
//
// - UTM `south` is a false northing of 10 000 000 m for every point, `north`
//   none; a zone chosen per point is south exactly for negative latitudes.
// - Polar stereographic (and UPS) coordinates are signed as PROJ's stere
//   and ups give them; the library's negative hemisphere mark is removed.
// - Longitudes are brought next to the zone's central meridian before the
//   library sees them, and written in (-180, 180].
// - Geocentric X Y Z become latitude, longitude and height exactly before
//   the library shifts the datum (its own inverse is for the surface).
//
// Every point goes source -> geographic on the destination datum (the
// library's datum shift) -> destination, so two systems of one kind with
// different parameters are reprojected, not passed through.
//
// A projection's formulas hold only near its centre: far out they give a
// wrong point with no error. So each projected step is taken back the other
// way, and a point that does not come back within a metre is refused.
#ifndef MAPWRIGHT_CLI_PIPELINE_H
#define MAPWRIGHT_CLI_PIPELINE_H

#include <memory>

#include <mapwright/mapwright.h>

#include "system_text.h"

namespace mwcli {

// Geodetic latitude and longitude (degrees) and height (metres) of the
// geocentric point X, Y, Z (metres) on the ellipsoid a (metres), e2. False
// within about 40 km of the Earth's centre, where no unique answer exists.
bool GeocentricToGeodetic(double a, double e2, double X, double Y, double Z, double& lat, double& lon, double& h);

// x in (-180, 180].
double WrapLongitude(double x);

class Pipeline {
public:
    Pipeline(const SystemDef& source, const SystemDef& dest) : Pipeline(source, dest, true) {}
    ~Pipeline();
    Pipeline(const Pipeline&) = delete;
    Pipeline& operator=(const Pipeline&) = delete;

    enum class Outcome {
        Converted,
        SourceOutside,  // the source projection's formulas do not hold there
        DestOutside,    // the destination refuses it, or its formulas do not hold there
    };
    // `zone` and `south` tell a UTM source point's zone and hemisphere.
    Outcome Convert(const GeoCoordTag& point, int zone, bool south);

    // The last result in the destination's columns; for UTM with its zone.
    const GeoCoordTag& Result() const { return m_result; }
    // The hemisphere of a UTM result (its zone label).
    bool ResultSouth() const { return m_resultSouth; }
    // The transform whose destination coordinate holds the result, for the
    // library's text of it.
    CGeoTransform& Final() { return m_second ? *m_second : *m_first; }

private:
    Pipeline(const SystemDef& source, const SystemDef& dest, bool checked);
    bool ToGeographic(GeoCoordTag p, int zone, bool south, double& lat, double& lon, double& h);
    bool FromGeographic(double lat, double lon, double h);

    SystemDef m_source, m_dest;
    std::unique_ptr<CGeoTransform> m_first, m_second;
    double m_sourceA = 0, m_sourceE2 = 0;  // the source ellipsoid, for X Y Z
    GeoCoordTag m_result{};
    bool m_resultSouth = false;
    // The projected steps taken back: source -> geographic -> source on the
    // source datum, destination -> geographic.
    std::unique_ptr<Pipeline> m_sourceInverse, m_sourceBack, m_destBack;
    int m_forcedZone = 0;  // a UTM destination's zone and hemisphere, when taking a source back
    bool m_forcedSouth = false;
};

}  // namespace mwcli

#endif
