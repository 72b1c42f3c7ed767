#include "packagefolder.h"

#include "replacement.h"

#include "failure.h"
#include "interruption.h"
#include "text.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <set>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <thread>

static constexpr std::string_view SUFFIX = ".p7s";
static constexpr std::string_view STAGED_SUFFIX = ".new";
// More digits make no number that can be counted up.
static constexpr std::size_t MAXIMUM_DIGITS = 18;
// A signature with all certificates up to its root takes a few kilobytes.
static constexpr off_t MAXIMUM_SIZE = 0x100000;
// What a run adds to a package, roughly.
static constexpr std::uint64_t LARGEST_GROWTH = 0x4000;

static bool takeSuffix(std::string_view &text, std::string_view suffix)
{
    if (!text.ends_with(suffix))
        return false;
    text.remove_suffix(suffix.size());
    return true;
}

// "a.rpm.12.p7s" gives "a.rpm" and 12; another name gives 0.
static std::pair<std::string, std::uint64_t> parsed(std::string_view name)
{
    const std::size_t dot = takeSuffix(name, SUFFIX) ? name.rfind('.') : std::string_view::npos;
    if (dot == std::string_view::npos)
        return {};
    const std::string digits(name.substr(dot + 1));
    if (digits.empty() || digits.size() > MAXIMUM_DIGITS || digits.front() == '0'
        || digits.find_first_not_of("0123456789") != std::string::npos)
        return {};
    return {std::string(name.substr(0, dot)), std::stoull(digits)};
}

PackageFolder::PackageFolder(const std::string &path)
    : m_path(path)
    , m_folder(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    if (!m_folder.isOpen())
        throw Failure("cannot open the folder: " + printable(path) + reason(errno));
}

PackageFolder::Id PackageFolder::id() const
{
    struct stat status = {};
    fstat(m_folder.number(), &status);
    return {status.st_dev, status.st_ino};
}

// Who waits longer than usual is told what for.
void PackageFolder::lock() const
{
    constexpr auto patience = std::chrono::seconds(2);
    constexpr auto pause = std::chrono::milliseconds(20);
    const auto begin = std::chrono::steady_clock::now();
    int waiting = LOCK_NB;
    while (flock(m_folder.number(), LOCK_EX | waiting) != 0) {
        const int error = errno;
        Interruption::check();
        if (error != EINTR && error != EWOULDBLOCK)
            throw Failure("cannot lock the folder: " + printable(m_path) + reason(error));
        if (waiting != 0 && std::chrono::steady_clock::now() - begin > patience) {
            writeAll(STDERR_FILENO,
                     "waiting for another run to leave the folder: " + printable(m_path) + '\n');
            waiting = 0;
        } else if (waiting != 0) {
            std::this_thread::sleep_for(pause);
        }
    }
}

void PackageFolder::read()
{
    DIR *entries = fdopendir(openat(m_folder.number(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!entries)
        throw Failure("cannot read the folder: " + printable(m_path) + reason(errno));
    const dirent *entry = nullptr;
    while (errno = 0, (entry = readdir(entries)) != nullptr)
        add(entry->d_name);
    const bool isComplete = errno == 0;
    closedir(entries);
    if (!isComplete)
        throw Failure("cannot read the folder: " + printable(m_path) + reason(errno));
}

void PackageFolder::add(const char *name)
{
    if (const std::string package = packageOfStaged(name); !package.empty())
        m_leftovers[package].emplace_back(name);
    std::string_view plainName = name;
    const bool isStaged = takeSuffix(plainName, STAGED_SUFFIX);
    const auto [package, number] = parsed(plainName);
    struct stat status;
    if (number == 0)
        return;
    if (isStaged)
        m_leftovers[package].emplace_back(name);
    else if (fstatat(m_folder.number(), name, &status, 0) == 0 && S_ISREG(status.st_mode))
        m_signatures[package][number] = name;
}

std::vector<std::string> PackageFolder::signaturesBeside(const std::string &package) const
{
    std::vector<std::string> names;
    if (const auto found = m_signatures.find(package); found != m_signatures.end())
        for (const auto &[number, name] : found->second)
            names.push_back(name);
    return names;
}

std::optional<std::string> PackageFolder::signature(const std::string &name) const
{
    const Descriptor file(openat(m_folder.number(), name.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status;
    if (!file.isOpen() || fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)
        || status.st_size > MAXIMUM_SIZE)
        return std::nullopt;
    std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
    const ssize_t count = pread(file.number(), bytes.data(), bytes.size(), 0);
    if (count != status.st_size)
        return std::nullopt;
    return bytes;
}

void PackageFolder::remove(const std::string &name) const
{
    if (unlinkat(m_folder.number(), name.c_str(), 0) != 0 && errno != ENOENT)
        throw Failure("cannot remove: " + printable(m_path + '/' + name) + reason(errno));
}

void PackageFolder::removeLeftovers(const std::string &package) const
{
    const auto found = m_leftovers.find(package);
    if (found == m_leftovers.end())
        return;
    for (const std::string &name : found->second)
        unlinkat(m_folder.number(), name.c_str(), 0); // A folder stays, and is in the way.
}

void PackageFolder::requireSpace(std::uint64_t size) const
{
    struct statvfs disk;
    if (fstatvfs(m_folder.number(), &disk) != 0)
        return; // Writing tells.
    const std::uint64_t blocks = geteuid() == 0 ? disk.f_bfree : disk.f_bavail;
    if (blocks * disk.f_frsize < size)
        throw Failure("there is no room for new packages on the disk: " + printable(m_path));
}

void PackageFolder::synchronize() const
{
    if (fsync(m_folder.number()) != 0 && errno != EINVAL) // Not every file system can.
        throw Failure("cannot bring the folder to the disk: " + printable(m_path) + reason(errno));
}

// What cannot be resolved cannot be opened either, which is told where that is tried.
static std::string withoutLinks(const std::string &path)
{
    char *resolved = realpath(path.c_str(), nullptr);
    const std::string result = resolved ? resolved : path;
    std::free(resolved);
    return result;
}

PackagePlaces::PackagePlaces(const std::vector<std::string> &paths, Access access)
{
    for (const std::string &path : paths) {
        const std::string file = withoutLinks(path);
        m_places.push_back({path, file, file.substr(file.rfind('/') + 1), folderOf(file)});
    }
    // In the same order for each run, so that no two wait for each other.
    for (const auto &[id, folder] : m_folders) {
        if (access == Access::Locked)
            folder->lock();
        folder->read();
    }
}

PackageFolder *PackagePlaces::folderOf(const std::string &file)
{
    const std::size_t slash = file.rfind('/');
    const std::string path =
        slash == std::string::npos ? "." : file.substr(0, std::max(slash, 1UL));
    PackageFolder *&folder = m_folderOfPath[path];
    if (!folder) {
        auto opened = std::make_unique<PackageFolder>(path);
        const PackageFolder::Id id = opened->id();
        folder = m_folders.try_emplace(id, std::move(opened)).first->second.get();
    }
    return folder;
}

std::vector<PackagePlace> PackagePlaces::distinct() const
{
    std::vector<PackagePlace> places;
    std::set<std::pair<PackageFolder *, std::string>> known;
    for (const PackagePlace &place : m_places)
        if (known.emplace(place.folder, place.name).second)
            places.push_back(place);
    return places;
}

void PackagePlaces::requireSpace() const
{
    std::map<std::uint64_t, std::uint64_t> sizes; // by disks
    for (const PackagePlace &place : distinct()) {
        struct stat status = {};
        fstatat(place.folder->descriptor(), place.name.c_str(), &status, 0);
        std::uint64_t &size = sizes[place.folder->id().first];
        size += static_cast<std::uint64_t>(status.st_size) + LARGEST_GROWTH;
        place.folder->requireSpace(size);
    }
}

void PackagePlaces::synchronize() const
{
    for (const auto &[id, folder] : m_folders)
        folder->synchronize();
}
