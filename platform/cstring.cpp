#include <mapwright/afxstr.h>

#include <locale.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include <mapwright/afxext.h>
#include <mapwright/resources.h>

#include "resource_chain.h"

namespace {

char FoldAscii(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }
char UpperAscii(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c; }
bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f'; }

// Numbers are written with the C locale's decimal point whatever locale the
// host process chose (a toolkit may set a decimal comma), because the texts
// we format are stored in catalogs and the registry and read back elsewhere.
locale_t CLocale() {
    static const locale_t c = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    return c;
}

class CLocaleScope {
public:
    CLocaleScope() : m_old(CLocale() ? uselocale(CLocale()) : static_cast<locale_t>(nullptr)) {}
    ~CLocaleScope() {
        if (m_old) uselocale(m_old);
    }
    CLocaleScope(const CLocaleScope&) = delete;
    CLocaleScope& operator=(const CLocaleScope&) = delete;

private:
    locale_t m_old;
};

void AppendV(std::string& out, const char* format, va_list args) {
    if (!format) return;
    CLocaleScope cLocale;
    char small[256];
    va_list copy;
    va_copy(copy, args);
    int needed = std::vsnprintf(small, sizeof small, format, copy);
    va_end(copy);
    if (needed < 0) return;
    if (static_cast<size_t>(needed) < sizeof small) {
        out.append(small, static_cast<size_t>(needed));
        return;
    }
    size_t old = out.size();
    out.resize(old + static_cast<size_t>(needed) + 1);
    std::vsnprintf(&out[old], static_cast<size_t>(needed) + 1, format, args);
    out.resize(old + static_cast<size_t>(needed));
}

}  // namespace

CString::CString(const char* text) : m_text(text ? text : "") {}

CString::CString(const char* text, int length) {
    if (text && length > 0) m_text.assign(text, strnlen(text, static_cast<size_t>(length)));
}

CString::CString(char ch, int repeat) {
    if (repeat > 0) m_text.assign(static_cast<size_t>(repeat), ch);
}

CString& CString::operator=(const char* text) {
    m_text = text ? text : "";
    return *this;
}

CString& CString::operator=(char ch) {
    m_text.assign(1, ch);
    return *this;
}

char CString::GetAt(int index) const {
    return (index >= 0 && index < GetLength()) ? m_text[static_cast<size_t>(index)] : '\0';
}

void CString::SetAt(int index, char ch) {
    if (index >= 0 && index < GetLength()) m_text[static_cast<size_t>(index)] = ch;
}

CString& CString::operator+=(const CString& text) {
    m_text += text.m_text;
    return *this;
}

CString& CString::operator+=(const char* text) {
    if (text) m_text += text;
    return *this;
}

CString& CString::operator+=(char ch) {
    m_text += ch;
    return *this;
}

CString operator+(const CString& left, const CString& right) {
    CString r(left);
    r += right;
    return r;
}

CString operator+(const CString& left, const char* right) {
    CString r(left);
    r += right;
    return r;
}

CString operator+(const char* left, const CString& right) {
    CString r(left);
    r += right;
    return r;
}

int CString::Compare(const char* text) const {
    return std::strcmp(m_text.c_str(), text ? text : "");
}

int CString::CompareNoCase(const char* text) const {
    const char* a = m_text.c_str();
    const char* b = text ? text : "";
    for (;; ++a, ++b) {
        unsigned char ca = static_cast<unsigned char>(FoldAscii(*a));
        unsigned char cb = static_cast<unsigned char>(FoldAscii(*b));
        if (ca != cb) return ca < cb ? -1 : 1;
        if (!ca) return 0;
    }
}

void CString::Format(const char* format, ...) {
    std::string out;
    va_list args;
    va_start(args, format);
    AppendV(out, format, args);
    va_end(args);
    m_text.swap(out);
}

void CString::AppendFormat(const char* format, ...) {
    va_list args;
    va_start(args, format);
    AppendV(m_text, format, args);
    va_end(args);
}

BOOL CString::LoadString(UINT id) {
    std::string text;
    if (!mw::LoadFromResourceChain(id, text)) return FALSE;
    m_text.swap(text);
    return TRUE;
}

CString CString::Left(int count) const {
    CString r;
    if (count > 0) r.m_text = m_text.substr(0, static_cast<size_t>(count));
    return r;
}

CString CString::Right(int count) const {
    CString r;
    if (count <= 0) return r;
    size_t n = static_cast<size_t>(count) < m_text.size() ? static_cast<size_t>(count) : m_text.size();
    r.m_text = m_text.substr(m_text.size() - n);
    return r;
}

CString CString::Mid(int first) const { return Mid(first, GetLength()); }

CString CString::Mid(int first, int count) const {
    CString r;
    if (first < 0) first = 0;
    if (count > 0 && first < GetLength())
        r.m_text = m_text.substr(static_cast<size_t>(first), static_cast<size_t>(count));
    return r;
}

int CString::Find(char ch, int start) const {
    if (start < 0 || start >= GetLength()) return -1;
    size_t pos = m_text.find(ch, static_cast<size_t>(start));
    return pos == std::string::npos ? -1 : static_cast<int>(pos);
}

int CString::Find(const char* text, int start) const {
    if (!text || start < 0 || start > GetLength()) return -1;
    size_t pos = m_text.find(text, static_cast<size_t>(start));
    return pos == std::string::npos ? -1 : static_cast<int>(pos);
}

CString& CString::TrimLeft() {
    size_t i = 0;
    while (i < m_text.size() && IsBlank(m_text[i])) ++i;
    m_text.erase(0, i);
    return *this;
}

CString& CString::TrimRight() {
    while (!m_text.empty() && IsBlank(m_text.back())) m_text.pop_back();
    return *this;
}

CString& CString::Trim() { return TrimRight().TrimLeft(); }

CString& CString::MakeUpper() {
    for (char& c : m_text) c = UpperAscii(c);
    return *this;
}

CString& CString::MakeLower() {
    for (char& c : m_text) c = FoldAscii(c);
    return *this;
}

char* CString::GetBuffer(int minLength) {
    if (minLength > GetLength()) m_text.resize(static_cast<size_t>(minLength));
    return m_text.data();
}

char* CString::GetBufferSetLength(int length) {
    m_text.resize(length > 0 ? static_cast<size_t>(length) : 0);
    return m_text.data();
}

void CString::ReleaseBuffer(int newLength) {
    if (newLength < 0) {
        m_text.resize(std::strlen(m_text.c_str()));
    } else if (static_cast<size_t>(newLength) <= m_text.size()) {
        m_text.resize(static_cast<size_t>(newLength));
    }
}
