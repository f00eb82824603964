#pragma once

#include "settings/Preferences.h"
#include "ui/WindowController.h"

#include <QString>

class ApplicationController;
class QVariant;

// The user's settings, bound both ways: what is changed here is stored at once, what is changed elsewhere is shown
// here. A stored value is shown as it is, also one that could not be chosen here; only the user's own choice replaces
// it, but for the ffmpeg limit, which is lowered to the number of cores. Main thread. `application` outlives it.
class PreferencesWindowController : public WindowController
{
    Q_OBJECT
    Q_PROPERTY(int numOfProcessingCores READ numOfProcessingCores WRITE setNumOfProcessingCores NOTIFY
                   numOfProcessingCoresChanged)
    Q_PROPERTY(QString deliveryFolderPath READ deliveryFolderPath NOTIFY deliveryFolderChanged)
    Q_PROPERTY(QString deliveryFolderText READ deliveryFolderText NOTIFY deliveryFolderChanged)
    Q_PROPERTY(QString deliveryFolderProblem READ deliveryFolderProblem NOTIFY deliveryFolderChanged)
    Q_PROPERTY(bool isResetEnabled READ isResetEnabled NOTIFY deliveryFolderChanged)
    Q_PROPERTY(int maxNumberOfFfmpegProcesses READ maxNumberOfFfmpegProcesses WRITE setMaxNumberOfFfmpegProcesses NOTIFY
                   maxNumberOfFfmpegProcessesChanged)
    Q_PROPERTY(QString ffmpegHint READ ffmpegHint NOTIFY numOfProcessingCoresChanged)
    Q_PROPERTY(
        int maxNumberOfUploads READ maxNumberOfUploads WRITE setMaxNumberOfUploads NOTIFY maxNumberOfUploadsChanged)
    Q_PROPERTY(bool autoDeleteTempFiles READ autoDeleteTempFiles WRITE setAutoDeleteTempFiles NOTIFY
                   autoDeleteTempFilesChanged)
    Q_PROPERTY(bool isDownloadJobsOnlyFromThisMachine READ isDownloadJobsOnlyFromThisMachine WRITE
                   setIsDownloadJobsOnlyFromThisMachine NOTIFY isDownloadJobsOnlyFromThisMachineChanged)
    Q_PROPERTY(QString settingsProblem READ settingsProblem NOTIFY settingsProblemChanged)
public:
    // What may be chosen for a number: from `least` to `most`, and the value that is there now.
    struct Range
    {
        int least = 1;
        int most = 1;

        bool operator==(const Range&) const = default;
    };

    // `processorCount` is 0 where the system does not tell.
    explicit PreferencesWindowController(ApplicationController& application,
                                         int processorCount = Preferences::detectedProcessorCount());

    // Lowers the stored ffmpeg limit to the number of cores, and looks at the delivery folder anew.
    void showWindow() override;

    // At least 1.
    [[nodiscard]] int numOfProcessingCores() const { return m_numOfProcessingCores; }
    void setNumOfProcessingCores(int numOfProcessingCores);

    [[nodiscard]] QString deliveryFolderPath() const { return m_deliveryFolderPath; }
    // The path, or words for none.
    [[nodiscard]] QString deliveryFolderText() const;
    // What keeps jobs from being delivered there, or will be done first; empty for nothing.
    [[nodiscard]] QString deliveryFolderProblem() const { return m_deliveryFolderProblem; }
    // The user chose a folder, so there is something to go back from.
    [[nodiscard]] bool isResetEnabled() const;

    [[nodiscard]] int maxNumberOfFfmpegProcesses() const { return m_maxNumberOfFfmpegProcesses; }
    void setMaxNumberOfFfmpegProcesses(int number);
    [[nodiscard]] Range ffmpegRange() const;
    [[nodiscard]] QString ffmpegHint() const;
    [[nodiscard]] int maxNumberOfUploads() const { return m_maxNumberOfUploads; }
    void setMaxNumberOfUploads(int number);
    [[nodiscard]] Range uploadsRange() const;
    [[nodiscard]] bool autoDeleteTempFiles() const { return m_autoDeleteTempFiles; }
    void setAutoDeleteTempFiles(bool autoDelete);
    [[nodiscard]] bool isDownloadJobsOnlyFromThisMachine() const { return m_isDownloadJobsOnlyFromThisMachine; }
    void setIsDownloadJobsOnlyFromThisMachine(bool only);

    // Why changes will not last, or empty.
    [[nodiscard]] QString settingsProblem() const;

    // The buttons' actions. A folder that cannot be written is told to the user and not taken: finished work would
    // have nowhere to go.
    void changeDeliveryFolder();
    // The default applies again. The bookmark of the folder chosen before stays.
    void resetDeliveryFolder();

Q_SIGNALS:
    void numOfProcessingCoresChanged();
    void deliveryFolderChanged();
    void maxNumberOfFfmpegProcessesChanged();
    void maxNumberOfUploadsChanged();
    void autoDeleteTempFilesChanged();
    void isDownloadJobsOnlyFromThisMachineChanged();
    void settingsProblemChanged();

private:
    void awakeFromNib(int processorCount);
    void bindSettings();
    void checkDeliveryFolder();
    void store(const QString& key, const QVariant& value);
    void writeOut();

    ApplicationController& m_application;
    int m_numOfProcessingCores = 1;
    QString m_deliveryFolderPath;
    QString m_deliveryFolderProblem;
    int m_maxNumberOfFfmpegProcesses = 1;
    int m_maxNumberOfUploads = 1;
    bool m_autoDeleteTempFiles = false;
    bool m_isDownloadJobsOnlyFromThisMachine = false;
};
