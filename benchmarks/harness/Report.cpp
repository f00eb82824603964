#include "harness/Report.h"

#include <QJsonDocument>

#include <cstdio>

void Bench::printReport(const QJsonObject& report)
{
    std::puts(QJsonDocument(report).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
}
