#include "ui/controls/QuillpostIcons.h"

#include <QFile>
#include <QGuiApplication>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QSvgRenderer>

#include <cmath>
#include <map>
#include <memory>
#include <tuple>

using namespace Qt::StringLiterals;

// Outside any namespace, as the macro asks: a static library's resources are linked in only when they are called for.
static void initializeIconResources()
{
    Q_INIT_RESOURCE(icons);
}

namespace {

constexpr double disabledOpacity = 0.45;
// What is drawn once and kept: images of the size of a text, few of them.
constexpr int longestKeptSide = 64;
constexpr std::size_t mostKept = 8;
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
        const int side = qMin(rect.width(), rect.height());
        QRect square(0, 0, side, side);
        square.moveCenter(rect.center());
        const double pixels = painter->device()->devicePixelRatioF();
        painter->save();
        if (mode == QIcon::Disabled)
            painter->setOpacity(painter->opacity() * disabledOpacity);
        // A list draws the same small image in each of its rows.
        if (side > 0 && side <= longestKeptSide && pixels == std::floor(pixels) &&
            painter->worldTransform().type() <= QTransform::TxTranslate)
            painter->drawPixmap(square.topLeft(), drawn(side, static_cast<int>(pixels), mode == QIcon::Selected));
        else
            render(*painter, square, mode == QIcon::Selected);
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
    void render(QPainter& painter, const QRect& square, bool isSelected)
    {
        painter.setRenderHint(QPainter::Antialiasing);
        (isSelected ? selectedRenderer() : *m_renderer).render(&painter, square);
    }

    const QPixmap& drawn(int side, int pixels, bool isSelected)
    {
        if (isSelected)
            selectedRenderer(); // Lets go of what was drawn in another colour.
        const auto key = std::tuple(side, pixels, isSelected);
        const auto found = m_drawn.find(key);
        if (found != m_drawn.end())
            return found->second;
        if (m_drawn.size() >= mostKept)
            m_drawn.clear();
        QPixmap& pixmap = m_drawn[key];
        pixmap = QPixmap(side * pixels, side * pixels);
        pixmap.setDevicePixelRatio(pixels);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        render(painter, QRect(0, 0, side, side), isSelected);
        return pixmap;
    }

    QSvgRenderer& selectedRenderer()
    {
        const QByteArray color = QGuiApplication::palette().color(QPalette::HighlightedText).name().toLatin1();
        if (m_selectedRenderer == nullptr || color != m_selectedColor) {
            m_selectedColor = color;
            m_drawn.clear();
            m_selectedRenderer = std::make_shared<QSvgRenderer>(QByteArray(m_drawing).replace(soleColor, color));
        }
        return *m_selectedRenderer;
    }

    QByteArray m_drawing;
    std::shared_ptr<QSvgRenderer> m_renderer;
    std::shared_ptr<QSvgRenderer> m_selectedRenderer; // made when first drawn
    QByteArray m_selectedColor;
    std::map<std::tuple<int, int, bool>, QPixmap> m_drawn; // by side, pixels of a point, whether selected
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
