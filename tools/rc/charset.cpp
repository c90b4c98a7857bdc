#include "charset.h"

#include <iconv.h>

#include <map>

namespace rc {

namespace {

// The upper half of the code page as iconv knows it, reversed; built once.
const std::map<uint32_t, unsigned char>& UpperHalf() {
    static const std::map<uint32_t, unsigned char> table = [] {
        std::map<uint32_t, unsigned char> t;
        iconv_t cd = iconv_open("UTF-32LE", "CP1251");
        if (cd == reinterpret_cast<iconv_t>(-1)) return t;
        for (unsigned b = 0x80; b <= 0xFF; ++b) {
            char in[1] = {static_cast<char>(b)};
            unsigned char out[4] = {};
            char* src = in;
            char* dst = reinterpret_cast<char*>(out);
            size_t left = 1, room = sizeof out;
            iconv(cd, nullptr, nullptr, nullptr, nullptr);
            // 0x98 has no character: iconv refuses it and it stays out of the table.
            if (iconv(cd, &src, &left, &dst, &room) == static_cast<size_t>(-1) || room != 0) continue;
            uint32_t cp = out[0] | (out[1] << 8) | (out[2] << 16) | (static_cast<uint32_t>(out[3]) << 24);
            t.emplace(cp, static_cast<unsigned char>(b));
        }
        iconv_close(cd);
        return t;
    }();
    return table;
}

}  // namespace

int Cp1251Byte(uint32_t codePoint) {
    if (codePoint < 0x80) return static_cast<int>(codePoint);
    const auto& table = UpperHalf();
    auto it = table.find(codePoint);
    return it == table.end() ? -1 : it->second;
}

std::string Utf8Of(uint32_t cp) {
    std::string s;
    if (cp < 0x80) {
        s += static_cast<char>(cp);
    } else if (cp < 0x800) {
        s += static_cast<char>(0xC0 | (cp >> 6));
        s += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        s += static_cast<char>(0xE0 | (cp >> 12));
        s += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        s += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        s += static_cast<char>(0xF0 | (cp >> 18));
        s += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        s += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        s += static_cast<char>(0x80 | (cp & 0x3F));
    }
    return s;
}

size_t DecodeUtf8(const std::string& text, size_t pos, uint32_t& cp) {
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
    unsigned char b0 = byte(pos);
    size_t n;
    uint32_t min;
    if (b0 < 0x80) {
        cp = b0;
        return 1;
    } else if (b0 >= 0xC2 && b0 <= 0xDF) {
        n = 2, cp = b0 & 0x1F, min = 0x80;
    } else if (b0 >= 0xE0 && b0 <= 0xEF) {
        n = 3, cp = b0 & 0x0F, min = 0x800;
    } else if (b0 >= 0xF0 && b0 <= 0xF4) {
        n = 4, cp = b0 & 0x07, min = 0x10000;
    } else {
        return 0;
    }
    if (pos + n > text.size()) return 0;
    for (size_t i = 1; i < n; ++i) {
        if ((byte(pos + i) & 0xC0) != 0x80) return 0;
        cp = (cp << 6) | (byte(pos + i) & 0x3F);
    }
    if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return 0;
    return n;
}

}  // namespace rc
