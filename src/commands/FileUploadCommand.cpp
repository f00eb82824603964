#define CURL_DISABLE_DEPRECATION // CURLOPT_HTTPPOST takes the form interface's forms.

#include "commands/FileUploadCommand.h"

#include "foundation/Log.h"
#include "foundation/PathText.h"

#include <QFile>
#include <QFileInfo>
#include <curl/curl.h>

#include <algorithm>

namespace {

// Everything there is to be read, whatever the attributes said of its size.
bool readWhole(const QString& path, qint64 size, TransferBuffer& data)
{
    constexpr std::size_t piece = 1 << 20;
    // One byte more than there should be finds the end without another piece of memory.
    const std::size_t expected = static_cast<std::size_t>(size) + 1;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) || !data.room(expected))
        return false;
    for (;;) {
        const std::size_t wanted = data.size() < expected ? std::min(expected - data.size(), piece) : piece;
        char* const place = data.room(wanted);
        const qint64 count = place ? file.read(place, static_cast<qint64>(wanted)) : -1;
        if (count <= 0)
            return count == 0;
        data.added(static_cast<std::size_t>(count));
    }
}

} // namespace

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
    if (!attributes.isFile() || !readWhole(file.path, file.size, file.data)) {
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
    m_post.addFile("file", destFileName.toUtf8(), m_file.data.view());
    m_post.addText("submit", "Submit Query");

    setPointer(PointerHolder::pointerHolderWithPtr(m_post.first()), CURLOPT_HTTPPOST);
    setPointer(PointerHolder::pointerHolderWithPtr(&MultipartForm::readBytes), CURLOPT_READFUNCTION);
    setPointer(PointerHolder::pointerHolderWithPtr(&MultipartForm::rewind), CURLOPT_PREREQFUNCTION);
    setPointer(PointerHolder::pointerHolderWithPtr(&m_post), CURLOPT_PREREQDATA);
    setNumber(0, CURLOPT_NOPROGRESS);
    setNumber(0, CURLOPT_SSL_VERIFYHOST);
    setNumber(0, CURLOPT_SSL_VERIFYPEER);
}
