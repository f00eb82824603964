#pragma once

#include <QIcon>
#include <QString>

// The program's own icons, drawn sharp at any size and pixel ratio, readable on light and dark grounds. Main thread.
namespace QuillpostIcons {

// "TextIcon" for a job, "SoundIcon" for a recording, "CalendarIcon"; a null icon for any other name.
[[nodiscard]] QIcon named(const QString& name);
[[nodiscard]] QIcon application();

} // namespace QuillpostIcons
