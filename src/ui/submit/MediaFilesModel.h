#pragma once

#include "model/Job.h"

#include <QAbstractTableModel>

#include <memory>
#include <vector>

class ChangeRelay;

// A job's recordings as a table: name, duration, size. Follows the job and its files, whose values change on any
// thread; only the rows that changed are announced, and what is selected stays selected. Main thread.
class MediaFilesModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Column { Name, Duration, Size };

    explicit MediaFilesModel(QObject* parent = nullptr);
    ~MediaFilesModel() override;

    // Null for no rows.
    void setJob(const std::shared_ptr<Job>& job);
    [[nodiscard]] std::shared_ptr<MediaFile> mediaFile(int row) const { return m_files.value(row); }
    [[nodiscard]] Job::MediaFiles mediaFiles() const { return m_files; }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    void followFiles();
    void removeRowsNotIn(const Job::MediaFiles& files);
    bool insertRowsOf(const Job::MediaFiles& files);
    [[nodiscard]] std::unique_ptr<ChangeRelay> relayOf(const std::shared_ptr<MediaFile>& file);
    void announce(const MediaFile* file);

    std::shared_ptr<Job> m_job;
    Job::MediaFiles m_files;
    // One for each row, in the same order.
    std::vector<std::unique_ptr<ChangeRelay>> m_fileRelays;
    std::unique_ptr<ChangeRelay> m_jobRelay;
};
