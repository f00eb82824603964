#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>

class HeldFile;

// The multipart form of a file upload, owned. Small values are copied into it; the file's bytes are not: they stay the
// caller's for as long as the form lives, and go out from where they are. A transfer that sends the form
// needs readBytes() as its read function, and rewind() before each of its requests. Not moved once it has a file.
class MultipartForm
{
public:
    MultipartForm() = default;
    ~MultipartForm();
    MultipartForm(const MultipartForm&) = delete;
    MultipartForm& operator=(const MultipartForm&) = delete;

    void addText(const char* name, const QByteArray& value);
    // Once. The file outlives the form.
    void addFile(const char* name, const QByteArray& fileName, const HeldFile& file);
    // For CURLOPT_HTTPPOST.
    [[nodiscard]] void* first() const { return m_post; }

    // For CURLOPT_READFUNCTION: the next of the file's bytes, or the end of the transfer where the file has changed.
    // libcurl hands it the form.
    static std::size_t readBytes(char* place, std::size_t size, std::size_t number, void* form);
    // For CURLOPT_PREREQFUNCTION, with the form as its data: a request that follows a redirection sends the file from
    // its beginning, and libcurl does not say so by itself.
    static int rewind(void* form, char* remote, char* local, int remotePort, int localPort);

private:
    struct curl_httppost* m_post = nullptr;
    struct curl_httppost* m_last = nullptr;
    const HeldFile* m_file = nullptr;
    std::size_t m_read = 0;
};
