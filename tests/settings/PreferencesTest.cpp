#include "settings/Preferences.h"

#include "settings/Bookmark.h"
#include "settings/SettingsKey.h"
#include "settings/ShortCaptionCache.h"
#include "support/RecordedLog.h"
#include "support/TemporaryHome.h"

#include <QDir>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

class PreferencesTest : public TemporaryHome
{
protected:
    QString makeFolder(const QString& relative) const
    {
        EXPECT_TRUE(QDir().mkpath(path(relative)));
        return path(relative);
    }
    // As the preferences window does when the user chooses a folder.
    void choose(const QString& folder)
    {
        defaults().setValue(SettingsKey::DeliveryFolderPath, folder);
        Preferences::persistDeliveryFolderAppScopedBookmark(defaults());
    }
    QVariant bookmark() { return defaults().value(SettingsKey::DeliveryFolderBookmarkData); }
    QString deliveryFolder() { return defaults().value(SettingsKey::DeliveryFolderPath).toString(); }
    QString defaultDeliveryFolder() const { return path(u"Quillpost"_s); }
    static QString urlText(const QString& folder)
    {
        return QString::fromLatin1(QUrl::fromLocalFile(folder).toEncoded());
    }

    RecordedLog m_log;
};

TEST_F(PreferencesTest, TheKeysAreNamedAsTheyAreStored)
{
    EXPECT_EQ(SettingsKey::ShortCaptionCache, u"ShortCaptionCache");
    EXPECT_EQ(SettingsKey::ShortCaptionLastSelected, u"ShortCaptionLastSelected");
    EXPECT_EQ(SettingsKey::TemporaryFolder, u"TemporaryFolder");
    EXPECT_EQ(SettingsKey::DeliveryFolderPath, u"DeliveryFolderPath");
    EXPECT_EQ(SettingsKey::MaxNumberOfFfmpegProcesses, u"MaxNumberOfFfmpegProcesses");
    EXPECT_EQ(SettingsKey::AutoDeleteTempFiles, u"AutoDeleteTempFiles");
    EXPECT_EQ(SettingsKey::IsDownloadJobsOnlyFromThisMachine, u"IsDownloadJobsOnlyFromThisMachine");
    EXPECT_EQ(SettingsKey::MaxNumberOfUploads, u"MaxNumberOfUploads");
    EXPECT_EQ(SettingsKey::DeliveryFolderBookmarkData, u"DeliveryFolderBookmarkData");
    EXPECT_EQ(SettingsKey::ApplicationFolder, u"ApplicationFolder");
}

TEST_F(PreferencesTest, RegistersTheDefaults)
{
    Preferences::initialize(defaults(), 8);
    EXPECT_EQ(ShortCaptionCache::unarchived(defaults().value(SettingsKey::ShortCaptionCache)), QStringList());
    EXPECT_EQ(defaults().value(SettingsKey::ShortCaptionCache).toByteArray(), ShortCaptionCache::archived({}));
    EXPECT_EQ(defaults().value(SettingsKey::ShortCaptionLastSelected), QVariant(u""_s));
    EXPECT_EQ(defaults().value(SettingsKey::TemporaryFolder), QVariant(path(u".local/share/Quillpost"_s)));
    EXPECT_EQ(defaults().value(SettingsKey::DeliveryFolderPath), QVariant(defaultDeliveryFolder()));
    EXPECT_EQ(defaults().value(SettingsKey::AutoDeleteTempFiles), QVariant(true));
    EXPECT_EQ(defaults().value(SettingsKey::IsDownloadJobsOnlyFromThisMachine), QVariant(false));
    EXPECT_EQ(defaults().value(SettingsKey::MaxNumberOfUploads), QVariant(4));
    EXPECT_FALSE(defaults().value(SettingsKey::DeliveryFolderBookmarkData).isValid());
    EXPECT_FALSE(defaults().value(SettingsKey::ApplicationFolder).isValid());
}

TEST_F(PreferencesTest, LeavesOneProcessorCoreFreeButNeverAllowsLessThanOneConversion)
{
    for (const auto& [count, limit] : {std::pair(-1, 1), {0, 1}, {1, 1}, {2, 1}, {3, 2}, {8, 7}, {128, 127}}) {
        Preferences::initialize(defaults(), count);
        EXPECT_EQ(defaults().value(SettingsKey::MaxNumberOfFfmpegProcesses).toInt(), limit) << count;
    }
    EXPECT_TRUE(m_log.contains(u"[info] [main] number of processing cores = 128"_s));
}

TEST_F(PreferencesTest, AsksTheSystemForTheProcessorCount)
{
    EXPECT_GT(Preferences::detectedProcessorCount(), 0);
}

TEST_F(PreferencesTest, StoresNothingAndMakesNoFolder)
{
    Preferences::initialize(defaults(), 4);
    EXPECT_FALSE(defaults().isStored(SettingsKey::DeliveryFolderPath));
    EXPECT_FALSE(defaults().isStored(SettingsKey::MaxNumberOfUploads));
    EXPECT_FALSE(QDir(defaultDeliveryFolder()).exists());
    EXPECT_FALSE(QDir(path(u".local/share/Quillpost"_s)).exists());
}

TEST_F(PreferencesTest, KeepsWhatTheUserStoredAndMayBeDoneAgain)
{
    defaults().setValue(SettingsKey::MaxNumberOfUploads, 9);
    Preferences::initialize(defaults(), 4);
    Preferences::initialize(defaults(), 4);
    EXPECT_EQ(defaults().value(SettingsKey::MaxNumberOfUploads).toInt(), 9);
    EXPECT_EQ(defaults().value(SettingsKey::MaxNumberOfFfmpegProcesses).toInt(), 3);
}

TEST_F(PreferencesTest, RegistersNoTemporaryFolderWithoutAnApplicationSupportFolder)
{
    Preferences::initialize(defaults(), 4, QString());
    EXPECT_FALSE(defaults().value(SettingsKey::TemporaryFolder).isValid());
    EXPECT_EQ(deliveryFolder(), defaultDeliveryFolder());
    EXPECT_TRUE(m_log.contains(u"[error] [main] Unable to find app support folder in user domain"_s));
}

TEST_F(PreferencesTest, RegistersNoDeliveryFolderWithoutAHomeRatherThanARelativeOne)
{
    Preferences::initialize(defaults(), 4, QString(), QString());
    EXPECT_FALSE(defaults().value(SettingsKey::DeliveryFolderPath).isValid());
    EXPECT_EQ(defaults().value(SettingsKey::MaxNumberOfUploads).toInt(), 4);
    EXPECT_TRUE(m_log.contains(u"[error] [main] Unable to find home folder of user"_s));
}

TEST_F(PreferencesTest, WithoutABookmarkTheStoredFolderStays)
{
    defaults().setValue(SettingsKey::DeliveryFolderPath, u"/somewhere/else"_s);
    Preferences::initialize(defaults(), 4);
    EXPECT_EQ(deliveryFolder(), u"/somewhere/else");
}

TEST_F(PreferencesTest, TakesTheDeliveryFolderFromItsBookmark)
{
    const QString folder = makeFolder(u"Deliveries"_s);
    choose(folder);
    const QVariant kept = bookmark();
    defaults().removeValue(SettingsKey::DeliveryFolderPath);
    Preferences::initialize(defaults(), 4);
    EXPECT_EQ(deliveryFolder(), folder);
    EXPECT_TRUE(defaults().isStored(SettingsKey::DeliveryFolderPath));
    EXPECT_EQ(bookmark(), kept);
}

TEST_F(PreferencesTest, TheBookmarkSurvivesARestart)
{
    choose(makeFolder(u"Deliveries"_s));
    defaults().synchronize();
    UserDefaults later(UserFolders::settingsFilePath());
    later.removeValue(SettingsKey::DeliveryFolderPath);
    Preferences::initialize(later, 4);
    EXPECT_EQ(later.value(SettingsKey::DeliveryFolderPath).toString(), path(u"Deliveries"_s));
}

TEST_F(PreferencesTest, AStaleBookmarkIsReplacedByAFreshOne)
{
    const QString folder = makeFolder(u"Deliveries"_s);
    choose(folder);
    const QByteArray old = bookmark().toByteArray();
    defaults().setValue(SettingsKey::DeliveryFolderPath, u"/somewhere/else"_s);
    const QString other = makeFolder(u"Other"_s);
    ASSERT_TRUE(QDir().rename(folder, path(u"Moved"_s)));
    ASSERT_TRUE(QDir().rename(other, folder));
    Preferences::initialize(defaults(), 4);
    EXPECT_EQ(deliveryFolder(), folder);
    EXPECT_NE(bookmark().toByteArray(), old);
    EXPECT_FALSE(Bookmark::resolve(bookmark().toByteArray()).isStale);
}

TEST_F(PreferencesTest, ADeletedFolderIsForgottenUntilItIsBack)
{
    const QString folder = makeFolder(u"Deliveries é"_s);
    choose(folder);
    ASSERT_TRUE(QDir().rmdir(folder));
    Preferences::initialize(defaults(), 4);
    EXPECT_EQ(deliveryFolder(), defaultDeliveryFolder());
    EXPECT_FALSE(defaults().isStored(SettingsKey::DeliveryFolderPath));
    EXPECT_TRUE(m_log.contains(
        u"[error] [main] Unable to create delivery folder url from persisted bookmark, error = "_s + folder));
    EXPECT_TRUE(m_log.contains(u"[error] [main] Unable to start accessing security scoped url = "_s + urlText(folder)));

    makeFolder(u"Deliveries é"_s);
    Preferences::initialize(defaults(), 4);
    EXPECT_EQ(deliveryFolder(), folder);
}

TEST_F(PreferencesTest, AFileWhereTheFolderWasIsNotOpened)
{
    const QString folder = makeFolder(u"Deliveries"_s);
    choose(folder);
    ASSERT_TRUE(QDir().rmdir(folder));
    writeFile(u"Deliveries"_s, "x");
    Preferences::initialize(defaults(), 4);
    EXPECT_EQ(deliveryFolder(), defaultDeliveryFolder());
    EXPECT_TRUE(m_log.contains(u"[error] [main] Unable to start accessing security scoped url = "_s + urlText(folder)));
    EXPECT_FALSE(m_log.contains(u"Unable to create delivery folder url"_s));
}

TEST_F(PreferencesTest, AnUnreadableBookmarkBringsTheDefaultFolderBack)
{
    choose(makeFolder(u"Deliveries"_s));
    defaults().setValue(SettingsKey::DeliveryFolderBookmarkData, QByteArray("garbage"));
    Preferences::initialize(defaults(), 4);
    EXPECT_EQ(deliveryFolder(), defaultDeliveryFolder());
    EXPECT_TRUE(
        m_log.contains(u"[error] [main] Unable to create delivery folder url from persisted bookmark, error = "_s));
}

TEST_F(PreferencesTest, AFolderThatCannotBeRememberedLeavesNoBookmarkRatherThanTheOldOne)
{
    choose(makeFolder(u"Deliveries"_s));
    ASSERT_TRUE(bookmark().isValid());
    const QString missing = path(u"Not there"_s);
    choose(missing);
    EXPECT_FALSE(bookmark().isValid());
    EXPECT_TRUE(m_log.contains(u"[error] [main] Unable to create bookmark for delivery folder url = "_s +
                               urlText(missing) + u", error = "_s));
    Preferences::initialize(defaults(), 4);
    EXPECT_EQ(deliveryFolder(), missing);
}

TEST_F(PreferencesTest, WithoutADeliveryFolderThereIsNothingToRemember)
{
    choose(makeFolder(u"Deliveries"_s));
    defaults().removeValue(SettingsKey::DeliveryFolderPath);
    Preferences::persistDeliveryFolderAppScopedBookmark(defaults());
    EXPECT_FALSE(bookmark().isValid());
    EXPECT_FALSE(m_log.contains(u"Unable to create bookmark"_s));
}

} // namespace
