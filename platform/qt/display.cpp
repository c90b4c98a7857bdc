// Whether a display can be opened, found out before a QApplication exists:
// Qt's platform plugin ends the whole process when it cannot connect, and a
// library must not take its host down for want of a screen.
#include <dlfcn.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QDir>
#include <QLibraryInfo>
#include <QStringList>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "window.h"

namespace mwqt {
namespace {

std::string Env(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

// A platform plugin file whose name starts with `prefix` ("libqxcb") where
// Qt looks for plugins.
bool PluginPresent(const QString& prefix) {
    QStringList dirs{QLibraryInfo::path(QLibraryInfo::PluginsPath) + QStringLiteral("/platforms")};
    for (const QString& dir : QString::fromStdString(Env("QT_PLUGIN_PATH")).split(u':', Qt::SkipEmptyParts))
        dirs << dir + QStringLiteral("/platforms");
    if (const std::string dir = Env("QT_QPA_PLATFORM_PLUGIN_PATH"); !dir.empty()) dirs << QString::fromStdString(dir);
    for (const QString& dir : dirs)
        if (!QDir(dir).entryList({prefix + u'*'}, QDir::Files).isEmpty()) return true;
    return false;
}

// The X server of DISPLAY accepts us. Through libxcb, as the xcb plugin
// connects, so that the address forms and the authorisation are the ones it
// will meet; without libxcb the plugin cannot run either.
bool XReachable() {
    if (Env("DISPLAY").empty()) return false;
    void* xcb = dlopen("libxcb.so.1", RTLD_NOW | RTLD_LOCAL);
    if (!xcb) return false;
    using Connect = void* (*)(const char*, int*);
    using HasError = int (*)(void*);
    using Disconnect = void (*)(void*);
    auto connect = reinterpret_cast<Connect>(dlsym(xcb, "xcb_connect"));
    auto hasError = reinterpret_cast<HasError>(dlsym(xcb, "xcb_connection_has_error"));
    auto disconnect = reinterpret_cast<Disconnect>(dlsym(xcb, "xcb_disconnect"));
    bool reachable = false;
    if (connect && hasError && disconnect) {
        void* connection = connect(nullptr, nullptr);
        reachable = connection && hasError(connection) == 0;
        if (connection) disconnect(connection);  // also frees a connection in error
    }
    dlclose(xcb);
    return reachable;
}

// The compositor's socket: WAYLAND_DISPLAY, a name in XDG_RUNTIME_DIR or a path.
bool WaylandReachable() {
    const std::string name = Env("WAYLAND_DISPLAY");
    if (name.empty()) return false;
    const std::string path = name[0] == '/' ? name : Env("XDG_RUNTIME_DIR") + "/" + name;
    sockaddr_un address{};
    if (path.size() >= sizeof address.sun_path || path[0] != '/') return false;
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) return false;
    const bool reachable = connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    close(fd);
    return reachable;
}

bool Usable(const std::string& entry) {
    // "offscreen:fontengine=freetype": the plugin's key is before the colon.
    const std::string key = entry.substr(0, entry.find(':'));
    if (key == "offscreen" || key == "minimal") return PluginPresent(QStringLiteral("libq") + QString::fromStdString(key));
    if (key == "xcb") return PluginPresent(QStringLiteral("libqxcb")) && XReachable();
    if (key.rfind("wayland", 0) == 0) return PluginPresent(QStringLiteral("libqwayland")) && WaylandReachable();
    return false;  // a plugin we cannot probe may abort: not worth the host
}

}  // namespace

std::string UsablePlatform() {
    // QT_QPA_PLATFORM names the plugins to try, in order, separated by ";".
    const std::string wanted = Env("QT_QPA_PLATFORM");
    if (!wanted.empty()) {
        for (size_t at = 0; at <= wanted.size();) {
            const size_t end = std::min(wanted.find(';', at), wanted.size());
            if (const std::string entry = wanted.substr(at, end - at); !entry.empty() && Usable(entry)) return entry;
            at = end + 1;
        }
        return "";
    }
    // Qt's own choice: Wayland in a Wayland session, else X.
    if (Env("XDG_SESSION_TYPE") == "wayland" && Usable("wayland")) return "wayland";
    if (Usable("xcb")) return "xcb";
    return "";
}

}  // namespace mwqt
