#include "ui/submit/CaptionCompleter.h"

#include <QComboBox>

namespace {

constexpr int foldedRole = Qt::UserRole;

} // namespace

CaptionCompleter::CaptionCompleter(QComboBox& list) : QCompleter(list.model(), &list)
{
    setCompletionMode(PopupCompletion);
    setCaseSensitivity(Qt::CaseSensitive);
    setCompletionRole(foldedRole);
    list.setCompleter(this);
}

void CaptionCompleter::setCaptions(QComboBox& list, const QStringList& captions)
{
    list.clear();
    for (const QString& caption : captions) {
        list.addItem(caption);
        list.setItemData(list.count() - 1, caption.toCaseFolded(), foldedRole);
    }
}
