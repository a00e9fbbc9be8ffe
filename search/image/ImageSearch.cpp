#include "search/image/ImageSearch.h"

#include <utility>

#include "common/local_pages.h"
#include "platform/Shell.h"
#include "platform/local_files.h"
#include "platform/message_boxes.h"
#include "platform/text_border.h"
#include "search/image/gallery.h"
#include "search/image/request.h"
#include "search/image/results.h"
#include "ui_ImageSearch.h"

namespace quarrynet {

namespace {

SocketRow socketRow()
{
    return {
        QStringLiteral("IMG"), QStringLiteral("ImgSock"), QStringLiteral("IMGTimer"), 100, QStringLiteral("Text9"), {}};
}

} // namespace

ImageSearch::ImageSearch(SearchWindow& window, QWidget* parent)
    : PagedSearch(socketRow(), window, parent)
    , ui_(std::make_unique<Ui::ImageSearch>())
    , Text8(QStringLiteral("Text8"), this)
    , List6(QStringLiteral("List6"), this)
    , List7(QStringLiteral("List7"), this)
    , List8(QStringLiteral("List8"), this)
    , List9(QStringLiteral("List9"), this)
{
    ui_->setupUi(this);
    setControls(*ui_->Command3, *ui_->Text7, *ui_->Slider2);
    connect(&buffer(), &HiddenText::changed, this, &ImageSearch::Text9_Change);
    connect(ui_->IMGViewer, &HtmlView::linkActivated, this,
            [this](const std::string& address) { searchWindow().shell().open(address); });
}

ImageSearch::~ImageSearch() = default;

void ImageSearch::setNeighbours(std::function<void()> onSearch, std::function<std::int32_t()> proxiedPage)
{
    onSearch_ = std::move(onSearch);
    proxiedPage_ = std::move(proxiedPage);
}

void ImageSearch::clearView()
{
    showPage(kBlankFrameName);
}

QString ImageSearch::outcome() const
{
    return counted(List8.items().size(), ui_->Label11->text());
}

void ImageSearch::showPage(std::string_view name, std::vector<GalleryPicture> pictures)
{
    // The page's pictures take the same route as its request. An unusable proxy must not fall back to a direct
    // connection, so it is replaced by a reserved name that never resolves (RFC 2606).
    Endpoint proxy = route() == Route::Proxy ? searchWindow().proxy() : Endpoint{};
    if (route() == Route::Proxy && (proxy.host.empty() || proxy.port < 1))
        proxy = {"proxy.invalid", 9};
    ui_->IMGViewer->setProxy(toText(proxy.host), static_cast<quint16>(proxy.port));
    ui_->IMGViewer->navigate(toPathText(pathInFolder(searchWindow().programFolder(), name)), std::move(pictures));
}

std::vector<GalleryPicture> ImageSearch::shownPictures() const
{
    std::vector<GalleryPicture> pictures;
    for (std::size_t i = 0; i < List8.items().size(); ++i)
        pictures.push_back(
            {i < List7.items().size() ? List7.items()[i] : std::string(), List8.items()[i],
             i < sizes_.size() && !sizes_[i].empty() ? tr("%1 pixels").arg(toText(sizes_[i])) : QString()});
    return pictures;
}

std::optional<std::string> ImageSearch::requestText()
{
    // Text8 outlives searches: once a page was parsed, every request has the paged form.
    std::optional<ImagePages> pages;
    if (!Text8.text().empty())
        pages = ImagePages{page(), proxiedPage_()};
    return orReport(imageRequest(keywords(), pages, directHost(), route()));
}

void ImageSearch::resetResults(bool newSearch)
{
    for (HiddenListBox* list : {&List6, &List7, &List8, &List9})
        list->clear();
    sizes_.clear();
    ui_->Label11->setCaption("0");
    ui_->Label12->setCaption("0.0 Second/s", kTimeUnit);
    if (newSearch)
        onSearch_();
    else
        clearView(); // a new search keeps the last gallery until it has its own
}

Result<PagingWindow> ImageSearch::widened(const PagingWindow& window) const
{
    return widenedWindow(window, Text8.text());
}

const std::string& ImageSearch::directHost()
{
    return searchWindow().serviceHosts().imageSearch;
}

void ImageSearch::handOver(const std::string& body)
{
    // Clears the buffer first, so that the same page fetched twice is parsed twice.
    buffer().setText({});
    buffer().setText(body);
}

void ImageSearch::Text9_Change()
{
    if (buffer().text().empty())
        return;
    ImageResults results =
        parseImageResults(buffer().text(), directHost(), {List6.positions(), List7.items(), List8.items(), sizes_});
    if (results.nothingFound) {
        showInformation(window(), QStringLiteral("No Images Found"));
        return;
    }
    List6.setPositions(results.lists.positions);
    List7.setItems(std::move(results.lists.addresses));
    List8.setItems(std::move(results.lists.thumbnails));
    sizes_ = std::move(results.lists.sizes);
    if (results.countCaption)
        ui_->Label11->setCaption(*results.countCaption);
    if (results.timeCaption)
        ui_->Label12->setCaption(*results.timeCaption, kTimeUnit);
    if (results.gallery && !writeGallery(*results.gallery))
        return;
    apply(results.paging, Text8);
    report(results.fault);
}

bool ImageSearch::writeGallery(const std::string& gallery)
{
    if (!writePages(window(), searchWindow().programFolder(),
                    {{kGalleryPageName, gallery}, {kGalleryFrameName, galleryFramePage()}})) {
        emit unwritable();
        return false;
    }
    showPage(kGalleryFrameName, shownPictures());
    return true;
}

} // namespace quarrynet
