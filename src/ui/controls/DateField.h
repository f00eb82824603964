#pragma once

#include <QDateEdit>

// A date that may be missing. Typed part by part, pasted as a whole, or chosen in a calendar; Delete on the whole takes
// it away. Where there is none, typing, stepping and the calendar begin at today.
class DateField : public QDateEdit
{
    Q_OBJECT
public:
    explicit DateField(QWidget* parent = nullptr);

    // Invalid for none.
    [[nodiscard]] QDate value() const;
    // Without telling of it.
    void setValue(QDate value);

    // A whole date as people write it here, or as computers do; invalid for any other text.
    [[nodiscard]] static QDate dateFrom(const QString& text);

    void stepBy(int steps) override;

Q_SIGNALS:
    void valueChanged(QDate value);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    [[nodiscard]] bool isNone() const { return date() == minimumDate(); }
    [[nodiscard]] bool isAllSelected() const;
};
