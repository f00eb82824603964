#include "harness/ChildRun.h"

#include <QFile>
#include <QJsonDocument>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace Bench {

namespace {

double secondsOf(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

// Pointers to the texts and a null behind them, as exec takes them.
std::vector<char*> pointersTo(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

// A file without a name that holds the bytes, to be read from its beginning.
int fileOf(const QByteArray& bytes)
{
    const int descriptor = ::memfd_create("bytes", MFD_CLOEXEC);
    if (::write(descriptor, bytes.constData(), static_cast<std::size_t>(bytes.size())) != bytes.size())
        fail(QStringLiteral("the input of a program could not be written"));
    ::lseek(descriptor, 0, SEEK_SET);
    return descriptor;
}

QByteArray readToEnd(int descriptor)
{
    QByteArray all;
    std::array<char, 65536> piece{};
    for (;;) {
        const ssize_t count = ::read(descriptor, piece.data(), piece.size());
        if (count > 0)
            all.append(piece.data(), count);
        else if (count == 0 || errno != EINTR)
            return all;
    }
}

// The end of what a program wrote to standard error.
QString lastWords(int descriptor)
{
    constexpr off_t longest = 2000;
    const off_t size = ::lseek(descriptor, 0, SEEK_END);
    ::lseek(descriptor, std::max<off_t>(0, size - longest), SEEK_SET);
    return QString::fromLocal8Bit(readToEnd(descriptor));
}

} // namespace

void fail(const QString& message)
{
    std::fprintf(stderr, "quillpost-bench: %s\n", message.toLocal8Bit().constData());
    std::exit(EXIT_FAILURE);
}

QJsonObject ChildRun::report() const
{
    const QByteArray text = output.trimmed();
    const QJsonDocument document = QJsonDocument::fromJson(text.mid(text.lastIndexOf('\n') + 1));
    if (!document.isObject())
        fail(QStringLiteral("a program reported no figures but: ") + QString::fromUtf8(text.right(400)));
    return document.object();
}

ChildRun runChild(const QStringList& command, const ChildOptions& options)
{
    std::vector<std::string> arguments;
    for (const QString& argument : command)
        arguments.push_back(QFile::encodeName(argument).toStdString());
    std::vector<std::string> variables;
    for (const QString& variable : options.environment.toStringList())
        variables.push_back(variable.toLocal8Bit().toStdString());
    const std::vector<char*> argumentPointers = pointersTo(arguments);
    std::vector<char*> variablePointers = pointersTo(variables);
    const std::string folder = QFile::encodeName(options.folder).toStdString();
    const int input = fileOf(options.input);
    const int errors = fileOf({});
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        fail(QStringLiteral("no pipe could be made"));

    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = ::fork();
    if (child == 0) {
        if (!folder.empty() && ::chdir(folder.c_str()) != 0)
            ::_exit(127);
        ::dup2(input, STDIN_FILENO);
        ::dup2(ends[1], STDOUT_FILENO);
        ::dup2(errors, STDERR_FILENO); // thousands of lines of ffmpeg's and the log's
        ::environ = variablePointers.data();
        ::execvp(argumentPointers[0], argumentPointers.data());
        ::_exit(127);
    }
    ::close(ends[1]);
    ::close(input);
    ChildRun run;
    run.output = readToEnd(ends[0]);
    ::close(ends[0]);
    int status = 0;
    rusage usage{};
    if (child < 0 || ::wait4(child, &status, 0, &usage) != child)
        fail(command.join(u' ') + QStringLiteral(" could not be run"));
    run.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    if (!WIFEXITED(status) || WEXITSTATUS(status) != EXIT_SUCCESS)
        fail(command.join(u' ').left(400) + QStringLiteral(" ended with ") + QString::number(status) + u'\n' +
             lastWords(errors));
    ::close(errors);
    run.cpuSeconds = secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime);
    run.peakMegabytes = static_cast<double>(usage.ru_maxrss) / 1024.0;
    return run;
}

} // namespace Bench
