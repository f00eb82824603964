#include "ui/transformers/ValueTransformers.h"

#include "foundation/Assertion.h"
#include "model/Job.h"
#include "support/RecordedLog.h"
#include "support/TemporaryHome.h"
#include "ui/transformers/JobStatusToStringTransformer.h"

#include <QSize>

#include <limits>
#include <map>

using namespace Qt::StringLiterals;

namespace {

class ValueTransformersTest : public TemporaryHome
{
protected:
    ValueTransformersTest()
    {
        ValueTransformers::registerMainWindowTransformers();
        ValueTransformers::registerSubmitJobWindowTransformers();
    }

    [[nodiscard]] static QVariant transformed(const char* name, const QVariant& value)
    {
        return ValueTransformers::named(QString::fromLatin1(name))->transformedValue(value);
    }
    [[nodiscard]] static QVariant reversed(const QVariant& value)
    {
        return ValueTransformers::named(u"ProcessingLevelToTagTransformer"_s)->reverseTransformedValue(value);
    }
    [[nodiscard]] static QVariant wrapped(const std::shared_ptr<MediaObject>& object)
    {
        return QVariant::fromValue(object);
    }
    [[nodiscard]] static QString statusText(const std::shared_ptr<MediaObject>& object)
    {
        return transformed("JobStatusToStringTransformer", wrapped(object)).toString();
    }
    [[nodiscard]] static QString time(const QVariant& seconds)
    {
        return transformed("SecondsNumberToHHMMSSStringTransformer", seconds).toString();
    }
    [[nodiscard]] static QString footer(const QVariant& statuses)
    {
        return transformed("HasUncompletedLocalJobsToStringTransformer", statuses).toString();
    }

    // Everything that is neither a number nor a text nor a media object.
    [[nodiscard]] static QVariantList otherValues()
    {
        return {QVariantList{1}, QVariantMap{}, QSize(1, 2), QByteArray("5")};
    }

    const QString pleaseDoNotClose = u"Please do not close Quillpost - local processing in progress"_s;
    const QString youMayClose = u"You may close Quillpost - local processing complete"_s;
    const QString noWork = u"No work pending - click to request refresh"_s;
};

// --- The table ---

class Constant : public ValueTransformer
{
public:
    explicit Constant(int value) : m_value(value) {}
    [[nodiscard]] QVariant transformedValue(const QVariant&) const override { return m_value; }

private:
    int m_value;
};

TEST_F(ValueTransformersTest, EachIsFoundUnderTheNameOfItsClass)
{
    for (const char* name :
         {"JobStatusToStringTransformer", "StatusToProgressVisibilityTransformer", "ScoreToAccuracyTransformer",
          "HasUncompletedLocalJobsToStringTransformer", "MediaObjectToDepoNumTransformer",
          "ProcessingLevelToTagTransformer", "SecondsNumberToHHMMSSStringTransformer"})
        EXPECT_NE(ValueTransformers::named(QString::fromLatin1(name)), nullptr) << name;
    EXPECT_EQ(ValueTransformers::named(u"jobStatusToStringTransformer"_s), nullptr);
    EXPECT_EQ(ValueTransformers::named(QString()), nullptr);
}

TEST_F(ValueTransformersTest, TheFirstRegistrationOfANameStays)
{
    ValueTransformers::registerTransformer(u"Constant"_s, std::make_unique<Constant>(1));
    const ValueTransformer* first = ValueTransformers::named(u"Constant"_s);
    ValueTransformers::registerTransformer(u"Constant"_s, std::make_unique<Constant>(2));
    EXPECT_EQ(ValueTransformers::named(u"Constant"_s), first);
    EXPECT_EQ(transformed("Constant", {}), 1);

    const ValueTransformer* score = ValueTransformers::named(u"ScoreToAccuracyTransformer"_s);
    ValueTransformers::registerMainWindowTransformers();
    EXPECT_EQ(ValueTransformers::named(u"ScoreToAccuracyTransformer"_s), score);
}

TEST_F(ValueTransformersTest, OnlyTheProcessingLevelHasAWayBack)
{
    for (const char* name : {"JobStatusToStringTransformer", "StatusToProgressVisibilityTransformer",
                             "ScoreToAccuracyTransformer", "HasUncompletedLocalJobsToStringTransformer",
                             "MediaObjectToDepoNumTransformer", "SecondsNumberToHHMMSSStringTransformer"}) {
        const ValueTransformer* transformer = ValueTransformers::named(QString::fromLatin1(name));
        EXPECT_FALSE(transformer->allowsReverseTransformation()) << name;
        EXPECT_FALSE(transformer->reverseTransformedValue(1).isValid()) << name;
    }
    EXPECT_TRUE(ValueTransformers::named(u"ProcessingLevelToTagTransformer"_s)->allowsReverseTransformation());
}

TEST_F(ValueTransformersTest, NullAndValuesOfOtherKindsGiveNull)
{
    for (const char* name : {"JobStatusToStringTransformer", "StatusToProgressVisibilityTransformer",
                             "ScoreToAccuracyTransformer", "MediaObjectToDepoNumTransformer",
                             "ProcessingLevelToTagTransformer", "SecondsNumberToHHMMSSStringTransformer"}) {
        EXPECT_FALSE(transformed(name, {}).isValid()) << name;
        for (const QVariant& other : otherValues())
            EXPECT_FALSE(transformed(name, other).isValid()) << name << ' ' << other.typeName();
    }
    EXPECT_FALSE(reversed({}).isValid());
}

// --- Status ---

TEST_F(ValueTransformersTest, AStatusIsShownInItsWords)
{
    const std::shared_ptr<MediaObject> job = Job::job();
    job->setStatus(JobStatusUploading);
    EXPECT_EQ(statusText(job), u"Uploading files"_s);
    job->setStatus(18);
    EXPECT_EQ(statusText(job), u"unknown"_s);
    job->setStatus(-1);
    EXPECT_EQ(statusText(job), u"unknown"_s);
}

TEST_F(ValueTransformersTest, JoinedCMSOnTheServerIsInProcessForAJobAndItselfForAFile)
{
    const std::shared_ptr<MediaObject> job = Job::job();
    const std::shared_ptr<MediaObject> file = MediaFile::serverMediaFile(1);
    for (const auto& object : {job, file}) {
        object->setStatus(JobStatusOnServer);
        object->setServerStatus(u"JoinedCMS"_s);
    }
    EXPECT_EQ(statusText(job), u"In Process"_s);
    EXPECT_EQ(statusText(file), u"JoinedCMS"_s);
}

TEST_F(ValueTransformersTest, AFileOfWhichTheServiceSaidNothingHasNoStatusText)
{
    const std::shared_ptr<MediaObject> file = MediaFile::serverMediaFile(1);
    file->setStatus(JobStatusOnServer);
    EXPECT_FALSE(transformed("JobStatusToStringTransformer", wrapped(file)).isValid());
    const std::shared_ptr<MediaObject> job = Job::job();
    job->setStatus(JobStatusOnServer);
    EXPECT_EQ(statusText(job), u"Unknown"_s);
}

TEST_F(ValueTransformersTest, WhatIsNoMediaObjectHasNoStatusText)
{
    EXPECT_FALSE(transformed("JobStatusToStringTransformer", 5).isValid());
    EXPECT_FALSE(transformed("JobStatusToStringTransformer", u"5"_s).isValid());
    EXPECT_FALSE(transformed("JobStatusToStringTransformer", wrapped(nullptr)).isValid());
}

TEST_F(ValueTransformersTest, MediaObjectsAreReadFromPointersOfTheirOwnClassToo)
{
    const auto job = Job::job();
    job->setDepoNum(7);
    EXPECT_EQ(transformed("JobStatusToStringTransformer", QVariant::fromValue(job)), u"Idle"_s);
    EXPECT_EQ(transformed("MediaObjectToDepoNumTransformer", QVariant::fromValue(job)), 7);
    const auto file = MediaFile::serverMediaFile(1);
    file->setStatus(JobStatusUploaded);
    EXPECT_EQ(transformed("JobStatusToStringTransformer", QVariant::fromValue(file)), u"Files uploaded"_s);
}

TEST_F(ValueTransformersTest, ServerWordsOfWhatIsNoMediaObjectAreAProgrammingError)
{
    EXPECT_EQ(JobStatusToStringTransformer::userStringForServerStatus(*Job::job()), u"Unknown"_s);
    const QObject object;
    if constexpr (Assertion::stopsTheProgram) {
        EXPECT_DEATH((void)JobStatusToStringTransformer::userStringForServerStatus(object),
                     "Invalid media object type");
    } else {
        EXPECT_EQ(JobStatusToStringTransformer::userStringForServerStatus(object), u"Invalid"_s);
    }
}

TEST_F(ValueTransformersTest, AProgressBarRunsInFourStatusesOnly)
{
    for (int status = -1; status <= 18; ++status) {
        const QVariant visible = transformed("StatusToProgressVisibilityTransformer", status);
        EXPECT_EQ(visible.typeId(), QMetaType::Bool);
        EXPECT_EQ(visible.toBool(), status == 5 || status == 9 || status == 13 || status == 15) << status;
    }
    EXPECT_EQ(transformed("StatusToProgressVisibilityTransformer", u"9"_s), true);
}

// --- Numbers ---

TEST_F(ValueTransformersTest, AccuracyRisesByOneForEveryTwentyOfScore)
{
    const std::map<int, int> accuracies{{0, 1},  {19, 1},  {20, 2}, {39, 2},  {40, 3},  {79, 4}, {80, 5},
                                        {99, 5}, {100, 6}, {-1, 1}, {-19, 1}, {-20, 0}, {-21, 0}};
    for (const auto& [score, accuracy] : accuracies)
        EXPECT_EQ(transformed("ScoreToAccuracyTransformer", score), accuracy) << score;
    EXPECT_EQ(transformed("ScoreToAccuracyTransformer", u"45"_s), 3);
    EXPECT_EQ(transformed("ScoreToAccuracyTransformer", std::numeric_limits<int>::max()), 107374183);
}

TEST_F(ValueTransformersTest, AnOptionalNumberIsReadWhereItIsThere)
{
    EXPECT_EQ(transformed("ScoreToAccuracyTransformer", QVariant::fromValue(std::optional<int>(99))), 5);
    EXPECT_FALSE(transformed("ScoreToAccuracyTransformer", QVariant::fromValue(std::optional<int>())).isValid());
    const auto file = MediaFile::serverMediaFile(1);
    EXPECT_FALSE(transformed("ScoreToAccuracyTransformer", file->property("scoreValue")).isValid());
    EXPECT_FALSE(transformed("SecondsNumberToHHMMSSStringTransformer", file->property("sourceDuration")).isValid());
    file->setScoreValue(85);
    file->setSourceDuration(61.5F);
    EXPECT_EQ(transformed("ScoreToAccuracyTransformer", file->property("scoreValue")), 5);
    EXPECT_EQ(time(file->property("sourceDuration")), u"0:01:01"_s);
    EXPECT_EQ(time(file->property("totalValue")), u"0:01:01"_s);
}

TEST_F(ValueTransformersTest, SecondsAreShownAsHoursMinutesAndSeconds)
{
    EXPECT_EQ(time(3725.7), u"1:02:05"_s);
    EXPECT_EQ(time(59), u"0:00:59"_s);
    EXPECT_EQ(time(0), u"0:00:00"_s);
    EXPECT_EQ(time(59.99F), u"0:00:59"_s);
    EXPECT_EQ(time(60), u"0:01:00"_s);
    EXPECT_EQ(time(3599), u"0:59:59"_s);
    EXPECT_EQ(time(3600), u"1:00:00"_s);
    EXPECT_EQ(time(u"3600"_s), u"1:00:00"_s);
    EXPECT_EQ(time(-61), u"0:-01:-01"_s);
}

TEST_F(ValueTransformersTest, HoursAreNotWrappedAtADay)
{
    EXPECT_EQ(time(90000), u"25:00:00"_s);
}

TEST_F(ValueTransformersTest, ADurationThatNoIntHoldsIsShownAsTheLongest)
{
    const QString longest = time(2147483520.0F);
    EXPECT_EQ(time(1e30), longest);
    EXPECT_EQ(longest, u"596523:12:00"_s);
    EXPECT_EQ(time(-1e30), u"-596523:-12:00"_s);
    for (const double value : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()})
        EXPECT_FALSE(transformed("SecondsNumberToHHMMSSStringTransformer", value).isValid());
}

TEST_F(ValueTransformersTest, OnlyAJobHasAJobNumber)
{
    const auto job = Job::job();
    EXPECT_FALSE(transformed("MediaObjectToDepoNumTransformer", wrapped(job)).isValid());
    job->setDepoNum(883);
    EXPECT_EQ(transformed("MediaObjectToDepoNumTransformer", wrapped(job)), 883);
    EXPECT_FALSE(transformed("MediaObjectToDepoNumTransformer", wrapped(MediaFile::serverMediaFile(1))).isValid());
    EXPECT_FALSE(transformed("MediaObjectToDepoNumTransformer", 883).isValid());
}

// --- Processing level ---

TEST_F(ValueTransformersTest, ALevelAndItsTagAreTheSameNumber)
{
    for (int level = 0; level <= 4; ++level) {
        EXPECT_EQ(transformed("ProcessingLevelToTagTransformer", level), level);
        EXPECT_EQ(reversed(level), level);
    }
    EXPECT_EQ(transformed("ProcessingLevelToTagTransformer", 3).typeId(), QMetaType::Int);
}

TEST_F(ValueTransformersTest, ANumberThatIsNoLevelIsAProgrammingError)
{
    for (const int level : {5, 7, -1}) {
        if constexpr (Assertion::stopsTheProgram) {
            EXPECT_DEATH((void)transformed("ProcessingLevelToTagTransformer", level), "invalid ProcessingLevel value");
            EXPECT_DEATH((void)reversed(level), "invalid tag of processing level radio group");
        } else {
            const RecordedLog log;
            EXPECT_EQ(transformed("ProcessingLevelToTagTransformer", level), 0);
            EXPECT_TRUE(log.contains(u"invalid ProcessingLevel value"_s));
            EXPECT_EQ(reversed(level), 0);
            EXPECT_TRUE(log.contains(u"invalid tag of processing level radio group"_s));
        }
    }
}

// --- The footer line ---

TEST_F(ValueTransformersTest, TheFirstJobThatDecidesGivesTheFooterLine)
{
    EXPECT_EQ(footer(QVariantList{17, 12, 3}), youMayClose);
    EXPECT_EQ(footer(QVariantList{16, 3, 12}), pleaseDoNotClose);
}

TEST_F(ValueTransformersTest, AnUploadedJobListedBeforeOneThatUploadsSaysThatQuillpostMayBeClosed)
{
    EXPECT_EQ(footer(QVariantList{10, 9}), youMayClose);
    EXPECT_EQ(footer(QVariantList{9, 10}), pleaseDoNotClose);
}

TEST_F(ValueTransformersTest, WithoutAJobThatDecidesThereIsNoWorkPending)
{
    EXPECT_EQ(footer(QVariantList{}), noWork);
    EXPECT_EQ(footer(QVariantList{16, 17, 18, 99}), noWork);
    EXPECT_EQ(footer({}), noWork);
    EXPECT_EQ(footer(3), noWork);
    EXPECT_EQ(footer(u"3"_s), noWork);
}

TEST_F(ValueTransformersTest, EveryStatusDecidesAsItShould)
{
    for (int status = -1; status <= 17; ++status) {
        const QString expected = status < 10 || status == 15 ? pleaseDoNotClose : status <= 14 ? youMayClose : noWork;
        EXPECT_EQ(footer(QVariantList{status}), expected) << status;
    }
}

TEST_F(ValueTransformersTest, AJobThatIsProcessedAgainMayBeLeftAloneByTheFooter)
{
    EXPECT_EQ(footer(QVariantList{13}), youMayClose);
}

TEST_F(ValueTransformersTest, AJobWithoutAReadableStatusMayBeAtWork)
{
    EXPECT_EQ(footer(QVariantList{QVariant(), 17}), pleaseDoNotClose);
}

} // namespace
