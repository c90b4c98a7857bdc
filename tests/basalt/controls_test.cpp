// Basalt's masked edit and list: what each place of a mask takes.
#include <mapwright/basalt.h>
#include <mapwright/basalt_controls.h>
#include <gtest/gtest.h>
#include <algorithm>
#include <cstring>
#include <string>

namespace {
#define DEG "\xB0"  // the degree sign in Windows-1251
const char *const kDms = "900__90__90_00___$", *const kDmsLit = "___" DEG " __' __.__'' _";
struct Mask { const char *mask, *literal, *valid; };
const Mask kLat{kDms, kDmsLit, "NSns"}, kLon{kDms, kDmsLit, "WEwe"}, kDec{"900_9000000_$", "___._________", "NSns"},
    kNum{"%%%%", "____", ""}, kHemi{"$", "_", nullptr};

std::string TextOf(const CWnd& w) {
    CString text;
    w.GetWindowText(text);
    return text.GetString();
}
int Caret(const CEdit& edit) {
    int start, end;
    edit.GetSel(start, end);
    EXPECT_EQ(start, end);
    return end;
}

TEST(MaskEdit, EachPlaceTakesItsCharacters) {
    const struct { Mask m; int at; char ch; int lands; } cases[] = {  // lands -1: refused
        {kLat, 0, '9', 0}, {kLat, 0, ' ', -1}, {kLat, 2, 'N', -1}, {kLat, 17, 's', 17}, {kLat, 17, 'E', -1},
        {kLon, 17, 'w', 17}, {kLat, 3, DEG[0], 3}, {kLat, 3, '4', 5}, {kLat, 4, '4', 5}, {kLat, 3, 'x', -1},
        {kLat, 14, 'S', 17}, {kLat, -1, '1', -1}, {kLat, 18, '1', -1},
        {kDec, 11, 'n', 12}, {kDec, 11, ' ', 11}, {kDec, 11, '_', -1}, {kNum, 0, '-', 0}, {kNum, 2, '.', 2},
        {kNum, 3, 'E', 3}, {kNum, 0, ',', -1}, {kHemi, 0, 'S', -1},
    };
    for (const auto& c : cases) {
        CMaskEdit edit;
        edit.SetWindowText("old");
        edit.SetMask(c.m.mask, c.m.literal, c.m.valid);
        edit.SetSel(2, 2);
        std::string expected = TextOf(edit);
        if (c.lands >= 0) expected[size_t(c.lands)] = c.ch;
        SCOPED_TRACE(std::string(c.m.mask) + " place " + std::to_string(c.at) + " " + c.ch);
        EXPECT_EQ(edit.TypeChar(c.at, c.ch), c.lands >= 0);
        EXPECT_EQ(TextOf(edit), expected);
        EXPECT_EQ(Caret(edit), c.lands < 0 ? std::min<int>(2, int(expected.size())) : c.lands + 1);
    }
    CMaskEdit edit;
    edit.SetMask(kDec.mask, kDec.literal, kDec.valid);
    EXPECT_EQ(TextOf(edit), "___._______ _");
    edit.SetMask(nullptr, nullptr, nullptr);  // nulls count as empty
    EXPECT_TRUE(edit.GetMask().IsEmpty() && edit.GetLiteral().IsEmpty() && edit.GetValid().IsEmpty() && TextOf(edit).empty());
    EXPECT_TRUE(edit.TypeChar(0, 'x'));
}

TEST(MaskEdit, TypingAndErasing) {
    CMaskEdit edit;
    edit.SetMask(kDms, kDmsLit, "NSns");
    int accepted = 0;
    for (const char* k = "0a3b9-30x15,.25EN"; *k; ++k) accepted += edit.TypeChar(Caret(edit), *k) ? 1 : 0;
    EXPECT_EQ(accepted, 11);
    EXPECT_EQ(TextOf(edit), "039" DEG " 30' 15.25'' N");
    EXPECT_FALSE(edit.TypeChar(18, 'N'));
    EXPECT_TRUE(edit.TypeChar(6, '5') && edit.TypeChar(7, '4'));
    EXPECT_EQ(Caret(edit), 10);
    for (const auto& [at, erased] : {std::pair{1, true}, {3, false}, {17, true}, {18, false}})
        EXPECT_EQ(edit.EraseChar(at), erased) << at;
    EXPECT_EQ(TextOf(edit), "0_9" DEG " 35' 45.25'' _");
    edit.SetWindowText("0");  // taken as given, and grows at its end
    EXPECT_TRUE(edit.TypeChar(1, '5') && !edit.TypeChar(3, '5'));
    EXPECT_EQ(TextOf(edit) + edit.GetMask().GetString(), std::string("05") + kDms);
}

TEST(ListFrame, CellsKeepTheirTextAndMask) {
    CListFrame list;
    EXPECT_EQ(list.InsertItem(0, "Lat"), 0);
    EXPECT_EQ(list.InsertColumn(0, "Field"), 0);
    EXPECT_EQ(list.InsertColumn(5, "Value"), 1);
    EXPECT_EQ(list.InsertItem(5, "H"), 1);
    EXPECT_TRUE(list.SetItemText(1, 1, "12.5"));
    list.SetMask(1, 1, kDms, kDmsLit, "NSns");
    EXPECT_EQ(list.InsertColumn(1, "Unit") + list.InsertItem(0, "new"), 1);
    EXPECT_EQ(std::string((list.GetColumnHeading(2) + list.GetItemText(2, 2) + list.GetValid(2, 2)).GetString()), "Value" + std::string(kDmsLit) + "NSns");
    EXPECT_EQ(list.GetMask(2, 1) + list.GetColumnHeading(3) + list.GetColumnHeading(-1), "");
    EXPECT_FALSE(list.SetItemText(3, 0, "x") || list.TypeChar(0, 3, 0, '1') || list.EraseChar(-1, 0, 0));
    const struct { int at; char ch; bool ok; } keys[] = {{0, '0', true}, {1, '4', true}, {2, '5', true}, {3, 'x', false},
        {3, '1', true}, {6, '0', true}, {9, '2', true}, {17, 'S', true}, {18, 'S', false}};
    for (const auto& k : keys) EXPECT_EQ(list.TypeChar(2, 2, k.at, k.ch), k.ok) << k.at;
    EXPECT_TRUE(list.EraseChar(2, 2, 17) && !list.EraseChar(2, 2, 3));
    EXPECT_EQ(list.GetItemText(2, 2), "045" DEG " 10' 2_.__'' _");
    char buf[8] = "#######";
    EXPECT_EQ(list.GetItemText(2, 2, buf, 4), 3);
    EXPECT_EQ(std::string(buf, 5), std::string("045\0#", 5));
    EXPECT_EQ(list.GetItemText(7, 0, buf, 8) + buf[0], 0);  // no such cell: empty
    EXPECT_EQ(std::to_string(list.GetItemText(0, 0, buf, 3)) + buf, "2ne");  // "new" cut to leave room for the NUL
    EXPECT_EQ(list.GetItemText(0, 0, buf, 1) + buf[0] + list.GetItemText(0, 0, buf, 0) + list.GetItemText(0, 0, nullptr, 8), 0);
    EXPECT_TRUE(list.TypeChar(0, 1, 0, 'x') && !list.TypeChar(0, 1, 2, 'z'));  // no mask
    EXPECT_TRUE(list.DeleteItem(1) && !list.DeleteItem(2) && list.DeleteAllItems());
    EXPECT_EQ(list.GetItemCount(), 0);
    EXPECT_EQ(list.InsertColumn(3, "Note"), 3);  // four headings fill their storage: one more is past its end
    EXPECT_EQ(list.GetColumnHeading(4), "");
}
}  // namespace
