// The names of a reference system: projection names in the user-interface
// language and in English, the parameter summary, and the datum and
// ellipsoid name fields. Expected texts are written out in full from the
// string table (Russian as UTF-8, turned into the library's Windows-1251),
// with the degrees-minutes-seconds text in its fixed "DDD° MM' SS.SS'' H"
// shape.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include <mapwright/GeoReferenceData.h>
#include <mapwright/codepage.h>
#include <mapwright/resources.h>

#include "testenv.h"

namespace {

// Library text from UTF-8 source text.
std::string Ansi(const char* utf8) { return Utf8ToAnsi(utf8); }

std::string Text(const CString& s) { return std::string(s.GetString(), static_cast<size_t>(s.GetLength())); }

// The record's names read in one language; English is restored afterwards.
class Names : public ::testing::Test {
protected:
    void TearDown() override { SetThreadUILanguage(LANG_ENGLISH_US); }

    static CGeoReferenceData Record(int kind) {
        CGeoReferenceData r;
        if (kind != -1) r.SetProjection(kind);
        return r;
    }

    mwtest::IsolatedEnv m_env;
};

const char* const kEnglishNames[8] = {"",        "Geographic",          "UTM",
                                      "Gauss-Kruger", "Transverse Mercator", "Mercator",
                                      "Polar Stereographic", "Decart coordinate system"};
const char* const kRussianNames[8] = {"",
                                      "Географическая",
                                      "Универсальная поперечная Меркатора",
                                      "Гаусса-Крюгера",
                                      "Поперечная Меркатора",
                                      "Меркатора",
                                      "Полярная стереографическая",
                                      "Декартова система координат"};

TEST_F(Names, ProjectionNamesFollowTheLanguageAndEnglishNamesDoNot) {
    for (LANGID language : {LANG_ENGLISH_US, LANG_RUSSIAN}) {
        SetThreadUILanguage(language);
        for (int kind = 1; kind <= 7; ++kind) {
            SCOPED_TRACE("language " + std::to_string(language) + ", kind " + std::to_string(kind));
            CGeoReferenceData r = Record(kind);
            CString name("old"), english("old");
            r.GetProjectionName(name);
            r.GetEnProjectionName(english);
            EXPECT_EQ(language == LANG_RUSSIAN ? Ansi(kRussianNames[kind]) : std::string(kEnglishNames[kind]),
                      Text(name));
            // The English names are the keys of the host's projection records.
            EXPECT_EQ(kEnglishNames[kind], Text(english));
        }
    }
}

TEST_F(Names, AKindOutsideOneToSevenHasNoName) {
    CGeoReferenceData unset;  // kind -1
    CString name("old"), english("old"), params("old");
    unset.GetProjectionName(name);
    unset.GetEnProjectionName(english);
    unset.GetParamName(params);
    EXPECT_EQ("", Text(name));
    EXPECT_EQ("", Text(english));
    EXPECT_EQ("", Text(params));

    // A kind written into the public member by a host, without a block of its own.
    CGeoReferenceData odd;
    odd.m_nProjection = 8;
    name = "old";
    odd.GetProjectionName(name);
    EXPECT_EQ("", Text(name));
}

#define DEG "\xB0"  // the degree sign in Windows-1251

struct ParamCase {
    const char* why;
    int kind;
    ScaledProjectionParam p;  // scale first; the other kinds take the last four fields
    const char* english;
    const char* russian;  // UTF-8
};

// The block of the record's kind from the case's values.
void Fill(CGeoReferenceData& r, const ParamCase& c) {
    if (c.kind == GaussKruger || c.kind == TransverseMercator) {
        r.SetParam(const_cast<ScaledProjectionParam*>(&c.p));
    } else if (r.GetParam()) {
        ProjectionParam q{c.p.c_lon, c.p.lat_origin, c.p.fe, c.p.fn};
        std::memcpy(r.GetParam(), &q, sizeof q);  // SetParam leaves kinds 1 and 7 alone
    }
}

const ParamCase kParamCases[] = {
    {"the Transverse Mercator example: scale with six decimals, the false origin on a second line",
     TransverseMercator, {0.9996, 39.0, 0.0, 500000, 0},
     "Scale factor at central meridian 0.999600, Longitude of central meridian 039" DEG " 00' 00.00'' E, "
     "Latitude of origin of projection 000" DEG " 00' 00.00'' N, \nFalse easting 500000, False northing 0, ",
     "Масштаб по центр. меридиану 0.999600, Долгота центрального меридиана 039° 00' 00.00'' E, "
     "Исходная широта 000° 00' 00.00'' N, \nВосточное смещение, м 500000, Северное смещение, м 0, "},
    {"Gauss-Kruger shows no scale, whatever its block holds", GaussKruger, {0.5, 33.0, 0.0, 6500000, 0},
     "Longitude of central meridian 033" DEG " 00' 00.00'' E, Latitude of origin of projection 000" DEG
     " 00' 00.00'' N, \nFalse easting 6500000, False northing 0, ",
     "Долгота центрального меридиана 033° 00' 00.00'' E, Исходная широта 000° 00' 00.00'' N, \n"
     "Восточное смещение, м 6500000, Северное смещение, м 0, "},
    {"Mercator: the latitude is the latitude of true scale; minutes, seconds and a west longitude",
     Mercator, {0.0, -74.5, 41.258, -20, 1000000},
     "Longitude of central meridian 074" DEG " 30' 00.00'' W, Latitude of true scale 041" DEG
     " 15' 28.80'' N, \nFalse easting -20, False northing 1000000, ",
     "Долгота центрального меридиана 074° 30' 00.00'' W, Широта истинного масштаба 041° 15' 28.80'' N, \n"
     "Восточное смещение, м -20, Северное смещение, м 1000000, "},
    {"Polar Stereographic: the longitude below the pole, southern latitude", PolarStereographic,
     {0.0, -45.0, -71.0, 2000000, 2000000},
     "Longitude below pole of map 045" DEG " 00' 00.00'' W, Latitude of true scale 071" DEG
     " 00' 00.00'' S, \nFalse easting 2000000, False northing 2000000, ",
     "Долгота направления на север 045° 00' 00.00'' W, Широта истинного масштаба 071° 00' 00.00'' S, \n"
     "Восточное смещение, м 2000000, Северное смещение, м 2000000, "},
    {"UTM shows its zone", UTM, {0.0, 0.0, 0.0, 1, 37}, "zone 37", "зона 37"},
    {"UTM shows the zone only, not the southern hemisphere", UTM, {0.0, 0.0, 0.0, -1, 5}, "zone 5", "зона 5"},
    {"Geographic has no parameters to show", Geographic, {0.0, 10.0, 20.0, 30, 40}, "", ""},
    {"Cartesian has no parameters to show", Cartesian, {0.0, 10.0, 20.0, 30, 40}, "", ""},
};

TEST_F(Names, ParameterSummariesInBothLanguages) {
    for (const ParamCase& c : kParamCases) {
        SCOPED_TRACE(c.why);
        CGeoReferenceData r = Record(c.kind);
        Fill(r, c);
        CString text("previous text");  // replaced, not appended to
        SetThreadUILanguage(LANG_ENGLISH_US);
        r.GetParamName(text);
        EXPECT_EQ(c.english, Text(text));
        SetThreadUILanguage(LANG_RUSSIAN);
        r.GetParamName(text);
        EXPECT_EQ(Ansi(c.russian), Text(text));
    }
}

TEST_F(Names, DatumAndEllipsoidNamesKeepFortyNineCharacters) {
    CGeoReferenceData r;
    CString name("old");
    r.GetEllipsName(name);
    EXPECT_EQ("", Text(name));  // empty right after construction

    const std::string sixty(60, 'x');
    const std::string kept(49, 'x');
    r.SetDatumName(sixty.c_str());
    r.SetEllipsName(sixty.c_str());
    r.GetDatumName(name);
    EXPECT_EQ(kept, Text(name));
    r.GetEllipsName(name);
    EXPECT_EQ(kept, Text(name));
    EXPECT_EQ('\0', r.szDatumName[49]);

    // A shorter name clears what the longer one left behind.
    r.SetDatumName("Pulkovo 1942");
    r.GetDatumName(name);
    EXPECT_EQ("Pulkovo 1942", Text(name));
    for (size_t i = std::strlen("Pulkovo 1942"); i < sizeof r.szDatumName; ++i) EXPECT_EQ('\0', r.szDatumName[i]);
}

}  // namespace
