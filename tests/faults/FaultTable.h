#pragma once

#include "Faults.h"

#include <QString>
#include <QStringList>

#include <chrono>
#include <vector>

// What became of one fault: what the user was told, where the work then stood, and how it came to its end.
struct Outcome
{
    QStringList told;
    QString then;
    bool isLost = false;
    bool hasHung = false;
};

// One request's rows of the table of faults, which docs/faults.md shows: a row is compared with what stands there, so
// that the document cannot say what is not so. With QUILLPOST_WRITE_FAULTS in the environment the document is written
// instead when the program ends.
class FaultTable
{
public:
    explicit FaultTable(QString title) : m_title(std::move(title)) {}

    void add(FaultKind kind, const Outcome& once, const Outcome& forGood);
    // Fails the test for each row that differs, and prints the figure.
    void compareWithDocument() const;

    // Fails the test where a text is none that a person can be shown.
    static void expectReadable(const QString& text);

private:
    QString m_title;
    QStringList m_rows;
    int m_lost = 0;
    int m_hung = 0;
    int m_tried = 0;
};
