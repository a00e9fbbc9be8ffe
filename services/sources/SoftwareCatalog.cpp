#include "sources/SoftwareCatalog.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <yaml.h>

#include "ground/ChildProcess.h"
#include "ground/ascii.h"
#include "ground/utf8.h"
#include "sources/downloaded_file.h"
#include "text/markup.h"

namespace quarrynet::services {

namespace {

constexpr std::size_t kMostOfAPackage = 64;

struct Parser : yaml_parser_t
{
    explicit Parser(std::string_view text) : yaml_parser_t(), made(yaml_parser_initialize(this) != 0)
    {
        if (made)
            yaml_parser_set_input_string(this, reinterpret_cast<const unsigned char*>(text.data()), text.size());
    }
    ~Parser()
    {
        if (made)
            yaml_parser_delete(this);
    }
    Parser(const Parser&) = delete;
    Parser& operator=(const Parser&) = delete;

    bool made;
};

struct Event : yaml_event_t
{
    Event() : yaml_event_t() {}
    ~Event() { yaml_event_delete(this); }
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;
};

std::string lineOf(std::string_view text)
{
    return collapseBlanks(toUtf8(clipUtf8(text, kMaxCatalogText)));
}

/// Follows the events of one document, and keeps the texts that are used.
class DocumentReader
{
public:
    /// Returns false when the document cannot be used.
    bool take(const yaml_event_t& event)
    {
        switch (event.type) {
        case YAML_SCALAR_EVENT:
            return takeScalar({reinterpret_cast<const char*>(event.data.scalar.value), event.data.scalar.length});
        case YAML_ALIAS_EVENT:
            return takeScalar({}); // what it stands for is not looked up, so that it cannot multiply
        case YAML_MAPPING_START_EVENT:
        case YAML_SEQUENCE_START_EVENT:
            if (places_.size() >= kMaxCatalogDepth || (expectsKey() && !places_.empty()))
                return false;
            places_.push_back({event.type == YAML_MAPPING_START_EVENT, false, {}});
            return true;
        case YAML_MAPPING_END_EVENT:
        case YAML_SEQUENCE_END_EVENT:
            places_.pop_back();
            if (!places_.empty())
                places_.back().hasKey = false;
            return true;
        default:
            return true;
        }
    }

    CatalogEntry entry;

private:
    struct Place
    {
        bool isMapping;
        bool hasKey;
        std::string key;
    };

    bool expectsKey() const { return !places_.empty() && places_.back().isMapping && !places_.back().hasKey; }

    bool takeScalar(std::string_view value)
    {
        if (places_.empty())
            return true;
        if (expectsKey()) {
            places_.back().key = value.substr(0, kMaxCatalogText);
            places_.back().hasKey = true;
            return true;
        }
        places_.back().hasKey = false;
        if (std::string* text = textAt()) {
            if (text != &entry.words)
                *text = lineOf(value);
            else if (text->size() < kMaxCatalogText)
                text->append(text->empty() ? "" : " ").append(lineOf(value));
        }
        return true;
    }

    /// Returns the text that the current value belongs to, or null when it is not used.
    std::string* textAt()
    {
        const std::string& first = places_[0].key;
        if (!places_[0].isMapping)
            return nullptr;
        if (places_.size() == 1) {
            if (first == "Package")
                return &entry.package;
            if (first == "ID")
                return &entry.id;
            if (first == "Type")
                return &entry.type;
            return first == "ProjectLicense" ? &entry.license : nullptr;
        }
        const bool isList = !places_.back().isMapping;
        if (places_.size() == 2 && isList)
            return first == "Categories" ? &entry.words : nullptr;
        // The language "C" is the catalog's own.
        if (places_[1].key != "C")
            return nullptr;
        if (places_.size() == 2 && first == "Name")
            return &entry.name;
        if (places_.size() == 2 && first == "Summary")
            return &entry.summary;
        return places_.size() == 3 && isList && first == "Keywords" ? &entry.words : nullptr;
    }

    std::vector<Place> places_;
};

/// Returns the document as an entry, or nothing when it is not YAML or nested too deeply.
std::optional<CatalogEntry> readDocument(std::string_view text)
{
    Parser parser(text);
    DocumentReader reader;
    for (bool done = !parser.made; !done;) {
        Event event;
        if (yaml_parser_parse(&parser, &event) == 0 || !reader.take(event))
            return std::nullopt;
        done = event.type == YAML_STREAM_END_EVENT;
    }
    return std::move(reader.entry);
}

/// Returns how well an entry stands for its package; less is better.
int distance(const CatalogEntry& entry)
{
    if (entry.type == "desktop-application" || entry.type == "desktop-app")
        return 0;
    if (entry.type == "console-application" || entry.type == "web-application")
        return 1;
    return 2;
}

bool hasPackagesName(const CatalogEntry& entry)
{
    std::string_view id = entry.id;
    constexpr std::string_view kSuffix = ".desktop";
    if (id.ends_with(kSuffix))
        id.remove_suffix(kSuffix.size());
    const std::size_t dot = id.rfind('.');
    return typedForm(entry.name) == entry.package ||
           equalsIgnoringCase(dot == std::string_view::npos ? id : id.substr(dot + 1), entry.package);
}

} // namespace

void CatalogReader::feed(std::string_view piece)
{
    while (!piece.empty()) {
        const std::size_t end = std::min(piece.find('\n'), piece.size());
        const bool whole = end < piece.size();
        if (line_.size() + end > kMaxCatalogDocument)
            lineIsLong_ = true;
        else
            line_.append(piece.substr(0, end));
        piece.remove_prefix(whole ? end + 1 : end);
        if (whole) {
            takeLine(line_);
            line_.clear();
        }
    }
}

void CatalogReader::takeLine(std::string_view line)
{
    if (line.starts_with("---") && (line.size() == 3 || isBlankOrControl(line[3])))
        endDocument();
    if (lineIsLong_ || document_.size() + line.size() >= kMaxCatalogDocument)
        tooLong_ = true;
    else if (!tooLong_)
        document_.append(line).append("\n");
    lineIsLong_ = false;
}

void CatalogReader::endDocument()
{
    if (tooLong_) {
        ++skipped_;
    } else if (!document_.empty()) {
        const std::optional<CatalogEntry> entry = readDocument(document_);
        if (!entry)
            ++skipped_;
        else if (!entry->package.empty())
            take_(*entry);
    }
    document_.clear();
    tooLong_ = false;
}

void CatalogReader::finish()
{
    if (!line_.empty() || lineIsLong_)
        takeLine(line_);
    line_.clear();
    endDocument();
}

bool SoftwareCatalog::add(const std::string& base, CatalogEntry entry)
{
    if (count_ >= kMaxCatalogEntries)
        return false;
    std::vector<CatalogEntry>& entries = entries_[base + " " + entry.package];
    if (entries.size() >= kMostOfAPackage)
        return false;
    entries.push_back(std::move(entry));
    ++count_;
    return true;
}

CataloguedProgram SoftwareCatalog::find(const std::string& base, const std::string& package) const
{
    CataloguedProgram program;
    const auto found = entries_.find(base + " " + package);
    if (found == entries_.end() || found->second.empty())
        return program;
    const std::vector<CatalogEntry>& entries = found->second;
    const CatalogEntry* best = &entries.front();
    bool several = false; // entries as good as the best
    bool sameLicense = true;
    for (const CatalogEntry& entry : entries) {
        const auto rank = [](const CatalogEntry& one) { return std::make_pair(!hasPackagesName(one), distance(one)); };
        sameLicense = sameLicense && entry.license == entries[0].license;
        if (rank(entry) < rank(*best)) {
            best = &entry;
            several = false;
        } else if (rank(entry) == rank(*best) && entry.name != best->name) {
            several = true;
        }
        if (program.words.size() < kMaxCatalogText)
            program.words.append(program.words.empty() ? "" : " ").append(entry.name + " " + entry.words);
    }
    if (!several) {
        program.title = best->name;
        program.summary = best->summary;
    }
    if (!several || sameLicense)
        program.license = licenseText(best->license);
    return program;
}

std::string licenseText(std::string_view expression)
{
    if (startsWithIgnoringCase(expression, "LicenseRef-proprietary"))
        return "Proprietary";
    if (startsWithIgnoringCase(expression, "LicenseRef-free"))
        return "Free";
    return std::string(expression);
}

std::string typedForm(std::string_view name)
{
    std::string form = toLowerAscii(name);
    std::replace(form.begin(), form.end(), ' ', '-');
    return form;
}

std::vector<Repository> installedCatalogs()
{
    std::string targets;
    const auto result =
        readProgramOutput({"apt-get", "indextargets", "--format", "$(REPO_URI)\t$(FILENAME)", "Identifier: DEP-11"},
                          [&targets](std::string_view piece) { targets.append(piece); });
    return result ? repositoriesFrom(targets) : std::vector<Repository>();
}

Outcome<std::size_t> readCatalog(const std::string& path, const std::function<void(const CatalogEntry&)>& take)
{
    CatalogReader reader(take);
    const Outcome<Done> read =
        readDownloadedFile(path, kMaxCatalogBytes, [&reader](std::string_view piece) { reader.feed(piece); });
    if (!read)
        return read.error();
    reader.finish();
    return reader.skipped();
}

} // namespace quarrynet::services
