// The renderer: any compiled dialog template laid out as Windows lays it
// out, from the template font's base units, one widget per model window in
// template (tab) order.
#include <QComboBox>
#include <QFontMetrics>
#include <QGroupBox>

#include <algorithm>
#include <cmath>

#include "window.h"

namespace mwqt {
namespace {

// A drop-down list's template height is its field and the dropped list
// together; Windows makes the field about 13 units high for an 8-point font.
constexpr LONG kComboFieldHeight = 13;
// A dropped list shows items about 8 units high.
constexpr LONG kListItemHeight = 8;

int MulDiv(int value, int numerator, int denominator) {
    return static_cast<int>(std::lround(static_cast<double>(value) * numerator / denominator));
}

RECT RectOf(const CWnd& window) {
    RECT rect{};
    window.GetWindowRect(&rect);
    return rect;
}

bool IsStatic(const CWnd* window) { return dynamic_cast<const CStatic*>(window) != nullptr; }

bool IsTitledGroup(const CWnd* window) {
    return dynamic_cast<const CButton*>(window) && (window->GetStyle() & BS_TYPEMASK) == BS_GROUPBOX &&
           window->GetWindowTextLength() > 0;
}

LONG Overlap(LONG a0, LONG a1, LONG b0, LONG b1) { return std::min(a1, b1) - std::max(a0, b0); }

// What the user sees of a control: a drop-down list's field.
RECT ShownRect(const CWnd& window) {
    RECT rect = RectOf(window);
    if (dynamic_cast<const CComboBox*>(&window)) rect.bottom = std::min(rect.bottom, rect.top + kComboFieldHeight);
    return rect;
}

// The static that names a control whose text is a value (an edit, a list, a
// compound control): the static just before it in template order, else the
// one right beside it on its left (the most of its height), else the titled
// group box around it, else a static just above it.
CWnd* LabelOf(CWnd& control, const std::vector<CWnd*>& siblings) {
    if (IsStatic(&control) || dynamic_cast<CButton*>(&control)) return nullptr;
    const auto at = std::find(siblings.begin(), siblings.end(), &control);
    if (at != siblings.begin() && IsStatic(*(at - 1))) return *(at - 1);
    const RECT r = ShownRect(control);
    CWnd* best = nullptr;
    LONG bestScore = 0;
    for (CWnd* s : siblings) {
        const RECT q = RectOf(*s);
        if (!IsStatic(s) || q.right > r.left || r.left - q.right > kListItemHeight) continue;
        if (const LONG overlap = Overlap(q.top, q.bottom, r.top, r.bottom); overlap > bestScore) best = s, bestScore = overlap;
    }
    if (best) return best;
    LONG smallest = 0;
    for (CWnd* s : siblings) {
        const RECT q = RectOf(*s);
        const LONG area = (q.right - q.left) * (q.bottom - q.top);
        if (IsTitledGroup(s) && q.left <= r.left && q.top <= r.top && q.right >= r.right && q.bottom >= r.bottom &&
            (!best || area < smallest))
            best = s, smallest = area;
    }
    if (best) return best;
    for (CWnd* s : siblings) {
        const RECT q = RectOf(*s);
        if (IsStatic(s) && q.bottom <= r.top && r.top - q.bottom <= kListItemHeight &&
            Overlap(q.left, q.right, r.left, r.right) > 0 && (!best || q.bottom > RectOf(*best).bottom))
            best = s;
    }
    return best;
}

void Build(DialogWindow& window, CWnd& parent, QWidget* parentWidget, BaseUnits units, std::vector<Control>& out) {
    std::vector<CWnd*> siblings;
    for (CWnd* child = parent.GetWindow(GW_CHILD); child; child = child->GetWindow(GW_HWNDNEXT)) siblings.push_back(child);
    for (CWnd* child : siblings) {
        QWidget* widget = MakeWidget(window, *child, parentWidget);
        if (!widget) continue;
        RECT rect = RectOf(*child);
        if (auto* combo = qobject_cast<QComboBox*>(widget)) {
            combo->setMaxVisibleItems(std::max<int>(1, (rect.bottom - rect.top - kComboFieldHeight) / kListItemHeight));
            rect.bottom = rect.top + kComboFieldHeight;
        }
        widget->setGeometry(ToPixels(rect, units));
        // Only what the user can tab to in Windows takes Tab here.
        if (widget->focusPolicy() != Qt::NoFocus)
            widget->setFocusPolicy(child->GetStyle() & WS_TABSTOP ? Qt::StrongFocus : Qt::ClickFocus);
        // A group box comes late in a template but frames what is under it:
        // it must not take their clicks.
        if (qobject_cast<QGroupBox*>(widget)) widget->lower();
        out.push_back({child, widget, LabelOf(*child, siblings)});
        Build(window, *child, widget, units, out);  // a compound control's own children
    }
}

}  // namespace

QFont DialogFont(const MwDialogTemplate* dialogTemplate) {
    // The Windows dialog fonts stand for the system's sans-serif.
    QString family = dialogTemplate && dialogTemplate->fontName ? FromAnsi(dialogTemplate->fontName) : QString();
    for (const char* name : {"MS Sans Serif", "MS Shell Dlg", "MS Shell Dlg 2", "Microsoft Sans Serif", "System"})
        if (family.compare(QLatin1String(name), Qt::CaseInsensitive) == 0) family.clear();
    QFont font(family.isEmpty() ? QStringLiteral("Sans Serif") : family);
    font.setStyleHint(QFont::SansSerif);
    font.setPointSize(dialogTemplate && dialogTemplate->fontSize ? dialogTemplate->fontSize : 8);
    if (dialogTemplate && dialogTemplate->fontWeight >= 700) font.setBold(true);
    if (dialogTemplate && dialogTemplate->fontItalic) font.setItalic(true);
    return font;
}

// Qt's pixels are device-independent: the metrics, and so the layout, are
// multiplied by the screen's device pixel ratio when drawn.
BaseUnits BaseUnitsOf(const QFont& font) {
    const QFontMetrics metrics(font);
    // Windows' average character width: the 52 Latin letters over 26, halved rounding up.
    const int letters = metrics.horizontalAdvance(QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"));
    return {(letters / 26 + 1) / 2, metrics.height()};
}

QRect ToPixels(const RECT& dlu, BaseUnits units) {
    const int left = MulDiv(dlu.left, units.x, 4), right = MulDiv(dlu.right, units.x, 4);
    const int top = MulDiv(dlu.top, units.y, 8), bottom = MulDiv(dlu.bottom, units.y, 8);
    return QRect(left, top, right - left, bottom - top);
}

void Render(DialogWindow& window) {
    window.m_controls.clear();
    Build(window, window.m_dialog, &window, window.m_units, window.m_controls);
    QWidget* previous = nullptr;
    for (const Control& control : window.m_controls) {
        if (!(control.widget->focusPolicy() & Qt::TabFocus)) continue;
        if (previous) QWidget::setTabOrder(previous, control.widget);
        previous = control.widget;
    }
}

}  // namespace mwqt
