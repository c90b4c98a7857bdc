// Windows, edits and combo boxes as Windows has them.
#include <mapwright/afxwin.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace {
std::string TextOf(const CWnd& w) {
    CString text;
    w.GetWindowText(text);
    return text.GetString();
}

TEST(Window, TextStateAndHandles) {
    CWnd w;
    w.SetWindowText("Latitude");
    for (const auto& [size, copied] : {std::pair{1, 0}, {8, 7}, {9, 8}}) {  // size - 1 bytes and a NUL
        char buf[12] = "###########";
        EXPECT_EQ(w.GetWindowText(buf, size), copied) << size;
        EXPECT_EQ(std::string(buf) + buf[size], std::string("Latitude", size_t(copied)) + '#') << size;
    }
    char buf[4] = "##";
    EXPECT_EQ(w.GetWindowText(buf, 0) + w.GetWindowText(nullptr, 10), 0);
    EXPECT_EQ(buf[0], '#');
    // Each call returns the previous state: visible, then enabled.
    for (const auto& [show, was, is] : {std::tuple{SW_HIDE, TRUE, FALSE}, {SW_HIDE, FALSE, FALSE}, {SW_SHOWNA, FALSE, TRUE}}) {
        EXPECT_EQ(w.ShowWindow(show), was);
        EXPECT_EQ(w.IsWindowVisible(), is);
    }
    for (const auto& [enable, was, is] : {std::tuple{FALSE, FALSE, FALSE}, {FALSE, TRUE, FALSE}, {7, TRUE, TRUE}}) {
        EXPECT_EQ(w.EnableWindow(enable), was);
        EXPECT_EQ(w.IsWindowEnabled(), is);
    }
    auto edit = std::make_unique<CEdit>();
    const HWND h = edit->GetSafeHwnd();
    EXPECT_EQ(CWnd::FromHandle(h), edit.get());
    EXPECT_EQ(SendMessageA(h, WM_SETTEXT, 0, LPARAM("Height")), TRUE);
    EXPECT_EQ(edit->SendMessage(WM_GETTEXT, sizeof buf, LPARAM(buf)), 3);
    edit.reset();
    EXPECT_FALSE(IsWindow(h) || CWnd::FromHandle(h));
}

TEST(Edit, SelectionAndTyping) {
    CEdit edit;
    EXPECT_EQ(edit.GetSel(), 0u);
    for (const auto& [from, to, s, e] : {std::tuple{-4, 2, 0, 2}, {5, 2, 2, 5}, {9, 9, 6, 6}}) {
        edit.SetWindowText("abcdef");
        edit.SetSel(from, to);
        EXPECT_EQ(edit.GetSel(), DWORD(MAKELONG(s, e))) << from << "," << to;
    }
    edit.SetSel(-1, 0);
    EXPECT_EQ(edit.GetSel(), DWORD(MAKELONG(6, 6)));
    for (const auto& [at, ch, after] : {std::tuple{2, '\xB0', "ab\xB0"}, {3, '3', "ab"}, {1, '\0', "ab"}}) {
        edit.SetWindowText("ab");
        EXPECT_EQ(edit.GetSel(), 0u);
        CEdit& base = edit;  // a back end types through the virtual member
        EXPECT_EQ(base.TypeChar(at, ch), after[2] != 0) << at;
        EXPECT_EQ(TextOf(edit), after);
        EXPECT_EQ(edit.GetSel(), DWORD(after[2] ? MAKELONG(3, 3) : 0)) << at;
    }
    EXPECT_TRUE(edit.EraseChar(1) && !edit.EraseChar(1) && !edit.EraseChar(-1) && edit.EraseChar(0));
    EXPECT_EQ(TextOf(edit), "");
}

TEST(ComboBox, SortingSelectionAndSearch) {
    CComboBox box;
    box.ModifyStyle(0, CBS_SORT);
    for (const auto& [text, index] : {std::pair<const char*, int>{"b", 0}, {"UTM", 1}, {"B", 1}, {"", 0}, {"\xDF", 4},
                                      {"\xE0", 4}, {"\xC1", 5}})
        EXPECT_EQ(box.AddString(text), index) << text;
    box.SetCurSel(2);
    box.AddString("a");
    EXPECT_EQ(box.GetCurSel(), 3);
    EXPECT_EQ(box.DeleteString(0), 7);
    EXPECT_EQ(box.GetCurSel(), 2);
    box.SetWindowText("Other");  // a list has no edit field
    EXPECT_EQ(TextOf(box), "B");
    const int R = CB_ERR;
    for (const auto& [after, text, prefix, exact] : {std::tuple{1, "b", 2, 2}, {5, "a", 0, 0}, {-1, "\xFF", 6, 6}, {-1, "UTMs", R, R}}) {
        EXPECT_EQ(box.FindString(after, text), prefix) << after << text;
        EXPECT_EQ(box.FindStringExact(after, text), exact) << after << text;
    }
    EXPECT_EQ(box.SelectString(-1, "x"), R);
    EXPECT_EQ(box.GetCurSel(), 2);
    EXPECT_EQ(box.DeleteString(2), 6);
    EXPECT_EQ(box.GetCurSel() + box.InsertString(7, "w") + box.GetLBTextLen(6), 3 * R);
    char item[16] = "";
    EXPECT_EQ(box.GetLBText(box.GetCount(), item) + box.GetLBText(-1, item) + box.GetLBText(0, nullptr), 3 * R);
    EXPECT_EQ(box.InsertString(-1, "0"), 6);
    EXPECT_EQ(box.InsertString(0, "z"), 0);
    EXPECT_EQ(box.SetCurSel(9), R);
    EXPECT_EQ(TextOf(box) + std::to_string(box.GetCurSel()), "-1");
}
}  // namespace
