#pragma once

class QWidget;
class WindowController;

namespace WindowBinding {

// The window shows itself, comes to the front (out of the dock too) and closes when its controller says so, and tells
// it whether it is shown; it also closes by the platform's key. When it first opens it lies over the window that the
// user is in. Either may go first.
void bind(WindowController& controller, QWidget& window);

// For the window's destructor: neither the controller nor the window hears of its controls any more. They are destroyed
// after it, and say things while they are, as that an edit has ended or a bar has moved.
void unbind(WindowController& controller, QWidget& window);

} // namespace WindowBinding
