#include "protocol/protocol_factory.hpp"

#include "protocol/curl/curl_protocol.hpp"

#include <map>
#include <string>

namespace perchftp::protocol {

namespace {

using Maker = IRemoteSession* (*)();

std::map<std::string, Maker>& registry()
{
    static std::map<std::string, Maker> makers;
    return makers;
}

} // namespace

void ProtocolFactory::registerProtocol(char const* name, IRemoteSession* (*maker)())
{
    registry()[name] = maker;
}

IRemoteSession* ProtocolFactory::create(char const* name)
{
    ensureDefaultProtocolAdapters();
    auto const found = registry().find(std::string(name));
    if (found == registry().end()) {
        return nullptr;
    }
    return found->second();
}

void ensureDefaultProtocolAdapters()
{
    static bool initialized = false;
    if (initialized) {
        return;
    }
    initialized = true;
    curl::registerCurlProtocolAdapters();
}

} // namespace perchftp::protocol
