#include "signatureheader.h"

#include "failure.h"

#include <algorithm>
#include <openssl/asn1.h>

static constexpr std::string_view MAGIC = "\x8e\xad\xe8\x01";
static constexpr std::size_t START_SIZE = 8;
static constexpr std::size_t INDEX_SIZE = 16;
static constexpr std::size_t TRAILER_SIZE = 16;
// As many as rpm reads.
static constexpr std::uint32_t MOST_ENTRIES = 32;
static constexpr std::uint32_t LARGEST_STORE = 0x4000000;

static constexpr std::uint32_t REGION_TAG = 62;
static constexpr std::uint32_t LEAST_TAG = 100;
static constexpr std::uint32_t FIRST_FILE_SIGNATURES_TAG = 274; // of four: IMA and fs-verity
static constexpr std::uint32_t LAST_FILE_SIGNATURES_TAG = 277;
// Far above all that rpm has, so that it stays the last one when rpm sorts the entries.
static constexpr std::uint32_t OUR_TAG = 0x5365616c;

static constexpr std::uint32_t STRING = 6;
static constexpr std::uint32_t BINARY = 7;
static constexpr std::uint32_t LAST_TYPE = 9;

static void require(bool condition, const char *fault)
{
    if (!condition)
        throw Failure(std::string("the signature header is not in order, ") + fault);
}

static std::uint32_t number(std::string_view bytes, std::size_t at)
{
    std::uint32_t value = 0;
    for (const char byte : bytes.substr(at, 4))
        value = value << 8 | static_cast<unsigned char>(byte);
    return value;
}

static std::string written(std::initializer_list<std::size_t> values)
{
    std::string bytes;
    for (const std::size_t value : values)
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes += static_cast<char>(value >> shift & 0xff);
    return bytes;
}

static std::size_t aligned(std::size_t position, std::size_t alignment)
{
    return (position + alignment - 1) / alignment * alignment;
}

// How large one value is, and to what it is aligned; types from "nothing" to BINARY.
static std::size_t sizeOfType(std::uint32_t type)
{
    static constexpr std::size_t SIZES[] = {0, 1, 1, 2, 4, 8, 1, 1, 1, 1};
    return SIZES[type];
}

// How many bytes of the store the values take; 0 when they do not fit in.
static std::size_t sizeOfData(std::uint32_t type, std::uint32_t count, std::string_view store)
{
    if (type < STRING || type == BINARY) {
        const std::size_t size = sizeOfType(type) * count;
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

// DER tells its size, so that signatures can stand one behind the other.
static std::vector<std::string> split(std::string_view sequences)
{
    std::vector<std::string> parts;
    while (!sequences.empty()) {
        const auto *start = reinterpret_cast<const unsigned char *>(sequences.data());
        const unsigned char *content = start;
        long size = 0;
        int tag = 0;
        int tagClass = 0;
        const int flags =
            ASN1_get_object(&content, &size, &tag, &tagClass, static_cast<long>(sequences.size()));
        require(flags == V_ASN1_CONSTRUCTED && tag == V_ASN1_SEQUENCE, "its signatures are none");
        const auto whole = static_cast<std::size_t>(content - start + size);
        parts.emplace_back(sequences.substr(0, whole));
        sequences.remove_prefix(whole);
    }
    return parts;
}

std::size_t SignatureHeader::sizeOf(std::string_view introduction)
{
    require(introduction.size() == INTRODUCTION_SIZE && introduction.starts_with(MAGIC),
            "it has another magic number");
    const std::uint32_t count = number(introduction, 8);
    const std::uint32_t storeSize = number(introduction, 12);
    require(count >= 1 && count <= MOST_ENTRIES && storeSize >= TRAILER_SIZE
                && storeSize <= LARGEST_STORE,
            "it has another size");
    return aligned(INTRODUCTION_SIZE + count * INDEX_SIZE + storeSize, 8);
}

SignatureHeader::SignatureHeader(std::string_view bytes)
    : m_start(bytes.substr(0, START_SIZE))
{
    require(bytes.size() == sizeOf(bytes.substr(0, INTRODUCTION_SIZE)), "it ends early");
    const std::size_t count = number(bytes, 8);
    const std::size_t storeSize = number(bytes, 12);
    const std::string_view indices = bytes.substr(INTRODUCTION_SIZE, count * INDEX_SIZE);
    const std::string_view store =
        bytes.substr(INTRODUCTION_SIZE + indices.size(), storeSize - TRAILER_SIZE);
    std::size_t end = 0;
    for (std::size_t i = 1; i < count; ++i)
        takeEntry(indices.substr(i * INDEX_SIZE, INDEX_SIZE), store, end);
    split(find(OUR_TAG) ? find(OUR_TAG)->data : std::string());
    // The region, its trailer, the order of all and what is between them.
    require(this->bytes() == bytes, "it is not laid out as rpm does it");
}

void SignatureHeader::takeEntry(std::string_view index, std::string_view store, std::size_t &end)
{
    const std::uint32_t tag = number(index, 0);
    const std::uint32_t type = number(index, 4);
    const std::size_t offset = number(index, 8);
    const std::uint32_t count = number(index, 12);
    require(tag >= LEAST_TAG && !find(tag) && !find(OUR_TAG), "a tag is where it must not be");
    require(type >= 1 && type <= LAST_TYPE && (type == BINARY || tag != OUR_TAG),
            "an entry is of another type");
    require(offset >= end && offset < store.size(), "entries overlap or are outside of it");
    const std::size_t size = sizeOfData(type, count, store.substr(offset));
    require(size > 0, "an entry is empty or too large");
    m_entries.push_back({tag, type, count, std::string(store.substr(offset, size))});
    end = offset + size;
}

const SignatureHeader::Entry *SignatureHeader::find(std::uint32_t tag) const
{
    const auto found = std::find_if(
        m_entries.begin(), m_entries.end(), [&](const Entry &entry) { return entry.tag == tag; });
    return found == m_entries.end() ? nullptr : &*found;
}

std::string SignatureHeader::bytes() const
{
    std::string index;
    std::string store;
    for (const Entry &entry : m_entries) {
        store.resize(aligned(store.size(), sizeOfType(entry.type)));
        index += written({entry.tag, entry.type, store.size(), entry.count});
        store += entry.data;
    }
    const std::size_t count = m_entries.size() + 1;
    const std::string region = written({REGION_TAG, BINARY, store.size(), TRAILER_SIZE});
    store += written({REGION_TAG, BINARY, 0 - count * INDEX_SIZE, TRAILER_SIZE});
    std::string bytes = m_start + written({count, store.size()});
    bytes += region;
    bytes += index;
    bytes += store;
    bytes.resize(aligned(bytes.size(), 8));
    return bytes;
}

std::vector<std::string> SignatureHeader::signatures() const
{
    const Entry *ours = find(OUR_TAG);
    return ours ? split(ours->data) : std::vector<std::string>();
}

void SignatureHeader::setSignatures(const std::vector<std::string> &signatures)
{
    std::erase_if(m_entries, [](const Entry &entry) { return entry.tag == OUR_TAG; });
    std::string data;
    for (const std::string &signature : signatures)
        data += signature;
    if (!data.empty())
        m_entries.push_back({OUR_TAG, BINARY, static_cast<std::uint32_t>(data.size()), data});
    if (m_entries.size() >= MOST_ENTRIES || bytes().size() > LARGEST_STORE)
        throw Failure("the signature header has no room for more");
}

std::string SignatureHeader::fileSignatures() const
{
    std::string text;
    for (std::uint32_t tag = FIRST_FILE_SIGNATURES_TAG; tag <= LAST_FILE_SIGNATURES_TAG; ++tag)
        if (const Entry *entry = find(tag))
            text += written({tag, entry->type, entry->count, entry->data.size()}) + entry->data;
    return text;
}
