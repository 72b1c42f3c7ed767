#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// Builds a small package with rpmbuild in \a folder, which lies outside any project; returns its
/// path. The test program ends when it cannot be built.
QString buildPackage(const QString &folder);

/// Where the parts of a package file begin: lead, signature header, header and payload.
QList<qsizetype> partsOfPackage(const QByteArray &package);
