// Throughput of the digests on 64 KiB buffers and the DES block rate.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include "base/des_cipher.h"
#include "base/md4_digest.h"
#include "base/md5_digest.h"
#include "base/sha1_digest.h"

namespace {

std::vector<uint8_t> Input(size_t length) {
  std::vector<uint8_t> bytes(length);
  uint32_t state = 1;
  for (uint8_t& b : bytes) {
    state = state * 1664525u + 1013904223u;
    b = static_cast<uint8_t>(state >> 24);
  }
  return bytes;
}

template <typename Digest>
void BM_Digest(benchmark::State& state) {
  const std::vector<uint8_t> input = Input(static_cast<size_t>(state.range(0)));
  Digest digest;
  for (auto _ : state) {
    digest.Reset();
    digest.Update(input.data(), input.size());
    benchmark::DoNotOptimize(digest.Finish());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
}
BENCHMARK_TEMPLATE(BM_Digest, orvelan::Md5Digest)->Arg(64 << 10);
BENCHMARK_TEMPLATE(BM_Digest, orvelan::Md4Digest)->Arg(64 << 10);
BENCHMARK_TEMPLATE(BM_Digest, orvelan::Sha1Digest)->Arg(64 << 10);

// 1024 blocks per iteration; items are blocks.
void BM_DesEcbEncrypt(benchmark::State& state) {
  const uint8_t key[8] = {0x13, 0x34, 0x57, 0x79, 0x9b, 0xbc, 0xdf, 0xf1};
  const orvelan::DesCipher des(key);
  std::vector<uint8_t> data = Input(8 * 1024);
  for (auto _ : state) {
    des.Encrypt(data.data(), 1024);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * 1024);
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * 8 * 1024);
}
BENCHMARK(BM_DesEcbEncrypt);

void BM_TripleDesCbcDecrypt(benchmark::State& state) {
  const std::vector<uint8_t> key = Input(24);
  const uint8_t iv[8] = {};
  std::vector<uint8_t> data = Input(8 * 1024);
  for (auto _ : state) {
    orvelan::TripleDesCbcDecrypt(data.data(), 1024, key.data(), iv);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * 1024);
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * 8 * 1024);
}
BENCHMARK(BM_TripleDesCbcDecrypt);

}  // namespace
