#include "ui/log/CustomLogWindow.h"

#include "ui_CustomLogWindow.h"

#include "ui/controls/QuillpostIcons.h"
#include "ui/controls/WindowBinding.h"
#include "ui/log/CustomLogWindowController.h"

#include <QFontDatabase>
#include <QPlainTextDocumentLayout>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QShortcut>
#include <QTextBlock>

namespace {

// More than a view full; one endless line must not hold up the drawing.
constexpr qsizetype mostMarks = 2000;

QColor markColor(const QPalette& palette)
{
    const QColor base = palette.color(QPalette::Base);
    const QColor highlight = palette.color(QPalette::Active, QPalette::Highlight);
    constexpr float part = 0.35F;
    return QColor::fromRgbF(base.redF() + (highlight.redF() - base.redF()) * part,
                            base.greenF() + (highlight.greenF() - base.greenF()) * part,
                            base.blueF() + (highlight.blueF() - base.blueF()) * part);
}

} // namespace

CustomLogWindow::CustomLogWindow(CustomLogWindowController& controller, QWidget* parent)
    : QWidget(parent), m_controller(controller), m_ui(std::make_unique<Ui::CustomLogWindow>())
{
    m_ui->setupUi(this);
    setWindowIcon(QuillpostIcons::application());
    resize(fontMetrics().averageCharWidth() * 120, fontMetrics().height() * 34);
    setUpText();
    setUpSearch();
    setUpButtons();
    WindowBinding::bind(m_controller, *this);
    showState();
    showSearch();
    m_ui->logTextView->setFocus();
}

CustomLogWindow::~CustomLogWindow()
{
    WindowBinding::unbind(m_controller, *this);
}

void CustomLogWindow::setUpText()
{
    QTextDocument& text = m_controller.logText();
    QPlainTextEdit& view = *m_ui->logTextView;
    const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    text.setDefaultFont(fixed);
    text.setDocumentLayout(new QPlainTextDocumentLayout(&text));
    view.setDocument(&text);
    view.setFont(fixed);

    QScrollBar& bar = *view.verticalScrollBar();
    connect(&bar, &QScrollBar::valueChanged, this, [this] {
        m_topLine = m_ui->logTextView->cursorForPosition(QPoint());
        tellWhereViewIs();
    });
    connect(&view, &QPlainTextEdit::selectionChanged, this, [this] {
        guardSelection();
        tellWhereViewIs();
    });
    connect(&bar, &QScrollBar::rangeChanged, this, [this] {
        if (m_controller.isFollowing())
            scrollToBottom();
    });
    connect(&view, &QPlainTextEdit::updateRequest, this, [this](const QRect&, int scrolled) {
        if (scrolled != 0)
            markMatches();
    });
    connect(&m_controller, &CustomLogWindowController::scrollToBottomRequested, this, &CustomLogWindow::scrollToBottom);
    connect(&m_controller, &CustomLogWindowController::textAppended, this, [this] {
        keepPlace();
        markMatches();
    });
}

void CustomLogWindow::setUpSearch()
{
    connect(m_ui->searchField, &QLineEdit::textEdited, this, [this](const QString& text) {
        m_controller.setSearchText(text);
        // What is found while typing begins where the search stands, so that it does not run away with each letter.
        if (!text.isEmpty())
            select(m_controller.nextMatch(m_ui->logTextView->textCursor().selectionStart()));
    });
    // Clearing with the field's own button is an edit too, but is told of as a change alone.
    connect(m_ui->searchField, &QLineEdit::textChanged, &m_controller, &CustomLogWindowController::setSearchText);
    connect(m_ui->searchField, &QLineEdit::returnPressed, this, [this] { find(true); });
    connect(m_ui->nextButton, &QPushButton::clicked, this, [this] { find(true); });
    connect(m_ui->previousButton, &QPushButton::clicked, this, [this] { find(false); });
    connect(&m_controller, &CustomLogWindowController::searchChanged, this, &CustomLogWindow::showSearch);

    const auto shortcut = [this](const QKeySequence& keys, auto action) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, action);
    };
    shortcut(QKeySequence::Find, [this] {
        m_controller.beginSearch();
        m_ui->searchField->setFocus(Qt::ShortcutFocusReason);
        m_ui->searchField->selectAll();
    });
    shortcut(Qt::Key_F3, [this] { find(true); });
    shortcut(Qt::SHIFT | Qt::Key_F3, [this] { find(false); });
    shortcut(Qt::Key_Escape, [this] {
        m_controller.escapePressed();
        m_ui->logTextView->setFocus(Qt::ShortcutFocusReason);
    });
}

void CustomLogWindow::setUpButtons()
{
    QSizePolicy keepsPlace = m_ui->followButton->sizePolicy();
    keepsPlace.setRetainSizeWhenHidden(true);
    m_ui->followButton->setSizePolicy(keepsPlace);
    m_ui->followButton->setVisible(!m_controller.isFollowing());
    connect(m_ui->followButton, &QPushButton::clicked, &m_controller, &CustomLogWindowController::follow);
    connect(&m_controller, &CustomLogWindowController::followingChanged, m_ui->followButton, &QWidget::setHidden);
    connect(m_ui->closeButton, &QPushButton::clicked, this, &QWidget::close);
    connect(&m_controller, &CustomLogWindowController::stateTextChanged, this, &CustomLogWindow::showState);
}

void CustomLogWindow::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (m_controller.isFollowing())
        scrollToBottom();
}

// New text behind a selection that reaches to the end is not selected with it. Without a selection the cursor goes
// along whole: of one that stays behind, the anchor would go and so select what comes.
void CustomLogWindow::guardSelection()
{
    QTextCursor cursor = m_ui->logTextView->textCursor();
    if (m_isScrolling || cursor.keepPositionOnInsert() == cursor.hasSelection())
        return;
    const QScopedValueRollback scrolling(m_isScrolling, true);
    cursor.setKeepPositionOnInsert(cursor.hasSelection());
    m_ui->logTextView->setTextCursor(cursor);
}

// Where the oldest lines go, those that the user reads move up in the text; the view moves with them.
void CustomLogWindow::keepPlace()
{
    if (m_controller.isFollowing() || m_topLine.isNull())
        return;
    const QScopedValueRollback scrolling(m_isScrolling, true);
    m_ui->logTextView->verticalScrollBar()->setValue(m_topLine.block().firstLineNumber());
}

void CustomLogWindow::tellWhereViewIs()
{
    if (m_isScrolling)
        return;
    const QScrollBar& bar = *m_ui->logTextView->verticalScrollBar();
    m_controller.viewMoved(bar.value() == bar.maximum(), m_ui->logTextView->textCursor().hasSelection());
}

void CustomLogWindow::scrollToBottom()
{
    const QScopedValueRollback scrolling(m_isScrolling, true);
    QPlainTextEdit& view = *m_ui->logTextView;
    QTextCursor end = view.textCursor();
    end.movePosition(QTextCursor::End);
    end.setKeepPositionOnInsert(false);
    view.setTextCursor(end);
    view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum());
    view.horizontalScrollBar()->setValue(view.horizontalScrollBar()->minimum());
}

void CustomLogWindow::showState()
{
    m_ui->stateLabel->setText(m_controller.stateText());
    m_ui->stateLabel->setVisible(!m_controller.stateText().isEmpty());
    m_ui->pathLabel->setText(m_controller.logPath());
}

void CustomLogWindow::showSearch()
{
    if (m_ui->searchField->text() != m_controller.searchText())
        m_ui->searchField->setText(m_controller.searchText());
    m_ui->matchLabel->setText(m_controller.matchText());
    m_ui->matchLabel->setVisible(!m_controller.matchText().isEmpty());
    m_ui->nextButton->setEnabled(m_controller.hasMatches());
    m_ui->previousButton->setEnabled(m_controller.hasMatches());
    markMatches();
}

void CustomLogWindow::find(bool isForward)
{
    const QTextCursor cursor = m_ui->logTextView->textCursor();
    select(isForward ? m_controller.nextMatch(cursor.selectionEnd())
                     : m_controller.previousMatch(cursor.selectionStart()));
}

void CustomLogWindow::select(const std::optional<LogSearch::Match>& match)
{
    if (!match)
        return;
    QTextCursor cursor = m_ui->logTextView->textCursor();
    cursor.setPosition(match->position);
    cursor.setPosition(match->position + match->length, QTextCursor::KeepAnchor);
    m_ui->logTextView->setTextCursor(cursor);
    m_ui->logTextView->ensureCursorVisible();
    markMatches();
}

void CustomLogWindow::markMatches()
{
    QPlainTextEdit& view = *m_ui->logTextView;
    QList<QTextEdit::ExtraSelection> marks;
    const QString text = m_controller.searchText();
    if (!text.isEmpty()) {
        const QTextCursor selected = view.textCursor();
        const int last = view.cursorForPosition(view.viewport()->rect().bottomRight()).block().blockNumber();
        QTextBlock line = view.cursorForPosition(QPoint()).block();
        for (; line.isValid() && line.blockNumber() <= last && marks.size() < mostMarks; line = line.next()) {
            for (const LogSearch::Match& match : LogSearch::matchesOf(line, text, mostMarks)) {
                QTextEdit::ExtraSelection mark;
                mark.cursor = QTextCursor(line);
                mark.cursor.setPosition(match.position);
                mark.cursor.setPosition(match.position + match.length, QTextCursor::KeepAnchor);
                const bool isCurrent = selected.hasSelection() && selected.selectionStart() == match.position;
                // The search field has the focus, and many styles draw a selection without it too faintly to find.
                mark.format.setBackground(isCurrent ? view.palette().color(QPalette::Active, QPalette::Highlight)
                                                    : markColor(view.palette()));
                mark.format.setForeground(
                    view.palette().color(QPalette::Active, isCurrent ? QPalette::HighlightedText : QPalette::Text));
                marks.append(mark);
            }
        }
    }
    if (!marks.isEmpty() || !view.extraSelections().isEmpty())
        view.setExtraSelections(marks);
}
