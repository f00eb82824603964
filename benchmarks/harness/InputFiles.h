#pragma once

#include "harness/Context.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

// The files that are worked on. Made once and kept in the context's folder: the same bytes for every run, on every
// machine.
namespace Bench {

constexpr long long megabyte = 1000 * 1000;

// Bytes that no packing makes smaller, as those of sound and film are; the same for the same seed.
[[nodiscard]] QByteArray noise(long long size, unsigned seed);

// A file of noise.
[[nodiscard]] QString noiseFile(const Context& context, const QString& name, long long size, unsigned seed);

// Films of a deposition's kind: a still picture and two channels of sound, so many of so many seconds, each a file.
[[nodiscard]] QStringList films(const Context& context, int number, int seconds);

// A folder of that name, empty and new.
[[nodiscard]] QString freshFolder(const Context& context, const QString& name);

// Everything written is on disk, so that one run does not pay for what another wrote.
void settleDisk();

} // namespace Bench
