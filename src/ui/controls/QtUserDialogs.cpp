#include "ui/controls/QtUserDialogs.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCursor>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

// The window that the dialog belongs to: the active one, and where another program's is in front, one that is shown.
QWidget* parentWindow()
{
    if (QWidget* active = QApplication::activeWindow())
        return active;
    // Files that were dropped came from another program's window; what they were dropped on lies under the pointer.
    if (QWidget* const under = QApplication::widgetAt(QCursor::pos()); under && under->window()->isVisible())
        return under->window();
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && window->windowType() == Qt::Window)
            return window;
    }
    return nullptr;
}

// Buttons read "&" as the mark of a shortcut.
QString buttonText(QString text)
{
    return text.replace(u'&', u"&&"_s);
}

void setTexts(QMessageBox& box, const QString& title, const QString& text)
{
    box.setWindowTitle(title);
    box.setTextFormat(Qt::PlainText);
    // A reply of the service may be a whole page; its beginning tells, and the buttons stay on the screen.
    constexpr qsizetype longest = 1500;
    const QString shown = text.isEmpty() ? title : text;
    box.setText(shown.size() > longest ? shown.first(longest) + QChar(0x2026) : shown);
}

} // namespace

void QtUserDialogs::warn(const QString& title, const QString& text)
{
    QMessageBox box(parentWindow());
    box.setObjectName(u"warningAlert"_s);
    box.setIcon(QMessageBox::Warning);
    setTexts(box, title, text);
    box.setStandardButtons(QMessageBox::Ok);
    box.exec();
}

bool QtUserDialogs::ask(const Question& question)
{
    QMessageBox box(parentWindow());
    box.setObjectName(u"questionAlert"_s);
    box.setIcon(QMessageBox::Question);
    setTexts(box, question.title, question.text);
    QPushButton* const yes = box.addButton(buttonText(question.defaultButton), QMessageBox::AcceptRole);
    QPushButton* const no = box.addButton(buttonText(question.alternateButton), QMessageBox::RejectRole);
    yes->setObjectName(u"defaultButton"_s);
    no->setObjectName(u"alternateButton"_s);
    box.setDefaultButton(yes);
    box.setEscapeButton(question.isClosingDefault ? yes : no);
    box.exec();
    return box.clickedButton() == yes;
}

std::optional<QStringList> QtUserDialogs::choose(QFileDialog& dialog)
{
    dialog.setObjectName(u"fileDialog"_s);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    // Not the folder that the dialog shows: the user may have typed a whole path.
    const QFileInfo chosen(dialog.selectedFiles().constFirst());
    m_lastFolder = dialog.fileMode() == QFileDialog::Directory ? chosen.absoluteFilePath() : chosen.absolutePath();
    return dialog.selectedFiles();
}

std::optional<QStringList> QtUserDialogs::chooseFile(const QString& title, const QString& filter)
{
    QFileDialog dialog(parentWindow(), title, m_lastFolder, filter);
    dialog.setFileMode(QFileDialog::ExistingFile);
    return choose(dialog);
}

std::optional<QStringList> QtUserDialogs::chooseFiles(const QString& title, const QString& filter)
{
    QFileDialog dialog(parentWindow(), title, m_lastFolder, filter);
    dialog.setFileMode(QFileDialog::ExistingFiles);
    return choose(dialog);
}

std::optional<QStringList> QtUserDialogs::chooseFolder(const QString& title, const QString& folder)
{
    QFileDialog dialog(parentWindow(), title, folder.isEmpty() ? m_lastFolder : folder);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    return choose(dialog);
}
