// The window model against Windows' behaviour: text, state, handles and
// messages; the edit's selection and typing; combo boxes.
#include <mapwright/afxwin.h>

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

namespace {

std::string TextOf(const CWnd& w) {
    CString text;
    w.GetWindowText(text);
    return text.GetString();
}
std::string Items(const CComboBox& box) {
    std::string all;
    for (int i = 0; i < box.GetCount(); ++i) {
        CString item;
        box.GetLBText(i, item);
        all.append(i ? "|" : "").append(item.GetString());
    }
    return all;
}

TEST(Window, TextStateAndMessages) {
    CWnd w;
    w.SetWindowText("Latitude ");
    for (const auto& [size, copied] : {std::pair{1, 0}, {9, 8}, {10, 9}}) {  // size - 1 bytes and a NUL
        char buf[16] = "###############";
        EXPECT_EQ(w.GetWindowText(buf, size), copied) << size;
        EXPECT_EQ(std::string(buf) + buf[size], std::string("Latitude ", size_t(copied)) + '#') << size;
    }
    char buf[4] = "##";
    EXPECT_EQ(w.GetWindowText(buf, 0) + w.GetWindowText(buf, -5) + w.GetWindowText(nullptr, 10), 0);
    EXPECT_EQ(buf[0], '#');
    const int show[][3] = {{SW_HIDE, TRUE, FALSE}, {SW_HIDE, FALSE, FALSE}, {SW_SHOWNA, FALSE, TRUE}, {SW_SHOW, TRUE, TRUE}};
    for (const auto& s : show) {
        const int was = w.ShowWindow(s[0]);
        EXPECT_EQ(std::make_pair(was, w.IsWindowVisible()), std::make_pair(s[1], s[2])) << s[0];
    }
    const int enable[][3] = {{FALSE, FALSE, FALSE}, {FALSE, TRUE, FALSE}, {7, TRUE, TRUE}, {TRUE, FALSE, TRUE}};
    for (const auto& s : enable) {
        const int was = w.EnableWindow(s[0]);
        EXPECT_EQ(std::make_pair(was, w.IsWindowEnabled()), std::make_pair(s[1], s[2])) << s[0];
    }
    EXPECT_EQ(w.SetDlgCtrlID(801), 0);
    EXPECT_EQ(w.SetDlgCtrlID(802), 801);
    EXPECT_FALSE(w.ModifyStyle(0, WS_VISIBLE)) << "no change";
    EXPECT_TRUE(w.ModifyStyle(WS_VISIBLE, WS_DISABLED));
    EXPECT_FALSE(w.IsWindowVisible() || w.IsWindowEnabled());
    auto edit = std::make_unique<CEdit>();
    const HWND h = edit->GetSafeHwnd();
    EXPECT_EQ(CWnd::FromHandle(h), edit.get());
    EXPECT_EQ(SendMessageA(h, WM_SETTEXT, 0, LPARAM("Height ")), TRUE);
    EXPECT_EQ(SendMessageA(h, WM_GETTEXTLENGTH, 0, 0), 7);
    EXPECT_EQ(edit->SendMessage(WM_GETTEXT, sizeof buf, LPARAM(buf)), 3);
    EXPECT_STREQ(buf, "Hei");
    EXPECT_EQ(edit->SendMessage(0x7FFFu, 1, 2), 0) << "an unknown message";
    edit.reset();
    EXPECT_FALSE(IsWindow(h) || IsWindow(nullptr) || CWnd::FromHandle(h));
    EXPECT_EQ(SendMessageA(h, WM_GETTEXTLENGTH, 0, 0), 0);
    EXPECT_NE(CEdit().m_hWnd, h) << "handles are never reused";
    CButton button;
    button.SetCheck(7);
    EXPECT_EQ(button.SendMessage(BM_GETCHECK), BST_CHECKED);
    button.SendMessage(BM_SETCHECK, BST_INDETERMINATE);
    EXPECT_EQ(button.GetCheck(), BST_INDETERMINATE);
}

TEST(Edit, SelectionTypingAndErasing) {
    const int sel[][4] = {{0, -1, 0, 6}, {2, 99, 2, 6}, {-4, 2, 0, 2}, {5, 2, 2, 5}};
    CEdit edit;
    for (const auto& c : sel) {
        edit.SetWindowText("abcdef");
        edit.SetSel(c[0], c[1]);
        DWORD s = 99, e = 99;
        EXPECT_EQ(edit.SendMessage(EM_GETSEL, WPARAM(&s), LPARAM(&e)), MAKELONG(c[2], c[3])) << c[0] << "," << c[1];
        EXPECT_EQ(std::make_pair(s, e), std::make_pair(DWORD(c[2]), DWORD(c[3])));
    }
    edit.SetSel(-1, 0);
    EXPECT_EQ(edit.GetSel(), DWORD(MAKELONG(5, 5))) << "-1 removes the selection; the caret stays";
    edit.SetWindowText("xy");
    EXPECT_EQ(edit.GetSel(), 0u) << "new text puts the caret at the start";
    const struct { const char* before; int at; char ch; const char* after; } typed[] = {  // null: refused
        {"", 0, '5', "5"}, {"12", 2, '\xB0', "12\xB0"}, {"12", 3, '3', nullptr}, {"12", -1, '3', nullptr}, {"12", 1, '\0', nullptr},
    };
    for (const auto& c : typed) {
        edit.SetWindowText(c.before);
        edit.SetSel(1, 1);
        CEdit& base = edit;  // a back end types through the virtual member
        EXPECT_EQ(base.TypeChar(c.at, c.ch), c.after != nullptr) << c.before << c.at;
        EXPECT_EQ(TextOf(edit), c.after ? c.after : c.before);
        const int caret = c.after ? c.at + 1 : *c.before != 0;
        EXPECT_EQ(edit.GetSel(), DWORD(MAKELONG(caret, caret))) << c.before << c.at;
    }
    for (const auto& [at, after] : {std::pair<int, const char*>{0, "bc"}, {2, "ab"}, {3, "abc"}, {-1, "abc"}}) {
        edit.SetWindowText("abc");
        EXPECT_EQ(edit.EraseChar(at), at >= 0 && at < 3) << at;
        EXPECT_EQ(TextOf(edit), after);
    }
}

TEST(ComboBox, SortedWithoutCaseAndTheSelectionStaysOnItsItem) {
    CComboBox box;
    box.ModifyStyle(0, CBS_SORT);
    for (const auto& [text, index] : {std::pair<const char*, int>{"Geographic", 0}, {"UTM", 1}, {"Gauss", 0},
                                      {"geographic", 2}, {"", 0}, {"\xDF\xE1", 5}, {"\xE0\xE1", 5}, {"\xC1", 6}})
        EXPECT_EQ(box.AddString(text), index) << text;
    EXPECT_EQ(Items(box), "|Gauss|Geographic|geographic|UTM|\xE0\xE1|\xC1|\xDF\xE1");
    CComboBox s;
    s.ModifyStyle(0, CBS_SORT);
    s.AddString("b");
    s.AddString("d");
    s.SetCurSel(1);
    s.AddString("a");
    EXPECT_EQ(s.GetCurSel(), 2) << "an item sorted in before it";
    EXPECT_EQ(s.InsertString(0, "z"), 0) << "InsertString never sorts";
    EXPECT_EQ(s.DeleteString(0), 3) << "the count left";
    EXPECT_EQ(s.GetCurSel(), 2);
    EXPECT_EQ(s.DeleteString(2), 2);
    EXPECT_EQ(s.GetCurSel(), CB_ERR) << "the selected item deleted";
    EXPECT_EQ(s.DeleteString(2) + s.InsertString(3, "w") + s.InsertString(-2, "w"), 3 * CB_ERR);
    EXPECT_EQ(s.InsertString(-1, "y") + s.InsertString(3, "x"), 5) << "-1 and the count are the end";
    EXPECT_EQ(Items(s), "a|b|y|x");
    s.SetCurSel(1);
    s.SetWindowText("Other");  // a drop-down list has no edit field: its text is the item
    EXPECT_EQ(TextOf(s), "b");
    EXPECT_EQ(s.SetCurSel(4), CB_ERR);
    EXPECT_EQ(s.GetCurSel(), CB_ERR) << "cleared";
    EXPECT_EQ(TextOf(s), "");
    s.SetCurSel(0);
    EXPECT_EQ(SendMessageA(s.m_hWnd, CB_RESETCONTENT, 0, 0), CB_OKAY);
    EXPECT_EQ(s.GetCount() + s.GetCurSel() + TextOf(s).size(), CB_ERR);
    CComboBox drop;  // a drop-down keeps its own text
    drop.ModifyStyle(CBS_DROPDOWNLIST, CBS_DROPDOWN);
    drop.AddString("10");
    drop.SetWindowText("15");
    EXPECT_EQ(TextOf(drop) + std::to_string(drop.GetCurSel()), "15-1");
    drop.ResetContent();
    EXPECT_EQ(TextOf(drop), "") << "emptying the list empties the edit field";
}

TEST(ComboBox, SearchesIgnoreCaseAndGoRoundAndItemsOutsideAreErrors) {
    CComboBox box;
    for (const char* s : {"WGS 84", "Pulkovo 1942", "wgs 72", "Krassovsky 1940", "WGS 84"}) box.AddString(s);
    const int R = CB_ERR;
    const struct { int after; const char* text; int prefix, exact; } cases[] = {
        {0, "wgs", 2, R}, {4, "wgs", 0, R}, {0, "wgs 84", 4, 4}, {-1, "Krassovsky 1940 ", R, R}, {99, "Pul", 1, R},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(box.FindString(c.after, c.text), c.prefix) << c.after << " " << c.text;
        EXPECT_EQ(box.FindStringExact(c.after, c.text), c.exact) << c.after << " " << c.text;
    }
    EXPECT_EQ(box.SelectString(-1, "krass"), 3);
    EXPECT_EQ(box.SelectString(-1, "Polar"), R);
    EXPECT_EQ(box.GetCurSel(), 3) << "no match leaves the selection";
    EXPECT_EQ(box.SelectString(-1, nullptr), 0) << "null is the empty prefix";
    CString text("x");
    char buf[8] = "#";
    box.GetLBText(5, text);
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(box.GetLBTextLen(-1) + box.GetLBText(5, buf) + box.GetLBText(0, nullptr), 3 * R);
    EXPECT_STREQ(buf, "#");
    EXPECT_EQ(box.GetLBTextLen(0) + box.GetLBText(0, buf), 12);
    EXPECT_STREQ(buf, "WGS 84");
}

}  // namespace
