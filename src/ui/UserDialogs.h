#pragma once

#include <QString>
#include <QStringList>

#include <optional>

// The modal questions that the controllers put to the user, without knowing how they look. Each returns when it has
// been answered. Main thread; other work goes on meanwhile, so what a caller read before asking may have changed.
class UserDialogs
{
public:
    virtual ~UserDialogs() = default;

    // One default button.
    virtual void warn(const QString& title, const QString& text) = 0;

    struct Question
    {
        QString title;
        QString text;
        QString defaultButton;
        QString alternateButton;
        // Escape, and closing the dialog, stand for the default button instead of the alternate one.
        bool isClosingDefault = false;
    };
    // True for the default button.
    [[nodiscard]] virtual bool ask(const Question& question) = 0;

    // One existing file; nothing when the user cancelled. `filter` as QFileDialog takes it, or empty.
    [[nodiscard]] virtual std::optional<QStringList> chooseFile(const QString& title, const QString& filter) = 0;
    // Any number of existing files.
    [[nodiscard]] virtual std::optional<QStringList> chooseFiles(const QString& title, const QString& filter) = 0;
    // One folder, which the user may make on the way; shown first is `folder`.
    [[nodiscard]] virtual std::optional<QStringList> chooseFolder(const QString& title, const QString& folder) = 0;
};
