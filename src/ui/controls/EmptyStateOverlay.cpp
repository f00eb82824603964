#include "ui/controls/EmptyStateOverlay.h"

#include <QAbstractItemView>
#include <QEvent>

using namespace Qt::StringLiterals;

EmptyStateOverlay::EmptyStateOverlay(QAbstractItemView* view, const QString& text)
    : QLabel(text, view->viewport()), m_view(view)
{
    setObjectName(u"emptyStateOverlay"_s);
    setTextFormat(Qt::PlainText);
    setAlignment(Qt::AlignCenter);
    setWordWrap(true);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setForegroundRole(QPalette::WindowText); // not the view's own, which is full
    dim();
    setMargin(fontMetrics().height());
    view->viewport()->installEventFilter(this);
    followModel();
}

// Fainter than a row's text, on whatever ground; a palette's own colour for this may be missing.
void EmptyStateOverlay::dim()
{
    QColor faint = m_view->palette().color(QPalette::Text);
    faint.setAlphaF(0.6F);
    QPalette dimmed = m_view->palette();
    dimmed.setColor(QPalette::WindowText, faint);
    setPalette(dimmed);
}

void EmptyStateOverlay::followModel()
{
    if (m_model != nullptr)
        m_model->disconnect(this);
    m_model = m_view->model();
    if (m_model != nullptr) {
        connect(m_model, &QAbstractItemModel::rowsInserted, this, &EmptyStateOverlay::refresh);
        connect(m_model, &QAbstractItemModel::rowsRemoved, this, &EmptyStateOverlay::refresh);
        connect(m_model, &QAbstractItemModel::modelReset, this, &EmptyStateOverlay::refresh);
        connect(m_model, &QAbstractItemModel::layoutChanged, this, &EmptyStateOverlay::refresh);
    }
    refresh();
}

void EmptyStateOverlay::refresh()
{
    setGeometry(m_view->viewport()->rect());
    const QAbstractItemModel* const model = m_model;
    setVisible(model == nullptr || model->rowCount(m_view->rootIndex()) == 0);
}

bool EmptyStateOverlay::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::PaletteChange:
        dim();
        break;
    case QEvent::Show:
    case QEvent::Resize:
    case QEvent::Paint:
        // No signal tells of another model; a view that got one is painted.
        if (m_view->model() != m_model)
            followModel();
        else if (event->type() != QEvent::Paint)
            refresh();
        break;
    default:
        break;
    }
    return QLabel::eventFilter(watched, event);
}
