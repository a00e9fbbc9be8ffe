#pragma once

#include <QList>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainterPath>
#include <QTransform>
#include <QWidget>

/// The pieces of text that a widget paints, in the order in which it paints them, and their places.
class TextPlaces final : public QPaintDevice
{
public:
    struct Text
    {
        QString text;
        QPointF start; // on the base line, in the widget
        QRectF place;  // of its letters, in the widget
    };

    explicit TextPlaces(QWidget& widget) : widget_(widget) { widget.render(this); }

    const QList<Text>& texts() const { return engine_.texts; }

    QPaintEngine* paintEngine() const override { return &engine_; }

protected:
    int metric(PaintDeviceMetric metric) const override
    {
        switch (metric) {
        case PdmWidth:
            return widget_.width();
        case PdmHeight:
            return widget_.height();
        case PdmDevicePixelRatio:
            return 1;
        case PdmDevicePixelRatioScaled:
            return static_cast<int>(devicePixelRatioFScale());
        case PdmDpiX:
        case PdmPhysicalDpiX:
            return widget_.logicalDpiX();
        case PdmDpiY:
        case PdmPhysicalDpiY:
            return widget_.logicalDpiY();
        default:
            return 0;
        }
    }

private:
    class Engine final : public QPaintEngine
    {
    public:
        Engine() : QPaintEngine(AllFeatures) {}
        bool begin(QPaintDevice* /*device*/) override { return true; }
        bool end() override { return true; }
        void updateState(const QPaintEngineState& changed) override
        {
            if (changed.state() & DirtyTransform)
                transform_ = changed.transform();
        }
        void drawPath(const QPainterPath& /*path*/) override {}
        void drawPixmap(const QRectF& /*to*/, const QPixmap& /*pixmap*/, const QRectF& /*from*/) override {}
        void drawTextItem(const QPointF& at, const QTextItem& item) override
        {
            const QRectF line(at.x(), at.y() - item.ascent(), item.width(), item.ascent() + item.descent());
            texts.append({item.text(), transform_.map(at), transform_.mapRect(line)});
        }
        void drawPolygon(const QPointF* /*points*/, int /*count*/, PolygonDrawMode /*mode*/) override {}
        Type type() const override { return User; }

        QList<Text> texts;

    private:
        QTransform transform_;
    };

    QWidget& widget_;
    mutable Engine engine_;
};
