// The two dialogs on screen (Qt's offscreen platform), worked with real mouse
// clicks and key presses through the widgets the back end made.
#include <gtest/gtest.h>
#include <mapwright/mapwright.h>
#include <mapwright/qt.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QRadioButton>
#include <QTest>
#include <QTimer>

#include <cstring>
#include <filesystem>
#include <functional>

#include "testenv.h"

namespace {

using Act = std::function<void(QWidget* window, CDialog& d)>;
void PlayOnScreen(QWidget* window, CDialog& d, void* act) {
    window->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window));
    (*static_cast<Act*>(act))(window, d);
}
void PlayScripted(CDialog& d, void* act) { (*static_cast<Act*>(act))(nullptr, d); }

QString Q(const CString& ansi) { return QString::fromStdString(AnsiToUtf8(ansi.GetString())); }
QWidget* W(CDialog& d, int id) { return MwQtWidgetOf(d.GetDlgItem(id)); }
template <class T> T* As(CDialog& d, int id) { return dynamic_cast<T*>(d.GetDlgItem(id)); }

// The user's actions on screen: a click, a pick from the opened list, typing over the whole text.
void Click(CDialog& d, int id) { QTest::mouseClick(W(d, id), Qt::LeftButton); }
void Pick(CDialog& d, int id, const QString& text) {
    auto* box = qobject_cast<QComboBox*>(W(d, id));
    QTest::mouseClick(box, Qt::LeftButton);
    ASSERT_TRUE(box->view()->isVisible()) << "list " << id << " did not open";
    const QModelIndex item = box->model()->index(box->findText(text), 0);
    ASSERT_TRUE(item.isValid()) << "list " << id << " has no " << text.toStdString();
    box->view()->scrollTo(item);
    QTest::mouseMove(box->view()->viewport(), box->view()->visualRect(item).center());
    QTest::mouseClick(box->view()->viewport(), Qt::LeftButton, {}, box->view()->visualRect(item).center());
    QApplication::processEvents();
}
void Type(CDialog& d, int id, const QString& keys) {
    QTest::mouseClick(W(d, id), Qt::LeftButton);
    QTest::keyClick(W(d, id), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(W(d, id), keys);
}
// To the focus, which comes back to the dialog once a box has closed.
void Key(Qt::Key key) {
    ASSERT_TRUE(QTest::qWaitFor([] { return QApplication::focusWidget() != nullptr; }));
    QTest::keyClick(QApplication::focusWidget(), key);
}

// Every widget shows its model window: shown, enabled, text, check, items and selection.
void ExpectMirrored(CDialog& d) {
    for (CWnd* c = d.GetWindow(GW_CHILD); c; c = c->GetWindow(GW_HWNDNEXT)) {
        SCOPED_TRACE(c->GetDlgCtrlID());
        QWidget* w = MwQtWidgetOf(c);
        ASSERT_TRUE(w);
        CString text;
        c->GetWindowText(text);
        EXPECT_EQ(w->isVisibleTo(w->window()), bool(c->IsWindowVisible()));
        EXPECT_EQ(w->isEnabled(), bool(c->IsWindowEnabled()));
        if (auto* e = qobject_cast<QLineEdit*>(w)) { EXPECT_EQ(Q(text), e->text()); }
        if (auto* l = qobject_cast<QLabel*>(w)) { EXPECT_EQ(Q(text), l->text()); }
        if (auto* b = qobject_cast<QAbstractButton*>(w)) { EXPECT_EQ(b->isChecked(), As<CButton>(d, c->GetDlgCtrlID())->GetCheck() == 1); }
        if (auto* g = qobject_cast<QGroupBox*>(w)) { EXPECT_EQ(Q(text), g->title()); }
        if (auto* box = qobject_cast<QComboBox*>(w)) {
            auto* list = As<CComboBox>(d, c->GetDlgCtrlID());
            EXPECT_EQ(list->GetCount(), box->count());
            EXPECT_EQ(list->GetCurSel(), box->currentIndex());
            EXPECT_EQ(Q(text), box->currentText());
        }
    }
}

// The record's kind, datum and block (scale 1 if none), then the values saved.
std::string State(CGeoReferenceData& r) {
    ScaledProjectionParam s{1.0, 0.0, 0.0, 0, 0};
    ProjectionParam p{};
    if (r.GetProjection() == GaussKruger || r.GetProjection() == TransverseMercator) std::memcpy(&s, r.GetParam(), sizeof s);
    else if (r.GetParam()) std::memcpy(&p, r.GetParam(), sizeof p), s = {1.0, p.c_lon, p.lat_origin, p.fe, p.fn};
    char text[160];
    std::snprintf(text, sizeof text, "%d %d %.10g %.10g %.10g %d %d |", r.GetProjection(), r.GetDatum(), s.scale,
                  s.c_lon, s.lat_origin, int(s.fe), int(s.fn));
    std::string state = text;
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
const std::string kUnsaved = " - - - - - - -";

void Prepare(CGeoReferenceData& r, int kind, int datum, ScaledProjectionParam s = {}) {
    r.CreateGeoInfo(kind, datum);
    ProjectionParam p{s.c_lon, s.lat_origin, s.fe, s.fn};
    r.SetParam(kind == GaussKruger || kind == TransverseMercator ? static_cast<void*>(&s) : &p);
}

const char* const kKindNames[2][7] = {
    {"", "Geographic", "UTM", "Gauss-Kruger", "Transverse Mercator", "Mercator", "Polar Stereographic"},
    {"", "Географическая", "Универсальная поперечная Меркатора", "Гаусса-Крюгера", "Поперечная Меркатора",
     "Меркатора", "Полярная стереографическая"}};

class QtDialogs : public ::testing::TestWithParam<LANGID> {
protected:
    void SetUp() override { SetThreadUILanguage(GetParam()); }
    void TearDown() override { MwQtSetShownHook(nullptr, nullptr), MwSetDialogUser(nullptr, nullptr), SetThreadUILanguage(0); }
    bool Russian() const { return GetParam() == LANG_RUSSIAN; }
    QString Say(const char* english, const char* russian) const { return QString::fromUtf8(Russian() ? russian : english); }
    QString Kind(int kind) const { return QString::fromUtf8(kKindNames[Russian()][kind]); }
    // A case of its own (a registry key of its own), on screen or with the scripted user.
    int Run(const Act& act, const std::function<int()>& open, bool onScreen = true) {
        SetAppRegKey(("Software\\Host\\Case" + std::to_string(++m_case)).c_str());
        m_act = act;
        onScreen ? MwQtSetShownHook(&PlayOnScreen, &m_act) : MwSetDialogUser(&PlayScripted, &m_act);
        const int result = open();
        MwQtSetShownHook(nullptr, nullptr), MwSetDialogUser(nullptr, nullptr);
        return result;
    }
    // The message box the next action raises: its text; closed with its OK button.
    void ExpectBox(QWidget* window, const QString& text) {
        QTimer::singleShot(0, [=] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_TRUE(box);
            EXPECT_EQ(window, box->parentWidget());
            EXPECT_EQ(text, box->text());
            QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
        });
    }
    mwtest::IsolatedEnv m_env;
    Act m_act;
    int m_case = 0;
};

INSTANTIATE_TEST_SUITE_P(Languages, QtDialogs, ::testing::Values(LANG_ENGLISH_US, LANG_RUSSIAN),
                         [](const auto& info) { return info.param == LANG_RUSSIAN ? "Russian" : "English"; });

// Every control where its template rectangle puts it, in pixels from the base
// units of the 8-point sans-serif; Tab goes through the shown tab stops in
// template order; Escape cancels.
TEST_P(QtDialogs, LaidOutFromTheTemplate) {
    for (bool geoid : {false, true}) {
        SCOPED_TRACE(geoid);
        CGeoReferenceData r;
        Prepare(r, GaussKruger, 4);
        double height = 1.0;
        CString file;
        const Act act = [&](QWidget* window, CDialog& d) {
            QFont font(QStringLiteral("Sans Serif"));
            font.setStyleHint(QFont::SansSerif), font.setPointSize(8);
            const QFontMetrics m(font);
            const int bx = (m.horizontalAdvance(QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz")) / 26 + 1) / 2;
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
                ASSERT_TRUE(c && MwQtWidgetOf(c));
                QWidget* w = MwQtWidgetOf(c);
                // A drop-down list's template height includes the dropped list; its field is 13 units.
                EXPECT_EQ(px(tc.x, tc.y, tc.cx, qobject_cast<QComboBox*>(w) ? 13 : tc.cy), w->geometry());
                const bool named = (!qobject_cast<QLabel*>(w) && !qobject_cast<QGroupBox*>(w)) || c->GetWindowTextLength();
                EXPECT_TRUE(!w->isVisible() || !named || !w->accessibleName().isEmpty());
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

// Choices made with mouse and keys: stored on OK or Enter; a refusal's box
// leaves the dialog open; Escape and the close box change nothing.
TEST_P(QtDialogs, ChooseWithMouseAndKeys) {
    enum End { OkButton, Enter, Escape, CloseBox };
    // The record's kind; what is picked (0, null: nothing); keys typed per row (null: none); how it ends.
    const struct { int from, kind; const char *ellipsoid, *datum; std::vector<const char*> keys; End end; bool refused; int rc; std::string state; } cases[] = {
        {4, GaussKruger, "Krassovsky 1940", "Pulkovo 1942", {"039000000E", nullptr, "7500000"}, OkButton, false, IDOK,
         "3 4 1 39 0 7500000 0 | 3 4 1 39.000000 0.000000 7500000 0"},
        {4, TransverseMercator, nullptr, nullptr, {"0.9996", "027300000W", "045000000S", "500000.7", "10000000"}, Enter,
         false, IDOK, "4 3 0.9996 -27.5 -45 500000 10000000 | 4 3 0.999600 -27.500000 -45.000000 500000 10000000"},
        {4, UTM, nullptr, nullptr, {"37", "s"}, OkButton, false, IDOK, "2 3 1 0 0 -1 37 | 2 3 37 0.000000 0.000000 -1 37"},
        {5, 0, "Krassovsky 1940", nullptr, {}, Escape, true, IDCANCEL, "5 3 1 10 20 30 40 |" + kUnsaved},
        {5, Mercator, nullptr, nullptr, {"012300000E"}, CloseBox, false, IDCANCEL, "5 3 1 10 20 30 40 |" + kUnsaved},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        CGeoReferenceData r;
        Prepare(r, c.from, 3, {0.5, 10.0, 20.0, 30, 40});
        const Act act = [&](QWidget* window, CDialog& d) {
            if (c.kind) Pick(d, 800, Kind(c.kind));
            if (c.ellipsoid) Pick(d, 806, c.ellipsoid);
            if (c.datum) Pick(d, 807, c.datum);
            for (size_t row = 0; row < c.keys.size(); ++row)
                if (c.keys[row]) Type(d, 801 + int(row), c.keys[row]);
            ExpectMirrored(d);
            if (c.refused) {
                ExpectBox(window, Say("Select datum", "Выберите датум"));
                Click(d, IDOK);
                EXPECT_TRUE(window->isVisible() && d.IsRunning());
            }
            if (c.end == OkButton) Click(d, IDOK);
            if (c.end == Enter) Key(Qt::Key_Return);
            if (c.end == Escape) Key(Qt::Key_Escape);
            if (c.end == CloseBox) window->close();
        };
        EXPECT_EQ(c.rc, Run(act, [&] { return ModalPrChooseDlg(nullptr, &r, nullptr); }));
        EXPECT_EQ(c.state, State(r));
    }
}

// The radio buttons switch the geoid panel; the browse button's file dialog
// chooses the file, which the caller has at once (also after Escape); the
// typed height is stored on OK.
TEST_P(QtDialogs, GeoidPanel) {
    // In the folder the browse dialog starts in.
    std::filesystem::create_directories(m_env.appDir() + "/Processing");
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
            EXPECT_EQ(" 12.50", qobject_cast<QLineEdit*>(W(d, 820))->text());
            EXPECT_EQ("1010", panel());
            Click(d, 887);
            EXPECT_EQ("0101", panel());
            QTimer::singleShot(0, [&] {
                auto* chooser = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
                ASSERT_TRUE(chooser);
                auto* name = chooser->findChild<QLineEdit*>("fileNameEdit");
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
            EXPECT_EQ("0.0", qobject_cast<QLineEdit*>(W(d, 820))->text());
            Type(d, 820, "35.7");
            Click(d, IDOK);
        };
        const int rc = Run(act, [&] { return ModalPrAndGeoidDlg(nullptr, &r, &height, &file); });
        EXPECT_EQ((ok ? "1 35.7 " : "2 12.5 " + grid), std::to_string(rc) + " " + QString::number(height).toStdString() + " " + file.GetString());
    }
}

// One scenario played by the scripted user and on screen: the same record and the same values saved.
TEST_P(QtDialogs, SameRecordHeadlessAndOnScreen) {
    const std::pair<int, QString> steps[] = {{800, Kind(Mercator)}, {806, "WGS 72"}, {807, "WGS 72"},
        {801, "012° 30' 00.00'' E"}, {802, "045° 00' 00.00'' S"}, {803, "250000"}, {804, "-100"}, {IDOK, ""}};
    for (bool onScreen : {false, true}) {
        SCOPED_TRACE(onScreen);
        CGeoReferenceData r;
        Prepare(r, TransverseMercator, 3, {0.5, 10.0, 20.0, 30, 40});
        const Act act = [&](QWidget*, CDialog& d) {
            for (const auto& [id, text] : steps) {
                const std::string ansi = Utf8ToAnsi(text.toStdString());
                if (auto* list = As<CComboBox>(d, id)) onScreen ? Pick(d, id, text) : void(list->Pick(list->FindStringExact(-1, ansi.c_str())));
                if (auto* edit = As<CEdit>(d, id)) onScreen ? Type(d, id, text) : void(edit->TypeText(ansi.c_str()));
                if (auto* button = As<CButton>(d, id)) onScreen ? Click(d, id) : void(button->Click());
            }
        };
        EXPECT_EQ(IDOK, Run(act, [&] { return ModalPrChooseDlg(nullptr, &r, nullptr); }, onScreen));
        EXPECT_EQ("5 1 1 12.5 -45 250000 -100 | 5 1 1 12.500000 -45.000000 250000 -100", State(r));
    }
}

// A Qt host's own window owns the dialog (CQtParentWnd), and its QApplication runs the loop.
TEST(QtHost, OwnsTheDialog) {
    mwtest::IsolatedEnv env;
    int argc = 1;
    char name[] = "host", *argv[] = {name, nullptr};
    QApplication app(argc, argv);
    QWidget host;
    host.show();
    CQtParentWnd parent(&host);
    CGeoReferenceData r;
    bool shown = false;
    Act act = [&](QWidget* window, CDialog& d) {
        shown = window->parentWidget() == &host && window->isModal() && MwQtWidgetOf(&d) == window;
        Key(Qt::Key_Escape);
    };
    MwQtSetShownHook(&PlayOnScreen, &act);
    EXPECT_EQ(IDCANCEL, ModalPrChooseDlg(&parent, &r, nullptr));
    MwQtSetShownHook(nullptr, nullptr);
    EXPECT_TRUE(shown);
    EXPECT_EQ(&app, QCoreApplication::instance());
}

}  // namespace
