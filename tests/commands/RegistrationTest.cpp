#include "CommandsTest.h"

#include "commands/AddJobSegmentsCommand.h"
#include "commands/MachineUID.h"
#include "commands/SegmentPosition.h"
#include "commands/SetMediaFormatCommand.h"
#include "commands/SubmitJobDetailsCommand.h"
#include "foundation/Assertion.h"
#include "foundation/Version.h"

using namespace Qt::StringLiterals;

class RegistrationTest : public CommandsTest
{
protected:
    // Named and dated; without media files.
    [[nodiscard]] std::shared_ptr<Job> makeJob() const
    {
        auto job = Job::job();
        job->setTranscriptFile(writeFile(u"Smith & Söhne, Vol 1.txt"_s, "text"));
        job->setDeponentFirstName(u"J.R."_s);
        job->setDeponentLastName(u"O'Brien Müller"_s);
        job->setDepositionDate(QDateTime(QDate(2011, 3, 4), QTime(12, 0)));
        job->setShortCaption(u"A & B = \"C\" #1"_s);
        job->setAutoSyncProdID(11);
        job->setMan24ProdID(u"24"_s);
        job->setMan72ProdID(72.9);
        job->setDepoNum(883);
        return job;
    }
    [[nodiscard]] std::shared_ptr<MediaFile> addMedia(Job& job, const QString& name, const QByteArray& contents) const
    {
        auto media = MediaFile::mediaFileWithPath(writeFile(name, contents));
        job.setMediaFiles(job.mediaFiles() << media);
        return media;
    }
    [[nodiscard]] std::string submitBody(const std::shared_ptr<Job>& job)
    {
        service.clearRequests();
        return bodyOf(*SubmitJobDetailsCommand::submitJobDetailsCommandWithUser(hosts, u"u&é"_s, u"p=w"_s, job),
                      "jobdetails.php");
    }
    [[nodiscard]] std::string segmentBody(const std::shared_ptr<Job>& job, const std::shared_ptr<MediaFile>& media)
    {
        service.clearRequests();
        return bodyOf(*AddJobSegmentsCommand::addJobSegmentsCommandWithUser(hosts, u"u&é"_s, u"p=w"_s, job, media),
                      "add_segment.php");
    }
    [[nodiscard]] std::string formatBody(const std::shared_ptr<Job>& job, const std::shared_ptr<MediaFile>& media)
    {
        service.clearRequests();
        return bodyOf(*SetMediaFormatCommand::setMediaFormatCommandWithUser(hosts, u"u&é"_s, u"p=w"_s, job, media),
                      "set_media_format.php");
    }
    // What follows `name` up to the next field.
    [[nodiscard]] static std::string field(const std::string& body, const std::string& name)
    {
        const auto start = body.find("&" + name + "=");
        if (start == std::string::npos)
            return "(missing)";
        const auto value = start + name.size() + 2;
        return body.substr(value, body.find('&', value) - value);
    }
};

TEST_F(RegistrationTest, TheRegistrationIsTheSameToTheByte)
{
    const auto job = makeJob();
    (void)addMedia(*job, u"a.mp4"_s, "a");
    (void)addMedia(*job, u"b.mp4"_s, "b");
    job->setDeliveryFormat(DeliveryFormatOstrovaXML);
    job->setRush(true);
    job->setProcessingLevel(ProcessingLevelAutoSync);
    const std::string expected = "user=u&é&pass=p=w&enteredBy=MacQPT" + applicationVersion().toStdString() +
                                 "&totalSegmentCount=2&deponentLast=O'Brien%20M%C3%BCller&deponentFirst=JR"
                                 "&depoDate=2011-03-04&transcriptSourceFormat=txt"
                                 "&transcriptDestinationFormat=Ostrova XML"
                                 "&shortCaption=A%20&%20B%20=%20%22C%22%20%231"
                                 "&originalTranscriptName=Smith%20&%20S%C3%B6hne,%20Vol%201.txt"
                                 "&autoSyncOnly=1&serviceLevel=11&rush=1&translation=0&groupBy=Deposition&comp=" +
                                 MachineUID::machineUniqueID().toStdString();
    EXPECT_EQ(submitBody(job), expected);
}

TEST_F(RegistrationTest, AnInterpretedManualJobWithoutMediaSaysSo)
{
    const auto job = makeJob();
    job->setViaInterpreter(true);
    job->setProcessingLevel(ProcessingLevelMan24);
    const std::string body = submitBody(job);
    EXPECT_NE(body.find("&totalSegmentCount=0&"), std::string::npos);
    EXPECT_NE(body.find("&autoSyncOnly=0&serviceLevel=24&rush=0&translation=1&groupBy=Deposition&comp="),
              std::string::npos)
        << body;
}

TEST_F(RegistrationTest, OnlyTheAutoSyncLevelIsAutoSyncOnlyAndTheProductIsThatOfTheLevel)
{
    const auto job = makeJob();
    for (const int level :
         {ProcessingLevelMan24, ProcessingLevelMan48, ProcessingLevelMan72, ProcessingLevelUnattended}) {
        job->setProcessingLevel(level);
        EXPECT_EQ(field(submitBody(job), "autoSyncOnly"), "0") << level;
    }
    job->setProcessingLevel(ProcessingLevelMan72);
    EXPECT_EQ(field(submitBody(job), "serviceLevel"), "72"); // Cut off, not rounded.
    job->setProcessingLevel(ProcessingLevelMan48);
    EXPECT_EQ(field(submitBody(job), "serviceLevel"), "0"); // The service quoted no product for it.
    job->setProcessingLevel(ProcessingLevelAutoSync);
    EXPECT_EQ(field(submitBody(job), "autoSyncOnly"), "1");
}

TEST_F(RegistrationTest, EveryDotLeavesTheFirstNameAndNoneTheLastName)
{
    const auto job = makeJob();
    job->setDeponentFirstName(u".J. R. Jr."_s);
    job->setDeponentLastName(u"St. John"_s);
    const std::string body = submitBody(job);
    EXPECT_EQ(field(body, "deponentFirst"), "J%20R%20Jr");
    EXPECT_EQ(field(body, "deponentLast"), "St.%20John");
}

TEST_F(RegistrationTest, WhatAJobDoesNotHaveIsSentEmpty)
{
    const auto job = Job::job();
    job->setDepositionDate(QDateTime());
    job->setShortCaption(QString());
    const std::string body = submitBody(job);
    EXPECT_NE(body.find("&totalSegmentCount=0&deponentLast=&deponentFirst=&depoDate=&transcriptSourceFormat="
                        "&transcriptDestinationFormat=all&shortCaption=&originalTranscriptName=&autoSyncOnly=1"
                        "&serviceLevel=0&rush=0&translation=0&groupBy=Deposition&comp="),
              std::string::npos)
        << body;
}

TEST_F(RegistrationTest, TheServiceTakesAJobOfTheModel)
{
    const auto job = makeJob();
    const auto media = addMedia(*job, u"a & b.mp4"_s, "a");
    media->setSourceDuration(12.0F);
    media->setStreamsInfo(u"0:a&b"_s);
    const auto submit = SubmitJobDetailsCommand::submitJobDetailsCommandWithUser(hosts, u"demo"_s, u"demo1234"_s, job);
    run(submit);
    EXPECT_EQ(submit->dataAsString(), u"5120 883"_s);
    EXPECT_EQ(submit->job(), job);
    const auto add = AddJobSegmentsCommand::addJobSegmentsCommandWithUser(hosts, u"demo"_s, u"demo1234"_s, job, media);
    run(add);
    EXPECT_EQ(add->job(), job);
    EXPECT_EQ(add->mediaFile(), media);
    const auto format =
        SetMediaFormatCommand::setMediaFormatCommandWithUser(hosts, u"demo"_s, u"demo1234"_s, job, media);
    run(format);
    EXPECT_EQ(format->job(), job);
    EXPECT_EQ(format->mediaFile(), media);
    EXPECT_TRUE(service.refusals().empty());
    const auto held = service.job(883);
    ASSERT_TRUE(held);
    EXPECT_EQ(held->segments.at(0).sourceName, "a & b.mp4");
    EXPECT_EQ(held->segments.at(0).format, "0:a&b");
}

TEST_F(RegistrationTest, ASegmentIsTheSameToTheByte)
{
    const auto job = makeJob();
    (void)addMedia(*job, u"a.mp4"_s, "a");
    const auto media = addMedia(*job, u"b & ü=1.mp4"_s, "12345");
    media->setSourceDuration(12.3456F);
    media->setSourceFileLastModifiedDate(QDateTime(QDate(2011, 7, 8), QTime(17, 5, 9)));
    EXPECT_EQ(segmentBody(job, media), "user=u&é&pass=p=w&depo=883&segment=2&src_name=b & ü=1.mp4&duration=12345"
                                       "&prod=11&size=5&mod=2011-07-08 17:05:09");
}

TEST_F(RegistrationTest, TheDurationIsWholeMillisecondsInSinglePrecision)
{
    const auto job = makeJob();
    const auto media = addMedia(*job, u"a.mp4"_s, "a");
    // In double precision 0.29 and 4.35 would come out a millisecond shorter.
    for (const auto& [seconds, milliseconds] : {std::pair{12.3456F, "12345"},
                                                {0.29F, "290"},
                                                {4.35F, "4350"},
                                                {0.0009F, "0"},
                                                {5940.0F, "5940000"},
                                                {1.9999F, "1999"}}) {
        media->setSourceDuration(seconds);
        EXPECT_EQ(field(segmentBody(job, media), "duration"), milliseconds) << seconds;
    }
}

TEST_F(RegistrationTest, TheYearOfAModificationDateIsThatOfItsWeekBecauseTheServiceHasAlwaysReceivedIt)
{
    const auto job = makeJob();
    const auto media = addMedia(*job, u"a.mp4"_s, "a");
    media->setSourceFileLastModifiedDate(QDateTime(QDate(2024, 12, 30), QTime(23, 59, 59)));
    EXPECT_EQ(field(segmentBody(job, media), "mod"), "2025-12-30 23:59:59");
    media->setSourceFileLastModifiedDate(QDateTime(QDate(2024, 12, 20), QTime(0, 0, 0)));
    EXPECT_EQ(field(segmentBody(job, media), "mod"), "2024-12-20 00:00:00");
}

TEST_F(RegistrationTest, ALargeSizeIsSentWhole)
{
    const auto job = makeJob();
    const auto media = addMedia(*job, u"a.mp4"_s, "a");
    media->setSourceFileSizeInBytes(5'000'000'000);
    EXPECT_EQ(field(segmentBody(job, media), "size"), "5000000000");
}

TEST_F(RegistrationTest, WhatASegmentDoesNotHaveIsSentAsNothing)
{
    const auto job = Job::job();
    const auto media = MediaFile::mediaFileWithPath(path(u"missing.mp4"_s));
    job->setMediaFiles({media});
    EXPECT_EQ(segmentBody(job, media),
              "user=u&é&pass=p=w&depo=0&segment=1&src_name=missing.mp4&duration=0&prod=0&size=0&mod=");
}

TEST_F(RegistrationTest, TheStreamsOfASegmentAreFullyEncoded)
{
    const auto job = makeJob();
    (void)addMedia(*job, u"a.mp4"_s, "a");
    const auto media = addMedia(*job, u"b.mp4"_s, "b");
    media->setStreamsInfo(u"Stream #0:1(und): Audio: aac, 48000 Hz & 2/ch = ü"_s);
    EXPECT_EQ(formatBody(job, media),
              "user=u&é&pass=p=w&depo=883&segment=2&format="
              "Stream%20%230%3A1%28und%29%3A%20Audio%3A%20aac%2C%2048000%20Hz%20%26%202%2Fch%20%3D%20%C3%BC");
}

TEST_F(RegistrationTest, AMediaFileOutsideItsJobIsAProgrammingError)
{
    const auto job = makeJob();
    (void)addMedia(*job, u"a.mp4"_s, "a");
    const auto stranger = MediaFile::mediaFileWithPath(writeFile(u"b.mp4"_s, "b"));
    if constexpr (Assertion::stopsTheProgram)
        EXPECT_DEATH((void)SegmentPosition::ofMediaFile(*job, stranger), "Media file not found in job");
    else
        EXPECT_EQ(SegmentPosition::ofMediaFile(*job, stranger), 0);
}

TEST_F(RegistrationTest, AFileEqualToOneOfTheJobHasItsPosition)
{
    const auto job = makeJob();
    (void)addMedia(*job, u"a.mp4"_s, "a");
    (void)addMedia(*job, u"b.mp4"_s, "b");
    EXPECT_EQ(SegmentPosition::ofMediaFile(*job, MediaFile::mediaFileWithPath(path(u"b.mp4"_s))), 2);
}

TEST(DeliveryFormatTextTest, EveryFormatHasItsWord)
{
    const QStringList words{u"all"_s,   u"ASCII"_s, u"Ostrova XML"_s,   u"RealLegal XML"_s,         u"PTF/VID"_s,
                            u"MDB"_s,   u"CMS"_s,   u"DepoSmart XML"_s, u"Flash CS3 Caption XML"_s, u"LOG"_s,
                            u"custom"_s};
    for (int format = 0; format < words.size(); ++format)
        EXPECT_EQ(SubmitJobDetailsCommand::deliveryFormatString(format), words.at(format));
}

TEST(DeliveryFormatTextTest, AnUnknownFormatIsAProgrammingError)
{
    for (const int format : {-1, 11}) {
        if constexpr (Assertion::stopsTheProgram)
            EXPECT_DEATH((void)SubmitJobDetailsCommand::deliveryFormatString(format), "unknown delivery format");
        else
            EXPECT_EQ(SubmitJobDetailsCommand::deliveryFormatString(format), QString());
    }
}
