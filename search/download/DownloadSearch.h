#pragma once

#include <memory>

#include "platform/HiddenListBox.h"
#include "search/SearchTab.h"
#include "search/download/LinkResolution.h"

namespace quarrynet {

namespace Ui {
class DownloadSearch;
}

/// The tab "Search For Downloads": finds programs for keywords, 25 per page, and resolves and opens the link of a
/// chosen program.
class DownloadSearch final : public PagedSearch
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DownloadSearch)

public:
    DownloadSearch(SearchWindow& window, QWidget* parent);
    ~DownloadSearch() override;

    void clearView() override;
    ListView* list() override;
    QString outcome() const override;

protected:
    std::optional<std::string> requestText() override;
    void resetResults(bool newSearch) override;
    Result<PagingWindow> widened(const PagingWindow& window) const override;
    const std::string& directHost() override;

private:
    /// Returns the address of a row's link, which is a path on the download site, or nothing if no program would open
    /// it.
    std::string siteAddress(const std::string& link);

    void Text12_Change();
    void ListView3_DblClick();
    void ListView3_MouseMove();

    std::unique_ptr<Ui::DownloadSearch> ui_;
    HiddenText Text13;
    HiddenListBox List10;
    LinkResolution resolution_;
};

} // namespace quarrynet
