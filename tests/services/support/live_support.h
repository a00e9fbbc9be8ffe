#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <poll.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "ground/ChildProcess.h"
#include "ground/Descriptor.h"
#include "http/HttpServer.h"

/// Servers for the tests of live sources.
namespace quarrynet::services {

/// An HTTP server on a free port of 127.0.0.1 that keeps the requests.
class LoopbackServer
{
public:
    explicit LoopbackServer(HttpServer::Handler handler)
    {
        port_ = std::get<std::uint16_t>(
            server_.listen("127.0.0.1", 0, [this, handler = std::move(handler)](const HttpRequest& request) {
                {
                    const std::lock_guard<std::mutex> lock(mutex_);
                    requests_.push_back(request);
                }
                return handler(request);
            }));
        thread_ = std::thread([this] { server_.run(); });
    }
    ~LoopbackServer()
    {
        server_.stop();
        thread_.join();
    }
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    std::string site() const { return "http://127.0.0.1:" + std::to_string(port_); }
    std::vector<HttpRequest> requests()
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        return requests_;
    }
    std::size_t count() { return requests().size(); }

private:
    std::mutex mutex_;
    std::vector<HttpRequest> requests_;
    HttpServer server_;
    std::uint16_t port_ = 0;
    std::thread thread_;
};

/// A Python script that serves until its standard input ends, and prints one line when it is ready.
class PythonServer
{
public:
    /// `interpreter` is the system's own where packages of the system are needed.
    explicit PythonServer(std::vector<std::string> arguments, const std::string& interpreter = "python3")
    {
        arguments.insert(arguments.begin(), {interpreter, "-W", "ignore"});
        std::optional<Pipe> input = makePipe();
        std::optional<Pipe> output = makePipe();
        Outcome<ChildProcess> process = ChildProcess::start(
            std::move(arguments), {.input = input->readEnd.number(), .output = output->writeEnd.number()});
        if (!process) {
            ADD_FAILURE() << process.error().message;
            return;
        }
        process_ = std::make_unique<ChildProcess>(std::move(*process));
        input_ = std::move(input->writeEnd);
        output->writeEnd.close();
        pollfd more{output->readEnd.number(), POLLIN, 0};
        for (char c = 0; ::poll(&more, 1, 60'000) == 1 && ::read(more.fd, &c, 1) == 1 && c != '\n';)
            ready_.push_back(c);
    }

    const std::string& ready() const { return ready_; }

private:
    std::unique_ptr<ChildProcess> process_;
    Descriptor input_;
    std::string ready_;
};

/// Returns an answer in the shape of newer instances, with rows whose addresses are `base` and the numbers from `first`
/// to `last`.
inline std::string searxJson(const std::string& base, int first, int last)
{
    std::string json = R"({"query": "q", "results": [)";
    for (int i = first; i <= last; ++i) {
        const std::string number = std::to_string(i);
        json.append(i > first ? "," : "").append(R"({"url": ")").append(base).append(number);
        json.append(R"(", "title": "Title )").append(number).append(R"(", "content": "Text", "img_src": ")");
        json.append(base).append(number).append(".jpg\"}");
    }
    return json.append(R"(], "unresponsive_engines": []})");
}

/// Returns the value of a parameter in the query of a request.
inline std::string parameterOf(const HttpRequest& request, const std::string& name)
{
    std::string mark = "&";
    mark.append(name).append("=");
    const std::string query = std::string("&").append(request.query);
    const std::size_t at = query.find(mark);
    if (at == std::string::npos)
        return {};
    const std::size_t begin = at + mark.size();
    return query.substr(begin, query.find('&', begin) - begin);
}

inline HttpResponse jsonResponse(std::string json)
{
    HttpResponse response;
    response.contentType = "application/json";
    response.body = std::move(json);
    return response;
}

inline HttpResponse statusResponse(int status, std::vector<std::pair<std::string, std::string>> fields = {})
{
    HttpResponse response = errorResponse(status, "");
    response.fields = std::move(fields);
    return response;
}

} // namespace quarrynet::services
