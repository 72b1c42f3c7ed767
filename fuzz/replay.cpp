// Stands in for the fuzzer: feeds the files of the folders that it is given.
#include "fuzzing.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <cstdio>

static void feed(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("Cannot read %s", qPrintable(path));
    std::printf("%s\n", qPrintable(path));
    std::fflush(stdout); // the last one is the one that ends the program
    const QByteArray input = file.readAll();
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(input.constData()),
                           std::size_t(input.size()));
}

int main(int argc, char **argv)
{
    LLVMFuzzerInitialize(&argc, &argv);
    for (int i = 1; i < argc; ++i) {
        const QFileInfoList files =
            QDir(QString::fromLocal8Bit(argv[i])).entryInfoList(QDir::Files);
        if (files.isEmpty())
            qFatal("No files in %s", argv[i]);
        for (const QFileInfo &file : files)
            feed(file.filePath());
    }
    // Before Qt's own statics go, as the fonts' cache does.
    delete qApp;
    return 0;
}
