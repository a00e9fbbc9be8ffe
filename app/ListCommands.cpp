#include "app/ListCommands.h"

#include <array>
#include <optional>
#include <utility>

#include <QAction>
#include <QDate>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMainWindow>
#include <QMenu>
#include <QShortcut>
#include <QStandardPaths>

#include "common/table_text.h"
#include "platform/ListView.h"
#include "platform/local_files.h"
#include "platform/message_boxes.h"
#include "platform/scaling_bars.h"
#include "platform/text_border.h"
#include "search/SearchTab.h"

namespace quarrynet {

namespace {

struct Format
{
    const char* extension;
    const char* name;
    std::string (*write)(const Table&);
};

constexpr std::array<Format, 3> kFormats = {{
    {"csv", QT_TRANSLATE_NOOP("quarrynet::ListCommands", "Table for spreadsheets (*.csv)"), csvText},
    {"json", QT_TRANSLATE_NOOP("quarrynet::ListCommands", "Data for programs (*.json)"), jsonText},
    {"html", QT_TRANSLATE_NOOP("quarrynet::ListCommands", "Web page (*.html)"), htmlPage},
}};

// Returns the format that the extension of `path` names, or null.
const Format* formatOf(const QString& path)
{
    QString extension = QFileInfo(path).suffix().toLower();
    if (extension == QLatin1String("htm"))
        extension = QStringLiteral("html");
    for (const Format& format : kFormats) {
        if (extension == QLatin1String(format.extension))
            return &format;
    }
    return nullptr;
}

// Makes the name in the dialog end in the extension of the chosen format, where it ends in that of another. A path to a
// folder that is missing stays as it is, because the dialog would look for it in another place.
void followFormat(QFileDialog& dialog, const Format& format)
{
    const QLatin1String extension(format.extension);
    dialog.setDefaultSuffix(extension);
    const QFileInfo file(dialog.selectedFiles().value(0));
    const Format* named = formatOf(file.filePath());
    if (named && named != &format && file.dir().exists())
        dialog.selectFile(file.dir().filePath(file.completeBaseName() + u'.' + extension));
}

const Format& formatOfFilter(const QFileDialog& dialog, const QString& filter)
{
    const qsizetype index = dialog.nameFilters().indexOf(filter);
    return kFormats[static_cast<std::size_t>(qMax(qsizetype{0}, index))];
}

struct Target
{
    QString path;
    const Format* format;
};

// Asks for the file to save to. Returns a path whose extension names the format, or nothing if the user cancels.
// Programs decide by the extension how to read a file, and one of the web ("rows.xhtml") would let the markup in a row
// run. So a name with an extension of none of the formats gets that of the chosen format as well.
std::optional<Target> askForTarget(QFileDialog& dialog)
{
    while (dialog.exec() == QDialog::Accepted) {
        const QString path = dialog.selectedFiles().value(0);
        if (const Format* format = formatOf(path))
            return Target{path, format};
        const Format& format = formatOfFilter(dialog, dialog.selectedNameFilter());
        const QString extended = path + u'.' + QLatin1String(format.extension);
        if (!QFileInfo::exists(extended))
            return Target{extended, &format};
        dialog.selectFile(extended); // the dialog asks before a file is replaced
    }
    return std::nullopt;
}

} // namespace

ListCommands::ListCommands(QMainWindow& window, QMenu& menu, QAction* next, const std::vector<SearchTab*>& tabs,
                           TabStrip& strip, std::function<SearchTab*()> front)
    : QObject(&window), window_(window), front_(std::move(front)), entry_(new QAction(tr("&Save List..."), this))
{
    entry_->setObjectName(QStringLiteral("savelistmnu"));
    entry_->setShortcut(QKeySequence::Save);
    menu.insertAction(next, entry_);
    connect(entry_, &QAction::triggered, this, [this] {
        if (SearchTab* tab = front_())
            save(*tab);
    });
    auto* find = new QShortcut(QKeySequence::Find, &window);
    find->setAutoRepeat(false);
    connect(find, &QShortcut::activated, this, &ListCommands::filter);
    connect(&strip, &QTabBar::currentChanged, this, &ListCommands::updateEntry);
    for (SearchTab* tab : tabs) {
        if (const ListView* list = tab->list()) {
            connect(list, &ListView::rowsChanged, this, &ListCommands::updateEntry);
            connect(list, &ListView::saveWanted, this, [this, tab] { save(*tab); });
        }
    }
    updateEntry();
}

void ListCommands::updateEntry()
{
    SearchTab* tab = front_();
    entry_->setEnabled(tab && tab->list() && tab->list()->isSavable());
}

void ListCommands::filter()
{
    SearchTab* tab = front_();
    if (tab && tab->list())
        tab->list()->openFilter();
}

void ListCommands::save(SearchTab& tab)
{
    runOrReportMemory(&window_, [&] { saveRows(tab); });
}

void ListCommands::saveRows(SearchTab& tab)
{
    const ListView* list = tab.list();
    if (!list || !list->isSavable())
        return;
    // Rows that arrive while the dialog is open are not what the user asked to save.
    Table table = list->table();
    const std::string caption = tab.accessibleName().toStdString();
    const std::string words = toLine(list->subject()).toStdString();
    table.title = words.empty() ? caption : words + " - " + caption;
    const std::string date = QDate::currentDate().toString(Qt::ISODate).toStdString();
    const QString name = QString::fromStdString(suggestedFileName(words, caption, date));

    // A folder that is missing would make the dialog open in the one that it was last used in.
    QString start = folder_;
    for (const QString& other :
         {QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation), QDir::homePath()}) {
        if (start.isEmpty() || !QFileInfo(start).isDir())
            start = other;
    }
    QFileDialog dialog(&window_,
                       list->hasRowsOfBefore() ? tr("Save the Rows of the Previous Results") : tr("Save List"), start);
    dialog.setObjectName(QStringLiteral("SaveList"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    QStringList filters;
    for (const Format& format : kFormats)
        filters.append(tr(format.name));
    dialog.setNameFilters(filters);
    dialog.setDefaultSuffix(QLatin1String(kFormats[0].extension));
    dialog.selectFile(name + u'.' + QLatin1String(kFormats[0].extension));
    connect(&dialog, &QFileDialog::filterSelected, &dialog,
            [&](const QString& filter) { followFormat(dialog, formatOfFilter(dialog, filter)); });
    const std::optional<Target> target = askForTarget(dialog);
    if (!target)
        return;

    const QString reason = replaceFileAtomically(target->path, target->format->write(table));
    if (reason.isEmpty())
        folder_ = QFileInfo(target->path).path();
    else
        showFileError(&window_, QDir::toNativeSeparators(target->path), reason);
}

} // namespace quarrynet
