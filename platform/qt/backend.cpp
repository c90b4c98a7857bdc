// The back end itself: registration with the window model, the modal loop
// (in the host's QApplication or one made for it), and the dialog window.
#include <mapwright/qt.h>

#include <QApplication>
#include <QCloseEvent>
#include <QTimer>

#include <memory>
#include <mutex>

#include "window.h"

namespace mwqt {
namespace {

// Window styles the window model does not name.
constexpr DWORD kCaption = 0x00C00000u, kSysMenu = 0x00080000u;

std::mutex g_hookLock;
MwQtShownHook g_shownHook = nullptr;
void* g_shownContext = nullptr;

// The dialog windows alive now, the newest last (UI thread only).
std::vector<DialogWindow*>& LiveWindows() {
    static std::vector<DialogWindow*> windows;
    return windows;
}

QApplication* HostApplication() { return qobject_cast<QApplication*>(QCoreApplication::instance()); }

BOOL CanShow(void*) {
    // A host that runs Qt already decides its display; one without widgets cannot show ours.
    if (QCoreApplication::instance()) return HostApplication() ? TRUE : FALSE;
    return UsablePlatform().empty() ? FALSE : TRUE;
}

// An application for one modal run (the host has none), on the plugin found usable.
std::unique_ptr<QApplication> MakeApplication() {
    const std::string platform = UsablePlatform();
    if (platform.empty()) return nullptr;
    // QApplication keeps argc and argv for its lifetime.
    static std::string name = "mapwright", option = "-platform", plugin;
    static char* argv[4];
    static int argc;
    plugin = platform;
    argv[0] = name.data(), argv[1] = option.data(), argv[2] = plugin.data(), argv[3] = nullptr;
    argc = 3;
    return std::make_unique<QApplication>(argc, argv);
}

QWidget* OwnerWidget(CWnd* owner) {
    if (auto* host = dynamic_cast<CQtParentWnd*>(owner); host && host->Widget()) return host->Widget()->window();
    if (owner)
        if (DialogWindow* window = DialogWindow::Showing(owner->GetSafeHwnd())) return window;
    // A Qt host that gave no wrapper still owns the dialog through its active window.
    return QApplication::activeWindow();
}

void RunModal(CDialog& dialog, void*) {
    std::unique_ptr<QApplication> ownApplication;
    if (!HostApplication() && !(ownApplication = MakeApplication())) return;
    const MessageBoxHook previousBoxes = SetMessageBoxHook(&ShowMessageBox);
    {
        DialogWindow window(dialog, OwnerWidget(dialog.GetOwner()));
        MwQtShownHook hook;
        void* context;
        {
            std::lock_guard<std::mutex> guard(g_hookLock);
            hook = g_shownHook, context = g_shownContext;
        }
        // Runs once exec has shown the window.
        if (hook)
            QTimer::singleShot(0, &window, [&window, &dialog, hook, context] {
                hook(&window, dialog, context);
                window.CloseIfEnded();
            });
        if (dialog.IsRunning()) window.exec();
    }
    SetMessageBoxHook(previousBoxes);
}

const MwWindowBackEnd kBackEnd = {&CanShow, &RunModal, &ChooseFile, nullptr};

__attribute__((constructor)) void InstallOnLoad() { MwQtInstall(); }

}  // namespace

DialogWindow::DialogWindow(CDialog& dialog, QWidget* owner) : QDialog(owner), m_dialog(dialog) {
    const MwDialogTemplate* dialogTemplate = dialog.GetTemplate();
    const DWORD style = dialogTemplate ? dialogTemplate->style : kCaption | kSysMenu;
    Qt::WindowFlags flags = Qt::Dialog | Qt::CustomizeWindowHint;
    flags |= (style & kCaption) == kCaption ? Qt::WindowTitleHint : Qt::FramelessWindowHint;
    if (style & kSysMenu) flags |= Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;
    setWindowFlags(flags);
    setModal(true);
    CString caption;
    dialog.GetWindowText(caption);
    setWindowTitle(FromAnsi(caption));
    setAccessibleName(windowTitle());
    setFont(DialogFont(dialogTemplate));
    m_units = BaseUnitsOf(font());
    RECT client{};
    dialog.GetWindowRect(&client);
    // A dialog frame is not resizable: the controls have fixed places.
    setFixedSize(ToPixels(RECT{0, 0, client.right - client.left, client.bottom - client.top}, m_units).size());
    Render(*this);
    Refresh();
    LiveWindows().push_back(this);
}

DialogWindow::~DialogWindow() {
    auto& windows = LiveWindows();
    windows.erase(std::remove(windows.begin(), windows.end(), this), windows.end());
}

void DialogWindow::Deliver(const std::function<void()>& action) {
    if (!m_dialog.IsRunning()) return;
    action();
    Refresh();
    CloseIfEnded();
}

void DialogWindow::Refresh() {
    for (const Control& control : m_controls) RefreshWidget(control);
}

void DialogWindow::CloseIfEnded() {
    if (!m_dialog.IsRunning() && isVisible()) done(QDialog::Accepted);  // DoModal reads the model's result
}

QWidget* DialogWindow::WidgetOf(HWND model) const {
    if (model == m_dialog.GetSafeHwnd()) return const_cast<DialogWindow*>(this);
    for (const Control& control : m_controls)
        if (control.model->GetSafeHwnd() == model) return control.widget;
    return nullptr;
}

DialogWindow* DialogWindow::Showing(HWND model) {
    for (CWnd* window = CWnd::FromHandle(model); window; window = window->GetParent())
        for (DialogWindow* shown : LiveWindows())
            if (shown->WidgetOf(window->GetSafeHwnd())) return shown;
    return nullptr;
}

void DialogWindow::reject() {
    if (!m_dialog.IsRunning()) return QDialog::reject();
    Deliver([this] {
        const CWnd* cancel = m_dialog.GetDlgItem(IDCANCEL);
        m_dialog.SendMessage(WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED),
                             reinterpret_cast<LPARAM>(cancel ? cancel->GetSafeHwnd() : nullptr));
    });
}

void DialogWindow::closeEvent(QCloseEvent* event) {
    Deliver([this] { m_dialog.SendMessage(WM_CLOSE); });
    // A dialog that does not end on WM_CLOSE stays open.
    if (m_dialog.IsRunning()) event->ignore();
    else event->accept();
}

}  // namespace mwqt

extern "C" {

void MwQtInstall(void) { MwSetWindowBackEnd(&mwqt::kBackEnd); }

void MwQtSetShownHook(MwQtShownHook hook, void* context) {
    std::lock_guard<std::mutex> guard(mwqt::g_hookLock);
    mwqt::g_shownHook = hook;
    mwqt::g_shownContext = hook ? context : nullptr;
}

QWidget* MwQtWidgetOf(const CWnd* control) {
    if (!control) return nullptr;
    const mwqt::DialogWindow* window = mwqt::DialogWindow::Showing(control->GetSafeHwnd());
    return window ? window->WidgetOf(control->GetSafeHwnd()) : nullptr;
}
}

CQtParentWnd::CQtParentWnd(QWidget* owner) : m_owner(owner) {}

CQtParentWnd::~CQtParentWnd() = default;
