#include "CliTest.h"

#include "support/GeneratedMedia.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

using testing::HasSubstr;

namespace {

class Inspect : public CliTest
{
protected:
    ChildProgram& inspect(const QStringList& files)
    {
        return runBare(QStringList{QStringLiteral("inspect"), QStringLiteral("--json")} + files);
    }
};

// With the keys in the order of the alphabet, as they are printed.
std::string line(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

} // namespace

TEST_F(Inspect, isOneObjectForEachFileInTheOrderGiven)
{
    const QString sound = recording(QStringLiteral("z.wav"), 2);
    const QString plain = writeFile(QStringLiteral("files/plain.TXT"), "Nothing is to be found here.\r\n");
    const QString film = GeneratedMedia::film(path(QStringLiteral("files/a.mp4")), 1);
    ChildProgram& program = inspect({sound, transcript(), film, plain});
    EXPECT_EQ(program.exitCode(), 0) << text(program.standardError());
    const auto all = objects(program);
    ASSERT_EQ(all.size(), 4U);

    EXPECT_EQ(all[0].keys(),
              (QStringList{QStringLiteral("duration"), QStringLiteral("file"), QStringLiteral("streams")}));
    EXPECT_EQ(text(all[0].value(QStringLiteral("file")).toString()), text(sound));
    EXPECT_EQ(all[0].value(QStringLiteral("duration")).toDouble(), 2);
    EXPECT_THAT(text(all[0].value(QStringLiteral("streams")).toString()), HasSubstr("Audio: pcm_s16le"));

    EXPECT_EQ(line(all[1]), "{\"date\":\"04 march 2026\",\"file\":\"" + text(transcript()) +
                                "\",\"first\":\"Jane Q.\",\"last\":\"Doe\"}");

    EXPECT_EQ(text(all[2].value(QStringLiteral("file")).toString()), text(film));
    const QString streams = all[2].value(QStringLiteral("streams")).toString();
    EXPECT_THAT(text(streams), HasSubstr("Video: "));
    EXPECT_THAT(text(streams), HasSubstr("Audio: "));

    EXPECT_EQ(line(all[3]), "{\"date\":null,\"file\":\"" + text(plain) + "\",\"first\":null,\"last\":null}");
}

TEST_F(Inspect, saysNullWhereARecordingTellsNothing)
{
    const QString letter = GeneratedMedia::textFile(path(QStringLiteral("files/letter.mov")));
    ChildProgram& program = inspect({letter});
    EXPECT_EQ(program.exitCode(), 0) << text(program.standardError());
    ASSERT_EQ(objects(program).size(), 1U);
    EXPECT_EQ(line(objects(program).front()), "{\"duration\":null,\"file\":\"" + text(letter) + "\",\"streams\":null}");
}

TEST_F(Inspect, goesOnAfterAFileThatIsNotThere)
{
    const QString missing = path(QStringLiteral("missing.txt"));
    const QString missingSound = path(QStringLiteral("missing.wav"));
    ChildProgram& program = inspect({missing, missingSound, transcript()});
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_EQ(text(program.standardError()),
              text(missing) + " cannot be read.\n" + text(missingSound) + " cannot be read.\n");
    const auto all = objects(program);
    ASSERT_EQ(all.size(), 3U);
    EXPECT_TRUE(all[0].value(QStringLiteral("first")).isNull());
    EXPECT_TRUE(all[1].value(QStringLiteral("duration")).isNull());
    EXPECT_EQ(text(all[2].value(QStringLiteral("last")).toString()), "Doe");
}

TEST_F(Inspect, takesAwkwardNames)
{
    const QStringList names{QStringLiteral("-x.wav"), QStringLiteral("O'Hara \"1\" & Zürich.wav"),
                            QStringLiteral("Duration: Error [a].wav")};
    QStringList files;
    for (const QString& name : names)
        files << QFileInfo(recording(name)).absolutePath() + QStringLiteral("/../files/./") + name;
    ChildProgram& program = inspect(files);
    EXPECT_EQ(program.exitCode(), 0) << text(program.standardError());
    const auto all = objects(program);
    ASSERT_EQ(all.size(), 3U);
    for (std::size_t i = 0; i < all.size(); ++i) {
        EXPECT_EQ(text(all[i].value(QStringLiteral("file")).toString()), text(files[static_cast<qsizetype>(i)]))
            << "As it was given.";
        EXPECT_EQ(all[i].value(QStringLiteral("duration")).toDouble(), 1) << text(files[static_cast<qsizetype>(i)]);
    }
}

TEST_F(Inspect, prefillsNothingForACorporateWitness)
{
    const QString corporate = writeFile(QStringLiteral("files/corporate.txt"),
                                        "  30(b)(6)\r\n  DEPOSITION OF JOHN SMITH\r\n  May 4, 2026\r\n");
    ChildProgram& program = inspect({corporate});
    EXPECT_EQ(program.exitCode(), 0);
    ASSERT_EQ(objects(program).size(), 1U);
    EXPECT_TRUE(objects(program).front().value(QStringLiteral("last")).isNull());
}

TEST_F(Inspect, isReadableForPeopleWithoutJson)
{
    ChildProgram& program = runBare({QStringLiteral("inspect"), transcript(), recording(QStringLiteral("a.wav"), 2)});
    EXPECT_EQ(program.exitCode(), 0);
    EXPECT_THAT(text(program.standardOutput()), HasSubstr(": first Jane Q., last Doe, date 04 march 2026\n"));
    EXPECT_THAT(text(program.standardOutput()), HasSubstr("a.wav: duration 0:00:02\n  Stream #0:0"));
}

TEST_F(Inspect, saysWhenThereIsNoFfmpeg)
{
    environment[QStringLiteral("PATH")] = path(QStringLiteral("nothing-here"));
    const QString file = writeFile(QStringLiteral("files/a.wav"), "RIFF");
    ChildProgram& program = inspect({file});
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_THAT(text(program.standardError()), HasSubstr("ffmpeg is not installed."));
    EXPECT_EQ(objects(program).size(), 1U);
}
