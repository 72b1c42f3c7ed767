#pragma once

#include <string>
#include <unistd.h>
#include <utility>

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

/// Throws a Failure unless \a path is a file that can be read. \a what names it to the user.
void requireFile(const std::string &what, const std::string &path);
