#pragma once

#include "model/Job.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

// A job of the sample transcript and these recordings; with numbers of the service, and at that status with all its
// files, where one is given.
[[nodiscard]] std::shared_ptr<Job> workJob(const QString& transcript, const QStringList& media,
                                           std::optional<int> status = std::nullopt);

// Whether every file has come so far.
[[nodiscard]] bool haveAllFilesReached(const Job& job, int status);
