#include "ui/controls/DateField.h"

#include "ui/controls/QuillpostIcons.h"

#include <QAction>
#include <QCalendarWidget>
#include <QFrame>
#include <QKeyEvent>
#include <QScreen>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

DateField::DateField(QWidget* parent) : QLineEdit(parent)
{
    QAction* const open = addAction(QuillpostIcons::named(u"CalendarIcon"_s), TrailingPosition);
    open->setObjectName(u"openCalendarAction"_s);
    open->setText(tr("Calendar"));
    open->setToolTip(tr("Choose in a calendar (Alt+Down)"));
    for (auto* const button : findChildren<QToolButton*>())
        button->setAccessibleName(tr("Calendar"));
    connect(open, &QAction::triggered, this, &DateField::openCalendar);
    connect(this, &QLineEdit::textEdited, this, [this] { m_isEdited = true; });
    connect(this, &QLineEdit::editingFinished, this, [this] {
        if (!m_isEdited)
            return;
        m_isEdited = false;
        Q_EMIT dateTyped(text());
    });
}

void DateField::makeCalendar()
{
    m_popup = new QFrame(this, Qt::Popup);
    m_popup->setFrameShape(QFrame::StyledPanel);
    m_calendar = new QCalendarWidget(m_popup);
    m_calendar->setObjectName(u"calendar"_s);
    m_calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    auto* const layout = new QVBoxLayout(m_popup);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_calendar);
    const auto choose = [this](QDate date) {
        m_popup->hide();
        m_isEdited = false;
        Q_EMIT dateChosen(date);
    };
    connect(m_calendar, &QCalendarWidget::clicked, this, choose);
    connect(m_calendar, &QCalendarWidget::activated, this, choose);
}

void DateField::openCalendar()
{
    if (m_popup == nullptr)
        makeCalendar();
    m_calendar->setSelectedDate(m_calendarDate.isValid() ? m_calendarDate : QDate::currentDate());
    m_popup->adjustSize();
    const QRect free = screen()->availableGeometry();
    QPoint place = mapToGlobal(rect().bottomRight()) - QPoint(m_popup->width(), 0);
    if (place.y() + m_popup->height() > free.bottom())
        place.setY(mapToGlobal(rect().topLeft()).y() - m_popup->height());
    place.setX(std::clamp(place.x(), free.left(), std::max(free.left(), free.right() - m_popup->width())));
    m_popup->move(place);
    m_popup->show();
    m_calendar->setFocus();
}

void DateField::keyPressEvent(QKeyEvent* event)
{
    const bool isDown = event->key() == Qt::Key_Down;
    if (isDown && event->modifiers() == Qt::AltModifier)
        openCalendar();
    else if ((isDown || event->key() == Qt::Key_Up) && event->modifiers() == Qt::NoModifier && !m_isEdited)
        Q_EMIT stepped(isDown ? -1 : 1);
    else
        QLineEdit::keyPressEvent(event);
}
