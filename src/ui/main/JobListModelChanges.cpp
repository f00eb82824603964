// How the job list follows the engine: what is gathered, and how it is announced.

#include "engine/JobModel.h"
#include "ui/main/JobListModel.h"
#include "ui/main/JobListNode.h"
#include "ui/main/JobListSorting.h"

#include <algorithm>
#include <functional>
#include <tuple>

namespace {

// Beyond this many separate spans, rows to remove are first brought together: each span costs a view a walk over all
// its rows.
constexpr std::size_t manySpans = 8;

using Span = std::pair<int, int>; // first and last row

template <typename Rows, typename Predicate>
std::vector<Span> spansOf(const Rows& rows, const Predicate& isIn)
{
    std::vector<Span> spans;
    for (const auto& node : rows) {
        if (!isIn(*node))
            continue;
        if (!spans.empty() && spans.back().second + 1 == node->row)
            ++spans.back().second;
        else
            spans.emplace_back(node->row, node->row);
    }
    return spans;
}

} // namespace

void JobListModel::scheduleAnnouncement()
{
    if (m_timer.isActive())
        return;
    const std::chrono::milliseconds since(m_sinceAnnouncement.isValid() ? m_sinceAnnouncement.elapsed()
                                                                        : m_interval.count());
    m_timer.start(std::max(std::chrono::milliseconds(0), m_interval - since));
}

void JobListModel::announceChanges()
{
    m_timer.stop();
    m_sinceAnnouncement.start();
    gather();
    while (announceSome()) {
    }
}

void JobListModel::announceInTurns()
{
    m_sinceAnnouncement.start();
    // Rows that change all the time must not keep those behind them from their turn.
    const bool isNewBatch = m_gathered.empty();
    if (isNewBatch)
        gather();
    if (announceSome())
        m_timer.start(std::chrono::milliseconds(0));
    else if (!isNewBatch)
        scheduleAnnouncement(); // What came in meanwhile has woken nobody.
}

void JobListModel::gather()
{
    RowIds changed = m_changes->take();
    if (m_gathered.empty()) {
        m_gathered = std::move(changed);
        return;
    }
    RowIds all;
    std::set_union(m_gathered.begin(), m_gathered.end(), changed.begin(), changed.end(), std::back_inserter(all),
                   std::greater<>());
    m_gathered = std::move(all);
}

bool JobListModel::announceSome()
{
    m_gone.resize(m_gone.size() - std::min(m_gone.size(), rowsPerTurn / 4));
    if (!m_haveJobsChanged && m_gathered.empty())
        return !m_gone.empty();
    if (std::exchange(m_haveJobsChanged, false))
        followJobs();
    const auto share = static_cast<std::ptrdiff_t>(std::min(m_gathered.size(), rowsPerTurn));
    const RowIds changed(m_gathered.end() - share, m_gathered.end());
    m_gathered.erase(m_gathered.end() - share, m_gathered.end());
    announceRows(changed);
    if (m_haveJobsChanged || !m_gathered.empty())
        return true;
    sortIfNeeded();
    Q_EMIT changesAnnounced();
    return !m_gone.empty();
}

// The rows there are

std::unique_ptr<JobListModel::Node> JobListModel::makeNode(const std::shared_ptr<MediaObject>& object, Node* parent)
{
    auto node = std::make_unique<Node>();
    node->id = ++m_lastId;
    node->object = object;
    node->parent = parent;
    // Without a receiver: the signal may come on any thread while this list goes. Never disconnected, as the function
    // may just be running there; a change of a row that is gone is one that nobody finds.
    connect(object.get(), &MediaObject::rowChanged, [changes = m_changes, id = node->id] { changes->changed(id); });
    m_nodes.emplace(node->id, node.get());
    renewSortValue(*node);
    if (parent == nullptr)
        followMediaFiles(*node);
    return node;
}

void JobListModel::forget(const Node& node)
{
    for (const auto& below : node.rows)
        forget(*below);
    m_nodes.erase(node.id);
}

void JobListModel::jobArrives(const std::shared_ptr<Job>& job)
{
    // The threads of a local job may start before the next announcement; it is followed before them.
    if (!job->serverJob() && !m_arriving.contains(job.get()))
        m_arriving.emplace(job.get(), makeNode(job, nullptr));
    m_haveJobsChanged = true;
    scheduleAnnouncement();
}

std::unique_ptr<JobListModel::Node> JobListModel::takeOrMakeNode(const std::shared_ptr<MediaObject>& object,
                                                                 Node* parent)
{
    const auto arriving = parent == nullptr ? m_arriving.find(object.get()) : m_arriving.end();
    if (arriving == m_arriving.end())
        return makeNode(object, parent);
    auto node = std::move(arriving->second);
    m_arriving.erase(arriving);
    renewSortValue(*node);
    followMediaFiles(*node);
    return node;
}

void JobListModel::followJobs()
{
    const auto jobs = m_jobModel.jobs();
    followRows(nullptr, {jobs.begin(), jobs.end()});
    if (m_haveJobsChanged)
        return; // Some are left for the next turn.
    // Those that have gone before they were listed.
    for (const auto& [object, node] : m_arriving)
        forget(*node);
    m_arriving.clear();
}

void JobListModel::followMediaFiles(Node& jobNode)
{
    const auto objects = jobNode.object->childs();
    if (!std::equal(objects.begin(), objects.end(), jobNode.followed.begin(), jobNode.followed.end(),
                    [](const auto& object, const MediaObject* followed) { return object.get() == followed; }))
        followRows(&jobNode, objects);
}

void JobListModel::followRows(Node* parent, const QList<std::shared_ptr<MediaObject>>& objects)
{
    std::unordered_set<const MediaObject*> wanted;
    wanted.reserve(static_cast<std::size_t>(objects.size()));
    for (const auto& object : objects)
        wanted.insert(object.get());
    removeRowsBut(parent, wanted);

    std::unordered_map<const MediaObject*, Node*> known;
    for (const auto& node : rowsBelow(parent))
        known.emplace(node->object.get(), node.get());
    Nodes added;
    int place = 0;
    std::size_t made = 0;
    for (const auto& object : objects) {
        const bool isTurnOver = parent == nullptr && made >= rowsPerTurn;
        if (isTurnOver && !known.contains(object.get())) {
            m_haveJobsChanged = true; // The rest in the next turn.
            continue;
        }
        const auto [entry, isNew] = known.try_emplace(object.get(), nullptr);
        if (isNew) {
            added.push_back(takeOrMakeNode(object, parent));
            entry->second = added.back().get();
            made += 1 + added.back()->rows.size();
        }
        // An object that comes twice has one row, in its first place.
        if (wanted.erase(object.get()) > 0)
            entry->second->engineOrder = place++;
    }
    appendRows(parent, std::move(added));
    if (parent != nullptr) {
        parent->followed.clear();
        for (const auto& object : objects)
            parent->followed.push_back(object.get());
    }
    m_isOrderInDoubt = true;
}

void JobListModel::appendRows(Node* parent, Nodes added)
{
    if (added.empty())
        return;
    Nodes& rows = rowsBelow(parent);
    const std::size_t first = rows.size();
    // A job that comes to the list brings its files with it.
    const bool isKnown = parent == nullptr || parent->isListed;
    if (isKnown)
        beginInsertRows(indexOf(parent), static_cast<int>(first), static_cast<int>(first + added.size()) - 1);
    for (auto& node : added) {
        node->isListed = true;
        rows.push_back(std::move(node));
    }
    JobListSorting::number(rows, first);
    if (isKnown)
        endInsertRows();
}

void JobListModel::removeRowsBut(Node* parent, const std::unordered_set<const MediaObject*>& kept)
{
    const auto isGone = [&](const Node& node) { return !kept.contains(node.object.get()); };
    Nodes& rows = rowsBelow(parent);
    auto spans = spansOf(rows, isGone);
    if (spans.size() > manySpans) {
        rearrange([&] {
            std::stable_partition(rows.begin(), rows.end(), [&](const auto& node) { return !isGone(*node); });
            JobListSorting::number(rows);
        });
        spans = spansOf(rows, isGone);
    }
    for (auto span = spans.rbegin(); span != spans.rend(); ++span)
        removeSpan(parent, span->first, span->second);
}

void JobListModel::removeSpan(Node* parent, int first, int last)
{
    Nodes& rows = rowsBelow(parent);
    beginRemoveRows(indexOf(parent), first, last);
    for (int row = first; row <= last; ++row)
        forget(*rows[static_cast<std::size_t>(row)]);
    std::move(rows.begin() + first, rows.begin() + last + 1, std::back_inserter(m_gone));
    rows.erase(rows.begin() + first, rows.begin() + last + 1);
    JobListSorting::number(rows, static_cast<std::size_t>(first));
    endRemoveRows();
}

// What they show

std::vector<JobListModel::Node*> JobListModel::arranged(const RowIds& ids, bool areJobs) const
{
    std::vector<Node*> nodes;
    for (const RowChanges::RowId id : ids) {
        const auto found = m_nodes.find(id);
        if (found == m_nodes.end())
            continue;
        Node* const node = found->second;
        const bool isListed = node->parent == nullptr ? node->isListed : node->parent->isListed;
        if (isListed && (node->parent == nullptr) == areJobs)
            nodes.push_back(node);
    }
    std::sort(nodes.begin(), nodes.end(), [](const Node* a, const Node* b) {
        return std::tuple(a->parent != nullptr ? a->parent->row : 0, a->row) <
               std::tuple(b->parent != nullptr ? b->parent->row : 0, b->row);
    });
    return nodes;
}

void JobListModel::announceRows(const RowIds& changed)
{
    const std::vector<Node*> jobs = arranged(changed, /*areJobs=*/true);
    for (Node* const job : jobs)
        followMediaFiles(*job);
    announceSpans(jobs);
    announceSpans(arranged(changed, /*areJobs=*/false));
}

void JobListModel::announceSpans(const std::vector<Node*>& nodes)
{
    for (std::size_t first = 0; first < nodes.size();) {
        std::size_t last = first;
        renewSortValue(*nodes[first]);
        while (last + 1 < nodes.size() && nodes[last + 1]->parent == nodes[first]->parent &&
               nodes[last + 1]->row == nodes[last]->row + 1)
            renewSortValue(*nodes[++last]);
        Q_EMIT dataChanged(indexOf(nodes[first]), indexOf(nodes[last], jobListColumnCount - 1));
        first = last + 1;
    }
}
