#include "text/PageEncoding.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <iconv.h>

#include "ground/ascii.h"

namespace quarrynet::services {

namespace {

struct Known
{
    const char* name; ///< for iconv
    /// The labels, each between blanks.
    std::string_view labels;
};

// Labels such as ISO-8859-1, -9 and -11 or GB2312 mean the larger encodings that browsers use for them.
constexpr std::array<Known, 34> kKnown{{
    {"UTF-8", " unicode-1-1-utf-8 unicode11utf8 unicode20utf8 utf-8 utf8 x-unicode20utf8 "},
    {"CP1252", " ansi_x3.4-1968 ascii cp1252 cp819 csisolatin1 ibm819 iso-8859-1 iso-ir-100 iso8859-1 iso88591 "
               "iso_8859-1 iso_8859-1:1987 l1 latin1 us-ascii windows-1252 x-cp1252 "},
    {"CP1250", " cp1250 windows-1250 x-cp1250 "},
    {"CP1251", " cp1251 windows-1251 x-cp1251 "},
    {"CP1253", " cp1253 windows-1253 x-cp1253 "},
    {"CP1254", " cp1254 csisolatin5 iso-8859-9 iso-ir-148 iso8859-9 iso88599 iso_8859-9 iso_8859-9:1989 l5 latin5 "
               "windows-1254 x-cp1254 "},
    {"CP1255", " cp1255 windows-1255 x-cp1255 "},
    {"CP1256", " cp1256 windows-1256 x-cp1256 "},
    {"CP1257", " cp1257 windows-1257 x-cp1257 "},
    {"CP1258", " cp1258 windows-1258 x-cp1258 "},
    {"CP874", " dos-874 iso-8859-11 iso8859-11 iso885911 tis-620 windows-874 "},
    {"ISO-8859-2", " csisolatin2 iso-8859-2 iso-ir-101 iso8859-2 iso88592 iso_8859-2 iso_8859-2:1987 l2 latin2 "},
    {"ISO-8859-3", " csisolatin3 iso-8859-3 iso-ir-109 iso8859-3 iso88593 iso_8859-3 iso_8859-3:1988 l3 latin3 "},
    {"ISO-8859-4", " csisolatin4 iso-8859-4 iso-ir-110 iso8859-4 iso88594 iso_8859-4 iso_8859-4:1988 l4 latin4 "},
    {"ISO-8859-5", " csisolatincyrillic cyrillic iso-8859-5 iso-ir-144 iso8859-5 iso88595 iso_8859-5 "
                   "iso_8859-5:1988 "},
    {"ISO-8859-6", " arabic asmo-708 csisolatinarabic ecma-114 iso-8859-6 iso-8859-6-e iso-8859-6-i iso-ir-127 "
                   "iso8859-6 iso88596 iso_8859-6 iso_8859-6:1987 "},
    {"ISO-8859-7", " csisolatingreek ecma-118 elot_928 greek greek8 iso-8859-7 iso-ir-126 iso8859-7 iso88597 "
                   "iso_8859-7 iso_8859-7:1987 sun_eu_greek "},
    {"ISO-8859-8", " csisolatinhebrew hebrew iso-8859-8 iso-8859-8-e iso-8859-8-i iso-ir-138 iso8859-8 iso88598 "
                   "iso_8859-8 iso_8859-8:1988 logical visual "},
    {"ISO-8859-10", " csisolatin6 iso-8859-10 iso-ir-157 iso8859-10 iso885910 l6 latin6 "},
    {"ISO-8859-13", " iso-8859-13 iso8859-13 iso885913 "},
    {"ISO-8859-14", " iso-8859-14 iso8859-14 iso885914 "},
    {"ISO-8859-15", " csisolatin9 iso-8859-15 iso8859-15 iso885915 iso_8859-15 l9 "},
    {"ISO-8859-16", " iso-8859-16 "},
    {"KOI8-R", " cskoi8r koi koi8 koi8-r koi8_r "},
    {"KOI8-U", " koi8-ru koi8-u "},
    {"IBM866", " 866 cp866 csibm866 ibm866 "},
    {"MACINTOSH", " csmacintosh mac macintosh x-mac-roman "},
    {"GB18030", " chinese csgb2312 csiso58gb231280 gb18030 gb2312 gb_2312 gb_2312-80 gbk iso-ir-58 x-gbk "},
    {"BIG5-HKSCS", " big5 big5-hkscs cn-big5 csbig5 x-x-big5 "},
    {"EUC-JP", " cseucpkdfmtjapanese euc-jp x-euc-jp "},
    {"ISO-2022-JP", " csiso2022jp iso-2022-jp "},
    {"CP932", " csshiftjis ms932 ms_kanji shift-jis shift_jis sjis windows-31j x-sjis "},
    {"UHC", " cseuckr csksc56011987 euc-kr iso-ir-149 korean ks_c_5601-1987 ks_c_5601-1989 ksc5601 ksc_5601 "
            "windows-949 "},
    // A page whose label is readable as ASCII cannot be in UCS-2 or UTF-16.
    {"UTF-8", " csunicode iso-10646-ucs-2 ucs-2 unicode unicodefeff unicodefffe utf-16 utf-16be utf-16le "},
}};

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16LittleMark = "\xFF\xFE";
constexpr std::string_view kUtf16BigMark = "\xFE\xFF";
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

std::string tidyLabel(std::string_view label)
{
    std::string tidy;
    for (const char c : label) {
        const bool blank = c == ' ' || (c >= '\t' && c <= '\r');
        if (!blank)
            tidy.push_back(toLowerAscii(c));
        else if (!tidy.empty())
            tidy.push_back(' ');
    }
    while (!tidy.empty() && tidy.back() == ' ')
        tidy.pop_back();
    return tidy;
}

/// A converter to UTF-8 that closes itself.
class Converter
{
public:
    explicit Converter(const char* from) : handle_(::iconv_open("UTF-8", from)) {}
    ~Converter()
    {
        if (usable())
            ::iconv_close(handle_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    bool usable() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

    std::string convert(std::string_view bytes)
    {
        std::string text;
        std::array<char, 16 * 1024> buffer;
        // iconv() reads through this pointer and writes nothing.
        char* from = const_cast<char*>(bytes.data());
        std::size_t left = bytes.size();
        // Some encodings hold a character back until they see what follows; the last iteration flushes it.
        for (bool last = false; !last;) {
            last = left == 0;
            char* to = buffer.data();
            std::size_t room = buffer.size();
            const std::size_t result = ::iconv(handle_, last ? nullptr : &from, &left, &to, &room);
            const int fault = errno;
            text.append(buffer.data(), buffer.size() - room);
            if (result != static_cast<std::size_t>(-1) || fault == E2BIG)
                continue;
            text += kReplacement;
            if (fault != EILSEQ)
                break; // the text ends inside a character
            ++from;
            --left;
        }
        return text;
    }

private:
    iconv_t handle_;
};

} // namespace

std::optional<PageEncoding> PageEncoding::named(std::string_view label)
{
    constexpr std::size_t kLongest = 64;
    if (label.size() > kLongest)
        return std::nullopt;
    const std::string tidy = tidyLabel(label);
    if (tidy.empty() || tidy.find(' ') != std::string::npos)
        return std::nullopt;
    const std::string wanted = " " + tidy + " ";
    for (const Known& known : kKnown) {
        if (known.labels.find(wanted) != std::string_view::npos)
            return PageEncoding(known.name);
    }
    return std::nullopt;
}

std::optional<PageEncoding> PageEncoding::byMark(std::string_view page)
{
    if (page.substr(0, kUtf8Mark.size()) == kUtf8Mark)
        return PageEncoding("UTF-8");
    if (page.substr(0, kUtf16LittleMark.size()) == kUtf16LittleMark)
        return PageEncoding("UTF-16LE");
    if (page.substr(0, kUtf16BigMark.size()) == kUtf16BigMark)
        return PageEncoding("UTF-16BE");
    return std::nullopt;
}

std::optional<std::string> PageEncoding::toUtf8(std::string_view bytes) const
{
    Converter converter(name_);
    if (!converter.usable())
        return std::nullopt;
    std::string text = converter.convert(bytes);
    if (text.compare(0, kUtf8Mark.size(), kUtf8Mark) == 0)
        text.erase(0, kUtf8Mark.size());
    return text;
}

} // namespace quarrynet::services
