#pragma once

#include "ui/UserDialogs.h"

#include <QFileDialog>

class QWidget;

// The questions as modal dialogs over the active window. What they hold is plain text, whatever markup it seems to be.
// File dialogs begin in the folder used last.
class QtUserDialogs : public UserDialogs
{
public:
    void warn(const QString& title, const QString& text) override;
    [[nodiscard]] bool ask(const Question& question) override;
    [[nodiscard]] std::optional<QStringList> chooseFile(const QString& title, const QString& filter) override;
    [[nodiscard]] std::optional<QStringList> chooseFiles(const QString& title, const QString& filter) override;
    [[nodiscard]] std::optional<QStringList> chooseFolder(const QString& title, const QString& folder) override;

    // Empty before the first choice.
    [[nodiscard]] QString lastFolder() const { return m_lastFolder; }

private:
    [[nodiscard]] std::optional<QStringList> choose(QFileDialog& dialog);

    QString m_lastFolder;
};
