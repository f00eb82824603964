#pragma once

#include "commands/CUrlCommand.h"
#include "commands/HeldFile.h"
#include "commands/MultipartForm.h"
#include "settings/ServiceHosts.h"

#include <optional>

// What the two upload commands share: a local file, held in memory whole, sent as a multipart form with progress
// reports. The form is built on the thread that makes the command and not changed after.
class FileUploadCommand : public CUrlCommand
{
public:
    [[nodiscard]] const QString& filePath() const { return m_file.path; }
    [[nodiscard]] const QString& destFileName() const { return m_destFileName; }
    [[nodiscard]] qint64 fileSize() const { return m_file.size; }

protected:
    struct File
    {
        QString path;
        qint64 size = 0; // from its attributes
        HeldFile data;
    };
    // Nothing for a file that cannot be read, after an error line.
    [[nodiscard]] static std::optional<File> readFile(const QString& path);

    FileUploadCommand(const QString& url, const QString& user, const QString& password, File file,
                      const QString& destFileName);

private:
    File m_file;
    QString m_destFileName;
    MultipartForm m_post; // points at m_file.data
};
