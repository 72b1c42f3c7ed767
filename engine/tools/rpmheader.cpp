#include "rpmheader.h"

#include "failure.h"

static constexpr std::string_view MAGIC = "\x8e\xad\xe8\x01";
static constexpr std::uint32_t LEAST_TAG = 100;
static constexpr std::uint32_t TYPE_STRING = 6;
static constexpr std::uint32_t LAST_TYPE = 9;

void requireHeader(bool condition, const std::string &fault)
{
    if (!condition)
        throw Failure("a header is not in order, " + fault);
}

std::uint32_t bigEndianNumber(std::string_view bytes, std::size_t at, std::size_t size)
{
    std::uint32_t value = 0;
    for (const char byte : bytes.substr(at, size))
        value = value << 8 | static_cast<unsigned char>(byte);
    return value;
}

std::string bigEndian(std::initializer_list<std::size_t> values)
{
    std::string bytes;
    for (const std::size_t value : values)
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes += static_cast<char>(value >> shift & 0xff);
    return bytes;
}

std::size_t aligned(std::size_t position, std::size_t alignment)
{
    return (position + alignment - 1) / alignment * alignment;
}

std::size_t headerAlignment(std::uint32_t type)
{
    static constexpr std::size_t SIZES[] = {1, 1, 1, 2, 4, 8, 1, 1, 1, 1};
    return SIZES[type];
}

// How many bytes of the store the values take; 0 when they do not fit in.
static std::size_t sizeOfData(std::uint32_t type, std::uint32_t count, std::string_view store)
{
    if (type < TYPE_STRING || type == TYPE_BINARY) {
        const std::size_t size = headerAlignment(type) * count;
        return size <= store.size() ? size : 0;
    }
    std::size_t size = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::size_t end = store.find('\0', size);
        if (end == std::string_view::npos)
            return 0;
        size = end + 1;
    }
    return size;
}

std::size_t headerSize(std::string_view introduction, const HeaderLimits &limits)
{
    requireHeader(introduction.size() == HEADER_INTRODUCTION_SIZE
                      && introduction.starts_with(MAGIC),
                  "it has another magic number");
    const std::uint32_t count = bigEndianNumber(introduction, 8);
    const std::uint32_t storeSize = bigEndianNumber(introduction, 12);
    requireHeader(count >= 1 && count <= limits.entries && storeSize >= HEADER_TRAILER_SIZE
                      && storeSize <= limits.storeSize,
                  "it has another size");
    return HEADER_INTRODUCTION_SIZE + std::size_t{count} * HEADER_INDEX_SIZE + storeSize;
}

std::vector<HeaderEntry> headerEntries(std::string_view bytes)
{
    const std::size_t count = bigEndianNumber(bytes, 8);
    const std::string_view indices =
        bytes.substr(HEADER_INTRODUCTION_SIZE, count * HEADER_INDEX_SIZE);
    const std::string_view store = bytes.substr(HEADER_INTRODUCTION_SIZE + indices.size(),
                                                bigEndianNumber(bytes, 12) - HEADER_TRAILER_SIZE);
    std::vector<HeaderEntry> entries;
    std::size_t end = 0;
    for (std::size_t i = 1; i < count; ++i) {
        const std::string_view index = indices.substr(i * HEADER_INDEX_SIZE, HEADER_INDEX_SIZE);
        HeaderEntry entry{
            bigEndianNumber(index, 0), bigEndianNumber(index, 4), bigEndianNumber(index, 12), {}};
        const std::size_t offset = bigEndianNumber(index, 8);
        requireHeader(entry.tag >= LEAST_TAG, "a tag is where it must not be");
        requireHeader(entry.type >= 1 && entry.type <= LAST_TYPE, "an entry is of another type");
        requireHeader(offset >= end && offset < store.size(),
                      "entries overlap or are outside of it");
        const std::size_t size = sizeOfData(entry.type, entry.count, store.substr(offset));
        requireHeader(size > 0, "an entry is empty or too large");
        entry.data = store.substr(offset, size);
        end = offset + size;
        entries.push_back(std::move(entry));
    }
    return entries;
}

std::vector<std::uint32_t> HeaderEntry::numbers() const
{
    std::vector<std::uint32_t> values;
    const std::size_t size = headerAlignment(type);
    if (type == TYPE_INT16 || type == TYPE_INT32)
        for (std::size_t at = 0; at < data.size(); at += size)
            values.push_back(bigEndianNumber(data, at, size));
    return values;
}

std::vector<std::string> HeaderEntry::texts() const
{
    std::vector<std::string> values;
    if (type == TYPE_STRING_ARRAY)
        for (std::size_t at = 0; at < data.size(); at += values.back().size() + 1)
            values.emplace_back(data.c_str() + at);
    return values;
}
