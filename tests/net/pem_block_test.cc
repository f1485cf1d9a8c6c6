#include "net/pem_block.h"

#include <string>

#include <gtest/gtest.h>

namespace orvelan {
namespace {

// "aGVsbG8=" is "hello".
TEST(PemBlockTest, ReadsHeadersAndBody) {
  // comment: the Comment header, or null when absent.
  const struct { const char* name; const char* text; bool found; const char* comment; const char* body; } cases[] = {
      {"five dashes", "-----BEGIN K-----\naGVs\nbG8=\n-----END K-----\n", true, nullptr, "hello"},
      {"SSH2 style", "junk\r\n---- BEGIN K ----\r\nComment: c\r\naGVsbG8=\r\n---- END K ----\r\n", true, "c", "hello"},
      {"continued value", "-----BEGIN K-----\nComment: one \\\ntwo\\\nthree\n\naGVsbG8=\n-----END K-----", true,
       "one twothree", "hello"},
      {"blank before the value", "-----BEGIN K-----\nComment:\t  spaced\naGVsbG8=\n---", true, "spaced", "hello"},
      {"no end line", "-----BEGIN K-----\naGVsbG8=", true, nullptr, "hello"},
      {"other marker", "-----BEGIN KEY-----\naGVsbG8=\n-----END KEY-----", true, nullptr, "hello"},
      {"not at a line start", "x-----BEGIN K-----\naGVsbG8=\n", false, nullptr, ""},
      {"no block", "BEGIN K\naGVsbG8=\n", false, nullptr, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    PemBlock block;
    ASSERT_EQ(block.Read(c.text, "K"), c.found);
    if (!c.found) continue;
    const std::string* comment = block.Header("COMMENT");
    EXPECT_EQ(comment == nullptr ? "(none)" : *comment, c.comment == nullptr ? "(none)" : c.comment);
    EXPECT_EQ(block.Body().View(), c.body);
  }
}

TEST(PemBlockTest, DecryptRefusesWhatItCannotUse) {
  const struct { const char* name; const char* dek_info; bool ok; } cases[] = {
      {"no DEK-Info", nullptr, true},
      {"other cipher", "AES-128-CBC,00112233445566778899AABBCCDDEEFF", false},
      {"short IV", "DES-EDE3-CBC,0011", false},
      {"IV not hex", "DES-EDE3-CBC,00112233445566GG", false},
      {"no comma", "DES-EDE3-CBC", false},
      {"body not whole blocks", "3des-cbc,0011223344556677", false},  // "hello" is 5 bytes
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    std::string text = "-----BEGIN K-----\n";
    if (c.dek_info != nullptr) text += std::string("DEK-Info: ") + c.dek_info + "\n\n";
    text += "aGVsbG8=\n-----END K-----\n";
    PemBlock block;
    ASSERT_TRUE(block.Read(text, "K"));
    EXPECT_EQ(block.Decrypt("secret"), c.ok);
    if (c.ok) {
      EXPECT_EQ(block.Body().View(), "hello");
    }
  }
}

}  // namespace
}  // namespace orvelan
