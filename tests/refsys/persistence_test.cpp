// Reference systems saved to and loaded from the per-user registry.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include <mapwright/GeoReferenceData.h>
#include <mapwright/basalt.h>
#include <mapwright/registry.h>
#include <mapwright/winuser.h>

#include "testenv.h"

namespace {

// The stored text of one value, "<missing>" when there is none.
std::string Stored(const char* path, const char* name) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, path, 0, KEY_READ, &key) != ERROR_SUCCESS) return "<missing>";
    char data[512];
    DWORD size = sizeof data;
    const LONG rc = RegQueryValueExA(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(data), &size);
    RegCloseKey(key);
    return rc == ERROR_SUCCESS ? std::string(data, size) : "<missing>";
}

void Store(const char* path, const char* name, const std::string& text) {
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyA(HKEY_CURRENT_USER, path, &key));
    ASSERT_EQ(ERROR_SUCCESS, RegSetValueExA(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.data()),
                                            static_cast<DWORD>(text.size())));
    RegCloseKey(key);
}

int g_boxes = 0;
std::string g_boxText, g_boxCaption;
int CountBox(HWND, LPCSTR text, LPCSTR caption, UINT) {
    ++g_boxes;
    g_boxText = text;
    g_boxCaption = caption;
    return IDOK;
}

class Persistence : public ::testing::Test {
protected:
    void SetUp() override { g_boxes = 0, m_oldHook = SetMessageBoxHook(&CountBox); }
    void TearDown() override { SetMessageBoxHook(m_oldHook); }
    mwtest::IsolatedEnv m_env;
    MessageBoxHook m_oldHook = nullptr;
};

TEST_F(Persistence, EachKindRoundTrips) {
    const struct {
        int kind;
        ScaledProjectionParam p;  // the other kinds take the last four fields
        const char *scale, *c_lon;
        double loadedScale;
    } rows[] = {
        {TransverseMercator, {0.9996, 39.0, 0.5, 500000, -7}, "0.999600", "39.000000", 0.9996},
        {GaussKruger, {0.5, 39.0, 0.5, 500000, -7}, "1", "39.000000", 1.0},  // always at scale 1
        {UTM, {0, 30.0, 10.0, 1, 37}, "37", "30.000000", 0},                 // the zone; ignored on load
        {Mercator, {0, -30.25, 10.0, 5, 6}, "1", "-30.250000", 0},
        {Geographic, {0, 30.0, 10.0, 5, 6}, "1", "30.000000", 0},  // its block is saved whatever it holds
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.kind);
        CGeoReferenceData s;
        s.CreateGeoInfo(r.kind, 4);
        const bool scaled = r.kind == GaussKruger || r.kind == TransverseMercator;
        ProjectionParam q{r.p.c_lon, r.p.lat_origin, r.p.fe, r.p.fn};
        if (scaled) s.SetParam(const_cast<ScaledProjectionParam*>(&r.p));
        else std::memcpy(s.GetParam(), &q, sizeof q);
        ASSERT_EQ(1, s.SaveData("Software\\Test\\Kind"));
        EXPECT_EQ(std::to_string(r.kind), Stored("Software\\Test\\Kind", "ProjectionIndex"));
        EXPECT_EQ("4", Stored("Software\\Test\\Kind", "DatumIndex"));
        EXPECT_EQ(r.scale, Stored("Software\\Test\\Kind", "scale"));
        EXPECT_EQ(r.c_lon, Stored("Software\\Test\\Kind", "c_lon"));
        EXPECT_EQ(std::to_string(r.p.fn), Stored("Software\\Test\\Kind", "fn"));
        CGeoReferenceData loaded;
        loaded.LoadData("software\\test\\kind");  // key paths ignore case
        EXPECT_EQ(r.kind, loaded.GetProjection());
        EXPECT_EQ(4, loaded.GetDatum());
        EXPECT_STREQ("Pulkovo 1942", loaded.szDatumName);
        EXPECT_EQ(6378245.0, loaded.m_dGeoInfo[0]);
        if (scaled) {
            ScaledProjectionParam expected = r.p;
            expected.scale = r.loadedScale;
            EXPECT_EQ(0, std::memcmp(&expected, loaded.GetParam(), sizeof expected));
        } else {
            EXPECT_EQ(0, std::memcmp(&q, loaded.GetParam(), sizeof q));
        }
    }
    EXPECT_EQ(0, g_boxes);
}

TEST_F(Persistence, MissingOrBadValuesFallBackOneByOne) {
    CGeoReferenceData r;
    r.SetProjection(Mercator);
    r.LoadData("Software\\Test\\Nothing here");  // no key: Geographic on WGS 84
    EXPECT_EQ(Geographic, r.GetProjection());
    EXPECT_EQ(3, r.GetDatum());
    const char* path = "Software\\Test\\Odd";
    Store(path, "ProjectionIndex", "5");
    Store(path, "DatumIndex", "");                // empty: default 3
    Store(path, "c_lon", std::string(300, '7'));  // does not fit 256 bytes: default 0
    Store(path, "lat_origin", "12.5 degrees");    // the number at the front counts
    Store(path, "fe", "east");                    // no number: 0
    Store(path, "fn", "-99999999999999999999");   // clamped, never undefined
    r.LoadData(path);
    EXPECT_EQ(Mercator, r.GetProjection());
    EXPECT_EQ(3, r.GetDatum());
    const ProjectionParam expected{0.0, 12.5, 0, INT32_MIN};
    EXPECT_EQ(0, std::memcmp(&expected, r.GetParam(), sizeof expected));
    Store(path, "ProjectionIndex", "9");  // an unknown kind keeps the block, refills the datum
    Store(path, "DatumIndex", "4");
    r.LoadData(path);
    EXPECT_EQ(Mercator, r.GetProjection());
    EXPECT_EQ(0, std::memcmp(&expected, r.GetParam(), sizeof expected));
    EXPECT_STREQ("Pulkovo 1942", r.szDatumName);
}

TEST_F(Persistence, FailuresToSave) {
    CGeoReferenceData unset;  // no kind: not saved, no message
    EXPECT_EQ(0, unset.SaveData("Software\\Test\\Unset"));
    EXPECT_EQ("<missing>", Stored("Software\\Test\\Unset", "ProjectionIndex"));
    EXPECT_EQ(0, g_boxes);
    // The store's directory is a regular file: message 211, and loading gives the defaults.
    const std::string blocker = m_env.appDir() + "/not-a-directory";
    mwtest::WriteFile(blocker, "x");
    setenv("MAPWRIGHT_REGISTRY", (blocker + "/registry.sqlite3").c_str(), 1);
    CGeoReferenceData r;
    r.SetDefault();
    EXPECT_EQ(0, r.SaveData("Software\\Test\\Blocked"));
    EXPECT_EQ(1, g_boxes);
    EXPECT_EQ(std::string(GetResourceString(211).GetString()), g_boxText);
    EXPECT_EQ(" ", g_boxCaption);
    r.SetProjection(UTM);
    r.LoadData("Software\\Test\\Blocked");
    EXPECT_EQ(Geographic, r.GetProjection());
}

}  // namespace
