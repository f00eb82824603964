#include "app/DesktopWindows.h"

#include "app/QuillpostAppDelegate.h"
#include "ui/errors/ErrorWindow.h"
#include "ui/log/CustomLogWindow.h"
#include "ui/login/LoginWindow.h"
#include "ui/main/MainWindow.h"
#include "ui/preferences/PreferencesWindow.h"
#include "ui/submit/SubmitJobWindow.h"

DesktopWindows::DesktopWindows(QuillpostAppDelegate& delegate)
    : m_loginWindow(std::make_unique<LoginWindow>(delegate.loginWindowController())),
      m_mainWindow(std::make_unique<MainWindow>(delegate.mainWindowController())),
      m_submitJobWindow(std::make_unique<SubmitJobWindow>(delegate.submitJobWindowController())),
      m_preferencesWindow(std::make_unique<PreferencesWindow>(delegate.preferencesWindowController())),
      m_errorWindow(std::make_unique<ErrorWindow>(delegate.errorWindowController())),
      m_customLogWindow(std::make_unique<CustomLogWindow>(delegate.customLogWindowController()))
{}

DesktopWindows::~DesktopWindows() = default;

void DesktopWindows::hideAll()
{
    for (QWidget* const window :
         std::initializer_list<QWidget*>{m_customLogWindow.get(), m_errorWindow.get(), m_preferencesWindow.get(),
                                         m_submitJobWindow.get(), m_mainWindow.get(), m_loginWindow.get()})
        window->hide();
}
