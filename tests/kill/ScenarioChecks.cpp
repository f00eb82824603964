// What must hold once everything that was killed is resumed.

#include "SavedJobs.h"
#include "Scenario.h"

#include "archive/ZipArchive.h"
#include "commands/DeliveryPath.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <fmt/format.h>

#include <algorithm>

namespace {

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

std::string kindOf(const DemoService::Request& request)
{
    const auto has = [&](const char* text) { return request.body.find(text) != std::string::npos; };
    if (request.endpoint == "jobdetails.php")
        return "submission";
    if (request.endpoint == "add_segment.php")
        return "announcing a segment";
    if (request.endpoint == "set_media_format.php")
        return "a segment's format";
    if (request.endpoint == "test_custupload2.php")
        return request.parts.size() > 3 && request.parts[3].fileName.find(".mp3[") != std::string::npos
                   ? "upload of audio"
                   : "upload of the transcript";
    if (request.endpoint == "test_downloadjob2.php" && !has("just_get_name=1"))
        return request.reply.empty() ? "telling of the delivery" : "download of a file";
    return {}; // Asking changes nothing.
}

QString jobFolder(const DemoService::Job& job)
{
    return QStringLiteral("Doe_030426_%1/").arg(job.depoNumber);
}

} // namespace

std::map<std::string, int> Scenario::requestsByKind() const
{
    std::map<std::string, int> counts;
    for (const DemoService::Request& request : m_service.requests()) {
        if (const std::string kind = kindOf(request); !kind.empty())
            ++counts[kind];
    }
    return counts;
}

void Scenario::countRepeats()
{
    const auto& once = (m_plan.again ? m_common.again : m_common.once).requests;
    for (const auto& [kind, count] : requestsByKind()) {
        const auto expected = once.find(kind);
        const int beyond = count - (expected == once.end() ? 0 : expected->second * m_plan.orders);
        if (beyond > 0)
            m_outcome.repeats[kind] += beyond;
    }
}

std::map<QString, QByteArray> Scenario::filesBelow(const QString& folder) const
{
    std::map<QString, QByteArray> files;
    QDirIterator each(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (each.hasNext()) {
        const QString file = each.next();
        files[QDir(folder).relativeFilePath(file)] = contents(file);
    }
    return files;
}

std::map<QString, QByteArray> Scenario::expectedFiles(const DemoService::Job& job) const
{
    std::map<QString, QByteArray> files;
    for (const auto& [name, bytes] : job.deliverables) {
        const QString fileName = DeliveryPath::fileName(QString::fromStdString(name));
        const QString subFolder = DeliveryPath::fileTypeSubFolder(fileName).value_or(QString());
        if (!fileName.endsWith(QStringLiteral(".zip"))) {
            files[jobFolder(job) + subFolder + u'/' + fileName] = QByteArray::fromStdString(bytes);
            continue;
        }
        const QTemporaryDir unpacked;
        QFile zip(unpacked.filePath(QStringLiteral("package")));
        if (zip.open(QIODevice::WriteOnly))
            zip.write(bytes.data(), static_cast<qint64>(bytes.size()));
        zip.close();
        ZipArchive archive;
        if (archive.UnzipOpenFile(zip.fileName()) &&
            archive.UnzipFileTo(unpacked.filePath(QStringLiteral("files")), /*overWrite=*/true)) {
            for (const auto& [inside, contained] : filesBelow(unpacked.filePath(QStringLiteral("files"))))
                files[jobFolder(job) + subFolder + u'/' + inside] = contained;
        }
    }
    for (const auto& [name, bytes] : m_common.demoDiscFiles)
        files[jobFolder(job) + name] = bytes;
    return files;
}

void Scenario::checkDeliveryFolder(const std::vector<DemoService::Job>& delivered)
{
    std::map<QString, QByteArray> expected;
    for (const DemoService::Job& job : delivered)
        expected.merge(expectedFiles(job));
    const auto found = filesBelow(path(QStringLiteral("delivered")));
    for (const auto& [name, bytes] : expected) {
        const auto file = found.find(name);
        if (file == found.end())
            fail(fmt::format("{} is not delivered", name.toStdString()));
        else if (file->second != bytes)
            fail(fmt::format("{} has {} bytes, and not the {} that it should have", name.toStdString(),
                             file->second.size(), bytes.size()));
    }
    for (const auto& [name, bytes] : found) {
        if (!expected.contains(name))
            fail(fmt::format("{} is left over in the delivery folder", name.toStdString()));
    }
}

void Scenario::checkDeposition(int order, const DemoService::Job& job)
{
    if (!job.transcript || QByteArray::fromStdString(*job.transcript) != contents(transcript(order)))
        fail(fmt::format("the service has no right transcript of {}", job.depoNumber));
    for (const DemoService::Segment& segment : job.segments) {
        if (!segment.announced || !segment.uploaded)
            fail(fmt::format("the service lacks segment {} of {}", segment.number, job.depoNumber));
        const auto right = m_common.audio.find(segment.sourceName);
        if (right == m_common.audio.end() || !right->second.contains(segment.audio))
            fail(fmt::format("segment {} of {} came with {} wrong bytes", segment.number, job.depoNumber,
                             segment.audio.size()));
        if (segment.format.empty())
            ++m_outcome.withoutFormat;
    }
}

void Scenario::checkOrder(int order)
{
    const auto depositions = depositionsOf(order);
    const auto delivered = std::ranges::count_if(depositions, &DemoService::Job::delivered);
    if (delivered != 1)
        fail(fmt::format("order {} has {} depositions, of which {} are delivered", order + 1, depositions.size(),
                         delivered));
    const QString name = QFileInfo(transcript(order)).fileName();
    const QStringList lines = m_allOutput.split(u'\n');
    const auto announced = static_cast<int>(std::ranges::count_if(lines, [&](const QString& line) {
        return line.contains(name) && line.contains(QStringLiteral("may now hold it twice"));
    }));
    const int twins = static_cast<int>(depositions.size()) - 1;
    m_outcome.twins += std::max(twins, 0);
    m_outcome.announced += std::min(std::max(twins, 0), announced);
    m_outcome.announcedInVain += std::max(announced - std::max(twins, 0), 0);
    if (twins > announced)
        fail(fmt::format("order {} has {} depositions, but was only {} times told to be held twice perhaps", order + 1,
                         depositions.size(), announced));
    for (const DemoService::Job& job : depositions) {
        if (job.delivered)
            checkDeposition(order, job);
    }
}

void Scenario::checkEnd()
{
    for (int order = 0; order < m_plan.orders; ++order)
        checkOrder(order);
    std::vector<DemoService::Job> delivered = m_service.jobs();
    std::erase_if(delivered, [](const DemoService::Job& job) { return !job.delivered; });
    checkDeliveryFolder(delivered);
    const SavedJobs saved(path(QStringLiteral("temp/State_demo.archive")));
    if (!saved.isWhole() || saved.count() != 0)
        fail(fmt::format("{} jobs are still saved as unfinished, {}", saved.count(), saved.furthest()));
    for (const std::string& refusal : m_service.refusals())
        fail("the service refused: " + refusal);
    countRepeats();
}
