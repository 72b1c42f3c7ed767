// What the user waits for in the IDE: its start, the dialog, and a tool that prints much.
#include "comparison.h"
#include "files.h"
#include "outputpane.h"
#include "rpmsignexternal.h"
#include "signdialog.h"
#include "workplace.h"

#include <host/generalmessages.h>

#include <QElapsedTimer>
#include <QFormLayout>
#include <QSettings>
#include <QTemporaryDir>

#include <algorithm>

using namespace Sealkit::Internal;
using Core::Host::GeneralMessages;

namespace Benchmarks {

static constexpr char BRISK_PATH_KEY[] = "Kiln.BriskPath";

/// In a fresh process, as libraries load only once.
static Measures starting(const Workplace &workplace)
{
    const QString program = QCoreApplication::applicationFilePath();
    const QStringList start{program, "--start-plugin", workplace.sdk().path()};
    return {[start] { return outputOf(start).toDouble(); }};
}

template<typename Maker>
static double firstShow(const Maker &make)
{
    // The engine has an answer to everything at once, so that the time is the dialog's own.
    QSettings().setValue(BRISK_PATH_KEY, "/bin/true");
    std::unique_ptr<QDialog> dialog;
    const double time = milliseconds([&] {
        dialog = make();
        dialog->show();
        QCoreApplication::processEvents(); // paints it
    });
    QSettings().remove(BRISK_PATH_KEY);
    return time;
}

static Measures showing()
{
    const auto makeOurs = [] { return std::make_unique<SignDialog>(nullptr); };
    const int widgetCount = int(makeOurs()->findChildren<QWidget *>().size());
    const auto makePlain = [=] {
        auto dialog = std::make_unique<QDialog>();
        auto *form = new QFormLayout(dialog.get());
        for (int i = 0; i < widgetCount / 2; ++i)
            form->addRow(new QLabel(QStringLiteral("Label %1").arg(i)), new QLineEdit);
        return dialog;
    };
    return {[=] { return firstShow(makeOurs); }, [=] { return firstShow(makePlain); }};
}

/// Runs a tool that prints so many lines of 80 characters and shows them. Returns the longest time
/// that the event loop keeps a timer of a millisecond waiting meanwhile.
static double longestWait(int lineCount)
{
    const QTemporaryDir folder;
    const QString tool = folder.filePath("brisk");
    writeScript(tool, "exec " FAKE_TOOL " lines:" + QByteArray::number(lineCount) + '\n');
    QSettings().setValue(BRISK_PATH_KEY, tool);
    Workbench::OutputPane pane;
    QObject::connect(GeneralMessages::instance(),
                     &GeneralMessages::messageWritten,
                     &pane,
                     &Workbench::OutputPane::appendMessage);
    pane.resize(800, 600);
    pane.show();
    QCoreApplication::processEvents();

    double longest = 0;
    QElapsedTimer clock;
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    timer.callOnTimeout([&] {
        longest = std::max(longest, double(clock.nsecsElapsed()) / 1e6 - 1);
        clock.start();
    });
    clock.start();
    timer.start(1);
    const Command::Result result = RpmsignExternal(nullptr).dumpSignature({}, {});
    require(result.succeeded() && result.stdOut.size() == 80 * lineCount, "output got lost");
    while (!pane.showsAll())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QSettings().remove(BRISK_PATH_KEY);
    return longest;
}

QList<Comparison> windowRows(const Workplace &workplace)
{
    const int count = pick(50'000, 1000);
    const auto start = [&workplace] { return starting(workplace); };
    const auto wait = [count] { return Measures{[count] { return longestWait(count); }}; };
    const QString lines = QString::number(count) + " lines";
    return {{"start of the plugin", "1 engine", pick(51, 1), start, 10},
            {"first show of the dialog, and of a plain one", "1 window", pick(51, 1), showing, 10},
            {"a tool prints: longest wait of the window", lines, pick(11, 1), wait, 30}};
}

} // namespace Benchmarks
