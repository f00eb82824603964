// The file of saved jobs; the second piece is the one before it.
#include "FuzzTarget.h"

#include "engine/SavedState.h"

#include <QJsonArray>

using FuzzTarget::require;

namespace {

QJsonArray encoded(const SavedState::Contents& contents)
{
    QJsonArray archives;
    for (const auto& job : contents.jobs) {
        require(job && job->encode(), "a job that was read can be saved");
        archives.append(*job->encode());
    }
    return archives;
}

} // namespace

FUZZ_TARGET(SavedState)
{
    const QList<QByteArray> files = FuzzTarget::pieces(input);
    const QString path = SavedState::filePath(FuzzTarget::emptyFolder(), QStringLiteral("a/../b"));
    FuzzTarget::writeFile(path, files.at(0));
    const SavedState::Contents contents = SavedState::read(path);
    const QJsonArray archives = encoded(contents);
    require(encoded(SavedState::read(path)) == archives, "reading twice gives the same");
    require(contents.submittedPerhaps.size() <= contents.jobs.size(), "only jobs of the file are doubted");

    if (files.size() > 1) {
        FuzzTarget::writeFile(SavedState::previousPath(path), files.at(1));
        const SavedState::Contents previous = SavedState::read(SavedState::previousPath(path));
        const SavedState::Contents good = SavedState::readLastGood(path);
        require(good.problem == contents.problem, "the problem is the file's own");
        require(good.jobs.size() >= contents.jobs.size(), "no job is lost to the file before");
        require(!contents.problem || good.jobs.size() >= previous.jobs.size(), "the file before is made use of");
    }

    require(!SavedState::write(path, contents.jobs), "jobs can be saved");
    const SavedState::Contents again = SavedState::read(path);
    require(!again.problem, "what was saved is no problem");
    QJsonArray kept;
    for (const auto& job : contents.jobs)
        if (SavedState::isKept(*job))
            kept.append(*job->encode());
    require(encoded(again) == kept, "what was saved is read as it was");
}
