#include "settings/Preferences.h"

#include "foundation/Log.h"
#include "foundation/PathText.h"
#include "foundation/UserDefaults.h"
#include "settings/Bookmark.h"
#include "settings/SettingsKey.h"
#include "settings/ShortCaptionCache.h"

#include <QFileInfo>
#include <QUrl>

#include <algorithm>
#include <thread>

namespace {

constexpr int defaultNumberOfUploads = 4;

QString urlText(const QString& path)
{
    return QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded());
}

bool canBeOpened(const QString& folder)
{
    const QFileInfo info(folder);
    return info.isDir() && info.isReadable() && info.isExecutable();
}

} // namespace

int Preferences::detectedProcessorCount()
{
    return static_cast<int>(std::thread::hardware_concurrency());
}

void Preferences::initialize(UserDefaults& defaults, int processorCount, const QString& applicationSupportFolder,
                             const QString& homeFolder)
{
    QVariantMap registered;
    registered[SettingsKey::ShortCaptionCache] = ShortCaptionCache::archived({});
    registered[SettingsKey::ShortCaptionLastSelected] = QStringLiteral("");
    if (applicationSupportFolder.isEmpty()) {
        Log::error("Unable to find app support folder in user domain");
    } else {
        registered[SettingsKey::TemporaryFolder] =
            PathText::appendingPathComponent(applicationSupportFolder, UserFolders::executableName);
    }
    // The name alone would be a folder of whatever folder the program happens to run in.
    if (homeFolder.isEmpty()) {
        Log::error("Unable to find home folder of user");
    } else {
        registered[SettingsKey::DeliveryFolderPath] =
            PathText::appendingPathComponent(homeFolder, UserFolders::executableName);
    }
    Log::info("number of processing cores = {}", processorCount);
    // One core is left free for the rest of the system.
    registered[SettingsKey::MaxNumberOfFfmpegProcesses] = std::max(processorCount, 2) - 1;
    registered[SettingsKey::AutoDeleteTempFiles] = true;
    registered[SettingsKey::IsDownloadJobsOnlyFromThisMachine] = false;
    registered[SettingsKey::MaxNumberOfUploads] = defaultNumberOfUploads;
    defaults.registerDefaults(registered);
    initializeDeliveryFolderPrefWithAppScopedBookmark(defaults);
}

void Preferences::initializeDeliveryFolderPrefWithAppScopedBookmark(UserDefaults& defaults)
{
    const QVariant bookmark = defaults.value(SettingsKey::DeliveryFolderBookmarkData);
    if (!bookmark.isValid())
        return;
    const Bookmark::Resolution resolved = Bookmark::resolve(bookmark.toByteArray());
    if (resolved.error) {
        Log::error("Unable to create delivery folder url from persisted bookmark, error = {}",
                   resolved.error->localizedDescription);
    }
    if (resolved.path.isEmpty()) {
        defaults.removeValue(SettingsKey::DeliveryFolderPath);
        return;
    }
    if (!canBeOpened(resolved.path)) {
        Log::error("Unable to start accessing security scoped url = {}", urlText(resolved.path));
        defaults.removeValue(SettingsKey::DeliveryFolderPath);
        return;
    }
    defaults.setValue(SettingsKey::DeliveryFolderPath, resolved.path);
    if (resolved.isStale)
        persistDeliveryFolderAppScopedBookmark(defaults);
}

void Preferences::persistDeliveryFolderAppScopedBookmark(UserDefaults& defaults)
{
    const QString folder = defaults.value(SettingsKey::DeliveryFolderPath).toString();
    QVariant fresh;
    if (!folder.isEmpty()) {
        const auto created = Bookmark::create(folder);
        if (const Error* error = std::get_if<Error>(&created)) {
            Log::error("Unable to create bookmark for delivery folder url = {}, error = {}", urlText(folder),
                       error->localizedDescription);
        } else {
            fresh = std::get<QByteArray>(created);
        }
    }
    defaults.setValue(SettingsKey::DeliveryFolderBookmarkData, fresh);
}
