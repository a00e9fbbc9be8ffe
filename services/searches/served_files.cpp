#include "searches/served_files.h"

#include "ground/ascii.h"
#include "ground/decimal.h"
#include "ground/percent_coding.h"
#include "http/message.h"
#include "thumbnails/picture_format.h"

namespace quarrynet::services {

std::optional<ServedPlace> servedPlace(std::string_view text)
{
    const std::size_t slash = text.find('/');
    const std::optional<int> folder =
        slash == std::string_view::npos ? std::nullopt : wholeNumber(text.substr(0, slash));
    if (!folder)
        return std::nullopt;
    return ServedPlace{*folder, decodePercent(text.substr(slash + 1))};
}

std::string_view pageType(std::string_view path)
{
    return endsWithIgnoringCase(path, ".xhtml") ? "application/xhtml+xml" : "text/html";
}

std::string_view pictureType(std::string_view beginning)
{
    const std::optional<PictureFormat> format = pictureFormat(beginning);
    return format ? mediaTypeOf(*format) : std::string_view();
}

std::string_view styleType(std::string_view path, std::string_view beginning)
{
    const bool isText = beginning.find('\0') == std::string_view::npos;
    return endsWithIgnoringCase(path, ".css") && isText ? "text/css" : std::string_view();
}

} // namespace quarrynet::services
