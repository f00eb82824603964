#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <chrono>
#include <optional>

// A folder with an executable named ffmpeg that does what a test tells it, step by step, and records how it was run.
// Without steps it ends at once. Steps are added before it is run; a run takes the steps that stood when it began.
// Used from one thread, except release(), hasReached() and what reads the records.
class ScriptedFfmpeg
{
public:
    ScriptedFfmpeg();
    ~ScriptedFfmpeg(); // takes the folder off PATH
    ScriptedFfmpeg(const ScriptedFfmpeg&) = delete;
    ScriptedFfmpeg& operator=(const ScriptedFfmpeg&) = delete;

    [[nodiscard]] QString path() const;
    // A path in the folder, for what shell() steps write.
    [[nodiscard]] QString file(const QString& name) const;
    void putFirstOnPath();

    // Which runs take the steps that follow: those that only read the input, those that have an output, or all.
    ScriptedFfmpeg& whenProbing();
    ScriptedFfmpeg& whenConverting();
    ScriptedFfmpeg& always();

    // Writes these bytes to standard error, in one write where they fit the pipe.
    ScriptedFfmpeg& prints(const QByteArray& bytes);
    ScriptedFfmpeg& writesOutputFile(const QByteArray& contents);
    ScriptedFfmpeg& waits(std::chrono::milliseconds time);
    // Notes that it came so far, see hasReached(), and waits for release() with the same name.
    ScriptedFfmpeg& waitsForRelease(const QString& name);
    ScriptedFfmpeg& closesItsOutput();
    ScriptedFfmpeg& ignoresRequestsToEnd();
    ScriptedFfmpeg& hangs();
    ScriptedFfmpeg& crashes();
    ScriptedFfmpeg& exits(int code);
    // Any lines of sh. $folder is the folder, $last the last argument.
    ScriptedFfmpeg& shell(const QByteArray& lines);

    void release(const QString& name) const;
    [[nodiscard]] bool hasReached(const QString& name) const;
    // The arguments of every run so far, in the order in which they began.
    [[nodiscard]] QList<QStringList> runs() const;
    [[nodiscard]] QList<qint64> processIds() const;
    // How many of the runs have not ended.
    [[nodiscard]] qsizetype runningCount() const;
    // False for a process that has ended, also where its status was not taken up.
    [[nodiscard]] static bool isRunning(qint64 processId);

private:
    [[nodiscard]] QString writeFile(const QString& name, const QByteArray& contents) const;

    QTemporaryDir m_folder;
    QByteArray m_steps;
    QByteArray m_condition;
    int m_fileCount = 0;
    std::optional<QByteArray> m_oldPath;
};
