#ifndef MAPWRIGHT_TESTS_TESTENV_H
#define MAPWRIGHT_TESTS_TESTENV_H

#include <string>
#include <utility>
#include <vector>

namespace mwtest {
// A fresh directory under $TMPDIR, removed with everything in it.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const std::string& path() const { return m_path; }
    std::string file(const std::string& name) const { return m_path + "/" + name; }

private:
    std::string m_path;
};

void WriteFile(const std::string& path, const std::string& content);
std::string ReadFile(const std::string& path);
bool FileExists(const std::string& path);
std::string ShippedCatalogDir();  // "<data>/Auxiliary Data" of the source tree
// A CString's text with its length, embedded zeros and all.
template <class S> std::string Str(const S& s) { return std::string(s.GetString(), size_t(s.GetLength())); }

// Private MAPWRIGHT_APPDIR (with the shipped catalogs, or none) and MAPWRIGHT_REGISTRY; HOME, XDG_* restored.
class IsolatedEnv {
public:
    explicit IsolatedEnv(bool withCatalogs = true);
    ~IsolatedEnv();
    IsolatedEnv(const IsolatedEnv&) = delete;
    IsolatedEnv& operator=(const IsolatedEnv&) = delete;
    const std::string& appDir() const { return m_appDir; }
    std::string catalogDir() const { return m_appDir + "/Auxiliary Data"; }
    const std::string& registryFile() const { return m_registry; }

private:
    TempDir m_dir;
    std::string m_appDir, m_registry;
    std::vector<std::pair<const char*, const char*>> m_saved;  // name, strdup'ed value or null
};
}  // namespace mwtest

#endif
