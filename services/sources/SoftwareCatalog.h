#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ground/Outcome.h"
#include "sources/package_lists.h"

/// The software catalogs of the package archive (AppStream in its form for Debian, DEP-11): YAML files with a document
/// for each program that people use, with its name, summary, license and categories. The package tool downloads them
/// where it has been told to.
namespace quarrynet::services {

/// Longer documents are left out. Real ones, with a description in every language, have some 100 KB.
inline constexpr std::size_t kMaxCatalogDocument = 1024 * 1024;
/// The rest of a longer catalog is left out. Debian's have 30 MB.
inline constexpr std::uint64_t kMaxCatalogBytes = std::uint64_t{1} << 30U;
inline constexpr std::size_t kMaxCatalogDepth = 32;
inline constexpr std::size_t kMaxCatalogEntries = 200'000;
inline constexpr std::size_t kMaxCatalogText = 1024; ///< a longer text is cut

/// A document of a catalog. Texts are UTF-8 on one line, in the catalog's main language; a missing one is empty.
struct CatalogEntry
{
    std::string package;
    std::string id;   ///< such as "org.gimp.GIMP"
    std::string type; ///< such as "desktop-application"
    std::string name;
    std::string summary;
    std::string license; ///< an SPDX expression
    std::string words;   ///< categories and keywords
};

/// Parses a catalog from text that arrives in pieces of any size. Documents without a package, such as the header, are
/// ignored.
class CatalogReader
{
public:
    explicit CatalogReader(std::function<void(const CatalogEntry&)> take) : take_(std::move(take)) {}

    void feed(std::string_view piece);

    /// Call after the last piece.
    void finish();

    /// Returns the number of documents that are too long, nested too deeply or not YAML.
    std::size_t skipped() const { return skipped_; }

private:
    void takeLine(std::string_view line);
    void endDocument();

    std::function<void(const CatalogEntry&)> take_;
    std::string line_;
    std::string document_;
    bool lineIsLong_ = false;
    bool tooLong_ = false;
    std::size_t skipped_ = 0;
};

/// What the catalogs say of a package.
struct CataloguedProgram
{
    std::string title; ///< the name as people know it; empty when the package has several programs and none is named so
    std::string summary;
    std::string license; ///< as licenseText() gives it
    std::string words;   ///< further words to find it by
};

/// The entries of all catalogs, by mirror and package.
class SoftwareCatalog
{
public:
    /// Keeps an entry of the catalog of the mirror `base`. Returns false when there are too many.
    bool add(const std::string& base, CatalogEntry entry);

    /// Returns what is known of a package; all texts are empty for one without an entry.
    CataloguedProgram find(const std::string& base, const std::string& package) const;

private:
    std::unordered_map<std::string, std::vector<CatalogEntry>> entries_; ///< by base, blank and package
    std::size_t count_ = 0;
};

/// Returns the license of a catalog's expression as people read it: the expression itself, "Proprietary" or "Free" for
/// those that only say so, and an empty text when it says nothing.
std::string licenseText(std::string_view expression);

/// Returns the name in the form that is typed: in lower case, with "-" for blanks ("visual-editor" for "Visual
/// Editor").
std::string typedForm(std::string_view name);

/// Returns the machine's downloaded catalogs, by repository; none when it has none.
std::vector<Repository> installedCatalogs();

/// Reads a catalog, which the package tool decompresses, unless its name has no suffix of a compressed file. Returns
/// the number of skipped documents.
Outcome<std::size_t> readCatalog(const std::string& path, const std::function<void(const CatalogEntry&)>& take);

} // namespace quarrynet::services
