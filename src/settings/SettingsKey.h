#pragma once

#include <QString>

// The names of the user's settings. Everything that reads or writes a setting names it through these.
namespace SettingsKey {

// Data: the short captions entered before, as ShortCaptionCache reads and writes them.
inline const QString ShortCaptionCache = QStringLiteral("ShortCaptionCache");
inline const QString ShortCaptionLastSelected = QStringLiteral("ShortCaptionLastSelected");
inline const QString TemporaryFolder = QStringLiteral("TemporaryFolder");
inline const QString DeliveryFolderPath = QStringLiteral("DeliveryFolderPath");
inline const QString MaxNumberOfFfmpegProcesses = QStringLiteral("MaxNumberOfFfmpegProcesses");
inline const QString AutoDeleteTempFiles = QStringLiteral("AutoDeleteTempFiles");
inline const QString IsDownloadJobsOnlyFromThisMachine = QStringLiteral("IsDownloadJobsOnlyFromThisMachine");
inline const QString MaxNumberOfUploads = QStringLiteral("MaxNumberOfUploads");
inline const QString DeliveryFolderBookmarkData = QStringLiteral("DeliveryFolderBookmarkData");
// Reserved: it has no default and nothing reads it.
inline const QString ApplicationFolder = QStringLiteral("ApplicationFolder");

// Where the service is (see ServiceHosts). No defaults.
inline const QString SecureHost = QStringLiteral("SecureHost");
inline const QString FileHost = QStringLiteral("FileHost");

} // namespace SettingsKey
