#pragma once

#include <QByteArray>
#include <QString>

/// What is in the file; nothing if it cannot be read.
QByteArray readFile(const QString &path);
/// Makes the folder, too. The test program ends when the file cannot be written.
void writeFile(const QString &path, const QByteArray &contents);
/// Writes a script for the shell that its owner can run.
void writeScript(const QString &path, const QByteArray &script);
