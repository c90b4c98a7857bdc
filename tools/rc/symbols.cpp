#include "symbols.h"

#include <algorithm>
#include <cctype>

namespace rc {

namespace {

// Values as the Windows SDK defines them.
const BuiltinSymbol kSymbols[] = {
    // What the resource compiler itself defines.
    {"RC_INVOKED", 1},
    {"_WIN32", 1},

    // Window styles.
    {"WS_OVERLAPPED", 0x00000000},
    {"WS_TILED", 0x00000000},
    {"WS_POPUP", 0x80000000},
    {"WS_CHILD", 0x40000000},
    {"WS_CHILDWINDOW", 0x40000000},
    {"WS_MINIMIZE", 0x20000000},
    {"WS_ICONIC", 0x20000000},
    {"WS_VISIBLE", 0x10000000},
    {"WS_DISABLED", 0x08000000},
    {"WS_CLIPSIBLINGS", 0x04000000},
    {"WS_CLIPCHILDREN", 0x02000000},
    {"WS_MAXIMIZE", 0x01000000},
    {"WS_CAPTION", 0x00C00000},
    {"WS_BORDER", 0x00800000},
    {"WS_DLGFRAME", 0x00400000},
    {"WS_VSCROLL", 0x00200000},
    {"WS_HSCROLL", 0x00100000},
    {"WS_SYSMENU", 0x00080000},
    {"WS_THICKFRAME", 0x00040000},
    {"WS_SIZEBOX", 0x00040000},
    {"WS_GROUP", 0x00020000},
    {"WS_TABSTOP", 0x00010000},
    {"WS_MINIMIZEBOX", 0x00020000},
    {"WS_MAXIMIZEBOX", 0x00010000},
    {"WS_OVERLAPPEDWINDOW", 0x00CF0000},
    {"WS_TILEDWINDOW", 0x00CF0000},
    {"WS_POPUPWINDOW", 0x80880000},

    // Extended window styles.
    {"WS_EX_DLGMODALFRAME", 0x00000001},
    {"WS_EX_NOPARENTNOTIFY", 0x00000004},
    {"WS_EX_TOPMOST", 0x00000008},
    {"WS_EX_ACCEPTFILES", 0x00000010},
    {"WS_EX_TRANSPARENT", 0x00000020},
    {"WS_EX_MDICHILD", 0x00000040},
    {"WS_EX_TOOLWINDOW", 0x00000080},
    {"WS_EX_WINDOWEDGE", 0x00000100},
    {"WS_EX_CLIENTEDGE", 0x00000200},
    {"WS_EX_CONTEXTHELP", 0x00000400},
    {"WS_EX_RIGHT", 0x00001000},
    {"WS_EX_LEFT", 0x00000000},
    {"WS_EX_RTLREADING", 0x00002000},
    {"WS_EX_LTRREADING", 0x00000000},
    {"WS_EX_LEFTSCROLLBAR", 0x00004000},
    {"WS_EX_RIGHTSCROLLBAR", 0x00000000},
    {"WS_EX_CONTROLPARENT", 0x00010000},
    {"WS_EX_STATICEDGE", 0x00020000},
    {"WS_EX_APPWINDOW", 0x00040000},

    // Dialog styles.
    {"DS_ABSALIGN", 0x0001},
    {"DS_SYSMODAL", 0x0002},
    {"DS_3DLOOK", 0x0004},
    {"DS_FIXEDSYS", 0x0008},
    {"DS_NOFAILCREATE", 0x0010},
    {"DS_LOCALEDIT", 0x0020},
    {"DS_SETFONT", 0x0040},
    {"DS_MODALFRAME", 0x0080},
    {"DS_NOIDLEMSG", 0x0100},
    {"DS_SETFOREGROUND", 0x0200},
    {"DS_CONTROL", 0x0400},
    {"DS_CENTER", 0x0800},
    {"DS_CENTERMOUSE", 0x1000},
    {"DS_CONTEXTHELP", 0x2000},
    {"DS_SHELLFONT", 0x0048},

    // Edit controls.
    {"ES_LEFT", 0x0000},
    {"ES_CENTER", 0x0001},
    {"ES_RIGHT", 0x0002},
    {"ES_MULTILINE", 0x0004},
    {"ES_UPPERCASE", 0x0008},
    {"ES_LOWERCASE", 0x0010},
    {"ES_PASSWORD", 0x0020},
    {"ES_AUTOVSCROLL", 0x0040},
    {"ES_AUTOHSCROLL", 0x0080},
    {"ES_NOHIDESEL", 0x0100},
    {"ES_OEMCONVERT", 0x0400},
    {"ES_READONLY", 0x0800},
    {"ES_WANTRETURN", 0x1000},
    {"ES_NUMBER", 0x2000},

    // Buttons.
    {"BS_PUSHBUTTON", 0x0000},
    {"BS_DEFPUSHBUTTON", 0x0001},
    {"BS_CHECKBOX", 0x0002},
    {"BS_AUTOCHECKBOX", 0x0003},
    {"BS_RADIOBUTTON", 0x0004},
    {"BS_3STATE", 0x0005},
    {"BS_AUTO3STATE", 0x0006},
    {"BS_GROUPBOX", 0x0007},
    {"BS_USERBUTTON", 0x0008},
    {"BS_AUTORADIOBUTTON", 0x0009},
    {"BS_PUSHBOX", 0x000A},
    {"BS_OWNERDRAW", 0x000B},
    {"BS_TYPEMASK", 0x000F},
    {"BS_LEFTTEXT", 0x0020},
    {"BS_RIGHTBUTTON", 0x0020},
    {"BS_TEXT", 0x0000},
    {"BS_ICON", 0x0040},
    {"BS_BITMAP", 0x0080},
    {"BS_LEFT", 0x0100},
    {"BS_RIGHT", 0x0200},
    {"BS_CENTER", 0x0300},
    {"BS_TOP", 0x0400},
    {"BS_BOTTOM", 0x0800},
    {"BS_VCENTER", 0x0C00},
    {"BS_PUSHLIKE", 0x1000},
    {"BS_MULTILINE", 0x2000},
    {"BS_NOTIFY", 0x4000},
    {"BS_FLAT", 0x8000},

    // Static controls.
    {"SS_LEFT", 0x0000},
    {"SS_CENTER", 0x0001},
    {"SS_RIGHT", 0x0002},
    {"SS_ICON", 0x0003},
    {"SS_BLACKRECT", 0x0004},
    {"SS_GRAYRECT", 0x0005},
    {"SS_WHITERECT", 0x0006},
    {"SS_BLACKFRAME", 0x0007},
    {"SS_GRAYFRAME", 0x0008},
    {"SS_WHITEFRAME", 0x0009},
    {"SS_SIMPLE", 0x000B},
    {"SS_LEFTNOWORDWRAP", 0x000C},
    {"SS_OWNERDRAW", 0x000D},
    {"SS_BITMAP", 0x000E},
    {"SS_ETCHEDHORZ", 0x0010},
    {"SS_ETCHEDVERT", 0x0011},
    {"SS_ETCHEDFRAME", 0x0012},
    {"SS_NOPREFIX", 0x0080},
    {"SS_NOTIFY", 0x0100},
    {"SS_CENTERIMAGE", 0x0200},
    {"SS_RIGHTJUST", 0x0400},
    {"SS_SUNKEN", 0x1000},
    {"SS_ENDELLIPSIS", 0x4000},
    {"SS_PATHELLIPSIS", 0x8000},
    {"SS_WORDELLIPSIS", 0xC000},

    // Combo boxes.
    {"CBS_SIMPLE", 0x0001},
    {"CBS_DROPDOWN", 0x0002},
    {"CBS_DROPDOWNLIST", 0x0003},
    {"CBS_OWNERDRAWFIXED", 0x0010},
    {"CBS_OWNERDRAWVARIABLE", 0x0020},
    {"CBS_AUTOHSCROLL", 0x0040},
    {"CBS_OEMCONVERT", 0x0080},
    {"CBS_SORT", 0x0100},
    {"CBS_HASSTRINGS", 0x0200},
    {"CBS_NOINTEGRALHEIGHT", 0x0400},
    {"CBS_DISABLENOSCROLL", 0x0800},
    {"CBS_UPPERCASE", 0x2000},
    {"CBS_LOWERCASE", 0x4000},

    // List boxes and scroll bars.
    {"LBS_NOTIFY", 0x0001},
    {"LBS_SORT", 0x0002},
    {"LBS_NOREDRAW", 0x0004},
    {"LBS_MULTIPLESEL", 0x0008},
    {"LBS_OWNERDRAWFIXED", 0x0010},
    {"LBS_OWNERDRAWVARIABLE", 0x0020},
    {"LBS_HASSTRINGS", 0x0040},
    {"LBS_USETABSTOPS", 0x0080},
    {"LBS_NOINTEGRALHEIGHT", 0x0100},
    {"LBS_MULTICOLUMN", 0x0200},
    {"LBS_WANTKEYBOARDINPUT", 0x0400},
    {"LBS_EXTENDEDSEL", 0x0800},
    {"LBS_DISABLENOSCROLL", 0x1000},
    {"LBS_NODATA", 0x2000},
    {"LBS_NOSEL", 0x4000},
    {"LBS_STANDARD", 0x00A00003},
    {"SBS_HORZ", 0x0000},
    {"SBS_VERT", 0x0001},

    // Dialog box command ids.
    {"IDOK", 1},
    {"IDCANCEL", 2},
    {"IDABORT", 3},
    {"IDRETRY", 4},
    {"IDIGNORE", 5},
    {"IDYES", 6},
    {"IDNO", 7},
    {"IDCLOSE", 8},
    {"IDHELP", 9},
    {"IDC_STATIC", -1},

    // Languages: MAKELANGID(primary, sub) is sub << 10 | primary.
    {"LANG_NEUTRAL", 0x00},
    {"LANG_ENGLISH", 0x09},
    {"LANG_RUSSIAN", 0x19},
    {"SUBLANG_NEUTRAL", 0x00},
    {"SUBLANG_DEFAULT", 0x01},
    {"SUBLANG_SYS_DEFAULT", 0x02},
    {"SUBLANG_ENGLISH_US", 0x01},
    {"SUBLANG_ENGLISH_UK", 0x02},
    {"SUBLANG_RUSSIAN_RUSSIA", 0x01},

    // Version resources.
    {"VS_VERSION_INFO", 1},
    {"VS_FFI_FILEFLAGSMASK", 0x0000003F},
    {"VS_FF_DEBUG", 0x00000001},
    {"VS_FF_PRERELEASE", 0x00000002},
    {"VS_FF_PATCHED", 0x00000004},
    {"VS_FF_PRIVATEBUILD", 0x00000008},
    {"VS_FF_INFOINFERRED", 0x00000010},
    {"VS_FF_SPECIALBUILD", 0x00000020},
    {"VOS_UNKNOWN", 0x00000000},
    {"VOS_DOS", 0x00010000},
    {"VOS_NT", 0x00040000},
    {"VOS__WINDOWS32", 0x00000004},
    {"VOS_NT_WINDOWS32", 0x00040004},
    {"VFT_UNKNOWN", 0x00000000},
    {"VFT_APP", 0x00000001},
    {"VFT_DLL", 0x00000002},
    {"VFT_DRV", 0x00000003},
    {"VFT_FONT", 0x00000004},
    {"VFT_VXD", 0x00000005},
    {"VFT_STATIC_LIB", 0x00000007},
    {"VFT2_UNKNOWN", 0x00000000},

    // Resource types and the ids of manifests.
    {"RT_RCDATA", 10},
    {"RT_MANIFEST", 24},
    {"CREATEPROCESS_MANIFEST_RESOURCE_ID", 1},
    {"ISOLATIONAWARE_MANIFEST_RESOURCE_ID", 2},
    {"ISOLATIONAWARE_NOSTATICIMPORT_MANIFEST_RESOURCE_ID", 3},
};

const char* const kSystemHeaders[] = {
    "windows.h", "winres.h",  "winresrc.h", "afxres.h", "winuser.h", "winuser.rh", "commctrl.h",
    "winver.h",  "verrsrc.h", "winnt.h",    "winnt.rh", "dlgs.h",    "ntverp.h",
};

}  // namespace

const BuiltinSymbol* BuiltinSymbols(size_t& count) {
    count = sizeof kSymbols / sizeof kSymbols[0];
    return kSymbols;
}

bool IsSystemHeader(const std::string& name) {
    std::string base = name.substr(name.find_last_of("/\\") == std::string::npos ? 0 : name.find_last_of("/\\") + 1);
    std::transform(base.begin(), base.end(), base.begin(), [](unsigned char c) { return std::tolower(c); });
    return std::any_of(std::begin(kSystemHeaders), std::end(kSystemHeaders),
                       [&](const char* h) { return base == h; });
}

}  // namespace rc
