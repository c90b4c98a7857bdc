// The profile (INI file) functions: a reader and a writer with the behaviour of
// the Windows ones. A read sees the file as it is now (another process may
// have rewritten it); a parsed file is reused only while it is provably
// unchanged. Every write rewrites the whole file through a temporary file and
// a rename, under a directory lock.
#include <mapwright/profile.h>

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <ctime>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "ansi_case.h"
#include "posix_file.h"

namespace {

using mw::Fd;
using mw::OpenRegular;
using mw::ReadAll;

constexpr size_t npos = std::string_view::npos;
constexpr std::string_view kLineEnd = "\r\n";  // what the Windows writer puts after a line

// ---------------------------------------------------------------- names and text

// The blanks removed around names and values: the C blanks except the line ends.
bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\v' || c == '\f'; }
bool IsLineEnd(char c) { return c == '\r' || c == '\n'; }

std::string_view Trim(std::string_view s) {
    size_t b = 0, e = s.size();
    while (b < e && IsBlank(s[b])) ++b;
    while (e > b && IsBlank(s[e - 1])) --e;
    return s.substr(b, e - b);
}

std::string_view TrimEnd(std::string_view s) {
    size_t e = s.size();
    while (e > 0 && IsBlank(s[e - 1])) --e;
    return s.substr(0, e);
}

// One matching pair of double or single quotes around a value is not part of it.
std::string_view Unquote(std::string_view v) {
    if (v.size() >= 2 && (v.front() == '"' || v.front() == '\'') && v.back() == v.front())
        return v.substr(1, v.size() - 2);
    return v;
}

// A C string cannot carry a NUL byte: text read from the file stops at one.
std::string_view UpToNul(std::string_view s) { return s.substr(0, s.find('\0')); }

constexpr const std::array<unsigned char, 256>& kFold = mw::kAnsiFold;

unsigned char Fold(char c) { return kFold[static_cast<unsigned char>(c)]; }

bool SameName(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (Fold(a[i]) != Fold(b[i])) return false;
    return true;
}

std::string Folded(std::string_view s) {
    std::string f(s.size(), '\0');
    for (size_t i = 0; i < s.size(); ++i) f[i] = static_cast<char>(Fold(s[i]));
    return f;
}

// ---------------------------------------------------------------- lines

enum class LineKind { Other, Section, Key };

// What one line of text says. Offsets are relative to the line's first byte.
struct LineMeaning {
    LineKind kind = LineKind::Other;
    std::string_view name;   // section or key name, blanks removed
    std::string_view value;  // key value, blanks and one pair of quotes removed
    size_t valueAt = 0;      // key: where the value's text starts (after "=" and blanks)
};

// There is no comment syntax: a line is a section header ("[" first, a "]"
// later; the name runs to the last "]"), a key (a non-empty name before the
// first "="), or neither.
LineMeaning Classify(std::string_view line) {
    LineMeaning m;
    size_t p = 0;
    while (p < line.size() && IsBlank(line[p])) ++p;
    if (p < line.size() && line[p] == '[') {
        size_t close = line.rfind(']');
        if (close != npos && close > p) {
            m.kind = LineKind::Section;
            m.name = Trim(line.substr(p + 1, close - p - 1));
            return m;
        }
    }
    size_t eq = line.find('=');
    if (eq == npos) return m;
    m.name = Trim(line.substr(0, eq));
    if (m.name.empty()) return m;
    size_t v = eq + 1;
    while (v < line.size() && IsBlank(line[v])) ++v;
    m.kind = LineKind::Key;
    m.valueAt = v;
    m.value = Unquote(Trim(line.substr(v)));
    return m;
}

struct Line {
    size_t begin;  // first byte
    size_t end;    // end of the text, where the line end starts
    size_t next;   // first byte of the next line (end of the file for the last)
    LineMeaning meaning;
    LineKind kind() const { return meaning.kind; }
};

// CR LF, LF and a lone CR all end a line.
std::vector<Line> SplitLines(std::string_view text) {
    std::vector<Line> lines;
    size_t pos = 0;
    while (pos < text.size()) {
        size_t end = pos;  // a plain loop: find_first_of calls memchr once per byte
        while (end < text.size() && !IsLineEnd(text[end])) ++end;
        size_t next = end;
        if (next < text.size()) next += (text[next] == '\r' && next + 1 < text.size() && text[next + 1] == '\n') ? 2 : 1;
        lines.push_back({pos, end, next, Classify(text.substr(pos, end - pos))});
        pos = next;
    }
    return lines;
}

// Index of the first section header named `name`, or lines.size().
size_t FindSection(const std::vector<Line>& lines, std::string_view name) {
    for (size_t i = 0; i < lines.size(); ++i)
        if (lines[i].kind() == LineKind::Section && SameName(lines[i].meaning.name, name)) return i;
    return lines.size();
}

// Index of the line that ends the section whose header is `header`.
size_t SectionEnd(const std::vector<Line>& lines, size_t header) {
    size_t i = header + 1;
    while (i < lines.size() && lines[i].kind() != LineKind::Section) ++i;
    return i;
}

// Index of the first key named `name` in lines [from, to), or `to`.
size_t FindKey(const std::vector<Line>& lines, size_t from, size_t to, std::string_view name) {
    for (size_t i = from; i < to; ++i)
        if (lines[i].kind() == LineKind::Key && SameName(lines[i].meaning.name, name)) return i;
    return to;
}

// ---------------------------------------------------------------- answers

DWORD CopyText(std::string_view v, LPSTR buffer, DWORD size) {
    size_t n = std::min<size_t>(v.size(), size - 1);
    std::memcpy(buffer, v.data(), n);
    buffer[n] = '\0';
    return static_cast<DWORD>(n);
}

// Names, each NUL-terminated, and a second NUL after the last. When they do
// not fit, the text is cut at size - 2 and two NULs follow (as Windows does);
// the count excludes the final NUL.
DWORD CopyList(const std::vector<std::string_view>& names, LPSTR buffer, DWORD size) {
    std::string all;
    for (std::string_view n : names) {
        all.append(n);
        all.push_back('\0');
    }
    if (size < 2) {
        buffer[0] = '\0';
        return 0;
    }
    if (all.size() + 1 <= size) {
        std::memcpy(buffer, all.data(), all.size());
        buffer[all.size()] = '\0';
        if (all.empty()) buffer[1] = '\0';
        return static_cast<DWORD>(all.size());
    }
    std::memcpy(buffer, all.data(), size - 2);
    buffer[size - 2] = '\0';
    buffer[size - 1] = '\0';
    return size - 2;
}

// Each name once, as first spelled: a later duplicate is never answered.
std::vector<std::string_view> DistinctNames(const std::vector<Line>& lines, size_t from, size_t to,
                                            LineKind kind) {
    std::vector<std::string_view> names;
    std::unordered_set<std::string> seen;
    for (size_t i = from; i < to; ++i) {
        if (lines[i].kind() != kind) continue;
        std::string_view n = UpToNul(lines[i].meaning.name);
        if (!n.empty() && seen.insert(Folded(n)).second) names.push_back(n);
    }
    return names;
}

// ---------------------------------------------------------------- files

// The file layer takes "\" as a separator too, so Windows-style paths work.
std::string NormalisePath(const char* file) {
    std::string p(file);
    std::replace(p.begin(), p.end(), '\\', '/');
    return p;
}

// A profile file read and split into lines (the lines view the text).
struct Parsed {
    std::string text;
    std::vector<Line> lines;
};

// What tells a file apart from its earlier contents: an atomic rewrite gives a
// new inode, an in-place one a new size or new times.
struct Identity {
    dev_t dev;
    ino_t ino;
    off_t size;
    timespec mtime, ctime;
    bool operator==(const Identity& o) const {
        return dev == o.dev && ino == o.ino && size == o.size && mtime.tv_sec == o.mtime.tv_sec &&
               mtime.tv_nsec == o.mtime.tv_nsec && ctime.tv_sec == o.ctime.tv_sec && ctime.tv_nsec == o.ctime.tv_nsec;
    }
};

// Setting up one conversion reads the catalogs thousands of times; parsing
// each time cost the tool a third of a second per run. A file changed within
// the last second is not kept: a second change inside the file system's
// timestamp granularity could leave its identity as it was.
std::mutex g_cacheLock;
std::map<std::string, std::pair<Identity, std::shared_ptr<const Parsed>>> g_cache;
constexpr size_t kCachedFiles = 16;

bool Settled(const timespec& t, const timespec& now) {
    return t.tv_sec + 1 < now.tv_sec || (t.tv_sec + 1 == now.tv_sec && t.tv_nsec < now.tv_nsec);
}

// The file parsed; null when it is missing, unreadable or not a regular file,
// which reads as a file with no sections.
std::shared_ptr<const Parsed> LoadForReading(const char* file) {
    if (!file) return nullptr;
    std::string path = NormalisePath(file);
    if (path.empty()) return nullptr;
    struct stat st;
    Fd fd(OpenRegular(AT_FDCWD, path.c_str(), st));
    if (!fd.ok()) return nullptr;
    const Identity id{st.st_dev, st.st_ino, st.st_size, st.st_mtim, st.st_ctim};
    {
        std::lock_guard<std::mutex> guard(g_cacheLock);
        auto hit = g_cache.find(path);
        if (hit != g_cache.end() && hit->second.first == id) return hit->second.second;
    }
    auto parsed = std::make_shared<Parsed>();
    if (!ReadAll(fd.get(), parsed->text)) return nullptr;
    parsed->lines = SplitLines(parsed->text);
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    if (Settled(st.st_mtim, now) && Settled(st.st_ctim, now)) {
        std::lock_guard<std::mutex> guard(g_cacheLock);
        if (g_cache.size() >= kCachedFiles) g_cache.clear();
        g_cache[path] = {id, parsed};
    }
    return parsed;
}

// ---------------------------------------------------------------- the edit

// A line we are about to write reads back as the line we meant: one line, of
// that kind, with that name.
bool ReadsBackAs(std::string_view line, LineKind kind, std::string_view name) {
    if (line.find_first_of("\r\n") != npos) return false;
    LineMeaning m = Classify(line);
    return m.kind == kind && m.name == name;
}

// A null key: every section of that name goes, header to next header.
void DeleteSection(std::string_view text, const std::vector<Line>& lines, std::string_view section,
                   std::string& out) {
    out.clear();
    size_t copied = 0;
    for (size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].kind() != LineKind::Section || !SameName(lines[i].meaning.name, section)) continue;
        out.append(text.substr(copied, lines[i].begin - copied));
        size_t end = SectionEnd(lines, i);
        copied = end < lines.size() ? lines[end].begin : text.size();
        i = end - 1;
    }
    out.append(text.substr(copied));
}

// A null value: the key (every line of it) goes from the section that answers.
void DeleteKey(std::string_view text, const std::vector<Line>& lines, std::string_view section,
               std::string_view key, std::string& out) {
    const size_t header = FindSection(lines, section);
    const bool haveSection = header < lines.size();
    const size_t sectionEnd = haveSection ? SectionEnd(lines, header) : lines.size();
    out.clear();
    size_t copied = 0;
    for (size_t i = haveSection ? header + 1 : sectionEnd; i < sectionEnd; ++i) {
        if (lines[i].kind() != LineKind::Key || !SameName(lines[i].meaning.name, key)) continue;
        out.append(text.substr(copied, lines[i].begin - copied));
        copied = lines[i].next;
    }
    out.append(text.substr(copied));
}

// A value: replaces the key's value in place, or adds the key after the
// section's last key, or appends the section with the key. False when the
// names or the value cannot be written as lines that read back as written (a
// line break, "=" in a key name, a key line that would read as a section
// header).
bool SetValue(std::string_view text, const std::vector<Line>& lines, std::string_view section,
              std::string_view key, std::string_view value, std::string& out) {
    const size_t header = FindSection(lines, section);
    if (header < lines.size()) {
        const size_t sectionEnd = SectionEnd(lines, header);
        size_t at = FindKey(lines, header + 1, sectionEnd, key);
        if (at < sectionEnd) {  // replace the value, keep the key's spelling and layout
            const Line& l = lines[at];
            std::string line(text.substr(l.begin, l.meaning.valueAt));
            line.append(value);
            if (!ReadsBackAs(line, LineKind::Key, l.meaning.name)) return false;
            out.assign(text.substr(0, l.begin));
            out.append(line);
            out.append(text.substr(l.end));
            return true;
        }
        std::string line(key);
        line.append("=").append(value);
        if (!ReadsBackAs(line, LineKind::Key, key)) return false;
        size_t after = header;  // the new key follows the section's last key
        for (size_t i = header + 1; i < sectionEnd; ++i)
            if (lines[i].kind() == LineKind::Key) after = i;
        const Line& prev = lines[after];
        out.assign(text.substr(0, prev.next));
        if (prev.next == prev.end) out.append(kLineEnd);  // the last line had no line end
        out.append(line).append(kLineEnd);
        out.append(text.substr(prev.next));
        return true;
    }

    std::string head = "[";
    head.append(section).append("]");
    std::string line(key);
    line.append("=").append(value);
    if (!ReadsBackAs(head, LineKind::Section, section) || !ReadsBackAs(line, LineKind::Key, key)) return false;
    out.assign(text);
    if (!out.empty() && !IsLineEnd(out.back())) out.append(kLineEnd);
    out.append(head).append(kLineEnd).append(line).append(kLineEnd);
    return true;
}

// Applies one write to `text`: as WritePrivateProfileStringA, a null key
// deletes the section, a null value the key, anything else sets the value.
bool Edit(std::string_view text, const char* sectionArg, const char* keyArg, const char* valueArg,
          std::string& out) {
    const std::vector<Line> lines = SplitLines(text);
    const std::string_view section = Trim(sectionArg);
    if (!keyArg) {
        DeleteSection(text, lines, section, out);
        return true;
    }
    const std::string_view key = Trim(keyArg);
    if (!valueArg) {
        DeleteKey(text, lines, section, key, out);
        return true;
    }
    return SetValue(text, lines, section, key, valueArg, out);
}

// ---------------------------------------------------------------- the write

BOOL WriteProfile(const char* section, const char* key, const char* value, const char* file) {
    if (!section || !file) return FALSE;
    std::string path = NormalisePath(file);
    if (path.empty() || path.back() == '/') return FALSE;

    // Writing through a symbolic link updates its target; the link stays.
    struct stat lst;
    if (::lstat(path.c_str(), &lst) == 0 && S_ISLNK(lst.st_mode)) {
        char* real = ::realpath(path.c_str(), nullptr);
        if (!real) return FALSE;  // a dangling link: refuse rather than replace it
        path = real;
        ::free(real);
    }
    const size_t slash = path.rfind('/');
    const std::string dir = slash == npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
    const std::string base = slash == npos ? path : path.substr(slash + 1);

    Fd dirfd(::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!dirfd.ok()) return FALSE;
    mw::DirectoryLock lock;
    if (!lock.acquire(dirfd.get())) return FALSE;
    mw::RemoveStaleTemporaries(dirfd.get(), base);

    std::string text;
    struct stat st;
    Fd in(OpenRegular(dirfd.get(), base.c_str(), st));
    const bool exists = in.ok();
    if (!exists && errno != ENOENT) return FALSE;  // a directory, unreadable, ...
    if (exists && !ReadAll(in.get(), text)) return FALSE;
    in.reset();

    std::string updated;
    if (!Edit(text, section, key, value, updated)) return FALSE;
    if (updated == text) return TRUE;  // nothing to change (a delete of what is not there)
    // The rename needs only the directory's permission; a file without write
    // permission must still refuse the write, as it does on Windows.
    if (exists && ::faccessat(dirfd.get(), base.c_str(), W_OK, AT_EACCESS) != 0) return FALSE;
    return mw::PublishAtomically(dirfd.get(), base, updated, exists ? &st : nullptr) ? TRUE : FALSE;
}

}  // namespace

extern "C" {

DWORD GetPrivateProfileStringA(LPCSTR section, LPCSTR key, LPCSTR defaultText, LPSTR buffer, DWORD size,
                               LPCSTR file) {
    if (!buffer || size == 0) return 0;
    try {
        static const std::vector<Line> kNoLines;
        const std::shared_ptr<const Parsed> parsed = LoadForReading(file);
        const std::vector<Line>& lines = parsed ? parsed->lines : kNoLines;
        if (!section) return CopyList(DistinctNames(lines, 0, lines.size(), LineKind::Section), buffer, size);
        const size_t header = FindSection(lines, Trim(section));
        const bool haveSection = header < lines.size();
        const size_t end = haveSection ? SectionEnd(lines, header) : lines.size();
        if (!key) return CopyList(DistinctNames(lines, haveSection ? header + 1 : end, end, LineKind::Key), buffer, size);
        if (haveSection) {
            size_t at = FindKey(lines, header + 1, end, Trim(key));
            if (at < end) return CopyText(UpToNul(lines[at].meaning.value), buffer, size);
        }
        return CopyText(TrimEnd(defaultText ? defaultText : ""), buffer, size);
    } catch (...) {  // out of memory on a huge file: answer as for a missing one
        if (!key || !section) {
            buffer[0] = '\0';
            if (size > 1) buffer[1] = '\0';
            return 0;
        }
        return CopyText(TrimEnd(defaultText ? defaultText : ""), buffer, size);
    }
}

BOOL WritePrivateProfileStringA(LPCSTR section, LPCSTR key, LPCSTR value, LPCSTR file) {
    try {
        return WriteProfile(section, key, value, file);
    } catch (...) {  // out of memory: nothing was published
        return FALSE;
    }
}

}  // extern "C"
