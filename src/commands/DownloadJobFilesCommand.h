#pragma once

#include "commands/CUrlCommand.h"
#include "commands/DownloadedFile.h"
#include "model/Job.h"
#include "settings/ServiceHosts.h"

#include <QStringList>

#include <optional>

class WriteBehind;

// The whole delivery of one finished job, request after request, on its worker thread: lists the result files, works
// out the job's folder, downloads each file into the subfolder of its type, unpacks the viewer packages, fetches the
// demo-disc files, and tells the service that the job is delivered. The requests inside are never posted themselves.
//
// Progress reaches the observer on the worker thread: files done and files in all. A file that cannot be fetched,
// written or unpacked is logged and the delivery goes on, which problems() tells afterwards; what came of a file that
// is not whole lies beside its place, under a name that says so. Only when the job's folder cannot be learnt does the
// delivery stop, with that request's result, or when the list of files has no end.
class DownloadJobFilesCommand : public CUrlCommand
{
public:
    DownloadJobFilesCommand(const ServiceHosts& hosts, QString user, QString password, std::shared_ptr<Job> job,
                            QString folderPath);
    [[nodiscard]] static std::shared_ptr<DownloadJobFilesCommand>
    downloadJobFilesCommandWithUser(const ServiceHosts& hosts, const QString& user, const QString& password,
                                    const std::shared_ptr<Job>& job, const QString& folderPath);

    [[nodiscard]] const QString& username() const { return m_username; }
    [[nodiscard]] const QString& password() const { return m_password; }
    [[nodiscard]] const std::shared_ptr<Job>& job() const { return m_job; }
    [[nodiscard]] const QString& folderPath() const { return m_folderPath; }

    void execute() override;
    void cancel() override;

    // What was not delivered as it should be, in words. To be asked for when the command has ended.
    [[nodiscard]] QStringList problems() const;

    // The job's folder below the delivery folder, "" for the delivery folder itself; nothing when the service did not
    // answer, with result() set. Asks the service, blocking.
    [[nodiscard]] std::optional<QString> retriveLocalIntermediatePath();
    // See DeliveryPath.
    [[nodiscard]] static std::optional<QString> fileTypeSubFolder(const QString& fileName);

private:
    // Nothing when the list has no end, with result() set.
    [[nodiscard]] std::optional<QStringList> listResultFiles();
    // What the command received is not, or not whole, at `destination`; false when all is well.
    bool noteBrokenFile(const CUrlCommand& command, const DownloadedFile& file, const QString& destination);
    void downloadResultFile(int number, const QString& listedName, const QString& jobFolderPath,
                            WriteBehind& writeBehind);
    void unzip(const QString& archivePath);
    void downloadDemoDiscFiles(const QString& jobFolderPath);
    void flushDelivery(const QString& jobFolderPath) const;
    void markDelivered(int numberOfFiles);
    void reportProgress(int done, int total);
    std::optional<QString> askJobFact(const QString& extraFormData);
    // Executes a request inside this command, so that cancel() reaches it.
    void executeNested(const std::shared_ptr<CUrlCommand>& command);
    void noteFailure(const CUrlCommand& command, const QString& words);
    [[nodiscard]] int depoNum() const;
    [[nodiscard]] std::shared_ptr<CUrlCommand> downloadRequest(const QString& ending) const;

    const ServiceHosts m_hosts;
    const QString m_username;
    const QString m_password;
    const std::shared_ptr<Job> m_job;
    const QString m_folderPath;
    QStringList m_problems;
    // Of each file in turn: memory that was taken once is not taken from the system again for the next.
    const std::shared_ptr<TransferBuffer> m_buffer = std::make_shared<TransferBuffer>();

    std::mutex m_nestedMutex;
    std::shared_ptr<CUrlCommand> m_nested; // guarded by m_nestedMutex
};
