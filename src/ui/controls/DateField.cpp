#include "ui/controls/DateField.h"

#include <QCalendarWidget>
#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QLocale>
#include <QSignalBlocker>

using namespace Qt::StringLiterals;

DateField::DateField(QWidget* parent) : QDateEdit(parent)
{
    setCalendarPopup(true);
    setSpecialValueText(tr("No date")); // shown for the earliest date, which so stands for none
    calendarWidget()->installEventFilter(this);
    connect(this, &QDateEdit::dateChanged, this, [this] { Q_EMIT valueChanged(value()); });
}

QDate DateField::value() const
{
    return isNone() ? QDate() : date();
}

void DateField::setValue(QDate value)
{
    const QDate shown = value.isValid() ? value : minimumDate();
    if (date() == shown)
        return;
    const QSignalBlocker blocker(this);
    setDate(shown);
}

QDate DateField::dateFrom(const QString& text)
{
    const QString written = text.simplified();
    const QLocale here;
    const QLocale english = QLocale::c();
    for (const QLocale::FormatType type : {QLocale::LongFormat, QLocale::ShortFormat}) {
        if (const QDate date = here.toDate(written, type); date.isValid() && date.year() >= 1970)
            return date;
    }
    for (const QString& format : {u"yyyy-M-d"_s, u"d MMMM yyyy"_s, u"d MMM yyyy"_s, u"MMMM d, yyyy"_s, u"MMM d, yyyy"_s,
                                  u"MMMM d yyyy"_s, u"M/d/yyyy"_s}) {
        for (const QLocale& locale : {here, english}) {
            if (const QDate date = locale.toDate(written, format); date.isValid())
                return date;
        }
    }
    return {};
}

bool DateField::isAllSelected() const
{
    return lineEdit()->hasSelectedText() && lineEdit()->selectedText() == lineEdit()->text();
}

void DateField::stepBy(int steps)
{
    if (isNone())
        setDate(QDate::currentDate());
    else
        QDateEdit::stepBy(steps);
}

void DateField::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Paste)) {
        if (const QDate pasted = dateFrom(QGuiApplication::clipboard()->text()); pasted.isValid())
            setDate(pasted);
        return;
    }
    const bool isWhole = isNone() || isAllSelected();
    if (isWhole && (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace)) {
        setDate(minimumDate());
        return;
    }
    if (isWhole && !event->text().isEmpty() && event->text().front().isDigit()) {
        if (isNone())
            setDate(QDate::currentDate());
        setSelectedSection(sectionAt(0));
    }
    QDateEdit::keyPressEvent(event);
}

bool DateField::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Show && watched == calendarWidget() && isNone()) {
        const QDate today = QDate::currentDate();
        calendarWidget()->setCurrentPage(today.year(), today.month());
    }
    return QDateEdit::eventFilter(watched, event);
}
