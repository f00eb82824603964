#define CURL_DISABLE_DEPRECATION // The form interface sends exactly the parts that the service reads.

#include "commands/MultipartForm.h"

#include "commands/HeldFile.h"
#include "foundation/Log.h"

#include <curl/curl.h>

#include <algorithm>

MultipartForm::~MultipartForm()
{
    curl_formfree(m_post);
}

void MultipartForm::addText(const char* name, const QByteArray& value)
{
    curl_formadd(&m_post, &m_last, CURLFORM_COPYNAME, name, CURLFORM_COPYCONTENTS, value.constData(), CURLFORM_END);
}

// Not as CURLFORM_BUFFER, which libcurl copies whole for the transfer: each upload would hold its file twice.
void MultipartForm::addFile(const char* name, const QByteArray& fileName, const HeldFile& file)
{
    m_file = &file;
    if (file.size() == 0) { // A length of 0 would mean that libcurl does not know it.
        curl_formadd(&m_post, &m_last, CURLFORM_COPYNAME, name, CURLFORM_BUFFER, fileName.constData(),
                     CURLFORM_BUFFERPTR, "", CURLFORM_BUFFERLENGTH, 0L, CURLFORM_CONTENTTYPE,
                     "application/octet-stream", CURLFORM_END);
        return;
    }
    curl_formadd(&m_post, &m_last, CURLFORM_COPYNAME, name, CURLFORM_STREAM, this, CURLFORM_CONTENTLEN,
                 static_cast<curl_off_t>(file.size()), CURLFORM_FILENAME, fileName.constData(), CURLFORM_CONTENTTYPE,
                 "application/octet-stream", CURLFORM_END);
}

std::size_t MultipartForm::readBytes(char* place, std::size_t size, std::size_t number, void* form)
{
    auto* const self = static_cast<MultipartForm*>(form);
    const std::size_t count = std::min(size * number, self->m_file->size() - self->m_read);
    if (!self->m_file->copy(self->m_read, place, count)) {
        Log::error("The file was changed while it was uploaded");
        return CURL_READFUNC_ABORT;
    }
    self->m_read += count;
    return count;
}

int MultipartForm::rewind(void* form, char* /*remote*/, char* /*local*/, int /*remotePort*/, int /*localPort*/)
{
    static_cast<MultipartForm*>(form)->m_read = 0;
    return CURL_PREREQFUNC_OK;
}
