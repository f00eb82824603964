#pragma once

#include <QByteArray>
#include <QString>

// The multipart form of a file upload, owned. Small values are copied into it; the file's bytes are not: they stay the
// caller's, unchanged, for as long as the form lives.
class MultipartForm
{
public:
    MultipartForm() = default;
    ~MultipartForm();
    MultipartForm(const MultipartForm&) = delete;
    MultipartForm& operator=(const MultipartForm&) = delete;

    void addText(const char* name, const QByteArray& value);
    void addFile(const char* name, const QByteArray& fileName, const QByteArray& bytes);
    // For CURLOPT_HTTPPOST.
    [[nodiscard]] void* first() const { return m_post; }

private:
    struct curl_httppost* m_post = nullptr;
    struct curl_httppost* m_last = nullptr;
};
