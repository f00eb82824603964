#pragma once

#include "harness/Row.h"

#include <QDir>
#include <QString>

#include <vector>

namespace Bench {

// What every row is given.
struct Context
{
    int runs = 5;     // pairs
    double scale = 1; // of the sizes; 1 is what the table is about
    QDir programs{};  // where the programs of the build are
    QDir samples{};   // the sample transcripts
    QDir folder{};    // for the files that are worked on; kept between runs where it is safe to

    [[nodiscard]] QString transcript() const
    {
        return samples.absoluteFilePath(QStringLiteral("Doe-Jane-2026-03-04.txt"));
    }
    [[nodiscard]] QString program(const QString& name) const { return programs.filePath(name); }
};

using RowMaker = std::vector<Row> (*)(const Context& context);

} // namespace Bench
