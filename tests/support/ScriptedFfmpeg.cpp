#include "support/ScriptedFfmpeg.h"

#include "foundation/AtomicFile.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

#include <algorithm>

namespace {

// Takes the steps from a file of their own: a program cannot be run while it is being rewritten. Each run is a file
// named after its process, with its arguments, each ended by a zero byte.
constexpr const char* program = R"sh(#!/bin/sh
folder=$(dirname "$0")
for last; do printf '%s\0' "$last"; done > "$folder/beginning-$$"
mv "$folder/beginning-$$" "$folder/runs/$$"
. "$folder/steps"
)sh";

} // namespace

ScriptedFfmpeg::ScriptedFfmpeg()
{
    EXPECT_TRUE(m_folder.isValid());
    EXPECT_TRUE(QDir(m_folder.path()).mkdir(QStringLiteral("runs")));
    EXPECT_TRUE(QFile::setPermissions(writeFile(QStringLiteral("ffmpeg"), program),
                                      QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    always();
    shell("");
}

ScriptedFfmpeg::~ScriptedFfmpeg()
{
    if (m_oldPath)
        qputenv("PATH", *m_oldPath);
}

QString ScriptedFfmpeg::path() const
{
    return file(QStringLiteral("ffmpeg"));
}

QString ScriptedFfmpeg::file(const QString& name) const
{
    return m_folder.filePath(name);
}

void ScriptedFfmpeg::putFirstOnPath()
{
    if (m_oldPath)
        return;
    m_oldPath = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(m_folder.path()) + ':' + *m_oldPath);
}

ScriptedFfmpeg& ScriptedFfmpeg::whenProbing()
{
    m_condition = "[ $# -eq 2 ]";
    return *this;
}

ScriptedFfmpeg& ScriptedFfmpeg::whenConverting()
{
    m_condition = "[ $# -gt 2 ]";
    return *this;
}

ScriptedFfmpeg& ScriptedFfmpeg::always()
{
    m_condition = ":";
    return *this;
}

ScriptedFfmpeg& ScriptedFfmpeg::prints(const QByteArray& bytes)
{
    const QString name = QStringLiteral("bytes-%1").arg(++m_fileCount);
    [[maybe_unused]] const QString written = writeFile(name, bytes);
    return shell("cat \"$folder/" + name.toUtf8() + "\" >&2");
}

ScriptedFfmpeg& ScriptedFfmpeg::writesOutputFile(const QByteArray& contents)
{
    const QString name = QStringLiteral("bytes-%1").arg(++m_fileCount);
    [[maybe_unused]] const QString written = writeFile(name, contents);
    return shell("cat \"$folder/" + name.toUtf8() + "\" > \"$last\"");
}

ScriptedFfmpeg& ScriptedFfmpeg::waits(std::chrono::milliseconds time)
{
    return shell("sleep " + QByteArray::number(static_cast<double>(time.count()) / 1000, 'f', 3));
}

ScriptedFfmpeg& ScriptedFfmpeg::waitsForRelease(const QString& name)
{
    const QByteArray word = name.toUtf8();
    return shell(": > \"$folder/reached-" + word + "\"\n" + "until [ -e \"$folder/released-" + word +
                 "\" ] || [ ! -d \"$folder\" ]; do sleep 0.01; done");
}

ScriptedFfmpeg& ScriptedFfmpeg::closesItsOutput()
{
    return shell("exec 2>&-");
}

ScriptedFfmpeg& ScriptedFfmpeg::ignoresRequestsToEnd()
{
    return shell("trap '' TERM INT HUP");
}

ScriptedFfmpeg& ScriptedFfmpeg::hangs()
{
    return shell("exec sleep 1000000");
}

ScriptedFfmpeg& ScriptedFfmpeg::crashes()
{
    return shell("ulimit -c 0; kill -SEGV $$");
}

ScriptedFfmpeg& ScriptedFfmpeg::exits(int code)
{
    return shell("exit " + QByteArray::number(code));
}

ScriptedFfmpeg& ScriptedFfmpeg::shell(const QByteArray& lines)
{
    m_steps += "if " + m_condition + "; then :\n" + lines + "\nfi\n";
    EXPECT_FALSE(AtomicFile::write(file(QStringLiteral("steps")), m_steps).has_value());
    return *this;
}

void ScriptedFfmpeg::release(const QString& name) const
{
    [[maybe_unused]] const QString written = writeFile(QStringLiteral("released-") + name, {});
}

bool ScriptedFfmpeg::hasReached(const QString& name) const
{
    return QFile::exists(file(QStringLiteral("reached-") + name));
}

QList<QStringList> ScriptedFfmpeg::runs() const
{
    QList<QStringList> runs;
    for (const qint64 processId : processIds()) {
        QFile record(file(QStringLiteral("runs/%1").arg(processId)));
        EXPECT_TRUE(record.open(QIODevice::ReadOnly));
        QStringList arguments = QString::fromUtf8(record.readAll()).split(QChar(u'\0'));
        arguments.removeLast(); // behind the last zero byte
        runs.append(arguments);
    }
    return runs;
}

QList<qint64> ScriptedFfmpeg::processIds() const
{
    QList<qint64> processIds;
    const QDir folder(file(QStringLiteral("runs")));
    for (const QString& name : folder.entryList(QDir::Files, QDir::Time | QDir::Reversed))
        processIds.append(name.toLongLong());
    return processIds;
}

qsizetype ScriptedFfmpeg::runningCount() const
{
    const QList<qint64> all = processIds();
    return std::count_if(all.begin(), all.end(), isRunning);
}

bool ScriptedFfmpeg::isRunning(qint64 processId)
{
    QFile status(QStringLiteral("/proc/%1/stat").arg(processId));
    if (!status.open(QIODevice::ReadOnly))
        return false;
    const QByteArray text = status.readAll();
    // The state follows the name, which is in brackets and may hold anything.
    const char state = text.mid(text.lastIndexOf(')') + 1).trimmed().left(1).append('X').at(0);
    return state != 'Z' && state != 'X';
}

QString ScriptedFfmpeg::writeFile(const QString& name, const QByteArray& contents) const
{
    const QString path = file(name);
    QFile out(path);
    EXPECT_TRUE(out.open(QIODevice::WriteOnly)) << qPrintable(path);
    EXPECT_EQ(out.write(contents), contents.size());
    return path;
}
