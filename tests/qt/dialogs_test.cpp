// Both dialogs on screen (offscreen), worked with real mouse clicks and keys.
#include <gtest/gtest.h>
#include <mapwright/mapwright.h>
#include <mapwright/qt.h>

#include <QtWidgets>
#include <QTest>

#include <filesystem>
#include <functional>

#include "testenv.h"

namespace {

using Act = std::function<void(QWidget* window, CDialog& d)>;
void OnScreen(QWidget* window, CDialog& d, void* act) {
    window->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window));
    (*static_cast<Act*>(act))(window, d);
}
void Scripted(CDialog& d, void* act) { (*static_cast<Act*>(act))(nullptr, d); }

QString Q(const CString& ansi) { return QString::fromStdString(AnsiToUtf8(ansi.GetString())); }
QWidget* W(CDialog& d, int id) { return MwQtWidgetOf(d.GetDlgItem(id)); }
template <class T> T* As(CDialog& d, int id) { return dynamic_cast<T*>(d.GetDlgItem(id)); }

// The user on screen: a click, a pick from the opened list, typing over the text, a key.
void Click(CDialog& d, int id) { QTest::mouseClick(W(d, id), Qt::LeftButton); }
void Pick(CDialog& d, int id, const QString& text) {
    auto* box = qobject_cast<QComboBox*>(W(d, id));
    QTest::mouseClick(box, Qt::LeftButton);
    const QModelIndex item = box->model()->index(box->findText(text), 0);
    ASSERT_TRUE(box->view()->isVisible() && item.isValid()) << id;
    box->view()->scrollTo(item);
    const QPoint at = box->view()->visualRect(item).center();
    QTest::mouseMove(box->view()->viewport(), at);
    QTest::mouseClick(box->view()->viewport(), Qt::LeftButton, {}, at);
    QApplication::processEvents();
}
void Type(CDialog& d, int id, const QString& keys) {
    Click(d, id);
    QTest::keyClick(W(d, id), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(W(d, id), keys);
}
void Key(Qt::Key key) {  // the focus is back once a box has gone
    ASSERT_TRUE(QTest::qWaitFor([] { return QApplication::focusWidget() != nullptr; }));
    QTest::keyClick(QApplication::focusWidget(), key);
}

// Every widget shows its model window (shown, enabled, text, check, items, selection).
void ExpectMirrored(CDialog& d) {
    for (CWnd* c = d.GetWindow(GW_CHILD); c; c = c->GetWindow(GW_HWNDNEXT)) {
        QWidget* w = MwQtWidgetOf(c);
        CString text;
        c->GetWindowText(text);
        QString shown = Q(text);
        if (auto* e = qobject_cast<QLineEdit*>(w)) shown = e->text();
        if (auto* l = qobject_cast<QLabel*>(w)) shown = l->text();
        if (auto* b = qobject_cast<QAbstractButton*>(w)) shown += b->isChecked() ? "*" : "";
        if (auto* b = dynamic_cast<CButton*>(c); b && b->GetCheck()) text += "*";
        if (auto* box = qobject_cast<QComboBox*>(w)) {
            auto* list = dynamic_cast<CComboBox*>(c);
            EXPECT_EQ(list->GetCount() * 100 + list->GetCurSel(), box->count() * 100 + box->currentIndex());
            shown = box->currentText();
        }
        EXPECT_EQ(Q(text), shown) << c->GetDlgCtrlID();
        EXPECT_EQ(bool(c->IsWindowVisible()), w->isVisibleTo(w->window()));
        EXPECT_EQ(bool(c->IsWindowEnabled()), w->isEnabled());
    }
}

// The record's kind and datum, then the values saved in the registry.
std::string State(CGeoReferenceData& r) {
    std::string state = std::to_string(r.GetProjection()) + " " + std::to_string(r.GetDatum()) + " |";
    HKEY key = nullptr;  // null when nothing was saved
    RegOpenKeyExA(HKEY_CURRENT_USER, AppRegKey() + "\\GeoData", 0, KEY_READ, &key);
    for (const char* name : {"ProjectionIndex", "DatumIndex", "scale", "c_lon", "lat_origin", "fe", "fn"}) {
        char data[256];
        DWORD size = sizeof data;
        RegQueryValueExA(key, name, nullptr, nullptr, (BYTE*)data, &size) ? state += " -" : state.append(" ").append(data, size);
    }
    return RegCloseKey(key), state;
}

void Prepare(CGeoReferenceData& r, int kind, int datum) {
    ScaledProjectionParam s{0.5, 10.0, 20.0, 30, 40};
    ProjectionParam p{10.0, 20.0, 30, 40};
    r.CreateGeoInfo(kind, datum), r.SetParam(kind == GaussKruger || kind == TransverseMercator ? (void*)&s : &p);
}

class QtDialogs : public ::testing::TestWithParam<LANGID> {
protected:
    void SetUp() override { SetThreadUILanguage(GetParam()); }
    void TearDown() override { SetThreadUILanguage(0); }
    QString Say(const char* en, const char* ru) const { return QString::fromUtf8(GetParam() == LANG_RUSSIAN ? ru : en); }
    QString Kind(int kind) const { return Q(GetResourceString(831 + kind)); }  // as the list shows it
    // A case of its own registry key, on screen or scripted.
    int Run(const Act& act, const std::function<int()>& open, bool onScreen = true) {
        SetAppRegKey(("Software\\Host\\Case" + std::to_string(++m_case)).c_str());
        m_act = act;
        onScreen ? MwQtSetShownHook(&OnScreen, &m_act) : MwSetDialogUser(&Scripted, &m_act);
        const int result = open();
        MwQtSetShownHook(nullptr, nullptr), MwSetDialogUser(nullptr, nullptr);
        return result;
    }
    mwtest::IsolatedEnv m_env;
    Act m_act;
    int m_case = 0;
};

INSTANTIATE_TEST_SUITE_P(Languages, QtDialogs, ::testing::Values(LANG_ENGLISH_US, LANG_RUSSIAN),
                         [](const auto& info) { return info.param == LANG_RUSSIAN ? "Russian" : "English"; });

// Controls at their template rectangles in pixels (base units of the 8-point sans-serif; a
// list's field 13 units high), named; Tab through the shown tab stops in template order.
TEST_P(QtDialogs, LaidOutFromTheTemplate) {
    for (bool geoid : {false, true}) {
        CGeoReferenceData r;
        Prepare(r, GaussKruger, 4);
        double height = 1.0;
        CString file;
        const Act act = [&](QWidget* window, CDialog& d) {
            QFont font(QStringLiteral("Sans Serif"));
            font.setStyleHint(QFont::SansSerif), font.setPointSize(8);
            const QFontMetrics m(font);
            const int bx = (m.horizontalAdvance("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz") / 26 + 1) / 2;
            auto x = [&](int dlu) { return int(std::lround(dlu * bx / 4.0)); };
            auto y = [&](int dlu) { return int(std::lround(dlu * m.height() / 8.0)); };
            auto px = [&](int l, int t, int w, int h) { return QRect(x(l), y(t), x(l + w) - x(l), y(t + h) - y(t)); };
            const MwDialogTemplate& t = *d.GetTemplate();
            EXPECT_EQ(px(0, 0, t.cx, t.cy).size(), window->size());
            EXPECT_EQ(geoid ? Say("Parameters of GCP", "Параметры НКТ") : Say("Choose projection", "Выбор проекции"), window->windowTitle());
            QList<QWidget*> tabs;
            CWnd* c = d.GetWindow(GW_CHILD);
            for (size_t i = 0; i < t.controlCount; ++i, c = c->GetWindow(GW_HWNDNEXT)) {
                const MwDialogControl& tc = t.controls[i];
                QWidget* w = MwQtWidgetOf(c);
                SCOPED_TRACE(tc.id);
                ASSERT_TRUE(w);
                EXPECT_EQ(px(tc.x, tc.y, tc.cx, qobject_cast<QComboBox*>(w) ? 13 : tc.cy), w->geometry());
                const bool blank = (qobject_cast<QLabel*>(w) || !w->focusPolicy()) && !c->GetWindowTextLength();
                EXPECT_TRUE(blank || !w->isVisible() || !w->accessibleName().isEmpty());
                if ((tc.style & WS_TABSTOP) && w->isVisible()) tabs << w;
            }
            EXPECT_EQ(Say("Datum", "Датум"), W(d, 807)->accessibleName());
            tabs.first()->setFocus();
            for (QWidget* next : tabs.mid(1)) {
                Key(Qt::Key_Tab);
                EXPECT_EQ(next, QApplication::focusWidget());
            }
            Key(Qt::Key_Escape);
        };
        EXPECT_EQ(IDCANCEL, Run(act, [&] { return geoid ? ModalPrAndGeoidDlg(nullptr, &r, &height, &file)
                                                        : ModalPrChooseDlg(nullptr, &r, nullptr); }));
    }
}

// Stored on OK or Enter; a refusal's box leaves the dialog open; the close box stores nothing.
TEST_P(QtDialogs, ChooseWithMouseAndKeys) {
    enum End { OkButton, Enter, Refused };
    // Picks (0, null: none) on a Transverse Mercator record; keys per row.
    const struct { int kind; const char *ellipsoid, *datum; std::vector<const char*> keys; End end; std::string state; } cases[] = {
        {GaussKruger, "Krassovsky 1940", "Pulkovo 1942", {"039000000E", nullptr, "7500000"}, OkButton,
         "3 4 | 3 4 1 39.000000 0.000000 7500000 0"},
        {TransverseMercator, nullptr, nullptr, {"0.9996", "027300000W", "045000000S", "500000.7", "10000000"}, Enter,
         "4 3 | 4 3 0.999600 -27.500000 -45.000000 500000 10000000"},
        {Mercator, "Krassovsky 1940", nullptr, {"012300000E"}, Refused, "4 3 | - - - - - - -"},  // no datum
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        CGeoReferenceData r;
        Prepare(r, TransverseMercator, 3);
        const Act act = [&](QWidget* window, CDialog& d) {
            if (c.kind) Pick(d, 800, Kind(c.kind));
            if (c.ellipsoid) Pick(d, 806, c.ellipsoid);
            if (c.datum) Pick(d, 807, c.datum);
            for (size_t row = 0; row < c.keys.size(); ++row)
                if (c.keys[row]) Type(d, 801 + int(row), c.keys[row]);
            ExpectMirrored(d);
            if (c.end == Refused)
                QTimer::singleShot(0, [&] {  // the box: the dialog's, its text, closed with OK
                    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                    ASSERT_TRUE(box && box->parentWidget() == window);
                    EXPECT_EQ(Say("Select datum", "Выберите датум"), box->text());
                    QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
                });
            if (c.end == OkButton || c.end == Refused) Click(d, IDOK);
            if (c.end == Refused) {
                EXPECT_TRUE(window->isVisible() && d.IsRunning());
                window->close();  // the close box
            }
            if (c.end == Enter) Key(Qt::Key_Return);
        };
        EXPECT_EQ(c.end <= Enter ? IDOK : IDCANCEL, Run(act, [&] { return ModalPrChooseDlg(nullptr, &r, nullptr); }));
        EXPECT_EQ(c.state, State(r));
    }
}

// The radios switch the panel; the file dialog's file is the caller's at once (also after
// Escape); the typed height is stored on OK.
TEST_P(QtDialogs, GeoidPanel) {
    const std::string grid = m_env.appDir() + "/Processing/geoid.grd";  // where the file dialog starts
    std::filesystem::create_directories(m_env.appDir() + "/Processing");
    mwtest::WriteFile(grid, "grid");
    for (bool ok : {true, false}) {
        CGeoReferenceData r;
        Prepare(r, Mercator, 3);
        double height = 12.5;
        CString file;
        const Act act = [&](QWidget*, CDialog& d) {
            auto* edit = qobject_cast<QLineEdit*>(W(d, 820));
            auto panel = [&] { return edit->text() + QString::number(edit->isVisible() * 10 + W(d, 822)->isVisible()); };
            EXPECT_EQ(" 12.5010", panel());
            Click(d, 887);
            EXPECT_EQ(" 12.501", panel());
            QTimer::singleShot(0, [&] {
                auto* name = QApplication::activeModalWidget()->findChild<QLineEdit*>("fileNameEdit");
                QTest::mouseClick(name, Qt::LeftButton);
                QTest::keyClicks(name, "geoid.grd");
                QTest::keyClick(name, Qt::Key_Return);
            });
            QTest::mouseClick(MwQtWidgetOf(&As<CInFileCtrl>(d, 822)->GetBrowseButton()), Qt::LeftButton);
            EXPECT_EQ(grid, file.GetString());
            ExpectMirrored(d);
            if (!ok) return Key(Qt::Key_Escape);
            Click(d, 887), Key(Qt::Key_Up);  // to 886 in its group (in Russian 887 is one alone)
            if (GetParam() == LANG_RUSSIAN) Click(d, 886);
            EXPECT_EQ("0.010", panel());
            Type(d, 820, "35.7");
            Click(d, IDOK);
        };
        const int rc = Run(act, [&] { return ModalPrAndGeoidDlg(nullptr, &r, &height, &file); });
        EXPECT_EQ(ok ? "1 35.7 " : "2 12.5 " + grid, QString("%1 %2 ").arg(rc).arg(height).toStdString() + file.GetString());
    }
}

// One scenario, scripted and on screen: the same record and values saved.
TEST_P(QtDialogs, SameRecordHeadlessAndOnScreen) {
    const std::pair<int, QString> steps[] = {{800, Kind(Mercator)}, {806, "WGS 72"}, {807, "WGS 72"},
        {801, "012° 30' 00.00'' E"}, {802, "045° 00' 00.00'' S"}, {803, "250000"}, {804, "-100"}, {IDOK, ""}};
    for (bool onScreen : {false, true}) {
        CGeoReferenceData r;
        Prepare(r, TransverseMercator, 3);
        const Act act = [&](QWidget*, CDialog& d) {
            for (const auto& [id, text] : steps) {
                const std::string a = Utf8ToAnsi(text.toStdString());
                auto* list = As<CComboBox>(d, id);
                if (onScreen) list ? Pick(d, id, text) : As<CEdit>(d, id) ? Type(d, id, text) : Click(d, id);
                else if (list) list->Pick(list->FindStringExact(-1, a.c_str()));
                else As<CEdit>(d, id) ? void(As<CEdit>(d, id)->TypeText(a.c_str())) : void(As<CButton>(d, id)->Click());
            }
        };
        EXPECT_EQ(IDOK, Run(act, [&] { return ModalPrChooseDlg(nullptr, &r, nullptr); }, onScreen));
        EXPECT_EQ("5 1 | 5 1 1 12.500000 -45.000000 250000 -100", State(r)) << onScreen;
    }
}

// A Qt host's window owns the dialog (CQtParentWnd), in the host's QApplication.
TEST(QtHost, OwnsTheDialog) {
    mwtest::IsolatedEnv env;
    int argc = 1;
    char name[] = "host", *argv[] = {name, nullptr};
    QApplication app(argc, argv);
    QWidget host;
    CQtParentWnd parent(&host);
    CGeoReferenceData r;
    QWidget* owner = nullptr;
    int answer = 0;
    Act act = [&](QWidget* window, CDialog& d) {
        owner = MwQtWidgetOf(&d) == window && window->isModal() ? window->parentWidget() : nullptr;
        QTimer::singleShot(0, [] {  // the user takes Cancel when the box offers it
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_TRUE(box);
            QTest::mouseClick(box->button(box->button(QMessageBox::Cancel) ? QMessageBox::Cancel : QMessageBox::Ok), Qt::LeftButton);
        });
        answer = MessageBoxA(d.GetSafeHwnd(), "Sure?", "", MB_OKCANCEL);
        Key(Qt::Key_Escape);
    };
    MwQtSetShownHook(&OnScreen, &act);
    host.show();
    EXPECT_EQ(IDCANCEL, ModalPrChooseDlg(&parent, &r, nullptr));
    MwQtSetShownHook(nullptr, nullptr);
    EXPECT_EQ(&host, owner);
    EXPECT_EQ(IDCANCEL, answer);
}

}  // namespace
