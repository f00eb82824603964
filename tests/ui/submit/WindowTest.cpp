#include "WindowTest.h"

SubmitWindowTest::SubmitWindowTest(const ServiceHosts& hosts) : SubmitTest(hosts)
{
    controller.showWindow();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
}

void SubmitWindowTest::enter(QWidget& widget)
{
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    widget.setFocus();
    ASSERT_TRUE(Waiting::until([&] { return widget.hasFocus(); }));
}

Qt::DropAction SubmitWindowTest::drop(QWidget& target, const QMimeData& data, Qt::DropActions offered,
                                      Qt::KeyboardModifiers modifiers)
{
    const QPoint place = target.rect().center();
    QDragEnterEvent enters(place, offered, &data, Qt::LeftButton, modifiers);
    QCoreApplication::sendEvent(&target, &enters);
    QDragMoveEvent moves(place, offered, &data, Qt::LeftButton, modifiers);
    QCoreApplication::sendEvent(&target, &moves);
    if (!enters.isAccepted() || !moves.isAccepted()) {
        EXPECT_FALSE(moves.isAccepted());
        return Qt::IgnoreAction;
    }
    QDropEvent drops(place, offered, &data, Qt::LeftButton, modifiers);
    QCoreApplication::sendEvent(&target, &drops);
    QCoreApplication::processEvents(); // a drop may be taken once its event is over
    EXPECT_EQ(drops.isAccepted(), true);
    EXPECT_EQ(enters.dropAction(), drops.dropAction());
    EXPECT_EQ(moves.dropAction(), drops.dropAction());
    return drops.dropAction();
}

std::unique_ptr<QMimeData> SubmitWindowTest::files(const QStringList& paths)
{
    auto data = std::make_unique<QMimeData>();
    QList<QUrl> urls;
    for (const QString& path : paths)
        urls << QUrl::fromLocalFile(path);
    data->setUrls(urls);
    return data;
}

void SubmitWindowTest::fill()
{
    controller.addTranscriptFile(transcript());
    controller.addMediaFiles({recording(QStringLiteral("a.mov"))});
    waitUntilRead();
}
