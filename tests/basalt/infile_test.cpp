// The file control over a dialog's placeholder.
#include <gtest/gtest.h>
#include <mapwright/basalt.h>
#include <mapwright/basalt_controls.h>

#include <functional>

namespace {

using Texts = std::vector<std::string>;

class Host : public CWnd {
public:
    Texts reports;

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
    explicit Rig(LONG width = 164, const char* initialDir = "\\Processing") {
        placeholder.Create("StaticGeoidFile", WS_CHILD | WS_VISIBLE, RECT{231, 30, 231 + width, 62}, &host, 822);
        file.SubclassDlgItem(822, &host);
        file.Create(1, "Geoid (*.grd)|*.grd||", nullptr, 8, initialDir);
    }
    Host host;
    CStatic placeholder;
    CInFileCtrl file;
};

TEST(FileControl, FillsThePlaceholderAndShowsAsAWhole) {
    Rig rig;
    EXPECT_EQ(rig.host.GetDlgItem(822), &rig.file);
    RECT e{}, b{};  // 164 wide: the button the last 8, the edit the rest less a gap of 2
    rig.file.GetPathEdit().GetWindowRect(&e), rig.file.GetBrowseButton().GetWindowRect(&b);
    EXPECT_TRUE(e.left == 0 && e.top == 0 && e.right == 154 && e.bottom == 12 && b.left == 156 && b.right == 164 && b.bottom == 12);
    // The browser starts in a folder below the application's, or the one given.
    setenv("MAPWRIGHT_APPDIR", "/app", 1);
    for (auto [given, start] : {std::pair{"\\Processing", "/app/Processing"}, {"", "/app"}, {"/g", "/app/g"}, {"rel\\g", "rel/g"}}) {
        EXPECT_EQ(std::string(Rig(164, given).file.GetInitialDir().GetString()), start);
    }
    unsetenv("MAPWRIGHT_APPDIR");
    for (auto [width, edit] : {std::pair{11L, 1L}, {9L, 0L}}) {  // the edit shrinks to nothing, never below
        Rig narrow(width);
        narrow.file.GetPathEdit().GetWindowRect(&e);
        EXPECT_EQ(e.right, edit) << width;
    }
    EXPECT_TRUE(rig.file.GetPathEdit().IsWindowVisible() && rig.file.GetBrowseButton().IsWindowVisible());
    EXPECT_FALSE(rig.file.Create(1, nullptr, nullptr, 8, nullptr)) << "created once";
    rig.file.ShowWindow(SW_HIDE);
    EXPECT_FALSE(rig.file.GetPathEdit().IsWindowVisible() || rig.file.GetBrowseButton().IsWindowVisible());
}

TEST(FileControl, EveryChangeOfThePathIsReported) {
    const struct { std::function<BOOL(Rig&)> act; BOOL accepted; Texts reports; } cases[] = {
        {[](Rig& r) { return r.file.SetPathName("/egm.grd"), TRUE; }, TRUE, {"822 /egm.grd"}},
        {[](Rig& r) { return r.file.ChoosePath("/a b.grd"); }, TRUE, {"822 /a b.grd"}},
        {[](Rig& r) { return r.file.GetPathEdit().TypeText("/x"); }, TRUE, {"822 /", "822 /x"}},
        {[](Rig& r) { return r.file.ShowWindow(SW_HIDE), r.file.ChoosePath("/e"); }, FALSE, {}},
        {[](Rig& r) { return r.host.EnableWindow(FALSE), r.file.ChoosePath("/e"); }, FALSE, {}},
        {[](Rig& r) { return r.file.GetBrowseButton().Click(); }, TRUE, {}},  // no window back end
    };
    for (const auto& c : cases) {
        Rig rig;
        EXPECT_EQ(c.accepted, c.act(rig)) << &c - cases;
        EXPECT_EQ(c.reports, rig.host.reports) << &c - cases;
    }
}

}  // namespace
