#include <cstdio>

#include <QDirIterator>
#include <QFile>

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv);
extern "C" int LLVMFuzzerTestOneInput(const uchar *data, size_t size);

/// Gives the files below the folder to the target, one after another: fuzz-<target> <folder>
int main(int argc, char **argv)
{
    int count = 0;
    LLVMFuzzerInitialize(&argc, &argv);
    QDirIterator it(argc > 1 ? argv[1] : "", QDir::Files, QDirIterator::Subdirectories);
    for (; it.hasNext(); ++count) {
        QFile file(it.next());
        std::printf("%s\n", qPrintable(it.fileName()));
        std::fflush(stdout);
        if (!file.open(QIODevice::ReadOnly))
            return EXIT_FAILURE;
        const QByteArray bytes = file.readAll();
        LLVMFuzzerTestOneInput(reinterpret_cast<const uchar *>(bytes.constData()),
                               size_t(bytes.size()));
    }
    return count > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
