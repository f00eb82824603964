#include "ChildProgram.h"

#include "support/Waiting.h"

#include <QFile>
#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <pty.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <vector>

namespace {

// A list of texts as exec takes it.
class TextPointers
{
public:
    explicit TextPointers(const QStringList& texts)
    {
        for (const QString& text : texts)
            m_texts.push_back(text.toStdString());
        for (std::string& text : m_texts)
            m_pointers.push_back(text.data());
        m_pointers.push_back(nullptr);
    }
    [[nodiscard]] char* const* data() const { return m_pointers.data(); }

private:
    std::vector<std::string> m_texts;
    std::vector<char*> m_pointers;
};

QString contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

ChildProgram::ChildProgram(const QString& program) : m_program(program)
{
    EXPECT_TRUE(m_folder.isValid());
}

ChildProgram::~ChildProgram()
{
    if (m_processId > 0 && !hasEnded()) {
        ::kill(m_processId, SIGKILL);
        ::waitpid(m_processId, nullptr, 0);
    }
    if (m_terminal >= 0)
        ::close(m_terminal);
    if (m_terminalOfChild >= 0)
        ::close(m_terminalOfChild);
}

void ChildProgram::openTerminal()
{
    const winsize size{.ws_row = 40, .ws_col = 100, .ws_xpixel = 0, .ws_ypixel = 0};
    ASSERT_EQ(::openpty(&m_terminal, &m_terminalOfChild, nullptr, nullptr, &size), 0);
    for (const int end : {m_terminal, m_terminalOfChild})
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
    ::fcntl(m_terminal, F_SETFL, O_NONBLOCK);
}

void ChildProgram::start(const QStringList& arguments, const QMap<QString, QString>& environment, Terminal terminal)
{
    QStringList variables;
    for (const auto& [name, value] : environment.asKeyValueRange())
        variables << name + u'=' + value;
    const TextPointers argumentPointers(QStringList{m_program} + arguments);
    const TextPointers variablePointers(variables);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    const QByteArray out = QFile::encodeName(file(QStringLiteral("out")));
    const QByteArray err = QFile::encodeName(file(QStringLiteral("err")));
    constexpr int writing = O_WRONLY | O_CREAT | O_APPEND;
    std::string terminalName;
    if (terminal == Terminal::None) {
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    } else {
        openTerminal();
        terminalName = ::ptsname(m_terminal);
        // The first terminal that the leader of a session opens becomes the session's terminal.
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, terminalName.c_str(), O_RDWR, 0);
    }
    if (terminal == Terminal::ForAll)
        posix_spawn_file_actions_adddup2(&actions, STDIN_FILENO, STDOUT_FILENO);
    else
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.constData(), writing, 0600);
    if (terminal == Terminal::None)
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.constData(), writing, 0600);
    else
        posix_spawn_file_actions_adddup2(&actions, STDIN_FILENO, STDERR_FILENO);

    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    EXPECT_EQ(posix_spawnp(&m_processId, m_program.toUtf8().constData(), &actions, &attributes, argumentPointers.data(),
                           variablePointers.data()),
              0);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
}

bool ChildProgram::hasEnded()
{
    if (m_exitCode >= 0)
        return true;
    int status = 0;
    if (::waitpid(m_processId, &status, WNOHANG) != m_processId)
        return false;
    m_exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return true;
}

bool ChildProgram::waitForEnd(std::chrono::milliseconds limit)
{
    return Waiting::until(
        [this] {
            // A terminal that nobody reads would hold the program up.
            [[maybe_unused]] const QString text = shown();
            return hasEnded();
        },
        limit);
}

void ChildProgram::signal(int number) const
{
    ::kill(m_processId, number);
}

QString ChildProgram::standardOutput() const
{
    return contents(file(QStringLiteral("out")));
}

QStringList ChildProgram::outputLines() const
{
    return standardOutput().split(u'\n', Qt::SkipEmptyParts);
}

QString ChildProgram::standardError() const
{
    return contents(file(QStringLiteral("err")));
}

QString ChildProgram::shown()
{
    char bytes[4096];
    ssize_t count = 0;
    while (m_terminal >= 0 && (count = ::read(m_terminal, bytes, sizeof bytes)) > 0)
        m_shown.append(bytes, count);
    return QString::fromUtf8(m_shown);
}

void ChildProgram::type(const QByteArray& keys) const
{
    EXPECT_EQ(::write(m_terminal, keys.constData(), static_cast<std::size_t>(keys.size())), keys.size());
}

bool ChildProgram::isEchoing() const
{
    termios settings{};
    EXPECT_EQ(::tcgetattr(m_terminal, &settings), 0);
    return (settings.c_lflag & static_cast<tcflag_t>(ECHO)) != 0;
}
