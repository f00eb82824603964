#include "CliTest.h"

#include "support/GeneratedMedia.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QJsonDocument>

CliTest::CliTest()
{
    for (const char* name :
         {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "PATH", "TSAN_OPTIONS", "ASAN_OPTIONS"}) {
        if (qEnvironmentVariableIsSet(name))
            environment[QString::fromLatin1(name)] = qEnvironmentVariable(name);
    }
    environment[QStringLiteral("QUILLPOST_PASSWORD")] = QStringLiteral("demo1234");
    // What the libraries of the system keep to the end is not the programs' to give back.
    environment[QStringLiteral("LSAN_OPTIONS")] =
        QStringLiteral("print_suppressions=0:suppressions=") + QStringLiteral(LEAK_SUPPRESSIONS);
}

ChildProgram& CliTest::startBare(const QStringList& arguments, ChildProgram::Terminal terminal)
{
    m_programs.push_back(std::make_unique<ChildProgram>());
    m_programs.back()->start(arguments, environment, terminal);
    return *m_programs.back();
}

ChildProgram& CliTest::start(const QStringList& arguments, ChildProgram::Terminal terminal)
{
    return startBare(QStringList{QStringLiteral("--secure-host"), QString::fromStdString(service.secureHost()),
                                 QStringLiteral("--file-host"), QString::fromStdString(service.fileHost()),
                                 QStringLiteral("--user"), QStringLiteral("demo"), QStringLiteral("--poll-interval"),
                                 QStringLiteral("0.1"), QStringLiteral("--delivery-folder"), deliveryFolder(),
                                 QStringLiteral("--temp-folder"), path(QStringLiteral("temp"))} +
                         arguments,
                     terminal);
}

ChildProgram& CliTest::run(const QStringList& arguments)
{
    ChildProgram& program = start(arguments);
    waitForEnd(program);
    return program;
}

ChildProgram& CliTest::runBare(const QStringList& arguments)
{
    ChildProgram& program = startBare(arguments);
    waitForEnd(program);
    return program;
}

void CliTest::waitForEnd(ChildProgram& program)
{
    ASSERT_TRUE(program.waitForEnd()) << "It runs on. It said: " << text(program.standardOutput()) << "\n"
                                      << text(program.standardError()) << "\n"
                                      << text(program.shown());
}

QString CliTest::transcript() const
{
    const QString copy = path(QStringLiteral("files/Doe-Jane-2026-03-04.txt"));
    QDir().mkpath(path(QStringLiteral("files")));
    if (!QFile::exists(copy)) {
        EXPECT_TRUE(QFile::copy(QStringLiteral(SAMPLES_FOLDER "/Doe-Jane-2026-03-04.txt"), copy));
    }
    return copy;
}

QString CliTest::recording(const QString& name, double seconds) const
{
    return GeneratedMedia::sound(path(QStringLiteral("files/") + name), seconds);
}

QStringList CliTest::order(const QStringList& media) const
{
    return QStringList{QStringLiteral("submit"), QStringLiteral("--transcript"), transcript(),
                       QStringLiteral("--media")} +
           media;
}

QStringList CliTest::deliveredFiles() const
{
    QStringList files;
    QDirIterator each(deliveryFolder(), QDir::Files, QDirIterator::Subdirectories);
    while (each.hasNext())
        files << QDir(deliveryFolder()).relativeFilePath(each.next());
    files.sort();
    return files;
}

QString CliTest::onlyBody(const std::string& endpoint) const
{
    const auto requests = service.requests(endpoint);
    EXPECT_EQ(requests.size(), 1U) << endpoint;
    return requests.empty() ? QString() : QString::fromStdString(requests.front().body);
}

std::vector<QJsonObject> CliTest::objects(const ChildProgram& program)
{
    std::vector<QJsonObject> all;
    for (const QString& line : program.outputLines()) {
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(line.toUtf8(), &error);
        EXPECT_TRUE(document.isObject()) << text(line) << ": " << text(error.errorString());
        all.push_back(document.object());
    }
    return all;
}

std::vector<QJsonObject> CliTest::objects(const ChildProgram& program, const QString& event)
{
    std::vector<QJsonObject> all = objects(program);
    std::erase_if(all, [&](const QJsonObject& object) { return object.value(QStringLiteral("event")) != event; });
    return all;
}
