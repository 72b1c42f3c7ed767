#include "outputpane.h"

#include <QFontDatabase>
#include <QScrollBar>

using ProjectExplorer::BuildStep;

namespace Workbench {

constexpr int MAXIMUM_LINES = 100'000;
constexpr int TAB_STOP_CHARACTERS = 6; // "[E] 127" and what follows it stay in columns

OutputPane::OutputPane(QWidget *parent)
    : QPlainTextEdit(parent)
{
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setTabStopDistance(fontMetrics().horizontalAdvance('x') * TAB_STOP_CHARACTERS);
    setMaximumBlockCount(MAXIMUM_LINES);
    setUndoRedoEnabled(false);
    setTabChangesFocus(true);

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
    QTextCursor cursor(document());
    cursor.movePosition(QTextCursor::End);
    cursor.insertText(QString(text).replace("\r\n", "\n"), charFormat(format, palette()));
}

void OutputPane::appendMessage(const QString &message)
{
    append(message + '\n', BuildStep::OutputFormat::Stdout);
}

} // namespace Workbench
