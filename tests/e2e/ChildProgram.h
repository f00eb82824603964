#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <chrono>
#include <sys/types.h>

// One run of a program, quillpost-cli unless told otherwise, as a child process in a session of its own: without a
// terminal, or on a pseudo terminal. Its output is read from files, or from the terminal while waiting. Main thread;
// the destructor kills what still runs.
class ChildProgram
{
public:
    enum class Terminal {
        None,
        // /dev/tty and standard error, as when standard output goes to a file.
        ForQuestions,
        // Standard output too.
        ForAll
    };

    explicit ChildProgram(const QString& program = QStringLiteral(CLI_PROGRAM));
    ~ChildProgram();
    ChildProgram(const ChildProgram&) = delete;
    ChildProgram& operator=(const ChildProgram&) = delete;

    // The environment is these variables and nothing else.
    void start(const QStringList& arguments, const QMap<QString, QString>& environment,
               Terminal terminal = Terminal::None);
    // False when it has not ended in time; the limit only bounds a failing test.
    [[nodiscard]] bool waitForEnd(std::chrono::milliseconds limit = std::chrono::seconds(60));
    [[nodiscard]] bool hasEnded();
    // 128 + n after signal n, -1 while it runs.
    [[nodiscard]] int exitCode() const { return m_exitCode; }
    void signal(int number) const;

    [[nodiscard]] QString standardOutput() const;
    [[nodiscard]] QStringList outputLines() const;
    [[nodiscard]] QString standardError() const;
    // All that the terminal has shown so far, with its control sequences.
    [[nodiscard]] QString shown();
    void type(const QByteArray& keys) const;
    [[nodiscard]] bool isEchoing() const;

    [[nodiscard]] pid_t processId() const { return m_processId; }

private:
    [[nodiscard]] QString file(const QString& name) const { return m_folder.filePath(name); }
    void openTerminal();

    const QString m_program;
    QTemporaryDir m_folder;
    pid_t m_processId = -1;
    int m_exitCode = -1;
    int m_terminal = -1;        // our end
    int m_terminalOfChild = -1; // kept open, so that what was shown stays readable after the end
    QByteArray m_shown;
};
