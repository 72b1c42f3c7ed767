#include <utils/icon.h>

#include <QFile>
#include <QGuiApplication>
#include <QImageReader>
#include <QPainter>
#include <QPalette>

namespace Utils {

static QSize sizeOf(const FilePath &image)
{
    return QImageReader(image.toFSPathString()).size();
}

/// The file beside \a image that was drawn for this scale, or \a image itself.
static QString fileAt(int scale, const FilePath &image)
{
    const QFileInfo info = image.toFileInfo();
    const QString scaled = QStringLiteral("%1/%2@%3x.%4")
                               .arg(info.path(), info.baseName())
                               .arg(scale)
                               .arg(info.suffix());
    return QFile::exists(scaled) ? scaled : image.toFSPathString();
}

/// What is dark in the mask is painted, what is white is not; its own transparency means nothing.
static QImage tintedMask(const QString &file, const QColor &color, const QSize &size)
{
    QImageReader reader(file);
    reader.setScaledSize(size); // vector masks are drawn at this very size
    QImage image = reader.read().convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x)
            line[x] = qRgba(color.red(), color.green(), color.blue(), 255 - qBlue(line[x]));
    }
    return image;
}

static QPixmap paintedMasks(const QList<IconMaskAndColor> &masks, QIcon::Mode mode, int scale)
{
    const QSize size = sizeOf(masks.first().first) * scale;
    QImage result(size, QImage::Format_ARGB32_Premultiplied);
    result.fill(Qt::transparent);
    QPainter painter(&result);
    for (const IconMaskAndColor &mask : masks) {
        const Theme::Color role = mode == QIcon::Disabled ? Theme::IconsDisabledColor : mask.second;
        const QColor color = creatorTheme()->color(role);
        painter.drawImage(0, 0, tintedMask(fileAt(scale, mask.first), color, size));
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
            QPixmap pixmap = paintedMasks(m_masks, mode, scale);
            pixmap.setDevicePixelRatio(scale);
            result.addPixmap(pixmap, mode);
        }
    }
    return result;
}

QPixmap Icon::pixmap(QIcon::Mode iconMode) const
{
    return icon().pixmap(sizeOf(imageFilePath()), qGuiApp->devicePixelRatio(), iconMode);
}

FilePath Icon::imageFilePath() const
{
    return m_masks.isEmpty() ? m_image : m_masks.first().first;
}

} // namespace Utils
