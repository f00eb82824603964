#pragma once

#include <QCompleter>

class QComboBox;

// Offers the remembered captions whatever the letter case, and leaves what was typed as it was typed: a list's own
// completer that does not mind the case replaces a text by the one it finds, so this one looks for folded texts.
class CaptionCompleter : public QCompleter
{
    Q_OBJECT
public:
    explicit CaptionCompleter(QComboBox& list);

    // Fills the list.
    static void setCaptions(QComboBox& list, const QStringList& captions);

    [[nodiscard]] QStringList splitPath(const QString& path) const override { return {path.toCaseFolded()}; }
    [[nodiscard]] QString pathFromIndex(const QModelIndex& index) const override
    {
        return index.data(Qt::DisplayRole).toString();
    }
};
