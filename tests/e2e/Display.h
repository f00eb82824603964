#pragma once

#include "ChildProgram.h"

#include <QMap>
#include <QPoint>
#include <QRect>
#include <QString>
#include <QStringList>

#include <chrono>
#include <memory>
#include <optional>

// A display of its own for one test, with a window manager, and a pair of hands on it. Main thread.
class Display
{
public:
    Display();
    ~Display();
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    // ":7"
    [[nodiscard]] QString name() const { return m_name; }

    // Waits for a window of which part of the title is this; nothing when none comes.
    [[nodiscard]] std::optional<QString> waitForWindow(const QString& title,
                                                       std::chrono::milliseconds limit = std::chrono::seconds(60));
    [[nodiscard]] bool hasWindow(const QString& title);
    [[nodiscard]] QString titleOf(const QString& window);
    [[nodiscard]] QRect geometryOf(const QString& window);
    // The one with the keyboard; nothing when none has it.
    [[nodiscard]] std::optional<QString> activeWindow();
    // To the task bar.
    void minimize(const QString& window);
    // Brings the window to the front and gives it the keyboard.
    void focus(const QString& window);
    // As on a keyboard; a key has its X name, such as "Return" or "ctrl+n".
    void type(const QString& text);
    void press(const QString& key);
    void movePointer(const QPoint& place);
    void pressButton();
    void releaseButton();

private:
    // What the command printed; nothing when it failed.
    std::optional<QString> point(const QStringList& arguments);

    QMap<QString, QString> m_environment;
    ChildProgram m_server{QStringLiteral("Xvfb")};
    std::unique_ptr<ChildProgram> m_windowManager;
    QString m_name;
};
