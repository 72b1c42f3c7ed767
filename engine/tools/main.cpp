#include "commands.h"
#include "failure.h"
#include "files.h"
#include "interruption.h"
#include "keys.h"
#include "tools.h"

#include <csignal>
#include <openssl/crypto.h>

// This program is installed once for each tool; the tool is the one by whose name it is started.
// An ending behind a dot does not matter: it may have been renamed to make room for a wrapper.
static const Tool *toolFor(std::string_view program)
{
    const std::string_view name = program.substr(program.rfind('/') + 1);
    for (const Tool *tool : {&RPMSIGN_EXTERNAL, &CUSTOMER_SIGN, &NXVCERT_CLI})
        if (name == tool->name || name.starts_with(std::string(tool->name) + '.'))
            return tool;
    return nullptr;
}

// The target's configuration, which makes the GOST algorithms available where their engine is
// there.
static void configureLibcrypto()
{
    OPENSSL_INIT_SETTINGS *settings = OPENSSL_INIT_new();
    OPENSSL_INIT_set_config_filename(settings, targetFile("etc/openssl.cnf").c_str());
    OPENSSL_init_crypto(OPENSSL_INIT_LOAD_CONFIG, settings);
    OPENSSL_INIT_free(settings);
}

static int run(const Tool &tool, std::vector<std::string> arguments)
{
    const std::string error = std::string(tool.name) + ": error: ";
    const Interruption interruption;
    try {
        configureLibcrypto();
        Words words(std::move(arguments));
        tool.run(words);
        return 0;
    } catch (const UsageError &usageError) {
        writeAll(STDERR_FILENO, error + usageError.what() + '\n' + std::string(tool.usage));
        return 2;
    } catch (const Interrupted &interrupted) {
        return 128 + interrupted.signalNumber;
    } catch (const std::exception &exception) {
        writeAll(STDERR_FILENO, error + exception.what() + '\n');
        return 1;
    }
}

int main(int argc, char *argv[])
{
    // A file that becomes too large and an output that nobody reads are errors as any other.
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    wipeFreedMemory();
    const Tool *tool = toolFor(argc > 0 ? argv[0] : "");
    if (tool)
        return run(*tool, {argv + 1, argv + argc});
    writeAll(STDERR_FILENO, "to be started as rpmsign-external, customer-sign or nxvcert-cli\n");
    return 2;
}
