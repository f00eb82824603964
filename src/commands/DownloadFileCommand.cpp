#include "commands/DownloadFileCommand.h"

#include "foundation/Log.h"
#include "foundation/Text.h"

#include <QDir>
#include <QFileInfo>
#include <curl/curl.h>

namespace {

std::size_t downloadFunction(char* bytes, std::size_t size, std::size_t number, void* command)
{
    return static_cast<DownloadFileCommand*>(command)->downloadCallback(bytes, size, number);
}

} // namespace

DownloadFileCommand::DownloadFileCommand(const ServiceHosts& hosts, const QString& user, const QString& password,
                                         int depoNum, int fileNum, const QString& filePath)
    : CUrlCommand(hosts.secureUrl(QStringLiteral("/saltine/test_downloadjob2.php")))
{
    const QString folder = QFileInfo(filePath).path();
    if (!QFileInfo::exists(folder) && !QDir().mkpath(folder))
        Log::error("DownloadCommand for depo={}, file={}, unable to create folder at path: {}", depoNum, fileNum,
                   folder);
    if (!m_downloadedFile.create(filePath)) {
        Log::error("DownloadCommand for depo={}, file={}, unable to create file at path: {}", depoNum, fileNum,
                   filePath);
        return;
    }
    setPointer(PointerHolder::pointerHolderWithPtr(&downloadFunction), CURLOPT_WRITEFUNCTION);
    setPointer(PointerHolder::pointerHolderWithPtr(static_cast<void*>(this)), CURLOPT_WRITEDATA);
    setNumber(0, CURLOPT_SSL_VERIFYHOST);
    setNumber(0, CURLOPT_SSL_VERIFYPEER);
    setNumber(0, CURLOPT_HEADER);
    setString(Text::format("user={}&pass={}&depo={}&starting_point=0&file_num={}", user, password, depoNum, fileNum),
              CURLOPT_POSTFIELDS);
}

std::shared_ptr<DownloadFileCommand> DownloadFileCommand::downloadFileCommandWithUser(const ServiceHosts& hosts,
                                                                                      const QString& user,
                                                                                      const QString& password,
                                                                                      int depoNum, int fileNum,
                                                                                      const QString& filePath)
{
    return std::make_shared<DownloadFileCommand>(hosts, user, password, depoNum, fileNum, filePath);
}

void DownloadFileCommand::execute()
{
    CUrlCommand::execute();
    m_downloadedFile.writeOut();
}

std::size_t DownloadFileCommand::downloadCallback(const char* bytes, std::size_t size, std::size_t number)
{
    return m_downloadedFile.append(bytes, size, number);
}
