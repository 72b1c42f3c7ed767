#include "notelabel.h"

#include <utils/theme/theme.h>

#include <QPainter>
#include <QStyle>

namespace Sealkit::Internal {

NoteLabel::NoteLabel(QWidget *parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    hide();
}

void NoteLabel::setNote(const QString &text, Kind kind)
{
    m_kind = kind;
    setText(text);
    setToolTip(text.isEmpty() ? QString()
                              : QStringLiteral("<qt>%1</qt>").arg(Qt::convertFromPlainText(text)));
    setVisible(m_reservesRoom || !text.isEmpty());
    updateGeometry();
}

void NoteLabel::reserveRoom()
{
    // A form layout takes no notice of a size policy that retains the size of what is hidden.
    m_reservesRoom = true;
    show();
}

QStringList NoteLabel::shownLines() const
{
    return text().split(QLatin1Char('\n')).mid(0, m_maxLines);
}

/// The width does not follow the text, so that a long note does not widen its window.
QSize NoteLabel::sizeHint() const
{
    return minimumSizeHint();
}

QSize NoteLabel::minimumSizeHint() const
{
    return {0, int(shownLines().size()) * fontMetrics().lineSpacing()};
}

void NoteLabel::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setPen(m_kind == Warning ? Utils::creatorTheme()->color(Utils::Theme::TextColorError)
                                     : palette().color(foregroundRole()));
    const int height = fontMetrics().lineSpacing();
    QRect line(0, 0, width(), height);
    for (const QString &text : shownLines()) {
        painter.drawText(
            line,
            int(Qt::AlignVCenter | QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft)),
            fontMetrics().elidedText(text, Qt::ElideRight, width()));
        line.translate(0, height);
    }
}

} // namespace Sealkit::Internal
