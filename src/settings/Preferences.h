#pragma once

#include "foundation/UserFolders.h"

#include <QString>

class UserDefaults;

// The defaults of the user's settings, and the delivery folder that the user chose, remembered by its bookmark.
// Class operations alone; called on the main thread, `initialize` before anything else reads a setting.
class Preferences
{
public:
    Preferences() = delete;

    // Registers the defaults and restores the delivery folder. Makes no folder. Doing it again changes nothing.
    // No "TemporaryFolder" is registered where there is no application support folder, and no "DeliveryFolderPath"
    // where there is no home; each is an error in the log.
    static void initialize(UserDefaults& defaults, int processorCount = detectedProcessorCount(),
                           const QString& applicationSupportFolder = UserFolders::applicationSupportFolder(),
                           const QString& homeFolder = UserFolders::homeFolder());

    // Takes "DeliveryFolderPath" from the stored bookmark. A folder that is gone or cannot be opened is forgotten, so
    // that the registered default applies; its bookmark stays and finds the folder when it is back.
    static void initializeDeliveryFolderPrefWithAppScopedBookmark(UserDefaults& defaults);

    // Keeps a fresh bookmark of the folder under "DeliveryFolderPath", or none when it cannot be made.
    static void persistDeliveryFolderAppScopedBookmark(UserDefaults& defaults);

    // 0 when the system does not tell.
    [[nodiscard]] static int detectedProcessorCount();
};
