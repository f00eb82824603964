#include "cli/Terminal.h"

#include "foundation/Interruption.h"

#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace {

// Turns the echo off while it lives.
class EchoOff
{
public:
    explicit EchoOff(int descriptor) : m_descriptor(descriptor)
    {
        tcgetattr(descriptor, &m_before);
        termios silent = m_before;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(descriptor, TCSAFLUSH, &silent);
    }
    ~EchoOff() { tcsetattr(m_descriptor, TCSAFLUSH, &m_before); }
    EchoOff(const EchoOff&) = delete;
    EchoOff& operator=(const EchoOff&) = delete;

private:
    int m_descriptor;
    termios m_before{};
};

void writeWhole(int descriptor, const QByteArray& bytes)
{
    [[maybe_unused]] const ssize_t written =
        ::write(descriptor, bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

std::optional<QByteArray> readLine(int terminal)
{
    QByteArray line;
    while (true) {
        pollfd waits[] = {{terminal, POLLIN, 0}, {Interruption::descriptor(), POLLIN, 0}};
        if (::poll(waits, 2, -1) < 0 && errno != EINTR)
            return std::nullopt;
        if (Interruption::isRequested())
            return std::nullopt;
        if ((waits[0].revents & (POLLIN | POLLHUP)) == 0)
            continue;
        char c = 0;
        if (::read(terminal, &c, 1) != 1)
            return std::nullopt;
        if (c == '\n')
            return line;
        line += c;
    }
}

void printTo(FILE* file, const QString& line)
{
    const QByteArray text = (::isatty(::fileno(file)) == 1 ? Terminal::withoutControls(line) : line).toUtf8();
    std::fwrite(text.constData(), 1, static_cast<std::size_t>(text.size()), file);
    std::fputc('\n', file);
    std::fflush(file);
}

} // namespace

QString Terminal::withoutControls(const QString& text)
{
    QString clean = text;
    for (QChar& c : clean) {
        if (c.category() == QChar::Other_Control && c != u'\n' && c != u'\t')
            c = QChar(QChar::ReplacementCharacter);
    }
    return clean;
}

bool Terminal::isStandardOutput()
{
    return ::isatty(STDOUT_FILENO) == 1;
}

int Terminal::width()
{
    winsize size{};
    return ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

std::optional<QString> Terminal::askSecret(const QString& prompt)
{
    const int terminal = ::open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY);
    if (terminal < 0)
        return std::nullopt;
    std::optional<QByteArray> answer;
    {
        const EchoOff echoOff(terminal);
        writeWhole(terminal, prompt.toUtf8());
        answer = readLine(terminal);
        writeWhole(terminal, "\n");
    }
    ::close(terminal);
    return answer ? std::optional<QString>(QString::fromUtf8(*answer)) : std::nullopt;
}

void Terminal::printOut(const QString& line)
{
    printTo(stdout, line);
}

void Terminal::printError(const QString& line)
{
    printTo(stderr, line);
}
