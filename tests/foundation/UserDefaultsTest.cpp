#include "foundation/UserDefaults.h"

#include "support/TemporaryHome.h"
#include "support/Waiting.h"

#include <QFileInfo>
#include <QThread>

#include <atomic>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

class UserDefaultsTest : public TemporaryHome
{
protected:
    [[nodiscard]] QString file() const { return path(u"settings/Quillpost.ini"_s); }
};

bool isForTheUserAlone(const QString& file)
{
    return (QFileInfo(file).permissions() & ~(QFile::ReadUser | QFile::WriteUser)) ==
           (QFile::ReadOwner | QFile::WriteOwner);
}

} // namespace

TEST_F(UserDefaultsTest, AnUnknownKeyHasNoValue)
{
    const UserDefaults defaults(file());
    EXPECT_FALSE(defaults.value(u"Nothing"_s).isValid());
    EXPECT_FALSE(defaults.isStored(u"Nothing"_s));
}

TEST_F(UserDefaultsTest, ARegisteredValueIsReadButNotStored)
{
    {
        UserDefaults defaults(file());
        defaults.registerDefaults({{u"MaxNumberOfUploads"_s, 2}});
        EXPECT_EQ(defaults.value(u"MaxNumberOfUploads"_s), QVariant(2));
        EXPECT_FALSE(defaults.isStored(u"MaxNumberOfUploads"_s));
        defaults.setValue(u"Other"_s, 1);
        defaults.synchronize();
    }
    EXPECT_FALSE(readFile(file()).contains("MaxNumberOfUploads"));
}

TEST_F(UserDefaultsTest, AKeyRegisteredAgainTakesTheNewValueAndOthersStay)
{
    UserDefaults defaults(file());
    defaults.registerDefaults({{u"A"_s, 1}, {u"B"_s, 2}});
    defaults.registerDefaults({{u"A"_s, 3}});
    EXPECT_EQ(defaults.value(u"A"_s), QVariant(3));
    EXPECT_EQ(defaults.value(u"B"_s), QVariant(2));
}

TEST_F(UserDefaultsTest, AStoredValueGoesBeforeTheRegisteredOneUntilRemoved)
{
    UserDefaults defaults(file());
    defaults.setValue(u"A"_s, 5);
    defaults.registerDefaults({{u"A"_s, 1}});
    EXPECT_EQ(defaults.value(u"A"_s), QVariant(5));
    EXPECT_TRUE(defaults.isStored(u"A"_s));
    defaults.removeValue(u"A"_s);
    EXPECT_EQ(defaults.value(u"A"_s), QVariant(1));
    EXPECT_FALSE(defaults.isStored(u"A"_s));
}

TEST_F(UserDefaultsTest, StoringAnInvalidValueRemovesTheKey)
{
    UserDefaults defaults(file());
    defaults.registerDefaults({{u"A"_s, 1}});
    defaults.setValue(u"A"_s, 5);
    defaults.setValue(u"A"_s, QVariant());
    EXPECT_FALSE(defaults.isStored(u"A"_s));
    EXPECT_EQ(defaults.value(u"A"_s), QVariant(1));
}

TEST_F(UserDefaultsTest, ValuesOfEveryKindSurviveReopening)
{
    const QVariantMap values{{u"Text"_s, u"a; b, c=\"d\" \\ %1 é"_s},
                             {u"Empty"_s, u""_s},
                             {u"List"_s, QStringList{u"one"_s, u"two, three"_s}},
                             {u"Bytes"_s, QByteArray("\0\xff\n", 3)},
                             {u"Number"_s, 12},
                             {u"Fraction"_s, 0.5},
                             {u"Flag"_s, true}};
    {
        UserDefaults defaults(file());
        for (auto value = values.begin(); value != values.end(); ++value)
            defaults.setValue(value.key(), value.value());
    }
    const UserDefaults reopened(file());
    for (const QString& key : {u"Text"_s, u"Empty"_s, u"List"_s, u"Bytes"_s})
        EXPECT_EQ(reopened.value(key), values.value(key)) << qPrintable(key);
    EXPECT_EQ(reopened.value(u"Number"_s).toInt(), 12);
    EXPECT_EQ(reopened.value(u"Fraction"_s).toDouble(), 0.5);
    EXPECT_TRUE(reopened.value(u"Flag"_s).toBool());
}

TEST_F(UserDefaultsTest, KeysThatArePathsStayDistinct)
{
    const QStringList keys{u"/a/b.mov"_s,       u"/a//b.mov"_s, u"a/b.mov"_s,
                           u"/a\\b.mov"_s,      u"/a/b.mov/"_s, u"%2Fa/b"_s,
                           u"/a/b"_s,           u"%2Fa%2Fb"_s,  u"/a/50% é.mov"_s,
                           u"/a/50%25 é.mov"_s, u"/A/B.mov"_s,  u"/a/b=c;d.mov"_s,
                           u"/a/[b].mov"_s,     u"/"_s,         u"\\"_s};
    {
        UserDefaults defaults(file());
        for (const QString& key : keys)
            defaults.setValue(key, key + u" value"_s);
        for (const QString& key : keys)
            EXPECT_EQ(defaults.value(key), QVariant(key + u" value"_s)) << qPrintable(key);
    }
    UserDefaults reopened(file());
    for (const QString& key : keys)
        EXPECT_EQ(reopened.value(key), QVariant(key + u" value"_s)) << qPrintable(key);
    reopened.removeValue(keys.constFirst());
    EXPECT_FALSE(reopened.isStored(keys.constFirst()));
    EXPECT_TRUE(reopened.isStored(keys.at(1)));
}

TEST_F(UserDefaultsTest, PlainKeysStandInTheFileAsPeopleKnowThem)
{
    {
        UserDefaults defaults(file());
        defaults.setValue(u"SecureHost"_s, u"https://localhost"_s);
    }
    EXPECT_TRUE(readFile(file()).contains("SecureHost=https://localhost"));
}

TEST_F(UserDefaultsTest, TheFileIsForTheUserAlone)
{
    UserDefaults defaults(file());
    defaults.setValue(u"A"_s, 1);
    defaults.synchronize();
    EXPECT_TRUE(isForTheUserAlone(file()));
    defaults.setValue(u"A"_s, 2);
    defaults.synchronize();
    EXPECT_TRUE(isForTheUserAlone(file()));
}

TEST_F(UserDefaultsTest, TheFileIsForTheUserAloneWhenItIsWrittenInPassing)
{
    UserDefaults defaults(file());
    defaults.setValue(u"A"_s, 1);
    EXPECT_TRUE(Waiting::until([this] { return QFileInfo(file()).size() > 0; }));
    EXPECT_TRUE(isForTheUserAlone(file()));
}

TEST_F(UserDefaultsTest, OnlyARealChangeIsTold)
{
    UserDefaults defaults(file());
    QStringList told;
    QObject::connect(&defaults, &UserDefaults::valueChanged, &defaults, [&](const QString& key) { told << key; });
    defaults.setValue(u"A"_s, 1);
    defaults.setValue(u"A"_s, 1);
    defaults.setValue(u"B"_s, u"x"_s);
    defaults.setValue(u"A"_s, 2);
    defaults.removeValue(u"A"_s);
    defaults.removeValue(u"A"_s);
    EXPECT_EQ(told, (QStringList{u"A"_s, u"B"_s, u"A"_s, u"A"_s}));
}

TEST_F(UserDefaultsTest, RegisteringIsAChangeWhereNothingIsStored)
{
    UserDefaults defaults(file());
    defaults.setValue(u"Stored"_s, 1);
    QStringList told;
    QObject::connect(&defaults, &UserDefaults::valueChanged, &defaults, [&](const QString& key) { told << key; });
    defaults.registerDefaults({{u"Stored"_s, 2}, {u"New"_s, 3}});
    EXPECT_EQ(told, QStringList{u"New"_s});
}

TEST_F(UserDefaultsTest, AChangeIsToldOnTheThreadThatMadeIt)
{
    UserDefaults defaults(file());
    std::thread::id toldOn;
    QObject::connect(
        &defaults, &UserDefaults::valueChanged, &defaults, [&] { toldOn = std::this_thread::get_id(); },
        Qt::DirectConnection);
    std::thread changer([&] { defaults.setValue(u"A"_s, 1); });
    const std::thread::id changedOn = changer.get_id();
    changer.join();
    EXPECT_EQ(toldOn, changedOn);
}

TEST_F(UserDefaultsTest, ABindingGetsTheValueNowAndAtEveryChangeOfItsKey)
{
    UserDefaults defaults(file());
    defaults.registerDefaults({{u"A"_s, 1}});
    QList<int> applied;
    {
        QObject context;
        defaults.bind(u"A"_s, &context, [&](const QVariant& value) { applied << value.toInt(); });
        defaults.setValue(u"A"_s, 2);
        defaults.setValue(u"B"_s, 9);
        defaults.removeValue(u"A"_s);
    }
    defaults.setValue(u"A"_s, 3);
    EXPECT_EQ(applied, (QList<int>{1, 2, 1}));
}

TEST_F(UserDefaultsTest, ThreadsMayReadAndWriteAtOnce)
{
    UserDefaults defaults(file());
    defaults.registerDefaults({{u"A"_s, 0}});
    std::atomic<int> impossible{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&, i] {
            for (int round = 0; round < 200; ++round) {
                defaults.setValue(u"A"_s, round);
                const int read = defaults.value(u"A"_s).toInt();
                if (read < 0 || read >= 200)
                    ++impossible;
                defaults.setValue(u"/own/%1"_s.arg(i), round);
                if (defaults.value(u"/own/%1"_s.arg(i)) != QVariant(round))
                    ++impossible;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(impossible, 0);
}

TEST_F(UserDefaultsTest, AFileThatCannotBeWrittenIsTold)
{
    const QString blocked = writeFile(u"not-a-folder"_s, "contents") + u"/Quillpost.ini"_s;
    UserDefaults defaults(blocked);
    defaults.setValue(u"A"_s, 1);
    defaults.synchronize();
    EXPECT_FALSE(defaults.isWritable());
    EXPECT_EQ(defaults.value(u"A"_s), QVariant(1));
}

TEST_F(UserDefaultsTest, AWritableFileIsToldSo)
{
    UserDefaults defaults(file());
    defaults.setValue(u"A"_s, 1);
    defaults.synchronize();
    EXPECT_TRUE(defaults.isWritable());
}

TEST_F(UserDefaultsTest, TheStandardStoreIsTheOneThatWasSet)
{
    UserDefaults other(file());
    UserDefaults::setStandard(&other);
    EXPECT_EQ(&UserDefaults::standard(), &other);
    UserDefaults::setStandard(&defaults());
    EXPECT_EQ(&UserDefaults::standard(), &defaults());
}
