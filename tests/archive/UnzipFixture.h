#pragma once

#include "CraftedZip.h"

#include "archive/ZipArchive.h"
#include "support/TemporaryHome.h"

#include <QString>
#include <QStringList>

#include <memory>

// Keeps what it is told and answers what it is set to.
class RecordingDelegate : public ZipArchiveDelegate
{
public:
    void ErrorMessage(const QString& message) override { messages += message; }
    [[nodiscard]] bool OverWriteOperation(const QString& path) override
    {
        asked += path;
        return answer;
    }

    QStringList messages;
    QStringList asked;
    bool answer = true;
};

// A home with an archive object and its delegate, and a destination folder "out" that does not exist at first.
class UnzipFixture : public TemporaryHome
{
protected:
    UnzipFixture() { archive.setDelegate(delegate); }

    // Writes the archive, opens it, extracts it into "out" and closes it.
    bool unzip(const QByteArray& zip, bool overWrite = true)
    {
        if (!archive.UnzipOpenFile(writeFile(QStringLiteral("a.zip"), zip)))
            return false;
        const bool success = archive.UnzipFileTo(path(QStringLiteral("out")), overWrite);
        EXPECT_TRUE(archive.UnzipCloseFile());
        return success;
    }
    QByteArray unzipped(const char* name) const { return readFile(out(name)); }
    QString out(const char* name) const { return path(QStringLiteral("out/") + QString::fromUtf8(name)); }

    std::shared_ptr<RecordingDelegate> delegate = std::make_shared<RecordingDelegate>();
    ZipArchive archive;
};

inline const QString cannotOpenOutput = QStringLiteral("Failed to open output file for writing");
