#include "sources/indexing.h"

#include <array>
#include <map>
#include <optional>
#include <tuple>
#include <unordered_map>

#include "ground/OpenFile.h"
#include "ground/percent_coding.h"
#include "ground/utf8.h"
#include "index/IndexWriter.h"
#include "index/database.h"
#include "sources/HomePages.h"
#include "sources/ListedFiles.h"
#include "sources/PoolFiles.h"
#include "sources/Programs.h"
#include "sources/SoftwareCatalog.h"
#include "sources/contents_lists.h"
#include "sources/document_folders.h"
#include "sources/package_lists.h"
#include "sources/picture_folders.h"
#include "sources/program_texts.h"
#include "text/html_document.h"
#include "text/markup.h"

namespace quarrynet::services {

namespace {

constexpr std::size_t kProgressStep = 10000;
constexpr std::size_t kContentsStep = 1'000'000;
constexpr std::size_t kMaxKnownPackages = 1'000'000;
constexpr std::size_t kMaxAddress = 2048;
constexpr std::size_t kMaxPage = 16 * 1024 * 1024;

/// The mirrors of the machine's own package lists, and which one has which file.
class Mirrors
{
public:
    Mirrors() : repositories_(installedRepositories())
    {
        // A single mirror needs no lookup.
        for (std::size_t i = 1; i < repositories_.size(); ++i) {
            const auto take = [this, i](const Package& package) { others_.emplace(package.file, i); };
            // Packages of a list that cannot be read are assumed on the first mirror.
            for (const std::string& list : repositories_[i].lists)
                (void)readDownloadedList(list, take);
        }
    }

    std::string baseOf(const std::string& file) const
    {
        if (repositories_.empty())
            return {};
        const auto other = others_.find(file);
        return repositories_[other == others_.end() ? 0 : other->second].base;
    }

private:
    std::vector<Repository> repositories_;
    std::unordered_map<std::string, std::size_t> others_;
};

/// One run: the writer, the counts, and the first error, after which nothing more is written.
class Run
{
public:
    Run(IndexWriter& writer, const std::function<void(const std::string&)>& progress)
        : writer_(writer), progress_(progress)
    {}

    /// Reads a software catalog of the packages of the mirror `base`. Call before addPackage().
    void addCatalog(const std::string& list, const std::string& base);
    /// `base` is the address of the mirror that has the package, or empty when it is unknown.
    void addPackage(const Package& package, const std::string& base);
    /// Writes the records collected from the packages.
    void writePackages();
    /// Reads a contents list of the packages of the mirror `base`. Call after writePackages().
    void addContents(const std::string& list, const std::string& base);
    void writeContents();
    void addFolder(const std::string& folder);
    void addPictureFolder(const std::string& folder);

    const IndexCounts& counts() const { return counts_; }
    const std::optional<Failure>& fault() const { return fault_; }

private:
    void note(const Outcome<Done>& result)
    {
        if (!result && !fault_)
            fault_ = result.error();
    }
    void addDocument(std::int64_t folderNumber, const std::string& folder, const std::string& relative);

    void addProgram(const Package& package, const std::string& base);
    std::optional<std::uint32_t> listedPackage(std::string_view name, std::int64_t mirror);

    IndexWriter& writer_;
    std::map<std::string, std::int64_t, std::less<>> mirrors_;
    SoftwareCatalog catalog_;
    HomePages homePages_;
    Programs programs_;
    PoolFiles poolFiles_;
    ListedFiles listedFiles_;
    std::size_t contentsLines_ = 0;
    std::unordered_map<std::string, std::optional<std::uint32_t>> listedPackages_; ///< by mirror, blank and name
    const std::function<void(const std::string&)>& progress_;
    IndexCounts counts_;
    std::optional<Failure> fault_;
};

void Run::addCatalog(const std::string& list, const std::string& base)
{
    const Outcome<std::size_t> skipped = readCatalog(list, [&](const CatalogEntry& entry) {
        if (!catalog_.add(base, entry))
            counts_.leftOut.add(clipUtf8(entry.name, 100), "the software catalogs have too many entries");
    });
    if (!skipped)
        progress_(skipped.error().message);
    else if (*skipped > 0)
        progress_(withSeparators(static_cast<std::int64_t>(*skipped)) + " documents of " + list + " were skipped");
}

void Run::addPackage(const Package& package, const std::string& base)
{
    if (fault_)
        return;
    if (++counts_.packages % kProgressStep == 0)
        progress_(withSeparators(static_cast<std::int64_t>(counts_.packages)) + " packages");
    if (package.homepage.size() <= kMaxAddress)
        homePages_.add(package);
    else
        counts_.leftOut.add(clipUtf8(package.homepage, 100), "the address is too long");
    if (!base.empty() && !package.file.empty())
        addProgram(package, base);
}

void Run::addProgram(const Package& package, const std::string& base)
{
    if (!poolFiles_.add(base, package.file, package.size)) {
        counts_.leftOut.add(clipUtf8(package.file, 100),
                            "its path is too long or too deep, or there are too many files");
        return;
    }
    auto mirror = mirrors_.find(base);
    if (mirror == mirrors_.end()) {
        const Outcome<std::int64_t> number = writer_.addMirror(base);
        if (!number) {
            fault_ = number.error();
            return;
        }
        mirror = mirrors_.emplace(base, *number).first;
    }
    CataloguedProgram known = catalog_.find(base, package.name);
    Program program{
        package.name,   package.summary, systemOf(package.architecture), package.size, licenseOf(package.section),
        mirror->second, package.file};
    if (!known.words.empty())
        ++counts_.catalogued;
    if (!known.license.empty())
        program.license = std::move(known.license);
    program.alias = typedForm(known.title);
    program.title = std::move(known.title);
    program.words = std::move(known.words);
    if (!known.summary.empty()) {
        program.words += " " + package.summary;
        program.description = std::move(known.summary);
    }
    programs_.add(std::move(program), package.source);
}

void Run::writePackages()
{
    counts_.homePages = homePages_.size();
    counts_.programs = programs_.size();
    if (!fault_)
        note(homePages_.write(writer_));
    if (!fault_)
        note(programs_.write(writer_));
    if (!fault_)
        note(poolFiles_.write(writer_));
}

/// Returns the number of a package among those of listed files, or nothing when no package list has it.
std::optional<std::uint32_t> Run::listedPackage(std::string_view name, std::int64_t mirror)
{
    const std::string key = std::to_string(mirror) + " " + std::string(name);
    const auto known = listedPackages_.find(key);
    if (known != listedPackages_.end())
        return known->second;
    const Outcome<std::optional<std::int64_t>> program = writer_.findProgram(name, mirror);
    if (!program) {
        if (!fault_)
            fault_ = program.error();
        return std::nullopt;
    }
    std::optional<std::uint32_t> number;
    if (*program)
        number = listedFiles_.addPackage(**program);
    // Unknown names are not remembered without bound.
    if (number || listedPackages_.size() < kMaxKnownPackages)
        listedPackages_.emplace(key, number);
    return number;
}

void Run::addContents(const std::string& list, const std::string& base)
{
    const auto mirror = mirrors_.find(base);
    if (fault_ || mirror == mirrors_.end())
        return;
    std::string lastNames; // successive lines mostly have the same packages
    std::vector<std::uint32_t> lastPackages;
    const auto take = [&](std::string_view path, std::string_view packages) {
        if (fault_)
            return;
        if (++contentsLines_ % kContentsStep == 0)
            progress_(withSeparators(static_cast<std::int64_t>(contentsLines_)) + " files in packages");
        if (packages != lastNames) {
            lastNames = packages;
            lastPackages.clear();
            forEachPackageName(packages, [&](std::string_view name) {
                if (const std::optional<std::uint32_t> package = listedPackage(name, mirror->second))
                    lastPackages.push_back(*package);
            });
        }
        if (lastPackages.empty())
            counts_.leftOut.add(clipUtf8(toUtf8(path), 100), "no package list has its package");
        for (const std::uint32_t package : lastPackages) {
            if (!listedFiles_.add(path, package))
                counts_.leftOut.add(clipUtf8(toUtf8(path), 100), "there are too many files in packages");
        }
    };
    const Outcome<std::size_t> skipped = readContentsList(list, take);
    if (!skipped)
        progress_(skipped.error().message);
    else if (*skipped > 0)
        progress_(withSeparators(static_cast<std::int64_t>(*skipped)) + " lines of " + list + " were skipped");
}

void Run::writeContents()
{
    counts_.listedFiles = listedFiles_.size();
    if (counts_.listedFiles > 0)
        progress_("sorting " + withSeparators(static_cast<std::int64_t>(counts_.listedFiles)) + " files in packages");
    if (!fault_)
        note(listedFiles_.write(writer_));
}

void Run::addDocument(std::int64_t folderNumber, const std::string& folder, const std::string& relative)
{
    if (fault_)
        return;
    const std::shared_ptr<const OpenFile> file = openBeneath(folder, relative);
    const std::optional<std::string> page = file == nullptr ? std::nullopt : file->content(kMaxPage);
    if (!page) {
        const char* reason = "it cannot be opened";
        if (file != nullptr)
            reason = file->size() > kMaxPage ? "it is too long" : "it cannot be read";
        counts_.leftOut.add(folder + "/" + relative, reason);
        return;
    }
    HtmlDocument document = readHtml(*page, kMaxIndexedText);
    if (document.title.empty())
        document.title = collapseBlanks(relative);
    note(writer_.addDocument(folderNumber, relative));
    for (const std::string& address : document.pictures) {
        const std::optional<std::string> picture = pathSeenFrom(relative, address);
        if (picture && picture->size() <= kMaxAddress)
            note(writer_.addShownPicture(folderNumber, *picture));
    }
    note(writer_.addPage("/doc/" + std::to_string(folderNumber) + "/" + encodePath(relative), document.title,
                         document.text));
    ++counts_.documents;
}

void Run::addFolder(const std::string& folder)
{
    if (fault_)
        return;
    const Outcome<std::int64_t> number = writer_.addFolder(folder);
    if (!number) {
        fault_ = number.error();
        return;
    }
    const std::size_t before = counts_.documents;
    counts_.leftOut.add(
        findHtmlFiles(folder, [&](const std::string& relative) { addDocument(*number, folder, relative); }));
    progress_(withSeparators(static_cast<std::int64_t>(counts_.documents - before)) + " pages in " + folder);
}

void Run::addPictureFolder(const std::string& folder)
{
    if (fault_)
        return;
    const std::vector<Picture> pictures = findPictures(folder, counts_.leftOut);
    if (pictures.empty())
        return;
    const Outcome<std::int64_t> number = writer_.addPictureFolder(folder);
    if (!number) {
        fault_ = number.error();
        return;
    }
    for (const Picture& picture : pictures)
        note(writer_.addPicture(*number, picture));
    counts_.pictures += pictures.size();
    progress_(withSeparators(static_cast<std::int64_t>(pictures.size())) + " pictures in " + folder);
}

/// Fails when the index in use has much more than these counts. An index of another layout is not compared.
Outcome<Done> compareWithOld(const std::string& dataFolder, const IndexCounts& counts)
{
    Outcome<std::optional<Database>> opened = openToTakeOver(dataFolder);
    if (!opened)
        return opened.error();
    if (!*opened)
        return Done{};
    Database& old = **opened;
    const std::array<std::tuple<const char*, const char*, std::size_t>, 3> kinds{
        {{"web pages", "SELECT count(*) FROM web_page", counts.homePages + counts.documents},
         {"programs", "SELECT count(*) FROM program", counts.programs},
         {"pictures", "SELECT count(*) FROM picture", counts.pictures}}};
    for (const auto& [kind, sql, now] : kinds) {
        Outcome<Statement> row = old.prepare(sql);
        if (!row || row->step() != Statement::Step::Row)
            return keepOld(dataFolder, row ? row->failure() : row.error());
        const std::int64_t before = row->number(0);
        if (before >= kMinCompared && static_cast<double>(now) < kLeastShare * static_cast<double>(before))
            return Failure{"the new index would have " + withSeparators(static_cast<std::int64_t>(now)) + " " + kind +
                           " instead of " + withSeparators(before) + "; the index in use is kept; " +
                           poorerIndexRemedy(dataFolder)};
    }
    return Done{};
}

} // namespace

Outcome<IndexCounts> buildIndex(const std::string& dataFolder, const IndexSources& sources,
                                const std::function<void(const std::string&)>& progress)
{
    Outcome<IndexWriter> writer = IndexWriter::begin(dataFolder, sources.again, sources.force);
    if (!writer)
        return writer.error();
    Run run(*writer, progress);
    if (sources.packageFiles.empty() && sources.catalogFiles.empty()) {
        for (const Repository& repository : installedCatalogs()) {
            for (const std::string& list : repository.lists)
                run.addCatalog(list, repository.base);
        }
    }
    for (const std::string& list : sources.catalogFiles)
        run.addCatalog(list, sources.mirror);
    if (sources.packageFiles.empty()) {
        progress("reading the package lists");
        const Mirrors mirrors;
        const Outcome<Done> read =
            readInstalledLists([&](const Package& package) { run.addPackage(package, mirrors.baseOf(package.file)); });
        // A machine without package lists still has documentation.
        if (!read)
            progress("the package lists cannot be read: " + read.error().message);
    }
    for (const std::string& file : sources.packageFiles) {
        const Outcome<Done> read =
            readListFile(file, [&](const Package& package) { run.addPackage(package, sources.mirror); });
        if (!read)
            return read.error();
    }
    run.writePackages();
    if (sources.packageFiles.empty() && sources.contentsFiles.empty()) {
        for (const Repository& repository : installedContents()) {
            for (const std::string& list : repository.lists)
                run.addContents(list, repository.base);
        }
    }
    for (const std::string& list : sources.contentsFiles)
        run.addContents(list, sources.mirror);
    run.writeContents();
    for (const std::string& folder : sources.folders)
        run.addFolder(folder);
    for (const std::string& folder : sources.pictureFolders)
        run.addPictureFolder(folder);
    if (run.fault())
        return *run.fault();
    if (!sources.force) {
        const Outcome<Done> rich = compareWithOld(dataFolder, run.counts());
        if (!rich)
            return rich.error();
    }
    progress("replacing the index");
    const Outcome<Done> committed = writer->commit();
    if (!committed)
        return committed.error();
    return run.counts();
}

} // namespace quarrynet::services
