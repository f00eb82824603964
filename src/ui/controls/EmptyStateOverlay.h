#pragma once

#include <QLabel>
#include <QPointer>

class QAbstractItemModel;
class QAbstractItemView;

// What a list says while it has no rows: a text over the middle of the view, through which clicks and drops pass. It is
// the view's child, and follows the view's size and model, another model too.
class EmptyStateOverlay : public QLabel
{
    Q_OBJECT
public:
    // `view` owns it.
    explicit EmptyStateOverlay(QAbstractItemView* view, const QString& text = {});

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void dim();
    void followModel();
    void refresh();

    QAbstractItemView* m_view;
    QPointer<QAbstractItemModel> m_model;
};
