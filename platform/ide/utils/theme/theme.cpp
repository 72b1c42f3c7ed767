#include <utils/theme/theme.h>

#include <QGuiApplication>
#include <QPalette>

namespace Utils {

static bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness() < 128;
}

QColor Theme::color(Color role) const
{
    const QPalette palette = QGuiApplication::palette();
    const bool dark = isDark(palette);
    switch (role) {
    case IconsBaseColor:
        return palette.color(QPalette::Active, QPalette::WindowText);
    case IconsDisabledColor:
        return palette.color(QPalette::Disabled, QPalette::WindowText);
    case IconsRunColor:
        return dark ? QColor(0x6ccf70) : QColor(0x2b7d2f);
    case IconsErrorColor:
    case TextColorError:
        return dark ? QColor(0xff7b72) : QColor(0xc01c28);
    }
    return {};
}

Theme *creatorTheme()
{
    static Theme theme;
    return &theme;
}

} // namespace Utils
