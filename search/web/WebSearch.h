#pragma once

#include <memory>

#include "platform/HiddenListBox.h"
#include "search/SearchTab.h"

namespace quarrynet {

namespace Ui {
class WebSearch;
}

/// The tab "Search The Internet": finds web addresses with short descriptions for keywords, thirty per page.
class WebSearch final : public PagedSearch
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(WebSearch)

public:
    WebSearch(SearchWindow& window, QWidget* parent);
    ~WebSearch() override;

    /// Sizes the list's columns for its current width.
    void halveColumns();

    void clearView() override;
    ListView* list() override;
    QString outcome() const override;

    using PagedSearch::page;

protected:
    std::optional<std::string> requestText() override;
    void resetResults(bool newSearch) override;
    Result<PagingWindow> widened(const PagingWindow& window) const override;
    const std::string& directHost() override;

private:
    void Text2_Change();
    void ListView1_DblClick();

    std::unique_ptr<Ui::WebSearch> ui_;
    HiddenText Text3;
    HiddenListBox List1;
    HiddenListBox List2;
    HiddenListBox List3;
    HiddenListBox List4;
};

} // namespace quarrynet
