#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The signature header of an RPM package, which stands between the lead and the header that the
/// package's builder made. It is read by the rules of rpm, and more strictly: what it holds is a
/// list of entries, all inside the header's region and laid out as rpm does it, so that there is
/// but one way to write it down. Our own entry holds CMS signatures, and is the last one.
class SignatureHeader
{
public:
    /// How many bytes tell the size of a header.
    static constexpr std::size_t INTRODUCTION_SIZE = 16;

    /// The size of the header that begins like this, with the padding behind it. Throws a Failure
    /// without the package's name, as does the constructor, when this is none in order.
    static std::size_t sizeOf(std::string_view introduction);
    explicit SignatureHeader(std::string_view bytes);

    /// With the padding.
    std::string bytes() const;

    /// Our signatures (DER), in order.
    std::vector<std::string> signatures() const;
    /// Throws a Failure when there is no room for so many.
    void setSignatures(const std::vector<std::string> &signatures);

    /// What the header holds of signatures of the files in the package, whoever made them, in a
    /// form that is the same for the same contents; empty when it has none.
    std::string fileSignatures() const;

private:
    struct Entry
    {
        std::uint32_t tag = 0;
        std::uint32_t type = 0;
        std::uint32_t count = 0;
        std::string data;
    };

    void takeEntry(std::string_view index, std::string_view store, std::size_t &end);
    const Entry *find(std::uint32_t tag) const;

    std::string m_start; ///< magic number and reserved bytes
    std::vector<Entry> m_entries;
};
