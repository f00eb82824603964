#include "SubmitTest.h"

SubmitTest::SubmitTest(const ServiceHosts& hosts) : application(hosts), controller(application)
{
    application.name = QStringLiteral("demo");
    application.password = QStringLiteral("demo1234");
    application.contactID = QStringLiteral("4711");
}

QString SubmitTest::transcript(const QString& name)
{
    return writeFile(name, SubmitTexts::cover);
}

QString SubmitTest::recording(const QString& name)
{
    return writeFile(name, "no sound");
}

QStringList SubmitTest::namesOfRecordings() const
{
    QStringList names;
    for (const auto& file : controller.job()->mediaFiles())
        names << file->name();
    return names;
}

QStringList SubmitTest::takeCommands()
{
    QStringList pages;
    while (const auto command = application.curlCommandProcessor().getCommandFromQueue())
        pages << command->url().section(u'/', -1);
    return pages;
}

QString SubmitTest::levelValue(int tag) const
{
    for (const auto& row : controller.levelRows()) {
        if (row.tag == tag)
            return row.value;
    }
    return QStringLiteral("(no row)");
}

void SubmitTest::waitUntilRead()
{
    EXPECT_TRUE(Waiting::until([this] { return !controller.isReadingMediaFiles(); }));
}
