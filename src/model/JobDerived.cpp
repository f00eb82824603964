// What follows from a job's options, rates and media files: levels, prices, sums and the status.
#include "foundation/Assertion.h"
#include "foundation/Log.h"
#include "foundation/NumberReading.h"
#include "foundation/Text.h"
#include "model/Job.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr double secondsPerHour = 3600.0;

std::optional<float> noneForZero(double sum)
{
    return sum == 0 ? std::nullopt : std::optional(static_cast<float>(sum));
}

template <typename Duration>
std::optional<float> sumOfDurations(const Job::MediaFiles& files, Duration duration)
{
    double sum = 0;
    for (const auto& file : files)
        sum += static_cast<double>(NumberReading::valueOrZero(duration(*file)));
    return noneForZero(sum);
}

std::optional<float> sumOfSourceDurations(const Job::MediaFiles& files)
{
    return sumOfDurations(files, [](const MediaFile& file) { return file.sourceDuration(); });
}

std::optional<float> sumOfDurationsProcessed(const Job::MediaFiles& files)
{
    return sumOfDurations(files, [](const MediaFile& file) { return file.durationProcessed(); });
}

std::optional<float> sumOfTotalFileSizes(const Job::MediaFiles& files)
{
    qint64 sum = 0;
    for (const auto& file : files)
        sum += NumberReading::valueOrZero(file->mp3TotalFileSize());
    return noneForZero(static_cast<double>(sum));
}

std::optional<float> sumOfUploadedFileSizes(const Job::MediaFiles& files)
{
    qint64 sum = 0;
    for (const auto& file : files)
        sum += static_cast<qint64>(NumberReading::valueOrZero(file->mp3UploadedFileSize()));
    return noneForZero(static_cast<double>(sum));
}

// The job's status that its files' statuses ask for; none to leave it as it is.
std::optional<int> statusOfFiles(const Job::MediaFiles& files)
{
    std::array<int, 2> distinct = {};
    std::size_t count = 0;
    for (const auto& file : files) {
        const int status = file->status();
        if (std::find(distinct.begin(), distinct.begin() + count, status) != distinct.begin() + count)
            continue;
        if (count == distinct.size())
            return std::nullopt;
        distinct[count++] = status;
    }
    if (count == 0)
        return std::nullopt;
    if (count == 1)
        return distinct[0];
    const auto isOneOfThem = [&](int status) { return distinct[0] == status || distinct[1] == status; };
    if (isOneOfThem(JobStatusConverting))
        return JobStatusConverting;
    // A job prepared in part is shown as uploading although a file is still being probed; its bar counts bytes then.
    if (isOneOfThem(JobStatusExtractingInfo))
        return JobStatusUploading;
    if (isOneOfThem(JobStatusUploading))
        return JobStatusUploading;
    if (isOneOfThem(JobStatusDownloading))
        return JobStatusDownloading;
    return std::nullopt;
}

} // namespace

// Options and levels

void Job::moveToLevelLocked(int processingLevel, Signals& changes)
{
    m_processingLevel = processingLevel;
    recalculateJobTotalLocked(changes);
    changes.append(&Job::processingLevelChanged);
}

void Job::setProcessingLevel(int processingLevel)
{
    Signals changes;
    {
        const std::scoped_lock lock(m_mutex);
        moveToLevelLocked(processingLevel, changes);
    }
    emitAll(changes);
}

void Job::setRush(bool rush)
{
    Signals changes;
    {
        const std::scoped_lock lock(m_mutex);
        m_rush = rush;
        if (m_processingLevel == ProcessingLevelMan48 || m_processingLevel == ProcessingLevelMan72)
            moveToLevelLocked(m_viaInterpreter ? ProcessingLevelMan24 : ProcessingLevelAutoSync, changes);
        refreshRushRatesLocked(changes);
        recalculateJobTotalLocked(changes);
        changes.append(&Job::rushChanged);
    }
    emitAll(changes);
}

void Job::setViaInterpreter(bool viaInterpreter)
{
    Signals changes;
    {
        const std::scoped_lock lock(m_mutex);
        m_viaInterpreter = viaInterpreter;
        if (m_processingLevel == ProcessingLevelAutoSync)
            moveToLevelLocked(m_rush ? ProcessingLevelMan24 : ProcessingLevelMan72, changes);
        changes.append(&Job::viaInterpreterChanged);
    }
    emitAll(changes);
}

QVariant Job::prodIDForProcessingLevel(int processingLevel) const
{
    switch (processingLevel) {
    case ProcessingLevelAutoSync:
        return autoSyncProdID();
    case ProcessingLevelMan24:
        return man24ProdID();
    case ProcessingLevelMan48:
        return man48ProdID();
    case ProcessingLevelMan72:
        return man72ProdID();
    case ProcessingLevelUnattended:
        return unattendedProdID();
    default:
        Assertion::failed("unknown processing level");
        return {};
    }
}

// Prices

void Job::changeRate(QVariant& field, const QVariant& value, Signal signal, bool isRushable)
{
    Signals changes;
    {
        const std::scoped_lock lock(m_mutex);
        field = value;
        if (isRushable)
            refreshRushRatesLocked(changes);
        recalculateJobTotalLocked(changes);
        changes.append(signal);
    }
    emitAll(changes);
}

void Job::refreshRushRates()
{
    Signals changes;
    {
        const std::scoped_lock lock(m_mutex);
        refreshRushRatesLocked(changes);
    }
    emitAll(changes);
}

void Job::refreshRushRatesLocked(Signals& changes)
{
    if (m_rush) {
        const float multiplier = NumberReading::floatValue(m_rushRateMultiplier);
        m_autoSyncRushRate = NumberReading::floatValue(m_autoSyncRate) * multiplier;
        m_man24RushRate = NumberReading::floatValue(m_man24Rate) * multiplier;
    } else {
        m_autoSyncRushRate = m_autoSyncRate;
        m_man24RushRate = m_man24Rate;
    }
    changes.append(&Job::autoSyncRushRateChanged);
    changes.append(&Job::man24RushRateChanged);
}

void Job::recalculateJobTotal()
{
    Signals changes;
    {
        const std::scoped_lock lock(m_mutex);
        recalculateJobTotalLocked(changes);
    }
    emitAll(changes);
}

void Job::recalculateJobTotalLocked(Signals& changes)
{
    QVariant hourlyRate;
    switch (m_processingLevel) {
    case ProcessingLevelAutoSync:
        hourlyRate = m_autoSyncRushRate;
        break;
    case ProcessingLevelMan24:
        hourlyRate = m_man24RushRate;
        break;
    case ProcessingLevelMan48:
        hourlyRate = m_man48Rate;
        break;
    case ProcessingLevelMan72:
        hourlyRate = m_man72Rate;
        break;
    case ProcessingLevelUnattended:
        hourlyRate = m_unattendedRate;
        break;
    default:
        break;
    }
    const double rate = NumberReading::doubleValue(hourlyRate);
    const double duration = static_cast<double>(NumberReading::valueOrZero(m_totalMediaDuration));
    const double total = rate * duration / secondsPerHour;
    const bool isKnown = rate != 0 && duration != 0 && std::isfinite(total);
    m_jobTotal = isKnown ? Text::format("{:.2f}", total) : QStringLiteral("");
    changes.append(&Job::jobTotalChanged);
}

// Sums

void Job::recalculateSum(std::optional<float> (*sum)(const MediaFiles&),
                         void (Job::*storeLocked)(std::optional<float>, Signals&))
{
    Signals changes;
    {
        const std::scoped_lock recalculation(m_recalculation);
        const std::optional<float> value = sum(mediaFiles());
        const std::scoped_lock lock(m_mutex);
        (this->*storeLocked)(value, changes);
    }
    emitAll(changes);
}

void Job::recalculateTotalMediaDuration()
{
    recalculateSum(&sumOfSourceDurations, &Job::storeTotalMediaDurationLocked);
}

void Job::recalculateProcessedMediaDuration()
{
    recalculateSum(&sumOfDurationsProcessed, &Job::storeProcessedMediaDurationLocked);
}

void Job::recalculateTotalMediaFileSize()
{
    recalculateSum(&sumOfTotalFileSizes, &Job::storeTotalMediaFileSizeLocked);
}

void Job::recalculateUploadedMediaFileSize()
{
    recalculateSum(&sumOfUploadedFileSizes, &Job::storeUploadedMediaFileSizeLocked);
}

void Job::storeTotalMediaDurationLocked(std::optional<float> value, Signals& changes)
{
    m_totalMediaDuration = value;
    if (m_status < JobStatusUploading) {
        m_totalValue = value;
        changes.append(&MediaObject::totalValueChanged);
    }
    recalculateJobTotalLocked(changes);
    changes.append(&Job::totalMediaDurationChanged);
}

void Job::storeProcessedMediaDurationLocked(std::optional<float> value, Signals& changes)
{
    m_processedMediaDuration = value;
    if (m_status <= JobStatusSegmentAdded) {
        m_processedValue = value;
        changes.append(&MediaObject::processedValueChanged);
    }
    changes.append(&Job::processedMediaDurationChanged);
}

void Job::storeTotalMediaFileSizeLocked(std::optional<float> value, Signals& changes)
{
    m_totalMediaFileSize = value;
    if (m_status >= JobStatusUploading) {
        m_totalValue = value;
        changes.append(&MediaObject::totalValueChanged);
    }
    changes.append(&Job::totalMediaFileSizeChanged);
}

void Job::storeUploadedMediaFileSizeLocked(std::optional<float> value, Signals& changes)
{
    m_uploadedMediaFileSize = value;
    if (m_status >= JobStatusUploading) {
        m_processedValue = value;
        m_totalValue = m_totalMediaFileSize;
        changes.append(&MediaObject::processedValueChanged);
        changes.append(&MediaObject::totalValueChanged);
    }
    changes.append(&Job::uploadedMediaFileSizeChanged);
}

std::optional<float> Job::totalMediaDuration() const
{
    return copied(m_totalMediaDuration);
}

void Job::setTotalMediaDuration(std::optional<float> totalMediaDuration)
{
    Signals changes;
    {
        const std::scoped_lock lock(m_mutex);
        storeTotalMediaDurationLocked(totalMediaDuration, changes);
    }
    emitAll(changes);
}

std::optional<float> Job::processedMediaDuration() const
{
    return copied(m_processedMediaDuration);
}

void Job::setProcessedMediaDuration(std::optional<float> processedMediaDuration)
{
    Signals changes;
    {
        const std::scoped_lock lock(m_mutex);
        storeProcessedMediaDurationLocked(processedMediaDuration, changes);
    }
    emitAll(changes);
}

std::optional<float> Job::totalMediaFileSize() const
{
    return copied(m_totalMediaFileSize);
}

void Job::setTotalMediaFileSize(std::optional<float> totalMediaFileSize)
{
    Signals changes;
    {
        const std::scoped_lock lock(m_mutex);
        storeTotalMediaFileSizeLocked(totalMediaFileSize, changes);
    }
    emitAll(changes);
}

std::optional<float> Job::uploadedMediaFileSize() const
{
    return copied(m_uploadedMediaFileSize);
}

void Job::setUploadedMediaFileSize(std::optional<float> uploadedMediaFileSize)
{
    Signals changes;
    {
        const std::scoped_lock lock(m_mutex);
        storeUploadedMediaFileSizeLocked(uploadedMediaFileSize, changes);
    }
    emitAll(changes);
}

// Status

void Job::recalculateTotalStatus()
{
    // From there on the service's replies drive it.
    if (status() > JobStatusUploaded)
        return;
    bool isSet = false;
    int current = 0;
    int number = 0;
    {
        const std::scoped_lock recalculation(m_recalculation);
        const std::optional<int> asked = statusOfFiles(mediaFiles());
        const std::scoped_lock lock(m_mutex);
        // Another thread may have moved it meanwhile.
        if (m_status > JobStatusUploaded)
            return;
        if (asked) {
            m_status = *asked;
            isSet = true;
        }
        current = m_status;
        number = NumberReading::valueOrZero(m_depoNum);
    }
    if (isSet) {
        Q_EMIT statusChanged();
        Q_EMIT rowChanged();
    }
    Log::info("Job #{} status updated. Current status = {}", number, current);
}
