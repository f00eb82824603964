// The values and texts that the submit window shows of its job.

#include "foundation/DateText.h"
#include "foundation/NumberReading.h"
#include "ui/submit/RateTexts.h"
#include "ui/submit/SubmitJobWindowController.h"
#include "ui/transformers/ValueTransformers.h"

#include <QLocale>

#include <algorithm>

namespace {

const QString levelTransformer = QStringLiteral("ProcessingLevelToTagTransformer");

} // namespace

// Values

QString SubmitJobWindowController::deponentFirstName() const
{
    return m_job ? m_job->deponentFirstName() : QString();
}

void SubmitJobWindowController::setDeponentFirstName(const QString& name)
{
    changeJob([&](Job& job) { job.setDeponentFirstName(name); });
    refreshCanSubmitJob();
}

QString SubmitJobWindowController::deponentLastName() const
{
    return m_job ? m_job->deponentLastName() : QString();
}

void SubmitJobWindowController::setDeponentLastName(const QString& name)
{
    changeJob([&](Job& job) { job.setDeponentLastName(name); });
    refreshCanSubmitJob();
}

QDate SubmitJobWindowController::depositionDate() const
{
    return m_job ? m_job->depositionDate().date() : QDate();
}

void SubmitJobWindowController::setDepositionDate(QDate date)
{
    if (!m_unreadableDate.isEmpty()) {
        m_unreadableDate.clear();
        Q_EMIT messagesChanged();
        Q_EMIT jobValuesChanged();
    }
    if (date == depositionDate())
        return;
    changeJob([&](Job& job) { job.setDepositionDate(date.isValid() ? QDateTime(date, QTime(12, 0)) : QDateTime()); });
    refreshCanSubmitJob();
}

void SubmitJobWindowController::enterDepositionDate(const QString& text)
{
    const QString written = text.trimmed();
    const auto date = DateText::readLeniently(written);
    setDepositionDate(date ? date->date() : QDate());
    if (!date && !written.isEmpty()) {
        m_unreadableDate = written;
        Q_EMIT messagesChanged();
    }
    Q_EMIT jobValuesChanged();
}

void SubmitJobWindowController::stepDepositionDate(int days)
{
    const QDate date = depositionDate();
    setDepositionDate(date.isValid() ? date.addDays(days) : QDate::currentDate());
}

QString SubmitJobWindowController::depositionDateText() const
{
    if (!m_unreadableDate.isEmpty())
        return m_unreadableDate;
    return QLocale().toString(depositionDate(), QStringLiteral("d MMMM yyyy"));
}

QString SubmitJobWindowController::dateMessage() const
{
    return m_unreadableDate.isEmpty()
               ? QString()
               : tr("“%1” is no date. Please enter it as in 4 March 2026.").arg(m_unreadableDate);
}

QString SubmitJobWindowController::shortCaption() const
{
    return m_job ? m_job->shortCaption() : QString();
}

void SubmitJobWindowController::setShortCaption(const QString& caption)
{
    changeJob([&](Job& job) { job.setShortCaption(caption); });
    refreshCanSubmitJob();
}

int SubmitJobWindowController::deliveryFormat() const
{
    return m_job ? m_job->deliveryFormat() : DeliveryFormatAll;
}

void SubmitJobWindowController::setDeliveryFormat(int format)
{
    if (isDeliveryFormatSelectable(format))
        changeJob([&](Job& job) { job.setDeliveryFormat(format); });
    deliveryFormatChanged();
}

int SubmitJobWindowController::selectedLevelTag() const
{
    const int level = m_job ? m_job->processingLevel() : ProcessingLevelAutoSync;
    return NumberReading::intValue(ValueTransformers::named(levelTransformer)->transformedValue(level));
}

void SubmitJobWindowController::setSelectedLevelTag(int tag)
{
    const int level = NumberReading::intValue(ValueTransformers::named(levelTransformer)->reverseTransformedValue(tag));
    changeJob([&](Job& job) { job.setProcessingLevel(level); });
    refreshCanSubmitJob();
}

bool SubmitJobWindowController::rush() const
{
    return m_job && m_job->rush();
}

void SubmitJobWindowController::setRush(bool rush)
{
    // Setting it moves the level also when nothing was switched.
    if (rush == this->rush())
        return;
    changeJob([&](Job& job) { job.setRush(rush); });
    refreshCanSubmitJob();
}

bool SubmitJobWindowController::viaInterpreter() const
{
    return m_job && m_job->viaInterpreter();
}

void SubmitJobWindowController::setViaInterpreter(bool viaInterpreter)
{
    if (viaInterpreter == this->viaInterpreter())
        return;
    changeJob([&](Job& job) { job.setViaInterpreter(viaInterpreter); });
    refreshCanSubmitJob();
}

// Levels and prices

QList<SubmitJobWindowController::LevelRow> SubmitJobWindowController::levelRows() const
{
    QList<LevelRow> rows{{ProcessingLevelAutoSync, tr("AutoSync"), {}},
                         {ProcessingLevelMan24, tr("Manual, 24 hours"), {}},
                         {ProcessingLevelMan48, tr("Manual, 48 hours"), {}},
                         {ProcessingLevelMan72, tr("Manual, 72 hours"), {}},
                         {ProcessingLevelUnattended, tr("Unattended"), {}}};
    if (m_isUnattendedRemoved)
        rows.removeLast();
    for (LevelRow& row : rows)
        row.value = m_job ? RateTexts::hourly(RateTexts::rateInEffect(*m_job, row.tag)) : RateTexts::unknown;
    return rows;
}

QString SubmitJobWindowController::ratesStatusText() const
{
    if (m_isGettingRatesInProgress)
        return tr("Asking for your prices…");
    if (m_hasRatesFailure)
        return tr("Your prices could not be asked for. Close this window and open it again to try once more.");
    if (m_isUnattendedRemoved && m_job && m_job->processingLevel() == ProcessingLevelUnattended)
        return tr("Unattended is not offered to you. Please choose another level.");
    return {};
}

QString SubmitJobWindowController::rushMultiplierText() const
{
    return m_job ? RateTexts::multiplier(m_job->rushRateMultiplier()) : QString();
}

QString SubmitJobWindowController::totalText() const
{
    return m_job ? RateTexts::total(*m_job) : RateTexts::unknown;
}

// Texts

QString SubmitJobWindowController::windowTitle() const
{
    const QString name = m_job ? m_job->name() : QString();
    return name.isEmpty() ? tr("Submit Job - Quillpost") : tr("%1 - Submit Job - Quillpost").arg(name);
}

QString SubmitJobWindowController::mediaSummary() const
{
    const Job::MediaFiles files = m_job ? m_job->mediaFiles() : Job::MediaFiles();
    if (files.isEmpty())
        return {};
    QString summary = files.size() == 1 ? tr("1 recording") : tr("%1 recordings").arg(files.size());
    if (const auto duration = m_job->totalMediaDuration())
        summary += QStringLiteral(", ") + RateTexts::duration(duration);
    const auto unknown =
        std::count_if(files.begin(), files.end(), [](const auto& file) { return !file->sourceDuration(); });
    if (unknown > 0 && !isReadingMediaFiles())
        summary += tr(", %1 of unknown length").arg(unknown);
    return summary;
}

QString SubmitJobWindowController::readingText() const
{
    return isReadingMediaFiles() ? tr("Reading the recordings…") : QString();
}

QString SubmitJobWindowController::missingText() const
{
    if (m_isJobCouldBeSubmitted)
        return {};
    const bool hasTranscript = m_job && !m_job->transcriptFile().isEmpty();
    const bool hasMedia = m_job && !m_job->mediaFiles().isEmpty();
    if (!hasTranscript && !hasMedia)
        return tr("To submit, choose a transcript and add a recording.");
    if (!hasTranscript)
        return tr("To submit, choose a transcript.");
    return hasMedia ? QString() : tr("To submit, add a recording.");
}
