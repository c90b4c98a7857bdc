#include <gtest/gtest.h>

#include <string>

#include <mapwright/winuser.h>

namespace {

std::string g_text, g_caption;
UINT g_type = 99;

int Capture(HWND, LPCSTR text, LPCSTR caption, UINT type) {
    g_text = text;
    g_caption = caption;
    g_type = type;
    return IDCANCEL;
}

TEST(MessageBox, AHookReceivesEveryBox) {
    MessageBoxHook old = SetMessageBoxHook(&Capture);
    EXPECT_EQ(IDCANCEL, MessageBoxA(nullptr, "text \xB0", " ", MB_OKCANCEL));
    EXPECT_EQ("text \xB0", g_text);
    EXPECT_EQ(" ", g_caption);
    EXPECT_EQ(MB_OKCANCEL, g_type);
    EXPECT_EQ(&Capture, SetMessageBoxHook(old));
}

TEST(MessageBox, WithoutAWindowItGoesToStandardErrorInUtf8) {
    MessageBoxHook old = SetMessageBoxHook(nullptr);
    testing::internal::CaptureStderr();
    int answer = MessageBoxA(nullptr, "\xCE\xF2\xEC\xE5\xED\xE0 10\xB0", "Mapwright", MB_OK);
    std::string err = testing::internal::GetCapturedStderr();
    SetMessageBoxHook(old);
    EXPECT_EQ(IDOK, answer);
    EXPECT_EQ("Mapwright: Отмена 10°\n", err);

    testing::internal::CaptureStderr();
    MessageBoxA(nullptr, nullptr, nullptr, MB_OK);  // null texts are empty texts
    EXPECT_EQ("\n", testing::internal::GetCapturedStderr());
}

}  // namespace
