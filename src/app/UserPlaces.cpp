#include "app/UserPlaces.h"

#include "foundation/PathText.h"
#include "foundation/UserFolders.h"
#include "settings/Preferences.h"
#include "settings/SettingsKey.h"

UserPlaces::UserPlaces(Kind kind)
{
    if (kind == Kind::Own) {
        m_settingsPath = UserFolders::settingsFilePath();
        m_defaults = std::make_unique<UserDefaults>(m_settingsPath);
        m_logFolder = UserFolders::logFolder();
        UserDefaults::setStandard(m_defaults.get());
        Preferences::initialize(*m_defaults);
        return;
    }
    m_demoFolder = std::make_unique<QTemporaryDir>();
    m_settingsPath = m_demoFolder->filePath(QStringLiteral("Quillpost.ini"));
    m_defaults = std::make_unique<UserDefaults>(m_settingsPath);
    m_logFolder = m_demoFolder->filePath(QStringLiteral("log"));
    UserDefaults::setStandard(m_defaults.get());
    Preferences::initialize(*m_defaults, Preferences::detectedProcessorCount(), m_demoFolder->path());
    m_defaults->setValue(SettingsKey::DeliveryFolderPath,
                         PathText::appendingPathComponent(UserFolders::homeFolder(), QStringLiteral("Quillpost Demo")));
}
