// The mirror: widgets that show the model's state, and that hand every user
// action to the model as the scripted user's actions (CButton::Click,
// CComboBox::Pick and OpenAndClose, CEdit::TypeChar and EraseChar), so the
// dialog's handlers see the same notifications in the same order on screen
// as headless. The widgets never change what they show on their own: after
// each action they show the model again.
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

#include "window.h"

namespace mwqt {
namespace {

// Static styles the window model does not name.
constexpr DWORD kStaticTypeMask = 0x1Fu, kStaticCenter = 0x1u, kStaticRight = 0x2u, kStaticNoPrefix = 0x80u;

// An edit whose typing goes through the model's rules (a masked edit's
// mask); the widget only moves the caret and selects.
class ModelEdit : public QLineEdit {
public:
    ModelEdit(DialogWindow& window, CEdit& model, QWidget* parent) : QLineEdit(parent), m_window(window), m_model(model) {
        setContextMenuPolicy(Qt::NoContextMenu);  // its cut, paste and undo would bypass the model
        setDragEnabled(false);
        setAcceptDrops(false);
        setAttribute(Qt::WA_InputMethodEnabled, false);
        setFrame(model.GetStyle() & WS_BORDER);
    }

protected:
    void keyPressEvent(QKeyEvent* event) override {
        const auto modifiers = event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
        if (event->matches(QKeySequence::Paste)) return Type(QApplication::clipboard()->text());
        if (!modifiers && event->key() == Qt::Key_Backspace) return Erase(true);
        if (!modifiers && event->key() == Qt::Key_Delete) return Erase(false);
        if (!modifiers && !event->text().isEmpty() && event->text().at(0).isPrint()) return Type(event->text());
        if (Moves(event)) return QLineEdit::keyPressEvent(event);
        event->ignore();  // any other editing key: the edit does not take it, the dialog may
    }
    // X11's middle-button paste.
    void mouseReleaseEvent(QMouseEvent* event) override {
        if (event->button() == Qt::MiddleButton) return Type(QApplication::clipboard()->text(QClipboard::Selection));
        QLineEdit::mouseReleaseEvent(event);
    }

private:
    static bool Moves(QKeyEvent* event) {
        using K = QKeySequence;
        for (K::StandardKey key : {K::MoveToNextChar, K::MoveToPreviousChar, K::MoveToNextWord, K::MoveToPreviousWord,
                                   K::MoveToStartOfLine, K::MoveToEndOfLine, K::MoveToStartOfBlock, K::MoveToEndOfBlock,
                                   K::MoveToStartOfDocument, K::MoveToEndOfDocument, K::SelectNextChar,
                                   K::SelectPreviousChar, K::SelectNextWord, K::SelectPreviousWord, K::SelectStartOfLine,
                                   K::SelectEndOfLine, K::SelectStartOfBlock, K::SelectEndOfBlock,
                                   K::SelectStartOfDocument, K::SelectEndOfDocument, K::SelectAll, K::Copy})
            if (event->matches(key)) return true;
        switch (event->key()) {
        case Qt::Key_Return: case Qt::Key_Enter: case Qt::Key_Escape: case Qt::Key_Tab: case Qt::Key_Backtab:
        case Qt::Key_Up: case Qt::Key_Down:
            return true;  // the edit passes them to the dialog
        default:
            return false;
        }
    }

    // The selection, or the caret as an empty one.
    void Selection(int& start, int& end) const {
        start = hasSelectedText() ? selectionStart() : cursorPosition();
        end = hasSelectedText() ? selectionEnd() : start;
    }
    // Deleting a selection erases its places from the last one back, so a
    // plain edit loses the characters and a masked one shows its template.
    int EraseRange(int start, int end) {
        for (int place = end - 1; place >= start; --place) m_model.EraseChar(place);
        return start;
    }

    void Type(const QString& text) {
        int start = 0, end = 0, caret = 0;
        Selection(start, end);
        m_window.Deliver([&] {
            caret = EraseRange(start, end);
            for (const QChar ch : text) {
                const std::string ansi = ToAnsi(QString(ch));
                // A character outside the code page is a key the edit does not take.
                if (ansi.size() != 1 || (ansi[0] == '?' && ch != u'?')) continue;
                int selStart = 0;
                if (m_model.TypeChar(caret, ansi[0])) m_model.GetSel(selStart, caret);
            }
        });
        setCursorPosition(caret);
    }

    void Erase(bool backwards) {
        int start = 0, end = 0, caret = 0;
        Selection(start, end);
        m_window.Deliver([&] {
            if (start != end) caret = EraseRange(start, end);
            else if (!backwards) m_model.EraseChar(caret = start);
            // A masked edit refuses to erase a fixed place; the caret still steps back over it.
            else if (start > 0) m_model.EraseChar(caret = start - 1);
        });
        setCursorPosition(caret);
    }

    DialogWindow& m_window;
    CEdit& m_model;
};

// A drop-down list. Qt hides the list before it reports the pick, so a
// list that closed is told to the model only once no pick followed.
class ModelCombo : public QComboBox {
public:
    ModelCombo(DialogWindow& window, CComboBox& model, QWidget* parent)
        : QComboBox(parent), m_window(window), m_model(model) {
        connect(this, &QComboBox::activated, this, [this](int index) {
            m_picked = true;
            m_window.Deliver([this, index] { m_model.Pick(index); });
        });
    }

    void showPopup() override {
        m_open = true;
        m_picked = false;
        QComboBox::showPopup();
    }
    void hidePopup() override {
        QComboBox::hidePopup();
        if (!m_open) return;
        m_open = false;
        QTimer::singleShot(0, this, [this] {
            if (!m_picked) m_window.Deliver([this] { m_model.OpenAndClose(); });
        });
    }

private:
    DialogWindow& m_window;
    CComboBox& m_model;
    bool m_open = false;
    bool m_picked = false;
};

// A radio button. The arrow keys go round its WS_GROUP group as the dialog
// manager does: the focus moves to the next shown, enabled control of the
// group, and an auto radio button that gets it is clicked.
class ModelRadio : public QRadioButton {
public:
    ModelRadio(DialogWindow& window, CButton& model, QWidget* parent)
        : QRadioButton(parent), m_window(window), m_model(model) {
        setAutoExclusive(false);  // the model unchecks the group, as the button procedure does
    }

protected:
    void keyPressEvent(QKeyEvent* event) override {
        const int key = event->key();
        if (key != Qt::Key_Up && key != Qt::Key_Down && key != Qt::Key_Left && key != Qt::Key_Right)
            return QRadioButton::keyPressEvent(event);
        CWnd* parent = m_model.GetParent();
        const BOOL back = key == Qt::Key_Up || key == Qt::Key_Left;
        CWnd* next = parent ? parent->GetNextDlgGroupItem(&m_model, back) : nullptr;
        while (next && next != &m_model && !(next->IsWindowVisible() && next->IsWindowEnabled()))
            next = parent->GetNextDlgGroupItem(next, back);
        QWidget* widget = next && next != &m_model ? m_window.WidgetOf(next->GetSafeHwnd()) : nullptr;
        if (!widget) return;
        widget->setFocus(Qt::TabFocusReason);
        auto* radio = dynamic_cast<CButton*>(next);
        if (radio && (radio->GetStyle() & BS_TYPEMASK) == BS_AUTORADIOBUTTON)
            m_window.Deliver([radio] { radio->Click(); });
    }

private:
    DialogWindow& m_window;
    CButton& m_model;
};

// Sets a static's text, in a smaller font when the dialog font does not fit
// it in the rectangle: the templates were measured against a narrower font
// than the sans-serif fonts of today, and a cut label says nothing.
void SetLabelText(QLabel* label, const QString& text) {
    if (label->text() == text) return;
    label->setText(text);
    QFont font = label->parentWidget()->font();
    const auto fits = [&](const QFont& f) {
        return QFontMetrics(f).boundingRect(label->contentsRect(), int(label->alignment()) | Qt::TextWordWrap, text)
                   .height() <= label->contentsRect().height();
    };
    while (!fits(font) && font.pointSizeF() > 6.0) font.setPointSizeF(font.pointSizeF() - 0.5);
    label->setFont(font);
}

QWidget* MakeButton(DialogWindow& window, CButton& model, QWidget* parent) {
    QAbstractButton* button = nullptr;
    switch (model.GetStyle() & BS_TYPEMASK) {
    case BS_GROUPBOX:
        return new QGroupBox(parent);
    case BS_CHECKBOX: case BS_AUTOCHECKBOX: case BS_3STATE: case BS_AUTO3STATE: {
        auto* box = new QCheckBox(parent);
        const DWORD type = model.GetStyle() & BS_TYPEMASK;
        box->setTristate(type == BS_3STATE || type == BS_AUTO3STATE);
        button = box;
        break;
    }
    case BS_RADIOBUTTON: case BS_AUTORADIOBUTTON:
        button = new ModelRadio(window, model, parent);
        break;
    default: {
        auto* push = new QPushButton(parent);
        push->setDefault((model.GetStyle() & BS_TYPEMASK) == BS_DEFPUSHBUTTON);
        button = push;
        break;
    }
    }
    QObject::connect(button, &QAbstractButton::clicked, button,
                     [&window, &model] { window.Deliver([&model] { model.Click(); }); });
    return button;
}

}  // namespace

QWidget* MakeWidget(DialogWindow& window, CWnd& model, QWidget* parent) {
    if (auto* edit = dynamic_cast<CEdit*>(&model)) return new ModelEdit(window, *edit, parent);
    if (auto* combo = dynamic_cast<CComboBox*>(&model)) return new ModelCombo(window, *combo, parent);
    if (auto* button = dynamic_cast<CButton*>(&model)) return MakeButton(window, *button, parent);
    if (dynamic_cast<CStatic*>(&model)) {
        auto* label = new QLabel(parent);
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);  // a static wraps its text within its rectangle
        const DWORD type = model.GetStyle() & kStaticTypeMask;
        label->setAlignment(Qt::AlignTop | (type == kStaticCenter  ? Qt::AlignHCenter
                                            : type == kStaticRight ? Qt::AlignRight
                                                                   : Qt::AlignLeft));
        return label;
    }
    // Any other window (a compound control such as a file picker) is the
    // frame its own children are shown in.
    return new QWidget(parent);
}

void RefreshWidget(const Control& control) {
    CWnd& model = *control.model;
    QWidget* widget = control.widget;
    const bool shown = model.GetStyle() & WS_VISIBLE;
    if (widget->isHidden() == shown) widget->setVisible(shown);
    widget->setEnabled(model.IsWindowEnabled());
    CString ansi;
    model.GetWindowText(ansi);
    const QString text = FromAnsi(ansi);
    bool isValue = false;  // its text is what the user enters, not its name
    if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
        isValue = true;
        if (edit->text() != text) {
            int start = 0, end = 0;
            static_cast<CEdit&>(model).GetSel(start, end);
            edit->setText(text);
            edit->setCursorPosition(end);
        }
    } else if (auto* combo = qobject_cast<QComboBox*>(widget)) {
        isValue = true;
        auto& list = static_cast<CComboBox&>(model);
        QStringList items;
        for (int i = 0; i < list.GetCount(); ++i) {
            CString item;
            list.GetLBText(i, item);
            items << FromAnsi(item);
        }
        const QSignalBlocker quiet(combo);
        bool same = combo->count() == items.size();
        for (int i = 0; same && i < items.size(); ++i) same = combo->itemText(i) == items[i];
        if (!same) combo->clear(), combo->addItems(items);
        if (combo->currentIndex() != list.GetCurSel()) combo->setCurrentIndex(list.GetCurSel());
    } else if (auto* label = qobject_cast<QLabel*>(widget)) {
        SetLabelText(label, model.GetStyle() & kStaticNoPrefix ? text : WithoutMnemonic(text));
    } else if (auto* group = qobject_cast<QGroupBox*>(widget)) {
        group->setTitle(text);
    } else if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
        button->setText(text);
        const int check = static_cast<CButton&>(model).GetCheck();
        if (auto* box = qobject_cast<QCheckBox*>(widget))
            box->setCheckState(check == BST_INDETERMINATE ? Qt::PartiallyChecked : check ? Qt::Checked : Qt::Unchecked);
        else if (button->isCheckable()) button->setChecked(check == BST_CHECKED);
    } else {
        isValue = true;  // a compound control: named by its label or its frame
    }
    // Its label's text, else its own; a value without a label takes the name
    // of the control it is part of.
    QString name;
    if (control.label) {
        CString label;
        control.label->GetWindowText(label);
        name = FromAnsi(label);
    } else if (!isValue) {
        name = text;
    } else if (widget->parentWidget() && !widget->parentWidget()->isWindow()) {
        name = widget->parentWidget()->accessibleName();
    }
    widget->setAccessibleName(WithoutMnemonic(name).simplified());
}

}  // namespace mwqt
