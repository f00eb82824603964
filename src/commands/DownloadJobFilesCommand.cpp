#include "commands/DownloadJobFilesCommand.h"

#include "archive/ZipArchive.h"
#include "commands/DeliveryFlush.h"
#include "commands/DeliveryFolder.h"
#include "commands/DeliveryPath.h"
#include "commands/DownloadFileCommand.h"
#include "commands/MiscStuffCommand.h"
#include "commands/RegularDownloadFileCommand.h"
#include "commands/WriteBehind.h"
#include "foundation/AtomicFile.h"
#include "foundation/DateText.h"
#include "foundation/Log.h"
#include "foundation/NumberReading.h"
#include "foundation/PathText.h"
#include "foundation/ShownText.h"
#include "foundation/Text.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <curl/curl.h>

namespace {

// A service that never ends its listing must not fill the memory.
constexpr int mostResultFiles = 10'000;
// Nor one that answers every number with the same words, which are then no names.
constexpr int mostEqualNames = 20;
constexpr qsizetype comparedEnding = 64; // of a long reply, which is cut at another place each time

const QString downloadPath = QStringLiteral("/saltine/test_downloadjob2.php");

struct DemoDiscFile
{
    QString path;
    QString subFolder;
};

const std::vector<DemoDiscFile>& demoDiscFiles()
{
    static const std::vector<DemoDiscFile> files{
        {QStringLiteral("/DemoDisc/OstrovizerDownloader.exe"), QStringLiteral("Ostrova")},
        {QStringLiteral("/DemoDisc/autorun.inf"), QStringLiteral("Ostrova")},
        {QStringLiteral("/Korvane_ReadMe.txt"), QStringLiteral("Korvane")}};
    return files;
}

} // namespace

DownloadJobFilesCommand::DownloadJobFilesCommand(const ServiceHosts& hosts, QString user, QString password,
                                                 std::shared_ptr<Job> job, QString folderPath)
    : CUrlCommand(hosts.secureUrl(downloadPath)), m_hosts(hosts), m_username(std::move(user)),
      m_password(std::move(password)), m_job(std::move(job)), m_folderPath(std::move(folderPath))
{}

std::shared_ptr<DownloadJobFilesCommand>
DownloadJobFilesCommand::downloadJobFilesCommandWithUser(const ServiceHosts& hosts, const QString& user,
                                                         const QString& password, const std::shared_ptr<Job>& job,
                                                         const QString& folderPath)
{
    return std::make_shared<DownloadJobFilesCommand>(hosts, user, password, job, folderPath);
}

int DownloadJobFilesCommand::depoNum() const
{
    return NumberReading::valueOrZero(m_job->depoNum());
}

void DownloadJobFilesCommand::executeNested(const std::shared_ptr<CUrlCommand>& command)
{
    {
        const std::scoped_lock lock(m_nestedMutex);
        m_nested = command;
        if (isCancelled())
            command->cancel();
    }
    command->execute();
    const std::scoped_lock lock(m_nestedMutex);
    m_nested.reset();
}

QStringList DownloadJobFilesCommand::problems() const
{
    QStringList shown; // Listed names are in them.
    for (const QString& problem : m_problems)
        shown << ShownText::of(problem);
    return shown;
}

void DownloadJobFilesCommand::noteFailure(const CUrlCommand& command, const QString& words)
{
    if (command.result() == 0)
        return;
    m_problems << Text::format("{}: {}", words, command.error().localizedDescription);
    Log::error("Job {}, {}", depoNum(), m_problems.constLast());
}

void DownloadJobFilesCommand::cancel()
{
    CUrlCommand::cancel();
    const std::scoped_lock lock(m_nestedMutex);
    if (m_nested)
        m_nested->cancel();
}

std::shared_ptr<CUrlCommand> DownloadJobFilesCommand::downloadRequest(const QString& ending) const
{
    auto request = std::make_shared<CUrlCommand>(m_hosts.secureUrl(downloadPath));
    request->setString(Text::format("user={}&pass={}&depo={}&{}", m_username, m_password, depoNum(), ending),
                       CURLOPT_POSTFIELDS);
    return request;
}

void DownloadJobFilesCommand::execute()
{
    const std::optional<QStringList> listed = listResultFiles();
    if (!listed)
        return;
    const QStringList& names = *listed;
    if (names.isEmpty() && m_problems.isEmpty())
        m_problems << QStringLiteral("the service lists no files");
    const int numberOfFiles = static_cast<int>(names.size());
    reportProgress(0, numberOfFiles);

    const std::optional<QString> jobFolder = retriveLocalIntermediatePath();
    if (isCancelled())
        setResult(CURLE_ABORTED_BY_CALLBACK);
    if (!jobFolder || isCancelled())
        return;
    const QString jobFolderPath = PathText::appendingPathComponent(m_folderPath, DeliveryPath::jobFolder(*jobFolder));

    WriteBehind writeBehind;
    DeliveryFolder folder(jobFolderPath);
    for (int i = 0; i < numberOfFiles && !isCancelled(); ++i) {
        downloadResultFile(i, names.at(i), jobFolderPath, writeBehind);
        folder.keepInSight();
        reportProgress(i, numberOfFiles);
    }
    downloadDemoDiscFiles(jobFolderPath);
    if (!folder.isInPlace())
        m_problems << Text::format("{} was moved or taken away meanwhile, with the files that were in it",
                                   jobFolderPath);
    writeBehind.stop(); // The flush takes what is left with all the rest.
    if (!isCancelled() && numberOfFiles > 0)
        flushDelivery(jobFolderPath);
    // A delivery cut short by the end of the program is not a delivery.
    if (isCancelled())
        setResult(CURLE_ABORTED_BY_CALLBACK);
    else
        markDelivered(numberOfFiles);
}

// What the service is told to be delivered it need not keep.
void DownloadJobFilesCommand::flushDelivery(const QString& jobFolderPath) const
{
    // Without a folder of its own it lies among the user's other files.
    const bool isFlushed = QDir::cleanPath(jobFolderPath) == QDir::cleanPath(m_folderPath)
                               ? DeliveryFlush::flushFileSystem(jobFolderPath)
                               : DeliveryFlush::flush(jobFolderPath).has_value();
    if (!isFlushed)
        Log::warning("Job {}, not all files in {} could be flushed to disk", depoNum(), jobFolderPath);
    // The folders above hold the new one's name.
    for (QString folder = jobFolderPath; folder.size() > m_folderPath.size();) {
        folder = QFileInfo(folder).path();
        AtomicFile::flush(folder);
    }
}

std::optional<QStringList> DownloadJobFilesCommand::listResultFiles()
{
    QStringList names;
    int equalNames = 1;
    while (!isCancelled()) {
        const auto request = downloadRequest(Text::format("file_num={}&just_get_name=1", names.size()));
        executeNested(request);
        noteFailure(*request, Text::format("the list of files broke off after {}", names.size()));
        const QString name = request->dataAsString();
        Log::system("{}", name);
        if (name.isEmpty())
            break;
        const bool isSame = !names.isEmpty() && names.constLast().right(comparedEnding) == name.right(comparedEnding);
        equalNames = isSame ? equalNames + 1 : 1;
        names << name;
        if (equalNames < mostEqualNames && names.size() < mostResultFiles)
            continue;
        Log::error("Job {}, the list of files has no end: {} times the same, {} in all", depoNum(), equalNames,
                   names.size());
        setResult(CURLE_WEIRD_SERVER_REPLY);
        return std::nullopt;
    }
    return names;
}

std::optional<QString> DownloadJobFilesCommand::askJobFact(const QString& extraFormData)
{
    const auto request =
        MiscStuffCommand::miscStuffCommandWithUser(m_hosts, m_username, m_password, depoNum(), extraFormData);
    executeNested(request);
    if (request->result() != 0) {
        setResult(request->result());
        return std::nullopt;
    }
    return request->dataAsString();
}

std::optional<QString> DownloadJobFilesCommand::retriveLocalIntermediatePath()
{
    const std::optional<QString> option = askJobFact(QStringLiteral("field=delivery_option"));
    if (!option)
        return std::nullopt;
    if (*option == u"Deposition") {
        const std::optional<QString> deponent = askJobFact(QStringLiteral("field=deponent2"));
        if (!deponent)
            return std::nullopt;
        const std::optional<QString> dateReply = askJobFact(QStringLiteral("field=depo_date"));
        if (!dateReply)
            return std::nullopt;
        const auto date = DateText::readLeniently(*dateReply);
        if (!date)
            Log::error("Unable to read date of depo={}: {}", depoNum(), *dateReply);
        return Text::format("{}_{}_{}", *deponent,
                            date ? DateText::format(*date, QStringLiteral("MMddyy")) : QStringLiteral("undated"),
                            depoNum());
    }
    if (*option == u"ShortCaption") {
        const std::optional<QString> caption = askJobFact(QString());
        if (!caption)
            return std::nullopt;
        return caption->isEmpty() ? QStringLiteral("no_caption") : *caption;
    }
    return QString();
}

std::optional<QString> DownloadJobFilesCommand::fileTypeSubFolder(const QString& fileName)
{
    return DeliveryPath::fileTypeSubFolder(fileName);
}

void DownloadJobFilesCommand::downloadResultFile(int number, const QString& listedName, const QString& jobFolderPath,
                                                 WriteBehind& writeBehind)
{
    const QString name = DeliveryPath::fileName(listedName);
    const std::optional<QString> subFolder = fileTypeSubFolder(name);
    // With no usable name left, the slash keeps a file from standing where the folder has to be.
    const QString folder = PathText::appendingPathComponent(jobFolderPath, subFolder.value_or(QString()));
    const QString destination = name.isEmpty() ? folder + u'/' : PathText::appendingPathComponent(folder, name);

    Log::info("Start downloading file: {}", destination);
    const auto download = DownloadFileCommand::downloadFileCommandWithUser(m_hosts, m_username, m_password, depoNum(),
                                                                           number, destination);
    download->setBuffer(m_buffer);
    executeNested(download);
    Log::info("Done downloading file: {}", destination);
    if (!download->isFileMade()) {
        m_problems << Text::format("{} could not be made", destination);
        return;
    }
    if (noteBrokenFile(*download, download->downloadedFile(), destination))
        return;
    if (download->downloadedFile().receivedSize() == 0)
        m_problems << Text::format("{} came empty", destination);

    if (subFolder == QStringLiteral("Korvane") && PathText::pathExtension(destination) == u"zip") {
        unzip(destination);
        writeBehind.add(QFileInfo(destination).path());
    } else {
        writeBehind.add(destination);
    }
}

bool DownloadJobFilesCommand::noteBrokenFile(const CUrlCommand& command, const DownloadedFile& file,
                                             const QString& destination)
{
    const QString aside = DeliveryPath::incomplete(destination);
    QFile::remove(aside); // Of an earlier delivery.
    if (command.result() == 0 && file.trouble().isEmpty())
        return false;
    noteFailure(command, Text::format("{} was not received whole", destination));
    if (!file.trouble().isEmpty())
        m_problems << Text::format("{} could not be written whole: {}", destination, file.trouble());
    if (!QFile::rename(destination, aside) && QFile::exists(destination))
        m_problems << Text::format("{} could not be renamed and is not whole", destination);
    return true;
}

void DownloadJobFilesCommand::unzip(const QString& archivePath)
{
    Log::info("Unzipping file: {}", archivePath);
    ZipArchive archive;
    if (!archive.UnzipOpenFile(archivePath))
        return;
    const bool unzipped = archive.UnzipFileTo(QFileInfo(archivePath).path(), /*overWrite=*/true);
    archive.UnzipCloseFile();
    if (unzipped) {
        Log::info("Unzipped sucessfully");
        QFile::remove(archivePath);
        if (archive.numPassedOver() > 0)
            m_problems << Text::format("{} entries of {} have names that cannot be written", archive.numPassedOver(),
                                       archivePath);
    } else {
        Log::error("Unzip error");
        m_problems << (archive.refusal().isEmpty()
                           ? Text::format("{} could not be unpacked", archivePath)
                           : Text::format("{} could not be unpacked: {}", archivePath, archive.refusal()));
    }
}

void DownloadJobFilesCommand::downloadDemoDiscFiles(const QString& jobFolderPath)
{
    for (const DemoDiscFile& file : demoDiscFiles()) {
        const QString url = m_hosts.fileUrl(file.path);
        const QString folder = PathText::appendingPathComponent(jobFolderPath, file.subFolder);
        Log::info("Start downloading file: {}", url);
        const QString destination = PathText::appendingPathComponent(folder, PathText::lastPathComponent(file.path));
        const auto download = RegularDownloadFileCommand::RegularDownloadFileCommandWithURL(url, destination);
        download->setBuffer(m_buffer);
        executeNested(download);
        Log::info("Done downloading file: {}", url);
        if (download->isFileMade())
            noteBrokenFile(*download, download->downloadedFile(), destination);
    }
}

void DownloadJobFilesCommand::markDelivered(int numberOfFiles)
{
    Log::info("Changing job(DepoNum = {}) server status to Done", depoNum());
    const auto request = downloadRequest(Text::format("starting_point=0&file_num={}", numberOfFiles));
    executeNested(request);
    noteFailure(*request, QStringLiteral("the service was not told of the delivery"));
    Log::info("Changed job(DepoNum = {}) server status to Done", depoNum());
}

void DownloadJobFilesCommand::reportProgress(int done, int total)
{
    if (CUrlCommandResultObserver* const toTell = observer())
        toTell->curlCommandProgress(*this, done, total, 0, 0);
}
