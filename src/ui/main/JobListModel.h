#pragma once

#include "ui/main/JobListColumn.h"
#include "ui/main/RowChanges.h"

#include <QAbstractItemModel>
#include <QElapsedTimer>
#include <QTimer>

#include <chrono>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

class Job;
class JobModel;
class MediaFile;
class MediaObject;
struct JobListNode;

// The engine's jobs as an outline: jobs, and below each its media files in the job's order. It follows what the engine
// and every row's object announce, on any thread, gathers it, and announces it on the main thread at most once in an
// interval: rows inserted, rows removed, spans of rows changed. It is never reset.
//
// Sorting is by the value below what is shown; rows that are equal keep the engine's order either way. Column -1 is
// the engine's order. Every index has an internal id of its own. The engine must outlive the model. Main thread.
class JobListModel : public QAbstractItemModel
{
    Q_OBJECT
public:
    enum Role : int {
        // The value below what is displayed: a number, or a text that is compared as people do.
        SortRole = Qt::UserRole + 1,
        // Progress, in the unit of the phase of work.
        TotalValueRole,
        ProcessedValueRole,
        ProgressVisibleRole,
    };

    explicit JobListModel(JobModel& jobModel);
    ~JobListModel() override;

    // The least time between two announcements.
    void setGatheringInterval(std::chrono::milliseconds interval) { m_interval = interval; }
    // Announces now what is gathered, all of it.
    void announceChanges();
    // So many rows are announced in one turn of the main loop; then input and drawing have theirs.
    static constexpr std::size_t rowsPerTurn = 5000;

    // Null for an index that is no row.
    [[nodiscard]] std::shared_ptr<MediaObject> mediaObject(const QModelIndex& index) const;
    // The jobs as they are sorted. Null for a row that is none.
    [[nodiscard]] std::shared_ptr<Job> arrangedJob(int row) const;
    // In the engine's order, as last announced.
    [[nodiscard]] QVariantList jobStatuses() const;

    [[nodiscard]] QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex& child) const override;
    using QObject::parent;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role = Qt::DisplayRole) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

Q_SIGNALS:
    // After the signals of one announcement.
    void changesAnnounced();

private:
    using Node = JobListNode;
    using Nodes = std::vector<std::unique_ptr<JobListNode>>;
    using RowIds = std::vector<RowChanges::RowId>;

    [[nodiscard]] static Node* nodeOf(const QModelIndex& index);
    [[nodiscard]] QModelIndex indexOf(const Node* node, int column = 0) const;
    // Those of the jobs for none.
    [[nodiscard]] Nodes& rowsBelow(Node* parent);

    void scheduleAnnouncement();
    void announceInTurns();
    // One turn's share. False when nothing is left.
    bool announceSome();
    void gather();
    [[nodiscard]] std::unique_ptr<Node> makeNode(const std::shared_ptr<MediaObject>& object, Node* parent);
    void forget(const Node& node);
    void jobArrives(const std::shared_ptr<Job>& job);
    void followJobs();
    [[nodiscard]] std::unique_ptr<Node> takeOrMakeNode(const std::shared_ptr<MediaObject>& object, Node* parent);
    void followMediaFiles(Node& jobNode);
    void followRows(Node* parent, const QList<std::shared_ptr<MediaObject>>& objects);
    void appendRows(Node* parent, Nodes added);
    void removeRowsBut(Node* parent, const std::unordered_set<const MediaObject*>& kept);
    void removeSpan(Node* parent, int first, int last);
    void announceRows(const RowIds& changed);
    void announceSpans(const std::vector<Node*>& nodes);
    [[nodiscard]] std::vector<Node*> arranged(const RowIds& ids, bool areJobs) const;

    void renewSortValue(Node& node);
    void sortIfNeeded();
    // Moves rows with `move`, and with them every index that somebody keeps.
    void rearrange(const std::function<void()>& move);

    JobModel& m_jobModel;
    const std::shared_ptr<RowChanges> m_changes = std::make_shared<RowChanges>();
    Nodes m_jobs;
    std::unordered_map<RowChanges::RowId, Node*> m_nodes;
    RowChanges::RowId m_lastId = 0;

    bool m_haveJobsChanged = false;
    // Followed already, to be listed with the next announcement.
    std::unordered_map<const MediaObject*, std::unique_ptr<JobListNode>> m_arriving;
    // Changed and not announced yet, the last first; by id, which keeps most jobs with their files and neighbours.
    RowIds m_gathered;
    // Removed, and to be let go: thousands of objects take their time.
    Nodes m_gone;

    int m_sortColumn = -1;
    Qt::SortOrder m_sortOrder = Qt::AscendingOrder;
    bool m_isOrderInDoubt = false;

    std::chrono::milliseconds m_interval{200};
    QTimer m_timer;
    QElapsedTimer m_sinceAnnouncement;
};
