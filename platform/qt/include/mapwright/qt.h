// Real windows for the dialogs of the window model: the Qt 6 Widgets back
// end (libmapwright-qt.so). A host needs none of this to show the dialogs:
// DoModal loads the back end on demand when no scripted user is set. A Qt
// host includes this header and links Mapwright::qt to give its own window
// as the dialogs' owner; tests and the screenshot tool use the shown hook.
#ifndef MAPWRIGHT_QT_H
#define MAPWRIGHT_QT_H

#include <mapwright/afxwin.h>

class QWidget;

// Called inside the modal loop once a dialog window is shown and laid out,
// with the dialog's top-level widget and its model. Whatever the hook does
// (QTest events, grabbing a picture, closing the window) goes through the
// widgets as a user's actions would. Null removes it. Process-wide.
typedef void (*MwQtShownHook)(QWidget* window, CDialog& dialog, void* context);

// C linkage, so that a host which lets DoModal load the back end can find
// these with dlsym.
extern "C" {
// Registers the back end with the window model (MwSetWindowBackEnd). Loading
// the library does it; calling it again is harmless.
MW_API void MwQtInstall(void);

MW_API void MwQtSetShownHook(MwQtShownHook hook, void* context);

// The widget that shows `control` (a control, or the dialog itself) on
// screen; null when no live dialog window shows it.
MW_API QWidget* MwQtWidgetOf(const CWnd* control);
}

// A model window standing for a Qt host's own widget: pass it as the
// `parent` of ModalPrChooseDlg / ModalPrAndGeoidDlg (or any CDialog) and the
// dialog window is owned by `owner`'s window, centred on it and modal to it.
// The wrapper does not own `owner`; it must outlive the dialogs opened on it.
class MW_API CQtParentWnd : public CWnd {
public:
    explicit CQtParentWnd(QWidget* owner);
    ~CQtParentWnd() override;
    QWidget* Widget() const { return m_owner; }

private:
    QWidget* m_owner;
};

#endif
