#include "ui/login/ResultLine.h"

#include "ui/controls/BusyIndicator.h"
#include "ui/login/MessageText.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>

using namespace Qt::StringLiterals;

ResultLine::ResultLine(QWidget* parent)
    : QWidget(parent), m_busyIndicator(new BusyIndicator(this)), m_troubleSign(new QLabel(this)),
      m_message(new MessageText(this))
{
    m_busyIndicator->setObjectName(u"busyIndicator"_s);
    m_busyIndicator->setAccessibleName(tr("Waiting for the service"));
    m_troubleSign->setObjectName(u"troubleSign"_s);
    m_troubleSign->setAccessibleName(tr("Warning"));
    m_troubleSign->hide();
    m_message->setObjectName(u"loginResultText"_s);
    m_message->setAccessibleName(tr("Result"));

    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_busyIndicator, 0, Qt::AlignTop);
    layout->addWidget(m_troubleSign, 0, Qt::AlignTop);
    layout->addWidget(m_message, 1);
    drawSign();
}

void ResultLine::setWaiting(bool waiting)
{
    m_busyIndicator->setRunning(waiting);
}

void ResultLine::setTroubleShown(bool shown)
{
    m_troubleSign->setVisible(shown);
    m_busyIndicator->setVisible(!shown);
}

void ResultLine::setMessage(const QString& message)
{
    m_message->setMessage(message);
}

void ResultLine::drawSign()
{
    const int side = fontMetrics().height();
    const QIcon icon = style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this);
    m_troubleSign->setPixmap(icon.pixmap(QSize(side, side), devicePixelRatioF()));
}

void ResultLine::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        drawSign();
}
