#include "thumbnails/picture_format.h"

#include <algorithm>
#include <array>

#include "ground/ascii.h"

namespace quarrynet::services {

namespace {

bool begins(std::string_view content, std::string_view beginning)
{
    return content.substr(0, beginning.size()) == beginning;
}

bool isSvg(std::string_view content)
{
    if (begins(content, "\xEF\xBB\xBF"))
        content.remove_prefix(3);
    content.remove_prefix(std::min(content.find_first_not_of(" \t\r\n"), content.size()));
    if (!begins(content, "<"))
        return false;
    const std::string_view head = content.substr(0, kPictureBeginning);
    return head.find("<svg") != std::string_view::npos || head.find(":svg") != std::string_view::npos;
}

} // namespace

std::optional<PictureFormat> pictureFormat(std::string_view content)
{
    if (begins(content, "\x89PNG\r\n\x1A\n"))
        return PictureFormat::Png;
    if (begins(content, "\xFF\xD8\xFF"))
        return PictureFormat::Jpeg;
    if (begins(content, "GIF87a") || begins(content, "GIF89a"))
        return PictureFormat::Gif;
    if (begins(content, "RIFF") && content.substr(0, 12).substr(std::min<std::size_t>(8, content.size())) == "WEBP")
        return PictureFormat::WebP;
    if (isSvg(content))
        return PictureFormat::Svg;
    return std::nullopt;
}

std::string_view mediaTypeOf(PictureFormat format)
{
    switch (format) {
    case PictureFormat::Png:
        return "image/png";
    case PictureFormat::Jpeg:
        return "image/jpeg";
    case PictureFormat::Gif:
        return "image/gif";
    case PictureFormat::WebP:
        return "image/webp";
    case PictureFormat::Svg:
        return "image/svg+xml";
    }
    return "application/octet-stream";
}

bool hasPictureName(std::string_view name)
{
    constexpr std::array<std::string_view, 6> kEndings{".png", ".jpg", ".jpeg", ".gif", ".webp", ".svg"};
    return std::any_of(kEndings.begin(), kEndings.end(),
                       [name](std::string_view ending) { return endsWithIgnoringCase(name, ending); });
}

} // namespace quarrynet::services
