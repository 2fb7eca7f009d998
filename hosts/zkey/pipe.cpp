#include "hosts/zkey/pipe.h"

#include <cerrno>
#include <cstring>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/system.h"

namespace zkey {

PipeReader::PipeReader(const std::string &path)
    : m_file(path == "-" ? stdin : OpenFile(path, "rb")), m_name(path == "-" ? "standard input" : path) {
    if (m_file == nullptr) Fail("cannot open " + m_name + ": " + std::strerror(errno));
    if (m_file != stdin && std::fseek(m_file, 0, SEEK_END) == 0) {
        m_size = std::ftell(m_file);
        std::rewind(m_file);
    }
}

PipeReader::~PipeReader() {
    if (m_file != stdin) std::fclose(m_file);
}

std::size_t PipeReader::Read(uint8_t *to, std::size_t bytes) {
    const std::size_t got = std::fread(to, 1, bytes, m_file);
    if (got < bytes && std::ferror(m_file) != 0 && !Interrupted()) Fail("cannot read " + m_name + ": " + std::strerror(errno));
    return got;
}

bool PipeReader::Line(std::string &line, std::size_t most) {
    line.clear();
    for (int c = std::getc(m_file); c != EOF; c = std::getc(m_file)) {
        if (c == '\n') return true;
        if (line.size() == most) return false;
        line.push_back(static_cast<char>(c));
    }
    return false;
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

}    // namespace zkey
