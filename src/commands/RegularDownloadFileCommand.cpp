#include "commands/RegularDownloadFileCommand.h"

#include "foundation/Log.h"

#include <curl/curl.h>

namespace {

std::size_t regularDownloadFunction(char* bytes, std::size_t size, std::size_t number, void* command)
{
    return static_cast<RegularDownloadFileCommand*>(command)->regularDownloadCallback(bytes, size, number);
}

} // namespace

RegularDownloadFileCommand::RegularDownloadFileCommand(const QString& url, const QString& destinationPath)
    : CUrlCommand(url)
{
    setPointer(PointerHolder::pointerHolderWithPtr(&regularDownloadFunction), CURLOPT_WRITEFUNCTION);
    setPointer(PointerHolder::pointerHolderWithPtr(static_cast<void*>(this)), CURLOPT_WRITEDATA);
    if (!m_downloadedFile.create(destinationPath))
        Log::error("RegularDownloadFileCommand, unable to create file at path: {}", destinationPath);
}

std::shared_ptr<RegularDownloadFileCommand>
RegularDownloadFileCommand::RegularDownloadFileCommandWithURL(const QString& url, const QString& destinationPath)
{
    return std::make_shared<RegularDownloadFileCommand>(url, destinationPath);
}

void RegularDownloadFileCommand::execute()
{
    CUrlCommand::execute();
    m_downloadedFile.writeOut();
}

std::size_t RegularDownloadFileCommand::regularDownloadCallback(const char* bytes, std::size_t size, std::size_t number)
{
    return m_downloadedFile.append(bytes, size, number);
}
