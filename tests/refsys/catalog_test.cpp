// The catalog operations of CGeoReferenceData on small catalogs written by
// each test, and a walk of the shipped catalogs through the library.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <set>
#include <string>

#include <mapwright/GeoReferenceData.h>
#include <mapwright/profile.h>

#include "testenv.h"

namespace {

std::string Datum(int section, int index, const std::string& name, const std::string& ellipsoid,
                  const char* values = "0,0,0,0,0,0") {
    std::string s = "[Format " + std::to_string(section) + "]\r\nDatumIndex=" + std::to_string(index) +
                    "\r\nDatumName=" + name + "\r\nEllipsoidIndex=" + ellipsoid + "\r\n";
    const std::string v = values;
    for (size_t i = 0, start = 0; i < 6; ++i) {
        const size_t comma = v.find(',', start);
        s += "datumParam_" + std::to_string(i / 3) + "_" + std::to_string(i % 3) + "=" +
             v.substr(start, comma == std::string::npos ? std::string::npos : comma - start) + "\r\n";
        start = comma + 1;
    }
    return s;
}

std::string Ellipsoid(int section, const char* index, const char* name, const char* a, const char* rf) {
    return "[Format " + std::to_string(section) + "]\r\nIndex=" + index + "\r\nEllipsName=" + name +
           "\r\nellipsParam_0=" + a + "\r\nellipsParam_1=" + rf + "\r\n";
}

std::string Read(const std::string& file, int section, const char* key) {
    char buf[256];
    GetPrivateProfileStringA(("Format " + std::to_string(section)).c_str(), key, "", buf, sizeof buf, file.c_str());
    return buf;
}

DatumParamTag Named(const char* datum) {
    DatumParamTag tag{};
    std::strcpy(tag.szDatumName, datum);
    return tag;
}

// Five datums, the one with index 3 on ellipsoid 5, which sits in section 2.
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
    mwtest::IsolatedEnv m_env{false};
    std::string m_datums, m_ellipsoids;
};

TEST_F(Catalogs, CreateGeoInfoFillsTheRecordFromTheDatumIndex) {
    CGeoReferenceData r;
    EXPECT_EQ(1, r.CreateGeoInfo(TransverseMercator, 3));
    EXPECT_EQ(TransverseMercator, r.GetProjection());
    EXPECT_EQ(5, r.GetEllipsoid());
    EXPECT_STREQ("WGS 84", r.szEllipsName);
    EXPECT_EQ(6378137.0, r.m_dGeoInfo[0]);
    EXPECT_EQ(298.257223563, r.m_dGeoInfo[1]);
    EXPECT_EQ(1, r.CreateGeoInfo(Geographic, 4));
    EXPECT_STREQ("Pulkovo 1942", r.szDatumName);
    EXPECT_STREQ("Krassovsky 1940", r.szEllipsName);
    const short expected[6] = {28, -130, -95, 1, 2, 3};
    EXPECT_EQ(0, std::memcmp(expected, r.m_nDatumValues, sizeof expected));
}

TEST_F(Catalogs, CreateGeoInfoOutcomes) {
    const struct {
        int startKind, kind, index, result, kindAfter, datum, ellipsoid;
        double a;
    } rows[] = {
        {Mercator, 9, 3, 0, Mercator, 3, 5, 6378137.0},  // kind refused, datum part filled
        {Mercator, 0, 3, 0, Mercator, 3, 5, 6378137.0},
        {-1, Geographic, -1, 1, Geographic, 1, 0, 0.0},  // negative index: datum 1, nothing matched
        {-1, UTM, 42, 1, UTM, 42, 0, 0.0},
    };
    for (const auto& c : rows) {
        SCOPED_TRACE(std::to_string(c.kind) + " " + std::to_string(c.index));
        CGeoReferenceData r;
        if (c.startKind > 0) r.SetProjection(c.startKind);
        r.m_nDatumValues[0] = 99;
        EXPECT_EQ(c.result, r.CreateGeoInfo(c.kind, c.index));
        EXPECT_EQ(c.kindAfter, r.GetProjection());
        EXPECT_EQ(c.datum, r.GetDatum());
        EXPECT_EQ(c.ellipsoid, r.GetEllipsoid());
        EXPECT_EQ(c.a, r.m_dGeoInfo[0]);
        EXPECT_EQ(0, r.m_nDatumValues[0]);
    }
}

TEST_F(Catalogs, ScansStopAtAGapTakeTheLastDuplicateAndReadAsAtoiDoes) {
    m_datums += Datum(5, 3, "WGS 84 (again)", "7", "1,2,3,4,5,6") +
                Datum(6, 6, "Odd values", "05", "70000,-40000, 12abc,x,,-1");
    m_ellipsoids = Ellipsoid(0, "1", "Airy 1830", "6377563.396", "299.3249646") +
                   Ellipsoid(1, "7", "Krassovsky 1940", "6378245.0", "298.3") +
                   Ellipsoid(2, "05", "Padded", "  6378000.5xyz", "garbage") +
                   Ellipsoid(4, "5", "Hidden", "6378137.0", "298.257223563");  // after a gap
    Write();
    CGeoReferenceData r;
    r.CreateGeoInfo(Geographic, 3);
    EXPECT_STREQ("WGS 84 (again)", r.szDatumName);
    EXPECT_STREQ("Krassovsky 1940", r.szEllipsName);
    EXPECT_EQ(6, r.m_nDatumValues[5]);
    r.CreateGeoInfo(Geographic, 6);
    EXPECT_EQ(5, r.GetEllipsoid());
    EXPECT_STREQ("Padded", r.szEllipsName);  // "05" finds "05", not "5"
    EXPECT_EQ(6378000.5, r.m_dGeoInfo[0]);
    EXPECT_EQ(0.0, r.m_dGeoInfo[1]);
    const short expected[6] = {70000 - 65536, -40000 + 65536, 12, 0, 0, -1};
    EXPECT_EQ(0, std::memcmp(expected, r.m_nDatumValues, sizeof expected));
    DatumParamTag tag = Named("Odd values");  // the name lookup writes the index back with "%d"
    EXPECT_EQ(1, r.GetDatumParam(&tag));
    EXPECT_STREQ("", tag.szEllipsName);  // "5" lies beyond the gap
    r.SetEllipsName("previous");
    r.CreateGeoInfo(Geographic, 2);  // ellipsoid 2 is nowhere: names written only on a match
    EXPECT_EQ(0.0, r.m_dGeoInfo[0]);
    EXPECT_STREQ("previous", r.szEllipsName);
}

TEST_F(Catalogs, GetDatumParamReportsTheDatumInKilometres) {
    CGeoReferenceData r;
    DatumParamTag tag = Named("Pulkovo 1942");
    EXPECT_EQ(1, r.GetDatumParam(&tag));
    EXPECT_STREQ("Krassovsky 1940", tag.szEllipsName);
    EXPECT_EQ(6378.245, double{tag.dSemiMajorKm});  // copies: the fields are packed
    EXPECT_EQ(298.3, double{tag.dInvFlattening});
    EXPECT_EQ(3, tag.nDatumValues[5]);
    EXPECT_EQ(-1, r.GetProjection());  // the record is not changed
    DatumParamTag unknown = Named("pulkovo 1942");  // case matters
    std::strcpy(unknown.szEllipsName, "caller's");
    const DatumParamTag before = unknown;
    EXPECT_EQ(0, r.GetDatumParam(&unknown));
    EXPECT_EQ(0, std::memcmp(&before, &unknown, sizeof before));
    EXPECT_EQ(0, r.GetDatumParam(nullptr));
    m_datums += Datum(5, 6, "Lost ellipsoid", "99", "1,2,3,0,0,0");
    Write();
    DatumParamTag lost = Named("Lost ellipsoid");  // the caller's ellipsoid is kept
    std::strcpy(lost.szEllipsName, "mine");
    lost.dSemiMajorKm = 1.5;
    EXPECT_EQ(1, r.GetDatumParam(&lost));
    EXPECT_STREQ("mine", lost.szEllipsName);
    EXPECT_EQ(1.5, double{lost.dSemiMajorKm});
    EXPECT_EQ(3, lost.nDatumValues[2]);
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
    EXPECT_EQ("7", Read(DatumFile(), 5, "EllipsoidIndex"));
    EXPECT_EQ("-121", Read(DatumFile(), 5, "datumParam_0_1"));
    EXPECT_EQ(m_ellipsoids, mwtest::ReadFile(EllipsFile()));
    const std::string after = mwtest::ReadFile(DatumFile());
    EXPECT_EQ(1, r.SetDatumAndEllipsIndex());
    EXPECT_EQ(after, mwtest::ReadFile(DatumFile()));
    CGeoReferenceData loaded;  // a real catalog entry now
    loaded.CreateGeoInfo(Geographic, 6);
    EXPECT_STREQ("Pulkovo 1942 (Hungary)", loaded.szDatumName);
    EXPECT_EQ(-77, loaded.m_nDatumValues[2]);
    CGeoReferenceData sphere;  // a new ellipsoid, "%lf": six decimals
    sphere.SetEllipsName("Test sphere");
    sphere.SetDatumName("Test datum");
    double g[2] = {6371000.0, 298.257223563};
    sphere.SetGeoInfo(g, nullptr);
    EXPECT_EQ(1, sphere.SetDatumAndEllipsIndex());
    EXPECT_EQ(4, sphere.GetEllipsoid());
    EXPECT_EQ("6371000.000000", Read(EllipsFile(), 3, "ellipsParam_0"));
    EXPECT_EQ("298.257224", Read(EllipsFile(), 3, "ellipsParam_1"));
    EXPECT_EQ("4", Read(DatumFile(), 6, "EllipsoidIndex"));
    CGeoReferenceData half;  // both names are needed
    half.SetDatumName("Something");
    EXPECT_EQ(0, half.SetDatumAndEllipsIndex());
    EXPECT_EQ(-1, half.GetDatum());
}

TEST_F(Catalogs, MissingCatalogsAreEmptyOnesAndPathsCanChange) {
    std::remove(DatumFile().c_str());
    std::remove(EllipsFile().c_str());
    CGeoReferenceData r;
    r.SetDatumName("kept");
    EXPECT_EQ(1, r.CreateGeoInfo(Cartesian, 3));
    EXPECT_EQ(0, r.GetEllipsoid());
    EXPECT_STREQ("kept", r.szDatumName);
    DatumParamTag tag = Named("WGS 84");
    EXPECT_EQ(0, r.GetDatumParam(&tag));
    r.SetEllipsName("WGS 84");
    r.SetDatumName("WGS 84");
    EXPECT_EQ(1, r.SetDatumAndEllipsIndex());  // the first entries
    EXPECT_EQ(1, r.GetEllipsoid());
    EXPECT_EQ(1, r.GetDatum());
    EXPECT_EQ("1", Read(DatumFile(), 0, "DatumIndex"));
    const std::string other = m_env.catalogDir() + "/other.ini";
    mwtest::WriteFile(other, Datum(0, 3, "Elsewhere", "1"));
    *r.GetDatumFile() = other.c_str();
    r.CreateGeoInfo(Geographic, 3);
    EXPECT_STREQ("Elsewhere", r.szDatumName);
}

TEST(ShippedCatalogs, EveryDatumAndEllipsoidIsReached) {
    mwtest::IsolatedEnv env;
    const std::string datums = env.catalogDir() + "/datum.ini", ellipsoids = env.catalogDir() + "/ellips.ini";
    std::set<int> reached;
    int n = 0;
    for (; !Read(datums, n, "DatumName").empty(); ++n) {
        SCOPED_TRACE("datum section " + std::to_string(n));
        const std::string name = Read(datums, n, "DatumName");
        CGeoReferenceData r;
        ASSERT_EQ(1, r.CreateGeoInfo(Geographic, std::atoi(Read(datums, n, "DatumIndex").c_str())));
        EXPECT_EQ(name, r.szDatumName);
        EXPECT_EQ(std::atoi(Read(datums, n, "EllipsoidIndex").c_str()), r.GetEllipsoid());
        EXPECT_GT(r.m_dGeoInfo[0], 6377000.0);  // 0 would mean "not found"
        for (int i = 0; i < 3; ++i) {
            const std::string key = "datumParam_0_" + std::to_string(i);
            EXPECT_EQ(std::atoi(Read(datums, n, key.c_str()).c_str()), r.m_nDatumValues[i]);
        }
        DatumParamTag tag = Named(name.c_str());
        ASSERT_EQ(1, r.GetDatumParam(&tag));
        EXPECT_STREQ(r.szEllipsName, tag.szEllipsName);
        EXPECT_DOUBLE_EQ(r.m_dGeoInfo[0] / 1000.0, double{tag.dSemiMajorKm});
        EXPECT_EQ(r.m_dGeoInfo[1], double{tag.dInvFlattening});
        reached.insert(r.GetEllipsoid());
    }
    EXPECT_EQ(n, 68);
    for (int k = 0; !Read(ellipsoids, k, "EllipsName").empty(); ++k)
        EXPECT_TRUE(reached.count(std::atoi(Read(ellipsoids, k, "Index").c_str()))) << Read(ellipsoids, k, "EllipsName");
    CGeoReferenceData r;
    r.SetDefault();  // Geographic on WGS 84, the shift pivot
    EXPECT_EQ(Geographic, r.GetProjection());
    EXPECT_EQ(3, r.GetDatum());
    EXPECT_STREQ("WGS 84", r.szEllipsName);
    EXPECT_EQ(6378137.0, r.m_dGeoInfo[0]);
    EXPECT_EQ(298.257223563, r.m_dGeoInfo[1]);
    for (short v : r.m_nDatumValues) EXPECT_EQ(0, v);
}

}  // namespace
