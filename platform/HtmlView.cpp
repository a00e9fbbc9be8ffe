#include "platform/HtmlView.h"

#include <array>
#include <optional>
#include <string_view>
#include <utility>

#include <QChildEvent>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QPluginLoader>
#include <QVBoxLayout>

#include "common/address_check.h"
#include "platform/PlainPageView.h"
#include "platform/contrast.h"
#include "platform/view_keys.h"

namespace quarrynet {

namespace {

// The build sets both: the plug-in's file name, and its installed folder relative to the program's folder.
constexpr const char* kEngineFile = QUARRYNET_ENGINE_FILE;
constexpr const char* kInstalledFolder = QUARRYNET_ENGINE_FOLDER;

// In per cent.
constexpr std::array kZooms = {50, 67, 80, 100, 125, 150, 200, 300};
constexpr std::size_t kNoZoom = 3;
static_assert(kZooms[kNoZoom] == 100);

QStringList defaultFolders()
{
    const QString program = QCoreApplication::applicationDirPath();
    return {program, program + QLatin1Char('/') + QString::fromLatin1(kInstalledFolder)};
}

// While it exists, keeps the engine's long start-up messages out of this program's output.
class ScopedSilence
{
    Q_DISABLE_COPY_MOVE(ScopedSilence)

public:
    ScopedSilence() { before_ = qInstallMessageHandler(&ScopedSilence::handle); }
    ~ScopedSilence() { qInstallMessageHandler(before_); }

private:
    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& message)
    {
        if (type == QtFatalMsg && before_)
            before_(type, context, message);
    }

    static inline QtMessageHandler before_ = nullptr;
};

QString plainNote()
{
    return HtmlView::tr("Pictures and links are shown without the browser view.");
}

bool takesTabKey(const QWidget& control)
{
    return (control.focusPolicy() & Qt::TabFocus) && !control.focusProxy() && control.isEnabled() &&
           control.isVisible();
}

// Takes `part` out of the Tab order. It still accepts keys and clicks.
void leaveTabKey(QWidget& part)
{
    part.setFocusPolicy(static_cast<Qt::FocusPolicy>(part.focusPolicy() & ~Qt::TabFocus));
}

} // namespace

HtmlView::HtmlView(QWidget* parent)
    : QWidget(parent)
    , engineFolders_(defaultFolders())
    , layout_(new QVBoxLayout(this))
    , messageLabel_(new QLabel(this))
    , zoom_(kNoZoom)
{
    layout_->setContentsMargins(0, 0, 0, 0);
    layout_->setSpacing(0);
    messageLabel_->setObjectName(QStringLiteral("EngineMessage"));
    messageLabel_->setTextFormat(Qt::PlainText);
    messageLabel_->setWordWrap(true);
    messageLabel_->setMargin(4);
    messageLabel_->setFrameShape(QFrame::StyledPanel);
    messageLabel_->hide();
    layout_->addWidget(messageLabel_);
    setFocusPolicy(Qt::StrongFocus);
}

HtmlView::~HtmlView() = default;

void HtmlView::navigate(const QString& path, std::vector<GalleryPicture> pictures)
{
    url_ = QUrl::fromLocalFile(path);
    gallery_ = std::move(pictures);
    if (view_)
        view_->showPage(path, gallery_);
    emit urlChanged();
}

void HtmlView::setProxy(const QString& host, quint16 port)
{
    pictures_.setProxy(host, port);
}

QString HtmlView::message() const
{
    return messageLabel_->text();
}

void HtmlView::say(const QString& message)
{
    messageLabel_->setText(message);
    messageLabel_->setVisible(!message.isEmpty());
}

void HtmlView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (std::exchange(started_, true))
        return;
    // Queued, so that the chosen tab appears at once.
    QMetaObject::invokeMethod(this, &HtmlView::start, Qt::QueuedConnection);
}

PageViewHost HtmlView::host()
{
    return {pictures_, [this](const QByteArray& address) { activate(address); },
            [this](const QString& reason) { engineFailed(reason); }, [this](Zoom change) { changeZoom(change); }};
}

PageLook HtmlView::look() const
{
    const QPalette& colors = palette();
    PageLook look;
    look.background = colors.color(QPalette::Base);
    look.text = readableOn(look.background, colors.color(QPalette::Text));
    // Some dark desktops keep the toolkit's dark blue.
    look.link = readableOn(look.background, colors.color(QPalette::Link));
    look.focus = readableOn(look.background, colors.color(QPalette::Highlight), kShapeContrast);
    look.line = readableOn(look.background, colors.color(QPalette::Mid), kShapeContrast);
    const bool dark = look.background.lightness() < look.text.lightness();
    look.plate = dark ? mixed(look.background, Qt::white, 0.75) : look.background;
    look.font = font();
    look.zoom = kZooms[zoom_] / 100.0;
    look.rightToLeft = isRightToLeft();
    look.noPicture = tr("No picture");
    return look;
}

int HtmlView::zoom() const
{
    return kZooms[zoom_];
}

void HtmlView::changeZoom(Zoom change)
{
    const std::size_t before = zoom_;
    if (change == Zoom::Reset)
        zoom_ = kNoZoom;
    else if (change == Zoom::In && zoom_ + 1 < kZooms.size())
        ++zoom_;
    else if (change == Zoom::Out && zoom_ > 0)
        --zoom_;
    if (zoom_ != before && view_)
        view_->setLook(look());
}

void HtmlView::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    const QEvent::Type type = event->type();
    const bool changed = type == QEvent::PaletteChange || type == QEvent::FontChange ||
                         type == QEvent::LayoutDirectionChange || type == QEvent::StyleChange;
    if (changed && view_)
        view_->setLook(look());
}

void HtmlView::start()
{
    for (const QString& folder : std::as_const(engineFolders_)) {
        const QString path = folder + QLatin1Char('/') + QString::fromLatin1(kEngineFile);
        if (!QFileInfo(path).isFile())
            continue;
        const ScopedSilence silence;
        // The plug-in stays loaded, because an engine cannot start twice in one process.
        QPluginLoader loader(path);
        auto* engine = qobject_cast<PageEngine*>(loader.instance());
        QString reason = engine ? QString() : loader.errorString();
        std::unique_ptr<PageView> view = engine ? engine->makeView(host(), this, reason) : nullptr;
        if (view) {
            hasBrowser_ = true;
            takeView(std::move(view));
        } else {
            engineFailed(tr("The browser view cannot start: %1").arg(reason));
        }
        return;
    }
    startPlain();
}

void HtmlView::engineFailed(const QString& reason)
{
    if (view_ && !hasBrowser_)
        return; // already replaced
    say(reason + QLatin1Char('\n') + plainNote());
    hasBrowser_ = false;
    // Queued, because the failing view may be the caller.
    QMetaObject::invokeMethod(this, &HtmlView::startPlain, Qt::QueuedConnection);
}

void HtmlView::startPlain()
{
    takeView(std::make_unique<PlainPageView>(host(), this));
}

void HtmlView::takeView(std::unique_ptr<PageView> view)
{
    view_ = std::move(view);
    view_->widget().setAccessibleName(accessibleName());
    layout_->addWidget(&view_->widget(), 1);
    // Because it is created late, the view would be last in the window's Tab order, so this widget takes its place. A
    // child as focus proxy would move this widget behind its successor in that order, and the key would alternate
    // between the two.
    leaveTabKey(view_->widget());
    view_->widget().installEventFilter(this);
    if (hasFocus())
        view_->widget().setFocus();
    view_->setLook(look());
    view_->widget().show();
    if (!url_.isEmpty())
        view_->showPage(url_.toLocalFile(), gallery_);
}

void HtmlView::activate(const QByteArray& address)
{
    const std::optional<std::string> openable =
        openableAddress({address.constData(), static_cast<std::size_t>(address.size())});
    if (!openable)
        return;
    for (const std::string_view scheme : {"http:", "https:", "ftp:"}) {
        if (openable->compare(0, scheme.size(), scheme) == 0)
            emit linkActivated(*openable);
    }
}

void HtmlView::focusInEvent(QFocusEvent* event)
{
    if (view_)
        view_->widget().setFocus(event->reason());
}

bool HtmlView::focusNextPrevChild(bool next)
{
    // The focus widget is a child of this widget and can be anywhere in the window's Tab order.
    QWidget* control = this;
    do {
        control = next ? control->nextInFocusChain() : control->previousInFocusChain();
    } while (control != this && (isAncestorOf(control) || !takesTabKey(*control)));
    if (control == this)
        return false;
    control->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

bool HtmlView::eventFilter(QObject* watched, QEvent* event)
{
    // The engine creates the widget that takes its keys when it loads a page.
    if (event->type() == QEvent::ChildPolished) {
        if (auto* part = qobject_cast<QWidget*>(static_cast<QChildEvent*>(event)->child()))
            leaveTabKey(*part);
    }
    return QWidget::eventFilter(watched, event);
}

bool HtmlView::event(QEvent* event)
{
    // The view behind this widget may not have started yet. Keys that leave a page are no shortcuts here.
    if (event->type() == QEvent::ShortcutOverride && leadsAway(*static_cast<QKeyEvent*>(event))) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

void HtmlView::keyPressEvent(QKeyEvent* event)
{
    // Keys that the view did not use, such as Escape, go on to the window.
    if (!leadsAway(*event) && event->key() != Qt::Key_Backspace)
        event->ignore();
}

} // namespace quarrynet
