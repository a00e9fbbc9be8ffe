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

class QUrl;
class QWidget;

/// What stands behind HtmlView: a view that shows one local page at a time. The browser engine is a plug-in and shares
/// no code with the program but these interfaces.
namespace quarrynet {

/// A raster picture as its server sent it; without bytes where there is none.
struct Picture
{
    QByteArray bytes;
    QByteArray type; // media type, one of those of common/raster_head.h, as the content tells it
    QSize size;      // in pixels
};

/// A picture of a gallery. The bytes are those of the results page, of any kind and length.
struct GalleryPicture
{
    std::string address;   // of the whole picture, without its scheme
    std::string thumbnail; // address of the small one
};

/// No view fetches more pictures than this for one page. A page of results has ten.
inline constexpr int kMaxPagePictures = 32;

/// Where a page's pictures come from. A view fetches nothing from the net by itself.
class PictureSource
{
public:
    virtual ~PictureSource() = default;

    /// Fetches the picture at an http or https address. `done` runs once, later; not at all when `context` is gone by
    /// then, which also ends the fetching.
    virtual void fetch(const QUrl& address, QObject* context, std::function<void(const Picture&)> done) = 0;
};

/// What a view needs, and whom it tells.
struct PageViewHost
{
    PictureSource& pictures;

    /// A person chose the link with this address (encoded, of any scheme).
    std::function<void(const QByteArray& address)> linkActivated;

    /// The view cannot go on; `reason` is a sentence for people. The view may be destroyed soon after, not during, this
    /// call.
    std::function<void(const QString& reason)> failed;
};

class PageView
{
public:
    virtual ~PageView() = default;

    /// The view's widget, which belongs to the view.
    virtual QWidget& widget() = 0;

    /// Shows the local page at `path`, anew if it is shown already. The page may show the program's own pages of its
    /// folder in its frames, and nothing else of the file system. `pictures` are the gallery that the page shows; a
    /// view that reads no pages shows them alone.
    virtual void showPage(const QString& path, const std::vector<GalleryPicture>& pictures) = 0;
};

/// The object that the plug-in exports.
class PageEngine
{
public:
    virtual ~PageEngine() = default;

    /// A view below `parent`; where the engine cannot start, none, and `reason` is a sentence for people.
    virtual std::unique_ptr<PageView> makeView(const PageViewHost& host, QWidget* parent, QString& reason) = 0;
};

} // namespace quarrynet

Q_DECLARE_INTERFACE(quarrynet::PageEngine, "quarrynet.PageEngine/2")
