#include "app/Tour.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QTabBar>

#include "app/Main.h"

namespace quarrynet {

namespace {

constexpr int kLookEvery = 100;  // milliseconds
constexpr int kQuietFor = 1500;  // milliseconds without activity before a screenshot, for pictures and fades to settle
constexpr int kGiveUpAfter = 60; // seconds at one stop

} // namespace

Tour::Tour(Main& window, QString folder, QObject* parent)
    : QObject(parent)
    , window_(window)
    , folder_(std::move(folder))
    , stops_({
          {QStringLiteral("1-start"), 1, {}, nullptr},
          {QStringLiteral("2-web-search"), 1, {{"Text1", QStringLiteral("text editor")}}, "Command1"},
          {QStringLiteral("3-page-check"),
           2,
           {{"Text4", QStringLiteral("http://127.80.0.1/")}, {"Text5", QStringLiteral("search documentation zebra")}},
           "Command2"},
          {QStringLiteral("4-image-search"), 3, {{"Text7", QStringLiteral("mail")}}, "Command3"},
          {QStringLiteral("5-download-search"), 4, {{"Text10", QStringLiteral("chess")}}, "Command4"},
          {QStringLiteral("6-file-search"), 5, {{"Text11", QStringLiteral("python3")}}, "Command5"},
      })
{
    watch_.setInterval(kLookEvery);
    connect(&watch_, &QTimer::timeout, this, &Tour::look);
}

void Tour::start()
{
    arrive();
    watch_.start();
}

void Tour::arrive()
{
    const Stop& stop = stops_[next_];
    since_.start();
    window_.findChild<QTabBar*>(QStringLiteral("TabStrip1"))->setCurrentIndex(stop.tag - 1);
    for (const auto& [field, text] : stop.typed)
        window_.findChild<QLineEdit*>(QLatin1String(field))->setText(text);
    if (stop.button) {
        // Queued: a box that the search shows runs its own event loop, in which the tour must continue.
        QMetaObject::invokeMethod(window_.findChild<QPushButton*>(QLatin1String(stop.button)), "click",
                                  Qt::QueuedConnection);
    }
}

bool Tour::settled() const
{
    const Stop& stop = stops_[next_];
    if (since_.elapsed() < kQuietFor)
        return false;
    return !stop.button || window_.findChild<QPushButton*>(QLatin1String(stop.button))->isEnabled();
}

void Tour::look()
{
    if (auto* box = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
        take(*box, stops_[next_].picture + QStringLiteral("-box"));
        box->accept();
        return;
    }
    const bool late = since_.elapsed() > kGiveUpAfter * 1000;
    if (!settled() && !late)
        return;
    complete_ = complete_ && !late;
    take(window_, stops_[next_].picture);
    if (++next_ < stops_.size()) {
        arrive();
        return;
    }
    watch_.stop();
    emit finished(complete_);
}

void Tour::take(QWidget& widget, const QString& name)
{
    // Grabs the screen where there is one: it shows what a person sees, including the browser's part of the window.
    QPixmap picture = QGuiApplication::platformName() == QStringLiteral("xcb")
                          ? widget.screen()->grabWindow(widget.winId())
                          : widget.grab();
    complete_ = picture.save(QDir(folder_).filePath(name + QStringLiteral(".png"))) && complete_;
}

} // namespace quarrynet
