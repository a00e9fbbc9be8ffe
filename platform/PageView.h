#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <QByteArray>
#include <QObject>
#include <QSize>
#include <QString>
#include <QtPlugin>

#include "platform/PageLook.h"

class QUrl;
class QWidget;

/// The interface of the views behind HtmlView. Each shows one local page at a time. The browser engine is a plug-in and
/// shares only these interfaces with the program.
namespace quarrynet {

enum class Zoom;

/// A raster picture as its server sent it. Empty `bytes` mean that there is none.
struct Picture
{
    QByteArray bytes;
    QByteArray type; // media type found in the content, one of those of common/raster_head.h
    QSize size;      // in pixels
};

/// A picture of a gallery. The bytes come from the results page and may be anything.
struct GalleryPicture
{
    std::string address;   // of the full picture, without its scheme
    std::string thumbnail; // address of the small one
    QString note{};        // what is known of the full picture, one line for its tool tip; may be empty
};

/// Maximum number of pictures that a view fetches for one page. A page of results has ten.
inline constexpr int kMaxPagePictures = 32;

/// The source of a page's pictures. A view fetches nothing from the network by itself.
class PictureSource
{
public:
    virtual ~PictureSource() = default;

    /// Fetches the picture at an http or https address. `done` runs once, after this call has returned. Destroying
    /// `context` cancels the fetch, and `done` then never runs.
    virtual void fetch(const QUrl& address, QObject* context, std::function<void(const Picture&)> done) = 0;
};

/// A view's picture source and callbacks.
struct PageViewHost
{
    PictureSource& pictures;

    /// The user chose the link with this address (encoded, of any scheme).
    std::function<void(const QByteArray& address)> linkActivated;

    /// The view cannot continue; `reason` is a sentence to show. The view may be destroyed soon after this call, not
    /// during it.
    std::function<void(const QString& reason)> failed;

    /// The user wants the pages larger or smaller. The view's look may change during this call.
    std::function<void(Zoom zoom)> zoomed;
};

/// A view that shows one local page at a time. HtmlView owns it; the plug-in and PlainPageView implement it.
class PageView
{
public:
    virtual ~PageView() = default;

    /// Returns the view's widget, which the view owns.
    virtual QWidget& widget() = 0;

    /// Shows the local page at `path`; reloads it if it is already shown. The page's frames may show the program's own
    /// pages in its folder, and no other file. `pictures` is the gallery on the page; a view that does not read pages
    /// shows only that.
    virtual void showPage(const QString& path, const std::vector<GalleryPicture>& pictures) = 0;

    /// Shows this and the next pages in `look`. The page is not loaded again.
    virtual void setLook(const PageLook& look) = 0;
};

/// The object that the plug-in exports.
class PageEngine
{
public:
    virtual ~PageEngine() = default;

    /// Returns a view whose widget is a child of `parent`. If the engine cannot start, returns null and sets `reason`
    /// to a sentence to show.
    virtual std::unique_ptr<PageView> makeView(const PageViewHost& host, QWidget* parent, QString& reason) = 0;
};

} // namespace quarrynet

/// The number changes with the interface, so that a plug-in of another version is not used.
#define QUARRYNET_PAGE_ENGINE_IID "quarrynet.PageEngine/4"
Q_DECLARE_INTERFACE(quarrynet::PageEngine, QUARRYNET_PAGE_ENGINE_IID)
