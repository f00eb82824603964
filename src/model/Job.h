#pragma once

#include "model/DeliveryFormat.h"
#include "model/MediaFile.h"
#include "model/ProcessingLevel.h"

#include <QDateTime>
#include <QJsonObject>
#include <QVarLengthArray>
#include <QVariant>

#include <unordered_set>

// One deposition order: transcript, media files, what is ordered, what the service quoted, and the sums, price and
// status that follow from them. Threads and ownership as MediaObject says.
//
// It observes its media files and recomputes at once, on the thread that changed the file. Sums and status are computed
// and stored in one step, so that two files changed at the same time leave the later result.
//
// Rates and product IDs are the service's JSON values as they came, numbers or texts; NumberReading reads them.
class Job : public MediaObject, public MediaFileObserver
{
    Q_OBJECT
    Q_PROPERTY(QString transcriptFile READ transcriptFile WRITE setTranscriptFile NOTIFY transcriptFileChanged)
    Q_PROPERTY(
        QList<std::shared_ptr<MediaFile>> mediaFiles READ mediaFiles WRITE setMediaFiles NOTIFY mediaFilesChanged)
    Q_PROPERTY(int deliveryFormat READ deliveryFormat WRITE setDeliveryFormat NOTIFY deliveryFormatChanged)
    Q_PROPERTY(
        QString deponentFirstName READ deponentFirstName WRITE setDeponentFirstName NOTIFY deponentFirstNameChanged)
    Q_PROPERTY(QString deponentLastName READ deponentLastName WRITE setDeponentLastName NOTIFY deponentLastNameChanged)
    Q_PROPERTY(QDateTime depositionDate READ depositionDate WRITE setDepositionDate NOTIFY depositionDateChanged)
    Q_PROPERTY(QString shortCaption READ shortCaption WRITE setShortCaption NOTIFY shortCaptionChanged)
    Q_PROPERTY(bool rush READ rush WRITE setRush NOTIFY rushChanged)
    Q_PROPERTY(bool viaInterpreter READ viaInterpreter WRITE setViaInterpreter NOTIFY viaInterpreterChanged)
    Q_PROPERTY(int processingLevel READ processingLevel WRITE setProcessingLevel NOTIFY processingLevelChanged)
    Q_PROPERTY(std::optional<int> orderNum READ orderNum WRITE setOrderNum NOTIFY orderNumChanged)
    Q_PROPERTY(std::optional<int> depoNum READ depoNum WRITE setDepoNum NOTIFY depoNumChanged)
    Q_PROPERTY(QVariant man24Rate READ man24Rate WRITE setMan24Rate NOTIFY man24RateChanged)
    Q_PROPERTY(QVariant man24RushRate READ man24RushRate WRITE setMan24RushRate NOTIFY man24RushRateChanged)
    Q_PROPERTY(QVariant man48Rate READ man48Rate WRITE setMan48Rate NOTIFY man48RateChanged)
    Q_PROPERTY(QVariant man72Rate READ man72Rate WRITE setMan72Rate NOTIFY man72RateChanged)
    Q_PROPERTY(QVariant unattendedRate READ unattendedRate WRITE setUnattendedRate NOTIFY unattendedRateChanged)
    Q_PROPERTY(QVariant autoSyncRate READ autoSyncRate WRITE setAutoSyncRate NOTIFY autoSyncRateChanged)
    Q_PROPERTY(QVariant autoSyncRushRate READ autoSyncRushRate WRITE setAutoSyncRushRate NOTIFY autoSyncRushRateChanged)
    Q_PROPERTY(QVariant rushRateMultiplier READ rushRateMultiplier WRITE setRushRateMultiplier NOTIFY
                   rushRateMultiplierChanged)
    Q_PROPERTY(QString jobTotal READ jobTotal WRITE setJobTotal NOTIFY jobTotalChanged)
    Q_PROPERTY(std::optional<float> totalMediaDuration READ totalMediaDuration WRITE setTotalMediaDuration NOTIFY
                   totalMediaDurationChanged)
    Q_PROPERTY(std::optional<float> processedMediaDuration READ processedMediaDuration WRITE setProcessedMediaDuration
                   NOTIFY processedMediaDurationChanged)
    Q_PROPERTY(std::optional<float> totalMediaFileSize READ totalMediaFileSize WRITE setTotalMediaFileSize NOTIFY
                   totalMediaFileSizeChanged)
    Q_PROPERTY(std::optional<float> uploadedMediaFileSize READ uploadedMediaFileSize WRITE setUploadedMediaFileSize
                   NOTIFY uploadedMediaFileSizeChanged)
public:
    using MediaFiles = QList<std::shared_ptr<MediaFile>>;

    // A new job, dated now.
    [[nodiscard]] static std::shared_ptr<Job> job();
    // The job of an archive, at the status from which its work goes on. Values of the wrong type count as missing, a
    // media file that cannot be read is left out. Null when the archive has no "transcriptFile", as one written by
    // encode() always has, or one that is neither a text nor null.
    [[nodiscard]] static std::shared_ptr<Job> decode(const QJsonObject& archive);
    // Nothing for a server job: it is made again from the service's replies.
    [[nodiscard]] std::optional<QJsonObject> encode() const;
    ~Job() override;

    // Also names the row after the file and keeps a bookmark of the path.
    [[nodiscard]] QString transcriptFile() const;
    void setTranscriptFile(const QString& transcriptFile);
    [[nodiscard]] QString deponentFirstName() const;
    void setDeponentFirstName(const QString& deponentFirstName);
    [[nodiscard]] QString deponentLastName() const;
    void setDeponentLastName(const QString& deponentLastName);
    [[nodiscard]] QDateTime depositionDate() const;
    void setDepositionDate(const QDateTime& depositionDate);
    [[nodiscard]] QString shortCaption() const;
    void setShortCaption(const QString& shortCaption);
    // A DeliveryFormat.
    [[nodiscard]] int deliveryFormat() const;
    void setDeliveryFormat(int deliveryFormat);

    // A ProcessingLevel.
    [[nodiscard]] int processingLevel() const;
    void setProcessingLevel(int processingLevel);
    // Rush is not offered for Man48 and Man72: setting it either way moves such a job to a level that has it.
    [[nodiscard]] bool rush() const;
    void setRush(bool rush);
    // AutoSync is not offered for interpreted depositions: setting it either way moves such a job to a manual level.
    [[nodiscard]] bool viaInterpreter() const;
    void setViaInterpreter(bool viaInterpreter);

    // The service's numbers for the order and for the deposition; the latter is the job's identity with the service.
    [[nodiscard]] std::optional<int> orderNum() const;
    void setOrderNum(std::optional<int> orderNum);
    [[nodiscard]] std::optional<int> depoNum() const;
    void setDepoNum(std::optional<int> depoNum);

    // The service's product for each level.
    [[nodiscard]] QVariant man24ProdID() const;
    void setMan24ProdID(const QVariant& man24ProdID);
    [[nodiscard]] QVariant man48ProdID() const;
    void setMan48ProdID(const QVariant& man48ProdID);
    [[nodiscard]] QVariant man72ProdID() const;
    void setMan72ProdID(const QVariant& man72ProdID);
    [[nodiscard]] QVariant unattendedProdID() const;
    void setUnattendedProdID(const QVariant& unattendedProdID);
    [[nodiscard]] QVariant autoSyncProdID() const;
    void setAutoSyncProdID(const QVariant& autoSyncProdID);
    // Another number than a level's fails the assertion "unknown processing level" and gives an invalid value.
    [[nodiscard]] QVariant prodIDForProcessingLevel(int processingLevel) const;

    // Prices per hour of media. The rush rates are derived: they are the plain ones while rush is off.
    [[nodiscard]] QVariant man24Rate() const;
    void setMan24Rate(const QVariant& man24Rate);
    [[nodiscard]] QVariant man24RushRate() const;
    void setMan24RushRate(const QVariant& man24RushRate);
    [[nodiscard]] QVariant man48Rate() const;
    void setMan48Rate(const QVariant& man48Rate);
    [[nodiscard]] QVariant man72Rate() const;
    void setMan72Rate(const QVariant& man72Rate);
    [[nodiscard]] QVariant unattendedRate() const;
    void setUnattendedRate(const QVariant& unattendedRate);
    [[nodiscard]] QVariant autoSyncRate() const;
    void setAutoSyncRate(const QVariant& autoSyncRate);
    [[nodiscard]] QVariant autoSyncRushRate() const;
    void setAutoSyncRushRate(const QVariant& autoSyncRushRate);
    [[nodiscard]] QVariant rushRateMultiplier() const;
    void setRushRateMultiplier(const QVariant& rushRateMultiplier);
    // The price with two decimals; "" while rate or duration is not known.
    [[nodiscard]] QString jobTotal() const;
    void setJobTotal(const QString& jobTotal);

    // Sums over the media files, in seconds and bytes; none where the sum is 0. The job's progress pair follows the
    // durations until uploading begins (status 9) and the sizes from then on.
    [[nodiscard]] std::optional<float> totalMediaDuration() const;
    void setTotalMediaDuration(std::optional<float> totalMediaDuration);
    [[nodiscard]] std::optional<float> processedMediaDuration() const;
    void setProcessedMediaDuration(std::optional<float> processedMediaDuration);
    [[nodiscard]] std::optional<float> totalMediaFileSize() const;
    void setTotalMediaFileSize(std::optional<float> totalMediaFileSize);
    [[nodiscard]] std::optional<float> uploadedMediaFileSize() const;
    void setUploadedMediaFileSize(std::optional<float> uploadedMediaFileSize);

    // The job exists only on the service.
    [[nodiscard]] bool serverJob() const;
    void setServerJob(bool serverJob);
    // The service has confirmed the transcript.
    [[nodiscard]] bool transcriptUploaded() const;
    void setTranscriptUploaded(bool transcriptUploaded);
    // Empty when no bookmark was found.
    [[nodiscard]] QUrl transcriptFileURL() const;
    void setTranscriptFileURL(const QUrl& transcriptFileURL);

    [[nodiscard]] MediaFiles mediaFiles() const;
    // Observes every file again, so a file that was in the list before is observed twice and each of its changes is
    // recomputed twice, which is harmless. Replaced files stay observed.
    void setMediaFiles(const MediaFiles& mediaFiles);
    // A file equal to one that is there is not inserted. The status is recomputed either way.
    void insertObject(const std::shared_ptr<MediaFile>& mediaFile, qsizetype inMediaFilesAtIndex);
    // At the top.
    void addMediaFilesObject(const std::shared_ptr<MediaFile>& mediaFile);
    void removeObjectFromMediaFilesAtIndex(qsizetype index);
    void removeMediaFilesObject(const std::shared_ptr<MediaFile>& mediaFile);

    void refreshRushRates();
    void recalculateJobTotal();
    void recalculateTotalMediaDuration();
    void recalculateProcessedMediaDuration();
    void recalculateTotalMediaFileSize();
    void recalculateUploadedMediaFileSize();
    // From the files' statuses; from 11 on the service's replies alone move the job.
    void recalculateTotalStatus();

    [[nodiscard]] QList<std::shared_ptr<MediaObject>> childs() const override;
    [[nodiscard]] bool isLeaf() const override;
    void startAccessingBookmarkedURL() override;
    void stopAccessingBookmarkedURL() override;
    void mediaFileChanged(MediaFileChange change) override;

Q_SIGNALS:
    void transcriptFileChanged();
    void mediaFilesChanged();
    void deliveryFormatChanged();
    void deponentFirstNameChanged();
    void deponentLastNameChanged();
    void depositionDateChanged();
    void shortCaptionChanged();
    void rushChanged();
    void viaInterpreterChanged();
    void processingLevelChanged();
    void orderNumChanged();
    void depoNumChanged();
    void man24RateChanged();
    void man24RushRateChanged();
    void man48RateChanged();
    void man72RateChanged();
    void unattendedRateChanged();
    void autoSyncRateChanged();
    void autoSyncRushRateChanged();
    void rushRateMultiplierChanged();
    void jobTotalChanged();
    void totalMediaDurationChanged();
    void processedMediaDurationChanged();
    void totalMediaFileSizeChanged();
    void uploadedMediaFileSizeChanged();

private:
    Job();

    // The signals of one change, in the order in which they are emitted when the lock is released.
    using Signal = void (Job::*)();
    using Signals = QVarLengthArray<Signal, 8>;
    void emitAll(const Signals& changes);
    template <typename Value>
    void change(Value& field, std::type_identity_t<Value> value, Signal signal)
    {
        store(field, std::move(value));
        Q_EMIT(this->*signal)();
        Q_EMIT rowChanged();
    }
    // With m_mutex held.
    void refreshRushRatesLocked(Signals& changes);
    void recalculateJobTotalLocked(Signals& changes);
    void moveToLevelLocked(int processingLevel, Signals& changes);
    void storeTotalMediaDurationLocked(std::optional<float> value, Signals& changes);
    void storeProcessedMediaDurationLocked(std::optional<float> value, Signals& changes);
    void storeTotalMediaFileSizeLocked(std::optional<float> value, Signals& changes);
    void storeUploadedMediaFileSizeLocked(std::optional<float> value, Signals& changes);
    void changeRate(QVariant& field, const QVariant& value, Signal signal, bool isRushable);
    void recalculateSum(std::optional<float> (*sum)(const MediaFiles&),
                        void (Job::*storeLocked)(std::optional<float>, Signals&));
    [[nodiscard]] bool holdsEqualLocked(const MediaFile& mediaFile);
    void observe(const std::shared_ptr<MediaFile>& mediaFile);
    void decodeMembers(const QJsonObject& archive);
    void decodeProducts(const QJsonObject& archive);

    // Held while sums or the status are computed from the files and stored; taken before m_mutex and before the
    // files' own mutexes. Nothing else is called with it held.
    std::mutex m_recalculation;

    QString m_transcriptFile;
    MediaFiles m_mediaFiles;
    // The hashes of m_mediaFiles, so that a new file is compared with all others only where it may be one of them.
    std::unordered_multiset<std::size_t> m_mediaFileHashes;
    bool m_mediaFileHashesAreValid = true;
    int m_deliveryFormat = DeliveryFormatAll;
    QString m_deponentFirstName;
    QString m_deponentLastName;
    QDateTime m_depositionDate;
    QString m_shortCaption;
    bool m_rush = false;
    bool m_viaInterpreter = false;
    int m_processingLevel = ProcessingLevelAutoSync;
    std::optional<int> m_orderNum;
    std::optional<int> m_depoNum;
    QVariant m_man24ProdID;
    QVariant m_man24Rate;
    QVariant m_man24RushRate;
    QVariant m_man48ProdID;
    QVariant m_man48Rate;
    QVariant m_man72ProdID;
    QVariant m_man72Rate;
    QVariant m_unattendedProdID;
    QVariant m_unattendedRate;
    QVariant m_autoSyncProdID;
    QVariant m_autoSyncRate;
    QVariant m_autoSyncRushRate;
    QVariant m_rushRateMultiplier;
    QString m_jobTotal = QStringLiteral("");
    std::optional<float> m_totalMediaDuration;
    std::optional<float> m_processedMediaDuration;
    std::optional<float> m_totalMediaFileSize;
    std::optional<float> m_uploadedMediaFileSize;
    bool m_serverJob = false;
    bool m_transcriptUploaded = false;
    QUrl m_transcriptFileURL;
};
