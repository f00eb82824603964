#include "ui/controls/Hyperlink.h"
#include "ui/controls/LinkTextField.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFragment>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QUrl page(u"https://sync.example/account?user=a&b=\"c\" d"_s);

QPalette darkPalette()
{
    return QPalette(QColor(45, 45, 45), QColor(45, 45, 45));
}

// The text and the format of the one fragment that the link is.
QTextFragment fragmentOf(QTextDocument& document, const QString& html)
{
    document.setHtml(html);
    return document.begin().begin().fragment();
}

double brightness(const QColor& color)
{
    return 0.3 * color.redF() + 0.6 * color.greenF() + 0.1 * color.blueF();
}

} // namespace

TEST(HyperlinkTest, TheWholeTextIsALinkToTheUrlsAbsoluteStringUnderlinedOnce)
{
    QTextDocument document;
    const QTextFragment fragment = fragmentOf(document, Hyperlink::hyperlinkFromString(u"Your account"_s, page));
    EXPECT_EQ(fragment.text(), u"Your account"_s);
    EXPECT_EQ(document.toPlainText(), u"Your account"_s);
    const QTextCharFormat format = fragment.charFormat();
    EXPECT_TRUE(format.isAnchor());
    EXPECT_EQ(format.anchorHref(), page.toString(QUrl::FullyEncoded));
    EXPECT_TRUE(format.fontUnderline());
    EXPECT_EQ(format.underlineStyle(), QTextCharFormat::SingleUnderline);
    EXPECT_FALSE(format.hasProperty(QTextFormat::FontPointSize)) << "the label's own font";
}

TEST(HyperlinkTest, TheTextIsTakenAsItStands)
{
    QTextDocument document;
    const QString text = u"<b>Terms</b> & \"conditions\" <img src=x>"_s;
    EXPECT_EQ(fragmentOf(document, Hyperlink::hyperlinkFromString(text, page)).text(), text);
}

TEST(HyperlinkTest, ALinkIsBlueOnALightGround)
{
    QTextDocument document;
    const QPalette light(QColor(239, 239, 239));
    const QColor color =
        fragmentOf(document, Hyperlink::hyperlinkFromString(u"x"_s, page, light)).charFormat().foreground().color();
    EXPECT_EQ(color, Hyperlink::linkColor(light));
    EXPECT_GT(color.blue(), 150);
    EXPECT_LT(color.red(), 100);
}

TEST(HyperlinkTest, ALinkIsALighterBlueOnADarkGround)
{
    const QColor color = Hyperlink::linkColor(darkPalette());
    EXPECT_GT(brightness(color), 0.4);
    EXPECT_GT(color.blue(), color.red());
}

TEST(HyperlinkTest, ALinkColourOfThePaletteThatCanBeReadIsKept)
{
    QPalette palette = darkPalette();
    palette.setColor(QPalette::Link, QColor(255, 200, 120));
    EXPECT_EQ(Hyperlink::linkColor(palette), QColor(255, 200, 120));
}

class LinkTextFieldTest : public testing::Test
{
protected:
    LinkTextFieldTest()
    {
        field.setLink(u"Your account"_s, page);
        field.resize(200, 40);
        field.show();
    }

    LinkTextField field;
    QSignalSpy activated{&field, &QLabel::linkActivated};
};

TEST_F(LinkTextFieldTest, ThePointerIsAPointingHandOverItsWholeBounds)
{
    EXPECT_EQ(field.cursor().shape(), Qt::PointingHandCursor);
    QTest::mouseMove(&field, QPoint(195, 38));
    EXPECT_EQ(field.cursor().shape(), Qt::PointingHandCursor);
}

TEST_F(LinkTextFieldTest, AClickAnywhereInItActivatesTheLink)
{
    QTest::mouseClick(&field, Qt::LeftButton, {}, QPoint(195, 38));
    ASSERT_EQ(activated.count(), 1);
    EXPECT_EQ(activated.value(0).value(0).toString(), page.toString(QUrl::FullyEncoded));
}

TEST_F(LinkTextFieldTest, OtherClicksActivateNothing)
{
    QTest::mouseClick(&field, Qt::RightButton);
    QTest::mousePress(&field, Qt::LeftButton);
    QTest::mouseRelease(&field, Qt::LeftButton, {}, QPoint(400, 10));
    EXPECT_EQ(activated.count(), 0);
}

TEST_F(LinkTextFieldTest, TheKeyboardReachesAndActivatesIt)
{
    EXPECT_TRUE(field.focusPolicy() & Qt::TabFocus);
    QTest::keyClick(&field, Qt::Key_Return);
    QTest::keyClick(&field, Qt::Key_Space);
    EXPECT_EQ(activated.count(), 2);
    QTest::keyClick(&field, Qt::Key_A);
    EXPECT_EQ(activated.count(), 2);
}

TEST_F(LinkTextFieldTest, ItIsReadToTheUserWithoutMarkup)
{
    EXPECT_EQ(field.accessibleName(), u"Your account"_s);
}

TEST_F(LinkTextFieldTest, ItsColourFollowsThePalette)
{
    const QString light = field.text();
    field.setPalette(darkPalette());
    EXPECT_NE(field.text(), light);
    EXPECT_TRUE(field.text().contains(Hyperlink::linkColor(darkPalette()).name()));
}
