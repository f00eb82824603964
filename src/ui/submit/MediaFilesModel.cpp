#include "ui/submit/MediaFilesModel.h"

#include "ui/controls/PlainText.h"
#include "ui/submit/ChangeRelay.h"
#include "ui/submit/RateTexts.h"

#include <QLocale>

#include <algorithm>
#include <iterator>

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

void MediaFilesModel::setHeld(bool held)
{
    m_isHeld = held;
    followFiles();
}

// What is the same at both ends stays; what lies between is replaced.
void MediaFilesModel::followFiles()
{
    if (m_isHeld)
        return;
    Job::MediaFiles files = m_job ? m_job->mediaFiles() : Job::MediaFiles();
    std::stable_sort(files.begin(), files.end(), isBefore);
    const qsizetype shorter = std::min(files.size(), m_files.size());
    qsizetype head = 0;
    while (head < shorter && files.at(head) == m_files.at(head))
        ++head;
    qsizetype tail = 0;
    while (tail < shorter - head && files.at(files.size() - 1 - tail) == m_files.at(m_files.size() - 1 - tail))
        ++tail;
    removeRowsFrom(head, m_files.size() - head - tail);
    insertRowsOf(files, head, files.size() - head - tail);
}

void MediaFilesModel::removeRowsFrom(qsizetype first, qsizetype count)
{
    if (count == 0)
        return;
    beginRemoveRows({}, static_cast<int>(first), static_cast<int>(first + count - 1));
    m_files.remove(first, count);
    m_fileRelays.erase(m_fileRelays.begin() + first, m_fileRelays.begin() + first + count);
    endRemoveRows();
}

void MediaFilesModel::insertRowsOf(const Job::MediaFiles& files, qsizetype first, qsizetype count)
{
    if (count == 0)
        return;
    beginInsertRows({}, static_cast<int>(first), static_cast<int>(first + count - 1));
    m_files = files;
    std::vector<std::unique_ptr<ChangeRelay>> relays;
    for (qsizetype row = first; row < first + count; ++row)
        relays.push_back(relayOf(files.at(row)));
    m_fileRelays.insert(m_fileRelays.begin() + first, std::make_move_iterator(relays.begin()),
                        std::make_move_iterator(relays.end()));
    endInsertRows();
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
