#pragma once

#include <memory>

#include "platform/HiddenListBox.h"
#include "search/SearchTab.h"
#include "search/page/address.h"

class QLineEdit;

namespace quarrynet {

namespace Ui {
class PageCheck;
}

/// The tab "Specific Page Search": checks whether keywords occur in the text of one page.
class PageCheck final : public SearchTab
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PageCheck)

public:
    PageCheck(SearchWindow& window, QWidget* parent);
    ~PageCheck() override;

    /// Fills the list of match modes, in the order of their numbers.
    void fillMatchModes();
    /// Gives each column half of the list's width.
    void halveColumns();

    const QLineEdit& addressField() const;

    /// Puts `address` into the address field and the keyboard into that of the keywords. Starts nothing: the check
    /// needs keywords, and whoever drops an address has not asked for a connection yet.
    void prepare(const std::string& address);

    void search() override;
    void clearView() override;
    ListView* list() override;
    QString outcome() const override;
    QWidget& firstField() override;

protected:
    std::optional<std::string> requestText() override;
    void handOver(const std::string& body) override;
    QString subject() const override;

private:
    void Text6_Change();

    std::unique_ptr<Ui::PageCheck> ui_;
    HiddenListBox List5;
    PageAddress address_;
};

} // namespace quarrynet
