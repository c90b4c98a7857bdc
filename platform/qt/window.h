// Internal to the Qt back end: the window that shows one modal dialog of the
// window model, and the pieces the back end's files share.
#ifndef MAPWRIGHT_QT_WINDOW_H
#define MAPWRIGHT_QT_WINDOW_H

#include <QDialog>
#include <QFont>
#include <QRect>
#include <QString>

#include <functional>
#include <string>
#include <vector>

#include <mapwright/afxwin.h>
#include <mapwright/resources.h>

namespace mwqt {

// Text edge (text.cpp): the model's Windows-1251 to the widgets' UTF-16 and back.
QString FromAnsi(const char* text);
QString FromAnsi(const CString& text);
std::string ToAnsi(const QString& text);
// A control's text as a label shows it: "&&" is "&", a lone "&" (the mnemonic mark) goes.
QString WithoutMnemonic(const QString& text);

// Dialog units to pixels (render.cpp). Windows maps each edge on its own:
// x = dlu * baseX / 4, y = dlu * baseY / 8, rounded half away from zero.
struct BaseUnits {
    int x = 0;
    int y = 0;
};
QFont DialogFont(const MwDialogTemplate* dialogTemplate);
BaseUnits BaseUnitsOf(const QFont& font);
QRect ToPixels(const RECT& dlu, BaseUnits units);

// The display (display.cpp): the platform plugin that can be started now,
// empty when none can. Decided before any QApplication exists, because Qt
// ends the process when its plugin cannot connect.
std::string UsablePlatform();

class DialogWindow;

// One model window and the widget that shows it.
struct Control {
    CWnd* model;
    QWidget* widget;
    CWnd* label;  // the static that names it, or null
};

class DialogWindow : public QDialog {
public:
    DialogWindow(CDialog& dialog, QWidget* owner);
    ~DialogWindow() override;

    CDialog& Model() const { return m_dialog; }
    // Runs one user action on the model, then shows the model's new state,
    // and closes the window when the action ended the dialog.
    void Deliver(const std::function<void()>& action);
    // Every widget from the model (mirror.cpp).
    void Refresh();
    // Closes the window when the model ended by some other way.
    void CloseIfEnded();

    QWidget* WidgetOf(HWND model) const;
    // The live window that shows `model` (the dialog or one of its
    // windows), or null.
    static DialogWindow* Showing(HWND model);

protected:
    // Escape: the dialog manager sends IDCANCEL. The close box: WM_CLOSE.
    void reject() override;
    void closeEvent(QCloseEvent* event) override;

private:
    friend void Render(DialogWindow& window);
    CDialog& m_dialog;
    BaseUnits m_units;
    std::vector<Control> m_controls;  // template (tab) order, children after their parent
};

// Builds the widgets of every model window of the dialog (render.cpp).
void Render(DialogWindow& window);
// The widget for one model control, wired to deliver the user's actions
// (mirror.cpp); null for a class the back end does not show.
QWidget* MakeWidget(DialogWindow& window, CWnd& model, QWidget* parent);
void RefreshWidget(const Control& control);

// The message box hook that shows QMessageBoxes (boxes.cpp) and the file
// dialog of a file control's browse button.
int ShowMessageBox(HWND owner, LPCSTR text, LPCSTR caption, UINT type);
BOOL ChooseFile(HWND owner, BOOL open, LPCSTR filter, LPCSTR defaultExt, LPCSTR initialDir, CString& path,
                void* context);

}  // namespace mwqt

#endif
