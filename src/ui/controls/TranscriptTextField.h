#pragma once

#include <QLineEdit>
#include <QPointer>

// Takes drops on a transcript field that is being edited: the path becomes part of the edit.
class TranscriptTextView : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    // Selects all of the field's text and inserts the last of the paths in its place: one edit that can be undone and
    // that is told of as typing is (textEdited). False, and nothing changes, where there are none.
    static bool performDrop(QLineEdit& field, const QStringList& paths);
};

// A field for the path of a transcript, typed or dropped. Drags are taken when they carry file names, and are copies.
// Typing is told of through textEdited.
class TranscriptTextField : public QLineEdit
{
    Q_OBJECT
public:
    explicit TranscriptTextField(QWidget* parent = nullptr);

    // Takes the drops while the field is being edited; without one, every drop is the field's. Not owned; may go first.
    void setFieldEditor(TranscriptTextView* editor) { m_fieldEditor = editor; }

Q_SIGNALS:
    // A path is there to be taken: dropped while the field was not being edited, or an edit that changed something
    // ended, by Return or by leaving the field. Another window coming to the front ends no edit.
    void pathEntered();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void answerDrag(QDragMoveEvent& event) const;
    void takeDropped(const QStringList& paths);
    void endEdit();

    QPointer<TranscriptTextView> m_fieldEditor;
    bool m_isEdited = false;
};
