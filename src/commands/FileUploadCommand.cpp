#define CURL_DISABLE_DEPRECATION // CURLOPT_HTTPPOST takes the form interface's forms.

#include "commands/FileUploadCommand.h"

#include "foundation/Log.h"
#include "foundation/PathText.h"

#include <QFileInfo>
#include <curl/curl.h>

std::optional<FileUploadCommand::File> FileUploadCommand::readFile(const QString& path)
{
    File file;
    file.path = PathText::standardizedPath(path);
    const QFileInfo attributes(file.path);
    if (!attributes.exists()) {
        Log::error("Unable to get attributes of file: {}", file.path);
        return std::nullopt;
    }
    file.size = attributes.size();
    if (!file.data.read(file.path)) {
        Log::error("Unable to get data of file: {}", file.path);
        return std::nullopt;
    }
    return file;
}

FileUploadCommand::FileUploadCommand(const QString& url, const QString& user, const QString& password, File file,
                                     const QString& destFileName)
    : CUrlCommand(url), m_file(std::move(file)), m_destFileName(destFileName)
{
    m_post.addText("user", user.toUtf8());
    m_post.addText("pass", password.toUtf8());
    m_post.addText("file_size", QByteArray::number(m_file.size));
    m_post.addFile("file", destFileName.toUtf8(), m_file.data);
    m_post.addText("submit", "Submit Query");

    setPointer(PointerHolder::pointerHolderWithPtr(m_post.first()), CURLOPT_HTTPPOST);
    setPointer(PointerHolder::pointerHolderWithPtr(&MultipartForm::readBytes), CURLOPT_READFUNCTION);
    setPointer(PointerHolder::pointerHolderWithPtr(&MultipartForm::rewind), CURLOPT_PREREQFUNCTION);
    setPointer(PointerHolder::pointerHolderWithPtr(&m_post), CURLOPT_PREREQDATA);
    setNumber(0, CURLOPT_NOPROGRESS);
    setNumber(0, CURLOPT_SSL_VERIFYHOST);
    setNumber(0, CURLOPT_SSL_VERIFYPEER);
}
