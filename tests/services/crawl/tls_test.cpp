#include <string>

#include <gtest/gtest.h>

#include "crawl/FtpClient.h"
#include "crawl/open_site.h"
#include "tests/services/support/MlsdServer.h"
#include "tests/services/support/ftp_support.h"
#include "tests/services/support/service_support.h"
#include "tests/support/certificates.h"

/// FTP over TLS against the server of pyftpdlib, and HTTPS against one of Python, with certificates that the tests
/// make.

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

class Tls : public ::testing::Test
{
protected:
    void SetUp() override
    {
        folder_.write("root/pub/file.txt", "hello");
        authority_ = certificates::issue({.commonName = "Authority of a test", .authority = true});
    }

    /// Lists "pub/" of a server with this certificate, at `host`.
    Outcome<ListedDirectory> list(const certificates::Issued& issued, const std::string& host = "127.0.0.1",
                                  bool trusted = true)
    {
        const MlsdServer server(folder_.path() + "/root", folder_.write("server.pem", issued.certificate + issued.key));
        if (!server.running())
            return Failure{"not running"};
        FtpClient client(*readCrawlAddress("ftps://" + host + ":" + server.port()),
                         trusted ? authority_.certificate : std::string());
        return client.list("pub/");
    }

    certificates::Issued good() const
    {
        return certificates::issue({.commonName = "good", .alternativeNames = {"DNS:localhost", "IP:127.0.0.1"}},
                                   &authority_);
    }

    TemporaryFolder folder_;
    certificates::Issued authority_;
};

} // namespace

TEST_F(Tls, VerifiedServerIsListed)
{
    const Outcome<ListedDirectory> directory = list(good());
    if (!directory && directory.error().message == "not running")
        GTEST_SKIP() << "the Debian packages python3-pyftpdlib and python3-openssl are not installed";
    ASSERT_TRUE(directory) << directory.error().message;
    ASSERT_EQ(directory->entries.size(), 1U);
    EXPECT_EQ(directory->entries[0].name, "file.txt");
    EXPECT_EQ(directory->entries[0].size, 5);
}

TEST_F(Tls, BadCertificateIsAFailureThatSaysWhy)
{
    const std::vector<std::string> names{"DNS:localhost", "IP:127.0.0.1"};
    const auto messageOf = [](const Outcome<ListedDirectory>& result) {
        return result ? std::string("listed") : result.error().message;
    };
    const std::string untrusted = messageOf(list(good(), "127.0.0.1", false));
    if (untrusted == "not running")
        GTEST_SKIP() << "the Debian packages python3-pyftpdlib and python3-openssl are not installed";
    EXPECT_NE(untrusted.find("certificate"), std::string::npos) << untrusted;
    const std::string expired = messageOf(list(certificates::issue({.commonName = "old",
                                                                    .alternativeNames = names,
                                                                    .begins = std::chrono::hours(-48),
                                                                    .ends = std::chrono::hours(-24)},
                                                                   &authority_)));
    EXPECT_NE(expired.find("expired"), std::string::npos) << expired;
    const std::string selfSigned =
        messageOf(list(certificates::issue({.commonName = "self", .alternativeNames = names})));
    EXPECT_NE(selfSigned.find("self"), std::string::npos) << selfSigned;
    const std::string wrongName = messageOf(
        list(certificates::issue({.commonName = "other", .alternativeNames = {"DNS:other.example"}}, &authority_)));
    EXPECT_NE(wrongName.find("name"), std::string::npos) << wrongName;
}

TEST_F(Tls, ServerWithoutTlsGetsNoPlainLogin)
{
    std::string commands;
    const TestServer server([&commands](int socket) {
        const auto say = [socket](const std::string& line) { ::send(socket, line.data(), line.size(), MSG_NOSIGNAL); };
        say("220 ready\r\n");
        std::string line;
        char c = 0;
        while (::recv(socket, &c, 1, 0) == 1) {
            line.push_back(c);
            if (c != '\n')
                continue;
            commands += line;
            line.clear();
            say("502 unknown\r\n");
        }
    });
    FtpClient client(*readCrawlAddress("ftps" + server.site().substr(3)));
    EXPECT_FALSE(client.list(""));
    EXPECT_NE(commands.find("AUTH"), std::string::npos) << commands;
    EXPECT_EQ(commands.find("USER"), std::string::npos) << commands;
}

TEST_F(Tls, ServerThatRequiresTlsRefusesThePlainClient)
{
    const certificates::Issued plain = good();
    const MlsdServer server(folder_.path() + "/root", folder_.write("server.pem", plain.certificate + plain.key));
    if (!server.running())
        GTEST_SKIP() << "the Debian packages python3-pyftpdlib and python3-openssl are not installed";
    FtpClient client(*readCrawlAddress(server.site()));
    EXPECT_FALSE(client.list(""));
}

TEST_F(Tls, HttpsDirectoryIsListedIfItsServerIsVerified)
{
    const certificates::Issued issued = good();
    const FolderServer server(QUARRYNET_HTTPS_FOLDER_SERVER, folder_.path() + "/root",
                              folder_.write("server.pem", issued.certificate + issued.key));
    ASSERT_TRUE(server.running());
    const Outcome<CrawlAddress> address = readCrawlAddress("https://127.0.0.1:" + server.port() + "/pub");
    const Outcome<ListedDirectory> directory = openSite(*address, authority_.certificate)(address->path);
    ASSERT_TRUE(directory) << directory.error().message;
    ASSERT_EQ(directory->entries.size(), 1U);
    EXPECT_EQ(directory->entries[0].name, "file.txt");
    const Outcome<ListedDirectory> untrusted = openSite(*address)(address->path);
    ASSERT_FALSE(untrusted);
    EXPECT_NE(untrusted.error().message.find("certificate"), std::string::npos) << untrusted.error().message;
}
