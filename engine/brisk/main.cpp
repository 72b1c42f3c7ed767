#include "sdk.h"
#include "terminal.h"

#include <algorithm>
#include <exception>
#include <fcntl.h>
#include <iostream>
#include <unistd.h>

static constexpr int FAILURE = 1;
static constexpr int USAGE_ERROR = 2;
static constexpr int COMMAND_NOT_FOUND = 127;

static const std::vector<std::string> START_WORDS{"engine", "start"};
static const std::vector<std::string> EXEC_WORDS{"engine", "exec", "-tt", "sb2", "-t"};

static int fail(const std::string &message, int code = FAILURE)
{
    // In one piece: who reads it may take each write for a line.
    std::cerr << "brisk: " + message + '\n';
    return code;
}

static bool engineStarts(const Sdk &sdk)
{
    const std::string fault = sdk.engineFault();
    if (!fault.empty())
        fail("cannot start the build engine: " + fault);
    return fault.empty();
}

static int startEngine(const Sdk &sdk)
{
    if (!engineStarts(sdk))
        return FAILURE;
    std::cout << sdk.engineName() << " is ready" << std::endl;
    return 0;
}

static bool isShellLine(const std::vector<std::string> &words)
{
    return words.size() == 1 && words.front().find_first_of(" \t\n") != std::string::npos;
}

static int execute(const Sdk &sdk, const std::string &target, std::vector<std::string> words)
{
    if (!engineStarts(sdk))
        return FAILURE;
    const auto tools = sdk.toolsOf(target);
    if (!tools)
        return fail("no such build target: " + target);
    if (isShellLine(words))
        return runOnTerminal({{"/bin/sh", "-c", words.front()}, *tools});
    const auto tool = findTool(*tools, words.front());
    if (!tool)
        return fail(words.front() + ": command not found", COMMAND_NOT_FOUND);
    words.front() = *tool;
    return runOnTerminal({std::move(words), *tools});
}

static int run(const std::vector<std::string> &words)
{
    const Sdk sdk = Sdk::ofThisProgram();
    if (words == START_WORDS)
        return startEngine(sdk);
    const auto execEnd = static_cast<std::ptrdiff_t>(EXEC_WORDS.size());
    if (words.size() > EXEC_WORDS.size() + 1
        && std::equal(EXEC_WORDS.begin(), EXEC_WORDS.end(), words.begin()))
        return execute(sdk, words[EXEC_WORDS.size()], {words.begin() + execEnd + 1, words.end()});
    std::cerr << "usage: brisk engine start\n"
                 "       brisk engine exec -tt sb2 -t TARGET COMMAND...\n";
    return USAGE_ERROR;
}

// Descriptors that the caller closed would be handed out again, for something else than they mean.
static void openStandardStreams()
{
    int descriptor = 0;
    do {
        descriptor = open("/dev/null", O_RDWR);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor >= 0)
        close(descriptor);
}

int main(int argc, char *argv[])
{
    openStandardStreams();
    try {
        return run({argv + 1, argv + argc});
    } catch (const std::exception &error) {
        return fail(error.what());
    }
}
