// A window from which the files given on the command line can be dragged, as from a file manager. Prints "dragging"
// when a drag has begun, and "accepted" or "refused" when it has ended.
#include <QApplication>
#include <QDrag>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>

#include <cstdio>

namespace {

void say(const char* word)
{
    std::puts(word);
    std::fflush(stdout);
}

class Source : public QLabel
{
public:
    Source() { setText(QStringLiteral("Files")); }

protected:
    void mousePressEvent(QMouseEvent*) override {}
    void mouseMoveEvent(QMouseEvent*) override
    {
        auto* const files = new QMimeData; // the drag's
        QList<QUrl> urls;
        for (const QString& path : QCoreApplication::arguments().sliced(1))
            urls << QUrl::fromLocalFile(path);
        files->setUrls(urls);
        auto* const drag = new QDrag(this); // deletes itself
        drag->setMimeData(files);
        say("dragging");
        say(drag->exec(Qt::CopyAction) == Qt::CopyAction ? "accepted" : "refused");
    }
};

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    Source source;
    source.setWindowTitle(QStringLiteral("Drag source"));
    source.resize(160, 100);
    source.move(1400, 850);
    source.show();
    return QApplication::exec();
}
