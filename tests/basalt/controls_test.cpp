// Basalt's masked edit and list: the template a mask shows, what each place
// takes, typing over fixed places, and text set by the program taken as given.
#include <mapwright/basalt.h>
#include <mapwright/basalt_controls.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace {

#define DEG "\xB0"  // the degree sign in Windows-1251
const char *const kDms = "900__90__90_00___$", *const kDmsLit = "___" DEG " __' __.__'' _";
const char *const kNum = "%%%%%%%%%%%%%%", *const kNumLit = "______________";
struct Mask { const char *mask, *literal, *valid; };
const Mask kLat{kDms, kDmsLit, "NSns"}, kLon{kDms, kDmsLit, "WEwe"}, kDec{"900_9000000_$", "___._________", "NSns"},
    kNumber{kNum, kNumLit, ""}, kHemi{"$", "_", "NSns"};

std::string TextOf(const CWnd& w) {
    CString text;
    w.GetWindowText(text);
    return text.GetString();
}
int Caret(const CEdit& edit) {
    int start, end;
    edit.GetSel(start, end);
    EXPECT_EQ(start, end) << "typing leaves no selection";
    return end;
}

TEST(MaskEdit, ShowsTheTemplateOfTheLastMask) {
    const struct { Mask m; const char* shown; } cases[] = {
        {kLat, kDmsLit}, {kDec, "___._______ _"}, {kNumber, kNumLit}, {{"9-9", "_", ""}, "_ _"}, {{"", "", ""}, ""},
    };
    for (const auto& c : cases) {
        CMaskEdit edit;
        edit.SetWindowText("old");
        edit.SetMask(kLat.mask, kLat.literal, kLat.valid);
        edit.SetMask(c.m.mask, c.m.literal, c.m.valid);
        EXPECT_EQ(edit.GetMask() + edit.GetLiteral() + edit.GetValid(), CString(c.m.mask) + c.m.literal + c.m.valid);
        EXPECT_EQ(TextOf(edit), c.shown) << c.m.mask;
    }
    CMaskEdit edit;
    edit.SetMask(nullptr, nullptr, nullptr);  // nulls count as empty
    EXPECT_TRUE(edit.GetMask().IsEmpty() && edit.GetLiteral().IsEmpty() && edit.GetValid().IsEmpty());
    EXPECT_TRUE(edit.TypeChar(0, 'x')) << "no mask: plain typing";
    edit.SetMask("$", "_", nullptr);
    EXPECT_FALSE(edit.TypeChar(0, 'N')) << "a null valid list takes no letter";
}

TEST(MaskEdit, EachPlaceTakesItsCharacters) {
    const struct { Mask m; int at; char ch; int lands; } cases[] = {  // lands -1: refused
        {kLat, 0, '9', 0}, {kLat, 1, '5', 1}, {kLat, 0, ' ', -1}, {kLat, 0, '-', -1}, {kLat, 2, 'N', -1},
        {kLat, 17, 's', 17}, {kLat, 17, 'E', -1}, {kLon, 17, 'w', 17}, {kLon, 17, '5', -1}, {kLat, 3, DEG[0], 3},
        {kLat, 3, '4', 5}, {kLat, 4, '4', 5}, {kLat, 3, 'x', -1}, {kLat, 11, '7', 12}, {kLat, 14, 'S', 17},
        {kLat, 16, '1', -1}, {kLat, -1, '1', -1}, {kLat, 18, '1', -1}, {kLat, 0, '\0', -1}, {kDec, 3, '1', 4},
        {kDec, 11, 'n', 12}, {kDec, 11, ' ', 11}, {kDec, 11, '_', -1}, {kNumber, 0, '-', 0}, {kNumber, 1, '+', 1},
        {kNumber, 2, '.', 2}, {kNumber, 3, 'e', 3}, {kNumber, 3, 'E', 3}, {kNumber, 13, '9', 13},
        {kNumber, 14, '9', -1}, {kNumber, 0, ',', -1}, {kHemi, 0, 'S', 0}, {kHemi, 0, 'E', -1}, {kHemi, 1, 'N', -1},
    };
    for (const auto& c : cases) {
        CMaskEdit edit;
        edit.SetMask(c.m.mask, c.m.literal, c.m.valid);
        edit.SetSel(5, 5);
        std::string expected = TextOf(edit);
        if (c.lands >= 0) expected[size_t(c.lands)] = c.ch;
        SCOPED_TRACE(std::string(c.m.valid) + c.m.mask + " place " + std::to_string(c.at) + " " + c.ch);
        EXPECT_EQ(edit.TypeChar(c.at, c.ch), c.lands >= 0);
        EXPECT_EQ(TextOf(edit), expected);
        EXPECT_EQ(Caret(edit), c.lands < 0 ? std::min<int>(5, int(expected.size())) : c.lands + 1);
    }
}

TEST(MaskEdit, TypingOvertypingErasingAndTextSetByTheProgram) {
    const struct { Mask m; const char* keys; int accepted; const char* text; } typed[] = {
        {kLat, "0a3b9-30x15,.25EN", 11, "039" DEG " 30' 15.25'' N"}, {kLat, "039" DEG " 30' 15.25'' N", 18, "039" DEG " 30' 15.25'' N"},
        {kDec, "0395000000N", 11, "039.5000000 N"}, {kNumber, "123456789012345", 14, "12345678901234"},
    };
    for (const auto& c : typed) {
        CMaskEdit edit;
        edit.SetMask(c.m.mask, c.m.literal, c.m.valid);
        int accepted = 0;
        for (const char* k = c.keys; *k; ++k) accepted += edit.TypeChar(Caret(edit), *k) ? 1 : 0;
        EXPECT_EQ(accepted, c.accepted) << c.keys;
        EXPECT_EQ(TextOf(edit), c.text) << c.keys;
    }
    CMaskEdit edit;
    edit.SetMask(kDms, kDmsLit, "NSns");
    edit.SetWindowText("039" DEG " 30' 15.25'' N");
    EXPECT_FALSE(edit.TypeChar(18, 'N')) << "the text never grows beyond the mask";
    EXPECT_TRUE(edit.TypeChar(6, '5') && edit.TypeChar(7, '4')) << "on the apostrophe: to the seconds";
    EXPECT_EQ(Caret(edit), 10);
    for (const auto& [at, erased] : {std::pair{1, true}, {3, false}, {11, false}, {17, true}, {18, false}, {-1, false}})
        EXPECT_EQ(edit.EraseChar(at), erased) << at;
    EXPECT_EQ(TextOf(edit), "0_9" DEG " 35' 45.25'' _") << "open places shown again, fixed ones kept";
    const struct { Mask m; const char* set; int at; char ch; const char* text; } given[] = {  // null: refused
        {kNumber, "0", 1, '5', "05"}, {kNumber, "0", 2, '5', nullptr}, {kLat, "039", 3, '3', "039" DEG " 3"},
        {kNumber, "abc", 1, '1', "a1c"}, {kNumber, "12345678901234567890", 14, '1', nullptr},
    };
    for (const auto& c : given) {
        CMaskEdit e;
        e.SetMask(c.m.mask, c.m.literal, c.m.valid);
        e.SetWindowText(c.set);
        EXPECT_EQ(TextOf(e) + e.GetMask().GetString(), std::string(c.set) + c.m.mask) << "setting text keeps the mask";
        EXPECT_EQ(e.TypeChar(c.at, c.ch), c.text != nullptr) << c.set;
        EXPECT_EQ(TextOf(e), c.text ? c.text : c.set);
    }
}

TEST(ListFrame, RowsColumnsAndCells) {
    CListFrame list;
    EXPECT_EQ(list.GetColumnCount(), 1) << "column 0 exists from the start";
    EXPECT_EQ(list.InsertItem(0, "Lat"), 0);
    EXPECT_EQ(list.InsertColumn(0, "Field"), 0) << "the first column names column 0";
    EXPECT_EQ(list.InsertColumn(5, "Value"), 1) << "beyond the end: at the end";
    EXPECT_EQ(list.InsertItem(5, "H"), 1);
    EXPECT_EQ(list.InsertItem(1, "Lon"), 1);
    EXPECT_TRUE(list.SetItemText(2, 1, "12.5"));
    EXPECT_EQ(list.InsertColumn(1, "Unit"), 1) << "moves later cells on";
    EXPECT_EQ(list.GetColumnHeading(2) + list.GetItemText(2, 1) + list.GetItemText(2, 2), "Value12.5");
    EXPECT_TRUE(list.DeleteItem(1));
    EXPECT_EQ(list.GetItemText(1, 0), "H");
    EXPECT_FALSE(list.DeleteItem(2));
    EXPECT_EQ(list.InsertItem(-1, "x") + list.InsertColumn(-1, "x"), -2);
    EXPECT_EQ(list.GetColumnHeading(-1) + list.GetColumnHeading(3), "");
    for (const auto& [item, column] : {std::pair{2, 0}, {-1, 0}, {0, 3}, {0, -1}}) {
        SCOPED_TRACE(std::to_string(item) + "," + std::to_string(column));
        EXPECT_FALSE(list.SetItemText(item, column, "x"));
        list.SetMask(item, column, kNum, kNumLit, "NS");
        EXPECT_EQ(list.GetMask(item, column) + list.GetLiteral(item, column) + list.GetValid(item, column), "");
        EXPECT_FALSE(list.TypeChar(item, column, 0, '1') || list.EraseChar(item, column, 0));
        char buf[4] = "##";
        EXPECT_EQ(list.GetItemText(item, column, buf, sizeof buf), 0);
        EXPECT_STREQ(buf, "") << "an empty text is still terminated";
    }
    list.SetItemText(0, 1, "Longitude ");
    for (const auto& [size, copied] : {std::pair{1, 0}, {2, 1}, {10, 9}, {11, 10}, {50, 10}}) {
        char buf[64];
        std::memset(buf, '#', sizeof buf);
        EXPECT_EQ(list.GetItemText(0, 1, buf, size), copied) << size;
        EXPECT_EQ(std::string(buf), std::string("Longitude ", size_t(copied)));
    }
    char buf[2] = {'#', '#'};
    EXPECT_EQ(list.GetItemText(0, 1, buf, 0) + list.GetItemText(0, 1, nullptr, 10) + buf[0], '#');
    EXPECT_TRUE(list.DeleteAllItems());
    EXPECT_EQ(list.GetItemCount(), 0);
}

TEST(ListFrame, EachCellKeepsItsOwnMaskAndTypesByIt) {
    CListFrame list;
    list.InsertColumn(0, "Field");
    list.InsertColumn(1, "Value");
    for (int i = 0; i < 2; ++i) list.InsertItem(i, "row");
    list.SetMask(0, 1, kDms, kDmsLit, "WEwe");
    list.SetMask(1, 1, kDms, kDmsLit, "NSns");
    EXPECT_EQ(list.GetItemText(0, 1), kDmsLit);
    list.InsertItem(0, "new");  // the masks move with their cells
    EXPECT_EQ(list.GetValid(1, 1) + list.GetValid(2, 1) + list.GetMask(0, 1), "WEweNSns");
    const struct { int at; char ch; bool ok; } keys[] = {{0, '0', true}, {1, '4', true}, {2, '5', true}, {3, 'x', false},
        {3, '1', true}, {6, '0', true}, {9, '2', true}, {10, '0', true}, {12, '0', true}, {13, '0', true},
        {17, 'E', false}, {17, 'S', true}, {18, 'S', false}};
    for (const auto& k : keys) EXPECT_EQ(list.TypeChar(2, 1, k.at, k.ch), k.ok) << k.at;
    EXPECT_EQ(list.GetItemText(2, 1), "045" DEG " 10' 20.00'' S");
    EXPECT_TRUE(list.EraseChar(2, 1, 17));
    EXPECT_FALSE(list.EraseChar(2, 1, 3));
    EXPECT_EQ(list.GetItemText(2, 1), "045" DEG " 10' 20.00'' _");
    EXPECT_TRUE(list.SetItemText(2, 1, "anything")) << "taken as given";
    EXPECT_EQ(list.GetItemText(2, 1), "anything");
    EXPECT_TRUE(list.TypeChar(0, 1, 0, 'x') && list.TypeChar(0, 1, 1, 'y'));  // no mask: plain typing
    EXPECT_FALSE(list.TypeChar(0, 1, 3, 'z'));
    EXPECT_TRUE(list.EraseChar(0, 1, 0));
    EXPECT_EQ(list.GetItemText(0, 1), "y");
}

}  // namespace
