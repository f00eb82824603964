#include "demo-service/Deliverables.h"

#include "demo-service/TimedTranscript.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace DemoService;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

Job sampleJob()
{
    Job job;
    job.depoNumber = 883;
    job.details = {{"deponentFirst", "JR"}, {"deponentLast", "O\"Neil"}, {"depoDate", "2011-03-04"}};
    job.transcriptName = "Smith.txt";
    job.transcript = "one\r\ntwo & <three>\nfo\xe9r\nlast";
    job.segments.resize(2);
    job.segments[0].sourceName = "a.mov";
    job.segments[0].durationMs = 4000;
    job.segments[0].uploadDurationMs = 3000;
    job.segments[1].sourceName = "b.mov";
    job.segments[1].durationMs = 5000;
    return job;
}

std::vector<std::string> namesOf(const std::string& format)
{
    std::vector<std::string> names;
    for (const auto& [name, bytes] : deliverablesOf(sampleJob(), format)) {
        EXPECT_FALSE(bytes.empty()) << name;
        names.push_back(name);
    }
    return names;
}

std::string contentsOf(const std::string& name)
{
    for (const auto& [fileName, bytes] : deliverablesOf(sampleJob(), "all"))
        if (fileName == name)
            return bytes;
    return {};
}

} // namespace

TEST(Deliverables, linesAreSpreadEvenlyOverTheRecordings)
{
    const TimedTranscript transcript = timedTranscript(sampleJob());
    EXPECT_EQ(transcript.durationMs, 8000);
    ASSERT_EQ(transcript.lines.size(), 4U);
    EXPECT_EQ(transcript.lines[1].startMs, 2000);
    EXPECT_EQ(transcript.lines[1].segment, 1);
    EXPECT_EQ(transcript.lines[2].startMs, 4000);
    EXPECT_EQ(transcript.lines[2].segment, 2);
    EXPECT_EQ(transcript.lines[2].segmentStartMs, 1000);
}

TEST(Deliverables, textThatIsNotUtf8BecomesReadable)
{
    Job job = sampleJob();
    job.transcript = std::string("fo\xe9r\n\xc3\xa9\nnul\0tab\t\n", 17);
    const TimedTranscript transcript = timedTranscript(job);
    ASSERT_EQ(transcript.lines.size(), 3U);
    EXPECT_EQ(transcript.lines[0].text, "fo\xc3\xa9r");
    EXPECT_EQ(transcript.lines[1].text, "\xc3\xa9");
    EXPECT_EQ(transcript.lines[2].text, "nul tab ");
}

TEST(Deliverables, theFullSetReachesEverySubfolder)
{
    EXPECT_THAT(namesOf("all"),
                ElementsAre("Smith.txt", "C:\\out\\Smith_rl.xml", "Smith.xml", "Smith.sync", "Smith.cms", "Smith.ptf",
                            "Smith.vid", "Smith.xmef", "Smith.clt", "Smith_id.mdb", "Smith.mdb", "Smith_ds.xml",
                            "Smith_caption.xml", "Smith.zip"));
}

TEST(Deliverables, eachFormatHasItsOwnFiles)
{
    EXPECT_THAT(namesOf("ASCII"), ElementsAre("Smith.txt"));
    EXPECT_THAT(namesOf("Ostrova XML"), ElementsAre("Smith.xml", "Smith.sync"));
    EXPECT_THAT(namesOf("RealLegal XML"), ElementsAre("C:\\out\\Smith_rl.xml"));
    EXPECT_THAT(namesOf("PTF/VID"), ElementsAre("Smith.ptf", "Smith.vid"));
    EXPECT_THAT(namesOf("MDB"), ElementsAre("Smith_id.mdb", "Smith.mdb"));
    EXPECT_THAT(namesOf("CMS"), ElementsAre("Smith.cms"));
    EXPECT_THAT(namesOf("DepoSmart XML"), ElementsAre("Smith_ds.xml"));
    EXPECT_THAT(namesOf("Flash CS3 Caption XML"), ElementsAre("Smith_caption.xml"));
    EXPECT_THAT(namesOf("LOG"), ElementsAre("Smith.log"));
    EXPECT_THAT(namesOf("custom"), ElementsAre("Smith.txt", "Smith.zip"));
}

TEST(Deliverables, textCarriesEachLineWithItsTime)
{
    EXPECT_THAT(contentsOf("Smith.txt"), HasSubstr("00:00:02.000  two & <three>\r\n"));
}

TEST(Deliverables, xmlIsEscaped)
{
    const std::string xml = contentsOf("Smith.xml");
    EXPECT_THAT(xml, HasSubstr("deponent=\"JR O&quot;Neil\""));
    EXPECT_THAT(xml, HasSubstr("<line start=\"00:00:04.000\" recording=\"2\" at=\"00:00:01.000\">fo\xc3\xa9r</line>"));
    EXPECT_THAT(xml, HasSubstr("two &amp; &lt;three&gt;"));
}

TEST(Deliverables, anEmptyTranscriptStillGivesFiles)
{
    Job job = sampleJob();
    job.transcript = "";
    job.segments.clear();
    EXPECT_EQ(deliverablesOf(job, "all").size(), 14U);
}
