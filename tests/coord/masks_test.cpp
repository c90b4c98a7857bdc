// Coordinate fields of a reference system: the count before the height, the
// labels (the module's string table, English and Russian), the entry mask of
// each field on a masked edit and on a list cell, and that what a user can
// type under those masks reads back into the coordinate.
#include <mapwright/GeoCoord.h>
#include <mapwright/GeoReferenceData.h>
#include <mapwright/basalt_controls.h>
#include <mapwright/codepage.h>
#include <mapwright/resources.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <string>

namespace {

#define DEG "\xB0"  // the degree sign in Windows-1251

struct Mask {
    const char* mask;  // null: no SetMask call expected
    const char* literal;
    const char* valid;
};

constexpr Mask kNoCall{nullptr, nullptr, nullptr};
constexpr Mask kDmsLongitude{"900__90__90_00___$", "___" DEG " __' __.__'' _", "WEwe"};
constexpr Mask kDmsLatitude{"900__90__90_00___$", "___" DEG " __' __.__'' _", "NSns"};
constexpr Mask kDecimalLongitude{"900_9000000_$", "___._________", "WEwe"};
constexpr Mask kDecimalLatitude{"900_9000000_$", "___._________", "NSns"};
constexpr Mask kNumber{"%%%%%%%%%%%%%%", "______________", ""};

// A mask no call of the library sets: still there afterwards means no call.
constexpr Mask kPreset{"#", "#", "#"};

// A reference system of `kind`; kinds outside 1..7 cannot be set through
// SetProjection, so they are written into the record directly.
CGeoReferenceData SystemOf(int kind) {
    CGeoReferenceData system;
    if (kind >= 1 && kind <= 7) EXPECT_EQ(system.SetProjection(kind), 1);
    else system.m_nProjection = kind;
    return system;
}

std::string TextOf(const CWnd& window) {
    CString text;
    window.GetWindowText(text);
    return text.GetString();
}

// The masks of the fields, by kind: entry in degrees-minutes-seconds and in
// decimal degrees (the two differ for the Geographic kind only).
const struct FieldCase {
    int kind;
    int field;
    Mask dms;
    Mask decimal;
    const char* why;
} kFieldCases[] = {
    {1, 0, kDmsLongitude, kDecimalLongitude, "Geographic longitude"},
    {1, 1, kDmsLatitude, kDecimalLatitude, "Geographic latitude"},
    {1, 2, kNumber, kNumber, "Geographic height"},
    {1, 3, kNoCall, kNoCall, "Geographic has three fields"},
    {2, 0, kNumber, kNumber, "UTM easting"},
    {2, 1, kNumber, kNumber, "UTM northing"},
    {2, 2, kNumber, kNumber, "UTM zone"},
    {2, 3, kNumber, kNumber, "UTM height: its fourth field"},
    {2, 4, kNoCall, kNoCall, "UTM has four fields"},
    {3, 0, kNumber, kNumber, "Gauss-Kruger easting"},
    {3, 2, kNumber, kNumber, "Gauss-Kruger height"},
    {3, 3, kNoCall, kNoCall, "Gauss-Kruger has no field 3"},
    {4, 1, kNumber, kNumber, "Transverse Mercator northing"},
    {4, 3, kNoCall, kNoCall, "Transverse Mercator has no field 3"},
    {5, 0, kNumber, kNumber, "Mercator easting"},
    {5, 3, kNoCall, kNoCall, "Mercator has no field 3"},
    {6, 2, kNumber, kNumber, "Polar Stereographic height"},
    {6, 3, kNoCall, kNoCall, "Polar Stereographic has no field 3"},
    {7, 0, kNumber, kNumber, "Cartesian X"},
    {7, 1, kNumber, kNumber, "Cartesian Y"},
    {7, 2, kNumber, kNumber, "Cartesian Z"},
    {7, 3, kNoCall, kNoCall, "Cartesian has no field 3"},
    {1, -1, kNoCall, kNoCall, "a negative field, compared as unsigned"},
    {2, -1, kNoCall, kNoCall, "a negative field in UTM"},
    {7, -1, kNoCall, kNoCall, "a negative field in Cartesian"},
    {2, INT_MIN, kNoCall, kNoCall, "the most negative field"},
    {2, INT_MAX, kNoCall, kNoCall, "the largest field"},
    {-1, 0, kNoCall, kNoCall, "kind not set"},
    {0, 0, kNoCall, kNoCall, "kind 0"},
    {8, 0, kNoCall, kNoCall, "kind 8"},
    {8, 2, kNoCall, kNoCall, "kind 8, field 2"},
    {INT_MIN, 1, kNoCall, kNoCall, "the most negative kind"},
};

void ExpectMask(const CMaskEdit& edit, const Mask& expected, const char* why, const char* variant) {
    const Mask& m = expected.mask ? expected : kPreset;
    EXPECT_EQ(edit.GetMask(), m.mask) << why << ", " << variant;
    EXPECT_EQ(edit.GetLiteral(), m.literal) << why << ", " << variant;
    EXPECT_EQ(edit.GetValid(), m.valid) << why << ", " << variant;
}

TEST(CoordFields, CountBeforeTheHeight) {
    const struct {
        int kind;
        int count;
    } cases[] = {{-1, 0}, {0, 0}, {1, 2}, {2, 3}, {3, 2}, {4, 2}, {5, 2}, {6, 2}, {7, 2}, {8, 0}, {INT_MIN, 0}, {INT_MAX, 0}};
    for (const auto& c : cases) {
        CGeoReferenceData system = SystemOf(c.kind);
        EXPECT_EQ(system.GetNumCoordField(), c.count) << "kind " << c.kind;
    }
}

TEST(CoordFields, MaskOnAnEdit) {
    for (const auto& c : kFieldCases) {
        CGeoReferenceData system = SystemOf(c.kind);
        for (bool decimal : {false, true}) {
            CMaskEdit edit;
            edit.SetMask(kPreset.mask, kPreset.literal, kPreset.valid);
            system.SetCoordFieldMask(&edit, c.field, decimal);
            ExpectMask(edit, decimal ? c.decimal : c.dms, c.why, decimal ? "decimal" : "degrees-minutes-seconds");
        }
        EXPECT_EQ(system.GetProjection(), c.kind) << "only the kind is read, " << c.why;
    }
}

TEST(CoordFields, MaskOnAnEditShowsItsTemplate) {
    CGeoReferenceData geographic = SystemOf(1);
    CMaskEdit edit;
    edit.SetWindowText("000" DEG " 00' 00.00'' N");
    geographic.SetCoordFieldMask(&edit, 1, false);
    EXPECT_EQ(TextOf(edit), "___" DEG " __' __.__'' _");
    edit.SetWindowText("left alone");
    geographic.SetCoordFieldMask(&edit, 3, false);
    EXPECT_EQ(TextOf(edit), "left alone") << "no call leaves the text too";
}

TEST(CoordFields, MaskOnAListCell) {
    // A list of three rows and two columns; every cell starts with the
    // preset mask, so a call shows in the addressed cell only.
    for (const auto& c : kFieldCases) {
        for (int item : {0, 2}) {
            CListFrame list;
            list.InsertColumn(0, "Field");
            list.InsertColumn(1, "Value");
            for (int row = 0; row < 3; ++row) {
                list.InsertItem(row, "label");
                for (int column = 0; column < 2; ++column)
                    list.SetMask(row, column, kPreset.mask, kPreset.literal, kPreset.valid);
            }
            CGeoReferenceData system = SystemOf(c.kind);
            system.SetCoordFieldMaskNum(item, &list, c.field);
            // A list cell has no decimal variant: always the dms row.
            const Mask& expected = c.dms.mask ? c.dms : kPreset;
            for (int row = 0; row < 3; ++row) {
                for (int column = 0; column < 2; ++column) {
                    const Mask& m = (row == item && column == 1) ? expected : kPreset;
                    EXPECT_EQ(list.GetMask(row, column), m.mask) << c.why << ", cell " << row << "," << column;
                    EXPECT_EQ(list.GetLiteral(row, column), m.literal) << c.why << ", cell " << row << "," << column;
                    EXPECT_EQ(list.GetValid(row, column), m.valid) << c.why << ", cell " << row << "," << column;
                }
            }
        }
    }
}

TEST(CoordFields, NullControlsAndMissingCells) {
    CGeoReferenceData geographic = SystemOf(1);
    geographic.SetCoordFieldMask(nullptr, 0, false);
    geographic.SetCoordFieldMask(nullptr, 1, true);
    geographic.SetCoordFieldMaskNum(0, nullptr, 1);

    // The list decides what an item it does not have means: nothing.
    CListFrame list;
    list.InsertColumn(0, "Field");
    list.InsertColumn(1, "Value");
    list.InsertItem(0, "Latitude ");
    geographic.SetCoordFieldMaskNum(5, &list, 1);
    geographic.SetCoordFieldMaskNum(-1, &list, 1);
    EXPECT_EQ(list.GetMask(0, 1), "");
    geographic.SetCoordFieldMaskNum(0, &list, 1);
    EXPECT_EQ(list.GetMask(0, 1), kDmsLatitude.mask);
    EXPECT_EQ(list.GetItemText(0, 1), "___" DEG " __' __.__'' _");
}

// ---- Labels --------------------------------------------------------------

// The labels per kind and field: English and Russian (UTF-8 here), with the
// blanks that belong to them.
const struct LabelCase {
    int kind;
    int field;
    const char* english;
    const char* russian;
} kLabelCases[] = {
    {1, 0, "Longitude ", "Долгота "},
    {1, 1, "Latitude ", "Широта "},
    {1, 2, "Height ", "Возвышение "},
    {1, 3, "", ""},
    {2, 0, "East/West ", "Запад/Восток "},
    {2, 1, "North/South ", "Север/Юг  "},
    {2, 2, "UTM Zone ", "Номер зоны "},
    {2, 3, "Height ", "Возвышение "},
    {2, 4, "", ""},
    {3, 0, "East/West ", "Запад/Восток "},
    {3, 1, "North/South ", "Север/Юг  "},
    {3, 2, "Height ", "Возвышение "},
    {3, 3, "", ""},
    {4, 0, "East/West ", "Запад/Восток "},
    {4, 2, "Height ", "Возвышение "},
    {5, 1, "North/South ", "Север/Юг  "},
    {5, 3, "", ""},
    {6, 0, "East/West ", "Запад/Восток "},
    {6, 2, "Height ", "Возвышение "},
    {7, 0, "X =", "X ="},
    {7, 1, "Y = ", "Y = "},
    {7, 2, "Z =", "Z ="},
    {7, 3, "", ""},
    {1, -1, "", ""},
    {2, INT_MIN, "", ""},
    {0, 0, "", ""},
    {8, 0, "", ""},
    {-1, 1, "", ""},
};

void ExpectLabels(bool russian) {
    for (const auto& c : kLabelCases) {
        CGeoReferenceData system = SystemOf(c.kind);
        CString text("stale text");
        system.GetCoordFieldName(text, c.field);
        const std::string expected = russian ? Utf8ToAnsi(c.russian) : std::string(c.english);
        EXPECT_EQ(std::string(text.GetString()), expected)
            << (russian ? "Russian" : "English") << ", kind " << c.kind << ", field " << c.field;
    }
}

TEST(CoordFields, LabelsInEnglish) {
    SetThreadUILanguage(LANG_ENGLISH_US);
    ExpectLabels(false);
    SetThreadUILanguage(0);
}

TEST(CoordFields, LabelsInRussian) {
    SetThreadUILanguage(LANG_RUSSIAN);
    ExpectLabels(true);
    SetThreadUILanguage(0);
}

// ---- Typing under the masks reads back into the coordinate ---------------

TEST(CoordFields, WhatTheMasksLetAUserTypeReadsBack) {
    // Each row: a field of a system, the keys typed, the text that results and
    // the value the coordinate reads from it. Expected values are the typed
    // angle or number itself: d + m/60 + s/3600 rounds no more than half an
    // ulp of the reader's result three times (ulp of 179 is 2^-45).
    const struct {
        int kind;
        int field;
        bool decimal;
        const char* keys;
        const char* text;
        double value;
        const char* why;
    } cases[] = {
        {1, 1, false, "0393015.25S", "039" DEG " 30' 15.25'' S", -(39.0 + 30.0 / 60.0 + 15.25 / 3600.0),
         "latitude, degrees-minutes-seconds, south"},
        {1, 0, false, "1795959.99E", "179" DEG " 59' 59.99'' E", 179.0 + 59.0 / 60.0 + 59.99 / 3600.0,
         "longitude, degrees-minutes-seconds, east"},
        {1, 1, true, "0395000000S", "039.5000000 S", -39.5, "latitude, decimal, south: the separator is a blank"},
        {1, 0, true, "1234567890w", "123.4567890 w", -123.456789, "longitude, decimal, lower-case west"},
        {1, 2, false, "-12.75", "-12.75________", -12.75, "height below the ellipsoid"},
        {2, 0, false, "500000.5", "500000.5______", 500000.5, "UTM easting"},
        {2, 3, false, "1e3", "1e3___________", 1000.0, "UTM height with an exponent"},
        {7, 1, false, "-2694892.46", "-2694892.46___", -2694892.46, "Cartesian Y"},
    };
    for (const auto& c : cases) {
        CGeoReferenceData system = SystemOf(c.kind);
        CMaskEdit edit;
        system.SetCoordFieldMask(&edit, c.field, c.decimal);
        for (const char* k = c.keys; *k; ++k) {
            int start, end;
            edit.GetSel(start, end);
            EXPECT_TRUE(edit.TypeChar(end, *k)) << c.why << ", key " << *k;
        }
        const std::string text = TextOf(edit);
        EXPECT_EQ(text, c.text) << c.why;

        CGeoCoord coord;
        ASSERT_EQ(coord.SetProjection(c.kind), 1);
        coord.SetCoord(text.c_str(), c.field, c.decimal);
        const auto* record = static_cast<const GeoCoordTag*>(coord.GetCoord());
        // Field 0 is the east axis, 1 the north axis; the rows' other fields are heights.
        const double read = c.field == 0 ? record->east : c.field == 1 ? record->north : record->height;
        EXPECT_NEAR(read, c.value, 3 * std::ldexp(1.0, -45)) << c.why;
    }
}

}  // namespace
