#pragma once

#include <utils/filepath.h>
#include <utils/theme/theme.h>

#include <QIcon>
#include <QPair>

namespace Utils {

using IconMaskAndColor = QPair<FilePath, Theme::Color>;

/// An icon made of one image, or of masks, black on white, that take the theme's colours.
class Icon
{
public:
    Icon() = default;
    Icon(const QList<IconMaskAndColor> &masks);
    Icon(const FilePath &imageFileName);

    QIcon icon() const;
    /// The picture at the size of the first image.
    QPixmap pixmap(QIcon::Mode iconMode = QIcon::Normal) const;
    /// The first image's path.
    FilePath imageFilePath() const;

private:
    QIcon paintedIcon() const;

    QList<IconMaskAndColor> m_masks;
    FilePath m_image;
    // Drawing vector masks takes longer than making the rest of a window.
    mutable QIcon m_lastIcon;
    mutable qint64 m_lastPalette = 0;
};

} // namespace Utils
