#include "ui/preferences/PreferencesWindowController.h"

#include "foundation/Assertion.h"
#include "foundation/NumberReading.h"
#include "foundation/UserDefaults.h"
#include "foundation/UserFolders.h"
#include "settings/SettingsKey.h"
#include "ui/ApplicationController.h"
#include "ui/UserDialogs.h"

#include <QFileInfo>
#include <QTemporaryFile>
#include <QVariant>

#include <algorithm>

namespace {

constexpr int mostUploads = 16;

// Tried rather than read off the permissions: a share may allow what it then refuses, and a full disk has none.
bool canBeWritten(const QString& folder)
{
    if (!QFileInfo(folder).isDir())
        return false;
    QTemporaryFile probe(folder + QStringLiteral("/.quillpost-XXXXXX"));
    return probe.open();
}

PreferencesWindowController::Range rangeWith(int value, int most)
{
    return {.least = std::min(1, value), .most = std::max(most, value)};
}

} // namespace

PreferencesWindowController::PreferencesWindowController(ApplicationController& application, int processorCount)
    : m_application(application)
{
    awakeFromNib(processorCount);
}

void PreferencesWindowController::awakeFromNib(int processorCount)
{
    setNumOfProcessingCores(std::max(processorCount, 1));
    bindSettings();
}

void PreferencesWindowController::showWindow()
{
    UserDefaults& defaults = m_application.userDefaults();
    // Lowered, never raised: more processes than cores only slow each other down.
    if (NumberReading::intValue(defaults.value(SettingsKey::MaxNumberOfFfmpegProcesses)) > m_numOfProcessingCores)
        store(SettingsKey::MaxNumberOfFfmpegProcesses, m_numOfProcessingCores);
    checkDeliveryFolder();
    WindowController::showWindow();
}

void PreferencesWindowController::bindSettings()
{
    UserDefaults& defaults = m_application.userDefaults();
    defaults.bind(SettingsKey::DeliveryFolderPath, this, [this](const QVariant& value) {
        m_deliveryFolderPath = value.toString();
        checkDeliveryFolder();
    });
    defaults.bind(SettingsKey::MaxNumberOfFfmpegProcesses, this, [this](const QVariant& value) {
        m_maxNumberOfFfmpegProcesses = NumberReading::intValue(value);
        Q_EMIT maxNumberOfFfmpegProcessesChanged();
    });
    defaults.bind(SettingsKey::MaxNumberOfUploads, this, [this](const QVariant& value) {
        m_maxNumberOfUploads = NumberReading::intValue(value);
        Q_EMIT maxNumberOfUploadsChanged();
    });
    defaults.bind(SettingsKey::AutoDeleteTempFiles, this, [this](const QVariant& value) {
        m_autoDeleteTempFiles = value.toBool();
        Q_EMIT autoDeleteTempFilesChanged();
    });
    defaults.bind(SettingsKey::IsDownloadJobsOnlyFromThisMachine, this, [this](const QVariant& value) {
        m_isDownloadJobsOnlyFromThisMachine = value.toBool();
        Q_EMIT isDownloadJobsOnlyFromThisMachineChanged();
    });
}

void PreferencesWindowController::store(const QString& key, const QVariant& value)
{
    m_application.userDefaults().setValue(key, value);
    writeOut();
}

// Now rather than later, so that the user is told while he is looking.
void PreferencesWindowController::writeOut()
{
    m_application.userDefaults().synchronize();
    Q_EMIT settingsProblemChanged();
}

QString PreferencesWindowController::settingsProblem() const
{
    if (m_application.userDefaults().isWritable())
        return {};
    return tr("Changes hold only until Quillpost is closed: the settings file %1 cannot be written.")
        .arg(UserFolders::settingsFilePath());
}

// --- Numbers and switches ---

void PreferencesWindowController::setNumOfProcessingCores(int numOfProcessingCores)
{
    m_numOfProcessingCores = numOfProcessingCores;
    Q_EMIT numOfProcessingCoresChanged();
}

PreferencesWindowController::Range PreferencesWindowController::ffmpegRange() const
{
    return rangeWith(m_maxNumberOfFfmpegProcesses, m_numOfProcessingCores);
}

PreferencesWindowController::Range PreferencesWindowController::uploadsRange() const
{
    return rangeWith(m_maxNumberOfUploads, mostUploads);
}

QString PreferencesWindowController::ffmpegHint() const
{
    const QString cores = m_numOfProcessingCores == 1
                              ? tr("This computer has one processor core.")
                              : tr("This computer has %1 processor cores.").arg(m_numOfProcessingCores);
    return tr("With more, a job of many recordings is ready sooner; with fewer, more of the computer is left for other "
              "work.") +
           u' ' + cores;
}

void PreferencesWindowController::setMaxNumberOfFfmpegProcesses(int number)
{
    if (number != m_maxNumberOfFfmpegProcesses)
        store(SettingsKey::MaxNumberOfFfmpegProcesses, number);
}

void PreferencesWindowController::setMaxNumberOfUploads(int number)
{
    if (number != m_maxNumberOfUploads)
        store(SettingsKey::MaxNumberOfUploads, number);
}

void PreferencesWindowController::setAutoDeleteTempFiles(bool autoDelete)
{
    if (autoDelete != m_autoDeleteTempFiles)
        store(SettingsKey::AutoDeleteTempFiles, autoDelete);
}

void PreferencesWindowController::setIsDownloadJobsOnlyFromThisMachine(bool only)
{
    if (only != m_isDownloadJobsOnlyFromThisMachine)
        store(SettingsKey::IsDownloadJobsOnlyFromThisMachine, only);
}

// --- The delivery folder ---

QString PreferencesWindowController::deliveryFolderText() const
{
    return m_deliveryFolderPath.isEmpty() ? tr("No folder chosen") : m_deliveryFolderPath;
}

void PreferencesWindowController::checkDeliveryFolder()
{
    m_deliveryFolderProblem.clear();
    if (!m_deliveryFolderPath.isEmpty() && !QFileInfo::exists(m_deliveryFolderPath))
        m_deliveryFolderProblem = tr("This folder is not there yet. It is made when a job is delivered.");
    else if (!m_deliveryFolderPath.isEmpty() && !canBeWritten(m_deliveryFolderPath))
        m_deliveryFolderProblem =
            tr("Quillpost cannot write into this folder. Finished jobs cannot be delivered until it can.");
    Q_EMIT deliveryFolderChanged();
}

bool PreferencesWindowController::isResetEnabled() const
{
    return m_application.userDefaults().isStored(SettingsKey::DeliveryFolderPath);
}

void PreferencesWindowController::changeDeliveryFolder()
{
    const auto chosen = m_application.dialogs().chooseFolder(tr("Set Delivery Folder Location"), m_deliveryFolderPath);
    if (!chosen || !Assertion::check(chosen->size() == 1, "Invalid number of selected folders"))
        return;
    const QString& folder = chosen->front();
    // Jobs are told delivered once their files are unpacked, so a folder that takes no files must not be in force.
    if (!canBeWritten(folder)) {
        m_application.dialogs().warn(
            tr("The delivery folder was not changed"),
            tr("Quillpost cannot write into the folder %1. Choose another one, or allow writing into it first.")
                .arg(folder));
        return;
    }
    UserDefaults& defaults = m_application.userDefaults();
    defaults.setValue(SettingsKey::DeliveryFolderPath, folder);
    Preferences::persistDeliveryFolderAppScopedBookmark(defaults);
    writeOut();
}

void PreferencesWindowController::resetDeliveryFolder()
{
    m_application.userDefaults().removeValue(SettingsKey::DeliveryFolderPath);
    writeOut();
}
