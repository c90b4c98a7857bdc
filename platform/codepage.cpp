#include <mapwright/codepage.h>

#include <errno.h>
#include <iconv.h>

namespace {

// One converter per direction and thread: an iconv descriptor holds state
// and must not be shared between threads.
class Converter {
public:
    Converter(const char* to, const char* from) : m_cd(iconv_open(to, from)) {}
    ~Converter() {
        if (m_cd != reinterpret_cast<iconv_t>(-1)) iconv_close(m_cd);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    // `skip(p, left)` says how many input bytes an unconvertible character
    // takes; it is replaced by `replacement`.
    template <class Skip>
    std::string Run(std::string_view in, const char* replacement, Skip skip) {
        std::string out;
        if (m_cd == reinterpret_cast<iconv_t>(-1)) return std::string(in);
        iconv(m_cd, nullptr, nullptr, nullptr, nullptr);
        char* src = const_cast<char*>(in.data());
        size_t left = in.size();
        char buf[1024];
        while (left > 0) {
            char* dst = buf;
            size_t room = sizeof buf;
            size_t r = iconv(m_cd, &src, &left, &dst, &room);
            out.append(buf, static_cast<size_t>(dst - buf));
            if (r != static_cast<size_t>(-1) || errno == E2BIG) continue;
            // EILSEQ or EINVAL (a truncated sequence at the end).
            size_t n = skip(reinterpret_cast<const unsigned char*>(src), left);
            src += n;
            left -= n;
            out += replacement;
        }
        char* dst = buf;
        size_t room = sizeof buf;
        iconv(m_cd, nullptr, nullptr, &dst, &room);
        out.append(buf, static_cast<size_t>(dst - buf));
        return out;
    }

private:
    iconv_t m_cd;
};

// The length of the UTF-8 sequence starting at p, 1 for a stray byte.
size_t Utf8SequenceLength(const unsigned char* p, size_t left) {
    const unsigned lead = p[0];
    size_t n = (lead >= 0xF0 && lead <= 0xF4) ? 4 : (lead >= 0xE0 && lead <= 0xEF) ? 3 : (lead >= 0xC2 && lead <= 0xDF) ? 2 : 1;
    if (n > left) return 1;
    for (size_t i = 1; i < n; ++i)
        if ((p[i] & 0xC0) != 0x80) return 1;
    return n;
}

}  // namespace

std::string AnsiToUtf8(std::string_view ansi) {
    thread_local Converter converter("UTF-8", "CP1251");
    return converter.Run(ansi, "\xEF\xBF\xBD", [](const unsigned char*, size_t) { return size_t{1}; });
}

std::string Utf8ToAnsi(std::string_view utf8) {
    thread_local Converter converter("CP1251", "UTF-8");
    return converter.Run(utf8, "?", Utf8SequenceLength);
}
