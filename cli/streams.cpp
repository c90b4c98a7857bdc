#include "streams.h"

#include <errno.h>
#include <sys/stat.h>
#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <cstring>

#include "text.h"

namespace mwcli {

namespace {

constexpr size_t kOutputSize = 1 << 20;
constexpr size_t kInputSize = 1 << 20;
// The longest number PutFixed writes: 309 digits of DBL_MAX, a sign, a point
// and up to 17 decimals.
constexpr size_t kLongestNumber = 330;

[[noreturn]] void SystemError(const char* what, const std::string& name) {
    throw Error(std::string(what) + " " + name + ": " + std::strerror(errno));
}

}  // namespace

OutputBuffer::OutputBuffer(int fd, std::string name) : m_fd(fd), m_name(std::move(name)), m_storage(kOutputSize) {
    m_begin = m_end = m_storage.data();
    m_limit = m_begin + m_storage.size();
}

OutputBuffer::~OutputBuffer() {
    try {
        Flush();
    } catch (const Error&) {
    }
}

void OutputBuffer::MakeRoom(size_t size) {
    Flush();
    if (size > m_storage.size()) {
        m_storage.resize(size);
        m_begin = m_end = m_storage.data();
        m_limit = m_begin + m_storage.size();
    }
}

void OutputBuffer::Flush() {
    const char* p = m_begin;
    while (p < m_end) {
        const ssize_t n = ::write(m_fd, p, static_cast<size_t>(m_end - p));
        if (n < 0) {
            if (errno == EINTR) continue;
            m_end = m_begin;  // give up on this text; the error is reported once
            SystemError(Tr("cannot write to", "не удаётся записать в"), m_name);
        }
        p += n;
    }
    m_end = m_begin;
}

void OutputBuffer::PutFixed(double value, int decimals) {
    if (Room() < kLongestNumber) MakeRoom(kLongestNumber);
    auto r = std::to_chars(m_end, m_limit, value, std::chars_format::fixed, decimals);
    if (r.ec != std::errc()) r = std::to_chars(m_end, m_limit, value);  // cannot happen within kLongestNumber
    m_end = r.ptr;
}

LineReader::LineReader(int fd) : m_fd(fd), m_buffer(kInputSize) {
    struct stat st = {};
    // Regular files never make us wait; terminals and pipes may.
    m_mayWait = !(fstat(fd, &st) == 0 && S_ISREG(st.st_mode));
}

bool LineReader::Fill() {
    if (m_eof) return false;
    // Keep the unfinished line, at the front; grow for a line longer than the buffer.
    if (m_begin > 0) {
        std::memmove(m_buffer.data(), m_buffer.data() + m_begin, m_end - m_begin);
        m_end -= m_begin;
        m_begin = 0;
    }
    if (m_end == m_buffer.size()) m_buffer.resize(m_buffer.size() * 2);
    if (m_mayWait && m_hook) m_hook(m_hookContext);
    for (;;) {
        const ssize_t n = ::read(m_fd, m_buffer.data() + m_end, m_buffer.size() - m_end);
        if (n < 0) {
            if (errno == EINTR) continue;
            throw InputError(std::strerror(errno));
        }
        if (n == 0) {
            m_eof = true;
            return false;
        }
        m_end += static_cast<size_t>(n);
        m_bytesRead += static_cast<uint64_t>(n);
        return true;
    }
}

bool LineReader::Next(std::string_view& line) {
    for (;;) {
        const char* start = m_buffer.data() + m_begin;
        const size_t available = m_end - m_begin;
        if (const void* lf = std::memchr(start, '\n', available)) {
            size_t length = static_cast<size_t>(static_cast<const char*>(lf) - start);
            m_begin += length + 1;
            if (length > 0 && start[length - 1] == '\r') --length;
            line = std::string_view(start, length);
            return true;
        }
        if (!Fill()) {
            if (m_begin == m_end) return false;
            // The last line had no line end.
            start = m_buffer.data() + m_begin;
            size_t length = m_end - m_begin;
            m_begin = m_end;
            if (length > 0 && start[length - 1] == '\r') --length;
            line = std::string_view(start, length);
            return true;
        }
    }
}

}  // namespace mwcli
