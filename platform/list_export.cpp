// What leaves a list view: copied and dragged rows, and the rows to save.

#include <QClipboard>
#include <QGuiApplication>

#include "common/address_check.h"
#include "platform/ListView.h"
#include "platform/message_boxes.h"
#include "platform/text_border.h"

namespace quarrynet {

namespace {

void copy(std::unique_ptr<QMimeData> data)
{
    QGuiApplication::clipboard()->setMimeData(data.release());
}

QString harmless(const QString& cell)
{
    return QString::fromStdString(harmlessCell(cell.toStdString()));
}

} // namespace

// The row's bytes decide whether the address may be opened, as for a double click: its line has other characters in
// place of some and may be cut.
ListView::Address ListView::addressOf(const ListViewModel::Row& row) const
{
    if (!addressColumn_ || *addressColumn_ >= row.size())
        return {};
    const std::string& address = row[*addressColumn_];
    if (const std::optional<std::string> openable = openableAddress(address))
        return {QString::fromStdString(*openable), true};
    return {toLine(address), false};
}

void ListView::copyAddresses() const
{
    runOrReportMemory(window(), [this] {
        QStringList lines;
        for (const std::size_t row : selectedRows())
            lines.append(harmless(addressOf(rows()[row]).text));
        if (!lines.isEmpty() && hasAddresses())
            QGuiApplication::clipboard()->setText(lines.join(u'\n'));
    });
}

void ListView::copyRows() const
{
    runOrReportMemory(window(), [this] {
        if (std::unique_ptr<QMimeData> selected = rowsData())
            copy(std::move(selected));
    });
}

// Returns null if no row is selected.
std::unique_ptr<QMimeData> ListView::rowsData() const
{
    QStringList lines;
    Table table = headedTable();
    for (const std::size_t row : selectedRows()) {
        table.rows.push_back(shownCells(rows()[row]));
        QStringList cells;
        for (const std::string& cell : table.rows.back())
            cells.append(QString::fromStdString(harmlessCell(cell)));
        lines.append(cells.join(u'\t'));
    }
    if (lines.isEmpty())
        return nullptr;
    auto mime = std::make_unique<QMimeData>();
    mime->setText(lines.join(u'\n'));
    mime->setHtml(QString::fromStdString(htmlTable(table)));
    return mime;
}

std::unique_ptr<QMimeData> ListView::dragData(const std::vector<std::size_t>& rows) const
{
    QStringList lines;
    QByteArray uris; // RFC 2483: lines that end in CR LF
    for (const std::size_t row : rows) {
        const Address address = addressOf(model_->rows()[row]);
        lines.append(harmless(address.text));
        if (address.isOpenable)
            uris += address.text.toLatin1() + "\r\n"; // ASCII only
    }
    auto mime = std::make_unique<QMimeData>();
    mime->setText(lines.join(u'\n'));
    if (!uris.isEmpty())
        mime->setData(QStringLiteral("text/uri-list"), uris);
    return mime;
}

Table ListView::headedTable() const
{
    Table table;
    for (const QString& header : model_->headers())
        table.headers.push_back(header.toStdString());
    return table;
}

std::vector<std::string> ListView::shownCells(const ListViewModel::Row& row) const
{
    std::vector<std::string> cells;
    for (int column = 0; column < model_->columnCount(); ++column)
        cells.push_back(ListViewModel::cell(row, column).toStdString());
    return cells;
}

Table ListView::tableOf(const ListViewModel::Shown& shown) const
{
    Table table = headedTable();
    if (hasAddresses()) {
        table.addressColumn = table.headers.size();
        table.headers.emplace_back("Address"); // the same in all languages, because programs read the keys
    }
    const std::size_t count = shown.order ? shown.order->size() : shown.rows.size();
    table.rows.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const ListViewModel::Row& row = shown.rows[shown.order ? (*shown.order)[i] : i];
        std::vector<std::string>& cells = table.rows.emplace_back(shownCells(row));
        if (hasAddresses()) {
            const Address address = addressOf(row);
            cells.push_back(address.text.toStdString());
            table.openable.push_back(address.isOpenable);
        }
    }
    return table;
}

Table ListView::table() const
{
    return tableOf(hasRowsOfBefore() ? cleared_ : model_->shown());
}

} // namespace quarrynet
