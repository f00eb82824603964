#include "support/Waiting.h"
#include "ui/WindowController.h"
#include "ui/controls/BusyIndicator.h"
#include "ui/controls/ElidedLabel.h"
#include "ui/controls/EmptyStateOverlay.h"
#include "ui/controls/QuillpostIcons.h"
#include "ui/controls/WindowBinding.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QImage>
#include <QListView>
#include <QPainter>
#include <QPixmap>
#include <QSignalSpy>
#include <QStringListModel>
#include <gtest/gtest.h>

#include <memory>
#include <set>

using namespace Qt::StringLiterals;

namespace {

// How many different colours, nearly, a picture has.
std::size_t colours(const QImage& image)
{
    std::set<QRgb> found;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            found.insert(image.pixel(x, y));
    }
    return found.size();
}

} // namespace

TEST(QuillpostIconsTest, IconsAreDrawnAtEverySize)
{
    for (const QIcon& icon :
         {QuillpostIcons::named(u"TextIcon"_s), QuillpostIcons::named(u"SoundIcon"_s), QuillpostIcons::application()}) {
        ASSERT_FALSE(icon.isNull());
        for (const int size : {16, 22, 32, 48, 128, 256}) {
            const QPixmap pixmap = icon.pixmap(QSize(size, size), 1.0);
            EXPECT_EQ(pixmap.size(), QSize(size, size));
            EXPECT_GT(colours(pixmap.toImage()), 2U) << size;
        }
    }
}

TEST(QuillpostIconsTest, IconsAreAsSharpAsTheScreen)
{
    const QPixmap pixmap = QuillpostIcons::named(u"TextIcon"_s).pixmap(QSize(16, 16), 2.0);
    EXPECT_EQ(pixmap.size(), QSize(32, 32));
    EXPECT_EQ(pixmap.deviceIndependentSize(), QSizeF(16, 16));
}

TEST(QuillpostIconsTest, TheIconsDiffer)
{
    const auto picture = [](const QIcon& icon) { return icon.pixmap(QSize(32, 32), 1.0).toImage(); };
    EXPECT_NE(picture(QuillpostIcons::named(u"TextIcon"_s)), picture(QuillpostIcons::named(u"SoundIcon"_s)));
    EXPECT_NE(picture(QuillpostIcons::named(u"TextIcon"_s)), picture(QuillpostIcons::application()));
}

TEST(QuillpostIconsTest, AnIconOfSomethingDisabledIsFainter)
{
    const QIcon icon = QuillpostIcons::named(u"TextIcon"_s);
    const QImage normal = icon.pixmap(QSize(32, 32), 1.0, QIcon::Normal).toImage();
    const QImage disabled = icon.pixmap(QSize(32, 32), 1.0, QIcon::Disabled).toImage();
    EXPECT_LT(qAlpha(disabled.pixel(16, 16)), qAlpha(normal.pixel(16, 16)));
}

TEST(QuillpostIconsTest, AnIconThatIsDrawnAgainLooksTheSameWhereverItIsDrawn)
{
    const QIcon icon = QuillpostIcons::named(u"SoundIcon"_s);
    const auto drawn = [&](QPoint place, double pixels, QIcon::Mode mode) {
        QImage image(QSize(40, 40) * pixels, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(pixels);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        icon.paint(&painter, QRect(place, QSize(17, 16)), Qt::AlignCenter, mode);
        painter.end();
        return image.copy(QRect(place * pixels, QSize(17, 16) * pixels));
    };
    for (const double pixels : {1.0, 2.0, 1.5}) {
        for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Selected, QIcon::Disabled}) {
            const QImage first = drawn({0, 0}, pixels, mode);
            EXPECT_GT(colours(first), 2U);
            EXPECT_EQ(first, drawn({20, 14}, pixels, mode)) << pixels << " " << mode;
        }
    }
    EXPECT_NE(drawn({0, 0}, 1, QIcon::Normal), drawn({0, 0}, 1, QIcon::Disabled));
}

TEST(QuillpostIconsTest, ARecordingOnTheHighlightHasTheColourOfTheHighlightedText)
{
    const QImage image = QuillpostIcons::named(u"SoundIcon"_s).pixmap(QSize(64, 64), 1.0, QIcon::Selected).toImage();
    EXPECT_EQ(image.pixelColor(20, 32), QApplication::palette().color(QPalette::HighlightedText));
}

TEST(QuillpostIconsTest, ARecordingFollowsAnotherColourOfHighlightedTexts)
{
    const QIcon icon = QuillpostIcons::named(u"SoundIcon"_s);
    const auto colour = [&] { return icon.pixmap(QSize(64, 64), 1.0, QIcon::Selected).toImage().pixelColor(20, 32); };
    const QPalette before = QApplication::palette();
    EXPECT_EQ(colour(), before.color(QPalette::HighlightedText));
    QPalette other = before;
    other.setColor(QPalette::HighlightedText, QColor(10, 20, 30));
    QApplication::setPalette(other);
    EXPECT_EQ(colour(), QColor(10, 20, 30));
    QApplication::setPalette(before);
    EXPECT_EQ(colour(), before.color(QPalette::HighlightedText));
}

TEST(QuillpostIconsTest, AnUnknownNameIsNoIcon)
{
    EXPECT_TRUE(QuillpostIcons::named(u"NoSuchIcon"_s).isNull());
    EXPECT_TRUE(QuillpostIcons::named(QString()).isNull());
    EXPECT_TRUE(QuillpostIcons::named(u"../icons/TextIcon"_s).isNull());
}

TEST(ElidedLabelTest, AShortTextIsShownWholeWithoutATooltip)
{
    ElidedLabel label;
    label.setText(u"/cases/one.txt"_s);
    label.resize(label.sizeHint());
    label.show();
    EXPECT_EQ(label.elidedText(), u"/cases/one.txt"_s);
    EXPECT_EQ(label.toolTip(), QString());
}

TEST(ElidedLabelTest, ItsTextIsItsNameUnlessItWasGivenOne)
{
    ElidedLabel plain;
    plain.setText(u"one"_s);
    plain.setText(u"two"_s);
    EXPECT_EQ(plain.accessibleName(), u"two"_s);
    ElidedLabel named;
    named.setAccessibleName(u"Service"_s);
    named.setText(u"Checking…"_s);
    EXPECT_EQ(named.accessibleName(), u"Service"_s);
    EXPECT_EQ(named.accessibleDescription(), u"Checking…"_s);
}

TEST(ElidedLabelTest, ALongTextLosesItsMiddleAndIsToldWhole)
{
    ElidedLabel label;
    const QString path = u"/cases/"_s + QString(300, u'x') + u"/one.txt"_s;
    label.setText(path);
    label.resize(200, 20);
    label.show();
    EXPECT_TRUE(label.elidedText().startsWith(u"/cases/x"_s));
    EXPECT_TRUE(label.elidedText().endsWith(u"/one.txt"_s));
    EXPECT_LE(label.fontMetrics().horizontalAdvance(label.elidedText()), 200);
    EXPECT_EQ(label.toolTip(), path);
    EXPECT_EQ(label.accessibleName(), path);
    EXPECT_LT(label.minimumSizeHint().width(), 200) << "it never forces its window wide";
    label.resize(label.sizeHint());
    EXPECT_EQ(label.elidedText(), path);
    EXPECT_EQ(label.toolTip(), QString());
}

TEST(ElidedLabelTest, TheWholeTextIsCopiedFromTheContextMenu)
{
    ElidedLabel label;
    const QString path = u"/cases/"_s + QString(300, u'x') + u"/one.txt"_s;
    label.setText(path);
    label.resize(100, 20);
    EXPECT_EQ(label.contextMenuPolicy(), Qt::ActionsContextMenu);
    label.findChild<QAction*>(u"copyAction"_s)->trigger();
    EXPECT_EQ(QApplication::clipboard()->text(), path);
}

TEST(ElidedLabelTest, LineBreaksOfATextAreBlanksOnItsOneLine)
{
    ElidedLabel label;
    label.setText(u"first\nsecond"_s);
    label.resize(label.sizeHint());
    EXPECT_EQ(label.elidedText(), u"first second"_s);
    EXPECT_EQ(label.text(), u"first\nsecond"_s);
}

TEST(EmptyStateOverlayTest, ItIsThereWhileTheListIsEmpty)
{
    QStringListModel model;
    QListView view;
    view.setModel(&model);
    auto* overlay = new EmptyStateOverlay(&view, u"Drop files here."_s);
    view.show();
    EXPECT_TRUE(overlay->isVisible());
    model.setStringList({u"one"_s});
    EXPECT_FALSE(overlay->isVisible());
    model.removeRow(0);
    EXPECT_TRUE(overlay->isVisible());
    model.insertRow(0);
    EXPECT_FALSE(overlay->isVisible());
}

TEST(EmptyStateOverlayTest, ItIsFainterThanARowsText)
{
    QListView view;
    const EmptyStateOverlay overlay(&view, u"Drop files here."_s);
    EXPECT_LT(overlay.palette().color(overlay.foregroundRole()).alphaF(), 0.9F);
}

TEST(EmptyStateOverlayTest, ItFollowsTheViewsSizeAndAnotherModel)
{
    QStringListModel empty;
    QStringListModel full({u"one"_s});
    QListView view;
    view.setModel(&empty);
    auto* overlay = new EmptyStateOverlay(&view, u"Drop files here."_s);
    view.show();
    view.resize(431, 257);
    EXPECT_EQ(overlay->geometry(), view.viewport()->rect());
    view.setModel(&full);
    EXPECT_TRUE(Waiting::until([&] { return !overlay->isVisible(); }));
    full.setStringList({});
    EXPECT_TRUE(overlay->isVisible());
}

TEST(EmptyStateOverlayTest, ClicksPassThroughIt)
{
    QStringListModel model;
    QListView view;
    view.setModel(&model);
    const auto* overlay = new EmptyStateOverlay(&view, u"<b>plain</b>"_s);
    view.show();
    EXPECT_EQ(view.childAt(view.viewport()->geometry().center()), view.viewport());
    EXPECT_EQ(overlay->textFormat(), Qt::PlainText);
}

TEST(BusyIndicatorTest, ItTurnsOnlyWhileItRunsAndCanBeSeen)
{
    BusyIndicator indicator;
    indicator.show();
    EXPECT_FALSE(indicator.isTurning());
    indicator.setRunning(true);
    EXPECT_TRUE(indicator.isTurning());
    indicator.hide();
    EXPECT_FALSE(indicator.isTurning());
    EXPECT_TRUE(indicator.isRunning());
    indicator.show();
    EXPECT_TRUE(indicator.isTurning());
    indicator.setRunning(false);
    EXPECT_FALSE(indicator.isTurning());
}

TEST(BusyIndicatorTest, ItIsDrawnAndTurnsAndSaysThatItIsBusy)
{
    BusyIndicator indicator;
    indicator.setAccessibleName(u"Asking for prices"_s);
    indicator.resize(24, 24);
    indicator.show();
    const QImage idle = indicator.grab().toImage();
    QSignalSpy changed(&indicator, &BusyIndicator::runningChanged);
    indicator.setRunning(true);
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(indicator.accessibleDescription(), u"Busy"_s);
    const QImage first = indicator.grab().toImage();
    EXPECT_NE(first, idle);
    EXPECT_TRUE(Waiting::until([&] { return indicator.grab().toImage() != first; }));
    indicator.setRunning(false);
    EXPECT_EQ(indicator.grab().toImage(), idle);
    EXPECT_EQ(indicator.accessibleDescription(), QString());
    EXPECT_EQ(indicator.accessibleName(), u"Asking for prices"_s) << "what it is stays";
}

TEST(WindowBindingTest, TheControllerShowsAndClosesItsWindow)
{
    WindowController controller;
    QWidget window;
    WindowBinding::bind(controller, window);
    controller.showWindow();
    EXPECT_TRUE(window.isVisible());
    controller.close();
    EXPECT_FALSE(window.isVisible());
}

TEST(WindowBindingTest, AMinimisedWindowIsRestored)
{
    WindowController controller;
    QWidget window;
    WindowBinding::bind(controller, window);
    window.showMinimized();
    controller.showWindow();
    EXPECT_FALSE(window.isMinimized());
    EXPECT_TRUE(window.isVisible());
}

TEST(WindowBindingTest, AWindowThatIsGoneIsLeftAlone)
{
    WindowController controller;
    auto window = std::make_unique<QWidget>();
    WindowBinding::bind(controller, *window);
    window.reset();
    controller.showWindow();
    controller.close();
    EXPECT_TRUE(QApplication::topLevelWidgets().isEmpty());
}
