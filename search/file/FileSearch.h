#pragma once

#include <memory>

#include "platform/HiddenListBox.h"
#include "search/SearchTab.h"

namespace quarrynet {

namespace Ui {
class FileSearch;
}

/// The tab "Specific File Search": finds files and directories on FTP servers by name, twenty per page.
class FileSearch final : public PagedSearch
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(FileSearch)

public:
    FileSearch(SearchWindow& window, QWidget* parent);
    ~FileSearch() override;

    void clearView() override;
    ListView* list() override;
    QString outcome() const override;

protected:
    std::optional<std::string> requestText() override;
    void resetResults(bool newSearch) override;
    Result<PagingWindow> widened(const PagingWindow& window) const override;
    const std::string& directHost() override;

private:
    void Text16_Change();
    void ListView4_DblClick();
    void ListView4_MouseMove();

    std::unique_ptr<Ui::FileSearch> ui_;
    HiddenText Text15;
    HiddenListBox List11;
};

} // namespace quarrynet
