#pragma once

#include "foundation/UserDefaults.h"

#include <QString>
#include <QTemporaryDir>

#include <memory>

// Where this run keeps settings, jobs and logs: the user's own folders, or for a demo folders that go with it, so that
// trying the program leaves the user's settings and jobs alone. What a demo delivers stays, in the home folder.
class UserPlaces
{
public:
    enum class Kind { Own, Demo };

    explicit UserPlaces(Kind kind);

    // With the defaults registered.
    [[nodiscard]] UserDefaults& defaults() { return *m_defaults; }
    [[nodiscard]] const QString& settingsPath() const { return m_settingsPath; }
    [[nodiscard]] const QString& logFolder() const { return m_logFolder; }

private:
    std::unique_ptr<QTemporaryDir> m_demoFolder;
    QString m_settingsPath;
    std::unique_ptr<UserDefaults> m_defaults;
    QString m_logFolder;
};
