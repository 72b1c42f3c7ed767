#pragma once

#include "files.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// A folder with packages, and the signatures beside them: those of a.rpm are the files
/// a.rpm.1.p7s, a.rpm.2.p7s and so on, in the order of their numbers, some of which may be missing.
/// What ends in ".new" was staged by a run that did not come to its end.
class SignatureFolder
{
public:
    /// Throws a Failure when the folder cannot be opened.
    explicit SignatureFolder(const std::string &path);

    /// Which folder it is, whatever path leads there.
    using Id = std::pair<std::uint64_t, std::uint64_t>;
    Id id() const;

    /// Waits until no other run works on the folder; the lock goes with the object.
    void lock() const;
    /// Looks at all that is there, once for all packages.
    void read();

    std::vector<std::uint64_t> numbersOf(const std::string &package) const;
    /// What is written in a signature's file; nothing when it is no file or too large for one.
    std::optional<std::string> signature(const std::string &name) const;
    void remove(const std::string &name) const;
    void removeLeftovers(const std::string &package) const;
    /// Makes sure that the names last, too.
    void synchronize() const;

    int descriptor() const { return m_folder.number(); }

private:
    void add(const char *name);

    const std::string m_path;
    const Descriptor m_folder;
    std::map<std::string, std::vector<std::uint64_t>> m_numbers;
    std::map<std::string, std::vector<std::string>> m_leftovers;
};

/// The name of a signature's file.
std::string signatureName(const std::string &package, std::uint64_t number);

/// A package, and where its signatures are.
struct SignedPackage
{
    std::string path;
    std::string name;
    SignatureFolder *folder = nullptr;

    std::vector<std::uint64_t> numbers() const { return folder->numbersOf(name); }
    /// The path of a signature for people.
    std::string signaturePath(std::uint64_t number) const { return signatureName(path, number); }
};

/// The packages of a run with all their folders.
class SignedPackages
{
public:
    enum class Access { ReadOnly, Locked };

    /// Throws a Failure when a folder cannot be opened.
    SignedPackages(const std::vector<std::string> &paths, Access access);

    /// As they were given.
    const std::vector<SignedPackage> &all() const { return m_packages; }
    /// Each once.
    std::vector<SignedPackage> distinct() const;
    void synchronize() const;

private:
    SignatureFolder *folderOf(const std::string &package);

    std::map<std::string, SignatureFolder *> m_folderOfPath;
    std::map<SignatureFolder::Id, std::unique_ptr<SignatureFolder>> m_folders;
    std::vector<SignedPackage> m_packages;
};

/// A new signature on its way to its name. Until it is kept, its file vanishes with the object.
class StagedSignature
{
public:
    StagedSignature(const SignedPackage &package, std::uint64_t number);
    StagedSignature(StagedSignature &&other) noexcept;
    StagedSignature &operator=(StagedSignature &&) = delete;
    ~StagedSignature();

    /// Writes the signature to a file of another name, where it lasts. Throws a Failure when it
    /// cannot be written.
    void write(const std::string &bytes);
    /// What is in that file.
    std::string written() const;
    /// Gives the file the signature's name. Throws a Failure when something has it already.
    void install();
    void keep() { m_file.clear(); }

private:
    SignatureFolder *m_folder;
    std::string m_package;
    std::string m_name;
    std::string m_file;
};
