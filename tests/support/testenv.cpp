#include "testenv.h"
#include <unistd.h>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

namespace mwtest {
TempDir::TempDir() {
    const char* base = std::getenv("TMPDIR");
    std::string pattern = std::string(base && *base ? base : "/tmp") + "/mwtest-XXXXXX";
    if (!mkdtemp(pattern.data())) std::abort();
    m_path = pattern;
}

TempDir::~TempDir() {
    std::error_code ec;
    fs::remove_all(m_path, ec);
}

void WriteFile(const std::string& path, const std::string& content) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << content;
}

std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

bool FileExists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

std::string ShippedCatalogDir() { return std::string(MAPWRIGHT_TEST_DATADIR) + "/Auxiliary Data"; }

IsolatedEnv::IsolatedEnv(bool withCatalogs) : m_appDir(m_dir.file("app")), m_registry(m_dir.file("reg.sqlite3")) {
    fs::create_directories(catalogDir());
    if (withCatalogs)
        for (const auto& e : fs::directory_iterator(ShippedCatalogDir()))
            fs::copy_file(e.path(), catalogDir() + "/" + e.path().filename().string());
    for (const char* v : {"MAPWRIGHT_APPDIR", "MAPWRIGHT_REGISTRY", "HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"}) {
        const char* value = std::getenv(v);
        m_saved.emplace_back(v, value ? strdup(value) : nullptr);
    }
    setenv("MAPWRIGHT_APPDIR", m_appDir.c_str(), 1);
    setenv("MAPWRIGHT_REGISTRY", m_registry.c_str(), 1);
}

IsolatedEnv::~IsolatedEnv() {
    for (auto& [name, value] : m_saved) {
        value ? setenv(name, value, 1) : unsetenv(name);
        std::free(const_cast<char*>(value));
    }
}
}  // namespace mwtest
