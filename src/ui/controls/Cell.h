#pragma once

// What a list draws in one of its places, set up anew for each row just before it is drawn. Values; no thread.
class Cell
{
public:
    virtual ~Cell() = default;

    // Off: only the list's own interior (ground, selection) is drawn, nothing of the cell's.
    bool isEnabled = true;

protected:
    Cell() = default;
    Cell(const Cell&) = default;
    Cell& operator=(const Cell&) = default;
    Cell(Cell&&) = default;
    Cell& operator=(Cell&&) = default;
};
