#include "Fuzz.h"

#include <QDir>
#include <QFile>

#include <cstdio>

/// Feeds every file of the given folders in, the kept findings of the fuzzer; fails when there is none.
int main(int argc, char *argv[])
{
    int read = 0;
    for (int index = 1; index < argc; ++index) {
        const QDir folder(QFile::decodeName(argv[index]));
        for (const QString &name : folder.entryList(QDir::Files, QDir::Name)) {
            QFile file(folder.filePath(name));
            if (!file.open(QIODevice::ReadOnly)) {
                std::fprintf(stderr, "cannot read %s\n", qPrintable(file.fileName()));
                return 1;
            }
            readInput(file.readAll());
            ++read;
        }
    }
    std::printf("%d inputs\n", read);
    return read > 0 ? 0 : 1;
}
