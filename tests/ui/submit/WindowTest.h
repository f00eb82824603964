#pragma once

#include "SubmitTest.h"

#include "ui/submit/SubmitJobWindow.h"

#include <QDropEvent>
#include <QMimeData>
#include <QTest>
#include <QUrl>
#include <QWidget>

// The real window, shown, found by the names of its controls.
class SubmitWindowTest : public SubmitTest
{
protected:
    explicit SubmitWindowTest(const ServiceHosts& hosts = RecordingApplication::unreachableHosts());

    template <typename Widget = QWidget>
    [[nodiscard]] Widget& find(const QString& name)
    {
        auto* const widget = window.findChild<Widget*>(name);
        EXPECT_NE(widget, nullptr) << name.toStdString();
        return *widget;
    }
    // Gives it the keyboard.
    void enter(QWidget& widget);
    // What the drag is answered with when it enters, moves and is dropped; Ignore unless all agree.
    static Qt::DropAction drop(QWidget& target, const QMimeData& data,
                               Qt::DropActions offered = Qt::CopyAction | Qt::MoveAction,
                               Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    [[nodiscard]] static std::unique_ptr<QMimeData> files(const QStringList& paths);
    // Takes a transcript and a recording.
    void fill();

    SubmitJobWindow window{controller};
};
