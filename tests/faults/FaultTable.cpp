#include "FaultTable.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype longestShown = 90;
constexpr qsizetype longestTold = 1500;

// Sections by title, in the order in which the tests ran, for the document and the figure of the whole run.
struct Run
{
    std::vector<std::pair<QString, QStringList>> sections;
    int tried = 0;
    int inAll = 0;
    int lost = 0;
    int hung = 0;
};

Run& run()
{
    static Run all;
    return all;
}

QString figureOf(int tried, int inAll, int lost, int hung)
{
    const QString of = tried == inAll ? QString() : u" of %1"_s.arg(inAll);
    return u"faults tried %1%2, jobs lost %3, crashes 0, hangs %4"_s.arg(tried).arg(of).arg(lost).arg(hung);
}

QString sectionOf(const QString& title, const QStringList& rows)
{
    return u"## "_s + title + u"\n\n| Fault | Told, once | Then | Told, for good | Then |\n|---|---|---|---|---|\n"_s +
           rows.join(u'\n') + u'\n';
}

QString introduction(int tried)
{
    return uR"(# Faults

What each request of the client comes to under each fault, met once and met for good: the words that the user gets, and
how the work goes on. The service that these were tried against is the demo service; the program is `test_faults`, which
checks every row, and which writes this file: see [the tests](../tests/README.md).

    %1

- *lost* stands for the number and words of a connection that ended early (18, 35, 52, 55 or 56), which depend on the
  moment; *N* for a job's number; `~` for the home folder. Long texts are cut.
- "stays at 1" is the status at which a job stands still until it is taken up again: by the user's Try Again, which is
  tried where the fault was met once, or by the next run of the program. A job that stands still is in the list and in
  the saved state.
- Nothing is tried again by itself but the two polls and the upload of the log, and no request has a time limit: a
  service that is silent is waited for.
- A reply of which only the last piece is read, a word that is no name of a file, and the contents of a file that the
  service sends in good order cannot be told from good ones.
)"_s.arg(figureOf(tried, tried, 0, 0));
}

QStringList documentedRows(const QString& title)
{
    QFile file(QStringLiteral(QUILLPOST_FAULTS_DOCUMENT));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QString text = QString::fromUtf8(file.readAll());
    const qsizetype begin = text.indexOf(u"\n## "_s + title + u'\n');
    if (begin < 0)
        return {};
    const qsizetype end = text.indexOf(u"\n## "_s, begin + 1);
    QStringList rows;
    for (const QString& line : text.mid(begin, end < 0 ? -1 : end - begin).split(u'\n'))
        if (line.startsWith(u"| "_s) && !line.startsWith(u"| Fault "_s))
            rows.append(line);
    return rows;
}

QStringList documentedTitles()
{
    QFile file(QStringLiteral(QUILLPOST_FAULTS_DOCUMENT));
    QStringList titles;
    if (file.open(QIODevice::ReadOnly))
        for (const QString& line : QString::fromUtf8(file.readAll()).split(u'\n'))
            if (line.startsWith(u"## "_s))
                titles.append(line.mid(3));
    return titles;
}

class FigureAndDocument : public testing::Environment
{
public:
    void TearDown() override
    {
        if (run().tried == 0)
            return;
        std::printf("%s\n", qPrintable(figureOf(run().tried, run().inAll, run().lost, run().hung)));
        if (qEnvironmentVariableIsEmpty("QUILLPOST_WRITE_FAULTS"))
            return;
        // Sections of tests that did not run stay.
        std::vector<std::pair<QString, QStringList>> sections;
        for (const QString& title : documentedTitles())
            sections.emplace_back(title, documentedRows(title));
        for (const auto& ran : run().sections) {
            const auto old = std::find_if(sections.begin(), sections.end(),
                                          [&](const auto& section) { return section.first == ran.first; });
            if (old == sections.end())
                sections.push_back(ran);
            else
                *old = ran;
        }
        int tried = 0;
        QString text;
        for (const auto& [title, rows] : sections) {
            tried += static_cast<int>(rows.size()) * 2;
            text += u'\n' + sectionOf(title, rows);
        }
        text.prepend(introduction(tried));
        QFile file(QStringLiteral(QUILLPOST_FAULTS_DOCUMENT));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text.toUtf8());
    }
};

[[maybe_unused]] const auto* const figureAndDocument = testing::AddGlobalTestEnvironment(new FigureAndDocument);

QString shown(QString text)
{
    static const QRegularExpression lost(u"cURL error\\( (18|35|52|55|56), [^)]*\\)"_s);
    static const QRegularExpression number(u"\\bjob\\(\\d+\\)|\\b[Jj]ob \\d+"_s);
    static const QRegularExpression folder(u"(_\\d+)+/"_s);
    static const QRegularExpression home(QRegularExpression::escape(QDir::tempPath()) + u"/test_faults-\\w+"_s);
    text.replace(lost, u"cURL error( *lost* )"_s);
    text.replace(number, u"job(*N*)"_s);
    text.replace(folder, u"_*N*/"_s);
    text.replace(home, u"~"_s);
    text.replace(u'\n', u' ');
    for (QChar& character : text)
        if (!character.isPrint())
            character = u'\ufffd';
    if (text.size() > longestShown * 2)
        text = text.left(longestShown) + u"…"_s;
    text.replace(u'|', u"\\|"_s);
    return text.simplified();
}

// Where the garbage is cut depends on the moment.
QString withoutGarbage(const QString& text)
{
    if (text.contains(u"cURL error"_s) || !text.contains(u"characters)"_s))
        return text;
    for (const QString& before : {u"response("_s, u"resonse( "_s})
        if (const qsizetype at = text.indexOf(before); at >= 0)
            return text.left(at + before.size()) + u"*garbage*"_s;
    return u"*garbage*"_s;
}

QString shown(const Outcome& outcome, FaultKind kind)
{
    QStringList texts;
    for (const QString& text : outcome.told)
        if (const QString one = shown(kind == FaultKind::Garbage ? withoutGarbage(text) : text); !texts.contains(one))
            texts.append(one);
    return texts.isEmpty() ? u"nothing"_s : texts.join(u"<br>"_s);
}

} // namespace

void FaultTable::expectReadable(const QString& text)
{
    EXPECT_FALSE(text.trimmed().isEmpty());
    EXPECT_LE(text.size(), longestTold) << text.left(200).toStdString();
    for (const QChar character : text) {
        if (character.category() == QChar::Other_Control && character != u'\n' && character != u'\r' &&
            character != u'\t') {
            ADD_FAILURE() << "a control character, " << static_cast<int>(character.unicode())
                          << ", is shown to the user: " << text.left(200).toStdString();
            return;
        }
    }
}

void FaultTable::add(FaultKind kind, const Outcome& once, const Outcome& forGood)
{
    for (const Outcome& outcome : {once, forGood}) {
        ++m_tried;
        m_lost += outcome.isLost ? 1 : 0;
        m_hung += outcome.hasHung ? 1 : 0;
        for (const QString& text : outcome.told)
            expectReadable(text);
    }
    m_rows.append(
        u"| "_s +
        QStringList{Faults::nameOf(kind), shown(once, kind), once.then, shown(forGood, kind), forGood.then}.join(
            u" | "_s) +
        u" |"_s);
}

void FaultTable::compareWithDocument() const
{
    const int inAll = static_cast<int>(Faults::all().size()) * 2;
    std::printf("%s: %s\n", qPrintable(m_title), qPrintable(figureOf(m_tried, inAll, m_lost, m_hung)));
    EXPECT_EQ(m_lost, 0) << m_title.toStdString();
    EXPECT_EQ(m_hung, 0) << m_title.toStdString();
    run().sections.emplace_back(m_title, m_rows);
    run().tried += m_tried;
    run().inAll += inAll;
    run().lost += m_lost;
    run().hung += m_hung;
    if (!qEnvironmentVariableIsEmpty("QUILLPOST_WRITE_FAULTS"))
        return;
    const QStringList documented = documentedRows(m_title);
    ASSERT_EQ(documented.size(), static_cast<qsizetype>(Faults::all().size()))
        << "docs/faults.md has not every row of " << m_title.toStdString();
    for (const QString& row : m_rows) {
        const QString fault = row.section(u'|', 0, 1) + u'|';
        const auto same = std::find_if(documented.begin(), documented.end(),
                                       [&](const QString& line) { return line.startsWith(fault); });
        EXPECT_EQ(row.toStdString(), same == documented.end() ? "" : same->toStdString());
    }
}

// The document's own figure is that of its rows.
TEST(FaultDocument, SaysHowManyFaultsItTells)
{
    QFile file(QStringLiteral(QUILLPOST_FAULTS_DOCUMENT));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    int rows = 0;
    for (const QString& line : text.split(u'\n'))
        rows += line.startsWith(u"| "_s) && !line.startsWith(u"| Fault "_s) ? 1 : 0;
    EXPECT_GT(rows, 0);
    EXPECT_EQ(rows % static_cast<int>(Faults::all().size()), 0);
    EXPECT_TRUE(text.contains(figureOf(rows * 2, rows * 2, 0, 0))) << rows * 2;
}
