// Test support: temporary directories, whole-file helpers, a private
// environment for the application directory and the registry, and child
// processes for the tests of concurrent writers.
#ifndef MAPWRIGHT_TESTS_TESTENV_H
#define MAPWRIGHT_TESTS_TESTENV_H

#include <functional>
#include <string>

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

// The shipped catalogs of the source tree ("<data>/Auxiliary Data").
std::string ShippedCatalogDir();

// Points MAPWRIGHT_APPDIR at a private directory holding copies of the shipped
// catalogs (or an empty "Auxiliary Data" when `withCatalogs` is false) and
// MAPWRIGHT_REGISTRY at a private file; restores both variables afterwards.
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
    std::string m_appDir;
    std::string m_registry;
    std::string m_oldAppDir, m_oldRegistry;
    bool m_hadAppDir = false, m_hadRegistry = false;
};

// Runs `body` in `count` child processes at once (fork) and waits for all;
// true when every child exited with status 0. A child's status is the value
// `body` returns.
bool RunInChildren(int count, const std::function<int(int index)>& body);

}  // namespace mwtest

#endif
