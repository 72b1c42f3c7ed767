#pragma once

#include "rpmheader.h"

#include <cstddef>
#include <cstdint>
#include <optional>
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
    /// The size of the header that begins like this, with the padding behind it. Throws a Failure
    /// without the package's name, as does the constructor, when this is none in order.
    static std::size_t sizeOf(std::string_view introduction);
    explicit SignatureHeader(std::string_view bytes);

    /// With the padding.
    std::string bytes() const;

    /// Our signatures (DER), in order.
    std::vector<std::string> signatures() const;
    /// Without any, our signatures of files go, too. Throws a Failure when there is no room for so
    /// many.
    void setSignatures(const std::vector<std::string> &signatures);

    /// What the header holds of signatures of the files in the package, whoever made them, in a
    /// form that is the same for the same contents; empty when it has none.
    std::string fileSignatures() const;
    /// One for each file, in hexadecimal digits; empty for a file that is not signed. None when
    /// there are none of IMA.
    std::vector<std::string> imaSignatures() const;
    /// Sets those. There must be none yet.
    void setImaSignatures(const std::vector<std::string> &signatures);
    /// False when it cannot be told what rpm would have made of the header without our signatures
    /// of files: it has changed the space that it reserves, for a signature that is gone again.
    bool canBeHadBack() const;

private:
    /// What there was when the signatures of files came.
    struct Before
    {
        std::size_t reservedSize = 0;
        std::size_t padding = 0;
    };

    const HeaderEntry *find(std::uint32_t tag) const;
    std::size_t reservedSize() const;
    std::size_t paddingByFileSignatures() const;
    void removeOwnFileSignatures();
    std::string ownStart() const;

    std::string m_start; ///< magic number and reserved bytes
    std::vector<HeaderEntry> m_entries;
    std::optional<Before> m_before; ///< when the signatures of files are ours
};
