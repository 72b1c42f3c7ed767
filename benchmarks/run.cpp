#include "command.h"
#include "programs.h"
#include "themes.h"
#include "workplace.h"

#include <QFile>
#include <QProcess>

namespace Command = Sealkit::Internal::Command;

namespace Benchmarks {

constexpr char INSTANT_PROGRAM[] = "/bin/true";
constexpr char INSTANT_TOOL[] = "instant";

static void execute(const QStringList &commandLine)
{
    const auto ignoreOutput = [](const QByteArray &, const QByteArray &, QByteArray &) {
        return true;
    };
    require(Command::exec(ignoreOutput, commandLine).succeeded(), "the run failed");
}

static void runQProcess(const QString &program)
{
    QProcess process;
    process.start(program);
    require(process.waitForFinished() && process.exitCode() == 0, "the run failed");
}

static std::vector<std::string> toWords(const QStringList &commandLine)
{
    std::vector<std::string> words;
    for (const QString &word : commandLine)
        words.push_back(word.toStdString());
    return words;
}

static QStringList commandLineOfTool(const Workplace &workplace)
{
    QFile::copy(INSTANT_PROGRAM, workplace.sdk().tool(INSTANT_TOOL));
    return Command::compose<Command::brisk::engine::target>(RPMSIGN_TARGET) << INSTANT_TOOL;
}

void addRuns(const Workplace &workplace, Extent extent)
{
    add({.what = "run of a program that ends at once",
         .size = "1 run",
         .unit = "ms",
         .rounds = extent.pick(1001, 1),
         .ours = [] { return milliseconds([] { execute({INSTANT_PROGRAM}); }); },
         .yardstick = [] { return milliseconds([] { runQProcess(INSTANT_PROGRAM); }); },
         .aim = atMostTimes(1.05)});

    const QStringList commandLine = commandLineOfTool(workplace);
    add({.what = "run through brisk of a tool that ends at once",
         .size = "1 run",
         .unit = "ms",
         .rounds = extent.pick(201, 1),
         .ours = [commandLine] { return milliseconds([&] { execute(commandLine); }); },
         .yardstick =
             [words = toWords(commandLine)] { return milliseconds([&] { spawnAndWait(words); }); },
         .aim = atMostTimes(1.10)});
}

} // namespace Benchmarks
