// CGeoReferenceData: record, names, catalogs, registry.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include <mapwright/GeoReferenceData.h>
#include <mapwright/basalt.h>
#include <mapwright/codepage.h>
#include <mapwright/profile.h>
#include <mapwright/registry.h>
#include <mapwright/resources.h>
#include <mapwright/winuser.h>

#include "testenv.h"

namespace {

using R = CGeoReferenceData;
using SP = ScaledProjectionParam;
using mwtest::Str;
bool Zero(const void* p, size_t n) { return n == 0 || (!*static_cast<const char*>(p) && !std::memcmp(p, static_cast<const char*>(p) + 1, n - 1)); }
SP* Scaled(R& r) { return static_cast<SP*>(r.GetParam()); }
// The block of r's kind from a scaled one; other kinds take its last four fields.
void Fill(R& r, const SP& p) {
    ProjectionParam q{p.c_lon, p.lat_origin, p.fe, p.fn};
    if (r.GetProjection() == GaussKruger || r.GetProjection() == TransverseMercator) std::memcpy(r.GetParam(), &p, sizeof p);
    else if (r.GetParam()) std::memcpy(r.GetParam(), &q, sizeof q);
}
std::string Ini(const std::string& file, int section, const char* key) {
    char b[256];
    GetPrivateProfileStringA(("Format " + std::to_string(section)).c_str(), key, "", b, sizeof b, file.c_str());
    return b;
}
DatumParamTag Named(const char* datum) {
    DatumParamTag tag{};
    std::strcpy(tag.szDatumName, datum);
    return tag;
}

class Refsys : public ::testing::Test {
protected:
    void TearDown() override { SetThreadUILanguage(LANG_ENGLISH_US); }
    mwtest::IsolatedEnv m_env;
};

TEST_F(Refsys, NewRecordAndItsBlocks) {
    R r;
    EXPECT_TRUE(r.GetProjection() == -1 && r.GetDatum() == -1 && r.GetEllipsoid() == -1 && !r.GetParam());
    double geo[2] = {1, 1};
    short v[6] = {1, 1, 1, 1, 1, 1};
    EXPECT_EQ(0, r.GetGeoInfoA(geo, v));
    EXPECT_TRUE(Zero(geo, sizeof geo) && Zero(v, sizeof v) && Zero(r.szDatumName, 50) && Zero(r.szEllipsName, 50));
    ASSERT_EQ(1, r.SetProjection(GaussKruger));
    SP* gk = Scaled(r);
    EXPECT_TRUE(Zero(gk, sizeof *gk));
    gk->scale = 0.5, gk->fn = 7;  // the last field of 32 bytes
    EXPECT_EQ(1, r.SetProjection(GaussKruger));  // same kind: same block
    EXPECT_TRUE(gk == Scaled(r) && gk->scale == 0.5);
    EXPECT_EQ(1, r.SetProjection(TransverseMercator));  // same size, values not carried
    EXPECT_TRUE(Zero(r.GetParam(), 32));
    EXPECT_EQ(1, r.SetProjection(Mercator));
    void* plain = r.GetParam();
    EXPECT_TRUE(Zero(plain, 24));
    for (int bad : {0, 8, -1}) EXPECT_TRUE(r.SetProjection(bad) == 0 && r.GetProjection() == Mercator && r.GetParam() == plain) << bad;
    const size_t copied[8] = {0, 0, 24, 32, 32, 24, 24, 0};  // SetParam copies by kind
    unsigned char src[32];
    for (int i = 0; i < 32; ++i) src[i] = static_cast<unsigned char>(i + 1);
    for (int kind = 1; kind <= 7; ++kind) {
        R k;
        k.SetProjection(kind);
        EXPECT_EQ(1, k.SetParam(src)) << kind;
        EXPECT_TRUE(copied[kind] ? !std::memcmp(src, k.GetParam(), copied[kind]) : Zero(k.GetParam(), 24)) << kind;
    }
    R unset;
    EXPECT_TRUE(unset.SetParam(src) == 1 && !unset.GetParam());
    unset.SetProjection(UTM);
    EXPECT_EQ(1, unset.SetParam(nullptr));
}

TEST_F(Refsys, GeoInfoCopiesAndNames) {
    R r;
    short v[6] = {28, -130, -95, 1, 2, 3};
    double geo[2] = {6378245, 298.3};
    EXPECT_TRUE(r.SetGeoInfo(geo, v) == 0 && r.SetDatumData(300, 299) == 0);  // copied although unset
    r.SetProjection(Geographic);
    EXPECT_TRUE(r.SetDatumData(300, 299) == 1 && r.GetGeoInfoA(geo, v) == 1);
    EXPECT_TRUE(geo[0] == 300 && geo[1] == 300 && Zero(v, sizeof v));  // exactly a / (a - b)
    r.SetDatumData(6371000, 6371000);
    EXPECT_TRUE(std::isinf(r.m_dGeoInfo[1]));
    r.SetDatumData(0, 0);
    EXPECT_TRUE(std::isnan(r.m_dGeoInfo[1]));
    R a;
    a.SetProjection(TransverseMercator);
    Scaled(a)->scale = 0.9996;
    a.SetDatumName("Pulkovo 1942");
    a.m_nDatum = 7;
    {
        R b(a);
        EXPECT_TRUE(a.GetParam() != b.GetParam() && b.GetDatum() == 7);
        EXPECT_STREQ("Pulkovo 1942", b.szDatumName);
        Scaled(b)->scale = 1;
    }
    R c;
    c.SetProjection(Mercator);
    c = a;
    R& self = c;
    c = self;
    EXPECT_TRUE(Scaled(a)->scale == 0.9996 && c.GetProjection() == TransverseMercator && a.GetParam() != c.GetParam() && Scaled(c)->scale == 0.9996);
    c = R();
    EXPECT_TRUE(c.GetProjection() == -1 && !c.GetParam());
    CString name("x");
    r.GetEllipsName(name);
    EXPECT_TRUE(name.IsEmpty());
    r.SetDatumName(std::string(60, 'n').c_str());  // 49 characters kept
    r.GetDatumName(name);
    EXPECT_EQ(std::string(49, 'n'), Str(name));
    r.SetEllipsName(std::string(60, 'n').c_str());
    r.SetEllipsName("Krassovsky 1940");  // a shorter name clears the rest
    r.GetEllipsName(name);
    EXPECT_TRUE(Str(name) == "Krassovsky 1940" && Zero(r.szEllipsName + 15, 35));
    std::memset(r.szDatumName, 'x', 50);  // unterminated: read within bounds
    r.GetDatumName(name);
    EXPECT_EQ(50, name.GetLength());
}

TEST_F(Refsys, SummariesInBothLanguages) {
    const struct { int kind; SP p; const char *en, *ru; } rows[] = {
        {Mercator, {0, -74.5, 41.258, -20, 1000000}, "Longitude of central meridian 074\xB0 30' 00.00'' W, Latitude of true scale 041\xB0 15' 28.80'' N, "
          "\nFalse easting -20, False northing 1000000, ", nullptr},
        {UTM, {0, 0, 0, -1, 5}, "zone 5", "зона 5"}, {Geographic, {0, 10, 20, 30, 40}, "", ""}, {-1, {}, "", nullptr}};
    for (auto& c : rows) {
        R r;
        r.SetProjection(c.kind);
        Fill(r, c.p);
        CString text("previous");  // replaced, not appended to
        SetThreadUILanguage(LANG_ENGLISH_US);
        r.GetParamName(text);
        EXPECT_EQ(c.en, Str(text)) << c.kind;
        if (!c.ru) continue;
        SetThreadUILanguage(LANG_RUSSIAN);
        r.GetParamName(text);
        EXPECT_EQ(Utf8ToAnsi(c.ru), Str(text)) << c.kind;
    }
}

std::string Datum(int section, int index, const std::string& name, const char* ell, const char* v = "0 0 0 0 0 0") {
    std::string s = "[Format " + std::to_string(section) + "]\r\nDatumIndex=" + std::to_string(index) + "\r\nDatumName=" + name + "\r\nEllipsoidIndex=" + ell + "\r\n";
    for (int i = 0; i < 6; ++i, v += std::strcspn(v, " ") + (v[std::strcspn(v, " ")] != 0))
        s += "datumParam_" + std::to_string(i / 3) + "_" + std::to_string(i % 3) + "=" + std::string(v, std::strcspn(v, " ")) + "\r\n";
    return s;
}
std::string Ellipsoid(int section, const char* index, const char* name, const char* a, const char* rf) {
    return "[Format " + std::to_string(section) + "]\r\nIndex=" + index + "\r\nEllipsName=" + name + "\r\nellipsParam_0=" + a + "\r\nellipsParam_1=" + rf + "\r\n";
}

// Small catalogs: datum 3 on ellipsoid 5, which sits in section 2.
class Catalogs : public ::testing::Test {
protected:
    void SetUp() override {
        m_d = Datum(0, 0, "Zero", "1") + Datum(1, 1, "One", "1") + Datum(2, 2, "Two", "2") + Datum(3, 3, "WGS 84", "5") + Datum(4, 4, "Pulkovo 1942", "7", "28 -130 -95 1 2 3");
        m_e = Ellipsoid(0, "1", "Airy 1830", "6377563.396", "299.3249646") + Ellipsoid(1, "7", "Krassovsky 1940", "6378245.0", "298.3") +
                Ellipsoid(2, "5", "WGS 84", "6378137.0", "298.257223563");
        Write();
    }
    void Write() { mwtest::WriteFile(DF(), m_d), mwtest::WriteFile(EF(), m_e); }
    std::string DF() const { return m_env.catalogDir() + "/datum.ini"; }
    std::string EF() const { return m_env.catalogDir() + "/ellips.ini"; }
    mwtest::IsolatedEnv m_env{false};
    std::string m_d, m_e;
};

TEST_F(Catalogs, CreateGeoInfoAndItsScans) {
    R r;
    EXPECT_EQ(1, r.CreateGeoInfo(TransverseMercator, 3));
    EXPECT_TRUE(r.GetProjection() == TransverseMercator && r.GetEllipsoid() == 5 && r.m_dGeoInfo[0] == 6378137 && r.m_dGeoInfo[1] == 298.257223563);
    EXPECT_STREQ("WGS 84", r.szEllipsName);
    EXPECT_EQ(1, r.CreateGeoInfo(Geographic, 4));
    EXPECT_STREQ("Pulkovo 1942", r.szDatumName);
    EXPECT_STREQ("Krassovsky 1940", r.szEllipsName);
    const short pul[6] = {28, -130, -95, 1, 2, 3};
    EXPECT_EQ(0, std::memcmp(pul, r.m_nDatumValues, 12));
    // start kind, kind, index, result, kind after, datum, ellipsoid, a
    const double rows[][8] = {{Mercator, 9, 3, 0, Mercator, 3, 5, 6378137},
                                {-1, Geographic, -1, 1, Geographic, 1, 0, 0}, {-1, UTM, 42, 1, UTM, 42, 0, 0}};
    for (auto& c : rows) {
        R k;
        if (c[0] > 0) k.SetProjection(int(c[0]));
        k.m_nDatumValues[0] = 99, k.m_dGeoInfo[1] = 99;
        EXPECT_EQ(c[3], k.CreateGeoInfo(int(c[1]), int(c[2]))) << c[1] << " " << c[2];
        EXPECT_TRUE(k.GetProjection() == c[4] && k.GetDatum() == c[5] && k.GetEllipsoid() == c[6] && k.m_dGeoInfo[0] == c[7] && (k.m_dGeoInfo[1] == 0) == (c[7] == 0) &&
                    !k.m_nDatumValues[0]) << c[1] << " " << c[2];
    }
    // Scans stop at a gap, take the last duplicate and read numbers as atoi does.
    m_d += Datum(5, 3, "WGS 84 (again)", "7", "1 2 3 4 5 6") + Datum(6, 6, "Odd values", "05", "70000 -40000 12abc x  -1");
    m_e = Ellipsoid(0, "1", "Airy 1830", "6377563.396", "299.3249646") + Ellipsoid(1, "7", "Krassovsky 1940", "6378245.0", "298.3") +
            Ellipsoid(2, "05", "Padded", "  6378000.5xyz", "garbage") + Ellipsoid(4, "5", "Hidden", "6378137.0", "298.257223563");
    Write();
    r.CreateGeoInfo(Geographic, 3);
    EXPECT_TRUE(!std::strcmp(r.szDatumName, "WGS 84 (again)") && !std::strcmp(r.szEllipsName, "Krassovsky 1940") && r.m_nDatumValues[5] == 6);
    r.CreateGeoInfo(Geographic, 6);  // "05" finds "05", not "5"
    EXPECT_TRUE(r.GetEllipsoid() == 5 && !std::strcmp(r.szEllipsName, "Padded") && r.m_dGeoInfo[0] == 6378000.5 && r.m_dGeoInfo[1] == 0);
    const short odd[6] = {70000 - 65536, -40000 + 65536, 12, 0, 0, -1};
    EXPECT_EQ(0, std::memcmp(odd, r.m_nDatumValues, 12));
    DatumParamTag tag = Named("Odd values");  // "%d" writes "5", beyond the gap
    EXPECT_EQ(1, r.GetDatumParam(&tag));
    EXPECT_STREQ("", tag.szEllipsName);
    r.SetEllipsName("previous");
    r.CreateGeoInfo(Geographic, 2);  // ellipsoid 2 is nowhere: names written only on a match
    EXPECT_TRUE(r.m_dGeoInfo[0] == 0 && !std::strcmp(r.szEllipsName, "previous"));
}

TEST_F(Catalogs, GetDatumParamAndAppending) {
    R r;
    DatumParamTag tag = Named("Pulkovo 1942");
    EXPECT_EQ(1, r.GetDatumParam(&tag));  // in kilometres; the record unchanged
    EXPECT_TRUE(!std::strcmp(tag.szEllipsName, "Krassovsky 1940") && double{tag.dSemiMajorKm} == 6.378245e3 && double{tag.dInvFlattening} == 298.3);
    EXPECT_TRUE(tag.nDatumValues[5] == 3 && r.GetProjection() == -1);
    DatumParamTag unknown = Named("pulkovo 1942");  // case matters
    EXPECT_TRUE(r.GetDatumParam(&unknown) == 0 && r.GetDatumParam(nullptr) == 0);
    r.SetProjection(Geographic);
    r.SetEllipsName("Krassovsky 1940");
    r.SetDatumName("Pulkovo 1942 (Hungary)");
    double geo[2] = {6378245, 298.3};
    short v[6] = {28, -121, -77, 0, 0, 0};
    r.SetGeoInfo(geo, v);
    EXPECT_EQ(1, r.SetDatumAndEllipsIndex());  // ellipsoid 7 known; appended: section 5, index 6
    EXPECT_TRUE(r.GetEllipsoid() == 7 && r.GetDatum() == 6 && Ini(DF(), 5, "EllipsoidIndex") == "7" && Ini(DF(), 5, "datumParam_0_1") == "-121");
    EXPECT_EQ(m_e, mwtest::ReadFile(EF()));
    const std::string after = mwtest::ReadFile(DF());
    EXPECT_TRUE(r.SetDatumAndEllipsIndex() == 1 && after == mwtest::ReadFile(DF()));  // once
    R loaded;
    loaded.CreateGeoInfo(Geographic, 6);
    EXPECT_TRUE(!std::strcmp(loaded.szDatumName, "Pulkovo 1942 (Hungary)") && loaded.m_nDatumValues[2] == -77);
    R half;  // both names are needed
    half.SetDatumName("Something");
    EXPECT_TRUE(half.SetDatumAndEllipsIndex() == 0 && half.GetDatum() == -1);
}

std::string Stored(const char* path, const char* name) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, path, 0, KEY_READ, &key) != ERROR_SUCCESS) return "-";
    char data[512];
    DWORD size = sizeof data;
    const LONG rc = RegQueryValueExA(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(data), &size);
    RegCloseKey(key);
    return rc == ERROR_SUCCESS ? std::string(data, size) : "-";
}
void Store(const char* path, const char* name, const std::string& text) {
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyA(HKEY_CURRENT_USER, path, &key));
    ASSERT_EQ(ERROR_SUCCESS, RegSetValueExA(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.data()), DWORD(text.size())));
    RegCloseKey(key);
}
int g_boxes = 0;
std::string g_box;
int Box(HWND, LPCSTR text, LPCSTR caption, UINT) { return ++g_boxes, g_box = std::string(text) + "|" + caption, IDOK; }

TEST_F(Refsys, PersistenceInTheRegistry) {
    g_boxes = 0;
    const MessageBoxHook old = SetMessageBoxHook(&Box);
    const struct { int kind; SP p; const char *scale, *c_lon; double loaded; } rows[] = {
        {TransverseMercator, {0.9996, 39, 0.5, 500000, -7}, "0.999600", "39.000000", 0.9996}, {GaussKruger, {0.5, 39, 0.5, 500000, -7}, "1", "39.000000", 1},  // always 1
        {UTM, {0, 30, 10, 1, 37}, "37", "30.000000", 0},  // the zone; ignored on load
        {Mercator, {0, -30.25, 10, 5, 6}, "1", "-30.250000", 0}};
    const char* k = "Software\\Test\\Kind";
    for (auto& r : rows) {
        R s, l;
        s.CreateGeoInfo(r.kind, 4);
        Fill(s, r.p);
        ASSERT_EQ(1, s.SaveData(k));
        EXPECT_TRUE(Stored(k, "ProjectionIndex") == std::to_string(r.kind) && Stored(k, "DatumIndex") == "4" && Stored(k, "scale") == r.scale &&
                    Stored(k, "c_lon") == r.c_lon && Stored(k, "fn") == std::to_string(r.p.fn)) << r.kind;
        l.LoadData("software\\test\\kind");  // key paths ignore case
        EXPECT_TRUE(l.GetProjection() == r.kind && l.GetDatum() == 4 && !std::strcmp(l.szDatumName, "Pulkovo 1942") && l.m_dGeoInfo[0] == 6378245) << r.kind;
        SP e = r.p;
        e.scale = r.loaded;
        R x;
        x.SetProjection(r.kind);
        Fill(x, e);
        EXPECT_EQ(0, std::memcmp(x.GetParam(), l.GetParam(), r.kind == GaussKruger || r.kind == TransverseMercator ? 32 : 24)) << r.kind;
    }
    R r;
    r.SetProjection(Mercator);
    r.LoadData("Software\\Test\\Nothing here");  // no key: Geographic on WGS 84
    const ProjectionParam zero{};
    EXPECT_TRUE(r.GetProjection() == Geographic && r.GetDatum() == 3 && !std::memcmp(&zero, r.GetParam(), sizeof zero));
    const char* p = "Software\\Test\\Odd";
    Store(p, "ProjectionIndex", "5");
    Store(p, "DatumIndex", "");                // empty: 3
    Store(p, "c_lon", std::string(300, '7'));  // over 256 bytes: 0
    Store(p, "lat_origin", "12.5 degrees");    // the number at the front
    Store(p, "fe", "east");                    // no number: 0
    Store(p, "fn", "-99999999999999999999");   // clamped
    r.LoadData(p);
    const ProjectionParam e{0, 12.5, 0, INT32_MIN};
    EXPECT_TRUE(r.GetProjection() == Mercator && r.GetDatum() == 3 && !std::memcmp(&e, r.GetParam(), sizeof e));
    Store(p, "ProjectionIndex", "9");  // an unknown kind keeps the block, refills the datum
    Store(p, "DatumIndex", "4");
    r.LoadData(p);
    EXPECT_TRUE(r.GetProjection() == Mercator && !std::memcmp(&e, r.GetParam(), sizeof e) && !std::strcmp(r.szDatumName, "Pulkovo 1942"));
    R unset;  // no kind: not saved, no message
    EXPECT_TRUE(unset.SaveData("Software\\Test\\Unset") == 0 && Stored("Software\\Test\\Unset", "ProjectionIndex") == "-" && g_boxes == 0);
    const std::string blocker = m_env.appDir() + "/not-a-directory";  // the store cannot be made: message 211
    mwtest::WriteFile(blocker, "x");
    setenv("MAPWRIGHT_REGISTRY", (blocker + "/registry.sqlite3").c_str(), 1);
    r.SetDefault();
    EXPECT_TRUE(r.SaveData("Software\\Test\\Blocked") == 0 && g_boxes == 1 && g_box == std::string(GetResourceString(211).GetString()) + "| ");
    r.SetProjection(UTM);
    r.LoadData("Software\\Test\\Blocked");
    EXPECT_TRUE(r.GetProjection() == Geographic && r.GetDatum() == 3 && r.m_dGeoInfo[0] == 6378137 && Zero(r.m_nDatumValues, 12));
    SetMessageBoxHook(old);
}

}  // namespace
