#include "ondemand.h"
#include "outputpane.h"
#include "signdialog.h"
#include "themes.h"

#include <QCoreApplication>
#include <QDialog>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QSettings>
#include <QTest>
#include <QVBoxLayout>

#include <algorithm>
#include <optional>
#include <utility>

using Sealkit::Internal::SignDialog;

namespace Benchmarks {

/// Waits for the first painting of a window, also when that happens in an event loop within a call.
class PaintWatch : public QObject
{
public:
    explicit PaintWatch(QWidget *window) { window->installEventFilter(this); }

    bool eventFilter(QObject * /*watched*/, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && !std::exchange(m_paints, true)) {
            // The window's children are painted after it, within the same pass.
            QMetaObject::invokeMethod(
                this, [this] { m_painted = Clock::now(); }, Qt::QueuedConnection);
        }
        return false;
    }

    Clock::time_point wait() const
    {
        while (!m_painted)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return *m_painted;
    }

private:
    bool m_paints = false;
    std::optional<Clock::time_point> m_painted;
};

static std::unique_ptr<SignDialog> makeSignDialog()
{
    return std::make_unique<SignDialog>(nullptr);
}

static std::unique_ptr<QDialog> makePlainDialog(int widgetCount)
{
    auto dialog = std::make_unique<QDialog>();
    auto *form = new QFormLayout(dialog.get());
    for (int i = 0; i < widgetCount / 2; ++i)
        form->addRow(new QLabel(QStringLiteral("Label %1").arg(i)), new QLineEdit);
    return dialog;
}

template<typename Maker>
static double firstShow(const Maker &make)
{
    // The engine has an answer to everything at once, so that the time is the dialog's own.
    QSettings().setValue("Kiln.BriskPath", "/bin/true");
    const Clock::time_point start = Clock::now();
    const std::unique_ptr<QDialog> dialog = make();
    const PaintWatch watch(dialog.get());
    dialog->show();
    const double time = millisecondsBetween(start, watch.wait());
    QSettings().clear();
    return time;
}

/// A window with a pane for messages and a field to type into.
class MessageWindow
{
public:
    using Append = std::function<void(const QString &)>;

    MessageWindow(QPlainTextEdit *pane, const Append &append)
        : m_pane(pane)
        , m_append(append)
        , m_field(new QLineEdit)
    {
        auto *layout = new QVBoxLayout(&m_window);
        layout->addWidget(pane);
        layout->addWidget(m_field);
        m_window.resize(800, 600);
        m_window.show();
    }

    /// The longest time, in milliseconds, from an action to what shows of it, while lines go on
    /// coming.
    double longestScroll();
    double longestTyping();

private:
    double longestResponse(const std::vector<std::function<void()>> &actions);

    QWidget m_window;
    QPlainTextEdit *const m_pane;
    const Append m_append;
    QLineEdit *const m_field;
};

static QString messageLine()
{
    return "[I]\t" + QString(76, QLatin1Char('x'));
}

double MessageWindow::longestResponse(const std::vector<std::function<void()>> &actions)
{
    constexpr int REPETITIONS = 20;
    double longest = 0;
    for (int i = 0; i < REPETITIONS; ++i) {
        for (const std::function<void()> &action : actions) {
            m_append(messageLine());
            const double time = milliseconds([&] {
                action();
                QCoreApplication::processEvents();
            });
            longest = std::max(longest, time);
        }
    }
    return longest;
}

double MessageWindow::longestScroll()
{
    const auto scroll = [this](QAbstractSlider::SliderAction action) {
        return [this, action] { m_pane->verticalScrollBar()->triggerAction(action); };
    };
    return longestResponse({scroll(QAbstractSlider::SliderPageStepSub),
                            scroll(QAbstractSlider::SliderToMinimum),
                            scroll(QAbstractSlider::SliderPageStepAdd),
                            scroll(QAbstractSlider::SliderToMaximum)});
}

double MessageWindow::longestTyping()
{
    const auto press = [this](Qt::Key key) {
        return [this, key] { QTest::keyClick(m_field, key); };
    };
    return longestResponse({press(Qt::Key_X), press(Qt::Key_Backspace)});
}

static std::unique_ptr<MessageWindow> makeGeneralMessages(int lineCount)
{
    auto *pane = new Workbench::OutputPane;
    const auto append = [pane](const QString &line) { pane->appendMessage(line); };
    auto window = std::make_unique<MessageWindow>(pane, append);
    for (int i = 0; i < lineCount; ++i) {
        append(messageLine());
        if (i % 1000 == 0)
            QCoreApplication::processEvents();
    }
    while (!pane->showsAll())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return window;
}

/// Full from the beginning: filling it line by line would take minutes, and make no difference.
static std::unique_ptr<MessageWindow> makePlainMessages(int lineCount)
{
    constexpr int MAXIMUM_LINES = 50'000; // as General Messages has it
    auto *pane = new QPlainTextEdit;
    pane->setReadOnly(true);
    pane->setMaximumBlockCount(MAXIMUM_LINES);
    pane->setPlainText((messageLine() + '\n').repeated(std::min(lineCount, MAXIMUM_LINES)));
    return std::make_unique<MessageWindow>(
        pane, [pane](const QString &line) { pane->appendPlainText(line); });
}

static void addDialog(Extent extent)
{
    const OnDemand<int> widgetCount([] {
        const auto dialog = makeSignDialog();
        return std::make_unique<int>(dialog->findChildren<QWidget *>().size());
    });
    add({.what = "first show of the dialog, and of an empty one",
         .size = "1 window",
         .unit = "ms",
         .rounds = extent.pick(51, 1),
         .ours = [] { return firstShow(makeSignDialog); },
         .yardstick = [=] { return firstShow([&] { return makePlainDialog(*widgetCount); }); },
         .aim = atMostTimes(2)});
}

static void addMessages(Extent extent)
{
    const int lineCount = extent.pick(1'000'000, 1000);
    const OnDemand<MessageWindow> ours([=] { return makeGeneralMessages(lineCount); });
    const OnDemand<MessageWindow> plain([=] { return makePlainMessages(lineCount); });
    for (const auto &[what, longest] :
         {std::pair{"scrolling messages, longest wait", &MessageWindow::longestScroll},
          std::pair{"typing beside messages, longest wait", &MessageWindow::longestTyping}}) {
        add({.what = what,
             .size = std::to_string(lineCount) + " lines",
             .unit = "ms",
             .rounds = extent.pick(5, 1),
             .ours = [=, longest = longest] { return ((*ours).*longest)(); },
             .yardstick = [=, longest = longest] { return ((*plain).*longest)(); },
             .aim = atMost(50, "ms")});
    }
}

void addWindows(Extent extent)
{
    addDialog(extent);
    addMessages(extent);
}

} // namespace Benchmarks
