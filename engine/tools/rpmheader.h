#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

// The bytes of a header of an RPM package, read by the rules of rpm.

/// A tag with its values.
struct HeaderEntry
{
    std::uint32_t tag = 0;
    std::uint32_t type = 0;
    std::uint32_t count = 0;
    std::string data;

    /// The values, as many as there are: numbers of 2 or 4 bytes, or texts. None for another type.
    std::vector<std::uint32_t> numbers() const;
    std::vector<std::string> texts() const;
};

inline constexpr std::uint32_t TYPE_INT16 = 3;
inline constexpr std::uint32_t TYPE_INT32 = 4;
inline constexpr std::uint32_t TYPE_BINARY = 7;
inline constexpr std::uint32_t TYPE_STRING_ARRAY = 8;

/// How many bytes tell the size of a header.
inline constexpr std::size_t HEADER_INTRODUCTION_SIZE = 16;
inline constexpr std::size_t HEADER_INDEX_SIZE = 16;
inline constexpr std::size_t HEADER_TRAILER_SIZE = 16;

/// The most that a header may have.
struct HeaderLimits
{
    std::uint32_t entries;
    std::uint32_t storeSize;
};

// Each throws a Failure with \a fault at its end, as do all that read headers.
void requireHeader(bool condition, const std::string &fault);

/// The size of the header that begins like this, without padding.
std::size_t headerSize(std::string_view introduction, const HeaderLimits &limits);
/// All entries but the first one, which is the region's.
std::vector<HeaderEntry> headerEntries(std::string_view bytes);
/// To what the data of a type are aligned.
std::size_t headerAlignment(std::uint32_t type);

std::size_t aligned(std::size_t position, std::size_t alignment);
/// In the order of bytes that headers have.
std::string bigEndian(std::initializer_list<std::size_t> values);
std::uint32_t bigEndianNumber(std::string_view bytes, std::size_t at, std::size_t size = 4);
