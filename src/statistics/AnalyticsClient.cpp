#include "statistics/AnalyticsClient.h"

#include <memory>

#include <curl/curl.h>

namespace halcyra::statistics {
namespace {

// Lifetime figures are a few dozen bytes; anything far larger is not an answer to read.
constexpr std::size_t kMaxAnswer = 64 * 1024;

struct CurlDeleter {
  void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
struct HeaderListDeleter {
  void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};

std::size_t collect(char* data, std::size_t size, std::size_t count, void* target) {
  auto* answer = static_cast<std::string*>(target);
  const std::size_t bytes = size * count;
  if (answer->size() + bytes > kMaxAnswer) return 0; // ends the transfer with an error
  answer->append(data, bytes);
  return bytes;
}

std::size_t discard(char*, std::size_t size, std::size_t count, void*) { return size * count; }

std::unique_ptr<CURL, CurlDeleter> makeHandle(const std::string& url, std::chrono::milliseconds timeout) {
  // Safe to call more than once and from several threads on the libcurl of every supported
  // system (7.84 and later initialise themselves thread-safely).
  static const bool initialised = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
  if (!initialised) return nullptr;
  std::unique_ptr<CURL, CurlDeleter> handle(curl_easy_init());
  if (!handle) return nullptr;
  CURL* curl = handle.get();
  curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
  curl_easy_setopt(curl, CURLOPT_TIMEOUT_MS, static_cast<long>(timeout.count()));
  curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(timeout.count()));
  // No signals from a worker thread (the resolver's time-out would otherwise use SIGALRM).
  curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
  // The base address is fixed at build time; a redirect elsewhere is not followed.
  curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 0L);
  curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https");
  return handle;
}

} // namespace

AnalyticsClient::AnalyticsClient(std::string baseUrl, std::chrono::milliseconds timeout)
    : baseUrl_(std::move(baseUrl)), timeout_(timeout) {
  while (!baseUrl_.empty() && baseUrl_.back() == '/') baseUrl_.pop_back();
}

void AnalyticsClient::sendCleanupEvent(const CleanupEventRequest& request) const noexcept {
  try {
    const std::string body = encodeCleanupEvent(request);
    auto handle = makeHandle(baseUrl_ + "/analytics", timeout_);
    if (!handle) return;
    std::unique_ptr<curl_slist, HeaderListDeleter> headers(
        curl_slist_append(nullptr, "Content-Type: application/json"));
    CURL* curl = handle.get();
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(curl, CURLOPT_POST, 1L);
    curl_easy_setopt(curl, CURLOPT_POSTFIELDS, body.c_str());
    curl_easy_setopt(curl, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, discard);
    curl_easy_perform(curl); // whatever the outcome: nothing is retried or queued
  } catch (...) {
    // Encoding or allocation failed: nothing is sent.
  }
}

LifetimeStatsResponse AnalyticsClient::fetchLifetimeStats(const std::string& key) const {
  auto handle = makeHandle(baseUrl_ + "/analytics/user/" + percentEncodePathSegment(key), timeout_);
  if (!handle) throw StatisticsNetworkError("the transfer could not be set up");
  std::string answer;
  CURL* curl = handle.get();
  curl_easy_setopt(curl, CURLOPT_HTTPGET, 1L);
  curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, collect);
  curl_easy_setopt(curl, CURLOPT_WRITEDATA, &answer);
  if (const CURLcode result = curl_easy_perform(curl); result != CURLE_OK) {
    throw StatisticsNetworkError(curl_easy_strerror(result));
  }
  return decodeLifetimeStats(answer);
}

std::string percentEncodePathSegment(const std::string& text) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string result;
  for (const unsigned char c : text) {
    // "." is encoded too: a key of ".." must not climb out of the user's path.
    const bool plain =
        (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_' || c == '~';
    if (plain) {
      result.push_back(static_cast<char>(c));
    } else {
      result.push_back('%');
      result.push_back(kHex[c >> 4]);
      result.push_back(kHex[c & 15]);
    }
  }
  return result;
}

} // namespace halcyra::statistics
