#pragma once

#include <QByteArray>
#include <QString>

/// A small RPM package that is valid, and unlike all others with another \a payload.
QByteArray rpmPackage(const QByteArray &payload);
/// Writes the package that has its file's name for a payload.
void writePackage(const QString &path);
/// Whether there is a signature of ours in the package.
bool isSigned(const QString &path);
