// Walks the shipped catalogs through the library: every datum by its index
// with CreateGeoInfo and by its name with GetDatumParam, and every ellipsoid
// through the datums that use it.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include <mapwright/GeoReferenceData.h>
#include <mapwright/profile.h>

#include "testenv.h"

namespace {

// An independent reading of the catalog: section by section, key by key.
std::string Key(const std::string& file, int section, const char* key) {
    char buf[1024];
    const std::string s = "Format " + std::to_string(section);
    GetPrivateProfileStringA(s.c_str(), key, "", buf, sizeof buf, file.c_str());
    return buf;
}

int CountSections(const std::string& file, const char* key) {
    int n = 0;
    while (!Key(file, n, key).empty()) ++n;
    return n;
}

class ShippedCatalogs : public ::testing::Test {
protected:
    std::string DatumFile() const { return m_env.catalogDir() + "/datum.ini"; }
    std::string EllipsFile() const { return m_env.catalogDir() + "/ellips.ini"; }
    mwtest::IsolatedEnv m_env;
};

TEST_F(ShippedCatalogs, EveryDatumAndEllipsoidIsReached) {
    const int datums = CountSections(DatumFile(), "DatumName");
    const int ellipsoids = CountSections(EllipsFile(), "EllipsName");
    EXPECT_GE(datums, 40);
    EXPECT_GE(ellipsoids, 15);

    std::set<int> ellipsoidsReached;
    for (int n = 0; n < datums; ++n) {
        SCOPED_TRACE("datum section " + std::to_string(n));
        const int index = std::atoi(Key(DatumFile(), n, "DatumIndex").c_str());
        const std::string name = Key(DatumFile(), n, "DatumName");

        CGeoReferenceData r;
        ASSERT_EQ(1, r.CreateGeoInfo(Geographic, index));
        EXPECT_EQ(name, r.szDatumName);
        EXPECT_EQ(std::atoi(Key(DatumFile(), n, "EllipsoidIndex").c_str()), r.GetEllipsoid());
        // Every real ellipsoid lies within these bounds; 0 would mean "not found".
        EXPECT_GT(r.m_dGeoInfo[0], 6377000.0);
        EXPECT_LT(r.m_dGeoInfo[0], 6378500.0);
        EXPECT_GT(r.m_dGeoInfo[1], 290.0);
        EXPECT_LT(r.m_dGeoInfo[1], 310.0);
        for (int i = 0; i < 3; ++i) {
            const std::string key = "datumParam_0_" + std::to_string(i);
            EXPECT_EQ(std::atoi(Key(DatumFile(), n, key.c_str()).c_str()), r.m_nDatumValues[i]);
        }

        DatumParamTag tag{};
        tag.nSize = 136;
        tag.nFlags = 1;
        std::strncpy(tag.szDatumName, name.c_str(), 49);
        ASSERT_EQ(1, r.GetDatumParam(&tag));
        EXPECT_STREQ(r.szEllipsName, tag.szEllipsName);
        EXPECT_DOUBLE_EQ(r.m_dGeoInfo[0] / 1000.0, double{tag.dSemiMajorKm});  // a copy: the field is packed
        EXPECT_EQ(r.m_dGeoInfo[1], double{tag.dInvFlattening});  // a copy: the field is packed
        EXPECT_EQ(0, std::memcmp(r.m_nDatumValues, tag.nDatumValues, sizeof r.m_nDatumValues));
        ellipsoidsReached.insert(r.GetEllipsoid());
    }
    for (int k = 0; k < ellipsoids; ++k) {
        const int index = std::atoi(Key(EllipsFile(), k, "Index").c_str());
        EXPECT_TRUE(ellipsoidsReached.count(index)) << Key(EllipsFile(), k, "EllipsName") << " is used by no datum";
    }
}

TEST_F(ShippedCatalogs, TheDefaultIsWgs84TheShiftPivot) {
    CGeoReferenceData r;
    r.SetDefault();
    EXPECT_EQ(Geographic, r.GetProjection());
    EXPECT_EQ(3, r.GetDatum());
    EXPECT_STREQ("WGS 84", r.szDatumName);
    EXPECT_STREQ("WGS 84", r.szEllipsName);
    EXPECT_EQ(6378137.0, r.m_dGeoInfo[0]);
    EXPECT_EQ(298.257223563, r.m_dGeoInfo[1]);
    for (short v : r.m_nDatumValues) EXPECT_EQ(0, v);
}

TEST_F(ShippedCatalogs, NamedDatumsTheToolsRelyOn) {
    struct Case {
        const char* datum;
        const char* ellipsoid;
        double a, rf;
    };
    const Case cases[] = {
        {"WGS 72", "WGS 72", 6378135.0, 298.26},
        {"WGS 66", "WGS 66", 6378145.0, 298.25},
        {"Pulkovo 1942", "Krassovsky 1940", 6378245.0, 298.3},
    };
    CGeoReferenceData r;
    for (const Case& c : cases) {
        DatumParamTag tag{};
        std::strcpy(tag.szDatumName, c.datum);
        ASSERT_EQ(1, r.GetDatumParam(&tag)) << c.datum;
        EXPECT_STREQ(c.ellipsoid, tag.szEllipsName);
        EXPECT_EQ(c.a / 1000.0, double{tag.dSemiMajorKm});  // a copy: the field is packed
        EXPECT_EQ(c.rf, double{tag.dInvFlattening});  // a copy: the field is packed
    }
}

}  // namespace
