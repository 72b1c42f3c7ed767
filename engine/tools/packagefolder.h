#pragma once

#include "files.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// A folder with packages, and what lies beside them: signatures of earlier releases (those of
/// a.rpm are the files a.rpm.1.p7s, a.rpm.2.p7s and so on, in the order of their numbers, some of
/// which may be missing), and what was staged by a run that did not come to its end.
class PackageFolder
{
public:
    /// Throws a Failure when the folder cannot be opened.
    explicit PackageFolder(const std::string &path);

    /// Which folder it is, whatever path leads there.
    using Id = std::pair<std::uint64_t, std::uint64_t>;
    Id id() const;

    /// Waits until no other run works on the folder; the lock goes with the object.
    void lock() const;
    /// Looks at all that is there, once for all packages.
    void read();

    /// The names of the signatures beside a package.
    std::vector<std::string> signaturesBeside(const std::string &package) const;
    /// What is written in a signature's file; nothing when it is no file or too large for one.
    std::optional<std::string> signature(const std::string &name) const;
    void remove(const std::string &name) const;
    void removeLeftovers(const std::string &package) const;
    /// Throws a Failure unless there is room for that many bytes more.
    void requireSpace(std::uint64_t size) const;
    /// Makes sure that the names last, too.
    void synchronize() const;

    int descriptor() const { return m_folder.number(); }

private:
    void add(const char *name);

    const std::string m_path;
    const Descriptor m_folder;
    std::map<std::string, std::map<std::uint64_t, std::string>> m_signatures;
    std::map<std::string, std::vector<std::string>> m_leftovers;
};

/// Where a package is. Links are followed: it is the file that gets signed.
struct PackagePlace
{
    std::string path; ///< as it was given
    std::string file; ///< without links
    std::string name;
    PackageFolder *folder = nullptr;
};

/// The packages of a run with all their folders.
class PackagePlaces
{
public:
    enum class Access { ReadOnly, Locked };

    /// Throws a Failure when a folder cannot be opened.
    PackagePlaces(const std::vector<std::string> &paths, Access access);

    /// As they were given.
    const std::vector<PackagePlace> &all() const { return m_places; }
    /// Each once.
    std::vector<PackagePlace> distinct() const;
    /// Throws a Failure unless a second one of each package fits on the disks.
    void requireSpace() const;
    void synchronize() const;

private:
    PackageFolder *folderOf(const std::string &file);

    std::map<std::string, PackageFolder *> m_folderOfPath;
    std::map<PackageFolder::Id, std::unique_ptr<PackageFolder>> m_folders;
    std::vector<PackagePlace> m_places;
};
