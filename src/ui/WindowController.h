#pragma once

#include "foundation/Error.h"

#include <QObject>

// The logic of one window, without a widget: its state, its texts and its actions. The window binds to it and shows
// nothing that is not a property of it. Main thread.
class WindowController : public QObject
{
    Q_OBJECT
public:
    // Shows the window, or brings it to the front.
    virtual void showWindow() { Q_EMIT showRequested(); }
    void close() { Q_EMIT closeRequested(); }
    // Set by the window.
    [[nodiscard]] bool isShown() const { return m_isShown; }
    void setIsShown(bool is) { m_isShown = is; }

Q_SIGNALS:
    void showRequested();
    void closeRequested();

private:
    bool m_isShown = false;
};

// The words of a window before an error of the system's own; errors of other domains stay as they are.
namespace ErrorPresentation {

// `pattern` holds one "%@", the place of the error's own words.
[[nodiscard]] inline Error described(const Error& error, const QString& pattern)
{
    if (error.domain != ErrorDomain::SyncBase)
        return error;
    Error described = error;
    const qsizetype place = pattern.indexOf(QStringLiteral("%@"));
    described.localizedDescription =
        place < 0 ? pattern : pattern.first(place) + error.localizedDescription + pattern.sliced(place + 2);
    return described;
}

} // namespace ErrorPresentation
