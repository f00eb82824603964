#pragma once

#include "SubmitTest.h"

#include "ui/controls/DateField.h"
#include "ui/submit/SubmitJobWindow.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QRadioButton>
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

    QRadioButton& level(int tag) { return find<QRadioButton>(QStringLiteral("processingLevel%1").arg(tag)); }
    QString price(int tag) { return find<QLabel>(QStringLiteral("processingLevelValue%1").arg(tag)).text(); }
    QCheckBox& rush() { return find<QCheckBox>(QStringLiteral("rushCheckBox")); }
    QCheckBox& interpreter() { return find<QCheckBox>(QStringLiteral("viaInterpreterCheckBox")); }
    QComboBox& formats() { return find<QComboBox>(QStringLiteral("deliveryFormatComboBox")); }
    QComboBox& caption() { return find<QComboBox>(QStringLiteral("shortCaptionField")); }
    DateField& date() { return find<DateField>(QStringLiteral("depositionDateEdit")); }

    SubmitJobWindow window{controller};
};
