// Modal dialogs of the window model played by a scripted user: the template
// built in the user-interface language, members bound by DDX_Control, message
// maps chained to the base class's, notifications in Windows' order, auto
// radio groups and what DoModal returns.
#include <mapwright/afxext.h>
#include <mapwright/afxwin.h>
#include <mapwright/resources.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

extern const MwModuleResources MwResources_DialogTest;

namespace {

constexpr UINT kTemplate = 100;
constexpr UINT kPrivate = WM_USER + 5;

std::string TextOf(const CWnd& window) {
    CString text;
    window.GetWindowText(text);
    return text.GetString();
}

// Logs every handler it runs.
class TestDialog : public CDialog {
public:
    explicit TestDialog(UINT id = kTemplate) : CDialog(id) {}

    BOOL OnInitDialog() override {
        CDialog::OnInitDialog();
        for (const char* item : {"one", "two", "three"}) m_list.AddString(item);
        log.push_back("init");
        if (endInInit) EndDialog(endInInit);
        return TRUE;
    }

    std::vector<std::string> log;
    int endInInit = 0;
    CButton m_ok;
    CComboBox m_list;
    CEdit m_edit;
    CButton m_radio[2];

protected:
    void DoDataExchange(CDataExchange* pDX) override {
        CDialog::DoDataExchange(pDX);
        DDX_Control(pDX, IDOK, m_ok);
        DDX_Control(pDX, 10, m_list);
        DDX_Control(pDX, 11, m_edit);
        DDX_Control(pDX, 20, m_radio[0]);
        DDX_Control(pDX, 21, m_radio[1]);
    }
    afx_msg void OnDropDown() { log.push_back("drop"); }
    afx_msg void OnListChanged() { log.push_back("list " + TextOf(m_list)); }
    afx_msg void OnEditChanged() { log.push_back("edit " + TextOf(m_edit)); }
    afx_msg void OnRadioA() { log.push_back("A " + std::to_string(m_radio[0].GetCheck())); }
    afx_msg LRESULT OnPrivate(WPARAM w, LPARAM l) {
        log.push_back("private " + std::to_string(w) + " " + std::to_string(l));
        return static_cast<LRESULT>(w) + l;
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(TestDialog, CDialog)
    ON_CBN_DROPDOWN(10, &TestDialog::OnDropDown)
    ON_CBN_SELCHANGE(10, &TestDialog::OnListChanged)
    ON_CBN_CLOSEUP(10, &TestDialog::OnListChanged)
    ON_EN_CHANGE(11, &TestDialog::OnEditChanged)
    ON_BN_CLICKED(20, &TestDialog::OnRadioA)
    ON_MESSAGE(kPrivate, &TestDialog::OnPrivate)
END_MESSAGE_MAP()

// Its own CBN_CLOSEUP entry wins over the base's; the base's others still run.
class DerivedDialog : public TestDialog {
protected:
    afx_msg void OnClosed() { log.push_back("closed"); }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(DerivedDialog, TestDialog)
    ON_CBN_CLOSEUP(10, &DerivedDialog::OnClosed)
END_MESSAGE_MAP()

using User = std::function<void(TestDialog&)>;

void Play(CDialog& dialog, void* context) { (*static_cast<User*>(context))(dynamic_cast<TestDialog&>(dialog)); }

class DialogTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        static AFX_EXTENSION_MODULE extension{};
        ASSERT_TRUE(AfxInitExtensionModule(extension, MwRegisterModule(&MwResources_DialogTest)));
        new CDynLinkLibrary(extension);  // the chain owns it
    }
    void TearDown() override {
        MwSetDialogUser(nullptr, nullptr);
        SetThreadUILanguage(0);
    }
    INT_PTR Run(TestDialog& dialog, User user) {
        m_user = std::move(user);
        MwSetDialogUser(&Play, &m_user);
        return dialog.DoModal();
    }
    User m_user;
};

TEST_F(DialogTest, UserActionsNotifyInWindowsOrder) {
    const struct {
        const char* why;
        std::function<BOOL(TestDialog&)> act;
        BOOL accepted;
        std::vector<std::string> log;
    } cases[] = {
        {"a pick runs a handler of both SELCHANGE and CLOSEUP twice", [](TestDialog& d) { return d.m_list.Pick(1); },
         TRUE, {"init", "drop", "list two", "list two"}},
        {"open and close: no selection change", [](TestDialog& d) { return d.m_list.OpenAndClose(); }, TRUE,
         {"init", "drop", "list "}},
        {"an item the open list lacks: it only closes", [](TestDialog& d) { return d.m_list.Pick(3); }, FALSE,
         {"init", "drop", "list "}},
        {"typing replaces the whole text, one change per character",
         [](TestDialog& d) {
             d.m_edit.SetWindowText("xy");
             d.log.clear();
             return d.m_edit.TypeText("ab");
         },
         TRUE, {"edit ", "edit a", "edit ab"}},
        {"an auto radio button is checked before BN_CLICKED", [](TestDialog& d) { return d.m_radio[0].Click(); }, TRUE,
         {"init", "A 1"}},
        {"a hidden control takes no action",
         [](TestDialog& d) {
             d.m_radio[0].ShowWindow(SW_HIDE);
             return d.m_radio[0].Click();
         },
         FALSE, {"init"}},
        {"nor does one of a disabled dialog",
         [](TestDialog& d) {
             d.EnableWindow(FALSE);
             return d.m_list.Pick(0);
         },
         FALSE, {"init"}},
        {"ON_MESSAGE passes both parameters and the result",
         [](TestDialog& d) { return d.SendMessage(kPrivate, 3, 4) == 7 ? TRUE : FALSE; }, TRUE,
         {"init", "private 3 4"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        TestDialog dialog;
        BOOL accepted = -1;
        Run(dialog, [&](TestDialog& d) {
            accepted = c.act(d);
            d.EndDialog(IDCANCEL);
        });
        EXPECT_EQ(accepted, c.accepted);
        EXPECT_EQ(dialog.log, c.log);
    }
}

TEST_F(DialogTest, DerivedMapEntryWinsAndTheBaseMapStillAnswers) {
    DerivedDialog dialog;
    Run(dialog, [](TestDialog& d) { d.m_list.Pick(2); });
    EXPECT_EQ(dialog.log, (std::vector<std::string>{"init", "drop", "list three", "closed"}));
}

TEST_F(DialogTest, AutoRadioButtonsUncheckOnlyTheirGroup) {
    // 20 and 21 form one group (20 has WS_GROUP), 22 and 23 the next.
    const struct {
        std::vector<int> clicks;
        std::vector<int> checks;
    } cases[] = {
        {{20}, {1, 0, 0, 0}},
        {{20, 21}, {0, 1, 0, 0}},
        {{20, 22}, {1, 0, 1, 0}},
        {{23, 23}, {0, 0, 0, 1}},
        {{21, 23, 20, 22}, {1, 0, 1, 0}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.clicks));
        TestDialog dialog;
        std::vector<int> checks;
        Run(dialog, [&](TestDialog& d) {
            for (int id : c.clicks) EXPECT_TRUE(dynamic_cast<CButton&>(*d.GetDlgItem(id)).Click());
            for (int id = 20; id <= 23; ++id) checks.push_back(dynamic_cast<CButton&>(*d.GetDlgItem(id)).GetCheck());
            d.EndDialog(IDCANCEL);
        });
        EXPECT_EQ(checks, c.checks);
    }
}

TEST_F(DialogTest, DoModalReturnsWhatEndedTheDialog) {
    const struct {
        const char* why;
        User user;
        INT_PTR result;
    } cases[] = {
        {"OK reaches OnOK", [](TestDialog& d) { d.m_ok.Click(); }, IDOK},
        {"Cancel reaches OnCancel", [](TestDialog& d) { dynamic_cast<CButton*>(d.GetDlgItem(IDCANCEL))->Click(); },
         IDCANCEL},
        {"the close box is Cancel", [](TestDialog& d) { d.SendMessage(WM_CLOSE); }, IDCANCEL},
        {"EndDialog's code", [](TestDialog& d) { d.EndDialog(42); }, 42},
        {"a user who leaves without ending it", [](TestDialog&) {}, -1},
        {"actions after the end are refused",
         [](TestDialog& d) {
             d.EndDialog(7);
             EXPECT_FALSE(d.m_ok.Click());
             EXPECT_FALSE(d.m_list.Pick(0));
         },
         7},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        TestDialog dialog;
        EXPECT_EQ(Run(dialog, c.user), c.result);
    }
}

TEST_F(DialogTest, DialogsThatCannotRunReturnMinusOne) {
    TestDialog noUser;
    EXPECT_EQ(noUser.DoModal(), -1) << "no scripted user and no window back end";
    EXPECT_TRUE(noUser.log.empty()) << "OnInitDialog must not run";

    bool called = false;
    TestDialog missing(kTemplate + 1);
    EXPECT_EQ(Run(missing, [&](TestDialog&) { called = true; }), -1) << "a template no module has";
    EXPECT_FALSE(called);

    TestDialog endsAtOnce;
    endsAtOnce.endInInit = 5;
    EXPECT_EQ(Run(endsAtOnce, [&](TestDialog&) { called = true; }), 5) << "ended in OnInitDialog";
    EXPECT_FALSE(called) << "the user never sees a dialog that ended before it was shown";
}

TEST_F(DialogTest, TemplateControlsAreBuiltAndMembersBound) {
    TestDialog dialog;
    for (int run = 0; run < 2; ++run) {
        SCOPED_TRACE(run ? "second DoModal of the same object" : "first DoModal");
        Run(dialog, [](TestDialog& d) {
            EXPECT_EQ(TextOf(d), "Test dialog");
            EXPECT_TRUE(d.IsWindowVisible());
            EXPECT_EQ(d.GetDlgItem(11), &d.m_edit) << "the member is the permanent object";
            EXPECT_EQ(d.m_list.GetCount(), 3) << "a fresh window has no items";
            EXPECT_EQ(d.m_radio[0].GetStyle() & (WS_GROUP | BS_TYPEMASK), WS_GROUP | BS_AUTORADIOBUTTON);
            auto* label = dynamic_cast<CStatic*>(d.GetDlgItem(30));
            ASSERT_NE(label, nullptr) << "an unbound control still has its class";
            EXPECT_EQ(TextOf(*label), "File");
            RECT r{};
            label->GetWindowRect(&r);
            EXPECT_EQ(std::vector<LONG>({r.left, r.top, r.right, r.bottom}), std::vector<LONG>({5, 55, 155, 75}));
            EXPECT_EQ(d.GetDlgItem(99), nullptr);
            d.EndDialog(IDOK);
        });
        EXPECT_EQ(dialog.GetDlgItem(30), nullptr) << "the template's windows go with the dialog";
        EXPECT_FALSE(dialog.IsWindowVisible());
    }
}

TEST_F(DialogTest, TheTemplateOfTheUserInterfaceLanguageIsBuilt) {
    SetThreadUILanguage(LANG_RUSSIAN);
    TestDialog dialog;
    Run(dialog, [](TestDialog& d) {
        EXPECT_EQ(TextOf(d), "\xD2\xE5\xF1\xF2");
        EXPECT_EQ(TextOf(*d.GetDlgItem(IDCANCEL)), "\xCE\xF2\xEC\xE5\xED\xE0");
        EXPECT_EQ(d.GetDlgItem(22), nullptr) << "the Russian template has no second group";
        d.EndDialog(IDOK);
    });
}

}  // namespace
