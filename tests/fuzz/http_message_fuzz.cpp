#include <string>

#include "http/message.h"
#include "tests/fuzz/fuzz_input.h"

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

std::string told(const HeadState& state)
{
    if (const auto* request = std::get_if<HttpRequest>(&state))
        return request->method + '\n' + request->host + '\n' + request->path + '\n' + request->query +
               (request->absoluteForm ? "\n1" : "\n0");
    if (const auto* refusal = std::get_if<HttpResponse>(&state))
        return std::to_string(refusal->status);
    return "incomplete";
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // The appended end completes every head: it does not matter how early an invalid head is rejected.
    const std::string head = std::string(fuzz::textOf(data, size)) + "\r\n\r\n";
    RequestReader whole;
    const std::string once = told(whole.take(head));
    RequestReader reader;
    HeadState state;
    for (std::size_t i = 0; i < head.size() && std::holds_alternative<HeadIncomplete>(state); ++i)
        state = reader.take(std::string_view(head).substr(i, 1));
    fuzz::check(told(state) == once, "a head is read alike whole and byte by byte");
    hostOfAuthority(head);
    return 0;
}
