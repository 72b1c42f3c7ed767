#pragma once

#include <QLabel>

namespace Sealkit::Internal {

/// Says in a few lines how something went, or what is in a file. Hidden while it has no text. Lines
/// that do not fit into the window are elided; the tool tip has the whole text.
class NoteLabel : public QLabel
{
    Q_OBJECT

public:
    enum Kind { Information, Warning };

    explicit NoteLabel(QWidget *parent = nullptr);

    /// At most \a maxLines lines of \a text show; an empty one hides the label that reserves no
    /// room.
    void setNote(const QString &text, Kind kind = Information);
    /// Keeps the room of a line while there is no text, so that nothing moves when there is one.
    void reserveRoom();
    void setMaxLines(int maxLines) { m_maxLines = maxLines; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QStringList shownLines() const;

    bool m_reservesRoom = false;
    int m_maxLines = 1;
    Kind m_kind = Information;
};

} // namespace Sealkit::Internal
