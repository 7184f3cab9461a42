#include <cstdio>

#include <QCoreApplication>
#include <QFile>

#include "support/archivekit/FileInstance.h"

/// Unpacks one archive: rivet-unpack <archive> <folder>
int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    if (argc != 3) {
        std::fputs("usage: rivet-unpack <archive> <folder>\n", stderr);
        return 2;
    }
    FileInstance instance;
    QObject::connect(&instance, &FileInstance::FileFinished, &application,
                     [](bool success) { QCoreApplication::exit(success ? 0 : 1); });
    instance.Start(QFile::decodeName(argv[1]), QFile::decodeName(argv[2]));
    return QCoreApplication::exec();
}
