#include "foundation/Version.h"

#include <QRegularExpression>
#include <gtest/gtest.h>

TEST(VersionTest, IsThreeNumbers)
{
    static const QRegularExpression form(QStringLiteral("^\\d+\\.\\d+\\.\\d+$"));
    EXPECT_TRUE(form.match(applicationVersion()).hasMatch()) << qPrintable(applicationVersion());
}
