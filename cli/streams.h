// Buffered input by lines and buffered output straight on file descriptors:
// a million points go through with a handful of system calls and no
// allocation per line.
#ifndef MAPWRIGHT_CLI_STREAMS_H
#define MAPWRIGHT_CLI_STREAMS_H

#include <stddef.h>
#include <stdint.h>

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace mwcli {

class OutputBuffer {
public:
    // `name` is how errors call the destination ("standard output").
    OutputBuffer(int fd, std::string name);
    ~OutputBuffer();  // flushes; errors are lost then, so callers Flush first
    OutputBuffer(const OutputBuffer&) = delete;
    OutputBuffer& operator=(const OutputBuffer&) = delete;

    void Put(std::string_view text) {
        if (text.size() > Room()) MakeRoom(text.size());
        std::memcpy(m_end, text.data(), text.size());
        m_end += text.size();
    }
    void Put(char c) {
        if (Room() == 0) MakeRoom(1);
        *m_end++ = c;
    }
    // `value` with `decimals` digits after the point.
    void PutFixed(double value, int decimals);
    // Writes what is buffered. Throws Error when the system refuses.
    void Flush();
    bool Empty() const { return m_end == m_begin; }

private:
    size_t Room() const { return static_cast<size_t>(m_limit - m_end); }
    void MakeRoom(size_t size);

    int m_fd;
    std::string m_name;
    std::vector<char> m_storage;
    char* m_begin;
    char* m_end;
    char* m_limit;
};

class LineReader {
public:
    explicit LineReader(int fd);
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    // The next line without its end (LF, with a CR before it dropped); false
    // at the end of the input. Throws InputError when reading fails. The view
    // lives until the next call.
    bool Next(std::string_view& line);
    // Bytes taken from the descriptor so far.
    uint64_t BytesRead() const { return m_bytesRead; }
    // Called before a read that may wait (a terminal or a pipe), so that what
    // was converted so far is out before the tool waits for more.
    void SetBeforeWait(void (*hook)(void*), void* context) {
        m_hook = hook;
        m_hookContext = context;
    }

private:
    bool Fill();

    int m_fd;
    bool m_mayWait;
    bool m_eof = false;
    std::vector<char> m_buffer;
    size_t m_begin = 0, m_end = 0;
    uint64_t m_bytesRead = 0;
    void (*m_hook)(void*) = nullptr;
    void* m_hookContext = nullptr;
};

}  // namespace mwcli

#endif
