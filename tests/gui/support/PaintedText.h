#pragma once

#include <map>

#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainterPath>
#include <QStringList>
#include <QTransform>
#include <QWidget>

/// The texts that a widget paints, in pieces.
class PaintedText final : public QPaintDevice
{
public:
    explicit PaintedText(QWidget& widget) : widget_(widget) { widget.render(this); }

    /// All pieces, joined by "|" in the order in which they are painted.
    QString texts() const { return engine_.texts.join(u'|'); }

    /// Returns the line that contains `part` as a reader sees it: its pieces from left to right. Empty if none does.
    QString lineWith(const QString& part) const
    {
        for (const auto& [y, pieces] : engine_.lines) {
            if (const QString line = joined(pieces); line.contains(part))
                return line;
        }
        return {};
    }

    /// Returns where that line begins, in pixels from the left; -1 if there is none.
    double leftOf(const QString& part) const
    {
        for (const auto& [y, pieces] : engine_.lines) {
            if (joined(pieces).contains(part))
                return pieces.begin()->first;
        }
        return -1;
    }

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
    static QString joined(const std::map<double, QString>& pieces)
    {
        QString line;
        for (const auto& [x, piece] : pieces)
            line += piece;
        return line;
    }

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
            texts.append(item.text());
            const QPointF place = transform_.map(at);
            lines[qRound(place.y())][place.x()] += item.text();
        }
        void drawPolygon(const QPointF* /*points*/, int /*count*/, PolygonDrawMode /*mode*/) override {}
        Type type() const override { return User; }

        QStringList texts;
        std::map<int, std::map<double, QString>> lines;

    private:
        QTransform transform_;
    };

    QWidget& widget_;
    mutable Engine engine_;
};
