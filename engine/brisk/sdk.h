#pragma once

#include <filesystem>
#include <optional>
#include <string>

/// The SDK installation that a brisk command belongs to, with its one build engine.
class Sdk
{
public:
    /// \a root is the installation folder, the one that holds sdk.ini.
    explicit Sdk(std::filesystem::path root);

    /// The installation that the running executable lies in: the parent of its bin folder.
    static Sdk ofThisProgram();

    /// The build engine's name for people, as sdk.ini gives it.
    std::string engineName() const;

    /// A sentence on what keeps the build engine from starting; empty when nothing does.
    std::string engineFault() const;

    /// The folder with the tools of \a target, or nothing when there is no such target.
    std::optional<std::filesystem::path> toolsOf(const std::string &target) const;

private:
    std::filesystem::path m_root;
};

/// The path of \a tool when it is an executable file directly in \a tools. Names with a slash
/// are paths, not tools, and yield nothing.
std::optional<std::filesystem::path> findTool(const std::filesystem::path &tools,
                                              const std::string &tool);
