#include "AppTest.h"

#include "app/DesktopWindows.h"
#include "ui/login/LoginWindowController.h"
#include "ui/main/MainWindowController.h"
#include "ui/submit/SubmitJobWindowController.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QRadioButton>
#include <QTest>
#include <QWidget>

#include <optional>

namespace {

// Every window of the program, filled and shown.
class EveryWindow : public AppTest
{
protected:
    EveryWindow()
    {
        makeLoggedIn();
        m_windows.emplace(app());
        app().mainWindowController().showWindow();
        app().showSubmitJobWindow();
        app().showPreferencesWindow();
        app().showErrorWindow();
        app().showCustomLogWindow();
        app().loginWindowController().showWindow();
    }
    ~EveryWindow() override
    {
        m_windows->hideAll();
        m_windows.reset();
    }

    [[nodiscard]] static QList<QWidget*> windows()
    {
        QList<QWidget*> shown;
        for (QWidget* const window : QApplication::topLevelWidgets()) {
            if (window->isVisible() && window->windowType() == Qt::Window)
                shown << window;
        }
        EXPECT_EQ(shown.size(), 6);
        return shown;
    }
    [[nodiscard]] static std::string nameOf(const QWidget& widget)
    {
        return std::string(widget.window()->metaObject()->className()) + ": " + widget.metaObject()->className() + " " +
               widget.objectName().toStdString();
    }
    [[nodiscard]] static bool isStop(const QWidget& widget)
    {
        // Of a group of choices, the chosen one alone.
        const auto* const choice = qobject_cast<const QRadioButton*>(&widget);
        if (choice != nullptr && !choice->isChecked())
            return false;
        return widget.isVisible() && widget.isEnabled() && (widget.focusPolicy() & Qt::TabFocus) != 0 &&
               widget.focusProxy() == nullptr;
    }

private:
    std::optional<DesktopWindows> m_windows;
};

// The letter that Alt goes with, empty for none.
QString mnemonicOf(const QWidget& widget)
{
    const auto* const button = qobject_cast<const QAbstractButton*>(&widget);
    const auto* const label = qobject_cast<const QLabel*>(&widget);
    const QString text = button != nullptr                    ? button->text()
                         : label != nullptr && label->buddy() ? label->text()
                                                              : QString();
    return text.section(u'&', 1, 1).left(1).toLower();
}

} // namespace

TEST_F(EveryWindow, hasANameAndARoleForEachControl)
{
    for (const QWidget* const window : windows()) {
        EXPECT_FALSE(window->windowTitle().isEmpty());
        EXPECT_TRUE(window->windowTitle().contains(QStringLiteral("Quillpost"))) << nameOf(*window);
        for (QWidget* const widget : window->findChildren<QWidget*>()) {
            if (widget->focusPolicy() == Qt::NoFocus || widget->focusProxy() != nullptr || widget->isWindow() ||
                widget->parentWidget()->inherits("QAbstractSpinBox") || widget->parentWidget()->inherits("QComboBox") ||
                widget->window() != window)
                continue;
            // A message that is not there now.
            if (const auto* label = qobject_cast<QLabel*>(widget); label != nullptr && label->text().isEmpty())
                continue;
            QAccessibleInterface* const access = QAccessible::queryAccessibleInterface(widget);
            ASSERT_NE(access, nullptr) << nameOf(*widget);
            EXPECT_FALSE(access->text(QAccessible::Name).isEmpty()) << nameOf(*widget);
            EXPECT_NE(access->role(), QAccessible::NoRole) << nameOf(*widget);
        }
    }
}

TEST_F(EveryWindow, isGoneThroughWithTheTabKeyWhole)
{
    for (QWidget* const window : windows()) {
        QApplication::setActiveWindow(window);
        QSet<QWidget*> missing;
        for (QWidget* const widget : window->findChildren<QWidget*>()) {
            if (isStop(*widget) && widget->window() == window)
                missing << widget;
        }
        ASSERT_FALSE(missing.isEmpty());
        (*missing.begin())->setFocus();
        // Some stops have parts, such as a date's day, month and year.
        for (int key = 0; key < 100 && !missing.isEmpty(); ++key) {
            ASSERT_NE(window->focusWidget(), nullptr);
            missing.remove(window->focusWidget());
            QTest::keyClick(window->focusWidget(), Qt::Key_Tab);
        }
        for (const QWidget* const widget : missing)
            ADD_FAILURE() << "not reached: " << nameOf(*widget);
    }
}

TEST_F(EveryWindow, hasEachMnemonicOnce)
{
    for (const QWidget* const window : windows()) {
        QStringList seen;
        for (const QWidget* const widget : window->findChildren<QWidget*>()) {
            const QString mnemonic = mnemonicOf(*widget);
            if (mnemonic.isEmpty() || !widget->isVisible())
                continue;
            EXPECT_FALSE(seen.contains(mnemonic)) << nameOf(*widget) << " has " << mnemonic.toStdString();
            seen << mnemonic;
        }
    }
}
