// The file control over a dialog's static placeholder: its layout, the
// message its parent gets on every change of the path, what a user can reach,
// the browse button through a window back end; and typing over the whole text
// of a masked edit, as the scripted user does.
#include <mapwright/basalt.h>
#include <mapwright/basalt_controls.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace {

// A parent that records every path change its file control reports.
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

// What a dialog does: the placeholder of its template, bound and created.
class FileControlTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_placeholder.Create("StaticGeoidFile", WS_CHILD | WS_VISIBLE, RECT{231, 30, 395, 62}, &m_host, 822));
        ASSERT_TRUE(m_file.SubclassDlgItem(822, &m_host));
        ASSERT_TRUE(m_file.Create(1, "Geoid (*.grd)|*.grd||", nullptr, 8, "\\Processing"));
    }
    void TearDown() override { MwSetWindowBackEnd(nullptr); }

    Host m_host;
    CStatic m_placeholder;
    CInFileCtrl m_file;
};

std::vector<LONG> RectOf(const CWnd& window) {
    RECT r{};
    window.GetWindowRect(&r);
    return {r.left, r.top, r.right, r.bottom};
}

TEST_F(FileControlTest, FillsThePlaceholderWithAnEditAndAButton) {
    EXPECT_EQ(m_host.GetDlgItem(822), &m_file);
    EXPECT_EQ(RectOf(m_file), (std::vector<LONG>{231, 30, 395, 62}));
    // 164 units wide: the button takes the last 8, the edit the rest less a gap of 2.
    EXPECT_EQ(RectOf(m_file.GetPathEdit()), (std::vector<LONG>{0, 0, 154, 12}));
    EXPECT_EQ(RectOf(m_file.GetBrowseButton()), (std::vector<LONG>{156, 0, 164, 12}));
    EXPECT_FALSE(m_file.Create(1, nullptr, nullptr, 8, nullptr)) << "created once";

    m_file.ShowWindow(SW_HIDE);
    EXPECT_FALSE(m_file.GetPathEdit().IsWindowVisible()) << "hidden as a whole";
    EXPECT_FALSE(m_file.GetBrowseButton().IsWindowVisible());
}

TEST_F(FileControlTest, EveryChangeOfThePathIsReported) {
    const struct {
        const char* why;
        std::function<BOOL(CInFileCtrl&, Host&)> act;
        BOOL accepted;
        std::vector<std::string> reports;
    } cases[] = {
        {"the program sets a path",
         [](CInFileCtrl& f, Host&) {
             f.SetPathName("/data/egm.grd");
             return TRUE;
         },
         TRUE, {"822 /data/egm.grd"}},
        {"the user picks a file", [](CInFileCtrl& f, Host&) { return f.ChoosePath("/data/a b.grd"); }, TRUE,
         {"822 /data/a b.grd"}},
        {"the user types a path", [](CInFileCtrl& f, Host&) { return f.GetPathEdit().TypeText("/x"); }, TRUE,
         {"822 /", "822 /x"}},
        {"a hidden control cannot be reached",
         [](CInFileCtrl& f, Host&) {
             f.ShowWindow(SW_HIDE);
             return f.ChoosePath("/data/egm.grd");
         },
         FALSE, {}},
        {"nor one in a disabled window",
         [](CInFileCtrl& f, Host& h) {
             h.EnableWindow(FALSE);
             return f.ChoosePath("/data/egm.grd");
         },
         FALSE, {}},
        {"the browse button without a window back end chooses nothing",
         [](CInFileCtrl& f, Host&) { return f.GetBrowseButton().Click(); }, TRUE, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        Host host;
        CStatic placeholder;
        CInFileCtrl file;
        placeholder.Create("", WS_CHILD | WS_VISIBLE, RECT{0, 0, 100, 20}, &host, 822);
        file.SubclassDlgItem(822, &host);
        file.Create(1, nullptr, nullptr, 8, nullptr);
        EXPECT_EQ(c.act(file, host), c.accepted);
        EXPECT_EQ(host.reports, c.reports);
    }
}

TEST_F(FileControlTest, TheBrowseButtonOpensTheBackEndsFileDialog) {
    static std::string asked;
    MwWindowBackEnd backEnd{};
    backEnd.chooseFile = [](HWND, BOOL open, LPCSTR filter, LPCSTR, LPCSTR dir, CString& path, void*) -> BOOL {
        asked = std::to_string(open) + " " + filter + " " + dir + " " + path.GetString();
        path = "/picked.grd";
        return TRUE;
    };
    MwSetWindowBackEnd(&backEnd);
    SetAppDir("/srv/app");
    m_file.SetPathName("/old.grd");
    m_host.reports.clear();
    EXPECT_TRUE(m_file.GetBrowseButton().Click());
    SetAppDir(nullptr);
    EXPECT_EQ(asked, "1 Geoid (*.grd)|*.grd|| /srv/app/Processing /old.grd") << "\\Processing is under the application directory";
    EXPECT_EQ(m_host.reports, std::vector<std::string>{"822 /picked.grd"});
}

TEST(MaskedTyping, TypingReplacesTheWholeTextUnderTheMask) {
    const struct {
        const char *mask, *literal, *valid, *before, *typed, *after;
        BOOL accepted;
        const char* why;
    } cases[] = {
        {"%%%%%%%%%%%%%%", "______________", "", "1", "35.7", "35.7", TRUE, "a program's short text is replaced"},
        {"$", "_", "NSns", "N", "s", "s", TRUE, "hemisphere letter"},
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
        EXPECT_STREQ(text.GetString(), c.after);
    }
}

}  // namespace
