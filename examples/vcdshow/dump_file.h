#ifndef DUMP_FILE_H
#define DUMP_FILE_H

#include "vcd_reader.h"

#include <functional>
#include <optional>
#include <string>

/// A dump in a file or on standard input.
class DUMP_FILE : public VCD_SOURCE {
public:
    /// Opens a file; "-" is standard input. Throws std::runtime_error, which names the file and
    /// says why it cannot be read.
    explicit DUMP_FILE(std::string const& path);
    ~DUMP_FILE() override;
    DUMP_FILE(DUMP_FILE const&) = delete;
    DUMP_FILE& operator=(DUMP_FILE const&) = delete;

    /// The file's name for messages.
    std::string const& name() const { return m_name; }
    /// The size in bytes; none for a pipe and the like.
    std::optional<unsigned long long> size() const { return m_size; }

    /// Calls a function with the number of bytes read so far, before every further read.
    void report_to(std::function<void(unsigned long long bytes)> report) { m_report = report; }

    std::size_t read(char* to, std::size_t size) override;

private:
    [[noreturn]] void fail(int error) const;

    std::string m_name;
    int m_file;
    std::optional<unsigned long long> m_size;
    unsigned long long m_bytes_read = 0;
    std::function<void(unsigned long long)> m_report = [](unsigned long long) {};
};

#endif
