#include "ui/preferences/PreferencesWindow.h"

#include "ui_PreferencesWindow.h"

#include "ui/controls/QuillpostIcons.h"
#include "ui/controls/WheelGuard.h"
#include "ui/controls/WindowBinding.h"
#include "ui/preferences/PreferencesWindowController.h"

#include <QEvent>
#include <QShortcut>
#include <QSignalBlocker>
#include <QStyle>
#include <QStyleOptionButton>

namespace {

constexpr int widthInCharacters = 80;
constexpr int numberWidthInCharacters = 10;
constexpr double hintFontScale = 0.9;

// Shows a value without announcing it as the user's.
void showValue(QSpinBox* box, int value, const PreferencesWindowController::Range& range)
{
    const QSignalBlocker blocker(box);
    box->setRange(range.least, range.most);
    box->setValue(value);
}

// How far a check box's text stands from its edge.
int textIndent(const QCheckBox* box)
{
    QStyleOptionButton option;
    option.initFrom(box);
    return box->style()->pixelMetric(QStyle::PM_IndicatorWidth, &option, box) +
           box->style()->pixelMetric(QStyle::PM_CheckBoxLabelSpacing, &option, box);
}

} // namespace

PreferencesWindow::PreferencesWindow(PreferencesWindowController& controller)
    : m_controller(controller), m_ui(std::make_unique<Ui::PreferencesWindow>())
{
    m_ui->setupUi(this);
    setWindowIcon(QuillpostIcons::application());
    prepareControls();
    bindDeliveryFolder();
    bindNumbers();
    bindSwitches();
    bindProblem();
    connect(m_ui->closeButton, &QPushButton::clicked, &m_controller, &PreferencesWindowController::close);
    const auto* escape = new QShortcut(QKeySequence::Cancel, this);
    connect(escape, &QShortcut::activated, &m_controller, &PreferencesWindowController::close);
    WindowBinding::bind(m_controller, *this);
    WheelGuard::guard(*this);
    // A long path is elided rather than asked room for.
    resize(minimumWidth(), layout()->totalHeightForWidth(minimumWidth()));
}

PreferencesWindow::~PreferencesWindow()
{
    WindowBinding::unbind(m_controller, *this);
}

void PreferencesWindow::prepareControls()
{
    setMinimumWidth(fontMetrics().averageCharWidth() * widthInCharacters);
    for (QSpinBox* box : {m_ui->ffmpegBox, m_ui->uploadsBox})
        box->setMinimumWidth(fontMetrics().averageCharWidth() * numberWidthInCharacters);
    for (QLabel* hint : {m_ui->deliveryFolderHint, m_ui->ffmpegHint, m_ui->uploadsHint, m_ui->autoDeleteHint,
                         m_ui->onlyThisMachineHint}) {
        QFont font = hint->font();
        font.setPointSizeF(font.pointSizeF() * hintFontScale);
        hint->setFont(font);
    }
    m_ui->autoDeleteHint->setIndent(textIndent(m_ui->autoDeleteTempFilesBox));
    m_ui->onlyThisMachineHint->setIndent(textIndent(m_ui->onlyThisMachineBox));
}

void PreferencesWindow::bindDeliveryFolder()
{
    using Controller = PreferencesWindowController;
    connect(m_ui->changeDeliveryFolderButton, &QPushButton::clicked, &m_controller, &Controller::changeDeliveryFolder);
    connect(m_ui->resetDeliveryFolderButton, &QPushButton::clicked, &m_controller, &Controller::resetDeliveryFolder);
    const auto showFolder = [this] {
        m_ui->deliveryFolderLabel->setText(m_controller.deliveryFolderText());
        m_ui->deliveryFolderProblemLabel->setText(m_controller.deliveryFolderProblem());
        m_ui->deliveryFolderProblemLabel->setVisible(!m_controller.deliveryFolderProblem().isEmpty());
        m_ui->resetDeliveryFolderButton->setEnabled(m_controller.isResetEnabled());
    };
    connect(&m_controller, &Controller::deliveryFolderChanged, this, showFolder);
    showFolder();
}

void PreferencesWindow::bindNumbers()
{
    using Controller = PreferencesWindowController;
    connect(m_ui->ffmpegBox, &QSpinBox::valueChanged, &m_controller, &Controller::setMaxNumberOfFfmpegProcesses);
    connect(m_ui->uploadsBox, &QSpinBox::valueChanged, &m_controller, &Controller::setMaxNumberOfUploads);
    const auto showFfmpeg = [this] {
        showValue(m_ui->ffmpegBox, m_controller.maxNumberOfFfmpegProcesses(), m_controller.ffmpegRange());
        m_ui->ffmpegHint->setText(m_controller.ffmpegHint());
    };
    const auto showUploads = [this] {
        showValue(m_ui->uploadsBox, m_controller.maxNumberOfUploads(), m_controller.uploadsRange());
    };
    connect(&m_controller, &Controller::maxNumberOfFfmpegProcessesChanged, this, showFfmpeg);
    connect(&m_controller, &Controller::numOfProcessingCoresChanged, this, showFfmpeg);
    connect(&m_controller, &Controller::maxNumberOfUploadsChanged, this, showUploads);
    showFfmpeg();
    showUploads();
}

void PreferencesWindow::bindSwitches()
{
    using Controller = PreferencesWindowController;
    connect(m_ui->autoDeleteTempFilesBox, &QCheckBox::clicked, &m_controller, &Controller::setAutoDeleteTempFiles);
    connect(m_ui->onlyThisMachineBox, &QCheckBox::clicked, &m_controller,
            &Controller::setIsDownloadJobsOnlyFromThisMachine);
    const auto showSwitches = [this] {
        m_ui->autoDeleteTempFilesBox->setChecked(m_controller.autoDeleteTempFiles());
        m_ui->onlyThisMachineBox->setChecked(m_controller.isDownloadJobsOnlyFromThisMachine());
    };
    connect(&m_controller, &Controller::autoDeleteTempFilesChanged, this, showSwitches);
    connect(&m_controller, &Controller::isDownloadJobsOnlyFromThisMachineChanged, this, showSwitches);
    showSwitches();
}

void PreferencesWindow::bindProblem()
{
    const auto showProblem = [this] {
        const QString problem = m_controller.settingsProblem();
        m_ui->settingsProblemLabel->setText(problem);
        m_ui->settingsProblemView->setVisible(!problem.isEmpty());
    };
    const int side = fontMetrics().height();
    m_ui->settingsProblemSign->setPixmap(
        style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(QSize(side, side), devicePixelRatioF()));
    connect(&m_controller, &PreferencesWindowController::settingsProblemChanged, this, showProblem);
    showProblem();
}

// Texts wrap, so the height that they need depends on the width.
void PreferencesWindow::fitHeight()
{
    setFixedHeight(layout()->totalHeightForWidth(width()));
}

bool PreferencesWindow::event(QEvent* event)
{
    const bool isHandled = QWidget::event(event);
    if (event->type() == QEvent::LayoutRequest)
        fitHeight();
    return isHandled;
}

void PreferencesWindow::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    fitHeight();
}
