#pragma once

#include <QJsonObject>

namespace Bench {

// For a measured program: its figures as the last line of its output, where ChildRun::report() reads them.
void printReport(const QJsonObject& report);

} // namespace Bench
