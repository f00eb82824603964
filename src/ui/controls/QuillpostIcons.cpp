#include "ui/controls/QuillpostIcons.h"

#include <QFile>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

#include <memory>

using namespace Qt::StringLiterals;

// Outside any namespace, as the macro asks: a static library's resources are linked in only when they are called for.
static void initializeIconResources()
{
    Q_INIT_RESOURCE(icons);
}

namespace {

constexpr double disabledOpacity = 0.45;

// Draws one vector image at whatever size is asked for, without the icon plug-ins of the platform.
class VectorIconEngine : public QIconEngine
{
public:
    explicit VectorIconEngine(std::shared_ptr<QSvgRenderer> renderer) : m_renderer(std::move(renderer)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override
    {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        if (mode == QIcon::Disabled)
            painter->setOpacity(painter->opacity() * disabledOpacity);
        const int side = qMin(rect.width(), rect.height());
        QRect square(0, 0, side, side);
        square.moveCenter(rect.center());
        m_renderer->render(painter, square);
        painter->restore();
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        if (!pixmap.isNull()) {
            QPainter painter(&pixmap);
            paint(&painter, QRect(QPoint(), size), mode, state);
        }
        return pixmap;
    }

    [[nodiscard]] QIconEngine* clone() const override { return new VectorIconEngine(*this); }
    [[nodiscard]] QString key() const override { return u"VectorIconEngine"_s; }
    bool isNull() override { return !m_renderer->isValid(); }

private:
    std::shared_ptr<QSvgRenderer> m_renderer;
};

QIcon iconFromFile(const QString& name)
{
    static QHash<QString, QIcon> icons;
    if (const auto known = icons.constFind(name); known != icons.constEnd())
        return *known;
    initializeIconResources();
    const QString path = u":/quillpost/icons/"_s + name + u".svg"_s;
    if (!QFile::exists(path))
        return {};
    const QIcon icon(new VectorIconEngine(std::make_shared<QSvgRenderer>(path)));
    icons.insert(name, icon);
    return icon;
}

} // namespace

QIcon QuillpostIcons::named(const QString& name)
{
    if (name != "TextIcon"_L1 && name != "SoundIcon"_L1)
        return {};
    return iconFromFile(name);
}

QIcon QuillpostIcons::application()
{
    return iconFromFile(u"ApplicationIcon"_s);
}
