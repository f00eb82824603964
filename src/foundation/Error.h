#pragma once

#include <QString>

// A run-time failure that somebody may have to be told of: whose it is (domain), which kind (code) and the words for
// the user. A plain value; it can be copied to any thread.
struct Error
{
    QString domain;
    int code = 0;
    QString localizedDescription;

    bool operator==(const Error&) const = default;
};

namespace ErrorDomain {

// Marks every error that the system itself raises for the user: service replies, transfers, ffmpeg's complaints.
// They are listed, never shown as an alert. Code 0: the engine's own; 1: a transfer; 2: ffmpeg's output.
inline const QString SyncBase = QStringLiteral("com.ostrova.Quillpost.SyncBaseErrorDomain");

// Errors of the platform (a folder that cannot be made, a file that cannot be written). These are shown at once.
inline const QString Platform = QStringLiteral("Platform");

} // namespace ErrorDomain
