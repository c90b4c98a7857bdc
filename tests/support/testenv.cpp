#include "testenv.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace fs = std::filesystem;

namespace mwtest {

TempDir::TempDir() {
    const char* base = std::getenv("TMPDIR");
    std::string pattern = std::string(base && *base ? base : "/tmp") + "/mwtest-XXXXXX";
    std::vector<char> buf(pattern.begin(), pattern.end());
    buf.push_back('\0');
    if (!mkdtemp(buf.data())) throw std::runtime_error("mkdtemp failed");
    m_path = buf.data();
}

TempDir::~TempDir() {
    std::error_code ec;
    // Tests make files read-only; give the owner rights back so removal works.
    for (auto it = fs::recursive_directory_iterator(m_path, ec); !ec && it != fs::end(it);
         it.increment(ec)) {
        fs::permissions(it->path(), fs::perms::owner_all, fs::perm_options::add, ec);
    }
    fs::permissions(m_path, fs::perms::owner_all, fs::perm_options::add, ec);
    fs::remove_all(m_path, ec);
}

void WriteFile(const std::string& path, const std::string& content) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out) throw std::runtime_error("cannot write " + path);
    out << content;
}

std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return {};
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

bool FileExists(const std::string& path) {
    std::error_code ec;
    return fs::exists(path, ec);
}

std::string ShippedCatalogDir() { return std::string(MAPWRIGHT_TEST_DATADIR) + "/Auxiliary Data"; }

namespace {
void SaveVar(const char* name, std::string& value, bool& had) {
    const char* v = std::getenv(name);
    had = v != nullptr;
    if (v) value = v;
}
void RestoreVar(const char* name, const std::string& value, bool had) {
    if (had)
        setenv(name, value.c_str(), 1);
    else
        unsetenv(name);
}
}  // namespace

IsolatedEnv::IsolatedEnv(bool withCatalogs) {
    m_appDir = m_dir.file("app");
    m_registry = m_dir.file("registry.sqlite3");
    fs::create_directories(m_appDir + "/Auxiliary Data");
    if (withCatalogs) {
        for (const auto& entry : fs::directory_iterator(ShippedCatalogDir()))
            fs::copy_file(entry.path(), m_appDir + "/Auxiliary Data/" + entry.path().filename().string());
    }
    SaveVar("MAPWRIGHT_APPDIR", m_oldAppDir, m_hadAppDir);
    SaveVar("MAPWRIGHT_REGISTRY", m_oldRegistry, m_hadRegistry);
    setenv("MAPWRIGHT_APPDIR", m_appDir.c_str(), 1);
    setenv("MAPWRIGHT_REGISTRY", m_registry.c_str(), 1);
}

IsolatedEnv::~IsolatedEnv() {
    RestoreVar("MAPWRIGHT_APPDIR", m_oldAppDir, m_hadAppDir);
    RestoreVar("MAPWRIGHT_REGISTRY", m_oldRegistry, m_hadRegistry);
}

bool RunInChildren(int count, const std::function<int(int index)>& body) {
    std::vector<pid_t> children;
    for (int i = 0; i < count; ++i) {
        pid_t pid = fork();
        if (pid < 0) return false;
        if (pid == 0) {
            int status = 1;
            try {
                status = body(i);
            } catch (...) {
                status = 2;
            }
            _exit(status);
        }
        children.push_back(pid);
    }
    bool ok = true;
    for (pid_t pid : children) {
        int status = 0;
        if (waitpid(pid, &status, 0) != pid || !WIFEXITED(status) || WEXITSTATUS(status) != 0) ok = false;
    }
    return ok;
}

}  // namespace mwtest
