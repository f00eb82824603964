#pragma once

#include <QWidget>

class BusyIndicator;
class MessageText;
class QLabel;

// What came of a request, or what is waited for: a turning ring or a warning sign, and the words beside it.
class ResultLine : public QWidget
{
    Q_OBJECT
public:
    explicit ResultLine(QWidget* parent = nullptr);

    void setWaiting(bool waiting);
    void setTroubleShown(bool shown);
    void setMessage(const QString& message);

protected:
    void changeEvent(QEvent* event) override;

private:
    void drawSign();

    BusyIndicator* m_busyIndicator;
    QLabel* m_troubleSign;
    MessageText* m_message;
};
