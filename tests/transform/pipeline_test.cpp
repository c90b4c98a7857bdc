// CGeoTransform: the order of the steps, the short-cut, the dispatch by kind
// and the ownership of the states. Expected numbers come from the closed
// forms the pipeline must reduce to, not from earlier runs.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include <mapwright/GeoTransform.h>

#include "testenv.h"

namespace {

GeoCoordTag& Source(CGeoTransform& t) { return *static_cast<GeoCoordTag*>(t.GetGeoCoordSource()->GetCoord()); }
GeoCoordTag& Dest(CGeoTransform& t) { return *static_cast<GeoCoordTag*>(t.GetGeoCoordDest()->GetCoord()); }

ProjectionParam* Block(CGeoReferenceData* r) { return static_cast<ProjectionParam*>(r->GetParam()); }

// Every test runs on a private copy of the shipped catalogs (datum 3 is
// WGS 84, datum 4 Pulkovo 1942).
class Pipeline : public ::testing::Test {
protected:
    mwtest::IsolatedEnv m_env;
};

TEST_F(Pipeline, SameKindOnOneDatumPassesTheValuesThrough) {
    CGeoTransform t;
    ASSERT_EQ(1, t.SetGeoParam(Geographic, Geographic, 3, 3));
    GeoCoordTag in{55.75, 37.62, -2000000.0, 99};  // the height sentinel is kept as given
    t.SetGeoCoord(&in);
    ASSERT_EQ(1, t.GeoConvert());
    EXPECT_EQ(55.75, Dest(t).north);
    EXPECT_EQ(37.62, Dest(t).east);
    EXPECT_EQ(-2000000.0, Dest(t).height);
    EXPECT_EQ(0, Dest(t).zone);  // not a UTM destination
    t.FreeGeoParam();

    // UTM to UTM keeps the source zone even when the destination names another.
    CGeoTransform u;
    u.SetDatumAndPrSource(UTM, 3);
    u.SetDatumAndPrDest(UTM, 3);
    Block(u.GetReferenceDataDest())->fn = 38;
    ASSERT_EQ(1, u.InitGeoParam());
    GeoCoordTag utm{6182000.0, 413000.0, 10.0, 37};
    u.SetGeoCoord(&utm);
    u.GeoConvert();
    EXPECT_EQ(6182000.0, Dest(u).north);
    EXPECT_EQ(413000.0, Dest(u).east);
    EXPECT_EQ(37, Dest(u).zone);
    u.FreeGeoParam();
}

TEST_F(Pipeline, UtmZoneIsChosenOrForced) {
    struct Case {
        int destZone;  // fn of the destination block
        double lon;
        int expectedZone;
    };
    const Case cases[] = {{0, 37.6, 37}, {0, -0.5, 30}, {38, 37.6, 38}, {61, 3.0, 31}, {-5, 3.0, 31}};
    for (const Case& c : cases) {
        CGeoTransform t;
        t.SetDatumAndPrSource(Geographic, 3);
        t.SetDatumAndPrDest(UTM, 3);
        Block(t.GetReferenceDataDest())->fn = c.destZone;
        ASSERT_EQ(1, t.InitGeoParam());
        GeoCoordTag in{55.0, c.lon, 0.0, 0};
        t.SetGeoCoord(&in);
        ASSERT_EQ(1, t.GeoConvert());
        EXPECT_EQ(c.expectedZone, Dest(t).zone) << c.destZone << " " << c.lon;
        // The easting is 500 km plus the offset from the zone's own meridian.
        const double cm = 6.0 * c.expectedZone - 183.0;
        EXPECT_EQ(c.lon > cm, Dest(t).east > 500000.0);
        t.FreeGeoParam();
    }
}

TEST_F(Pipeline, TheUtmPointOfReferenceAndItsWayBack) {
    CGeoTransform t;
    ASSERT_EQ(1, t.SetGeoParam(Geographic, UTM, 3, 3));  // flag 0: same datum
    GeoCoordTag in{45.0, 3.0, 12.5, 0};
    t.SetGeoCoord(&in);
    t.GeoConvert();
    EXPECT_NEAR(500000.000, Dest(t).east, 0.0005);
    EXPECT_NEAR(4982950.400, Dest(t).north, 0.0005);
    EXPECT_EQ(12.5, Dest(t).height);
    EXPECT_EQ(31, Dest(t).zone);
    t.FreeGeoParam();
}

TEST_F(Pipeline, SouthernUtmNorthingsAreReadWithTheHemisphereFlag) {
    CGeoTransform t;
    t.SetDatumAndPrSource(UTM, 3);
    t.SetDatumAndPrDest(Geographic, 3);
    ProjectionParam* p = Block(t.GetReferenceDataSource());
    p->fe = -1;
    p->fn = 31;
    ASSERT_EQ(1, t.InitGeoParam());
    GeoCoordTag in{7000000.0, 500000.0, 0.0, 5};
    t.SetGeoCoord(&in);
    t.GeoConvert();
    EXPECT_EQ(31, Source(t).zone);  // overwritten with the system's zone
    // 3 000 km south of the equator on the central meridian: about 27.1 degrees south.
    EXPECT_NEAR(-27.1, Dest(t).north, 0.05);
    EXPECT_NEAR(3.0, Dest(t).east, 1e-9);

    // fe and fn are read at each conversion: a northern flag now reads the
    // same northing north of the equator, without a new InitGeoParam.
    p->fe = 1;
    t.GeoConvert();
    EXPECT_NEAR(63.1, Dest(t).north, 0.1);
    t.FreeGeoParam();
}

TEST_F(Pipeline, ADatumValueDifferenceRunsTheShiftEvenBetweenGeographicSystems) {
    CGeoTransform t;
    t.SetDatumAndPrSource(Geographic, 3);
    t.SetDatumAndPrDest(Geographic, 3);
    t.GetReferenceDataDest()->m_nDatumValues[4] = 1;  // the second triple: no shift, but "different"
    ASSERT_EQ(1, t.InitGeoParam());
    // Only the shift path treats a height below -1 000 000 m as unknown (0).
    GeoCoordTag in{55.0, 37.0, -2000000.0, 0};
    t.SetGeoCoord(&in);
    t.GeoConvert();
    EXPECT_DOUBLE_EQ(55.0, Dest(t).north);
    EXPECT_DOUBLE_EQ(37.0, Dest(t).east);
    EXPECT_NEAR(0.0, Dest(t).height, 1e-9);
    t.FreeGeoParam();
}

TEST_F(Pipeline, ShiftedConversionMovesByTheDatumShift) {
    // Pulkovo 1942 to WGS 84 near Moscow moves the point by about 120 m: the
    // three-parameter shift (28, -130, -95) and the Krassovsky ellipsoid.
    CGeoTransform t;
    ASSERT_EQ(1, t.SetGeoParam(Geographic, Geographic, 4, 3));
    GeoCoordTag in{55.75, 37.62, 0.0, 0};
    t.SetGeoCoord(&in);
    t.GeoConvert();
    const double dNorth = (Dest(t).north - 55.75) * 111300.0;
    const double dEast = (Dest(t).east - 37.62) * 111300.0 * std::cos(55.75 * M_PI / 180.0);
    EXPECT_GT(std::hypot(dNorth, dEast), 80.0);
    EXPECT_LT(std::hypot(dNorth, dEast), 200.0);
    t.FreeGeoParam();
}

TEST_F(Pipeline, RefusedPointsAreNotPositions) {
    // Zone 1 forced for longitude 100: outside the zone's area, refused.
    CGeoTransform t;
    t.SetDatumAndPrSource(Geographic, 3);
    t.SetDatumAndPrDest(UTM, 3);
    Block(t.GetReferenceDataDest())->fn = 1;
    t.InitGeoParam();
    GeoCoordTag in{10.0, 100.0, 5.0, 0};
    t.SetGeoCoord(&in);
    EXPECT_EQ(1, t.GeoConvert());
    EXPECT_TRUE(std::isnan(Dest(t).north));
    EXPECT_TRUE(std::isnan(Dest(t).east));
    EXPECT_EQ(5.0, Dest(t).height);
    EXPECT_EQ(1, Dest(t).zone);
    t.FreeGeoParam();

    // Mercator refuses 89.9999951 degrees.
    CGeoTransform m;
    m.SetGeoParam(Geographic, Mercator, 3, 3);
    GeoCoordTag pole{89.9999951, 0.0, 0.0, 0};
    m.SetGeoCoord(&pole);
    m.GeoConvert();
    EXPECT_TRUE(std::isnan(Dest(m).north));
    m.FreeGeoParam();
}

TEST_F(Pipeline, NonFiniteInputGivesNonFiniteOutput) {
    const int kinds[] = {Geographic, UTM, GaussKruger, TransverseMercator, Mercator, PolarStereographic, Cartesian};
    const double bad[] = {NAN, INFINITY, -INFINITY, 1e300};
    for (int from : kinds) {
        for (int to : kinds) {
            CGeoTransform t;
            ASSERT_EQ(1, t.SetGeoParam(from, to, 4, 3));
            for (double v : bad) {
                GeoCoordTag in{v, v, v, 0};
                t.SetGeoCoord(&in);
                EXPECT_EQ(1, t.GeoConvert());
                const GeoCoordTag& out = Dest(t);
                // 1e300 only has to pass without undefined behaviour (the
                // sanitizer run watches); NaN and infinities never come out
                // as a position.
                if (!std::isfinite(v)) {
                    EXPECT_FALSE(std::isfinite(out.north) && std::isfinite(out.east))
                        << from << " -> " << to << " for " << v;
                }
            }
            t.FreeGeoParam();
        }
    }
}

TEST_F(Pipeline, UnsetSystemsConvertNothing) {
    CGeoTransform t;
    EXPECT_EQ(0, t.GeoConvert());  // kinds 0 after construction

    t.SetDatumAndPrDest(Geographic, 3);  // the source is still unset (-1)
    t.InitGeoParam();
    GeoCoordTag before{1.0, 2.0, 3.0, 4};
    t.GetGeoCoordDest()->SetCoord(&before);
    EXPECT_EQ(0, t.GeoConvert());
    EXPECT_EQ(0, std::memcmp(&before, &Dest(t), sizeof before));
    t.FreeGeoParam();
}

TEST_F(Pipeline, CartesianHeightsAreUsedAndLost) {
    CGeoTransform t;
    t.SetGeoParam(Geographic, Cartesian, 3, 3);
    GeoCoordTag in{0.0, 0.0, 100.0, 0};
    t.SetGeoCoord(&in);
    t.GeoConvert();
    EXPECT_DOUBLE_EQ(6378237.0, Dest(t).north);  // X: a + h on the equator
    EXPECT_NEAR(0.0, Dest(t).east, 1e-9);
    EXPECT_NEAR(0.0, Dest(t).height, 1e-9);
    t.FreeGeoParam();

    CGeoTransform back;
    back.SetGeoParam(Cartesian, Geographic, 3, 3);
    GeoCoordTag xyz{6378137.0, 0.0, 0.0, 0};
    back.SetGeoCoord(&xyz);
    back.GeoConvert();
    EXPECT_EQ(0.0, Dest(back).north);
    EXPECT_EQ(0.0, Dest(back).east);
    EXPECT_EQ(0.0, Dest(back).height);  // the Cartesian inverse always gives height 0
    back.FreeGeoParam();
}

TEST_F(Pipeline, StatesBelongToFreeGeoParamAlone) {
    CGeoTransform t;
    ASSERT_EQ(1, t.SetGeoParam(GaussKruger, Mercator, 4, 3));  // Gauss-Kruger works at scale 1
    {
        CGeoTransform copy(t);  // shares the states; its destructor frees nothing
        GeoCoordTag in{6000000.0, 500000.0, 0.0, 0};
        copy.SetGeoCoord(&in);
        EXPECT_EQ(1, copy.GeoConvert());
        EXPECT_TRUE(std::isfinite(Dest(copy).north));
    }
    GeoCoordTag in{6000000.0, 500000.0, 0.0, 0};
    t.SetGeoCoord(&in);
    EXPECT_EQ(1, t.GeoConvert());  // the states are still alive
    t.FreeGeoParam();
    t.FreeGeoParam();  // releases nothing the second time

    // A new set-up after FreeGeoParam works as the first.
    ASSERT_EQ(1, t.SetGeoParam(Geographic, UTM, 3, 3));
    GeoCoordTag geo{45.0, 3.0, 0.0, 0};
    t.SetGeoCoord(&geo);
    t.GeoConvert();
    EXPECT_NEAR(4982950.400, Dest(t).north, 0.0005);
    t.FreeGeoParam();
}

TEST_F(Pipeline, SettersFromARecordReReadTheCatalog) {
    CGeoReferenceData host;
    host.CreateGeoInfo(TransverseMercator, 4);
    ScaledProjectionParam p{0.9996, 39.0, 0.0, 500000, 0};
    host.SetParam(&p);
    host.SetDatumName("Renamed by the host");
    CGeoTransform t;
    t.SetReferenceDataSource(&host);
    EXPECT_EQ(TransverseMercator, t.GetReferenceDataSource()->GetProjection());
    EXPECT_EQ(TransverseMercator, t.GetGeoCoordSource()->GetProjection());
    EXPECT_STREQ("Pulkovo 1942", t.GetReferenceDataSource()->szDatumName);
    EXPECT_EQ(0, std::memcmp(&p, t.GetReferenceDataSource()->GetParam(), sizeof p));
    t.SetReferenceDataSource(nullptr);  // ignored

    EXPECT_EQ(1, t.SetDefault());
    EXPECT_EQ(Geographic, t.GetReferenceDataSource()->GetProjection());
    EXPECT_EQ(Geographic, t.GetGeoCoordDest()->GetProjection());
    EXPECT_EQ(3, t.GetReferenceDataDest()->GetDatum());
}

TEST_F(Pipeline, APairIsSavedAndRestored) {
    CGeoTransform t;
    t.SetDatumAndPrSource(TransverseMercator, 4);
    ScaledProjectionParam p{0.9996, 39.0, 0.0, 500000, 0};
    t.GetReferenceDataSource()->SetParam(&p);
    t.SetDatumAndPrDest(UTM, 3);
    Block(t.GetReferenceDataDest())->fe = 1;
    Block(t.GetReferenceDataDest())->fn = 37;
    ASSERT_EQ(1, t.SaveData("Software\\Host\\Pair"));

    CGeoTransform loaded;
    ASSERT_EQ(1, loaded.LoadData("Software\\Host\\Pair"));
    EXPECT_EQ(TransverseMercator, loaded.GetGeoCoordSource()->GetProjection());
    EXPECT_EQ(4, loaded.GetReferenceDataSource()->GetDatum());
    EXPECT_EQ(0, std::memcmp(&p, loaded.GetReferenceDataSource()->GetParam(), sizeof p));
    EXPECT_EQ(UTM, loaded.GetReferenceDataDest()->GetProjection());
    EXPECT_EQ(37, Block(loaded.GetReferenceDataDest())->fn);
    loaded.FreeGeoParam();

    CGeoTransform fresh;
    EXPECT_EQ(1, fresh.LoadData("Software\\Host\\Nothing"));  // defaults: both Geographic on WGS 84
    EXPECT_EQ(Geographic, fresh.GetReferenceDataDest()->GetProjection());
    EXPECT_EQ(3, fresh.GetReferenceDataSource()->GetDatum());
    fresh.FreeGeoParam();
}

}  // namespace
