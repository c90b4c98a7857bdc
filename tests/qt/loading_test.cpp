// A host that does not link the back end: DoModal loads it on demand from
// beside the platform library, and without a display returns -1 before Qt
// could end the process.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <mapwright/mapwright.h>

#include <QCoreApplication>
#include <QWidget>

#include <cstdlib>

#include "testenv.h"

TEST(QtLoading, OnDemandAndOnlyWithADisplay) {
    mwtest::IsolatedEnv env;
    ASSERT_EQ(nullptr, dlopen(MW_QT_SONAME, RTLD_NOW | RTLD_NOLOAD));
    // X asked for and no display: Qt's plugin would abort the process here.
    setenv("QT_QPA_PLATFORM", "xcb", 1);
    unsetenv("DISPLAY");
    CGeoReferenceData r;
    EXPECT_EQ(-1, ModalPrChooseDlg(nullptr, &r, nullptr));
    EXPECT_EQ(-1, r.GetProjection());  // nothing of the dialog ran
    void* qt = dlopen(MW_QT_SONAME, RTLD_NOW | RTLD_NOLOAD);
    ASSERT_TRUE(qt);
    using SetHook = void (*)(void (*)(QWidget*, CDialog&, void*), void*);
    const auto setHook = reinterpret_cast<SetHook>(dlsym(qt, "MwQtSetShownHook"));
    ASSERT_TRUE(setHook);
    setHook([](QWidget* window, CDialog&, void*) { window->close(); }, nullptr);
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    EXPECT_EQ(IDCANCEL, ModalPrChooseDlg(nullptr, &r, nullptr));
    EXPECT_EQ(nullptr, QCoreApplication::instance());  // the application made for the loop went with it
    setHook(nullptr, nullptr);
}
