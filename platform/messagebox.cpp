#include <mapwright/winuser.h>

#include <atomic>
#include <cstdio>
#include <string>

#include <mapwright/codepage.h>

namespace {
std::atomic<MessageBoxHook> g_hook{nullptr};
}

extern "C" {

int MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT type) {
    if (MessageBoxHook hook = g_hook.load()) return hook(owner, text, caption, type);
    // No window to show it in: standard error, and the answer a user who only
    // reads would give (the first button).
    std::string line = AnsiToUtf8(caption ? caption : "");
    if (!line.empty() && line != " ") line += ": ";
    else line.clear();
    line += AnsiToUtf8(text ? text : "");
    std::fprintf(stderr, "%s\n", line.c_str());
    std::fflush(stderr);
    return (type & 0xFu) == MB_YESNO ? IDYES : IDOK;
}

MessageBoxHook SetMessageBoxHook(MessageBoxHook hook) { return g_hook.exchange(hook); }
}
