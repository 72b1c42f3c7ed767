#include "outputpane.h"

#include <QDeadlineTimer>
#include <QFontDatabase>
#include <QScrollBar>
#include <QTextBlock>

#include <chrono>

using ProjectExplorer::BuildStep;
using namespace std::chrono_literals;

namespace Workbench {

// With twice as many, the document needs 25 ms at a time to tidy its memory up.
constexpr int MAXIMUM_LINES = 50'000;
// Of a tool that floods its output, 64 MiB of lines within a second, no more than a third of the
// time goes into showing it. Text costs much less in portions than line by line.
constexpr int LINES_PER_PORTION = 100;
constexpr auto TURN = 5ms;
constexpr auto PAUSE = 10ms;
constexpr int TAB_STOP_CHARACTERS = 6; // "[E] 127" and what follows it stay in columns

OutputPane::OutputPane(QWidget *parent)
    : QPlainTextEdit(parent)
{
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setTabStopDistance(fontMetrics().horizontalAdvance('x') * TAB_STOP_CHARACTERS);
    setUndoRedoEnabled(false);
    setTabChangesFocus(true);

    m_turn.setSingleShot(true);
    connect(&m_turn, &QTimer::timeout, this, &OutputPane::takeTurn);

    // Lines are laid out, and the range grows, long after they were appended.
    QScrollBar *bar = verticalScrollBar();
    connect(bar, &QScrollBar::valueChanged, this, [this, bar](int value) {
        m_follows = value == bar->maximum();
    });
    connect(bar, &QScrollBar::rangeChanged, this, [this, bar](int, int maximum) {
        if (m_follows)
            bar->setValue(maximum);
    });
}

static QTextCharFormat charFormat(BuildStep::OutputFormat format, const QPalette &palette)
{
    const bool isDark = palette.color(QPalette::Base).lightness() < 128;
    QTextCharFormat result;
    switch (format) {
    case BuildStep::OutputFormat::Stdout:
        result.setForeground(palette.text());
        break;
    case BuildStep::OutputFormat::Stderr:
        result.setForeground(isDark ? QColor(0xff, 0x8a, 0x80) : QColor(0xa0, 0x1c, 0x1c));
        break;
    case BuildStep::OutputFormat::NormalMessage:
        result.setForeground(isDark ? QColor(0x82, 0xb1, 0xff) : QColor(0x1a, 0x4f, 0xa0));
        break;
    case BuildStep::OutputFormat::ErrorMessage:
        result.setForeground(isDark ? QColor(0xff, 0x52, 0x52) : QColor(0xc0, 0x00, 0x00));
        result.setFontWeight(QFont::Bold);
        break;
    }
    return result;
}

void OutputPane::append(const QString &text, BuildStep::OutputFormat format)
{
    enqueue({text, format, text.count('\n')});
    // What would be forgotten at once need not be shown.
    while (m_pendingLines - m_pending.first().lineCount >= MAXIMUM_LINES)
        dequeue();
    if (!m_turn.isActive())
        m_turn.start(0);
}

void OutputPane::enqueue(const Portion &portion)
{
    m_pendingLines += portion.lineCount;
    if (m_pending.isEmpty() || m_pending.last().format != portion.format
        || m_pending.last().lineCount >= LINES_PER_PORTION) {
        m_pending.enqueue(portion);
        return;
    }
    m_pending.last().text += portion.text;
    m_pending.last().lineCount += portion.lineCount;
}

OutputPane::Portion OutputPane::dequeue()
{
    m_pendingLines -= m_pending.first().lineCount;
    return m_pending.dequeue();
}

void OutputPane::appendMessage(const QString &message)
{
    append(message + '\n', BuildStep::OutputFormat::Stdout);
}

void OutputPane::clear()
{
    m_pending.clear();
    m_pendingLines = 0;
    QPlainTextEdit::clear();
}

void OutputPane::takeTurn()
{
    if (m_pending.isEmpty())
        return;
    const bool follows = m_follows;
    const QDeadlineTimer end(TURN);
    while (!m_pending.isEmpty() && !end.hasExpired())
        insert(dequeue());
    forgetOldestLines();
    // The lines on the way to the end have moved the bar, too; that was not the reader.
    if (follows)
        verticalScrollBar()->setValue(verticalScrollBar()->maximum());
    m_follows = follows;
    m_turn.start(PAUSE);
}

void OutputPane::insert(const Portion &portion)
{
    QTextCursor cursor(document());
    cursor.setPosition(document()->characterCount() - 1);
    cursor.insertText(QString(portion.text).replace("\r\n", "\n"),
                      charFormat(portion.format, palette()));
}

/// The document's own limit would lay every line out before it goes.
void OutputPane::forgetOldestLines()
{
    const int excess = blockCount() - MAXIMUM_LINES;
    if (excess <= 0)
        return;
    QTextCursor cursor(document());
    cursor.setPosition(document()->findBlockByNumber(excess).position(), QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
}

} // namespace Workbench
