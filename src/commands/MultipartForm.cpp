#define CURL_DISABLE_DEPRECATION // The form interface sends exactly the parts that the service reads.

#include "commands/MultipartForm.h"

#include <curl/curl.h>

MultipartForm::~MultipartForm()
{
    curl_formfree(m_post);
}

void MultipartForm::addText(const char* name, const QByteArray& value)
{
    curl_formadd(&m_post, &m_last, CURLFORM_COPYNAME, name, CURLFORM_COPYCONTENTS, value.constData(), CURLFORM_END);
}

void MultipartForm::addFile(const char* name, const QByteArray& fileName, const QByteArray& bytes)
{
    curl_formadd(&m_post, &m_last, CURLFORM_COPYNAME, name, CURLFORM_BUFFER, fileName.constData(), CURLFORM_BUFFERPTR,
                 bytes.constData(), CURLFORM_BUFFERLENGTH, static_cast<long>(bytes.size()), CURLFORM_CONTENTTYPE,
                 "application/octet-stream", CURLFORM_END);
}
