#include "ui/log/CustomLogWindowController.h"

#include "foundation/FileLogger.h"
#include "ui/ApplicationController.h"

#include <QFileInfo>
#include <QTextBlock>
#include <QTextCursor>

namespace {

// A log is never larger; what is beyond it in a file that is no log is read piece by piece like new text.
constexpr qsizetype readAtOnce = 1024 * 1024;

} // namespace

CustomLogWindowController::CustomLogWindowController(ApplicationController& application,
                                                     std::chrono::milliseconds pollInterval)
    : m_application(application), m_pollInterval(pollInterval), m_decoder(QStringDecoder::Utf8)
{
    m_logText.setUndoRedoEnabled(false);
    m_logText.setMaximumBlockCount(maximumLines);
    m_nextRead.setSingleShot(true);
    connect(&m_nextRead, &QTimer::timeout, this, &CustomLogWindowController::refreshLog);
    awakeFromNib();
}

void CustomLogWindowController::awakeFromNib()
{
    const std::shared_ptr<FileLogger> logger = m_application.fileLogger();
    const QStringList paths = logger ? logger->sortedLogFilePaths() : QStringList();
    if (paths.isEmpty()) {
        setStateText(tr("No log is kept in this run."));
        return;
    }
    m_logPath = paths.constFirst();
    if (!m_tail.open(m_logPath)) {
        setStateText(tr("The log file cannot be opened."));
        return;
    }
    for (qsizetype read = 0; read < readAtOnce;) {
        const QByteArray data = readPiece().data;
        getData(data);
        if (data.isEmpty())
            break;
        read += data.size();
    }
}

LogFileTail::Piece CustomLogWindowController::readPiece()
{
    LogFileTail::Piece piece = m_tail.read();
    if (piece.isStartedOver) {
        // Half a character at the old end has no other half any more.
        m_decoder.resetState();
        const bool isAtLineStart = m_logText.lastBlock().length() <= 1;
        append((isAtLineStart ? QString() : QStringLiteral("\n")) +
               tr("--- The log file was full; it starts over here ---") + QLatin1Char('\n'));
    }
    return piece;
}

void CustomLogWindowController::getData(const QByteArray& data)
{
    if (data.isEmpty()) {
        setStateText(QFileInfo::exists(m_logPath)
                         ? QString()
                         : tr("The log file was removed. What is logged from now on may not appear here."));
        m_nextRead.start(m_pollInterval);
        return;
    }
    append(m_decoder.decode(data));
    m_nextRead.start(std::chrono::milliseconds(0));
}

void CustomLogWindowController::refreshLog()
{
    if (m_tail.isOpen())
        getData(readPiece().data);
}

void CustomLogWindowController::append(const QString& text)
{
    if (text.isEmpty())
        return;
    const bool wasFollowing = m_isFollowing;
    QTextCursor end(&m_logText);
    end.movePosition(QTextCursor::End);
    end.insertText(text);
    if (const int tooMany = m_logText.characterCount() - maximumCharacters; tooMany > 0) {
        // Whole lines go, unless one line is all there is.
        const QTextBlock kept = m_logText.findBlock(tooMany).next();
        QTextCursor oldest(&m_logText);
        oldest.setPosition(kept.isValid() ? kept.position() : tooMany, QTextCursor::KeepAnchor);
        oldest.removeSelectedText();
    }
    recount(); // what the search stands at has moved, too
    Q_EMIT textAppended(text);
    if (wasFollowing)
        scrollToBottom();
}

void CustomLogWindowController::setStateText(const QString& text)
{
    if (text == m_stateText)
        return;
    m_stateText = text;
    Q_EMIT stateTextChanged();
}

void CustomLogWindowController::viewMoved(bool isAtBottom, bool hasSelection)
{
    // Scrolling to the bottom empties the selection, which would take it away from a user about to copy it.
    setFollowing(isAtBottom && !hasSelection);
}

void CustomLogWindowController::setFollowing(bool following)
{
    if (following == m_isFollowing)
        return;
    m_isFollowing = following;
    Q_EMIT followingChanged(following);
}

void CustomLogWindowController::follow()
{
    setFollowing(true);
    scrollToBottom();
}

void CustomLogWindowController::scrollToBottom()
{
    Q_EMIT scrollToBottomRequested();
}

void CustomLogWindowController::setSearchText(const QString& text)
{
    if (text == m_searchText)
        return;
    m_searchText = text;
    m_matchNumber = 0;
    m_match.clearSelection();
    m_isSearching = m_isSearching || !text.isEmpty();
    m_matchCount = LogSearch(m_logText).count(m_searchText);
    Q_EMIT searchChanged();
}

void CustomLogWindowController::recount()
{
    if (m_searchText.isEmpty())
        return;
    const LogSearch search(m_logText);
    const qsizetype count = search.count(m_searchText);
    const qsizetype number =
        m_match.hasSelection()
            ? search.numberOf(m_searchText, {.position = m_match.selectionStart(),
                                             .length = m_match.selectionEnd() - m_match.selectionStart()})
            : 0;
    if (count == m_matchCount && number == m_matchNumber)
        return;
    m_matchCount = count;
    m_matchNumber = number;
    Q_EMIT searchChanged();
}

QString CustomLogWindowController::matchText() const
{
    if (m_searchText.isEmpty())
        return {};
    if (m_matchCount == 0)
        return tr("Not found");
    if (m_matchNumber > 0)
        return tr("%L1 of %L2").arg(m_matchNumber).arg(m_matchCount);
    return m_matchCount == 1 ? tr("1 match") : tr("%L1 matches").arg(m_matchCount);
}

void CustomLogWindowController::beginSearch()
{
    if (m_isSearching)
        return;
    m_isSearching = true;
    Q_EMIT searchChanged();
}

void CustomLogWindowController::escapePressed()
{
    if (!m_isSearching) {
        close();
        return;
    }
    m_isSearching = false;
    m_searchText.clear();
    m_matchCount = 0;
    m_matchNumber = 0;
    m_match.clearSelection();
    Q_EMIT searchChanged();
}

std::optional<LogSearch::Match> CustomLogWindowController::select(std::optional<LogSearch::Match> match)
{
    m_matchNumber = match ? LogSearch(m_logText).numberOf(m_searchText, *match) : 0;
    m_match = QTextCursor(&m_logText);
    m_match.setKeepPositionOnInsert(true);
    if (match) {
        m_match.setPosition(match->position);
        m_match.setPosition(match->position + match->length, QTextCursor::KeepAnchor);
    }
    Q_EMIT searchChanged();
    return match;
}

std::optional<LogSearch::Match> CustomLogWindowController::nextMatch(int selectionEnd)
{
    return select(LogSearch(m_logText).next(m_searchText, selectionEnd));
}

std::optional<LogSearch::Match> CustomLogWindowController::previousMatch(int selectionStart)
{
    return select(LogSearch(m_logText).previous(m_searchText, selectionStart));
}
