#pragma once

#include <QMetaType>
#include <QString>
#include <QStringList>

namespace Brisk {

/// A build target of an engine and the tools that it offers.
struct BuildTargetData
{
    QString name;
    QStringList tools;

    bool isValid() const { return !name.isEmpty(); }
    friend bool operator==(const BuildTargetData &, const BuildTargetData &) = default;
};

} // namespace Brisk

Q_DECLARE_METATYPE(Brisk::BuildTargetData)
