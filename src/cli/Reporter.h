#pragma once

#include "foundation/Error.h"
#include "foundation/Secrets.h"
#include "model/Job.h"

#include <QJsonObject>
#include <QString>

#include <memory>
#include <optional>

// One row of a job's road as it was at a moment: the job itself or one of its files.
struct ProgressRow
{
    std::optional<int> depoNum;
    std::optional<int> orderNum;
    int segment = 0; // 0 is the job itself
    bool isServerJob = false;
    QString name;
    int status = 0;
    QString statusText;
    QString serverStatus;
    std::optional<double> processed;
    std::optional<double> total;
    std::optional<int> score;

    [[nodiscard]] static ProgressRow ofJob(const Job& job);
    [[nodiscard]] static ProgressRow ofMediaFile(const Job& job, const MediaFile& mediaFile, int segment);
    // From 0 to 1, where there is something to measure.
    [[nodiscard]] std::optional<double> fraction() const;
};

// Shows what happens, in the way that suits standard output. Main thread.
class Reporter
{
public:
    virtual ~Reporter() = default;

    // A row changed its status.
    virtual void rowChanged(const ProgressRow& row) = 0;
    // All rows that the user follows, at a steady rate, for what moves between changes of status.
    virtual void rowsAre(const std::vector<ProgressRow>& rows) = 0;
    // Words for the user that are not an error. Both may quote the service; a password in them is masked.
    void note(const QString& words) { showNote(Secrets::masked(words)); }
    void error(const QString& words) { showError(Secrets::masked(words)); }
    // A result in the words of people and of programs.
    virtual void result(const QString& line, const QJsonObject& object) = 0;

    [[nodiscard]] static std::unique_ptr<Reporter> make(bool json);

private:
    virtual void showNote(const QString& words) = 0;
    virtual void showError(const QString& words) = 0;
};
