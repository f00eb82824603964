#include "FuzzTarget.h"

#include "foundation/UserDefaults.h"
#include "foundation/UserFolders.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <filesystem>
#include <string_view>

namespace {

std::vector<FuzzTarget::Entry>& entries()
{
    static std::vector<FuzzTarget::Entry> all;
    return all;
}

QString& filesFolder()
{
    static QString folder;
    return folder;
}

} // namespace

FuzzTarget::Registration::Registration(const char* name, Run run)
{
    entries().push_back({name, run});
}

std::vector<FuzzTarget::Entry> FuzzTarget::all()
{
    auto sorted = entries();
    std::sort(sorted.begin(), sorted.end(),
              [](const Entry& a, const Entry& b) { return std::string_view(a.name) < b.name; });
    return sorted;
}

FuzzTarget::Surroundings::Surroundings()
{
    require(m_folder.isValid(), "there is a temporary folder");
    qputenv("HOME", QFile::encodeName(m_folder.filePath(QStringLiteral("home"))));
    for (const char* variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME"})
        qunsetenv(variable);
    m_defaults = std::make_unique<UserDefaults>(UserFolders::settingsFilePath());
    UserDefaults::setStandard(m_defaults.get());
    filesFolder() = m_folder.filePath(QStringLiteral("files"));
}

FuzzTarget::Surroundings::~Surroundings()
{
    // Reaches files whose paths are too long for the system.
    std::error_code ignored;
    std::filesystem::remove_all(QFile::encodeName(filesFolder()).toStdString(), ignored);
}

QString FuzzTarget::emptyFolder()
{
    std::error_code error;
    std::filesystem::remove_all(QFile::encodeName(filesFolder()).toStdString(), error);
    require(!error && QDir().mkpath(filesFolder()), "the files of the input before are gone");
    return filesFolder();
}

QString FuzzTarget::writeFile(const QString& path, QByteArrayView contents)
{
    QFile file(path);
    require(file.open(QIODevice::WriteOnly) && file.write(contents.data(), contents.size()) == contents.size(),
            "the input can be written to a file");
    return path;
}

QList<QByteArray> FuzzTarget::pieces(QByteArrayView input)
{
    return input.toByteArray().split('\x1e');
}
