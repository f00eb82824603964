#pragma once

#include <QWidget>

#include <memory>

class QButtonGroup;
class SubmitJobWindowController;
class TranscriptTextView;

namespace Ui {
class SubmitJobWindow;
}

// The window in which a new job is put together. Shows what its controller says, which must outlive it.
class SubmitJobWindow : public QWidget
{
    Q_OBJECT
public:
    explicit SubmitJobWindow(SubmitJobWindowController& controller);
    ~SubmitJobWindow() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void setUpTranscript();
    void setUpMedia();
    void setUpDeposition();
    void setUpCaption();
    void setUpFormat();
    void setUpLevels();
    void setUpSubmission();
    void showMessages();
    void showReading();
    void showCaptions();
    void showFormats();
    void showLevelRows();
    void showJobValues();
    void showLevels();
    void showSubmission();
    void deleteSelectedMediaFiles();
    void commitCaption();
    void endEditsAnd(void (SubmitJobWindowController::*action)());

    SubmitJobWindowController& m_controller;
    const std::unique_ptr<Ui::SubmitJobWindow> m_ui;
    TranscriptTextView* m_textView = nullptr;
    QButtonGroup* m_levels = nullptr;
};
