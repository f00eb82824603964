#pragma once

#include <memory>

class CustomLogWindow;
class ErrorWindow;
class LoginWindow;
class MainWindow;
class PreferencesWindow;
class QuillpostAppDelegate;
class SubmitJobWindow;

// The six windows over the application's controllers, which must outlive them. Main thread.
class DesktopWindows
{
public:
    explicit DesktopWindows(QuillpostAppDelegate& delegate);
    ~DesktopWindows();
    DesktopWindows(const DesktopWindows&) = delete;
    DesktopWindows& operator=(const DesktopWindows&) = delete;

    [[nodiscard]] MainWindow& mainWindow() { return *m_mainWindow; }
    // At the end of the program, before what may take a moment.
    void hideAll();

private:
    std::unique_ptr<LoginWindow> m_loginWindow;
    std::unique_ptr<MainWindow> m_mainWindow;
    std::unique_ptr<SubmitJobWindow> m_submitJobWindow;
    std::unique_ptr<PreferencesWindow> m_preferencesWindow;
    std::unique_ptr<ErrorWindow> m_errorWindow;
    std::unique_ptr<CustomLogWindow> m_customLogWindow;
};
