// Each request on the road of a job under each fault, met once and met for good.

#include "JobRun.h"

namespace {

class JobRequestFaultsTest : public testing::TestWithParam<JobRequest>
{};

TEST_P(JobRequestFaultsTest, LoseNoJob)
{
    const QString title = QString::fromUtf8(GetParam().title);
    FaultTable table(title);
    for (const FaultKind kind : Faults::triedFor(title)) {
        SCOPED_TRACE(Faults::nameOf(kind).toStdString());
        const Outcome once = JobRun(GetParam(), kind).meet(Faults::Often::Once);
        SCOPED_TRACE("for good");
        table.add(kind, once, JobRun(GetParam(), kind).meet(Faults::Often::ForGood));
    }
    table.compareWithDocument();
}

const std::string segment = ".mp3[";
const std::string transcript = ".txt[";

INSTANTIATE_TEST_SUITE_P(
    Requests, JobRequestFaultsTest,
    testing::Values(
        JobRequest{"Submission", "Submission of a job", Stage::New, 1, {"jobdetails.php"}},
        JobRequest{"Segment",
                   "Announcement of a recording",
                   Stage::Registered,
                   7,
                   {"add_segment.php", {}, 0, "UPLOAD COMPLETE", true}},
        JobRequest{
            "Format", "Format of a recording", Stage::Registered, 17, {"set_media_format.php"}, {}, false, false, true},
        JobRequest{"SegmentUpload",
                   "Upload of a recording",
                   Stage::Registered,
                   9,
                   {"test_custupload2.php", segment, 0, "OK: 4711"}},
        JobRequest{"TranscriptUpload",
                   "Upload of the transcript",
                   Stage::Registered,
                   11,
                   {"test_custupload2.php", transcript, 0, "OK: 4711"},
                   {},
                   false,
                   false,
                   false,
                   true},
        JobRequest{"Status", "Status of the jobs", Stage::Sent, 10, {"checkstatus.php"}, {}, false, true},
        JobRequest{"Instructions", "Instructions", Stage::Sent, 17, {"get_instructions.php"}},
        JobRequest{
            "LogUpload", "Upload of the log", Stage::Sent, 17, {"qpt_debug_upload.php", {}, 0, "OK: 4711"}, {}, true},
        JobRequest{"Reprocessing",
                   "Upload of a recording that was asked for again",
                   Stage::AskedAgain,
                   13,
                   {"test_custupload2.php", segment, 0, "OK: 4711"}},
        JobRequest{"DeliveryOption",
                   "Delivery option of a job",
                   Stage::Sent,
                   15,
                   {"miscstuff.php", "field=delivery_option"},
                   "Deposition",
                   false,
                   false,
                   true},
        JobRequest{"Deponent",
                   "Deponent of a job",
                   Stage::Sent,
                   15,
                   {"miscstuff.php", "field=deponent2"},
                   "Deposition",
                   false,
                   false,
                   true},
        JobRequest{"Date",
                   "Date of a deposition",
                   Stage::Sent,
                   15,
                   {"miscstuff.php", "field=depo_date"},
                   "Deposition",
                   false,
                   false,
                   true},
        JobRequest{"Caption",
                   "Caption of a job",
                   Stage::Sent,
                   15,
                   {"miscstuff.php", {}, 1},
                   "ShortCaption",
                   false,
                   false,
                   true},
        JobRequest{"FirstName",
                   "Name of the first result file",
                   Stage::Sent,
                   15,
                   {"test_downloadjob2.php", "just_get_name=1"},
                   {},
                   false,
                   false,
                   true},
        JobRequest{"LaterName",
                   "Name of a later result file",
                   Stage::Sent,
                   15,
                   {"test_downloadjob2.php", "just_get_name=1", 1},
                   {},
                   false,
                   false,
                   true},
        JobRequest{"ResultFile",
                   "Contents of a result file",
                   Stage::Sent,
                   15,
                   {"test_downloadjob2.php", "starting_point=0&file_num=0"},
                   {},
                   false,
                   false,
                   true},
        JobRequest{"Mark",
                   "Report of the delivery",
                   Stage::Sent,
                   15,
                   {"test_downloadjob2.php", "starting_point=0&file_num=COUNT"},
                   {},
                   false,
                   false,
                   true},
        JobRequest{
            "DemoDiscFile", "A demo-disc file", Stage::Sent, 15, {"OstrovizerDownloader.exe"}, {}, false, false, true}),
    [](const auto& tested) { return std::string(tested.param.name); });

} // namespace
