// The module entry: loading the library ran DllMain with process attach;
// calling it again drives the same steps a Windows loader would.
#include <gtest/gtest.h>

#include <string>

#include <mapwright/afxstr.h>
#include <mapwright/basalt.h>
#include <mapwright/module.h>
#include <mapwright/resources.h>

namespace {

// What loading the module makes visible to a host.
struct Observed {
    HMODULE handle;
    BOOL chainFound;
    std::string chainText;
    std::string basaltText;
    const MwDialogTemplate* dialog;

    bool operator==(const Observed& o) const {
        return handle == o.handle && chainFound == o.chainFound && chainText == o.chainText &&
               basaltText == o.basaltText && dialog == o.dialog;
    }
};

Observed Observe() {
    Observed o{};
    o.handle = GetModuleHandleA("Mapwright.dll");
    CString text;
    o.chainFound = text.LoadString(832);
    o.chainText = text.GetString();
    o.basaltText = GetResourceString(838).GetString();
    o.dialog = MwFindDialogTemplate(o.handle, 817);
    return o;
}

class ModuleEntry : public ::testing::Test {
protected:
    void SetUp() override { SetThreadUILanguage(LANG_ENGLISH_US); }
    void TearDown() override { SetThreadUILanguage(0); }
};

TEST_F(ModuleEntry, LoadingRegisteredTheModule) {
    const Observed o = Observe();
    EXPECT_NE(nullptr, o.handle);
    EXPECT_TRUE(o.chainFound);
    EXPECT_EQ("Geographic", o.chainText);
    EXPECT_EQ("Decart coordinate system", o.basaltText);
    EXPECT_NE(nullptr, o.dialog);
}

TEST_F(ModuleEntry, ThreadAttachAndDetachReturnOneAndChangeNothing) {
    const Observed before = Observe();
    const HINSTANCE instances[] = {before.handle, nullptr};
    for (HINSTANCE instance : instances) {
        for (DWORD reason : {DWORD{DLL_THREAD_ATTACH}, DWORD{DLL_THREAD_DETACH}, DWORD{DLL_THREAD_ATTACH}}) {
            EXPECT_EQ(1, DllMain(instance, reason, nullptr)) << reason;
            EXPECT_TRUE(before == Observe()) << "after reason " << reason;
        }
    }
}

TEST_F(ModuleEntry, ProcessDetachLeavesTheChainAndAttachJoinsIt) {
    HMODULE module = GetModuleHandleA("Mapwright.dll");
    ASSERT_NE(nullptr, module);

    EXPECT_EQ(1, DllMain(module, DLL_PROCESS_DETACH, nullptr));
    CString text("kept");
    EXPECT_FALSE(text.LoadString(832));  // out of the resource chain
    // Basalt keeps the name (there is no counterpart to AddModule) and the
    // module's resources stay mapped until the library unloads.
    EXPECT_EQ(std::string("Decart coordinate system"), GetResourceString(838).GetString());

    EXPECT_EQ(1, DllMain(module, DLL_PROCESS_ATTACH, nullptr));
    EXPECT_TRUE(text.LoadString(832));
    EXPECT_EQ(std::string("Geographic"), text.GetString());
}

TEST_F(ModuleEntry, AttachWithoutAnInstanceIsRefusedAndHarmsNothing) {
    const Observed before = Observe();
    EXPECT_EQ(0, DllMain(nullptr, DLL_PROCESS_ATTACH, nullptr));
    EXPECT_TRUE(before == Observe());
}

}  // namespace
