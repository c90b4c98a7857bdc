// Modal dialogs played by a scripted user.
#include <gtest/gtest.h>
#include <mapwright/afxext.h>
#include <mapwright/afxwin.h>
#include <mapwright/resources.h>

#include <functional>

extern const MwModuleResources MwResources_DialogTest;

namespace {

using Log = std::vector<std::string>;

std::string TextOf(const CWnd& window) {
    CString text;
    return window.GetWindowText(text), text.GetString();
}

// Template 100 of dialog_test.rc, logging its handlers.
class TestDialog : public CDialog {
public:
    explicit TestDialog(UINT id = 100, int endInInit = 0) : CDialog(id), m_endInInit(endInInit) {}
    BOOL OnInitDialog() override {
        CDialog::OnInitDialog();
        for (const char* item : {"one", "two", "three"}) m_list.AddString(item);
        log.push_back("init");
        if (m_endInInit) EndDialog(m_endInInit);
        return TRUE;
    }
    Log log;
    int m_endInInit;
    CButton m_radioA;
    CComboBox m_list;
    CEdit m_edit;

protected:
    void DoDataExchange(CDataExchange* pDX) override {
        CDialog::DoDataExchange(pDX);
        DDX_Control(pDX, 10, m_list);
        DDX_Control(pDX, 11, m_edit);
        DDX_Control(pDX, 20, m_radioA);
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

using D = TestDialog&;
using User = std::function<void(D)>;

class DialogTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        static AFX_EXTENSION_MODULE extension{};
        ASSERT_TRUE(AfxInitExtensionModule(extension, MwRegisterModule(&MwResources_DialogTest)));
        new CDynLinkLibrary(extension);  // the chain owns it
    }
    void TearDown() override { MwSetDialogUser(nullptr, nullptr); }
    INT_PTR Run(TestDialog& dialog, User user) {
        m_user = std::move(user);
        MW_DIALOG_USER play = [](CDialog& d, void* u) { (*static_cast<User*>(u))(dynamic_cast<D>(d)); };
        MwSetDialogUser(m_user ? play : nullptr, &m_user);
        return dialog.DoModal();
    }
    static void Click(D d, int id) { EXPECT_TRUE(dynamic_cast<CButton&>(*d.GetDlgItem(id)).Click()); }
    User m_user;
};

TEST_F(DialogTest, UserActionsNotifyInWindowsOrder) {
    const struct { std::function<BOOL(D)> act; BOOL accepted; Log log; } cases[] = {
        {[](D d) { return d.m_list.Pick(1); }, TRUE, {"init", "drop", "list two", "list two"}},  // SELCHANGE, CLOSEUP
        {[](D d) { return d.m_list.OpenAndClose(); }, TRUE, {"init", "drop", "list "}},
        {[](D d) { return d.m_list.Pick(3); }, FALSE, {"init", "drop", "list "}},  // not in the list: it only closes
        {[](D d) { d.m_edit.SetWindowText("xy"), d.log.clear(); return d.m_edit.TypeText("ab"); }, TRUE,
         {"edit ", "edit a", "edit ab"}},
        {[](D d) { return d.m_radioA.Click(); }, TRUE, {"init", "A 1"}},  // checked before BN_CLICKED
        {[](D d) { d.EnableWindow(FALSE); return d.m_list.Pick(0); }, FALSE, {"init"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        TestDialog dialog;
        BOOL accepted = -1;
        Run(dialog, [&](D d) { accepted = c.act(d), d.EndDialog(IDCANCEL); });
        EXPECT_EQ(c.accepted, accepted);
        EXPECT_EQ(c.log, dialog.log);
    }
}

TEST_F(DialogTest, DoModalReturnsWhatEndedTheDialog) {
    const User ok = [](D d) { Click(d, IDOK); }, user = [](D d) { d.log.push_back("user"); };
    const struct { UINT id; int endInInit; User user; INT_PTR result; Log log; } cases[] = {
        {100, 0, ok, IDOK, {"init"}},
        {100, 0, [](D d) { Click(d, IDCANCEL); }, IDCANCEL, {"init"}},
        {100, 0, [](D d) { d.EndDialog(42), d.log.push_back(d.m_radioA.Click() || d.m_list.Pick(0) ? "acted" : "-"); },
         42, {"init", "-"}},  // later actions are refused
        {100, 0, [](D) {}, -1, {"init"}},  // the user leaves it open
        {100, 5, user, 5, {"init"}},  // ended in OnInitDialog: never shown
        {101, 0, user, -1, {}},  // a template no module has
        {100, 0, nullptr, -1, {}},  // no scripted user, no back end
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        TestDialog dialog(c.id, c.endInInit);
        EXPECT_EQ(c.result, Run(dialog, c.user));
        EXPECT_EQ(c.log, dialog.log);
    }
}

TEST_F(DialogTest, TemplateControlsBuiltMembersBoundRadioGroups) {
    TestDialog dialog;
    for (int run = 0; run < 2; ++run) {  // a second DoModal builds them afresh
        Run(dialog, [](D d) {
            EXPECT_TRUE(TextOf(d) == "Test dialog" && d.IsWindowVisible());
            EXPECT_EQ(d.GetDlgItem(11), &d.m_edit) << "the member is the permanent object";
            EXPECT_EQ(d.m_list.GetCount(), 3);  // fresh windows
            EXPECT_EQ(d.m_radioA.GetStyle() & (WS_GROUP | BS_TYPEMASK), WS_GROUP | BS_AUTORADIOBUTTON);
            EXPECT_TRUE(dynamic_cast<CStatic*>(d.GetDlgItem(30))) << "unbound, still of its class";
            // Auto radio buttons uncheck only their group: 20 and 22 start one each.
            for (auto click : {std::pair<int, std::string>{20, "1000"}, {21, "0100"}, {22, "0110"}, {23, "0101"}, {23, "0101"}, {20, "1001"}}) {
                Click(d, click.first);
                std::string checks;
                for (int id = 20; id <= 23; ++id) checks += std::to_string(d.IsDlgButtonChecked(id));
                EXPECT_EQ(click.second, checks) << click.first;
            }
            d.EndDialog(IDOK);
        });
        EXPECT_TRUE(!dialog.GetDlgItem(30) && !dialog.IsWindowVisible());  // the windows go with the dialog
    }
}

}  // namespace
