#pragma once
#include <cstdint>

namespace orvelan {

// Single DES in ECB mode, and Triple DES in CBC mode below.
//
//   DesCipher des(key);           // 8 key bytes
//   des.Encrypt(data, 2);         // two 8-byte blocks, in place
//   des.Decrypt(data, 2);         // and back
//
// The low bit of each key byte is a parity bit: it is ignored, never checked.
// Weak keys are accepted. Holds only the 16 round keys, so copying is cheap
// and a const cipher may be shared between threads.
class DesCipher {
 public:
  static constexpr int32_t kBlockLength = 8;
  static constexpr int32_t kKeyLength = 8;

  // The key is eight zero bytes until SetKey.
  DesCipher();
  explicit DesCipher(const uint8_t key[kKeyLength]) { SetKey(key); }

  // Derives the round keys from eight key bytes.
  void SetKey(const uint8_t key[kKeyLength]);

  // Encrypts or decrypts block_count consecutive 8-byte blocks in place, each
  // on its own (ECB). A block_count <= 0 does nothing.
  void Encrypt(uint8_t* blocks, int32_t block_count) const;
  void Decrypt(uint8_t* blocks, int32_t block_count) const;

  // One block as a number whose most significant byte is the block's first.
  uint64_t EncryptBlock(uint64_t block) const { return Crypt(block, false); }
  uint64_t DecryptBlock(uint64_t block) const { return Crypt(block, true); }

 private:
  uint64_t Crypt(uint64_t block, bool decrypt) const;

  // Round r's 48-bit key as eight 6-bit groups, one per S-box.
  uint8_t round_keys_[16][8];
};

// Triple DES (EDE) in CBC mode over data[0, 8 * block_count), in place.
// key holds three independent DES keys in order k1, k2, k3; a block is
// encrypted as E_k3(D_k2(E_k1(x))). A block_count <= 0 does nothing.
void TripleDesCbcDecrypt(uint8_t* data, int32_t block_count, const uint8_t key[24], const uint8_t iv[8]);
void TripleDesCbcEncrypt(uint8_t* data, int32_t block_count, const uint8_t key[24], const uint8_t iv[8]);

}  // namespace orvelan
