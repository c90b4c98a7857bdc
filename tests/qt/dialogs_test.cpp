// The two dialogs on screen (Qt's offscreen platform), worked with real mouse
// clicks and key presses through the widgets the back end made.
#include <gtest/gtest.h>
#include <mapwright/mapwright.h>
#include <mapwright/qt.h>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

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
QString Text(CDialog& d, int id) { return qobject_cast<QLineEdit*>(W(d, id))->text(); }

// The user on screen: a click; a pick from the opened list; typing over the whole text; a key to the focus.
void Click(CDialog& d, int id) { QTest::mouseClick(W(d, id), Qt::LeftButton); }
void Pick(CDialog& d, int id, const QString& text) {
    auto* box = qobject_cast<QComboBox*>(W(d, id));
    QTest::mouseClick(box, Qt::LeftButton);
    const QModelIndex item = box->model()->index(box->findText(text), 0);
    ASSERT_TRUE(box->view()->isVisible() && item.isValid()) << id << " " << text.toStdString();
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
void Key(Qt::Key key) {  // the focus comes back to the dialog once a box has gone
    ASSERT_TRUE(QTest::qWaitFor([] { return QApplication::focusWidget() != nullptr; }));
    QTest::keyClick(QApplication::focusWidget(), key);
}

// Every widget shows its model window: shown, enabled, text, check, items and selection.
void ExpectMirrored(CDialog& d) {
    for (CWnd* c = d.GetWindow(GW_CHILD); c; c = c->GetWindow(GW_HWNDNEXT)) {
        SCOPED_TRACE(c->GetDlgCtrlID());
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
        EXPECT_EQ(Q(text), shown);
        EXPECT_EQ(bool(c->IsWindowVisible()), w->isVisibleTo(w->window()));
        EXPECT_EQ(bool(c->IsWindowEnabled()), w->isEnabled());
    }
}

// The record's kind and datum, then the values saved in the registry.
std::string State(CGeoReferenceData& r) {
    std::string state = std::to_string(r.GetProjection()) + " " + std::to_string(r.GetDatum()) + " |";
    HKEY key = nullptr;
    const bool open = RegOpenKeyExA(HKEY_CURRENT_USER, AppRegKey() + "\\GeoData", 0, KEY_READ, &key) == 0;
    for (const char* name : {"ProjectionIndex", "DatumIndex", "scale", "c_lon", "lat_origin", "fe", "fn"}) {
        char data[256];
        DWORD size = sizeof data;
        const bool found = open && RegQueryValueExA(key, name, nullptr, nullptr, (BYTE*)data, &size) == 0;
        found ? state.append(" ").append(data, size) : state.append(" -");
    }
    if (open) RegCloseKey(key);
    return state;
}

void Prepare(CGeoReferenceData& r, int kind, int datum) {
    r.CreateGeoInfo(kind, datum);
    ScaledProjectionParam s{0.5, 10.0, 20.0, 30, 40};
    ProjectionParam p{10.0, 20.0, 30, 40};
    r.SetParam(kind == GaussKruger || kind == TransverseMercator ? static_cast<void*>(&s) : &p);
}

class QtDialogs : public ::testing::TestWithParam<LANGID> {
protected:
    void SetUp() override { SetThreadUILanguage(GetParam()); }
    void TearDown() override { SetThreadUILanguage(0); }
    QString Say(const char* english, const char* russian) const {
        return QString::fromUtf8(GetParam() == LANG_RUSSIAN ? russian : english);
    }
    QString Kind(int kind) const { return Q(GetResourceString(831 + kind)); }  // as the list shows it
    // A case of its own (its own registry key), on screen or with the scripted user.
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

// Every control at its template rectangle in pixels from the base units of the
// 8-point sans-serif; Tab through the shown tab stops in template order.
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
            EXPECT_EQ(geoid ? Say("Parameters of GCP", "Параметры НКТ") : Say("Choose projection", "Выбор проекции"),
                      window->windowTitle());
            QList<QWidget*> tabs;
            CWnd* c = d.GetWindow(GW_CHILD);
            for (size_t i = 0; i < t.controlCount; ++i, c = c->GetWindow(GW_HWNDNEXT)) {
                const MwDialogControl& tc = t.controls[i];
                SCOPED_TRACE(tc.id);
                QWidget* w = MwQtWidgetOf(c);
                ASSERT_TRUE(w);
                // A drop-down list's template height includes the dropped list; its field is 13 units.
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

// Mouse and keys: stored on OK or Enter; a refusal's box leaves the dialog
// open; Escape and the close box change nothing.
TEST_P(QtDialogs, ChooseWithMouseAndKeys) {
    enum End { OkButton, Enter, Refused, CloseBox };
    // The record's kind; what is picked (0, null: nothing); the keys typed per row (null: none).
    const struct { int from, kind; const char *ellipsoid, *datum; std::vector<const char*> keys; End end; std::string state; } cases[] = {
        {4, GaussKruger, "Krassovsky 1940", "Pulkovo 1942", {"039000000E", nullptr, "7500000"}, OkButton,
         "3 4 | 3 4 1 39.000000 0.000000 7500000 0"},
        {4, TransverseMercator, nullptr, nullptr, {"0.9996", "027300000W", "045000000S", "500000.7", "10000000"}, Enter,
         "4 3 | 4 3 0.999600 -27.500000 -45.000000 500000 10000000"},
        {4, UTM, nullptr, nullptr, {"37", "s"}, OkButton, "2 3 | 2 3 37 0.000000 0.000000 -1 37"},
        {5, 0, "Krassovsky 1940", nullptr, {}, Refused, "5 3 | - - - - - - -"},  // no datum; then Escape
        {5, Mercator, nullptr, nullptr, {"012300000E"}, CloseBox, "5 3 | - - - - - - -"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        CGeoReferenceData r;
        Prepare(r, c.from, 3);
        const Act act = [&](QWidget* window, CDialog& d) {
            if (c.kind) Pick(d, 800, Kind(c.kind));
            if (c.ellipsoid) Pick(d, 806, c.ellipsoid);
            if (c.datum) Pick(d, 807, c.datum);
            for (size_t row = 0; row < c.keys.size(); ++row)
                if (c.keys[row]) Type(d, 801 + int(row), c.keys[row]);
            ExpectMirrored(d);
            if (c.end == Refused)
                QTimer::singleShot(0, [&] {  // the box: owned by the dialog, its text, closed with OK
                    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                    ASSERT_TRUE(box && box->parentWidget() == window);
                    EXPECT_EQ(Say("Select datum", "Выберите датум"), box->text());
                    QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
                });
            if (c.end == OkButton || c.end == Refused) Click(d, IDOK);
            if (c.end == Refused) {
                EXPECT_TRUE(window->isVisible() && d.IsRunning());
                Key(Qt::Key_Escape);
            }
            if (c.end == Enter) Key(Qt::Key_Return);
            if (c.end == CloseBox) window->close();
        };
        EXPECT_EQ(c.end <= Enter ? IDOK : IDCANCEL, Run(act, [&] { return ModalPrChooseDlg(nullptr, &r, nullptr); }));
        EXPECT_EQ(c.state, State(r));
    }
}

// The radio buttons switch the geoid panel; the browse button's file dialog
// chooses the file, which the caller has at once (also after Escape); the
// typed height is stored on OK.
TEST_P(QtDialogs, GeoidPanel) {
    std::filesystem::create_directories(m_env.appDir() + "/Processing");  // where the file dialog starts
    const std::string grid = m_env.appDir() + "/Processing/geoid.grd";
    mwtest::WriteFile(grid, "grid");
    for (bool ok : {true, false}) {
        CGeoReferenceData r;
        Prepare(r, Mercator, 3);
        double height = 12.5;
        CString file;
        const Act act = [&](QWidget*, CDialog& d) {
            auto panel = [&] { return QString("%1%2%3%4").arg(As<CButton>(d, 886)->GetCheck()).arg(As<CButton>(d, 887)->GetCheck())
                                   .arg(W(d, 820)->isVisible()).arg(W(d, 822)->isVisible()); };
            EXPECT_EQ(" 12.50", Text(d, 820));
            EXPECT_EQ("1010", panel());
            Click(d, 887);
            EXPECT_EQ("0101", panel());
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
            Click(d, 886);
            EXPECT_EQ("1010", panel());
            EXPECT_EQ("0.0", Text(d, 820));
            Type(d, 820, "35.7");
            Click(d, IDOK);
        };
        const int rc = Run(act, [&] { return ModalPrAndGeoidDlg(nullptr, &r, &height, &file); });
        EXPECT_EQ(ok ? "1 35.7 " : "2 12.5 " + grid, QString("%1 %2 ").arg(rc).arg(height).toStdString() + file.GetString());
    }
}

// One scenario played by the scripted user and on screen: the same record, the same values saved.
TEST_P(QtDialogs, SameRecordHeadlessAndOnScreen) {
    const std::pair<int, QString> steps[] = {{800, Kind(Mercator)}, {806, "WGS 72"}, {807, "WGS 72"},
        {801, "012° 30' 00.00'' E"}, {802, "045° 00' 00.00'' S"}, {803, "250000"}, {804, "-100"}, {IDOK, ""}};
    for (bool onScreen : {false, true}) {
        CGeoReferenceData r;
        Prepare(r, TransverseMercator, 3);
        const Act act = [&](QWidget*, CDialog& d) {
            for (const auto& [id, text] : steps) {
                const std::string ansi = Utf8ToAnsi(text.toStdString());
                if (auto* list = As<CComboBox>(d, id)) onScreen ? Pick(d, id, text) : void(list->Pick(list->FindStringExact(-1, ansi.c_str())));
                if (auto* edit = As<CEdit>(d, id)) onScreen ? Type(d, id, text) : void(edit->TypeText(ansi.c_str()));
                if (auto* button = As<CButton>(d, id)) onScreen ? Click(d, id) : void(button->Click());
            }
        };
        EXPECT_EQ(IDOK, Run(act, [&] { return ModalPrChooseDlg(nullptr, &r, nullptr); }, onScreen));
        EXPECT_EQ("5 1 | 5 1 1 12.500000 -45.000000 250000 -100", State(r)) << onScreen;
    }
}

// A Qt host's window owns the dialog (CQtParentWnd); the host's QApplication runs the loop.
TEST(QtHost, OwnsTheDialog) {
    mwtest::IsolatedEnv env;
    int argc = 1;
    char name[] = "host", *argv[] = {name, nullptr};
    QApplication app(argc, argv);
    QWidget host;
    host.show();
    CQtParentWnd parent(&host);
    CGeoReferenceData r;
    bool owned = false;
    Act act = [&](QWidget* window, CDialog& d) {
        owned = window->parentWidget() == &host && window->isModal() && MwQtWidgetOf(&d) == window;
        Key(Qt::Key_Escape);
    };
    MwQtSetShownHook(&OnScreen, &act);
    EXPECT_EQ(IDCANCEL, ModalPrChooseDlg(&parent, &r, nullptr));
    MwQtSetShownHook(nullptr, nullptr);
    EXPECT_TRUE(owned);
    EXPECT_EQ(&app, QCoreApplication::instance());
}

}  // namespace
