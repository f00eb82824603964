#pragma once

#include "cli/Reporter.h"

#include <QJsonObject>

#include <map>
#include <utility>

// One JSON object a line for every change, on standard output; errors also in words on standard error.
class JsonReporter : public Reporter
{
public:
    void rowChanged(const ProgressRow& row) override;
    void rowsAre(const std::vector<ProgressRow>& rows) override;
    void result(const QString& line, const QJsonObject& object) override;

private:
    void showNote(const QString& words) override;
    void showError(const QString& words) override;
    void print(const ProgressRow& row);

    std::map<std::pair<int, int>, QJsonObject> m_told; // by deposition and segment
};
