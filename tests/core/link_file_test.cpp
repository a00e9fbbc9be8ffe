#include <string>

#include <gtest/gtest.h>

#include "common/link_file.h"

using namespace quarrynet;

namespace {

constexpr const char* kWebLocation = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>URL</key>
	<string>http://host/?a=1&amp;b=&lt;2&gt;</string>
</dict>
</plist>
)";

} // namespace

TEST(LinkFile, IsToldByItsExtension)
{
    EXPECT_TRUE(isLinkFile("a.url"));
    EXPECT_TRUE(isLinkFile("/folder/Name.URL"));
    EXPECT_TRUE(isLinkFile("x.desktop"));
    EXPECT_TRUE(isLinkFile("x.WebLoc"));
    for (const char* name : {"", "url", "a.url.txt", "a.html", "a.lnk", ".ur"})
        EXPECT_FALSE(isLinkFile(name)) << name;
}

TEST(LinkFile, Shortcuts)
{
    const std::string text = "[{000214A0-0000-0000-C000-000000000046}]\r\nProp3=19,11\r\n"
                             "[InternetShortcut]\r\nIDList=\r\nURL=http://host/a\r\n";
    EXPECT_EQ(addressInLinkFile("a.url", text), "http://host/a");
    EXPECT_EQ(addressInLinkFile("A.URL", "\xEF\xBB\xBF[internetshortcut]\nurl = http://host/ \n"), "http://host/");
    EXPECT_EQ(addressInLinkFile("a.url", "[Other]\nURL=http://host/\n"), std::nullopt);
    EXPECT_EQ(addressInLinkFile("a.url", "[InternetShortcut]\nURL=\n"), std::nullopt);
    EXPECT_EQ(addressInLinkFile("a.url", "[InternetShortcut]\nBaseURL=http://host/\n"), std::nullopt);
}

TEST(LinkFile, DesktopEntriesOfTypeLink)
{
    EXPECT_EQ(addressInLinkFile("a.desktop", "[Desktop Entry]\nType=Link\nName=x\nURL=https://host/\n"),
              "https://host/");
    EXPECT_EQ(addressInLinkFile("a.desktop", "[Desktop Entry]\nType=Application\nExec=rm\nURL=https://host/\n"),
              std::nullopt);
    EXPECT_EQ(addressInLinkFile("a.desktop", "[Desktop Entry]\nURL=https://host/\n"), std::nullopt);
    EXPECT_EQ(addressInLinkFile("a.desktop", "[Desktop Entry]\nType=Link\n"), std::nullopt);
}

TEST(LinkFile, WebLocations)
{
    EXPECT_EQ(addressInLinkFile("a.webloc", kWebLocation), "http://host/?a=1&b=<2>");
    EXPECT_EQ(addressInLinkFile("a.webloc", "<key>URL</key><string>&amp;lt;</string>"), "&lt;");
    for (const char* text : {"bplist00\xd1\x01", "<key>URL</key>", "<key>URL</key><string>http://host/",
                             "<key>URL</key><true/><string>http://host/</string>", "<string>http://host/</string>"})
        EXPECT_EQ(addressInLinkFile("a.webloc", text), std::nullopt) << text;
}

TEST(LinkFile, NothingInFilesOfOtherKindsOrWithoutAnything)
{
    EXPECT_EQ(addressInLinkFile("a.txt", "[InternetShortcut]\nURL=http://host/\n"), std::nullopt);
    for (const char* name : {"a.url", "a.desktop", "a.webloc"}) {
        EXPECT_EQ(addressInLinkFile(name, ""), std::nullopt);
        EXPECT_EQ(addressInLinkFile(name, std::string("\0\xff[", 3)), std::nullopt);
    }
}

TEST(LinkFile, EveryCutIsHarmless)
{
    const std::string text = kWebLocation;
    for (std::size_t length = 0; length < text.size(); ++length)
        addressInLinkFile("a.webloc", text.substr(0, length));
    EXPECT_EQ(addressInLinkFile("a.webloc", text.substr(0, text.find("</string>"))), std::nullopt);
}

TEST(LinkFile, TheLongestIsReadAndALongerOneIsNot)
{
    std::string text = "[InternetShortcut]\nURL=http://host/\n;";
    text.resize(kLongestLinkFile, 'x');
    EXPECT_EQ(addressInLinkFile("a.url", text), "http://host/");
    EXPECT_EQ(addressInLinkFile("a.url", text + "x"), std::nullopt);
}

TEST(CheckableAddress, OnlyPagesOfTheWeb)
{
    EXPECT_EQ(checkableAddress("http://host/a b"), "http://host/a%20b");
    EXPECT_EQ(checkableAddress(" HTTPS://host "), "https://host");
    for (const char* address :
         {"", "host/a", "ftp://host/", "ftps://host/", "mailto:a@host", "file:///etc/passwd", "javascript:alert(1)",
          "http://", "http:///path", "http://host/\r\nX: y", "data:text/html,"})
        EXPECT_EQ(checkableAddress(address), std::nullopt) << address;
}

TEST(CheckableAddress, HasNoFragment)
{
    EXPECT_EQ(checkableAddress("http://host/a?b#c"), "http://host/a?b");
    EXPECT_EQ(checkableAddress("http://host#c"), "http://host");
}
