#include "ui/submit/SubmitJobWindow.h"

#include "ui_SubmitJobWindow.h"

#include "ui/controls/EmptyStateOverlay.h"
#include "ui/controls/WheelGuard.h"
#include "ui/controls/WindowBinding.h"
#include "ui/submit/CaptionCompleter.h"
#include "ui/submit/SubmitJobWindowController.h"

#include <QButtonGroup>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPointer>
#include <QScreen>
#include <QShortcut>
#include <QSignalBlocker>
#include <QStandardItemModel>

namespace {

using Controller = SubmitJobWindowController;

// Leaves the cursor alone where the text is there already.
void showText(QLineEdit& field, const QString& text)
{
    if (field.text() != text)
        field.setText(text);
}

void showMessage(QLabel& label, const QString& text)
{
    label.setText(text);
    label.setVisible(!text.isEmpty());
}

} // namespace

SubmitJobWindow::SubmitJobWindow(SubmitJobWindowController& controller)
    : m_controller(controller), m_ui(std::make_unique<Ui::SubmitJobWindow>())
{
    m_ui->setupUi(this);
    for (QLabel* const note : {m_ui->transcriptMessageLabel, m_ui->mediaMessageLabel, m_ui->dateMessageLabel}) {
        note->setBackgroundRole(QPalette::ToolTipBase);
        note->setForegroundRole(QPalette::ToolTipText);
        note->setMargin(fontMetrics().height() / 4);
    }
    setUpTranscript();
    setUpMedia();
    setUpDeposition();
    setUpCaption();
    setUpFormat();
    setUpLevels();
    setUpSubmission();
    WheelGuard::guard(*this);
    connect(&m_controller, &Controller::messagesChanged, this, &SubmitJobWindow::showMessages);
    connect(&m_controller, &Controller::jobValuesChanged, this, &SubmitJobWindow::showJobValues);
    WindowBinding::bind(m_controller, *this);
    connect(&m_controller, &Controller::jobChanged, m_ui->trascriptTextField, qOverload<>(&QWidget::setFocus));
    showMessages();
    showJobValues();
    constexpr int frame = 60; // about what a window manager adds
    resize(sizeHint()
               .expandedTo({fontMetrics().averageCharWidth() * 130, fontMetrics().height() * 36})
               .boundedTo(screen()->availableSize() - QSize(0, frame)));
}

SubmitJobWindow::~SubmitJobWindow()
{
    WindowBinding::unbind(m_controller, *this);
}

// Transcript and recordings

void SubmitJobWindow::setUpTranscript()
{
    m_textView = new TranscriptTextView(this);
    m_textView->setObjectName(QStringLiteral("textView"));
    m_ui->trascriptTextField->setFieldEditor(m_textView);
    connect(m_ui->trascriptTextField, &QLineEdit::textEdited, &m_controller, &Controller::controlTextDidChange);
    connect(m_ui->trascriptTextField, &TranscriptTextField::pathEntered, this,
            [this] { m_controller.newTrascriptFilePathEntered(m_ui->trascriptTextField->text()); });
    connect(m_ui->browseTransciptButton, &QPushButton::clicked, &m_controller, &Controller::browseTransciptButton);
    const auto show = [this] { showText(*m_ui->trascriptTextField, m_controller.transcriptText()); };
    connect(&m_controller, &Controller::transcriptTextChanged, this, show);
    show();
}

void SubmitJobWindow::setUpMedia()
{
    MediaFilesTable& table = *m_ui->mediaFilesTable;
    table.setModel(&m_controller.mediaFilesModel());
    new EmptyStateOverlay(&table, tr("Drop recordings here or press Add…"));
    QHeaderView& header = *table.horizontalHeader();
    header.setSectionResizeMode(QHeaderView::ResizeToContents);
    header.setResizeContentsPrecision(100);
    table.setMinimumWidth(fontMetrics().averageCharWidth() * 48);
    header.setSectionResizeMode(MediaFilesModel::Name, QHeaderView::Stretch);
    table.validateDrop = &Controller::tableViewValidateDrop;
    table.acceptDrop = [this](const QMimeData* dropped) { return m_controller.tableViewAcceptDrop(dropped); };
    connect(&table, &MediaFilesTable::deletePressed, this, &SubmitJobWindow::deleteSelectedMediaFiles);
    connect(m_ui->addMediaFilesButton, &QPushButton::clicked, &m_controller, &Controller::browseMediaFiles);
    connect(m_ui->deleteSelectedMediaFilesButton, &QPushButton::clicked, this,
            &SubmitJobWindow::deleteSelectedMediaFiles);
    const auto showRemovable = [this] {
        m_ui->deleteSelectedMediaFilesButton->setEnabled(m_ui->mediaFilesTable->selectionModel()->hasSelection());
    };
    connect(table.selectionModel(), &QItemSelectionModel::selectionChanged, this, showRemovable);
    connect(&m_controller.mediaFilesModel(), &QAbstractItemModel::modelReset, this, showRemovable);
    connect(&m_controller, &Controller::isReadingMediaFilesChanged, this, &SubmitJobWindow::showReading);
    showRemovable();
    showReading();
}

void SubmitJobWindow::deleteSelectedMediaFiles()
{
    Job::MediaFiles selected;
    for (const QModelIndex& index : m_ui->mediaFilesTable->selectionModel()->selectedRows())
        selected.append(m_controller.mediaFilesModel().mediaFile(index.row()));
    if (!selected.isEmpty())
        m_controller.deleteSelectedMediaFiles(selected);
}

void SubmitJobWindow::showReading()
{
    m_ui->mediaBusyIndicator->setRunning(m_controller.isReadingMediaFiles());
    m_ui->mediaBusyIndicator->setToolTip(m_controller.readingText());
}

void SubmitJobWindow::showMessages()
{
    showMessage(*m_ui->transcriptMessageLabel, m_controller.transcriptMessage());
    showMessage(*m_ui->mediaMessageLabel, m_controller.mediaMessage());
    showMessage(*m_ui->dateMessageLabel, m_controller.dateMessage());
}

// Deposition, caption, format

void SubmitJobWindow::setUpDeposition()
{
    connect(m_ui->deponentFirstNameField, &QLineEdit::textEdited, &m_controller, &Controller::setDeponentFirstName);
    connect(m_ui->deponentLastNameField, &QLineEdit::textEdited, &m_controller, &Controller::setDeponentLastName);
    connect(m_ui->depositionDateEdit, &DateField::dateTyped, &m_controller, &Controller::enterDepositionDate);
    connect(m_ui->depositionDateEdit, &DateField::dateChosen, &m_controller, &Controller::setDepositionDate);
    connect(m_ui->depositionDateEdit, &DateField::stepped, &m_controller, &Controller::stepDepositionDate);
}

void SubmitJobWindow::setUpCaption()
{
    QComboBox& field = *m_ui->shortCaptionField;
    new CaptionCompleter(field); // the field's
    connect(field.lineEdit(), &QLineEdit::textEdited, &m_controller, &Controller::setShortCaption);
    connect(field.lineEdit(), &QLineEdit::editingFinished, this, &SubmitJobWindow::commitCaption);
    connect(&field, &QComboBox::textActivated, &m_controller, &Controller::newShortCaptionEntered);
    connect(&m_controller, &Controller::shortCaptionsChanged, this, &SubmitJobWindow::showCaptions);
    showCaptions();
}

void SubmitJobWindow::commitCaption()
{
    m_controller.newShortCaptionEntered(m_ui->shortCaptionField->currentText());
}

void SubmitJobWindow::showCaptions()
{
    QComboBox& field = *m_ui->shortCaptionField;
    const QSignalBlocker blocker(field);
    const QString text = field.currentText();
    CaptionCompleter::setCaptions(field, m_controller.shortCaptions());
    field.setCurrentIndex(-1);
    field.setEditText(text);
}

void SubmitJobWindow::setUpFormat()
{
    connect(m_ui->deliveryFormatComboBox, &QComboBox::activated, this, [this](int index) {
        m_controller.setDeliveryFormat(m_ui->deliveryFormatComboBox->itemData(index).toInt());
    });
    m_ui->customizeFormatTextField->setLink(tr("Set up the custom format…"), m_controller.customizeFormatUrl());
    connect(m_ui->customizeFormatTextField, &QLabel::linkActivated, &m_controller,
            &Controller::openCustomizeFormatPage);
    connect(&m_controller, &Controller::isLOGDeliveryFormatAvailableChanged, this, &SubmitJobWindow::showFormats);
    const auto showHint = [this] { m_ui->customizeFormatTextField->setVisible(m_controller.isCustomFormatSelected()); };
    connect(&m_controller, &Controller::isCustomFormatSelectedChanged, this, showHint);
    showFormats();
    showHint();
}

void SubmitJobWindow::showFormats()
{
    // In place: the list may be open.
    QComboBox& box = *m_ui->deliveryFormatComboBox;
    const QSignalBlocker blocker(box);
    const auto formats = m_controller.deliveryFormats();
    while (box.count() < formats.size())
        box.addItem(QString());
    for (int row = 0; row < box.count(); ++row) {
        const auto& format = formats.at(row);
        box.setItemText(row, format.title);
        box.setItemData(row, format.deliveryFormat);
        qobject_cast<QStandardItemModel*>(box.model())->item(row)->setEnabled(format.isSelectable);
    }
    box.setCurrentIndex(box.findData(m_controller.deliveryFormat()));
}

// Levels and prices

void SubmitJobWindow::setUpLevels()
{
    m_levels = new QButtonGroup(this);
    for (const auto& row : m_controller.levelRows()) {
        if (auto* const choice = findChild<QRadioButton*>(QStringLiteral("processingLevel%1").arg(row.tag)))
            m_levels->addButton(choice, row.tag);
    }
    connect(m_levels, &QButtonGroup::idToggled, this, [this](int tag, bool isChecked) {
        if (isChecked)
            m_controller.setSelectedLevelTag(tag);
    });
    connect(m_ui->rushCheckBox, &QCheckBox::toggled, &m_controller, &Controller::setRush);
    connect(m_ui->viaInterpreterCheckBox, &QCheckBox::toggled, &m_controller, &Controller::setViaInterpreter);
    connect(&m_controller, &Controller::levelRowsChanged, this, &SubmitJobWindow::showLevelRows);
    connect(&m_controller, &Controller::isGettingRatesInProgressChanged, this, &SubmitJobWindow::showLevels);
    showLevelRows();
}

void SubmitJobWindow::showLevelRows()
{
    const auto rows = m_controller.levelRows();
    for (QRadioButton* const choice : m_ui->ratesMatrix->findChildren<QRadioButton*>()) {
        const int tag = m_levels->id(choice);
        const auto isTag = [tag](const auto& row) { return row.tag == tag; };
        if (std::any_of(rows.begin(), rows.end(), isTag))
            continue;
        delete findChild<QLabel*>(QStringLiteral("processingLevelValue") + choice->objectName().last(1));
        delete choice;
    }
    showLevels();
}

void SubmitJobWindow::showLevels()
{
    const QSignalBlocker blocker(m_levels);
    const int selected = m_controller.selectedLevelTag();
    // The selected level may have no row any more.
    m_levels->setExclusive(false);
    for (const auto& row : m_controller.levelRows()) {
        QAbstractButton* const choice = m_levels->button(row.tag);
        choice->setText(row.title);
        choice->setChecked(row.tag == selected);
        choice->setAccessibleDescription(row.value);
        findChild<QLabel*>(QStringLiteral("processingLevelValue%1").arg(row.tag))->setText(row.value);
    }
    m_levels->setExclusive(true);
    m_ui->ratesBusyIndicator->setRunning(m_controller.isGettingRatesInProgress());
    m_ui->ratesStatusLabel->setText(m_controller.ratesStatusText());
}

// Submitting

void SubmitJobWindow::setUpSubmission()
{
    const auto submit = [this] { endEditsAnd(&Controller::submitButton); };
    connect(m_ui->submitButton, &QPushButton::clicked, this, submit);
    connect(m_ui->submitAndNewButton, &QPushButton::clicked, this,
            [this] { endEditsAnd(&Controller::submitAndNewButton); });
    connect(m_ui->cancelButton, &QPushButton::clicked, &m_controller, &Controller::cancelButton);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter})
        connect(new QShortcut(QKeySequence(Qt::CTRL | key), this), &QShortcut::activated, this, submit);
    connect(&m_controller, &Controller::isJobCouldBeSubmittedChanged, this, &SubmitJobWindow::showSubmission);
    QFont bold = m_ui->totalLabel->font();
    bold.setBold(true);
    m_ui->totalLabel->setFont(bold);
    showSubmission();
}

void SubmitJobWindow::endEditsAnd(void (SubmitJobWindowController::*action)())
{
    // An edit that ended only when the window closes would reach a job that is under way.
    QPointer<QWidget> edited = focusWidget();
    if (edited)
        edited->clearFocus();
    commitCaption();
    (m_controller.*action)();
    if (edited && isVisible() && !focusWidget())
        edited->setFocus();
}

void SubmitJobWindow::showSubmission()
{
    const bool could = m_controller.isJobCouldBeSubmitted();
    m_ui->submitButton->setEnabled(could);
    m_ui->submitAndNewButton->setEnabled(could);
    m_ui->missingLabel->setText(m_controller.missingText());
}

void SubmitJobWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        m_controller.cancelButton();
    else
        QWidget::keyPressEvent(event);
}

void SubmitJobWindow::showJobValues()
{
    setWindowTitle(m_controller.windowTitle());
    m_ui->mediaSummaryLabel->setText(m_controller.mediaSummary());
    showText(*m_ui->deponentFirstNameField, m_controller.deponentFirstName());
    showText(*m_ui->deponentLastNameField, m_controller.deponentLastName());
    showText(*m_ui->depositionDateEdit, m_controller.depositionDateText());
    m_ui->depositionDateEdit->setCalendarDate(m_controller.depositionDate());
    if (m_ui->shortCaptionField->currentText() != m_controller.shortCaption())
        m_ui->shortCaptionField->setEditText(m_controller.shortCaption());
    m_ui->deliveryFormatComboBox->setCurrentIndex(
        m_ui->deliveryFormatComboBox->findData(m_controller.deliveryFormat()));
    showLevels();
    m_ui->rushCheckBox->setChecked(m_controller.rush());
    m_ui->viaInterpreterCheckBox->setChecked(m_controller.viaInterpreter());
    m_ui->rushMultiplierLabel->setText(m_controller.rushMultiplierText());
    m_ui->totalLabel->setText(m_controller.totalText());
    showSubmission();
}
