#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/HiddenListBox.h"
#include "platform/PageView.h"
#include "search/SearchTab.h"

namespace quarrynet {

namespace Ui {
class ImageSearch;
}

/// The tab "Image Search": finds images for keywords and shows a gallery of at most ten thumbnails per page, a local
/// page that it writes.
class ImageSearch final : public PagedSearch
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ImageSearch)

public:
    ImageSearch(SearchWindow& window, QWidget* parent);
    ~ImageSearch() override;

    /// Connects the search to other tabs: `onSearch` runs in the middle of the search command; `proxiedPage` gives the
    /// page to request through a proxy.
    void setNeighbours(std::function<void()> onSearch, std::function<std::int32_t()> proxiedPage);

    /// Shows the empty page.
    void clearView() override;
    QString outcome() const override;

signals:
    /// The gallery could not be written; the program cannot continue.
    void unwritable();

protected:
    std::optional<std::string> requestText() override;
    void resetResults(bool newSearch) override;
    Result<PagingWindow> widened(const PagingWindow& window) const override;
    const std::string& directHost() override;
    void handOver(const std::string& body) override;

private:
    void Text9_Change();
    bool writeGallery(const std::string& gallery);
    void showPage(std::string_view name, std::vector<GalleryPicture> pictures = {});
    std::vector<GalleryPicture> shownPictures() const;

    std::unique_ptr<Ui::ImageSearch> ui_;
    HiddenText Text8;
    HiddenListBox List6;
    HiddenListBox List7;
    HiddenListBox List8;
    HiddenListBox List9;
    std::vector<std::string> sizes_; // of the full pictures, as "640 x 480", or empty texts
    std::function<void()> onSearch_;
    std::function<std::int32_t()> proxiedPage_;
};

} // namespace quarrynet
