#pragma once

#include "commands/CUrlCommandResultObserver.h"
#include "foundation/WorkerThreads.h"
#include "media/AudioExtractorErrorObserver.h"
#include "model/Job.h"
#include "ui/WindowController.h"
#include "ui/submit/MediaFilesModel.h"

#include <QStringList>
#include <QUrl>

#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <vector>

class ApplicationController;
class AudioExtractor;
class ChangeRelay;
class CUrlCommand;
class QMimeData;

// The logic of the window in which one new job is put together. The job stays when the window closes, until a
// submission replaces it. Main thread, but for the threads that read the recordings; its end waits for those.
class SubmitJobWindowController : public WindowController,
                                  public CUrlCommandResultObserver,
                                  public AudioExtractorErrorObserver
{
    Q_OBJECT
    Q_PROPERTY(std::shared_ptr<Job> job READ job WRITE setJob NOTIFY jobChanged)
    Q_PROPERTY(
        bool isLOGDeliveryFormatAvailable READ isLOGDeliveryFormatAvailable NOTIFY isLOGDeliveryFormatAvailableChanged)
    Q_PROPERTY(bool isGettingRatesInProgress READ isGettingRatesInProgress NOTIFY isGettingRatesInProgressChanged)
    Q_PROPERTY(bool isJobCouldBeSubmitted READ isJobCouldBeSubmitted NOTIFY isJobCouldBeSubmittedChanged)
    Q_PROPERTY(bool isCustomFormatSelected READ isCustomFormatSelected NOTIFY isCustomFormatSelectedChanged)
    Q_PROPERTY(bool isReadingMediaFiles READ isReadingMediaFiles NOTIFY isReadingMediaFilesChanged)
    Q_PROPERTY(QStringList shortCaptions READ shortCaptions NOTIFY shortCaptionsChanged)

    // The job's values as the controls show and set them.
    Q_PROPERTY(QString transcriptText READ transcriptText NOTIFY transcriptTextChanged)
    Q_PROPERTY(QString deponentFirstName READ deponentFirstName WRITE setDeponentFirstName NOTIFY jobValuesChanged)
    Q_PROPERTY(QString deponentLastName READ deponentLastName WRITE setDeponentLastName NOTIFY jobValuesChanged)
    Q_PROPERTY(QDate depositionDate READ depositionDate WRITE setDepositionDate NOTIFY jobValuesChanged)
    Q_PROPERTY(QString shortCaption READ shortCaption WRITE setShortCaption NOTIFY jobValuesChanged)
    Q_PROPERTY(int deliveryFormat READ deliveryFormat WRITE setDeliveryFormat NOTIFY jobValuesChanged)
    Q_PROPERTY(int selectedLevelTag READ selectedLevelTag WRITE setSelectedLevelTag NOTIFY jobValuesChanged)
    Q_PROPERTY(bool rush READ rush WRITE setRush NOTIFY jobValuesChanged)
    Q_PROPERTY(bool viaInterpreter READ viaInterpreter WRITE setViaInterpreter NOTIFY jobValuesChanged)

    // Texts.
    Q_PROPERTY(QString windowTitle READ windowTitle NOTIFY jobValuesChanged)
    Q_PROPERTY(QString transcriptMessage READ transcriptMessage NOTIFY messagesChanged)
    Q_PROPERTY(QString mediaMessage READ mediaMessage NOTIFY messagesChanged)
    Q_PROPERTY(QString depositionDateText READ depositionDateText NOTIFY jobValuesChanged)
    Q_PROPERTY(QString dateMessage READ dateMessage NOTIFY messagesChanged)
    Q_PROPERTY(QString mediaSummary READ mediaSummary NOTIFY jobValuesChanged)
    Q_PROPERTY(QString readingText READ readingText NOTIFY isReadingMediaFilesChanged)
    Q_PROPERTY(QString ratesStatusText READ ratesStatusText NOTIFY jobValuesChanged)
    Q_PROPERTY(QString rushMultiplierText READ rushMultiplierText NOTIFY jobValuesChanged)
    Q_PROPERTY(QString totalText READ totalText NOTIFY jobValuesChanged)
    Q_PROPERTY(QString missingText READ missingText NOTIFY jobValuesChanged)
public:
    explicit SubmitJobWindowController(ApplicationController& application);
    ~SubmitJobWindowController() override;

    // Asks for the prices and the LOG format, each time it is called. Makes a job when there is none.
    void showWindow() override;

    // Null until the window first opens.
    [[nodiscard]] std::shared_ptr<Job> job() const { return m_job; }
    void setJob(const std::shared_ptr<Job>& job);
    // The user has entered something that no submission has taken yet.
    [[nodiscard]] bool hasUnsubmittedWork() const;
    [[nodiscard]] bool isLOGDeliveryFormatAvailable() const { return m_isLOGDeliveryFormatAvailable; }
    [[nodiscard]] bool isGettingRatesInProgress() const { return m_isGettingRatesInProgress; }
    [[nodiscard]] bool isJobCouldBeSubmitted() const { return m_isJobCouldBeSubmitted; }
    [[nodiscard]] bool isCustomFormatSelected() const { return m_isCustomFormatSelected; }
    // The order of the file names, whatever their letter case.
    [[nodiscard]] static bool mediaFilesSortDescriptor(const std::shared_ptr<MediaFile>& a,
                                                       const std::shared_ptr<MediaFile>& b);

    // --- Transcript ---
    // Does nothing but refresh where there is no file. Empty names and the date are taken from what it says.
    void addTranscriptFile(const QString& path);
    void browseTransciptButton();
    // The edit has ended, or a file was dropped on the field.
    void newTrascriptFilePathEntered(const QString& path);
    // Each change while it is typed.
    void controlTextDidChange(const QString& path);

    // --- Recordings ---
    // Transcripts, folders, missing files and files that are in the list are left out, with a message.
    void addMediaFiles(const QStringList& paths);
    void removeMediaFiles(const Job::MediaFiles& mediaFiles);
    void browseMediaFiles();
    // `selected` are the rows chosen in the list.
    void deleteSelectedMediaFiles(const Job::MediaFiles& selected);
    // A drag over the list: a copy of files of this computer, and nothing else.
    [[nodiscard]] static Qt::DropAction tableViewValidateDrop(const QMimeData* data, Qt::DropActions offered);
    // False where the drop carries no files.
    bool tableViewAcceptDrop(const QMimeData* data);
    // Dropped on the main window: the last transcript becomes the job's, the others are added as recordings.
    void addDroppedFiles(const QStringList& paths);
    [[nodiscard]] MediaFilesModel& mediaFilesModel() { return m_mediaFilesModel; }
    [[nodiscard]] bool isReadingMediaFiles() const { return m_readingCount > 0; }

    // --- Caption, format, level ---
    void newShortCaptionEntered(const QString& caption);
    [[nodiscard]] QStringList shortCaptions() const;
    void deliveryFormatChanged();
    void openCustomizeFormatPage();
    [[nodiscard]] QUrl customizeFormatUrl() const;

    struct DeliveryFormatItem
    {
        int deliveryFormat = 0;
        QString title;
        bool isSelectable = true;
    };
    [[nodiscard]] QList<DeliveryFormatItem> deliveryFormats() const;
    [[nodiscard]] bool isDeliveryFormatSelectable(int format) const;

    // A row of both matrices: the choice with its tag, and the price beside it.
    struct LevelRow
    {
        int tag = 0;
        QString title;
        QString value;

        bool operator==(const LevelRow&) const = default;
    };
    [[nodiscard]] QList<LevelRow> levelRows() const;

    // --- Submitting ---
    void refreshCanSubmitJob();
    void submitButton();
    void submitAndNewButton();
    void cancelButton();

    // --- Replies and errors ---
    void processLogAvailabilityResponse(const QString& reply);
    void processGetRates2Response(const QString& reply);
    [[nodiscard]] Error willPresentError(const Error& error) const;
    void curlCommandDone(CUrlCommand& command) override;
    void curlCommandFailed(CUrlCommand& command) override;
    void curlCommandProgress(CUrlCommand&, double, double, double, double) override {}
    // On the thread that reads a recording; returns when the user has been told.
    void audioExtractorHandleError(AudioExtractor& extractor, const Error& error) override;

    // --- Properties of the job ---
    [[nodiscard]] QString transcriptText() const { return m_transcriptText; }
    [[nodiscard]] QString deponentFirstName() const;
    void setDeponentFirstName(const QString& name);
    [[nodiscard]] QString deponentLastName() const;
    void setDeponentLastName(const QString& name);
    // Invalid when the job has none. Setting it means noon of that day.
    [[nodiscard]] QDate depositionDate() const;
    void setDepositionDate(QDate date);
    // A date as people write it. A text that is none leaves the job without a date, stays and is told.
    void enterDepositionDate(const QString& text);
    // Days from the date, or from today where there is none.
    void stepDepositionDate(int days);
    [[nodiscard]] QString shortCaption() const;
    // While it is typed; remembered by newShortCaptionEntered().
    void setShortCaption(const QString& caption);
    [[nodiscard]] int deliveryFormat() const;
    // A format that cannot be chosen is not taken.
    void setDeliveryFormat(int format);
    [[nodiscard]] int selectedLevelTag() const;
    void setSelectedLevelTag(int tag);
    [[nodiscard]] bool rush() const;
    void setRush(bool rush);
    [[nodiscard]] bool viaInterpreter() const;
    void setViaInterpreter(bool viaInterpreter);

    // --- Texts ---
    [[nodiscard]] QString windowTitle() const;
    [[nodiscard]] QString transcriptMessage() const;
    // The date in words, or what was typed and is none.
    [[nodiscard]] QString depositionDateText() const;
    [[nodiscard]] QString dateMessage() const;
    [[nodiscard]] QString mediaMessage() const { return m_mediaMessage; }
    [[nodiscard]] QString mediaSummary() const;
    [[nodiscard]] QString readingText() const;
    [[nodiscard]] QString ratesStatusText() const;
    [[nodiscard]] QString rushMultiplierText() const;
    [[nodiscard]] QString totalText() const;
    // What a submission still needs; empty when nothing is missing.
    [[nodiscard]] QString missingText() const;

Q_SIGNALS:
    void jobChanged();
    // Any value of the job, or a text that follows from them. Not for each of many changes made in one go.
    void jobValuesChanged();
    void levelRowsChanged();
    void isLOGDeliveryFormatAvailableChanged();
    void isGettingRatesInProgressChanged();
    void isJobCouldBeSubmittedChanged();
    void isCustomFormatSelectedChanged();
    void isReadingMediaFilesChanged();
    void shortCaptionsChanged();
    void transcriptTextChanged();
    void messagesChanged();

private:
    // What can be entered without a file.
    struct Entries
    {
        QString firstName;
        QString lastName;
        QDate date;
        QString caption;
        int format = DeliveryFormatAll;
        int level = ProcessingLevelAutoSync;
        bool isRush = false;
        bool isViaInterpreter = false;

        bool operator==(const Entries&) const = default;
    };
    [[nodiscard]] Entries entries() const;

    void awakeFromNib();
    void askService();
    void post(const std::shared_ptr<CUrlCommand>& command);
    void setFlag(bool& flag, bool value, void (SubmitJobWindowController::*changed)());
    void applyJobChange();
    // Changes announced once, at the end.
    void changeJob(const std::function<void(Job&)>& change);
    void setTranscriptText(const QString& text);
    // False where the parser failed on it: nothing more is done then.
    [[nodiscard]] bool takeTranscript(const QString& path);
    [[nodiscard]] bool prefillFrom(const QString& path);
    void setTranscriptRemark(const QString& remark);
    void setMediaMessage(const QString& message);
    [[nodiscard]] QString problemOfMedia(const QString& path) const;
    void startInfoThread();
    void extractMediaFilesInfoThreadProc(const std::shared_ptr<Job>& job);
    void extractInfo(const std::shared_ptr<MediaFile>& mediaFile);
    void infoThreadEnded();
    [[nodiscard]] bool isEnding() const;
    void submit(bool andNew);

    ApplicationController& m_application;
    std::shared_ptr<Job> m_job;
    Entries m_givenEntries; // those that the job came with
    std::unique_ptr<ChangeRelay> m_jobRelay;
    MediaFilesModel m_mediaFilesModel;
    bool m_isLOGDeliveryFormatAvailable = false;
    bool m_isGettingRatesInProgress = false;
    bool m_isJobCouldBeSubmitted = false;
    bool m_isCustomFormatSelected = false;
    bool m_isUnattendedRemoved = false;
    bool m_hasRatesFailure = false;
    bool m_holdsJobChanges = false;
    // What the field shows, which may be a path that is no file yet, and the transcript that the job is known to have.
    QString m_transcriptText;
    QString m_transcriptFile;
    QString m_transcriptRemark;
    QString m_mediaMessage;
    QString m_unreadableDate; // typed
    bool m_isTranscriptBeingTyped = false;
    // Threads that read recordings.
    int m_readingCount = 0;
    // Made to forget this observer when it goes.
    std::vector<std::weak_ptr<CUrlCommand>> m_commands;

    mutable std::mutex m_extractorsMutex; // guards the two below
    bool m_isEnding = false;
    std::set<std::shared_ptr<AudioExtractor>> m_runningExtractors;
    // What posted work may hold of this object: gone with it. Main thread.
    std::shared_ptr<SubmitJobWindowController*> m_self;
    WorkerThreads m_threads; // last: its threads use all the others
};
