#include "text.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace mwcli {

bool Russian() {
    return GetThreadUILanguage() == LANG_RUSSIAN;
}

std::string Utf8(const char* ansi) {
    return AnsiToUtf8(ansi ? ansi : "");
}

std::string Ansi(std::string_view utf8) {
    return Utf8ToAnsi(utf8);
}

bool RepresentableInAnsi(std::string_view utf8) {
    return AnsiToUtf8(Utf8ToAnsi(utf8)) == utf8;
}

size_t DisplayWidth(std::string_view utf8) {
    // Continuation bytes are 10xxxxxx; every other byte starts a character.
    return static_cast<size_t>(
        std::count_if(utf8.begin(), utf8.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string PadRight(std::string_view utf8, size_t width) {
    std::string s(utf8);
    const size_t w = DisplayWidth(utf8);
    if (w < width) s.append(width - w, ' ');
    return s;
}

std::string PadLeft(std::string_view utf8, size_t width) {
    const size_t w = DisplayWidth(utf8);
    return (w < width ? std::string(width - w, ' ') : std::string()) + std::string(utf8);
}

std::string FoldName(std::string_view utf8) {
    // Folded in Windows-1251, where every Cyrillic letter is one byte.
    std::string ansi = Utf8ToAnsi(utf8);
    std::string out;
    out.reserve(ansi.size());
    bool blank = false;
    for (char ch : ansi) {
        auto c = static_cast<unsigned char>(ch);
        if (c == ' ' || c == '\t' || c == '_') {
            blank = !out.empty();
            continue;
        }
        if (blank) out += ' ';
        blank = false;
        if (c >= 'A' && c <= 'Z')
            c = static_cast<unsigned char>(c + 32);
        else if (c >= 0xC0 && c <= 0xDF)
            c = static_cast<unsigned char>(c + 32);  // А..Я
        else if (c == 0xA8)
            c = 0xB8;  // Ё
        out += static_cast<char>(c);
    }
    return out;
}

namespace {

size_t EditDistance(std::string_view a, std::string_view b) {
    std::vector<size_t> row(b.size() + 1);
    for (size_t j = 0; j <= b.size(); ++j) row[j] = j;
    for (size_t i = 1; i <= a.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            const size_t above = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (a[i - 1] == b[j - 1] ? 0 : 1)});
            diagonal = above;
        }
    }
    return row[b.size()];
}

}  // namespace

std::vector<std::string> Nearest(std::string_view word, const std::vector<std::string>& candidates, size_t count) {
    const std::string w = FoldName(word);
    // A third of the word may be wrong, at least two letters: enough for a
    // typo or a missing word, not so much that everything is "near".
    const size_t limit = std::max<size_t>(2, w.size() / 3);
    std::vector<std::pair<size_t, std::string>> scored;
    for (const std::string& c : candidates) {
        const std::string f = FoldName(c);
        size_t d = EditDistance(w, f);
        // "pulkovo" for "Pulkovo 1942": a part is a strong hint, and a word
        // of the name near the word typed ("krasovsky") nearly as strong.
        if (!w.empty() && f.find(w) != std::string::npos) d = std::min<size_t>(d, 1);
        for (size_t start = 0; start < f.size();) {
            size_t stop = f.find(' ', start);
            if (stop == std::string::npos) stop = f.size();
            const size_t part = EditDistance(w, std::string_view(f).substr(start, stop - start));
            if (part <= std::max<size_t>(1, w.size() / 4)) d = std::min(d, part + 1);
            start = stop + 1;
        }
        if (d <= limit) scored.emplace_back(d, c);
    }
    std::stable_sort(scored.begin(), scored.end(), [](const auto& x, const auto& y) { return x.first < y.first; });
    std::vector<std::string> out;
    for (const auto& [d, c] : scored) {
        if (out.size() == count) break;
        if (std::find(out.begin(), out.end(), c) == out.end()) out.push_back(c);
    }
    return out;
}

std::string Quoted(std::string_view text) {
    std::string out;
    out.reserve(text.size() + 2);
    out += '"';
    out += text;
    out += '"';
    return out;
}

std::string JoinAlternatives(const std::vector<std::string>& items) {
    std::string out;
    for (size_t i = 0; i < items.size(); ++i) {
        if (i > 0) out += i + 1 == items.size() ? Tr(" or ", " или ") : ", ";
        out += items[i];
    }
    return out;
}

std::string ShortNumber(double value) {
    if (value == 0.0) return "0";  // no "-0"
    char buf[64];
    const auto r = std::to_chars(buf, buf + sizeof buf, value);
    return std::string(buf, r.ptr);
}

}  // namespace mwcli
