// Coordinate fields of a reference system: the count before the height, the
// labels, the entry masks on an edit and a list cell, and that what a user
// types under those masks reads back into the coordinate.
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

#define DEG "\xB0"

struct Mask {
    const char *mask, *literal, *valid;  // null mask: no SetMask call
};
constexpr Mask kNo{nullptr, nullptr, nullptr}, kPreset{"#", "#", "#"};
constexpr Mask kDmsLon{"900__90__90_00___$", "___" DEG " __' __.__'' _", "WEwe"};
constexpr Mask kDmsLat{"900__90__90_00___$", "___" DEG " __' __.__'' _", "NSns"};
constexpr Mask kDecLon{"900_9000000_$", "___._________", "WEwe"};
constexpr Mask kDecLat{"900_9000000_$", "___._________", "NSns"};
constexpr Mask kNum{"%%%%%%%%%%%%%%", "______________", ""};

// Kinds outside 1..7 cannot be set through SetProjection: written directly.
CGeoReferenceData SystemOf(int kind) {
    CGeoReferenceData s;
    if (kind >= 1 && kind <= 7) s.SetProjection(kind);
    else s.m_nProjection = kind;
    return s;
}

std::string Ansi(const CString& s) { return s.GetString(); }

TEST(CoordFields, CountBeforeTheHeight) {
    const int counts[][2] = {{-1, 0}, {0, 0}, {1, 2}, {2, 3}, {3, 2}, {6, 2}, {7, 2}, {8, 0}, {INT_MIN, 0}};
    for (const auto& c : counts) EXPECT_EQ(SystemOf(c[0]).GetNumCoordField(), c[1]) << "kind " << c[0];
}

TEST(CoordFields, MasksOnAnEditAndAListCell) {
    const struct {
        int kind, field;
        Mask dms, decimal;
    } rows[] = {
        {1, 0, kDmsLon, kDecLon}, {1, 1, kDmsLat, kDecLat}, {1, 2, kNum, kNum}, {1, 3, kNo, kNo},
        {2, 2, kNum, kNum},       {2, 3, kNum, kNum},       {2, 4, kNo, kNo},   {3, 0, kNum, kNum},
        {4, 1, kNum, kNum},       {5, 3, kNo, kNo},         {6, 2, kNum, kNum}, {7, 2, kNum, kNum},
        {7, 3, kNo, kNo},         {1, -1, kNo, kNo},        {2, INT_MIN, kNo, kNo}, {2, INT_MAX, kNo, kNo},
        {-1, 0, kNo, kNo},        {0, 0, kNo, kNo},         {8, 2, kNo, kNo},   {INT_MIN, 1, kNo, kNo},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE("kind " + std::to_string(r.kind) + " field " + std::to_string(r.field));
        CGeoReferenceData s = SystemOf(r.kind);
        for (bool decimal : {false, true}) {
            CMaskEdit edit;
            edit.SetMask(kPreset.mask, kPreset.literal, kPreset.valid);
            s.SetCoordFieldMask(&edit, r.field, decimal);
            const Mask& m = (decimal ? r.decimal : r.dms).mask ? (decimal ? r.decimal : r.dms) : kPreset;
            EXPECT_EQ(edit.GetMask(), m.mask);
            EXPECT_EQ(edit.GetLiteral(), m.literal);
            EXPECT_EQ(edit.GetValid(), m.valid);
        }
        // A list cell: column 1 of the item, always the dms form.
        CListFrame list;
        list.InsertColumn(0, "Field");
        list.InsertColumn(1, "Value");
        for (int row = 0; row < 3; ++row) {
            list.InsertItem(row, "label");
            for (int col = 0; col < 2; ++col) list.SetMask(row, col, kPreset.mask, kPreset.literal, kPreset.valid);
        }
        s.SetCoordFieldMaskNum(2, &list, r.field);
        for (int row = 0; row < 3; ++row) {
            for (int col = 0; col < 2; ++col) {
                const Mask& m = (row == 2 && col == 1 && r.dms.mask) ? r.dms : kPreset;
                EXPECT_EQ(list.GetMask(row, col), m.mask) << row << "," << col;
                EXPECT_EQ(list.GetValid(row, col), m.valid) << row << "," << col;
            }
        }
    }
    CGeoReferenceData geo = SystemOf(1);
    geo.SetCoordFieldMask(nullptr, 0, false);
    geo.SetCoordFieldMaskNum(0, nullptr, 1);
    CMaskEdit edit;  // the edit shows the template
    edit.SetWindowText("000" DEG " 00' 00.00'' N");
    geo.SetCoordFieldMask(&edit, 1, false);
    CString text;
    edit.GetWindowText(text);
    EXPECT_EQ(Ansi(text), "___" DEG " __' __.__'' _");
}

TEST(CoordFields, LabelsInBothLanguages) {
    const struct {
        int kind, field;
        const char *english, *russian;
    } rows[] = {
        {1, 0, "Longitude ", "Долгота "}, {1, 1, "Latitude ", "Широта "}, {1, 2, "Height ", "Возвышение "},
        {1, 3, "", ""}, {2, 0, "East/West ", "Запад/Восток "}, {2, 1, "North/South ", "Север/Юг  "},
        {2, 2, "UTM Zone ", "Номер зоны "}, {2, 3, "Height ", "Возвышение "}, {2, 4, "", ""},
        {3, 2, "Height ", "Возвышение "}, {3, 3, "", ""}, {6, 0, "East/West ", "Запад/Восток "},
        {7, 0, "X =", "X ="}, {7, 1, "Y = ", "Y = "}, {7, 2, "Z =", "Z ="}, {7, 3, "", ""},
        {1, -1, "", ""}, {2, INT_MIN, "", ""}, {0, 0, "", ""}, {8, 0, "", ""}, {-1, 1, "", ""},
    };
    for (LANGID language : {LANG_ENGLISH_US, LANG_RUSSIAN}) {
        SetThreadUILanguage(language);
        for (const auto& r : rows) {
            CString text("stale");
            SystemOf(r.kind).GetCoordFieldName(text, r.field);
            EXPECT_EQ(Ansi(text), language == LANG_RUSSIAN ? Utf8ToAnsi(r.russian) : std::string(r.english))
                << language << ": kind " << r.kind << ", field " << r.field;
        }
    }
    SetThreadUILanguage(LANG_ENGLISH_US);
}

TEST(CoordFields, WhatTheMasksLetAUserTypeReadsBack) {
    // d + m/60 + s/3600 rounds at most three times by half an ulp (2^-45 at 179).
    const struct {
        int kind, field;
        bool decimal;
        const char *keys, *text;
        double value;
    } rows[] = {
        {1, 1, false, "0393015.25S", "039" DEG " 30' 15.25'' S", -(39.0 + 30.0 / 60.0 + 15.25 / 3600.0)},
        {1, 0, false, "1795959.99E", "179" DEG " 59' 59.99'' E", 179.0 + 59.0 / 60.0 + 59.99 / 3600.0},
        {1, 1, true, "0395000000S", "039.5000000 S", -39.5},
        {1, 0, true, "1234567890w", "123.4567890 w", -123.456789},
        {1, 2, false, "-12.75", "-12.75________", -12.75},
        {2, 3, false, "1e3", "1e3___________", 1000.0},
        {7, 1, false, "-2694892.46", "-2694892.46___", -2694892.46},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.text);
        CMaskEdit edit;
        SystemOf(r.kind).SetCoordFieldMask(&edit, r.field, r.decimal);
        for (const char* k = r.keys; *k; ++k) {
            int start, end;
            edit.GetSel(start, end);
            EXPECT_TRUE(edit.TypeChar(end, *k)) << *k;
        }
        CString typed;
        edit.GetWindowText(typed);
        EXPECT_EQ(Ansi(typed), r.text);
        CGeoCoord c;
        c.SetProjection(r.kind);
        c.SetCoord(typed.GetString(), r.field, r.decimal);
        const auto* rec = static_cast<const GeoCoordTag*>(c.GetCoord());
        const double read = r.field == 0 ? rec->east : r.field == 1 ? rec->north : rec->height;
        EXPECT_NEAR(read, r.value, 3 * std::ldexp(1.0, -45));
    }
}

}  // namespace
