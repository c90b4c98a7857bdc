// The file control over a dialog's static placeholder: layout, a report to
// the parent per change of the path, what a user can reach, the browse button
// through a window back end; and typing over a masked edit's whole text.
#include <mapwright/basalt.h>
#include <mapwright/basalt_controls.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace {

// A parent that records what its file control reports.
class Host : public CWnd {
public:
    std::vector<std::string> reports;

protected:
    afx_msg LRESULT OnFileChanged(WPARAM id, LPARAM control) {
        auto* file = dynamic_cast<CInFileCtrl*>(CWnd::FromHandle(reinterpret_cast<HWND>(control)));
        reports.push_back(std::to_string(id) + " " + (file ? file->GetPathName().GetString() : "?"));
        return 0;
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(Host, CWnd)
    ON_MESSAGE(WM_INFILECTRL_CHANGED, &Host::OnFileChanged)
END_MESSAGE_MAP()

// What a dialog does: its template's placeholder, bound and created.
struct Rig {
    Rig() {
        placeholder.Create("StaticGeoidFile", WS_CHILD | WS_VISIBLE, RECT{231, 30, 395, 62}, &host, 822);
        file.SubclassDlgItem(822, &host);
        file.Create(1, "Geoid (*.grd)|*.grd||", nullptr, 8, "\\Processing");
    }
    Host host;
    CStatic placeholder;
    CInFileCtrl file;
};

bool RectIs(const CWnd& window, LONG left, LONG right) {
    RECT r{};
    window.GetWindowRect(&r);
    return r.left == left && r.top == 0 && r.right == right && r.bottom == 12;
}

TEST(FileControl, FillsThePlaceholderWithAnEditAndAButton) {
    Rig rig;
    EXPECT_EQ(rig.host.GetDlgItem(822), &rig.file);
    // 164 units wide: the button takes the last 8, the edit the rest less a gap of 2.
    EXPECT_TRUE(RectIs(rig.file.GetPathEdit(), 0, 154) && RectIs(rig.file.GetBrowseButton(), 156, 164));
    EXPECT_FALSE(rig.file.Create(1, nullptr, nullptr, 8, nullptr)) << "created once";
    rig.file.ShowWindow(SW_HIDE);
    EXPECT_FALSE(rig.file.GetPathEdit().IsWindowVisible() || rig.file.GetBrowseButton().IsWindowVisible())
        << "hidden as a whole";
}

TEST(FileControl, EveryChangeOfThePathIsReported) {
    static std::string asked;
    MwWindowBackEnd backEnd{};
    backEnd.chooseFile = [](HWND, BOOL open, LPCSTR filter, LPCSTR, LPCSTR dir, CString& path, void*) -> BOOL {
        asked = std::to_string(open) + " " + filter + " " + dir + " " + path.GetString();
        path = "/picked.grd";
        return TRUE;
    };
    const struct {
        const char* why;
        std::function<BOOL(Rig&)> act;
        BOOL accepted;
        std::vector<std::string> reports;
    } cases[] = {
        {"the program sets a path", [](Rig& r) { r.file.SetPathName("/egm.grd"); return TRUE; }, TRUE, {"822 /egm.grd"}},
        {"the user picks a file", [](Rig& r) { return r.file.ChoosePath("/a b.grd"); }, TRUE, {"822 /a b.grd"}},
        {"the user types a path", [](Rig& r) { return r.file.GetPathEdit().TypeText("/x"); }, TRUE, {"822 /", "822 /x"}},
        {"a hidden control cannot be reached", [](Rig& r) { r.file.ShowWindow(SW_HIDE); return r.file.ChoosePath("/e"); },
         FALSE, {}},
        {"nor one in a disabled window", [](Rig& r) { r.host.EnableWindow(FALSE); return r.file.ChoosePath("/e"); },
         FALSE, {}},
        {"browsing without a window back end chooses nothing", [](Rig& r) { return r.file.GetBrowseButton().Click(); },
         TRUE, {}},
        {"browsing through the back end's file dialog",
         [&](Rig& r) { MwSetWindowBackEnd(&backEnd); return r.file.GetBrowseButton().Click(); }, TRUE,
         {"822 /picked.grd"}},
    };
    SetAppDir("/srv/app");
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        Rig rig;
        EXPECT_EQ(c.act(rig), c.accepted);
        EXPECT_EQ(rig.host.reports, c.reports);
    }
    MwSetWindowBackEnd(nullptr);
    SetAppDir(nullptr);
    EXPECT_EQ(asked, "1 Geoid (*.grd)|*.grd|| /srv/app/Processing ") << "\\Processing is under the application directory";
}

TEST(MaskedTyping, TypingReplacesTheWholeTextUnderTheMask) {
    const struct {
        const char *mask, *literal, *valid, *before, *typed, *after;
        BOOL accepted;
        const char* why;
    } cases[] = {
        {"%%%%%%%%%%%%%%", "______________", "", "1", "35.7", "35.7", TRUE, "a program's short text is replaced"},
        {"$", "_", "NSns", "N", "x", "_", FALSE, "a refused letter leaves the template"},
        {"99_99", "__:__", "", "12:34", "5678", "56:78", TRUE, "fixed places are stepped over"},
        {"", "", "", "old", "new", "new", TRUE, "no mask: a plain edit"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        CMaskEdit edit;
        edit.SetMask(c.mask, c.literal, c.valid);
        edit.SetWindowText(c.before);
        EXPECT_EQ(edit.TypeText(c.typed), c.accepted);
        CString text;
        edit.GetWindowText(text);
        EXPECT_STREQ(text, c.after);
    }
}

}  // namespace
