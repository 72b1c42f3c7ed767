#pragma once

#include <QTemporaryDir>

/// Keeps all settings of the test program in a folder that goes with this object.
class SettingsScope
{
public:
    SettingsScope();

    /// Back to no settings at all.
    void clear();

private:
    QTemporaryDir m_directory;
};
