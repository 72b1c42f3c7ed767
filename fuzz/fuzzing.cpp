#include "fuzzing.h"

#include <QApplication>
#include <QFile>

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    new QApplication(*argc, *argv); // until whoever calls this deletes it
    return 0;
}

#ifndef SEALKIT_FUZZ
/// Stands in for the fuzzer: feeds the files that it is given.
int main(int argc, char **argv)
{
    LLVMFuzzerInitialize(&argc, &argv);
    for (int i = 1; i < argc; ++i) {
        qInfo("%s", argv[i]); // the last one is the one that ends the program
        QFile file(argv[i]);
        expect(file.open(QIODevice::ReadOnly), "the file can be read");
        const QByteArray input = file.readAll();
        LLVMFuzzerTestOneInput(input.constData(), std::size_t(input.size()));
    }
    delete qApp; // before Qt's own statics go, as the fonts' cache does
}
#endif
