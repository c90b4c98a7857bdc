// Reference systems saved to and loaded from the per-user registry.
#include <gtest/gtest.h>

#include <sys/stat.h>

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
    LONG rc = RegQueryValueExA(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(data), &size);
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
    void SetUp() override {
        g_boxes = 0;
        m_oldHook = SetMessageBoxHook(&CountBox);
    }
    void TearDown() override { SetMessageBoxHook(m_oldHook); }
    mwtest::IsolatedEnv m_env;
    MessageBoxHook m_oldHook = nullptr;
};

TEST_F(Persistence, TransverseMercatorRoundTrip) {
    CGeoReferenceData r;
    r.CreateGeoInfo(TransverseMercator, 4);
    ScaledProjectionParam p{0.9996, 39.0, 0.0, 500000, 0};
    r.SetParam(&p);
    ASSERT_EQ(1, r.SaveData("Software\\Test\\TM"));
    const struct {
        const char* name;
        const char* text;
    } expected[] = {{"ProjectionIndex", "4"}, {"DatumIndex", "4"},      {"scale", "0.999600"}, {"c_lon", "39.000000"},
                    {"lat_origin", "0.000000"}, {"fe", "500000"}, {"fn", "0"}};
    for (const auto& e : expected) EXPECT_EQ(e.text, Stored("Software\\Test\\TM", e.name)) << e.name;

    CGeoReferenceData loaded;
    loaded.LoadData("software\\test\\tm");  // key paths ignore case
    EXPECT_EQ(TransverseMercator, loaded.GetProjection());
    EXPECT_EQ(4, loaded.GetDatum());
    EXPECT_STREQ("Pulkovo 1942", loaded.szDatumName);
    EXPECT_EQ(6378245.0, loaded.m_dGeoInfo[0]);
    EXPECT_EQ(0, std::memcmp(&p, loaded.GetParam(), sizeof p));
    EXPECT_EQ(0, g_boxes);
}

TEST_F(Persistence, ScaleValueDependsOnTheKind) {
    struct Case {
        int kind;
        double scale;  // for kinds 3 and 4
        int fe, fn;
        const char* storedScale;
        double loadedScale;
    };
    const Case cases[] = {
        {UTM, 0, 1, 37, "37", 0},                // the zone; ignored on load
        {GaussKruger, 0.5, 500000, 0, "1", 1.0}, // Gauss-Kruger always works at scale 1
        {Mercator, 0, 0, 0, "1", 0},
        {Geographic, 0, 0, 0, "1", 0},
    };
    for (const Case& c : cases) {
        CGeoReferenceData r;
        r.CreateGeoInfo(c.kind, 3);
        if (c.kind == GaussKruger) {
            ScaledProjectionParam p{c.scale, 39.0, 0.0, c.fe, c.fn};
            r.SetParam(&p);
        } else if (void* block = r.GetParam()) {
            ProjectionParam p{30.0, 10.0, c.fe, c.fn};
            std::memcpy(block, &p, sizeof p);  // Geographic blocks are saved whatever they hold
        }
        ASSERT_EQ(1, r.SaveData("Software\\Test\\Kind"));
        EXPECT_EQ(c.storedScale, Stored("Software\\Test\\Kind", "scale")) << c.kind;
        EXPECT_EQ(std::to_string(c.fn), Stored("Software\\Test\\Kind", "fn")) << c.kind;

        CGeoReferenceData loaded;
        loaded.LoadData("Software\\Test\\Kind");
        EXPECT_EQ(c.kind, loaded.GetProjection());
        if (c.kind == GaussKruger) {
            auto* p = static_cast<ScaledProjectionParam*>(loaded.GetParam());
            EXPECT_EQ(c.loadedScale, p->scale);
            EXPECT_EQ(39.0, p->c_lon);
        } else {
            auto* p = static_cast<ProjectionParam*>(loaded.GetParam());
            EXPECT_EQ(c.fe, p->fe) << c.kind;
            EXPECT_EQ(c.fn, p->fn) << c.kind;
            EXPECT_EQ(30.0, p->c_lon) << c.kind;
        }
    }
}

TEST_F(Persistence, MissingKeyGivesGeographicOnWgs84) {
    CGeoReferenceData r;
    r.SetProjection(Mercator);
    r.LoadData("Software\\Test\\Nothing here");
    EXPECT_EQ(Geographic, r.GetProjection());
    EXPECT_EQ(3, r.GetDatum());
    EXPECT_STREQ("WGS 84", r.szDatumName);
    ProjectionParam zero{};
    EXPECT_EQ(0, std::memcmp(&zero, r.GetParam(), sizeof zero));
}

TEST_F(Persistence, BadValuesFallBackOneByOne) {
    const char* path = "Software\\Test\\Odd";
    Store(path, "ProjectionIndex", "5");
    Store(path, "DatumIndex", "");                   // empty: default 3
    Store(path, "c_lon", std::string(300, '7'));     // does not fit 256 bytes: default 0
    Store(path, "lat_origin", "12.5 degrees");       // the number at the front counts
    Store(path, "fe", "east");                       // no number: 0
    Store(path, "fn", "99999999999999999999");       // clamped, never undefined
    CGeoReferenceData r;
    r.LoadData(path);
    EXPECT_EQ(Mercator, r.GetProjection());
    EXPECT_EQ(3, r.GetDatum());
    auto* p = static_cast<ProjectionParam*>(r.GetParam());
    EXPECT_EQ(0.0, p->c_lon);
    EXPECT_EQ(12.5, p->lat_origin);
    EXPECT_EQ(0, p->fe);
    EXPECT_EQ(2147483647, p->fn);
}

TEST_F(Persistence, AnUnknownKindKeepsTheOldSystemButRefillsTheDatum) {
    const char* path = "Software\\Test\\Nine";
    Store(path, "ProjectionIndex", "9");
    Store(path, "DatumIndex", "4");
    Store(path, "c_lon", "45");
    CGeoReferenceData r;
    r.CreateGeoInfo(TransverseMercator, 3);
    ScaledProjectionParam p{0.9996, 39.0, 0.0, 500000, 0};
    r.SetParam(&p);
    r.LoadData(path);
    EXPECT_EQ(TransverseMercator, r.GetProjection());
    EXPECT_EQ(0, std::memcmp(&p, r.GetParam(), sizeof p));
    EXPECT_EQ(4, r.GetDatum());
    EXPECT_STREQ("Pulkovo 1942", r.szDatumName);
}

TEST_F(Persistence, ARecordWithoutAKindIsNotSaved) {
    CGeoReferenceData r;
    EXPECT_EQ(0, r.SaveData("Software\\Test\\Unset"));
    EXPECT_EQ("<missing>", Stored("Software\\Test\\Unset", "ProjectionIndex"));
    EXPECT_EQ(0, g_boxes);
}

TEST_F(Persistence, AStoreThatCannotBeWrittenShowsMessage211) {
    // The store's directory is a regular file, so nothing can be created there.
    const std::string blocker = m_env.appDir() + "/not-a-directory";
    mwtest::WriteFile(blocker, "x");
    setenv("MAPWRIGHT_REGISTRY", (blocker + "/registry.sqlite3").c_str(), 1);
    CGeoReferenceData r;
    r.SetDefault();
    EXPECT_EQ(0, r.SaveData("Software\\Test\\Blocked"));
    EXPECT_EQ(1, g_boxes);
    EXPECT_EQ(std::string(GetResourceString(211).GetString()), g_boxText);
    EXPECT_EQ(" ", g_boxCaption);

    // Loading from it is not an error: the defaults.
    r.SetProjection(UTM);
    r.LoadData("Software\\Test\\Blocked");
    EXPECT_EQ(Geographic, r.GetProjection());
}

}  // namespace
