#pragma once

#include "model/Job.h"

#include <QAbstractTableModel>

#include <memory>
#include <vector>

class ChangeRelay;

// A job's recordings as a table: name, duration, size, in the order in which they will be submitted. Follows the job
// and its files, whose values change on any thread; only the rows that changed are announced, and what is selected
// stays selected. Main thread.
class MediaFilesModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Column { Name, Duration, Size };

    explicit MediaFilesModel(QObject* parent = nullptr);
    ~MediaFilesModel() override;

    // By file name, whatever the letter case.
    [[nodiscard]] static bool isBefore(const std::shared_ptr<MediaFile>& a, const std::shared_ptr<MediaFile>& b)
    {
        return a->caseInsensitiveCompareByFileName(*b) < 0;
    }

    // Null for no rows.
    void setJob(const std::shared_ptr<Job>& job);
    // While held, the list stays as it is; it then follows all that came and went in one go.
    void setHeld(bool held);
    [[nodiscard]] std::shared_ptr<MediaFile> mediaFile(int row) const { return m_files.value(row); }
    [[nodiscard]] Job::MediaFiles mediaFiles() const { return m_files; }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    void followFiles();
    void removeRowsFrom(qsizetype first, qsizetype count);
    void insertRowsOf(const Job::MediaFiles& files, qsizetype first, qsizetype count);
    [[nodiscard]] std::unique_ptr<ChangeRelay> relayOf(const std::shared_ptr<MediaFile>& file);
    void announce(const MediaFile* file);

    std::shared_ptr<Job> m_job;
    Job::MediaFiles m_files;
    bool m_isHeld = false;
    // One for each row, in the same order.
    std::vector<std::unique_ptr<ChangeRelay>> m_fileRelays;
    std::unique_ptr<ChangeRelay> m_jobRelay;
};
