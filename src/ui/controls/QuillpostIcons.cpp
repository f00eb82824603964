#include "ui/controls/QuillpostIcons.h"

#include <QFile>
#include <QGuiApplication>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
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
// The one colour of the drawings that has no other beside it, and so cannot be told from a highlight like it.
const QByteArray soleColor = "#2a8c80";

// Draws one vector image at whatever size is asked for, without the icon plug-ins of the platform.
class VectorIconEngine : public QIconEngine
{
public:
    explicit VectorIconEngine(const QByteArray& drawing)
        : m_drawing(drawing), m_renderer(std::make_shared<QSvgRenderer>(drawing))
    {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override
    {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        if (mode == QIcon::Disabled)
            painter->setOpacity(painter->opacity() * disabledOpacity);
        const int side = qMin(rect.width(), rect.height());
        QRect square(0, 0, side, side);
        square.moveCenter(rect.center());
        if (mode == QIcon::Selected)
            selectedRenderer().render(painter, square);
        else
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
    QSvgRenderer& selectedRenderer()
    {
        const QByteArray color = QGuiApplication::palette().color(QPalette::HighlightedText).name().toLatin1();
        if (m_selectedRenderer == nullptr || color != m_selectedColor) {
            m_selectedColor = color;
            m_selectedRenderer = std::make_shared<QSvgRenderer>(QByteArray(m_drawing).replace(soleColor, color));
        }
        return *m_selectedRenderer;
    }

    QByteArray m_drawing;
    std::shared_ptr<QSvgRenderer> m_renderer;
    std::shared_ptr<QSvgRenderer> m_selectedRenderer; // made when first drawn
    QByteArray m_selectedColor;
};

QIcon iconFromFile(const QString& name)
{
    static QHash<QString, QIcon> icons;
    if (const auto known = icons.constFind(name); known != icons.constEnd())
        return *known;
    initializeIconResources();
    QFile file(u":/quillpost/icons/"_s + name + u".svg"_s);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QIcon icon(new VectorIconEngine(file.readAll()));
    icons.insert(name, icon);
    return icon;
}

} // namespace

QIcon QuillpostIcons::named(const QString& name)
{
    if (name != "TextIcon"_L1 && name != "SoundIcon"_L1 && name != "CalendarIcon"_L1)
        return {};
    return iconFromFile(name);
}

QIcon QuillpostIcons::application()
{
    return iconFromFile(u"ApplicationIcon"_s);
}
