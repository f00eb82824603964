#pragma once

#include "cli/Reporter.h"

#include <QStringList>

// A block of lines at the bottom of the terminal, one for each job and file, drawn over itself; words for the user
// scroll by above it.
class LiveReporter : public Reporter
{
public:
    ~LiveReporter() override;

    void rowChanged(const ProgressRow& row) override;
    void rowsAre(const std::vector<ProgressRow>& rows) override;
    void result(const QString& line, const QJsonObject& object) override;

private:
    void showNote(const QString& words) override;
    void showError(const QString& words) override;
    void erase();
    void draw();

    QStringList m_lines;
    qsizetype m_linesOnScreen = 0;
};
