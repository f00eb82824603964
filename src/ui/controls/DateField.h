#pragma once

#include <QDate>
#include <QLineEdit>

class QCalendarWidget;
class QFrame;

// A field for a date: typed as people write dates, stepped day by day with the arrow keys, or chosen in the calendar
// that its button (and Alt+Down) opens. What a typed text means is decided by whoever listens.
class DateField : public QLineEdit
{
    Q_OBJECT
public:
    explicit DateField(QWidget* parent = nullptr);

    // What the calendar begins with; an invalid date is today.
    void setCalendarDate(QDate date) { m_calendarDate = date; }
    // The calendar below the field, made when it first opens.
    void openCalendar();
    [[nodiscard]] QCalendarWidget* calendar() const { return m_calendar; }

Q_SIGNALS:
    // An edit that changed something has ended.
    void dateTyped(const QString& text);
    void dateChosen(QDate date);
    void stepped(int days);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void makeCalendar();

    QDate m_calendarDate;
    QFrame* m_popup = nullptr;             // a child
    QCalendarWidget* m_calendar = nullptr; // its child
    bool m_isEdited = false;
};
