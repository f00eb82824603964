#pragma once

#include "ui/WindowController.h"
#include "ui/log/LogFileTail.h"
#include "ui/log/LogSearch.h"

#include <QStringDecoder>
#include <QTextCursor>
#include <QTextDocument>
#include <QTimer>

#include <chrono>
#include <optional>

class ApplicationController;

// The window of the log: the newest log file, whole, then whatever is written to it, followed from when the controller
// is made whether or not the window is shown. Main thread; files are read in pieces too small to hold it up.
class CustomLogWindowController : public WindowController
{
    Q_OBJECT
    Q_PROPERTY(QString logPath READ logPath NOTIFY stateTextChanged)
    Q_PROPERTY(QString stateText READ stateText NOTIFY stateTextChanged)
    Q_PROPERTY(bool following READ isFollowing NOTIFY followingChanged)
    Q_PROPERTY(bool searching READ isSearching NOTIFY searchChanged)
    Q_PROPERTY(QString searchText READ searchText WRITE setSearchText NOTIFY searchChanged)
    Q_PROPERTY(QString matchText READ matchText NOTIFY searchChanged)
public:
    // A handful of full log files; older lines go.
    static constexpr int maximumLines = 50'000;
    static constexpr int maximumCharacters = 2'000'000;

    explicit CustomLogWindowController(ApplicationController& application,
                                       std::chrono::milliseconds pollInterval = std::chrono::seconds(1));

    // The text that the view shows. It goes with the controller, so the view goes before it.
    [[nodiscard]] QTextDocument& logText() { return m_logText; }
    [[nodiscard]] QString logPath() const { return m_logPath; }
    // Why there is nothing to follow; empty while all is well.
    [[nodiscard]] QString stateText() const { return m_stateText; }

    // --- Following ---
    // New text scrolls the view to its bottom. Not while the user reads further up or has text selected.
    [[nodiscard]] bool isFollowing() const { return m_isFollowing; }
    // The user, or the view, moved.
    void viewMoved(bool isAtBottom, bool hasSelection);
    // Back to the bottom, and with it from then on.
    void follow();
    // The view's end comes into sight, with an empty selection there.
    void scrollToBottom();

    // --- Searching ---
    [[nodiscard]] bool isSearching() const { return m_isSearching; }
    [[nodiscard]] QString searchText() const { return m_searchText; }
    void setSearchText(const QString& text);
    // "2 of 7", "7 matches", or that there is none.
    [[nodiscard]] QString matchText() const;
    [[nodiscard]] bool hasMatches() const { return m_matchCount > 0; }
    void beginSearch();
    // Leaves a search; where there is none, closes the window.
    void escapePressed();
    // The match to select, seen from the view's selection; nothing when there is none.
    [[nodiscard]] std::optional<LogSearch::Match> nextMatch(int selectionEnd);
    [[nodiscard]] std::optional<LogSearch::Match> previousMatch(int selectionStart);

    // --- Reading ---
    // Opens the log file, reads what is there and goes on reading. The constructor does it.
    void awakeFromNib();
    // What a read brought. Nothing: the file is looked at again after the poll interval.
    void getData(const QByteArray& data);
    // Reads on.
    void refreshLog();

Q_SIGNALS:
    void stateTextChanged();
    void followingChanged(bool following);
    void searchChanged();
    // After it is in the text.
    void textAppended(const QString& text);
    void scrollToBottomRequested();

private:
    [[nodiscard]] LogFileTail::Piece readPiece();
    void append(const QString& text);
    void setStateText(const QString& text);
    void setFollowing(bool following);
    void recount();
    std::optional<LogSearch::Match> select(std::optional<LogSearch::Match> match);

    ApplicationController& m_application;
    const std::chrono::milliseconds m_pollInterval;
    QString m_logPath;
    QString m_stateText;
    LogFileTail m_tail;
    QStringDecoder m_decoder; // keeps the bytes of a character that a read cut
    QTextDocument m_logText;
    QTimer m_nextRead;
    bool m_isFollowing = true;
    bool m_isSearching = false;
    QString m_searchText;
    qsizetype m_matchCount = 0;
    QTextCursor m_match;         // selected last; nothing for none
    qsizetype m_matchNumber = 0; // of that, 0 for none
};
