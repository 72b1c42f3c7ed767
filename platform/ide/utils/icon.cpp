#include <utils/icon.h>

#include <QGuiApplication>
#include <QImageReader>
#include <QPainter>
#include <QPalette>

namespace Utils {

constexpr int SMALL_ICON_SIZE = 16;

static QImage tintedMask(const IconMaskAndColor &mask, const QColor &color, int pixels)
{
    QImageReader reader(mask.first.toFSPathString());
    reader.setScaledSize({pixels, pixels}); // vector masks are drawn at this very size
    QImage image = reader.read().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return image;

    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    return image;
}

static QPixmap paintedMasks(const QList<IconMaskAndColor> &masks, QIcon::Mode mode, int pixels)
{
    QImage result(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    result.fill(Qt::transparent);
    QPainter painter(&result);
    for (const IconMaskAndColor &mask : masks) {
        const Theme::Color role = mode == QIcon::Disabled ? Theme::IconsDisabledColor : mask.second;
        painter.drawImage(0, 0, tintedMask(mask, creatorTheme()->color(role), pixels));
    }
    painter.end();
    return QPixmap::fromImage(result);
}

Icon::Icon(const QList<IconMaskAndColor> &masks)
    : m_masks(masks)
{
}

Icon::Icon(const FilePath &imageFileName)
    : m_image(imageFileName)
{
}

QIcon Icon::icon() const
{
    if (m_masks.isEmpty())
        return QIcon(m_image.toFSPathString());

    const qint64 palette = QGuiApplication::palette().cacheKey();
    if (m_lastIcon.isNull() || m_lastPalette != palette) {
        m_lastIcon = paintedIcon();
        m_lastPalette = palette;
    }
    return m_lastIcon;
}

QIcon Icon::paintedIcon() const
{
    QIcon result;
    for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Disabled}) {
        for (const int scale : {1, 2, 3}) {
            QPixmap pixmap = paintedMasks(m_masks, mode, SMALL_ICON_SIZE * scale);
            pixmap.setDevicePixelRatio(scale);
            result.addPixmap(pixmap, mode);
        }
    }
    return result;
}

QPixmap Icon::pixmap(QIcon::Mode iconMode) const
{
    return icon().pixmap(
        QSize(SMALL_ICON_SIZE, SMALL_ICON_SIZE), qGuiApp->devicePixelRatio(), iconMode);
}

FilePath Icon::imageFilePath() const
{
    return m_masks.isEmpty() ? m_image : m_masks.first().first;
}

} // namespace Utils
