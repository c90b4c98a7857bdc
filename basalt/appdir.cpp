#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <mutex>
#include <string>
#include <system_error>

#include <mapwright/basalt.h>

#include "platform/posix_file.h"

namespace fs = std::filesystem;

namespace {

std::mutex g_lock;
std::string g_hostAppDir;
std::string g_hostRegKey;

const char kCatalogFolder[] = "Auxiliary Data";

// With no home directory at all, the catalogs still get a place.
std::string HomeDirectory() {
    std::string home = mw::HomeDirectory();
    return home.empty() ? "/tmp" : home;
}

std::string DefaultAppDir() {
    const char* xdg = std::getenv("XDG_DATA_HOME");
    // XDG says a relative value is to be ignored.
    std::string base = (xdg && xdg[0] == '/') ? std::string(xdg) : HomeDirectory() + "/.local/share";
    return base + "/mapwright";
}

// The shipped catalogs: beside an installed libbasalt (prefix/lib[/arch] ->
// prefix/share/mapwright), at the configured install prefix, or in the source
// tree when running from a build tree.
std::string ShippedCatalogDir() {
    std::error_code ec;
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&ShippedCatalogDir), &info) && info.dli_fname) {
        fs::path lib = fs::absolute(info.dli_fname, ec).parent_path();
        for (const fs::path& prefix : {lib.parent_path(), lib.parent_path().parent_path()}) {
            fs::path candidate = prefix / MAPWRIGHT_RELATIVE_DATADIR / kCatalogFolder;
            if (fs::is_directory(candidate, ec)) return candidate.string();
        }
    }
    for (const char* dir : {MAPWRIGHT_INSTALL_DATADIR, MAPWRIGHT_SOURCE_DATADIR}) {
        fs::path candidate = fs::path(dir) / kCatalogFolder;
        if (fs::is_directory(candidate, ec)) return candidate.string();
    }
    return {};
}

// Copies the shipped catalogs into `appDir`/Auxiliary Data when that folder is
// missing. The copy is made aside and renamed into place, so a process that
// starts at the same moment sees either no folder or a whole one.
void SeedAppDir(const std::string& appDir) {
    std::error_code ec;
    fs::path target = fs::path(appDir) / kCatalogFolder;
    if (fs::exists(target, ec)) return;
    std::string shipped = ShippedCatalogDir();
    if (shipped.empty()) return;
    fs::create_directories(appDir, ec);
    if (ec) return;
    fs::path staging = fs::path(appDir) / (".seed-" + std::to_string(getpid()));
    fs::remove_all(staging, ec);
    fs::create_directory(staging, ec);
    if (ec) return;
    fs::copy(shipped, staging, fs::copy_options::recursive, ec);
    if (!ec) fs::rename(staging, target, ec);
    if (ec) fs::remove_all(staging, ec);
}

std::string StripTrailingSeparators(std::string dir) {
    while (dir.size() > 1 && (dir.back() == '/' || dir.back() == '\\')) dir.pop_back();
    return dir;
}

}  // namespace

int GetAppDir(int size, char* buffer) {
    std::string dir;
    {
        std::lock_guard<std::mutex> lock(g_lock);
        dir = g_hostAppDir;
    }
    if (dir.empty()) {
        if (const char* env = std::getenv("MAPWRIGHT_APPDIR"); env && *env) {
            dir = env;
        } else {
            dir = DefaultAppDir();
            SeedAppDir(dir);
        }
    }
    dir = StripTrailingSeparators(dir);
    if (!buffer || size <= 0) return 0;
    if (dir.size() >= static_cast<size_t>(size)) {
        buffer[0] = '\0';
        return 0;
    }
    std::memcpy(buffer, dir.c_str(), dir.size() + 1);
    return static_cast<int>(dir.size());
}

void SetAppDir(const char* directory) {
    std::lock_guard<std::mutex> lock(g_lock);
    g_hostAppDir = directory ? directory : "";
}

CString AppRegKey() {
    std::lock_guard<std::mutex> lock(g_lock);
    return CString(g_hostRegKey.empty() ? "Software\\Mapwright" : g_hostRegKey.c_str());
}

void SetAppRegKey(const char* key) {
    std::lock_guard<std::mutex> lock(g_lock);
    g_hostRegKey = key ? key : "";
}
