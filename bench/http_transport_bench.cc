// The HTTP transport against a real server. bench/compare_with_curl.sh starts
// nginx, sets the environment below, and times curl doing the same work.
//   ORVELAN_BENCH_HTTP_URL   plain URL answering any POST with 4 KB
//   ORVELAN_BENCH_HTTPS_URL  https URL of a 50 MB file
//   ORVELAN_BENCH_CA         CA file for the https server
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>

#include "http/https_client.h"

namespace orvelan {
namespace {

class BenchClient : public HttpsClient {
 public:
  BenchClient() {
    InitDefaults();
    SetTimeout(60);
  }
  void Set(const std::string& setting) {
    const char* out = nullptr;
    Config(setting.c_str(), out);
  }
};

const char* Env(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0' ? value : nullptr;
}

// 1,000 POSTs of 1 KB, each on a new connection, each answered with 4 KB.
void BM_SequentialSmallPosts(benchmark::State& state) {
  const char* url = Env("ORVELAN_BENCH_HTTP_URL");
  if (url == nullptr) {
    state.SkipWithError("ORVELAN_BENCH_HTTP_URL not set (run bench/compare_with_curl.sh)");
    return;
  }
  const std::string body(1024, 'q');
  for (auto _ : state) {
    BenchClient client;
    client.SetContentType("application/x-ofx");
    for (int i = 0; i < 1000; ++i) {
      client.SetPostData(body.data(), static_cast<int32_t>(body.size()));
      if (client.PostToURL(url) != 0 || client.TransferredData().size() != 4096) {
        state.SkipWithError(client.GetLastError());
        return;
      }
    }
  }
}
BENCHMARK(BM_SequentialSmallPosts)->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(3)
    ->ReportAggregatesOnly(false);

// One 50 MB response body over TLS, kept in memory (0) or discarded (1), or
// kept in memory with the socket's receive buffer left to the kernel's
// autotuning (2; InBufferSize 0) instead of the default 64 KiB, as curl does.
void BM_TlsLargeBody(benchmark::State& state) {
  const char* url = Env("ORVELAN_BENCH_HTTPS_URL");
  const char* ca = Env("ORVELAN_BENCH_CA");
  if (url == nullptr || ca == nullptr) {
    state.SkipWithError("ORVELAN_BENCH_HTTPS_URL/ORVELAN_BENCH_CA not set (run bench/compare_with_curl.sh)");
    return;
  }
  size_t bytes = 0;
  for (auto _ : state) {
    BenchClient client;
    client.Set(std::string("OpenSSLCAFile=") + ca);
    client.Set("MaxTransferredData=0");
    // Argument 1 discards the body through LocalFile, as curl -o /dev/null does.
    if (state.range(0) == 1) client.Set("LocalFile=/dev/null");
    if (state.range(0) == 2) client.Set("InBufferSize=0");
    client.SetPostData("x", 1);
    if (client.PostToURL(url) != 0) {
      state.SkipWithError(client.GetLastError());
      return;
    }
    bytes += state.range(0) == 1 ? 50u << 20 : client.TransferredData().size();
  }
  state.SetBytesProcessed(static_cast<int64_t>(bytes));
}
BENCHMARK(BM_TlsLargeBody)->Arg(0)->Arg(1)->Arg(2)->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(7);

}  // namespace
}  // namespace orvelan
