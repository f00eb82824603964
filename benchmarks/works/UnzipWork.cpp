// Unpacks an archive as the delivery of a job does: quillpost-bench-unzip ARCHIVE FOLDER. With --make, writes the
// archive that the table is about: quillpost-bench-unzip --make ARCHIVE ENTRIES BYTES.
#include "works/ZipSample.h"

#include "archive/ZipArchive.h"

#include <QCoreApplication>
#include <QStringList>

#include <chrono>
#include <cstdio>

namespace {

int unpack(const QString& path, const QString& folder)
{
    const auto begin = std::chrono::steady_clock::now();
    ZipArchive archive;
    if (!archive.UnzipOpenFile(path) || !archive.UnzipFileTo(folder, /*overWrite=*/true))
        return EXIT_FAILURE;
    archive.UnzipCloseFile();
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    std::printf("{\"seconds\": %.6f, \"files\": %lld}\n", seconds,
                static_cast<long long>(archive.unzippedFiles().size()));
    return archive.numPassedOver() == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 5 && arguments.at(1) == u"--make")
        return ZipSample::write(arguments.at(2), arguments.at(3).toInt(), arguments.at(4).toULongLong()) ? EXIT_SUCCESS
                                                                                                         : EXIT_FAILURE;
    if (arguments.size() != 3)
        return EXIT_FAILURE;
    return unpack(arguments.at(1), arguments.at(2));
}
