#include "SecretWatch.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <gtest/gtest.h>

#include <chrono>
#include <unistd.h>

namespace {

constexpr std::chrono::milliseconds timeBetweenLooks{20};

std::string contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
}

// What is the same in base64 wherever in a longer text the word stands.
std::vector<std::string> base64Forms(const QByteArray& word)
{
    std::vector<std::string> forms;
    for (int before = 0; before < 3; ++before) {
        const QByteArray encoded = (QByteArray(before, 'x') + word).toBase64(QByteArray::OmitTrailingEquals);
        const qsizetype first = before == 0 ? 0 : before + 1;
        const qsizetype last = (before + word.size()) / 3 * 4;
        forms.push_back(encoded.mid(first, last - first).toStdString());
    }
    return forms;
}

} // namespace

SecretWatch::SecretWatch(const QString& folder, const QStringList& passwords) : m_folder(folder)
{
    static const QRegularExpression core(QStringLiteral("[A-Za-z0-9]{10,}"));
    for (const QString& password : passwords) {
        const QByteArray word = core.match(password).captured().toLatin1();
        EXPECT_GE(word.size(), 10) << "Nothing of the password stays together.";
        m_forms.push_back(word.toStdString());
        std::string wide;
        for (const char c : word)
            wide += std::string(1, c) + std::string(1, '\0');
        m_forms.push_back(wide);
        for (const std::string& form : base64Forms(word))
            m_forms.push_back(form);
        // All of it percent-encoded, letters too.
        m_forms.push_back("%" + word.toHex('%').toUpper().toStdString());
    }
    m_thread = std::thread([this] {
        while (!m_isEnding) {
            lookAround();
            std::this_thread::sleep_for(timeBetweenLooks);
        }
    });
}

SecretWatch::~SecretWatch()
{
    m_isEnding = true;
    if (m_thread.joinable())
        m_thread.join();
}

void SecretWatch::follow(pid_t program)
{
    const std::scoped_lock lock(m_mutex);
    m_followed.insert(program);
}

std::vector<std::string> SecretWatch::end()
{
    m_isEnding = true;
    if (m_thread.joinable())
        m_thread.join();
    lookAround();
    const std::scoped_lock lock(m_mutex);
    return {m_places.begin(), m_places.end()};
}

std::string SecretWatch::found(const std::string& text) const
{
    for (const std::string& form : m_forms) {
        if (text.find(form) != std::string::npos)
            return form;
    }
    return {};
}

void SecretWatch::note(const std::string& place)
{
    const std::scoped_lock lock(m_mutex);
    m_places.insert(place);
}

void SecretWatch::lookAround()
{
    lookAtProcesses();
    lookAtFiles();
}

void SecretWatch::lookAtProcesses()
{
    const QStringList entries = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& entry : entries) {
        bool isProcess = false;
        const pid_t process = entry.toInt(&isProcess);
        if (!isProcess || process == ::getpid())
            continue;
        const QString folder = QStringLiteral("/proc/") + entry;
        const std::string arguments = contents(folder + QStringLiteral("/cmdline"));
        // The hands that type a password into a window are told it in their arguments.
        if (!found(arguments).empty() && !arguments.starts_with("xdotool"))
            note("the arguments of " + arguments.substr(0, arguments.find('\0')));
        const std::string environment = contents(folder + QStringLiteral("/environ"));
        const bool isInEnvironment = !found(environment).empty();
        const std::scoped_lock lock(m_mutex);
        if (isInEnvironment && m_withoutInEnvironment.contains(process))
            m_places.insert("the environment, again, of " + arguments.substr(0, arguments.find('\0')));
        if (isInEnvironment && arguments.find("ffmpeg") != std::string::npos)
            m_places.insert("the environment of " + arguments.substr(0, arguments.find('\0')));
        if (!environment.empty() && !isInEnvironment && m_followed.contains(process))
            m_withoutInEnvironment.insert(process);
    }
}

void SecretWatch::lookAtFiles()
{
    QDirIterator each(m_folder, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (each.hasNext()) {
        const QString path = each.next();
        if (!found(path.toStdString()).empty())
            note("the name " + path.toStdString());
        if (!found(contents(path)).empty())
            note(path.toStdString());
    }
}
