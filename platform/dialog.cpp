// Message maps, data exchange and modal dialogs of the window model, and who
// plays the user: a scripted one or a window back end.
#include <mapwright/afxwin.h>

#include <dlfcn.h>

#include <atomic>
#include <cstring>
#include <mutex>
#include <string>

#include <mapwright/resources.h>

#include "resource_chain.h"

namespace {

struct DialogUser {
    MW_DIALOG_USER user = nullptr;
    void* context = nullptr;
};

std::mutex g_userLock;
DialogUser g_user;
std::atomic<const MwWindowBackEnd*> g_backEnd{nullptr};

DialogUser CurrentUser() {
    std::lock_guard<std::mutex> guard(g_userLock);
    return g_user;
}

// The window back end when none is set yet: the Qt one, loaded once from
// the directory of this library (where it is built and installed); loading
// it registers it. Null when it cannot be loaded.
const MwWindowBackEnd* BackEndOnDemand() {
    static std::once_flag once;
    std::call_once(once, [] {
        if (g_backEnd.load()) return;
        Dl_info self{};
        if (!dladdr(reinterpret_cast<void*>(&MwSetWindowBackEnd), &self) || !self.dli_fname) return;
        const std::string path = self.dli_fname;
        const size_t slash = path.rfind('/');
        const std::string dir = slash == std::string::npos ? "." : path.substr(0, slash);
        // Never unloaded: its windows and its registration live as long as the process.
        dlopen((dir + "/" MW_QT_BACKEND).c_str(), RTLD_NOW | RTLD_LOCAL);
    });
    return g_backEnd.load();
}

bool SameClass(const char* a, const char* b) {
    for (;; ++a, ++b) {
        const char x = (*a >= 'A' && *a <= 'Z') ? static_cast<char>(*a - 'A' + 'a') : *a;
        const char y = (*b >= 'A' && *b <= 'Z') ? static_cast<char>(*b - 'A' + 'a') : *b;
        if (x != y) return false;
        if (!x) return true;
    }
}

// The model class of a template control's window class; a class the model
// does not know gets a plain window that still has its id, text and style.
std::unique_ptr<CWnd> MakeControl(const char* className) {
    const char* name = className ? className : "";
    if (SameClass(name, "Button")) return std::make_unique<CButton>();
    if (SameClass(name, "Edit")) return std::make_unique<CEdit>();
    if (SameClass(name, "Static")) return std::make_unique<CStatic>();
    if (SameClass(name, "ComboBox")) return std::make_unique<CComboBox>();
    return std::make_unique<CWnd>();
}

RECT RectOf(short x, short y, short cx, short cy) { return RECT{x, y, x + cx, y + cy}; }

}  // namespace

// CCmdTarget

CCmdTarget::CCmdTarget() = default;

CCmdTarget::~CCmdTarget() = default;

const AFX_MSGMAP* CCmdTarget::GetThisMessageMap() {
    static const AFX_MSGMAP_ENTRY entries[] = {{0, 0, 0, 0, AfxSig_end, nullptr}};
    static const AFX_MSGMAP map = {nullptr, &entries[0]};
    return &map;
}

const AFX_MSGMAP* CCmdTarget::GetMessageMap() const { return GetThisMessageMap(); }

const AFX_MSGMAP_ENTRY* CCmdTarget::FindMessageEntry(const AFX_MSGMAP* map, UINT message, UINT code, UINT id) {
    for (; map; map = map->pfnGetBaseMap ? map->pfnGetBaseMap() : nullptr)
        for (const AFX_MSGMAP_ENTRY* e = map->lpEntries; e && e->nSig != AfxSig_end; ++e)
            if (e->nMessage == message && e->nCode == code && id >= e->nID && id <= e->nLastID) return e;
    return nullptr;
}

BOOL CCmdTarget::OnCmdMsg(UINT id, int code, void*, void*) {
    const AFX_MSGMAP_ENTRY* entry =
        FindMessageEntry(GetMessageMap(), WM_COMMAND, static_cast<UINT>(code) & 0xFFFFu, id & 0xFFFFu);
    if (!entry || entry->nSig != AfxSigCmd_v) return FALSE;
    (this->*entry->pfn)();
    return TRUE;
}

BEGIN_MESSAGE_MAP(CWnd, CCmdTarget)
END_MESSAGE_MAP()

// CDataExchange

CDataExchange::CDataExchange(CWnd* dlgWnd, BOOL saveAndValidate)
    : m_bSaveAndValidate(saveAndValidate), m_pDlgWnd(dlgWnd), m_bFailed(FALSE) {}

void DDX_Control(CDataExchange* pDX, int id, CWnd& control) {
    if (!pDX) return;
    if (!control.SubclassDlgItem(static_cast<UINT>(id), pDX->m_pDlgWnd)) pDX->m_bFailed = TRUE;
}

// CDialog

BEGIN_MESSAGE_MAP(CDialog, CWnd)
    ON_COMMAND(IDOK, &CDialog::OnOK)
    ON_COMMAND(IDCANCEL, &CDialog::OnCancel)
END_MESSAGE_MAP()

CDialog::CDialog(UINT templateId, CWnd* parent)
    : m_nIDTemplate(templateId), m_pParentWnd(parent), m_pTemplate(nullptr), m_nModalResult(-1), m_bRunning(false),
      m_bEnded(false) {
    // A dialog is shown by DoModal, not before.
    ShowWindow(SW_HIDE);
}

CDialog::~CDialog() = default;

void CDialog::BuildFromTemplate(const MwDialogTemplate& t) {
    // The dialog is a top-level window: its owner is not its parent.
    Create("#32770", t.caption, t.style & ~WS_VISIBLE, RectOf(t.x, t.y, t.cx, t.cy), nullptr, 0);
    for (size_t i = 0; i < t.controlCount; ++i) {
        const MwDialogControl& c = t.controls[i];
        CWnd* control = AddOwnedChild(MakeControl(c.className));
        control->Create(c.className, c.text, c.style, RectOf(c.x, c.y, c.cx, c.cy), this, static_cast<UINT>(c.id));
    }
}

INT_PTR CDialog::DoModal() {
    if (m_bRunning) return -1;
    const MwDialogTemplate* dialogTemplate = mw::FindDialogInResourceChain(m_nIDTemplate);
    if (!dialogTemplate) return -1;
    const DialogUser user = CurrentUser();
    const MwWindowBackEnd* backEnd = user.user ? nullptr : g_backEnd.load();
    if (!user.user && !backEnd) backEnd = BackEndOnDemand();
    // Nobody to show the dialog to: it cannot be created, and nothing of it
    // runs (OnInitDialog may change the caller's data).
    if (!user.user && !(backEnd && backEnd->canShow && backEnd->runModal && backEnd->canShow(backEnd->context)))
        return -1;

    m_pTemplate = dialogTemplate;
    BuildFromTemplate(*dialogTemplate);
    m_nModalResult = -1;
    m_bEnded = false;
    m_bRunning = true;
    OnInitDialog();
    if (!m_bEnded) {
        ShowWindow(SW_SHOW);
        if (user.user) user.user(*this, user.context);
        else backEnd->runModal(*this, backEnd->context);
    }
    const INT_PTR result = m_bEnded ? m_nModalResult : -1;
    m_bRunning = false;
    ShowWindow(SW_HIDE);
    DestroyChildren();
    m_pTemplate = nullptr;
    return result;
}

void CDialog::EndDialog(int result) {
    m_nModalResult = result;
    m_bEnded = true;
    ShowWindow(SW_HIDE);
}

BOOL CDialog::OnInitDialog() {
    // A failed binding leaves that member unbound; the dialog still runs, as
    // MFC's only warns here.
    UpdateData(FALSE);
    return TRUE;
}

void CDialog::OnOK() {
    if (!UpdateData(TRUE)) return;
    EndDialog(IDOK);
}

void CDialog::OnCancel() { EndDialog(IDCANCEL); }

LRESULT CDialog::DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_CLOSE) {
        CWnd* cancel = GetDlgItem(IDCANCEL);
        SendMessage(WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED),
                    reinterpret_cast<LPARAM>(cancel ? cancel->GetSafeHwnd() : nullptr));
        return 0;
    }
    return CWnd::DefWindowProc(message, wParam, lParam);
}

// Who plays the user

void MwSetDialogUser(MW_DIALOG_USER user, void* context) {
    std::lock_guard<std::mutex> guard(g_userLock);
    g_user = DialogUser{user, user ? context : nullptr};
}

void MwSetWindowBackEnd(const MwWindowBackEnd* backEnd) { g_backEnd.store(backEnd); }

BOOL MwChooseFile(HWND owner, BOOL open, LPCSTR filter, LPCSTR defaultExt, LPCSTR initialDir, CString& path) {
    const MwWindowBackEnd* backEnd = g_backEnd.load();
    if (!backEnd || !backEnd->chooseFile) return FALSE;
    return backEnd->chooseFile(owner, open, filter, defaultExt, initialDir, path, backEnd->context);
}
