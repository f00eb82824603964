// Reads a transcript as the submit window does when a file is chosen: quillpost-bench-parse TRANSCRIPT.
#include "harness/Report.h"

#include "transcript/TranscriptPrefill.h"

#include <QCoreApplication>
#include <QJsonObject>
#include <QStringList>

#include <chrono>
#include <cstdio>

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2)
        return EXIT_FAILURE;
    const auto begin = std::chrono::steady_clock::now();
    const auto reading = TranscriptPrefill::read(arguments.at(1));
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    if (!reading)
        return EXIT_FAILURE;
    const QJsonObject report{{QStringLiteral("seconds"), seconds},
                             {QStringLiteral("firstName"), reading->firstName},
                             {QStringLiteral("lastName"), reading->lastName},
                             {QStringLiteral("date"), reading->dateString}};
    Bench::printReport(report);
    return EXIT_SUCCESS;
}
