#pragma once

#include <cstddef>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

/// An open file or folder, closed with the object.
class Descriptor
{
public:
    explicit Descriptor(int number)
        : m_number(number)
    {
    }
    Descriptor(Descriptor &&other) noexcept
        : m_number(std::exchange(other.m_number, -1))
    {
    }
    Descriptor &operator=(Descriptor &&) = delete;
    ~Descriptor()
    {
        if (m_number >= 0)
            close(m_number);
    }

    int number() const { return m_number; }
    bool isOpen() const { return m_number >= 0; }

private:
    int m_number;
};

/// Writes all of \a bytes; false when that is not possible.
bool writeAll(int descriptor, const std::string &bytes);

/// Opens a regular file for reading. Throws a Failure, in which \a what names it, when it is
/// something else, without waiting for the far end of a pipe, or cannot be opened.
Descriptor openFile(const std::string &what, const std::string &path);

/// What is in a file, which may be a secret: it is wiped out with the object.
class FileContents
{
public:
    static constexpr std::size_t LARGEST = 0x100000;

    /// Throws a Failure, in which \a what names the file, when it cannot be read or is larger.
    FileContents(const std::string &what, const std::string &path);
    ~FileContents();
    FileContents(const FileContents &) = delete;
    FileContents &operator=(const FileContents &) = delete;

    const char *bytes() const { return m_bytes.data(); }
    std::size_t size() const { return m_size; }

private:
    std::vector<char> m_bytes;
    std::size_t m_size = 0;
};

/// Reads \a size bytes, or fewer at the end of the file. Returns how many there are, or -1 with
/// errno set.
ssize_t readAt(int descriptor, off_t position, char *bytes, std::size_t size);

/// ": " and what errno says.
std::string reason(int error);
