#include "sdk.h"

#include <fstream>
#include <unistd.h>

namespace fs = std::filesystem;

static std::string trimmed(const std::string &text)
{
    const char *const blanks = " \t\r";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// Qt's ini writer puts values with commas, semicolons and the like in quotes and doubles
// backslashes.
static std::string unescaped(const std::string &value)
{
    std::string result;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '"')
            continue;
        if (value[i] == '\\' && i + 1 < value.size())
            ++i;
        result += value[i];
    }
    return result;
}

static std::string
iniValue(const fs::path &file, const std::string &section, const std::string &key)
{
    std::ifstream stream(file);
    bool inSection = false;
    for (std::string line; std::getline(stream, line);) {
        line = trimmed(line);
        if (line.starts_with('[')) {
            inSection = line == '[' + section + ']';
            continue;
        }
        const auto equals = line.find('=');
        if (inSection && equals != std::string::npos && trimmed(line.substr(0, equals)) == key)
            return unescaped(trimmed(line.substr(equals + 1)));
    }
    return {};
}

static bool isDirectory(const fs::path &path)
{
    std::error_code error;
    return fs::is_directory(path, error);
}

// True for what may stand between two slashes of a path and stays inside the folder before it.
static bool isPlainName(const std::string &name)
{
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos;
}

Sdk::Sdk(fs::path root)
    : m_root(std::move(root))
{
}

Sdk Sdk::ofThisProgram()
{
    std::error_code error;
    return Sdk(fs::read_symlink("/proc/self/exe", error).parent_path().parent_path());
}

std::string Sdk::engineName() const
{
    return iniValue(m_root / "sdk.ini", "BuildEngine", "Name");
}

std::string Sdk::engineFault() const
{
    const fs::path targets = m_root / "engine" / "targets";
    if (!isDirectory(targets))
        return "there are no build targets in " + targets.string();
    const std::string sharedSource = iniValue(m_root / "sdk.ini", "BuildEngine", "SharedSource");
    if (sharedSource.empty())
        return (m_root / "sdk.ini").string() + " names no shared source folder";
    if (!isDirectory(m_root / sharedSource))
        return "the shared source folder is missing: " + (m_root / sharedSource).string();
    return {};
}

std::optional<fs::path> Sdk::toolsOf(const std::string &target) const
{
    const fs::path folder = m_root / "engine" / "targets" / target;
    if (!isPlainName(target) || !isDirectory(folder))
        return std::nullopt;
    return folder / "bin";
}

std::optional<fs::path> findTool(const fs::path &tools, const std::string &tool)
{
    const fs::path path = tools / tool;
    std::error_code error;
    if (!isPlainName(tool) || !fs::is_regular_file(path, error) || access(path.c_str(), X_OK) != 0)
        return std::nullopt;
    return path;
}
