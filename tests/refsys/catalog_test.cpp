// The catalog operations of CGeoReferenceData on small catalogs written by
// each test, so every expected value is visible in the test itself.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include <mapwright/GeoReferenceData.h>
#include <mapwright/profile.h>

#include "testenv.h"

namespace {

std::string Datum(int section, int index, const std::string& name, const std::string& ellipsoid,
                  const std::string& values = "0,0,0,0,0,0") {
    std::string s = "[Format " + std::to_string(section) + "]\r\nDatumIndex=" + std::to_string(index) +
                    "\r\nDatumName=" + name + "\r\nEllipsoidIndex=" + ellipsoid + "\r\n";
    size_t start = 0;
    for (int i = 0; i < 6; ++i) {
        size_t comma = values.find(',', start);
        std::string v = values.substr(start, comma == std::string::npos ? std::string::npos : comma - start);
        s += "datumParam_" + std::to_string(i / 3) + "_" + std::to_string(i % 3) + "=" + v + "\r\n";
        start = comma + 1;
    }
    return s;
}

std::string Ellipsoid(int section, const std::string& index, const std::string& name, const std::string& a,
                      const std::string& rf) {
    return "[Format " + std::to_string(section) + "]\r\nIndex=" + index + "\r\nEllipsName=" + name +
           "\r\nellipsParam_0=" + a + "\r\nellipsParam_1=" + rf + "\r\n";
}

// The example catalogs: five datums, the one with index 3 on ellipsoid 5,
// which sits in section 2 of the ellipsoid catalog.
class Catalogs : public ::testing::Test {
protected:
    void SetUp() override {
        m_datums = Datum(0, 0, "Zero", "1") + Datum(1, 1, "One", "1") + Datum(2, 2, "Two", "2") +
                   Datum(3, 3, "WGS 84", "5") + Datum(4, 4, "Pulkovo 1942", "7", "28,-130,-95,1,2,3");
        m_ellipsoids = Ellipsoid(0, "1", "Airy 1830", "6377563.396", "299.3249646") +
                       Ellipsoid(1, "7", "Krassovsky 1940", "6378245.0", "298.3") +
                       Ellipsoid(2, "5", "WGS 84", "6378137.0", "298.257223563");
        Write();
    }
    void Write() {
        mwtest::WriteFile(DatumFile(), m_datums);
        mwtest::WriteFile(EllipsFile(), m_ellipsoids);
    }
    std::string DatumFile() const { return m_env.catalogDir() + "/datum.ini"; }
    std::string EllipsFile() const { return m_env.catalogDir() + "/ellips.ini"; }
    std::string Read(const std::string& file, int section, const char* key) const {
        char buf[256];
        std::string s = "Format " + std::to_string(section);
        GetPrivateProfileStringA(s.c_str(), key, "<missing>", buf, sizeof buf, file.c_str());
        return buf;
    }

    mwtest::IsolatedEnv m_env{false};
    std::string m_datums, m_ellipsoids;
};

TEST_F(Catalogs, CreateGeoInfoFillsTheRecordFromTheDatumIndex) {
    CGeoReferenceData r;
    EXPECT_EQ(1, r.CreateGeoInfo(TransverseMercator, 3));
    EXPECT_EQ(TransverseMercator, r.GetProjection());
    EXPECT_EQ(3, r.GetDatum());
    EXPECT_EQ(5, r.GetEllipsoid());
    EXPECT_STREQ("WGS 84", r.szDatumName);
    EXPECT_STREQ("WGS 84", r.szEllipsName);
    EXPECT_EQ(6378137.0, r.m_dGeoInfo[0]);
    EXPECT_EQ(298.257223563, r.m_dGeoInfo[1]);

    EXPECT_EQ(1, r.CreateGeoInfo(Geographic, 4));
    EXPECT_STREQ("Pulkovo 1942", r.szDatumName);
    EXPECT_STREQ("Krassovsky 1940", r.szEllipsName);
    const short expected[6] = {28, -130, -95, 1, 2, 3};
    EXPECT_EQ(0, std::memcmp(expected, r.m_nDatumValues, sizeof expected));
}

TEST_F(Catalogs, AGapHidesEverythingAfterIt) {
    // Without section 1 the ellipsoid in section 2 is never reached.
    m_ellipsoids = Ellipsoid(0, "1", "Airy 1830", "6377563.396", "299.3249646") +
                   Ellipsoid(2, "5", "WGS 84", "6378137.0", "298.257223563");
    Write();
    CGeoReferenceData r;
    r.SetEllipsName("previous");
    EXPECT_EQ(1, r.CreateGeoInfo(Geographic, 3));
    EXPECT_EQ(5, r.GetEllipsoid());  // the datum still names it
    EXPECT_EQ(0.0, r.m_dGeoInfo[0]);
    EXPECT_EQ(0.0, r.m_dGeoInfo[1]);
    EXPECT_STREQ("previous", r.szEllipsName);  // names are written only on a match
}

TEST_F(Catalogs, CreateGeoInfoOutcomes) {
    struct Case {
        const char* why;
        int startKind, kind, datumIndex;
        int result, expectedKind, expectedDatum, expectedEllipsoid;
        double expectedA;
    };
    const Case cases[] = {
        {"kind out of range: datum part filled, kind kept", Mercator, 9, 3, 0, Mercator, 3, 5, 6378137.0},
        {"kind 0 refused", Mercator, 0, 3, 0, Mercator, 3, 5, 6378137.0},
        {"negative index: datum 1, nothing matched", -1, Geographic, -1, 1, Geographic, 1, 0, 0.0},
        {"index not in the catalog", -1, UTM, 42, 1, UTM, 42, 0, 0.0},
    };
    for (const Case& c : cases) {
        CGeoReferenceData r;
        if (c.startKind > 0) r.SetProjection(c.startKind);
        r.m_nDatumValues[0] = 99;
        EXPECT_EQ(c.result, r.CreateGeoInfo(c.kind, c.datumIndex)) << c.why;
        EXPECT_EQ(c.expectedKind, r.GetProjection()) << c.why;
        EXPECT_EQ(c.expectedDatum, r.GetDatum()) << c.why;
        EXPECT_EQ(c.expectedEllipsoid, r.GetEllipsoid()) << c.why;
        EXPECT_EQ(c.expectedA, r.m_dGeoInfo[0]) << c.why;
        if (c.expectedA == 0.0) {
            EXPECT_EQ(0, r.m_nDatumValues[0]) << c.why;
        }
    }
}

TEST_F(Catalogs, TheLastOfDuplicateIndicesWins) {
    m_datums += Datum(5, 3, "WGS 84 (again)", "7", "1,2,3,4,5,6");
    Write();
    CGeoReferenceData r;
    r.CreateGeoInfo(Geographic, 3);
    EXPECT_STREQ("WGS 84 (again)", r.szDatumName);
    EXPECT_STREQ("Krassovsky 1940", r.szEllipsName);
    EXPECT_EQ(6, r.m_nDatumValues[5]);
}

TEST_F(Catalogs, IndicesAreMatchedAsTextAndNumbersReadAsAtoiAndAtofDo) {
    m_datums += Datum(5, 6, "Odd values", "05", "70000,-40000, 12abc,x,,-1");
    m_ellipsoids += Ellipsoid(3, "05", "Padded", "  6378000.5xyz", "garbage");
    Write();
    CGeoReferenceData r;
    r.CreateGeoInfo(Geographic, 6);
    EXPECT_EQ(5, r.GetEllipsoid());
    EXPECT_STREQ("Padded", r.szEllipsName);  // "05" finds "05", not "5"
    EXPECT_EQ(6378000.5, r.m_dGeoInfo[0]);
    EXPECT_EQ(0.0, r.m_dGeoInfo[1]);
    const short expected[6] = {static_cast<short>(70000 - 65536), static_cast<short>(-40000 + 65536), 12, 0, 0, -1};
    EXPECT_EQ(0, std::memcmp(expected, r.m_nDatumValues, sizeof expected));

    // The name lookup writes the index back with "%d": "05" finds "5".
    DatumParamTag tag{};
    std::strcpy(tag.szDatumName, "Odd values");
    EXPECT_EQ(1, r.GetDatumParam(&tag));
    EXPECT_STREQ("WGS 84", tag.szEllipsName);
}

TEST_F(Catalogs, MissingCatalogsBehaveAsEmptyOnes) {
    std::remove(DatumFile().c_str());
    std::remove(EllipsFile().c_str());
    CGeoReferenceData r;
    r.SetDatumName("kept");
    EXPECT_EQ(1, r.CreateGeoInfo(Cartesian, 3));
    EXPECT_EQ(Cartesian, r.GetProjection());
    EXPECT_EQ(0, r.GetEllipsoid());
    EXPECT_EQ(0.0, r.m_dGeoInfo[0]);
    EXPECT_STREQ("kept", r.szDatumName);
    DatumParamTag tag{};
    std::strcpy(tag.szDatumName, "WGS 84");
    EXPECT_EQ(0, r.GetDatumParam(&tag));
}

TEST_F(Catalogs, GetDatumParamReportsTheDatumInKilometres) {
    CGeoReferenceData r;
    DatumParamTag tag{};
    tag.nSize = 136;
    tag.nFlags = 1;
    std::strcpy(tag.szDatumName, "Pulkovo 1942");
    EXPECT_EQ(1, r.GetDatumParam(&tag));
    EXPECT_STREQ("Krassovsky 1940", tag.szEllipsName);
    EXPECT_EQ(6378.245, double{tag.dSemiMajorKm});  // a copy: the field is packed
    EXPECT_EQ(298.3, double{tag.dInvFlattening});  // a copy: the field is packed
    const int16_t expected[6] = {28, -130, -95, 1, 2, 3};
    EXPECT_EQ(0, std::memcmp(expected, tag.nDatumValues, sizeof expected));
    EXPECT_EQ(-1, r.GetProjection());  // the record is not changed

    DatumParamTag unknown{};
    std::strcpy(unknown.szDatumName, "pulkovo 1942");  // case matters
    std::strcpy(unknown.szEllipsName, "caller's");
    const DatumParamTag before = unknown;
    EXPECT_EQ(0, r.GetDatumParam(&unknown));
    EXPECT_EQ(0, std::memcmp(&before, &unknown, sizeof before));
    EXPECT_EQ(0, r.GetDatumParam(nullptr));
}

TEST_F(Catalogs, GetDatumParamKeepsTheCallersEllipsoidWhenItIsMissing) {
    m_datums += Datum(5, 6, "Lost ellipsoid", "99", "1,2,3,0,0,0");
    Write();
    CGeoReferenceData r;
    DatumParamTag tag{};
    std::strcpy(tag.szDatumName, "Lost ellipsoid");
    std::strcpy(tag.szEllipsName, "mine");
    tag.dSemiMajorKm = 1.5;
    EXPECT_EQ(1, r.GetDatumParam(&tag));
    EXPECT_STREQ("mine", tag.szEllipsName);
    EXPECT_EQ(1.5, double{tag.dSemiMajorKm});  // a copy: the field is packed
    EXPECT_EQ(3, tag.nDatumValues[2]);
}

TEST_F(Catalogs, SetDatumAndEllipsIndexAppendsUnknownNamesOnce) {
    CGeoReferenceData r;
    r.SetProjection(Geographic);
    r.SetEllipsName("Krassovsky 1940");
    r.SetDatumName("Pulkovo 1942 (Hungary)");
    double geo[2] = {6378245.0, 298.3};
    short values[6] = {28, -121, -77, 0, 0, 0};
    r.SetGeoInfo(geo, values);
    EXPECT_EQ(1, r.SetDatumAndEllipsIndex());
    EXPECT_EQ(7, r.GetEllipsoid());  // known ellipsoid
    EXPECT_EQ(6, r.GetDatum());      // appended in section 5 with index 6
    EXPECT_EQ("6", Read(DatumFile(), 5, "DatumIndex"));
    EXPECT_EQ("7", Read(DatumFile(), 5, "EllipsoidIndex"));
    EXPECT_EQ("Pulkovo 1942 (Hungary)", Read(DatumFile(), 5, "DatumName"));
    EXPECT_EQ("-121", Read(DatumFile(), 5, "datumParam_0_1"));
    EXPECT_EQ(m_ellipsoids, mwtest::ReadFile(EllipsFile()));

    const std::string datumsAfterFirst = mwtest::ReadFile(DatumFile());
    CGeoReferenceData again;
    again.SetEllipsName("Krassovsky 1940");
    again.SetDatumName("Pulkovo 1942 (Hungary)");
    EXPECT_EQ(1, again.SetDatumAndEllipsIndex());
    EXPECT_EQ(6, again.GetDatum());
    EXPECT_EQ(datumsAfterFirst, mwtest::ReadFile(DatumFile()));

    // And the new entry is a real catalog entry now.
    CGeoReferenceData loaded;
    loaded.CreateGeoInfo(Geographic, 6);
    EXPECT_STREQ("Pulkovo 1942 (Hungary)", loaded.szDatumName);
    EXPECT_EQ(6378245.0, loaded.m_dGeoInfo[0]);
    EXPECT_EQ(-77, loaded.m_nDatumValues[2]);
}

TEST_F(Catalogs, SetDatumAndEllipsIndexAppendsANewEllipsoidWithSixDecimals) {
    CGeoReferenceData r;
    r.SetEllipsName("Test sphere");
    r.SetDatumName("Test datum");
    double geo[2] = {6371000.0, 298.257223563};
    r.SetGeoInfo(geo, nullptr);
    EXPECT_EQ(1, r.SetDatumAndEllipsIndex());
    EXPECT_EQ(4, r.GetEllipsoid());  // section 3, index 4
    EXPECT_EQ("6371000.000000", Read(EllipsFile(), 3, "ellipsParam_0"));
    EXPECT_EQ("298.257224", Read(EllipsFile(), 3, "ellipsParam_1"));  // "%lf" keeps six decimals
    EXPECT_EQ("4", Read(DatumFile(), 5, "EllipsoidIndex"));
}

TEST_F(Catalogs, SetDatumAndEllipsIndexNeedsBothNames) {
    CGeoReferenceData r;
    r.SetDatumName("Something");
    EXPECT_EQ(0, r.SetDatumAndEllipsIndex());
    EXPECT_EQ(-1, r.GetDatum());
    EXPECT_EQ(m_datums, mwtest::ReadFile(DatumFile()));
}

TEST_F(Catalogs, EmptyCatalogsGetTheirFirstEntries) {
    std::remove(DatumFile().c_str());
    std::remove(EllipsFile().c_str());
    CGeoReferenceData r;
    r.SetEllipsName("WGS 84");
    r.SetDatumName("WGS 84");
    EXPECT_EQ(1, r.SetDatumAndEllipsIndex());
    EXPECT_EQ(1, r.GetEllipsoid());
    EXPECT_EQ(1, r.GetDatum());
    EXPECT_EQ("1", Read(DatumFile(), 0, "DatumIndex"));
    EXPECT_EQ("WGS 84", Read(EllipsFile(), 0, "EllipsName"));
}

TEST_F(Catalogs, ChangedPathsAreUsedByLaterCalls) {
    const std::string other = m_env.catalogDir() + "/other.ini";
    mwtest::WriteFile(other, Datum(0, 3, "Elsewhere", "5"));
    CGeoReferenceData r;
    *r.GetDatumFile() = other.c_str();
    r.CreateGeoInfo(Geographic, 3);
    EXPECT_STREQ("Elsewhere", r.szDatumName);
    EXPECT_STREQ("WGS 84", r.szEllipsName);
}

}  // namespace
