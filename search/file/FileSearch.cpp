#include "search/file/FileSearch.h"

#include "platform/Shell.h"
#include "platform/message_boxes.h"
#include "platform/text_border.h"
#include "search/file/request.h"
#include "search/file/results.h"
#include "ui_FileSearch.h"

namespace quarrynet {

namespace {

enum class Column : std::uint8_t
{
    FileName,
    FilePath,
    FileSize,
};

SocketRow socketRow()
{
    return {QStringLiteral("SFS"),      QStringLiteral("SFSSock"),
            QStringLiteral("SFSTimer"), 100,
            QStringLiteral("Text16"),   {}};
}

} // namespace

FileSearch::FileSearch(SearchWindow& window, QWidget* parent)
    : PagedSearch(socketRow(), window, parent)
    , ui_(std::make_unique<Ui::FileSearch>())
    , Text15(QStringLiteral("Text15"), this)
    , List11(QStringLiteral("List11"), this)
{
    ui_->setupUi(this);
    setControls(*ui_->Command5, *ui_->Text11, *ui_->Slider4);
    ui_->ListView4->setColumns({QStringLiteral("FileName"), QStringLiteral("FilePath"), QStringLiteral("FileSize")});
    ui_->ListView4->setFigureColumn(static_cast<int>(Column::FileSize));
    ui_->ListView4->setAddressColumn(static_cast<std::size_t>(Column::FilePath));
    ui_->ListView4->setColumnWidths({170, 310, 90});
    ui_->ListView4->setSelectionMode(QAbstractItemView::SingleSelection);
    connect(&buffer(), &HiddenText::changed, this, &FileSearch::Text16_Change);
    connect(ui_->ListView4, &ListView::doubleClicked, this, &FileSearch::ListView4_DblClick);
    connect(ui_->ListView4, &ListView::mouseMoved, this, &FileSearch::ListView4_MouseMove);
}

FileSearch::~FileSearch() = default;

ListView* FileSearch::list()
{
    return ui_->ListView4;
}

void FileSearch::clearView()
{
    ui_->ListView4->clear();
}

QString FileSearch::outcome() const
{
    return counted(ui_->ListView4->rows().size(), {});
}

std::optional<std::string> FileSearch::requestText()
{
    const bool paged = !Text15.text().empty();
    return orReport(fileRequest(keywords(), paged ? std::optional(page()) : std::nullopt, directHost(), route()));
}

void FileSearch::resetResults(bool newSearch)
{
    ui_->ListView4->clear();
    if (newSearch)
        Text15.setText({});
}

Result<PagingWindow> FileSearch::widened(const PagingWindow& window) const
{
    return widenedWindowWithoutTotal(window);
}

const std::string& FileSearch::directHost()
{
    return searchWindow().serviceHosts().fileSearch;
}

void FileSearch::Text16_Change()
{
    if (buffer().text().empty())
        return;
    FileResults results = parseFileResults(buffer().text(), List11.positions());

    std::vector<ListViewModel::Row> rows;
    rows.reserve(results.rows.size());
    for (FileRow& row : results.rows)
        rows.push_back({std::move(row.name), std::move(row.path), std::move(row.size)});
    showRows(*ui_->ListView4, std::move(rows));
    if (results.nothingFound) {
        showInformation(window(), toText(nothingFoundText(slider().isEnabled())));
        slider().setEnabled(false);
        return;
    }
    List11.setPositions(results.linkPositions);
    if (results.sliderAvailable) {
        slider().setEnabled(*results.sliderAvailable);
        if (*results.sliderAvailable)
            Text15.setText(kPagingMark);
    }
    report(results.fault);
}

void FileSearch::ListView4_DblClick()
{
    for (const std::size_t row : ui_->ListView4->selectedRows())
        searchWindow().shell().open(ui_->ListView4->rows()[row][static_cast<std::size_t>(Column::FilePath)]);
}

void FileSearch::ListView4_MouseMove()
{
    if (!ui_->ListView4->rows().empty())
        ui_->ListView4->setToolTip(QStringLiteral("Double Click FileName to download"));
}

} // namespace quarrynet
