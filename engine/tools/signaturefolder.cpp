#include "signaturefolder.h"

#include "failure.h"
#include "interruption.h"
#include "text.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <set>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>

static constexpr std::string_view SUFFIX = ".p7s";
static constexpr std::string_view STAGED_SUFFIX = ".new";
// More digits make no number that can be counted up.
static constexpr std::size_t MAXIMUM_DIGITS = 18;
// A signature with all certificates up to its root takes a few kilobytes.
static constexpr off_t MAXIMUM_SIZE = 0x100000;

std::string signatureName(const std::string &package, std::uint64_t number)
{
    return package + '.' + std::to_string(number) + std::string(SUFFIX);
}

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

SignatureFolder::SignatureFolder(const std::string &path)
    : m_path(path)
    , m_folder(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    if (!m_folder.isOpen())
        throw Failure("cannot open the folder: " + printable(path) + reason(errno));
}

SignatureFolder::Id SignatureFolder::id() const
{
    struct stat status = {};
    fstat(m_folder.number(), &status);
    return {status.st_dev, status.st_ino};
}

// Who waits longer than usual is told what for.
void SignatureFolder::lock() const
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

void SignatureFolder::read()
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
    for (auto &[package, numbers] : m_numbers)
        std::sort(numbers.begin(), numbers.end());
}

void SignatureFolder::add(const char *name)
{
    std::string_view plainName = name;
    const bool isStaged = takeSuffix(plainName, STAGED_SUFFIX);
    const auto [package, number] = parsed(plainName);
    struct stat status;
    if (number == 0)
        return;
    if (isStaged)
        m_leftovers[package].emplace_back(name);
    else if (fstatat(m_folder.number(), name, &status, 0) == 0 && S_ISREG(status.st_mode))
        m_numbers[package].push_back(number);
}

std::vector<std::uint64_t> SignatureFolder::numbersOf(const std::string &package) const
{
    const auto found = m_numbers.find(package);
    return found == m_numbers.end() ? std::vector<std::uint64_t>() : found->second;
}

std::optional<std::string> SignatureFolder::signature(const std::string &name) const
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

void SignatureFolder::remove(const std::string &name) const
{
    if (unlinkat(m_folder.number(), name.c_str(), 0) != 0 && errno != ENOENT)
        throw Failure("cannot remove: " + printable(m_path + '/' + name) + reason(errno));
}

void SignatureFolder::removeLeftovers(const std::string &package) const
{
    const auto found = m_leftovers.find(package);
    if (found == m_leftovers.end())
        return;
    for (const std::string &name : found->second)
        unlinkat(m_folder.number(), name.c_str(), 0); // A folder stays, and is in the way.
}

void SignatureFolder::synchronize() const
{
    if (fsync(m_folder.number()) != 0 && errno != EINVAL) // Not every file system can.
        throw Failure("cannot bring the folder to the disk: " + printable(m_path) + reason(errno));
}

SignedPackages::SignedPackages(const std::vector<std::string> &paths, Access access)
{
    for (const std::string &path : paths)
        m_packages.push_back({path, path.substr(path.rfind('/') + 1), folderOf(path)});
    // In the same order for each run, so that no two wait for each other.
    for (const auto &[id, folder] : m_folders) {
        if (access == Access::Locked)
            folder->lock();
        folder->read();
    }
}

SignatureFolder *SignedPackages::folderOf(const std::string &package)
{
    const std::size_t slash = package.rfind('/');
    const std::string path =
        slash == std::string::npos ? "." : package.substr(0, std::max(slash, 1UL));
    SignatureFolder *&folder = m_folderOfPath[path];
    if (!folder) {
        auto opened = std::make_unique<SignatureFolder>(path);
        const SignatureFolder::Id id = opened->id();
        folder = m_folders.try_emplace(id, std::move(opened)).first->second.get();
    }
    return folder;
}

std::vector<SignedPackage> SignedPackages::distinct() const
{
    std::vector<SignedPackage> packages;
    std::set<std::pair<SignatureFolder *, std::string>> known;
    for (const SignedPackage &package : m_packages)
        if (known.emplace(package.folder, package.name).second)
            packages.push_back(package);
    return packages;
}

void SignedPackages::synchronize() const
{
    for (const auto &[id, folder] : m_folders)
        folder->synchronize();
}

static Failure cannotWrite(const std::string &package, int error)
{
    return Failure(
        error == ENAMETOOLONG
            ? "the name is too long for a signature beside the package: " + printable(package)
            : "cannot write signatures beside the package: " + printable(package) + reason(error));
}

StagedSignature::StagedSignature(const SignedPackage &package, std::uint64_t number)
    : m_folder(package.folder)
    , m_package(package.path)
    , m_name(signatureName(package.name, number))
{
}

StagedSignature::StagedSignature(StagedSignature &&other) noexcept
    : m_folder(other.m_folder)
    , m_package(std::move(other.m_package))
    , m_name(std::move(other.m_name))
    , m_file(std::exchange(other.m_file, {}))
{
}

StagedSignature::~StagedSignature()
{
    if (!m_file.empty())
        unlinkat(m_folder->descriptor(), m_file.c_str(), 0);
}

void StagedSignature::write(const std::string &bytes)
{
    struct stat status;
    const std::string name = m_name + std::string(STAGED_SUFFIX);
    if (fstatat(m_folder->descriptor(), m_name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0)
        throw cannotWrite(m_package, EEXIST);
    const Descriptor file(openat(m_folder->descriptor(),
                                 name.c_str(),
                                 O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                                 0666));
    if (!file.isOpen())
        throw cannotWrite(m_package, errno);
    m_file = name;
    if (!writeAll(file.number(), bytes) || fsync(file.number()) != 0)
        throw cannotWrite(m_package, errno);
}

std::string StagedSignature::written() const
{
    return m_folder->signature(m_file).value_or(std::string());
}

void StagedSignature::install()
{
    const int folder = m_folder->descriptor();
    int result = renameat2(folder, m_file.c_str(), folder, m_name.c_str(), RENAME_NOREPLACE);
    if (result != 0 && errno == EINVAL) // Not every file system has this.
        result = renameat(folder, m_file.c_str(), folder, m_name.c_str());
    if (result != 0)
        throw Failure("cannot put a signature beside the package: " + printable(m_package)
                      + reason(errno));
    m_file = m_name;
}
