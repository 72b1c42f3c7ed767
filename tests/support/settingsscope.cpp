#include "settingsscope.h"

#include <QCoreApplication>
#include <QSettings>

SettingsScope::SettingsScope()
{
    QCoreApplication::setOrganizationName(QStringLiteral("Sealkit"));
    QCoreApplication::setApplicationName(QStringLiteral("Tests"));
    QSettings::setDefaultFormat(QSettings::IniFormat);
    for (const QSettings::Scope scope : {QSettings::UserScope, QSettings::SystemScope})
        QSettings::setPath(QSettings::IniFormat, scope, m_directory.path());
}

void SettingsScope::clear()
{
    QSettings().clear();
}
