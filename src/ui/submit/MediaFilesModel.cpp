#include "ui/submit/MediaFilesModel.h"

#include "ui/controls/PlainText.h"
#include "ui/submit/ChangeRelay.h"
#include "ui/submit/RateTexts.h"

#include <QLocale>

#include <algorithm>
#include <set>

MediaFilesModel::MediaFilesModel(QObject* parent) : QAbstractTableModel(parent) {}

MediaFilesModel::~MediaFilesModel() = default;

void MediaFilesModel::setJob(const std::shared_ptr<Job>& job)
{
    m_jobRelay.reset();
    m_job = job;
    if (m_job) {
        m_jobRelay = std::make_unique<ChangeRelay>([this] { followFiles(); });
        m_jobRelay->follow(*m_job, &Job::mediaFilesChanged);
    }
    followFiles();
}

int MediaFilesModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_files.size());
}

int MediaFilesModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : Size + 1;
}

QVariant MediaFilesModel::data(const QModelIndex& index, int role) const
{
    const auto file = m_files.value(index.row());
    if (!file || !index.isValid())
        return {};
    if (role == Qt::TextAlignmentRole && index.column() != Name)
        return QVariant::fromValue(Qt::Alignment(Qt::AlignRight | Qt::AlignVCenter));
    if (role == Qt::ToolTipRole)
        return PlainText::toolTip(file->sourceFilePath());
    if (role != Qt::DisplayRole)
        return {};
    switch (index.column()) {
    case Name:
        return file->name();
    case Duration:
        return RateTexts::duration(file->sourceDuration());
    case Size: {
        const auto size = file->sourceFileSizeInBytes();
        return size ? QLocale().formattedDataSize(*size) : RateTexts::unknown;
    }
    default:
        return {};
    }
}

QVariant MediaFilesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(
            Qt::Alignment((section == Name ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter));
    if (role != Qt::DisplayRole)
        return {};
    switch (section) {
    case Name:
        return tr("Recording");
    case Duration:
        return tr("Length");
    case Size:
        return tr("Size");
    default:
        return {};
    }
}

void MediaFilesModel::followFiles()
{
    const Job::MediaFiles files = m_job ? m_job->mediaFiles() : Job::MediaFiles();
    removeRowsNotIn(files);
    if (insertRowsOf(files))
        return;
    // Another order, as at submission.
    beginResetModel();
    m_files = files;
    m_fileRelays.clear();
    for (const auto& file : m_files)
        m_fileRelays.push_back(relayOf(file));
    endResetModel();
}

void MediaFilesModel::removeRowsNotIn(const Job::MediaFiles& files)
{
    const std::set<std::shared_ptr<MediaFile>> kept(files.begin(), files.end());
    for (int row = rowCount() - 1; row >= 0; --row) {
        if (kept.contains(m_files.at(row)))
            continue;
        beginRemoveRows({}, row, row);
        m_files.removeAt(row);
        m_fileRelays.erase(m_fileRelays.begin() + row);
        endRemoveRows();
    }
}

bool MediaFilesModel::insertRowsOf(const Job::MediaFiles& files)
{
    for (int row = 0; row < files.size(); ++row) {
        const auto& file = files.at(row);
        if (row < m_files.size() && m_files.at(row) == file)
            continue;
        if (m_files.contains(file))
            return false;
        beginInsertRows({}, row, row);
        m_files.insert(row, file);
        m_fileRelays.insert(m_fileRelays.begin() + row, relayOf(file));
        endInsertRows();
    }
    return m_files.size() == files.size();
}

std::unique_ptr<ChangeRelay> MediaFilesModel::relayOf(const std::shared_ptr<MediaFile>& file)
{
    auto relay = std::make_unique<ChangeRelay>([this, raw = file.get()] { announce(raw); });
    relay->follow<MediaObject>(*file, &MediaObject::rowChanged);
    return relay;
}

void MediaFilesModel::announce(const MediaFile* file)
{
    const auto found =
        std::find_if(m_files.cbegin(), m_files.cend(), [&](const auto& present) { return present.get() == file; });
    if (found == m_files.cend())
        return;
    const int row = static_cast<int>(found - m_files.cbegin());
    Q_EMIT dataChanged(index(row, 0), index(row, Size));
}
