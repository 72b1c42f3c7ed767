#include "signatureheader.h"

#include "failure.h"

#include <algorithm>
#include <openssl/asn1.h>
#include <set>

static constexpr std::size_t START_SIZE = 8;
// As many as rpm reads.
static constexpr HeaderLimits LIMITS{32, 0x4000000};

static constexpr std::uint32_t REGION_TAG = 62;
static constexpr std::uint32_t IMA_SIGNATURES_TAG = 274;
static constexpr std::uint32_t IMA_SIZE_TAG = 275;
static constexpr std::uint32_t LAST_FILE_SIGNATURES_TAG = 277; // the other two: of fs-verity
// Far above all that rpm has, so that it stays the last one when rpm sorts the entries.
static constexpr std::uint32_t OUR_TAG = 0x5365616c;
static constexpr std::uint32_t RESERVED_SPACE_TAG = 1008;
// rpm's own signatures of the header, by kind and generation.
static constexpr std::uint32_t RPM_SIGNATURE_TAGS[] = {267, 268, 278, 1002, 1005};
// What our entry begins with when the signatures of files are ours, too: an octet string, in DER,
// of the size of the reserved space and the padding before.
static constexpr std::string_view OWN_START("\x04\x08", 2);
static constexpr std::size_t OWN_START_SIZE = 10;

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
        requireHeader(flags == V_ASN1_CONSTRUCTED && tag == V_ASN1_SEQUENCE,
                      "its signatures are none");
        const auto whole = static_cast<std::size_t>(content - start + size);
        parts.emplace_back(sequences.substr(0, whole));
        sequences.remove_prefix(whole);
    }
    return parts;
}

std::size_t SignatureHeader::sizeOf(std::string_view introduction)
{
    return aligned(headerSize(introduction, LIMITS), 8);
}

SignatureHeader::SignatureHeader(std::string_view bytes)
    : m_start(bytes.substr(0, START_SIZE))
{
    requireHeader(bytes.size() == sizeOf(bytes.substr(0, HEADER_INTRODUCTION_SIZE)),
                  "it ends early");
    m_entries = headerEntries(bytes);
    std::set<std::uint32_t> tags;
    for (const HeaderEntry &entry : m_entries)
        requireHeader(tags.insert(entry.tag).second, "a tag is there twice");
    if (const HeaderEntry *ours = find(OUR_TAG)) {
        requireHeader(ours->type == TYPE_BINARY && ours == &m_entries.back(),
                      "our entry is not where it belongs");
        if (ours->data.starts_with(OWN_START) && ours->data.size() >= OWN_START_SIZE)
            m_before = {bigEndianNumber(ours->data, 2), bigEndianNumber(ours->data, 6)};
        signatures();
    }
    // The region, its trailer and what is between the entries.
    requireHeader(this->bytes() == bytes, "it is not laid out as rpm does it");
}

const HeaderEntry *SignatureHeader::find(std::uint32_t tag) const
{
    const auto found = std::find_if(
        m_entries.begin(), m_entries.end(), [&](const auto &entry) { return entry.tag == tag; });
    return found == m_entries.end() ? nullptr : &*found;
}

std::string SignatureHeader::bytes() const
{
    std::string index;
    std::string store;
    for (const HeaderEntry &entry : m_entries) {
        store.resize(aligned(store.size(), headerAlignment(entry.type)));
        index += bigEndian({entry.tag, entry.type, store.size(), entry.count});
        store += entry.data;
    }
    const std::size_t count = m_entries.size() + 1;
    const std::string region =
        bigEndian({REGION_TAG, TYPE_BINARY, store.size(), HEADER_TRAILER_SIZE});
    store +=
        bigEndian({REGION_TAG, TYPE_BINARY, 0 - count * HEADER_INDEX_SIZE, HEADER_TRAILER_SIZE});
    std::string bytes = m_start + bigEndian({count, store.size()});
    bytes += region;
    bytes += index;
    bytes += store;
    bytes.resize(aligned(bytes.size(), 8));
    return bytes;
}

std::vector<std::string> SignatureHeader::signatures() const
{
    const HeaderEntry *ours = find(OUR_TAG);
    if (!ours)
        return {};
    return split(std::string_view(ours->data).substr(m_before ? OWN_START_SIZE : 0));
}

std::string SignatureHeader::ownStart() const
{
    return m_before
               ? std::string(OWN_START) + bigEndian({m_before->reservedSize, m_before->padding})
               : std::string();
}

void SignatureHeader::setSignatures(const std::vector<std::string> &signatures)
{
    std::erase_if(m_entries, [](const HeaderEntry &entry) { return entry.tag == OUR_TAG; });
    if (signatures.empty()) {
        removeOwnFileSignatures();
        return;
    }
    std::string data = ownStart();
    for (const std::string &signature : signatures)
        data += signature;
    m_entries.push_back({OUR_TAG, TYPE_BINARY, static_cast<std::uint32_t>(data.size()), data});
    if (m_entries.size() >= LIMITS.entries || bytes().size() > LIMITS.storeSize)
        throw Failure("the signature header has no room for more");
}

static bool isOfFiles(const HeaderEntry &entry)
{
    return entry.tag == IMA_SIGNATURES_TAG || entry.tag == IMA_SIZE_TAG;
}

static std::size_t paddingOf(const std::vector<HeaderEntry> &entries)
{
    std::size_t padding = 0;
    std::size_t end = 0;
    for (const HeaderEntry &entry : entries) {
        const std::size_t start = aligned(end, headerAlignment(entry.type));
        padding += start - end;
        end = start + entry.data.size();
    }
    return padding;
}

// How much padding there is because of them; less than none wraps around, which adds up in the end.
std::size_t SignatureHeader::paddingByFileSignatures() const
{
    std::vector<HeaderEntry> others = m_entries;
    std::erase_if(others, isOfFiles);
    return paddingOf(m_entries) - paddingOf(others);
}

std::size_t SignatureHeader::reservedSize() const
{
    const HeaderEntry *reserved = find(RESERVED_SPACE_TAG);
    return reserved ? reserved->data.size() : 0;
}

bool SignatureHeader::canBeHadBack() const
{
    // Where it has grown, rpm gives back what it takes.
    return !m_before || reservedSize() >= m_before->reservedSize
           || std::any_of(std::begin(RPM_SIGNATURE_TAGS),
                          std::end(RPM_SIGNATURE_TAGS),
                          [this](std::uint32_t tag) { return find(tag) != nullptr; });
}

// When rpm adds a signature, it takes as much from the space that it reserves as the header grows,
// and that depends on the padding, to which our signatures of files have contributed.
void SignatureHeader::removeOwnFileSignatures()
{
    if (!m_before)
        return;
    const auto before = static_cast<std::uint32_t>(m_before->padding);
    const auto contribution = static_cast<std::uint32_t>(paddingByFileSignatures()) - before;
    const bool hasRpmTaken = reservedSize() != m_before->reservedSize;
    std::erase_if(m_entries, isOfFiles);
    m_before.reset();
    for (HeaderEntry &entry : m_entries) {
        if (entry.tag != RESERVED_SPACE_TAG || !hasRpmTaken)
            continue;
        entry.count += contribution;
        entry.data.resize(entry.count);
    }
}

std::string SignatureHeader::fileSignatures() const
{
    std::string text;
    for (std::uint32_t tag = IMA_SIGNATURES_TAG; tag <= LAST_FILE_SIGNATURES_TAG; ++tag)
        if (const HeaderEntry *entry = find(tag))
            text += bigEndian({tag, entry->type, entry->count, entry->data.size()}) + entry->data;
    return text;
}

std::vector<std::string> SignatureHeader::imaSignatures() const
{
    const HeaderEntry *entry = find(IMA_SIGNATURES_TAG);
    return entry ? entry->texts() : std::vector<std::string>();
}

void SignatureHeader::setImaSignatures(const std::vector<std::string> &signatures)
{
    std::string texts;
    std::size_t longest = 0;
    for (const std::string &signature : signatures) {
        texts += signature + '\0';
        longest = std::max(longest, signature.size() / 2);
    }
    const auto place = std::find_if(m_entries.begin(), m_entries.end(), [](const auto &entry) {
        return entry.tag > IMA_SIGNATURES_TAG;
    });
    const auto count = static_cast<std::uint32_t>(signatures.size());
    m_entries.insert(place,
                     {{IMA_SIGNATURES_TAG, TYPE_STRING_ARRAY, count, texts},
                      {IMA_SIZE_TAG, TYPE_INT32, 1, bigEndian({longest})}});
    m_before = {reservedSize(), paddingByFileSignatures()};
}
