#pragma once

#include "package.h"
#include "packagefolder.h"

#include <string>
#include <string_view>
#include <sys/stat.h>

/// A new file that takes a package's place: the same package with another signature header. Until
/// it is kept, all is as it was when the object goes.
class Replacement
{
public:
    /// Throws a Failure when the package must not be replaced.
    Replacement(const PackagePlace &place, const Package &package, const SignatureHeader &header);
    ~Replacement();
    Replacement(const Replacement &) = delete;
    Replacement &operator=(const Replacement &) = delete;

    /// Writes the new file under a name of its own, with owner, mode and attributes of the package.
    /// Throws a Failure when that is not possible. The file is still to be brought to the disk.
    Descriptor write(const Package &package);
    void synchronize(const Descriptor &file) const;
    /// Where the new file is.
    std::string stagedFile() const;

    /// Throws a Failure unless the package is what it was when it was opened, wherever it is now.
    void requireUnchanged() const;
    /// Gives the new file the package's name, and the package that of the new file.
    void exchange();
    /// Removes the package that was replaced.
    void keep();

private:
    Failure cannotWrite(int error) const;
    void undo() noexcept;

    const PackagePlace m_place;
    const SignatureHeader m_header;
    const struct stat m_original;
    struct stat m_new = {};
    std::string m_name; ///< of the staged file; empty when there is none
    bool m_isExchanged = false;
};

/// Of which package the name of a staged file tells; empty for any other name.
std::string packageOfStaged(std::string_view name);
