#include "ui/preferences/PreferencesWindowController.h"

#include "ui-support/RecordingApplication.h"

#include "foundation/Assertion.h"
#include "settings/Bookmark.h"
#include "settings/SettingsKey.h"
#include "support/RecordedLog.h"
#include "support/TemporaryHome.h"

#include <QDir>
#include <QSignalSpy>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

using Controller = PreferencesWindowController;

// A machine of four cores with the defaults registered.
class PreferencesControllerTest : public TemporaryHome
{
protected:
    PreferencesControllerTest() { Preferences::initialize(defaults(), 4); }

    [[nodiscard]] QString makeFolder(const QString& relative) const
    {
        EXPECT_TRUE(QDir().mkpath(path(relative)));
        return path(relative);
    }
    [[nodiscard]] QVariant stored(const QString& key)
    {
        return defaults().isStored(key) ? defaults().value(key) : QVariant();
    }
    [[nodiscard]] QVariant bookmark() { return stored(SettingsKey::DeliveryFolderBookmarkData); }

    RecordingApplication application;
};

// --- The number of cores and the ffmpeg limit ---

TEST_F(PreferencesControllerTest, AStoredLimitAboveTheCoresIsLoweredToThem)
{
    defaults().setValue(SettingsKey::MaxNumberOfFfmpegProcesses, 8);
    Controller controller(application, 4);
    EXPECT_EQ(stored(SettingsKey::MaxNumberOfFfmpegProcesses), 8) << "not before the window opens";
    controller.showWindow();
    EXPECT_EQ(stored(SettingsKey::MaxNumberOfFfmpegProcesses), 4);
    EXPECT_EQ(controller.maxNumberOfFfmpegProcesses(), 4);
    EXPECT_EQ(controller.numOfProcessingCores(), 4);
}

TEST_F(PreferencesControllerTest, AStoredLimitUpToTheCoresStays)
{
    for (const int limit : {2, 4, 1}) {
        defaults().setValue(SettingsKey::MaxNumberOfFfmpegProcesses, limit);
        Controller controller(application, 4);
        controller.showWindow();
        EXPECT_EQ(stored(SettingsKey::MaxNumberOfFfmpegProcesses), limit);
    }
}

TEST_F(PreferencesControllerTest, ALimitStoredAsTextIsReadAsItsNumber)
{
    defaults().setValue(SettingsKey::MaxNumberOfFfmpegProcesses, u"8 of them"_s);
    Controller controller(application, 4);
    controller.showWindow();
    EXPECT_EQ(stored(SettingsKey::MaxNumberOfFfmpegProcesses), 4);
}

TEST_F(PreferencesControllerTest, AnUnknownNumberOfCoresIsOne)
{
    for (const int count : {0, -1}) {
        Controller controller(application, count);
        controller.showWindow();
        EXPECT_EQ(controller.numOfProcessingCores(), 1);
        EXPECT_EQ(stored(SettingsKey::MaxNumberOfFfmpegProcesses), 1); // the default was 3
        EXPECT_TRUE(controller.ffmpegHint().contains(u"one processor core"_s));
    }
}

TEST_F(PreferencesControllerTest, ALimitThatIsRaisedElsewhereIsLoweredWhenTheWindowOpensAgain)
{
    Controller controller(application, 4);
    controller.showWindow();
    defaults().setValue(SettingsKey::MaxNumberOfFfmpegProcesses, 9);
    controller.showWindow();
    EXPECT_EQ(stored(SettingsKey::MaxNumberOfFfmpegProcesses), 4);
    EXPECT_EQ(controller.ffmpegRange(), (Controller::Range{1, 4}));
}

TEST_F(PreferencesControllerTest, OpeningTheWindowStoresNothing)
{
    Controller controller(application, 4);
    controller.showWindow();
    for (const QString& key :
         {SettingsKey::MaxNumberOfFfmpegProcesses, SettingsKey::MaxNumberOfUploads, SettingsKey::DeliveryFolderPath,
          SettingsKey::AutoDeleteTempFiles, SettingsKey::IsDownloadJobsOnlyFromThisMachine})
        EXPECT_FALSE(defaults().isStored(key)) << qPrintable(key);
    EXPECT_EQ(controller.maxNumberOfFfmpegProcesses(), 3);
    EXPECT_EQ(controller.maxNumberOfUploads(), 4);
    EXPECT_TRUE(controller.autoDeleteTempFiles());
    EXPECT_FALSE(controller.isDownloadJobsOnlyFromThisMachine());
    EXPECT_EQ(controller.deliveryFolderPath(), path(u"Quillpost"_s));
}

TEST_F(PreferencesControllerTest, ANumberThatCouldNotBeChosenIsShownAsItIs)
{
    defaults().setValue(SettingsKey::MaxNumberOfUploads, 40);
    defaults().setValue(SettingsKey::MaxNumberOfFfmpegProcesses, 0);
    Controller controller(application, 4);
    EXPECT_EQ(controller.uploadsRange(), (Controller::Range{1, 40}));
    EXPECT_EQ(controller.ffmpegRange(), (Controller::Range{0, 4}));
    EXPECT_EQ(stored(SettingsKey::MaxNumberOfUploads), 40);
    EXPECT_EQ(stored(SettingsKey::MaxNumberOfFfmpegProcesses), 0);
    // Once the user has chosen, the ends are those of the choice.
    controller.setMaxNumberOfUploads(5);
    controller.setMaxNumberOfFfmpegProcesses(2);
    EXPECT_EQ(controller.uploadsRange(), (Controller::Range{1, 16}));
    EXPECT_EQ(controller.ffmpegRange(), (Controller::Range{1, 4}));
}

TEST_F(PreferencesControllerTest, TheCoresAreTheMostThatCanBeChosen)
{
    Controller controller(application, 4);
    QSignalSpy changes(&controller, &Controller::numOfProcessingCoresChanged);
    controller.setNumOfProcessingCores(6);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(controller.ffmpegRange(), (Controller::Range{1, 6}));
    EXPECT_TRUE(controller.ffmpegHint().contains(u"6 processor cores"_s));
}

// --- Bound both ways ---

TEST_F(PreferencesControllerTest, WhatIsChosenIsStoredAtOnce)
{
    Controller controller(application, 4);
    controller.setMaxNumberOfFfmpegProcesses(2);
    controller.setMaxNumberOfUploads(7);
    controller.setAutoDeleteTempFiles(false);
    controller.setIsDownloadJobsOnlyFromThisMachine(true);
    EXPECT_EQ(stored(SettingsKey::MaxNumberOfFfmpegProcesses), 2);
    EXPECT_EQ(stored(SettingsKey::MaxNumberOfUploads), 7);
    EXPECT_EQ(stored(SettingsKey::AutoDeleteTempFiles), false);
    EXPECT_EQ(stored(SettingsKey::IsDownloadJobsOnlyFromThisMachine), true);
    const QByteArray file = readFile(UserFolders::settingsFilePath());
    EXPECT_TRUE(file.contains("MaxNumberOfUploads=7")) << file.constData();
}

TEST_F(PreferencesControllerTest, WhatIsChangedElsewhereIsShown)
{
    const Controller controller(application, 4);
    QSignalSpy ffmpeg(&controller, &Controller::maxNumberOfFfmpegProcessesChanged);
    QSignalSpy uploads(&controller, &Controller::maxNumberOfUploadsChanged);
    QSignalSpy deletes(&controller, &Controller::autoDeleteTempFilesChanged);
    QSignalSpy only(&controller, &Controller::isDownloadJobsOnlyFromThisMachineChanged);
    QSignalSpy folder(&controller, &Controller::deliveryFolderChanged);
    defaults().setValue(SettingsKey::MaxNumberOfFfmpegProcesses, u"2"_s);
    defaults().setValue(SettingsKey::MaxNumberOfUploads, 9);
    defaults().setValue(SettingsKey::AutoDeleteTempFiles, u"false"_s);
    defaults().setValue(SettingsKey::IsDownloadJobsOnlyFromThisMachine, true);
    defaults().setValue(SettingsKey::DeliveryFolderPath, u"/elsewhere"_s);
    for (const QSignalSpy* spy : {&ffmpeg, &uploads, &deletes, &only, &folder})
        EXPECT_EQ(spy->count(), 1);
    EXPECT_EQ(controller.maxNumberOfFfmpegProcesses(), 2);
    EXPECT_EQ(controller.maxNumberOfUploads(), 9);
    EXPECT_FALSE(controller.autoDeleteTempFiles());
    EXPECT_TRUE(controller.isDownloadJobsOnlyFromThisMachine());
    EXPECT_EQ(controller.deliveryFolderPath(), u"/elsewhere"_s);
}

// --- The delivery folder ---

TEST_F(PreferencesControllerTest, TheChosenFolderIsStoredWithItsBookmark)
{
    const QString folder = makeFolder(u"Finished work"_s);
    Controller controller(application, 4);
    EXPECT_FALSE(controller.isResetEnabled());
    application.scriptedDialogs.choices.append(QStringList{folder});
    controller.changeDeliveryFolder();
    ASSERT_EQ(application.scriptedDialogs.chosen.size(), 1);
    EXPECT_EQ(application.scriptedDialogs.chosen[0].first, u"Set Delivery Folder Location"_s);
    EXPECT_EQ(application.scriptedDialogs.chosen[0].second, path(u"Quillpost"_s));
    EXPECT_EQ(stored(SettingsKey::DeliveryFolderPath), folder);
    EXPECT_EQ(Bookmark::resolve(bookmark().toByteArray()).path, folder);
    EXPECT_EQ(controller.deliveryFolderPath(), folder);
    EXPECT_EQ(controller.deliveryFolderText(), folder);
    EXPECT_TRUE(controller.isResetEnabled());
    EXPECT_TRUE(application.scriptedDialogs.warnings.isEmpty());
    EXPECT_TRUE(QDir(folder).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)); // the try left nothing
    // The next choice begins there, and its bookmark replaces this one.
    const QString other = makeFolder(u"Other"_s);
    application.scriptedDialogs.choices.append(QStringList{other});
    controller.changeDeliveryFolder();
    EXPECT_EQ(application.scriptedDialogs.chosen[1].second, folder);
    EXPECT_EQ(Bookmark::resolve(bookmark().toByteArray()).path, other);
}

TEST_F(PreferencesControllerTest, AFolderThatCannotTakeFilesIsSaidToBeOne)
{
    const QString folder = makeFolder(u"Finished work"_s);
    defaults().setValue(SettingsKey::DeliveryFolderPath, folder);
    Controller controller(application, 4);
    controller.showWindow();
    EXPECT_EQ(controller.deliveryFolderProblem(), QString());
    ASSERT_TRUE(QDir().rmdir(folder));
    controller.showWindow();
    EXPECT_EQ(controller.deliveryFolderProblem(),
              u"This folder is not there yet. It is made when a job is delivered."_s);
    writeFile(u"Finished work"_s, "now a file");
    controller.showWindow();
    EXPECT_EQ(controller.deliveryFolderProblem(),
              u"Quillpost cannot write into this folder. Finished jobs cannot be delivered until it can."_s);
    (void)makeFolder(u"Quillpost"_s);
    controller.resetDeliveryFolder();
    EXPECT_EQ(controller.deliveryFolderProblem(), QString());
}

TEST_F(PreferencesControllerTest, CancellingLeavesPathAndBookmark)
{
    const QString folder = makeFolder(u"Finished work"_s);
    Controller controller(application, 4);
    controller.changeDeliveryFolder();
    EXPECT_FALSE(defaults().isStored(SettingsKey::DeliveryFolderPath));
    EXPECT_FALSE(bookmark().isValid());

    application.scriptedDialogs.choices.append(QStringList{folder});
    controller.changeDeliveryFolder();
    const QVariant before = bookmark();
    controller.changeDeliveryFolder();
    EXPECT_EQ(application.scriptedDialogs.chosen.size(), 3);
    EXPECT_EQ(stored(SettingsKey::DeliveryFolderPath), folder);
    EXPECT_EQ(bookmark(), before);
}

TEST_F(PreferencesControllerTest, AnythingButOneFolderIsAProgrammingError)
{
    const QString folder = makeFolder(u"Finished work"_s);
    Controller controller(application, 4);
    for (const QStringList& choice : {QStringList(), QStringList{folder, folder}}) {
        application.scriptedDialogs.choices.append(choice);
        if constexpr (Assertion::stopsTheProgram) {
            EXPECT_DEATH(controller.changeDeliveryFolder(), "Invalid number of selected folders");
            application.scriptedDialogs.choices.clear();
        } else {
            const RecordedLog log;
            controller.changeDeliveryFolder();
            EXPECT_TRUE(log.contains(u"Invalid number of selected folders"_s));
            EXPECT_FALSE(defaults().isStored(SettingsKey::DeliveryFolderPath));
        }
    }
}

TEST_F(PreferencesControllerTest, AFolderThatCannotBeWrittenIsToldAndNotTaken)
{
    const QString folder = makeFolder(u"Finished work"_s);
    const QString file = writeFile(u"file"_s, "x");
    Controller controller(application, 4);
    application.scriptedDialogs.choices.append(QStringList{folder});
    controller.changeDeliveryFolder();
    const QVariant before = bookmark();
    // No one, the system's administrator included, makes a file in any of these.
    for (const QString& unusable : {u"/proc"_s, file, path(u"not there"_s)}) {
        application.scriptedDialogs.warnings.clear();
        application.scriptedDialogs.choices.append(QStringList{unusable});
        controller.changeDeliveryFolder();
        ASSERT_EQ(application.scriptedDialogs.warnings.size(), 1) << qPrintable(unusable);
        EXPECT_EQ(application.scriptedDialogs.warnings[0].first, u"The delivery folder was not changed"_s);
        EXPECT_TRUE(application.scriptedDialogs.warnings[0].second.contains(unusable));
        EXPECT_EQ(stored(SettingsKey::DeliveryFolderPath), folder);
        EXPECT_EQ(bookmark(), before);
    }
}

TEST_F(PreferencesControllerTest, ResettingBringsTheDefaultFolderBackAndKeepsTheBookmark)
{
    const QString folder = makeFolder(u"Finished work"_s);
    Controller controller(application, 4);
    application.scriptedDialogs.choices.append(QStringList{folder});
    controller.changeDeliveryFolder();
    const QVariant before = bookmark();
    ASSERT_TRUE(before.isValid());
    controller.resetDeliveryFolder();
    EXPECT_FALSE(defaults().isStored(SettingsKey::DeliveryFolderPath));
    EXPECT_EQ(controller.deliveryFolderPath(), path(u"Quillpost"_s));
    EXPECT_FALSE(controller.isResetEnabled());
    EXPECT_EQ(bookmark(), before);
}

TEST_F(PreferencesControllerTest, WithoutAHomeThereAreWordsInPlaceOfTheFolder)
{
    UserDefaults empty(path(u"empty.ini"_s));
    UserDefaults::setStandard(&empty);
    const Controller controller(application, 4);
    UserDefaults::setStandard(&defaults());
    EXPECT_EQ(controller.deliveryFolderText(), u"No folder chosen"_s);
}

// --- A settings file that cannot be written ---

TEST_F(PreferencesControllerTest, SettingsThatCannotBeKeptAreSaidToHoldForNowOnly)
{
    writeFile(u"plain"_s, "x");
    UserDefaults broken(path(u"plain/settings.ini"_s)); // no file can be made below a file
    UserDefaults::setStandard(&broken);
    Controller controller(application, 4);
    QSignalSpy changes(&controller, &Controller::settingsProblemChanged);
    controller.setMaxNumberOfUploads(7);
    EXPECT_GE(changes.count(), 1);
    EXPECT_TRUE(controller.settingsProblem().startsWith(u"Changes hold only until Quillpost is closed"_s));
    EXPECT_EQ(controller.maxNumberOfUploads(), 7);
    UserDefaults::setStandard(&defaults());
    EXPECT_TRUE(controller.settingsProblem().isEmpty());
}

} // namespace
