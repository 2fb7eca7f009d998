#include "hosts/zkey/pipe.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/system.h"

namespace zkey {
namespace {

// For lines between pictures; small, since a picture's first bytes come through it too.
constexpr std::size_t kBuffer = 256;

}    // namespace

PipeReader::PipeReader(const std::string &path)
    : m_descriptor(OpenForReading(path)), m_name(path == "-" ? "standard input" : path) {
    if (m_descriptor < 0) Fail("cannot open " + m_name + ": " + std::strerror(errno));
    m_size = path == "-" ? 0 : FileSize(m_descriptor);
}

PipeReader::~PipeReader() { CloseReading(m_descriptor); }

bool PipeReader::Fill() {
    m_buffer.resize(kBuffer);
    m_at = 0;
    const int64_t got = ReadSome(m_descriptor, m_buffer.data(), m_buffer.size());
    if (got < 0) Fail("cannot read " + m_name + ": " + std::strerror(errno));
    m_buffer.resize(static_cast<std::size_t>(got));
    return got > 0;
}

std::size_t PipeReader::Read(uint8_t *to, std::size_t bytes) {
    std::size_t done = std::min(bytes, m_buffer.size() - m_at);
    std::copy_n(m_buffer.begin() + static_cast<std::ptrdiff_t>(m_at), done, to);
    m_at += done;
    while (done < bytes) {
        // Pictures go past the buffer, straight to where they are wanted.
        const int64_t got = ReadSome(m_descriptor, to + done, bytes - done);
        if (got < 0) Fail("cannot read " + m_name + ": " + std::strerror(errno));
        if (got == 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

bool PipeReader::Line(std::string &line, std::size_t most) {
    line.clear();
    while (m_at < m_buffer.size() || Fill()) {
        const char c = static_cast<char>(m_buffer[m_at++]);
        if (c == '\n') return true;
        if (line.size() == most) return false;
        line.push_back(c);
    }
    return false;
}

bool PipeReader::Seek(int64_t offset) {
    if (m_size == 0 || !SeekReading(m_descriptor, offset)) return false;
    m_buffer.clear();
    m_at = 0;
    return true;
}

PipeWriter::PipeWriter(const std::string &path)
    : m_file(path == "-" ? stdout : OpenFile(path, "wb")), m_name(path == "-" ? "standard output" : path) {
    if (m_file == nullptr) Fail("cannot write " + m_name + ": " + std::strerror(errno));
}

PipeWriter::~PipeWriter() {
    if (m_file != nullptr && m_file != stdout) std::fclose(m_file);
}

void PipeWriter::Write(const void *from, std::size_t bytes) {
    if (std::fwrite(from, 1, bytes, m_file) != bytes) FailWrite();
}

void PipeWriter::Close() {
    // What is still buffered can fail for want of space, so the last write counts too.
    std::FILE *file = m_file;
    if (file == nullptr) return;
    m_file = nullptr;
    const bool good = file == stdout ? std::fflush(file) == 0 : std::fclose(file) == 0;
    if (!good) FailWrite();
}

void PipeWriter::FailWrite() const { Fail("cannot write " + m_name + ": " + std::strerror(errno)); }

void PrintOut(const std::string &text) {
    PipeWriter out("-");
    out.Write(text.data(), text.size());
    out.Close();
}

}    // namespace zkey
