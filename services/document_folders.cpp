#include "services/document_folders.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

namespace quarrynet::services {

namespace fs = std::filesystem;

namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 18> kMediaTypes{{
    {".html", "text/html"},
    {".htm", "text/html"},
    {".xhtml", "application/xhtml+xml"},
    {".css", "text/css"},
    {".js", "text/javascript"},
    {".txt", "text/plain"},
    {".md", "text/plain"},
    {".xml", "application/xml"},
    {".json", "application/json"},
    {".pdf", "application/pdf"},
    {".png", "image/png"},
    {".jpg", "image/jpeg"},
    {".jpeg", "image/jpeg"},
    {".gif", "image/gif"},
    {".svg", "image/svg+xml"},
    {".webp", "image/webp"},
    {".ico", "image/x-icon"},
    {".gz", "application/gzip"},
}};

bool hasHiddenPart(std::string_view relative)
{
    return relative.substr(0, 1) == "." || relative.find("/.") != std::string_view::npos;
}

} // namespace

bool hasEnding(std::string_view path, std::string_view ending)
{
    if (path.size() < ending.size())
        return false;
    path.remove_prefix(path.size() - ending.size());
    return std::equal(path.begin(), path.end(), ending.begin(), [](char a, char b) {
        return (a >= 'A' && a <= 'Z' ? static_cast<char>(a - 'A' + 'a') : a) == b;
    });
}

std::optional<std::string> servedFile(const std::string& root, std::string_view relative)
{
    // A part that begins with a full stop is "..", "." or hidden; a NUL would cut the path short.
    if (hasHiddenPart(relative) || relative.find('\0') != std::string_view::npos)
        return std::nullopt;
    while (!relative.empty() && relative.front() == '/')
        relative.remove_prefix(1);

    std::error_code error;
    const fs::path base = fs::canonical(root, error);
    if (error)
        return std::nullopt;
    fs::path file = fs::canonical(base / fs::path(std::string(relative)), error);
    if (!error && fs::is_directory(file, error))
        file = fs::canonical(file / "index.html", error);
    if (error)
        return std::nullopt;
    // Both are free of links now: the file is inside when it begins with all parts of the folder.
    const auto [baseEnd, fileEnd] = std::mismatch(base.begin(), base.end(), file.begin(), file.end());
    if (baseEnd != base.end() || fileEnd == file.end() || !fs::is_regular_file(file, error))
        return std::nullopt;
    if (hasHiddenPart(file.lexically_relative(base).string()))
        return std::nullopt;
    return file.string();
}

std::optional<std::string> readFile(const std::string& path, std::size_t maxBytes)
{
    std::error_code error;
    const auto size = fs::file_size(path, error);
    if (error || size > maxBytes)
        return std::nullopt;
    std::ifstream file(path, std::ios::binary);
    std::string content(static_cast<std::size_t>(size), '\0');
    file.read(content.data(), static_cast<std::streamsize>(content.size()));
    if (!file && !file.eof())
        return std::nullopt;
    content.resize(static_cast<std::size_t>(file.gcount()));
    return content;
}

std::string_view mediaType(std::string_view path)
{
    for (const auto& [ending, type] : kMediaTypes) {
        if (hasEnding(path, ending))
            return type;
    }
    return "application/octet-stream";
}

void findFiles(const std::string& root, const std::function<bool(std::string_view)>& wanted,
               const std::function<void(const std::string&)>& take)
{
    std::error_code error;
    fs::recursive_directory_iterator entry(root, fs::directory_options::skip_permission_denied, error);
    while (!error && entry != fs::recursive_directory_iterator()) {
        const std::string name = entry->path().filename().string();
        std::error_code ignored;
        if (name.substr(0, 1) == ".") {
            entry.disable_recursion_pending();
        } else if (wanted(name) && entry->symlink_status(ignored).type() == fs::file_type::regular) {
            take(entry->path().lexically_relative(root).string());
        }
        entry.increment(error);
    }
}

void findHtmlFiles(const std::string& root, const std::function<void(const std::string&)>& take)
{
    const auto isHtml = [](std::string_view name) {
        return hasEnding(name, ".html") || hasEnding(name, ".htm") || hasEnding(name, ".xhtml");
    };
    findFiles(root, isHtml, take);
}

} // namespace quarrynet::services
