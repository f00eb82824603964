#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringList>

// Cuts ffmpeg's output, as it comes in pieces of any size, into lines. The output counts as ASCII text, whose newlines
// are line feed, vertical tab, form feed and carriage return; "\r\n" therefore gives an empty line in between.
//
// What follows the last newline of a piece is kept and put in front of the next piece. A piece that ends with a newline
// leaves what is kept as it is, so that the next piece has the same text put in front of it once more. Users of the
// lines depend on this.
class FfmpegLines
{
public:
    // Far above any line that ffmpeg prints. A longer unfinished line loses what is beyond, so that a program that
    // never ends its line does not fill the memory.
    static constexpr qsizetype longestUnfinishedLine = 64 * 1024;

    // The lines that `piece` completes. A piece that ends with a newline also yields the empty line behind it. Bytes
    // outside ASCII (file names, titles) are read as UTF-8; what is not UTF-8 becomes U+FFFD.
    [[nodiscard]] QStringList add(QByteArrayView piece);

private:
    QByteArray m_unfinishedLine;
};
