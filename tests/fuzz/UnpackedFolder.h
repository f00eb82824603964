#pragma once

#include <QByteArray>
#include <QString>

// Unpacks an archive twice into the folder "out" of an empty folder, with room for `room` bytes, and requires that
// nothing is written elsewhere, that only folders and plain files are made, no more than there is room for, and that
// the second time ends as the first. Returns whether it was unpacked to its end.
bool unpackAndLook(const QByteArray& zip, const QString& password, quint64 room);
