// A job as one JSON object, and back.
#include "model/Job.h"
#include "model/JsonReading.h"
#include "model/PathBookmarks.h"

#include <QJsonArray>

namespace {

// A download that was interrupted or finished is offered again. Negative numbers count as high ones.
int statusReadBack(int stored)
{
    return stored >= 0 && stored < JobStatusDownloading ? stored : JobStatusReadyForDownload;
}

// A number that is no format can come from no program of ours, and nothing could be ordered with it.
int deliveryFormatReadBack(int stored)
{
    return stored >= DeliveryFormatAll && stored <= DeliveryFormatCustom ? stored : DeliveryFormatAll;
}

} // namespace

std::optional<QJsonObject> Job::encode() const
{
    if (serverJob())
        return std::nullopt;
    QJsonArray files;
    for (const auto& file : mediaFiles())
        files.append(file->encode());
    using namespace JsonReading;
    const std::scoped_lock lock(m_mutex);
    return QJsonObject{
        {QStringLiteral("transcriptFile"), fromText(m_transcriptFile)},
        {QStringLiteral("mediaFiles"), files},
        {QStringLiteral("deliveryFormat"), m_deliveryFormat},
        {QStringLiteral("deponentFirstName"), fromText(m_deponentFirstName)},
        {QStringLiteral("deponentLastName"), fromText(m_deponentLastName)},
        {QStringLiteral("depositionDate"), fromDate(m_depositionDate)},
        {QStringLiteral("shortCaption"), fromText(m_shortCaption)},
        {QStringLiteral("rush"), m_rush},
        {QStringLiteral("viaInterpreter"), m_viaInterpreter},
        {QStringLiteral("man24ProdID"), fromScalar(m_man24ProdID)},
        {QStringLiteral("man24Rate"), fromScalar(m_man24Rate)},
        {QStringLiteral("man48ProdID"), fromScalar(m_man48ProdID)},
        {QStringLiteral("man48Rate"), fromScalar(m_man48Rate)},
        {QStringLiteral("man72ProdID"), fromScalar(m_man72ProdID)},
        {QStringLiteral("man72Rate"), fromScalar(m_man72Rate)},
        {QStringLiteral("unattendedProdID"), fromScalar(m_unattendedProdID)},
        {QStringLiteral("unattendedRate"), fromScalar(m_unattendedRate)},
        {QStringLiteral("autoSyncProdID"), fromScalar(m_autoSyncProdID)},
        {QStringLiteral("autoSyncRate"), fromScalar(m_autoSyncRate)},
        {QStringLiteral("orderNum"), fromOptional(m_orderNum)},
        {QStringLiteral("depoNum"), fromOptional(m_depoNum)},
        {QStringLiteral("status"), m_status.load()},
        {QStringLiteral("rushRateMultiplier"), fromScalar(m_rushRateMultiplier)},
        {QStringLiteral("transcriptUploaded"), m_transcriptUploaded},
    };
}

std::shared_ptr<Job> Job::decode(const QJsonObject& archive)
{
    const QJsonValue transcript = archive.value(u"transcriptFile");
    if (!transcript.isString() && !transcript.isNull())
        return nullptr;
    auto decoded = job();
    decoded->decodeMembers(archive);
    return decoded;
}

void Job::decodeMembers(const QJsonObject& archive)
{
    const QString path = JsonReading::text(archive.value(u"transcriptFile"));
    setTranscriptFileURL(getBookmarkedURL(path));
    if (const QUrl url = transcriptFileURL(); url.isEmpty()) {
        setTranscriptFile(path);
    } else {
        startAccessingBookmarkedURL();
        setTranscriptFile(url.toLocalFile());
        stopAccessingBookmarkedURL();
    }
    MediaFiles files;
    const QJsonArray archivedFiles = archive.value(u"mediaFiles").toArray();
    for (const QJsonValue& archivedFile : archivedFiles) {
        if (auto file = MediaFile::decode(archivedFile.toObject()))
            files.append(std::move(file));
    }
    setMediaFiles(files);
    setDeliveryFormat(deliveryFormatReadBack(JsonReading::intOrZero(archive.value(u"deliveryFormat"))));
    setDeponentFirstName(JsonReading::text(archive.value(u"deponentFirstName")));
    setDeponentLastName(JsonReading::text(archive.value(u"deponentLastName")));
    setDepositionDate(JsonReading::date(archive.value(u"depositionDate")));
    setShortCaption(JsonReading::text(archive.value(u"shortCaption")));
    // The level is not archived: these two move it from AutoSync to Man24 or Man72, whatever the job was ordered with.
    setRush(archive.value(u"rush").toBool());
    setViaInterpreter(archive.value(u"viaInterpreter").toBool());
    decodeProducts(archive);
    setTranscriptUploaded(archive.value(u"transcriptUploaded").toBool());
    setStatus(statusReadBack(JsonReading::intOrZero(archive.value(u"status"))));
    recalculateTotalStatus();
}

void Job::decodeProducts(const QJsonObject& archive)
{
    setMan24ProdID(JsonReading::scalar(archive.value(u"man24ProdID")));
    setMan24Rate(JsonReading::scalar(archive.value(u"man24Rate")));
    setMan48ProdID(JsonReading::scalar(archive.value(u"man48ProdID")));
    setMan48Rate(JsonReading::scalar(archive.value(u"man48Rate")));
    setMan72ProdID(JsonReading::scalar(archive.value(u"man72ProdID")));
    setMan72Rate(JsonReading::scalar(archive.value(u"man72Rate")));
    setUnattendedProdID(JsonReading::scalar(archive.value(u"unattendedProdID")));
    setUnattendedRate(JsonReading::scalar(archive.value(u"unattendedRate")));
    setAutoSyncProdID(JsonReading::scalar(archive.value(u"autoSyncProdID")));
    setAutoSyncRate(JsonReading::scalar(archive.value(u"autoSyncRate")));
    setOrderNum(JsonReading::optionalInt(archive.value(u"orderNum")));
    setDepoNum(JsonReading::optionalInt(archive.value(u"depoNum")));
    setRushRateMultiplier(JsonReading::scalar(archive.value(u"rushRateMultiplier")));
}
