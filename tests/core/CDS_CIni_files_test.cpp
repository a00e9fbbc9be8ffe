#include <array>
#include <atomic>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "common/profile_file.h"
#include "ini_fixture.h"

using namespace quarrynet;
using testing::ElementsAre;
using testing::HasSubstr;
namespace fs = std::filesystem;

namespace {

/// Expects that the store creates, changes and reads its file.
void expectWorks(CDS_CIni& store)
{
    std::string value;
    std::vector<std::string> names;
    EXPECT_FALSE(store.ReadValue("A", "k", value));
    ASSERT_TRUE(store.WriteValue("A", "k", "1")) << store.LastErrorDescription();
    ASSERT_TRUE(store.WriteValue("B", "k", "2")) << store.LastErrorDescription();
    ASSERT_TRUE(store.WriteSection("A", {"j", "k"}, {"3", "4"})) << store.LastErrorDescription();
    EXPECT_TRUE(store.ReadValue("A", "k", value)) << store.LastErrorDescription();
    EXPECT_EQ(value, "4");
    EXPECT_TRUE(store.Enum_SectionNames(names)) << store.LastErrorDescription();
    EXPECT_THAT(names, ElementsAre("A", "B"));
}

} // namespace

// On Windows, a folder with letters outside the code page used to end the start.
TEST_F(Ini, FolderMayHaveAnyName)
{
    for (const char8_t* name : {u8"with blanks", u8"grüß", u8"Łódź 日本 😀", u8"50%'s & [A]=;k", u8"a.b"}) {
        const fs::path folder = folder_ / name;
        fs::create_directory(folder);
        store_.setFileName(bytesOf(folder / "Quarrynet.ini"));
        expectWorks(store_);
        EXPECT_TRUE(fs::is_regular_file(folder / "Quarrynet.ini"));
        EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1);
    }
}

TEST_F(Ini, PathMayBeLongerThan260Characters)
{
    fs::path start = folder_;
#ifdef _WIN32
    start = L"\\\\?\\" + folder_.native(); // the test's own calls need this form for long paths
#endif
    const std::size_t prefix = start.native().size() - folder_.native().size();
    constexpr std::string_view kName = "Quarrynet.ini";
    for (const std::size_t length : {250U, 255U, 256U, 259U, 260U, 264U, 400U}) {
        fs::path folder = start / std::to_string(length);
        const std::size_t end = length + prefix - kName.size() - 1; // of the folder
        while (folder.native().size() + 1 < end)
            folder /= std::string(std::min(std::size_t{40}, end - folder.native().size() - 1), 'x');
        fs::create_directories(folder);
        const fs::path file = folder / kName;
        EXPECT_LE(file.native().size() - prefix, length);
        EXPECT_GE(file.native().size() - prefix + 1, length);
        store_.setFileName(bytesOf(file).substr(prefix));
        expectWorks(store_);
        EXPECT_TRUE(fs::is_regular_file(file));
        // One by one, because some libraries cannot list a folder with a long path. Nothing else is left in it.
        for (fs::path left = file; left != start; left = left.parent_path())
            EXPECT_TRUE(fs::remove(left));
    }
}

TEST_F(Ini, FileWithAMarkIsReadAndKeepsIt)
{
    const auto utf16 = [](const std::string& text, bool bigEndian) {
        std::string bytes = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
        for (const char c : text)
            bytes.append(bigEndian ? std::string{'\0', c} : std::string{c, '\0'});
        return bytes;
    };
    const std::string text = "[A]\r\nk=1\r\n[B]\r\nk=2\r\n";
    const std::string changed = "[A]\r\nk=3\r\n[B]\r\nk=2\r\n";
    const std::vector<std::pair<std::string, std::string>> files = {{"\xEF\xBB\xBF" + text, "\xEF\xBB\xBF" + changed},
                                                                    {utf16(text, false), utf16(changed, false)},
                                                                    {utf16(text, true), utf16(changed, true)}};
    for (const auto& [before, after] : files) {
        put(before);
        std::string value;
        std::vector<std::string> names;
        EXPECT_TRUE(store_.ReadValue("A", "k", value));
        EXPECT_EQ(value, "1");
        EXPECT_TRUE(store_.Enum_SectionNames(names));
        EXPECT_THAT(names, ElementsAre("A", "B"));
        ASSERT_TRUE(store_.WriteValue("A", "k", "3"));
        EXPECT_EQ(content(), after);
        EXPECT_TRUE(store_.ReadSection("B", names, names));
        EXPECT_EQ(filesInFolder(), 1U);
        fs::remove(path_);
    }
}

TEST_F(Ini, WrongLineEndsAreRead)
{
    for (const char* end : {"\n", "\r", "\r\r\n"}) {
        put(std::string("[A]") + end + "k=1" + end + end + "[B]" + end + "k=2" + end);
        ASSERT_TRUE(store_.WriteValue("A", "j", "3"));
        for (const auto& [section, key, expected] : {std::array{"A", "k", "1"}, {"A", "j", "3"}, {"B", "k", "2"}}) {
            std::string value;
            EXPECT_TRUE(store_.ReadValue(section, key, value));
            EXPECT_EQ(value, expected);
        }
        fs::remove(path_);
    }
}

TEST_F(Ini, WhatIsMissingIsToldFromWhatCannotBeRead)
{
    std::string value;
    std::vector<std::string> entries;
    const auto findsNothing = [&] {
        EXPECT_FALSE(store_.ReadValue("A", "k", value));
        const bool nothing = store_.foundNothing();
        EXPECT_FALSE(store_.ReadSection("A", entries, entries));
        EXPECT_EQ(store_.foundNothing(), nothing);
        return nothing;
    };
    EXPECT_TRUE(findsNothing()) << "no file";
    store_.setFileName(bytesOf(folder_ / "none" / "Quarrynet.ini"));
    EXPECT_TRUE(findsNothing()) << "no folder";
    store_.setFileName(bytesOf(path_));
    for (const std::string mark : {"", "\xEF\xBB\xBF"}) {
        for (const char* text : {"", "[B]\nk=1\n", "[A]\n"}) {
            put(mark + text);
            EXPECT_TRUE(findsNothing()) << text;
        }
        put(mark + "[A]\nk=\n");
        EXPECT_FALSE(store_.ReadValue("A", "k", value));
        EXPECT_TRUE(store_.foundNothing());
        fs::resize_file(path_, kLargestProfile + 1);
        EXPECT_FALSE(findsNothing()) << "too large";
    }
    fs::remove(path_);
    fs::create_directory(path_);
    EXPECT_FALSE(findsNothing()) << "a folder";
#ifndef _WIN32
    fs::remove(path_);
    fs::create_symlink("none", path_);
    EXPECT_FALSE(findsNothing()) << "a link to nothing";
    store_.setFileName(bytesOf(path_ / "Quarrynet.ini"));
    EXPECT_TRUE(findsNothing()) << "in a folder that is not there";
    put("text");
    EXPECT_FALSE(findsNothing()) << "in a file";
#endif
}

#ifdef _WIN32

TEST_F(Ini, FileThatAnotherProgramLocksIsAFailureThatLosesNothing)
{
    for (const std::string mark : {"", "\xEF\xBB\xBF"}) {
        put(mark + "[A]\r\nk=1\r\n");
        for (const DWORD share : {0UL, static_cast<DWORD>(FILE_SHARE_READ)}) {
            HANDLE other = ::CreateFileW(path_.c_str(), GENERIC_READ | GENERIC_WRITE, share, nullptr, OPEN_EXISTING,
                                         FILE_ATTRIBUTE_NORMAL, nullptr);
            ASSERT_NE(other, INVALID_HANDLE_VALUE);
            std::string value = "kept";
            const bool readable = share != 0;
            EXPECT_EQ(store_.ReadValue("A", "k", value), readable);
            EXPECT_EQ(value, readable ? "1" : "kept");
            EXPECT_EQ(store_.LastErrorDescription(), systemMessage(ERROR_SHARING_VIOLATION, 255));
            EXPECT_FALSE(store_.WriteValue("A", "k", "2"));
            EXPECT_EQ(store_.LastErrorDescription(), systemMessage(ERROR_SHARING_VIOLATION, 255));
            EXPECT_FALSE(store_.WriteSection("A", {"k"}, {"2"}));
            EXPECT_FALSE(store_.ReadValue("A", "x", value));
            EXPECT_EQ(store_.foundNothing(), readable);
            ::CloseHandle(other);
            EXPECT_EQ(content(), mark + "[A]\r\nk=1\r\n");
            EXPECT_EQ(filesInFolder(), 1U);
        }
        EXPECT_TRUE(store_.WriteValue("A", "k", "2"));
        fs::remove(path_);
    }
}

TEST_F(Ini, FileOnANetworkShareIsReadAndWritten)
{
    // The system's own share of the drive; tools/windows.sh sets one up under Wine.
    const std::wstring drive = folder_.native().substr(0, 1);
    const fs::path share = L"\\\\localhost\\" + drive + L"$" + folder_.native().substr(2);
    if (!fs::is_directory(share))
        GTEST_SKIP() << "the drive has no share, or it is for administrators";
    store_.setFileName(bytesOf(share / "Quarrynet.ini"));
    expectWorks(store_);
    EXPECT_TRUE(fs::exists(path_));
    put("\xEF\xBB\xBF[A]\r\nk=1\r\n");
    ASSERT_TRUE(store_.WriteValue("A", "k", "2"));
    EXPECT_EQ(content(), "\xEF\xBB\xBF[A]\r\nk=2\r\n");
}

TEST_F(Ini, LettersOfAMarkedFileAreThoseOfTheCodePage)
{
    if (::GetACP() != 1252)
        GTEST_SKIP() << "the system's code page is not 1252";
    put("\xEF\xBB\xBF[\xC3\x84]\r\nk=\xC3\xA4\xC5\x82\r\n");
    std::string value;
    ASSERT_TRUE(store_.ReadValue("\xC4", "k", value));
    EXPECT_EQ(value, "\xE4?"); // the code page has only the first letter
    ASSERT_TRUE(store_.WriteValue("\xC4", "j", "\xD6"));
    EXPECT_EQ(content(), "\xEF\xBB\xBF[\xC3\x84]\r\nk=\xC3\xA4\xC5\x82\r\nj=\xC3\x96\r\n");
}

TEST_F(Ini, ReadOnlyFileIsNotReplaced)
{
    for (const std::string mark : {"", "\xEF\xBB\xBF"}) {
        put(mark + "[A]\r\nk=1\r\n");
        ASSERT_NE(::SetFileAttributesW(path_.c_str(), FILE_ATTRIBUTE_READONLY), 0);
        EXPECT_FALSE(store_.WriteValue("A", "k", "2"));
        EXPECT_EQ(store_.LastErrorDescription(), systemMessage(ERROR_ACCESS_DENIED, 255));
        EXPECT_EQ(content(), mark + "[A]\r\nk=1\r\n");
        ::SetFileAttributesW(path_.c_str(), FILE_ATTRIBUTE_NORMAL);
        fs::remove(path_);
    }
}

TEST_F(Ini, DescriptionsAreTheSystemsMessages)
{
    std::string value;
    EXPECT_FALSE(store_.ReadValue("A", "k", value));
    EXPECT_EQ(store_.LastErrorDescription(), systemMessage(ERROR_FILE_NOT_FOUND, 255));
    EXPECT_FALSE(store_.WriteValue("A", "k", "a\nb"));
    EXPECT_EQ(store_.LastErrorDescription(), systemMessage(ERROR_INVALID_PARAMETER, 255));
    EXPECT_NE(store_.LastErrorDescription(), "");
}

TEST_F(Ini, FileAboveTheBoundIsAFailure)
{
    const std::string head = "[A]\r\nk=1\r\n;";
    put(head + std::string(kLargestProfile - head.size(), 'x'));
    std::string value;
    EXPECT_TRUE(store_.ReadValue("A", "k", value));
    EXPECT_FALSE(store_.WriteValue("B", "k", "2")) << "the file could not be read back";
    EXPECT_EQ(store_.LastErrorDescription(), systemMessage(ERROR_FILE_TOO_LARGE, 255));
    EXPECT_EQ(fs::file_size(path_), kLargestProfile);
    for (const std::uintmax_t size : {std::uintmax_t{kLargestProfile} + 1, std::uintmax_t{5} << 32}) {
        std::error_code refused;
        fs::resize_file(path_, size, refused);
        if (refused)
            continue;
        EXPECT_FALSE(store_.ReadValue("A", "k", value)) << size;
        EXPECT_FALSE(store_.WriteValue("A", "k", "2")) << size;
        EXPECT_EQ(store_.LastErrorDescription(), systemMessage(ERROR_FILE_TOO_LARGE, 255));
        EXPECT_EQ(fs::file_size(path_), size);
    }
}

#else

TEST_F(Ini, DescriptionsAreTheSystemsMessages)
{
    std::string value;
    EXPECT_FALSE(store_.ReadValue("A", "k", value));
    EXPECT_EQ(store_.LastErrorDescription(), "No such file or directory");
    put("[A]\nk=1\n");
    EXPECT_FALSE(store_.ReadValue("A", "x", value));
    EXPECT_EQ(store_.LastErrorDescription(), "An unknown error has occured");
    EXPECT_FALSE(store_.WriteValue("A", "k", "a\nb"));
    EXPECT_EQ(store_.LastErrorDescription(), "Invalid argument");
    fs::remove(path_);
    fs::create_directory(path_);
    EXPECT_FALSE(store_.WriteValue("A", "k", "v"));
    EXPECT_EQ(store_.LastErrorDescription(), "Is a directory");
}

TEST_F(Ini, UntouchedLinesKeepEveryByte)
{
    put("; mine\r\n\r\n[A]\r\n k =  1\r\n\n[B]\nx = \"y\"  \r\n; end");
    ASSERT_TRUE(store_.WriteValue("A", "k", "2"));
    EXPECT_EQ(content(), "; mine\r\n\r\n[A]\r\nk=2\r\n\n[B]\nx = \"y\"  \r\n; end");
}

TEST_F(Ini, PermissionsStayAndLinksAreFollowed)
{
    put("[A]\nk=1\n");
    fs::permissions(path_, fs::perms(0640));
    const fs::path link = folder_ / "link.ini";
    fs::create_symlink("Quarrynet.ini", link);
    store_.setFileName(bytesOf(link));
    ASSERT_TRUE(store_.WriteValue("A", "k", "2"));
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(content(), "[A]\nk=2\n");
    EXPECT_EQ(fs::status(path_).permissions(), fs::perms(0640));
    EXPECT_EQ(filesInFolder(), 2U);
}

TEST_F(Ini, ReadOnlyFileIsNotReplaced)
{
    if (::geteuid() == 0)
        GTEST_SKIP() << "permissions do not restrict root";
    put("[A]\nk=1\n");
    fs::permissions(path_, fs::perms(0444));
    EXPECT_FALSE(store_.WriteValue("A", "k", "2"));
    EXPECT_EQ(store_.LastErrorDescription(), "Permission denied");
    EXPECT_EQ(content(), "[A]\nk=1\n");
}

TEST_F(Ini, UnreadableFileOrFolderIsAFailureWithADescription)
{
    if (::geteuid() == 0)
        GTEST_SKIP() << "permissions do not restrict root";
    put("[A]\nk=1\n");
    fs::permissions(path_, fs::perms(0000));
    std::string value;
    EXPECT_FALSE(store_.ReadValue("A", "k", value));
    EXPECT_EQ(store_.LastErrorDescription(), "Permission denied");
    fs::permissions(path_, fs::perms(0644));
    fs::permissions(folder_, fs::perms(0555));
    EXPECT_FALSE(store_.WriteValue("A", "k", "2"));
    EXPECT_EQ(store_.LastErrorDescription(), "Permission denied");
    EXPECT_EQ(content(), "[A]\nk=1\n");
}

namespace {

/// Expects that every operation fails with `description` and leaves its output arguments unchanged.
void expectAllFail(CDS_CIni& store, const std::string& description)
{
    std::string value = "kept";
    std::vector<std::string> keys = {"kept"};
    std::vector<std::string> values = {"kept"};
    EXPECT_FALSE(store.ReadValue("A", "k", value));
    EXPECT_EQ(store.LastErrorDescription(), description);
    EXPECT_EQ(value, "kept");
    EXPECT_FALSE(store.ReadSection("A", keys, values));
    EXPECT_THAT(keys, ElementsAre("kept"));
    EXPECT_FALSE(store.Enum_SectionNames(keys));
    EXPECT_FALSE(store.WriteValue("A", "k", "v"));
    EXPECT_EQ(store.LastErrorDescription(), description);
    EXPECT_FALSE(store.WriteSection("A", {"k"}, {"v"}));
    EXPECT_EQ(store.LastErrorDescription(), description);
}

} // namespace

TEST_F(Ini, SparseFileOfFourTerabytesIsAFailure)
{
    put("[A]\nk=1\n");
    std::error_code refused;
    fs::resize_file(path_, std::uintmax_t{4} << 40, refused);
    if (refused)
        GTEST_SKIP() << "the file system does not support such a file";
    expectAllFail(store_, "File too large");
    EXPECT_EQ(fs::file_size(path_), std::uintmax_t{4} << 40);
    EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(Ini, BoundIsTheLastSizeThatIsReadAndWritten)
{
    const std::string head = "[A]\nk=1\n;";
    put(head + std::string(kLargestProfile - head.size(), 'x'));
    std::string value;
    EXPECT_TRUE(store_.ReadValue("A", "k", value));
    EXPECT_TRUE(store_.WriteValue("A", "k", "2"));
    EXPECT_FALSE(store_.WriteValue("A", "k", "23")) << "one byte more could not be read back";
    EXPECT_EQ(store_.LastErrorDescription(), "File too large");
    ASSERT_TRUE(store_.ReadValue("A", "k", value));
    EXPECT_EQ(value, "2");
    put(head + std::string(kLargestProfile - head.size() + 1, 'x'));
    expectAllFail(store_, "File too large");
}

TEST_F(Ini, DevicesAreFailures)
{
    for (const char* device : {"/dev/zero", "/dev/null", "/dev/tty"}) {
        std::error_code ignored;
        fs::remove(path_, ignored);
        fs::create_symlink(device, path_);
        std::string value;
        EXPECT_FALSE(store_.ReadValue("A", "k", value)) << device;
        EXPECT_FALSE(store_.WriteValue("A", "k", "v")) << device;
        EXPECT_TRUE(fs::is_symlink(path_)) << device;
    }
}

TEST_F(Ini, LinksInACircleAreAFailure)
{
    fs::create_symlink("other.ini", path_);
    fs::create_symlink("Quarrynet.ini", folder_ / "other.ini");
    expectAllFail(store_, "Too many levels of symbolic links");
    EXPECT_TRUE(fs::is_symlink(path_));
}

TEST_F(Ini, FileThatChangesItsSizeMeanwhileIsReadOrRefused)
{
    std::atomic<bool> over = false;
    put("[A]\nk=1\n");
    std::thread changing([&] {
        const std::string more(4096, ';');
        while (!over) {
            std::ofstream(path_, std::ios::binary | std::ios::app) << more;
            std::error_code ignored;
            if (fs::file_size(path_, ignored) > (kLargestProfile / 4))
                fs::resize_file(path_, 8, ignored);
        }
    });
    for (int i = 0; i < 300; ++i) {
        std::string value;
        const bool read = store_.ReadValue("A", "k", value);
        EXPECT_EQ(value, read ? "1" : "");
    }
    over = true;
    changing.join();
}

TEST_F(Ini, PipeInItsPlaceDoesNotWait)
{
    ASSERT_EQ(::mkfifo(path_.c_str(), 0600), 0);
    std::string value;
    EXPECT_FALSE(store_.ReadValue("A", "k", value));
    EXPECT_FALSE(store_.WriteValue("A", "k", "v"));
    EXPECT_EQ(store_.LastErrorDescription(), "Invalid argument");
}

#endif
