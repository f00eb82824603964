#include "ui/controls/QtUserDialogs.h"

#include "support/TemporaryHome.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

const QString hostile = u"<b>bold</b><img src='file:///etc/hostname'> & more"_s;

class QtUserDialogsTest : public TemporaryHome
{
protected:
    QtUserDialogsTest()
    {
        // So that the dialogs are widgets that a test can answer.
        QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    }

    // Calls `answer` with the dialog as soon as it is shown.
    template <typename Dialog>
    void whenShown(const QString& name, std::function<void(Dialog&)> answer)
    {
        m_timer.setInterval(5);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this, name, answer = std::move(answer)] {
            auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
            if (dialog == nullptr || !dialog->isVisible())
                return;
            m_timer.stop();
            m_timer.disconnect();
            m_shown = dialog->objectName() == name;
            answer(*dialog);
        });
        m_timer.start();
    }
    void chooseInDialog(const QString& path)
    {
        whenShown<QFileDialog>(u"fileDialog"_s, [this, path](QFileDialog& dialog) {
            m_startFolder = dialog.directory().absolutePath();
            m_filters = dialog.nameFilters();
            m_title = dialog.windowTitle();
            dialog.findChild<QLineEdit*>(u"fileNameEdit"_s)->setText(path);
            QMetaObject::invokeMethod(&dialog, "accept");
        });
    }

    QtUserDialogs dialogs;
    QTimer m_timer;
    bool m_shown = false;
    QString m_startFolder;
    QStringList m_filters;
    QString m_title;
};

const UserDialogs::Question question = {u"Reset?"_s, hostile, u"Reset & reload"_s, u"Cancel"_s};

} // namespace

TEST_F(QtUserDialogsTest, AWarningShowsItsTextAsItStands)
{
    QString text;
    Qt::TextFormat format = Qt::AutoText;
    whenShown<QMessageBox>(u"warningAlert"_s, [&](QMessageBox& box) {
        text = box.text();
        format = box.textFormat();
        EXPECT_EQ(box.buttons().size(), 1);
        box.defaultButton() != nullptr ? box.defaultButton()->click() : box.buttons().constFirst()->click();
    });
    dialogs.warn(u"Title"_s, hostile);
    EXPECT_TRUE(m_shown);
    EXPECT_TRUE(text.contains(hostile));
    EXPECT_EQ(format, Qt::PlainText);
}

TEST_F(QtUserDialogsTest, EscapeStandsForTheAnswerThatTheQuestionNames)
{
    for (const bool isClosingDefault : {false, true}) {
        whenShown<QMessageBox>(u"questionAlert"_s, [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); });
        UserDialogs::Question asked = question;
        asked.isClosingDefault = isClosingDefault;
        EXPECT_EQ(dialogs.ask(asked), isClosingDefault);
        EXPECT_TRUE(m_shown);
    }
}

TEST_F(QtUserDialogsTest, AWarningWithoutATextShowsItsTitle)
{
    QString text;
    whenShown<QMessageBox>(u"warningAlert"_s, [&](QMessageBox& box) {
        text = box.text();
        box.close();
    });
    dialogs.warn(u"Something is missing."_s, QString());
    EXPECT_EQ(text, u"Something is missing."_s);
}

TEST_F(QtUserDialogsTest, AVeryLongTextIsCutSoThatTheButtonsStayInReach)
{
    QString text;
    whenShown<QMessageBox>(u"warningAlert"_s, [&](QMessageBox& box) {
        text = box.text();
        box.close();
    });
    dialogs.warn(u"Title"_s, QString(100'000, u'x'));
    EXPECT_LT(text.size(), 2000);
    EXPECT_TRUE(text.endsWith(QChar(0x2026)));
}

TEST_F(QtUserDialogsTest, AQuestionHasTwoButtonsInTheGivenWordsAndTheFirstIsTheDefault)
{
    whenShown<QMessageBox>(u"questionAlert"_s, [&](QMessageBox& box) {
        EXPECT_EQ(box.buttons().size(), 2);
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        EXPECT_EQ(box.findChild<QPushButton*>(u"defaultButton"_s)->text(), u"Reset && reload"_s);
        EXPECT_EQ(box.findChild<QPushButton*>(u"alternateButton"_s)->text(), u"Cancel"_s);
        EXPECT_EQ(box.defaultButton(), box.findChild<QPushButton*>(u"defaultButton"_s));
        QTest::keyClick(&box, Qt::Key_Return);
    });
    EXPECT_TRUE(dialogs.ask(question));
    EXPECT_TRUE(m_shown);
}

TEST_F(QtUserDialogsTest, TheAlternateButtonIsNo)
{
    whenShown<QMessageBox>(u"questionAlert"_s,
                           [](QMessageBox& box) { box.findChild<QPushButton*>(u"alternateButton"_s)->click(); });
    EXPECT_FALSE(dialogs.ask(question));
}

TEST_F(QtUserDialogsTest, EscapeAndAClosedQuestionAreNo)
{
    whenShown<QMessageBox>(u"questionAlert"_s, [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); });
    EXPECT_FALSE(dialogs.ask(question));
    whenShown<QMessageBox>(u"questionAlert"_s, [](QMessageBox& box) { box.close(); });
    EXPECT_FALSE(dialogs.ask(question));
}

TEST_F(QtUserDialogsTest, ADialogBelongsToTheWindowInFront)
{
    QWidget window;
    window.show();
    QWidget* parent = nullptr;
    whenShown<QMessageBox>(u"questionAlert"_s, [&](QMessageBox& box) {
        parent = box.parentWidget();
        box.close();
    });
    EXPECT_FALSE(dialogs.ask(question));
    EXPECT_EQ(parent, &window);
}

TEST_F(QtUserDialogsTest, AFileIsChosenAndItsFolderIsWhereTheNextChoiceBegins)
{
    const QString file = writeFile(u"cases/one.txt"_s, "text");
    chooseInDialog(file);
    EXPECT_EQ(dialogs.chooseFile(u"Choose a transcript"_s, u"Transcripts (*.txt)"_s), QStringList{file});
    EXPECT_TRUE(m_shown);
    EXPECT_EQ(m_title, u"Choose a transcript"_s);
    EXPECT_EQ(m_filters, QStringList{u"Transcripts (*.txt)"_s});
    EXPECT_EQ(dialogs.lastFolder(), QFileInfo(file).absolutePath());

    chooseInDialog(file);
    EXPECT_EQ(dialogs.chooseFiles(u"Choose recordings"_s, QString()), QStringList{file});
    EXPECT_EQ(m_startFolder, QFileInfo(file).absolutePath());
}

TEST_F(QtUserDialogsTest, AFileThatDoesNotExistCannotBeChosen)
{
    whenShown<QFileDialog>(u"fileDialog"_s, [](QFileDialog& dialog) {
        EXPECT_EQ(dialog.fileMode(), QFileDialog::ExistingFile);
        EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptOpen);
        dialog.reject();
    });
    EXPECT_EQ(dialogs.chooseFile(u"Choose"_s, QString()), std::nullopt);
}

TEST_F(QtUserDialogsTest, SeveralFilesCanBeChosenAtOnce)
{
    whenShown<QFileDialog>(u"fileDialog"_s, [](QFileDialog& dialog) {
        EXPECT_EQ(dialog.fileMode(), QFileDialog::ExistingFiles);
        dialog.reject();
    });
    EXPECT_EQ(dialogs.chooseFiles(u"Choose"_s, QString()), std::nullopt);
    EXPECT_EQ(dialogs.lastFolder(), QString()) << "a choice that was cancelled is forgotten";
}

TEST_F(QtUserDialogsTest, AFolderIsChosenStartingFromTheGivenOne)
{
    const QString folder = QFileInfo(writeFile(u"delivery/one.txt"_s, "text")).absolutePath();
    QString start;
    whenShown<QFileDialog>(u"fileDialog"_s, [&](QFileDialog& dialog) {
        EXPECT_EQ(dialog.fileMode(), QFileDialog::Directory);
        EXPECT_TRUE(dialog.testOption(QFileDialog::ShowDirsOnly));
        start = dialog.directory().absolutePath();
        QMetaObject::invokeMethod(&dialog, "accept");
    });
    EXPECT_EQ(dialogs.chooseFolder(u"Choose a folder"_s, folder), QStringList{folder});
    EXPECT_EQ(start, folder);
    EXPECT_EQ(dialogs.lastFolder(), folder);
}
