// CString: the part of MFC's string class that Mapwright and its hosts use.
// The text is single-byte ANSI (Windows-1251); lengths count bytes.
#ifndef MAPWRIGHT_AFXSTR_H
#define MAPWRIGHT_AFXSTR_H

#include <string>

#include "wintypes.h"

class MW_API CString {
public:
    CString() = default;
    CString(const char* text);  // null gives the empty text, as in MFC
    CString(const char* text, int length);
    CString(char ch, int repeat = 1);
    CString(const CString&) = default;
    CString(CString&&) noexcept = default;
    CString& operator=(const CString&) = default;
    CString& operator=(CString&&) noexcept = default;
    CString& operator=(const char* text);
    CString& operator=(char ch);
    ~CString() = default;

    int GetLength() const { return static_cast<int>(m_text.size()); }
    bool IsEmpty() const { return m_text.empty(); }
    void Empty() { m_text.clear(); }
    const char* GetString() const { return m_text.c_str(); }
    operator const char*() const { return m_text.c_str(); }
    // Out-of-range positions read as NUL and are ignored on write, rather than
    // asserting as MFC's debug build does.
    char GetAt(int index) const;
    void SetAt(int index, char ch);

    CString& operator+=(const CString& text);
    CString& operator+=(const char* text);
    CString& operator+=(char ch);
    friend MW_API CString operator+(const CString& left, const CString& right);
    friend MW_API CString operator+(const CString& left, const char* right);
    friend MW_API CString operator+(const char* left, const CString& right);

    int Compare(const char* text) const;        // strcmp order
    int CompareNoCase(const char* text) const;  // ASCII letters folded
    bool operator==(const char* text) const { return Compare(text) == 0; }
    bool operator!=(const char* text) const { return Compare(text) != 0; }
    bool operator==(const CString& text) const { return m_text == text.m_text; }
    bool operator!=(const CString& text) const { return m_text != text.m_text; }
    bool operator<(const CString& text) const { return m_text < text.m_text; }

    // printf formatting into the string, any length, always with the C
    // locale's decimal point (the texts are persisted and read back).
    void Format(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void AppendFormat(const char* format, ...) __attribute__((format(printf, 2, 3)));

    // Loads string `id` from the module resource chain in the user-interface
    // language. Non-zero when found; the text is unchanged otherwise.
    BOOL LoadString(UINT id);

    CString Left(int count) const;
    CString Right(int count) const;
    CString Mid(int first) const;
    CString Mid(int first, int count) const;
    int Find(char ch, int start = 0) const;
    int Find(const char* text, int start = 0) const;
    CString& TrimLeft();
    CString& TrimRight();
    CString& Trim();
    CString& MakeUpper();
    CString& MakeLower();

    // A writable buffer of at least minLength bytes plus the terminator;
    // ReleaseBuffer(-1) takes the text up to the first NUL.
    char* GetBuffer(int minLength);
    char* GetBufferSetLength(int length);
    void ReleaseBuffer(int newLength = -1);

private:
    std::string m_text;
};

inline bool operator==(const char* left, const CString& right) { return right == left; }
inline bool operator!=(const char* left, const CString& right) { return right != left; }

#endif
