#pragma once

#include "ui-support/RecordingApplication.h"

#include "model/Job.h"
#include "model/JobStatus.h"
#include "support/TemporaryHome.h"
#include "ui/main/JobListModel.h"
#include "ui/transformers/ValueTransformers.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>

#include <memory>

// An engine whose jobs a test makes, and a list of them that announces nothing before announceChanges(). Every test
// runs under Qt's own check of what the list announces.
class JobListFixture : public TemporaryHome
{
protected:
    JobListFixture()
    {
        ValueTransformers::registerMainWindowTransformers();
        ValueTransformers::registerSubmitJobWindowTransformers();
    }

    JobModel& engine() { return application.jobModel(); }

    static std::shared_ptr<Job> makeJob(const QString& name, int status = JobStatusIdle)
    {
        auto job = Job::job();
        job->setName(name);
        job->setStatus(status);
        return job;
    }
    std::shared_ptr<Job> addJob(const QString& name, int status = JobStatusIdle)
    {
        auto job = makeJob(name, status);
        engine().addJobsObject(job);
        return job;
    }
    // At the end of the job's files.
    static std::shared_ptr<MediaFile> addFile(Job& job, const QString& name)
    {
        const auto count = job.mediaFiles().size();
        auto file = MediaFile::serverMediaFile(static_cast<int>(count) + 1);
        file->setName(name);
        job.insertObject(file, count);
        return file;
    }
    // At the end of the jobs.
    void addJobs(int count, int filesInEach)
    {
        for (int number = 1; number <= count; ++number) {
            auto job = makeJob(QStringLiteral("Job %1").arg(number), JobStatusOnServer);
            job->setDepoNum(number);
            Job::MediaFiles files;
            for (int segment = 1; segment <= filesInEach; ++segment)
                files.append(MediaFile::serverMediaFile(segment));
            job->setMediaFiles(files);
            engine().addJobsObject(job);
        }
    }

    JobListModel& list()
    {
        if (!m_list) {
            m_list = std::make_unique<JobListModel>(engine());
            m_list->setGatheringInterval(std::chrono::hours(1));
            m_list->announceChanges();
        }
        return *m_list;
    }
    void dropList() { m_list.reset(); }

    QModelIndex at(int row, JobListColumn column = JobListColumn::Name)
    {
        return list().index(row, static_cast<int>(column));
    }
    QModelIndex at(int jobRow, int row, JobListColumn column)
    {
        return list().index(row, static_cast<int>(column), at(jobRow));
    }
    // The names of the rows below, top down.
    QStringList names(const QModelIndex& parent = {})
    {
        QStringList texts;
        for (int row = 0; row < list().rowCount(parent); ++row)
            texts.append(list().index(row, 0, parent).data().toString());
        return texts;
    }

    RecordingApplication application;

private:
    std::unique_ptr<JobListModel> m_list;
};

// What a list announces while this lives.
struct Announcements
{
    explicit Announcements(JobListModel& list)
        : changed(&list, &QAbstractItemModel::dataChanged), inserted(&list, &QAbstractItemModel::rowsInserted),
          removed(&list, &QAbstractItemModel::rowsRemoved), rearranged(&list, &QAbstractItemModel::layoutChanged),
          reset(&list, &QAbstractItemModel::modelReset), all(&list, &JobListModel::changesAnnounced)
    {}

    // The first and last row of a span.
    [[nodiscard]] QPair<int, int> span(int number) const
    {
        return {changed.at(number).at(0).toModelIndex().row(), changed.at(number).at(1).toModelIndex().row()};
    }

    QSignalSpy changed;
    QSignalSpy inserted;
    QSignalSpy removed;
    QSignalSpy rearranged;
    QSignalSpy reset;
    QSignalSpy all;
};
