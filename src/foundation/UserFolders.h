#pragma once

#include <QString>

// Where a user's files lie. Every program of the project uses the same name, so that they share settings and jobs.
namespace UserFolders {

inline const QString executableName = QStringLiteral("Quillpost");

// The settings file, in the user's configuration folder ($XDG_CONFIG_HOME, else ~/.config).
[[nodiscard]] QString settingsFilePath();
// $XDG_DATA_HOME, else ~/.local/share. Empty when the user has no home.
[[nodiscard]] QString applicationSupportFolder();
// The folder of the logs, in $XDG_STATE_HOME, else ~/.local/state.
[[nodiscard]] QString logFolder();
// $HOME, else the account's home; empty when there is neither.
[[nodiscard]] QString homeFolder();

} // namespace UserFolders
