// The text edge: the model holds Windows-1251, Qt holds UTF-16. Every
// Windows-1251 character is one UTF-16 unit, so a caret position in a widget
// is the same number in the model.
#include <mapwright/codepage.h>

#include "window.h"

namespace mwqt {

QString FromAnsi(const char* text) { return QString::fromStdString(AnsiToUtf8(text ? text : "")); }

QString FromAnsi(const CString& text) {
    return QString::fromStdString(AnsiToUtf8(std::string_view(text.GetString(), size_t(text.GetLength()))));
}

std::string ToAnsi(const QString& text) { return Utf8ToAnsi(text.toStdString()); }

QString WithoutMnemonic(const QString& text) {
    QString plain;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'&' && i + 1 < text.size()) ++i;
        else if (text[i] == u'&') continue;
        plain += text[i];
    }
    return plain;
}

}  // namespace mwqt
