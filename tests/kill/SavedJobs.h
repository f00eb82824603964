#pragma once

#include <QJsonArray>
#include <QString>

#include <string>

// A file of unfinished jobs as it is on disk, read without the program's own reader.
class SavedJobs
{
public:
    explicit SavedJobs(const QString& path);

    // Also where there is none.
    [[nodiscard]] bool isWhole() const { return m_isWhole; }
    [[nodiscard]] qsizetype count() const { return m_jobs.size(); }
    [[nodiscard]] bool holds(const QString& transcript) const;
    // Of the job that has come furthest, in words; "nothing saved" where there is none.
    [[nodiscard]] std::string furthest() const;

private:
    QJsonArray m_jobs;
    bool m_isWhole = true;
};
