#include "searches/ImageService.h"

#include <algorithm>
#include <chrono>

#include "ground/percent_coding.h"
#include "ground/utf8.h"
#include "searches/missing_content.h"
#include "searches/page_head.h"
#include "searches/search_page.h"
#include "searches/served_files.h"
#include "searches/signs.h"
#include "text/markup.h"
#include "thumbnails/picture_format.h"

namespace quarrynet::services {

namespace {

constexpr std::size_t kMaxPicture = 64 * 1024 * 1024;

std::string imagePageHead(Language language)
{
    return pageHead("Image search", language,
                    "body { font-family: sans-serif; margin: 2em } .picture { display: inline-block; width: 12em; "
                    "margin: 0.5em;\nvertical-align: top; overflow-wrap: anywhere } img { object-fit: scale-down }");
}

constexpr std::string_view kThumbnailMark = "q=tbn:";
constexpr std::string_view kPicturesPath = "/pictures/";
constexpr std::string_view kRemotePath = "/go/";

/// So much of a picture's address is shown after its token.
constexpr std::size_t kMostShown = 160;

/// The program takes every "src=/images?q=tbn" for a thumbnail, so text from people or files must not contain it.
std::string withoutMarker(std::string_view text)
{
    return withReplaced(text, "=", "&#61;");
}

std::string searchForm(std::string_view typed, Language language)
{
    return "<form action=\"/images\"><div><input type=\"hidden\" name=\"hl\" value=\"en\"><input name=\"q\" "
           "size=\"50\" "
           "value=\"" +
           withoutMarker(escapeAttribute(toUtf8(typed))) + "\"> " + submitButton(language) + "</div></form>\n";
}

/// The program cuts an address out from the second ":" to the next blank, so the path must contain neither.
std::string pictureAddress(const std::string& host, std::int64_t folder, std::string_view path)
{
    std::string address = host;
    address += kPicturesPath;
    address += std::to_string(folder) + "/";
    for (const char c : encodePath(path)) {
        if (c == ':')
            address += "%3A";
        else
            address.push_back(c);
    }
    return address;
}

/// Returns the typed words. The program's paged form appends a parameter, by which that form is recognized.
std::string_view typedWords(std::string_view query)
{
    constexpr std::string_view kLast = "&sa=N";
    std::string_view typed = typedPart(query);
    if (query.find("&svnum=") < query.find("&q=") && typed.size() >= kLast.size() &&
        typed.substr(typed.size() - kLast.size()) == kLast)
        typed.remove_suffix(kLast.size());
    return typed;
}

std::string versionText(std::int64_t version)
{
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    for (auto rest = static_cast<std::uint64_t>(version); text.empty() || rest != 0; rest >>= 4U)
        text.push_back(kDigits[rest & 15U]);
    return text;
}

HttpResponse missingPicture(Language language = Language::English)
{
    return errorResponse(404, "There is no such picture.", language);
}

HttpResponse thumbnailResponse(std::string thumbnail)
{
    HttpResponse response;
    const bool png = pictureFormat(thumbnail) == PictureFormat::Png;
    response.contentType = mediaTypeOf(png ? PictureFormat::Png : PictureFormat::Jpeg);
    response.body = std::move(thumbnail);
    response.fields.emplace_back("Cache-Control", "max-age=86400");
    return response;
}

} // namespace

std::string imageResultsPage(const ImageAnswer& answer, std::string_view typed, Language language)
{
    std::string page = imagePageHead(language);
    page += searchForm(typed, language);
    if (answer.hits.empty()) {
        page.append("<div>").append(translated("No picture was found for these words.", language));
        return page + "</div>\n</body></html>\n";
    }
    // Rows for sources that did not answer are not counted in the total.
    const auto last = std::min(answer.start + static_cast<std::int64_t>(answer.hits.size()), answer.total);
    page += resultsHeading(answer.start + 1, last, answer.total, answer.seconds);
    for (const ImageHit& hit : answer.hits) {
        // The program expects the address without quotes, followed by a blank.
        page += "<div class=\"picture\"><a href=http://" + hit.address + "><img src=" + hit.thumbnail +
                " width=120 height=120 alt=\"\"></a><br>" + withoutMarker(escapeText(hit.caption));
        if (!hit.size.empty())
            page += "<br>" + hit.size; // the program looks for it there
        page += "</div>\n";
    }
    page += pageLinks("/images", typed, answer.start, ImageService::kPageSize, answer.total, language);
    page += "</body></html>\n";
    return page;
}

HttpResponse ImageService::answer(const HttpRequest& request)
{
    const Language language = request.language;
    std::string_view path = request.path;
    while (path.substr(0, 2) == "//")
        path.remove_prefix(1);
    if (path == "/") {
        std::string page = imagePageHead(language);
        page.append("<h1>").append(translated("Local image search", language)).append("</h1>\n");
        page += searchForm("", language);
        page.append("<div>").append(translated("Searches the pictures in this machine's folders of icons, backgrounds "
                                               "and documentation, or in the folders that it was given.",
                                               language));
        return pageResponse(page + "</div>\n</body></html>\n", language);
    }
    if (path.substr(0, kPicturesPath.size()) == kPicturesPath)
        return picture(path.substr(kPicturesPath.size()), language);
    if (path.starts_with(kRemotePath))
        return redirect(path.substr(kRemotePath.size()), language);
    if (path.starts_with(kHelpPath))
        return helpPage(request);
    if (path != "/images")
        return errorResponse(404, "There is no such page on the image search.", language);
    const std::string_view query = request.query;
    if (query.substr(0, kThumbnailMark.size()) == kThumbnailMark) {
        const std::size_t place = query.find('/');
        return place == std::string_view::npos ? missingPicture() : thumbnailAt(query.substr(place));
    }
    return searchPage(query, language);
}

HttpResponse ImageService::searchPage(std::string_view query, Language language)
{
    const std::string typed = decodeQueryValue(typedWords(query));
    const Outcome<ImageAnswer> found = searchSources(typed, startPart(query));
    if (!found)
        return errorResponse(503, "The search cannot answer: %1.", language, found.error().message);
    std::string content = imageResultsPage(*found, typed, language);
    if (found->hits.empty())
        noteMissing(content, index_, Missing::Pictures, language);
    return pageResponse(std::move(content), language);
}

Outcome<ImageAnswer> ImageService::search(std::string_view typed, std::int64_t start)
{
    // The same icon from five themes would fill a page, so the best picture of each name comes first, then the second
    // best, and so on. Within each round the picture with the typed name comes first, then those whose names begin with
    // it.
    static constexpr WordTable kTable = {
        "name",
        "SELECT count(*) FROM picture_text WHERE picture_text MATCH ?1",
        "WITH found AS MATERIALIZED (SELECT rowid AS id, rank AS score FROM picture_text "
        "WHERE picture_text MATCH ?1 AND rank MATCH 'bm25(4.0, 1.0)'), "
        "turned AS (SELECT found.id AS id, score, row_number() OVER (PARTITION BY stem ORDER BY score, found.id) AS "
        "turn, CASE WHEN stem = ?4 THEN 0 WHEN stem >= ?4 AND stem < ?5 THEN 1 ELSE 2 END AS named "
        "FROM found JOIN picture ON picture.id = found.id) "
        "SELECT picture.folder, picture.path, picture.version FROM turned JOIN picture ON picture.id = turned.id "
        "ORDER BY turn, named, score, turned.id LIMIT ?2 OFFSET ?3",
        kPageSize,
    };
    return findPage<ImageHit>(index_, kTable, typed, start, [&](const Statement& row) {
        std::string address = pictureAddress(host_, row.number(0), row.text(1));
        std::string thumbnail = "/images?q=tbn:" + versionText(row.number(2)) + ":" + address;
        return ImageHit{std::move(address), std::move(thumbnail), collapseBlanks(toUtf8(row.text(1)))};
    });
}

Outcome<ImageAnswer> ImageService::searchSources(std::string_view typed, std::int64_t start)
{
    if (live_ == nullptr)
        return search(typed, start);
    const auto begin = std::chrono::steady_clock::now();
    const Gathered gathered = live_->gather(
        typed, start, kPageSize,
        [&](std::int64_t from) -> Outcome<Gatherer::IndexPage> {
            Outcome<ImageAnswer> page = search(typed, from);
            if (!page)
                return page.error();
            Gatherer::IndexPage rows{page->total, {}};
            for (ImageHit& hit : page->hits)
                rows.rows.push_back(
                    {std::move(hit.address), std::move(hit.caption), "", std::move(hit.thumbnail), true});
            return rows;
        },
        FaultRows::TakePlaces);
    ImageAnswer answer;
    answer.start = start;
    for (const SourceFault& fault : gathered.faults) {
        std::string address = host_ + faultPath(fault);
        std::string thumbnail = "/images?" + std::string(kThumbnailMark) + "0:" + address;
        answer.hits.push_back(
            {std::move(address), std::move(thumbnail), faultTitle(fault) + ". " + faultAdvice(fault)});
    }
    for (const GatheredRow& row : gathered.rows) {
        if (row.fromIndex) {
            answer.hits.push_back({row.address, row.thumbnail, row.title});
        } else {
            answer.hits.push_back(hitOf({row.address, row.thumbnail}, row.title));
            answer.hits.back().size = row.text;
        }
    }
    answer.total = totalOf(gathered, start);
    answer.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    return answer;
}

/// Returns the hit for a picture of the internet. The program opens its hits over http and fetches their thumbnails
/// from this host, so both lead here: redirect() and remoteThumbnail() know the picture by its token. The rest of the
/// address is for people to read.
ImageHit ImageService::hitOf(const RemotePicture& picture, std::string_view caption)
{
    std::string address = host_;
    address.append(kRemotePath).append(remote_.tokenOf(picture)).append("/");
    std::string_view shown = std::string_view(picture.address);
    shown.remove_prefix(std::min(shown.find("://") + 3, shown.size()));
    shown = shown.substr(0, std::min(shown.find_first_of("?#"), kMostShown));
    // Slashes are escaped too: otherwise browsers would remove dot segments, and the token with them.
    for (const char c : shown) {
        switch (c) {
        case ':':
            address += "%3A";
            break;
        case '/':
            address += "%2F";
            break;
        case '\\':
            address += "%5C";
            break;
        default:
            address.push_back(c);
        }
    }
    std::string thumbnail = "/images?" + std::string(kThumbnailMark) + "0:" + address;
    return {std::move(address), std::move(thumbnail), std::string(caption)};
}

/// Returns the thumbnail for what the program knows as `place`, a path on this host.
HttpResponse ImageService::thumbnailAt(std::string_view place)
{
    if (place.starts_with(kPicturesPath))
        return thumbnail(place.substr(kPicturesPath.size()));
    if (place.starts_with(kRemotePath))
        return remoteThumbnail(place.substr(kRemotePath.size()));
    if (!place.starts_with(kHelpPath))
        return missingPicture();
    HttpResponse response;
    response.contentType = mediaTypeOf(PictureFormat::Png);
    response.body = warningSign();
    return response;
}

/// Returns the thumbnail of the picture of the internet at `place`: its token, followed by text for people.
HttpResponse ImageService::remoteThumbnail(std::string_view place)
{
    const std::optional<RemotePicture> picture = remote_.find(place.substr(0, place.find('/')));
    if (!picture)
        return missingPicture();
    std::optional<std::string> made = remoteThumbnails_ == nullptr ? std::nullopt : remoteThumbnails_->get(*picture);
    HttpResponse response = thumbnailResponse(made ? std::move(*made) : placeholder());
    if (!made)
        response.fields = {{"Cache-Control", "no-store"}}; // it may come the next time
    return response;
}

/// Redirects to the picture of the internet at `place`, as for remoteThumbnail().
HttpResponse ImageService::redirect(std::string_view place, Language language)
{
    const std::optional<RemotePicture> picture = remote_.find(place.substr(0, place.find('/')));
    if (!picture)
        return errorResponse(404, "This picture was listed too long ago. Search again.", language);
    HttpResponse response = errorResponse(302, "The picture is at %1.", language, picture->address);
    response.fields.emplace_back("Location", picture->address);
    response.fields.emplace_back("Referrer-Policy", "no-referrer");
    return response;
}

/// Opens the picture at "FOLDER/PATH" (escaped). Returns null unless the index has it and it still lies inside its
/// folder.
Outcome<std::shared_ptr<const OpenFile>> ImageService::fileAt(std::string_view place)
{
    const std::shared_ptr<const OpenFile> none;
    const std::optional<ServedPlace> asked = servedPlace(place);
    if (!asked)
        return none;
    Outcome<IndexPool::Lease> index = index_.borrow();
    if (!index)
        return index.error();
    Outcome<Statement> row = (*index)->prepare(
        "SELECT picture_folder.path FROM picture JOIN picture_folder ON picture_folder.id = picture.folder "
        "WHERE picture.folder = ?1 AND picture.path = ?2");
    if (!row)
        return row.error();
    row->bind(1, asked->folder);
    row->bind(2, asked->path);
    if (row->step() != Statement::Step::Row)
        return none;
    return openBeneath(std::string(row->text(0)), asked->path);
}

HttpResponse ImageService::thumbnail(std::string_view place)
{
    const Outcome<std::shared_ptr<const OpenFile>> found = fileAt(place);
    if (!found)
        return errorResponse(503, "The thumbnail cannot be served: %1.", Language::English, found.error().message);
    const OpenFile* file = found->get();
    if (thumbnailer_ == nullptr || file == nullptr || file->size() > kMaxPicture)
        return missingPicture();
    std::optional<std::string> made = cache_.get(file->version(), [&]() -> std::optional<std::string> {
        const std::optional<PictureFormat> format = pictureFormat(file->beginning(kPictureBeginning));
        return format ? thumbnailer_->make(*format, *file) : std::nullopt;
    });
    if (!made)
        return missingPicture();
    return thumbnailResponse(std::move(*made)); // a changed picture gets another address
}

HttpResponse ImageService::picture(std::string_view place, Language language)
{
    const Outcome<std::shared_ptr<const OpenFile>> found = fileAt(place);
    if (!found)
        return errorResponse(503, "The picture cannot be served: %1.", language, found.error().message);
    const std::optional<PictureFormat> format =
        *found == nullptr ? std::nullopt : pictureFormat((*found)->beginning(kPictureBeginning));
    if (!format)
        return missingPicture(language);
    HttpResponse response;
    response.file = *found;
    response.contentType = mediaTypeOf(*format);
    // An SVG drawing may contain scripts, and load pictures and styles from anywhere.
    if (*format == PictureFormat::Svg)
        response.fields.emplace_back("Content-Security-Policy",
                                     "default-src 'none'; style-src 'unsafe-inline'; img-src data:; sandbox");
    return response;
}

} // namespace quarrynet::services
