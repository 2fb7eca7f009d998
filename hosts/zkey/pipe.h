// A file or a standard stream that is read or written from front to back.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace zkey {

class PipeReader {
public:
    /// "-" is standard input.
    explicit PipeReader(const std::string &path);
    ~PipeReader();
    PipeReader(const PipeReader &) = delete;
    PipeReader &operator=(const PipeReader &) = delete;

    /// How many bytes came; fewer than asked for only at the end or after an interrupt.
    std::size_t Read(uint8_t *to, std::size_t bytes);
    /// One line without its end. False at the end, or when a line is longer than `most`.
    bool Line(std::string &line, std::size_t most);
    /// Goes on at this byte of a file. False for a stream.
    bool Seek(int64_t offset);
    /// Bytes of a file; 0 for a stream.
    int64_t Size() const { return m_size; }
    const std::string &Name() const { return m_name; }

private:
    /// Refills the empty buffer. False at the end.
    bool Fill();

    int m_descriptor;
    std::string m_name;
    int64_t m_size;
    std::vector<uint8_t> m_buffer;
    std::size_t m_at = 0;
};

class PipeWriter {
public:
    /// "-" is standard output.
    explicit PipeWriter(const std::string &path);
    ~PipeWriter();
    PipeWriter(const PipeWriter &) = delete;
    PipeWriter &operator=(const PipeWriter &) = delete;

    void Write(const void *from, std::size_t bytes);
    void Close();

private:
    [[noreturn]] void FailWrite() const;

    std::FILE *m_file;
    std::string m_name;
};

/// A text to standard output. Ends the program with a line when it cannot be written.
void PrintOut(const std::string &text);

}    // namespace zkey
