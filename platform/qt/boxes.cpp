// The boxes a dialog raises: message boxes as QMessageBoxes owned by the
// dialog window, and the file dialog of a file control's browse button.
#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>

#include "window.h"

namespace mwqt {
namespace {

QWidget* OwnerOf(HWND owner) {
    if (DialogWindow* window = DialogWindow::Showing(owner)) return window;
    return QApplication::activeWindow();
}

// "Geoid (*.grd)|*.grd|All|*.*||" -> "Geoid (*.grd) (*.grd);;All (*.*)":
// Qt reads the patterns from the last parentheses.
QString NameFilters(const QString& windowsFilter) {
    const QStringList parts = windowsFilter.split(u'|');
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2)
        if (!parts[i].isEmpty()) filters << parts[i] + QStringLiteral(" (") + QString(parts[i + 1]).replace(u';', u' ') + u')';
    return filters.join(QStringLiteral(";;"));
}

}  // namespace

int ShowMessageBox(HWND owner, LPCSTR text, LPCSTR caption, UINT type) {
    // A handler may have changed the dialog before it raised the box: show that behind it.
    DialogWindow* window = DialogWindow::Showing(owner);
    if (window) window->Refresh();
    QMessageBox::StandardButtons buttons = QMessageBox::Ok;
    if ((type & 0xFu) == MB_OKCANCEL) buttons = QMessageBox::Ok | QMessageBox::Cancel;
    if ((type & 0xFu) == MB_YESNO) buttons = QMessageBox::Yes | QMessageBox::No;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    switch (type & 0xF0u) {
    case MB_ICONERROR: icon = QMessageBox::Critical; break;
    case MB_ICONWARNING: icon = QMessageBox::Warning; break;
    case MB_ICONINFORMATION: icon = QMessageBox::Information; break;
    default: break;
    }
    QMessageBox box(icon, FromAnsi(caption), FromAnsi(text), buttons, OwnerOf(owner));
    box.exec();
    // As in Windows, the owner is active again once its box has gone.
    if (window) window->activateWindow();
    switch (box.standardButton(box.clickedButton())) {
    case QMessageBox::Cancel: return IDCANCEL;
    case QMessageBox::Yes: return IDYES;
    case QMessageBox::No: return IDNO;
    default: return IDOK;
    }
}

BOOL ChooseFile(HWND owner, BOOL open, LPCSTR filter, LPCSTR defaultExt, LPCSTR initialDir, CString& path, void*) {
    QFileDialog dialog(OwnerOf(owner));
    dialog.setAcceptMode(open ? QFileDialog::AcceptOpen : QFileDialog::AcceptSave);
    dialog.setFileMode(open ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    if (const QString filters = NameFilters(FromAnsi(filter)); !filters.isEmpty()) dialog.setNameFilter(filters);
    dialog.setDefaultSuffix(FromAnsi(defaultExt));
    if (initialDir && *initialDir) dialog.setDirectory(FromAnsi(initialDir));
    if (!path.IsEmpty()) dialog.selectFile(FromAnsi(path));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return FALSE;
    path = ToAnsi(dialog.selectedFiles().first()).c_str();
    return TRUE;
}

}  // namespace mwqt
