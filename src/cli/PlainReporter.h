#pragma once

#include "cli/Reporter.h"

#include <map>
#include <utility>

// Lines for a log file or a pipe: each change of status, and each further tenth of the way.
class PlainReporter : public Reporter
{
public:
    void rowChanged(const ProgressRow& row) override;
    void rowsAre(const std::vector<ProgressRow>& rows) override;
    void result(const QString& line, const QJsonObject& object) override;

private:
    void showNote(const QString& words) override;
    void showError(const QString& words) override;
    struct Told
    {
        QString statusText;
        int tenths = 0;
    };
    void print(const ProgressRow& row);

    std::map<std::pair<int, int>, Told> m_told; // by deposition and segment
};
