#include "icons/icons.h"

#include <algorithm>
#include <map>
#include <utility>

#include <QApplication>
#include <QDir>
#include <QIconEngine>
#include <QImageReader>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>

// The pictures are registered by an object of a static library, which the linker drops unless something names it. The
// macro declares a function of the global namespace, so it cannot stand in ours.
static void registerPictures()
{
    Q_INIT_RESOURCE(icons);
}

namespace quarrynet {

namespace {

constexpr const char* kFolder = ":/icons";

/// The files of one drawing by their width in pixels. Each is read when its size is first shown.
class DrawnIcon final : public QIconEngine
{
public:
    explicit DrawnIcon(const QString& name)
    {
        const QString beginning = name + QLatin1Char('-');
        for (const QString& file : QDir(QLatin1String(kFolder)).entryList(QDir::Files)) {
            if (!file.startsWith(beginning))
                continue;
            bool isWidth = false;
            const int width = file.mid(beginning.size()).section(QLatin1Char('.'), 0, 0).toInt(&isWidth);
            if (isWidth)
                files_.emplace(width, QLatin1String(kFolder) + QLatin1Char('/') + file);
        }
    }

    bool isNull() override { return files_.empty(); }

    QIconEngine* clone() const override { return new DrawnIcon(*this); }

    QList<QSize> availableSizes(QIcon::Mode /*mode*/, QIcon::State /*state*/) override
    {
        QList<QSize> sizes;
        for (const auto& [width, file] : files_)
            sizes.append(QSize(width, width));
        return sizes;
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State /*state*/) override
    {
        if (files_.empty() || size.isEmpty())
            return {};
        const auto wanted = files_.lower_bound(size.width());
        const QString& file = wanted != files_.end() ? wanted->second : std::prev(wanted)->second;
        // The format is named: to find it out, Qt would load every image plug-in there is.
        QImage image = QImageReader(file, "png").read();
        if (image.width() > size.width() || image.height() > size.height() || wanted == files_.end())
            image = image.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        QPixmap drawn = QPixmap::fromImage(std::move(image));
        if (mode == QIcon::Normal)
            return drawn;
        QStyleOption option;
        option.palette = QApplication::palette();
        return QApplication::style()->generatedIconPixmap(mode, drawn, &option);
    }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override
    {
        const qreal scale = painter->device()->devicePixelRatio();
        QPixmap drawn = pixmap((QSizeF(rect.size()) * scale).toSize(), mode, state);
        drawn.setDevicePixelRatio(scale);
        painter->drawPixmap(rect, drawn);
    }

private:
    std::map<int, QString> files_;
};

} // namespace

QIcon icon(const QString& name)
{
    registerPictures();
    DrawnIcon drawing(name);
    return drawing.isNull() ? QIcon() : QIcon(drawing.clone());
}

QPixmap picture(const QString& name, QSize size, qreal scale)
{
    return icon(name).pixmap(size, scale);
}

} // namespace quarrynet
