#include "app/RememberedPlaces.h"

#include <algorithm>
#include <utility>

#include <QAction>
#include <QFile>
#include <QGuiApplication>
#include <QMainWindow>
#include <QMenu>
#include <QRegion>
#include <QScreen>
#include <QStyle>

#include "common/CDS_CIni.h"
#include "platform/ListView.h"
#include "platform/message_boxes.h"
#include "platform/text_border.h"

namespace quarrynet {

namespace {

constexpr const char* kSection = "Window";
constexpr const char* kLeft = "Left";
constexpr const char* kTop = "Top";
constexpr const char* kTitle = "Title"; // the height of the title bar, which some desktops do not give windows

// Programs cannot place windows there, and every window seems to be at the origin.
bool isPlacingPossible()
{
    return !QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

QList<QRect> screens()
{
    QList<QRect> places;
    for (const QScreen* screen : QGuiApplication::screens())
        places.append(screen->availableGeometry());
    return places;
}

// Returns the coordinate in pixels, or nothing if the text is something else or lies beyond any desktop.
std::optional<int> coordinate(const std::string& text)
{
    constexpr int kFarthest = 1'000'000; // a rectangle there does not overflow
    bool isNumber = false;
    const int number = toText(text).toInt(&isNumber);
    return isNumber && number >= -kFarthest && number <= kFarthest ? std::optional(number) : std::nullopt;
}

// Writes every digit that is needed to read the same numbers again: with other ones, columns would become a pixel
// narrower.
std::string textOf(const std::vector<double>& shares)
{
    constexpr int kDigits = 17;
    QStringList numbers;
    for (const double share : shares)
        numbers.append(QString::number(share, 'g', kDigits));
    return numbers.join(u',').toStdString();
}

std::vector<double> sharesOf(const std::string& text)
{
    std::vector<double> shares;
    for (const QString& number : toText(text).split(u','))
        shares.push_back(number.toDouble()); // 0, which no list accepts, if it is no number
    return shares;
}

} // namespace

RememberedPlaces::RememberedPlaces(std::string path, QMainWindow& window, std::map<std::string, ListView*> lists)
    : QObject(&window), path_(std::move(path)), window_(window), lists_(std::move(lists))
{}

void RememberedPlaces::addTo(QMenu& menu)
{
    QAction* forgetting = menu.addAction(tr("&Forget Place and Columns"));
    forgetting->setObjectName(QStringLiteral("forgetplacesmnu"));
    connect(forgetting, &QAction::triggered, this, &RememberedPlaces::forget);
}

RememberedPlaces::Values RememberedPlaces::read() const
{
    CDS_CIni store;
    store.setFileName(path_);
    std::vector<std::string> keys;
    std::vector<std::string> texts;
    store.ReadSection(kSection, keys, texts);
    Values values;
    for (std::size_t i = 0; i < keys.size(); ++i)
        values.emplace(keys[i], texts[i]);
    return values;
}

void RememberedPlaces::apply()
{
    Values values = read();
    const std::optional<int> left = coordinate(values[kLeft]);
    const std::optional<int> top = coordinate(values[kTop]);
    if (left && top && isPlacingPossible()) {
        const QRect place(QPoint(*left, *top), window_.size());
        const int usual = window_.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &window_);
        const int title = std::max(0, coordinate(values[kTitle]).value_or(usual));
        if (isWithinReach(place, title, screens()))
            window_.setGeometry(place);
    }
    for (const auto& [name, list] : lists_)
        list->setColumnShares(sharesOf(values[name]));
    noteColumns();
}

void RememberedPlaces::noteColumns()
{
    for (const auto& [name, list] : lists_)
        untouched_[name] = list->columnShares();
}

bool RememberedPlaces::isNormal() const
{
    return !(window_.windowState() & (Qt::WindowMinimized | Qt::WindowMaximized | Qt::WindowFullScreen));
}

std::optional<QPoint> RememberedPlaces::place() const
{
    if (!isPlacingPossible())
        return std::nullopt;
    const QRect place = isNormal() ? window_.geometry() : window_.normalGeometry();
    return place.isValid() ? std::optional(place.topLeft()) : std::nullopt;
}

void RememberedPlaces::remember()
{
    const Values before = read();
    Values values;
    const auto keep = [&](const std::string& key) {
        if (const auto old = before.find(key); old != before.end())
            values.insert(*old);
    };
    if (const std::optional<QPoint> at = place()) {
        if (at != forgotten_) {
            values[kLeft] = std::to_string(at->x());
            values[kTop] = std::to_string(at->y());
            if (isNormal())
                values[kTitle] = std::to_string(window_.geometry().top() - window_.frameGeometry().top());
            else
                keep(kTitle);
        }
    } else {
        for (const char* key : {kLeft, kTop, kTitle})
            keep(key);
    }
    for (const auto& [name, list] : lists_) {
        // Another window may have written other columns, or have forgotten them.
        if (const auto old = untouched_.find(name); old != untouched_.end() && old->second == list->columnShares())
            keep(name);
        else if (list->areColumnsMoved())
            values[name] = textOf(list->columnShares());
    }
    if (values == before)
        return;
    std::vector<std::string> keys;
    std::vector<std::string> texts;
    for (const auto& [key, text] : values) {
        keys.push_back(key);
        texts.push_back(text);
    }
    CDS_CIni store;
    store.setFileName(path_);
    store.WriteSection(kSection, keys, texts);
}

void RememberedPlaces::forget()
{
    forgotten_ = place();
    for (const auto& [name, list] : lists_)
        list->resetColumns();
    QFile file(toPathText(path_));
    if (file.exists() && !file.remove()) {
        untouched_.clear(); // so that remember() removes them from the file, if it can by then
        showFileError(&window_, file.fileName(), file.errorString());
        return;
    }
    noteColumns();
}

bool isWithinReach(const QRect& window, int title, const QList<QRect>& screens)
{
    QRegion desktop;
    for (const QRect& screen : screens)
        desktop += screen;
    const auto area = [](const QRect& part) { return static_cast<qint64>(part.width()) * part.height(); };
    qint64 visible = 0;
    for (const QRect& part : desktop& window)
        visible += area(part);
    const QPoint handle(window.center().x(), window.top() - (title + 1) / 2);
    return desktop.contains(handle) && 2 * visible >= area(window);
}

} // namespace quarrynet
