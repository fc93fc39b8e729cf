#pragma once

#include <curl/curl.h>

#include <memory>

// Owners for libcurl's handles, so that no handle outlives its operation on any return path.
namespace perchftp::protocol::curl::detail {

struct EasyHandleDeleter {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};

struct StringListDeleter {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};

using EasyHandle = std::unique_ptr<CURL, EasyHandleDeleter>;
using StringList = std::unique_ptr<curl_slist, StringListDeleter>;

} // namespace perchftp::protocol::curl::detail
