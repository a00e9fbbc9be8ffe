#pragma once

#include <functional>
#include <string>
#include <sys/socket.h>

#include "tests/services/support/ftp_support.h"

/// An HTTP server for the tests of the crawl, with pages made by the test.
namespace quarrynet::services {

class MadeUpHttp
{
public:
    /// Returns the whole response to a request for `path`; `head` is the whole request.
    using Answer = std::function<std::string(const std::string& path, const std::string& head)>;

    explicit MadeUpHttp(Answer answer) : answer_(std::move(answer)), server_([this](int socket) { serve(socket); }) {}

    std::string site() const { return std::string("http").append(server_.site(), 3); }

    static std::string response(const std::string& body, const std::string& status = "200 OK",
                                const std::string& fields = "Content-Type: text/html\r\n")
    {
        std::string bytes = "HTTP/1.1 ";
        bytes.append(status).append("\r\n").append(fields).append("Content-Length: ");
        return bytes.append(std::to_string(body.size())).append("\r\nConnection: close\r\n\r\n").append(body);
    }

    /// Returns the page of a directory with these links.
    static std::string listing(const std::string& path, const std::vector<std::string>& links)
    {
        std::string page;
        page.append("<title>Index of ").append(path).append("</title><pre><a href=\"../\">../</a>\n");
        for (const std::string& link : links)
            page.append("<a href=\"")
                .append(link)
                .append("\">name</a> 02-Jan-2026 03:04 ")
                .append(link.back() == '/' ? "-\n" : "5\n");
        return response(page.append("</pre>"));
    }

private:
    void serve(int socket) const
    {
        std::string head;
        char c = 0;
        while (head.find("\r\n\r\n") == std::string::npos && ::recv(socket, &c, 1, 0) == 1)
            head.push_back(c);
        const std::size_t begin = head.find(' ');
        if (begin == std::string::npos)
            return;
        const std::string bytes = answer_(head.substr(begin + 1, head.find(' ', begin + 1) - begin - 1), head);
        std::string_view rest = bytes;
        while (!rest.empty()) {
            const ssize_t count = ::send(socket, rest.data(), rest.size(), MSG_NOSIGNAL);
            if (count <= 0)
                return;
            rest.remove_prefix(static_cast<std::size_t>(count));
        }
    }

    Answer answer_;
    TestServer server_;
};

} // namespace quarrynet::services
