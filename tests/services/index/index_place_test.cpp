#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <unistd.h>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "index/database.h"
#include "index/index_place.h"

using namespace quarrynet::services;
using ::testing::HasSubstr;

namespace {

/// Sets a variable of the environment, or removes it, and restores it at the end.
class Variable
{
public:
    Variable(const char* name, const char* value) : name_(name)
    {
        if (const char* before = std::getenv(name))
            before_ = before;
        set(value);
    }
    ~Variable() { set(before_ ? before_->c_str() : nullptr); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    void set(const char* value) const
    {
        if (value == nullptr)
            ::unsetenv(name_);
        else
            ::setenv(name_, value, 1);
    }

    const char* name_;
    std::optional<std::string> before_;
};

class IndexPlace : public ::testing::Test
{
protected:
    static std::string make(const std::string& folder, Reader reader = Reader::Owner)
    {
        return indexCommands(folder, reader).make;
    }

    Variable home_{"HOME", "/home/a"};
    Variable data_{"XDG_DATA_HOME", nullptr};
    Variable sudo_{"SUDO_USER", nullptr};
};

} // namespace

// The system's services have an index that a person's command does not make.
TEST_F(IndexPlace, TheSystemsIndexIsMadeByItsUnit)
{
    for (const char* folder : {"/var/lib/quarrynet", "/var/lib/quarrynet/", "/var//lib/./quarrynet"}) {
        EXPECT_TRUE(isSystemsFolder(folder)) << folder;
        const IndexCommands commands = indexCommands(folder, Reader::Anybody);
        EXPECT_EQ(commands.make, "sudo systemctl start quarrynet-services-index.service") << folder;
        EXPECT_EQ(commands.replace, "sudo quarrynet-services index --force --data /var/lib/quarrynet") << folder;
        EXPECT_EQ(commands.crawl, "sudo systemctl enable --now quarrynet-services-crawl.timer") << folder;
        EXPECT_EQ(commands.serve, "quarrynet-services serve") << folder;
        EXPECT_EQ(indexCommands(folder, Reader::Owner).look,
                  "sudo quarrynet-services status --data /var/lib/quarrynet");
    }
    for (const char* folder :
         {"", "/", "quarrynet", "var/lib/quarrynet", "/var/lib/quarrynet/x", "/var/lib/quarrynet2"})
        EXPECT_FALSE(isSystemsFolder(folder)) << folder;
    EXPECT_TRUE(IndexPool("/var/lib/quarrynet").isSystems());
    EXPECT_FALSE(IndexPool("/none").isSystems());
}

TEST_F(IndexPlace, TheUsualFolderComesFromTheEnvironment)
{
    EXPECT_EQ(*usualDataFolder(), "/home/a/.local/share/quarrynet");
    const Variable relative("XDG_DATA_HOME", "share");
    EXPECT_EQ(*usualDataFolder(), "/home/a/.local/share/quarrynet");
    const Variable whole("XDG_DATA_HOME", "/data");
    EXPECT_EQ(*usualDataFolder(), "/data/quarrynet");
    const Variable none("XDG_DATA_HOME", "");
    const Variable homeless("HOME", "");
    EXPECT_FALSE(usualDataFolder());
}

TEST_F(IndexPlace, CommandsForTheUsualFolderNeedNotNameIt)
{
    for (const char* folder : {"/home/a/.local/share/quarrynet", "/home/a/.local/share/quarrynet/",
                               "/home/a/./.local//share/quarrynet", "/home/a/b/../.local/share/quarrynet"}) {
        for (const Reader reader : {Reader::Owner, Reader::Anybody}) {
            const IndexCommands commands = indexCommands(folder, reader);
            EXPECT_EQ(commands.make, "quarrynet-services index") << folder;
            EXPECT_EQ(commands.replace, "quarrynet-services index --force") << folder;
            EXPECT_EQ(commands.serve, "quarrynet-services serve") << folder;
            EXPECT_EQ(commands.look, "sudo quarrynet-services status") << folder;
        }
    }
}

// Once whoever followed the message made another index.
TEST_F(IndexPlace, CommandsForAnotherFolderNameItToItsOwner)
{
    const IndexCommands commands = indexCommands("/srv/index/", Reader::Owner);
    EXPECT_EQ(commands.make, "quarrynet-services index --data /srv/index");
    EXPECT_EQ(commands.replace, "quarrynet-services index --force --data /srv/index");
    EXPECT_EQ(commands.crawl, "quarrynet-services crawl --due --data /srv/index");
    EXPECT_EQ(commands.serve, "quarrynet-services serve --data /srv/index");
    EXPECT_EQ(commands.look, "sudo quarrynet-services status --data /srv/index");
    EXPECT_THAT(newerIndexRemedy(commands), HasSubstr("\"quarrynet-services index --force --data /srv/index\""));
    EXPECT_EQ(make("index"), "quarrynet-services index --data " + std::filesystem::absolute("index").string());
    const Variable homeless("HOME", nullptr);
    EXPECT_EQ(make("/home/a/.local/share/quarrynet"), "quarrynet-services index --data /home/a/.local/share/quarrynet");
}

// Once the remedy for the system's index was an option that its unit does not take.
TEST_F(IndexPlace, APoorerIndexOfTheSystemIsReplacedByAWholeCommand)
{
    EXPECT_EQ(poorerIndexRemedy("/var/lib/quarrynet/"),
              "to replace it, run \"sudo quarrynet-services index --force --data /var/lib/quarrynet\"");
    EXPECT_EQ(poorerIndexRemedy("/home/a/.local/share/quarrynet"), "use --force to replace it");
}

TEST_F(IndexPlace, AShellTakesTheFolderAsOneWord)
{
    for (const auto& [folder, word] : {std::pair("/my index", "'/my index'"), std::pair("/it's", "'/it'\\''s'"),
                                       std::pair("/$(reboot);`x`", "'/$(reboot);`x`'"),
                                       std::pair("/b\xC3\xBC"
                                                 "cher",
                                                 "'/b\xC3\xBC"
                                                 "cher'"),
                                       std::pair("/a\nb", "'/a\nb'"), std::pair("/~a", "'/~a'")})
        EXPECT_EQ(make(folder), std::string("quarrynet-services index --data ") + word);
}

TEST_F(IndexPlace, PagesDoNotSayWhereTheIndexIs)
{
    const IndexCommands commands = indexCommands("/home/a/secret", Reader::Anybody);
    for (const std::string& command :
         {commands.make, commands.replace, commands.crawl, commands.serve, commands.look}) {
        EXPECT_EQ(command.find("secret"), std::string::npos) << command;
        EXPECT_THAT(command, HasSubstr(" --data DATA-FOLDER"));
    }
    EXPECT_EQ(IndexPool("/home/a/secret").makingCommand(), commands.make);
    EXPECT_EQ(IndexPool("/home/a/secret", kMaxQueryTime, Reader::Owner).makingCommand(),
              "quarrynet-services index --data /home/a/secret");
}

// The usual folder of a program that sudo started is root's.
TEST_F(IndexPlace, RootsCommandsBeginWithSudoIfSudoMadeIt)
{
    const Variable sudo("SUDO_USER", "a");
    EXPECT_EQ(make("/home/a/.local/share/quarrynet"),
              ::geteuid() == 0 ? "sudo quarrynet-services index" : "quarrynet-services index");
}
