#pragma once

#include <QColor>

namespace Utils {

/// The colours of the IDE's own drawings.
class Theme
{
public:
    enum Color {
        IconsBaseColor,
        IconsDisabledColor,
        IconsErrorColor,
        IconsRunColor,
        TextColorError,
    };

    QColor color(Color role) const;
};

Theme *creatorTheme();

} // namespace Utils
