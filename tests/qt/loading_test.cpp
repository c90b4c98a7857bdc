// Not linked to the back end: DoModal loads it, and with no display is -1 before Qt could abort.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <mapwright/mapwright.h>

#include <QCoreApplication>
#include <QWidget>

#include "testenv.h"

TEST(QtLoading, OnDemandAndOnlyWithADisplay) {
    mwtest::IsolatedEnv env;
    ASSERT_FALSE(dlopen(MW_QT_SONAME, RTLD_NOW | RTLD_NOLOAD));
    CGeoReferenceData r;
    setenv("QT_QPA_PLATFORM", "xcb", 1), setenv("DISPLAY", ":77", 1);  // no server there
    EXPECT_EQ(-1, ModalPrChooseDlg(nullptr, &r, nullptr));
    unsetenv("DISPLAY");
    EXPECT_EQ(-1, ModalPrChooseDlg(nullptr, &r, nullptr));
    EXPECT_EQ(-1, r.GetProjection());  // nothing of the dialog ran
    void* qt = dlopen(MW_QT_SONAME, RTLD_NOW | RTLD_NOLOAD);
    ASSERT_TRUE(qt);
    const auto setHook = reinterpret_cast<void (*)(void (*)(QWidget*, CDialog&, void*), void*)>(dlsym(qt, "MwQtSetShownHook"));
    ASSERT_TRUE(setHook);
    setHook([](QWidget* window, CDialog&, void*) { window->close(); }, nullptr);
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    EXPECT_EQ(IDCANCEL, ModalPrChooseDlg(nullptr, &r, nullptr));
    EXPECT_FALSE(QCoreApplication::instance());  // the loop's own one is gone
    setHook(nullptr, nullptr);
}
