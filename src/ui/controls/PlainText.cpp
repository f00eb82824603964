#include "ui/controls/PlainText.h"

#include <QTextDocument>

using namespace Qt::StringLiterals;

QString PlainText::toolTip(const QString& text)
{
    if (!Qt::mightBeRichText(text))
        return text;
    return u"<p style=\"white-space: pre-wrap\">"_s + text.toHtmlEscaped() + u"</p>"_s;
}
