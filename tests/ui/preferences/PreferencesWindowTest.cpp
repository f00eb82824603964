#include "ui/preferences/PreferencesWindow.h"

#include "ui-support/RecordingApplication.h"

#include "settings/SettingsKey.h"
#include "support/TemporaryHome.h"
#include "support/Waiting.h"
#include "ui/controls/ElidedLabel.h"
#include "ui/preferences/PreferencesWindowController.h"

#include <QCheckBox>
#include <QDir>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QtTest/QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

class PreferencesWindowTest : public TemporaryHome
{
protected:
    PreferencesWindowTest() { Preferences::initialize(defaults(), 4); }

    // After the settings of the test are stored.
    void open()
    {
        controller = std::make_unique<PreferencesWindowController>(application, 4);
        window = std::make_unique<PreferencesWindow>(*controller);
        controller->showWindow();
        QCoreApplication::processEvents();
    }
    template <typename Widget>
    [[nodiscard]] Widget* find(const char* name) const
    {
        auto* const widget = window->findChild<Widget*>(QString::fromLatin1(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }
    [[nodiscard]] QSpinBox* number(const char* name) const { return find<QSpinBox>(name); }
    [[nodiscard]] QCheckBox* box(const char* name) const { return find<QCheckBox>(name); }
    [[nodiscard]] QPushButton* button(const char* name) const { return find<QPushButton>(name); }

    RecordingApplication application;
    std::unique_ptr<PreferencesWindowController> controller;
    std::unique_ptr<PreferencesWindow> window;
};

TEST_F(PreferencesWindowTest, ShowsTheSettingsAsTheyAre)
{
    open();
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(find<ElidedLabel>("deliveryFolderLabel")->text(), path(u"Quillpost"_s));
    EXPECT_EQ(number("ffmpegBox")->value(), 3);
    EXPECT_EQ(number("ffmpegBox")->minimum(), 1);
    EXPECT_EQ(number("ffmpegBox")->maximum(), 4);
    EXPECT_EQ(number("uploadsBox")->value(), 4);
    EXPECT_EQ(number("uploadsBox")->minimum(), 1);
    EXPECT_EQ(number("uploadsBox")->maximum(), 16);
    EXPECT_TRUE(box("autoDeleteTempFilesBox")->isChecked());
    EXPECT_FALSE(box("onlyThisMachineBox")->isChecked());
    EXPECT_FALSE(button("resetDeliveryFolderButton")->isEnabled());
    EXPECT_FALSE(find<QWidget>("settingsProblemView")->isVisible());
}

TEST_F(PreferencesWindowTest, OpeningAndClosingItStoresNothing)
{
    defaults().setValue(SettingsKey::MaxNumberOfUploads, 40);
    open();
    EXPECT_EQ(number("uploadsBox")->value(), 40);
    number("uploadsBox")->setFocus();
    QTest::keyClick(window.get(), Qt::Key_Escape);
    EXPECT_EQ(defaults().value(SettingsKey::MaxNumberOfUploads), 40);
    EXPECT_FALSE(defaults().isStored(SettingsKey::MaxNumberOfFfmpegProcesses));
    EXPECT_FALSE(defaults().isStored(SettingsKey::AutoDeleteTempFiles));
}

TEST_F(PreferencesWindowTest, AChangeTakesEffectAtOnce)
{
    open();
    QTest::keyClick(number("ffmpegBox"), Qt::Key_Down);
    QTest::keyClick(number("uploadsBox"), Qt::Key_Up);
    box("autoDeleteTempFilesBox")->click();
    box("onlyThisMachineBox")->click();
    EXPECT_EQ(defaults().value(SettingsKey::MaxNumberOfFfmpegProcesses), 2);
    EXPECT_EQ(defaults().value(SettingsKey::MaxNumberOfUploads), 5);
    EXPECT_EQ(defaults().value(SettingsKey::AutoDeleteTempFiles), false);
    EXPECT_EQ(defaults().value(SettingsKey::IsDownloadJobsOnlyFromThisMachine), true);
}

TEST_F(PreferencesWindowTest, ATypedNumberCountsWhenItIsComplete)
{
    open();
    auto* const uploads = number("uploadsBox");
    uploads->selectAll();
    QTest::keyClicks(uploads, u"12"_s);
    EXPECT_FALSE(defaults().isStored(SettingsKey::MaxNumberOfUploads));
    QTest::keyClick(uploads, Qt::Key_Return);
    EXPECT_EQ(defaults().value(SettingsKey::MaxNumberOfUploads), 12);
}

TEST_F(PreferencesWindowTest, ATypedNumberCountsWhenTheWindowIsClosed)
{
    open();
    number("uploadsBox")->selectAll();
    QTest::keyClicks(number("uploadsBox"), u"12"_s);
    controller->close();
    EXPECT_EQ(defaults().value(SettingsKey::MaxNumberOfUploads), 12);
}

TEST_F(PreferencesWindowTest, WhatIsChangedElsewhereIsShown)
{
    open();
    defaults().setValue(SettingsKey::MaxNumberOfFfmpegProcesses, 1);
    defaults().setValue(SettingsKey::MaxNumberOfUploads, 20);
    defaults().setValue(SettingsKey::AutoDeleteTempFiles, false);
    defaults().setValue(SettingsKey::IsDownloadJobsOnlyFromThisMachine, true);
    defaults().setValue(SettingsKey::DeliveryFolderPath, u"/elsewhere"_s);
    EXPECT_EQ(number("ffmpegBox")->value(), 1);
    EXPECT_EQ(number("uploadsBox")->value(), 20);
    EXPECT_FALSE(box("autoDeleteTempFilesBox")->isChecked());
    EXPECT_TRUE(box("onlyThisMachineBox")->isChecked());
    EXPECT_EQ(find<ElidedLabel>("deliveryFolderLabel")->text(), u"/elsewhere"_s);
    EXPECT_TRUE(button("resetDeliveryFolderButton")->isEnabled());
}

TEST_F(PreferencesWindowTest, TheFolderIsChangedAndResetByItsButtons)
{
    const QString folder = path(u"Finished work"_s);
    ASSERT_TRUE(QDir().mkpath(folder));
    open();
    application.scriptedDialogs.choices.append(QStringList{folder});
    QTest::mouseClick(button("changeDeliveryFolderButton"), Qt::LeftButton);
    EXPECT_EQ(find<ElidedLabel>("deliveryFolderLabel")->text(), folder);
    QTest::mouseClick(button("resetDeliveryFolderButton"), Qt::LeftButton);
    EXPECT_EQ(find<ElidedLabel>("deliveryFolderLabel")->text(), path(u"Quillpost"_s));
    EXPECT_FALSE(button("resetDeliveryFolderButton")->isEnabled());
}

TEST_F(PreferencesWindowTest, ALongPathIsElidedAndToldWholeInItsToolTip)
{
    const QString folder = u"/home/anna/"_s + u"Depositions of the year/"_s.repeated(20) + u"Finished"_s;
    defaults().setValue(SettingsKey::DeliveryFolderPath, folder);
    open();
    auto* const label = find<ElidedLabel>("deliveryFolderLabel");
    EXPECT_LT(label->elidedText().size(), folder.size());
    EXPECT_TRUE(label->toolTip().contains(u"Finished"_s));
    EXPECT_EQ(window->width(), window->minimumWidth());
}

TEST_F(PreferencesWindowTest, CloseAndEscapeCloseTheWindow)
{
    open();
    QTest::mouseClick(button("closeButton"), Qt::LeftButton);
    EXPECT_FALSE(window->isVisible());
    controller->showWindow();
    EXPECT_TRUE(window->isVisible());
    window->activateWindow();
    EXPECT_TRUE(Waiting::until([this] { return window->isActiveWindow(); }));
    QTest::keyClick(window.get(), Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(PreferencesWindowTest, ASettingsFileThatCannotBeWrittenIsShown)
{
    writeFile(u"plain"_s, "x");
    UserDefaults broken(path(u"plain/settings.ini"_s));
    Preferences::initialize(broken, 4);
    UserDefaults::setStandard(&broken);
    open();
    QTest::keyClick(number("uploadsBox"), Qt::Key_Up);
    EXPECT_TRUE(find<QWidget>("settingsProblemView")->isVisible());
    EXPECT_TRUE(find<QLabel>("settingsProblemLabel")->text().contains(u"cannot be written"_s));
    window.reset();
    controller.reset();
    UserDefaults::setStandard(&defaults());
}

TEST_F(PreferencesWindowTest, EveryTextIsSeenWholeAtEveryWidth)
{
    open();
    for (const int more : {0, 300}) {
        window->resize(window->minimumWidth() + more, window->height());
        EXPECT_TRUE(Waiting::until(
            [this] { return window->height() == window->layout()->totalHeightForWidth(window->width()); }));
        for (const QLabel* label : window->findChildren<QLabel*>()) {
            if (label->isVisible() && label->wordWrap()) {
                EXPECT_GE(label->height(), label->heightForWidth(label->width())) << qPrintable(label->objectName());
            }
        }
    }
}

TEST_F(PreferencesWindowTest, EverySettingSaysWhatItDoes)
{
    open();
    for (const char* name :
         {"deliveryFolderHint", "ffmpegHint", "uploadsHint", "autoDeleteHint", "onlyThisMachineHint"})
        EXPECT_GT(find<QLabel>(name)->text().size(), 20) << name;
    EXPECT_TRUE(find<QLabel>("ffmpegHint")->text().contains(u"4 processor cores"_s));
}

TEST_F(PreferencesWindowTest, EveryControlHasANameAndAKey)
{
    open();
    EXPECT_EQ(find<QLabel>("ffmpegLabel")->buddy(), number("ffmpegBox"));
    EXPECT_EQ(find<QLabel>("uploadsLabel")->buddy(), number("uploadsBox"));
    QStringList keys;
    for (const char* name : {"ffmpegLabel", "uploadsLabel"})
        keys.append(find<QLabel>(name)->text());
    for (const char* name : {"changeDeliveryFolderButton", "resetDeliveryFolderButton", "closeButton"})
        keys.append(button(name)->text());
    for (const char* name : {"autoDeleteTempFilesBox", "onlyThisMachineBox"})
        keys.append(box(name)->text());
    QString used;
    for (const QString& text : keys) {
        ASSERT_TRUE(text.contains(u'&')) << qPrintable(text);
        const QChar key = text.at(text.indexOf(u'&') + 1).toLower();
        EXPECT_FALSE(used.contains(key)) << qPrintable(text);
        used.append(key);
    }
    EXPECT_FALSE(number("ffmpegBox")->accessibleName().isEmpty());
    EXPECT_FALSE(number("uploadsBox")->accessibleName().isEmpty());
}

TEST_F(PreferencesWindowTest, TabGoesThroughTheControlsFromTopToBottom)
{
    open();
    QStringList order;
    for (QWidget* next = window->nextInFocusChain(); next != window.get(); next = next->nextInFocusChain()) {
        if (next->isVisible() && (next->focusPolicy() & Qt::TabFocus) && !next->focusProxy())
            order.append(next->objectName());
    }
    EXPECT_EQ(order,
              (QStringList{u"changeDeliveryFolderButton"_s, u"resetDeliveryFolderButton"_s, u"ffmpegBox"_s,
                           u"uploadsBox"_s, u"autoDeleteTempFilesBox"_s, u"onlyThisMachineBox"_s, u"closeButton"_s}));
}

} // namespace
