#pragma once

#include "ui/UserDialogs.h"

#include <QList>
#include <QPair>

#include <functional>

// Dialogs that a test answers beforehand. A choice without an answer left is cancelled; a question without one gets
// the alternate button. What was asked is kept.
class ScriptedDialogs : public UserDialogs
{
public:
    void warn(const QString& title, const QString& text) override
    {
        warnings.append({title, text});
        whileShown();
    }

    bool ask(const Question& question) override
    {
        questions.append(question);
        whileShown();
        return answers.isEmpty() ? false : answers.takeFirst();
    }

    std::optional<QStringList> chooseFile(const QString& title, const QString& filter) override
    {
        return nextChoice(title, filter);
    }
    std::optional<QStringList> chooseFiles(const QString& title, const QString& filter) override
    {
        return nextChoice(title, filter);
    }
    std::optional<QStringList> chooseFolder(const QString& title, const QString& folder) override
    {
        return nextChoice(title, folder);
    }

    // What happens while a warning or a question is in front of the user.
    std::function<void()> whileShown = [] {};
    // Answers to come: true is the default button, no list is "Cancel".
    QList<bool> answers;
    QList<std::optional<QStringList>> choices;

    // What was shown, oldest first.
    QList<QPair<QString, QString>> warnings; // title, text
    QList<Question> questions;
    QList<QPair<QString, QString>> chosen; // title, filter or folder

private:
    std::optional<QStringList> nextChoice(const QString& title, const QString& detail)
    {
        chosen.append({title, detail});
        return choices.isEmpty() ? std::nullopt : choices.takeFirst();
    }
};
