// Modal dialogs played by a scripted user: the template's controls, members
// bound by DDX_Control, message maps chained to the base's, notifications in
// Windows' order, auto radio groups, what DoModal returns.
#include <mapwright/afxext.h>
#include <mapwright/afxwin.h>
#include <mapwright/resources.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

extern const MwModuleResources MwResources_DialogTest;

namespace {

using Log = std::vector<std::string>;

std::string TextOf(const CWnd& window) {
    CString text;
    window.GetWindowText(text);
    return text.GetString();
}

// Template 100 of dialog_test.rc; logs every handler it runs. `extraId`
// binds one more control, `endInInit` ends the dialog in OnInitDialog.
class TestDialog : public CDialog {
public:
    explicit TestDialog(UINT id = 100, int endInInit = 0, int extraId = 0)
        : CDialog(id), m_endInInit(endInInit), m_extraId(extraId) {}
    BOOL OnInitDialog() override {
        CDialog::OnInitDialog();
        for (const char* item : {"one", "two", "three"}) m_list.AddString(item);
        log.push_back("init");
        if (m_endInInit) EndDialog(m_endInInit);
        return TRUE;
    }
    CButton& Button(int id) { return dynamic_cast<CButton&>(*GetDlgItem(id)); }

    Log log;
    int m_endInInit, m_extraId;
    CButton m_radioA;
    CComboBox m_list;
    CEdit m_edit;
    CStatic m_extra;

protected:
    void DoDataExchange(CDataExchange* pDX) override {
        CDialog::DoDataExchange(pDX);
        DDX_Control(pDX, 10, m_list);
        DDX_Control(pDX, 11, m_edit);
        DDX_Control(pDX, 20, m_radioA);
        if (m_extraId) DDX_Control(pDX, m_extraId, m_extra);
    }
    afx_msg void OnDropDown() { log.push_back("drop"); }
    afx_msg void OnListChanged() { log.push_back("list " + TextOf(m_list)); }
    afx_msg void OnEditChanged() { log.push_back("edit " + TextOf(m_edit)); }
    afx_msg void OnRadioA() { log.push_back("A " + std::to_string(m_radioA.GetCheck())); }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(TestDialog, CDialog)
    ON_CBN_DROPDOWN(10, &TestDialog::OnDropDown)
    ON_CBN_SELCHANGE(10, &TestDialog::OnListChanged)
    ON_CBN_CLOSEUP(10, &TestDialog::OnListChanged)
    ON_EN_CHANGE(11, &TestDialog::OnEditChanged)
    ON_BN_CLICKED(20, &TestDialog::OnRadioA)
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

class DialogTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        static AFX_EXTENSION_MODULE extension{};
        ASSERT_TRUE(AfxInitExtensionModule(extension, MwRegisterModule(&MwResources_DialogTest)));
        new CDynLinkLibrary(extension);  // the chain owns it
    }
    void TearDown() override { MwSetDialogUser(nullptr, nullptr); }
    // DoModal with `user` as the scripted user (none when empty).
    INT_PTR Run(TestDialog& dialog, User user) {
        m_user = std::move(user);
        MW_DIALOG_USER play = [](CDialog& d, void* u) {
            (*static_cast<User*>(u))(dynamic_cast<TestDialog&>(d));
        };
        MwSetDialogUser(m_user ? play : nullptr, &m_user);
        return dialog.DoModal();
    }
    User m_user;
};

TEST_F(DialogTest, UserActionsNotifyInWindowsOrder) {
    const struct {
        const char* why;
        std::function<BOOL(TestDialog&)> act;
        BOOL accepted;
        Log log;
    } cases[] = {
        {"a pick runs a handler of SELCHANGE and CLOSEUP twice", [](TestDialog& d) { return d.m_list.Pick(1); }, TRUE,
         {"init", "drop", "list two", "list two"}},
        {"open and close: nothing picked", [](TestDialog& d) { return d.m_list.OpenAndClose(); }, TRUE,
         {"init", "drop", "list "}},
        {"an item the open list lacks: it only closes", [](TestDialog& d) { return d.m_list.Pick(3); }, FALSE,
         {"init", "drop", "list "}},
        {"typing replaces the whole text, a change per character",
         [](TestDialog& d) { d.m_edit.SetWindowText("xy"); d.log.clear(); return d.m_edit.TypeText("ab"); }, TRUE,
         {"edit ", "edit a", "edit ab"}},
        {"an auto radio button is checked before BN_CLICKED", [](TestDialog& d) { return d.m_radioA.Click(); }, TRUE,
         {"init", "A 1"}},
        {"a hidden control takes no action",
         [](TestDialog& d) { d.m_radioA.ShowWindow(SW_HIDE); return d.m_radioA.Click(); }, FALSE, {"init"}},
        {"nor one of a disabled dialog", [](TestDialog& d) { d.EnableWindow(FALSE); return d.m_list.Pick(0); }, FALSE,
         {"init"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        TestDialog dialog;
        BOOL accepted = -1;
        Run(dialog, [&](TestDialog& d) { accepted = c.act(d); d.EndDialog(IDCANCEL); });
        EXPECT_EQ(accepted, c.accepted);
        EXPECT_EQ(dialog.log, c.log);
    }
    DerivedDialog derived;
    Run(derived, [](TestDialog& d) { d.m_list.Pick(2); });
    EXPECT_EQ(derived.log, (Log{"init", "drop", "list three", "closed"}));
}

TEST_F(DialogTest, AutoRadioButtonsUncheckOnlyTheirGroup) {
    // 20 and 21 form one group (20 has WS_GROUP), 22 and 23 the next.
    const struct {
        std::vector<int> clicks, checks;
    } cases[] = {
        {{20}, {1, 0, 0, 0}},     {{20, 21}, {0, 1, 0, 0}}, {{20, 22}, {1, 0, 1, 0}},
        {{23, 23}, {0, 0, 0, 1}}, {{21, 23, 20, 22}, {1, 0, 1, 0}},
    };
    for (const auto& c : cases) {
        TestDialog dialog;
        std::vector<int> checks;
        Run(dialog, [&](TestDialog& d) {
            for (int id : c.clicks) EXPECT_TRUE(d.Button(id).Click());
            for (int id = 20; id <= 23; ++id) checks.push_back(static_cast<int>(d.IsDlgButtonChecked(id)));
            d.EndDialog(IDCANCEL);
        });
        EXPECT_EQ(checks, c.checks) << ::testing::PrintToString(c.clicks);
    }
}

TEST_F(DialogTest, DoModalReturnsWhatEndedTheDialog) {
    const auto ok = [](TestDialog& d) { d.Button(IDOK).Click(); };
    const auto user = [](TestDialog& d) { d.log.push_back("user"); };
    const struct {
        const char* why;
        std::vector<int> dialog;  // the arguments of TestDialog
        User user;
        INT_PTR result;
        Log log;
    } cases[] = {
        {"OK reaches OnOK", {100, 0, 0}, ok, IDOK, {"init"}},
        {"Cancel reaches OnCancel", {100, 0, 0}, [](TestDialog& d) { d.Button(IDCANCEL).Click(); }, IDCANCEL, {"init"}},
        {"the close box is Cancel", {100, 0, 0}, [](TestDialog& d) { d.SendMessage(WM_CLOSE); }, IDCANCEL, {"init"}},
        {"EndDialog's code; later actions are refused", {100, 0, 0},
         [](TestDialog& d) { d.EndDialog(42); d.log.push_back(d.Button(IDOK).Click() || d.m_list.Pick(0) ? "acted" : "-"); },
         42, {"init", "-"}},
        {"a failed exchange keeps OK from ending it", {100, 0, 99}, ok, -1, {"init"}},
        {"the user leaves without ending it", {100, 0, 0}, [](TestDialog&) {}, -1, {"init"}},
        {"ended in OnInitDialog: never shown to the user", {100, 5, 0}, user, 5, {"init"}},
        {"a template no module has", {101, 0, 0}, user, -1, {}},
        {"no scripted user, no back end: nothing of the dialog runs", {100, 0, 0}, nullptr, -1, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        TestDialog dialog(static_cast<UINT>(c.dialog[0]), c.dialog[1], c.dialog[2]);
        EXPECT_EQ(Run(dialog, c.user), c.result);
        EXPECT_EQ(dialog.log, c.log);
    }
}

TEST_F(DialogTest, TemplateControlsAreBuiltAndMembersBound) {
    TestDialog dialog;
    for (const char* run : {"first DoModal", "second DoModal of the same object"}) {
        SCOPED_TRACE(run);
        Run(dialog, [](TestDialog& d) {
            EXPECT_EQ(TextOf(d), "Test dialog");
            EXPECT_TRUE(d.IsWindowVisible());
            EXPECT_EQ(d.GetDlgItem(11), &d.m_edit) << "the member is the permanent object";
            std::vector<int> ids;
            for (CWnd* w = d.GetWindow(GW_CHILD); w; w = w->GetWindow(GW_HWNDNEXT)) ids.push_back(w->GetDlgCtrlID());
            EXPECT_EQ(ids, (std::vector<int>{10, 11, 20, 21, 22, 23, 30, IDOK, IDCANCEL})) << "template order kept";
            EXPECT_EQ(d.m_list.GetCount(), 3) << "a fresh window has no items";
            EXPECT_EQ(d.m_radioA.GetStyle() & (WS_GROUP | BS_TYPEMASK), WS_GROUP | BS_AUTORADIOBUTTON);
            auto* label = dynamic_cast<CStatic*>(d.GetDlgItem(30));
            ASSERT_NE(label, nullptr) << "an unbound control still has its class";
            RECT r{};
            label->GetWindowRect(&r);
            EXPECT_EQ(TextOf(*label), "File");
            EXPECT_TRUE(r.left == 5 && r.top == 55 && r.right == 155 && r.bottom == 75);
            d.EndDialog(IDOK);
        });
        EXPECT_EQ(dialog.GetDlgItem(30), nullptr) << "the template's windows go with the dialog";
        EXPECT_FALSE(dialog.IsWindowVisible());
    }
}

}  // namespace
