#include "ui/submit/SubmitJobWindowController.h"

#include "commands/CUrlCommand.h"
#include "foundation/UserDefaults.h"
#include "media/AudioExtractor.h"
#include "settings/ServiceHosts.h"
#include "settings/SettingsKey.h"
#include "settings/ShortCaptionCache.h"
#include "ui/ApplicationController.h"
#include "ui/submit/ChangeRelay.h"
#include "ui/transformers/DeliveryFormatTitle.h"
#include "ui/transformers/ValueTransformers.h"

#include <QUrl>

#include <algorithm>
#include <chrono>

SubmitJobWindowController::SubmitJobWindowController(ApplicationController& application)
    : m_application(application), m_self(std::make_shared<SubmitJobWindowController*>(this))
{
    ValueTransformers::registerSubmitJobWindowTransformers();
    awakeFromNib();
}

SubmitJobWindowController::~SubmitJobWindowController()
{
    for (const auto& weakCommand : m_commands) {
        if (const auto command = weakCommand.lock())
            command->setObserver(nullptr);
    }
    {
        const std::scoped_lock lock(m_extractorsMutex);
        m_isEnding = true;
        for (const auto& extractor : m_runningExtractors)
            extractor->terminate();
    }
    while (!m_threads.waitUntilAllEnded(std::chrono::seconds(1))) {
    }
    m_self.reset();
}

void SubmitJobWindowController::awakeFromNib()
{
    m_isLOGDeliveryFormatAvailable = false;
}

void SubmitJobWindowController::setFlag(bool& flag, bool value, void (SubmitJobWindowController::*changed)())
{
    if (flag == value)
        return;
    flag = value;
    Q_EMIT(this->*changed)();
}

void SubmitJobWindowController::showWindow()
{
    askService();
    if (!m_job)
        setJob(Job::job());
    refreshCanSubmitJob();
    setFlag(m_isCustomFormatSelected, false, &SubmitJobWindowController::isCustomFormatSelectedChanged);
    WindowController::showWindow();
}

void SubmitJobWindowController::setJob(const std::shared_ptr<Job>& job)
{
    m_jobRelay.reset();
    m_job = job;
    m_givenEntries = entries();
    if (m_job) {
        m_jobRelay = std::make_unique<ChangeRelay>([this] { applyJobChange(); });
        m_jobRelay->follow<MediaObject>(*m_job, &MediaObject::rowChanged);
    }
    m_mediaFilesModel.setJob(m_job);
    m_transcriptFile = m_job ? m_job->transcriptFile() : QString();
    m_transcriptRemark.clear();
    setTranscriptText(m_transcriptFile);
    m_unreadableDate.clear();
    m_isTranscriptBeingTyped = false;
    setMediaMessage({});
    Q_EMIT jobChanged();
    Q_EMIT jobValuesChanged();
}

SubmitJobWindowController::Entries SubmitJobWindowController::entries() const
{
    if (!m_job)
        return {};
    return {.firstName = m_job->deponentFirstName(),
            .lastName = m_job->deponentLastName(),
            .date = m_job->depositionDate().date(),
            .caption = m_job->shortCaption(),
            .format = m_job->deliveryFormat(),
            .level = m_job->processingLevel(),
            .isRush = m_job->rush(),
            .isViaInterpreter = m_job->viaInterpreter()};
}

bool SubmitJobWindowController::hasUnsubmittedWork() const
{
    return m_job && (!m_transcriptText.isEmpty() || !m_job->mediaFiles().isEmpty() || entries() != m_givenEntries);
}

void SubmitJobWindowController::applyJobChange()
{
    if (m_holdsJobChanges)
        return;
    const QString transcript = m_job ? m_job->transcriptFile() : QString();
    if (transcript != m_transcriptFile) {
        m_transcriptFile = transcript;
        setTranscriptText(transcript);
    }
    Q_EMIT jobValuesChanged();
}

void SubmitJobWindowController::changeJob(const std::function<void(Job&)>& change)
{
    if (!m_job)
        return;
    m_holdsJobChanges = true;
    m_mediaFilesModel.setHeld(true);
    change(*m_job);
    m_mediaFilesModel.setHeld(false);
    m_holdsJobChanges = false;
    applyJobChange();
}

bool SubmitJobWindowController::mediaFilesSortDescriptor(const std::shared_ptr<MediaFile>& a,
                                                         const std::shared_ptr<MediaFile>& b)
{
    return MediaFilesModel::isBefore(a, b);
}

// Caption and format

void SubmitJobWindowController::newShortCaptionEntered(const QString& caption)
{
    QStringList captions = shortCaptions();
    if (!caption.isEmpty() && !captions.contains(caption)) {
        captions.append(caption);
        m_application.userDefaults().setValue(SettingsKey::ShortCaptionCache, ShortCaptionCache::archived(captions));
        Q_EMIT shortCaptionsChanged();
    }
    setShortCaption(caption);
}

QStringList SubmitJobWindowController::shortCaptions() const
{
    return ShortCaptionCache::unarchived(m_application.userDefaults().value(SettingsKey::ShortCaptionCache));
}

void SubmitJobWindowController::deliveryFormatChanged()
{
    setFlag(m_isCustomFormatSelected, deliveryFormat() == DeliveryFormatCustom,
            &SubmitJobWindowController::isCustomFormatSelectedChanged);
    refreshCanSubmitJob();
}

QList<SubmitJobWindowController::DeliveryFormatItem> SubmitJobWindowController::deliveryFormats() const
{
    QList<DeliveryFormatItem> items;
    for (int format = DeliveryFormatAll; format <= DeliveryFormatCustom; ++format)
        items.append({format, deliveryFormatTitle(format), isDeliveryFormatSelectable(format)});
    if (!m_isLOGDeliveryFormatAvailable)
        items[DeliveryFormatLOG].title = tr("LOG (not offered to you)");
    return items;
}

bool SubmitJobWindowController::isDeliveryFormatSelectable(int format) const
{
    return format != DeliveryFormatLOG || m_isLOGDeliveryFormatAvailable;
}

QUrl SubmitJobWindowController::customizeFormatUrl() const
{
    return QUrl(m_application.serviceHosts().secureUrl(QStringLiteral("/saltine/setup_custom_options.php")));
}

void SubmitJobWindowController::openCustomizeFormatPage()
{
    m_application.openUrl(customizeFormatUrl());
}

// Submitting

void SubmitJobWindowController::refreshCanSubmitJob()
{
    const bool could = m_job && !m_job->transcriptFile().isEmpty() && !m_job->mediaFiles().isEmpty();
    setFlag(m_isJobCouldBeSubmitted, could, &SubmitJobWindowController::isJobCouldBeSubmittedChanged);
    Q_EMIT jobValuesChanged();
}

void SubmitJobWindowController::submitButton()
{
    submit(/*andNew=*/false);
}

void SubmitJobWindowController::submitAndNewButton()
{
    submit(/*andNew=*/true);
}

void SubmitJobWindowController::submit(bool andNew)
{
    refreshCanSubmitJob();
    if (!m_isJobCouldBeSubmitted)
        return;
    const std::shared_ptr<Job> submitted = m_job;
    Job::MediaFiles files = submitted->mediaFiles();
    std::stable_sort(files.begin(), files.end(), &SubmitJobWindowController::mediaFilesSortDescriptor);
    submitted->setMediaFiles(files);
    m_application.submitNewJob(submitted, andNew);
}

void SubmitJobWindowController::cancelButton()
{
    close();
}
