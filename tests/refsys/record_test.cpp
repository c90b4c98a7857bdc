#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include <mapwright/GeoReferenceData.h>
#include <mapwright/basalt.h>

#include "testenv.h"

namespace {

bool AllZero(const void* p, size_t n) {
    const unsigned char* b = static_cast<const unsigned char*>(p);
    for (size_t i = 0; i < n; ++i)
        if (b[i]) return false;
    return true;
}

TEST(ReferenceRecord, NewRecordIsUnset) {
    mwtest::IsolatedEnv env;
    CGeoReferenceData r;
    EXPECT_EQ(-1, r.GetProjection());
    EXPECT_EQ(-1, r.GetDatum());
    EXPECT_EQ(-1, r.GetEllipsoid());
    EXPECT_EQ(nullptr, r.GetParam());
    double geo[2] = {1, 1};
    short values[6] = {1, 1, 1, 1, 1, 1};
    EXPECT_EQ(0, r.GetGeoInfoA(geo, values));
    EXPECT_TRUE(AllZero(geo, sizeof geo));
    EXPECT_TRUE(AllZero(values, sizeof values));
    EXPECT_TRUE(AllZero(r.szDatumName, 50));
    EXPECT_TRUE(AllZero(r.szEllipsName, 50));
    CString name("x");
    r.GetEllipsName(name);
    EXPECT_TRUE(name.IsEmpty());
    // The catalog paths are the application directory and the Windows-style tails.
    EXPECT_EQ(CString((env.appDir() + "\\Auxiliary Data\\ellips.ini").c_str()), *r.GetEllipsFile());
    EXPECT_EQ(CString((env.appDir() + "\\Auxiliary Data\\datum.ini").c_str()), *r.GetDatumFile());
    EXPECT_EQ(CString((env.appDir() + "\\Auxiliary Data\\projection.ini").c_str()), *r.GetProjectionFile());
}

TEST(ReferenceRecord, SetProjectionKeepsOrReplacesTheBlock) {
    CGeoReferenceData r;
    ASSERT_EQ(1, r.SetProjection(GaussKruger));
    auto* scaled = static_cast<ScaledProjectionParam*>(r.GetParam());
    ASSERT_NE(nullptr, scaled);
    EXPECT_TRUE(AllZero(scaled, sizeof *scaled));  // new blocks are zero-filled
    scaled->scale = 0.5;
    scaled->fn = 7;  // the last field of a 32-byte block

    EXPECT_EQ(1, r.SetProjection(GaussKruger));  // same kind: same block, same values
    EXPECT_EQ(static_cast<void*>(scaled), r.GetParam());
    EXPECT_EQ(0.5, scaled->scale);

    EXPECT_EQ(1, r.SetProjection(TransverseMercator));  // same size, values not carried
    auto* tm = static_cast<ScaledProjectionParam*>(r.GetParam());
    EXPECT_TRUE(AllZero(tm, sizeof *tm));
    tm->fn = 1;

    EXPECT_EQ(1, r.SetProjection(Mercator));
    auto* plain = static_cast<ProjectionParam*>(r.GetParam());
    EXPECT_TRUE(AllZero(plain, sizeof *plain));
    plain->fn = 3;

    for (int bad : {0, 8, -1, 1000}) {
        EXPECT_EQ(0, r.SetProjection(bad)) << bad;
        EXPECT_EQ(Mercator, r.GetProjection());
        EXPECT_EQ(static_cast<void*>(plain), r.GetParam());
    }
}

TEST(ReferenceRecord, SetParamCopiesTheBlockOfTheKind) {
    struct Case {
        int kind;
        size_t copied;  // bytes copied from the caller's block
    };
    const Case cases[] = {{Geographic, 0}, {UTM, 24}, {GaussKruger, 32}, {TransverseMercator, 32},
                          {Mercator, 24}, {PolarStereographic, 24}, {Cartesian, 0}};
    unsigned char source[32];
    for (size_t i = 0; i < sizeof source; ++i) source[i] = static_cast<unsigned char>(i + 1);
    for (const Case& c : cases) {
        CGeoReferenceData r;
        r.SetProjection(c.kind);
        EXPECT_EQ(1, r.SetParam(source)) << c.kind;
        const size_t size = (c.kind == GaussKruger || c.kind == TransverseMercator) ? 32 : 24;
        if (c.copied)
            EXPECT_EQ(0, std::memcmp(source, r.GetParam(), c.copied)) << c.kind;
        else
            EXPECT_TRUE(AllZero(r.GetParam(), size)) << c.kind;
    }
    CGeoReferenceData unset;
    EXPECT_EQ(1, unset.SetParam(source));
    EXPECT_EQ(nullptr, unset.GetParam());
    CGeoReferenceData utm;
    utm.SetProjection(UTM);
    EXPECT_EQ(1, utm.SetParam(nullptr));
}

TEST(ReferenceRecord, EllipsoidFromAxes) {
    CGeoReferenceData r;
    short values[6] = {28, -130, -95, 1, 2, 3};
    double geo[2] = {6378245.0, 298.3};
    EXPECT_EQ(0, r.SetGeoInfo(geo, values));  // copied although unset
    EXPECT_EQ(0, r.SetDatumData(300.0, 299.0));
    r.SetProjection(Geographic);
    EXPECT_EQ(1, r.SetDatumData(300.0, 299.0));
    EXPECT_EQ(1, r.GetGeoInfoA(geo, values));
    EXPECT_EQ(300.0, geo[0]);
    EXPECT_EQ(300.0, geo[1]);  // exactly a / (a - b)
    EXPECT_TRUE(AllZero(values, sizeof values));

    r.SetDatumData(6371000.0, 6371000.0);  // a sphere
    r.GetGeoInfoA(geo, values);
    EXPECT_TRUE(std::isinf(geo[1]));
    r.SetDatumData(0.0, 0.0);
    r.GetGeoInfoA(geo, values);
    EXPECT_TRUE(std::isnan(geo[1]));
}

TEST(ReferenceRecord, GeoInfoThroughAPackedTag) {
    // Hosts pass the fields of a packed DatumParamTag, which sit unaligned.
    DatumParamTag tag{};
    tag.dSemiMajorKm = 6378137.0;
    tag.dInvFlattening = 298.257223563;
    for (int i = 0; i < 6; ++i) tag.nDatumValues[i] = static_cast<int16_t>(i - 3);
    double geo[2];
    std::memcpy(geo, &tag.dSemiMajorKm, sizeof geo);
    short values[6];
    std::memcpy(values, tag.nDatumValues, sizeof values);

    CGeoReferenceData r;
    r.SetProjection(UTM);
    EXPECT_EQ(1, r.SetGeoInfo(reinterpret_cast<double*>(&tag.dSemiMajorKm),
                              reinterpret_cast<short*>(tag.nDatumValues)));
    EXPECT_EQ(6378137.0, r.m_dGeoInfo[0]);
    EXPECT_EQ(298.257223563, r.m_dGeoInfo[1]);
    EXPECT_EQ(0, std::memcmp(values, r.m_nDatumValues, sizeof values));

    DatumParamTag out{};
    EXPECT_EQ(1, r.GetGeoInfoA(reinterpret_cast<double*>(&out.dSemiMajorKm),
                               reinterpret_cast<short*>(out.nDatumValues)));
    EXPECT_EQ(0, std::memcmp(&out.dSemiMajorKm, &tag.dSemiMajorKm, 2 * sizeof(double) + 12));
}

TEST(ReferenceRecord, CopiesOwnTheirBlocks) {
    CGeoReferenceData a;
    a.SetProjection(TransverseMercator);
    static_cast<ScaledProjectionParam*>(a.GetParam())->scale = 0.9996;
    a.SetDatumName("Pulkovo 1942");
    a.m_nDatum = 7;
    {
        CGeoReferenceData b(a);
        EXPECT_NE(a.GetParam(), b.GetParam());
        EXPECT_EQ(0, std::memcmp(a.GetParam(), b.GetParam(), sizeof(ScaledProjectionParam)));
        EXPECT_EQ(7, b.GetDatum());
        EXPECT_STREQ("Pulkovo 1942", b.szDatumName);
        static_cast<ScaledProjectionParam*>(b.GetParam())->scale = 1.0;
        EXPECT_EQ(0.9996, static_cast<ScaledProjectionParam*>(a.GetParam())->scale);
    }  // b frees its own block; a's is still good
    EXPECT_EQ(0.9996, static_cast<ScaledProjectionParam*>(a.GetParam())->scale);

    CGeoReferenceData c;
    c.SetProjection(Mercator);
    c = a;
    EXPECT_EQ(TransverseMercator, c.GetProjection());
    EXPECT_NE(a.GetParam(), c.GetParam());
    CGeoReferenceData& self = c;
    c = self;
    EXPECT_EQ(0.9996, static_cast<ScaledProjectionParam*>(c.GetParam())->scale);

    CGeoReferenceData unset;
    c = unset;
    EXPECT_EQ(-1, c.GetProjection());
    EXPECT_EQ(nullptr, c.GetParam());
}

TEST(ReferenceRecord, NamesAreCutTo49Characters) {
    CGeoReferenceData r;
    const std::string sixty(60, 'n');
    r.SetDatumName(sixty.c_str());
    CString name;
    r.GetDatumName(name);
    EXPECT_EQ(CString(std::string(49, 'n').c_str()), name);
    EXPECT_EQ('\0', r.szDatumName[49]);

    r.SetEllipsName("Krassovsky 1940");
    r.GetEllipsName(name);
    EXPECT_EQ(CString("Krassovsky 1940"), name);
    EXPECT_TRUE(AllZero(r.szEllipsName + 15, 35));  // the rest of the field zeroed

    // A field a host filled without a terminator is still read within bounds.
    std::memset(r.szDatumName, 'x', sizeof r.szDatumName);
    r.GetDatumName(name);
    EXPECT_EQ(50, name.GetLength());
}

}  // namespace
