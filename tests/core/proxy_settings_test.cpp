#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "common/ProxySettings.h"

using namespace quarrynet;
namespace fs = std::filesystem;

namespace {

class ProxyFile : public testing::Test
{
protected:
    ProxyFile()
    {
        const char* test = testing::UnitTest::GetInstance()->current_test_info()->name();
        folder_ = fs::temp_directory_path() /
                  ("quarrynet-proxy-" + std::to_string(std::random_device()()) + "-" + std::string(test));
        fs::create_directories(folder_);
        path_ = folder_ / "Quarrynet.ini";
    }

    ~ProxyFile() override
    {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }

    void put(const std::string& content) const { std::ofstream(path_, std::ios::binary) << content; }

    std::string content() const
    {
        std::ifstream file(path_, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    ProxySettings loaded() const
    {
        ProxySettings settings(path_.string());
        settings.load();
        return settings;
    }

    fs::path folder_;
    fs::path path_;
};

std::string savedFile(const std::string& proxySwitch, const std::string& host, const std::string& port)
{
    return "[ProxySwitch]\r\nValue=" + proxySwitch + "\r\n[ProxyHost]\r\nValue=" + host +
           "\r\n[ProxyPort]\r\nValue=" + port + "\r\n";
}

} // namespace

TEST_F(ProxyFile, MissingFileIsOffAndEmpty)
{
    const ProxySettings settings = loaded();
    EXPECT_FALSE(settings.on);
    EXPECT_EQ(settings.host, "");
    EXPECT_EQ(settings.port, "");
    EXPECT_FALSE(fs::exists(path_));
}

TEST_F(ProxyFile, SavedSettingsAreLoaded)
{
    put(savedFile("on", "proxy.example", "8080"));
    const ProxySettings settings = loaded();
    EXPECT_TRUE(settings.on);
    EXPECT_EQ(settings.host, "proxy.example");
    EXPECT_EQ(settings.port, "8080");
}

TEST_F(ProxyFile, HostAndPortAreLoadedWhileTheSwitchIsOff)
{
    put(savedFile("off", "proxy.example", "8080"));
    const ProxySettings settings = loaded();
    EXPECT_FALSE(settings.on);
    EXPECT_EQ(settings.host, "proxy.example");
    EXPECT_EQ(settings.port, "8080");
}

TEST_F(ProxyFile, OnlyTheExactWordSwitchesOn)
{
    for (const char* word : {"On", "ON", "on1", "1", "true", "yes", "off", ""}) {
        put(savedFile(word, "h", "1"));
        EXPECT_FALSE(loaded().on) << word;
    }
}

TEST_F(ProxyFile, LoadingAgainForgetsWhatIsNoLongerThere)
{
    put(savedFile("on", "proxy.example", "8080"));
    ProxySettings settings = loaded();
    put("[ProxyPort]\r\nValue=\r\n");
    settings.load();
    EXPECT_FALSE(settings.on);
    EXPECT_EQ(settings.host, "");
    EXPECT_EQ(settings.port, "");
}

TEST_F(ProxyFile, SavingMakesTheFileWithSwitchHostAndPort)
{
    ProxySettings settings(path_.string());
    settings.on = true;
    settings.host = "pr\xc3\xb6xy.example";
    settings.port = "80x80";
    EXPECT_TRUE(settings.save());
    const std::string file = content();
    EXPECT_LT(file.find("[ProxySwitch]"), file.find("[ProxyHost]"));
    EXPECT_LT(file.find("[ProxyHost]"), file.find("[ProxyPort]"));
    EXPECT_LT(file.find("[ProxyPort]"), file.size());
    const ProxySettings again = loaded();
    EXPECT_TRUE(again.on);
    EXPECT_EQ(again.host, settings.host);
    EXPECT_EQ(again.port, settings.port);
}

TEST_F(ProxyFile, SavingKeepsForeignSectionsAndComments)
{
    put("; kept\r\n[Services]\r\nWebSearchHost=h\r\n" + savedFile("on", "a", "1"));
    ProxySettings settings = loaded();
    settings.on = false;
    settings.host = "b";
    settings.port = "";
    EXPECT_TRUE(settings.save());
    EXPECT_EQ(content(), "; kept\r\n[Services]\r\nWebSearchHost=h\r\n" + savedFile("off", "b", ""));
}

TEST_F(ProxyFile, WhatCannotBeWrittenIsTold)
{
    ProxySettings settings((folder_ / "missing" / "Quarrynet.ini").string());
    settings.host = "h";
    EXPECT_FALSE(settings.save());
    EXPECT_FALSE(ProxySettings("").save());

    // A line end would add a line to the file, so this setting is rejected; the other two are written nevertheless.
    ProxySettings broken(path_.string());
    broken.on = true;
    broken.host = "a\r\n[ProxyPort]";
    broken.port = "7";
    EXPECT_FALSE(broken.save());
    const ProxySettings again = loaded();
    EXPECT_TRUE(again.on);
    EXPECT_EQ(again.host, "");
    EXPECT_EQ(again.port, "7");
}

TEST(ProxyPort, IsTheNumberThatTheTextBeginsWith)
{
    ProxySettings settings("");
    for (const auto& [text, number] : {std::pair<const char*, int>("", 0),
                                       {"8080", 8080},
                                       {" 80x80", 80},
                                       {"x", 0},
                                       {"1.5", 2},
                                       {"2.5", 2},
                                       {"-5", -5},
                                       {"32767.4", 32767}}) {
        settings.port = text;
        ASSERT_TRUE(settings.portNumber()) << text;
        EXPECT_EQ(*settings.portNumber(), number) << text;
    }
}

TEST(ProxyPort, BeyondTheLargestOverflows)
{
    ProxySettings settings("");
    for (const char* text : {"32768", "65535", "99999999999999999999999"}) {
        settings.port = text;
        ASSERT_FALSE(settings.portNumber()) << text;
        EXPECT_EQ(settings.portNumber().error(), RuntimeError::Overflow) << text;
    }
    settings.port = std::to_string(ProxySettings::kLargestPort);
    EXPECT_TRUE(settings.portNumber());
}
